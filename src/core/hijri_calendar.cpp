// Kesh for Qt — conversion between Gregorian and tabular Hijri integer dates.
//
// The calendar is the arithmetic Islamic one: a 30-year cycle of 10631 days with the
// leap years 2, 5, 7, 10, 13, 16, 18, 21, 24, 26 and 29, counted against a day number
// whose epoch offset is 227015. The classic formulation mixes 80-bit "real" steps with
// integer ones; every real step is computed here by an integer expression that gives the
// identical result for every input a 32-bit integer date can hold:
//
//   Trunc(Y*365.25 - 365)  = (1461*Y - 1460) / 4    365.25 = 1461/4 and the product is exact
//   Trunc(N/365.25)        = 4*N / 1461             a non-integral quotient lies at least
//                                                   1/1461 from an integer, far above one ulp
//   Trunc(M*29.5 + 0.5)    = (59*M + 1) / 2         29.5 and 0.5 are exact
//   Trunc(M*30.6 - 32.4)   = (306*M - 324) / 10     the extended values of 30.6 and 32.4
//   Trunc(R/30.6)          = 10*R / 306             and 354.36 lie on the side that keeps
//   Trunc(N/354.36)        = 100*N / 35436          every truncation on the exact one
//
// (C++ division truncates toward zero, as Trunc does.) The last three were checked against
// 80-bit arithmetic over far wider ranges than the ones that occur (|M| <= 300000,
// |R| <= 10^7, |N| <= 10^8; here |N| stays below 8*10^7). So the conversion needs no
// floating point at all and gives the same days on every compiler, including those whose
// long double is only a double.

#include "integer_dates.h"

#include <QtGlobal>

