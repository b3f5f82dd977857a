// Kesh for Qt — the editing datasets.
#include "qx_ado_datasets.h"

#include "conversions.h"
#include "form_manager.h"
#include "messages.h"
#include "platform/data/fields.h"
#include "platform/exceptions.h"
#include "platform/rtl/strings.h"

#include <QWidget>
#include <memory>

namespace Kesh {

namespace {

const TQxForm* FindManager(const QObject* Owner)
{
    if (!Owner)
        return nullptr;
    if (auto* manager = Owner->findChild<const TQxForm*>())
        return manager;
    // A dataset kept by a page or panel of a form still speaks through the form's manager.
    if (auto* widget = qobject_cast<const QWidget*>(Owner); widget && widget->window() != widget)
        return widget->window()->findChild<const TQxForm*>();
    return nullptr;
}

// Remembers the position and silences the controls. Restore() gives both back; so does the
// destructor when a failure ends the work, unless the guard was told to leave them.
class TPositionGuard
{
public:
    TPositionGuard(TDataSet* DataSet, bool RestoreOnFailure)
        : m_dataSet(DataSet), m_bookmark(DataSet->Bookmark()), m_pending(RestoreOnFailure)
    {
        m_dataSet->DisableControls();
    }
    ~TPositionGuard()
    {
        if (m_pending)
            Restore();
    }
    void Restore()
    {
        m_pending = false;
        try {
            if (!m_bookmark.isEmpty() && m_dataSet->BookmarkValid(m_bookmark))
                m_dataSet->GotoBookmark(m_bookmark);
        } catch (const Exception&) {
            // The position is a courtesy; the controls must come back whatever happens.
        }
        m_dataSet->EnableControls();
    }

private:
    TDataSet* m_dataSet;
    QByteArray m_bookmark;
    bool m_pending;
};

bool CanApply(const TADODataSet* DataSet)
{
    return DataSet->Active() && DataSet->LockType() != ltReadOnly && !DataSet->IsEmpty();
}

// Every row from the first: edit, write, post. The rows pass through the editing rules.
void WriteEveryRow(TADODataSet* DataSet, const QString& FieldName, const QVariant& Value)
{
    DataSet->First();
    while (!DataSet->Eof()) {
        DataSet->Edit();
        DataSet->FieldByName(FieldName)->SetValue(Value);
        DataSet->Post();
        DataSet->Next();
    }
}

} // namespace

// ---- the rules

bool TxDataSetRules::IsLocked(const TDataSet* DataSet) const
{
    if (m_lockedField.isEmpty())
        return false;
    const TField* Lock = DataSet->FieldByName(m_lockedField);
    return !Lock->IsNull() && Lock->AsBoolean();
}

void TxDataSetRules::CheckInsert() const
{
    if (!m_allowInsert)
        Abort();
}

void TxDataSetRules::CheckEdit(const TDataSet* DataSet) const
{
    if (IsLocked(DataSet)) {
        ShowError(Message(DataSet, m_lockedMsgID));
        Abort();
    }
}

void TxDataSetRules::CheckDelete(const TDataSet* DataSet) const
{
    if (!m_allowDelete)
        Abort();
    CheckEdit(DataSet);
    if (m_confirmDel && !Sure(Message(DataSet, m_confirmMsgID), false))
        Abort();
}

QString TxDataSetRules::Message(const QObject* DataSet, int ID)
{
    if (const TQxForm* Manager = FindManager(DataSet ? DataSet->parent() : nullptr))
        return Manager->GetBiMsg(ID);
    return QStringLiteral("Can't find TQxForm component in the form!.");
}

double TxDataSetRules::Sum(TADODataSet* DataSet, const QString& FieldName)
{
    if (!DataSet->Active() || !DataSet->FindField(FieldName))
        return 0;
    auto Clone = std::make_unique<TADODataSet>(DataSet);
    Clone->Clone(DataSet, ltReadOnly);
    const TField* Field = Clone->FieldByName(FieldName);
    double Total = 0;
    for (Clone->First(); !Clone->Eof(); Clone->Next())
        if (!Field->IsNull())
            Total += Field->AsFloat();
    return Total;
}

// ---- TQxAdoDataSet

TQxAdoDataSet::TQxAdoDataSet(QObject* Owner) : TADODataSet(Owner) {}

void TQxAdoDataSet::DoBeforeInsert()
{
    CheckInsert();
    TADODataSet::DoBeforeInsert();
}

void TQxAdoDataSet::DoBeforeEdit()
{
    CheckEdit(this);
    TADODataSet::DoBeforeEdit();
}

void TQxAdoDataSet::DoBeforeDelete()
{
    CheckDelete(this);
    TADODataSet::DoBeforeDelete();
}

void TQxAdoDataSet::ApplyValue(const QString& FieldName, const QVariant& Value)
{
    if (!CanApply(this))
        return;
    TPositionGuard Guard(this, true);
    try {
        WriteEveryRow(this, FieldName, Value);
    } catch (const Exception& E) {
        // A row the update could not take stays as it was, so returning to the bookmark
        // does not post it again.
        if (State() == dsEdit)
            Cancel();
        // A refusal by the rules has already said what it had to say.
        if (!dynamic_cast<const EAbort*>(&E))
            ShowError(objectName() + QStringLiteral(".ApplyValue(") + QuotedStr(FieldName) + QStringLiteral(", ")
                      + QuotedStr(AsString(Value)) + QStringLiteral(")\r\n") + E.Message);
    }
    Guard.Restore();
}

// ---- TQxAdoTable

TQxAdoTable::TQxAdoTable(QObject* Owner) : TADOTable(Owner) {}

void TQxAdoTable::DoBeforeInsert()
{
    CheckInsert();
    TADOTable::DoBeforeInsert();
}

void TQxAdoTable::DoBeforeEdit()
{
    CheckEdit(this);
    TADOTable::DoBeforeEdit();
}

void TQxAdoTable::DoBeforeDelete()
{
    CheckDelete(this);
    TADOTable::DoBeforeDelete();
}

void TQxAdoTable::ApplyValue(const QString& FieldName, const QVariant& Value)
{
    if (!CanApply(this))
        return;
    TPositionGuard Guard(this, false);  // a failure leaves the position and silenced controls
    WriteEveryRow(this, FieldName, Value);
    Guard.Restore();
}

} // namespace Kesh
