// Tests of the application server: a client dataset reading and editing a provider's rows
// in-process and over HTTP on 127.0.0.1, reconciling conflicts, and the server's guards
// (tokens, limits, malformed requests, hang-ups, a database that goes away and comes back).
#include "db_test_helper.h"
#include "platform/data.h"
#include "platform/remote/app_server.h"
#include "platform/remote/remote_connection.h"
#include <QJsonDocument>
#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

using namespace Kesh;

namespace {

const QString Token = QStringLiteral("token-for-all-providers-0001");
const QString ItemsOnly = QStringLiteral("token-for-items-only-000002");

QString MakeItems(KeshTest::TTestDatabase& Db, int Count)
{
    const QString T = Db.NewTable(QStringLiteral("Id INTEGER PRIMARY KEY, Name VARCHAR(40), Qty INTEGER"));
    Db.Connection()->BeginTrans();
    for (int i = 1; i <= Count; ++i)
        Db.Exec(QStringLiteral("INSERT INTO %1 VALUES (%2, 'n%2', %3)").arg(T).arg(i).arg(i * 10));
    Db.Connection()->CommitTrans();
    return T;
}

// The server side: its own connection, the provider "Items" and a second one, "Hidden".
class TItemsModule : public TRemoteDataModule
{
public:
    TItemsModule(const QString& ConnectionString, const QString& Table)
    {
        Conn = new TADOConnection(this);
        Conn->SetConnectionString(ConnectionString);
        for (const char* Name : {"Items", "Hidden"}) {
            auto* Q = new TADOQuery(this);
            Q->SetConnection(Conn);
            Q->SetSQL({QStringLiteral("SELECT Id, Name, Qty FROM %1 ORDER BY Id").arg(Table)});
            auto* P = new TDataSetProvider(this);
            P->setObjectName(QLatin1String(Name));
            P->SetDataSet(Q);
            P->BeforeGetRecords = [this](QObject*, QJsonValue&) { ++Packets; };
        }
    }
    TADOConnection* Conn;
    std::atomic<int> Packets{0};
};

// A TCP relay in front of the database server, so that a test can cut the database off
// and bring it back.
class TRelay : public QObject
{
public:
    TRelay(const QString& Host, quint16 Port) : m_host(Host), m_port(Port)
    {
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* In = m_server.nextPendingConnection()) {
                auto* Out = new QTcpSocket(In);
                Out->connectToHost(m_host, m_port);
                connect(In, &QTcpSocket::readyRead, Out, [In, Out] { Out->write(In->readAll()); });
                connect(Out, &QTcpSocket::readyRead, In, [In, Out] { In->write(Out->readAll()); });
                connect(Out, &QTcpSocket::disconnected, In, &QTcpSocket::disconnectFromHost);
                connect(In, &QTcpSocket::disconnected, In, &QObject::deleteLater);
                m_sockets << In;
            }
        });
        m_server.listen(QHostAddress::LocalHost);
        m_listenPort = m_server.serverPort();
    }
    quint16 Port() const { return m_listenPort; }
    void Cut()
    {
        m_server.close();
        for (const QPointer<QTcpSocket>& S : std::as_const(m_sockets))
            if (S)
                S->abort();
        m_sockets.clear();
    }
    void Restore() { m_server.listen(QHostAddress::LocalHost, m_listenPort); }

private:
    QTcpServer m_server;
    QString m_host;
    quint16 m_port;
    quint16 m_listenPort = 0;
    QList<QPointer<QTcpSocket>> m_sockets;
};

