#include "datetime.h"

#include "../exceptions.h"
#include "format_settings.h"
#include "strings.h"

#include <QLocale>

#include <cmath>

namespace Kesh {

namespace {

constexpr qint64 MSecsPerDay = 24 * 60 * 60 * 1000;
// Julian day of 1899-12-30, day 0 of TDateTime.
constexpr qint64 JulianDayOfZero = 2415019;
// TDateTime days of 0001-01-01 and 9999-12-31, the range the calendar routines accept.
constexpr qint64 FirstDay = -693593;
constexpr qint64 LastDay = 2958465;

QString Pad(int Value, int Width) { return QStringLiteral("%1").arg(Value, Width, 10, QLatin1Char('0')); }

bool InCalendarRange(TDateTime Value)
{
    return std::isfinite(Value) && Value > double(FirstDay - 1) && Value < double(LastDay + 1);
}

// The calendar day: the date part of a negative value is truncated toward zero too,
// because -1.25 means one day before day 0 at 06:00.
qint64 DayOf(TDateTime Value) { return qint64(std::trunc(Value)); }

// The time of day as a positive fraction, whatever the sign of the value.
double TimeOf(TDateTime Value) { return std::fabs(Value - std::trunc(Value)); }

// Builds a value from a day and a time of day, the way the classic encoding does:
// the time always counts away from day 0.
TDateTime Combine(qint64 Day, double Time) { return Day >= 0 ? double(Day) + Time : double(Day) - Time; }

QDate QDateOfDay(qint64 Day) { return QDate::fromJulianDay(Day + JulianDayOfZero); }

qint64 DayOfQDate(const QDate& D) { return D.toJulianDay() - JulianDayOfZero; }

// Milliseconds since midnight after rounding the whole value to whole milliseconds (ties to
// even, as the FPU does). A value that rounds up to the next midnight stays on its own day.
qint64 MSecsOfDay(TDateTime Value)
{
    if (!InCalendarRange(Value))
        return 0;
    const long double Total = std::nearbyint(static_cast<long double>(Value) * MSecsPerDay);
    const qint64 MSecs = qint64(std::fabs(Total - std::trunc(static_cast<long double>(Value)) * MSecsPerDay));
    return qMin(MSecs, MSecsPerDay - 1);
}

} // namespace

bool IsLeapYear(int Year) { return Year % 4 == 0 && (Year % 100 != 0 || Year % 400 == 0); }

int DaysInAMonth(int Year, int Month)
{
    static const int Days[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (Month < 1 || Month > 12)
        return 0;
    return Month == 2 && IsLeapYear(Year) ? 29 : Days[Month - 1];
}

bool IsValidDate(int Year, int Month, int Day)
{
    return Year >= 1 && Year <= 9999 && Day >= 1 && Day <= DaysInAMonth(Year, Month);
}

bool TryEncodeDate(int Year, int Month, int Day, TDateTime& Date)
{
    if (!IsValidDate(Year, Month, Day))
        return false;
    Date = double(DayOfQDate(QDate(Year, Month, Day)));
    return true;
}

TDateTime EncodeDate(int Year, int Month, int Day)
{
    TDateTime Result = 0;
    if (!TryEncodeDate(Year, Month, Day, Result))
        throw EConvertError(QStringLiteral("Invalid argument to date encode"));
    return Result;
}

void DecodeDate(TDateTime Date, int& Year, int& Month, int& Day)
{
    Year = Month = Day = 0;
    if (InCalendarRange(Date))
        QDateOfDay(DayOf(Date)).getDate(&Year, &Month, &Day);
}

bool TryEncodeTime(int Hour, int Min, int Sec, int MSec, TDateTime& Time)
{
    if (Hour < 0 || Hour > 23 || Min < 0 || Min > 59 || Sec < 0 || Sec > 59 || MSec < 0 || MSec > 999)
        return false;
    Time = double((qint64(Hour) * 3600000 + Min * 60000 + Sec * 1000 + MSec)) / double(MSecsPerDay);
    return true;
}

TDateTime EncodeTime(int Hour, int Min, int Sec, int MSec)
{
    TDateTime Result = 0;
    if (!TryEncodeTime(Hour, Min, Sec, MSec, Result))
        throw EConvertError(QStringLiteral("Invalid argument to time encode"));
    return Result;
}

void DecodeTime(TDateTime Time, int& Hour, int& Min, int& Sec, int& MSec)
{
    const qint64 MSecs = MSecsOfDay(Time);
    Hour = int(MSecs / 3600000);
    Min = int(MSecs / 60000 % 60);
    Sec = int(MSecs / 1000 % 60);
    MSec = int(MSecs % 1000);
}

namespace {

// A cursor over time text in the manner of the classic time scanner: every step first
// skips blanks.
struct TimeScanner
{
    const QString& S;
    qsizetype Pos = 0;

    void SkipBlanks()
    {
        while (Pos < S.size() && S.at(Pos) == QLatin1Char(' '))
            ++Pos;
    }
    bool Text(const QString& Symbol)
    {
        SkipBlanks();
        if (Symbol.isEmpty() || QStringView(S).mid(Pos, Symbol.size()).compare(Symbol, Qt::CaseInsensitive) != 0)
            return false;
        Pos += Symbol.size();
        return true;
    }
    bool Char(QChar C)
    {
        SkipBlanks();
        if (Pos >= S.size() || S.at(Pos) != C)
            return false;
        ++Pos;
        return true;
    }
    // At most four digits are read (the scan stops once the value reaches 1000).
    bool Number(int& Value)
    {
        SkipBlanks();
        const qsizetype Start = Pos;
        Value = 0;
        while (Pos < S.size() && Value < 1000 && S.at(Pos).unicode() >= '0' && S.at(Pos).unicode() <= '9')
            Value = Value * 10 + (S.at(Pos++).unicode() - '0');
        return Pos > Start;
    }
    // 0 for a morning marker, 12 for an evening one, -1 for none.
    int Marker()
    {
        if (Text(FormatSettings.TimeAMString) || Text(QStringLiteral("AM")))
            return 0;
        if (Text(FormatSettings.TimePMString) || Text(QStringLiteral("PM")))
            return 12;
        return -1;
    }
};

} // namespace

bool TryStrToTime(const QString& S, TDateTime& Value)
{
    TimeScanner Scan{S};
    int BaseHour = Scan.Marker();
    int Hour = 0, Min = 0, Sec = 0, MSec = 0;
    const QChar Separator = QLatin1Char(':');
    if (!Scan.Number(Hour))
        return false;
    if (Scan.Char(Separator)) {
        if (!Scan.Number(Min))
            return false;
        if (Scan.Char(Separator)) {
            if (!Scan.Number(Sec))
                return false;
            if (Scan.Char(FormatSettings.DecimalSeparator) && !Scan.Number(MSec))
                return false;
        }
    }
    if (BaseHour < 0)
        BaseHour = Scan.Marker();
    if (BaseHour >= 0) {
        // With a marker the hour is 1..12, and 12 is the first hour of its half of the day.
        if (Hour == 0 || Hour > 12)
            return false;
        Hour = Hour % 12 + BaseHour;
    }
    Scan.SkipBlanks();
    return Scan.Pos == S.size() && TryEncodeTime(Hour, Min, Sec, MSec, Value);
}

TDateTime StrToTime(const QString& S)
{
    TDateTime Result = 0;
    if (!TryStrToTime(S, Result))
        throw EConvertError(QStringLiteral("'%1' is not a valid time").arg(S));
    return Result;
}

namespace {

// The locale's short date form with the year widened to four digits, so that the text
// reads back to the same day.
QString ShortDateFormat(const QLocale& Locale)
{
    QString Format = Locale.dateFormat(QLocale::ShortFormat);
    if (!Format.contains(QLatin1String("yyyy")))
        Format.replace(QLatin1String("yy"), QLatin1String("yyyy"));
    return Format;
}

QString TwoDigits(int Value) { return QStringLiteral("%1").arg(Value, 2, 10, QLatin1Char('0')); }

} // namespace

QString DateToStr(TDateTime Date)
{
    const QDate D = DateTimeToQDate(Date);
    if (!D.isValid())
        throw EConvertError(QStringLiteral("%1 is not a date between the years 1 and 9999").arg(Date));
    const QLocale Locale;
    return Locale.toString(D, ShortDateFormat(Locale));
}

QString DateTimeToStr(TDateTime DateTime)
{
    QString Text = DateToStr(DateTime);
    int H = 0, M = 0, S = 0, Ms = 0;
    DecodeTime(DateTime, H, M, S, Ms);
    if (H || M || S)
        Text += QLatin1Char(' ') + TwoDigits(H) + QLatin1Char(':') + TwoDigits(M) + QLatin1Char(':') + TwoDigits(S);
    return Text;
}

bool TryStrToDate(const QString& S, TDateTime& Value)
{
    const QString Text = Trim(S);
    const QLocale Locale;
    QDate D = Locale.toDate(Text, ShortDateFormat(Locale));
    if (!D.isValid()) {
        // Qt's ISO reading stops after the date and ignores what follows: the text must be
        // the date alone.
        const QDate Iso = QDate::fromString(Text, Qt::ISODate);
        if (Iso.toString(Qt::ISODate) == Text)
            D = Iso;
    }
    // QLocale reads signed years too; only the calendar's years make a TDateTime.
    if (!D.isValid() || !IsValidDate(D.year(), D.month(), D.day()))
        return false;
    Value = QDateToDateTime(D);
    return true;
}

bool TryStrToDateTime(const QString& S, TDateTime& Value)
{
    const QString Text = Trim(S);
    if (TryStrToDate(Text, Value))
        return true;
    // The time may carry a marker after a blank of its own ("2:30 PM"): try each blank
    // from the right as the one between date and time.
    TDateTime Day = 0, Time = 0;
    for (qsizetype At = Text.lastIndexOf(QLatin1Char(' ')); At > 0; At = Text.lastIndexOf(QLatin1Char(' '), At - 1)) {
        if (TryStrToDate(Text.left(At), Day) && TryStrToTime(Text.mid(At + 1), Time)) {
            Value = Combine(DayOf(Day), Time);
            return true;
        }
    }
    return false;
}

int DayOfWeek(TDateTime Date)
{
    if (!InCalendarRange(Date))
        return 0;
    return QDateOfDay(DayOf(Date)).dayOfWeek() % 7 + 1;
}

TDateTime IncDay(TDateTime Date, int NumberOfDays)
{
    // Far outside the calendar there is no day to speak of; plain arithmetic is as good as any.
    if (!InCalendarRange(Date))
        return Date + NumberOfDays;
    return Combine(DayOf(Date) + NumberOfDays, TimeOf(Date));
}

TDateTime IncMonth(TDateTime Date, int NumberOfMonths)
{
    int Year = 0, Month = 0, Day = 0;
    DecodeDate(Date, Year, Month, Day);
    if (Year == 0)
        throw EConvertError(QStringLiteral("Invalid argument to date encode"));
    const qint64 Months = qint64(Year) * 12 + (Month - 1) + NumberOfMonths;
    const qint64 NewYear = Months >= 0 ? Months / 12 : -1;
    if (NewYear < 1 || NewYear > 9999)
        throw EConvertError(QStringLiteral("Invalid argument to date encode"));
    const int NewMonth = int(Months % 12) + 1;
    const int NewDay = qMin(Day, DaysInAMonth(int(NewYear), NewMonth));
    return Combine(qint64(EncodeDate(int(NewYear), NewMonth, NewDay)), TimeOf(Date));
}

TDateTime IncYear(TDateTime Date, int NumberOfYears)
{
    const qint64 Months = qint64(NumberOfYears) * 12;
    if (Months > 12 * 10000 || Months < -12 * 10000)
        throw EConvertError(QStringLiteral("Invalid argument to date encode"));
    return IncMonth(Date, int(Months));
}

TDateTime Date() { return QDateToDateTime(QDate::currentDate()); }

TDateTime Now() { return QDateTimeToDateTime(QDateTime::currentDateTime()); }

QDate DateTimeToQDate(TDateTime Value)
{
    return InCalendarRange(Value) ? QDateOfDay(DayOf(Value)) : QDate();
}

TDateTime QDateToDateTime(const QDate& Value) { return Value.isValid() ? double(DayOfQDate(Value)) : 0.0; }

QDateTime DateTimeToQDateTime(TDateTime Value)
{
    const QDate D = DateTimeToQDate(Value);
    if (!D.isValid())
        return QDateTime();
    return QDateTime(D, QTime::fromMSecsSinceStartOfDay(int(MSecsOfDay(Value))), Qt::LocalTime);
}

TDateTime QDateTimeToDateTime(const QDateTime& Value)
{
    if (!Value.isValid())
        return 0.0;
    const QDateTime Local = Value.toLocalTime();
    return Combine(DayOfQDate(Local.date()), double(Local.time().msecsSinceStartOfDay()) / double(MSecsPerDay));
}

QString FormatDateTime(const QString& Format, TDateTime Value)
{
    int Y, M, D, H, N, S, Z;
    DecodeDate(Value, Y, M, D);
    DecodeTime(Value, H, N, S, Z);
    const bool Twelve = Format.contains(QLatin1String("am/pm"), Qt::CaseInsensitive)
                        || Format.contains(QLatin1String("a/p"), Qt::CaseInsensitive)
                        || Format.contains(QLatin1String("ampm"), Qt::CaseInsensitive);
    const int Hour = Twelve ? (H % 12 == 0 ? 12 : H % 12) : H;
    const QLocale Loc;
    QString R;
    bool AfterHour = false;
    int i = 0;
    auto Run = [&](QChar Ch) {
        int j = i;
        while (j < Format.size() && Format[j].toUpper() == Ch)
            ++j;
        return j - i;
    };
    while (i < Format.size()) {
        const QChar C = Format[i];
        const QChar U = C.toUpper();
        if (C == QLatin1Char('"') || C == QLatin1Char('\'')) {
            int j = Format.indexOf(C, i + 1);
            if (j < 0)
                j = Format.size();
            R += Format.mid(i + 1, j - i - 1);
            i = j + 1;
            continue;
        }
        bool Hour_ = false;
        if (U == QLatin1Char('D')) {
            const int K = Run(U);
            const QDate Dt(Y, M, D);  // invalid outside years 1..9999: names come out empty
            if (K == 1) R += QString::number(D);
            else if (K == 2) R += Pad(D, 2);
            else if (K == 3) R += Loc.dayName(Dt.dayOfWeek(), QLocale::ShortFormat);
            else if (K == 4) R += Loc.dayName(Dt.dayOfWeek(), QLocale::LongFormat);
            else if (K == 5) R += Pad(Y, 4) + QLatin1Char('-') + Pad(M, 2) + QLatin1Char('-') + Pad(D, 2);
            else R += Loc.toString(Dt, QLocale::LongFormat);
            i += K;
        } else if (U == QLatin1Char('M')) {
            const int K = Run(U);
            if (AfterHour && K <= 2) R += K == 1 ? QString::number(N) : Pad(N, 2);
            else if (K == 1) R += QString::number(M);
            else if (K == 2) R += Pad(M, 2);
            else if (K == 3) R += Loc.monthName(M, QLocale::ShortFormat);
            else R += Loc.monthName(M, QLocale::LongFormat);
            i += K;
        } else if (U == QLatin1Char('Y')) {
            const int K = Run(U);
            R += K <= 2 ? Pad(Y % 100, 2) : Pad(Y, 4);
            i += K;
        } else if (U == QLatin1Char('H')) {
            const int K = Run(U);
            R += K == 1 ? QString::number(Hour) : Pad(Hour, 2);
            i += K;
            Hour_ = true;
        } else if (U == QLatin1Char('N')) {
            const int K = Run(U);
            R += K == 1 ? QString::number(N) : Pad(N, 2);
            i += K;
        } else if (U == QLatin1Char('S')) {
            const int K = Run(U);
            R += K == 1 ? QString::number(S) : Pad(S, 2);
            i += K;
        } else if (U == QLatin1Char('Z')) {
            const int K = Run(U);
            R += K >= 3 ? Pad(Z, 3) : QString::number(Z);
            i += K;
        } else if (U == QLatin1Char('A') && Format.mid(i, 5).compare(QLatin1String("am/pm"), Qt::CaseInsensitive) == 0) {
            const QString T = H < 12 ? QStringLiteral("am") : QStringLiteral("pm");
            R += Format[i].isUpper() ? T.toUpper() : T;
            i += 5;
        } else if (U == QLatin1Char('A') && Format.mid(i, 3).compare(QLatin1String("a/p"), Qt::CaseInsensitive) == 0) {
            const QString T = H < 12 ? QStringLiteral("a") : QStringLiteral("p");
            R += Format[i].isUpper() ? T.toUpper() : T;
            i += 3;
        } else if (U == QLatin1Char('A') && Format.mid(i, 4).compare(QLatin1String("ampm"), Qt::CaseInsensitive) == 0) {
            R += H < 12 ? FormatSettings.TimeAMString : FormatSettings.TimePMString;
            i += 4;
        } else if (U == QLatin1Char('C')) {
            R += FormatDateTime(QStringLiteral("yyyy-mm-dd"), Value);
            if (H || N || S)
                R += QLatin1Char(' ') + FormatDateTime(QStringLiteral("hh:nn:ss"), Value);
            ++i;
        } else if (U == QLatin1Char('T')) {
            const int K = Run(U);
            R += FormatDateTime(K == 1 ? QStringLiteral("hh:nn") : QStringLiteral("hh:nn:ss"), Value);
            i += K;
        } else {
            // "/" and ":" stand for the separators of FormatSettings; other characters are copied.
            if (C == QLatin1Char('/'))
                R += FormatSettings.DateSeparator;
            else if (C == QLatin1Char(':'))
                R += FormatSettings.TimeSeparator;
            else
                R += C;
            ++i;
            continue;  // separators keep "after an hour" for "hh:mm"
        }
        AfterHour = Hour_;
    }
    return R;
}


} // namespace Kesh
