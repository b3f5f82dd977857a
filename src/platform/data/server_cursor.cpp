#include "server_cursor_p.h"
#include "ado_connection.h"
#include <QRegularExpression>
#include <QSqlError>

namespace Kesh::Detail {

namespace {

// Blocks grow from the first (a form's or grid's first rows) to this many rows per round trip.
constexpr int LargestBlock = 4096;

const QString Savepoint = QStringLiteral("kesh_open_cursor");

// Runs statements that return no rows (closing, undoing); false when one of them failed.
bool Quietly(const QSqlDatabase& Db, const QString& Sql)
{
    if (!Db.isOpen())
        return false;
    QSqlQuery Q(Db);
    if (!Q.exec(Sql))
        return false;
    while (Q.nextResult()) {
    }
    return !Q.lastError().isValid();
}

} // namespace

TServerCursor::TServerCursor(TADOConnection* Connection)
    : m_connection(Connection), m_session(Connection->CursorSession())
{
}

TServerCursor::~TServerCursor() { Close(); }

bool TServerCursor::Suits(const QString& Stripped)
{
    static const QRegularExpression Query(QStringLiteral("^[\\s(]*(SELECT|VALUES|TABLE|WITH)\\b"),
                                          QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression NotReadOnly(
        QStringLiteral("\\b(INTO|INSERT|UPDATE|DELETE|MERGE|FOR\\s+SHARE|FOR\\s+KEY\\s+SHARE)\\b"),
        QRegularExpression::CaseInsensitiveOption);
    return !Stripped.contains(QLatin1Char(';')) && Query.match(Stripped).hasMatch() && !NotReadOnly.match(Stripped).hasMatch();
}

void TCursorSession::EndReading(const QSqlDatabase& Db, bool Commit)
{
    if (!reading)
        return;
    // A commit that the server turns into a rollback (after an error) loses the cursors too.
    if (!Commit || !Db.isOpen() || !QSqlDatabase(Db).commit()) {
        Quietly(Db, QStringLiteral("ROLLBACK"));
        reading->rolledBack = true;
    }
    reading.reset();
}

void TCursorSession::EndApplication(bool Committed)
{
    if (application && !Committed)
        application->rolledBack = true;
    application.reset();
}

void TServerCursor::Open(const QString& Sql, int Rows)
{
    const bool App = m_connection->InTransaction();
    const bool Begin = !App && !m_session.reading;
    const bool Nested = !App && m_session.reading;  // other cursors live in the reading transaction
    m_name = QStringLiteral("kesh_cursor_%1").arg(++m_session.names);
    m_block = std::max(Rows, 1);
    // One round trip: a failing DECLARE in a shared reading transaction is undone to the
    // savepoint, so the other cursors read on.
    QString Text = Begin ? QStringLiteral("BEGIN;\n") : Nested ? QStringLiteral("SAVEPOINT %1;\n").arg(Savepoint) : QString();
    Text += QStringLiteral("DECLARE %1 NO SCROLL CURSOR WITH HOLD FOR\n%2\n;\nFETCH %3 FROM %1").arg(m_name, Sql).arg(m_block);
    if (Nested)
        Text += QStringLiteral(";\nRELEASE SAVEPOINT %1").arg(Savepoint);

    const QSqlDatabase Db = m_connection->Database();
    m_query = std::make_unique<QSqlQuery>(Db);
    bool Ok = m_query->exec(Text);
    while (Ok && !m_query->isSelect())
        Ok = m_query->nextResult();
    if (!Ok) {
        const QSqlError Error = m_query->lastError();
        m_query.reset();
        if (Begin)
            Quietly(Db, QStringLiteral("ROLLBACK"));
        else if (Nested)
            Quietly(Db, QStringLiteral("ROLLBACK TO SAVEPOINT %1; RELEASE SAVEPOINT %1").arg(Savepoint));
        TADOConnection::RaiseSqlError(Error);
    }
    if (Begin)
        m_session.reading = std::make_shared<TCursorTransaction>();
    m_transaction = App ? m_session.application : m_session.reading;
    if (!m_transaction)  // a transaction begun past TADOConnection: held like one of ours
        m_transaction = std::make_shared<TCursorTransaction>();
    ++m_transaction->cursors;
    m_open = true;
    if (m_query->size() < m_block)
        Finished();
}

void TServerCursor::FetchNext(int Rows)
{
    if (!m_open)
        return;
    m_block = std::max(Rows, std::min(m_block * 4, LargestBlock));
    // A failing FETCH (a division by zero in row 5000) would abort the reading transaction
    // and take the other cursors in it along: a savepoint keeps them.
    const bool Guarded = m_session.reading && !m_connection->InTransaction()
                         && m_session.reading->cursors > (m_transaction == m_session.reading ? 1 : 0);
    QString Text = QStringLiteral("FETCH %1 FROM %2").arg(m_block).arg(m_name);
    if (Guarded)
        Text = QStringLiteral("SAVEPOINT %1;\n%2;\nRELEASE SAVEPOINT %1").arg(Savepoint, Text);
    bool Ok = m_query->exec(Text);
    while (Ok && !m_query->isSelect())
        Ok = m_query->nextResult();
    if (!Ok) {
        const QSqlError Error = m_query->lastError();
        if (Guarded && Quietly(m_connection->Database(), QStringLiteral("ROLLBACK TO SAVEPOINT %1; RELEASE SAVEPOINT %1").arg(Savepoint))) {
            Close();
            TADOConnection::RaiseSqlError(Error);
        }
        Fail(Error);
    }
    if (m_query->size() < m_block)
        Finished();
}

bool TServerCursor::InApplicationTransaction() const
{
    return m_open && m_transaction && m_transaction == m_session.application;
}

void TServerCursor::Fail(const QSqlError& Error)
{
    // The failure aborted the reading transaction: end it, so that the session works again.
    if (m_session.reading && !m_connection->InTransaction())
        m_session.EndReading(m_connection->Database(), false);
    Close();
    TADOConnection::RaiseSqlError(Error);
}

// The last rows are read (or no more are wanted): the cursor closes at once; the rows read
// stay in m_query.
void TServerCursor::Finished() noexcept
{
    if (!m_open)
        return;
    m_open = false;
    --m_transaction->cursors;
    if (m_transaction->rolledBack)
        return;  // nothing of it is left on the server
    const QSqlDatabase Db = m_connection->Database();
    const bool Last = m_transaction == m_session.reading && m_transaction->cursors == 0;
    if (!Quietly(Db, QStringLiteral("CLOSE ") + m_name + (Last ? QStringLiteral(";\nCOMMIT") : QString()))) {
        if (m_session.reading && !m_connection->InTransaction())
            m_session.EndReading(Db, false);
    } else if (Last) {
        m_session.reading.reset();
    }
}

void TServerCursor::Close() noexcept
{
    Finished();
    m_query.reset();
}

} // namespace Kesh::Detail
