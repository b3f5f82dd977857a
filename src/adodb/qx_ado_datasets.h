// Kesh for Qt — the editing datasets: insert, delete and lock rules set as properties,
// messages by number from the form's manager, a whole-set update and a client-side total.
#pragma once
#include "platform/data/ado_dataset.h"
#include "platform/kesh_global.h"

namespace Kesh {

/// The rules both editing datasets share. Refusals are the silent abort (EAbort), so the
/// grid or button that asked stops without a second message.
class KESH_EXPORT TxDataSetRules
{
public:
    bool AllowDelete = true;  ///< rows may be deleted
    int ConfirmMsgID = 0;     ///< message asked before a delete
    bool AllowInsert = true;  ///< rows may be inserted or appended
    QString LockedField;      ///< Boolean column that locks its row against edit and delete
    bool ConfirmDel = false;  ///< ask before each delete
    int LockedMsgID = 0;      ///< message shown when a locked row is touched

    void CheckInsert() const;
    void CheckEdit(const TDataSet* DataSet) const;
    void CheckDelete(const TDataSet* DataSet) const;

    /// Message ID of the first TQxForm found among the dataset owner's objects (and, for an
    /// owner inside a window, the window's), in the application's language; without one,
    /// "Can't find TQxForm component in the form!.".
    static QString Message(const QObject* DataSet, int ID);
    /// Total of a numeric column over every row, walked on a read-only clone so that the
    /// user's position and controls are untouched; 0 for an unknown column.
    static double Sum(TADODataSet* DataSet, const QString& FieldName);

private:
    bool IsLocked(const TDataSet* DataSet) const;
};

/// TADODataSet with the editing rules, ApplyValue and Sum.
class KESH_EXPORT TQxAdoDataSet : public TADODataSet
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

    bool GetAllowDelete() const { return m_rules.AllowDelete; }
    void SetAllowDelete(bool Value) { m_rules.AllowDelete = Value; }
    int GetConfirmMsgID() const { return m_rules.ConfirmMsgID; }
    void SetConfirmMsgID(int Value) { m_rules.ConfirmMsgID = Value; }
    bool GetAllowInsert() const { return m_rules.AllowInsert; }
    void SetAllowInsert(bool Value) { m_rules.AllowInsert = Value; }
    QString GetLockedField() const { return m_rules.LockedField; }
    void SetLockedField(const QString& Value) { m_rules.LockedField = Value; }
    bool GetConfirmDel() const { return m_rules.ConfirmDel; }
    void SetConfirmDel(bool Value) { m_rules.ConfirmDel = Value; }
    int GetLockedMsgID() const { return m_rules.LockedMsgID; }
    void SetLockedMsgID(int Value) { m_rules.LockedMsgID = Value; }

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

private:
    TxDataSetRules m_rules;
};

/// TADOTable with the same rules. Its ApplyValue lets a failure pass to the caller,
/// leaving the position and the disabled controls as they are.
class KESH_EXPORT TQxAdoTable : public TADOTable
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

    bool GetAllowDelete() const { return m_rules.AllowDelete; }
    void SetAllowDelete(bool Value) { m_rules.AllowDelete = Value; }
    int GetConfirmMsgID() const { return m_rules.ConfirmMsgID; }
    void SetConfirmMsgID(int Value) { m_rules.ConfirmMsgID = Value; }
    bool GetAllowInsert() const { return m_rules.AllowInsert; }
    void SetAllowInsert(bool Value) { m_rules.AllowInsert = Value; }
    QString GetLockedField() const { return m_rules.LockedField; }
    void SetLockedField(const QString& Value) { m_rules.LockedField = Value; }
    bool GetConfirmDel() const { return m_rules.ConfirmDel; }
    void SetConfirmDel(bool Value) { m_rules.ConfirmDel = Value; }
    int GetLockedMsgID() const { return m_rules.LockedMsgID; }
    void SetLockedMsgID(int Value) { m_rules.LockedMsgID = Value; }

    void ApplyValue(const QString& FieldName, const QVariant& Value);
    double Sum(const QString& FieldName) { return TxDataSetRules::Sum(this, FieldName); }

protected:
    void DoBeforeInsert() override;
    void DoBeforeEdit() override;
    void DoBeforeDelete() override;

private:
    TxDataSetRules m_rules;
};

} // namespace Kesh
