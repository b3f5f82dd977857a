// Datasets against Qt's own SQL classes on a 1,000,000-row SQLite table:
//   open and reach the first record   TADOTable            vs QSqlQueryModel (first rows)
//   walk every row                    TADOTable::Next      vs forward-only QSqlQuery
//   10,000 look-ups by key            TQxAdoConnection::DLookup vs QSqlQuery with the same text
//   peak memory with every row read   TADOTable (Last)     vs QSqlQueryModel (fetchMore to the end)
// and, with the PostgreSQL server of KESH_TEST_PG, on the same rows there:
//   open and reach the first record   TADOTable on PostgreSQL vs TADOTable on SQLite
//   memory after the first record     TADOTable on PostgreSQL vs TADOTable on SQLite
//   walk every row                    TADOTable::Next      vs forward-only QSqlQuery on PostgreSQL
// (with a scrollable QSqlQuery, which receives the whole result first, for reference).
// Memory is measured in child processes (VmHWM), one per contender, so neither sees the other.
#include <Kesh_AdoDB.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlQueryModel>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <cstdio>
#include <functional>

using namespace Kesh;

namespace {

const int Rows = 1000000;
const int Lookups = 10000;

void CreateTable(const QString& File)
{
    QSqlDatabase Db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("bench-make"));
    Db.setDatabaseName(File);
    Db.open();
    QSqlQuery Q(Db);
    Q.exec(QStringLiteral("CREATE TABLE Items (Item_id INTEGER PRIMARY KEY, Name_a TEXT, Name_e TEXT, Price REAL, Qty INTEGER)"));
    Db.transaction();
    Q.prepare(QStringLiteral("INSERT INTO Items VALUES (?, ?, ?, ?, ?)"));
    for (int I = 1; I <= Rows; ++I) {
        Q.addBindValue(I);
        Q.addBindValue(QStringLiteral("صنف %1").arg(I));
        Q.addBindValue(QStringLiteral("Item %1").arg(I));
        Q.addBindValue(I * 0.25);
        Q.addBindValue(I % 97);
        Q.exec();
    }
    Db.commit();
    Q.clear();
    Db.close();
    Db = QSqlDatabase();
    QSqlDatabase::removeDatabase(QStringLiteral("bench-make"));
}

// Best of Runs, in milliseconds.
double Time(int Runs, const std::function<void()>& Work)
{
    double Best = 1e300;
    for (int R = 0; R < Runs; ++R) {
        QElapsedTimer T;
        T.start();
        Work();
        Best = qMin(Best, T.nsecsElapsed() / 1e6);
    }
    return Best;
}

long PeakKiB()
{
    QFile Status(QStringLiteral("/proc/self/status"));
    if (!Status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& Line : Status.readAll().split('\n'))
        if (Line.startsWith("VmHWM:"))
            return Line.mid(6).trimmed().split(' ').first().toLong();
    return -1;
}

QString Connection(const QString& File) { return QStringLiteral("Driver=QSQLITE;Database=") + File; }

// Child process: open Table on the first record one way and print the growth of the peak
// memory from just after connecting ("first-sqlite" on File, "first-pg" and "buffered-pg"
// on KESH_TEST_PG).
int FirstRecordChild(const QString& Who, const QString& File, const QString& Table)
{
    TADOConnection Conn;
    Conn.SetConnectionString(Who == QLatin1String("first-sqlite") ? Connection(File) : qEnvironmentVariable("KESH_TEST_PG"));
    Conn.Open();
    const long Base = PeakKiB();
    int Id = -1;
    if (Who == QLatin1String("buffered-pg")) {  // how the datasets read PostgreSQL before
        QSqlQuery Q(Conn.Database());
        Q.exec(QStringLiteral("SELECT * FROM ") + Table);
        if (Q.next())
            Id = Q.value(0).toInt();
        std::printf("%ld %d\n", PeakKiB() - Base, Id);
        return 0;
    }
    TADOTable T;
    T.SetConnection(&Conn);
    T.SetTableName(Table);
    T.Open();
    Id = T.Fields().first()->AsInteger();
    std::printf("%ld %d\n", PeakKiB() - Base, Id);
    return 0;
}

