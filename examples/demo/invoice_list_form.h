// Kesh Sales: the list of sales invoices between two dates, with their customer, payment,
// total and state; Enter or a double click opens one.
#pragma once
#include "demo_context.h"

#include <QWidget>
#include <functional>
#include <memory>

namespace Kesh {
class TDataSource;
class TQxAdoDataSet;
class TQxEditButton;
class TQxForm;
} // namespace Kesh

namespace Ui {
class InvoiceListForm;
}

class InvoiceListForm : public QWidget
{
    Q_OBJECT
public:
    /// Shows the invoices of the last month of the data.
    explicit InvoiceListForm(Demo::TDemoContext& Context, QWidget* Parent = nullptr);
    ~InvoiceListForm() override;

    /// Shows the invoices dated From to To (integer dates, both included).
    void SetDateRange(int From, int To);
    /// Reads the invoices again with the dates typed (F5).
    void Refresh();
    /// The number of the invoice under the cursor; 0 when there is none.
    int CurrentInvoice() const;
    /// Opens the invoice under the cursor (Enter, double click).
    void OpenCurrent();

    /// Shows invoice InvId (0: a new one). Unset, the list opens its own invoice window.
    std::function<void(int InvId)> OnOpenInvoice;

    Kesh::TQxForm* Manager() const { return m_manager; }

protected:
    void changeEvent(QEvent* Event) override;
    bool eventFilter(QObject* Watched, QEvent* Event) override;

private:
    void CreateDataSet();
    void BuildGrid();
    void PickDate(Kesh::TQxEditButton* Edit);
    int TypedDate(Kesh::TQxEditButton* Edit) const;
    void Open(int InvId);
    void Retranslate();
    bool Rtl() const;
    QString Tr(const char16_t* Arabic, const char* English) const;

    Demo::TDemoContext& m_context;
    std::unique_ptr<Ui::InvoiceListForm> const m_ui;
    Kesh::TQxForm* m_manager = nullptr;
    Kesh::TQxAdoDataSet* m_invoices = nullptr;
    Kesh::TDataSource* m_source = nullptr;
};
