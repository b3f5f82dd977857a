// Kesh for Qt — lazily read PostgreSQL results (private to src/platform/data).
#pragma once
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <memory>

namespace Kesh {
class TADOConnection;
}

namespace Kesh::Detail {

// SQL text with its string literals replaced by '' and its comments by a space, so that
// keywords inside them do not count.
QString StripLiterals(const QString& Sql);

// A transaction cursors are declared in.
struct TCursorTransaction
{
    int cursors = 0;          // open cursors declared in it
    bool rolledBack = false;  // they are gone with it
};

// What a connection knows of the transactions its cursors live in.
//
// A cursor must be declared inside a transaction to be read lazily. When the application
// has none open, the connection opens one of its own, the reading transaction, shared by
// the cursors declared while it lasts. Every statement that writes through the connection
// commits it first (TADOConnection::FinishPendingFetches): the cursors are WITH HOLD, so
// the server keeps their remaining rows and they read on afterwards, while the write runs
// as it would without them. The last cursor of a reading transaction to close ends it.
struct TCursorSession
{
    std::shared_ptr<TCursorTransaction> reading;      // open, or null
    std::shared_ptr<TCursorTransaction> application;  // the application's open one, or null
    int names = 0;

    // Ends the reading transaction (commits it, or rolls it back when it failed).
    void EndReading(const QSqlDatabase& Db, bool Commit);
    // The application's transaction ended: Committed, its cursors are held like the others.
    void EndApplication(bool Committed);
};

// One server-side cursor over a query, read in blocks through the connection's session.
class TServerCursor
{
public:
    explicit TServerCursor(TADOConnection* Connection);
    ~TServerCursor();  // closes it quietly
    TServerCursor(const TServerCursor&) = delete;
    TServerCursor& operator=(const TServerCursor&) = delete;

    // Whether a statement (given without its literals and comments) is one query a cursor
    // can be declared for: not SELECT … INTO, FOR UPDATE, a data-modifying WITH or several.
    static bool Suits(const QString& Stripped);

    // Declares the cursor and reads the first Rows rows (one round trip); raises
    // EDatabaseError with the server's message and leaves the session as it was.
    void Open(const QString& Sql, int Rows);
    // The rows of the last block, read with next().
    QSqlQuery& Block() { return *m_query; }
    // Rows remain on the server.
    bool More() const { return m_open; }
    // Reads the next block: at least Rows rows, more as the reading goes on.
    void FetchNext(int Rows);
    // Declared in the application's transaction that is still open.
    bool InApplicationTransaction() const;
    void Close() noexcept;

private:
    void Finished() noexcept;
    [[noreturn]] void Fail(const QSqlError& Error);
    TADOConnection* m_connection;
    TCursorSession& m_session;
    std::unique_ptr<QSqlQuery> m_query;
    QString m_name;
    bool m_open = false;
    std::shared_ptr<TCursorTransaction> m_transaction;  // where it was declared
    int m_block = 0;
};

} // namespace Kesh::Detail
