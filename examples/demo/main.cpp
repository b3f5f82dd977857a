// Kesh Sales: a small bilingual sales application built on the Kesh components. It works on
// an SQLite file of its own (created with sample data on the first start) or on the database
// that --database names. Without a display it writes its screenshots and exits.
#include "demo_context.h"
#include "main_window.h"
#include "sample_db.h"
#include "screenshots.h"

#include <Kesh.h>
#include <Kesh_AdoDB.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QLabel>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <cstdio>
#include <memory>

using namespace Kesh;

namespace {

bool HasDisplay()
{
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || !qEnvironmentVariableIsEmpty("DISPLAY")
        || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

// The off-screen platform says so for every window that asks to be raised or sized by the
// window system: no news in a screenshot run.
QtMessageHandler PreviousHandler = nullptr;

void QuietOffscreen(QtMsgType Type, const QMessageLogContext& Context, const QString& Message)
{
    if (Type == QtWarningMsg && Message.startsWith(QLatin1String("This plugin does not support")))
        return;
    if (PreviousHandler)
        PreviousHandler(Type, Context, Message);
    else
        std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(Type, Context, Message)));
}

QString DefaultDatabase()
{
    const QString Folder = QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation);
    QDir().mkpath(Folder);
    return QStringLiteral("Driver=QSQLITE;Database=") + QDir(Folder).filePath(QStringLiteral("kesh-sales.db"));
}

// The first start makes the sample database: a few seconds under a wait cursor, with a word
// on the screen saying why.
void EnsureSampleData(TQxAdoConnection& Conn, bool Quiet)
{
    if (Conn.TableExists(QStringLiteral("Customers")))
        return;
    std::unique_ptr<QLabel> Notice;
    if (!Quiet) {
        Notice = std::make_unique<QLabel>(BiStr(QStringLiteral("جارٍ إنشاء قاعدة البيانات التجريبية…"),
                                                QStringLiteral("Creating the sample database…")));
        Notice->setWindowFlags(Qt::SplashScreen);
        Notice->setMargin(32);
        Notice->show();
        for (int I = 0; I < 3; ++I)
            QCoreApplication::processEvents();
    }
    QApplication::setOverrideCursor(Qt::WaitCursor);
    QElapsedTimer Clock;
    Clock.start();
    try {
        Demo::EnsureSampleDatabase(&Conn);
    } catch (...) {
        QApplication::restoreOverrideCursor();
        throw;
    }
    QApplication::restoreOverrideCursor();
    std::printf("Sample database created in %lld ms\n", static_cast<long long>(Clock.elapsed()));
}

} // namespace

int main(int argc, char** argv)
{
    const bool Headless = !HasDisplay();
    if (Headless) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        PreviousHandler = qInstallMessageHandler(QuietOffscreen);
    }
    TQxApplication App(argc, argv);

    QCommandLineParser Options;
    Options.setApplicationDescription(QStringLiteral("Kesh Sales: a bilingual sales application built on Kesh."));
    Options.addHelpOption();
    const QCommandLineOption Database(QStringLiteral("database"),
                                      QStringLiteral("The database, as a connection string: "
                                                     "\"Driver=QPSQL;Host=127.0.0.1;Port=5432;Database=sales;User=me;Password=\". "
                                                     "Default: an SQLite file in the application's data folder."),
                                      QStringLiteral("connection"));
    const QCommandLineOption Server(QStringLiteral("server"), QStringLiteral("The application server that serves the customers."),
                                    QStringLiteral("url"));
    const QCommandLineOption Token(QStringLiteral("token"), QStringLiteral("The token the application server expects."),
                                   QStringLiteral("token"));
    const QCommandLineOption Screenshots(QStringLiteral("screenshots"),
                                         QStringLiteral("Write PNG screenshots of every window in both languages to the folder, "
                                                        "on a fresh database, and exit (the default without a display: screenshots)."),
                                         QStringLiteral("folder"));
    const QCommandLineOption Language(QStringLiteral("lang"), QStringLiteral("Start in Arabic (ar) or English (en)."),
                                      QStringLiteral("ar|en"));
    Options.addOptions({Database, Server, Token, Screenshots, Language});
    Options.process(App);

    QString Folder = Options.value(Screenshots);
    if (Headless && Folder.isEmpty())
        Folder = QStringLiteral("screenshots");
    const bool ShotRun = !Folder.isEmpty();
    if (Options.isSet(Language) && Options.value(Language) != QLatin1String("ar") && Options.value(Language) != QLatin1String("en")) {
        std::fprintf(stderr, "--lang takes ar or en\n");
        return 2;
    }

    // A screenshot run starts from nothing: its own settings file and database, thrown away
    // afterwards, so that what an earlier run left cannot change the pictures.
    QTemporaryDir Scratch;
    if (ShotRun) {
        if (!Scratch.isValid()) {
            std::fprintf(stderr, "Cannot make a temporary folder\n");
            return 1;
        }
        ConfigFile = Scratch.filePath(QStringLiteral("kesh-demo.ini"));
    }
    QString ConnectionString = Options.value(Database);
    if (ConnectionString.isEmpty())
        ConnectionString = ShotRun ? QStringLiteral("Driver=QSQLITE;Database=") + Scratch.filePath(QStringLiteral("sales.db"))
                                   : DefaultDatabase();

    const QString Lang = Options.isSet(Language) ? Options.value(Language)
                                                 : ReadSetting(QStringLiteral("MainWindow"), QStringLiteral("Language"), QStringLiteral("en")).toString();
    Application()->SetBiDiMode(Lang == QLatin1String("ar") ? bdRightToLeft : bdLeftToRight);

    TQxAdoConnection Conn;
    Conn.setObjectName(QStringLiteral("SalesDB"));
    try {
        Conn.SetConnectionString(ConnectionString);
        Conn.Open();
        EnsureSampleData(Conn, ShotRun);
    } catch (const Exception& E) {
        std::fprintf(stderr, "%s\n", qPrintable(E.Message));
        if (!ShotRun)
            ShowError(E.Message);
        return 1;
    }

    Demo::TDemoContext Context{&Conn, Options.value(Server), Options.value(Token)};
    Demo::TMainWindow Window(Context);
    if (ShotRun)
        return Demo::WriteScreenshots(Window, Folder);
    Window.show();
    return App.exec();
}
