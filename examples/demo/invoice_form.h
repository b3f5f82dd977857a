// Kesh Sales: the sales invoice — a header of data-aware controls over one row of Invoices,
// its lines in a grid, the total in figures and in words, and the posting rules.
#pragma once
#include "demo_context.h"

#include <QHash>
#include <QVector>
#include <QWidget>
#include <memory>

class QCloseEvent;

namespace Kesh {
class TClientDataSet;
class TDataSetTotals;
class TDataSource;
class TField;
class TQxAdoBrowser;
class TQxAdoDataSet;
class TQxForm;
} // namespace Kesh

namespace Ui {
class InvoiceForm;
}

class InvoiceForm : public QWidget
{
    Q_OBJECT
public:
    /// The messages of the form's manager (its BiStrings), used by the datasets' rules.
    enum Message { MsgPosted = 1, MsgDeleteInvoice = 2 };

    /// Opens on a new invoice.
    explicit InvoiceForm(Demo::TDemoContext& Context, QWidget* Parent = nullptr);
    ~InvoiceForm() override;

    /// Starts a new invoice (asking first when the current one has unsaved changes).
    bool NewInvoice();
    /// Shows invoice InvId (asking first when the current one has unsaved changes); false
    /// when there is no such invoice or the user stayed on the current one.
    bool OpenInvoice(int InvId);
    /// Writes the header and the lines in one transaction, the header's Total being the sum
    /// of the lines; shows what is wrong and returns false when it cannot.
    bool Save();
    /// Marks the saved invoice posted, after a question; nothing in it can change afterwards.
    bool PostInvoice();
    /// Deletes the invoice and its lines, after a question.
    bool DeleteInvoice();
    /// Picks the customer in the record browser (F4).
    void PickCustomer();

    /// The number of the invoice shown (0 before a new one gets its number).
    int InvoiceId() const;
    /// The sum of the lines, the row being edited included.
    double Total() const;
    /// Whether anything typed is not saved yet (text still in a control is written into its
    /// field first).
    bool HasChanges();
    /// Whether the invoice shown is posted.
    bool IsPosted() const;

    Kesh::TQxForm* Manager() const { return m_manager; }
    Demo::TDemoContext& Context() const { return m_context; }

Q_SIGNALS:
    /// The invoice InvId was written, posted or deleted.
    void Changed(int InvId);

protected:
    void closeEvent(QCloseEvent* Event) override;
    void changeEvent(QEvent* Event) override;

private:
    struct TItem
    {
        int Id = 0;
        QString Code, NameA, NameE;
        double Price = 0;
        bool Active = true;
    };

    void CreateDataSets();
    void BuildLinesGrid();
    void BuildCustomerBrowser();
    void LoadItems();
    void OpenHeader(int InvId);
    void LoadLines(int InvId);
    void WriteLines(int InvId);
    void NewHeaderRecord();
    bool AskToLeave();
    void DiscardChanges();
    bool Validate();
    void PickDate();
    void SwitchCalendar(bool Hijri);
    void LineChanged(Kesh::TField* Field);
    void CheckLinesEditable();
    void ShowHeaderState();
    void ShowCustomerName();
    void ShowOtherDate();
    void ShowTotal();
    void Retranslate();
    bool Rtl() const;
    QString Tr(const char16_t* Arabic, const char* English) const;
    QString ItemText(int ItemId) const;
    int FindItem(const QString& Text) const;
    QStringList CurrencyNames(bool Arabic) const;

    Demo::TDemoContext& m_context;
    std::unique_ptr<Ui::InvoiceForm> const m_ui;
    Kesh::TQxForm* m_manager = nullptr;
    Kesh::TQxAdoDataSet* m_header = nullptr;
    Kesh::TClientDataSet* m_lines = nullptr;
    Kesh::TDataSource* m_headerSource = nullptr;
    Kesh::TDataSource* m_linesSource = nullptr;
    Kesh::TDataSetTotals* m_totals = nullptr;
    Kesh::TQxAdoBrowser* m_customers = nullptr;
    QVector<TItem> m_items;
    QHash<int, int> m_itemIndex;  // Item_id -> index in m_items
    bool m_loading = false;       // lines being filled from the database: no defaults
    bool m_linesDirty = false;    // lines added, changed or deleted since the last save
};
