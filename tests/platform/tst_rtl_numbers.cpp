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

} // namespace

class TestRtlNumbers : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void tryStrToInt_data();
    void tryStrToInt();
    void tryStrToInt64_data();
    void tryStrToInt64();
    void tryStrToFloat_data();
    void tryStrToFloat();
    void tryStrToFloatDouble_data();
    void tryStrToFloatDouble();
    void strToFloatRaises();

    void floatToStr_data();
    void floatToStr();
    void formatFloat_data();
    void formatFloat();
    void formatFloatSeparators_data();
    void formatFloatSeparators();
    void formatFloatReadsBack_data();
    void formatFloatReadsBack();

    void round_data();
    void round();
    void truncAndFrac_data();
    void truncAndFrac();
    void roundOutOfRangeRaises_data();
    void roundOutOfRangeRaises();

    void currencyFromFloat_data();
    void currencyFromFloat();
    void currencyOutOfRangeRaises();
};

void TestRtlNumbers::init()
{
    FormatSettings.DecimalSeparator = QLatin1Char('.');
    FormatSettings.ThousandSeparator = QLatin1Char(',');
}

void TestRtlNumbers::tryStrToInt_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<int>("value");

    QTest::newRow("plain") << "5" << true << 5;
    QTest::newRow("leading blanks") << "   5" << true << 5;
    QTest::newRow("trailing blank") << "5 " << false << 0;
    QTest::newRow("leading tab") << "\t5" << false << 0;
    QTest::newRow("empty") << "" << false << 0;
    QTest::newRow("blanks only") << "  " << false << 0;
    QTest::newRow("plus") << "+7" << true << 7;
    QTest::newRow("minus") << "-7" << true << -7;
    QTest::newRow("blank after sign") << "- 7" << false << 0;
    QTest::newRow("sign only") << "-" << false << 0;
    QTest::newRow("leading zeros") << "0009" << true << 9;
    QTest::newRow("letters after digits") << "12a" << false << 0;
    QTest::newRow("decimal point") << "1.0" << false << 0;
    QTest::newRow("arabic-indic digit") << QString(QChar(0x0665)) << false << 0;
    QTest::newRow("max") << "2147483647" << true << 2147483647;
    QTest::newRow("max + 1") << "2147483648" << false << 0;
    QTest::newRow("min") << "-2147483648" << true << std::numeric_limits<int>::min();
    QTest::newRow("min - 1") << "-2147483649" << false << 0;
    QTest::newRow("huge") << "99999999999999999999999" << false << 0;
    QTest::newRow("dollar hex") << "$FF" << true << 255;
    QTest::newRow("dollar hex lower") << "$ff" << true << 255;
    QTest::newRow("0x hex") << "0x1F" << true << 31;
    QTest::newRow("0X hex") << "0X1f" << true << 31;
    QTest::newRow("hex after blanks and sign") << "  -$10" << true << -16;
    QTest::newRow("hex all ones is -1") << "$FFFFFFFF" << true << -1;
    QTest::newRow("hex sign bit") << "$80000000" << true << std::numeric_limits<int>::min();
    QTest::newRow("hex max positive") << "$7FFFFFFF" << true << 2147483647;
    QTest::newRow("hex leading zeros") << "$000000001" << true << 1;
    QTest::newRow("hex 33 bits") << "$100000000" << false << 0;
    QTest::newRow("negated hex pattern") << "-$FFFFFFFF" << true << 1;
    QTest::newRow("dollar only") << "$" << false << 0;
    QTest::newRow("0x only") << "0x" << false << 0;
    QTest::newRow("x without 0") << "x10" << false << 0;
    QTest::newRow("sign after dollar") << "$-1" << false << 0;
    QTest::newRow("hex digit in decimal") << "1F" << false << 0;
    QTest::newRow("non-hex after dollar") << "$G" << false << 0;
}

void TestRtlNumbers::tryStrToInt()
{
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(int, value);
    int Result = 12345;
    QCOMPARE(TryStrToInt(text, Result), ok);
    QCOMPARE(Result, ok ? value : 12345); // a failure leaves the variable alone
}

