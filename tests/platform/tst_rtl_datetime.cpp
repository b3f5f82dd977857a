// TDateTime and the calendar routines of the run-time library.
#include "platform/exceptions.h"
#include "platform/rtl.h"

#include <QtTest>

#include <cmath>
#include <limits>

using namespace Kesh;

namespace {

constexpr double MSec = 1.0 / 86400000.0;
const double NaN = std::numeric_limits<double>::quiet_NaN();

} // namespace

class TestRtlDateTime : public QObject
{
    Q_OBJECT

private slots:
    void encodeDate_data();
    void encodeDate();
    void decodeDate_data();
    void decodeDate();
    void encodeTime_data();
    void encodeTime();
    void decodeTime_data();
    void decodeTime();
    void strToTime_data();
    void strToTime();
    void strToTimeRaises();
    void dayOfWeek_data();
    void dayOfWeek();
    void incDay_data();
    void incDay();
    void incMonth_data();
    void incMonth();
    void incMonthOutOfRangeRaises();
    void incYear_data();
    void incYear();
    void calendarFacts_data();
    void calendarFacts();
    void qtConversions_data();
    void qtConversions();
    void qdatetimeFromOtherZone();
    void today();
    void systemTimeFormatsUseClassicSyntax();
    void dateToStr_data();
    void dateToStr();
    void dateToStrOutOfRangeRaises_data();
    void dateToStrOutOfRangeRaises();
    void strToDate_data();
    void strToDate();
    void strToDateTime_data();
    void strToDateTime();
    void cleanup();
};

void TestRtlDateTime::encodeDate_data()
{
    QTest::addColumn<int>("year");
    QTest::addColumn<int>("month");
    QTest::addColumn<int>("day");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<double>("value");

    QTest::newRow("day zero") << 1899 << 12 << 30 << true << 0.0;
    QTest::newRow("1900-01-01") << 1900 << 1 << 1 << true << 2.0;
    QTest::newRow("2024-03-05") << 2024 << 3 << 5 << true << 45356.0;
    QTest::newRow("leap day") << 2024 << 2 << 29 << true << 45351.0;
    QTest::newRow("first day") << 1 << 1 << 1 << true << -693593.0;
    QTest::newRow("last day") << 9999 << 12 << 31 << true << 2958465.0;
    QTest::newRow("no leap day") << 2023 << 2 << 29 << false << 0.0;
    QTest::newRow("no leap day in 1900") << 1900 << 2 << 29 << false << 0.0;
    QTest::newRow("April 31") << 2024 << 4 << 31 << false << 0.0;
    QTest::newRow("month 13") << 2024 << 13 << 1 << false << 0.0;
    QTest::newRow("month 0") << 2024 << 0 << 1 << false << 0.0;
    QTest::newRow("day 0") << 2024 << 1 << 0 << false << 0.0;
    QTest::newRow("year 0") << 0 << 1 << 1 << false << 0.0;
    QTest::newRow("year 10000") << 10000 << 1 << 1 << false << 0.0;
}

void TestRtlDateTime::encodeDate()
{
    QFETCH(int, year);
    QFETCH(int, month);
    QFETCH(int, day);
    QFETCH(bool, valid);
    QFETCH(double, value);

    TDateTime Result = -1;
    QCOMPARE(TryEncodeDate(year, month, day, Result), valid);
    QCOMPARE(IsValidDate(year, month, day), valid);
    if (valid) {
        QCOMPARE(Result, value);
        QCOMPARE(EncodeDate(year, month, day), value);
    } else {
        QCOMPARE(Result, -1.0);
        QVERIFY_THROWS_EXCEPTION(EConvertError, EncodeDate(year, month, day));
    }
}

void TestRtlDateTime::decodeDate_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("year");
    QTest::addColumn<int>("month");
    QTest::addColumn<int>("day");

    QTest::newRow("evening keeps its day") << 45356.75 << 2024 << 3 << 5;
    QTest::newRow("last moment of the day") << 45356.0 + 86399999.6 * MSec << 2024 << 3 << 5;
    QTest::newRow("day zero") << 0.0 << 1899 << 12 << 30;
    QTest::newRow("negative half is day zero") << -0.5 << 1899 << 12 << 30;
    QTest::newRow("negative with time") << -1.25 << 1899 << 12 << 29;
    QTest::newRow("first day") << -693593.0 << 1 << 1 << 1;
    QTest::newRow("last day") << 2958465.99 << 9999 << 12 << 31;
    QTest::newRow("after the last day") << 2958466.0 << 0 << 0 << 0;
    QTest::newRow("before the first day") << -693594.0 << 0 << 0 << 0;
    QTest::newRow("not a number") << NaN << 0 << 0 << 0;
    QTest::newRow("infinite") << std::numeric_limits<double>::infinity() << 0 << 0 << 0;
}

