// Tests of TADOConnection and the ADO datasets on SQLite and PostgreSQL.
#include "db_test_helper.h"
#include "platform/data.h"
#include "platform/exceptions.h"
#include <QSqlQuery>
#include <QtTest>

using namespace Kesh;

namespace {

const QString RowNotLocated =
    QStringLiteral("Row cannot be located for updating. Some values may have been changed since it was last read.");

// A table Id/Name/Qty/Note/Status with the rows (i, 'n<i>', 10 * i, NULL, 'new') for i = 1..Count.
QString MakeItems(KeshTest::TTestDatabase& Db, int Count)
{
    const QString T = Db.NewTable(QStringLiteral("Id %AUTOKEY%, Name VARCHAR(40), Qty INTEGER, Note VARCHAR(40), "
                                                 "Status VARCHAR(10) DEFAULT 'new'"));
    Db.Connection()->BeginTrans();
    for (int i = 1; i <= Count; ++i)
        Db.Exec(QStringLiteral("INSERT INTO %1 (Name, Qty) VALUES ('n%2', %3)").arg(T).arg(i).arg(i * 10));
    Db.Connection()->CommitTrans();
    return T;
}

std::unique_ptr<TADOQuery> NewQuery(TADOConnection* C, const QString& Sql, bool ParamCheck = true)
{
    auto Q = std::make_unique<TADOQuery>();
    Q->SetParamCheck(ParamCheck);
    Q->SetConnection(C);
    Q->SetSQL({Sql});
    return Q;
}

std::unique_ptr<TADOQuery> OpenQuery(TADOConnection* C, const QString& Sql)
{
    auto Q = NewQuery(C, Sql);
    Q->Open();
    return Q;
}

TField* F(TDataSet* Ds, const char* Name)
{
    return Ds->FieldByName(QLatin1String(Name));
}

// The first value of a query, with %1 standing for the table T.
QVariant Scalar(KeshTest::TTestDatabase& Db, const char* Sql, const QString& T)
{
    return Db.Scalar(QString::fromLatin1(Sql).arg(T));
}

QString Message(const std::function<void()>& Run)
{
    try {
        Run();
    } catch (const Exception& E) {
        return E.Message;
    }
    return QString();
}

} // namespace

