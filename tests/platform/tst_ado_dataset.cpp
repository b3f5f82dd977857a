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

// A table Id/Name/Qty/Note with the rows (1,'one',10,NULL) … (Count,…).
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

std::unique_ptr<TADOQuery> OpenQuery(TADOConnection* C, const QString& Sql)
{
    auto Q = std::make_unique<TADOQuery>();
    Q->SetConnection(C);
    Q->SetSQL({Sql});
    Q->Open();
    return Q;
}

QString Message(const std::function<void()>& F)
{
    try {
        F();
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
    void connectionString();
    void openReadsRowsAndTypes_data() { KeshTest::AddDriverRows(); }
    void openReadsRowsAndTypes();
    void postUpdatesRow_data() { KeshTest::AddDriverRows(); }
    void postUpdatesRow();
    void insertReadsBackKeyAndDefaults_data() { KeshTest::AddDriverRows(); }
    void insertReadsBackKeyAndDefaults();
    void nullOriginals_data() { KeshTest::AddDriverRows(); }
    void nullOriginals();
    void concurrentEditIsRefused_data() { KeshTest::AddDriverRows(); }
    void concurrentEditIsRefused();
    void deleteOfDeletedRow_data() { KeshTest::AddDriverRows(); }
    void deleteOfDeletedRow();
    void lazyFetching_data() { KeshTest::AddDriverRows(); }
    void lazyFetching();
    void writesWaitForPendingRows_data() { KeshTest::AddDriverRows(); }
    void writesWaitForPendingRows();
    void cloneHasItsOwnCursor_data() { KeshTest::AddDriverRows(); }
    void cloneHasItsOwnCursor();
    void readOnlyLock_data() { KeshTest::AddDriverRows(); }
    void readOnlyLock();
    void parameters_data() { KeshTest::AddDriverRows(); }
    void parameters();
    void refreshKeepsPosition_data() { KeshTest::AddDriverRows(); }
    void refreshKeepsPosition();
    void baseTableOfQueries_data() { KeshTest::AddDriverRows(); }
    void baseTableOfQueries();
    void transactions_data() { KeshTest::AddDriverRows(); }
    void transactions();
    void disconnectClosesDataSets_data() { KeshTest::AddDriverRows(); }
    void disconnectClosesDataSets();
    void catalog_data() { KeshTest::AddDriverRows(); }
    void catalog();
};

void TestAdoDataSet::connectionString()
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
    C.BeforeConnect = C.AfterConnect = C.BeforeDisconnect = C.AfterDisconnect = nullptr;

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
    C.Close();

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

void TestAdoDataSet::openReadsRowsAndTypes()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = Db->NewTable(QStringLiteral("Id %AUTOKEY%, Name VARCHAR(30), Price REAL, Photo %1")
                                       .arg(Db->IsPostgres() ? "BYTEA" : "BLOB"));
    Db->Exec(QStringLiteral("INSERT INTO %1 (Name, Price) VALUES ('tea', 2.5)").arg(T));
    TADOTable Table;
    Table.SetConnection(Db->Connection());
    Table.SetTableName(T);
    int AfterOpen = 0;
    Table.AfterOpen = [&](TDataSet*) { ++AfterOpen; };
    Table.Open();
    QCOMPARE(AfterOpen, 1);
    QCOMPARE(Table.FieldCount(), 4);
    QVERIFY(qobject_cast<TIntegerField*>(Table.Fields()[0]) || qobject_cast<TLargeintField*>(Table.Fields()[0]));
    QVERIFY(qobject_cast<TWideStringField*>(Table.FieldByName(QStringLiteral("name"))));
    QVERIFY(qobject_cast<TFloatField*>(Table.FieldByName(QStringLiteral("price"))));
    QVERIFY(qobject_cast<TBlobField*>(Table.FieldByName(QStringLiteral("photo"))));
    QCOMPARE(Table.FieldByName(QStringLiteral("name"))->AsString(), QStringLiteral("tea"));
    QCOMPARE(Table.FieldByName(QStringLiteral("price"))->AsFloat(), 2.5);
    QCOMPARE(Table.FieldByName(QStringLiteral("id"))->AsInteger(), 1);
    QCOMPARE(Table.RecordCount(), 1);
    QVERIFY(Table.CanModify());

    TADOQuery Bad;
    Bad.SetConnection(Db->Connection());
    Bad.SetSQL({QStringLiteral("SELECT * FROM no_such_table_here")});
    QVERIFY(!Message([&] { Bad.Open(); }).isEmpty());  // the server's own message
    QVERIFY(!Bad.Active());
}

