// Replace in its two forms and the search key of StringFilter.
#include <Kesh.h>

#include <QApplication>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>
#include <QtTest>

using namespace Kesh;

class TestTextUtils : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void replaceOne_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("oldPattern");
        QTest::addColumn<QString>("newPattern");
        QTest::addColumn<int>("flags");
        QTest::addColumn<QString>("expected");
        QTest::newRow("first only, case kept") << "aAa" << "a" << "x" << 0 << "xAa";
        QTest::newRow("replace all") << "aAa" << "a" << "x" << int(rfReplaceAll) << "xAx";
        QTest::newRow("ignore case, first only") << "AaA" << "a" << "x" << int(rfIgnoreCase) << "xaA";
        QTest::newRow("ignore case, all") << "aAa" << "a" << "x" << int(rfReplaceAll | rfIgnoreCase) << "xxx";
        QTest::newRow("arabic pattern") << "عبد الله" << "عبد " << "عبد" << 0 << "عبدالله";
        QTest::newRow("no match") << "abc" << "z" << "y" << int(rfReplaceAll) << "abc";
        QTest::newRow("removal") << "a-b-c" << "-" << "" << int(rfReplaceAll) << "abc";
    }
    void replaceOne()
    {
        QFETCH(QString, text);
        QFETCH(QString, oldPattern);
        QFETCH(QString, newPattern);
        QFETCH(int, flags);
        QTEST(Replace(text, oldPattern, newPattern, TReplaceFlags(flags)), "expected");
    }

    void replaceList_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("patterns");
        QTest::addColumn<QStringList>("data");
        QTest::addColumn<int>("flags");
        QTest::addColumn<QString>("expected");
        QTest::newRow("applied in turn") << "a" << QStringList{"a", "b"} << QStringList{"b", "c"} << 0 << "c";
        QTest::newRow("order matters") << "a" << QStringList{"b", "a"} << QStringList{"c", "b"} << 0 << "b";
        QTest::newRow("first occurrence each") << "aaa" << QStringList{"a"} << QStringList{"b"} << 0 << "baa";
        QTest::newRow("flags reach every pattern")
            << "AaBb" << QStringList{"a", "b"} << QStringList{"x", "y"} << int(rfReplaceAll | rfIgnoreCase)
            << "xxyy";
        QTest::newRow("empty lists") << "abc" << QStringList() << QStringList() << 0 << "abc";
    }
    void replaceList()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, patterns);
        QFETCH(QStringList, data);
        QFETCH(int, flags);
        QTEST(Replace(text, patterns, data, TReplaceFlags(flags)), "expected");
    }

    // A count mismatch shows its error (seen here through the log) and aborts silently.
    void replaceListMismatchAborts()
    {
        QTemporaryDir Dir;
        QVERIFY(Dir.isValid());
        const QString SavedLog = LogFilename;
        const bool SavedLogging = Logging;
        LogFilename = Dir.filePath(QStringLiteral("test.LOG"));
        Logging = true;

        // Should the error come as a modal box, close it so the call can return.
        QTimer Closer;
        QObject::connect(&Closer, &QTimer::timeout, [] {
            if (QWidget* Box = QApplication::activeModalWidget())
                Box->close();
        });
        Closer.start(50);

        QString Result = QStringLiteral("unchanged");
        bool Aborted = false;
        try {
            Result = Replace(QStringLiteral("ab"), QStringList{"a", "b"}, QStringList{"x"});
        } catch (const EAbort&) {
            Aborted = true;
        }
        Closer.stop();
        LogFilename = SavedLog;
        Logging = SavedLogging;

        QVERIFY(Aborted);
        QCOMPARE(Result, QStringLiteral("unchanged"));
        QFile Log(Dir.filePath(QStringLiteral("test.LOG")));
        QVERIFY(Log.open(QIODevice::ReadOnly));
        QVERIFY(QString::fromUtf8(Log.readAll())
                    .contains(QStringLiteral("Replace: number of patterns doesn't match number of data elements.")));
    }

    void stringFilter_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("expected");
        QTest::newRow("trimmed") << "  Ahmed  " << "Ahmed";
        QTest::newRow("digits and punctuation dropped") << "Ali-2" << "Ali";
        QTest::newRow("runs of blanks kept") << "A  B" << "A  B";
        QTest::newRow("arabic letters dropped") << "عبد الله" << " ";
        QTest::newRow("blank left by a dropped word") << "Ahmed أحمد" << "Ahmed ";
        QTest::newRow("leading blank after a dropped digit") << "1 A" << " A";
        QTest::newRow("empty") << "" << "";
        QTest::newRow("all blank") << "   " << "";
        QTest::newRow("control characters trimmed") << "\t\r\nx\n" << "x";
        QTest::newRow("inner control characters dropped") << "a\tb" << "ab";
        QTest::newRow("only dropped characters") << "123" << "";
        QTest::newRow("both cases of every latin letter")
            << "AZaz BYby @[`{" << "AZaz BYby ";
        QTest::newRow("code page letters, lower range")
            << QString(QChar(0xC0)) + QChar(0xC1) + QChar(0xD0) + QChar(0xDF) + QChar(0xE0)
            << QString(QChar(0xC1)) + QChar(0xD0) + QChar(0xDF);
        QTest::newRow("code page letters, upper range")
            << QString(QChar(0xE1)) + QChar(0xE2) + QChar(0xE3) + QChar(0xE4) + QChar(0xE5) + QChar(0xE6)
                   + QChar(0xE7) + QChar(0xEB) + QChar(0xEC) + QChar(0xED) + QChar(0xEE) + QChar(0xFF)
            << QString(QChar(0xE1)) + QChar(0xE3) + QChar(0xE4) + QChar(0xE5) + QChar(0xE6) + QChar(0xEC)
                   + QChar(0xED);
        QTest::newRow("above U+00FF dropped") << QString(QChar(0x100)) + "a" + QChar(0x627) + QChar(0x640) << "a";
        QTest::newRow("no-break space dropped") << QString("a") + QChar(0xA0) + "b" << "ab";
    }
    void stringFilter()
    {
        QFETCH(QString, text);
        QTEST(StringFilter(text), "expected");
    }
};

QTEST_MAIN(TestTextUtils)
#include "tst_text_utils.moc"
