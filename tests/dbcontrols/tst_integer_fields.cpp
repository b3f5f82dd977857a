// Integer date and time fields: their text in both directions and languages, the failures,
// the keystroke table, and the values on SQLite and PostgreSQL.
#include "db_test_helper.h"
#include "dialog_helper.h"
#include "language_scope.h"

#include <Kesh.h>
#include <Kesh_dbControls.h>
#include <platform/data.h>

#include <QtTest>
#include <memory>

using namespace Kesh;
using namespace KeshTest;

namespace {

// A one-row in-memory dataset, in insert state, holding one field of class F named "F".
template <class F>
struct OneField
{
    TClientDataSet Ds;
    F* Field = new F(&Ds);
    explicit OneField(TFieldType Type)
    {
        Field->SetFieldName(QStringLiteral("F"));
        Ds.FieldDefs().Add(QStringLiteral("F"), Type);
        Ds.CreateDataSet();
        Ds.Append();
    }
};

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

class TestIntegerFields : public QObject
{
    Q_OBJECT

private slots:
    void dateText_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("gregorian") << QVariant(20240305) << "5-3-2024";
        QTest::newRow("hijri") << QVariant(14450901) << "1-9-1445";
        QTest::newRow("two-digit day and month") << QVariant(20241231) << "31-12-2024";
        QTest::newRow("null") << QVariant() << "";
    }
    // The text is the same for display and editing, in both languages.
    void dateText()
    {
        QFETCH(QVariant, value);
        for (bool Rtl : {false, true}) {
            Language L(Rtl);
            OneField<TQxDateField> T(ftInteger);
            T.Field->SetValue(value);
            QTEST(T.Field->DisplayText(), "text");
            QTEST(T.Field->Text(), "text");
            QCOMPARE(T.Field->AsInteger(), value.isValid() ? value.toInt() : 0);
            QCOMPARE(T.Field->Value().isNull(), !value.isValid());
        }
    }

