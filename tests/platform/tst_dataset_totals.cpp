// Tests of TDataSetTotals: the sums equal a walk over every row, on SQL datasets with rows
// still unread (SQLite, PostgreSQL) and on a client dataset, through inserts, edits,
// deletes, refreshes, failed posts and pending edits.
#include "db_test_helper.h"
#include "platform/data.h"
#include "platform/exceptions.h"
#include <QRandomGenerator>
#include <QThread>
#include <QThreadPool>
#include <QtTest>
#include <map>

using namespace Kesh;

namespace {

// The classic footer's walk: First; until Eof: total += AsFloat; Next; back to where it was.
double Walk(TDataSet* Ds, const QString& Field)
{
    const QByteArray Mark = Ds->Bookmark();
    double Total = 0;
    Ds->First();
    while (!Ds->Eof()) {
        Total += Ds->FieldByName(Field)->AsFloat();
        Ds->Next();
    }
    if (!Mark.isEmpty())
        Ds->GotoBookmark(Mark);
    return Total;
}

// What the test expects: each row's value in units of 10^-Scale (Scale 0 for integers),
// or as a double for floating columns.
struct TModel
{
    int Scale = 0;
    bool Floating = false;
    std::map<qint64, qint64> Units;   // by key
    std::map<qint64, double> Doubles; // by key

    long double Expected() const
    {
        if (Floating) {
            long double S = 0;
            for (const auto& [Key, V] : Doubles)
                S += V;
            return S;
        }
        qint64 S = 0;
        for (const auto& [Key, V] : Units)
            S += V;
        return static_cast<long double>(S) / std::pow(10.0L, Scale);
    }
    // A random value: returns its SQL literal and stores it under Key.
    QVariant Put(qint64 Key, QRandomGenerator& Random)
    {
        if (Floating) {
            const double V = (Random.generateDouble() - 0.3) * 1e6;
            Doubles[Key] = V;
            return V;
        }
        const qint64 U = qint64(Random.bounded(2000000000)) - 500000000;
        Units[Key] = U;
        if (Scale == 0)
            return U;
        return QString::number(double(U) / 100, 'f', 2);  // exact decimal text
    }
    void Remove(qint64 Key)
    {
        Units.erase(Key);
        Doubles.erase(Key);
    }
};

bool Near(long double A, long double B)
{
    return std::fabs(double(A - B)) <= 1e-9 * std::max(1.0, std::fabs(double(B)));
}

#define CHECK_TOTAL(Totals, Model)                                                        \
    do {                                                                                  \
        QTRY_VERIFY_WITH_TIMEOUT((Totals).Ready(), 20000);                                \
        if ((Model).Floating)                                                             \
            QVERIFY2(Near((Totals).Value(0), (Model).Expected()),                         \
                     qPrintable(QStringLiteral("%1 vs %2").arg(double((Totals).Value(0)), 0, 'g', 17) \
                                    .arg(double((Model).Expected()), 0, 'g', 17)));      \
        else                                                                              \
            QCOMPARE(double((Totals).Value(0)), double((Model).Expected()));              \
        QCOMPARE(double((Totals).Value(1)), 0.0);                                         \
        QCOMPARE(double((Totals).Value(2)), 0.0);                                         \
    } while (0)

} // namespace

