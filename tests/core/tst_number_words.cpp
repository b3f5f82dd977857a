// Amounts in Arabic and English words, and the amount text both routines read.
#include <Kesh.h>

#include <QRandomGenerator>
#include <QtTest>

using namespace Kesh;

namespace {
constexpr qint64 Unit = 10000; // raw units of one whole Currency amount

const QStringList Riyal = {QStringLiteral("ريال"), QStringLiteral("ريالان"), QStringLiteral("ريالات"),
                           QStringLiteral("ريالا")};
const QStringList Lira = {QStringLiteral("ليرة"), QStringLiteral("ليرتان"), QStringLiteral("ليرات"),
                          QStringLiteral("ليرة")};
// Only the singular decides the feminine "one"; here only the accusative has the letter.
const QStringList Dirham = {QStringLiteral("درهم"), QStringLiteral("درهمان"), QStringLiteral("دراهم"),
                            QStringLiteral("درهمة")};

// The cents that the platform's formatting gives for a raw amount (sign included).
qint64 FormattedCents(qint64 Raw)
{
    QString Text = FormatFloat(QStringLiteral("0.00"), Currency::FromRaw(Raw).ToExtended());
    Text.remove(FormatSettings.DecimalSeparator);
    bool Ok = false;
    const qint64 Cents = Text.toLongLong(&Ok);
    return Ok ? Cents : std::numeric_limits<qint64>::min();
}
} // namespace