void TestRtlNumbers::tryStrToInt64_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<qint64>("value");

    QTest::newRow("beyond 32 bits") << "4294967296" << true << Q_INT64_C(4294967296);
    QTest::newRow("max") << "9223372036854775807" << true << std::numeric_limits<qint64>::max();
    QTest::newRow("max + 1") << "9223372036854775808" << false << qint64(0);
    QTest::newRow("min") << "-9223372036854775808" << true << std::numeric_limits<qint64>::min();
    QTest::newRow("min - 1") << "-9223372036854775809" << false << qint64(0);
    QTest::newRow("32-bit pattern stays positive") << "$FFFFFFFF" << true << Q_INT64_C(4294967295);
    QTest::newRow("hex all ones is -1") << "$FFFFFFFFFFFFFFFF" << true << qint64(-1);
    QTest::newRow("hex 65 bits") << "$10000000000000000" << false << qint64(0);
    QTest::newRow("trailing blank") << "12 " << false << qint64(0);
    QTest::newRow("leading blanks") << "  -12" << true << qint64(-12);
}

void TestRtlNumbers::tryStrToInt64()
{
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(qint64, value);
    qint64 Result = 777;
    QCOMPARE(TryStrToInt64(text, Result), ok);
    QCOMPARE(Result, ok ? value : 777);
}

void TestRtlNumbers::tryStrToFloat_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QChar>("separator");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<long double>("value");

    const QChar Dot = QLatin1Char('.');
    const QChar Comma = QLatin1Char(',');
    QTest::newRow("plain") << "1.5" << Dot << true << 1.5L;
    QTest::newRow("blanks both ends") << "  1.5  " << Dot << true << 1.5L;
    QTest::newRow("negative") << "-1.5" << Dot << true << -1.5L;
    QTest::newRow("plus, no integer digits") << "+.5" << Dot << true << 0.5L;
    QTest::newRow("no fraction digits") << "5." << Dot << true << 5.0L;
    QTest::newRow("exponent") << "1e3" << Dot << true << 1000.0L;
    QTest::newRow("negative exponent") << "1E-3" << Dot << true << 0.001L;
    QTest::newRow("signed exponent") << "1.5e+2" << Dot << true << 150.0L;
    QTest::newRow("comma separator") << "1,5" << Comma << true << 1.5L;
    QTest::newRow("dot under comma separator") << "1.5" << Comma << false << 0.0L;
    QTest::newRow("thousand separator") << "1,000.5" << Dot << false << 0.0L;
    QTest::newRow("exact tenth") << "0.1" << Dot << true << 0.1L;
    QTest::newRow("exact 2.675") << "2.675" << Dot << true << 2.675L;
    QTest::newRow("30 digits") << "123456789012345678901234567890" << Dot << true << 123456789012345678901234567890.0L;
    QTest::newRow("many fraction digits") << "0.333333333333333333333333333333333" << Dot << true << 0.333333333333333333333333333333333L;
    QTest::newRow("leading zeros") << "000.000125" << Dot << true << 0.000125L;
    QTest::newRow("largest long double") << "1.18973149535723176502e4932" << Dot << true << std::numeric_limits<long double>::max();
    QTest::newRow("overflow") << "1e5000" << Dot << false << 0.0L;
    QTest::newRow("underflow is zero") << "1e-5000" << Dot << true << 0.0L;
    QTest::newRow("zero with huge exponent") << "0e999999999999999999" << Dot << true << 0.0L;
    QTest::newRow("empty") << "" << Dot << false << 0.0L;
    QTest::newRow("blank") << " " << Dot << false << 0.0L;
    QTest::newRow("point only") << "." << Dot << false << 0.0L;
    QTest::newRow("sign only") << "-" << Dot << false << 0.0L;
    QTest::newRow("exponent only") << "e5" << Dot << false << 0.0L;
    QTest::newRow("exponent without digits") << "1e" << Dot << false << 0.0L;
    QTest::newRow("exponent sign without digits") << "1e+" << Dot << false << 0.0L;
    QTest::newRow("INF") << "INF" << Dot << false << 0.0L;
    QTest::newRow("NAN") << "NAN" << Dot << false << 0.0L;
    QTest::newRow("two points") << "1.2.3" << Dot << false << 0.0L;
    QTest::newRow("blank inside") << "1 5" << Dot << false << 0.0L;
    QTest::newRow("tab before") << "\t1" << Dot << false << 0.0L;
    QTest::newRow("hex float") << "0x1p3" << Dot << false << 0.0L;
    QTest::newRow("letter after") << "1.5x" << Dot << false << 0.0L;
}

