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
const double Inf = std::numeric_limits<double>::infinity();
const double Mar5 = 45356; // 2024-03-05

QString TimeText(TDateTime Value)
{
    int H = -1, M = -1, S = -1, Ms = -1;
    DecodeTime(Value, H, M, S, Ms);
    return QString::asprintf("%02d:%02d:%02d.%03d", H, M, S, Ms);
}

} // namespace

class TestRtlDateTime : public QObject
{
    Q_OBJECT

private slots:
    // The date routines follow the default locale; every test starts from the process's own.
    void cleanup() { QLocale::setDefault(QLocale::system()); }

    // The classic patterns; "/" and ":" are the separators of FormatSettings.
    void formatDateTime_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("dateSep");
        QTest::addColumn<QString>("timeSep");
        QTest::addColumn<QString>("text");
        const double At = Mar5 + (14 * 3600 + 5 * 60 + 9) / 86400.0;  // 2024-03-05 14:05:09
        const double Early = Mar5 + (7 * 3600 + 3 * 60) / 86400.0;   // 07:03:00
        QTest::newRow("d-m-yyyy") << "d-m-yyyy" << At << "/" << ":" << "5-3-2024";
        QTest::newRow("dd/mm/yy") << "dd/mm/yy" << At << "/" << ":" << "05/03/24";
        QTest::newRow("date separator") << "dd/mm/yyyy" << At << "." << ":" << "05.03.2024";
        QTest::newRow("hh:mm is minutes") << "hh:mm" << At << "/" << ":" << "14:05";
        QTest::newRow("h:n:s") << "h:n:s" << Early << "/" << ":" << "7:3:0";
        QTest::newRow("hh:nn:ss") << "hh:nn:ss" << At << "/" << ":" << "14:05:09";
        QTest::newRow("time separator") << "hh:nn" << At << "/" << "." << "14.05";
        QTest::newRow("m after a date is the month") << "yyyy m" << At << "/" << ":" << "2024 3";
        QTest::newRow("am/pm afternoon") << "h:nn am/pm" << At << "/" << ":" << "2:05 pm";
        QTest::newRow("AM/PM morning, upper") << "hh:nn AM/PM" << Early << "/" << ":" << "07:03 AM";
        QTest::newRow("midnight is 12 am") << "hh:nn am/pm" << Mar5 << "/" << ":" << "12:00 am";
        QTest::newRow("noon is 12 pm") << "h am/pm" << Mar5 + 0.5 << "/" << ":" << "12 pm";
        QTest::newRow("ampm") << "hh:nn ampm" << At << "/" << ":" << "02:05 PM";
        QTest::newRow("quoted text") << "d \"of\" m, 'h' h" << At << "/" << ":" << "5 of 3, h 14";
        QTest::newRow("quoted separators stay") << "hh':'nn\"/\"" << At << "/" << "." << "14:05/";
        QTest::newRow("date and time") << "d-m-yyyy hh:nn" << At << "/" << ":" << "5-3-2024 14:05";
        QTest::newRow("Hijri-looking year pads") << "yyyy" << -693593.0 << "/" << ":" << "0001";
    }
    void formatDateTime()
    {
        QFETCH(QString, format);
        QFETCH(double, value);
        QFETCH(QString, dateSep);
        QFETCH(QString, timeSep);
        const TFormatSettings Saved = FormatSettings;
        FormatSettings.DateSeparator = dateSep.at(0);
        FormatSettings.TimeSeparator = timeSep.at(0);
        FormatSettings.TimeAMString = QStringLiteral("AM");
        FormatSettings.TimePMString = QStringLiteral("PM");
        const QString Text = FormatDateTime(format, value);
        FormatSettings = Saved;
        QTEST(Text, "text");
    }

    // Valid dates encode and decode back; the others are refused and leave the result alone.
    void encodeDate_data()
    {
        QTest::addColumn<int>("year");
        QTest::addColumn<int>("month");
        QTest::addColumn<int>("day");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<double>("value");
        QTest::newRow("day zero") << 1899 << 12 << 30 << true << 0.0;
        QTest::newRow("leap day") << 2024 << 2 << 29 << true << 45351.0;
        QTest::newRow("first day") << 1 << 1 << 1 << true << -693593.0;
        QTest::newRow("last day") << 9999 << 12 << 31 << true << 2958465.0;
        QTest::newRow("no leap day") << 2023 << 2 << 29 << false << 0.0;
        QTest::newRow("no leap day in 1900") << 1900 << 2 << 29 << false << 0.0;
        QTest::newRow("April 31") << 2024 << 4 << 31 << false << 0.0;
        QTest::newRow("month 13") << 2024 << 13 << 1 << false << 0.0;
        QTest::newRow("day 0") << 2024 << 1 << 0 << false << 0.0;
        QTest::newRow("year 0") << 0 << 1 << 1 << false << 0.0;
        QTest::newRow("year 10000") << 10000 << 1 << 1 << false << 0.0;
    }
    void encodeDate()
    {
        QFETCH(int, year);
        QFETCH(int, month);
        QFETCH(int, day);
        QFETCH(bool, valid);
        QFETCH(double, value);
        TDateTime Result = -1;
        QCOMPARE(TryEncodeDate(year, month, day, Result), valid);
        QCOMPARE(IsValidDate(year, month, day), valid);
        if (!valid) {
            QCOMPARE(Result, -1.0);
            QVERIFY_THROWS_EXCEPTION(EConvertError, EncodeDate(year, month, day));
            return;
        }
        QCOMPARE(Result, value);
        QCOMPARE(EncodeDate(year, month, day), value);
        int Y = -1, M = -1, D = -1;
        DecodeDate(value < 0 ? value - 0.75 : value + 0.75, Y, M, D); // the evening keeps its day
        QCOMPARE(QDate(Y, M, D), QDate(year, month, day));
    }

    void encodeTime_data()
    {
        QTest::addColumn<int>("hour");
        QTest::addColumn<int>("minute");
        QTest::addColumn<int>("second");
        QTest::addColumn<int>("msec");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<double>("value");
        QTest::newRow("midnight") << 0 << 0 << 0 << 0 << true << 0.0;
        QTest::newRow("06:00") << 6 << 0 << 0 << 0 << true << 0.25;
        QTest::newRow("12:30") << 12 << 30 << 0 << 0 << true << 750.0 / 1440.0;
        QTest::newRow("13:45:30.250") << 13 << 45 << 30 << 250 << true << (49530250.0 * MSec);
        QTest::newRow("last millisecond") << 23 << 59 << 59 << 999 << true << 86399999.0 / 86400000.0;
        QTest::newRow("hour 24") << 24 << 0 << 0 << 0 << false << 0.0;
        QTest::newRow("minute 60") << 0 << 60 << 0 << 0 << false << 0.0;
        QTest::newRow("second 60") << 0 << 0 << 60 << 0 << false << 0.0;
        QTest::newRow("msec 1000") << 0 << 0 << 0 << 1000 << false << 0.0;
        QTest::newRow("negative hour") << -1 << 0 << 0 << 0 << false << 0.0;
    }
    void encodeTime()
    {
        QFETCH(int, hour);
        QFETCH(int, minute);
        QFETCH(int, second);
        QFETCH(int, msec);
        QFETCH(bool, valid);
        QFETCH(double, value);
        TDateTime Result = -1;
        QCOMPARE(TryEncodeTime(hour, minute, second, msec, Result), valid);
        if (!valid) {
            QVERIFY_THROWS_EXCEPTION(EConvertError, EncodeTime(hour, minute, second, msec));
            return;
        }
        QCOMPARE(Result, value);
        QCOMPARE(EncodeTime(hour, minute, second, msec), value);
        QCOMPARE(TimeText(Mar5 + value), QString::asprintf("%02d:%02d:%02d.%03d", hour, minute, second, msec));
    }

    void decodeTime_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("time");
        const double HalfPast12 = Mar5 + EncodeTime(12, 30, 59, 999);
        QTest::newRow("rounds up to the next minute") << HalfPast12 + 0.6 * MSec << "12:31:00.000";
        QTest::newRow("rounds down") << HalfPast12 + 0.4 * MSec << "12:30:59.999";
        QTest::newRow("rounds to 24:00, stays in the day") << Mar5 + 86399999.7 * MSec << "23:59:59.999";
        QTest::newRow("negative value: time is the fraction's size") << -1.25 << "06:00:00.000";
        QTest::newRow("negative value near midnight") << -2.0 - 86399999.8 * MSec << "23:59:59.999";
        QTest::newRow("not a number") << NaN << "00:00:00.000";
    }
    void decodeTime()
    {
        QFETCH(double, value);
        QTEST(TimeText(value), "time");
    }

    void strToTime_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("time"); // empty: refused
        QTest::newRow("hours and minutes") << "10:30" << "10:30:00.000";
        QTest::newRow("hour only") << "10" << "10:00:00.000";
        QTest::newRow("blanks around the parts") << " 7 : 5 " << "07:05:00.000";
        QTest::newRow("milliseconds") << "10:15:30.25" << "10:15:30.025";
        QTest::newRow("english pm, any case") << "2:30 pM" << "14:30:00.000";
        QTest::newRow("12 am is midnight") << "12:05 am" << "00:05:00.000";
        QTest::newRow("12 pm is noon") << "12:05 PM" << "12:05:00.000";
        QTest::newRow("arabic evening marker") << "02:30 م" << "14:30:00.000";
        QTest::newRow("arabic morning marker first") << "ص 9:15" << "09:15:00.000";
        QTest::newRow("hour 0 with a marker") << "0:30 am" << "";
        QTest::newRow("hour 25") << "25:00" << "";
        QTest::newRow("minute 60") << "10:60" << "";
        QTest::newRow("missing minutes") << "10:" << "";
        QTest::newRow("empty") << "" << "";
        QTest::newRow("text after") << "10:30 x" << "";
        QTest::newRow("two markers") << "am 10:30 pm" << "";
        QTest::newRow("five digits") << "10000" << "";
        QTest::newRow("point as separator") << "10.30" << "";
    }
    void strToTime()
    {
        QFETCH(QString, text);
        QFETCH(QString, time);
        FormatSettings.DecimalSeparator = QLatin1Char('.');
        FormatSettings.TimeAMString = QStringLiteral("ص");
        FormatSettings.TimePMString = QStringLiteral("م");
        TDateTime Value = -7;
        QCOMPARE(TryStrToTime(text, Value), !time.isEmpty());
        if (!time.isEmpty()) {
            QCOMPARE(TimeText(Value), time);
            QCOMPARE(StrToTime(text), Value);
            return;
        }
        QCOMPARE(Value, -7.0);
        try {
            StrToTime(text);
            QFAIL("no exception");
        } catch (const EConvertError& E) {
            QCOMPARE(E.Message, QStringLiteral("'%1' is not a valid time").arg(text));
        }
    }

    // The day a value falls on, out of the calendar all parts 0, and facts of its month.
    void calendarFacts_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QDate>("date");
        QTest::addColumn<int>("dayOfWeek");
        QTest::addColumn<bool>("leap");
        QTest::addColumn<int>("days"); // in the value's month
        QTest::newRow("Sunday, leap February") << EncodeDate(2024, 2, 25) << QDate(2024, 2, 25) << 1 << true << 29;
        QTest::newRow("Friday evening, February of 2023") << EncodeDate(2023, 2, 3) + 0.9 << QDate(2023, 2, 3) << 6 << false << 28;
        QTest::newRow("last moment of a Tuesday") << Mar5 + 86399999.6 * MSec << QDate(2024, 3, 5) << 3 << true << 31;
        QTest::newRow("Saturday, day zero") << 0.0 << QDate(1899, 12, 30) << 7 << false << 31;
        QTest::newRow("negative half is day zero") << -0.5 << QDate(1899, 12, 30) << 7 << false << 31;
        QTest::newRow("Friday 06:00 before day zero") << -1.25 << QDate(1899, 12, 29) << 6 << false << 31;
        QTest::newRow("Wednesday, February of 1900") << EncodeDate(1900, 2, 28) << QDate(1900, 2, 28) << 4 << false << 28;
        QTest::newRow("Tuesday, February of 2000") << EncodeDate(2000, 2, 29) << QDate(2000, 2, 29) << 3 << true << 29;
        QTest::newRow("Monday, first day") << EncodeDate(1, 1, 1) << QDate(1, 1, 1) << 2 << false << 31;
        QTest::newRow("Tuesday, April") << EncodeDate(2024, 4, 30) << QDate(2024, 4, 30) << 3 << true << 30;
        QTest::newRow("after the last day") << 2958466.0 << QDate() << 0 << false << 0;
        QTest::newRow("before the first day") << -693594.0 << QDate() << 0 << false << 0;
        QTest::newRow("far out") << 1e12 << QDate() << 0 << false << 0;
        QTest::newRow("not a number") << NaN << QDate() << 0 << false << 0;
        QTest::newRow("infinite") << Inf << QDate() << 0 << false << 0;
    }
    void calendarFacts()
    {
        QFETCH(double, value);
        QFETCH(QDate, date);
        int Y = -1, M = -1, D = -1;
        DecodeDate(value, Y, M, D);
        QCOMPARE(QList<int>({Y, M, D}), date.isValid() ? QList<int>({date.year(), date.month(), date.day()}) : QList<int>({0, 0, 0}));
        QTEST(DayOfWeek(value), "dayOfWeek");
        QTEST(DaysInAMonth(Y, M), "days");
        if (date.isValid())
            QTEST(IsLeapYear(Y), "leap");
        QCOMPARE(DaysInAMonth(2024, 13), 0);
    }

    void incDay_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("days");
        QTest::addColumn<double>("result");
        QTest::newRow("forward") << 45356.75 << 10 << 45366.75;
        QTest::newRow("backward") << 45356.75 << -45356 << 0.75;
        // 1899-12-30 06:00 is -0.25 written the classic way round: one day on is 1899-12-31 06:00.
        QTest::newRow("negative value forward") << -0.25 << 1 << 1.25;
        QTest::newRow("across day zero backward") << 1.5 << -2 << -1.5;
        QTest::newRow("negative to negative") << -3.75 << -1 << -4.75;
        QTest::newRow("far outside the calendar") << 1e300 << 5 << 1e300;
    }
    void incDay()
    {
        QFETCH(double, value);
        QFETCH(int, days);
        QTEST(IncDay(value, days), "result");
    }

    // Whole years are checked through IncYear as well.
    void incMonth_data()
    {
        QTest::addColumn<QDate>("date");
        QTest::addColumn<int>("months");
        QTest::addColumn<QDate>("expected");
        QTest::newRow("clamped into leap February") << QDate(2024, 1, 31) << 1 << QDate(2024, 2, 29);
        QTest::newRow("clamped into February") << QDate(2023, 1, 31) << 1 << QDate(2023, 2, 28);
        QTest::newRow("backward clamped") << QDate(2024, 3, 31) << -1 << QDate(2024, 2, 29);
        QTest::newRow("across the year end") << QDate(2024, 12, 31) << 2 << QDate(2025, 2, 28);
        QTest::newRow("back across the year") << QDate(2024, 1, 15) << -13 << QDate(2022, 12, 15);
        QTest::newRow("zero months") << QDate(2024, 5, 31) << 0 << QDate(2024, 5, 31);
        QTest::newRow("31 to 30-day month") << QDate(2024, 5, 31) << 1 << QDate(2024, 6, 30);
        QTest::newRow("leap day to common year") << QDate(2024, 2, 29) << 12 << QDate(2025, 2, 28);
        QTest::newRow("leap day to leap year") << QDate(2024, 2, 29) << -48 << QDate(2020, 2, 29);
        QTest::newRow("a century") << QDate(2000, 2, 29) << 1200 << QDate(2100, 2, 28);
        QTest::newRow("to the first year") << QDate(2, 1, 1) << -12 << QDate(1, 1, 1);
    }
    void incMonth()
    {
        QFETCH(QDate, date);
        QFETCH(int, months);
        QFETCH(QDate, expected);
        const double Time = 0.625; // 15:00 is kept
        QCOMPARE(IncMonth(QDateToDateTime(date) + Time, months), QDateToDateTime(expected) + Time);
        QCOMPARE(IncMonth(QDateToDateTime(date), months), QDateToDateTime(expected));
        if (months % 12 == 0)
            QCOMPARE(IncYear(QDateToDateTime(date) + Time, months / 12), QDateToDateTime(expected) + Time);
    }

    void incMonthOutOfRange()
    {
        QVERIFY_THROWS_EXCEPTION(EConvertError, IncMonth(EncodeDate(9999, 12, 1), 1));
        QVERIFY_THROWS_EXCEPTION(EConvertError, IncMonth(EncodeDate(1, 1, 31), -1));
        QVERIFY_THROWS_EXCEPTION(EConvertError, IncMonth(EncodeDate(2024, 1, 1), std::numeric_limits<int>::min()));
        QVERIFY_THROWS_EXCEPTION(EConvertError, IncYear(EncodeDate(2024, 1, 1), std::numeric_limits<int>::max()));
        QVERIFY_THROWS_EXCEPTION(EConvertError, IncMonth(NaN, 1));
        // A negative value before 1899-12-30 keeps its time too: 1899-12-29 06:00 + 1 month.
        QCOMPARE(IncMonth(-1.25, 1), EncodeDate(1900, 1, 29) + 0.25);
    }

    void qtConversions_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<QDateTime>("dateTime");
        QTest::newRow("afternoon") << Mar5 + 0.5 + 90.0 / 1440 << QDateTime(QDate(2024, 3, 5), QTime(13, 30), Qt::LocalTime);
        QTest::newRow("negative") << -1.25 << QDateTime(QDate(1899, 12, 29), QTime(6, 0), Qt::LocalTime);
        QTest::newRow("milliseconds") << EncodeDate(2000, 1, 1) + EncodeTime(8, 5, 3, 7)
                                      << QDateTime(QDate(2000, 1, 1), QTime(8, 5, 3, 7), Qt::LocalTime);
    }
    void qtConversions()
    {
        QFETCH(double, value);
        QFETCH(QDateTime, dateTime);
        QCOMPARE(DateTimeToQDateTime(value), dateTime);
        QCOMPARE(DateTimeToQDate(value), dateTime.date());
        QCOMPARE(QDateToDateTime(dateTime.date()), std::trunc(value));
        QVERIFY(std::fabs(QDateTimeToDateTime(dateTime) - value) < MSec);
    }

    void qtConversionsOfOddValues()
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

    void today()
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

    // Qt's "mm" (minutes) reads as months in the classic syntax, and its "t" (time zone)
    // as the short time format, so neither may survive the conversion.
    void systemTimeFormatsUseClassicSyntax()
    {
        const TFormatSettings S = TFormatSettings::FromSystemLocale();
        for (QString F : {S.ShortTimeFormat, S.LongTimeFormat}) {
            QVERIFY2(F.contains(QLatin1Char('h')) && F.contains(QLatin1Char('n')), qPrintable(F));
            F.remove(QStringLiteral("ampm"));
            QVERIFY2(!F.contains(QLatin1Char('m')) && !F.contains(QLatin1Char('t')), qPrintable(F));
        }
        QVERIFY(!S.DecimalSeparator.isNull());
    }

    // Both texts read back: the day exactly, the moment to the second. Out of range: an error.
    void dateToStr_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("date"); // empty: refused
        QTest::addColumn<QString>("dateTime");
        QTest::newRow("US, afternoon") << "en_US" << Mar5 + EncodeTime(13, 45, 30, 0) << "3/5/2024" << "3/5/2024 13:45:30";
        QTest::newRow("US, midnight has no time") << "en_US" << Mar5 << "3/5/2024" << "3/5/2024";
        QTest::newRow("US, milliseconds dropped") << "en_US" << Mar5 + EncodeTime(8, 5, 3, 999) << "3/5/2024" << "3/5/2024 08:05:03";
        QTest::newRow("US, one second past midnight") << "en_US" << Mar5 + EncodeTime(0, 0, 1, 0) << "3/5/2024" << "3/5/2024 00:00:01";
        QTest::newRow("US, year widened to four digits") << "en_US" << EncodeDate(5, 1, 2) << "1/2/0005" << "1/2/0005";
        QTest::newRow("US, before day 0 with a time") << "en_US" << -1.25 << "12/29/1899" << "12/29/1899 06:00:00";
        QTest::newRow("US, last day") << "en_US" << EncodeDate(9999, 12, 31) + 0.5 << "12/31/9999" << "12/31/9999 12:00:00";
        QTest::newRow("German") << "de_DE" << Mar5 + 0.75 << "05.03.2024" << "05.03.2024 18:00:00";
        QTest::newRow("British") << "en_GB" << Mar5 << "05/03/2024" << "05/03/2024";
        // Arabic-Indic digits with right-to-left marks after day and month; the time keeps
        // Western digits.
        QTest::newRow("Egyptian Arabic") << "ar_EG" << Mar5 + 0.5 << "٥\u200F/٣\u200F/٢٠٢٤" << "٥\u200F/٣\u200F/٢٠٢٤ 12:00:00";
        QTest::newRow("after 9999") << "en_US" << EncodeDate(9999, 12, 31) + 1 << "" << "";
        QTest::newRow("before year 1") << "en_US" << EncodeDate(1, 1, 1) - 1 << "" << "";
        QTest::newRow("not a number") << "en_US" << NaN << "" << "";
        QTest::newRow("infinite") << "en_US" << -Inf << "" << "";
    }
    void dateToStr()
    {
        QFETCH(QString, locale);
        QFETCH(double, value);
        QFETCH(QString, date);
        QFETCH(QString, dateTime);
        QLocale::setDefault(QLocale(locale));
        FormatSettings.TimeAMString = QStringLiteral("AM");
        FormatSettings.TimePMString = QStringLiteral("PM");
        if (date.isEmpty()) {
            QVERIFY_THROWS_EXCEPTION(EConvertError, DateToStr(value));
            QVERIFY_THROWS_EXCEPTION(EConvertError, DateTimeToStr(value));
            return;
        }
        QCOMPARE(DateToStr(value), date);
        QCOMPARE(DateTimeToStr(value), dateTime);
        TDateTime Day = 0, Moment = 0;
        QVERIFY(TryStrToDate(date, Day));
        QCOMPARE(Day, std::trunc(value));
        QVERIFY(TryStrToDateTime(dateTime, Moment));
        QCOMPARE(std::trunc(Moment), std::trunc(value));
        QVERIFY(std::fabs(Moment - value) < 1.0 / 86400);
    }

    // Each text read as a date and as a date and time; a refused text leaves the result alone.
    void strToDate_data()
    {
        QTest::addColumn<QString>("locale");
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("date");     // NaN: refused
        QTest::addColumn<double>("dateTime"); // NaN: refused
        const double At0815 = Mar5 + EncodeTime(8, 15, 0, 0);
        QTest::newRow("US") << "en_US" << "3/5/2024" << Mar5 << Mar5;
        QTest::newRow("US, leading zeros") << "en_US" << "03/05/2024" << Mar5 << Mar5;
        QTest::newRow("US, blanks around") << "en_US" << "  3/5/2024 " << Mar5 << Mar5;
        QTest::newRow("US, ISO form") << "en_US" << "2024-03-05" << Mar5 << Mar5;
        QTest::newRow("US, ISO form with text after") << "en_US" << "2024-03-05x" << NaN << NaN;
        QTest::newRow("US, ISO form with a time") << "en_US" << "2024-03-05 08:15" << NaN << At0815;
        QTest::newRow("US, short ISO form") << "en_US" << "2024-3-5" << NaN << NaN;
        QTest::newRow("US, two-digit year") << "en_US" << "3/5/24" << NaN << NaN;
        QTest::newRow("US, text after") << "en_US" << "3/5/2024 x" << NaN << NaN;
        QTest::newRow("US, with a time") << "en_US" << " 3/5/2024 08:15 " << NaN << At0815;
        QTest::newRow("US, time with a marker") << "en_US" << "3/5/2024 2:30 PM" << NaN << Mar5 + EncodeTime(14, 30, 0, 0);
        QTest::newRow("US, hour 25") << "en_US" << "3/5/2024 25:00" << NaN << NaN;
        QTest::newRow("US, time alone") << "en_US" << "10:00" << NaN << NaN;
        QTest::newRow("US, time first") << "en_US" << "10:00 3/5/2024" << NaN << NaN;
        QTest::newRow("US, before day 0 counts away from it") << "en_US" << "12/29/1899 06:00" << NaN << -1.25;
        QTest::newRow("US, empty") << "en_US" << "" << NaN << NaN;
        QTest::newRow("US, negative year") << "en_US" << "3/5/-2024" << NaN << NaN;
        QTest::newRow("US, first day") << "en_US" << "1/1/0001" << -693593.0 << -693593.0;
        QTest::newRow("German") << "de_DE" << "05.03.2024" << Mar5 << Mar5;
        QTest::newRow("German, with a time") << "de_DE" << "05.03.2024 18:00" << NaN << Mar5 + 0.75;
        QTest::newRow("German, negative year") << "de_DE" << "05.04.-2024" << NaN << NaN;
        QTest::newRow("German, other locale's form") << "de_DE" << "3/5/2024" << NaN << NaN;
        QTest::newRow("British: day first") << "en_GB" << "03/05/2024" << 45415.0 << 45415.0;
        QTest::newRow("Egyptian Arabic") << "ar_EG" << "٥\u200F/٣\u200F/٢٠٢٤" << Mar5 << Mar5;
    }
    void strToDate()
    {
        QFETCH(QString, locale);
        QFETCH(QString, text);
        QFETCH(double, date);
        QFETCH(double, dateTime);
        QLocale::setDefault(QLocale(locale));
        FormatSettings.DecimalSeparator = QLatin1Char('.');
        FormatSettings.TimeAMString = QStringLiteral("AM");
        FormatSettings.TimePMString = QStringLiteral("PM");
        TDateTime Day = -7, Moment = -7;
        QCOMPARE(TryStrToDate(text, Day), !std::isnan(date));
        QCOMPARE(Day, std::isnan(date) ? -7.0 : date);
        QCOMPARE(TryStrToDateTime(text, Moment), !std::isnan(dateTime));
        QCOMPARE(Moment, std::isnan(dateTime) ? -7.0 : dateTime);
    }
};

QTEST_GUILESS_MAIN(TestRtlDateTime)
#include "tst_rtl_datetime.moc"
