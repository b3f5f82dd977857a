// kesh-appserver: an application server for the demo's database (made with its sample rows
// when the database has none). Clients reach its providers "Customers" (every column, to
// read and edit), "Cities" and "Items" over HTTP with a bearer token:
//
//   kesh-appserver [--database FILE | --connection "Driver=QPSQL;Host=…"] [--address 127.0.0.1]
//                  [--port 8211] [--workers 4] [--token TEXT] [--cert FILE --key FILE]
//
// Without --token a random one is made and printed. "Items" takes the lowest price as its
// one placeholder (:P1), set by the module's own code from the client's typed parameter.
// A customer inserted without a number gets the next one here, and the client gets it back.
#include <Kesh_AdoDB.h>
#include "platform/remote/app_server.h"
#include "demo_module.h"
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QTimer>
#include <csignal>
#include <cstdio>

using namespace Kesh;

namespace {

volatile std::sig_atomic_t Stopping = 0;

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication App(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("kesh-appserver"));
    QCommandLineParser Args;
    Args.setApplicationDescription(QStringLiteral("Kesh application server for the demo database"));
    Args.addHelpOption();
    const QString DemoDb = QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
                               .filePath(QStringLiteral("kesh-demo/kesh-sales.db"));  // the demo's own
    Args.addOptions({{QStringLiteral("database"), QStringLiteral("SQLite file (the demo's by default)."), QStringLiteral("file"), DemoDb},
                     {QStringLiteral("connection"), QStringLiteral("A full connection string instead."), QStringLiteral("text")},
                     {QStringLiteral("address"), QStringLiteral("Address to listen on."), QStringLiteral("ip"), QStringLiteral("127.0.0.1")},
                     {QStringLiteral("port"), QStringLiteral("Port (0: any)."), QStringLiteral("n"), QStringLiteral("8211")},
                     {QStringLiteral("workers"), QStringLiteral("Worker threads."), QStringLiteral("n"), QStringLiteral("4")},
                     {QStringLiteral("token"), QStringLiteral("Bearer token of the clients."), QStringLiteral("text")},
                     {QStringLiteral("cert"), QStringLiteral("TLS certificate (PEM)."), QStringLiteral("file")},
                     {QStringLiteral("key"), QStringLiteral("TLS private key (PEM)."), QStringLiteral("file")}});
    Args.process(App);

    QString ConnectionString = Args.value(QStringLiteral("connection"));
    if (ConnectionString.isEmpty()) {
        QDir().mkpath(QFileInfo(Args.value(QStringLiteral("database"))).absolutePath());
        ConnectionString = QStringLiteral("Driver=QSQLITE;Database=") + Args.value(QStringLiteral("database"));
    }
    QString Token = Args.value(QStringLiteral("token"));
    if (Token.isEmpty())
        for (int i = 0; i < 4; ++i)
            Token += QString::number(QRandomGenerator::system()->generate64(), 16).rightJustified(16, QLatin1Char('0'));

    TAppServer Server;
    try {
        Demo::CreateServerDatabase(ConnectionString);
        Server.SetAddress(Args.value(QStringLiteral("address")));
        Server.SetPort(Args.value(QStringLiteral("port")).toInt());
        Server.SetWorkers(Args.value(QStringLiteral("workers")).toInt());
        Server.SetCertificateFile(Args.value(QStringLiteral("cert")));
        Server.SetPrivateKeyFile(Args.value(QStringLiteral("key")));
        Server.AddToken(Token, {QStringLiteral("*")});
        Server.ModuleFactory = [ConnectionString] { return new Demo::TDemoModule(ConnectionString); };
        Server.Start();
    } catch (const Exception& E) {
        std::fprintf(stderr, "kesh-appserver: %s\n", qPrintable(E.Message));
        return 1;
    }
    const QString Scheme = Server.CertificateFile().isEmpty() ? QStringLiteral("http") : QStringLiteral("https");
    std::printf("kesh-appserver: %s://%s:%u  token %s\n", qPrintable(Scheme), qPrintable(Server.Address()),
                unsigned(Server.BoundPort()), qPrintable(Token));
    std::fflush(stdout);

    std::signal(SIGINT, [](int) { Stopping = 1; });
    std::signal(SIGTERM, [](int) { Stopping = 1; });
    QTimer Watch;
    QObject::connect(&Watch, &QTimer::timeout, &App, [] {
        if (Stopping)
            QCoreApplication::quit();
    });
    Watch.start(200);
    const int Result = App.exec();
    Server.Stop();
    return Result;
}
