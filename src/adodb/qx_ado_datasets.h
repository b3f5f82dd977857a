// Kesh for Qt — the editing datasets: insert, delete and lock rules set as properties,
// messages by number from the form's manager, a whole-set update and a client-side total.
#pragma once
#include "platform/data/ado_dataset.h"
#include "platform/kesh_global.h"

namespace Kesh {

/// The rules both editing datasets share, with the accessors of their published
/// properties. Refusals are the silent abort (EAbort), so the grid or button that asked
/// stops without a second message.
class KESH_EXPORT TxDataSetRules
{
public:
    /// Rows may be deleted (true).
    bool GetAllowDelete() const { return m_allowDelete; }
    void SetAllowDelete(bool Value) { m_allowDelete = Value; }
    /// Message asked before a delete.
    int GetConfirmMsgID() const { return m_confirmMsgID; }
    void SetConfirmMsgID(int Value) { m_confirmMsgID = Value; }
    /// Rows may be inserted or appended (true).
    bool GetAllowInsert() const { return m_allowInsert; }
    void SetAllowInsert(bool Value) { m_allowInsert = Value; }
    /// Boolean column that locks its row against edit and delete; a null does not lock.
    QString GetLockedField() const { return m_lockedField; }
    void SetLockedField(const QString& Value) { m_lockedField = Value; }
    /// Ask before each delete (false).
    bool GetConfirmDel() const { return m_confirmDel; }
    void SetConfirmDel(bool Value) { m_confirmDel = Value; }
    /// Message shown when a locked row is touched.
    int GetLockedMsgID() const { return m_lockedMsgID; }
    void SetLockedMsgID(int Value) { m_lockedMsgID = Value; }

    /// Message ID of the first TQxForm found among the dataset owner's objects (and, for an
    /// owner inside a window, the window's), in the application's language; without one,
    /// "Can't find TQxForm component in the form!.".
    static QString Message(const QObject* DataSet, int ID);
    /// Total of a numeric column over every row, walked on a read-only clone so that the
    /// user's position and controls are untouched; 0 for an unknown column.
    static double Sum(TADODataSet* DataSet, const QString& FieldName);

protected:
    void CheckInsert() const;
    void CheckEdit(const TDataSet* DataSet) const;
    void CheckDelete(const TDataSet* DataSet) const;

private:
    bool IsLocked(const TDataSet* DataSet) const;

    bool m_allowDelete = true;
    int m_confirmMsgID = 0;
    bool m_allowInsert = true;
    QString m_lockedField;
    bool m_confirmDel = false;
    int m_lockedMsgID = 0;
};

/// TADODataSet with the editing rules, ApplyValue and Sum.
class KESH_EXPORT TQxAdoDataSet : public TADODataSet, public TxDataSetRules
{
    Q_OBJECT
    Q_PROPERTY(bool _AllowDelete READ GetAllowDelete WRITE SetAllowDelete)
    Q_PROPERTY(int _ConfirmMsgID READ GetConfirmMsgID WRITE SetConfirmMsgID)
    Q_PROPERTY(bool _AllowInsert READ GetAllowInsert WRITE SetAllowInsert)
    Q_PROPERTY(QString _LockedField READ GetLockedField WRITE SetLockedField)
    Q_PROPERTY(bool _ConfirmDel READ GetConfirmDel WRITE SetConfirmDel)
    Q_PROPERTY(int _LockedMsgID READ GetLockedMsgID WRITE SetLockedMsgID)

public:
    explicit TQxAdoDataSet(QObject* Owner = nullptr);

    /// Writes Value into FieldName of every row (nothing on a read-only or empty set). A
    /// failure is shown with ShowError and ends the loop; the position and the controls
    /// are restored in every case.
    void ApplyValue(const QString& FieldName, const QVariant& Value);
    /// Total of FieldName over all rows (see TxDataSetRules::Sum).
    double Sum(const QString& FieldName) { return TxDataSetRules::Sum(this, FieldName); }

protected:
    void DoBeforeInsert() override;
    void DoBeforeEdit() override;
    void DoBeforeDelete() override;
};

/// TADOTable with the same rules. Its ApplyValue lets a failure pass to the caller,
/// leaving the position and the disabled controls as they are.
class KESH_EXPORT TQxAdoTable : public TADOTable, public TxDataSetRules
{
    Q_OBJECT
    Q_PROPERTY(bool _AllowDelete READ GetAllowDelete WRITE SetAllowDelete)
    Q_PROPERTY(int _ConfirmMsgID READ GetConfirmMsgID WRITE SetConfirmMsgID)
    Q_PROPERTY(bool _AllowInsert READ GetAllowInsert WRITE SetAllowInsert)
    Q_PROPERTY(QString _LockedField READ GetLockedField WRITE SetLockedField)
    Q_PROPERTY(bool _ConfirmDel READ GetConfirmDel WRITE SetConfirmDel)
    Q_PROPERTY(int _LockedMsgID READ GetLockedMsgID WRITE SetLockedMsgID)

public:
    explicit TQxAdoTable(QObject* Owner = nullptr);

    void ApplyValue(const QString& FieldName, const QVariant& Value);
    double Sum(const QString& FieldName) { return TxDataSetRules::Sum(this, FieldName); }

protected:
    void DoBeforeInsert() override;
    void DoBeforeEdit() override;
    void DoBeforeDelete() override;
};

} // namespace Kesh
