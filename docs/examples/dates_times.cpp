// Integer dates (yyyymmdd, Gregorian or Hijri) and integer times (hhmm).
#include <Kesh.h>
#include <QCoreApplication>
#include <QTextStream>

using namespace Kesh;

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);

    //! [dates]
    int invoiceDate = DateEncode(2024, 3, 11);         // 20240311
    int hijri = ConvertDate(invoiceDate);              // 14450902: 2 Ramadan 1445 (tabular)
    out << DateToString(invoiceDate) << " = " << DateToString(hijri) << '\n';
    out << IsHijri(hijri) << ' ' << ConvertDate(hijri) << '\n';  // back to 20240311
    out << DateToWords(invoiceDate) << '\n';
    int due = DaysInc(invoiceDate, 30);                // 20240410
    int years = 0, months = 0, days = 0;
    DateDiff(invoiceDate, 20250520, years, months, days);  // 1 year, 2 months, 9 days
    out << due << ' ' << years << '/' << months << '/' << days << '\n';
    out << MonthsInc(hijri, 1) << ' ' << GetDaysInMonth(hijri) << '\n';  // 14451003 29
    //! [dates]

    //! [times]
    int opens = TimeEncode(8, 30);                     // 830
    int closes = StringToTime(QStringLiteral("17.15"));  // 1715; -1 when the text is no time
    out << MinutesBetween(opens, closes) << " min = " << TimeBetween(opens, closes) << '\n';
    //! [times]
    return 0;
}
