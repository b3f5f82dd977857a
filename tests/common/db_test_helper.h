// Kesh for Qt tests — one database per driver row: a temporary SQLite file or the
// PostgreSQL server named in KESH_TEST_PG, with fresh tables that are dropped afterwards.
#pragma once
#include "platform/data/ado_connection.h"
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

namespace KeshTest {

/// A test database: its connection, and the tables made for one test (dropped at the end).
class TTestDatabase
{
public:
    /// Opens "sqlite" (a file in a temporary directory) or "postgres" (KESH_TEST_PG).
    /// Returns nullptr with Reason set when it cannot.
    static std::unique_ptr<TTestDatabase> Open(const QString& Driver, QString& Reason);
    /// Like Open, but on PostgreSQL in a database of its own, made now and dropped at the
    /// end: for tests whose tables have fixed names (the sample database).
    static std::unique_ptr<TTestDatabase> OpenPrivate(const QString& Driver, QString& Reason);
    ~TTestDatabase();

    QString Driver() const { return m_driver; }
    bool IsPostgres() const { return m_driver == QLatin1String("postgres"); }
    Kesh::TADOConnection* Connection() const { return m_connection.get(); }
    QString ConnectionString() const { return m_connectionString; }
    /// A second, independent connection to the same database (owned by this object).
    Kesh::TADOConnection* OpenSecondConnection();

    /// A new table with a unique name; Columns is the column list of CREATE TABLE, where
    /// "%AUTOKEY%" stands for an auto-increment integer primary key of the driver.
    QString NewTable(const QString& Columns);
    /// Runs a statement on the main connection; fails the test on error (returns false).
    bool Exec(const QString& Sql);
    /// The first column of the first row of a query on a fresh connection-independent read.
    QVariant Scalar(const QString& Sql);

private:
    TTestDatabase() = default;
    QString m_driver;
    QString m_connectionString;
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<Kesh::TADOConnection> m_connection;
    std::unique_ptr<Kesh::TADOConnection> m_second;
    QStringList m_tables;
    QString m_privateDatabase;  // dropped through m_admin, on KESH_TEST_PG's database, at the end
    std::unique_ptr<Kesh::TADOConnection> m_admin;
};

/// Adds the data column "driver" with the rows "sqlite" and "postgres".
void AddDriverRows();
/// Whether a missing PostgreSQL server fails the test (CI=true) instead of skipping it.
bool PostgresRequired();

} // namespace KeshTest

/// Opens the database of the current "driver" row into Var, or skips / fails the test.
#define KESH_OPEN_TEST_DB(Var) KESH_OPEN_TEST_DB_WITH(Var, Open)
/// The same with a PostgreSQL database of the test's own (TTestDatabase::OpenPrivate).
#define KESH_OPEN_PRIVATE_TEST_DB(Var) KESH_OPEN_TEST_DB_WITH(Var, OpenPrivate)
#define KESH_OPEN_TEST_DB_WITH(Var, How)                                                  \
    QFETCH(QString, driver);                                                              \
    QString Var##Reason;                                                                  \
    std::unique_ptr<KeshTest::TTestDatabase> Var = KeshTest::TTestDatabase::How(driver, Var##Reason); \
    if (!Var) {                                                                           \
        if (driver == QLatin1String("postgres") && !KeshTest::PostgresRequired()          \
            && qEnvironmentVariableIsEmpty("KESH_TEST_PG"))                               \
            QSKIP(qPrintable(Var##Reason));                                               \
        QFAIL(qPrintable(Var##Reason));                                                   \
    }
