// The record browser component: its columns, the SQL it builds for every database type,
// the filter terms, and typed text that must stay text on SQLite and PostgreSQL.
#include <Kesh_AdoDB.h>

#include "db_test_helper.h"
#include "dialog_helper.h"

#include <QSqlError>
#include <QSqlQuery>
#include <QtTest>

using namespace Kesh;

Q_DECLARE_METATYPE(Kesh::TxDatabaseType)
Q_DECLARE_METATYPE(Kesh::TFieldType)
Q_DECLARE_METATYPE(Kesh::TxFieldClasses)

namespace {

// A browser over Customers with Code, the two names (the English one sorted by) and a date.
void SetUpCustomers(TQxAdoBrowser& B, const QString& Table = QStringLiteral("Customers"))
{
    B.SetSourceTables(Table);
    for (auto [A, E, Type] : {std::tuple{"Code", "Code", ftInteger}, std::tuple{"Name_a", "Name_e", ftWideString}}) {
        TQxAdoBrowserItem* Item = B.BrowserItems()->Add();
        Item->SetFieldName_a(QLatin1String(A));
        Item->SetFieldName_e(QLatin1String(E));
        Item->SetDataType(Type);
    }
}

} // namespace

class TestQxAdoBrowser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itemNamesFillCaptionsAndWidth_data()
    {
        QTest::addColumn<QString>("captionBefore");
        QTest::addColumn<int>("widthBefore");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("captionAfter");
        QTest::addColumn<int>("widthAfter");
        QTest::newRow("empty caption takes the name") << QString() << 0 << "Name_e" << "Name_e" << 10;
        QTest::newRow("caption kept") << "Customer" << 0 << "Name_e" << "Customer" << 10;
        QTest::newRow("width kept") << QString() << 25 << "Name_e" << "Name_e" << 25;
        QTest::newRow("empty name clears caption") << "Customer" << 5 << QString() << QString() << 5;
    }
    void itemNamesFillCaptionsAndWidth()
    {
        QFETCH(QString, captionBefore);
        QFETCH(int, widthBefore);
        QFETCH(QString, name);
        TQxAdoBrowser B;
        TQxAdoBrowserItem* Item = B.BrowserItems()->Add();
        Item->SetCaption_e(captionBefore);
        Item->SetCaption_a(captionBefore);
        Item->SetWidth(widthBefore);
        Item->SetFieldName_e(name);
        Item->SetFieldName_a(name);
        QTEST(Item->GetCaption_e(), "captionAfter");
        QTEST(Item->GetCaption_a(), "captionAfter");
        QTEST(Item->GetWidth(), "widthAfter");
        QCOMPARE(Item->Browser(), &B);
    }

    void collectionFindsByEitherName()
    {
        TQxAdoBrowser B;
        SetUpCustomers(B);
        QCOMPARE(B.BrowserItems()->GetItemIndex(QStringLiteral("name_A")), 1);
        QCOMPARE(B.BrowserItems()->GetItemIndex(QStringLiteral("Name_e")), 1);
        QCOMPARE(B.BrowserItems()->GetItemIndex(QStringLiteral("Missing")), -1);
        TQxAdoBrowserItem* Item = B.BrowserItems()->Add();
        Item->SetFieldName_a(QStringLiteral("City_a"));
        QCOMPARE(Item->GetDisplayName(), QStringLiteral("City_a"));
        QCOMPARE(Item->GetFieldName_e(), QStringLiteral("City_a"));  // filled from the other
        B.BrowserItems()->Delete(0);
        QCOMPARE(B.BrowserItems()->Count(), 2);
        QCOMPARE(B.BrowserItems()->Items(0)->Index(), 0);
    }

    void buildSqlSelect_data()
    {
        QTest::addColumn<bool>("rightToLeft");
        QTest::addColumn<QString>("sourceTable");
        QTest::addColumn<bool>("noItems");
        QTest::addColumn<QString>("expected");
        QTest::newRow("english") << false << QString() << false << "SELECT Code, Name_e FROM Customers";
        QTest::newRow("arabic") << true << QString() << false << "SELECT Code, Name_a FROM Customers";
        QTest::newRow("prefixed") << false << "C" << false << "SELECT C.Code, C.Name_e FROM Customers";
        QTest::newRow("no items") << false << QString() << true << "SELECT * FROM Customers";
    }
    void buildSqlSelect()
    {
        QFETCH(bool, rightToLeft);
        QFETCH(QString, sourceTable);
        QFETCH(bool, noItems);
        TQxAdoBrowser B;
        SetUpCustomers(B);
        for (int i = 0; i < B.BrowserItems()->Count(); ++i)
            B.BrowserItems()->Items(i)->SetSourceTable(sourceTable);
        if (noItems)
            B.BrowserItems()->Clear();
        // An item without a name in this language is left out.
        B.BrowserItems()->Add()->SetFieldName_a(rightToLeft ? QString() : QStringLiteral("OnlyArabic"));
        if (!rightToLeft)
            B.BrowserItems()->Items(B.BrowserItems()->Count() - 1)->SetFieldName_a(QStringLiteral("OnlyArabic"));
        QTEST(B.BuildSqlSelect(rightToLeft), "expected");
        Application()->SetBiDiMode(rightToLeft ? bdRightToLeft : bdLeftToRight);
        QTEST(B.property("SqlSelect").toString(), "expected");
        Application()->SetBiDiMode(bdLeftToRight);
    }

    void queryText_data()
    {
        QTest::addColumn<TxDatabaseType>("type");
        QTest::addColumn<int>("sortIndex");
        QTest::addColumn<QString>("search");
        QTest::addColumn<QString>("criteria");
        QTest::addColumn<QString>("filter");
        QTest::addColumn<QString>("expected");
        const QString Sel = QStringLiteral("SELECT Code, Name_e FROM Customers");
        QTest::newRow("unknown, nothing") << dtUnknown << 1 << "" << "" << "" << Sel + " ORDER BY Name_e";
        QTest::newRow("unknown, search") << dtUnknown << 1 << "ab" << "" << ""
                                         << Sel + " WHERE (Name_e Like 'ab%') ORDER BY Name_e";
        QTest::newRow("unknown, all three") << dtUnknown << 1 << "ab" << "Active = 1" << "(Code = 5)"
                                            << Sel + " WHERE (Name_e Like 'ab%') AND Active = 1 AND (Code = 5) ORDER BY Name_e";
        QTest::newRow("sql server, nothing") << dtSqlServer << 1 << "" << "" << ""
                                             << "SELECT TOP 30 Code, Name_e FROM Customers ORDER BY Name_e";
        QTest::newRow("sql server, criteria") << dtSqlServer << 0 << "" << "Active = 1" << ""
                                              << "SELECT TOP 30 Code, Name_e FROM Customers WHERE Active = 1 ORDER BY Code";
        QTest::newRow("oracle, nothing") << dtOracle << 1 << "" << "" << ""
                                         << Sel + " WHERE (RowNum <= 30)  ORDER BY Name_e";
        QTest::newRow("oracle, search") << dtOracle << 1 << "ab" << "" << ""
                                        << Sel + " WHERE (RowNum <= 30)  AND (Name_e Like 'ab%') ORDER BY Name_e";
        QTest::newRow("sqlite, search") << dtSQLite << 1 << "ab" << "" << ""
                                        << Sel + " WHERE (Name_e Like 'ab%') ORDER BY Name_e LIMIT 30";
        QTest::newRow("sqlite, number column") << dtSQLite << 0 << "12" << "" << ""
                                               << Sel + " WHERE (Code Like '12%') ORDER BY Code LIMIT 30";
        QTest::newRow("postgres, text column") << dtPostgreSQL << 1 << "ab" << "" << "(Code = 5)"
                                               << Sel + " WHERE (Name_e Like 'ab%') AND (Code = 5) ORDER BY Name_e USING ~<~ LIMIT 30";
        QTest::newRow("postgres, number column") << dtPostgreSQL << 0 << "12" << "" << ""
                                                 << Sel + " WHERE (CAST(Code AS TEXT) Like '12%') ORDER BY Code LIMIT 30";
        QTest::newRow("quote doubled") << dtSQLite << 1 << "O'B" << "" << ""
                                       << Sel + " WHERE (Name_e Like 'O''B%') ORDER BY Name_e LIMIT 30";
        QTest::newRow("wildcards kept") << dtUnknown << 1 << "a_b%" << "" << ""
                                        << Sel + " WHERE (Name_e Like 'a_b%%') ORDER BY Name_e";
    }
    void queryText()
    {
        QFETCH(TxDatabaseType, type);
        QFETCH(int, sortIndex);
        QFETCH(QString, search);
        QFETCH(QString, criteria);
        QFETCH(QString, filter);
        TQxAdoBrowser B;
        SetUpCustomers(B);
        B.SetDatabaseType(type);
        B.SetCriteria(criteria);
        QTEST(B.BuildQueryText(sortIndex, search, filter, false), "expected");
    }

    void filterTerm_data()
    {
        QTest::addColumn<TxDatabaseType>("type");
        QTest::addColumn<TFieldType>("dataType");
        QTest::addColumn<TxFieldClasses>("fieldClass");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("error");  // a word of the English message, empty: accepted
        QTest::newRow("text anywhere") << dtUnknown << ftString << fcStandard << "ab" << "(C Like '%ab%')" << "";
        QTest::newRow("wide text, quote") << dtUnknown << ftWideString << fcStandard << "O'Brien"
                                          << "(C Like '%O''Brien%')" << "";
        QTest::newRow("integer time") << dtUnknown << ftSmallint << fcTime << "14:30" << "(C = 1430)" << "";
        QTest::newRow("bad time") << dtUnknown << ftSmallint << fcTime << "25:00" << "" << "time";
        QTest::newRow("time with text") << dtUnknown << ftSmallint << fcTime << "1:2; DROP" << "" << "time";
        QTest::newRow("integer date") << dtUnknown << ftInteger << fcDate << "31-1-2024" << "(C = 20240131)" << "";
        QTest::newRow("bad date") << dtUnknown << ftInteger << fcDate << "31-2-2024" << "" << "date";
        QTest::newRow("date-time legacy") << dtUnknown << ftDateTime << fcStandard << "1-2-2024" << "(C = #1-2-2024#)" << "";
        QTest::newRow("date-time legacy, text after the year") << dtUnknown << ftDateTime << fcStandard
                                                             << "1-2-2024-#) OR (1=1" << "" << "date";
        QTest::newRow("integer date, text after the year") << dtUnknown << ftInteger << fcDate << "1-2-2024-x" << "" << "date";
        QTest::newRow("date-time sqlite") << dtSQLite << ftDateTime << fcStandard << "1-2-2024" << "(C = '2024-02-01')" << "";
        QTest::newRow("date-time postgres") << dtPostgreSQL << ftDateTime << fcStandard << "1-2-2024"
                                            << "(C = DATE '2024-02-01')" << "";
        QTest::newRow("date-time refused") << dtPostgreSQL << ftDateTime << fcStandard << "1-2-2024') OR ('1'='1"
                                           << "" << "date";
        QTest::newRow("number") << dtUnknown << ftInteger << fcStandard << "5" << "(C = 5)" << "";
        QTest::newRow("negative decimal") << dtUnknown << ftFloat << fcStandard << "-2.5e3" << "(C = -2.5e3)" << "";
        QTest::newRow("number with injection") << dtUnknown << ftInteger << fcStandard << "5 OR 1=1" << "" << "number";
        QTest::newRow("comment") << dtSQLite << ftFloat << fcStandard << "5--" << "" << "number";
        QTest::newRow("boolean postgres") << dtPostgreSQL << ftBoolean << fcStandard << "1" << "(C = TRUE)" << "";
        QTest::newRow("boolean legacy") << dtUnknown << ftBoolean << fcStandard << "0" << "(C = 0)" << "";
    }
    void filterTerm()
    {
        QFETCH(TxDatabaseType, type);
        QFETCH(TFieldType, dataType);
        QFETCH(TxFieldClasses, fieldClass);
        QFETCH(QString, input);
        QFETCH(QString, error);
        TQxAdoBrowser B;
        B.SetDatabaseType(type);
        TQxAdoBrowserItem* Item = B.BrowserItems()->Add();
        Item->SetFieldName_e(QStringLiteral("C"));
        Item->SetCaption_e(QStringLiteral("Column C"));
        Item->SetFieldName_a(QStringLiteral("C"));
        Item->SetCaption_a(QStringLiteral("العمود"));
        Item->SetDataType(dataType);
        Item->SetFieldClass(fieldClass);
        QString Message;
        QTEST(B.FilterTerm(0, input, false, &Message), "expected");
        QVERIFY2(error.isEmpty() ? Message.isEmpty() : Message.contains(error), qPrintable(Message));
        if (!error.isEmpty()) {
            QVERIFY(Message.contains(QStringLiteral("Column C")));
            B.FilterTerm(0, input, true, &Message);  // the Arabic message names the Arabic title
            QVERIFY(Message.contains(QStringLiteral("العمود")) && Message.contains(QStringLiteral("ليست")));
        }
    }

    void showBrowserWithoutItemsRefuses()
    {
        TQxAdoBrowser B;
        B.setObjectName(QStringLiteral("brCustomers"));
        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        QVERIFY_THROWS_EXCEPTION(EAbort, B.ShowBrowser());
        QCOMPARE(Driver.Seen.size(), 1);
        QCOMPARE(Driver.Seen[0].Text, QStringLiteral("brCustomers\r\nNo fields has been defined in the browser."));
    }

    void adjustDataTypes_data() { KeshTest::AddDriverRows(); }
    void adjustDataTypes()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = Db->NewTable(QStringLiteral(
            "Code INTEGER, Name_e VARCHAR(40), Price REAL, Day INTEGER"));
        TQxAdoConnection Conn;
        Conn.SetConnectionString(Db->ConnectionString());
        Conn.Open();
        TQxAdoBrowser B;
        B.SetConnection(&Conn);
        B.SetSourceTables(T);
        for (const char* N : {"Code", "Name_e", "Price", "Day"}) {
            TQxAdoBrowserItem* Item = B.BrowserItems()->Add();
            Item->SetFieldName_a(QLatin1String(N));
            Item->SetFieldName_e(QLatin1String(N));
        }
        B.BrowserItems()->Items(3)->SetFieldClass(fcDate);
        B.BrowserItems()->Items(3)->SetDataType(ftInteger);
        B.AdjustDataTypes();
        QCOMPARE(B.BrowserItems()->Items(0)->GetDataType(), ftInteger);
        QCOMPARE(B.BrowserItems()->Items(1)->GetDataType(), ftWideString);
        QCOMPARE(B.BrowserItems()->Items(2)->GetDataType(), ftFloat);
        QCOMPARE(B.BrowserItems()->Items(3)->GetDataType(), ftInteger);  // fcDate keeps its type
    }

    // Text with quotes, semicolons, comment marks, backslashes and Arabic, through the
    // quick search and the filter, finds exactly its rows and breaks nothing.
    void hostileTextStaysText_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("searchRows");  // rows whose name starts with text
        QTest::addColumn<int>("filterRows");  // rows whose name contains text
        const struct { const char* Name; const char16_t* Text; int Search, Filter; } Cases[] = {
            {"quote", u"O'B", 1, 1},
            {"closing quote", u"x') OR ('1'='1", 0, 0},
            {"semicolon", u"a;b", 1, 1},
            {"drop", u"'; DROP TABLE t; --", 0, 0},
            {"comment", u"--", 1, 2},
            {"block comment", u"/*", 1, 1},
            {"backslash quote", u"\\'", 1, 1},
            {"arabic", u"عبد", 1, 2},
            {"arabic with quote", u"ع'لي", 1, 1},
            {"percent wildcard", u"%Br", 1, 1},
        };
        for (const char* Driver : {"sqlite", "postgres"})
            for (const auto& C : Cases)
                QTest::addRow("%s %s", Driver, C.Name) << QString::fromLatin1(Driver) << QString::fromUtf16(C.Text)
                                                      << C.Search << C.Filter;
    }
    void hostileTextStaysText()
    {
        QFETCH(QString, text);
        KESH_OPEN_TEST_DB(Db);
        const QString T = Db->NewTable(QStringLiteral("Code INTEGER, Name_e VARCHAR(40)"));
        const QStringList Names = {QStringLiteral("O'Brien"), QStringLiteral("a;b"), QStringLiteral("--x"),
                                   QStringLiteral("y -- z"), QStringLiteral("/* c */"), QStringLiteral("\\'q"),
                                   QStringLiteral("عبد الله"), QStringLiteral("محمد عبد"), QStringLiteral("ع'لي"),
                                   QStringLiteral("Bob")};
        TQxAdoConnection Conn;
        Conn.SetConnectionString(Db->ConnectionString());
        Conn.Open();
        TQxAdoBrowser B;
        B.SetConnection(&Conn);
        SetUpCustomers(B, T);
        B.SetDatabaseType(Db->IsPostgres() ? dtPostgreSQL : dtSQLite);
        for (int i = 0; i < Names.size(); ++i) {
            QSqlQuery Insert(Conn.Database());
            QVERIFY(Insert.prepare(QStringLiteral("INSERT INTO %1 VALUES (?, ?)").arg(T)));
            Insert.addBindValue(i + 1);
            Insert.addBindValue(Names[i]);
            QVERIFY2(Insert.exec(), qPrintable(Insert.lastError().text()));
        }
        const auto Count = [&](const QString& Sql) {
            TADOQuery Q;
            Q.SetConnection(&Conn);
            Q.SetParamCheck(false);
            Q.SetSQL({Sql});
            Q.Open();  // raises on an SQL error
            return Q.RecordCount();
        };
        QTEST(Count(B.BuildQueryText(1, text, QString(), false)), "searchRows");
        QString Error;
        const QString Term = B.FilterTerm(1, text, false, &Error);
        QVERIFY(Error.isEmpty());
        QTEST(Count(B.BuildQueryText(1, QString(), Term, false)), "filterRows");
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(T)).toInt(), Names.size());
    }
};

QTEST_MAIN(TestQxAdoBrowser)
#include "tst_qx_ado_browser.moc"
