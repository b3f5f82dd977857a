// Footer totals on a 1,000,000-row SQLite table:
//   open + first record with totals of three columns   vs the same without totals (goal <= 1.5)
//   time until the totals are ready                   vs the classic walk First … Next
//   Post / Delete of one row until the totals change  (goal <= 10 ms), and the same writes
//   without totals
// The totals are checked against the exact sums and the walk.
#include <Kesh_AdoDB.h>

#include "items_table.h"
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QThread>
#include <QThreadPool>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using namespace Kesh;

namespace {

const int Rows = 1000000;
const QStringList Totalled = {QStringLiteral("Price"), QStringLiteral("Qty"), QStringLiteral("Amount")};

// Best of Runs, in milliseconds; Between runs untimed after each run.
double Time(int Runs, const std::function<void()>& Work, const std::function<void()>& Between = {})
{
    double Best = 1e300;
    for (int R = 0; R < Runs; ++R) {
        QElapsedTimer T;
        T.start();
        Work();
        Best = std::min(Best, T.nsecsElapsed() / 1e6);
        if (Between)
            Between();
    }
    return Best;
}

double Median(std::vector<double> V)
{
    std::sort(V.begin(), V.end());
    return V.empty() ? 0 : V[V.size() / 2];
}

void WaitReady(TDataSetTotals& Totals)
{
    while (!Totals.Ready())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication App(argc, argv);
    QTemporaryDir Dir;
    const QString File = Dir.filePath(QStringLiteral("bench.db"));
    std::printf("Creating a %d-row SQLite table...\n", Rows);
    CreateItemsTable(File, Rows);

    TADOConnection Conn;
    Conn.SetConnectionString(QStringLiteral("Driver=QSQLITE;Database=") + File);
    Conn.Open();
    auto Idle = [] {  // no sum left running between runs (the pool keeps its threads)
        QCoreApplication::processEvents();
        while (QThreadPool::globalInstance()->activeThreadCount() > 0)
            QThread::msleep(1);
    };

    // Open and reach the first record, without and with totals.
    qint64 Checksum = 0;
    const double OpenPlain = Time(9, [&] {
        TADOTable Table;
        Table.SetConnection(&Conn);
        Table.SetTableName(QStringLiteral("Items"));
        Table.Open();
        Checksum += Table.FieldByName(QStringLiteral("Qty"))->AsInteger();
    }, Idle);
    const double OpenTotals = Time(9, [&] {
        TADOTable Table;
        Table.SetConnection(&Conn);
        Table.SetTableName(QStringLiteral("Items"));
        Table.Open();
        TDataSetTotals Totals;
        Totals.SetFieldNames(Totalled);
        Totals.SetDataSet(&Table);
        Checksum += Table.FieldByName(QStringLiteral("Qty"))->AsInteger();
    }, Idle);

    // Until the totals are ready, and the walk they replace.
    TADOTable Table;
    Table.SetConnection(&Conn);
    Table.SetTableName(QStringLiteral("Items"));
    TDataSetTotals Totals;
    Totals.SetFieldNames(Totalled);
    const double Ready = Time(3, [&] {
        Table.Open();
        Totals.SetDataSet(&Table);
        WaitReady(Totals);
    }, [&] {
        Totals.SetDataSet(nullptr);
        Table.Close();
    });
    Table.Open();
    Totals.SetDataSet(&Table);
    WaitReady(Totals);
    const long double Before[3] = {Totals.Value(0), Totals.Value(1), Totals.Value(2)};
    double Walked[3] = {0, 0, 0};
    const double Walk = Time(1, [&] {
        TField* F[3] = {Table.FieldByName(Totalled[0]), Table.FieldByName(Totalled[1]), Table.FieldByName(Totalled[2])};
        Table.DisableControls();
        Table.First();
        while (!Table.Eof()) {
            for (int i = 0; i < 3; ++i)
                Walked[i] += F[i]->AsFloat();
            Table.Next();
        }
        Table.EnableControls();
    });
    // Exact sums: Price = 0.25 * n(n+1)/2, Qty = sum of i % 97, Amount = sum of (i % 100000) / 100.
    qint64 Qty = 0, Cents = 0;
    for (qint64 I = 1; I <= Rows; ++I) {
        Qty += I % 97;
        Cents += I % 100000;
    }
    const long double Exact[3] = {0.25L * Rows * (Rows + 1.0L) / 2, static_cast<long double>(Qty),
                                  static_cast<long double>(Cents) / 100};

    // Post and Delete of one row until the totals change. Opened again so that the first
    // write also pays for finishing SQLite's pending read (every write on the connection does).
    Totals.SetDataSet(nullptr);
    Table.Close();
    Table.Open();
    Totals.SetDataSet(&Table);
    WaitReady(Totals);
    QElapsedTimer Clock;
    qint64 Start = 0, Written = 0, Changed = 0;
    QObject::connect(&Table, &TDataSet::RowWritten, [&] { Written = Clock.nsecsElapsed(); });
    // The totals follow the dataset through a connection made before this one's: link again.
    Totals.SetDataSet(nullptr);
    Totals.SetDataSet(&Table);
    WaitReady(Totals);
    QObject::connect(&Totals, &TDataSetTotals::Changed, [&] { Changed = Clock.nsecsElapsed(); });
    Clock.start();
    std::vector<double> PostAll, PostOwn, DeleteAll, DeleteOwn, PostPlain, DeletePlain;
    long double Expected[3] = {Before[0], Before[1], Before[2]};
    // The same writes without totals go through a second table on the same connection, to
    // rows of its own (from row 500,000 on), so that neither table sees the other's.
    TADOTable Plain;
    Plain.SetConnection(&Conn);
    Plain.SetTableName(QStringLiteral("Items"));
    Plain.Open();
    // Post then Delete of one row: the times from the call to the new totals (or to the
    // return of the call, without totals).
    auto Write = [&](TADOTable& On, int R, bool WithTotals) {
        const int Base = WithTotals ? 0 : 500000;
        On.SetRecNo(Base + 1 + R * 37);
        const long double OldQty = On.FieldByName(QStringLiteral("Qty"))->AsInteger();
        On.Edit();
        On.FieldByName(QStringLiteral("Qty"))->SetAsInteger(1000 + R);
        Start = Clock.nsecsElapsed();
        On.Post();
        const qint64 PostEnd = WithTotals ? Changed : Clock.nsecsElapsed();
        const qint64 PostWritten = Written;
        On.SetRecNo(Base + 2 + R * 41);
        long double Deleted[3];
        for (int i = 0; i < 3; ++i)
            Deleted[i] = On.FieldByName(Totalled[i])->AsFloat();
        const qint64 DeleteStart = Clock.nsecsElapsed();
        On.Delete();
        const qint64 DeleteEnd = WithTotals ? Changed : Clock.nsecsElapsed();
        (WithTotals ? PostAll : PostPlain).push_back((PostEnd - Start) / 1e6);
        (WithTotals ? DeleteAll : DeletePlain).push_back((DeleteEnd - DeleteStart) / 1e6);
        if (WithTotals) {
            PostOwn.push_back((PostEnd - PostWritten) / 1e6);
            DeleteOwn.push_back((DeleteEnd - Written) / 1e6);
            Expected[1] += 1000 + R - OldQty;
            for (int i = 0; i < 3; ++i)
                Expected[i] -= Deleted[i];
        }
    };
    Write(Table, 0, true);  // reads the rest of the rows of both tables first
    const double FirstPost = PostAll.front();
    PostAll.clear();
    DeleteAll.clear();
    // Writes with and without totals in turn, so that the disk's moods fall on both alike.
    for (int R = 1; R <= 20; ++R) {
        Write(Table, R, true);
        Write(Plain, R, false);
    }
    bool FollowsWrites = Totals.Ready();
    for (int i = 0; i < 3; ++i)
        FollowsWrites = FollowsWrites && std::abs(double(Totals.Value(i) - Expected[i])) <= 1e-6;
    Totals.Recalculate();  // every row is read by now: summed in memory, the same
    for (int i = 0; i < 3; ++i)
        FollowsWrites = FollowsWrites && Totals.Ready() && std::abs(double(Totals.Value(i) - Expected[i])) <= 1e-6;
    const bool Follows = FollowsWrites;

    auto Report = [](const char* What, double Ours, const char* Peer, double Theirs, double Goal) {
        const double Ratio = Ours / Theirs;
        std::printf("%-44s %10.3f ms   %-22s %10.3f ms   ratio %.2f (goal <= %.2f) %s\n", What, Ours, Peer, Theirs, Ratio,
                    Goal, Ratio <= Goal ? "met" : "NOT MET");
    };
    auto Latency = [](const char* What, double Ms, double Goal) {
        std::printf("%-44s %10.4f ms   (goal <= %.0f ms) %s\n", What, Ms, Goal, Ms <= Goal ? "met" : "NOT MET");
    };
    std::printf("\n");
    Report("open + first record, totals of 3 columns", OpenTotals, "without totals", OpenPlain, 1.5);
    Report("until the totals are ready", Ready, "the classic walk", Walk, 1.0);
    Latency("Post of one row -> new totals (median of 20)", Median(PostAll), 10);
    Latency("Delete of one row -> new totals (median 20)", Median(DeleteAll), 10);
    std::printf("%-44s %10.4f ms / %.4f ms (post / delete, median)\n", "  of which after the row is written",
                Median(PostOwn), Median(DeleteOwn));
    std::printf("%-44s %10.4f ms / %.4f ms (post / delete, median)\n", "the same writes without totals",
                Median(PostPlain), Median(DeletePlain));
    std::printf("%-44s %10.3f ms   (the write first reads SQLite's pending rows)\n", "first Post after opening -> new totals",
                FirstPost);

    bool Same = true;
    std::printf("\nchecks (totals / exact / walk):\n");
    for (int i = 0; i < 3; ++i) {
        const bool ExactOk = i == 0 ? std::abs(double(Before[i] - Exact[i])) <= 1e-6 : Before[i] == Exact[i];
        const bool WalkOk = std::abs(double(Before[i]) - Walked[i]) <= 1e-9 * std::abs(Walked[i]);
        Same = Same && ExactOk && WalkOk;
        std::printf("  %-7s %.4Lf / %.4Lf / %.4f: %s\n", qPrintable(Totalled[i]), Before[i], Exact[i], Walked[i],
                    ExactOk && WalkOk ? "equal" : "DIFFERENT");
    }
    std::printf("  after 21 posts and 21 deletes the totals %s (checksum %lld)\n",
                Follows ? "equal the expected sums" : "DIFFER", (long long)Checksum);
    return Same && Follows ? 0 : 1;
}