void TestRtlDateTime::decodeDate()
{
    QFETCH(double, value);
    QFETCH(int, year);
    QFETCH(int, month);
    QFETCH(int, day);
    int Y = -1, M = -1, D = -1;
    DecodeDate(value, Y, M, D);
    QCOMPARE(Y, year);
    QCOMPARE(M, month);
    QCOMPARE(D, day);
}

void TestRtlDateTime::encodeTime_data()
{
    QTest::addColumn<int>("hour");
    QTest::addColumn<int>("minute");
    QTest::addColumn<int>("second");
    QTest::addColumn<int>("msec");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<double>("value");

    QTest::newRow("midnight") << 0 << 0 << 0 << 0 << true << 0.0;
    QTest::newRow("noon") << 12 << 0 << 0 << 0 << true << 0.5;
    QTest::newRow("06:00") << 6 << 0 << 0 << 0 << true << 0.25;
    QTest::newRow("12:30") << 12 << 30 << 0 << 0 << true << 750.0 / 1440.0;
    QTest::newRow("last millisecond") << 23 << 59 << 59 << 999 << true << 86399999.0 / 86400000.0;
    QTest::newRow("hour 24") << 24 << 0 << 0 << 0 << false << 0.0;
    QTest::newRow("minute 60") << 0 << 60 << 0 << 0 << false << 0.0;
    QTest::newRow("second 60") << 0 << 0 << 60 << 0 << false << 0.0;
    QTest::newRow("msec 1000") << 0 << 0 << 0 << 1000 << false << 0.0;
    QTest::newRow("negative hour") << -1 << 0 << 0 << 0 << false << 0.0;
    QTest::newRow("negative minute") << 1 << -5 << 0 << 0 << false << 0.0;
}

void TestRtlDateTime::encodeTime()
{
    QFETCH(int, hour);
    QFETCH(int, minute);
    QFETCH(int, second);
    QFETCH(int, msec);
    QFETCH(bool, valid);
    QFETCH(double, value);

    TDateTime Result = -1;
    QCOMPARE(TryEncodeTime(hour, minute, second, msec, Result), valid);
    if (valid) {
        QCOMPARE(Result, value);
        QCOMPARE(EncodeTime(hour, minute, second, msec), value);
    } else {
        QVERIFY_THROWS_EXCEPTION(EConvertError, EncodeTime(hour, minute, second, msec));
    }
}

void TestRtlDateTime::decodeTime_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("time");

    const double Day = 45356;
    QTest::newRow("noon") << Day + 0.5 << "12:00:00.000";
    QTest::newRow("plain") << Day + EncodeTime(13, 45, 30, 250) << "13:45:30.250";
    QTest::newRow("rounds up to the next minute") << Day + EncodeTime(12, 30, 59, 999) + 0.6 * MSec << "12:31:00.000";
    QTest::newRow("rounds down") << Day + EncodeTime(12, 30, 59, 999) + 0.4 * MSec << "12:30:59.999";
    QTest::newRow("rounds to 24:00, stays in the day") << Day + 86399999.7 * MSec << "23:59:59.999";
    QTest::newRow("negative value: time is the fraction's size") << -1.25 << "06:00:00.000";
    QTest::newRow("negative value near midnight") << -2.0 - 86399999.8 * MSec << "23:59:59.999";
    QTest::newRow("midnight") << Day << "00:00:00.000";
    QTest::newRow("not a number") << NaN << "00:00:00.000";
}

void TestRtlDateTime::decodeTime()
{
    QFETCH(double, value);
    QFETCH(QString, time);
    int H = -1, M = -1, S = -1, Ms = -1;
    DecodeTime(value, H, M, S, Ms);
    QCOMPARE(QString::asprintf("%02d:%02d:%02d.%03d", H, M, S, Ms), time);
}