void TestRtlNumbers::tryStrToFloat()
{
    QFETCH(QString, text);
    QFETCH(QChar, separator);
    QFETCH(bool, ok);
    QFETCH(long double, value);
    FormatSettings.DecimalSeparator = separator;
    long double Result = -42;
    QCOMPARE(TryStrToFloat(text, Result), ok);
    if (ok)
        QVERIFY2(Result == value, qPrintable(LongDoubleText(Result) + " != " + LongDoubleText(value)));
    else
        QVERIFY(Result == -42);
}

void TestRtlNumbers::tryStrToFloatDouble_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<double>("value");

    QTest::newRow("tenth") << "0.1" << true << 0.1;
    QTest::newRow("largest double") << "1.7976931348623157e308" << true << std::numeric_limits<double>::max();
    QTest::newRow("beyond double, within long double") << "1e309" << false << 0.0;
    QTest::newRow("smallest subnormal") << "4.9406564584124654e-324" << true << std::numeric_limits<double>::denorm_min();
    // 2^53 + 1 + a little: one rounding gives 2^53 + 2; rounding through long double would give 2^53.
    QTest::newRow("single rounding") << "9007199254740993.0000000001" << true << 9007199254740994.0;
    QTest::newRow("bad text") << "1..2" << false << 0.0;
}

void TestRtlNumbers::tryStrToFloatDouble()
{
    QFETCH(QString, text);
    QFETCH(bool, ok);
    QFETCH(double, value);
    double Result = -42;
    QCOMPARE(TryStrToFloat(text, Result), ok);
    QCOMPARE(Result, ok ? value : -42.0);
}

void TestRtlNumbers::strToFloatRaises()
{
    QVERIFY(StrToFloat(QStringLiteral(" 2.5")) == 2.5L);
    try {
        StrToFloat(QStringLiteral("12,5"));
        QFAIL("no exception");
    } catch (const EConvertError& E) {
        QCOMPARE(E.Message, QStringLiteral("'12,5' is not a valid floating point value"));
    }
}

void TestRtlNumbers::floatToStr_data()
{
    QTest::addColumn<long double>("value");
    QTest::addColumn<QString>("text");

    QTest::newRow("zero") << 0.0L << "0";
    QTest::newRow("negative zero") << -0.0L << "0";
    QTest::newRow("integer") << 100.0L << "100";
    QTest::newRow("fraction") << 123.456L << "123.456";
    QTest::newRow("negative") << -1.5L << "-1.5";
    QTest::newRow("sum of tenths") << static_cast<long double>(0.1 + 0.2) << "0.3";
    QTest::newRow("third") << 1.0L / 3 << "0.333333333333333";
    QTest::newRow("fifteen digits round up") << 2.0L / 3 << "0.666666666666667";
    QTest::newRow("1E20") << 1e20L << "1E20";
    QTest::newRow("15 integer digits fixed") << 1e14L << "100000000000000";
    QTest::newRow("16 integer digits scientific") << 1e15L << "1E15";
    QTest::newRow("long mantissa scientific") << 123456789012345678.0L << "1.23456789012346E17";
    QTest::newRow("1E-4 fixed") << 0.0001L << "0.0001";
    QTest::newRow("1E-5 scientific") << 0.00001L << "1E-5";
    QTest::newRow("negative small") << -2.5e-10L << "-2.5E-10";
    QTest::newRow("rounds up to power of ten") << 9.9999999999999999L << "10";
    QTest::newRow("NaN") << std::numeric_limits<long double>::quiet_NaN() << "NAN";
    QTest::newRow("infinity") << std::numeric_limits<long double>::infinity() << "INF";
    QTest::newRow("minus infinity") << -std::numeric_limits<long double>::infinity() << "-INF";
}

void TestRtlNumbers::floatToStr()
{
    QFETCH(long double, value);
    QFETCH(QString, text);
    QCOMPARE(FloatToStr(value), text);
}

