#include "customers_data.h"
#include "demo_context.h"

#include <Kesh_AdoDB.h>
#include <Kesh_dbControls.h>

using namespace Kesh;

namespace Demo {

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