class TestAdoDataSet : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void connectionString()
    {
        QTemporaryDir Dir;
        TADOConnection C;
        QStringList Events;
        C.BeforeConnect = [&](QObject*) { Events << QStringLiteral("BeforeConnect"); };
        C.AfterConnect = [&](QObject*) { Events << QStringLiteral("AfterConnect"); };
        C.BeforeDisconnect = [&](QObject*) { Events << QStringLiteral("BeforeDisconnect"); };
        C.AfterDisconnect = [&](QObject*) { Events << QStringLiteral("AfterDisconnect"); };
        const QString File = Dir.filePath(QStringLiteral("a;b 'c'.db"));
        C.SetConnectionString(QStringLiteral(" driver = QSQLITE ; Database=\"%1\";QSQLITE_BUSY_TIMEOUT='250'").arg(File));
        C.Open();
        QVERIFY(C.Connected());
        QCOMPARE(C.Database().databaseName(), File);
        QCOMPARE(C.Database().connectOptions(), QStringLiteral("QSQLITE_BUSY_TIMEOUT=250"));
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, C.SetConnectionString(QString()));
        C.Close();
        QCOMPARE(Events, QStringList({"BeforeConnect", "AfterConnect", "BeforeDisconnect", "AfterDisconnect"}));

        // Credentials: Open(UserID, Password) for one connect, or asked through OnLogin.
        C.Open(QStringLiteral("clerk"), QStringLiteral("secret"));
        QCOMPARE(C.Database().userName(), QStringLiteral("clerk"));
        QCOMPARE(C.Database().password(), QStringLiteral("secret"));
        C.Close();
        int Asked = 0;
        C.SetLoginPrompt(true);
        C.OnLogin = [&](TADOConnection*, QString& User, QString& Password) {
            ++Asked;
            User = QStringLiteral("asked");
            Password.clear();
        };
        C.Open();
        QCOMPARE(Asked, 1);
        QCOMPARE(C.Database().userName(), QStringLiteral("asked"));

        TADOConnection Other;
        QVERIFY(Other.ConnectionName() != C.ConnectionName());
        Other.SetConnectionString(QStringLiteral("Driver=QNOSUCHDRIVER;Database=x"));
        QCOMPARE(Message([&] { Other.Open(); }), QStringLiteral("Driver not loaded: QNOSUCHDRIVER"));
        Other.SetConnectionString(QStringLiteral("Database=x"));
        QCOMPARE(Message([&] { Other.Open(); }), QStringLiteral("The connection string names no Driver"));
        Other.SetConnectionString(QStringLiteral("Driver=QSQLITE;garbage"));
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, Other.Open());
        QVERIFY(!Other.Connected());
    }

    void openReadsRowsAndTypes_data() { KeshTest::AddDriverRows(); }
    void openReadsRowsAndTypes()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = Db->NewTable(QStringLiteral("Id %AUTOKEY%, Name VARCHAR(30), Price REAL, Photo %1")
                                           .arg(Db->IsPostgres() ? "BYTEA" : "BLOB"));
        Db->Exec(QStringLiteral("INSERT INTO %1 (Name, Price) VALUES ('tea', 2.5)").arg(T));
        TADOTable Table;
        Table.SetConnection(Db->Connection());
        Table.SetTableName(T);
        Table.Open();
        QCOMPARE(Table.FieldCount(), 4);
        QVERIFY(qobject_cast<TIntegerField*>(Table.Fields()[0]) || qobject_cast<TLargeintField*>(Table.Fields()[0]));
        QVERIFY(qobject_cast<TWideStringField*>(F(&Table, "name")));
        QVERIFY(qobject_cast<TFloatField*>(F(&Table, "price")));
        QVERIFY(qobject_cast<TBlobField*>(F(&Table, "photo")));
        QCOMPARE(F(&Table, "name")->AsString(), QStringLiteral("tea"));
        QCOMPARE(F(&Table, "price")->AsFloat(), 2.5);
        QCOMPARE(F(&Table, "id")->AsInteger(), 1);
        QVERIFY(Table.CanModify());
        auto Bad = NewQuery(Db->Connection(), QStringLiteral("SELECT * FROM no_such_table_here"));
        QVERIFY(!Message([&] { Bad->Open(); }).isEmpty());  // the server's own message
        QVERIFY(!Bad->Active());
    }

    // Rows are located by the values read, NULLs included; a post that changed nothing writes nothing.
    void postUpdatesRow_data() { KeshTest::AddDriverRows(); }
    void postUpdatesRow()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 3);
        auto Q = OpenQuery(Db->Connection(), QStringLiteral("SELECT * FROM %1 ORDER BY Id").arg(T));
        Q->Next();
        Q->Edit();
        F(Q.get(), "Name")->SetAsString(QStringLiteral("it's \"quoted\""));
        F(Q.get(), "Qty")->SetAsInteger(99);
        Q->Post();
        QCOMPARE(Scalar(*Db, "SELECT Name FROM %1 WHERE Id = 2", T).toString(), QStringLiteral("it's \"quoted\""));
        QCOMPARE(Scalar(*Db, "SELECT COUNT(*) FROM %1 WHERE Qty = 99", T).toInt(), 1);
        Q->Edit();
        Q->Post();
        TField* Note = F(Q.get(), "Note");
        QVERIFY(Note->IsNull());
        for (const QString& Value : {QStringLiteral("was null"), QString(), QStringLiteral("again")}) {
            Q->Edit();
            Value.isNull() ? Note->Clear() : Note->SetAsString(Value);
            Q->Post();
            const QVariant Stored = Scalar(*Db, "SELECT Note FROM %1 WHERE Id = 2", T);
            QCOMPARE(Stored.isNull(), Value.isNull());
            QCOMPARE(Stored.toString(), Value);
        }
        QVERIFY(Scalar(*Db, "SELECT Note FROM %1 WHERE Id = 1", T).isNull());
        Q->Delete();
        QCOMPARE(Scalar(*Db, "SELECT COUNT(*) FROM %1", T).toInt(), 2);
        // A new row reads back its serial key and the server's defaults, and is found again by its key.
        Q->Append();
        F(Q.get(), "Name")->SetAsString(QStringLiteral("fourth"));
        Q->Post();
        QCOMPARE(F(Q.get(), "Id")->AsInteger(), 4);
        QCOMPARE(F(Q.get(), "Status")->AsString(), QStringLiteral("new"));
        Q->Edit();
        F(Q.get(), "Qty")->SetAsInteger(5);
        Q->Post();
        QCOMPARE(Scalar(*Db, "SELECT Qty FROM %1 WHERE Id = 4", T).toInt(), 5);
        QCOMPARE(Q->RecordCount(), 3);
    }

    void concurrentChangesAreRefused_data() { KeshTest::AddDriverRows(); }
    void concurrentChangesAreRefused()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 3);
        const QString Sql = QStringLiteral("SELECT * FROM %1 ORDER BY Id").arg(T);
        auto First = OpenQuery(Db->Connection(), Sql);
        auto Second = OpenQuery(Db->OpenSecondConnection(), Sql);
        First->RecordCount();  // both have read every row: nothing holds the table
        Second->RecordCount();
        First->Edit();
        F(First.get(), "Qty")->SetAsInteger(11);
        Second->Edit();
        F(Second.get(), "Qty")->SetAsInteger(22);
        First->Post();
        QCOMPARE(Message([&] { Second->Post(); }), RowNotLocated);
        QCOMPARE(Second->State(), dsEdit);  // the second user's edit is kept
        QCOMPARE(F(Second.get(), "Qty")->AsInteger(), 22);
        QCOMPARE(Scalar(*Db, "SELECT Qty FROM %1 WHERE Id = 1", T).toInt(), 11);
        // A change to another column of the same row does not conflict.
        Second->Cancel();
        Second->Edit();
        F(Second.get(), "Note")->SetAsString(QStringLiteral("other column"));
        Second->Post();
        QCOMPARE(Scalar(*Db, "SELECT Qty FROM %1 WHERE Id = 1", T).toInt(), 11);
        QCOMPARE(Scalar(*Db, "SELECT Note FROM %1 WHERE Id = 1", T).toString(), QStringLiteral("other column"));
        // A row another user deleted cannot be deleted again; it stays in the dataset.
        Second->Next();
        QVERIFY(Db->Exec(QStringLiteral("DELETE FROM %1 WHERE Id = 2").arg(T)));
        QCOMPARE(Message([&] { Second->Delete(); }), RowNotLocated);
        QCOMPARE(Second->RecordCount(), 3);
        QCOMPARE(F(Second.get(), "Id")->AsInteger(), 2);
    }

    // Rows are read as needed: a first small block, then whole blocks.
    void lazyFetching_data() { KeshTest::AddDriverRows(); }
    void lazyFetching()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 600);
        auto Q = OpenQuery(Db->Connection(), QStringLiteral("SELECT * FROM %1 ORDER BY Id").arg(T));
        QCOMPARE(Q->FetchedRowCount(), 64);
        Q->MoveBy(100);
        QCOMPARE(Q->FetchedRowCount(), 64 + Q->FetchBlockSize());
        // A row posted while the SELECT is unfinished must not come back from it a second time.
        Q->Append();
        F(Q.get(), "Name")->SetAsString(QStringLiteral("late"));
        Q->Post();
        QCOMPARE(Q->RecordCount(), 601);
        auto Other = OpenQuery(Db->Connection(), QStringLiteral("SELECT * FROM %1").arg(T));
        QVERIFY(!Other->FetchedAll());
        Db->Connection()->Execute(QStringLiteral("UPDATE %1 SET Qty = 0 WHERE Id = 1").arg(T));
        // SQLite: the write read the rest of the pending SELECT first. PostgreSQL's result is
        // already buffered by the client and needs no such care.
        QCOMPARE(Other->FetchedAll(), !Db->IsPostgres());
        QCOMPARE(Other->RecordCount(), 601);
        if (!Db->IsPostgres()) {
            // Once read, the SELECT holds no lock: another connection can write at once.
            TADOConnection Writer;
            Writer.SetConnectionString(Db->ConnectionString() + QStringLiteral(";QSQLITE_BUSY_TIMEOUT=50"));
            auto Third = OpenQuery(Db->Connection(), QStringLiteral("SELECT * FROM %1").arg(T));
            Third->RecordCount();
            Writer.Open();
            QCOMPARE(Writer.Execute(QStringLiteral("UPDATE %1 SET Qty = 1").arg(T)), 601);
        }
    }

    // A dataset's own writes while its SQLite SELECT is still being read: where the table
    // allows it the rest still comes lazily, and every row of the table is read exactly
    // once, as it stands after the writes; elsewhere the rest is read before the write.
    // Writes: e edits a name, k moves a row's key past the rows not read, q moves a row
    // along the index the SELECT follows, d deletes a row, l deletes the last row read,
    // i inserts a row whose key the table gives, I one with its key.
    void writesWhileReading_data()
    {
        QTest::addColumn<QString>("columns");
        QTest::addColumn<QString>("extra");
        QTest::addColumn<QString>("select");
        QTest::addColumn<bool>("unique");
        QTest::addColumn<QString>("writes");
        QTest::addColumn<bool>("readsOn");
        const QString Rowid = QStringLiteral("Id INTEGER PRIMARY KEY, Name TEXT, Qty INTEGER");
        const QString All = QStringLiteral("SELECT * FROM %1");
        QTest::newRow("edit") << Rowid << "" << All << false << "e" << true;
        QTest::newRow("key moved ahead") << Rowid << "" << All << false << "k" << true;
        QTest::newRow("delete") << Rowid << "" << All << false << "dl" << true;
        QTest::newRow("insert, key given back") << Rowid << "" << All << false << "i" << true;
        QTest::newRow("insert with key") << Rowid << "" << All << false << "I" << true;
        QTest::newRow("all at once") << Rowid << "" << QStringLiteral("SELECT Id, Name, Qty FROM %1 WHERE Qty > 0")
                                     << false << "ekqdliI" << true;
        QTest::newRow("row moved along the index") << Rowid << "CREATE INDEX %1_q ON %1 (Qty)"
                                                   << QStringLiteral("SELECT * FROM %1 ORDER BY Qty") << false << "qkid"
                                                   << true;
        QTest::newRow("text key") << QStringLiteral("Id TEXT PRIMARY KEY, Name TEXT, Qty INTEGER") << "" << All << false
                                  << "ekdI" << true;
        QTest::newRow("without rowid") << QStringLiteral("Id INTEGER, Name TEXT, Qty INTEGER, PRIMARY KEY (Id)")
                                       << "WITHOUT ROWID" << All << false << "ekqdlI" << true;
        // The key of a text-keyed insert is not known: the rest is read first.
        QTest::newRow("text key, insert without key") << QStringLiteral("Id TEXT PRIMARY KEY, Name TEXT, Qty INTEGER")
                                                      << "" << All << false << "i" << false;
        QTest::newRow("no primary key") << QStringLiteral("Id INTEGER, Name TEXT, Qty INTEGER") << "" << All << false
                                        << "e" << false;
        QTest::newRow("trigger") << Rowid << "CREATE TRIGGER %1_t AFTER UPDATE ON %1 BEGIN SELECT NEW.Id; END" << All
                                 << false << "e" << false;
        QTest::newRow("key referring to its table")
            << QStringLiteral("Id INTEGER PRIMARY KEY, Name TEXT, Qty INTEGER, Parent INTEGER REFERENCES %1 (Id)") << ""
            << All << false << "e" << false;
        QTest::newRow("join") << Rowid << "" << QStringLiteral("SELECT a.* FROM %1 a JOIN %1 b ON b.Id = a.Id") << true
                              << "e" << false;
    }
    void writesWhileReading()
    {
        QFETCH(QString, columns);
        QFETCH(QString, extra);
        QFETCH(QString, select);
        QFETCH(bool, unique);
        QFETCH(QString, writes);
        QFETCH(bool, readsOn);
        QString Reason;
        auto Db = KeshTest::TTestDatabase::Open(QStringLiteral("sqlite"), Reason);
        QVERIFY2(Db, qPrintable(Reason));
        QString T = Db->NewTable(QStringLiteral("x INTEGER"));
        QVERIFY(Db->Exec(QStringLiteral("DROP TABLE %1").arg(T)));
        const bool WithoutRowid = extra == QLatin1String("WITHOUT ROWID");
        QVERIFY(Db->Exec(QStringLiteral("CREATE TABLE %1 (%2) %3").arg(T, QString(columns).replace(QLatin1String("%1"), T), WithoutRowid ? extra : QString())));
        if (!extra.isEmpty() && !WithoutRowid)
            QVERIFY(Db->Exec(extra.arg(T)));
        const int Count = 600;
        Db->Connection()->BeginTrans();
        for (int i = 1; i <= Count; ++i)
            Db->Exec(QStringLiteral("INSERT INTO %1 (Id, Name, Qty) VALUES (%2, 'n%2', %3)").arg(T).arg(i).arg(i * 10));
        Db->Connection()->CommitTrans();

        auto Q = NewQuery(Db->Connection(), select.arg(T));
        if (unique)
            Q->SetUniqueTable(T);
        Q->Open();
        QVERIFY(!Q->FetchedAll());
        int Expected = Count;
        auto Edit = [&](int RecNo, const char* Field, const QVariant& Value) {
            Q->SetRecNo(RecNo);
            Q->Edit();
            F(Q.get(), Field)->SetValue(Value);
            Q->Post();
        };
        for (const QChar W : writes) {
            switch (W.toLatin1()) {
            case 'e': Edit(10, "Name", QStringLiteral("edited")); break;
            case 'k': Edit(11, "Id", 5000); break;
            case 'q': Edit(12, "Qty", 99999); break;
            case 'd': Q->SetRecNo(13); Q->Delete(); --Expected; break;
            case 'l': Q->SetRecNo(Q->FetchedRowCount()); Q->Delete(); --Expected; break;
            case 'i': case 'I':
                Q->SetRecNo(14);
                Q->Insert();
                if (W == QLatin1Char('I'))
                    F(Q.get(), "Id")->SetAsInteger(7000);
                F(Q.get(), "Name")->SetAsString(QStringLiteral("inserted"));
                F(Q.get(), "Qty")->SetAsInteger(1);
                Q->Post();
                ++Expected;
                break;
            }
        }
        QCOMPARE(!Q->FetchedAll(), readsOn);
        // The writes are committed while the SELECT goes on: another connection sees them.
        QSqlQuery Other(Db->OpenSecondConnection()->Database());
        QVERIFY(Other.exec(QStringLiteral("SELECT Id FROM %1").arg(T)));
        QStringList TableKeys;
        while (Other.next())
            TableKeys << Other.value(0).toString();
        QCOMPARE(TableKeys.size(), Expected);

        QStringList Keys;
        QStringList Names;
        for (Q->First(); !Q->Eof(); Q->Next()) {
            Keys << F(Q.get(), "Id")->AsString();
            Names << F(Q.get(), "Name")->AsString();
        }
        QCOMPARE(Q->RecordCount(), Expected);
        QCOMPARE(QSet<QString>(Keys.begin(), Keys.end()).size(), Expected);  // no row twice
        if (readsOn) {
            Keys.sort();
            TableKeys.sort();
            QCOMPARE(Keys, TableKeys);
        }
        QCOMPARE(Names.count(QStringLiteral("edited")), int(writes.count(QLatin1Char('e'))));
        QCOMPARE(Names.count(QStringLiteral("inserted")), int(writes.count(QLatin1Char('i')) + writes.count(QLatin1Char('I'))));
    }

    void cloneHasItsOwnCursor_data() { KeshTest::AddDriverRows(); }
    void cloneHasItsOwnCursor()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 5);
        auto Q = OpenQuery(Db->Connection(), QStringLiteral("SELECT * FROM %1 ORDER BY Id").arg(T));
        Q->Next();
        TADODataSet Clone;
        Clone.Clone(Q.get());
        QCOMPARE(Clone.RecNo(), 1);
        Clone.Last();
        QCOMPARE(Q->RecNo(), 2);  // the source did not move
        Clone.Edit();
        F(&Clone, "Name")->SetAsString(QStringLiteral("via clone"));
        Clone.Post();
        Q->Last();
        QCOMPARE(F(Q.get(), "Name")->AsString(), QStringLiteral("via clone"));  // shared rows
        QCOMPARE(Scalar(*Db, "SELECT Name FROM %1 WHERE Id = 5", T).toString(), QStringLiteral("via clone"));
        Q->First();
        Q->Delete();  // the clone finds its row again after the source deleted another
        QCOMPARE(Clone.RecNo(), 4);
        QCOMPARE(F(&Clone, "Id")->AsInteger(), 5);
        QCOMPARE(Clone.RecordCount(), 4);
        double Sum = 0;
        TADODataSet ReadOnly;
        ReadOnly.Clone(Q.get(), ltReadOnly);
        for (ReadOnly.First(); !ReadOnly.Eof(); ReadOnly.Next())
            Sum += F(&ReadOnly, "Qty")->AsFloat();
        QCOMPARE(Sum, 140.0);
        // So is a dataset opened with a read-only lock.
        TADODataSet Locked;
        Locked.SetConnection(Db->Connection());
        Locked.SetCommandText(QStringLiteral("SELECT * FROM %1").arg(T));
        Locked.SetLockType(ltReadOnly);
        Locked.Open();
        QVERIFY(!Locked.Fields()[0]->CanModify());
        for (TDataSet* Ds : {static_cast<TDataSet*>(&ReadOnly), static_cast<TDataSet*>(&Locked)}) {
            QCOMPARE(Message([&] { Ds->Edit(); }), QStringLiteral("Cannot modify a read-only dataset"));
            QCOMPARE(Message([&] { Ds->Append(); }), QStringLiteral("Cannot modify a read-only dataset"));
            QCOMPARE(Message([&] { Ds->Delete(); }), QStringLiteral("Cannot modify a read-only dataset"));
            QCOMPARE(Ds->State(), dsBrowse);
        }
    }

    void parameters_data() { KeshTest::AddDriverRows(); }
    void parameters()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 5);
        auto Q = NewQuery(Db->Connection(), QString());  // parameters are found on any line
        Q->SetSQL({QStringLiteral("SELECT * FROM %1").arg(T), QStringLiteral("WHERE Qty > :MinQty AND Name <> ':notparam' AND Qty < :MaxQty")});
        QCOMPARE(Q->Parameters()->Count(), 2);
        QCOMPARE(Q->Parameters()->Items(0)->Name, QStringLiteral("MinQty"));
        Q->Parameters()->ParamByName(QStringLiteral("minqty"))->Value = 15;
        Q->Parameters()->ParamByName(QStringLiteral("MaxQty"))->Value = 45;
        Q->Open();
        QCOMPARE(Q->RecordCount(), 3);
        QCOMPARE(Message([&] { Q->Parameters()->ParamByName(QStringLiteral("x")); }), QStringLiteral("Parameter 'x' not found"));
        // ParamCheck off: colons are text.
        auto Plain = NewQuery(Db->Connection(), QStringLiteral("SELECT Name, '10:30' AS T FROM %1 WHERE Name = 'n1'").arg(T), false);
        QCOMPARE(Plain->Parameters()->Count(), 0);
        Plain->Open();
        QCOMPARE(F(Plain.get(), "T")->AsString(), QStringLiteral("10:30"));
        if (Db->IsPostgres()) {  // a cast is no parameter
            auto Cast = NewQuery(Db->Connection(), QStringLiteral("SELECT Qty::text AS Q FROM %1 WHERE Id = :Id").arg(T));
            QCOMPARE(Cast->Parameters()->Count(), 1);
            Cast->Parameters()->Items(0)->Value = 2;
            Cast->Open();
            QCOMPARE(Cast->Fields()[0]->AsString(), QStringLiteral("20"));
        }
        auto Exec = NewQuery(Db->Connection(), QStringLiteral("UPDATE %1 SET Note = :Note WHERE Qty >= :Qty").arg(T));
        Exec->Parameters()->ParamByName(QStringLiteral("Note"))->Value = QStringLiteral("big");
        Exec->Parameters()->ParamByName(QStringLiteral("Qty"))->Value = 40;
        QCOMPARE(Exec->ExecSQL(), 2);
        QCOMPARE(Scalar(*Db, "SELECT COUNT(*) FROM %1 WHERE Note = 'big'", T).toInt(), 2);
    }

    void refreshKeepsPosition_data() { KeshTest::AddDriverRows(); }
    void refreshKeepsPosition()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 4);
        auto Q = OpenQuery(Db->Connection(), QStringLiteral("SELECT * FROM %1 ORDER BY Name DESC").arg(T));
        Q->MoveBy(2);  // n2
        Db->Exec(QStringLiteral("INSERT INTO %1 (Name, Qty) VALUES ('n3b', 0)").arg(T));
        Db->Exec(QStringLiteral("UPDATE %1 SET Qty = 7 WHERE Name = 'n2'").arg(T));
        int Refreshes = 0;
        Q->AfterRefresh = [&](TDataSet*) { ++Refreshes; };
        Q->Refresh();
        QCOMPARE(Refreshes, 1);
        QCOMPARE(F(Q.get(), "Name")->AsString(), QStringLiteral("n2"));  // same row by its key
        QCOMPARE(Q->RecNo(), 4);
        QCOMPARE(F(Q.get(), "Qty")->AsInteger(), 7);
        QCOMPARE(Q->RecordCount(), 5);
    }

    void baseTableOfQueries_data() { KeshTest::AddDriverRows(); }
    void baseTableOfQueries()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 2);
        const QString U = Db->NewTable(QStringLiteral("Code INTEGER PRIMARY KEY, Title VARCHAR(20)"));
        Db->Exec(QStringLiteral("INSERT INTO %1 VALUES (10, 'ten'), (20, 'twenty')").arg(U));
        // An alias and a computed column: the base table is still found.
        auto Q = OpenQuery(Db->Connection(), QStringLiteral("SELECT i.Id, i.Name, i.Qty * 2 AS Twice FROM %1 i WHERE i.Id = 1").arg(T.toUpper()));
        Q->Edit();
        F(Q.get(), "Name")->SetAsString(QStringLiteral("aliased"));
        Q->Post();
        QCOMPARE(Scalar(*Db, "SELECT Name FROM %1 WHERE Id = 1", T).toString(), QStringLiteral("aliased"));
        // A join has no single table until UniqueTable names it.
        auto J = OpenQuery(Db->Connection(), QStringLiteral("SELECT Id, Name, Title FROM %1 JOIN %2 ON Qty = Code ORDER BY Id").arg(T, U));
        J->Edit();
        F(J.get(), "Name")->SetAsString(QStringLiteral("joined"));
        QCOMPARE(Message([&] { J->Post(); }), QStringLiteral("Insufficient base table information for updating or refreshing."));
        QCOMPARE(J->State(), dsEdit);
        J->SetUniqueTable(T);
        J->Post();
        QCOMPARE(Scalar(*Db, "SELECT Name FROM %1 WHERE Id = 1", T).toString(), QStringLiteral("joined"));
    }

    void transactionsAndCatalog_data() { KeshTest::AddDriverRows(); }
    void transactionsAndCatalog()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 1);
        TADOConnection* C = Db->Connection();
        auto Q = OpenQuery(C, QStringLiteral("SELECT * FROM %1").arg(T));
        QCOMPARE(C->BeginTrans(), 1);
        QVERIFY(C->InTransaction());
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, C->BeginTrans());
        Q->Append();
        F(Q.get(), "Name")->SetAsString(QStringLiteral("undone"));
        Q->Post();
        C->RollbackTrans();
        QVERIFY(!C->InTransaction());
        QCOMPARE(Scalar(*Db, "SELECT COUNT(*) FROM %1", T).toInt(), 1);
        C->BeginTrans();
        QCOMPARE(C->Execute(QStringLiteral("DELETE FROM %1").arg(T)), 1);
        C->CommitTrans();
        QCOMPARE(Scalar(*Db, "SELECT COUNT(*) FROM %1", T).toInt(), 0);

        QStringList Tables, Fields;
        C->GetTableNames(Tables);
        QVERIFY(Tables.contains(T, Qt::CaseInsensitive));
        C->GetFieldNames(T, Fields);
        QCOMPARE(Fields.join(',').toLower(), QStringLiteral("id,name,qty,note,status"));
        QVERIFY(!Message([&] { C->Execute(QStringLiteral("SELECT nonsense FROM")); }).isEmpty());
    }

    void disconnectClosesDataSets_data() { KeshTest::AddDriverRows(); }
    void disconnectClosesDataSets()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeItems(*Db, 300);
        auto C = std::make_unique<TADOConnection>();
        C->SetConnectionString(Db->ConnectionString());
        auto Q = NewQuery(C.get(), QStringLiteral("SELECT * FROM %1").arg(T));
        Q->Open();  // opens the connection itself
        QVERIFY(C->Connected());
        QCOMPARE(C->DataSetCount(), 1);
        QCOMPARE(C->DataSets(0), Q.get());
        int Closes = 0;
        Q->AfterClose = [&](TDataSet*) { ++Closes; };
        C->Close();
        QVERIFY(!Q->Active());
        QCOMPARE(Closes, 1);
        Q->Open();
        C.reset();  // a destroyed connection leaves its datasets closed and detached
        QVERIFY(!Q->Active());
        QCOMPARE(Q->Connection(), nullptr);
        QCOMPARE(Message([&] { Q->Open(); }), QStringLiteral("Missing Connection or ConnectionString"));
    }
};

QTEST_GUILESS_MAIN(TestAdoDataSet)
#include "tst_ado_dataset.moc"
