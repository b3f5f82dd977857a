// Tests of TQxProviderList, TQxProviderCollection and TQxProviderItem on SQLite and
// PostgreSQL: owners, registration, SetParams, DefaultValues, Refresh and the forwarders.
#include "db_test_helper.h"
#include "dialog_helper.h"
#include <Kesh_AdoDB.h>
#include "platform/remote/remote_connection.h"
#include <QtTest>

using namespace Kesh;

namespace {

// Points the log at a temporary file while it lives; Text() reads what was written.
struct TLogCapture
{
    QTemporaryDir Dir;
    QString Saved = LogFilename;
    TLogCapture() { LogFilename = Dir.filePath(QStringLiteral("test.LOG")); }
    ~TLogCapture() { LogFilename = Saved; }
    QString Text() const
    {
        QFile F(Dir.filePath(QStringLiteral("test.LOG")));
        return F.open(QIODevice::ReadOnly) ? QString::fromUtf8(F.readAll()) : QString();
    }
};

// Items (Id, Group_id, Kind) with the rows (1, 5, 'A'), (2, 5, 'B'), (3, 6, 'A').
QString MakeItems(KeshTest::TTestDatabase& Db)
{
    const QString T = Db.NewTable(QStringLiteral("Id INTEGER PRIMARY KEY, Group_id INTEGER, Kind VARCHAR(5)"));
    Db.Exec(QStringLiteral("INSERT INTO %1 VALUES (1, 5, 'A'), (2, 5, 'B'), (3, 6, 'A')").arg(T));
    return T;
}

TQxProviderItem* AddItem(TQxProviderList& List, const QString& Name, const QString& Sql, const QString& Defaults = QString())
{
    TQxProviderItem* Item = List.Providers()->Add();
    Item->SetName(Name);
    Item->SetCommandText(Sql);
    Item->SetDefaultValues(Defaults);
    return Item;
}

} // namespace

// Db with the table T of MakeItems, and a provider List on a remote data module.
#define OPEN_LIST()                                                                                          \
    KESH_OPEN_TEST_DB(Db);                                                                                   \
    const QString T = MakeItems(*Db);                                                                        \
    TRemoteDataModule Module;                                                                                \
    auto* List = new TQxProviderList(&Module)

