// The application server against in-process Qt SQL, on loopback, on SQLite (a temporary
// file) and on the PostgreSQL server of KESH_TEST_PG when it is set:
//   read 10,000 rows          TClientDataSet over HTTP (open, every row)  vs QSqlQuery in-process
//   apply 1,000 modified rows TClientDataSet::ApplyUpdates over HTTP      vs prepared UPDATEs in one transaction
//                             (each the best of 5 runs of both)
//   load                      20 clients x 100 requests of 20 rows: requests/s, 99th percentile,
//                             errors, and the server's memory (VmRSS) after a second round
//                             against the first; through nginx in front of two server
//                             processes when nginx is installed, else one server process.
// The servers of the load test are this program started again with --serve.
#include <Kesh_AdoDB.h>
#include "platform/remote/app_server.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMutex>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <cstdio>
#include <unistd.h>

using namespace Kesh;

namespace {

const int ReadRows = 10000;
const int ModifiedRows = 1000;
const int Rounds = 5;
const int Clients = 20;
const int RequestsPerClient = 100;
const QString Token = QStringLiteral("bench-token-0123456789abcdef");

class TBenchModule : public TRemoteDataModule
{
public:
    TBenchModule(const QString& Cs, const QString& Table)
    {
        auto* Conn = new TADOConnection(this);
        Conn->SetConnectionString(Cs);
        auto* Q = new TADOQuery(this);
        Q->SetConnection(Conn);
        Q->SetSQL({QStringLiteral("SELECT Id, Name, Qty, Price FROM %1 ORDER BY Id").arg(Table)});
        auto* P = new TDataSetProvider(this);
        P->setObjectName(QStringLiteral("Items"));
        P->SetDataSet(Q);
    }
};

void StartServer(TAppServer& S, const QString& Cs, const QString& Table, int Port = 0)
{
    S.SetPort(Port);
    S.SetWorkers(4);
    S.SetMaxRequestBytes(64 << 20);
    S.AddToken(Token, {QStringLiteral("*")});
    S.ModuleFactory = [Cs, Table] { return new TBenchModule(Cs, Table); };
    S.Start();
}

void MakeTable(const QString& Cs, const QString& Table)
{
    TADOConnection C;
    C.SetConnectionString(Cs);
    C.Open();
    try {
        C.Execute(QStringLiteral("DROP TABLE %1").arg(Table));
    } catch (const Exception&) {
    }
    C.Execute(QStringLiteral("CREATE TABLE %1 (Id INTEGER PRIMARY KEY, Name VARCHAR(40), Qty INTEGER, Price INTEGER)").arg(Table));
    C.BeginTrans();
    QSqlQuery Q(C.Database());
    Q.prepare(QStringLiteral("INSERT INTO %1 VALUES (?, ?, ?, ?)").arg(Table));
    for (int i = 1; i <= ReadRows; ++i) {
        Q.addBindValue(i);
        Q.addBindValue(QStringLiteral("صنف %1 item").arg(i));
        Q.addBindValue(i % 97);
        Q.addBindValue(i * 3);
        Q.exec();
    }
    C.CommitTrans();
}

double Ms(QElapsedTimer& T) { return T.nsecsElapsed() / 1e6; }

void ReadAndApply(const QString& Label, const QString& Cs, const QString& Table)
{
    MakeTable(Cs, Table);
    TAppServer S;
    StartServer(S, Cs, Table);
    TWebConnection Web;
    Web.SetURL(QStringLiteral("http://127.0.0.1:%1").arg(S.BoundPort()));
    Web.SetToken(Token);

    // Warm both paths once (connections, plans, the server's first module).
    {
        TClientDataSet W;
        W.SetRemoteServer(&Web);
        W.SetProviderName(QStringLiteral("Items"));
        W.SetPacketRecords(10);
        W.Open();
    }
    TADOConnection Peer;
    Peer.SetConnectionString(Cs);
    Peer.Open();

    // Each figure is the best of Rounds runs: the machine is shared, and the best run is
    // the one least disturbed by others.
    QElapsedTimer T;
    double PeerRead = 1e9, OurRead = 1e9;
    qint64 Sum = 0, Sum2 = 0;
    for (int Round = 0; Round < Rounds; ++Round) {
        T.restart();
        Sum = 0;
        {
            QSqlQuery Q(Peer.Database());
            Q.setForwardOnly(true);
            Q.exec(QStringLiteral("SELECT Id, Name, Qty, Price FROM %1 ORDER BY Id").arg(Table));
            while (Q.next())
                Sum += Q.value(0).toLongLong() + Q.value(1).toString().size() + Q.value(2).toInt() + Q.value(3).toInt();
        }
        PeerRead = std::min(PeerRead, Ms(T));
        TClientDataSet Cds;
        Cds.SetRemoteServer(&Web);
        Cds.SetProviderName(QStringLiteral("Items"));
        T.restart();
        Cds.Open();
        Cds.FetchAll();
        Sum2 = 0;
        for (int r = 0; r < Cds.FetchedRowCount(); ++r) {
            Cds.SetActiveRow(r);
            Sum2 += Cds.Fields()[0]->AsLargeInt() + Cds.Fields()[1]->AsString().size() + Cds.Fields()[2]->AsInteger() + Cds.Fields()[3]->AsInteger();
        }
        OurRead = std::min(OurRead, Ms(T));
    }
    std::printf("%-10s read %d rows:   server %8.1f ms   QSqlQuery in-process %8.1f ms   ratio %.2f (goal <= 3, best of %d)%s\n",
                qPrintable(Label), ReadRows, OurRead, PeerRead, OurRead / PeerRead, Rounds, Sum == Sum2 ? "" : "  SUMS DIFFER");

    // 1,000 modified rows: the change log over HTTP against prepared UPDATEs in-process.
    double OurApply = 1e9, PeerApply = 1e9;
    int Errors = 0, PeerErrors = 0;
    for (int Round = 0; Round < Rounds; ++Round) {
        TClientDataSet Cds;
        Cds.SetRemoteServer(&Web);
        Cds.SetProviderName(QStringLiteral("Items"));
        Cds.Open();
        for (int i = 0; i < ModifiedRows; ++i, Cds.Next()) {
            Cds.Edit();
            Cds.Fields()[2]->SetAsInteger(Cds.Fields()[2]->AsInteger() + 1);
            Cds.Post();
        }
        T.restart();
        Errors += Cds.ApplyUpdates(0);
        OurApply = std::min(OurApply, Ms(T));
        T.restart();
        Peer.BeginTrans();
        {
            QSqlQuery Q(Peer.Database());
            Q.prepare(QStringLiteral("UPDATE %1 SET Qty = ? WHERE Id = ?").arg(Table));
            for (int i = 1; i <= ModifiedRows; ++i) {
                Q.addBindValue(i % 97 + 2 + Round);
                Q.addBindValue(i);
                if (!Q.exec())
                    ++PeerErrors;
            }
        }
        Peer.CommitTrans();
        PeerApply = std::min(PeerApply, Ms(T));
    }
    std::printf("%-10s apply %d rows:  server %8.1f ms   prepared, one transaction %8.1f ms   ratio %.2f (goal <= 2, best of %d), errors %d + %d\n",
                qPrintable(Label), ModifiedRows, OurApply, PeerApply, OurApply / PeerApply, Rounds, Errors, PeerErrors);
    S.Stop();
}

quint16 FreePort()
{
    QTcpServer S;
    S.listen(QHostAddress::LocalHost);
    return S.serverPort();
}

qint64 RssKiB(qint64 Pid)
{
    QFile F(QStringLiteral("/proc/%1/status").arg(Pid));
    if (!F.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& Line : F.readAll().split('\n'))
        if (Line.startsWith("VmRSS:"))
            return Line.mid(6).trimmed().split(' ').value(0).toLongLong();
    return 0;
}

struct TRound
{
    double Seconds = 0;
    QList<double> Latencies;
    int Errors = 0;
};

TRound LoadRound(const QString& Url)
{
    TRound R;
    QMutex Lock;
    QList<QThread*> Threads;
    QElapsedTimer All;
    All.start();
    for (int c = 0; c < Clients; ++c) {
        Threads << QThread::create([&, c] {
            TWebConnection Web;
            Web.SetURL(Url);
            Web.SetToken(Token);
            QList<double> Mine;
            int Failed = 0;
            for (int i = 0; i < RequestsPerClient; ++i) {
                QElapsedTimer T;
                T.start();
                try {
                    const QJsonObject A = Web.AppServerCall(QStringLiteral("Items"), QStringLiteral("GetRecords"),
                                                            {{QStringLiteral("count"), 20}, {QStringLiteral("token"), QString::number((c * 37 + i * 20) % 9000)}});
                    if (A.value(QStringLiteral("rows")).toArray().size() != 20)
                        ++Failed;
                } catch (const Exception&) {
                    ++Failed;
                }
                Mine << Ms(T);
            }
            QMutexLocker L(&Lock);
            R.Latencies += Mine;
            R.Errors += Failed;
        });
        Threads.last()->start();
    }
    for (QThread* T : Threads) {
        T->wait();
        delete T;
    }
    R.Seconds = All.nsecsElapsed() / 1e9;
    std::sort(R.Latencies.begin(), R.Latencies.end());
    return R;
}

void Load(const QString& Label, const QString& Cs, const QString& Table, const QString& Self)
{
    const QString Nginx = QStringLiteral("/usr/sbin/nginx");
    const bool Balanced = QFile::exists(Nginx);
    QList<QProcess*> Servers;
    QList<quint16> Ports;
    for (int i = 0; i < (Balanced ? 2 : 1); ++i) {
        auto* P = new QProcess;
        const quint16 Port = FreePort();
        P->start(Self, {QStringLiteral("--serve"), Cs, Table, QString::number(Port)});
        P->waitForReadyRead(10000);  // "ready"
        Servers << P;
        Ports << Port;
    }
    QTemporaryDir Dir;
    QProcess Proxy;
    QString Url = QStringLiteral("http://127.0.0.1:%1").arg(Ports[0]);
    if (Balanced) {
        const quint16 Port = FreePort();
        QString Conf = QStringLiteral("%1daemon off; worker_processes 1; pid %2/nginx.pid; error_log %2/error.log;\n"
                                      "events { worker_connections 1024; }\n"
                                      "http { access_log off; client_body_temp_path %2/b; proxy_temp_path %2/p;"
                                      " fastcgi_temp_path %2/f; uwsgi_temp_path %2/u; scgi_temp_path %2/s;\n"
                                      " upstream kesh { server 127.0.0.1:%3; server 127.0.0.1:%4; keepalive 32; }\n"
                                      " server { listen 127.0.0.1:%5; location / { proxy_pass http://kesh;"
                                      " proxy_http_version 1.1; proxy_set_header Connection \"\"; } } }\n")
                           .arg(geteuid() == 0 ? QStringLiteral("user root;\n") : QString(), Dir.path())
                           .arg(Ports[0]).arg(Ports[1]).arg(Port);
        QFile F(Dir.filePath(QStringLiteral("nginx.conf")));
        F.open(QIODevice::WriteOnly);
        F.write(Conf.toUtf8());
        F.close();
        Proxy.start(Nginx, {QStringLiteral("-c"), F.fileName(), QStringLiteral("-p"), Dir.path()});
        QThread::msleep(500);
        Url = QStringLiteral("http://127.0.0.1:%1").arg(Port);
    }
    auto Rss = [&] {
        qint64 Total = 0;
        for (QProcess* P : Servers)
            Total += RssKiB(P->processId());
        return Total;
    };
    const TRound First = LoadRound(Url);
    const qint64 Rss1 = Rss();
    const TRound Second = LoadRound(Url);
    const qint64 Rss2 = Rss();
    for (const TRound* R : {&First, &Second}) {
        const int N = int(R->Latencies.size());
        std::printf("%-10s load %s, %d clients x %d: %7.0f requests/s   p99 %6.1f ms   errors %d\n", qPrintable(Label),
                    Balanced ? "nginx -> 2 servers" : "1 server", Clients, RequestsPerClient, N / R->Seconds,
                    N ? R->Latencies[std::min(N - 1, int(N * 0.99))] : 0.0, R->Errors);
    }
    std::printf("%-10s server memory: %lld KiB after round 1, %lld KiB after round 2 (%+.1f%%, goal within 10%%)\n",
                qPrintable(Label), Rss1, Rss2, Rss1 ? 100.0 * (Rss2 - Rss1) / Rss1 : 0.0);
    if (Balanced) {
        Proxy.terminate();
        Proxy.waitForFinished(5000);
    }
    for (QProcess* P : Servers) {
        P->terminate();
        P->waitForFinished(5000);
        delete P;
    }
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication App(argc, argv);
    const QStringList Args = App.arguments();
    if (Args.size() == 5 && Args[1] == QLatin1String("--serve")) {
        TAppServer S;
        StartServer(S, Args[2], Args[3], Args[4].toInt());
        std::printf("ready\n");
        std::fflush(stdout);
        return App.exec();  // ended by SIGTERM
    }
    QTemporaryDir Dir;
    const QString Table = QStringLiteral("kesh_bench_%1").arg(QCoreApplication::applicationPid());
    const QString Lite = QStringLiteral("Driver=QSQLITE;Database=") + Dir.filePath(QStringLiteral("bench.db"));
    ReadAndApply(QStringLiteral("SQLite"), Lite, Table);
    Load(QStringLiteral("SQLite"), Lite, Table, Args[0]);
    const QString Pg = qEnvironmentVariable("KESH_TEST_PG");
    if (!Pg.isEmpty()) {
        ReadAndApply(QStringLiteral("PostgreSQL"), Pg, Table);
        Load(QStringLiteral("PostgreSQL"), Pg, Table, Args[0]);
        TADOConnection C;
        C.SetConnectionString(Pg);
        C.Open();
        C.Execute(QStringLiteral("DROP TABLE %1").arg(Table));
    } else {
        std::printf("PostgreSQL: KESH_TEST_PG is not set, skipped\n");
    }
    return 0;
}