void TestRtlDateTime::strToTime_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QString>("time");

    QTest::newRow("hours and minutes") << "10:30" << true << "10:30:00.000";
    QTest::newRow("hour only") << "10" << true << "10:00:00.000";
    QTest::newRow("blanks around the parts") << " 7 : 5 " << true << "07:05:00.000";
    QTest::newRow("seconds") << "10:15:30" << true << "10:15:30.000";
    QTest::newRow("milliseconds") << "10:15:30.25" << true << "10:15:30.025";
    QTest::newRow("english pm, any case") << "2:30 pM" << true << "14:30:00.000";
    QTest::newRow("12 am is midnight") << "12:05 am" << true << "00:05:00.000";
    QTest::newRow("12 pm is noon") << "12:05 PM" << true << "12:05:00.000";
    QTest::newRow("arabic evening marker") << QString::fromUtf8("02:30 م") << true << "14:30:00.000";
    QTest::newRow("arabic morning marker first") << QString::fromUtf8("ص 9:15") << true << "09:15:00.000";
    QTest::newRow("hour 0 with a marker") << "0:30 am" << false << "";
    QTest::newRow("hour 13 with a marker") << "13:00 pm" << false << "";
    QTest::newRow("hour 24") << "24:00" << false << "";
    QTest::newRow("minute 60") << "10:60" << false << "";
    QTest::newRow("missing minutes") << "10:" << false << "";
    QTest::newRow("missing seconds") << "10:30:" << false << "";
    QTest::newRow("empty") << "" << false << "";
    QTest::newRow("text after") << "10:30 x" << false << "";
    QTest::newRow("two markers") << "am 10:30 pm" << false << "";
    QTest::newRow("five digits") << "10000" << false << "";
    QTest::newRow("point as separator") << "10.30" << false << "";
}

void TestRtlDateTime::strToTime()
{
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(QString, time);
    FormatSettings.DecimalSeparator = QLatin1Char('.');
    FormatSettings.TimeAMString = QString::fromUtf8("ص");
    FormatSettings.TimePMString = QString::fromUtf8("م");

    TDateTime Value = -7;
    QCOMPARE(TryStrToTime(text, Value), ok);
    if (!ok) {
        QCOMPARE(Value, -7.0);
        return;
    }
    int H = -1, M = -1, S = -1, Ms = -1;
    DecodeTime(Value, H, M, S, Ms);
    QCOMPARE(QString::asprintf("%02d:%02d:%02d.%03d", H, M, S, Ms), time);
    QCOMPARE(StrToTime(text), Value);
}

void TestRtlDateTime::strToTimeRaises()
{
    try {
        StrToTime(QStringLiteral("25:00"));
        QFAIL("no exception");
    } catch (const EConvertError& E) {
        QCOMPARE(E.Message, QStringLiteral("'25:00' is not a valid time"));
    }
}

void TestRtlDateTime::dayOfWeek_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("dayOfWeek");

    QTest::newRow("Sunday 2024-03-03") << EncodeDate(2024, 3, 3) << 1;
    QTest::newRow("Tuesday 2024-03-05 evening") << EncodeDate(2024, 3, 5) + 0.9 << 3;
    QTest::newRow("Saturday 1899-12-30") << 0.0 << 7;
    QTest::newRow("Friday 1899-12-29 06:00") << -1.25 << 6;
    QTest::newRow("Monday 0001-01-01") << EncodeDate(1, 1, 1) << 2;
    QTest::newRow("Friday 9999-12-31") << EncodeDate(9999, 12, 31) << 6;
    QTest::newRow("out of range") << 1e12 << 0;
}

void TestRtlDateTime::dayOfWeek()
{
    QFETCH(double, value);
    QFETCH(int, dayOfWeek);
    QCOMPARE(DayOfWeek(value), dayOfWeek);
}

void TestRtlDateTime::incDay_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("days");
    QTest::addColumn<double>("result");

    QTest::newRow("forward") << 45356.75 << 10 << 45366.75;
    QTest::newRow("backward") << 45356.75 << -45356 << 0.75;
    QTest::newRow("default is one day") << 100.5 << 1 << 101.5;
    // 1899-12-30 06:00 is -0.25 written the classic way round: one day on is 1899-12-31 06:00.
    QTest::newRow("negative value forward") << -0.25 << 1 << 1.25;
    QTest::newRow("across day zero backward") << 1.5 << -2 << -1.5;
    QTest::newRow("negative to negative") << -3.75 << -1 << -4.75;
    QTest::newRow("far outside the calendar") << 1e300 << 5 << 1e300;
}

