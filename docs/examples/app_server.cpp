// The application server and its client in one program: the server publishes a provider
// of customers over HTTP on 127.0.0.1; a client dataset reads it with a bearer token,
// edits a row and applies the change.
#include <Kesh_AdoDB.h>
#include <platform/remote/app_server.h>
#include <platform/remote/remote_connection.h>
#include <QCoreApplication>
#include <QTemporaryDir>
#include <QTextStream>

using namespace Kesh;

//! [module]
// One module per worker thread: its own connection and the providers it publishes.
class SalesModule : public TRemoteDataModule
{
public:
    explicit SalesModule(const QString& connectionString)
    {
        auto* conn = new TQxAdoConnection(this);
        conn->SetConnectionString(connectionString);
        auto* providers = new TQxProviderList(this);
        TQxProviderItem* customers = providers->Providers()->Add();
        customers->SetName(QStringLiteral("Customers"));
        customers->SetCommandText(QStringLiteral("SELECT Cust_id, Name_a, Name_e, Balance FROM Customers ORDER BY Cust_id"));
        customers->Provider()->SetOptions(poAutoRefresh);   // applied rows come back as stored
        providers->SetConnection(conn);
    }
};
//! [module]

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);
    QTemporaryDir dir;
    const QString database = QStringLiteral("Driver=QSQLITE;Database=") + dir.filePath(QStringLiteral("sales.db"));
    {
        TQxAdoConnection setup;
        setup.SetConnectionString(database);
        setup.Open();
        setup.Exec(QStringLiteral(
            "CREATE TABLE Customers (Cust_id INTEGER PRIMARY KEY, Name_a VARCHAR(80), Name_e VARCHAR(80), Balance NUMERIC(14,2));"
            "INSERT INTO Customers VALUES (1, 'مؤسسة النور', 'Al Noor Est.', 1250.50);"
            "INSERT INTO Customers VALUES (2, 'شركة الأمل', 'Al Amal Co.', 830)"));
    }

    //! [server]
    const QString token = QStringLiteral("a-long-random-secret");
    TAppServer server;
    server.SetAddress(QStringLiteral("127.0.0.1"));   // the default; HTTPS with SetCertificateFile/SetPrivateKeyFile
    server.SetPort(0);                             // 0: any free port (BoundPort tells which)
    server.SetWorkers(2);
    server.AddToken(token, {QStringLiteral("Customers")});   // or {"*"}: every provider
    server.ModuleFactory = [database] { return new SalesModule(database); };
    server.Start();
    //! [server]

    //! [client]
    auto* web = new TWebConnection(&app);
    web->SetURL(QStringLiteral("http://127.0.0.1:%1").arg(server.BoundPort()));
    web->SetToken(token);
    TClientDataSet customers;
    customers.SetRemoteServer(web);
    customers.SetProviderName(QStringLiteral("Customers"));
    customers.SetPacketRecords(100);               // rows come in packets as they are needed
    customers.OnReconcileError = [](TClientDataSet*, EReconcileError& e, TUpdateKind, TReconcileAction& action) {
        action = e.HasCurrentValues ? raRefresh : raCancel;   // someone else changed the row
    };
    customers.Open();
    customers.Locate(QStringLiteral("Cust_id"), 2);
    customers.Edit();
    customers.FieldByName(QStringLiteral("Balance"))->SetAsFloat(900);
    customers.Post();                              // kept in the change log
    customers.Append();                            // a new row; the database gives its key
    customers.FieldByName(QStringLiteral("Name_a"))->SetAsString(QStringLiteral("مكتبة المعرفة"));
    customers.FieldByName(QStringLiteral("Name_e"))->SetAsString(QStringLiteral("Knowledge Bookshop"));
    customers.Post();
    const int errors = customers.ApplyUpdates(0);  // one transaction on the server; 0: all or nothing
    out << customers.FieldByName(QStringLiteral("Cust_id"))->AsInteger() << '\n';   // 3
    //! [client]
    out << customers.RecordCount() << " customers, " << errors << " errors\n";

    TQxAdoConnection check;
    check.SetConnectionString(database);
    check.Open();
    out << check.DLookup(QStringLiteral("Customers"), QStringLiteral("Balance"), QStringLiteral("Cust_id = 2")).toDouble() << '\n';
    server.Stop();
    return 0;
}
