// Kesh for Qt — TADOConnection: one database connection over QSqlDatabase.
#pragma once
#include "data_types.h"
#include <QList>
#include <QObject>
#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

class QSqlError;

namespace Kesh {

class TADOConnection;
class TADODataSet;
namespace Detail {
struct TCursorSession;
class TServerCursor;
}

using TConnectionNotifyEvent = std::function<void(QObject* Sender)>;
/// Asked for the user name and password when LoginPrompt is set.
using TLoginEvent = std::function<void(TADOConnection* Sender, QString& UserName, QString& Password)>;

/// A database connection with its own QSqlDatabase connection name.
///
/// ConnectionString holds `Key=Value;` pairs; a value may be quoted with " or '.
/// Known keys (any case): Driver (QSQLITE, QPSQL, QODBC…), Database (also Data Source,
/// Initial Catalog), Host (also Server, HostName), Port, User (also User ID, UID,
/// UserName), Password (also PWD). Any other pair goes to QSqlDatabase::setConnectOptions.
/// Errors are EDatabaseError carrying the server's message.
class KESH_EXPORT TADOConnection : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString ConnectionString READ ConnectionString WRITE SetConnectionString)
    Q_PROPERTY(bool Connected READ Connected WRITE SetConnected)
    Q_PROPERTY(bool LoginPrompt READ LoginPrompt WRITE SetLoginPrompt)

public:
    explicit TADOConnection(QObject* Owner = nullptr);
    ~TADOConnection() override;

    QString ConnectionString() const;
    /// Raises EDatabaseError while connected.
    void SetConnectionString(const QString& Value);
    bool Connected() const;
    /// Connects (BeforeConnect, DoConnect, AfterConnect) or disconnects (BeforeDisconnect,
    /// DoDisconnect, AfterDisconnect); nothing when already in that state.
    virtual void SetConnected(bool Value);
    virtual void Open();
    /// Connects with this user and password instead of the connection string's.
    virtual void Open(const QString& UserID, const QString& Password);
    void Close() { SetConnected(false); }
    /// Calls OnLogin for the credentials before connecting (off by default).
    bool LoginPrompt() const;
    void SetLoginPrompt(bool Value);

    /// Runs one statement (cmdText); returns the number of rows it affected (-1 unknown).
    int Execute(const QString& CommandText, TCommandType CommandType = cmdText);
    /// User tables (and views); with SystemTables also the system tables.
    void GetTableNames(QStringList& List, bool SystemTables = false);
    void GetFieldNames(const QString& TableName, QStringList& List);

    /// Starts a transaction; returns the nesting level (1). Nested transactions raise.
    int BeginTrans();
    void CommitTrans();
    void RollbackTrans();
    bool InTransaction() const;

    /// The datasets whose Connection is this one, in attaching order.
    int DataSetCount() const;
    TADODataSet* DataSets(int Index) const;
    /// The Qt connection (invalid before the first connect).
    QSqlDatabase Database() const;
    /// The QSqlDatabase connection name, unique to this object.
    QString ConnectionName() const;

    TConnectionNotifyEvent BeforeConnect, AfterConnect, BeforeDisconnect, AfterDisconnect;
    TLoginEvent OnLogin;

    /// Makes the connection ready for a write while datasets have rows left to read: reads
    /// the rest of every attached dataset's unfinished SELECT (SQLite and other forward-only
    /// readers), and on PostgreSQL commits the transaction the datasets' cursors were opened
    /// in (the server keeps their remaining rows). Every write through this class calls it;
    /// code that writes through Database() directly should call it first. Except, the
    /// dataset about to write, is left as it is (it looks after its own rows).
    void FinishPendingFetches(TADODataSet* Except = nullptr);

    /// Runs Read, which only reads through Database(), so that a failing statement in it
    /// cannot abort the transaction that lazily read datasets keep open on PostgreSQL (a
    /// savepoint surrounds it there); elsewhere just runs it. Exceptions pass through.
    void GuardRead(const std::function<void()>& Read);

    /// EDatabaseError with the server's text of Error (databaseText, else text).
    [[noreturn]] static void RaiseSqlError(const QSqlError& Error, const QString& Context = QString());

protected:
    /// Opens the QSqlDatabase from the connection string; raises on failure.
    virtual void DoConnect();
    /// Closes the attached datasets, then the QSqlDatabase.
    virtual void DoDisconnect();

private:
    friend class TADODataSet;
    friend class Detail::TServerCursor;
    Detail::TCursorSession& CursorSession() const;
    void AttachDataSet(TADODataSet* DataSet);
    void DetachDataSet(TADODataSet* DataSet);
    std::unique_ptr<class TADOConnectionPrivate> const d;
};

} // namespace Kesh