void TestRtlNumbers::formatFloat_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<long double>("value");
    QTest::addColumn<QString>("text");

    // Rounding: the 18-digit decimal form, half away from zero.
    QTest::newRow("half up") << "0" << 2.5L << "3";
    QTest::newRow("half up negative") << "0" << -2.5L << "-3";
    QTest::newRow("2.675 extended") << "0.00" << 2.675L << "2.68";
    QTest::newRow("1.005 extended") << "0.00" << 1.005L << "1.01";
    // A double's binary value is below the half: 2.67499999999999982 and 1.00499999999999989.
    QTest::newRow("2.675 double") << "0.00" << static_cast<long double>(2.675) << "2.67";
    QTest::newRow("1.005 double") << "0.00" << static_cast<long double>(1.005) << "1.00";
    QTest::newRow("carry through nines") << "0.00" << 9.999L << "10.00";
    QTest::newRow("half of the first digit") << "0.0" << 0.05L << "0.1";
    QTest::newRow("below the first digit") << "0.0" << 0.04L << "0.0";
    QTest::newRow("many places") << "0.0000000000000000000000" << 0.1L << "0.1000000000000000000000";

    // Placeholders.
    QTest::newRow("optional decimals trimmed") << "0.##" << 1.5L << "1.5";
    QTest::newRow("optional decimals all gone") << "0.##" << 1.0L << "1";
    QTest::newRow("required then optional") << "0.0#" << 1.0L << "1.0";
    QTest::newRow("no integer zero") << "#.##" << 0.5L << ".5";
    QTest::newRow("hash only, zero value") << "#" << 0.0L << "";
    QTest::newRow("minimum integer digits") << "000" << 7.0L << "007";
    QTest::newRow("zero after hash sets the minimum") << "#0#" << 7.0L << "07";
    QTest::newRow("extra integer digits") << "0" << 12345.0L << "12345";
    QTest::newRow("integer digits without placeholder") << ".00" << 12.5L << "12.50";

    // Thousand separators.
    QTest::newRow("grouping") << "#,##0.00" << 1234567.891L << "1,234,567.89";
    QTest::newRow("grouping small") << "#,##0" << 999.0L << "999";
    QTest::newRow("comma anywhere in integer part") << "0,0" << 1234567.0L << "1,234,567";
    QTest::newRow("comma after point ignored") << "0.0," << 1234.5L << "1234.5";
    QTest::newRow("negative grouped") << "#,##0" << -1234.0L << "-1,234";
    QTest::newRow("eighteen integer digits") << "#,##0" << 999999999999999999.0L << "999,999,999,999,999,999";
    QTest::newRow("nineteen integer digits general") << "#,##0.00" << 1e19L << "1E19";

    // Literals and other characters.
    QTest::newRow("double quoted") << "\"Total: \"0.00" << 3.0L << "Total: 3.00";
    QTest::newRow("single quoted") << "0' SAR'" << 3.0L << "3 SAR";
    QTest::newRow("quoted placeholders") << "'#0.'0" << 3.0L << "#0.3";
    QTest::newRow("plain characters copied") << "0 %" << 50.0L << "50 %";
    QTest::newRow("minus before literal") << "'$'0.00" << -5.0L << "-$5.00";
    QTest::newRow("unterminated quote") << "0 'abc" << 5.0L << "5 abc";
    QTest::newRow("E without sign is a literal") << "0E" << 5.0L << "5E";

    // Scientific.
    QTest::newRow("scientific") << "0.00E+00" << 12345.678L << "1.23E+04";
    QTest::newRow("scientific negative exponent") << "0.00E+00" << 0.00012345L << "1.23E-04";
    QTest::newRow("E- hides plus") << "0.###E-0" << 12345.0L << "1.235E4";
    QTest::newRow("E- shows minus") << "0.###E-0" << 0.00012345L << "1.235E-4";
    QTest::newRow("lower-case e") << "0.0e+0" << 1500.0L << "1.5e+3";
    QTest::newRow("four exponent digits") << "0E+0000" << 1e300L << "1E+0300";
    QTest::newRow("exponent longer than its zeros") << "0E+0" << 1e300L << "1E+300";
    QTest::newRow("scientific zero") << "0.00E+00" << 0.0L << "0.00E+00";
    QTest::newRow("scientific negative value") << "0.0E+0" << -2500.0L << "-2.5E+3";
    QTest::newRow("scientific rounds half away") << "0.0E+0" << 2.25L << "2.3E+0";
    QTest::newRow("scientific huge") << "0.0E+0" << 1e30L << "1.0E+30";

    // Sections.
    QTest::newRow("negative section") << "0.00;(0.00)" << -1.5L << "(1.50)";
    QTest::newRow("positive with two sections") << "0.00;(0.00)" << 1.5L << "1.50";
    QTest::newRow("zero with two sections") << "0.00;(0.00)" << 0.0L << "0.00";
    QTest::newRow("zero section") << "0.00;(0.00);\"nil\"" << 0.0L << "nil";
    QTest::newRow("rounds to zero, zero section") << "0.00;(0.00);\"nil\"" << -0.001L << "nil";
    QTest::newRow("positive rounds to zero, zero section") << "0;-0;\"nil\"" << 0.4L << "nil";
    QTest::newRow("rounds to zero, no minus") << "0.00" << -0.001L << "0.00";
    QTest::newRow("rounds to zero with own negative section") << "0.00;(0.00)" << -0.001L << "0.00";
    QTest::newRow("empty negative section") << "0.0;;\"nil\"" << -2.0L << "-2.0";
    QTest::newRow("empty zero section") << "0.0;(0.0);" << 0.0L << "0.0";
    QTest::newRow("negative zero value") << "0.0;(0.0);\"nil\"" << -0.0L << "nil";
    QTest::newRow("semicolon inside quotes") << "'a;b'0;(0)" << -3.0L << "(3)";
    QTest::newRow("fourth section ignored") << "0;(0);z;w" << 0.0L << "z";
    QTest::newRow("negative section decides rounding") << "0.00;(0)" << -0.4L << "0.00";
    QTest::newRow("literal-only zero section") << "#,##0;(#,##0);-" << 0.0L << "-";

    // General format.
    QTest::newRow("empty format") << "" << 123.456L << "123.456";
    QTest::newRow("empty positive section") << ";(0)" << 2.5L << "2.5";
    QTest::newRow("empty positive section, negative value") << ";(0)" << -2.5L << "(3)";
    QTest::newRow("NaN") << "0.00" << std::numeric_limits<long double>::quiet_NaN() << "NAN";
    QTest::newRow("infinity") << "0.00" << -std::numeric_limits<long double>::infinity() << "-INF";
}

