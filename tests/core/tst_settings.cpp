// The settings file, start-up registration, starting programs and finding forms.
#include "conversions.h"
#include "dialog_helper.h"
#include "globals.h"
#include "platform/exceptions.h"
#include "settings.h"
#include "startup.h"

#include <QApplication>
#include <QDate>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QWidget>
#include <QtTest>

using namespace Kesh;

namespace {

QString ReadText(const QString& Path)
{
    QFile F(Path);
    return F.open(QIODevice::ReadOnly) ? QString::fromUtf8(F.readAll()) : QString();
}

void WriteBytes(const QString& Path, const QByteArray& Data)
{
    QFile F(Path);
    QVERIFY(F.open(QIODevice::WriteOnly));
    F.write(Data);
}

QStringList Lines(const QString& Path)
{
    return ReadText(Path).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
}

// The Exec value of a desktop entry as a desktop launcher reads it: the key file's string
// escapes undone, then %% as %. What is left is double-quoted words, which /bin/sh parses
// the same way.
QString ExecCommand(const QString& Entry)
{
    for (const QString& Line : Lines(Entry)) {
        if (!Line.startsWith(QLatin1String("Exec=")))
            continue;
        QString Out;
        const QString V = Line.mid(5);
        for (int I = 0; I < V.size(); ++I) {
            if (V[I] != QLatin1Char('\\') || I + 1 == V.size()) {
                Out += V[I];
                continue;
            }
            const QChar N = V[++I];
            Out += N == QLatin1Char('s') ? QChar(' ') : N == QLatin1Char('n') ? QChar('\n')
                 : N == QLatin1Char('t') ? QChar('\t') : N == QLatin1Char('r') ? QChar('\r') : N;
        }
        return Out.replace(QLatin1String("%%"), QLatin1String("%"));
    }
    return QString();
}

// A program that leaves a mark when it runs.
QString MakeProgram(const QString& Path, const QString& Mark)
{
    WriteBytes(Path, "#!/bin/sh\necho ran > '" + Mark.toUtf8() + "'\n");
    QFile::setPermissions(Path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return Path;
}

} // namespace

class TestSettings : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_savedConfig;
    QByteArray m_savedXdg;
    bool m_hadXdg = false;

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_savedConfig = ConfigFile;
        m_hadXdg = qEnvironmentVariableIsSet("XDG_CONFIG_HOME");
        m_savedXdg = qgetenv("XDG_CONFIG_HOME");
    }
    void init() { ConfigFile = m_dir.filePath(QStringLiteral("app-%1.ini").arg(QTest::currentDataTag())); }
    void cleanup()
    {
        QFile::remove(ConfigFile);
        ConfigFile = m_savedConfig;
        // Autostart entries are written below XDG_CONFIG_HOME: never leave it pointing elsewhere.
        if (m_hadXdg)
            qputenv("XDG_CONFIG_HOME", m_savedXdg);
        else
            qunsetenv("XDG_CONFIG_HOME");
    }

    void saveThenRead_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("line");
        QTest::newRow("plain") << QVariant(QStringLiteral("abc")) << "abc" << "Key=abc";
        QTest::newRow("arabic") << QVariant(QStringLiteral("مرحبا بالعالم")) << "مرحبا بالعالم" << "Key=مرحبا بالعالم";
        // A boolean is stored as the platform's text for it.
        QTest::newRow("bool") << QVariant(true) << AsString(QVariant(true)) << "Key=" + AsString(QVariant(true));
        QTest::newRow("int") << QVariant(5) << "5" << "Key=5";
        QTest::newRow("double") << QVariant(2.5) << "2.5" << "Key=2.5";
        QTest::newRow("date") << QVariant(QDate(2024, 1, 31)) << "2024-01-31" << "Key=2024-01-31";
        QTest::newRow("windows path") << QVariant(QStringLiteral("C:\\Data\\new.db")) << "C:\\Data\\new.db"
                                      << "Key=C:\\Data\\new.db";
        QTest::newRow("commas") << QVariant(QStringLiteral("a, b,c")) << "a, b,c" << "Key=a, b,c";
        QTest::newRow("comment marks") << QVariant(QStringLiteral("a;b#c")) << "a;b#c" << "Key=a;b#c";
        QTest::newRow("equals") << QVariant(QStringLiteral("x=y")) << "x=y" << "Key=x=y";
        QTest::newRow("at sign") << QVariant(QStringLiteral("@x")) << "@x" << "Key=@x";
        QTest::newRow("padded") << QVariant(QStringLiteral("  x  ")) << "  x  " << "Key=\"  x  \"";
        QTest::newRow("quoted") << QVariant(QStringLiteral("\"q\"")) << "\"q\"" << "Key=\"\"q\"\"";
        QTest::newRow("empty") << QVariant(QString()) << "" << "Key=";
        QTest::newRow("null") << QVariant() << "" << "Key=";
    }
    void saveThenRead()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, text);
        QFETCH(QString, line);
        SaveSetting(QStringLiteral("Form1.QxForm1"), QStringLiteral("Key"), value);
        const QVariant Read = ReadSetting(QStringLiteral("Form1.QxForm1"), QStringLiteral("Key"), QStringLiteral("default"));
        QCOMPARE(Read.typeId(), int(QMetaType::QString));
        QCOMPARE(Read.toString(), text);
        QCOMPARE(Lines(ConfigFile), (QStringList{QStringLiteral("[Form1.QxForm1]"), line}));
    }

    void readMissingGivesTheDefaultsText_data()
    {
        QTest::addColumn<bool>("fileExists");
        QTest::addColumn<QVariant>("def");
        QTest::addColumn<QString>("text");
        QTest::newRow("no file, int") << false << QVariant(5) << "5";
        QTest::newRow("no file, null") << false << QVariant() << "";
        QTest::newRow("no key, text") << true << QVariant(QStringLiteral("x")) << "x";
        QTest::newRow("no key, bool") << true << QVariant(false) << AsString(QVariant(false));
    }
    void readMissingGivesTheDefaultsText()
    {
        QFETCH(bool, fileExists);
        QFETCH(QVariant, def);
        QFETCH(QString, text);
        if (fileExists)
            SaveSetting(QStringLiteral("S"), QStringLiteral("Other"), 1);
        const QVariant Read = ReadSetting(QStringLiteral("S"), QStringLiteral("Key"), def);
        QCOMPARE(Read.typeId(), int(QMetaType::QString));
        QCOMPARE(Read.toString(), text);
        QCOMPARE(QFile::exists(ConfigFile), fileExists);
    }

    // A file written by hand or by another program reads as such a file reads anywhere, and
    // survives being written back.
    void foreignFileIsReadAndKept()
    {
        WriteBytes(ConfigFile, "\xEF\xBB\xBF; a comment\r\n[Form1.QxForm1]\r\n Left = 100 \r\nTop=20\r\nTop=99\r\n"
                               "Path=C:\\new\\table.db\r\nQuoted=\" padded \"\r\nList=a,b, c\r\n[ Other ]\r\nKey=v\r\n");
        const auto Read = [](const char* Section, const char* Key) {
            return ReadSetting(QLatin1String(Section), QLatin1String(Key), QStringLiteral("?")).toString();
        };
        for (int Pass = 0; Pass < 2; ++Pass) {
            QCOMPARE(Read("Form1.QxForm1", "left"), QStringLiteral("100"));
            QCOMPARE(Read("FORM1.QXFORM1", "TOP"), QStringLiteral("20"));
            QCOMPARE(Read("Form1.QxForm1", "Path"), QStringLiteral("C:\\new\\table.db"));
            QCOMPARE(Read("Form1.QxForm1", "Quoted"), QStringLiteral(" padded "));
            QCOMPARE(Read("Form1.QxForm1", "List"), QStringLiteral("a,b, c"));
            QCOMPARE(Read("Other", "Key"), QStringLiteral("v"));
            SaveSetting(QStringLiteral("Form1.QxForm1"), QStringLiteral("Width"), 300);
        }
        QVERIFY(Lines(ConfigFile).contains(QStringLiteral("Path=C:\\new\\table.db")));
        QCOMPARE(Read("Form1.QxForm1", "Width"), QStringLiteral("300"));
    }

    void namesIgnoreCaseAndBlanks()
    {
        SaveSetting(QStringLiteral("Form1.QxForm1"), QStringLiteral("Left"), 10);
        SaveSetting(QStringLiteral(" form1.qxform1 "), QStringLiteral("LEFT"), 20);
        SaveSetting(QStringLiteral("عربي"), QStringLiteral("مفتاح"), QStringLiteral("قيمة"));
        QCOMPARE(ReadSetting(QStringLiteral("Form1.QxForm1"), QStringLiteral(" left"), 0).toString(), QStringLiteral("20"));
        QCOMPARE(ReadSetting(QStringLiteral("عربي"), QStringLiteral("مفتاح"), 0).toString(), QStringLiteral("قيمة"));
        const QStringList L = Lines(ConfigFile);
        QCOMPARE(L.filter(QStringLiteral("=20"), Qt::CaseInsensitive).size(), 1);
        QVERIFY(L.contains(QStringLiteral("[عربي]")));
        QVERIFY(L.contains(QStringLiteral("مفتاح=قيمة")));
    }

    void foldersAreCreated()
    {
        ConfigFile = m_dir.filePath(QStringLiteral("sub/dir/app.ini"));
        SaveSetting(QStringLiteral("S"), QStringLiteral("K"), 1);
        QCOMPARE(ReadSetting(QStringLiteral("S"), QStringLiteral("K"), 0).toString(), QStringLiteral("1"));
    }

    void unwritableFileRaises()
    {
        const QString Blocker = m_dir.filePath(QStringLiteral("blocker"));
        WriteBytes(Blocker, "not a folder");
        ConfigFile = Blocker + QStringLiteral("/app.ini");
        QVERIFY_THROWS_EXCEPTION(EIniFileException, SaveSetting(QStringLiteral("S"), QStringLiteral("K"), 1));
        QCOMPARE(ReadSetting(QStringLiteral("S"), QStringLiteral("K"), 7).toString(), QStringLiteral("7"));
    }

    void unstorableNamesAndValuesAreRefused_data()
    {
        QTest::addColumn<QString>("section");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("value");
        QTest::newRow("empty key") << "S" << " " << "v";
        QTest::newRow("key with equals") << "S" << "a=b" << "v";
        QTest::newRow("comment key") << "S" << ";a" << "v";
        QTest::newRow("section-like key") << "S" << "[a]" << "v";
        QTest::newRow("line break in value") << "S" << "K" << "a\nb";
        QTest::newRow("line break in section") << "S\rT" << "K" << "v";
    }
    void unstorableNamesAndValuesAreRefused()
    {
        QFETCH(QString, section);
        QFETCH(QString, key);
        QFETCH(QString, value);
        SaveSetting(QStringLiteral("S"), QStringLiteral("Kept"), 1);
        const QString Before = ReadText(ConfigFile);
        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        QVERIFY_THROWS_EXCEPTION(EAbort, SaveSetting(section, key, value));
        QCOMPARE(Driver.Seen.size(), 1);
        QVERIFY(Driver.Seen[0].Text.startsWith(QStringLiteral("SaveSetting\r\n")));
        QCOMPARE(ReadText(ConfigFile), Before);
    }

    void runOnStartupWritesAnAutostartEntry_data()
    {
        QTest::addColumn<bool>("once");
        QTest::newRow("every log-on") << false;
        QTest::newRow("next log-on only") << true;
    }
    void runOnStartupWritesAnAutostartEntry()
    {
        QFETCH(bool, once);
        // Every character that desktop entries or shells treat specially, in both paths.
        QTemporaryDir Home(m_dir.filePath(QStringLiteral("cfg $x 'q' `b` %u XXXXXX")));
        QVERIFY(Home.isValid());
        qputenv("XDG_CONFIG_HOME", Home.path().toUtf8());
        const QString Mark = m_dir.filePath(QStringLiteral("mark-%1").arg(once));
        const QString Program = MakeProgram(
            Home.filePath(QStringLiteral("my prog \"q\" $HOME `x` 50% back\\slash عربي.sh")), Mark);

        RunOnStartup(QStringLiteral("My App"), Program, once);
        const QString Entry = Home.filePath(QStringLiteral("autostart/My App.desktop"));
        QCOMPARE(StartupEntryPath(QStringLiteral("My App")), Entry);
        const QStringList L = Lines(Entry);
        QCOMPARE(L.value(0), QStringLiteral("[Desktop Entry]"));
        QVERIFY(L.contains(QStringLiteral("Type=Application")));
        QVERIFY(L.contains(QStringLiteral("Name=My App")));

        // Run the command as a session would at log-on.
        QCOMPARE(QProcess::execute(QStringLiteral("/bin/sh"), {QStringLiteral("-c"), ExecCommand(Entry)}), 0);
        QCOMPARE(ReadText(Mark), QStringLiteral("ran\n"));
        QCOMPARE(QFile::exists(Entry), !once);
    }

    // GLib's own launcher, where installed, reads the entry the same way.
    void autostartEntryLaunchesThroughGio()
    {
        const QString Gio = QStandardPaths::findExecutable(QStringLiteral("gio"));
        if (Gio.isEmpty())
            QSKIP("gio is not installed");
        QTemporaryDir Home(m_dir.filePath(QStringLiteral("gio $x \"q\" XXXXXX")));
        qputenv("XDG_CONFIG_HOME", Home.path().toUtf8());
        const QString Mark = m_dir.filePath(QStringLiteral("gio-mark"));
        const QString Program = MakeProgram(Home.filePath(QStringLiteral("run \"x\" $HOME 50% b\\s عربي")), Mark);
        RunOnStartup(QStringLiteral("Gio App"), Program, true);
        const QString Entry = StartupEntryPath(QStringLiteral("Gio App"));
        QCOMPARE(QProcess::execute(Gio, {QStringLiteral("launch"), Entry}), 0);
        QTRY_COMPARE(ReadText(Mark), QStringLiteral("ran\n"));
        QTRY_VERIFY(!QFile::exists(Entry));
    }

    void runOnStartupNames()
    {
        QTemporaryDir Home;
        qputenv("XDG_CONFIG_HOME", Home.path().toUtf8());
        QCOMPARE(StartupEntryPath(QStringLiteral("a/b")), Home.filePath(QStringLiteral("autostart/a_b.desktop")));
        RunOnStartup(QString(), QStringLiteral("/bin/true"), false);
        QVERIFY(!QFile::exists(Home.filePath(QStringLiteral("autostart"))));
        RunOnStartup(QStringLiteral("a/b"), QStringLiteral("/bin/true"), false);
        QVERIFY(QFile::exists(Home.filePath(QStringLiteral("autostart/a_b.desktop"))));
    }

    void execute_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("params");
        QTest::addColumn<bool>("wait");
        QTest::addColumn<int>("result");
        QTest::newRow("exit code") << "/bin/sh" << "-c \"exit 3\"" << true << 3;
        QTest::newRow("success") << "/bin/sh" << "-c \"exit 0\"" << true << 0;
        QTest::newRow("no wait") << "/bin/sh" << "-c \"exit 3\"" << false << -1;
        QTest::newRow("quoted parameter is one") << "/bin/sh" << "-c \"exit $#\" zero \"a b\" c" << true << 2;
        QTest::newRow("missing, wait") << "/nonexistent/program" << "" << true << -1;
        QTest::newRow("missing, no wait") << "/nonexistent/program" << "" << false << -1;
        QTest::newRow("crash") << "/bin/sh" << "-c \"kill -SEGV $$\"" << true << -1;
        QTest::newRow("no file name") << "" << "-c \"exit 3\"" << true << -1;
    }
    void execute()
    {
        QFETCH(QString, file);
        QFETCH(QString, params);
        QFETCH(bool, wait);
        QTEST(Execute(file, params, wait), "result");
    }

    void executeWithoutWaitStartsTheProgram()
    {
        const QString Mark = m_dir.filePath(QStringLiteral("detached-mark"));
        const QString Program = MakeProgram(m_dir.filePath(QStringLiteral("detached.sh")), Mark);
        QCOMPARE(Execute(Program, QString(), false), -1);
        QTRY_COMPARE(ReadText(Mark), QStringLiteral("ran\n"));
    }

    void formLoadedFindsAndActivates()
    {
        QWidget Items, Other;
        Items.setObjectName(QStringLiteral("FormItems"));
        Other.setObjectName(QStringLiteral("FormOther"));
        Items.show();
        Other.show();
        Other.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&Other));
        QVERIFY(FormLoaded(QStringLiteral("formitems")));
        QTRY_COMPARE(QApplication::activeWindow(), &Items);
        QVERIFY(!FormLoaded(QStringLiteral("FormMissing")));
        QVERIFY(!FormLoaded(QString()));
    }

    void formLoadedFindsMdiChildren()
    {
        QMdiArea Area;
        QMdiSubWindow* Sub1 = Area.addSubWindow(new QWidget);
        QMdiSubWindow* Sub2 = Area.addSubWindow(new QWidget);
        Sub1->widget()->setObjectName(QStringLiteral("Child1"));
        Sub2->widget()->setObjectName(QStringLiteral("Child2"));
        Area.show();
        QVERIFY(QTest::qWaitForWindowActive(&Area));
        Area.setActiveSubWindow(Sub2);
        QVERIFY(FormLoaded(QStringLiteral("CHILD1")));
        QTRY_COMPARE(Area.activeSubWindow(), Sub1);
    }
};

QTEST_MAIN(TestSettings)
#include "tst_settings.moc"