class TestNumberWords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { FormatSettings.DecimalSeparator = QLatin1Char('.'); }
    void cleanup() { FormatSettings.DecimalSeparator = QLatin1Char('.'); }

    void arabic_data()
    {
        QTest::addColumn<qint64>("raw");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QString>("expected");
        const auto Row = [](const char* Name, qint64 Raw, const QStringList& Names, const QString& Expected) {
            QTest::newRow(Name) << Raw << Names << Expected;
        };
        const QString X = QStringLiteral("تسعمائة وتسعة وتسعون");

        Row("zero", 0, Riyal, " ريال");
        // A: no tens, every level.
        Row("A1 one, level 0", 1 * Unit, Riyal, "ريال واحد");
        Row("A1 one, feminine", 1 * Unit, Lira, "ليرة واحدة");
        Row("A1 one, singular decides gender", 1 * Unit, Dirham, "درهم واحد");
        Row("A1 level 1", 1000 * Unit, Riyal, "ألف ريال");
        Row("A1 level 2", 1000000 * Unit, Riyal, "مليون ريال");
        Row("A1 level 3", 1000000000 * Unit, Riyal, "مليار ريال");
        Row("A2 dual, level 0", 2 * Unit, Riyal, "ريالان");
        Row("A2 dual, feminine", 2 * Unit, Lira, "ليرتان");
        Row("A2 level 1", 2000 * Unit, Riyal, "ألفان ريال");
        Row("A2 level 2", 2000000 * Unit, Riyal, "مليونان ريال");
        Row("A2 level 3", 2000000000 * Unit, Riyal, "ملياران ريال");
        Row("A3 three, level 0", 3 * Unit, Riyal, "ثلاثة ريالات");
        Row("A3 nine, feminine", 9 * Unit, Lira, "تسعة ليرات");
        Row("A3 level 1", 3000 * Unit, Riyal, "ثلاثة آلاف ريال");
        Row("A3 level 2", 5000000 * Unit, Riyal, "خمسة ملايين ريال");
        Row("A3 level 3", 7000000000 * Unit, Riyal, "سبعة مليارات ريال");
        // B: ten.
        Row("B ten, level 0", 10 * Unit, Riyal, "عشرة ريالات");
        Row("B level 1", 10000 * Unit, Riyal, "عشرة آلاف ريال");
        Row("B level 2", 10000000 * Unit, Riyal, "عشرة ملايين ريال");
        Row("B level 3", 10000000000 * Unit, Riyal, "عشرة مليارات ريال");
        // C: round tens.
        Row("C twenty", 20 * Unit, Riyal, "عشرون ريالا");
        Row("C forty", 40 * Unit, Riyal, "أربعون ريالا");
        Row("C ninety, feminine", 90 * Unit, Lira, "تسعون ليرة");
        Row("C level 1", 20000 * Unit, Riyal, "عشرون ??? ريالا");
        Row("C level 3", 20000000000 * Unit, Riyal, "عشرون ????? ريالا");
        // D: teens with their two blanks before the name.
        Row("D eleven", 11 * Unit, Riyal, "أحد عشر  ريالا");
        Row("D twelve", 12 * Unit, Riyal, "إثنا عشر  ريالا");
        Row("D thirteen", 13 * Unit, Riyal, "ثلاثة عشر  ريالا");
        Row("D nineteen", 19 * Unit, Riyal, "تسعة عشر  ريالا");
        Row("D level 1 ends the amount", 11000 * Unit, Riyal, "أحد عشر  ??? ريالا");
        Row("D level 1 fifteen", 15000 * Unit, Riyal, "خمسة عشر  ??? ريالا");
        Row("D level 1 before units", 11005 * Unit, Riyal, "أحد عشر  ????? ?خمسة ريالات");
        Row("D level 2", 12000000 * Unit, Riyal, "إثنا عشر  ????? ريالا");
        Row("D level 2 before units", 13000005 * Unit, Riyal, "ثلاثة عشر  ??????? ?خمسة ريالات");
        Row("D level 3", 11000000000 * Unit, Riyal, "أحد عشر  ????? ريالا");
        // E: units and tens.
        Row("E twenty-one", 21 * Unit, Riyal, "واحد وعشرون ريالا");
        Row("E twenty-two", 22 * Unit, Riyal, "إثنان وعشرون ريالا");
        Row("E forty-five", 45 * Unit, Riyal, "خمسة وأربعون ريالا");
        Row("E ninety-nine", 99 * Unit, Riyal, "تسعة وتسعون ريالا");
        Row("E level 1", 21000 * Unit, Riyal, "واحد وعشرون ??? ريالا");
        Row("E level 2", 25000000 * Unit, Riyal, "خمسة وعشرون ????? ريالا");
        Row("E level 3", 21000000000 * Unit, Riyal, "واحد وعشرون ????? ريالا");
        // F: hundreds alone and with tails.
        Row("F hundred alone", 100 * Unit, Riyal, "مائة ريال");
        Row("F two hundred alone", 200 * Unit, Riyal, "مائتان ريال");
        Row("F three hundred alone", 300 * Unit, Riyal, "ثلاثمائة ريال");
        Row("F with one", 101 * Unit, Riyal, "مائة وريال واحد");
        Row("F with one, feminine", 101 * Unit, Lira, "مائة وليرة واحدة");
        Row("F with two", 102 * Unit, Riyal, "مائة وريالان");
        Row("F with units", 105 * Unit, Riyal, "مائة وخمسة ريالات");
        Row("F with ten", 110 * Unit, Riyal, "مائة وعشرة ريالات");
        Row("F with teen", 111 * Unit, Riyal, "مائة وأحد عشر  ريالا");
        Row("F with units and tens", 125 * Unit, Riyal, "مائة وخمسة وعشرون ريالا");
        Row("F largest group", 999 * Unit, Riyal, "تسعمائة وتسعة وتسعون ريالا");
        Row("F level 1 alone", 100000 * Unit, Riyal, "مائة ألف ريال");
        Row("F level 1 with one", 101000 * Unit, Riyal, "مائة وألف ريال");
        Row("F level 1 with two", 102000 * Unit, Riyal, "مائة وألفان ريال");
        Row("F level 1 with teen", 111000 * Unit, Riyal, "مائة وأحد عشر  ??? ريالا");
        Row("F level 2 alone", 100000000 * Unit, Riyal, "مائة مليون ريال");
        Row("F level 3 alone", 300000000000 * Unit, Riyal, "ثلاثمائة مليار ريال");
        // Joining the groups.
        Row("thousand and units", 1005 * Unit, Riyal, "ألف ?خمسة ريالات");
        Row("thousand and hundreds", 1500 * Unit, Riyal, "ألف ?خمسمائة ريال");
        Row("two thousand and one", 2001 * Unit, Riyal, "ألفان ?ريال واحد");
        Row("million and one", 1000001 * Unit, Riyal, "مليون ?ريال واحد");
        Row("million and a thousand", 1001000 * Unit, Riyal, "مليون ?ألف ريال");
        Row("millions over hundreds of thousands", 2500000 * Unit, Riyal, "مليونان ?خمسمائة ألف ريال");
        Row("billion and one", 1000000001 * Unit, Riyal, "مليار ?ريال واحد");
        Row("every level", 1002003004 * Unit, Riyal, "مليار ?مليونان ?ثلاثة آلاف ?أربعة ريالات");
        Row("largest thousands", 999999 * Unit, Riyal,
            X + " ????? ?" + X + " ريالا");
        Row("largest amount", 999999999999 * Unit, Riyal,
            X + " ??????? ?" + X + " ??????? ?" + X + " ????? ?" + X + " ريالا");
        // Only the whole part after rounding to two decimals is spelled.
        Row("fraction dropped", 127500, Riyal, "إثنا عشر  ريالا");
        Row("fraction just below the carry", 129949, Riyal, "إثنا عشر  ريالا");
        Row("fraction rounds up to thirteen", 129950, Riyal, "ثلاثة عشر  ريالا");
        Row("fraction rounds up to one", 9950, Riyal, "ريال واحد");
        Row("fraction rounds down to zero", 9949, Riyal, " ريال");
        Row("fraction carries into thousands", 9999950, Riyal, "ألف ريال");
        // Outside the supported range the text is cut to 15 characters.
        Row("10^12 cut to a hundred billion", 1000000000000 * Unit, Riyal, "مائة مليار ريال");
        Row("negative sign reads as a zero digit", -5 * Unit, Riyal, "خمسة ريالات");
        Row("tiny negative rounds to zero", -49, Riyal, " ريال");
        Row("missing names are empty", 3 * Unit, QStringList(), "ثلاثة ");
        // An empty name can empty a group's words, which changes how the groups join.
        const QStringList NoDual = {QStringLiteral("ريال"), QString(), QStringLiteral("ريالات"),
                                    QStringLiteral("ريالا")};
        Row("empty dual after a hundred", 102 * Unit, NoDual, "مائة ريال");
        Row("empty dual alone", 2 * Unit, NoDual, " ريال");
        Row("empty dual under a thousand", 1002 * Unit, NoDual, "ألف ريال");
        Row("empty dual, other groups", 1003 * Unit, NoDual, "ألف ?ثلاثة ريالات");
        Row("feminine one after a thousand", 1001 * Unit, Lira, "ألف ?ليرة واحدة");
        Row("feminine teen accusative", 11 * Unit, Lira, "أحد عشر  ليرة");
    }
    void arabic()
    {
        QFETCH(qint64, raw);
        QFETCH(QStringList, names);
        QTEST(NumberToWords(Currency::FromRaw(raw), names), "expected");
    }

    // The readable variant: the same words with the joiners written in Arabic letters.
    void arabicLetters_data()
    {
        QTest::addColumn<qint64>("raw");
        QTest::addColumn<QString>("expected");
        const QString X = QStringLiteral("تسعمائة وتسعة وتسعون");
        QTest::newRow("and between groups") << 1005 * Unit << QStringLiteral("ألف وخمسة ريالات");
        QTest::newRow("thousands count ends") << 20000 * Unit << QStringLiteral("عشرون ألف ريالا");
        QTest::newRow("millions count ends") << 25000000 * Unit << QStringLiteral("خمسة وعشرون مليون ريالا");
        QTest::newRow("billions count ends") << 21000000000 * Unit << QStringLiteral("واحد وعشرون مليار ريالا");
        QTest::newRow("thousands before units") << 11005 * Unit << QStringLiteral("أحد عشر  ألفاً وخمسة ريالات");
        QTest::newRow("millions before units") << 13000005 * Unit << QStringLiteral("ثلاثة عشر  مليوناً وخمسة ريالات");
        QTest::newRow("every level") << 1002003004 * Unit << QStringLiteral("مليار ومليونان وثلاثة آلاف وأربعة ريالات");
        QTest::newRow("largest amount") << 999999999999 * Unit
                                        << X + QStringLiteral(" ملياراً و") + X + QStringLiteral(" مليوناً و") + X
                + QStringLiteral(" ألفاً و") + X + QStringLiteral(" ريالا");
    }
    void arabicLetters()
    {
        QFETCH(qint64, raw);
        QFETCH(QString, expected);
        QCOMPARE(NumberToArabicWords(Currency::FromRaw(raw), Riyal), expected);
    }
    // No stored question mark survives anywhere, and nothing else differs from NumberToWords.
    void arabicLettersSweep()
    {
        for (qint64 Whole = 0; Whole < 2000000000000; Whole = Whole * 3 + 7) {
            const Currency Value = Currency::FromRaw(Whole * Unit);
            const QString Letters = NumberToArabicWords(Value, Riyal);
            QVERIFY2(!Letters.contains(QLatin1Char('?')), qPrintable(Letters));
            if (!NumberToWords(Value, Riyal).contains(QLatin1Char('?')))
                QCOMPARE(Letters, NumberToWords(Value, Riyal));
        }
    }

    void english_data()
    {
        QTest::addColumn<qint64>("raw");
        QTest::addColumn<QString>("expected");
        const auto Row = [](const char* Name, qint64 Raw, const QString& Expected) {
            QTest::newRow(Name) << Raw << Expected;
        };
        const QString X = QStringLiteral("Nine Hundreds And Ninety Nine");

        Row("zero", 0, "");
        Row("one", 1 * Unit, "One ");
        Row("five", 5 * Unit, "Five ");
        Row("ten", 10 * Unit, "Ten ");
        Row("eleven", 11 * Unit, "Eleven ");
        Row("twelve", 12 * Unit, "Twelve ");
        Row("thirteen", 13 * Unit, "Thirteen ");
        Row("fourteen", 14 * Unit, "Fourteen ");
        Row("fifteen", 15 * Unit, "Fifteen ");
        Row("sixteen", 16 * Unit, "Sixteen ");
        Row("seventeen", 17 * Unit, "Seventeen ");
        Row("eighteen", 18 * Unit, "Eighteen ");
        Row("nineteen", 19 * Unit, "Nineteen ");
        Row("twenty", 20 * Unit, "Twenty  ");
        Row("thirty", 30 * Unit, "Thirty  ");
        Row("fourty", 40 * Unit, "Fourty  ");
        Row("fifty", 50 * Unit, "Fifty  ");
        Row("sixty", 60 * Unit, "Sixty  ");
        Row("seventy", 70 * Unit, "Seventy  ");
        Row("eighty", 80 * Unit, "Eighty  ");
        Row("ninety", 90 * Unit, "Ninety  ");
        Row("twenty-one", 21 * Unit, "Twenty One ");
        Row("fourty-five", 45 * Unit, "Fourty Five ");
        Row("ninety-nine", 99 * Unit, "Ninety Nine ");
        Row("hundred", 100 * Unit, "One Hundred  ");
        Row("hundred and one", 101 * Unit, "One Hundred And One ");
        Row("hundred and ten", 110 * Unit, "One Hundred And Ten ");
        Row("hundred and twenty", 120 * Unit, "One Hundred And Twenty  ");
        Row("two hundreds", 200 * Unit, "Two Hundreds  ");
        Row("largest group", 999 * Unit, "Nine Hundreds And Ninety Nine ");
        Row("one thousand", 1000 * Unit, "One Thousand ");
        Row("two thousands", 2000 * Unit, "Two Thousands ");
        Row("thousand and one", 1001 * Unit, "One Thousand And One ");
        Row("thousand and five hundreds", 1500 * Unit, "One Thousand And Five Hundreds  ");
        Row("twenty thousands", 20000 * Unit, "Twenty  Thousands ");
        Row("hundred thousands", 100000 * Unit, "One Hundred  Thousands ");
        Row("one million", 1000000 * Unit, "One Million  ");
        Row("two millions", 2000000 * Unit, "Two Millions  ");
        Row("million and one, no And over a gap", 1000001 * Unit, "One Million  One ");
        Row("million and a thousand", 1001000 * Unit, "One Million And One Thousand ");
        Row("one billion", 1000000000 * Unit, "One Billion   ");
        Row("twelve billions", 12000000000 * Unit, "Twelve Billions   ");
        Row("largest amount", 999999999999 * Unit,
            X + " Billions And " + X + " Millions And " + X + " Thousands And " + X + " ");
        Row("fraction dropped", 127500, "Twelve ");
        Row("fraction rounds up to thirteen", 129950, "Thirteen ");
        Row("fraction rounds up to one", 9950, "One ");
        Row("10^12 cut to a hundred billion", 1000000000000 * Unit, "One Hundred  Billions   ");
        Row("negative sign reads as a zero digit", -125 * Unit, "Thousand And One Hundred And Twenty Five ");
    }
    void english()
    {
        QFETCH(qint64, raw);
        QTEST(NumberToWordsE(Currency::FromRaw(raw)), "expected");
    }

    // The amount text rounds as the platform's formatting does; only a carry into the
    // whole part shows in the words, so the samples crowd round the .995 boundary.
    void amountTextRoundsAsTheFormatting_data()
    {
        QTest::addColumn<qint64>("low");
        QTest::addColumn<qint64>("high");
        QTest::newRow("supported range") << qint64(0) << 999999999999 * Unit;
        QTest::newRow("small amounts") << qint64(0) << 2000 * Unit;
        QTest::newRow("cut above 10^12") << 1000000000000 * Unit << 99999999999999 * Unit;
        QTest::newRow("formatted above 10^14") << 100000000000000 * Unit << std::numeric_limits<qint64>::max();
        QTest::newRow("negative") << -99999999999999 * Unit << qint64(0);
        QTest::newRow("far negative") << std::numeric_limits<qint64>::min() << -100000000000000 * Unit;
    }
    void amountTextRoundsAsTheFormatting()
    {
        QFETCH(qint64, low);
        QFETCH(qint64, high);
        QRandomGenerator Random(20240611);
        const int Fractions[] = {9949, 9950, 9951, 9999, 50, 49, 0, 5000};
        for (int I = 0; I < 20000; ++I) {
            qint64 Raw = Random.bounded(low, high);
            if (I % 2 == 0) // move the fraction onto a rounding boundary
                Raw = Raw - Raw % Unit + (Raw < 0 ? -1 : 1) * Fractions[I / 2 % 8];
            const qint64 Cents = FormattedCents(Raw);
            QVERIFY2(Cents != std::numeric_limits<qint64>::min(), qPrintable(QString::number(Raw)));
            // The same text with no fraction left to round.
            const Currency Exact = Currency::FromRaw(Cents * 100);
            const Currency Value = Currency::FromRaw(Raw);
            QVERIFY2(NumberToWordsE(Value) == NumberToWordsE(Exact), qPrintable(QString::number(Raw)));
            if (I % 8 == 0)
                QVERIFY2(NumberToWords(Value, Riyal) == NumberToWords(Exact, Riyal),
                         qPrintable(QString::number(Raw)));
        }
    }

    void decimalSeparatorDoesNotMatter()
    {
        FormatSettings.DecimalSeparator = QLatin1Char(',');
        QCOMPARE(NumberToWordsE(Currency::FromRaw(129950)), QStringLiteral("Thirteen "));
        const Currency Far = Currency::FromRaw(std::numeric_limits<qint64>::max());
        FormatSettings.DecimalSeparator = QLatin1Char('.');
        const QString Dotted = NumberToWordsE(Far);
        FormatSettings.DecimalSeparator = QLatin1Char(',');
        QCOMPARE(NumberToWordsE(Far), Dotted);
    }
};

QTEST_GUILESS_MAIN(TestNumberWords)
#include "tst_number_words.moc"
