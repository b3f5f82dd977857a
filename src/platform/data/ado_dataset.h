// Kesh for Qt — TADODataSet, TADOQuery, TADOTable: SQL datasets on a TADOConnection.
#pragma once
#include "ado_parameters.h"
#include "dataset.h"
#include <QPointer>
#include <QStringList>
#include <QVariantMap>
#include <functional>
#include <memory>

class QSqlQuery;
class QSqlField;
class QSqlRecord;

namespace Kesh {

class TADOConnection;

/// A dataset over the rows of an SQL command on a TADOConnection.
///
/// The rows are read in blocks of FetchBlockSize (256) and kept client-side; when the last
/// row is read the query is finished at once. On SQLite they come from a forward-only
/// QSqlQuery whose SELECT holds its read lock until then: every write through the same
/// TADOConnection (Post, Delete, Execute, ExecSQL, transactions) first reads the rest of
/// the pending SELECTs, so it never disturbs them, except that a dataset reading one plain
/// table with a primary key (selected), no triggers and no key referring to itself goes on
/// reading across its own Post and Delete: SQLite allows it, and the rows they wrote are
/// then recognised by key and not read a second time. On PostgreSQL a query (SELECT, VALUES,
/// TABLE or a read-only WITH) is read through a WITH HOLD cursor on the connection's own
/// session, in blocks that grow to 4096 rows per round trip; outside the application's
/// transactions the cursors live in a transaction of the connection's, which each write
/// commits first, so writes and the application's transactions run as they would without
/// the cursors, and the server keeps the rows not read yet (see TADOConnection::
/// FinishPendingFetches). The rows are those of the moment the dataset opened. Closing the
/// dataset closes its cursor. Other statements and drivers are read as before. Parameters
/// of such a query are sent as literals quoted by the driver (QSqlDriver::formatValue).
/// Post and Delete write SQL built by the
/// driver (QSqlDriver::sqlStatement) against the base table: the table of cmdTable, else
/// UniqueTable, else the single table in the FROM of the command text. The row is found
/// by the table's primary key (without one: every selected column of the table but the
/// floating-point and large-object ones) plus, for
/// optimistic locking, the original values of the changed columns: when no row matches,
/// EDatabaseError "Row cannot be located for updating. Some values may have been changed
/// since it was last read." is raised and the edit stays as it was. Inserted rows read
/// their server-filled values back (auto-increment keys, defaults).
class KESH_EXPORT TADODataSet : public TDataSet
{
    Q_OBJECT
    Q_PROPERTY(QString CommandText READ CommandText WRITE SetCommandText)
    Q_PROPERTY(Kesh::DB::TCommandType CommandType READ CommandType WRITE SetCommandType)
    Q_PROPERTY(bool ParamCheck READ ParamCheck WRITE SetParamCheck)
    Q_PROPERTY(Kesh::DB::TCursorLocation CursorLocation READ CursorLocation WRITE SetCursorLocation)
    Q_PROPERTY(Kesh::DB::TCursorType CursorType READ CursorType WRITE SetCursorType)
    Q_PROPERTY(Kesh::DB::TLockType LockType READ LockType WRITE SetLockType)
    Q_PROPERTY(QString UniqueTable READ UniqueTable WRITE SetUniqueTable)

public:
    explicit TADODataSet(QObject* Owner = nullptr);
    ~TADODataSet() override;

    /// The field type that a column of a Qt SQL result is read into.
    static TFieldType FieldTypeOf(const QSqlField& Field);

    TADOConnection* Connection() const;
    /// Attaches the dataset to a connection (closing it first); nullptr detaches.
    void SetConnection(TADOConnection* Value);

    QString CommandText() const;
    /// Closes the dataset first. With ParamCheck the text's `:name` parameters are (re)listed.
    void SetCommandText(const QString& Value);
    TCommandType CommandType() const;
    void SetCommandType(TCommandType Value);
    /// Whether the command text is read for `:name` parameters (on by default). Off: the
    /// text goes to the server as it stands and colons are plain text.
    bool ParamCheck() const;
    void SetParamCheck(bool Value);
    TParameters* Parameters() const;

