// The demo's sample database: made once, consistent, and the same on SQLite and PostgreSQL.
#include "db_test_helper.h"
#include "sample_db.h"

#include <Kesh_AdoDB.h>
#include <QElapsedTimer>
#include <QSqlQuery>
#include <QSqlRecord>

using namespace Kesh;

class TestSampleDb : public QObject
{
    Q_OBJECT
private slots:
    void createsConsistentData_data();
    void createsConsistentData();
};

void TestSampleDb::createsConsistentData_data()
{
    QTest::addColumn<QString>("driver");
    QTest::addColumn<int>("lines");
    for (const char* Driver : {"sqlite", "postgres"}) {
        QTest::addRow("%s-none", Driver) << QString::fromLatin1(Driver) << 0;
        QTest::addRow("%s-odd", Driver) << QString::fromLatin1(Driver) << 1237;
    }
    QTest::addRow("sqlite-full") << QStringLiteral("sqlite") << 100000;
}

void TestSampleDb::createsConsistentData()
{
    QFETCH(int, lines);
    KESH_OPEN_PRIVATE_TEST_DB(Db);
    TQxAdoConnection Conn;
    Conn.SetConnectionString(Db->ConnectionString());
    QElapsedTimer Clock;
    Clock.start();
    Demo::EnsureSampleDatabase(&Conn, lines);
    qInfo("%d invoice lines made in %lld ms", lines, Clock.elapsed());

    QCOMPARE(Conn.DCount(QStringLiteral("Customers"), QString()), 300);
    QCOMPARE(Conn.DCount(QStringLiteral("Items"), QString()), 200);
    QCOMPARE(Conn.DCount(QStringLiteral("InvoiceLines"), QString()), lines);
    QCOMPARE(Conn.DCount(QStringLiteral("Items"), QStringLiteral("Code = 'I0200'")), 1);
    // The names keep their Arabic letters and quotes.
    QCOMPARE(Conn.DLookup(QStringLiteral("Customers"), QStringLiteral("Name_a"), QStringLiteral("Cust_id = 1")).toString(),
             QStringLiteral("مؤسسة النور"));
    QCOMPARE(Conn.DCount(QStringLiteral("Customers"), QStringLiteral("Name_e LIKE 'O''Brien%'")), 10);
    // Every invoice total is the sum of its lines, every line total its quantity times price
    // (to the cent: SQLite keeps decimals as doubles).
    QCOMPARE(Conn.DCount(QStringLiteral("Invoices I"),
                         QStringLiteral("ABS(I.Total - (SELECT SUM(L.Line_total) FROM InvoiceLines L WHERE L.Inv_id = I.Inv_id)) > 0.005")), 0);
    QCOMPARE(Conn.DCount(QStringLiteral("Invoices I"),
                         QStringLiteral("(SELECT COUNT(*) FROM InvoiceLines L WHERE L.Inv_id = I.Inv_id) > 9")), 0);
    QCOMPARE(Conn.DCount(QStringLiteral("Invoices I"),
                         QStringLiteral("NOT EXISTS (SELECT 1 FROM InvoiceLines L WHERE L.Inv_id = I.Inv_id)")), 0);
    QCOMPARE(Conn.DCount(QStringLiteral("InvoiceLines"), QStringLiteral("ABS(Qty * Price - Line_total) > 0.00501")), 0);
    // Balances are what the credit invoices add up to.
    const QString Credit = QStringLiteral("SELECT COALESCE(SUM(Total), 0) FROM Invoices WHERE Payment = 'R'");
    QVector<QVariant> Sum(1);
    QVERIFY(Conn.DLookup(Credit, Sum));
    const long double Balances = AsFloat(Conn.DSum(QStringLiteral("Customers"), QStringLiteral("Balance"), QString()).toString());
    QVERIFY2(qAbs(Balances - AsFloat(Sum[0].toString())) < 0.01L, qPrintable(Sum[0].toString()));
    QCOMPARE(Conn.ReadSetting(Demo::SetCurrencyE, QString()).toString(), QStringLiteral("Riyal"));

    // The record browser's prefix search on a name reads its range and order from an index.
    QSqlQuery Plan(Conn.Database());
    QString Steps;
    if (driver == QLatin1String("postgres")) {
        QVERIFY(Plan.exec(QStringLiteral("SET enable_seqscan = off")));
        QVERIFY(Plan.exec(QStringLiteral("EXPLAIN SELECT * FROM Customers WHERE Name_e LIKE 'Al%' ORDER BY Name_e USING ~<~ LIMIT 30")));
    } else {
        QVERIFY(Plan.exec(QStringLiteral("EXPLAIN QUERY PLAN SELECT * FROM Customers WHERE Name_e LIKE 'Al%' ORDER BY Name_e LIMIT 30")));
    }
    while (Plan.next())
        Steps += Plan.value(Plan.record().count() - 1).toString() + QLatin1Char('\n');
    // A range search in the index (not a scan of all of it), and no sort afterwards.
    const QLatin1String Range = driver == QLatin1String("postgres") ? QLatin1String("Index Scan using customers_name_e")
                                                                    : QLatin1String("SEARCH Customers USING INDEX Customers_Name_e");
    QVERIFY2(Steps.contains(Range, Qt::CaseInsensitive) && !Steps.contains(QLatin1String("TEMP B-TREE"))
                 && !Steps.contains(QLatin1String("Sort")),
             qPrintable(Steps));
    if (driver == QLatin1String("postgres"))
        QVERIFY(Plan.exec(QStringLiteral("RESET enable_seqscan")));

    // A second call leaves a database that has the tables alone.
    Conn.Exec(QStringLiteral("DELETE FROM Items WHERE Item_id = 1"));
    Demo::EnsureSampleDatabase(&Conn, lines);
    QCOMPARE(Conn.DCount(QStringLiteral("Items"), QString()), 199);
}

QTEST_MAIN(TestSampleDb)
#include "tst_sample_db.moc"
