// Tests of lazily read SQL datasets: writes, transactions, several readers, Refresh and
// Close while rows remain unread, and a connection that dies in the middle. On SQLite and
// on PostgreSQL, where the rows come through a server-side cursor.
#include "db_test_helper.h"
#include "platform/data.h"
#include "platform/exceptions.h"
#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

using namespace Kesh;

namespace {

const int Rows = 5000;  // many blocks of 256 rows, several server round trips

// A table Id/Name/Qty with the rows (i, 'n<i>', 10 * i) for i = 1..Rows.
QString MakeTable(KeshTest::TTestDatabase& Db)
{
    const QString T = Db.NewTable(QStringLiteral("Id %AUTOKEY%, Name VARCHAR(40), Qty INTEGER"));
    Db.Exec(Db.IsPostgres() ? QStringLiteral("INSERT INTO %1 (Name, Qty) SELECT 'n' || i, 10 * i FROM generate_series(1, %2) i").arg(T).arg(Rows)
                            : QStringLiteral("WITH RECURSIVE s(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM s WHERE i < %2) "
                                             "INSERT INTO %1 (Name, Qty) SELECT 'n' || i, 10 * i FROM s").arg(T).arg(Rows));
    return T;
}

std::unique_ptr<TADOQuery> Open(TADOConnection* C, const QString& Sql)
{
    auto Q = std::make_unique<TADOQuery>();
    Q->SetConnection(C);
    Q->SetSQL({Sql});
    Q->Open();
    return Q;
}

// Id -> Qty of every row from the first, read with Next.
QMap<int, int> Walk(TDataSet* Ds)
{
    QMap<int, int> R;
    Ds->First();
    while (!Ds->Eof()) {
        R.insert(Ds->FieldByName(QStringLiteral("Id"))->AsInteger(), Ds->FieldByName(QStringLiteral("Qty"))->AsInteger());
        Ds->Next();
    }
    return R;
}

QMap<int, int> Original()
{
    QMap<int, int> R;
    for (int i = 1; i <= Rows; ++i)
        R.insert(i, 10 * i);
    return R;
}

QVariant ScalarOn(TADOConnection* C, const QString& Sql)
{
    QSqlQuery Q(C->Database());
    if (!Q.exec(Sql) || !Q.next())
        return QVariant(QStringLiteral("error: ") + Q.lastError().text());
    return Q.value(0);
}

// What the server holds for the main connection: its open cursors and its transaction state.
QString ServerState(KeshTest::TTestDatabase& Db)
{
    if (!Db.IsPostgres())
        return QStringLiteral("0 idle");
    const QString Pid = ScalarOn(Db.Connection(), QStringLiteral("SELECT pg_backend_pid()")).toString();
    const QString Cursors = ScalarOn(Db.Connection(), QStringLiteral("SELECT count(*) FROM pg_cursors")).toString();
    const QString State = ScalarOn(Db.OpenSecondConnection(), QStringLiteral("SELECT state FROM pg_stat_activity WHERE pid = ") + Pid).toString();
    return Cursors + QLatin1Char(' ') + State;
}

QString ErrorOf(const std::function<void()>& Run)
{
    try {
        Run();
    } catch (const EDatabaseError& E) {
        return E.Message;
    }
    return QString();
}

} // namespace

