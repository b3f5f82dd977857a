// The connection helpers and the datasets over Qt SQL: SQLite by default, or any
// connection string given on the command line (a scratch database: it adds rows to the
// tables GuideCustomers and Settings), e.g.
//   database "Driver=QPSQL;Host=127.0.0.1;Port=5432;Database=sales;User=kesh;Password=secret"
#include <Kesh_AdoDB.h>
#include <QCoreApplication>
#include <QSqlDatabase>
#include <QTextStream>

using namespace Kesh;

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);

    //! [connect]
    TQxAdoConnection conn;
    conn.SetConnectionString(argc > 1 ? QString::fromLocal8Bit(argv[1])
                                      : QStringLiteral("Driver=QSQLITE;Database=:memory:"));
    conn.Open();                                   // EDatabaseError with the server's text
    const bool postgres = conn.Database().driverName() == QLatin1String("QPSQL");
    //! [connect]

    //! [schema]
    // The record browser searches a prefix of the name columns: index them so that the
    // database reads the range and the order from one index (see the guide).
    const QString text = postgres ? QStringLiteral("VARCHAR(80)") : QStringLiteral("TEXT COLLATE NOCASE");
    const QString ops = postgres ? QStringLiteral(" text_pattern_ops") : QString();
    if (!conn.Exec(QStringLiteral(
            "CREATE TABLE IF NOT EXISTS GuideCustomers (Cust_id INTEGER PRIMARY KEY, Name_a %1 NOT NULL, Name_e %1 NOT NULL,"
            " City VARCHAR(3), Balance NUMERIC(14,2), Joined INTEGER);"
            "CREATE INDEX IF NOT EXISTS GuideCustomers_Name_a ON GuideCustomers (Name_a%2);"
            "CREATE INDEX IF NOT EXISTS GuideCustomers_Name_e ON GuideCustomers (Name_e%2);"
            "CREATE TABLE IF NOT EXISTS Settings (Setting_id INTEGER PRIMARY KEY, Setting_name VARCHAR(100),"
            " Setting_value VARCHAR(255))").arg(text, ops)))
        throw EDatabaseError(conn.ErrorMessage());  // the helpers keep their error instead of raising
    //! [schema]

    //! [append]
    TADOTable customers;                           // a whole table, editable
    customers.SetConnection(&conn);
    customers.SetTableName(QStringLiteral("GuideCustomers"));
    customers.Open();
    const struct { const char* arabic; const char* english; const char* city; double balance; } rows[] = {
        {"مؤسسة النور", "Al Noor Est.", "RUH", 1250.50}, {"شركة الأمل", "Al Amal Co.", "JED", 830},
        {"مكتبة المعرفة", "Knowledge Bookshop", "RUH", 0}};
    conn.BeginTrans();                             // one transaction for the three rows
    for (const auto& row : rows) {
        customers.Append();
        customers.FieldByName(QStringLiteral("Cust_id"))->SetAsInteger(
            conn.GetNextID(QStringLiteral("GuideCustomers"), QStringLiteral("Cust_id"), QString()).toInt());
        customers.FieldByName(QStringLiteral("Name_a"))->SetAsString(QString::fromUtf8(row.arabic));
        customers.FieldByName(QStringLiteral("Name_e"))->SetAsString(QString::fromUtf8(row.english));
        customers.FieldByName(QStringLiteral("City"))->SetAsString(QString::fromUtf8(row.city));
        customers.FieldByName(QStringLiteral("Balance"))->SetAsFloat(row.balance);
        customers.FieldByName(QStringLiteral("Joined"))->SetAsInteger(DateToInt(Date()));
        customers.Post();
    }
    conn.CommitTrans();
    //! [append]

    //! [query]
    TADOQuery query;                               // a command with :named parameters
    query.SetConnection(&conn);
    query.SetSQL({QStringLiteral("SELECT Cust_id, Name_e, Balance FROM GuideCustomers"),
                  QStringLiteral("WHERE City = :City ORDER BY Cust_id")});
    query.Parameters()->ParamByName(QStringLiteral("City"))->Value = QStringLiteral("RUH");
    query.Open();
    for (query.First(); !query.Eof(); query.Next())
        out << query.FieldByName(QStringLiteral("Cust_id"))->AsInteger() << ' '
            << query.FieldByName(QStringLiteral("Name_e"))->AsString() << ' '
            << query.FieldByName(QStringLiteral("Balance"))->AsFloat() << '\n';
    //! [query]

    //! [helpers]
    // Table, field and criteria go to the server as written: criteria are SQL conditions.
    out << conn.DCount(QStringLiteral("GuideCustomers"), QStringLiteral("City = 'RUH'")) << ' '   // 2
        << conn.DSum(QStringLiteral("GuideCustomers"), QStringLiteral("Balance"), QString()).toDouble() << ' '
        << conn.DMax(QStringLiteral("GuideCustomers"), QStringLiteral("Cust_id"), QString()).toInt() << ' '
        << conn.DLookup(QStringLiteral("GuideCustomers"), QStringLiteral("Name_e"), QStringLiteral("Cust_id = 2")).toString()
        << '\n';
    out << conn.NameLookup(QStringLiteral("GuideCustomers"), QStringLiteral("Cust_id = 1"), bdRightToLeft) << '\n';
    QVector<QVariant> first(2);                    // the first row of any query
    if (conn.DLookup(QStringLiteral("SELECT Name_e, City FROM GuideCustomers ORDER BY Balance DESC"), first))
        out << first[0].toString() << ' ' << first[1].toString() << '\n';
    //! [helpers]

    //! [settings]
    conn.SaveSetting(1, QStringLiteral("Company name"), QStringLiteral("Kesh Trading"));
    out << conn.ReadSetting(1, QString()).toString() << ' '
        << conn.ReadSetting(2, QStringLiteral("SAR")).toString() << '\n';  // new: stored with its default
    //! [settings]
    return 0;
}