void TestAdoDataSet::postUpdatesRow()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = MakeItems(*Db, 3);
    auto Q = OpenQuery(Db->Connection(), QStringLiteral("SELECT * FROM %1 ORDER BY Id").arg(T));
    Q->Next();
    Q->Edit();
    Q->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("it's \"quoted\""));
    Q->FieldByName(QStringLiteral("Qty"))->SetAsInteger(99);
    Q->Post();
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT Name FROM %1 WHERE Id = 2").arg(T)).toString(), QStringLiteral("it's \"quoted\""));
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT Qty FROM %1 WHERE Id = 2").arg(T)).toInt(), 99);
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE Qty = 99").arg(T)).toInt(), 1);
    Q->Edit();  // a post that changed nothing writes nothing and succeeds
    Q->Post();
    Q->Delete();
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(T)).toInt(), 2);
    QCOMPARE(Q->RecordCount(), 2);
}

void TestAdoDataSet::insertReadsBackKeyAndDefaults()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = MakeItems(*Db, 2);
    auto Q = OpenQuery(Db->Connection(), QStringLiteral("select * from %1").arg(T));
    Q->Append();
    Q->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("third"));
    Q->Post();
    QCOMPARE(Q->FieldByName(QStringLiteral("Id"))->AsInteger(), 3);  // the serial key, read back
    QCOMPARE(Q->FieldByName(QStringLiteral("Status"))->AsString(), QStringLiteral("new"));  // a server default
    Q->Edit();  // the new row can be found again by its key
    Q->FieldByName(QStringLiteral("Qty"))->SetAsInteger(5);
    Q->Post();
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT Qty FROM %1 WHERE Id = 3").arg(T)).toInt(), 5);
    QCOMPARE(Q->RecordCount(), 3);
    Q->Last();
    QCOMPARE(Q->FieldByName(QStringLiteral("Name"))->AsString(), QStringLiteral("third"));
}

void TestAdoDataSet::nullOriginals()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = MakeItems(*Db, 1);  // Note is NULL
    auto Q = OpenQuery(Db->Connection(), QStringLiteral("SELECT * FROM %1").arg(T));
    TField* Note = Q->FieldByName(QStringLiteral("Note"));
    QVERIFY(Note->IsNull());
    Q->Edit();
    Note->SetAsString(QStringLiteral("was null"));
    Q->Post();  // located with Note IS NULL
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT Note FROM %1").arg(T)).toString(), QStringLiteral("was null"));
    Q->Edit();
    Note->Clear();
    Q->Post();
    QVERIFY(Db->Scalar(QStringLiteral("SELECT Note FROM %1").arg(T)).isNull());
    Q->Edit();
    Note->SetAsString(QStringLiteral("again"));
    Q->Post();
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT Note FROM %1").arg(T)).toString(), QStringLiteral("again"));
}

void TestAdoDataSet::concurrentEditIsRefused()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = MakeItems(*Db, 2);
    const QString Sql = QStringLiteral("SELECT * FROM %1 ORDER BY Id").arg(T);
    auto First = OpenQuery(Db->Connection(), Sql);
    auto Second = OpenQuery(Db->OpenSecondConnection(), Sql);
    First->RecordCount();  // both have read every row: nothing holds the table
    Second->RecordCount();
    First->Edit();
    First->FieldByName(QStringLiteral("Qty"))->SetAsInteger(11);
    Second->Edit();
    Second->FieldByName(QStringLiteral("Qty"))->SetAsInteger(22);
    First->Post();
    QCOMPARE(Message([&] { Second->Post(); }), RowNotLocated);
    QCOMPARE(Second->State(), dsEdit);  // the second user's edit is kept
    QCOMPARE(Second->FieldByName(QStringLiteral("Qty"))->AsInteger(), 22);
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT Qty FROM %1 WHERE Id = 1").arg(T)).toInt(), 11);
    // A change to another column of the same row does not conflict.
    Second->Cancel();
    Second->Edit();
    Second->FieldByName(QStringLiteral("Note"))->SetAsString(QStringLiteral("other column"));
    Second->Post();
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT Qty FROM %1 WHERE Id = 1").arg(T)).toInt(), 11);
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT Note FROM %1 WHERE Id = 1").arg(T)).toString(), QStringLiteral("other column"));
}