void TestRtlNumbers::formatFloat()
{
    QFETCH(QString, format);
    QFETCH(long double, value);
    QFETCH(QString, text);
    QCOMPARE(FormatFloat(format, value), text);
}

void TestRtlNumbers::formatFloatSeparators_data()
{
    QTest::addColumn<QChar>("decimal");
    QTest::addColumn<QChar>("thousand");
    QTest::addColumn<QString>("format");
    QTest::addColumn<long double>("value");
    QTest::addColumn<QString>("text");

    QTest::newRow("european") << QChar(',') << QChar('.') << "#,##0.00" << 1234567.891L << "1.234.567,89";
    QTest::newRow("arabic") << QChar(0x066B) << QChar(0x066C) << "#,##0.00" << 1234.5L << QString::fromUtf8("1٬234٫50");
    QTest::newRow("no thousand separator") << QChar('.') << QChar() << "#,##0" << 1234567.0L << "1234567";
    QTest::newRow("literal point stays") << QChar(',') << QChar('.') << "0'.'0" << 12.0L << "1.2";
    QTest::newRow("general format uses separator") << QChar(',') << QChar('.') << "" << 1.25L << "1,25";
    QTest::newRow("scientific uses separator") << QChar(',') << QChar('.') << "0.0E+0" << 1500.0L << "1,5E+3";
}

void TestRtlNumbers::formatFloatSeparators()
{
    QFETCH(QChar, decimal);
    QFETCH(QChar, thousand);
    QFETCH(QString, format);
    QFETCH(long double, value);
    QFETCH(QString, text);
    FormatSettings.DecimalSeparator = decimal;
    FormatSettings.ThousandSeparator = thousand;
    QCOMPARE(FormatFloat(format, value), text);
}

void TestRtlNumbers::formatFloatReadsBack_data()
{
    QTest::addColumn<QChar>("decimal");
    QTest::addColumn<long double>("value");

    QTest::newRow("dot") << QChar('.') << 1234.5678L;
    QTest::newRow("comma") << QChar(',') << -0.0625L;
    QTest::newRow("tiny") << QChar('.') << 1.5e-300L;
    QTest::newRow("huge") << QChar(',') << 6.02e23L;
}

