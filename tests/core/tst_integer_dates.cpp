// Integer dates: packing, parsing, names, arithmetic, and the Hijri calendar checked day by
// day against Qt's own tabular Islamic calendar.
#include <Kesh.h>

#include <QCalendar>
#include <QDate>
#include <QtTest>

#include <limits>

using namespace Kesh;

namespace {

// The tabular Islamic calendar with the Thursday epoch is the one the conversion implements.
// Qt's civil Islamic calendar has the same months but counts from the Friday after, so a
// Gregorian day's Hijri date is the civil date of the day after it.
class TabularIslamic
{
public:
    int ToHijri(const QDate& G) const
    {
        const QCalendar::YearMonthDay P = m_civil.partsFromDate(G.addDays(1));
        return P.year * 10000 + P.month * 100 + P.day;
    }
    // Lenient: day 30 of a 29-day month is the 1st of the next month.
    QDate ToGregorian(int Year, int Month, int Day) const { return m_civil.dateFromParts(Year, Month, 1).addDays(Day - 2); }
    int MonthLength(int Year, int Month) const { return m_civil.daysInMonth(Month, Year); }
    bool Ok() const { return m_civil.isValid() && ToHijri(QDate(2024, 3, 11)) == 14450902; }

private:
    QCalendar m_civil{QCalendar::System::IslamicCivil};
};

int Pack(const QDate& D) { return D.year() * 10000 + D.month() * 100 + D.day(); }

} // namespace