class TestDataSetTotals : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Random rows, then random inserts, edits, deletes and refreshes, some of them while the
    // first sum is still running; after each, the totals equal what the rows hold.
    void sqlMatchesWalk_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("sqlite");    // column type on SQLite
        QTest::addColumn<QString>("postgres");  // on PostgreSQL
        QTest::addColumn<int>("scale");         // -1: floating
        for (const char* Driver : {"sqlite", "postgres"}) {
            QTest::addRow("%s integer", Driver) << QString::fromLatin1(Driver) << "INTEGER" << "BIGINT" << 0;
            QTest::addRow("%s numeric", Driver) << QString::fromLatin1(Driver) << "NUMERIC(14,2)" << "NUMERIC(14,2)" << 2;
            QTest::addRow("%s float", Driver) << QString::fromLatin1(Driver) << "REAL" << "DOUBLE PRECISION" << -1;
        }
    }
    void sqlMatchesWalk()
    {
        KESH_OPEN_TEST_DB(Db);
        QFETCH(QString, sqlite);
        QFETCH(QString, postgres);
        QFETCH(int, scale);
        TModel Model;
        Model.Scale = std::max(scale, 0);
        Model.Floating = scale < 0;
        QRandomGenerator Random(20261124);
        const QString T = Db->NewTable(QStringLiteral("Id %AUTOKEY%, Val %1, Other INTEGER")
                                           .arg(Db->IsPostgres() ? postgres : sqlite));
        QStringList Rows;
        for (int i = 1; i <= 3000; ++i) {
            const QVariant V = Model.Put(i, Random);
            const QString Literal = V.metaType().id() == QMetaType::Double ? QString::number(V.toDouble(), 'g', 17) : V.toString();
            Rows << QStringLiteral("(%1, %2, %1)").arg(i).arg(Literal);
            if (Rows.size() == 500) {
                Db->Exec(QStringLiteral("INSERT INTO %1 (Id, Val, Other) VALUES %2").arg(T, Rows.join(QLatin1Char(','))));
                Rows.clear();
            }
        }

        TADOQuery Q;
        Q.SetConnection(Db->Connection());
        Q.SetSQL({QStringLiteral("SELECT Id, Val, Other FROM %1 ORDER BY Id;").arg(T)});
        Q.Open();
        TDataSetTotals Totals;
        Totals.SetDataSet(&Q);
        Totals.SetFieldNames({QStringLiteral("val"), QString(), QStringLiteral("Missing")});
        QVERIFY(!Q.FetchedAll());

        // A row written after the server summed but before its sum arrives: the sum may or
        // may not hold the write, so it must not count.
        QCoreApplication::processEvents();
        while (QThreadPool::globalInstance()->activeThreadCount() > 0)
            QThread::msleep(1);
        QVERIFY(!Totals.Ready());
        qint64 NextKey = 100000;
        for (int Step = 0; Step < 40; ++Step) {
            const int Op = Step == 0 ? 1 : int(Random.bounded(6));
            if (Op == 0) {                                           // insert
                Random.bounded(2) ? Q.Insert() : Q.Append();
                const qint64 Key = NextKey++;
                Q.FieldByName(QStringLiteral("Id"))->SetAsLargeInt(Key);
                Q.FieldByName(QStringLiteral("Val"))->SetAsVariant(Model.Put(Key, Random));
                Q.Post();
            } else if (Op <= 2) {  // edit a row read or not yet read
                Q.SetRecNo(1 + int(Random.bounded(std::min(Q.FetchedRowCount() + 300, 3000))));
                const qint64 Key = Q.FieldByName(QStringLiteral("Id"))->AsLargeInt();
                Q.Edit();
                Q.FieldByName(QStringLiteral("Val"))->SetAsVariant(Model.Put(Key, Random));
                Q.Post();
            } else if (Op == 3) {  // delete
                Q.SetRecNo(1 + int(Random.bounded(std::min(Q.FetchedRowCount(), 500))));
                Model.Remove(Q.FieldByName(QStringLiteral("Id"))->AsLargeInt());
                Q.Delete();
            } else if (Op == 4) {  // rows unread again: the server sums them, local changes included
                Q.First();
                Q.Refresh();
                QVERIFY(!Q.FetchedAll());
            } else {  // a change given up leaves the totals alone
                Q.Edit();
                Q.FieldByName(QStringLiteral("Val"))->SetAsVariant(123456);
                Q.Cancel();
            }
            CHECK_TOTAL(Totals, Model);
        }
        // The model itself agrees with the walk the footer once did.
        const double Walked = Walk(&Q, QStringLiteral("Val"));
        QVERIFY(Near(Walked, Model.Expected()));
        Totals.Recalculate();
        CHECK_TOTAL(Totals, Model);
        Q.Close();
        QCOMPARE(double(Totals.Value(0)), 0.0);
        Q.Open();
        CHECK_TOTAL(Totals, Model);
    }

    // A post the server refuses, and a dataset left in edit or insert, change nothing.
    void sqlRefusedAndPendingChanges_data() { KeshTest::AddDriverRows(); }
    void sqlRefusedAndPendingChanges()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = Db->NewTable(QStringLiteral("Id %AUTOKEY%, Qty INTEGER CHECK (Qty >= 0)"));
        QStringList Rows;
        for (int i = 1; i <= 500; ++i)
            Rows << QStringLiteral("(%1)").arg(i);
        Db->Exec(QStringLiteral("INSERT INTO %1 (Qty) VALUES %2").arg(T, Rows.join(QLatin1Char(','))));
        const long double Sum = 500 * 501 / 2;
        TADOTable Table;
        Table.SetConnection(Db->Connection());
        Table.SetTableName(T);
        Table.Open();
        TDataSetTotals Totals;
        Totals.SetFieldNames({QStringLiteral("Qty")});
        Totals.SetDataSet(&Table);
        QTRY_VERIFY(Totals.Ready());
        QCOMPARE(Totals.Value(0), Sum);

        Table.Edit();
        Table.FieldByName(QStringLiteral("Qty"))->SetAsInteger(-5);
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, Table.Post());
        QCOMPARE(Table.State(), dsEdit);
        QCOMPARE(Totals.Value(0), Sum);
        Totals.Recalculate();  // an edit not posted is not a row of the dataset yet
        QTRY_VERIFY(Totals.Ready());
        QCOMPARE(Totals.Value(0), Sum);
        Table.FieldByName(QStringLiteral("Qty"))->SetAsInteger(1001);  // row 1: 1 -> 1001
        Table.Post();
        QCOMPARE(Totals.Value(0), Sum + 1000);

        Table.Insert();
        Table.FieldByName(QStringLiteral("Qty"))->SetAsInteger(7);
        Totals.Recalculate();
        QTRY_VERIFY(Totals.Ready());
        QCOMPARE(Totals.Value(0), Sum + 1000);
        Table.Post();
        QCOMPARE(Totals.Value(0), Sum + 1007);
    }

    // Where another connection would not see the rows as the dataset does (an SQLite
    // database in memory, rows written in a transaction not yet committed) the sum is
    // still that of the rows the dataset has.
    void sumsWhatTheDataSetSees_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<bool>("memory");
        QTest::newRow("sqlite in memory") << QStringLiteral("sqlite") << true;
        QTest::newRow("sqlite transaction") << QStringLiteral("sqlite") << false;
        QTest::newRow("postgres transaction") << QStringLiteral("postgres") << false;
    }
    void sumsWhatTheDataSetSees()
    {
        QFETCH(bool, memory);
        std::unique_ptr<KeshTest::TTestDatabase> Db;
        TADOConnection Memory;
        TADOConnection* C = &Memory;
        QString T = QStringLiteral("Items");
        if (memory) {
            Memory.SetConnectionString(QStringLiteral("Driver=QSQLITE;Database=:memory:"));
            Memory.Open();
            Memory.Execute(QStringLiteral("CREATE TABLE Items (Id INTEGER PRIMARY KEY, Qty INTEGER)"));
        } else {
            KESH_OPEN_TEST_DB(Opened);
            Db = std::move(Opened);
            C = Db->Connection();
            T = Db->NewTable(QStringLiteral("Id %AUTOKEY%, Qty INTEGER"));
            C->BeginTrans();
        }
        QStringList Rows;
        for (int i = 1; i <= 1000; ++i)
            Rows << QStringLiteral("(%1, %1)").arg(i);
        C->Execute(QStringLiteral("INSERT INTO %1 (Id, Qty) VALUES %2").arg(T, Rows.join(QLatin1Char(','))));
        TADOQuery Q;
        Q.SetConnection(C);
        Q.SetSQL({QStringLiteral("SELECT * FROM %1 WHERE Qty > :Low").arg(T)});
        Q.Parameters()->ParamByName(QStringLiteral("Low"))->Value = 10;
        Q.Open();
        TDataSetTotals Totals;
        Totals.SetFieldNames({QStringLiteral("Qty")});
        Totals.SetDataSet(&Q);
        QTRY_VERIFY(Totals.Ready());
        QCOMPARE(double(Totals.Value(0)), 1000.0 * 1001 / 2 - 55);
        QVERIFY(!Q.FetchedAll());
        if (!memory)
            C->RollbackTrans();
    }

    // A clone shares its source's rows: the totals of each follow the writes of both,
    // also after the other one closes.
    void clonesFollowEachOther_data() { KeshTest::AddDriverRows(); }
    void clonesFollowEachOther()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = Db->NewTable(QStringLiteral("Id %AUTOKEY%, Qty INTEGER"));
        Db->Exec(QStringLiteral("INSERT INTO %1 (Qty) VALUES (1), (2), (3), (4)").arg(T));
        TADOTable Source;
        Source.SetConnection(Db->Connection());
        Source.SetTableName(T);
        Source.Open();
        TADODataSet Clone;
        Clone.Clone(&Source);
        TDataSetTotals OfSource, OfClone;
        for (TDataSetTotals* Totals : {&OfSource, &OfClone})
            Totals->SetFieldNames({QStringLiteral("Qty")});
        OfSource.SetDataSet(&Source);
        OfClone.SetDataSet(&Clone);
        QTRY_VERIFY(OfSource.Ready() && OfClone.Ready());
        Clone.Last();
        Clone.Edit();
        Clone.FieldByName(QStringLiteral("Qty"))->SetAsInteger(40);  // 4 -> 40
        Clone.Post();
        Source.First();
        Source.Delete();  // 1
        QCOMPARE(double(OfSource.Value(0)), 2.0 + 3 + 40);
        QCOMPARE(double(OfClone.Value(0)), 2.0 + 3 + 40);
        Source.Close();
        Clone.Append();
        Clone.FieldByName(QStringLiteral("Qty"))->SetAsInteger(100);
        Clone.Post();
        QCOMPARE(double(OfSource.Value(0)), 0.0);
        QCOMPARE(double(OfClone.Value(0)), 145.0);
    }

    // A client dataset holds every row: the sums are taken in memory, exactly for
    // integers and currency, and follow every change.
    void clientMatchesWalk_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<int>("scale");  // -1: floating
        QTest::newRow("integer") << int(ftInteger) << 0;
        QTest::newRow("largeint") << int(ftLargeint) << 0;
        QTest::newRow("currency") << int(ftCurrency) << 2;
        QTest::newRow("bcd") << int(ftBCD) << 2;
        QTest::newRow("float") << int(ftFloat) << -1;
    }
    void clientMatchesWalk()
    {
        QFETCH(int, type);
        QFETCH(int, scale);
        TClientDataSet Ds;
        Ds.FieldDefs().Add(QStringLiteral("Id"), ftInteger);
        Ds.FieldDefs().Add(QStringLiteral("Val"), TFieldType(type));
        Ds.CreateDataSet();
        TModel Model;
        Model.Scale = std::max(scale, 0);
        Model.Floating = scale < 0;
        QRandomGenerator Random(77);
        auto SetVal = [&](qint64 Key) {
            const QVariant V = Model.Put(Key, Random);
            TField* F = Ds.FieldByName(QStringLiteral("Val"));
            if (type != ftInteger) {
                F->SetAsVariant(V);
                return;
            }
            F->SetAsInteger(int(V.toLongLong() / 4));  // an int field keeps 32 bits
            Model.Units[Key] = V.toLongLong() / 4;
        };
        TDataSetTotals Totals;
        Totals.SetDataSet(&Ds);
        Totals.SetFieldNames({QStringLiteral("Val"), QStringLiteral(""), QStringLiteral("Nope")});
        for (int i = 1; i <= 2000; ++i) {
            Ds.Append();
            Ds.FieldByName(QStringLiteral("Id"))->SetAsInteger(i);
            SetVal(i);
            Ds.Post();
        }
        CHECK_TOTAL(Totals, Model);
        Totals.Recalculate();
        CHECK_TOTAL(Totals, Model);
        int NextKey = 5000;
        for (int Step = 0; Step < 200; ++Step) {
            const int Op = int(Random.bounded(4));
            Ds.SetRecNo(1 + int(Random.bounded(Ds.RecordCount())));
            const int Key = Ds.FieldByName(QStringLiteral("Id"))->AsInteger();
            if (Op == 0) {
                Ds.Insert();
                Ds.FieldByName(QStringLiteral("Id"))->SetAsInteger(NextKey);
                SetVal(NextKey++);
                Ds.Post();
            } else if (Op == 1) {
                Ds.Edit();
                SetVal(Key);
                Ds.Post();
            } else if (Op == 2) {
                Model.Remove(Key);
                Ds.Delete();
            } else {
                Ds.Refresh();
            }
            CHECK_TOTAL(Totals, Model);
        }
        QVERIFY(Near(Walk(&Ds, QStringLiteral("Val")), Model.Expected()));
        Ds.EmptyDataSet();
        QCOMPARE(double(Totals.Value(0)), 0.0);
    }

    // Fields given again in another order (a grid's columns moved) keep their sums at once,
    // without summing the rows again; another set of fields is summed anew.
    void reorderedFields_data()
    {
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<bool>("again");  // summed anew
        QTest::newRow("swapped") << QStringList{QStringLiteral("B"), QString(), QStringLiteral("A")} << false;
        QTest::newRow("gap moved") << QStringList{QString(), QStringLiteral("A"), QStringLiteral("B")} << false;
        QTest::newRow("another field") << QStringList{QStringLiteral("A"), QString(), QStringLiteral("C")} << true;
        QTest::newRow("one more slot") << QStringList{QStringLiteral("A"), QString(), QStringLiteral("B"), QString()} << true;
    }
    void reorderedFields()
    {
        QFETCH(QStringList, names);
        QFETCH(bool, again);
        QString Reason;
        auto Db = KeshTest::TTestDatabase::Open(QStringLiteral("sqlite"), Reason);
        QVERIFY2(Db, qPrintable(Reason));
        const QString T = Db->NewTable(QStringLiteral("Id INTEGER PRIMARY KEY, A INTEGER, B INTEGER, C INTEGER"));
        QVERIFY(Db->Exec(QStringLiteral("WITH RECURSIVE N(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM N WHERE i < 3000) "
                                         "INSERT INTO %1 SELECT i, i, 2 * i, 3 * i FROM N").arg(T)));
        TADOQuery Q;
        Q.SetConnection(Db->Connection());
        Q.SetSQL({QStringLiteral("SELECT * FROM %1").arg(T)});
        Q.Open();
        TDataSetTotals Totals;
        Totals.SetDataSet(&Q);
        Totals.SetFieldNames({QStringLiteral("A"), QString(), QStringLiteral("B")});
        QTRY_VERIFY_WITH_TIMEOUT(Totals.Ready(), 20000);
        QVERIFY(!Q.FetchedAll());
        const std::map<QString, double> Sum{{QString(), 0.0}, {QStringLiteral("A"), 4501500.0},
                                            {QStringLiteral("B"), 9003000.0}, {QStringLiteral("C"), 13504500.0}};
        Totals.SetFieldNames(names);
        if (!again)
            QVERIFY(Totals.Ready());  // nothing to compute
        QTRY_VERIFY_WITH_TIMEOUT(Totals.Ready(), 20000);
        for (int i = 0; i < names.size(); ++i)
            QCOMPARE(double(Totals.Value(i)), Sum.at(names[i]));
        QVERIFY(!Q.FetchedAll());
    }

    // Changed is emitted once per change of a value, not for changes that leave it alone;
    // a handler, which runs inside Post, reads the row just written.
    void changedSignal()
    {
        TClientDataSet Ds;
        Ds.FieldDefs().Add(QStringLiteral("Qty"), ftInteger);
        Ds.FieldDefs().Add(QStringLiteral("Name"), ftString, 10);
        Ds.CreateDataSet();
        TDataSetTotals Totals;
        Totals.SetDataSet(&Ds);
        Totals.SetFieldNames({QStringLiteral("Qty")});
        QList<int> Seen;
        connect(&Totals, &TDataSetTotals::Changed, &Totals, [&] { Seen << Ds.FieldByName(QStringLiteral("Qty"))->AsInteger(); });
        auto Write = [&](bool Append, const char* Field, const QVariant& Value) {
            Append ? Ds.Append() : Ds.Edit();
            Ds.FieldByName(QLatin1String(Field))->SetAsVariant(Value);
            Ds.Post();
        };
        Write(true, "Qty", 5);
        Write(false, "Name", QStringLiteral("x"));
        QCOMPARE(Seen, QList<int>{5});
        Write(true, "Qty", 2);
        Write(false, "Qty", 7);
        QCOMPARE(Seen, QList<int>({5, 2, 7}));
        QCOMPARE(double(Totals.Value(0)), 12.0);
        Totals.SetDataSet(nullptr);
        QCOMPARE(Seen.size(), 4);
        QCOMPARE(double(Totals.Value(0)), 0.0);
    }
};

QTEST_GUILESS_MAIN(TestDataSetTotals)
#include "tst_dataset_totals.moc"