    /// Rows are always kept client-side; the values are kept for the code that sets them.
    TCursorLocation CursorLocation() const;
    void SetCursorLocation(TCursorLocation Value);
    TCursorType CursorType() const;
    void SetCursorType(TCursorType Value);
    /// ltReadOnly refuses Insert, Edit and Delete; every other lock type writes optimistically.
    TLockType LockType() const;
    void SetLockType(TLockType Value);
    /// The table Post and Delete write to; empty: found from the command.
    QString UniqueTable() const;
    void SetUniqueTable(const QString& Value);
    /// The table Post and Delete write to: UniqueTable, the table of cmdTable, else the
    /// single table in the FROM of the command text; empty when there is none.
    QString BaseTableName() const;

    /// Opens this dataset as a second cursor on Source's rows (read to the end first):
    /// moving one does not move the other; posted changes are seen by both.
    /// ltUnspecified keeps Source's lock type.
    void Clone(TADODataSet* Source, TLockType LockType = ltUnspecified);

    bool CanModify() const override;

protected:
    void InternalOpen() override;
    int InternalFetch(int MaxRows) override;
    void InternalClose() override;
    void ApplyInsert(TRecordValues& Values) override;
    void ApplyUpdate(const TRecordValues& OldValues, TRecordValues& NewValues,
                     const QBitArray& Changed) override;
    void ApplyDelete(const TRecordValues& OldValues) override;
    void InternalRefresh() override;
    QStringList RefreshKeyFields() const override;

    /// The SELECT the dataset opens (from CommandText and CommandType).
    virtual QString SelectText() const;

private:
    friend class TADOConnection;
    friend class TDataSetTotalsPrivate;  // sums the rows of SelectText on the server
    friend class TDataSetProviderPrivate;  // reads one packet through a rewritten SELECT
    /// For the opens that follow (until reset): Wrap gets the SELECT about to run and
    /// returns the one to run instead, adding the values of its own named placeholders
    /// to Binds; UseCursor false reads the result with one plain query.
    using TSelectWrap = std::function<QString(const QString& Select, QVariantMap& Binds, bool& UseCursor)>;
    void SetSelectWrap(TSelectWrap Wrap);
    void ConnectionClosing();
    bool HasPendingFetch() const;
    bool CursorInApplicationTransaction() const;
    bool OpenCursor(const QString& Sql);
    void OpenQuery(const QString& Sql, const QVariantMap& Binds);
    QString WithParameterLiterals(const QString& Sql) const;
    void EnsureWriteMeta();
    void PrepareWrite(const TRecordValues* NewValues = nullptr);
    void RememberWritten(const TRecordValues& Values);
    QSqlRecord WhereRecord(const TRecordValues& OldValues, const QBitArray* Changed) const;
    void ReadBackRow(const QSqlQuery& Query, TRecordValues& Values) const;
    std::unique_ptr<class TADODataSetPrivate> const d;
};

/// A dataset on the statement held in SQL.
class KESH_EXPORT TADOQuery : public TADODataSet
{
    Q_OBJECT
    Q_PROPERTY(QStringList SQL READ SQL WRITE SetSQL)

public:
    explicit TADOQuery(QObject* Owner = nullptr);
    ~TADOQuery() override;
    /// The statement, one line per item (CommandText is the lines joined by line breaks).
    QStringList SQL() const;
    void SetSQL(const QStringList& Value);
    /// Runs a statement that returns no rows; returns the number of rows affected.
    int ExecSQL();
};

/// A dataset on every row of one table.
class KESH_EXPORT TADOTable : public TADODataSet
{
    Q_OBJECT
    Q_PROPERTY(QString TableName READ TableName WRITE SetTableName)

public:
    explicit TADOTable(QObject* Owner = nullptr);
    ~TADOTable() override;
    QString TableName() const { return CommandText(); }
    void SetTableName(const QString& Value) { SetCommandText(Value); }
};

} // namespace Kesh