void TestRtlDateTime::incDay()
{
    QFETCH(double, value);
    QFETCH(int, days);
    QFETCH(double, result);
    QCOMPARE(IncDay(value, days), result);
}

void TestRtlDateTime::incMonth_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<int>("months");
    QTest::addColumn<QDate>("expected");

    QTest::newRow("clamped into leap February") << QDate(2024, 1, 31) << 1 << QDate(2024, 2, 29);
    QTest::newRow("clamped into February") << QDate(2023, 1, 31) << 1 << QDate(2023, 2, 28);
    QTest::newRow("backward clamped") << QDate(2024, 3, 31) << -1 << QDate(2024, 2, 29);
    QTest::newRow("across the year end") << QDate(2024, 12, 31) << 2 << QDate(2025, 2, 28);
    QTest::newRow("back across the year") << QDate(2024, 1, 15) << -13 << QDate(2022, 12, 15);
    QTest::newRow("back to January") << QDate(2024, 3, 10) << -2 << QDate(2024, 1, 10);
    QTest::newRow("zero months") << QDate(2024, 5, 31) << 0 << QDate(2024, 5, 31);
    QTest::newRow("31 to 30-day month") << QDate(2024, 5, 31) << 1 << QDate(2024, 6, 30);
    QTest::newRow("a century") << QDate(2000, 2, 29) << 1200 << QDate(2100, 2, 28);
    QTest::newRow("to the first year") << QDate(2, 1, 1) << -12 << QDate(1, 1, 1);
}

void TestRtlDateTime::incMonth()
{
    QFETCH(QDate, date);
    QFETCH(int, months);
    QFETCH(QDate, expected);
    const double Time = 0.625; // 15:00 is kept
    QCOMPARE(IncMonth(QDateToDateTime(date) + Time, months), QDateToDateTime(expected) + Time);
    QCOMPARE(IncMonth(QDateToDateTime(date), months), QDateToDateTime(expected));
}

void TestRtlDateTime::incMonthOutOfRangeRaises()
{
    QVERIFY_THROWS_EXCEPTION(EConvertError, IncMonth(EncodeDate(9999, 12, 1), 1));
    QVERIFY_THROWS_EXCEPTION(EConvertError, IncMonth(EncodeDate(1, 1, 31), -1));
    QVERIFY_THROWS_EXCEPTION(EConvertError, IncMonth(EncodeDate(2024, 1, 1), std::numeric_limits<int>::min()));
    QVERIFY_THROWS_EXCEPTION(EConvertError, IncYear(EncodeDate(2024, 1, 1), std::numeric_limits<int>::max()));
    QVERIFY_THROWS_EXCEPTION(EConvertError, IncMonth(NaN, 1));
    // A negative value before 1899-12-30 keeps its time too: 1899-12-29 06:00 + 1 month.
    QCOMPARE(IncMonth(-1.25, 1), EncodeDate(1900, 1, 29) + 0.25);
}

void TestRtlDateTime::incYear_data()
{
    QTest::addColumn<QDate>("date");
    QTest::addColumn<int>("years");
    QTest::addColumn<QDate>("expected");

    QTest::newRow("leap day to common year") << QDate(2024, 2, 29) << 1 << QDate(2025, 2, 28);
    QTest::newRow("leap day to leap year") << QDate(2024, 2, 29) << -4 << QDate(2020, 2, 29);
    QTest::newRow("plain") << QDate(2024, 3, 5) << -124 << QDate(1900, 3, 5);
}

void TestRtlDateTime::incYear()
{
    QFETCH(QDate, date);
    QFETCH(int, years);
    QFETCH(QDate, expected);
    QCOMPARE(IncYear(QDateToDateTime(date) + 0.5, years), QDateToDateTime(expected) + 0.5);
}