// Child process: read every row one way and print the peak memory.
int MemoryChild(const QString& Who, const QString& File)
{
    long Base = PeakKiB();
    if (Who == QLatin1String("kesh")) {
        TADOConnection Conn;
        Conn.SetConnectionString(Connection(File));
        Conn.Open();
        Base = PeakKiB();
        TADOTable Table;
        Table.SetConnection(&Conn);
        Table.SetTableName(QStringLiteral("Items"));
        Table.Open();
        Table.Last();
        std::printf("%ld %d\n", PeakKiB() - Base, Table.RecordCount());
    } else {
        QSqlDatabase Db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("mem"));
        Db.setDatabaseName(File);
        Db.open();
        Base = PeakKiB();
        QSqlQueryModel Model;
        Model.setQuery(QStringLiteral("SELECT * FROM Items"), Db);
        while (Model.canFetchMore())
            Model.fetchMore();
        std::printf("%ld %d\n", PeakKiB() - Base, Model.rowCount());
    }
    return 0;
}

long MeasureChild(const QString& Who, const QString& File, int& RowsRead, const QString& Table = QString())
{
    QProcess P;
    QStringList Args = {QStringLiteral("--memory"), Who, File};
    if (!Table.isEmpty())
        Args << Table;
    P.start(QCoreApplication::applicationFilePath(), Args);
    P.waitForFinished(-1);
    const QList<QByteArray> Parts = P.readAllStandardOutput().trimmed().split(' ');
    RowsRead = Parts.size() > 1 ? Parts[1].toInt() : -1;
    return Parts.first().toLong();
}

void Report(const char* What, const char* Peer, double Ours, double Theirs, double Goal, const char* Unit)
{
    const double Ratio = Ours / Theirs;
    std::printf("%-34s Kesh %10.2f %s   %-26s %10.2f %s   ratio %.2f (goal <= %.2f) %s\n", What, Ours, Unit, Peer, Theirs, Unit,
                Ratio, Goal, Ratio <= Goal ? "met" : "NOT MET");
}

