#include "customers_data.h"
#include "demo_context.h"

#include <Kesh.h>
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>
#include <Kesh_dbControls.h>
#include <QCloseEvent>
#include <QWidget>

using namespace Kesh;

namespace Demo {

namespace {

// Sends the customers' change log to the server. A change it refuses stays in the log and
// the user is told why (the posted row stays as the user left it).
void ApplyToServer(TClientDataSet* Customers)
{
    QStringList Reasons;
    Customers->OnReconcileError = [&Reasons](TClientDataSet*, EReconcileError& E, TUpdateKind, TReconcileAction& Action) {
        Reasons << E.Message;
        Action = raSkip;
    };
    try {
        Customers->ApplyUpdates(0);
    } catch (...) {
        Customers->OnReconcileError = nullptr;
        throw;
    }
    Customers->OnReconcileError = nullptr;
    if (!Reasons.isEmpty())
        RaiseError(BiStr(QStringLiteral("لم يحفظ الخادم التعديل:"), QStringLiteral("The server did not save the change:"))
                   + QLatin1Char('\n') + Reasons.join(QLatin1Char('\n')));
}

// Changes the server has not taken count as unsaved when the form closes: they are sent
// once more, and if the server still refuses them the user decides whether to lose them.
class TUnsavedRemoteChanges : public QObject
{
public:
    TUnsavedRemoteChanges(TClientDataSet* Customers, QObject* Form) : QObject(Customers), m_customers(Customers)
    {
        Form->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject* Watched, QEvent* Event) override
    {
        if (Event->type() != QEvent::Close || m_customers->ChangeCount() == 0)
            return QObject::eventFilter(Watched, Event);
        try {
            ApplyToServer(m_customers);
        } catch (const Exception&) {
            // told, or the server is out of reach: the question below follows
        }
        const int Left = m_customers->ChangeCount();
        if (Left > 0 && !SelectYes(BiStr(QStringLiteral("لم يحفظ الخادم %1 من تعديلات العملاء. إغلاق النافذة وإهمالها؟"),
                                         QStringLiteral("The server has not saved %1 changes of the customers. Close and lose them?"))
                                       .arg(Left),
                                   false)) {
            Event->ignore();
            return true;
        }
        return QObject::eventFilter(Watched, Event);
    }

private:
    TClientDataSet* m_customers;
};

// Customers read and written through the application server: packets as the grid scrolls,
// each posted or deleted row sent at once (as the SQL dataset writes it).
TDataSet* CreateRemoteCustomers(TDemoContext& Context, QObject* Owner)
{
    auto* Customers = new TClientDataSet(Owner);
    Customers->setObjectName(QStringLiteral("tblCustomers"));
    AddCustomerFields(Customers);
    auto* Server = new TWebConnection(Customers);
    Server->SetURL(Context.ServerUrl);
    Server->SetToken(Context.ServerToken);
    Customers->SetRemoteServer(Server);
    Customers->SetProviderName(QStringLiteral("Customers"));
    Customers->SetPacketRecords(100);
    Customers->AfterPost = [Customers](TDataSet*) { ApplyToServer(Customers); };
    Customers->AfterDelete = [Customers](TDataSet*) { ApplyToServer(Customers); };
    // The same question the SQL dataset asks: message 1 of the form's manager.
    Customers->BeforeDelete = [Owner](TDataSet*) {
        const TQxForm* Manager = Owner ? Owner->findChild<TQxForm*>() : nullptr;
        if (Manager && !Sure(Manager->GetBiMsg(1), false))
            Abort();
    };
    new TUnsavedRemoteChanges(Customers, Owner);
    return Customers;
}

} // namespace

void AddCustomerFields(TDataSet* DataSet)
{
    // A field made with the dataset as its owner is one of its persistent fields.
    auto Add = [](TField* Field, const char* Name) {
        Field->SetFieldName(QLatin1String(Name));
        return Field;
    };
    Add(new TIntegerField(DataSet), "Cust_id");
    Add(new TStringField(DataSet), "Name_a")->SetSize(80);
    Add(new TStringField(DataSet), "Name_e")->SetSize(80);
    Add(new TIntegerField(DataSet), "City_id");
    Add(new TStringField(DataSet), "Phone")->SetSize(20);
    for (const char* Name : {"Credit_limit", "Balance"}) {
        TField* Amount = Add(new TBCDField(DataSet), Name);
        Amount->SetDisplayFormat(QStringLiteral("#,##0.00"));
        Amount->SetEditFormat(QStringLiteral("0.00"));
    }
    Add(new TQxDateField(DataSet), "Joined");
    Add(new TBooleanField(DataSet), "Active");
    Add(new TStringField(DataSet), "Notes")->SetSize(200);
}

TDataSet* CreateCustomersDataSet(TDemoContext& Context, QObject* Owner)
{
    if (Context.Remote())
        return CreateRemoteCustomers(Context, Owner);
    auto* Customers = new TQxAdoDataSet(Owner);
    Customers->setObjectName(QStringLiteral("tblCustomers"));
    AddCustomerFields(Customers);
    Customers->SetConnection(Context.Conn);
    Customers->SetCommandText(QStringLiteral("SELECT Cust_id, Name_a, Name_e, City_id, Phone, Credit_limit, Balance, "
                                             "Joined, Active, Notes FROM Customers ORDER BY Cust_id"));
    Customers->SetLockType(ltOptimistic);
    Customers->SetConfirmDel(true);
    Customers->SetConfirmMsgID(1);
    return Customers;
}

} // namespace Demo