void TestRtlDateTime::calendarFacts_data()
{
    QTest::addColumn<int>("year");
    QTest::addColumn<int>("month");
    QTest::addColumn<bool>("leap");
    QTest::addColumn<int>("days");

    QTest::newRow("2024-02") << 2024 << 2 << true << 29;
    QTest::newRow("2023-02") << 2023 << 2 << false << 28;
    QTest::newRow("1900-02") << 1900 << 2 << false << 28;
    QTest::newRow("2000-02") << 2000 << 2 << true << 29;
    QTest::newRow("2024-04") << 2024 << 4 << true << 30;
    QTest::newRow("2023-12") << 2023 << 12 << false << 31;
    QTest::newRow("month 13") << 2023 << 13 << false << 0;
    QTest::newRow("month 0") << 2024 << 0 << true << 0;
}

void TestRtlDateTime::calendarFacts()
{
    QFETCH(int, year);
    QFETCH(int, month);
    QFETCH(bool, leap);
    QFETCH(int, days);
    QCOMPARE(IsLeapYear(year), leap);
    QCOMPARE(DaysInAMonth(year, month), days);
}

void TestRtlDateTime::qtConversions_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QDateTime>("dateTime");

    QTest::newRow("afternoon") << 45356.5 + 90.0 / 1440 << QDateTime(QDate(2024, 3, 5), QTime(13, 30), Qt::LocalTime);
    QTest::newRow("day zero") << 0.0 << QDateTime(QDate(1899, 12, 30), QTime(0, 0), Qt::LocalTime);
    QTest::newRow("negative") << -1.25 << QDateTime(QDate(1899, 12, 29), QTime(6, 0), Qt::LocalTime);
    QTest::newRow("milliseconds") << EncodeDate(2000, 1, 1) + EncodeTime(8, 5, 3, 7)
                                  << QDateTime(QDate(2000, 1, 1), QTime(8, 5, 3, 7), Qt::LocalTime);
}

void TestRtlDateTime::qtConversions()
{
    QFETCH(double, value);
    QFETCH(QDateTime, dateTime);
    QCOMPARE(DateTimeToQDateTime(value), dateTime);
    QCOMPARE(DateTimeToQDate(value), dateTime.date());
    QCOMPARE(QDateToDateTime(dateTime.date()), std::trunc(value));
    QVERIFY(std::fabs(QDateTimeToDateTime(dateTime) - value) < MSec);
}

void TestRtlDateTime::qdatetimeFromOtherZone()
{
    const QDateTime Utc(QDate(2024, 7, 1), QTime(12, 0), Qt::UTC);
    const QDateTime Local = Utc.toLocalTime();
    const double Expected = QDateToDateTime(Local.date()) + Local.time().msecsSinceStartOfDay() * MSec;
    QVERIFY(std::fabs(QDateTimeToDateTime(Utc) - Expected) < MSec);
    QCOMPARE(QDateTimeToDateTime(QDateTime()), 0.0);
    QCOMPARE(QDateToDateTime(QDate()), 0.0);
    QVERIFY(!DateTimeToQDate(NaN).isValid());
    QVERIFY(!DateTimeToQDateTime(1e12).isValid());
}

void TestRtlDateTime::today()
{
    const QDate Before = QDate::currentDate();
    const TDateTime D = Date();
    const TDateTime N = Now();
    const QDate After = QDate::currentDate();
    QCOMPARE(D, std::trunc(D));
    QVERIFY(D == QDateToDateTime(Before) || D == QDateToDateTime(After));
    QVERIFY(N >= D && N < QDateToDateTime(After) + 1);
    QVERIFY(std::fabs(QDateTimeToDateTime(QDateTime::currentDateTime()) - N) < 60.0 / 86400);
}

void TestRtlDateTime::systemTimeFormatsUseClassicSyntax()
{
    // Qt's "mm" (minutes) reads as months in the classic syntax, and its "t" (time zone)
    // as the short time format, so neither may survive the conversion.
    const TFormatSettings S = TFormatSettings::FromSystemLocale();
    for (QString F : {S.ShortTimeFormat, S.LongTimeFormat}) {
        QVERIFY2(F.contains(QLatin1Char('h')) && F.contains(QLatin1Char('n')), qPrintable(F));
        F.remove(QStringLiteral("ampm"));
        QVERIFY2(!F.contains(QLatin1Char('m')) && !F.contains(QLatin1Char('t')), qPrintable(F));
    }
    QVERIFY(!S.DecimalSeparator.isNull());
}

// The date routines follow the default locale; every test starts from the process's own.
void TestRtlDateTime::cleanup()
{
    QLocale::setDefault(QLocale::system());
}