void TestAdoDataSet::deleteOfDeletedRow()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = MakeItems(*Db, 3);
    auto Q = OpenQuery(Db->Connection(), QStringLiteral("SELECT * FROM %1 ORDER BY Id").arg(T));
    Q->RecordCount();
    Q->Next();
    QVERIFY(Db->Exec(QStringLiteral("DELETE FROM %1 WHERE Id = 2").arg(T)));
    QCOMPARE(Message([&] { Q->Delete(); }), RowNotLocated);
    QCOMPARE(Q->RecordCount(), 3);
    QCOMPARE(Q->FieldByName(QStringLiteral("Id"))->AsInteger(), 2);
}

void TestAdoDataSet::lazyFetching()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = Db->NewTable(QStringLiteral("Id INTEGER PRIMARY KEY, Name VARCHAR(20)"));
    QVERIFY(Db->Exec(Db->IsPostgres()
                         ? QStringLiteral("INSERT INTO %1 SELECT g, 'r' || g FROM generate_series(1, 10000) g").arg(T)
                         : QStringLiteral("WITH RECURSIVE s(g) AS (SELECT 1 UNION ALL SELECT g + 1 FROM s WHERE g < 10000) "
                                          "INSERT INTO %1 SELECT g, 'r' || g FROM s").arg(T)));
    TADOTable Table;
    Table.SetConnection(Db->Connection());
    Table.SetTableName(T);
    Table.Open();
    // Opening reads a first small block, moving on whole blocks; RecordCount is always the
    // full count (it reads the rest).
    QCOMPARE(Table.FetchedRowCount(), 64);
    QVERIFY(!Table.FetchedAll());
    Table.MoveBy(300);
    QCOMPARE(Table.FetchedRowCount(), 64 + Table.FetchBlockSize());
    QCOMPARE(Table.RecordCount(), 10000);
    QVERIFY(Table.FetchedAll());
    QCOMPARE(Table.RecNo(), 301);
    Table.Last();
    QCOMPARE(Table.FieldByName(QStringLiteral("Name"))->AsString(), QStringLiteral("r10000"));
    Table.Close();
    Table.Open();
    Table.Last();
    QCOMPARE(Table.RecNo(), 10000);
}

void TestAdoDataSet::writesWaitForPendingRows()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = MakeItems(*Db, 600);
    auto Q = OpenQuery(Db->Connection(), QStringLiteral("SELECT * FROM %1").arg(T));
    QVERIFY(!Q->FetchedAll());
    // A row posted while the SELECT is unfinished must not come back from it a second time.
    Q->Append();
    Q->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("late"));
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

void TestAdoDataSet::cloneHasItsOwnCursor()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = MakeItems(*Db, 5);
    auto Q = OpenQuery(Db->Connection(), QStringLiteral("SELECT * FROM %1 ORDER BY Id").arg(T));
    Q->Next();
    TADODataSet Clone;
    Clone.Clone(Q.get());
    QCOMPARE(Clone.RecNo(), 1);
    QCOMPARE(Clone.RecordCount(), 5);
    Clone.Last();
    QCOMPARE(Q->RecNo(), 2);  // the source did not move
    QCOMPARE(Q->FieldByName(QStringLiteral("Id"))->AsInteger(), 2);
    Clone.Edit();
    Clone.FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("via clone"));
    Clone.Post();
    Q->Last();
    QCOMPARE(Q->FieldByName(QStringLiteral("Name"))->AsString(), QStringLiteral("via clone"));  // shared rows
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT Name FROM %1 WHERE Id = 5").arg(T)).toString(), QStringLiteral("via clone"));
    Q->First();
    Q->Delete();  // the clone finds its row again after the source deleted another
    QCOMPARE(Clone.RecNo(), 4);
    QCOMPARE(Clone.FieldByName(QStringLiteral("Id"))->AsInteger(), 5);
    QCOMPARE(Clone.RecordCount(), 4);
    double Sum = 0;
    TADODataSet ReadOnly;
    ReadOnly.Clone(Q.get(), ltReadOnly);
    for (ReadOnly.First(); !ReadOnly.Eof(); ReadOnly.Next())
        Sum += ReadOnly.FieldByName(QStringLiteral("Qty"))->AsFloat();
    QCOMPARE(Sum, 140.0);
    QCOMPARE(Message([&] { ReadOnly.Edit(); }), QStringLiteral("Cannot modify a read-only dataset"));
}