// The pair RoundNumber relies on: text written by the formatter is read back by the parser.
void TestRtlNumbers::formatFloatReadsBack()
{
    QFETCH(QChar, decimal);
    QFETCH(long double, value);
    FormatSettings.DecimalSeparator = decimal;
    FormatSettings.ThousandSeparator = QChar();
    const long double Back = StrToFloat(FormatFloat(QStringLiteral("0.0000"), value));
    QVERIFY(std::fabs(Back - value) <= 0.00005L);
    const long double General = StrToFloat(FloatToStr(value));
    QVERIFY(std::fabs(General - value) <= std::fabs(value) * 1e-14L);
}

void TestRtlNumbers::round_data()
{
    QTest::addColumn<long double>("value");
    QTest::addColumn<qint64>("rounded");

    QTest::newRow("2.5 to even") << 2.5L << qint64(2);
    QTest::newRow("3.5 to even") << 3.5L << qint64(4);
    QTest::newRow("-2.5 to even") << -2.5L << qint64(-2);
    QTest::newRow("-3.5 to even") << -3.5L << qint64(-4);
    QTest::newRow("0.5 to even") << 0.5L << qint64(0);
    QTest::newRow("below half") << 2.4999L << qint64(2);
    QTest::newRow("above half") << 2.5001L << qint64(3);
    QTest::newRow("large") << 4611686018427387904.5L << Q_INT64_C(4611686018427387904);
    QTest::newRow("lowest") << -9223372036854775808.0L << std::numeric_limits<qint64>::min();
}

void TestRtlNumbers::round()
{
    QFETCH(long double, value);
    QFETCH(qint64, rounded);
    QCOMPARE(Round(value), rounded);
}

void TestRtlNumbers::truncAndFrac_data()
{
    QTest::addColumn<long double>("value");
    QTest::addColumn<qint64>("trunc");
    QTest::addColumn<long double>("frac");

    QTest::newRow("positive") << 2.75L << qint64(2) << 0.75L;
    QTest::newRow("negative") << -2.75L << qint64(-2) << -0.75L;
    QTest::newRow("whole") << 5.0L << qint64(5) << 0.0L;
    QTest::newRow("small negative") << -0.5L << qint64(0) << -0.5L;
}

void TestRtlNumbers::truncAndFrac()
{
    QFETCH(long double, value);
    QFETCH(qint64, trunc);
    QFETCH(long double, frac);
    QCOMPARE(Trunc(value), trunc);
    QVERIFY(Frac(value) == frac);
}

void TestRtlNumbers::roundOutOfRangeRaises_data()
{
    QTest::addColumn<long double>("value");
    QTest::newRow("2^63") << 9223372036854775808.0L;
    QTest::newRow("-1E19") << -1e19L;
    QTest::newRow("NaN") << std::numeric_limits<long double>::quiet_NaN();
    QTest::newRow("infinity") << std::numeric_limits<long double>::infinity();
}

void TestRtlNumbers::roundOutOfRangeRaises()
{
    QFETCH(long double, value);
    QVERIFY_THROWS_EXCEPTION(EConvertError, Round(value));
    QVERIFY_THROWS_EXCEPTION(EConvertError, Trunc(value));
}

void TestRtlNumbers::currencyFromFloat_data()
{
    QTest::addColumn<long double>("value");
    QTest::addColumn<qint64>("raw");
    QTest::addColumn<bool>("sameAsDouble");

    QTest::newRow("four decimals") << 1.2345L << Q_INT64_C(12345) << true;
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

void TestRtlNumbers::currencyFromFloat()
{
    QFETCH(long double, value);
    QFETCH(qint64, raw);
    QFETCH(bool, sameAsDouble);
    QCOMPARE(Currency(value).Raw(), raw);
    QCOMPARE(Currency(static_cast<double>(value)).Raw() == raw, sameAsDouble);
    QVERIFY(std::fabs(Currency(value).ToExtended() - value) <= 0.0000500001L);
}

void TestRtlNumbers::currencyOutOfRangeRaises()
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

QTEST_GUILESS_MAIN(TestRtlNumbers)
#include "tst_rtl_numbers.moc"