void TestRtlDateTime::dateToStr_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("date");
    QTest::addColumn<QString>("dateTime");

    const double Mar5 = EncodeDate(2024, 3, 5);
    QTest::newRow("US, afternoon") << "en_US" << Mar5 + EncodeTime(13, 45, 30, 0) << "3/5/2024" << "3/5/2024 13:45:30";
    QTest::newRow("US, midnight has no time") << "en_US" << Mar5 << "3/5/2024" << "3/5/2024";
    QTest::newRow("US, milliseconds dropped") << "en_US" << Mar5 + EncodeTime(8, 5, 3, 999) << "3/5/2024"
                                              << "3/5/2024 08:05:03";
    QTest::newRow("US, one second past midnight") << "en_US" << Mar5 + EncodeTime(0, 0, 1, 0) << "3/5/2024"
                                                  << "3/5/2024 00:00:01";
    QTest::newRow("US, year widened to four digits") << "en_US" << EncodeDate(5, 1, 2) << "1/2/0005" << "1/2/0005";
    QTest::newRow("US, before day 0 with a time") << "en_US" << -1.25 << "12/29/1899" << "12/29/1899 06:00:00";
    QTest::newRow("US, last day") << "en_US" << EncodeDate(9999, 12, 31) + 0.5 << "12/31/9999" << "12/31/9999 12:00:00";
    QTest::newRow("German") << "de_DE" << Mar5 + 0.75 << "05.03.2024" << "05.03.2024 18:00:00";
    QTest::newRow("British") << "en_GB" << Mar5 << "05/03/2024" << "05/03/2024";
    // Arabic-Indic digits with right-to-left marks after day and month; the time keeps
    // Western digits.
    QTest::newRow("Egyptian Arabic") << "ar_EG" << Mar5 + 0.5 << QString::fromUtf8("٥\u200F/٣\u200F/٢٠٢٤")
                                     << QString::fromUtf8("٥\u200F/٣\u200F/٢٠٢٤ 12:00:00");
}

void TestRtlDateTime::dateToStr()
{
    QFETCH(QString, locale);
    QFETCH(double, value);
    QFETCH(QString, date);
    QFETCH(QString, dateTime);
    QLocale::setDefault(QLocale(locale));
    FormatSettings.TimeAMString = QStringLiteral("AM");
    FormatSettings.TimePMString = QStringLiteral("PM");

    QCOMPARE(DateToStr(value), date);
    QCOMPARE(DateTimeToStr(value), dateTime);
    // Both read back: the day exactly, the moment to the second.
    TDateTime Day = 0, Moment = 0;
    QVERIFY(TryStrToDate(date, Day));
    QCOMPARE(Day, std::trunc(value));
    QVERIFY(TryStrToDateTime(dateTime, Moment));
    QCOMPARE(std::trunc(Moment), std::trunc(value));
    QVERIFY(std::fabs(Moment - value) < 1.0 / 86400);
}

void TestRtlDateTime::dateToStrOutOfRangeRaises_data()
{
    QTest::addColumn<double>("value");

    QTest::newRow("after 9999") << EncodeDate(9999, 12, 31) + 1;
    QTest::newRow("before year 1") << EncodeDate(1, 1, 1) - 1;
    QTest::newRow("huge") << 1e12;
    QTest::newRow("not a number") << NaN;
    QTest::newRow("infinite") << -std::numeric_limits<double>::infinity();
}

void TestRtlDateTime::dateToStrOutOfRangeRaises()
{
    QFETCH(double, value);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QVERIFY_THROWS_EXCEPTION(EConvertError, DateToStr(value));
    QVERIFY_THROWS_EXCEPTION(EConvertError, DateTimeToStr(value));
}

