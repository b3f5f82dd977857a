// Keyboard layouts: the naming of XKB groups, the installed backend, and the X11 backend on
// a private Xvfb server holding the English and Arabic layouts.
#include "platform/application.h"
#include "platform/keyboard.h"
#include "platform/keyboard_p.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QtTest>

using namespace Kesh;

namespace {

// An Xvfb server on the first free display number, stopped with the object.
class TXvfb
{
public:
    ~TXvfb()
    {
        if (m_server.state() != QProcess::NotRunning) {
            m_server.terminate();
            m_server.waitForFinished(3000);
        }
    }

    // Starts the server; the display name (":N") or an empty string with Error set.
    QString Start(QString& Error)
    {
        const QString xvfb = QStandardPaths::findExecutable(QStringLiteral("Xvfb"));
        if (xvfb.isEmpty()) {
            Error = QStringLiteral("Xvfb is not installed");
            return {};
        }
        for (int n = 90 + QCoreApplication::applicationPid() % 50; n < 400; ++n) {
            if (QFileInfo::exists(QStringLiteral("/tmp/.X%1-lock").arg(n))
                || QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(n)))
                continue;
            const QString display = QStringLiteral(":%1").arg(n);
            m_server.start(xvfb, {display, QStringLiteral("-nolisten"), QStringLiteral("tcp")});
            if (!m_server.waitForStarted(5000))
                break;
            for (int i = 0; i < 100 && m_server.state() == QProcess::Running; ++i) {
                if (QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(n)))
                    return display;
                QTest::qWait(50);
            }
            m_server.kill();
            m_server.waitForFinished(3000);
        }
        Error = QStringLiteral("no Xvfb server could be started");
        return {};
    }

private:
    QProcess m_server;
};

// Runs a program to its end; its exit code, or -1 when it could not run.
int Run(const QString& Program, const QStringList& Arguments)
{
    QProcess p;
    p.start(Program, Arguments);
    if (!p.waitForFinished(20000))
        return -1;
    return p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
}

} // namespace

