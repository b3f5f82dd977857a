// Demo page: a data-entry form for one line of a sales invoice, built from the library's
// bilingual controls and usable from the keyboard alone.
#pragma once
#include "demo_page.h"

namespace Kesh {
class TQxAdoBrowser;
class TQxAdoConnection;
class TQxAdoDropList;
class TQxBitBtn;
class TQxCheckBox;
class TQxEdit;
class TQxEditButton;
class TQxFixedDropList;
class TQxLabel;
class TQxPanel;
class TQxRadioGroup;
class TQxSpeedButton;
class TQxTimeEdit;
} // namespace Kesh

class EntryPage : public DemoPage
{
    Q_OBJECT
public:
    /// The customers and cities come from the demo database at DatabaseFile.
    explicit EntryPage(const QString& DatabaseFile, QWidget* Parent = nullptr);
    QString PageName() const override { return QStringLiteral("entry"); }
    QString Title() const override;
    void Retranslate() override;

    /// Checks the form and shows a summary of the line, or an error at the first bad field.
    void Save();
    /// Empties every field and puts the focus on the first one.
    void Clear();
    /// Opens the customer browser (F4 or the button by the customer box).
    void PickCustomer();

private:
    void OpenDatabase(const QString& DatabaseFile);
    void BuildCustomerPicker();
    void FillSample();
    void UpdateTotal();
    long double LineTotal() const;
    int TypedTime() const;
    bool Validate();

    Kesh::TQxPanel* m_header;
    Kesh::TQxLabel* m_title;

    Kesh::TQxEdit* m_invoiceNo;
    Kesh::TQxEdit* m_customer;
    Kesh::TQxEditButton* m_date;
    Kesh::TQxTimeEdit* m_time;
    Kesh::TQxAdoDropList* m_city;
    Kesh::TQxAdoConnection* m_conn;
    Kesh::TQxAdoBrowser* m_customers;
    Kesh::TQxEdit* m_quantity;
    Kesh::TQxEdit* m_price;
    Kesh::TQxCheckBox* m_hasDiscount;
    Kesh::TQxEdit* m_discount;
    Kesh::TQxLabel* m_total;
    Kesh::TQxRadioGroup* m_payment;

    Kesh::TQxLabel* m_note;
    Kesh::TQxBitBtn* m_save;
    Kesh::TQxSpeedButton* m_clear;
};