struct TRunningServer
{
    TAppServer Server;
    QList<TItemsModule*> Made;  // owned by the server's workers
    TRunningServer(const QString& ConnectionString, const QString& Table, int Workers = 2)
    {
        Server.SetWorkers(Workers);
        Server.SetMaxRequestBytes(64 * 1024);
        Server.AddToken(Token, {QStringLiteral("*")});
        Server.AddToken(ItemsOnly, {QStringLiteral("Items")});
        Server.ModuleFactory = [=]() -> TCustomRemoteModule* { return new TItemsModule(ConnectionString, Table); };
        Server.Start();
    }
    QString Url() const { return QStringLiteral("http://127.0.0.1:%1").arg(Server.BoundPort()); }
};

// One raw HTTP exchange; returns the status (0: no answer) and the body.
int RawHttp(quint16 Port, const QByteArray& Request, QByteArray* Body = nullptr, bool HangUp = false)
{
    QTcpSocket S;
    S.connectToHost(QHostAddress::LocalHost, Port);
    if (!S.waitForConnected(5000))
        return 0;
    S.write(Request);
    S.waitForBytesWritten(5000);
    if (HangUp) {
        S.abort();
        return 0;
    }
    QByteArray Answer;
    while (S.waitForReadyRead(5000)) {
        Answer += S.readAll();
        const int HeaderEnd = Answer.indexOf("\r\n\r\n");
        const QRegularExpressionMatch M = QRegularExpression(QStringLiteral("Content-Length: (\\d+)"), QRegularExpression::CaseInsensitiveOption)
                                              .match(QString::fromLatin1(Answer.left(HeaderEnd)));
        if (HeaderEnd > 0 && M.hasMatch() && Answer.size() >= HeaderEnd + 4 + M.captured(1).toInt())
            break;
    }
    if (Body)
        *Body = Answer.mid(Answer.indexOf("\r\n\r\n") + 4);
    return Answer.mid(9, 3).toInt();
}

QByteArray Post(const QString& Path, const QByteArray& Body, const QString& Bearer = Token, qint64 Length = -1)
{
    return "POST " + Path.toLatin1() + " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\nAuthorization: Bearer "
           + Bearer.toLatin1() + "\r\nContent-Type: application/json\r\nContent-Length: "
           + QByteArray::number(Length < 0 ? Body.size() : Length) + "\r\n\r\n" + Body;
}

// Opens Cds on the provider Items of Remote.
void OpenItems(TClientDataSet& Cds, TCustomRemoteServer* Remote)
{
    Cds.SetRemoteServer(Remote);
    Cds.SetProviderName(QStringLiteral("Items"));
    Cds.Open();
}

QVariant ScalarOf(KeshTest::TTestDatabase& Db, const QString& Sql, const QString& T) { return Db.Scalar(Sql.arg(T)); }

// A scratch SQLite database in Dir holding the table Items.
void OpenScratch(TADOConnection& Setup, const QTemporaryDir& Dir)
{
    Setup.SetConnectionString(QStringLiteral("Driver=QSQLITE;Database=") + Dir.filePath(QStringLiteral("s.db")));
    Setup.Open();
    Setup.Execute(QStringLiteral("CREATE TABLE Items (Id INTEGER PRIMARY KEY, Name VARCHAR(40), Qty INTEGER)"));
}

} // namespace

class TestAppServer : public QObject
{
    Q_OBJECT