void TestAdoDataSet::readOnlyLock()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = MakeItems(*Db, 1);
    TADODataSet Ds;
    Ds.SetConnection(Db->Connection());
    Ds.SetCommandText(QStringLiteral("SELECT * FROM %1").arg(T));
    Ds.SetLockType(ltReadOnly);
    Ds.Open();
    QVERIFY(!Ds.CanModify());
    QVERIFY(!Ds.Fields()[0]->CanModify());
    QCOMPARE(Message([&] { Ds.Edit(); }), QStringLiteral("Cannot modify a read-only dataset"));
    QCOMPARE(Message([&] { Ds.Append(); }), QStringLiteral("Cannot modify a read-only dataset"));
    QCOMPARE(Message([&] { Ds.Delete(); }), QStringLiteral("Cannot modify a read-only dataset"));
    QCOMPARE(Ds.State(), dsBrowse);
}

void TestAdoDataSet::parameters()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = MakeItems(*Db, 5);
    TADOQuery Q;
    Q.SetConnection(Db->Connection());
    Q.SetSQL({QStringLiteral("SELECT * FROM %1"), QStringLiteral("WHERE Qty > :MinQty AND Name <> ':notparam' AND Qty < :MaxQty")});
    Q.SetSQL({QStringLiteral("SELECT * FROM %1").arg(T), Q.SQL().last()});
    QCOMPARE(Q.Parameters()->Count(), 2);
    QCOMPARE(Q.Parameters()->Items(0)->Name, QStringLiteral("MinQty"));
    Q.Parameters()->ParamByName(QStringLiteral("minqty"))->Value = 15;
    Q.Parameters()->ParamByName(QStringLiteral("MaxQty"))->Value = 45;
    Q.Open();
    QCOMPARE(Q.RecordCount(), 3);
    QCOMPARE(Message([&] { Q.Parameters()->ParamByName(QStringLiteral("x")); }), QStringLiteral("Parameter 'x' not found"));

    TADOQuery Plain;  // ParamCheck off: colons are text
    Plain.SetParamCheck(false);
    Plain.SetConnection(Db->Connection());
    Plain.SetSQL({QStringLiteral("SELECT Name, '10:30' AS T FROM %1 WHERE Name = 'n1'").arg(T)});
    QCOMPARE(Plain.Parameters()->Count(), 0);
    Plain.Open();
    QCOMPARE(Plain.FieldByName(QStringLiteral("T"))->AsString(), QStringLiteral("10:30"));
    if (Db->IsPostgres()) {
        TADOQuery Cast;  // a cast is no parameter
        Cast.SetConnection(Db->Connection());
        Cast.SetSQL({QStringLiteral("SELECT Qty::text AS Q FROM %1 WHERE Id = :Id").arg(T)});
        QCOMPARE(Cast.Parameters()->Count(), 1);
        Cast.Parameters()->Items(0)->Value = 2;
        Cast.Open();
        QCOMPARE(Cast.Fields()[0]->AsString(), QStringLiteral("20"));
    }

    TADOQuery Exec;
    Exec.SetConnection(Db->Connection());
    Exec.SetSQL({QStringLiteral("UPDATE %1 SET Note = :Note WHERE Qty >= :Qty").arg(T)});
    Exec.Parameters()->ParamByName(QStringLiteral("Note"))->Value = QStringLiteral("big");
    Exec.Parameters()->ParamByName(QStringLiteral("Qty"))->Value = 40;
    QCOMPARE(Exec.ExecSQL(), 2);
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE Note = 'big'").arg(T)).toInt(), 2);
}

