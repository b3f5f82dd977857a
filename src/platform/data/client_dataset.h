// Kesh for Qt — TClientDataSet: a dataset whose rows live only in memory.
#pragma once
#include "dataset.h"
#include <functional>

namespace Kesh {

class TClientDataSet;

/// One change of a client dataset's log.
enum TUpdateKind { ukModify, ukInsert, ukDelete };

/// Sends one logged change to wherever the rows are kept; raise to report an error.
using TApplyUpdateEvent = std::function<void(TClientDataSet* Sender, TUpdateKind Kind,
                                             const TRecordValues& OldValues,
                                             const TRecordValues& NewValues)>;

/// An in-memory dataset: define its columns in FieldDefs(), CreateDataSet(), then Append
/// and Post rows. Every posted change is logged until ApplyUpdates sends it through
/// OnApplyUpdate or MergeChangeLog forgets it.
class KESH_EXPORT TClientDataSet : public TDataSet
{
    Q_OBJECT
    Q_PROPERTY(bool ReadOnly READ ReadOnly WRITE SetReadOnly)

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

    TApplyUpdateEvent OnApplyUpdate;

protected:
    void InternalOpen() override;
    void ApplyInsert(TRecordValues& Values) override;
    void ApplyUpdate(const TRecordValues& OldValues, TRecordValues& NewValues,
                     const QBitArray& Changed) override;
    void ApplyDelete(const TRecordValues& OldValues) override;
    void InternalRefresh() override;

private:
    struct TChange
    {
        TUpdateKind Kind;
        TRecordValues OldValues;
        TRecordValues NewValues;
    };
    QList<TChange> m_log;
    bool m_readOnly = false;
    bool m_creating = false;
};

} // namespace Kesh