    // The same client-side story on both transports: list, edit, insert, delete, apply.
    void EditThrough(TCustomRemoteServer* Remote, KeshTest::TTestDatabase& Db, const QString& T)
    {
        TClientDataSet Cds;
        Cds.SetPacketRecords(10);
        OpenItems(Cds, Remote);
        QCOMPARE(Cds.FetchedRowCount(), 64);  // the packets the first block of rows needs
        QCOMPARE(Cds.RecordCount(), 100);     // the rest read on demand
        QCOMPARE(Cds.KeyFields().size(), 1);
        QVERIFY(Cds.Locate(QStringLiteral("Id"), 2));
        Cds.Edit();
        Cds.FieldByName(QStringLiteral("Qty"))->SetAsInteger(21);
        Cds.Post();
        Cds.Append();
        Cds.FieldByName(QStringLiteral("Id"))->SetAsInteger(101);
        Cds.FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("جديد"));
        Cds.Post();
        QVERIFY(Cds.Locate(QStringLiteral("Id"), 5));
        Cds.Delete();
        QCOMPARE(Cds.ChangeCount(), 3);
        QCOMPARE(Cds.ApplyUpdates(0), 0);
        QCOMPARE(Cds.ChangeCount(), 0);
        QCOMPARE(ScalarOf(Db, QStringLiteral("SELECT Qty FROM %1 WHERE Id = 2"), T).toInt(), 21);
        QCOMPARE(ScalarOf(Db, QStringLiteral("SELECT Name FROM %1 WHERE Id = 101"), T).toString(), QStringLiteral("جديد"));
        QCOMPARE(ScalarOf(Db, QStringLiteral("SELECT COUNT(*) FROM %1 WHERE Id = 5"), T).toInt(), 0);
        Cds.Close();
        Cds.Open();
        QCOMPARE(Cds.RecordCount(), 100);
    }