void TestRtlDateTime::strToDate_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QDate>("date"); // invalid: the text is refused

    QTest::newRow("US") << "en_US" << "3/5/2024" << QDate(2024, 3, 5);
    QTest::newRow("US, leading zeros") << "en_US" << "03/05/2024" << QDate(2024, 3, 5);
    QTest::newRow("US, blanks around") << "en_US" << "  3/5/2024 " << QDate(2024, 3, 5);
    QTest::newRow("US, ISO form") << "en_US" << "2024-03-05" << QDate(2024, 3, 5);
    QTest::newRow("US, ISO form with text after refused") << "en_US" << "2024-03-05x" << QDate();
    QTest::newRow("US, ISO form with a time refused") << "en_US" << "2024-03-05 08:15" << QDate();
    QTest::newRow("US, short ISO form refused") << "en_US" << "2024-3-5" << QDate();
    QTest::newRow("US, two-digit year refused") << "en_US" << "3/5/24" << QDate();
    QTest::newRow("US, February 30 refused") << "en_US" << "2/30/2024" << QDate();
    QTest::newRow("US, leap day") << "en_US" << "2/29/2024" << QDate(2024, 2, 29);
    QTest::newRow("US, text after refused") << "en_US" << "3/5/2024 x" << QDate();
    QTest::newRow("US, with a time refused") << "en_US" << "3/5/2024 10:00" << QDate();
    QTest::newRow("US, empty") << "en_US" << "" << QDate();
    QTest::newRow("US, negative year refused") << "en_US" << "3/5/-2024" << QDate();
    QTest::newRow("US, first day") << "en_US" << "1/1/0001" << QDate(1, 1, 1);
    QTest::newRow("German, negative year refused") << "de_DE" << "05.04.-2024" << QDate();
    QTest::newRow("German") << "de_DE" << "05.03.2024" << QDate(2024, 3, 5);
    QTest::newRow("German, other locale's form refused") << "de_DE" << "3/5/2024" << QDate();
    QTest::newRow("British: day first") << "en_GB" << "03/05/2024" << QDate(2024, 5, 3);
    QTest::newRow("Egyptian Arabic") << "ar_EG" << QString::fromUtf8("٥\u200F/٣\u200F/٢٠٢٤") << QDate(2024, 3, 5);
    QTest::newRow("Egyptian Arabic, ISO form") << "ar_EG" << "2024-03-05" << QDate(2024, 3, 5);
}

void TestRtlDateTime::strToDate()
{
    QFETCH(QString, locale);
    QFETCH(QString, text);
    QFETCH(QDate, date);
    QLocale::setDefault(QLocale(locale));

    TDateTime Value = -7;
    QCOMPARE(TryStrToDate(text, Value), date.isValid());
    QCOMPARE(Value, date.isValid() ? QDateToDateTime(date) : -7.0);
}

void TestRtlDateTime::strToDateTime_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<double>("value");

    const double Mar5 = EncodeDate(2024, 3, 5);
    QTest::newRow("date alone") << "en_US" << "3/5/2024" << true << Mar5;
    QTest::newRow("date and time") << "en_US" << "3/5/2024 13:45:30" << true << Mar5 + EncodeTime(13, 45, 30, 0);
    QTest::newRow("time with a marker") << "en_US" << "3/5/2024 2:30 PM" << true << Mar5 + EncodeTime(14, 30, 0, 0);
    QTest::newRow("blanks around") << "en_US" << " 3/5/2024 08:15 " << true << Mar5 + EncodeTime(8, 15, 0, 0);
    QTest::newRow("before day 0 counts away from it") << "en_US" << "12/29/1899 06:00" << true << -1.25;
    QTest::newRow("ISO date and time") << "en_US" << "2024-03-05 08:15" << true << Mar5 + EncodeTime(8, 15, 0, 0);
    QTest::newRow("German") << "de_DE" << "05.03.2024 18:00" << true << Mar5 + 0.75;
    QTest::newRow("hour 25 refused") << "en_US" << "3/5/2024 25:00" << false << 0.0;
    QTest::newRow("time alone refused") << "en_US" << "10:00" << false << 0.0;
    QTest::newRow("bad date refused") << "en_US" << "3/5/2024x 10:00" << false << 0.0;
    QTest::newRow("time first refused") << "en_US" << "10:00 3/5/2024" << false << 0.0;
    QTest::newRow("empty") << "en_US" << "" << false << 0.0;
}

void TestRtlDateTime::strToDateTime()
{
    QFETCH(QString, locale);
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(double, value);
    QLocale::setDefault(QLocale(locale));
    FormatSettings.DecimalSeparator = QLatin1Char('.');
    FormatSettings.TimeAMString = QStringLiteral("AM");
    FormatSettings.TimePMString = QStringLiteral("PM");

    TDateTime Result = -7;
    QCOMPARE(TryStrToDateTime(text, Result), ok);
    QCOMPARE(Result, ok ? value : -7.0);
}

QTEST_GUILESS_MAIN(TestRtlDateTime)
#include "tst_rtl_datetime.moc"
