// Kesh for Qt — TDataSetProvider: serves a dataset's rows as data packets and applies a
// client's change log to the database; TRemoteDataModule and TDSServerModule hold them.
#pragma once
#include "data_packet.h"
#include "../exceptions.h"
#include <QObject>
#include <QPointer>
#include <functional>
#include <memory>

namespace Kesh {

class TDataSet;

/// The enumerations live in their own namespace only so that moc can register them.
namespace Remote {
Q_NAMESPACE_EXPORT(KESH_EXPORT)
/// Which original values find the row an update or delete writes to.
enum TUpdateMode { upWhereAll, upWhereChanged, upWhereKeyOnly };
Q_ENUM_NS(TUpdateMode)
/// What OnUpdateError decides for a row that failed.
enum TResolverResponse { rrSkip, rrAbort, rrMerge, rrApply, rrIgnore };
Q_ENUM_NS(TResolverResponse)
/// What a client's OnReconcileError decides for a row the server refused.
enum TReconcileAction : int { raSkip, raAbort, raMerge, raCorrect, raCancel, raRefresh };
Q_ENUM_NS(TReconcileAction)
/// What a provider sends back of the rows it applied: poAutoRefresh the row as the
/// database holds it after the write (defaults, triggers, an auto-increment key);
/// poPropogateChanges the values its own handlers changed (BeforeUpdateRecord, OnUpdateData).
enum TProviderOption { poAutoRefresh = 0x1, poPropogateChanges = 0x2 };
Q_DECLARE_FLAGS(TProviderOptions, TProviderOption)
Q_FLAG_NS(TProviderOptions)
Q_DECLARE_OPERATORS_FOR_FLAGS(TProviderOptions)
} // namespace Remote
using namespace Remote;

/// A row a provider could not apply: the reason, and the row as the database holds it now
/// (CurrentValues is empty when the row no longer exists).
class KESH_EXPORT EUpdateError : public EDatabaseError
{
public:
    EUpdateError(const QString& Message, const QString& Context = QString(), int ErrorCode = 0)
        : EDatabaseError(Message), Context(Context), ErrorCode(ErrorCode) {}
    QString Context;
    int ErrorCode;
    TRecordValues CurrentValues;
    bool HasCurrentValues = false;
};

/// A call a client made wrongly (unknown parameter or field, bad paging token): the
/// server answers it with 400, not as a server fault.
class KESH_EXPORT EProviderRequestError : public EDatabaseError
{
public:
    using EDatabaseError::EDatabaseError;
};

/// A change the server refused, as the client's OnReconcileError sees it. Record is the
/// change (a handler correcting it for raCorrect changes its NewValues); CurrentValues the
/// row as the database holds it now.
class KESH_EXPORT EReconcileError : public EDatabaseError
{
public:
    explicit EReconcileError(const QString& Message) : EDatabaseError(Message) {}
    TDeltaRecord Record;
    TRecordValues CurrentValues;
    bool HasCurrentValues = false;
};

using TRemoteEvent = std::function<void(QObject* Sender, QJsonValue& OwnerData)>;
using TProviderDataEvent = std::function<void(QObject* Sender, TDataPacket& DataSet)>;
using TProviderDeltaEvent = std::function<void(QObject* Sender, QList<TDeltaRecord>& DataSet)>;
using TBeforeUpdateRecordEvent = std::function<void(QObject* Sender, TDataSet* SourceDS, TDeltaRecord& DeltaDS,
                                                    TUpdateKind UpdateKind, bool& Applied)>;
using TAfterUpdateRecordEvent = std::function<void(QObject* Sender, TDataSet* SourceDS, TDeltaRecord& DeltaDS,
                                                   TUpdateKind UpdateKind)>;
using TResolverErrorEvent = std::function<void(QObject* Sender, TDeltaRecord& DataSet, EUpdateError& E,
                                               TUpdateKind UpdateKind, TResolverResponse& Response)>;
using TDataRequestEvent = std::function<QJsonValue(QObject* Sender, const QJsonValue& Input)>;
/// Names the table a provider writes to (empty: found from the dataset).
using TGetTableNameEvent = std::function<void(QObject* Sender, TDataSet* DataSet, QString& TableName)>;

/// The result of ApplyUpdates: the rows that failed, in delta order, and whether the
/// changes were committed (false: everything was rolled back).
struct KESH_EXPORT TApplyResult
{
    struct TRowError
    {
        int Index = 0;
        TUpdateKind UpdateKind = ukModify;
        QString Message;
        TRecordValues CurrentValues;
        bool HasCurrentValues = false;
    };
    QList<TRowError> Errors;
    /// Applied rows as they are now (see TProviderOptions), for the client to take over.
    struct TRefreshedRow
    {
        int Index = 0;
        TRecordValues Values;
    };
    QList<TRefreshedRow> Refreshed;
    bool Committed = false;
    int ErrorCount() const { return int(Errors.size()); }
};

/// Publishes one dataset to clients.
///
/// GetRecords opens the dataset afresh, sends Count rows after the paging token (-1: all,
/// 0: the columns only) and closes it again, so that any server instance can answer the
/// next packet. ApplyUpdates writes the delta to the dataset's base table in one
/// transaction with a savepoint per row; rows are found by UpdateMode. MaxErrors: 0 rolls
/// everything back at the first error; -1 applies every row it can; n stops and rolls
/// back everything at error n + 1. Text from a client never becomes SQL: values are
/// bound, column names must be columns of the dataset and of the base table.
class KESH_EXPORT TDataSetProvider : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Kesh::Remote::TUpdateMode UpdateMode READ UpdateMode WRITE SetUpdateMode)
    Q_PROPERTY(bool Exported READ Exported WRITE SetExported)
    Q_PROPERTY(Kesh::Remote::TProviderOptions Options READ Options WRITE SetOptions)