    void stringToDate_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("error");
        QTest::addColumn<QString>("errorAr");
        const QString Bad = QStringLiteral("Invalid date value.");
        const QString BadAr = QStringLiteral("قيمة التاريخ غير صحيحة.");
        const QString BadHijri = QStringLiteral("Invalid Hijri date.");
        const QString BadHijriAr = QStringLiteral("قيمة التاريخ الهجري غير صحيحة.");
        QTest::newRow("31-12-2024") << "31-12-2024" << 20241231 << "" << "";
        QTest::newRow("slashes") << "5/3/2024" << 20240305 << "" << "";
        QTest::newRow("dots") << "5.3.2024" << 20240305 << "" << "";
        QTest::newRow("colons and backslashes") << "5:3\\2024" << 20240305 << "" << "";
        QTest::newRow("leap day") << "29-2-2024" << 20240229 << "" << "";
        QTest::newRow("hijri 30th") << "30-12-1445" << 14451230 << "" << "";
        QTest::newRow("empty") << "" << -1 << "" << "";
        QTest::newRow("30 February") << "30-2-2024" << 0 << Bad << BadAr;
        QTest::newRow("29 February of a common year") << "29-2-2023" << 0 << Bad << BadAr;
        QTest::newRow("hijri 31st") << "31-1-1445" << 0 << BadHijri << BadHijriAr;
        QTest::newRow("year between the ranges") << "1-1-1600" << 0 << Bad << BadAr;
        QTest::newRow("year after 2100") << "1-1-2101" << 0 << Bad << BadAr;
        QTest::newRow("month 13") << "1-13-2024" << 0 << Bad << BadAr;
        QTest::newRow("day 0") << "0-1-2024" << 0 << Bad << BadAr;
        QTest::newRow("two parts") << "5-2024" << 0 << Bad << BadAr;
        QTest::newRow("four parts") << "5-3-2024-1" << 0 << Bad << BadAr;
        QTest::newRow("letters") << "a-b-c" << 0 << Bad << BadAr;
    }
    void stringToDate()
    {
        QFETCH(QString, text);
        QFETCH(int, value);
        QFETCH(QString, error);
        QFETCH(QString, errorAr);
        for (bool Rtl : {false, true}) {
            Language L(Rtl);
            OneField<TQxDateField> T(ftInteger);
            int Result = 0;
            const QString E = Message([&] { Result = T.Field->StringToDate(text); });
            QCOMPARE(E, Rtl ? errorAr : error);
            if (error.isEmpty())
                QCOMPARE(Result, value);
            // Through the field's text a failure leaves the value it had.
            T.Field->SetAsInteger(20000101);
            const QString E2 = Message([&] { T.Field->SetAsString(text); });
            QCOMPARE(E2, Rtl ? errorAr : error);
            if (!error.isEmpty())
                QCOMPARE(T.Field->AsInteger(), 20000101);
            else if (value > 0)
                QCOMPARE(T.Field->AsInteger(), value);
            else
                QVERIFY(T.Field->IsNull());
        }
    }

    // Typing nothing into a date or a time shows "Incorrect number." and leaves the field null.
    void emptyTextShowsIncorrectNumber_data()
    {
        QTest::addColumn<bool>("time");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("rightToLeft");
        QTest::newRow("date, empty") << false << "" << false;
        QTest::newRow("date, empty, Arabic") << false << "" << true;
        QTest::newRow("time, empty") << true << "" << false;
        QTest::newRow("time, not a time, Arabic") << true << "ab" << true;
        QTest::newRow("time, 24:00 through the text") << true << "24:00" << false;
    }
    void emptyTextShowsIncorrectNumber()
    {
        QFETCH(bool, time);
        QFETCH(QString, text);
        QFETCH(bool, rightToLeft);
        Language L(rightToLeft);
        OneField<TQxDateField> D(ftInteger);
        OneField<TQxTimeField> T(ftSmallint);
        TField* F = time ? static_cast<TField*>(T.Field) : D.Field;
        F->SetAsInteger(time ? 1200 : 20240305);
        DialogDriver Driver;
        Driver.Click(QStringLiteral("OK"));
        QString E = Message([&] { F->SetText(text); });
        QCOMPARE(E, QString());
        QVERIFY(F->IsNull());
        QCOMPARE(Driver.Seen.size(), 1);
        QCOMPARE(Driver.Seen[0].Text, rightToLeft ? QStringLiteral("الرقم غير صحيح.") : QStringLiteral("Incorrect number."));
    }

    void timeText_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<bool>("format24");
        QTest::addColumn<bool>("rightToLeft");
        QTest::addColumn<QString>("text");
        QTest::newRow("24h midnight") << QVariant(0) << true << false << "00:00";
        QTest::newRow("24h 07:05") << QVariant(705) << true << false << "07:05";
        QTest::newRow("24h 14:30, Arabic") << QVariant(1430) << true << true << "14:30";
        QTest::newRow("12h midnight") << QVariant(0) << false << false << "12:00 am";
        QTest::newRow("12h 12:30 is pm") << QVariant(1230) << false << false << "12:30 pm";
        QTest::newRow("12h 14:30") << QVariant(1430) << false << false << "02:30 pm";
        QTest::newRow("12h 00:05") << QVariant(5) << false << false << "12:05 am";
        QTest::newRow("12h 14:30, Arabic") << QVariant(1430) << false << true << "02:30 م";
        QTest::newRow("12h 09:15, Arabic") << QVariant(915) << false << true << "09:15 ص";
        QTest::newRow("null") << QVariant() << false << false << "";
    }
    void timeText()
    {
        QFETCH(QVariant, value);
        QFETCH(bool, format24);
        QFETCH(bool, rightToLeft);
        Language L(rightToLeft);
        OneField<TQxTimeField> T(ftSmallint);
        T.Field->SetFormat24(format24);
        T.Field->SetValue(value);
        QTEST(T.Field->DisplayText(), "text");
        QTEST(T.Field->Text(), "text");
    }

    void timeParse_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("format24");
        QTest::addColumn<bool>("rightToLeft");
        QTest::addColumn<int>("value");
        QTest::addColumn<QString>("error");
        const QString Bad = QStringLiteral("Invalid Time value.");
        const QString BadAr = QStringLiteral("قيمة الوقت غير صحيحة.");
        QTest::newRow("24h 14:30") << "14:30" << true << false << 1430 << "";
        QTest::newRow("24h dot") << "7.05" << true << false << 705 << "";
        QTest::newRow("24h hours alone") << "9" << true << false << 900 << "";
        QTest::newRow("24h 23:59") << "23:59" << true << false << 2359 << "";
        QTest::newRow("24h 24:00") << "24:00" << true << false << 0 << Bad;
        QTest::newRow("24h 24:00, Arabic") << "24:00" << true << true << 0 << BadAr;
        QTest::newRow("24h 10:60") << "10:60" << true << false << 0 << Bad;
        QTest::newRow("12h pm") << "2:30 pm" << false << false << 1430 << "";
        QTest::newRow("12h PM upper") << "02:30 PM" << false << false << 1430 << "";
        QTest::newRow("12h 12 am") << "12:05 am" << false << false << 5 << "";
        QTest::newRow("12h dot") << "9.15 am" << false << false << 915 << "";
        QTest::newRow("12h Arabic pm") << "02:30 م" << false << true << 1430 << "";
        QTest::newRow("12h Arabic am") << "09:15 ص" << false << true << 915 << "";
        QTest::newRow("12h without a mark") << "14:30" << false << false << 1430 << "";
        QTest::newRow("12h nonsense") << "x" << false << false << 0 << Bad;
        QTest::newRow("12h 13 pm") << "13:00 pm" << false << true << 0 << BadAr;
    }
    void timeParse()
    {
        QFETCH(QString, text);
        QFETCH(bool, format24);
        QFETCH(bool, rightToLeft);
        QFETCH(int, value);
        QFETCH(QString, error);
        Language L(rightToLeft);
        OneField<TQxTimeField> T(ftSmallint);
        T.Field->SetFormat24(format24);
        T.Field->SetAsInteger(1111);
        QCOMPARE(Message([&] { T.Field->SetAsString(text); }), error);
        QCOMPARE(T.Field->AsInteger(), error.isEmpty() ? value : 1111);
    }

    // What the field shows, read back through its text, is the same value.
    void timeRoundTrip_data()
    {
        QTest::addColumn<bool>("format24");
        QTest::addColumn<bool>("rightToLeft");
        QTest::newRow("24h") << true << false;
        QTest::newRow("12h English") << false << false;
        QTest::newRow("12h Arabic") << false << true;
    }
    void timeRoundTrip()
    {
        QFETCH(bool, format24);
        QFETCH(bool, rightToLeft);
        Language L(rightToLeft);
        OneField<TQxTimeField> T(ftSmallint);
        T.Field->SetFormat24(format24);
        for (int Minute = 0; Minute < 24 * 60; Minute += 7) {
            T.Field->SetAsMinIndex(Minute);
            const QString Text = T.Field->Text();
            T.Field->Clear();
            T.Field->SetText(Text);
            QCOMPARE(T.Field->AsMinIndex(), Minute);
        }
    }

    void minIndexAndDateTime()
    {
        OneField<TQxTimeField> T(ftSmallint);
        T.Field->SetAsInteger(1430);
        QCOMPARE(T.Field->AsMinIndex(), 870);
        T.Field->SetAsMinIndex(870);
        QCOMPARE(T.Field->AsInteger(), 1430);
        T.Field->SetAsMinIndex(61);
        QCOMPARE(T.Field->AsInteger(), 101);
        QCOMPARE(T.Field->AsDateTime(), IntToTime(101));
        T.Field->SetAsDateTime(EncodeTime(18, 45, 0, 0));
        QCOMPARE(T.Field->AsInteger(), 1845);
        T.Field->Clear();
        QCOMPARE(T.Field->AsInteger(), 0);
        QVERIFY(T.Field->Value().isNull());
        QCOMPARE(T.Field->DataSize(), 2);

        OneField<TQxDateField> D(ftInteger);
        D.Field->SetAsDateTime(EncodeDate(2024, 3, 5) + 0.75);
        QCOMPARE(D.Field->AsInteger(), 20240305);
        QCOMPARE(D.Field->AsDateTime(), EncodeDate(2024, 3, 5));
        D.Field->SetValue(QStringLiteral("6-3-2024"));
        QCOMPARE(D.Field->AsInteger(), 20240306);
        D.Field->SetValue(20240307);
        QCOMPARE(D.Field->AsString(), QStringLiteral("7-3-2024"));
        QCOMPARE(D.Field->DataSize(), 4);
        QCOMPARE(D.Field->DataType(), ftInteger);
    }

    // Which keys a time box admits; the table of English 12-hour typing is ours.
    void isValidChar_data()
    {
        QTest::addColumn<bool>("format24");
        QTest::addColumn<bool>("rightToLeft");
        QTest::addColumn<QString>("accepted");
        QTest::addColumn<QString>("refused");
        QTest::newRow("24h") << true << false << "0123456789.:/" << " apmAPMxص-";
        QTest::newRow("24h Arabic") << true << true << "0123456789.:/" << " مص";
        QTest::newRow("12h English") << false << false << "0123456789.:/ apmAPM" << "xbqصم-";
        QTest::newRow("12h Arabic") << false << true << "0123456789.:/ صم" << "apmAPM-";
    }
    void isValidChar()
    {
        QFETCH(bool, format24);
        QFETCH(bool, rightToLeft);
        QFETCH(QString, accepted);
        QFETCH(QString, refused);
        Language L(rightToLeft);
        TQxTimeField F;
        F.SetFormat24(format24);
        for (QChar C : accepted)
            QVERIFY2(F.IsValidChar(C), qPrintable(QString(C)));
        for (QChar C : refused)
            QVERIFY2(!F.IsValidChar(C), qPrintable(QString(C)));
        TQxDateField D;
        for (QChar C : QStringLiteral("0123456789-./:\\"))
            QVERIFY(D.IsValidChar(C));
        QVERIFY(!D.IsValidChar(QLatin1Char('a')));
    }

    // The integer date and time are what reaches the database, and what is read back.
    void database_data() { AddDriverRows(); }
    void database()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString Table = Db->NewTable(QStringLiteral("Id %AUTOKEY%, Day INTEGER, At SMALLINT"));
        TADOTable Ds;
        Ds.SetConnection(Db->Connection());
        Ds.SetTableName(Table);
        auto* Day = new TQxDateField(&Ds);
        Day->SetFieldName(QStringLiteral("Day"));
        auto* At = new TQxTimeField(&Ds);
        At->SetFieldName(QStringLiteral("At"));
        At->SetFormat24(false);
        Ds.Open();
        Ds.Append();
        Day->SetText(QStringLiteral("5/3/2024"));
        At->SetText(QStringLiteral("2:30 pm"));
        Ds.Post();
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Day FROM %1").arg(Table)).toInt(), 20240305);
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT At FROM %1").arg(Table)).toInt(), 1430);
        Ds.Close();
        Ds.Open();
        QCOMPARE(Day->DisplayText(), QStringLiteral("5-3-2024"));
        QCOMPARE(At->DisplayText(), QStringLiteral("02:30 pm"));
    }
};

QTEST_MAIN(TestIntegerFields)
#include "tst_integer_fields.moc"
