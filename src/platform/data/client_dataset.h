// Kesh for Qt — TClientDataSet: a dataset whose rows live only in memory.
#pragma once
#include "dataset.h"
#include "../remote/remote_connection.h"
#include <QJsonValue>
#include <QPointer>
#include <QSet>
#include <functional>
#include <memory>

namespace Kesh {

class TClientDataSet;
class TParameters;
class EReconcileError;
namespace Remote {
enum TReconcileAction : int;
}

/// One change of a client dataset's log.
enum TUpdateKind { ukModify, ukInsert, ukDelete };

/// Sends one logged change to wherever the rows are kept; raise to report an error.
using TApplyUpdateEvent = std::function<void(TClientDataSet* Sender, TUpdateKind Kind,
                                             const TRecordValues& OldValues,
                                             const TRecordValues& NewValues)>;
/// Decides what becomes of a change the server refused (see TReconcileAction).
using TReconcileErrorEvent = std::function<void(TClientDataSet* DataSet, EReconcileError& E,
                                                TUpdateKind UpdateKind, Remote::TReconcileAction& Action)>;

/// An in-memory dataset: define its columns in FieldDefs(), CreateDataSet(), then Append
/// and Post rows. Every posted change is logged until ApplyUpdates sends it through
/// OnApplyUpdate or MergeChangeLog forgets it.
///
/// With a RemoteServer and a ProviderName the rows come from a provider instead: Open
/// reads the first packet of PacketRecords rows (-1: all, 0: the columns only) and the
/// next packets are read as the cursor or a grid needs them. ApplyUpdates sends the change
/// log to the provider; each row it refuses goes through OnReconcileError.
class KESH_EXPORT TClientDataSet : public TDataSet
{
    Q_OBJECT
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE SetReadOnly)
    Q_PROPERTY(Kesh::TCustomRemoteServer* RemoteServer READ RemoteServer WRITE SetRemoteServer)
    Q_PROPERTY(QString ProviderName READ ProviderName WRITE SetProviderName)
    Q_PROPERTY(int PacketRecords READ PacketRecords WRITE SetPacketRecords)
    Q_PROPERTY(bool FetchOnDemand READ FetchOnDemand WRITE SetFetchOnDemand)

public:
    explicit TClientDataSet(QObject* Owner = nullptr);
    ~TClientDataSet() override;

    /// The columns; change them while the dataset is closed.
    TFieldDefs& FieldDefs() { return FieldDefsRef(); }
    /// Opens an empty dataset with the columns of FieldDefs() (or of the persistent fields).
    void CreateDataSet();
    /// Deletes every row (the log is cleared too).
    void EmptyDataSet();

    bool ReadOnly() const { return m_readOnly; }
    void SetReadOnly(bool Value) { m_readOnly = Value; }
    bool CanModify() const override;

    /// Logged changes not yet applied.
    int ChangeCount() const { return int(m_log.size()); }
    /// Sends the logged changes in order through OnApplyUpdate; a change whose handler
    /// raises stays logged and counts as an error; stops once the errors exceed MaxErrors
    /// (-1: never). Returns the number of errors. Without a handler raises EDatabaseError
    /// "Missing data provider or data packet".
    int ApplyUpdates(int MaxErrors);
    /// Forgets the logged changes (the rows keep them).
    void MergeChangeLog() { m_log.clear(); }

    TCustomRemoteServer* RemoteServer() const { return m_remoteServer; }
    /// Closes the dataset first.
    void SetRemoteServer(TCustomRemoteServer* Value);
    QString ProviderName() const { return m_providerName; }
    void SetProviderName(const QString& Value);
    /// Rows per packet: -1 all at once (the default), 0 the columns only.
    int PacketRecords() const { return m_packetRecords; }
    void SetPacketRecords(int Value) { m_packetRecords = std::max(-1, Value); }
    /// Reads further packets as they are needed (true); otherwise only through GetNextPacket.
    bool FetchOnDemand() const { return m_fetchOnDemand; }
    void SetFetchOnDemand(bool Value) { m_fetchOnDemand = Value; }
    /// Reads the next packet now; returns the number of rows it held.
    int GetNextPacket();
    /// Typed parameter values sent with each request for rows.
    TParameters* Params() const;
    /// Columns of the provider's key (from the first packet).
    QStringList KeyFields() const { return m_keyFields; }
    /// Reads the current row again from the provider (by its key) and shows it as the
    /// database holds it now; raises when the row is gone or has unapplied changes.
    void RefreshRecord();

    TApplyUpdateEvent OnApplyUpdate;
    TReconcileErrorEvent OnReconcileError;

protected:
    void InternalOpen() override;
    void ApplyInsert(TRecordValues& Values) override;
    void ApplyUpdate(const TRecordValues& OldValues, TRecordValues& NewValues,
                     const QBitArray& Changed) override;
    void ApplyDelete(const TRecordValues& OldValues) override;
    void InternalRefresh() override;
    int InternalFetch(int MaxRows) override;

private:
    struct TChange
    {
        TUpdateKind Kind;
        TRecordValues OldValues;
        TRecordValues NewValues;
    };
    bool IsRemote() const { return m_remoteServer || !m_providerName.isEmpty(); }
    void RequestPacket(bool First);
    int ApplyRemoteUpdates(int MaxErrors);
    bool Reconcile(TChange& Change, const QJsonValue& Error, bool& Keep);
    bool LocateChange(const TChange& Change);
    bool LocateRow(const TRecordValues& Values);
    void TakeRefreshed(const QJsonValue& Refreshed, const QList<TChange>& Sent, const QSet<int>& Failed);
    void WriteQuietly(const TRecordValues* Values);

    QList<TChange> m_log;
    bool m_readOnly = false;
    bool m_creating = false;
    QPointer<TCustomRemoteServer> m_remoteServer;
    QString m_providerName;
    int m_packetRecords = -1;
    bool m_fetchOnDemand = true;
    std::unique_ptr<TParameters> m_params;
    QStringList m_keyFields;
    QList<TRecordValues> m_pending;  // rows of the last packet not yet handed to the base
    QString m_nextToken;
    bool m_quiet = false;            // reconciling: changes are not logged
};

} // namespace Kesh
