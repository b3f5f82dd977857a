#include "demo_module.h"
#include "sample_db.h"

using namespace Kesh;

namespace Demo {

TDemoModule::TDemoModule(const QString& ConnectionString)
{
    auto* Conn = new TQxAdoConnection(this);
    Conn->SetConnectionString(ConnectionString);
    auto* List = new TQxProviderList(this);
    TQxProviderItem* Customers = List->Providers()->Add();
    Customers->SetName(QStringLiteral("Customers"));
    Customers->SetCommandText(QStringLiteral("select Cust_id, Name_a, Name_e, City_id, Phone, Credit_limit, Balance, "
                                             "Joined, Active, Notes from Customers order by Cust_id"));
    TQxProviderItem* Cities = List->Providers()->Add();
    Cities->SetName(QStringLiteral("Cities"));
    Cities->SetCommandText(QStringLiteral("select City_id, Name_a, Name_e from Cities order by City_id"));
    TQxProviderItem* Items = List->Providers()->Add();
    Items->SetName(QStringLiteral("Items"));
    Items->SetCommandText(QStringLiteral("select Code, Name_a, Name_e, Price from Items where Price >= :P1 order by Code"));
    Items->SetDefaultValues(QStringLiteral("0"));
    // The client's typed value is validated as a number before it becomes text.
    List->BeforeGetRecords = [List](QObject* Sender, QJsonValue& OwnerData) {
        if (Sender->objectName() == QLatin1String("Items") && OwnerData.isDouble())
            List->SetParams(QStringLiteral("Items"), QString::number(OwnerData.toDouble(), 'f', 2));
    };
    List->BeforeUpdateRecord = [Conn](QObject* Sender, TDataSet*, TDeltaRecord& Row, TUpdateKind Kind, bool&) {
        if (Kind == ukInsert && Sender->objectName() == QLatin1String("Customers")
            && Row.NewValue(QStringLiteral("Cust_id")).isNull())
            Row.SetNewValue(QStringLiteral("Cust_id"), NextId(Conn, QStringLiteral("Customers"), QStringLiteral("Cust_id")));
    };
    List->SetConnection(Conn);
    Customers->Provider()->SetOptions(poPropogateChanges | poAutoRefresh);
}

void CreateServerDatabase(const QString& ConnectionString, int InvoiceLines)
{
    TQxAdoConnection Conn;
    Conn.SetConnectionString(ConnectionString);
    Conn.Open();
    EnsureSampleDatabase(&Conn, InvoiceLines);
}

} // namespace Demo