private Q_SLOTS:
    void localClient_data() { KeshTest::AddDriverRows(); }
    void localClient()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 100);
        TItemsModule Module(Db->ConnectionString(), T);
        TLocalConnection Local;
        Local.SetModule(&Module);
        QCOMPARE(Local.GetProviderNames(), (QStringList{"Items", "Hidden"}));
        EditThrough(&Local, *Db, T);
        QCOMPARE(Module.Packets.load(), 20);  // 100 rows in packets of 10, twice
    }

    void httpClient_data() { KeshTest::AddDriverRows(); }
    void httpClient()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 100);
        TRunningServer S(Db->ConnectionString(), T);
        TWebConnection Web;
        Web.SetURL(S.Url());
        Web.SetToken(ItemsOnly);
        QCOMPARE(Web.GetProviderNames(), QStringList{"Items"});
        EditThrough(&Web, *Db, T);
        // A provider this token may not use.
        TClientDataSet Hidden;
        Hidden.SetRemoteServer(&Web);
        Hidden.SetProviderName(QStringLiteral("Hidden"));
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, Hidden.Open());
        QCOMPARE(Web.LastStatus(), 403);
    }

    // After ApplyUpdates an inserted row holds what the server made of it, as the
    // provider's options ask: nothing, the values its handlers set and the key the database
    // assigned, or the row read back (with the column default too).
    void serverValuesComeBack_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<int>("options");
        QTest::addColumn<bool>("idAssigned");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QVariant>("qty");
        for (const char* Driver : {"sqlite", "postgres"}) {
            const QString D = QString::fromLatin1(Driver);
            QTest::addRow("%s: none", Driver) << D << 0 << false << "abc" << QVariant();
            QTest::addRow("%s: handlers' changes", Driver) << D << int(poPropogateChanges) << true << "ABC" << QVariant();
            QTest::addRow("%s: read back", Driver) << D << int(poAutoRefresh) << true << "ABC" << QVariant(7);
            QTest::addRow("%s: both", Driver) << D << int(poAutoRefresh | poPropogateChanges) << true << "ABC" << QVariant(7);
        }
    }
    void serverValuesComeBack()
    {
        QFETCH(int, options);
        QFETCH(bool, idAssigned);
        QFETCH(QString, name);
        QFETCH(QVariant, qty);
        KESH_OPEN_TEST_DB(Db);
        const QString T = Db->NewTable(QStringLiteral("Id %AUTOKEY%, Name VARCHAR(40), Qty INTEGER DEFAULT 7"));
        Db->Exec(QStringLiteral("INSERT INTO %1 (Name, Qty) VALUES ('old', 1)").arg(T));
        TItemsModule Module(Db->ConnectionString(), T);
        auto* P = Module.findChild<TDataSetProvider*>(QStringLiteral("Items"));
        P->SetOptions(TProviderOptions(options));
        P->BeforeUpdateRecord = [](QObject*, TDataSet*, TDeltaRecord& R, TUpdateKind Kind, bool&) {
            if (Kind == ukInsert)
                R.SetNewValue(QStringLiteral("Name"), R.NewValue(QStringLiteral("Name")).toString().toUpper());
        };
        TLocalConnection Local;
        Local.SetModule(&Module);
        TClientDataSet Cds;
        OpenItems(Cds, &Local);
        for (const char* New : {"abc", "xyz"}) {
            Cds.Append();
            Cds.FieldByName(QStringLiteral("Name"))->SetAsString(QLatin1String(New));
            Cds.Post();
        }
        Cds.First();
        QCOMPARE(Cds.ApplyUpdates(0), 0);
        QCOMPARE(Cds.ChangeCount(), 0);
        QCOMPARE(Cds.RecordCount(), 3);
        QCOMPARE(Cds.RecNo(), 1);  // the cursor stays where it was
        QVERIFY(Cds.Locate(QStringLiteral("Name"), name));
        TField* Id = Cds.FieldByName(QStringLiteral("Id"));
        QCOMPARE(Id->IsNull(), !idAssigned);
        if (idAssigned)
            QCOMPARE(Db->Scalar(QStringLiteral("SELECT Name FROM %1 WHERE Id = %2").arg(T).arg(Id->AsInteger())).toString(), QStringLiteral("ABC"));
        TField* Qty = Cds.FieldByName(QStringLiteral("Qty"));
        QCOMPARE(Qty->IsNull() ? QVariant() : QVariant(Qty->AsInteger()), qty);
        QCOMPARE(Cds.ChangeCount(), 0);  // taking the server's values logs nothing

        // Reopened, the rows are read again; a row another user changed is read again alone.
        Cds.Close();
        Cds.Open();
        QCOMPARE(Cds.RecordCount(), 3);
        QVERIFY(Cds.Locate(QStringLiteral("Name"), QStringLiteral("old")));
        Db->Exec(QStringLiteral("UPDATE %1 SET Qty = 99 WHERE Name = 'old'").arg(T));
        Cds.RefreshRecord();
        QCOMPARE(Cds.FieldByName(QStringLiteral("Qty"))->AsInteger(), 99);
        QCOMPARE(Cds.ChangeCount(), 0);
        Db->Exec(QStringLiteral("DELETE FROM %1 WHERE Name = 'old'").arg(T));
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, Cds.RefreshRecord());
    }

    // Another user changed row 1 after the client read it; each reconcile action.
    void reconcile_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<int>("action");
        QTest::addColumn<int>("clientQty");   // row 1 in the client afterwards
        QTest::addColumn<int>("changes");     // left in the log
        QTest::addColumn<int>("secondApply"); // errors of a second ApplyUpdates
        QTest::addColumn<int>("dbQty");       // row 1 in the database at the end
        for (const char* Driver : {"sqlite", "postgres"}) {
            const QString D = QString::fromLatin1(Driver);
            QTest::addRow("%s: skip", Driver) << D << int(raSkip) << 5 << 1 << 1 << 77;
            QTest::addRow("%s: abort", Driver) << D << int(raAbort) << 5 << 1 << 1 << 77;
            QTest::addRow("%s: cancel", Driver) << D << int(raCancel) << 10 << 0 << 0 << 77;
            QTest::addRow("%s: refresh", Driver) << D << int(raRefresh) << 77 << 0 << 0 << 77;
            QTest::addRow("%s: merge", Driver) << D << int(raMerge) << 5 << 1 << 0 << 5;
            QTest::addRow("%s: correct", Driver) << D << int(raCorrect) << 6 << 1 << 1 << 77;
        }
    }
    void reconcile()
    {
        QFETCH(int, action);
        QFETCH(int, clientQty);
        QFETCH(int, changes);
        QFETCH(int, secondApply);
        QFETCH(int, dbQty);
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 2);
        TItemsModule Module(Db->ConnectionString(), T);
        TLocalConnection Local;
        Local.SetModule(&Module);
        TClientDataSet Cds;
        OpenItems(Cds, &Local);
        Cds.Edit();
        Cds.FieldByName(QStringLiteral("Qty"))->SetAsInteger(5);
        Cds.Post();
        Db->Exec(QStringLiteral("UPDATE %1 SET Qty = 77 WHERE Id = 1").arg(T));
        QString Message;
        QVariant Current;
        Cds.OnReconcileError = [&](TClientDataSet*, EReconcileError& E, TUpdateKind Kind, TReconcileAction& Action) {
            QCOMPARE(Kind, ukModify);
            Message = E.Message;
            Current = E.HasCurrentValues ? E.CurrentValues[2] : QVariant();
            Action = TReconcileAction(action);
            if (Action == raCorrect)
                E.Record.SetNewValue(QStringLiteral("Qty"), 6);
        };
        QCOMPARE(Cds.ApplyUpdates(-1), 1);
        QCOMPARE(Message, QStringLiteral("Record not found or changed by another user"));
        QCOMPARE(Current.toInt(), 77);
        QVERIFY(Cds.Locate(QStringLiteral("Id"), 1));
        QCOMPARE(Cds.FieldByName(QStringLiteral("Qty"))->AsInteger(), clientQty);
        QCOMPARE(Cds.ChangeCount(), changes);
        Cds.OnReconcileError = nullptr;
        QCOMPARE(Cds.ApplyUpdates(-1), secondApply);
        QCOMPARE(ScalarOf(*Db, QStringLiteral("SELECT Qty FROM %1 WHERE Id = 1"), T).toInt(), dbQty);
    }

    // The guards every request passes, in raw HTTP.
    void guards_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("error");
        const QByteArray Get = "{\"count\":-1}";
        QTest::newRow("no token") << QByteArray("POST /api/Items/GetRecords HTTP/1.1\r\nHost: x\r\nConnection: close\r\nContent-Length: 2\r\n\r\n{}") << 401 << "bearer token";
        QTest::newRow("wrong token") << Post(QStringLiteral("/api/Items/GetRecords"), Get, QStringLiteral("token-for-all-providers-0002")) << 401 << "bearer token";
        QTest::newRow("wrong token, refused before the body") << Post(QStringLiteral("/api/Items/GetRecords"), QByteArray(), QStringLiteral("token-for-all-providers-0002"), 64LL << 20) << 401 << "bearer token";
        QTest::newRow("provider not allowed") << Post(QStringLiteral("/api/Hidden/GetRecords"), Get, ItemsOnly) << 403 << "Hidden";
        QTest::newRow("unknown endpoint") << Post(QStringLiteral("/api/Items/DropTable"), Get) << 404 << "No such call";
        QTest::newRow("unknown provider") << Post(QStringLiteral("/api/Nope/GetRecords"), Get) << 404 << "Nope";
        QTest::newRow("path outside the API") << Post(QStringLiteral("/etc/passwd"), Get) << 404 << "endpoint";
        QTest::newRow("GET of a POST call") << QByteArray("GET /api/Items/GetRecords HTTP/1.1\r\nHost: x\r\nConnection: close\r\nAuthorization: Bearer ") + Token.toLatin1() + "\r\n\r\n" << 405 << "POST";
        QTest::newRow("too large, refused before the body") << Post(QStringLiteral("/api/Items/GetRecords"), QByteArray(), Token, 64LL << 20) << 413 << "larger";
        QTest::newRow("malformed JSON") << Post(QStringLiteral("/api/Items/GetRecords"), "{\"count\":") << 400 << "Malformed";
        QTest::newRow("nested too deep") << Post(QStringLiteral("/api/Items/GetRecords"), "{\"a\":" + QByteArray(100, '[') + QByteArray(100, ']') + "}") << 400 << "deeper";
        QTest::newRow("SQL text from the client") << Post(QStringLiteral("/api/Items/GetRecords"), "{\"commandText\":\"DELETE FROM x\"}") << 400 << "SQL";
        QTest::newRow("count of the wrong type") << Post(QStringLiteral("/api/Items/GetRecords"), "{\"count\":\"all\"}") << 400 << "count";
        QTest::newRow("unknown parameter") << Post(QStringLiteral("/api/Items/GetRecords"), "{\"params\":[{\"name\":\"x\",\"type\":\"ftInteger\",\"value\":1}]}") << 400 << "Parameter 'x' not found";
        QTest::newRow("parameter of a bad value") << Post(QStringLiteral("/api/Items/GetRecords"), "{\"params\":[{\"name\":\"x\",\"type\":\"ftInteger\",\"value\":\"1 OR 1=1\"}]}") << 400 << "Invalid value";
        QTest::newRow("delta of another table's column") << Post(QStringLiteral("/api/Items/ApplyUpdates"), "{\"maxErrors\":0,\"delta\":{\"fields\":[{\"name\":\"Secret\",\"type\":\"ftInteger\"}],\"rows\":[]}}") << 400 << "Secret";
        QTest::newRow("good request") << Post(QStringLiteral("/api/Items/GetRecords"), Get) << 200 << QString();
    }
    void guards()
    {
        QFETCH(QByteArray, request);
        QFETCH(int, status);
        QFETCH(QString, error);
        QTemporaryDir Dir;
        TADOConnection Setup;
        OpenScratch(Setup, Dir);
        Setup.Execute(QStringLiteral("INSERT INTO Items VALUES (1, 'a', 1)"));
        TRunningServer S(Setup.ConnectionString(), QStringLiteral("Items"));
        QElapsedTimer Clock;
        Clock.start();
        QByteArray Body;
        QCOMPARE(RawHttp(S.Server.BoundPort(), request, &Body), status);
        QVERIFY2(Clock.elapsed() < 3000, "answered without waiting for a body");
        const QJsonObject Answer = QJsonDocument::fromJson(Body).object();
        if (status == 200)
            QCOMPARE(Answer.value(QStringLiteral("rows")).toArray().size(), 1);
        else
            QVERIFY2(Answer.value(QStringLiteral("error")).toString().contains(error), Body.constData());
        QCOMPARE(Setup.Execute(QStringLiteral("UPDATE Items SET Qty = 1")), 1);  // the table is unharmed
    }

    // Hang-ups mid-request and a flood of bad requests leave the server serving.
    void hangUps()
    {
        QTemporaryDir Dir;
        TADOConnection Setup;
        OpenScratch(Setup, Dir);
        TRunningServer S(Setup.ConnectionString(), QStringLiteral("Items"));
        const quint16 Port = S.Server.BoundPort();
        for (int i = 0; i < 20; ++i) {
            RawHttp(Port, Post(QStringLiteral("/api/Items/GetRecords"), "{\"count\"", Token, 1000), nullptr, true);
            RawHttp(Port, Post(QStringLiteral("/api/Items/GetRecords"), "{}"), nullptr, true);
            RawHttp(Port, QByteArray("garbage\r\n\r\n"), nullptr, true);
        }
        QCOMPARE(RawHttp(Port, Post(QStringLiteral("/api/Items/GetRecords"), "{}")), 200);
    }

    // The database goes away: each call fails with a clear error and the server keeps
    // serving; when the database is back the next call succeeds without a restart.
    void deadDatabase()
    {
        if (qEnvironmentVariableIsEmpty("KESH_TEST_PG"))
            QSKIP("needs the PostgreSQL server of KESH_TEST_PG");
        QString Reason;
        auto Db = KeshTest::TTestDatabase::Open(QStringLiteral("postgres"), Reason);
        QVERIFY2(Db, qPrintable(Reason));
        const QString T = MakeItems(*Db, 3);
        QString Cs = Db->ConnectionString();
        const QRegularExpressionMatch M = QRegularExpression(QStringLiteral("Port=(\\d+)")).match(Cs);
        QVERIFY(M.hasMatch());
        TRelay Relay(QStringLiteral("127.0.0.1"), quint16(M.captured(1).toInt()));
        Cs.replace(M.captured(0), QStringLiteral("Port=%1").arg(Relay.Port()));
        TRunningServer S(Cs, T, 1);
        TWebConnection Web;
        Web.SetURL(S.Url());
        Web.SetToken(Token);
        Web.SetTimeOut(20000);
        const QJsonObject All{{QStringLiteral("count"), -1}};
        QCOMPARE(Web.AppServerCall(QStringLiteral("Items"), QStringLiteral("GetRecords"), All).value(QStringLiteral("rows")).toArray().size(), 3);
        Relay.Cut();
        for (int i = 0; i < 3; ++i) {
            QVERIFY_THROWS_EXCEPTION(EDatabaseError, Web.AppServerCall(QStringLiteral("Items"), QStringLiteral("GetRecords"), All));
            QCOMPARE(Web.LastStatus(), 500);
        }
        QCOMPARE(Web.GetProviderNames().size(), 2);  // still serving
        Relay.Restore();
        QCOMPARE(Web.AppServerCall(QStringLiteral("Items"), QStringLiteral("GetRecords"), All).value(QStringLiteral("rows")).toArray().size(), 3);
    }

    // With a certificate and key the server speaks HTTPS only.
    void tls()
    {
        QTemporaryDir Dir;
        const QString Cert = Dir.filePath(QStringLiteral("cert.pem")), Key = Dir.filePath(QStringLiteral("key.pem"));
        QProcess Make;
        Make.start(QStringLiteral("openssl"), {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "1", "-subj", "/CN=127.0.0.1",
                                                "-addext", "subjectAltName=IP:127.0.0.1", "-keyout", Key, "-out", Cert});
        if (!Make.waitForFinished(30000) || Make.exitCode() != 0)
            QSKIP("the openssl command is not available to make a certificate");
        TADOConnection Setup;
        OpenScratch(Setup, Dir);
        TAppServer S;
        S.SetCertificateFile(Cert);
        S.SetPrivateKeyFile(Key);
        S.AddToken(Token, {QStringLiteral("*")});
        const QString Cs = Setup.ConnectionString();
        S.ModuleFactory = [Cs]() -> TCustomRemoteModule* { return new TItemsModule(Cs, QStringLiteral("Items")); };
        S.Start();
        TWebConnection Web;
        Web.SetURL(QStringLiteral("https://127.0.0.1:%1").arg(S.BoundPort()));
        Web.SetToken(Token);
        Web.SetCACertificateFile(Cert);
        QCOMPARE(Web.GetProviderNames().size(), 2);
        Web.SetURL(QStringLiteral("http://127.0.0.1:%1").arg(S.BoundPort()));  // plain HTTP gets no answer
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, Web.GetProviderNames());
        QCOMPARE(Web.LastStatus(), 0);
    }

    void tokens()
    {
        TAppServer S;
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, S.AddToken(QStringLiteral("short"), {QStringLiteral("*")}));
        QCOMPARE(S.Address(), QStringLiteral("127.0.0.1"));
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, S.Start());  // no module factory
        S.ModuleFactory = [] { return new TRemoteDataModule; };
        S.SetCertificateFile(QStringLiteral("/nonexistent.pem"));
        S.SetPrivateKeyFile(QStringLiteral("/nonexistent.key"));
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, S.Start());  // TLS asked for, not possible
        QVERIFY(!S.Active());
    }
};

QTEST_GUILESS_MAIN(TestAppServer)
#include "tst_app_server.moc"
