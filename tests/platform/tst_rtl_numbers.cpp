// Text to number and number to text with the classic run-time semantics.
#include "platform/exceptions.h"
#include "platform/rtl.h"

#include <QtTest>

#include <cmath>
#include <limits>

using namespace Kesh;

Q_DECLARE_METATYPE(long double)

namespace {

QString LongDoubleText(long double V)
{
    char Buffer[64];
    std::snprintf(Buffer, sizeof Buffer, "%.21Lg", V);
    return QString::fromLatin1(Buffer);
}

void SetSeparators(QChar Decimal, QChar Thousand = QLatin1Char(','))
{
    FormatSettings.DecimalSeparator = Decimal;
    FormatSettings.ThousandSeparator = Thousand;
}

const long double NaN = std::numeric_limits<long double>::quiet_NaN();
const long double Inf = std::numeric_limits<long double>::infinity();

} // namespace

class TestRtlNumbers : public QObject
{
    Q_OBJECT

private slots:
    void init() { SetSeparators(QLatin1Char('.')); }

    // Rows marked 64 go through TryStrToInt64.
    void tryStrToInt_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("wide");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<qint64>("value");
        auto Row = [](const char* Name, const QString& Text, bool Ok, qint64 Value = 0) {
            QTest::newRow(Name) << Text << QByteArray(Name).startsWith("64:") << Ok << Value;
        };
        Row("leading blanks", "   5", true, 5);
        Row("trailing blank", "5 ", false);
        Row("leading tab", "\t5", false);
        Row("empty", "", false);
        Row("plus", "+7", true, 7);
        Row("minus", "-7", true, -7);
        Row("blank after sign", "- 7", false);
        Row("sign only", "-", false);
        Row("leading zeros", "0009", true, 9);
        Row("letters after digits", "12a", false);
        Row("decimal point", "1.0", false);
        Row("arabic-indic digit", QString(QChar(0x0665)), false);
        Row("max", "2147483647", true, 2147483647);
        Row("max + 1", "2147483648", false);
        Row("min", "-2147483648", true, std::numeric_limits<int>::min());
        Row("min - 1", "-2147483649", false);
        Row("huge", "99999999999999999999999", false);
        Row("dollar hex, any case", "$fF", true, 255);
        Row("0X hex", "0X1f", true, 31);
        Row("hex after blanks and sign", "  -$10", true, -16);
        Row("hex all ones is -1", "$FFFFFFFF", true, -1);
        Row("hex sign bit", "$80000000", true, std::numeric_limits<int>::min());
        Row("hex leading zeros", "$000000001", true, 1);
        Row("hex 33 bits", "$100000000", false);
        Row("negated hex pattern", "-$FFFFFFFF", true, 1);
        Row("dollar only", "$", false);
        Row("0x only", "0x", false);
        Row("sign after dollar", "$-1", false);
        Row("hex digit in decimal", "1F", false);
        Row("non-hex after dollar", "$G", false);
        Row("64: beyond 32 bits", "4294967296", true, Q_INT64_C(4294967296));
        Row("64: max", "9223372036854775807", true, std::numeric_limits<qint64>::max());
        Row("64: max + 1", "9223372036854775808", false);
        Row("64: min", "-9223372036854775808", true, std::numeric_limits<qint64>::min());
        Row("64: min - 1", "-9223372036854775809", false);
        Row("64: 32-bit pattern stays positive", "$FFFFFFFF", true, Q_INT64_C(4294967295));
        Row("64: hex all ones is -1", "$FFFFFFFFFFFFFFFF", true, -1);
        Row("64: hex 65 bits", "$10000000000000000", false);
        Row("64: trailing blank", "12 ", false);
    }
    void tryStrToInt()
    {
        QFETCH(QString, text);
        QFETCH(bool, wide);
        QFETCH(bool, ok);
        QFETCH(qint64, value);
        int Result = 12345;
        qint64 Result64 = 12345;
        QCOMPARE(wide ? TryStrToInt64(text, Result64) : TryStrToInt(text, Result), ok);
        QCOMPARE(wide ? Result64 : Result, ok ? value : 12345); // a failure leaves the variable alone
    }

    // Rows marked double go through the double overload, which must round only once.
    void tryStrToFloat_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QChar>("separator");
        QTest::addColumn<bool>("asDouble");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<long double>("value");
        auto Row = [](const char* Name, const QString& Text, bool Ok, long double Value = 0, char Sep = '.') {
            QTest::newRow(Name) << Text << QChar(QLatin1Char(Sep)) << false << Ok << Value;
        };
        auto RowD = [](const char* Name, const QString& Text, bool Ok, double Value = 0) {
            QTest::newRow(Name) << Text << QChar(QLatin1Char('.')) << true << Ok << static_cast<long double>(Value);
        };
        Row("blanks both ends", "  1.5  ", true, 1.5L);
        Row("negative", "-1.5", true, -1.5L);
        Row("plus, no integer digits", "+.5", true, 0.5L);
        Row("no fraction digits", "5.", true, 5.0L);
        Row("exponent", "1e3", true, 1000.0L);
        Row("negative exponent", "1E-3", true, 0.001L);
        Row("signed exponent", "1.5e+2", true, 150.0L);
        Row("comma separator", "1,5", true, 1.5L, ',');
        Row("dot under comma separator", "1.5", false, 0, ',');
        Row("thousand separator", "1,000.5", false);
        Row("exact 2.675", "2.675", true, 2.675L);
        Row("30 digits", "123456789012345678901234567890", true, 123456789012345678901234567890.0L);
        Row("many fraction digits", "0.333333333333333333333333333333333", true, 0.333333333333333333333333333333333L);
        Row("leading zeros", "000.000125", true, 0.000125L);
        Row("largest long double", "1.18973149535723176502e4932", true, std::numeric_limits<long double>::max());
        Row("overflow", "1e5000", false);
        Row("underflow is zero", "1e-5000", true, 0.0L);
        Row("zero with huge exponent", "0e999999999999999999", true, 0.0L);
        Row("empty", "", false);
        Row("point only", ".", false);
        Row("sign only", "-", false);
        Row("exponent only", "e5", false);
        Row("exponent without digits", "1e", false);
        Row("exponent sign without digits", "1e+", false);
        Row("INF", "INF", false);
        Row("NAN", "NAN", false);
        Row("two points", "1.2.3", false);
        Row("blank inside", "1 5", false);
        Row("tab before", "\t1", false);
        Row("hex float", "0x1p3", false);
        Row("letter after", "1.5x", false);
        RowD("double: tenth", "0.1", true, 0.1);
        RowD("double: largest", "1.7976931348623157e308", true, std::numeric_limits<double>::max());
        RowD("double: beyond double, within long double", "1e309", false);
        RowD("double: smallest subnormal", "4.9406564584124654e-324", true, std::numeric_limits<double>::denorm_min());
        // 2^53 + 1 + a little: one rounding gives 2^53 + 2; rounding through long double would give 2^53.
        RowD("double: single rounding", "9007199254740993.0000000001", true, 9007199254740994.0);
    }
    void tryStrToFloat()
    {
        QFETCH(QString, text);
        QFETCH(QChar, separator);
        QFETCH(bool, asDouble);
        QFETCH(bool, ok);
        QFETCH(long double, value);
        FormatSettings.DecimalSeparator = separator;
        long double Result = -42;
        double ResultD = -42;
        QCOMPARE(asDouble ? TryStrToFloat(text, ResultD) : TryStrToFloat(text, Result), ok);
        if (asDouble)
            Result = ResultD;
        QVERIFY2(Result == (ok ? value : -42), qPrintable(LongDoubleText(Result) + " != " + LongDoubleText(value)));
        if (asDouble)
            return;
        // StrToFloat reads the same texts and names a bad one in its error.
        QString Error;
        try {
            StrToFloat(text);
        } catch (const EConvertError& E) {
            Error = E.Message;
        }
        QCOMPARE(Error, ok ? QString() : QStringLiteral("'%1' is not a valid floating point value").arg(text));
    }

    void formatFloat_data()
    {
        QTest::addColumn<QString>("format");
        QTest::addColumn<long double>("value");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QChar>("decimal");
        QTest::addColumn<QChar>("thousand");
        auto Row = [](const char* Name, const QString& Format, long double Value, const QString& Text,
                      QChar Decimal = QLatin1Char('.'), QChar Thousand = QLatin1Char(',')) {
            QTest::newRow(Name) << Format << Value << Text << Decimal << Thousand;
        };
        // Rounding: the 18-digit decimal form, half away from zero.
        Row("half up negative", "0", -2.5L, "-3");
        Row("2.675 extended", "0.00", 2.675L, "2.68");
        // A double's binary value is below the half: 2.67499999999999982.
        Row("2.675 double", "0.00", static_cast<long double>(2.675), "2.67");
        Row("carry through nines", "0.00", 9.999L, "10.00");
        Row("half of the first digit", "0.0", 0.05L, "0.1");
        Row("below the first digit", "0.0", 0.04L, "0.0");
        Row("many places", "0.0000000000000000000000", 0.1L, "0.1000000000000000000000");
        // Placeholders.
        Row("optional decimals trimmed", "0.##", 1.5L, "1.5");
        Row("optional decimals all gone", "0.##", 1.0L, "1");
        Row("required then optional", "0.0#", 1.0L, "1.0");
        Row("no integer zero", "#.##", 0.5L, ".5");
        Row("hash only, zero value", "#", 0.0L, "");
        Row("minimum integer digits", "000", 7.0L, "007");
        Row("zero after hash sets the minimum", "#0#", 7.0L, "07");
        Row("extra integer digits", "0", 12345.0L, "12345");
        Row("integer digits without placeholder", ".00", 12.5L, "12.50");
        // Thousand separators.
        Row("grouping", "#,##0.00", 1234567.891L, "1,234,567.89");
        Row("comma anywhere in integer part", "0,0", 1234567.0L, "1,234,567");
        Row("comma after point ignored", "0.0,", 1234.5L, "1234.5");
        Row("negative grouped", "#,##0", -1234.0L, "-1,234");
        Row("eighteen integer digits", "#,##0", 999999999999999999.0L, "999,999,999,999,999,999");
        Row("nineteen integer digits general", "#,##0.00", 1e19L, "1E19");
        // Literals and other characters.
        Row("double quoted", "\"Total: \"0.00", 3.0L, "Total: 3.00");
        Row("single quoted", "0' SAR'", 3.0L, "3 SAR");
        Row("quoted placeholders", "'#0.'0", 3.0L, "#0.3");
        Row("plain characters copied", "0 %", 50.0L, "50 %");
        Row("minus before literal", "'$'0.00", -5.0L, "-$5.00");
        Row("unterminated quote", "0 'abc", 5.0L, "5 abc");
        Row("E without sign is a literal", "0E", 5.0L, "5E");
        // Scientific.
        Row("scientific", "0.00E+00", 12345.678L, "1.23E+04");
        Row("scientific negative exponent", "0.00E+00", 0.00012345L, "1.23E-04");
        Row("E- hides plus", "0.###E-0", 12345.0L, "1.235E4");
        Row("E- shows minus", "0.###E-0", 0.00012345L, "1.235E-4");
        Row("lower-case e", "0.0e+0", 1500.0L, "1.5e+3");
        Row("four exponent digits", "0E+0000", 1e300L, "1E+0300");
        Row("exponent longer than its zeros", "0E+0", 1e300L, "1E+300");
        Row("scientific zero", "0.00E+00", 0.0L, "0.00E+00");
        Row("scientific negative value", "0.0E+0", -2500.0L, "-2.5E+3");
        Row("scientific rounds half away", "0.0E+0", 2.25L, "2.3E+0");
        // Sections.
        Row("negative section", "0.00;(0.00)", -1.5L, "(1.50)");
        Row("zero with two sections", "0.00;(0.00)", 0.0L, "0.00");
        Row("zero section", "0.00;(0.00);\"nil\"", 0.0L, "nil");
        Row("rounds to zero, zero section", "0.00;(0.00);\"nil\"", -0.001L, "nil");
        Row("positive rounds to zero, zero section", "0;-0;\"nil\"", 0.4L, "nil");
        Row("rounds to zero, no minus", "0.00", -0.001L, "0.00");
        Row("rounds to zero with own negative section", "0.00;(0.00)", -0.001L, "0.00");
        Row("empty negative section", "0.0;;\"nil\"", -2.0L, "-2.0");
        Row("empty zero section", "0.0;(0.0);", 0.0L, "0.0");
        Row("negative zero value", "0.0;(0.0);\"nil\"", -0.0L, "nil");
        Row("semicolon inside quotes", "'a;b'0;(0)", -3.0L, "(3)");
        Row("fourth section ignored", "0;(0);z;w", 0.0L, "z");
        Row("negative section decides rounding", "0.00;(0)", -0.4L, "0.00");
        Row("literal-only zero section", "#,##0;(#,##0);-", 0.0L, "-");
        // General format: an empty format, the same as FloatToStr.
        Row("general: negative zero", "", -0.0L, "0");
        Row("general: integer", "", 100.0L, "100");
        Row("general: negative fraction", "", -123.456L, "-123.456");
        Row("general: sum of tenths", "", static_cast<long double>(0.1 + 0.2), "0.3");
        Row("general: third", "", 1.0L / 3, "0.333333333333333");
        Row("general: fifteen digits round up", "", 2.0L / 3, "0.666666666666667");
        Row("general: 15 integer digits fixed", "", 1e14L, "100000000000000");
        Row("general: 16 integer digits scientific", "", 1e15L, "1E15");
        Row("general: long mantissa scientific", "", 123456789012345678.0L, "1.23456789012346E17");
        Row("general: 1E-4 fixed", "", 0.0001L, "0.0001");
        Row("general: 1E-5 scientific", "", 0.00001L, "1E-5");
        Row("general: negative small", "", -2.5e-10L, "-2.5E-10");
        Row("general: rounds up to power of ten", "", 9.9999999999999999L, "10");
        Row("general: NaN", "", NaN, "NAN");
        Row("general: infinity", "", Inf, "INF");
        Row("general: minus infinity", "", -Inf, "-INF");
        Row("empty positive section", ";(0)", 2.5L, "2.5");
        Row("empty positive section, negative value", ";(0)", -2.5L, "(3)");
        Row("NaN", "0.00", NaN, "NAN");
        Row("infinity", "0.00", -Inf, "-INF");
        // Other separators.
        const QChar Comma(QLatin1Char(',')), Dot(QLatin1Char('.'));
        Row("european", "#,##0.00", 1234567.891L, "1.234.567,89", Comma, Dot);
        Row("arabic", "#,##0.00", 1234.5L, QString::fromUtf8("1٬234٫50"), QChar(0x066B), QChar(0x066C));
        Row("no thousand separator", "#,##0", 1234567.0L, "1234567", Dot, QChar());
        Row("literal point stays", "0'.'0", 12.0L, "1.2", Comma, Dot);
        Row("general format uses separator", "", 1.25L, "1,25", Comma, Dot);
        Row("scientific uses separator", "0.0E+0", 1500.0L, "1,5E+3", Comma, Dot);
    }
    void formatFloat()
    {
        QFETCH(QString, format);
        QFETCH(long double, value);
        QFETCH(QChar, decimal);
        QFETCH(QChar, thousand);
        SetSeparators(decimal, thousand);
        QTEST(FormatFloat(format, value), "text");
        if (format.isEmpty())
            QTEST(FloatToStr(value), "text");
    }

    // The pair RoundNumber relies on: text written by the formatter is read back by the parser.
    void formatFloatReadsBack_data()
    {
        QTest::addColumn<QChar>("decimal");
        QTest::addColumn<long double>("value");
        QTest::newRow("dot") << QChar('.') << 1234.5678L;
        QTest::newRow("comma") << QChar(',') << -0.0625L;
        QTest::newRow("tiny") << QChar('.') << 1.5e-300L;
        QTest::newRow("huge") << QChar(',') << 6.02e23L;
    }
    void formatFloatReadsBack()
    {
        QFETCH(QChar, decimal);
        QFETCH(long double, value);
        SetSeparators(decimal, QChar());
        QVERIFY(std::fabs(StrToFloat(FormatFloat(QStringLiteral("0.0000"), value)) - value) <= 0.00005L);
        QVERIFY(std::fabs(StrToFloat(FloatToStr(value)) - value) <= std::fabs(value) * 1e-14L);
    }

    // Round goes half to even; Trunc and Frac split toward zero; beyond qint64 both raise.
    void roundTruncFrac_data()
    {
        QTest::addColumn<long double>("value");
        QTest::addColumn<bool>("raises");
        QTest::addColumn<qint64>("rounded");
        QTest::addColumn<qint64>("trunc");
        QTest::addColumn<long double>("frac");
        auto Row = [](const char* Name, long double V, qint64 Rounded, qint64 Trunc, long double Frac) {
            QTest::newRow(Name) << V << false << Rounded << Trunc << Frac;
        };
        Row("2.5 to even", 2.5L, 2, 2, 0.5L);
        Row("3.5 to even", 3.5L, 4, 3, 0.5L);
        Row("-2.5 to even", -2.5L, -2, -2, -0.5L);
        Row("-3.5 to even", -3.5L, -4, -3, -0.5L);
        Row("0.5 to even", 0.5L, 0, 0, 0.5L);
        Row("-0.5 truncates to zero", -0.5L, 0, 0, -0.5L);
        Row("below half", 2.25L, 2, 2, 0.25L);
        Row("above half", -2.75L, -3, -2, -0.75L);
        Row("whole", 5.0L, 5, 5, 0.0L);
        Row("large", 4611686018427387904.5L, Q_INT64_C(4611686018427387904), Q_INT64_C(4611686018427387904), 0.5L);
        const qint64 Lowest = std::numeric_limits<qint64>::min();
        Row("lowest", -9223372036854775808.0L, Lowest, Lowest, 0.0L);
        for (const auto& [Name, V] : {std::pair<const char*, long double>{"2^63", 9223372036854775808.0L},
                                      {"-1E19", -1e19L}, {"NaN", NaN}, {"infinity", Inf}})
            QTest::newRow(Name) << V << true << qint64(0) << qint64(0) << 0.0L;
    }
    void roundTruncFrac()
    {
        QFETCH(long double, value);
        QFETCH(bool, raises);
        if (raises) {
            QVERIFY_THROWS_EXCEPTION(EConvertError, Round(value));
            QVERIFY_THROWS_EXCEPTION(EConvertError, Trunc(value));
            return;
        }
        QFETCH(long double, frac);
        QTEST(Round(value), "rounded");
        QTEST(Trunc(value), "trunc");
        QVERIFY(Frac(value) == frac);
    }

    void currencyFromFloat_data()
    {
        QTest::addColumn<long double>("value");
        QTest::addColumn<qint64>("raw");
        QTest::addColumn<bool>("sameAsDouble");
        QTest::newRow("rounds below") << 1.23454L << Q_INT64_C(12345) << true;
        QTest::newRow("rounds above") << 1.23456L << Q_INT64_C(12346) << true;
        QTest::newRow("negative") << -1.23456L << Q_INT64_C(-12346) << true;
        // x/10000 * 10000 comes back as exactly x.5 in extended precision: ties go to even.
        // The same quotient held in a double misses the tie and rounds the other way.
        QTest::newRow("tie to even down") << 2.5L / 10000 << Q_INT64_C(2) << false;
        QTest::newRow("tie to even up") << 3.5L / 10000 << Q_INT64_C(4) << false;
        QTest::newRow("negative tie") << -2.5L / 10000 << Q_INT64_C(-2) << false;
        QTest::newRow("near the top") << 900000000000000.0L << Q_INT64_C(9000000000000000000) << true;
    }
    void currencyFromFloat()
    {
        QFETCH(long double, value);
        QFETCH(qint64, raw);
        QFETCH(bool, sameAsDouble);
        QCOMPARE(Currency(value).Raw(), raw);
        QCOMPARE(Currency(static_cast<double>(value)).Raw() == raw, sameAsDouble);
        QVERIFY(std::fabs(Currency(value).ToExtended() - value) <= 0.0000500001L);
    }

    void currencyOutOfRangeRaises()
    {
        QVERIFY_THROWS_EXCEPTION(EConvertError, Currency(1e15));
        QVERIFY_THROWS_EXCEPTION(EConvertError, Currency(-1e300L));
        QVERIFY_THROWS_EXCEPTION(EConvertError, Currency(std::numeric_limits<double>::quiet_NaN()));
        QVERIFY_THROWS_EXCEPTION(EConvertError, Currency(Q_INT64_C(922337203685478)));
        QCOMPARE(Currency(Q_INT64_C(922337203685477)).Raw(), Q_INT64_C(9223372036854770000));
        const Currency Top = Currency::FromRaw(std::numeric_limits<qint64>::max());
        const Currency Bottom = Currency::FromRaw(std::numeric_limits<qint64>::min());
        const Currency Tick = Currency::FromRaw(1);
        QVERIFY_THROWS_EXCEPTION(EConvertError, Top + Tick);
        QVERIFY_THROWS_EXCEPTION(EConvertError, Bottom - Tick);
        QVERIFY_THROWS_EXCEPTION(EConvertError, Tick - Bottom);
        QCOMPARE((Top - Tick + Tick).Raw(), Top.Raw());
        QCOMPARE((Currency::FromRaw(-1) - Bottom).Raw(), Top.Raw());
    }
};

QTEST_GUILESS_MAIN(TestRtlNumbers)
#include "tst_rtl_numbers.moc"
