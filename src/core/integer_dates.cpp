// Kesh for Qt — integer dates: packing, validation, text, names and calendar arithmetic.
// The conversion between the two calendars lives in hijri_calendar.cpp.

#include "integer_dates.h"

#include "conversions.h"
#include "platform/exceptions.h"
#include "platform/rtl/numbers.h"

namespace Kesh {

const QString TxDayName[2][8] = {
    {QString(), QStringLiteral("Sat."), QStringLiteral("Sun."), QStringLiteral("Mon."), QStringLiteral("Tue."),
     QStringLiteral("Wed."), QStringLiteral("Thu."), QStringLiteral("Fri.")},
    {QString(), QStringLiteral("السبت"), QStringLiteral("الأحد"), QStringLiteral("الإثنين"),
     QStringLiteral("الثلاثاء"), QStringLiteral("الأربعاء"), QStringLiteral("الخميس"), QStringLiteral("الجمعة")},
};

const QString TxMonthName[2][13] = {
    {QString(), QStringLiteral("January"), QStringLiteral("February"), QStringLiteral("March"),
     QStringLiteral("April"), QStringLiteral("May"), QStringLiteral("June"), QStringLiteral("July"),
     QStringLiteral("August"), QStringLiteral("September"), QStringLiteral("October"), QStringLiteral("November"),
     QStringLiteral("December")},
    {QString(), QStringLiteral("يناير"), QStringLiteral("فبراير"), QStringLiteral("مارس"), QStringLiteral("أبريل"),
     QStringLiteral("مايو"), QStringLiteral("يونيو"), QStringLiteral("يوليو"), QStringLiteral("أغسطس"),
     QStringLiteral("سبتمبر"), QStringLiteral("أكتوبر"), QStringLiteral("نوفمبر"), QStringLiteral("ديسمبر")},
};

// The two Jumada months stand at 3 and 4 and the two Rabei months at 5 and 6: the table's
// own order, which every stored name and caption of the library follows.
const QString TxHijriMonthName[2][13] = {
    {QString(), QStringLiteral("Muharram"), QStringLiteral("Safar"), QStringLiteral("Jumada 1st"),
     QStringLiteral("Jumada 2nd"), QStringLiteral("Rabei 1st"), QStringLiteral("Rabei 2nd"), QStringLiteral("Rajab"),
     QStringLiteral("Sha'ban"), QStringLiteral("Ramadan"), QStringLiteral("Shawwal"), QStringLiteral("Dul-Quida"),
     QStringLiteral("Dul-Hija")},
    {QString(), QStringLiteral("محرم"), QStringLiteral("صفر"), QStringLiteral("جماد أول"),
     QStringLiteral("جماد ثان"), QStringLiteral("ربيع أول"), QStringLiteral("ربيع ثان"), QStringLiteral("رجب"),
     QStringLiteral("شعبان"), QStringLiteral("رمضان"), QStringLiteral("شوال"), QStringLiteral("ذوالقعدة"),
     QStringLiteral("ذوالحجة")},
};

namespace {

// A month name, or empty text for a month number that the tables do not hold.
QString MonthName(const QString (&Table)[2][13], int Month)
{
    return Month >= 1 && Month <= 12 ? Table[LangIndex()][Month] : QString();
}

int ToIntOrZero(const QString& S)
{
    int Value = 0;
    return TryStrToInt(S, Value) ? Value : 0;
}

// The Gregorian day of a value, packed even before 1899-12-30: the Hijri years 1300..1317
// fall there, and DateToInt would give 0 for them.
int GregorianDayOf(TDateTime Value)
{
    int Year = 0, Month = 0, Day = 0;
    DecodeDate(Value, Year, Month, Day);
    return DateEncode(Year, Month, Day);
}

// The Gregorian step of DaysInc/MonthsInc/YearsInc, applied in the calendar of D. A step
// that leaves the platform's range of dates gives 0, "no date".
template <typename Step>
int MoveDate(int D, int N, Step IncStep)
{
    try {
        if (!IsHijri(D))
            return DateToInt(IncStep(IntToDate(D), N));
        return ConvertDate(GregorianDayOf(IncStep(IntToDate(ConvertDate(D)), N)));
    } catch (const Exception&) {
        return 0;
    }
}

} // namespace

int DateToInt(TDateTime D)
{
    if (!(D > 0)) // also catches NaN
        return 0;
    try {
        int Year = 0, Month = 0, Day = 0;
        DecodeDate(D, Year, Month, Day);
        return DateEncode(Year, Month, Day);
    } catch (const Exception&) {
        return 0;
    }
}

TDateTime IntToDate(int D)
{
    int Year = 0, Month = 0, Day = 0;
    DateDecode(D, Year, Month, Day);
    TDateTime Result = 0;
    // A value that is no real Gregorian day gives 0 rather than an undefined date.
    return TryEncodeDate(Year, Month, Day, Result) ? Result : 0;
}

int AsDate(const QString& S)
{
    static const TSysCharSet Delims{'-', '.', '/', ':', '\\'};
    QString Rest = S;
    // Always day first: the order of the fields is fixed, not taken from the locale.
    const int Day = ToIntOrZero(GetToken(Rest, Delims));
    const int Month = ToIntOrZero(GetToken(Rest, Delims));
    const int Year = ToIntOrZero(GetToken(Rest, Delims));
    return DateEncode(Year, Month, Day);
}

int DateEncode(int Year, int Month, int Day)
{
    // Unchecked packing; unsigned arithmetic lets absurd parts wrap instead of overflowing.
    return static_cast<int>(static_cast<quint32>(Year) * 10000u + static_cast<quint32>(Month) * 100u
                            + static_cast<quint32>(Day));
}

void DateDecode(int D, int& Year, int& Month, int& Day)
{
    Year = D / 10000;
    Month = (D % 10000) / 100;
    Day = D % 100;
}

int GetYear(int D)
{
    return D / 10000;
}

int GetMonth(int D)
{
    return (D % 10000) / 100;
}

int GetDay(int D)
{
    return D % 100;
}

void SetDay(int& D, int Day)
{
    D = DateEncode(GetYear(D), GetMonth(D), Day);
}

QString DateToString(int D)
{
    int Year = 0, Month = 0, Day = 0;
    DateDecode(D, Year, Month, Day);
    return Int2Str(Day, 2) + QLatin1Char('-') + Int2Str(Month, 2) + QLatin1Char('-') + Int2Str(Year, 4);
}

bool IsDate(int D)
{
    if (D < 1)
        return false;
    int Year = 0, Month = 0, Day = 0;
    DateDecode(D, Year, Month, Day);
    // The length of the month is not checked: 31 February passes.
    return ((Year >= 1900 && Year <= 2099) || (Year >= 1300 && Year <= 1499)) && Month >= 1 && Month <= 12
           && Day >= 1 && Day <= 31;
}

bool IsHijri(int D)
{
    const int Year = GetYear(D);
    return Year >= 1300 && Year <= 1499;
}

QString DateToWords(int D)
{
    int Year = 0, Month = 0, Day = 0;
    DateDecode(D, Year, Month, Day);
    const bool Hijri = IsHijri(D);
    const QString MonthText = MonthName(Hijri ? TxHijriMonthName : TxMonthName, Month);
    const int G = Hijri ? ConvertDate(D) : D;

    // DayOfWeek counts from Sunday; the name table counts from Saturday.
    int W = DayOfWeek(IntToDate(G)) + 1;
    if (W >= 8)
        W = 1;
    return TxDayName[LangIndex()][W] + QLatin1Char(' ') + QString::number(Day) + QLatin1Char(' ') + MonthText
           + QStringLiteral(", ") + QString::number(Year);
}

int GetDaysInMonth(int D)
{
    if (!IsHijri(D)) {
        int Year = 0, Month = 0, Day = 0;
        DecodeDate(IntToDate(D), Year, Month, Day);
        return DaysInAMonth(Year, Month);
    }

    // Counts the days that follow the 1st while the Hijri month stays the same: one short
    // of the month's length, which the calendar picker relies on.
    int First = D;
    SetDay(First, 1);
    const int Month = GetMonth(D);
    TDateTime G = IntToDate(ConvertDate(First));
    int Count = 0;
    while (Count < 30) {
        G = IncDay(G, 1);
        if (GetMonth(ConvertDate(GregorianDayOf(G))) != Month)
            break;
        ++Count;
    }
    return Count;
}

int GetDaysLeft(int D)
{
    return GetDaysInMonth(D) - GetDay(D);
}

void DateDiff(int D1, int D2, int& Years, int& Months, int& Days)
{
    if (!IsDate(D1) || !IsDate(D2))
        return;
    // Only D1 decides whether both dates are first taken to the Gregorian calendar.
    const bool Hijri = IsHijri(D1);
    const TDateTime F = IntToDate(Hijri ? ConvertDate(D1) : D1);
    const TDateTime T = IntToDate(Hijri ? ConvertDate(D2) : D2);
    Years = Months = Days = 0;
    if (F == T)
        return;

    int Y1 = 0, M1 = 0, Dy1 = 0, Y2 = 0, M2 = 0, Dy2 = 0;
    DecodeDate(F > T ? F : T, Y1, M1, Dy1);
    DecodeDate(F > T ? T : F, Y2, M2, Dy2);
    if (Dy1 < Dy2) {
        // Borrow the later date's own month, taken before it is stepped back.
        Dy1 += DaysInAMonth(Y1, M1);
        if (--M1 == 0) {
            M1 = 12;
            --Y1;
        }
    }
    Days = Dy1 - Dy2;
    if (M1 < M2) {
        M1 += 12;
        --Y1;
    }
    Months = M1 - M2;
    Years = Y1 - Y2;
}

int DaysInc(int D, int N)
{
    return MoveDate(D, N, [](TDateTime Value, int Count) { return IncDay(Value, Count); });
}

int MonthsInc(int D, int N)
{
    return MoveDate(D, N, [](TDateTime Value, int Count) { return IncMonth(Value, Count); });
}

int YearsInc(int D, int N)
{
    return MoveDate(D, N, [](TDateTime Value, int Count) { return IncYear(Value, Count); });
}

} // namespace Kesh