class TestQxProviderList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void owner_data()
    {
        QTest::addColumn<int>("owner");  // 0 plain object, 1 remote data module, 2 server module
        QTest::addColumn<bool>("message");
        QTest::newRow("plain object") << 0 << true;
        QTest::newRow("TRemoteDataModule") << 1 << false;
        QTest::newRow("TDSServerModule") << 2 << false;
    }
    void owner()
    {
        QFETCH(int, owner);
        QFETCH(bool, message);
        std::unique_ptr<QObject> Owner(owner == 0 ? new QObject : owner == 1 ? static_cast<QObject*>(new TRemoteDataModule)
                                                                                 : new TDSServerModule);
        KeshTest::DialogDriver Driver;
        if (message)
            Driver.Click(QStringLiteral("btnOk"));
        auto* List = new TQxProviderList(Owner.get());
        QVERIFY(List->Providers());  // created all the same
        QCOMPARE(Driver.Seen.size(), message ? 1 : 0);
        if (message)
            QCOMPARE(Driver.Seen[0].Text, QStringLiteral("There is no TRemoteDataModule or TDSServerModule class. All providers are not registered."));
        QVERIFY(Driver.Errors.isEmpty());
    }

    // The connection reaches every query and registers every provider with the module.
    void connectionRegisters_data() { KeshTest::AddDriverRows(); }
    void connectionRegisters()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db);
        TDSServerModule Module;
        auto* List = new TQxProviderList(&Module);
        TQxProviderItem* A = AddItem(*List, QStringLiteral("Items"), QStringLiteral("select * from %1").arg(T));
        TQxProviderItem* B = AddItem(*List, QStringLiteral("Kinds"), QStringLiteral("select Kind from %1").arg(T));
        QVERIFY(!A->Connection());
        QVERIFY(Module.ProviderNames().isEmpty() || Module.GetProvider(QStringLiteral("Items")) == A->Provider());
        List->SetConnection(Db->Connection());
        QCOMPARE(A->Connection(), Db->Connection());
        QCOMPARE(B->Connection(), Db->Connection());
        QCOMPARE(Module.GetProvider(QStringLiteral("kinds")), B->Provider());
        QCOMPARE(A->Provider()->DataSet(), static_cast<TDataSet*>(A->DataSet()));
        QCOMPARE(List->Providers()->GetItemIndex(QStringLiteral("KINDS")), 1);
        QCOMPARE(List->Providers()->GetItemIndex(QStringLiteral("none")), -1);
        // Clients reach the entries through the module.
        TLocalConnection Local;
        Local.SetModule(&Module);
        TClientDataSet Cds;
        Cds.SetRemoteServer(&Local);
        Cds.SetProviderName(QStringLiteral("Items"));
        Cds.Open();
        QCOMPARE(Cds.RecordCount(), 3);
    }

    void setParams_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("sql");      // %1: the table
        QTest::addColumn<QString>("params");
        QTest::addColumn<QString>("expected"); // the command text afterwards, %1 upper-cased
        QTest::addColumn<int>("rows");  // a placeholder left over is a parameter bound to null
        for (const char* Driver : {"sqlite", "postgres"}) {
            const QString D = QString::fromLatin1(Driver);
            QTest::addRow("%s: two values", Driver) << D << "select * from %1 where Group_id = :P1 and Kind = :P2" << "5;'A'"
                                                    << "SELECT * FROM %1 WHERE GROUP_ID = 5 AND KIND = 'A'" << 1;
            QTest::addRow("%s: empty params reopen the upper-cased text", Driver) << D << "select * from %1 where kind = 'a'" << ""
                                                                                 << "SELECT * FROM %1 WHERE KIND = 'A'" << 2;
            QTest::addRow("%s: only the first occurrence", Driver) << D << "select * from %1 where Group_id = :P1 or Id = :P1" << "6"
                                                                   << "SELECT * FROM %1 WHERE GROUP_ID = 6 OR ID = :P1" << 1;
            QTest::addRow("%s: :P1 also hits :P10", Driver) << D << "select * from %1 where Id = :P10 or Group_id = :P1" << "1"
                                                            << "SELECT * FROM %1 WHERE ID = 10 OR GROUP_ID = :P1" << 0;
            QTest::addRow("%s: values inserted as written", Driver) << D << "select * from %1 where Kind in (:P1)" << "'A', 'B'"
                                                                    << "SELECT * FROM %1 WHERE KIND IN ('A', 'B')" << 3;
        }
    }
    void setParams()
    {
        QFETCH(QString, sql);
        QFETCH(QString, params);
        QFETCH(QString, expected);
        QFETCH(int, rows);
        OPEN_LIST();
        TQxProviderItem* Item = AddItem(*List, QStringLiteral("Items"), sql.arg(T));
        List->SetConnection(Db->Connection());
        TLogCapture Log;
        List->SetParams(QStringLiteral("ITEMS"), params);
        QCOMPARE(Item->CommandText(), expected.arg(T.toUpper()));
        QCOMPARE(Item->OriginalCommandText(), sql.arg(T));
        QVERIFY(Item->DataSet()->Active());
        QCOMPARE(Item->DataSet()->RecordCount(), rows);
        QVERIFY(Log.Text().isEmpty());
    }

    void setParamsErrors_data() { KeshTest::AddDriverRows(); }
    void setParamsErrors()
    {
        OPEN_LIST();
        TQxProviderItem* Item = AddItem(*List, QStringLiteral("Items"), QStringLiteral("select * from %1 where Id = :P1").arg(T));
        List->SetConnection(Db->Connection());
        TLogCapture Log;
        Item->SetParams(QStringLiteral("1;2"));
        QVERIFY(Item->DataSet()->Active());
        Item->SetParams(QStringLiteral("nosuchcolumn"));  // bad SQL: logged, not raised
        QVERIFY(!Item->DataSet()->Active());
        QVERIFY(Log.Text().startsWith(QStringLiteral("\r\nSetParams ('Items', 'nosuchcolumn')\r\n")));
        QVERIFY(Log.Text().size() > QStringLiteral("\r\nSetParams ('Items', 'nosuchcolumn')\r\n\n").size());  // the server's message
        // An unknown provider is logged and changes nothing.
        const QString Before = Log.Text();
        List->SetParams(QStringLiteral("Nope"), QStringLiteral("1"));
        QCOMPARE(Log.Text().mid(Before.size()), QStringLiteral("\r\nSetParams: Provider name (Nope) not found.\n"));
        QCOMPARE(Item->CommandText(), QStringLiteral("SELECT * FROM %1 WHERE ID = nosuchcolumn").arg(T.toUpper()));
    }

    void defaultValues_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("defaults");
        QTest::addColumn<int>("rows");  // placeholders left over bind null
        QTest::addColumn<bool>("logged");
        for (const char* Driver : {"sqlite", "postgres"}) {
            const QString D = QString::fromLatin1(Driver);
            QTest::addRow("%s: both values", Driver) << D << "5;'B'" << 1 << false;
            QTest::addRow("%s: one value short", Driver) << D << "5" << 0 << true;
            QTest::addRow("%s: none", Driver) << D << "" << 0 << true;
        }
    }
    void defaultValues()
    {
        QFETCH(QString, defaults);
        QFETCH(int, rows);
        QFETCH(bool, logged);
        OPEN_LIST();
        TQxProviderItem* Item = AddItem(*List, QStringLiteral("Items"),
                                        QStringLiteral("select * from %1 where Group_id = :P1 and Kind = :P2").arg(T), defaults);
        List->SetConnection(Db->Connection());
        TLogCapture Log;
        Item->DataSet()->Open();
        QCOMPARE(Item->DataSet()->RecordCount(), rows);
        QCOMPARE(Log.Text().contains(QStringLiteral("DataSetBeforeOpen: Incorrect parameters values.\r\nPlease check [DefaultValues] property.")), logged);
        // A text without placeholders opens as designed, defaults untouched.
        Item->SetCommandText(QStringLiteral("select * from %1").arg(T));
        Item->DataSet()->Open();
        QCOMPARE(Item->DataSet()->CommandText(), QStringLiteral("select * from %1").arg(T));
    }

    void refresh_data() { KeshTest::AddDriverRows(); }
    void refresh()
    {
        OPEN_LIST();
        TQxProviderItem* Open = AddItem(*List, QStringLiteral("Items"), QStringLiteral("select * from %1").arg(T));
        TQxProviderItem* Closed = AddItem(*List, QStringLiteral("items"), QStringLiteral("select * from %1").arg(T));
        List->SetConnection(Db->Connection());
        Open->DataSet()->Open();
        QCOMPARE(Open->DataSet()->RecordCount(), 3);
        Db->Exec(QStringLiteral("INSERT INTO %1 VALUES (4, 7, 'C')").arg(T));
        List->Refresh(QStringLiteral("ITEMS"));
        QCOMPARE(Open->DataSet()->RecordCount(), 4);
        QVERIFY(!Closed->DataSet()->Active());
    }

    // One set of handlers on the list hears every provider's events; Sender tells which.
    void forwarders_data() { KeshTest::AddDriverRows(); }
    void forwarders()
    {
        OPEN_LIST();
        TQxProviderItem* A = AddItem(*List, QStringLiteral("A"), QStringLiteral("select * from %1").arg(T));
        TQxProviderItem* B = AddItem(*List, QStringLiteral("B"), QStringLiteral("select * from %1").arg(T));
        List->SetConnection(Db->Connection());
        QStringList Heard;
#define NOTE(Event) List->Event = [&Heard](QObject* S, QJsonValue&) { Heard << S->objectName() + QStringLiteral("." #Event); }
        NOTE(BeforeGetRecords); NOTE(AfterGetRecords); NOTE(BeforeApplyUpdates); NOTE(AfterApplyUpdates);
        NOTE(BeforeExecute); NOTE(AfterExecute); NOTE(BeforeGetParams); NOTE(AfterGetParams);
        NOTE(BeforeRowRequest); NOTE(AfterRowRequest);
#undef NOTE
        List->OnGetData = [&](QObject* S, TDataPacket&) { Heard << S->objectName() + QStringLiteral(".OnGetData"); };
        List->OnUpdateData = [&](QObject* S, QList<TDeltaRecord>&) { Heard << S->objectName() + QStringLiteral(".OnUpdateData"); };
        List->BeforeUpdateRecord = [&](QObject* S, TDataSet*, TDeltaRecord&, TUpdateKind, bool&) { Heard << S->objectName() + QStringLiteral(".BeforeUpdateRecord"); };
        List->AfterUpdateRecord = [&](QObject* S, TDataSet*, TDeltaRecord&, TUpdateKind) { Heard << S->objectName() + QStringLiteral(".AfterUpdateRecord"); };
        List->OnUpdateError = [&](QObject* S, TDeltaRecord&, EUpdateError&, TUpdateKind, TResolverResponse&) { Heard << S->objectName() + QStringLiteral(".OnUpdateError"); };
        List->OnDataRequest = [&](QObject* S, const QJsonValue& In) { return QJsonValue(S->objectName() + In.toString()); };

        QJsonValue Owner;
        const TDataPacket P = A->Provider()->GetRecords(-1, QString(), {}, Owner);
        TDeltaRecord Good{ukModify, P.Rows[0], P.Rows[0], &P.Fields};
        Good.SetNewValue(QStringLiteral("Kind"), QStringLiteral("Z"));
        TDeltaRecord Stale = Good;  // the same change again: its originals no longer match
        QList<TDeltaRecord> Delta{Good, Stale};
        B->Provider()->ApplyUpdates(P.Fields, Delta, -1, Owner);
        A->Provider()->GetParams(Owner);
        TRecordValues Current;
        B->Provider()->RowRequest(P.Fields, P.Rows[1], Current, Owner);
        A->Provider()->Execute({}, Owner);
        QCOMPARE(B->Provider()->DataRequest(QJsonValue(QStringLiteral("?"))).toString(), QStringLiteral("B?"));
        QCOMPARE(Heard, (QStringList{"A.BeforeGetRecords", "A.OnGetData", "A.AfterGetRecords",
                                     "B.BeforeApplyUpdates", "B.OnUpdateData", "B.BeforeUpdateRecord", "B.AfterUpdateRecord",
                                     "B.BeforeUpdateRecord", "B.OnUpdateError", "B.AfterApplyUpdates",
                                     "A.BeforeGetParams", "A.AfterGetParams", "B.BeforeRowRequest", "B.AfterRowRequest",
                                     "A.BeforeExecute", "A.AfterExecute"}));
        // Entries free their provider and query with themselves.
        QPointer<TDataSetProvider> Provider = A->Provider();
        QPointer<TADODataSet> Query = A->DataSet();
        List->Providers()->Delete(0);
        QVERIFY(!Provider && !Query);
        QCOMPARE(Module.GetProvider(QStringLiteral("A")), nullptr);
    }
};

QTEST_MAIN(TestQxProviderList)
#include "tst_qx_provider_list.moc"