public:
    explicit TDataSetProvider(QObject* Owner = nullptr);
    ~TDataSetProvider() override;

    TDataSet* DataSet() const;
    void SetDataSet(TDataSet* Value);
    TUpdateMode UpdateMode() const;
    void SetUpdateMode(TUpdateMode Value);
    /// Offered to clients when the owner module looks its providers up (true).
    bool Exported() const;
    void SetExported(bool Value);
    TProviderOptions Options() const;
    void SetOptions(TProviderOptions Value);

    // ---- the calls a client makes
    TDataPacket GetRecords(int Count, const QString& Token, const QList<TPacketParam>& Params, QJsonValue& OwnerData);
    TApplyResult ApplyUpdates(const TFieldDefs& Fields, QList<TDeltaRecord>& Delta, int MaxErrors, QJsonValue& OwnerData);
    /// Runs the dataset's own command (TADOQuery::ExecSQL) with the given parameter values.
    void Execute(const QList<TPacketParam>& Params, QJsonValue& OwnerData);
    /// The dataset's parameters with their current values.
    QList<TPacketParam> GetParams(QJsonValue& OwnerData);
    /// The row of the base table whose key columns hold the values of Row (columns as in
    /// Fields); false when there is none.
    bool RowRequest(const TFieldDefs& Fields, const TRecordValues& Row, TRecordValues& Current, QJsonValue& OwnerData);
    QJsonValue DataRequest(const QJsonValue& Input);

    // ---- events, in the order they fire for each call
    TRemoteEvent BeforeGetRecords;
    TProviderDataEvent OnGetData;
    TRemoteEvent AfterGetRecords;
    TRemoteEvent BeforeApplyUpdates;
    TProviderDeltaEvent OnUpdateData;
    TBeforeUpdateRecordEvent BeforeUpdateRecord;
    TAfterUpdateRecordEvent AfterUpdateRecord;
    TResolverErrorEvent OnUpdateError;
    TRemoteEvent AfterApplyUpdates;
    TRemoteEvent BeforeExecute, AfterExecute;
    TRemoteEvent BeforeGetParams, AfterGetParams;
    TRemoteEvent BeforeRowRequest, AfterRowRequest;
    TDataRequestEvent OnDataRequest;
    TGetTableNameEvent OnGetTableName;

private:
    std::unique_ptr<class TDataSetProviderPrivate> const d;
};

/// What the two server modules share: their providers by name.
class KESH_EXPORT TCustomRemoteModule : public QObject
{
    Q_OBJECT

public:
    explicit TCustomRemoteModule(QObject* Owner = nullptr);
    ~TCustomRemoteModule() override;
    /// Offers Provider to clients under its object name (again: replaces nothing).
    void RegisterProvider(TDataSetProvider* Provider);
    void UnRegisterProvider(TDataSetProvider* Provider);
    /// The registered provider of that name, else an exported provider owned by the module
    /// (case-insensitive); nullptr when there is none.
    TDataSetProvider* GetProvider(const QString& Name) const;
    QStringList ProviderNames() const;

private:
    QList<QPointer<TDataSetProvider>> m_registered;
};

/// The classic remote data module: a server-side container of a connection, datasets and
/// providers. The application server makes one per worker.
class KESH_EXPORT TRemoteDataModule : public TCustomRemoteModule
{
    Q_OBJECT
public:
    using TCustomRemoteModule::TCustomRemoteModule;
};

/// The same container in its later form; it offers the same providers.
class KESH_EXPORT TDSServerModule : public TCustomRemoteModule
{
    Q_OBJECT
public:
    using TCustomRemoteModule::TCustomRemoteModule;
};

} // namespace Kesh
