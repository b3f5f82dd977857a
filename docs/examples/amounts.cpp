// Amounts in Arabic and English words, the Currency type and the house rounding rules.
#include <Kesh.h>
#include <QCoreApplication>
#include <QTextStream>

using namespace Kesh;

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QTextStream out(stdout);

    //! [words]
    // The currency's names: singular, dual, plural, and the singular after 11..99.
    const QStringList riyal = {QStringLiteral("ريال"), QStringLiteral("ريالان"),
                               QStringLiteral("ريالات"), QStringLiteral("ريالا")};
    Currency total(250.75);                         // 64-bit, four decimals, exact sums
    out << NumberToWords(total, riyal) << '\n';     // مائتان وخمسون ريالا
    out << NumberToWordsE(total) << '\n';           // Two Hundreds And Fifty
    // From a thousand up, NumberToWords joins the groups with stored question marks;
    // NumberToArabicWords writes the joining words for text a reader sees.
    out << NumberToWords(Currency(1250), riyal) << '\n';        // ألف ?مائتان وخمسون ريالا
    out << NumberToArabicWords(Currency(1250), riyal) << '\n';  // ألف ومائتان وخمسون ريالا
    // Only the whole part is spelled: write the sub-unit yourself.
    const qint64 halalas = total.Raw() % 10000 / 100;  // 75
    out << NumberToWordsE(Currency(halalas)) << "Halalas\n";
    //! [words]

    //! [rounding]
    out << double(RoundNumber(2.675L, 2, RtNone)) << ' '     // 2.68: half away from zero
        << double(RoundNumber(2.5L, 0, RtNormal)) << ' '     // 2: banker's rounding, whole numbers
        << double(RoundNumber(2.99L, 1, RtNoFrac)) << ' '    // 2: the fraction dropped
        << double(RoundNumber(2.3L, 2, RtNearHaf)) << ' '    // 2.5: to the nearest half
        << double(RoundNumber(2.5L, 0, RtNearOne)) << '\n';  // 3: a half or more goes up
    //! [rounding]
    return 0;
}