class TestKeyboard : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void groupsOfSymbols_data()
    {
        QTest::addColumn<QString>("symbols");
        QTest::addColumn<QStringList>("groups");
        QTest::newRow("us and Arabic") << "pc+us+ara:2+inet(evdev)" << QStringList{"us", "ara"};
        QTest::newRow("Arabic first") << "pc+ara+us:2+inet(evdev)" << QStringList{"ara", "us"};
        QTest::newRow("variants dropped") << "pc+us(intl)+ara(buckwalter):2+inet(evdev)+group(alt_shift_toggle)"
                                          << QStringList{"us", "ara"};
        QTest::newRow("single layout") << "pc+gb+inet(evdev)" << QStringList{"gb"};
        QTest::newRow("gap in the groups") << "pc+fr+ara:3" << QStringList{"fr", "", "ara"};
        QTest::newRow("overrides") << "pc+us+ara:2|compose(ralt)" << QStringList{"us", "ara"};
        QTest::newRow("nothing") << "" << QStringList{};
        QTest::newRow("garbage") << "+++:::((" << QStringList{};
        QTest::newRow("group out of range") << "pc+us+ara:9" << QStringList{"us"};
    }
    void groupsOfSymbols()
    {
        QFETCH(QString, symbols);
        QFETCH(QStringList, groups);
        QCOMPARE(XkbGroupsOfSymbols(symbols), groups);
    }

    void layoutNames_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("xkb");
        QTest::addColumn<QString>("back");
        QTest::newRow("Arabic") << "00000401" << QStringList{"ara", "ar"} << "00000401";
        QTest::newRow("English") << "00000409" << QStringList{"us", "gb"} << "00000409";
        QTest::newRow("British") << "00000809" << QStringList{"gb"} << "00000809";
        QTest::newRow("xkb name") << "fr" << QStringList{"fr"} << "fr";
        QTest::newRow("unknown identifier") << "0000040C" << QStringList{"0000040C"} << "0000040C";
        QTest::newRow("empty") << "" << QStringList{} << "";
    }
    void layoutNames()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, xkb);
        QFETCH(QString, back);
        QCOMPARE(XkbLayoutsOf(name), xkb);
        if (!back.isEmpty())
            QCOMPARE(LayoutNameOfXkb(xkb.first()), back);
    }

    void installedBackendRecordsAndKeepsTheDefault()
    {
        auto owned = std::make_unique<TRecordingKeyboard>(QStringLiteral("00000409"));
        TRecordingKeyboard* keyboard = owned.get();
        SetKeyboardBackend(std::move(owned));
        QVERIFY(ActivateKeyboardLayout(QStringLiteral("00000401")));
        QCOMPARE(ActiveKeyboardLayout(), QStringLiteral("00000401"));
        QCOMPARE(DefaultKeyboardLayout(), QStringLiteral("00000409"));
        QVERIFY(!ActivateKeyboardLayout(QString()));
        QCOMPARE(keyboard->History(), QStringList{QStringLiteral("00000401")});
        SetKeyboardBackend(nullptr); // the platform's own comes back, not a dangling one
        ActiveKeyboardLayout();
    }

    void historyKeepsTheLatest()
    {
        TRecordingKeyboard keyboard;
        for (int i = 0; i < TRecordingKeyboard::MaxHistory + 5; ++i)
            keyboard.Activate(QString::number(i));
        const QStringList history = keyboard.History();
        QCOMPARE(history.size(), TRecordingKeyboard::MaxHistory);
        QCOMPARE(history.first(), QStringLiteral("5"));
        QCOMPARE(history.last(), QString::number(TRecordingKeyboard::MaxHistory + 4));
        QCOMPARE(keyboard.Active(), history.last());
    }

    void directionPicksTheApplicationsLayouts_data()
    {
        QTest::addColumn<QString>("biDi");
        QTest::addColumn<QString>("nonBiDi");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("set by start-up") << "00000401" << "00000409" << QStringList{"00000401", "00000409"};
        QTest::newRow("other layouts") << "00000429" << "00000809" << QStringList{"00000429", "00000809"};
        QTest::newRow("none set") << "" << "" << QStringList{"00000401", "00000409"};
    }
    void directionPicksTheApplicationsLayouts()
    {
        QFETCH(QString, biDi);
        QFETCH(QString, nonBiDi);
        QFETCH(QStringList, expected);
        const QString oldBiDi = Application()->BiDiKeyboard();
        const QString oldNonBiDi = Application()->NonBiDiKeyboard();
        Application()->SetBiDiKeyboard(biDi);
        Application()->SetNonBiDiKeyboard(nonBiDi);
        auto owned = std::make_unique<TRecordingKeyboard>();
        TRecordingKeyboard* keyboard = owned.get();
        SetKeyboardBackend(std::move(owned));
        ActivateDirectionKeyboard(Qt::RightToLeft);
        ActivateDirectionKeyboard(Qt::LeftToRight);
        Application()->SetBiDiKeyboard(oldBiDi);
        Application()->SetNonBiDiKeyboard(oldNonBiDi);
        QCOMPARE(keyboard->History(), expected);
    }

    void x11SwitchesTheXkbGroup()
    {
        QString error;
        TXvfb server;
        const QString display = server.Start(error);
        if (display.isEmpty())
            QSKIP(qPrintable(error));
        const QString setxkbmap = QStandardPaths::findExecutable(QStringLiteral("setxkbmap"));
        if (setxkbmap.isEmpty())
            QSKIP("setxkbmap is not installed");

        // With only the English layout, Arabic cannot be had.
        auto english = CreateX11KeyboardBackend(display);
        QVERIFY(english);
        QCOMPARE(english->Active(), QStringLiteral("00000409"));
        QVERIFY(!english->Activate(QStringLiteral("00000401")));

        QCOMPARE(Run(setxkbmap, {QStringLiteral("-display"), display, QStringLiteral("-layout"), QStringLiteral("us,ar")}), 0);
        auto keyboard = CreateX11KeyboardBackend(display);
        QVERIFY(keyboard);
        QCOMPARE(keyboard->Active(), QStringLiteral("00000409"));
        QVERIFY(keyboard->Activate(QStringLiteral("00000401")));
        QCOMPARE(keyboard->Active(), QStringLiteral("00000401"));
        // Another connection sees the server's state, not a copy of ours.
        QCOMPARE(english->Active(), QStringLiteral("00000401"));
        QVERIFY(keyboard->Activate(QStringLiteral("00000409")));
        QCOMPARE(keyboard->Active(), QStringLiteral("00000409"));
        QVERIFY(keyboard->Activate(QStringLiteral("ara")));
        QCOMPARE(keyboard->Active(), QStringLiteral("00000401"));
        QVERIFY(!keyboard->Activate(QStringLiteral("fr")));
        QVERIFY(!keyboard->Activate(QStringLiteral("0000040C")));
        QCOMPARE(keyboard->Active(), QStringLiteral("00000401"));
    }

    void x11BackendNeedsADisplay()
    {
        QVERIFY(!CreateX11KeyboardBackend(QStringLiteral(":999999")));
    }
};

QTEST_MAIN(TestKeyboard)
#include "tst_keyboard.moc"
