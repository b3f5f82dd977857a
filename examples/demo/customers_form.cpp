#include "customers_form.h"
#include "customers_data.h"
#include "demo_context.h"
#include "sample_db.h"
#include "ui_customers_form.h"

#include <Kesh.h>
#include <Kesh_AdoDB.h>
#include <Kesh_dbControls.h>

using namespace Kesh;

namespace Demo {

TCustomersForm::TCustomersForm(TDemoContext& Context, QWidget* Parent)
    : TListForm(Context, Parent), m_ui(new Ui::CustomersForm)
{
    // Every data-aware control, button and the grid of customers_form.ui name this source.
    m_source->setObjectName(QStringLiteral("dsCustomers"));
    m_ui->setupUi(this);
    m_ui->xCity_id->SetConnection(Context.Conn);
    ReadCities();

    TDataSet* Customers = CreateCustomersDataSet(Context, this);
    PrepareFields(Customers);
    // A new customer: the next key, active, joined today, no credit and no balance yet.
    Customers->OnNewRecord = [this](TDataSet* Ds) {
        if (m_context.Conn && !m_context.Remote())  // the server numbers its own
            Ds->FieldByName(QStringLiteral("Cust_id"))->SetAsInteger(NextId(m_context.Conn, QStringLiteral("Customers"), QStringLiteral("Cust_id")));
        Ds->FieldByName(QStringLiteral("Active"))->SetAsBoolean(true);
        Ds->FieldByName(QStringLiteral("Joined"))->SetAsInteger(DateToInt(Date()));
        Ds->FieldByName(QStringLiteral("Credit_limit"))->SetAsFloat(0);
        Ds->FieldByName(QStringLiteral("Balance"))->SetAsFloat(0);
    };
    // Both names are required: the message gives the focus to the box that lacks one.
    Customers->BeforePost = [this](TDataSet* Ds) {
        const std::pair<const char*, TQxdbEdit*> Names[] = {{"Name_a", m_ui->xName_a}, {"Name_e", m_ui->xName_e}};
        for (const auto& [Field, Edit] : Names)
            if (Ds->FieldByName(QLatin1String(Field))->AsString().trimmed().isEmpty())
                RaiseError(BiStr(QStringLiteral("أدخل اسم العميل بالعربية والإنجليزية."),
                                 QStringLiteral("Enter the customer's name in Arabic and in English.")),
                           Edit);
    };

    TParts Parts;
    Parts.Grid = m_ui->grdCustomers;
    Parts.Footer = m_ui->ftrCustomers;
    Parts.FirstEdit = m_ui->xName_a;
    Parts.FindButton = m_ui->btnFind;
    Parts.Table = QStringLiteral("Customers");
    Parts.KeyField = QStringLiteral("Cust_id");
    Parts.CountColumn = 1;
    Parts.CountA = u"عدد العملاء: %1";
    Parts.CountE = "%1 customers";
    Open(Customers, Parts,
         {{"Cust_id", nullptr, u"الرقم", "Code", 55},
          {"Name_e", "Name_a", u"الاسم", "Name", 230, false, true},
          {"City_id", nullptr, u"المدينة", "City", 110},
          {"Phone", nullptr, u"الهاتف", "Phone", 105},
          {"Credit_limit", nullptr, u"حد الائتمان", "Credit limit", 105, true},
          {"Balance", nullptr, u"الرصيد", "Balance", 110, true},
          {"Joined", nullptr, u"الانضمام", "Joined", 85},
          {"Active", nullptr, u"فعال", "Active", 50}},
         // The key is read back but not shown: the names, phones and dates need the room.
         {{"Name_e", "Name_a", u"الاسم", "Name", 26},
          {"Cust_id", nullptr, u"الرقم", "No.", 0},
          {"Phone", nullptr, u"الهاتف", "Phone", 14},
          {"Joined", nullptr, u"الانضمام", "Joined", 12, true}},
         QStringLiteral("العملاء"), QStringLiteral("Customers"));
}

TCustomersForm::~TCustomersForm() = default;

void TCustomersForm::ReadCities()
{
    if (!m_context.Conn)
        return;
    std::unique_ptr<TADODataSet> Cities(
        m_context.Conn->OpenRecordSet(QStringLiteral("SELECT City_id, Name_a, Name_e FROM Cities"), true));
    if (!Cities)
        return;
    for (; !Cities->Eof(); Cities->Next())
        m_cities.insert(Cities->Fields()[0]->AsInteger(), {Cities->Fields()[1]->AsString(), Cities->Fields()[2]->AsString()});
}

// The grid shows the city by its name in the user's language and a tick for an active
// customer; the card's controls read the values themselves.
void TCustomersForm::PrepareFields(TDataSet* Ds)
{
    Ds->FieldByName(QStringLiteral("City_id"))->OnGetText = [this](TField* Field, QString& Text, bool Display) {
        const auto City = m_cities.constFind(Field->AsInteger());
        if (!Display || Field->IsNull() || City == m_cities.constEnd())
            Text = Field->AsString();
        else
            Text = Application()->BiDiMode() == bdRightToLeft ? City->first : City->second;
    };
    Ds->FieldByName(QStringLiteral("Active"))->OnGetText = [](TField* Field, QString& Text, bool Display) {
        Text = Display ? (Field->AsBoolean() ? QStringLiteral("✓") : QString()) : Field->AsString();
    };
}

} // namespace Demo
