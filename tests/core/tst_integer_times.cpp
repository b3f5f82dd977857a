// Integer times (hhmm): packing, minute indexes, text and durations across midnight.
#include <Kesh.h>

#include <QtTest>

#include <limits>

using namespace Kesh;

class TestIntegerTimes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void packing_data()
    {
        QTest::addColumn<int>("time");
        QTest::addColumn<int>("hours");
        QTest::addColumn<int>("minutes");
        QTest::newRow("morning") << 905 << 9 << 5;
        QTest::newRow("midnight") << 0 << 0 << 0;
        QTest::newRow("last minute") << 2359 << 23 << 59;
        QTest::newRow("unchecked") << 2575 << 25 << 75;
        QTest::newRow("negative truncates toward zero") << -905 << -9 << -5;
    }
    void packing()
    {
        QFETCH(int, time);
        QFETCH(int, hours);
        QFETCH(int, minutes);
        int H = -1, M = -1;
        TimeDecode(time, H, M);
        QCOMPARE(H, hours);
        QCOMPARE(M, minutes);
        QCOMPARE(TimeEncode(hours, minutes), time);
    }

    void minuteIndex_data()
    {
        QTest::addColumn<int>("time");
        QTest::addColumn<int>("index");
        QTest::newRow("half past noon") << 1230 << 750;
        QTest::newRow("midnight") << 0 << 0;
        QTest::newRow("last minute") << 2359 << 1439;
        QTest::newRow("one past the hour") << 101 << 61;
        QTest::newRow("negative") << -130 << -90;
    }
    void minuteIndex()
    {
        QFETCH(int, time);
        QFETCH(int, index);
        QCOMPARE(TimeToMinIndex(time), index);
        QCOMPARE(MinIndexToTime(index), time);
    }

    void minuteIndexIsNotWrapped()
    {
        QCOMPARE(MinIndexToTime(1440), 2400);
        QCOMPARE(TimeToMinIndex(99), 99);
        QCOMPARE(MinIndexToTime(99), 139);
    }

    void timeToInt_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("expected");
        QTest::newRow("noon") << 0.5 << 1200;
        QTest::newRow("seconds dropped") << EncodeTime(12, 30, 59, 0) << 1230;
        QTest::newRow("date part ignored") << EncodeDate(2024, 3, 5) + EncodeTime(6, 7, 0, 0) << 607;
        QTest::newRow("midnight") << 0.0 << 0;
        QTest::newRow("last minute") << EncodeTime(23, 59, 59, 999) << 2359;
    }
    void timeToInt()
    {
        QFETCH(double, value);
        QTEST(TimeToInt(value), "expected");
    }

    void intToTime_data()
    {
        QTest::addColumn<int>("time");
        QTest::addColumn<double>("expected");
        QTest::newRow("half past noon") << 1230 << (12 * 60 + 30) / 1440.0;
        QTest::newRow("last minute") << 2359 << 1439 / 1440.0;
        QTest::newRow("midnight") << 0 << 0.0;
        QTest::newRow("hour 24") << 2400 << 0.0;
        QTest::newRow("minute 60") << 1260 << 0.0;
        QTest::newRow("negative") << -5 << 0.0;
    }
    void intToTime()
    {
        QFETCH(int, time);
        QFETCH(double, expected);
        QVERIFY2(qAbs(IntToTime(time) - expected) < 1e-12, qPrintable(QString::number(IntToTime(time), 'g', 17)));
    }

    void roundTripEveryMinute()
    {
        for (int H = 0; H < 24; ++H)
            for (int M = 0; M < 60; ++M)
                QCOMPARE(TimeToInt(IntToTime(H * 100 + M)), H * 100 + M);
    }

    void stringToTime_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("expected");
        QTest::newRow("dot") << "7.05" << 705;
        QTest::newRow("colon") << "12:30" << 1230;
        QTest::newRow("parts trimmed") << " 7 : 5 " << 705;
        QTest::newRow("seconds ignored") << "12:30:45" << 1230;
        QTest::newRow("unchecked") << "25:75" << 2575;
        QTest::newRow("hexadecimal") << "$A:5" << 1005;
        QTest::newRow("leading delimiter eaten") << ":7:5" << 705;
        QTest::newRow("pm marker fails") << "10:30 م" << -1;
        QTest::newRow("one part fails") << "1230" << -1;
        QTest::newRow("empty minutes fails") << "7:" << -1;
        QTest::newRow("empty hours fails") << "::5" << -1;
        QTest::newRow("letters fail") << "a:30" << -1;
        QTest::newRow("empty fails") << "" << -1;
        QTest::newRow("comma is no delimiter") << "7,05" << -1;
    }
    void stringToTime()
    {
        QFETCH(QString, text);
        QTEST(StringToTime(text), "expected");
    }

    void minutesBetween_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<int>("minutes");
        QTest::addColumn<int>("packed");
        QTest::newRow("same day") << 830 << 1745 << 555 << 915;
        QTest::newRow("over midnight") << 2300 << 100 << 120 << 200;
        QTest::newRow("the long way") << 100 << 2300 << 1320 << 2200;
        QTest::newRow("equal is zero") << 1000 << 1000 << 0 << 0;
        QTest::newRow("to midnight") << 2330 << 15 << 45 << 45;
        QTest::newRow("one minute short of a day") << 1200 << 1159 << 1439 << 2359;
        QTest::newRow("midnight to midnight") << 0 << 0 << 0 << 0;
    }
    void minutesBetween()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(int, minutes);
        QFETCH(int, packed);
        QCOMPARE(MinutesBetween(from, to), minutes);
        QCOMPARE(TimeBetween(from, to), packed);
    }

    // Packed values are never range-checked; absurd ones must not be undefined behaviour.
    void extremeValuesStayDefined()
    {
        const int Max = std::numeric_limits<int>::max();
        const int Min = std::numeric_limits<int>::min();
        QCOMPARE(TimeToMinIndex(Max), 1288490207);
        QCOMPARE(TimeToMinIndex(Min), -1288490208);
        // Results wrap as 32-bit arithmetic does.
        QCOMPARE(MinIndexToTime(Max), int(3579139407LL - 4294967296LL));
        QCOMPARE(MinutesBetween(Min, Max), int(2576980415LL - 4294967296LL));
        QCOMPARE(MinutesBetween(Max, 0), 1440 - 1288490207);
        QCOMPARE(IntToTime(Max), 0.0);
        QCOMPARE(StringToTime(QStringLiteral("99999999:99")), int(9999999999LL - 2 * 4294967296LL));
    }
};

QTEST_GUILESS_MAIN(TestIntegerTimes)
#include "tst_integer_times.moc"
