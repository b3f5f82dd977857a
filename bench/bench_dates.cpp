// Gregorian to Hijri conversion of every day 1900-01-01 .. 2099-12-31: Kesh's ConvertDate
// against ICU's tabular Islamic calendar ("islamic-tbla", the same calendar) and Qt's
// QCalendar IslamicCivil (the same cycle with the civil, Friday epoch: one day apart, so only
// its speed is compared). Every side gets Gregorian year/month/day in and gives Hijri
// year/month/day out; each peer reuses one calendar object made before timing starts.
#include <Kesh.h>

#include <QCalendar>
#include <QDate>

#include <unicode/calendar.h>
#include <unicode/timezone.h>

#include <chrono>
#include <cstdio>
#include <algorithm>
#include <memory>
#include <vector>

namespace {

struct Ymd
{
    int Year, Month, Day;
};

// Runs one pass over the days until at least MinSeconds have passed; best of three rounds.
template <typename Converter>
double ConversionsPerSecond(const std::vector<Ymd>& Days, Converter Convert, qint64& Checksum)
{
    using Clock = std::chrono::steady_clock;
    constexpr double MinSeconds = 0.4;
    double Best = 0;
    for (int Round = 0; Round < 3; ++Round) {
        qint64 Count = 0;
        qint64 Sum = 0;
        const auto Start = Clock::now();
        double Elapsed = 0;
        do {
            for (const Ymd& D : Days)
                Sum += Convert(D);
            Count += qint64(Days.size());
            Elapsed = std::chrono::duration<double>(Clock::now() - Start).count();
        } while (Elapsed < MinSeconds);
        Best = std::max(Best, double(Count) / Elapsed);
        Checksum = Sum / (Count / qint64(Days.size())); // one pass's sum, to compare results
    }
    return Best;
}

// Milliseconds since 1970-01-01 UTC of a proleptic Gregorian day: ICU's input, made as cheaply
// as possible so that ICU is timed on the calendar work alone.
double UDateOf(const Ymd& D)
{
    const int Y = D.Month <= 2 ? D.Year - 1 : D.Year;
    const int Era = Y / 400;
    const int YearOfEra = Y - Era * 400;
    const int MonthFromMarch = (D.Month + 9) % 12;
    const int DayOfYear = (153 * MonthFromMarch + 2) / 5 + D.Day - 1;
    const int DayOfEra = YearOfEra * 365 + YearOfEra / 4 - YearOfEra / 100 + DayOfYear;
    return double(qint64(Era) * 146097 + DayOfEra - 719468) * 86400000.0;
}

} // namespace

int main()
{
    std::vector<Ymd> Days;
    for (QDate D(1900, 1, 1); D.year() <= 2099; D = D.addDays(1))
        Days.push_back({D.year(), D.month(), D.day()});

    qint64 KeshSum = 0;
    const double Kesh = ConversionsPerSecond(Days, [](const Ymd& D) -> qint64 {
        const int H = Kesh::ConvertDate(D.Year * 10000 + D.Month * 100 + D.Day);
        const int Y = H / 10000, M = H / 100 % 100, Dy = H % 100; // the integer date's parts
        return qint64(Y) * 10000 + M * 100 + Dy;
    }, KeshSum);

    UErrorCode Status = U_ZERO_ERROR;
    std::unique_ptr<icu::Calendar> Islamic(
        icu::Calendar::createInstance(*icu::TimeZone::getGMT(), icu::Locale("@calendar=islamic-tbla"), Status));
    if (U_FAILURE(Status)) {
        std::fprintf(stderr, "ICU calendar: %s\n", u_errorName(Status));
        return 1;
    }
    qint64 IcuSum = 0;
    const double Icu = ConversionsPerSecond(Days, [&](const Ymd& D) -> qint64 {
        Islamic->setTime(UDateOf(D), Status);
        return qint64(Islamic->get(UCAL_EXTENDED_YEAR, Status)) * 10000 + (Islamic->get(UCAL_MONTH, Status) + 1) * 100
               + Islamic->get(UCAL_DATE, Status);
    }, IcuSum);
    if (U_FAILURE(Status)) {
        std::fprintf(stderr, "ICU conversion: %s\n", u_errorName(Status));
        return 1;
    }

    const QCalendar Civil(QCalendar::System::IslamicCivil);
    qint64 QtSum = 0;
    const double Qt = ConversionsPerSecond(Days, [&](const Ymd& D) -> qint64 {
        const QDate G(D.Year, D.Month, D.Day);
        return qint64(G.year(Civil)) * 10000 + G.month(Civil) * 100 + G.day(Civil);
    }, QtSum);
    qint64 QtPartsSum = 0;
    const double QtParts = ConversionsPerSecond(Days, [&](const Ymd& D) -> qint64 {
        const QCalendar::YearMonthDay P = Civil.partsFromDate(QDate(D.Year, D.Month, D.Day));
        return qint64(P.year) * 10000 + P.month * 100 + P.day;
    }, QtPartsSum);

    std::printf("Gregorian -> Hijri, every day 1900-01-01 .. 2099-12-31 (%zu days), best of 3 rounds\n", Days.size());
    std::printf("  Kesh ConvertDate                          %12.0f conversions/s\n", Kesh);
    std::printf("  ICU islamic-tbla Calendar setTime+get     %12.0f conversions/s\n", Icu);
    std::printf("  Qt QCalendar IslamicCivil year/month/day  %12.0f conversions/s\n", Qt);
    std::printf("  Qt QCalendar IslamicCivil partsFromDate   %12.0f conversions/s\n", QtParts);
    std::printf("Kesh speed / ICU islamic-tbla:              %8.1fx\n", Kesh / Icu);
    std::printf("Kesh speed / Qt year/month/day:             %8.1fx\n", Kesh / Qt);
    std::printf("Kesh speed / Qt partsFromDate:              %8.1fx\n", Kesh / QtParts);
    std::printf("Same results as ICU islamic-tbla:           %s\n", KeshSum == IcuSum ? "yes" : "NO");
    std::printf("Qt IslamicCivil (Friday epoch) checksum differs as expected: %s\n",
                QtSum != KeshSum && QtSum == QtPartsSum ? "yes" : "NO");
    return KeshSum == IcuSum ? 0 : 1;
}
