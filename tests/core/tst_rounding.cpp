// RoundNumber: the five house rules and the cut to a number of decimals.
#include <Kesh.h>

#include <QtTest>

#include <cstdio>

using namespace Kesh;

Q_DECLARE_METATYPE(long double)

namespace {
QByteArray Text(long double V)
{
    char Buf[64];
    std::snprintf(Buf, sizeof Buf, "%.21Lg", V);
    return Buf;
}
} // namespace

class TestRounding : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { FormatSettings.DecimalSeparator = QLatin1Char('.'); }
    void cleanup() { FormatSettings.DecimalSeparator = QLatin1Char('.'); }

    void roundNumber_data()
    {
        QTest::addColumn<long double>("value");
        QTest::addColumn<int>("decimals");
        QTest::addColumn<int>("rule");
        QTest::addColumn<long double>("expected");

        // RtNormal: banker's rounding to a whole number whatever the decimals.
        QTest::newRow("normal 2.5 to even") << 2.5L << 0 << int(RtNormal) << 2.0L;
        QTest::newRow("normal 3.5 to even") << 3.5L << 0 << int(RtNormal) << 4.0L;
        QTest::newRow("normal -2.5 to even") << -2.5L << 0 << int(RtNormal) << -2.0L;
        QTest::newRow("normal ignores decimals") << 2.567L << 2 << int(RtNormal) << 3.0L;
        QTest::newRow("normal 2.4") << 2.4L << 3 << int(RtNormal) << 2.0L;

        // RtNone: only the formatting rounds, half away from zero on the decimal form.
        QTest::newRow("none 2.5 whole") << 2.5L << 0 << int(RtNone) << 3.0L;
        QTest::newRow("none -2.5 whole") << -2.5L << 0 << int(RtNone) << -3.0L;
        QTest::newRow("none 2.675 two places") << 2.675L << 2 << int(RtNone) << 2.68L;
        QTest::newRow("none 1.005 two places") << 1.005L << 2 << int(RtNone) << 1.01L;
        QTest::newRow("none six places") << 1.23456789L << 6 << int(RtNone) << 1.234568L;
        QTest::newRow("none seven places capped at four") << 1.23456789L << 7 << int(RtNone) << 1.2346L;
        QTest::newRow("none eight places capped at four") << 1.23456789L << 8 << int(RtNone) << 1.2346L;
        QTest::newRow("none negative decimals") << 7.5L << -3 << int(RtNone) << 8.0L;
        QTest::newRow("none tiny negative has no sign") << -0.004L << 2 << int(RtNone) << 0.0L;

        // RtNoFrac: toward zero.
        QTest::newRow("nofrac 2.99") << 2.99L << 1 << int(RtNoFrac) << 2.0L;
        QTest::newRow("nofrac -2.99") << -2.99L << 1 << int(RtNoFrac) << -2.0L;

        // RtNearHaf: thresholds at a quarter and three quarters.
        QTest::newRow("half 2.24") << 2.24L << 2 << int(RtNearHaf) << 2.0L;
        QTest::newRow("half 2.25 boundary") << 2.25L << 2 << int(RtNearHaf) << 2.5L;
        QTest::newRow("half 2.3") << 2.3L << 2 << int(RtNearHaf) << 2.5L;
        QTest::newRow("half 2.74") << 2.74L << 2 << int(RtNearHaf) << 2.5L;
        QTest::newRow("half 2.75 boundary") << 2.75L << 2 << int(RtNearHaf) << 3.0L;
        QTest::newRow("half 2.8 one place") << 2.8L << 1 << int(RtNearHaf) << 3.0L;
        QTest::newRow("half 2.3 no places") << 2.3L << 0 << int(RtNearHaf) << 3.0L; // 2.5 formatted whole
        QTest::newRow("half negative truncates") << -2.7L << 0 << int(RtNearHaf) << -2.0L;

        // RtNearOne: threshold at a half.
        QTest::newRow("one 2.49") << 2.49L << 0 << int(RtNearOne) << 2.0L;
        QTest::newRow("one 2.5 boundary") << 2.5L << 0 << int(RtNearOne) << 3.0L;
        QTest::newRow("one negative truncates") << -2.7L << 0 << int(RtNearOne) << -2.0L;
    }
    void roundNumber()
    {
        QFETCH(long double, value);
        QFETCH(int, decimals);
        QFETCH(int, rule);
        QFETCH(long double, expected);
        const long double Actual = RoundNumber(value, decimals, TxRoundTypes(rule));
        QVERIFY2(Actual == expected, Text(Actual) + " != " + Text(expected));
    }

    void roundNumberReadsBackUnderACommaLocale()
    {
        FormatSettings.DecimalSeparator = QLatin1Char(',');
        QVERIFY(RoundNumber(2.675L, 2, RtNone) == 2.68L);
        QVERIFY(RoundNumber(2.3L, 1, RtNearHaf) == 2.5L);
    }
};

QTEST_GUILESS_MAIN(TestRounding)
#include "tst_rounding.moc"