class TestAdoPostgresCursor : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A write through the same connection while rows remain unread: the write is committed
    // at once (a second connection sees it) and the dataset reads on to the end.
    void writeWhileRowsRemainUnread_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("write");
        for (const char* Driver : {"sqlite", "postgres"})
            for (const char* Write : {"post", "insert", "delete", "execute", "commit", "rollback"})
                QTest::addRow("%s %s", Driver, Write) << QString::fromLatin1(Driver) << QString::fromLatin1(Write);
    }
    void writeWhileRowsRemainUnread()
    {
        QFETCH(QString, write);
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeTable(*Db);
        auto Q = Open(Db->Connection(), QStringLiteral("SELECT Id, Name, Qty FROM %1 ORDER BY Id").arg(T));
        Q->Next();
        Q->Next();  // on Id 3
        QVERIFY(!Q->FetchedAll());
        QCOMPARE(Q->FetchedRowCount(), 64);
        if (Db->IsPostgres())
            QCOMPARE(ServerState(*Db), QStringLiteral("1 idle in transaction"));

        QMap<int, int> Expected = Original();
        TADOConnection* Other = Db->OpenSecondConnection();
        const QString Count = QStringLiteral("SELECT count(*) FROM %1").arg(T);
        auto QtyOf = [&](int Id) { return ScalarOn(Other, QStringLiteral("SELECT Qty FROM %1 WHERE Id = %2").arg(T).arg(Id)); };
        if (write == QLatin1String("post")) {
            Q->Edit();
            Q->FieldByName(QStringLiteral("Qty"))->SetAsInteger(-1);
            Q->Post();
            Expected[3] = -1;
            QCOMPARE(QtyOf(3).toInt(), -1);
        } else if (write == QLatin1String("insert")) {
            Q->Insert();
            Q->FieldByName(QStringLiteral("Qty"))->SetAsInteger(-2);
            Q->Post();
            Expected[Q->FieldByName(QStringLiteral("Id"))->AsInteger()] = -2;
            QCOMPARE(ScalarOn(Other, Count).toInt(), Rows + 1);
        } else if (write == QLatin1String("delete")) {
            Q->Delete();
            Expected.remove(3);
            QCOMPARE(ScalarOn(Other, Count).toInt(), Rows - 1);
        } else if (write == QLatin1String("execute")) {
            QCOMPARE(Db->Connection()->Execute(QStringLiteral("UPDATE %1 SET Qty = -3 WHERE Id = 4000").arg(T)), 1);
            QCOMPARE(QtyOf(4000).toInt(), -3);  // the dataset keeps the rows as they were at opening
        } else {
            const bool Commit = write == QLatin1String("commit");
            Db->Connection()->BeginTrans();
            Db->Connection()->Execute(QStringLiteral("UPDATE %1 SET Qty = -4 WHERE Id = 4001").arg(T));
            Q->MoveBy(300);  // reads inside the application's transaction
            QCOMPARE(Q->FieldByName(QStringLiteral("Id"))->AsInteger(), 303);
            if (Commit)
                Db->Connection()->CommitTrans();
            else
                Db->Connection()->RollbackTrans();
            QCOMPARE(QtyOf(4001).toInt(), Commit ? -4 : 40010);
        }
        // SQLite reads the rest before a statement of the application's; the dataset's own
        // row writes leave its SELECT reading on.
        const bool OwnRowWrite = write == QLatin1String("post") || write == QLatin1String("insert")
                                 || write == QLatin1String("delete");
        QCOMPARE(Q->FetchedAll(), !Db->IsPostgres() && !OwnRowWrite);
        QCOMPARE(Walk(Q.get()), Expected);
        QCOMPARE(ServerState(*Db), QStringLiteral("0 idle"));
    }

    // Two datasets read from one connection at once, with a write between their reads; a
    // query that fails, at opening or in its 2000th row, leaves the other reading on.
    void severalReadersAtOnce_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("second");
        QTest::addColumn<QString>("error");
        QTest::addColumn<bool>("lookUp");  // run by GuardRead on Database() instead of a dataset
        QTest::newRow("sqlite") << "sqlite" << "SELECT Id, Qty FROM %1 ORDER BY Id DESC" << QString() << false;
        QTest::newRow("postgres") << "postgres" << "SELECT Id, Qty FROM %1 ORDER BY Id DESC" << QString() << false;
        QTest::newRow("postgres, failing at opening") << "postgres" << "SELECT Id, Qty FROM %1_missing" << "does not exist" << false;
        QTest::newRow("postgres, failing in a later row")
            << "postgres" << "SELECT Id, Qty / (Id - 2000) AS Qty FROM %1 ORDER BY Id" << "division by zero" << false;
        QTest::newRow("postgres, failing look-up") << "postgres" << "SELECT Qty FROM %1 WHERE Id = 'x'" << "invalid input" << true;
    }
    void severalReadersAtOnce()
    {
        QFETCH(QString, second);
        QFETCH(QString, error);
        QFETCH(bool, lookUp);
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeTable(*Db);
        auto A = Open(Db->Connection(), QStringLiteral("SELECT Id, Qty FROM %1 ORDER BY Id").arg(T));
        A->MoveBy(100);
        if (!error.isEmpty()) {
            const QString Message = ErrorOf([&] {
                if (lookUp) {
                    Db->Connection()->GuardRead([&] {
                        QSqlQuery Q(Db->Connection()->Database());
                        if (!Q.exec(second.arg(T)))
                            TADOConnection::RaiseSqlError(Q.lastError());
                    });
                    return;
                }
                auto B = Open(Db->Connection(), second.arg(T));
                B->Last();
            });
            QVERIFY2(Message.contains(error), qPrintable(Message));
            QCOMPARE(Walk(A.get()), Original());
            QCOMPARE(ServerState(*Db), QStringLiteral("0 idle"));
            return;
        }
        auto B = Open(Db->Connection(), second.arg(T));
        QMap<int, int> GotA, GotB;
        while (!A->Eof() || !B->Eof()) {
            for (TDataSet* Ds : {static_cast<TDataSet*>(A.get()), static_cast<TDataSet*>(B.get())}) {
                if (Ds->Eof())
                    continue;
                (Ds == A.get() ? GotA : GotB).insert(Ds->FieldByName(QStringLiteral("Id"))->AsInteger(),
                                                     Ds->FieldByName(QStringLiteral("Qty"))->AsInteger());
                Ds->Next();
            }
            if (GotA.size() == 1000)
                Db->Connection()->Execute(QStringLiteral("UPDATE %1 SET Qty = 0").arg(T));
        }
        QMap<int, int> FromA = Original();  // from where A stood, as they were at opening
        for (int i = 1; i <= 100; ++i)
            FromA.remove(i);
        QCOMPARE(GotA, FromA);
        QCOMPARE(GotB, Original());
        QCOMPARE(ServerState(*Db), QStringLiteral("0 idle"));
    }

    // Refresh reads the rows again and keeps the row; Close in the middle leaves nothing
    // open on the server, nor does closing the connection; both open again afterwards.
    void refreshAndCloseInTheMiddle_data() { KeshTest::AddDriverRows(); }
    void refreshAndCloseInTheMiddle()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeTable(*Db);
        auto Q = Open(Db->Connection(), QStringLiteral("SELECT Id, Qty FROM %1 ORDER BY Id").arg(T));
        auto Other = Open(Db->Connection(), QStringLiteral("SELECT Id, Qty FROM %1").arg(T));
        Q->MoveBy(700);
        Db->Connection()->Execute(QStringLiteral("UPDATE %1 SET Qty = -1 WHERE Id IN (701, 4999)").arg(T));
        Q->Refresh();
        QCOMPARE(Q->FieldByName(QStringLiteral("Id"))->AsInteger(), 701);
        QCOMPARE(Q->FieldByName(QStringLiteral("Qty"))->AsInteger(), -1);
        QVERIFY(!Q->FetchedAll());
        Q->Close();
        Other->MoveBy(10);
        Other->Close();
        QCOMPARE(ServerState(*Db), QStringLiteral("0 idle"));

        Q->Open();
        Other->Open();
        Q->MoveBy(10);
        Db->Connection()->Close();
        QVERIFY(!Q->Active() && !Other->Active());
        Db->Connection()->Open();
        QCOMPARE(ServerState(*Db), QStringLiteral("0 idle"));
        Q->Open();
        QMap<int, int> Expected = Original();
        Expected[701] = Expected[4999] = -1;
        QCOMPARE(Walk(Q.get()), Expected);
        QCOMPARE(ServerState(*Db), QStringLiteral("0 idle"));
    }

    // A dataset opened in the application's transaction sees its uncommitted rows and keeps
    // them whether the transaction commits or rolls back.
    void openedInApplicationTransaction_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<bool>("commit");
        for (const char* Driver : {"sqlite", "postgres"}) {
            QTest::addRow("%s commit", Driver) << QString::fromLatin1(Driver) << true;
            QTest::addRow("%s rollback", Driver) << QString::fromLatin1(Driver) << false;
        }
    }
    void openedInApplicationTransaction()
    {
        QFETCH(bool, commit);
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeTable(*Db);
        Db->Connection()->BeginTrans();
        Db->Connection()->Execute(QStringLiteral("UPDATE %1 SET Qty = -5 WHERE Id = 3000").arg(T));
        auto Q = Open(Db->Connection(), QStringLiteral("SELECT Id, Qty FROM %1 ORDER BY Id").arg(T));
        Q->MoveBy(10);
        if (commit)
            Db->Connection()->CommitTrans();
        else
            Db->Connection()->RollbackTrans();
        QMap<int, int> Expected = Original();
        Expected[3000] = -5;
        QCOMPARE(Walk(Q.get()), Expected);
        QCOMPARE(ServerState(*Db), QStringLiteral("0 idle"));
    }

    // Statements read through a cursor and those that are not give the same rows; parameter
    // values reach the server quoted.
    void statementsAndParameters_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QVariantList>("values");
        QTest::addColumn<QString>("first");  // the first row's Name
        QTest::addColumn<int>("count");
        for (const char* Driver : {"sqlite", "postgres"}) {
            const QString D = QString::fromLatin1(Driver);
            auto Row = [&](const char* Name, const char* Sql, const QVariantList& Values, const char* First, int Count) {
                QTest::addRow("%s %s", Driver, Name) << D << QString::fromLatin1(Sql) << Values << QString::fromUtf8(First) << Count;
            };
            Row("trailing semicolons", "SELECT Id, Name FROM %1 WHERE Id <= 300 ORDER BY Id ;; ", {}, "n1", 300);
            Row("ending in a comment", "SELECT Id, Name FROM %1 ORDER BY Id DESC -- newest first", {}, "n5000", Rows);
            Row("text parameter with a quote", "SELECT Id, Name FROM %1 WHERE Name = :n OR Name = :m", {QStringLiteral("x'; DROP TABLE %1; --"), QStringLiteral("n7")}, "n7", 1);
            Row("numbers, a null, a cast", "SELECT Id, Name FROM %1 WHERE Id BETWEEN :lo AND :hi AND (:none IS NULL) AND Name <> 'a::b' ORDER BY Id",
                {250, 260, QVariant()}, "n250", 11);
            Row("Arabic text", "SELECT Id, Name FROM %1 WHERE Name <> :n ORDER BY Id", {QStringLiteral("صنف")}, "n1", Rows);
            if (D == QLatin1String("postgres")) {
                Row("not a query", "UPDATE %1 SET Name = Name WHERE Id = 1 RETURNING Id, Name", {}, "n1", 1);
                Row("locking", "SELECT Id, Name FROM %1 WHERE Id > 4990 ORDER BY Id FOR UPDATE", {}, "n4991", 10);
            }
        }
    }
    void statementsAndParameters()
    {
        QFETCH(QString, sql);
        QFETCH(QVariantList, values);
        QFETCH(QString, first);
        QFETCH(int, count);
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeTable(*Db);
        TADOQuery Q;
        Q.SetConnection(Db->Connection());
        Q.SetSQL({sql.arg(T)});
        QCOMPARE(Q.Parameters()->Count(), values.size());
        for (int i = 0; i < values.size(); ++i)
            Q.Parameters()->Items(i)->Value = values[i].toString().contains(QLatin1String("%1")) ? values[i].toString().arg(T) : values[i];
        Q.Open();
        QCOMPARE(Q.FieldByName(QStringLiteral("Name"))->AsString(), first);
        QCOMPARE(Q.RecordCount(), count);
        QCOMPARE(ScalarOn(Db->Connection(), QStringLiteral("SELECT count(*) FROM %1").arg(T)).toInt(), Rows);
        QCOMPARE(ServerState(*Db), QStringLiteral("0 idle"));
    }

    // The server ends the session while rows remain: the next read raises EDatabaseError
    // with the server's message, and closing afterwards neither hangs nor crashes.
    void connectionDiesWhileReading_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<bool>("held");  // a write committed the cursor's transaction first
        QTest::newRow("in its transaction") << QStringLiteral("postgres") << false;
        QTest::newRow("held after a write") << QStringLiteral("postgres") << true;
    }
    void connectionDiesWhileReading()
    {
        QFETCH(bool, held);
        KESH_OPEN_TEST_DB(Db);
        const QString T = MakeTable(*Db);
        auto Q = Open(Db->Connection(), QStringLiteral("SELECT Id, Qty FROM %1 ORDER BY Id").arg(T));
        Q->MoveBy(100);
        if (held)
            Db->Connection()->Execute(QStringLiteral("UPDATE %1 SET Qty = 0 WHERE Id = 1").arg(T));
        const QString Pid = ScalarOn(Db->Connection(), QStringLiteral("SELECT pg_backend_pid()")).toString();
        QCOMPARE(ScalarOn(Db->OpenSecondConnection(), QStringLiteral("SELECT pg_terminate_backend(%1)").arg(Pid)).toBool(), true);
        const QString Message = ErrorOf([&] { Q->Last(); });
        QVERIFY2(Message.contains(QLatin1String("terminat")) || Message.contains(QLatin1String("closed")), qPrintable(Message));
        QVERIFY(Q->Active());
        QCOMPARE(ErrorOf([&] { Q->Close(); }), QString());
        Db->Connection()->Close();
        Db->Connection()->Open();  // a new session: the table is dropped at the end through it
    }
};

QTEST_MAIN(TestAdoPostgresCursor)
#include "tst_ado_postgres_cursor.moc"