void TestAdoDataSet::refreshKeepsPosition()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = MakeItems(*Db, 4);
    auto Q = OpenQuery(Db->Connection(), QStringLiteral("SELECT * FROM %1 ORDER BY Name DESC").arg(T));
    Q->MoveBy(2);  // n2
    QCOMPARE(Q->FieldByName(QStringLiteral("Name"))->AsString(), QStringLiteral("n2"));
    Db->Exec(QStringLiteral("INSERT INTO %1 (Name, Qty) VALUES ('n3b', 0)").arg(T));
    Db->Exec(QStringLiteral("UPDATE %1 SET Qty = 7 WHERE Name = 'n2'").arg(T));
    int Refreshes = 0;
    Q->AfterRefresh = [&](TDataSet*) { ++Refreshes; };
    Q->Refresh();
    QCOMPARE(Refreshes, 1);
    QCOMPARE(Q->FieldByName(QStringLiteral("Name"))->AsString(), QStringLiteral("n2"));  // same row by its key
    QCOMPARE(Q->RecNo(), 4);
    QCOMPARE(Q->FieldByName(QStringLiteral("Qty"))->AsInteger(), 7);
    QCOMPARE(Q->RecordCount(), 5);
}

void TestAdoDataSet::baseTableOfQueries()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = MakeItems(*Db, 2);
    const QString U = Db->NewTable(QStringLiteral("Code INTEGER PRIMARY KEY, Title VARCHAR(20)"));
    Db->Exec(QStringLiteral("INSERT INTO %1 VALUES (10, 'ten'), (20, 'twenty')").arg(U));
    // An alias and a computed column: the base table is still found.
    auto Q = OpenQuery(Db->Connection(), QStringLiteral("SELECT i.Id, i.Name, i.Qty * 2 AS Twice FROM %1 i WHERE i.Id = 1").arg(T.toUpper()));
    Q->Edit();
    Q->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("aliased"));
    Q->Post();
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT Name FROM %1 WHERE Id = 1").arg(T)).toString(), QStringLiteral("aliased"));
    // A join has no single table until UniqueTable names it.
    auto J = OpenQuery(Db->Connection(), QStringLiteral("SELECT Id, Name, Title FROM %1 JOIN %2 ON Qty = Code ORDER BY Id").arg(T, U));
    J->Edit();
    J->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("joined"));
    QCOMPARE(Message([&] { J->Post(); }), QStringLiteral("Insufficient base table information for updating or refreshing."));
    QCOMPARE(J->State(), dsEdit);
    J->SetUniqueTable(T);
    J->Post();
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT Name FROM %1 WHERE Id = 1").arg(T)).toString(), QStringLiteral("joined"));
}

void TestAdoDataSet::transactions()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = MakeItems(*Db, 1);
    TADOConnection* C = Db->Connection();
    auto Q = OpenQuery(C, QStringLiteral("SELECT * FROM %1").arg(T));
    QCOMPARE(C->BeginTrans(), 1);
    QVERIFY(C->InTransaction());
    QVERIFY_THROWS_EXCEPTION(EDatabaseError, C->BeginTrans());
    Q->Append();
    Q->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("undone"));
    Q->Post();
    C->RollbackTrans();
    QVERIFY(!C->InTransaction());
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(T)).toInt(), 1);
    C->BeginTrans();
    QCOMPARE(C->Execute(QStringLiteral("DELETE FROM %1").arg(T)), 1);
    C->CommitTrans();
    QCOMPARE(Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(T)).toInt(), 0);
}

void TestAdoDataSet::disconnectClosesDataSets()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = MakeItems(*Db, 300);
    auto C = std::make_unique<TADOConnection>();
    C->SetConnectionString(Db->ConnectionString());
    auto Q = std::make_unique<TADOQuery>();
    Q->SetConnection(C.get());
    Q->SetSQL({QStringLiteral("SELECT * FROM %1").arg(T)});
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

void TestAdoDataSet::catalog()
{
    KESH_OPEN_TEST_DB(Db);
    const QString T = MakeItems(*Db, 0);
    QStringList Tables;
    Db->Connection()->GetTableNames(Tables);
    QVERIFY(Tables.contains(T, Qt::CaseInsensitive));
    QStringList Fields;
    Db->Connection()->GetFieldNames(T, Fields);
    QCOMPARE(Fields.join(',').toLower(), QStringLiteral("id,name,qty,note,status"));
    QVERIFY(!Message([&] { Db->Connection()->Execute(QStringLiteral("SELECT nonsense FROM")); }).isEmpty());
}

QTEST_GUILESS_MAIN(TestAdoDataSet)
#include "tst_ado_dataset.moc"