// The same rows on the PostgreSQL server of KESH_TEST_PG; returns whether the sums agree.
bool BenchPostgres(const QString& File, TADOConnection& Sqlite, qint64 SqliteSum)
{
    const QString Table = QStringLiteral("kesh_bench_items_%1").arg(QCoreApplication::applicationPid());
    TADOConnection Conn, RawConn;
    for (TADOConnection* C : {&Conn, &RawConn}) {
        C->SetConnectionString(qEnvironmentVariable("KESH_TEST_PG"));
        C->Open();
    }
    std::printf("\nCreating a %d-row PostgreSQL table...\n", Rows);
    Conn.Execute(QStringLiteral("CREATE TABLE %1 (Item_id INTEGER PRIMARY KEY, Name_a TEXT, Name_e TEXT, Price DOUBLE PRECISION, "
                                "Qty INTEGER)").arg(Table));
    Conn.Execute(QStringLiteral("INSERT INTO %1 SELECT i, 'صنف ' || i, 'Item ' || i, i * 0.25, i % 97 "
                                "FROM generate_series(1, %2) i").arg(Table).arg(Rows));
    Conn.Execute(QStringLiteral("VACUUM ANALYZE ") + Table);
    const QSqlDatabase Raw = RawConn.Database();

    int Checksum = 0;
    auto OpenFirst = [&](TADOConnection& C, const QString& Name) {
        return [&C, Name, &Checksum] {
            TADOTable T;
            T.SetConnection(&C);
            T.SetTableName(Name);
            T.Open();
            Checksum += T.Fields().first()->AsInteger();
        };
    };
    const double OpenPg = Time(7, OpenFirst(Conn, Table));
    const double OpenSqlite = Time(7, OpenFirst(Sqlite, QStringLiteral("Items")));
    const double OpenBuffered = Time(3, [&] {
        QSqlQuery Q(Raw);
        Q.exec(QStringLiteral("SELECT * FROM ") + Table);
        if (Q.next())
            Checksum += Q.value(0).toInt();
    });

    qint64 SumKesh = 0, SumQt = 0, SumQtAll = 0;
    const double WalkKesh = Time(5, [&] {
        SumKesh = 0;
        TADOTable T;
        T.SetConnection(&Conn);
        T.SetTableName(Table);
        T.Open();
        TField* Qty = T.FieldByName(QStringLiteral("Qty"));
        while (!T.Eof()) {
            SumKesh += Qty->AsInteger();
            T.Next();
        }
    });
    auto WalkQuery = [&](qint64& Sum, bool Every) {
        return [&Sum, Every, &Raw, &Table] {
            Sum = 0;
            QSqlQuery Q(Raw);
            Q.setForwardOnly(true);
            Q.exec(QStringLiteral("SELECT * FROM ") + Table);
            const int Qty = Q.record().indexOf(QStringLiteral("qty"));
            const int Columns = Q.record().count();
            while (Q.next()) {
                Sum += Q.value(Qty).toInt();
                for (int c = 0; Every && c < Columns; ++c)
                    Q.value(c);
            }
        };
    };
    const double WalkQt = Time(5, WalkQuery(SumQt, false));
    const double WalkQtAll = Time(5, WalkQuery(SumQtAll, true));

    int IdPg = 0, IdSqlite = 0, IdBuffered = 0;
    const long MemPg = MeasureChild(QStringLiteral("first-pg"), File, IdPg, Table);
    const long MemSqlite = MeasureChild(QStringLiteral("first-sqlite"), File, IdSqlite, QStringLiteral("Items"));
    const long MemBuffered = MeasureChild(QStringLiteral("buffered-pg"), File, IdBuffered, Table);
    Conn.Execute(QStringLiteral("DROP TABLE ") + Table);

    std::printf("\nPostgreSQL, %d rows:\n", Rows);
    Report("open + first record", "TADOTable on SQLite", OpenPg, OpenSqlite, 2.0, "ms");
    Report("memory after the first record", "TADOTable on SQLite", MemPg / 1024.0, std::max(MemSqlite, 1L) / 1024.0, 2.0, "MiB");
    Report("walk 1,000,000 rows", "forward-only QSqlQuery", WalkKesh, WalkQt, 1.5, "ms");
    std::printf("for reference: a forward-only QSqlQuery reading every column %.2f ms (ratio %.2f); a scrollable "
                "QSqlQuery, as the datasets read PostgreSQL before: open + first record %.2f ms, memory %.2f MiB\n",
                WalkQtAll, WalkKesh / WalkQtAll, OpenBuffered, MemBuffered / 1024.0);
    const bool Same = SumKesh == SqliteSum && SumQt == SqliteSum && SumQtAll == SqliteSum && IdPg == 1 && IdSqlite == 1 && IdBuffered == 1;
    std::printf("checks: sums %lld/%lld/%lld, first ids %d/%d/%d: %s (checksum %d)\n", (long long)SumKesh, (long long)SumQt,
                (long long)SqliteSum, IdPg, IdSqlite, IdBuffered, Same ? "equal" : "DIFFERENT", Checksum);
    return Same;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication App(argc, argv);
    if (argc == 4 && qstrcmp(argv[1], "--memory") == 0)
        return MemoryChild(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]));
    if (argc == 5 && qstrcmp(argv[1], "--memory") == 0)
        return FirstRecordChild(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]), QString::fromLocal8Bit(argv[4]));

    QTemporaryDir Dir;
    const QString File = Dir.filePath(QStringLiteral("bench.db"));
    std::printf("Creating a %d-row SQLite table...\n", Rows);
    CreateTable(File);

    TQxAdoConnection Conn;
    Conn.SetConnectionString(Connection(File));
    Conn.Open();
    QSqlDatabase Raw = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("raw"));
    Raw.setDatabaseName(File);
    Raw.open();

    // Open and reach the first record.
    int Checksum = 0;
    const double OpenKesh = Time(7, [&] {
        TADOTable Table;
        Table.SetConnection(&Conn);
        Table.SetTableName(QStringLiteral("Items"));
        Table.Open();
        Checksum += Table.FieldByName(QStringLiteral("Item_id"))->AsInteger();
    });
    const double OpenQt = Time(7, [&] {
        QSqlQueryModel Model;
        Model.setQuery(QStringLiteral("SELECT * FROM Items"), Raw);
        Checksum += Model.data(Model.index(0, 0)).toInt();
    });

    // Walk every row.
    qint64 SumKesh = 0, SumQt = 0;
    const double WalkKesh = Time(7, [&] {
        SumKesh = 0;
        TADOTable Table;
        Table.SetConnection(&Conn);
        Table.SetTableName(QStringLiteral("Items"));
        Table.Open();
        TField* Qty = Table.FieldByName(QStringLiteral("Qty"));
        while (!Table.Eof()) {
            SumKesh += Qty->AsInteger();
            Table.Next();
        }
    });
    const double WalkQt = Time(7, [&] {
        SumQt = 0;
        QSqlQuery Q(Raw);
        Q.setForwardOnly(true);
        Q.exec(QStringLiteral("SELECT * FROM Items"));
        const int Qty = Q.record().indexOf(QStringLiteral("Qty"));
        while (Q.next())
            SumQt += Q.value(Qty).toInt();
    });

    // Look-ups by key.
    qint64 LookKesh = 0, LookQt = 0;
    const double DLookupKesh = Time(7, [&] {
        LookKesh = 0;
        for (int I = 1; I <= Lookups; ++I)
            LookKesh += Conn.DLookup(QStringLiteral("Items"), QStringLiteral("Qty"), QStringLiteral("Item_id = %1").arg(I * 89)).toInt();
    });
    const double DLookupQt = Time(7, [&] {
        LookQt = 0;
        for (int I = 1; I <= Lookups; ++I) {
            QSqlQuery Q(Raw);
            Q.exec(QStringLiteral("Select Qty From Items Where (Item_id = %1)").arg(I * 89));
            if (Q.next() && !Q.value(0).isNull())
                LookQt += Q.value(0).toInt();
        }
    });

    int RowsKesh = 0, RowsQt = 0;
    const long MemKesh = MeasureChild(QStringLiteral("kesh"), File, RowsKesh);
    const long MemQt = MeasureChild(QStringLiteral("qt"), File, RowsQt);

    std::printf("\n");
    Report("open + first record", "QSqlQueryModel", OpenKesh, OpenQt, 1.2, "ms");
    Report("walk 1,000,000 rows", "forward-only QSqlQuery", WalkKesh, WalkQt, 1.5, "ms");
    Report("DLookup by key x 10,000", "QSqlQuery, same text", DLookupKesh, DLookupQt, 1.3, "ms");
    Report("peak memory, every row read", "QSqlQueryModel fetchMore", MemKesh / 1024.0, MemQt / 1024.0, 1.0, "MiB");
    const bool Same = SumKesh == SumQt && LookKesh == LookQt && RowsKesh == Rows && RowsQt == Rows;
    std::printf("\nchecks: sums %lld/%lld, look-ups %lld/%lld, rows %d/%d: %s (checksum %d)\n", (long long)SumKesh,
                (long long)SumQt, (long long)LookKesh, (long long)LookQt, RowsKesh, RowsQt, Same ? "equal" : "DIFFERENT", Checksum);

    bool SamePg = true;
    if (qEnvironmentVariableIsEmpty("KESH_TEST_PG"))
        std::printf("\nKESH_TEST_PG is not set: no PostgreSQL figures\n");
    else
        SamePg = BenchPostgres(File, Conn, SumQt);
    return Same && SamePg ? 0 : 1;
}
