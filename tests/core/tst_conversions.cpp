// Conversions, tokens, the bilingual choice, the package globals and the log file.
#include <Kesh.h>

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

using namespace Kesh;

class TestConversions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { Application()->SetBiDiMode(bdLeftToRight); }

    void biStrFollowsTheApplicationDirection()
    {
        QCOMPARE(BiStr(QStringLiteral("نعم"), QStringLiteral("Yes")), QStringLiteral("Yes"));
        QCOMPARE(LangIndex(), 0);
        Application()->SetBiDiMode(bdRightToLeft);
        QCOMPARE(BiStr(QStringLiteral("نعم"), QStringLiteral("Yes")), QStringLiteral("نعم"));
        QCOMPARE(LangIndex(), 1);
        QCOMPARE(QGuiApplication::layoutDirection(), Qt::RightToLeft);
        // Only bdRightToLeft reads right to left.
        Application()->SetBiDiMode(bdRightToLeftReadingOnly);
        QCOMPARE(BiStr(QStringLiteral("نعم"), QStringLiteral("Yes")), QStringLiteral("Yes"));
        QCOMPARE(QGuiApplication::layoutDirection(), Qt::LeftToRight);
    }

    void asBoolean_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("expected");
        QTest::newRow("lower") << "true" << true;
        QTest::newRow("mixed") << "True" << true;
        QTest::newRow("upper") << "TRUE" << true;
        QTest::newRow("letter") << "T" << false;
        QTest::newRow("blank before") << " TRUE" << false;
        QTest::newRow("one") << "1" << false;
        QTest::newRow("yes") << "Yes" << false;
        QTest::newRow("empty") << "" << false;
    }
    void asBoolean()
    {
        QFETCH(QString, text);
        QTEST(AsBoolean(text), "expected");
    }

    void asInteger_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("expected");
        QTest::newRow("plain") << "42" << 42;
        QTest::newRow("negative") << "-7" << -7;
        QTest::newRow("trailing letter") << "12a" << 0;
        QTest::newRow("leading blank") << " 5" << 5;
        QTest::newRow("trailing blank") << "5 " << 0;
        QTest::newRow("hex") << "$1F" << 31;
        QTest::newRow("empty") << "" << 0;
        QTest::newRow("too large") << "2147483648" << 0;
        QTest::newRow("smallest") << "-2147483648" << int(-2147483647 - 1);
    }
    void asInteger()
    {
        QFETCH(QString, text);
        QTEST(AsInteger(text), "expected");
    }

    void asFloatUsesTheDecimalSeparator()
    {
        const TFormatSettings Saved = FormatSettings;
        FormatSettings.DecimalSeparator = QLatin1Char('.');
        QCOMPARE(double(AsFloat(QStringLiteral("2.5"))), 2.5);
        QCOMPARE(double(AsFloat(QString())), 0.0);
        QCOMPARE(double(AsFloat(QStringLiteral("abc"))), 0.0);
        FormatSettings.DecimalSeparator = QLatin1Char(',');
        QCOMPARE(double(AsFloat(QStringLiteral("2,5"))), 2.5);
        FormatSettings = Saved;
    }

    void asStringAndIif()
    {
        QCOMPARE(AsString(QVariant()), QString());
        QCOMPARE(AsString(QVariant(QMetaType::fromType<int>())), QString());
        QCOMPARE(AsString(QVariant(12)), QStringLiteral("12"));
        QCOMPARE(AsString(QVariant(QStringLiteral("x"))), QStringLiteral("x"));
        QCOMPARE(IIF(true, 1, 2).toInt(), 1);
        QCOMPARE(IIF(false, 1, 2).toInt(), 2);
        QVERIFY(IsEmpty(QStringLiteral("  ")));
        QVERIFY(IsEmpty(QStringLiteral("\t\r\n")));
        QVERIFY(!IsEmpty(QStringLiteral(" a ")));
    }

    void int2Str_data()
    {
        QTest::addColumn<qint64>("value");
        QTest::addColumn<int>("width");
        QTest::addColumn<QString>("expected");
        QTest::newRow("pads") << qint64(7) << 2 << "07";
        QTest::newRow("longer than width") << qint64(123) << 2 << "123";
        QTest::newRow("width zero") << qint64(5) << 0 << "5";
        QTest::newRow("negative width") << qint64(5) << -3 << "5";
        QTest::newRow("width 17 counts as 1") << qint64(5) << 17 << "5";
        QTest::newRow("width 16 counts as 0") << qint64(5) << 16 << "5";
        QTest::newRow("width 18 counts as 2") << qint64(5) << 18 << "05";
        QTest::newRow("sign padded after zeros") << qint64(-5) << 3 << "0-5";
        QTest::newRow("year") << qint64(24) << 4 << "0024";
        QTest::newRow("int64") << qint64(1234567890123LL) << 15 << "001234567890123";
    }
    void int2Str()
    {
        QFETCH(qint64, value);
        QFETCH(int, width);
        QTEST(Int2Str(value, width), "expected");
    }

    void tokenCount_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("expected");
        QTest::newRow("time") << "12:30" << 2;
        QTest::newRow("lone delimiter") << ":" << 0;
        QTest::newRow("empty") << "" << 0;
        QTest::newRow("only delimiters") << ":,:" << 0;
        QTest::newRow("adjacent delimiters") << "a,,b" << 2;
        QTest::newRow("surrounded") << ",a," << 1;
        QTest::newRow("arabic is one token") << "عبد الله" << 1;
        QTest::newRow("latin-1 delimiter") << QString::fromUtf8("a\xc2\xa7" "b") << 2;
    }
    void tokenCount()
    {
        QFETCH(QString, text);
        TSysCharSet Delims{':', ','};
        Delims.Include(0xA7);
        QTEST(TokenCount(text, Delims), "expected");
    }

    void charactersAboveLatin1AreNeverDelimiters()
    {
        // U+013A has the low byte 0x3A (':'), but is no delimiter.
        const QString S = QStringLiteral("a") + QChar(0x013A) + QStringLiteral("b");
        QCOMPARE(TokenCount(S, TSysCharSet{':'}), 1);
        QString Copy = S;
        QCOMPARE(GetToken(Copy, TSysCharSet{':'}), S);
    }

    void getTokenSequence()
    {
        QString S = QStringLiteral("a,,b");
        const TSysCharSet Comma{','};
        QCOMPARE(GetToken(S, Comma), QStringLiteral("a"));
        QCOMPARE(S, QStringLiteral(",,b"));
        QCOMPARE(GetToken(S, Comma), QString());
        QCOMPARE(S, QStringLiteral(",b"));
        QCOMPARE(GetToken(S, Comma), QStringLiteral("b"));
        QVERIFY(S.isEmpty());
        QCOMPARE(GetToken(S, Comma), QString());
        QCOMPARE(GetToken(S, Comma), QString());

        S = QStringLiteral(",x");
        QCOMPARE(GetToken(S, Comma), QStringLiteral("x"));
        S = QStringLiteral(",,x");
        QCOMPARE(GetToken(S, Comma), QString());
        QCOMPARE(S, QStringLiteral(",x"));
    }

    void getIntegerAndBoolean()
    {
        QString S = QStringLiteral("12;x;-3;true;no");
        const TSysCharSet Semi{';'};
        QCOMPARE(GetInteger(S, Semi), 12);
        QCOMPARE(GetInteger(S, Semi), 0);
        QCOMPARE(GetInteger(S, Semi), -3);
        QCOMPARE(GetBoolean(S, Semi), true);
        QCOMPARE(GetBoolean(S, Semi), false);
        QVERIFY(S.isEmpty());
    }

    void globalsFollowTheExecutable()
    {
        // Set up at start-up from the real executable.
        const QString Exe = QCoreApplication::applicationFilePath();
        QCOMPARE(ConfigFile, Exe + QStringLiteral(".ini"));
        QCOMPARE(LogFilename, Exe + QStringLiteral(".LOG"));
        QCOMPARE(AppName, QStringLiteral("tst_conversions"));
        QVERIFY(ProgPath.endsWith(QLatin1Char('/')));
        QCOMPARE(ReportPath, ProgPath + QStringLiteral("Reports/"));
        QVERIFY(!Logging);
        QCOMPARE(Application()->BiDiKeyboard(), QStringLiteral("00000401"));
        QCOMPARE(Application()->NonBiDiKeyboard(), QStringLiteral("00000409"));
        QCOMPARE(FormatSettings.TimeAMString, QStringLiteral("ص"));
        QCOMPARE(FormatSettings.ShortTimeFormat, QStringLiteral("h:m ampm"));

        const QString Saved = Application()->ExeName();
        Application()->SetExeName(QStringLiteral("/opt/shop/Sales.v2.exe"));
        InitializeKesh();
        QCOMPARE(ProgPath, QStringLiteral("/opt/shop/"));
        QCOMPARE(ConfigFile, QStringLiteral("/opt/shop/Sales.v2.ini"));
        QCOMPARE(LogFilename, QStringLiteral("/opt/shop/Sales.v2.LOG"));
        QCOMPARE(AppName, QStringLiteral("Sales.v2"));
        Application()->SetExeName(Saved);
        InitializeKesh();
    }

    void logIndentsAndAppends()
    {
        QTemporaryDir Dir;
        const QString SavedLog = LogFilename;
        LogFilename = Dir.filePath(QStringLiteral("app.LOG"));
        LogAdd(QStringLiteral("first"));
        LogStart(QStringLiteral("block"));
        LogAdd(QStringLiteral("inner"));
        LogStart(QString());
        LogAdd(QStringLiteral("deeper"));
        LogEnd();
        LogEnd();
        LogEnd(); // never below zero
        LogAdd(QStringLiteral("last"));
        LogStart(QStringLiteral("عربي"));
        LogEnd();

        QFile File(LogFilename);
        QVERIFY(File.open(QIODevice::ReadOnly));
        const QStringList Lines = QString::fromUtf8(File.readAll()).split(QLatin1Char('\n'));
        LogFilename = SavedLog;
        QCOMPARE(Lines, QStringList({QStringLiteral("first"), QStringLiteral("block"), QStringLiteral("    inner"),
                                     QStringLiteral("        deeper"), QStringLiteral("last"),
                                     QStringLiteral("عربي"), QString()}));
    }
};

QTEST_MAIN(TestConversions)
#include "tst_conversions.moc"