class TestIntegerDates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { Application()->SetBiDiMode(bdLeftToRight); }

    void packing_data()
    {
        QTest::addColumn<int>("date");
        QTest::addColumn<int>("year");
        QTest::addColumn<int>("month");
        QTest::addColumn<int>("day");
        QTest::newRow("gregorian") << 20240305 << 2024 << 3 << 5;
        QTest::newRow("hijri") << 14450901 << 1445 << 9 << 1;
        QTest::newRow("no date") << 0 << 0 << 0 << 0;
        QTest::newRow("unchecked parts") << 20241345 << 2024 << 13 << 45;
        QTest::newRow("negative truncates toward zero") << -20240305 << -2024 << -3 << -5;
    }
    void packing()
    {
        QFETCH(int, date);
        QFETCH(int, year);
        QFETCH(int, month);
        QFETCH(int, day);
        int Y = -1, M = -1, D = -1;
        DateDecode(date, Y, M, D);
        QCOMPARE(QList<int>({Y, M, D}), QList<int>({year, month, day}));
        QCOMPARE(QList<int>({GetYear(date), GetMonth(date), GetDay(date)}), QList<int>({year, month, day}));
        QCOMPARE(DateEncode(year, month, day), date);
        if (date > 0) { // SetDay does not check the day either
            int Set = DateEncode(year, month, 1);
            SetDay(Set, day);
            QCOMPARE(Set, date);
        }
    }

    // Integer dates against TDateTime serials; "both" rows also convert back.
    void serials_data()
    {
        QTest::addColumn<double>("serial");
        QTest::addColumn<int>("date");
        QTest::addColumn<int>("direction"); // 1 serial to date, 2 date to serial, 3 both
        QTest::newRow("plain") << EncodeDate(2024, 3, 5) << 20240305 << 3;
        QTest::newRow("leap day") << EncodeDate(2000, 2, 29) << 20000229 << 3;
        QTest::newRow("zero") << 0.0 << 0 << 3;
        QTest::newRow("negative") << -1.5 << 0 << 1;
        QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN() << 0 << 1;
        QTest::newRow("first day") << 0.5 << 18991230 << 1;
        QTest::newRow("time part ignored") << EncodeDate(2024, 3, 5) + 0.99 << 20240305 << 1;
        QTest::newRow("first day has serial 0") << 0.0 << 18991230 << 2;
        QTest::newRow("no such day") << 0.0 << 20230231 << 2;
    }
    void serials()
    {
        QFETCH(double, serial);
        QFETCH(int, date);
        QFETCH(int, direction);
        if (direction & 1)
            QCOMPARE(DateToInt(serial), date);
        if (direction & 2)
            QCOMPARE(IntToDate(date), serial);
    }

    void asDate_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("expected");
        QTest::newRow("dots") << "5.3.2024" << 20240305;
        QTest::newRow("dashes") << "05-03-2024" << 20240305;
        QTest::newRow("slashes") << "5/3/2024" << 20240305;
        QTest::newRow("colons") << "5:3:2024" << 20240305;
        QTest::newRow("backslashes") << "5\\3\\2024" << 20240305;
        QTest::newRow("hijri") << "1/9/1445" << 14450901;
        QTest::newRow("always day first") << "2024-03-05" << 52324;
        QTest::newRow("no century expansion") << "5/3/24" << 240305;
        QTest::newRow("empty month") << "5//2024" << 20240005;
        QTest::newRow("bad day") << "x.3.2024" << 20240300;
        QTest::newRow("leading blank") << " 5.3.2024" << 20240305;
        QTest::newRow("trailing blank") << "5 .3.2024" << 20240300;
        QTest::newRow("unchecked") << "31.2.2023" << 20230231;
        QTest::newRow("extra field ignored") << "5.3.2024.9" << 20240305;
        QTest::newRow("empty") << "" << 0;
        QTest::newRow("arabic text") << "اليوم" << 0;
    }
    void asDate()
    {
        QFETCH(QString, text);
        QTEST(AsDate(text), "expected");
    }

    void dateToString_data()
    {
        QTest::addColumn<int>("date");
        QTest::addColumn<QString>("expected");
        QTest::newRow("padded") << 20240305 << "05-03-2024";
        QTest::newRow("unchecked") << 20230231 << "31-02-2023";
        QTest::newRow("no date") << 0 << "00-00-0000";
        QTest::newRow("short year") << 240305 << "05-03-0024";
    }
    void dateToString()
    {
        QFETCH(int, date);
        QTEST(DateToString(date), "expected");
    }

    void isDate_data()
    {
        QTest::addColumn<int>("date");
        QTest::addColumn<bool>("isDate");
        QTest::addColumn<bool>("isHijri");
        QTest::newRow("month length unchecked") << 20230231 << true << false;
        QTest::newRow("before 1900") << 18991231 << false << false;
        QTest::newRow("first gregorian") << 19000101 << true << false;
        QTest::newRow("last gregorian") << 20991231 << true << false;
        QTest::newRow("after 2099") << 21000101 << false << false;
        QTest::newRow("first hijri") << 13000101 << true << true;
        QTest::newRow("last hijri") << 14991229 << true << true;
        QTest::newRow("after 1499") << 15000101 << false << false;
        QTest::newRow("month 0") << 20240005 << false << false;
        QTest::newRow("month 13") << 20241301 << false << false;
        QTest::newRow("day 0") << 20240300 << false << false;
        QTest::newRow("day 32") << 20240332 << false << false;
        QTest::newRow("negative") << -14450901 << false << false;
    }
    void isDate()
    {
        QFETCH(int, date);
        QTEST(IsDate(date), "isDate");
        QTEST(IsHijri(date), "isHijri");
    }

    // Values outside the ranges the loops below compare day by day with the reference.
    void convertDate_data()
    {
        QTest::addColumn<int>("date");
        QTest::addColumn<int>("expected");
        // No range check: any packed value is converted by the same arithmetic.
        QTest::newRow("hijri month 13, day 99") << 14451399 << 20241012;
        QTest::newRow("hijri month 0, day 0") << 14450000 << 20230618;
        QTest::newRow("hijri 1300, month 0") << 13000000 << 18821012;
        QTest::newRow("hijri 1499, month 99") << 14999999 << 20840213;
        QTest::newRow("gregorian month 0") << 20240001 << 14450519;
        QTest::newRow("gregorian month 99, day 99") << 20249999 << 14540315;
        QTest::newRow("year 9999") << 99991231 << 96660401;
        QTest::newRow("year 10000") << 100000101 << 96660402;
        QTest::newRow("no date") << 0 << -6409596;
        QTest::newRow("minus one") << -1 << -6409597;
        QTest::newRow("negative gregorian") << -20240305 << -27278885;
        QTest::newRow("negative hijri") << -14450901 << -21309781;
        QTest::newRow("int max") << std::numeric_limits<int>::max() << -2087957068;
        QTest::newRow("int min") << std::numeric_limits<int>::min() << 2075120137;
    }
    void convertDate()
    {
        QFETCH(int, date);
        QTEST(ConvertDate(date), "expected");
    }

    void gregorianToHijriMatchesReferenceEveryDay()
    {
        const TabularIslamic Reference;
        QVERIFY(Reference.Ok());
        int Days = 0, FirstBeyond1499 = 0;
        for (QDate D(1900, 1, 1); D.year() <= 2099; D = D.addDays(1), ++Days) {
            const int G = Pack(D), H = ConvertDate(G), Expected = Reference.ToHijri(D);
            // From 1500 on the year no longer reads as Hijri, so only earlier days go back.
            if (!IsHijri(H) && FirstBeyond1499 == 0)
                FirstBeyond1499 = G;
            QVERIFY2(H == Expected && (!IsHijri(H) || ConvertDate(H) == G),
                     qPrintable(QStringLiteral("%1 -> %2, expected %3, back %4").arg(G).arg(H).arg(Expected).arg(ConvertDate(H))));
        }
        QCOMPARE(Days, 73049);
        QCOMPARE(FirstBeyond1499, 20761127);
    }

    void hijriToGregorianMatchesReferenceEveryDay()
    {
        const TabularIslamic Reference;
        QVERIFY(Reference.Ok());
        int ShortMonths = 0;
        for (int Y = 1300; Y <= 1499; ++Y) {
            for (int M = 1; M <= 12; ++M) {
                const int Length = Reference.MonthLength(Y, M);
                ShortMonths += Length == 29;
                // Month lengths are counted one short of the real calendar's.
                QCOMPARE(GetDaysInMonth(Y * 10000 + M * 100 + 15), Length - 1);
                for (int D = 1; D <= 30; ++D) {
                    const int H = Y * 10000 + M * 100 + D, G = ConvertDate(H), Expected = Pack(Reference.ToGregorian(Y, M, D));
                    // A day the month does not have is the 1st of the next month.
                    const int Back = D <= Length ? H : (M == 12 ? (Y + 1) * 10000 + 101 : Y * 10000 + (M + 1) * 100 + 1);
                    QVERIFY2(G == Expected && ConvertDate(G) == Back,
                             qPrintable(QStringLiteral("%1 -> %2, expected %3, back %4").arg(H).arg(G).arg(Expected).arg(ConvertDate(G))));
                }
            }
        }
        QVERIFY(ShortMonths > 1000); // the rollover branch really ran
    }

    void dateToWords_data()
    {
        QTest::addColumn<int>("date");
        QTest::addColumn<QString>("english");
        QTest::addColumn<QString>("arabic");
        QTest::newRow("tuesday") << 20240305 << "Tue. 5 March, 2024" << "الثلاثاء 5 مارس, 2024";
        QTest::newRow("saturday wraps to 1") << 20240309 << "Sat. 9 March, 2024" << "السبت 9 مارس, 2024";
        QTest::newRow("december") << 20231225 << "Mon. 25 December, 2023" << "الإثنين 25 ديسمبر, 2023";
        QTest::newRow("hijri keeps its numbers") << 14450902 << "Mon. 2 Ramadan, 1445" << "الإثنين 2 رمضان, 1445";
        QTest::newRow("hijri month 3 is jumada")
            << 14450315 << "Fri. 15 Jumada 1st, 1445" << "الجمعة 15 جماد أول, 1445";
        QTest::newRow("hijri last month") << 14451230 << "Sat. 30 Dul-Hija, 1445" << "السبت 30 ذوالحجة, 1445";
    }
    void dateToWords()
    {
        QFETCH(int, date);
        QFETCH(QString, english);
        QFETCH(QString, arabic);
        QCOMPARE(DateToWords(date), english);
        Application()->SetBiDiMode(bdRightToLeft);
        QCOMPARE(DateToWords(date), arabic);
        Application()->SetBiDiMode(bdLeftToRight);
        QCOMPARE(DateToWords(date), english);
    }

    void dateToWordsOfABadMonthDoesNotCrash()
    {
        QVERIFY(DateToWords(20241301).contains(QLatin1String(" 1 , 2024")));
        QVERIFY(DateToWords(0).endsWith(QLatin1String(" 0 , 0")));
    }

    void daysInMonth_data()
    {
        QTest::addColumn<int>("date");
        QTest::addColumn<int>("days");
        QTest::addColumn<int>("left");
        QTest::newRow("leap february") << 20240201 << 29 << 28;
        QTest::newRow("february") << 20230215 << 28 << 13;
        QTest::newRow("century february") << 19000210 << 28 << 18;
        QTest::newRow("400-year february") << 20000201 << 29 << 28;
        QTest::newRow("december") << 20241231 << 31 << 0;
        QTest::newRow("30-day hijri month counts 29") << 14450910 << 29 << 19;
        QTest::newRow("29-day hijri month counts 28") << 14450801 << 28 << 27;
        QTest::newRow("leap dul-hija counts 29") << 14451201 << 29 << 28;
        QTest::newRow("common dul-hija counts 28") << 14461215 << 28 << 13;
    }
    void daysInMonth()
    {
        QFETCH(int, date);
        QTEST(GetDaysInMonth(date), "days");
        QTEST(GetDaysLeft(date), "left");
    }

    void dateDiff_data()
    {
        QTest::addColumn<int>("d1");
        QTest::addColumn<int>("d2");
        QTest::addColumn<QList<int>>("ymd");
        QTest::newRow("months and days") << 20240315 << 20240110 << QList<int>{0, 2, 5};
        QTest::newRow("swapped") << 20240110 << 20240315 << QList<int>{0, 2, 5};
        QTest::newRow("borrows the later month") << 20240301 << 20240131 << QList<int>{0, 1, 1};
        QTest::newRow("borrow across new year") << 20240105 << 20231231 << QList<int>{0, 0, 5};
        QTest::newRow("years") << 20240228 << 20000229 << QList<int>{23, 11, 28};
        QTest::newRow("same day") << 20240305 << 20240305 << QList<int>{0, 0, 0};
        QTest::newRow("hijri through gregorian") << 14450901 << 14451001 << QList<int>{0, 0, 29};
        // Only the first date decides the calendar: the second is read as a Gregorian 1445.
        QTest::newRow("mixed calendars") << 20240310 << 14450901 << QList<int>{578, 6, 9};
        // An invalid date leaves the outputs as they were.
        QTest::newRow("invalid first") << 18991231 << 20240305 << QList<int>{7, 8, 9};
        QTest::newRow("invalid second") << 20240305 << 20241305 << QList<int>{7, 8, 9};
        QTest::newRow("no date") << 0 << 20240305 << QList<int>{7, 8, 9};
    }
    void dateDiff()
    {
        QFETCH(int, d1);
        QFETCH(int, d2);
        int Y = 7, M = 8, D = 9;
        DateDiff(d1, d2, Y, M, D);
        QTEST(QList<int>({Y, M, D}), "ymd");
    }

    void increments_data()
    {
        QTest::addColumn<QString>("step");
        QTest::addColumn<int>("date");
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("expected");
        QTest::newRow("day over new year") << "day" << 20241231 << 1 << 20250101;
        QTest::newRow("day back to leap day") << "day" << 20240301 << -1 << 20240229;
        QTest::newRow("many days") << "day" << 20240101 << 366 << 20250101;
        QTest::newRow("month clamps") << "month" << 20240131 << 1 << 20240229;
        QTest::newRow("month back over year") << "month" << 20240115 << -1 << 20231215;
        QTest::newRow("year clamps leap day") << "year" << 20240229 << 1 << 20250228;
        QTest::newRow("hijri day over month end") << "day" << 14450930 << 1 << 14451001;
        QTest::newRow("hijri month is gregorian") << "month" << 14450901 << 1 << 14451002;
        QTest::newRow("hijri year is gregorian") << "year" << 14450901 << 1 << 14460911;
        QTest::newRow("hijri year back") << "year" << 14450901 << -1 << 14440818;
        QTest::newRow("hijri day before 1900") << "day" << 13000101 << 1 << 13000102;
        QTest::newRow("hijri month before 1900") << "month" << 13000101 << 1 << 13000201;
        QTest::newRow("gregorian before day 0 is no date") << "day" << 19000101 << -3 << 0;
        QTest::newRow("day 1 is the first that packs") << "day" << 19000101 << -1 << 18991231;
        QTest::newRow("beyond year 9999 is no date") << "year" << 20240101 << 8000 << 0;
    }
    void increments()
    {
        QFETCH(QString, step);
        QFETCH(int, date);
        QFETCH(int, count);
        QTEST(step == QLatin1String("day") ? DaysInc(date, count)
              : step == QLatin1String("month") ? MonthsInc(date, count) : YearsInc(date, count), "expected");
    }
};

QTEST_GUILESS_MAIN(TestIntegerDates)
#include "tst_integer_dates.moc"