namespace Kesh {

namespace {

// Gregorian day count of the 1st of March of year Y (the year counted from March), without
// the century correction.
constexpr qint64 DaysBeforeYear(qint64 Y)
{
    return (1461 * Y - 1460) / 4;
}

// Days before the 1st of month M of a March-based year (M = 3 .. 14).
constexpr qint64 DaysBeforeMonth(qint64 M)
{
    return (306 * M - 324) / 10;
}

// Century correction of the Gregorian calendar against the Julian count.
constexpr qint64 CenturyCorrection(qint64 Y)
{
    return 2 - Y / 100 + Y / 400 - Y / 4000;
}

// Hijri day count before year Y + 1 (years of the 30-year cycle of 10631 days).
constexpr qint64 HijriDaysBeforeYear(qint64 Y)
{
    return (Y * 10631 + 14) / 30;
}

// Days before Hijri month M + 1 of a year: months alternate 30 and 29 days.
constexpr qint64 HijriDaysBeforeMonth(qint64 M)
{
    return (59 * M + 1) / 2;
}

constexpr qint64 kEpochOffset = 227015;

// The step-by-step conversion for any packed value, years before 1000 and negative ones
// included: estimate a year too high, then step down.
int GregorianToHijriAnyInput(int D)
{
    qint64 Year = D / 10000;
    qint64 Month = (D % 10000) / 100;
    qint64 Day = D % 100;
    if (Month < 3) {
        Month += 12;
        Year -= 1;
    }
    const qint64 N = CenturyCorrection(Year) + DaysBeforeYear(Year) + Day + DaysBeforeMonth(Month) - kEpochOffset;

    Year = 100 * N / 35436 + 3;
    qint64 T;
    do {
        --Year;
        T = HijriDaysBeforeYear(Year - 1);
    } while (T >= N);

    Day = N - T;
    Month = Day / 29 + 3;
    qint64 T2;
    do {
        --Month;
        T2 = HijriDaysBeforeMonth(Month - 1);
    } while (T2 >= Day);
    Day -= T2;

    // Day 355 of a leap year comes out as the first of a thirteenth month.
    if (Month > 12) {
        Month -= 1;
        Day += 29;
    }
    // A year beyond the 32-bit packing wraps instead of overflowing.
    return static_cast<int>(static_cast<quint32>(Year * 10000 + Month * 100 + Day));
}

// The same for years 1000..9999 (every month and day part 0..99), without loops. There
// the day number N is positive, every term is non-negative, and the two step-down loops
// have closed forms:
//   the year:  the largest Y with ((Y-1)*10631 + 14) div 30 < N  is  (30*N - 15) div 10631 + 1
//   the month: the largest M with ((M-1)*59 + 1) div 2 < Day     is  (2*Day - 2) div 59 + 1
// (for a positive integer bound, floor(x) < N exactly when x < N), and the loops' starting
// estimates lie above both. 32-bit unsigned arithmetic suffices: N stays below 3.5 million.
int GregorianToHijriFourDigitYear(int D)
{
    const quint32 Packed = static_cast<quint32>(D);
    quint32 Year = Packed / 10000;
    const quint32 MonthDay = Packed - Year * 10000;
    quint32 Month = MonthDay / 100;
    const quint32 Day = MonthDay - Month * 100;
    if (Month < 3) {
        Month += 12;
        Year -= 1;
    }
    const quint32 N = 2 + Year / 400 + (1461 * Year - 1460) / 4 + Day + (306 * Month - 324) / 10 - Year / 100
                      - Year / 4000 - quint32(kEpochOffset);

    const quint32 YearsBefore = (30 * N - 15) / 10631;
    quint32 DayOfYear = N - (YearsBefore * 10631 + 14) / 30;
    const quint32 MonthsBefore = (2 * DayOfYear - 2) / 59;
    quint32 DayOfMonth = DayOfYear - (59 * MonthsBefore + 1) / 2;
    quint32 HijriMonth = MonthsBefore + 1;
    if (HijriMonth > 12) { // day 355 of a leap year
        HijriMonth = 12;
        DayOfMonth += 29;
    }
    return static_cast<int>((YearsBefore + 1) * 10000 + HijriMonth * 100 + DayOfMonth);
}

// Hijri years 1300..1499 (the only ones read as Hijri), month and day parts 0..99. The day
// count fits 32 bits, and the step-down loops are replaced by exact equivalents:
//   the year:  the loop finds the largest Y with N - (days before Y) >= 60, the days before
//              year Y being G(Y) - 363 with G(Y) = 365*Y + Y div 4 - Y div 100 + Y div 400
//              (the term Y div 4000 is 0 here): the largest Y with G(Y) <= X = N + 303.
//              As G(Y) >= 365.2425*Y - 1.75, that Y is at most X div 365.2425 + 1, where
//              the search starts; it steps down once or twice instead of three times.
//   the month: the largest M with (306*M - 324) div 10 < R is (10*R + 323) div 306.
int HijriToGregorian(int D)
{
    const int Year = D / 10000 - 1;
    const int Month = (D % 10000) / 100 - 1;
    const int Day = D % 100;
    const int N = int(HijriDaysBeforeYear(Year)) + Day + int(HijriDaysBeforeMonth(Month)) + int(kEpochOffset);

    int GYear = 400 * (N + 303) / 146097 + 2;
    int R;
    do {
        --GYear;
        R = N - int(DaysBeforeYear(GYear) + CenturyCorrection(GYear));
    } while (R < 60);
    int GMonth = (10 * R + 323) / 306;
    const int GDay = R - int(DaysBeforeMonth(GMonth));
    // Months 13 and 14 are January and February of the next year.
    if (GMonth > 12) {
        GMonth -= 12;
        ++GYear;
    }
    return GYear * 10000 + GMonth * 100 + GDay;
}

} // namespace

int ConvertDate(int D)
{
    // Positive values of the years 1300..1499 are Hijri; every other value is Gregorian.
    if (D >= 13000000 && D <= 14999999)
        return HijriToGregorian(D);
    if (D >= 10000000 && D <= 99999999)
        return GregorianToHijriFourDigitYear(D);
    return GregorianToHijriAnyInput(D);
}

} // namespace Kesh
