#include "db_test_helper.h"
#include "platform/exceptions.h"
#include <QCoreApplication>
#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>

namespace KeshTest {

namespace {
int TableCounter = 0;
}

bool PostgresRequired() { return qEnvironmentVariable("CI").compare(QLatin1String("true"), Qt::CaseInsensitive) == 0; }

void AddDriverRows()
{
    QTest::addColumn<QString>("driver");
    QTest::newRow("sqlite") << QStringLiteral("sqlite");
    QTest::newRow("postgres") << QStringLiteral("postgres");
}

std::unique_ptr<TTestDatabase> TTestDatabase::Open(const QString& Driver, QString& Reason)
{
    std::unique_ptr<TTestDatabase> Db(new TTestDatabase);
    Db->m_driver = Driver;
    if (Driver == QLatin1String("sqlite")) {
        Db->m_dir = std::make_unique<QTemporaryDir>();
        if (!Db->m_dir->isValid()) {
            Reason = QStringLiteral("no temporary directory");
            return nullptr;
        }
        Db->m_connectionString = QStringLiteral("Driver=QSQLITE;Database=\"%1\"").arg(Db->m_dir->filePath(QStringLiteral("test.db")));
    } else if (Driver == QLatin1String("postgres")) {
        Db->m_connectionString = qEnvironmentVariable("KESH_TEST_PG");
        if (Db->m_connectionString.isEmpty()) {
            Reason = QStringLiteral("KESH_TEST_PG is not set: no PostgreSQL server to test against");
            return nullptr;
        }
    } else {
        Reason = QStringLiteral("unknown driver row ") + Driver;
        return nullptr;
    }
    Db->m_connection = std::make_unique<Kesh::TADOConnection>();
    Db->m_connection->SetConnectionString(Db->m_connectionString);
    try {
        Db->m_connection->Open();
    } catch (const Kesh::Exception& E) {
        Reason = QStringLiteral("cannot connect (%1): %2").arg(Driver, E.Message);
        return nullptr;
    }
    return Db;
}

std::unique_ptr<TTestDatabase> TTestDatabase::OpenPrivate(const QString& Driver, QString& Reason)
{
    std::unique_ptr<TTestDatabase> Db = Open(Driver, Reason);
    if (!Db || !Db->IsPostgres())
        return Db;
    const QString Name = QStringLiteral("kesh_db%1_%2").arg(QCoreApplication::applicationPid()).arg(++TableCounter);
    if (!Db->Exec(QStringLiteral("CREATE DATABASE ") + Name)) {
        Reason = QStringLiteral("cannot create the database ") + Name;
        return nullptr;
    }
    QString Private = Db->m_connectionString;
    static const QRegularExpression DatabaseKey(QStringLiteral("(^|;)\\s*Database\\s*=[^;]*"), QRegularExpression::CaseInsensitiveOption);
    if (Private.contains(DatabaseKey))
        Private.replace(DatabaseKey, QStringLiteral("\\1Database=") + Name);
    else
        Private += QStringLiteral(";Database=") + Name;
    auto Connection = std::make_unique<Kesh::TADOConnection>();
    Connection->SetConnectionString(Private);
    try {
        Connection->Open();
    } catch (const Kesh::Exception& E) {
        Db->Exec(QStringLiteral("DROP DATABASE ") + Name);
        Reason = QStringLiteral("cannot connect to %1: %2").arg(Name, E.Message);
        return nullptr;
    }
    // The server's connection stays open to drop the private database at the end.
    Db->m_admin = std::move(Db->m_connection);
    Db->m_connection = std::move(Connection);
    Db->m_connectionString = Private;
    Db->m_privateDatabase = Name;
    return Db;
}

TTestDatabase::~TTestDatabase()
{
    if (!m_privateDatabase.isEmpty()) {
        m_second.reset();
        m_connection.reset();
        try {
            m_admin->Execute(QStringLiteral("DROP DATABASE %1 WITH (FORCE)").arg(m_privateDatabase));
        } catch (const Kesh::Exception& E) {
            qWarning("Cannot drop %s: %s", qPrintable(m_privateDatabase), qPrintable(E.Message));
        }
        return;
    }
    if (m_second)
        m_second->Close();
    if (m_connection && m_connection->Connected()) {
        for (const QString& T : std::as_const(m_tables)) {
            try {
                m_connection->Execute(QStringLiteral("DROP TABLE ") + T);
            } catch (const Kesh::Exception&) {
                // The table went with the test's own clean-up.
            }
        }
    }
    m_second.reset();
    m_connection.reset();
}

Kesh::TADOConnection* TTestDatabase::OpenSecondConnection()
{
    if (!m_second) {
        m_second = std::make_unique<Kesh::TADOConnection>();
        m_second->SetConnectionString(m_connectionString);
        m_second->Open();
    }
    return m_second.get();
}

QString TTestDatabase::NewTable(const QString& Columns)
{
    const QString Name = QStringLiteral("kesh_t%1_%2").arg(QCoreApplication::applicationPid()).arg(++TableCounter);
    QString Cols = Columns;
    Cols.replace(QLatin1String("%AUTOKEY%"), IsPostgres() ? QStringLiteral("SERIAL PRIMARY KEY")
                                                          : QStringLiteral("INTEGER PRIMARY KEY AUTOINCREMENT"));
    if (!Exec(QStringLiteral("CREATE TABLE %1 (%2)").arg(Name, Cols)))
        return QString();
    m_tables << Name;
    return Name;
}

bool TTestDatabase::Exec(const QString& Sql)
{
    try {
        m_connection->Execute(Sql);
        return true;
    } catch (const Kesh::Exception& E) {
        qWarning("SQL failed: %s\n%s", qPrintable(Sql), qPrintable(E.Message));
        return false;
    }
}

QVariant TTestDatabase::Scalar(const QString& Sql)
{
    QSqlQuery Q(m_connection->Database());
    if (!Q.exec(Sql) || !Q.next()) {
        qWarning("SQL failed: %s\n%s", qPrintable(Sql), qPrintable(Q.lastError().text()));
        return QVariant();
    }
    return Q.value(0);
}

} // namespace KeshTest
