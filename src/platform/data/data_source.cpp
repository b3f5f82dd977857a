#include "data_source.h"
#include "dataset.h"
#include "fields.h"
#include <QWidget>
#include <algorithm>

namespace Kesh {

// ---- TDataSource

TDataSource::TDataSource(QObject* Owner) : QObject(Owner) {}

TDataSource::~TDataSource()
{
    SetDataSet(nullptr);
    const QList<TDataLink*> Links = m_links;
    for (TDataLink* L : Links)
        L->SetDataSource(nullptr);
}

void TDataSource::SetDataSet(TDataSet* Value)
{
    if (Value == m_dataSet)
        return;
    if (m_dataSet)
        m_dataSet->RemoveDataSource(this);
    m_dataSet = Value;
    if (m_dataSet)
        m_dataSet->AddDataSource(this);
    UpdateState();
}

void TDataSource::SetEnabled(bool Value)
{
    if (Value == m_enabled)
        return;
    m_enabled = Value;
    UpdateState();
}

void TDataSource::Edit()
{
    if (m_autoEdit && m_state == dsBrowse && m_dataSet)
        m_dataSet->Edit();
}

bool TDataSource::IsLinkedTo(TDataSet* DataSet) const { return DataSet && DataSet == m_dataSet; }

void TDataSource::UpdateState()
{
    const TDataSetState NewState = m_enabled && m_dataSet ? m_dataSet->State() : dsInactive;
    if (NewState == m_state)
        return;
    const TDataSetState Prior = m_state;
    m_state = NewState;
    const QList<TDataLink*> Links = m_links;
    for (TDataLink* L : Links)
        if (m_links.contains(L))
            L->DataEvent(deUpdateState, 0);
    if (OnStateChange)
        OnStateChange(this);
    if (Prior == dsInactive && OnDataChange)
        OnDataChange(this, nullptr);
}

void TDataSource::DataEvent(TDataEvent Event, qintptr Info)
{
    if (Event == deUpdateState) {
        UpdateState();
        return;
    }
    if (m_state == dsInactive)
        return;
    const QList<TDataLink*> Links = m_links;
    for (TDataLink* L : Links)
        if (m_links.contains(L))
            L->DataEvent(Event, Info);
    switch (Event) {
    case deFieldChange:
        if (OnDataChange)
            OnDataChange(this, reinterpret_cast<TField*>(Info));
        break;
    case deRecordChange: case deDataSetChange: case deDataSetScroll: case deLayoutChange:
        if (OnDataChange)
            OnDataChange(this, nullptr);
        break;
    case deUpdateRecord:
        if (OnUpdateData)
            OnUpdateData(this);
        break;
    default:
        break;
    }
}

void TDataSource::AddDataLink(TDataLink* Link)
{
    if (!m_links.contains(Link))
        m_links.append(Link);
}

void TDataSource::RemoveDataLink(TDataLink* Link) { m_links.removeOne(Link); }

// ---- TDataLink

TDataLink::TDataLink() = default;

TDataLink::~TDataLink()
{
    if (m_dataSource)
        m_dataSource->RemoveDataLink(this);
}

void TDataLink::SetDataSource(TDataSource* Value)
{
    if (Value == m_dataSource)
        return;
    if (m_dataSource)
        m_dataSource->RemoveDataLink(this);
    m_dataSource = Value;
    if (m_dataSource)
        m_dataSource->AddDataLink(this);
    UpdateEditing();
    SetActive(m_dataSource && m_dataSource->State() != dsInactive);
}

TDataSet* TDataLink::DataSet() const { return m_dataSource ? m_dataSource->DataSet() : nullptr; }

void TDataLink::SetReadOnly(bool Value)
{
    if (Value == m_readOnly)
        return;
    m_readOnly = Value;
    UpdateEditing();
}

void TDataLink::SetActive(bool Value)
{
    if (Value == m_active)
        return;
    m_active = Value;
    m_firstRecord = 0;
    if (Value)
        SyncWindow(true);
    ActiveChanged();
}

void TDataLink::UpdateEditing()
{
    const TDataSetState S = m_dataSource ? m_dataSource->State() : dsInactive;
    const bool Value = (S == dsEdit || S == dsInsert) && !m_readOnly;
    if (Value == m_editing)
        return;
    m_editing = Value;
    EditingChanged();
}

int TDataLink::ScrollWindow()
{
    TDataSet* Ds = DataSet();
    const int Cursor = Ds ? Ds->CurrentRow() : -1;
    if (Cursor < 0) {
        const int Moved = -m_firstRecord;
        m_firstRecord = 0;
        return Moved;
    }
    int Count = 0;
    const int Last = m_firstRecord + m_bufferCount - 1;
    if (Cursor > Last)
        Count = Cursor - Last;
    else if (Cursor < m_firstRecord)
        Count = Cursor - m_firstRecord;
    m_firstRecord += Count;
    return Count;
}

void TDataLink::SyncWindow(bool Clamp)
{
    ScrollWindow();
    TDataSet* Ds = DataSet();
    if (!Clamp || !Ds || !Ds->Active())
        return;
    // After a change keep the window full when rows allow it, the cursor inside it.
    Ds->EnsureRows(m_firstRecord + m_bufferCount);
    const int Rows = Ds->FetchedRowCount();
    if (m_firstRecord + m_bufferCount > Rows)
        m_firstRecord = std::max(0, std::min(m_firstRecord, Rows - m_bufferCount));
}

void TDataLink::DataEvent(TDataEvent Event, qintptr Info)
{
    if (Event == deUpdateState) {
        UpdateEditing();
        SetActive(m_dataSource && m_dataSource->State() != dsInactive);
        return;
    }
    if (!m_active)
        return;
    switch (Event) {
    case deFieldChange: case deRecordChange:
        if (!m_updating)
            RecordChanged(reinterpret_cast<TField*>(Info));
        break;
    case deDataSetChange:
        SyncWindow(true);
        DataSetChanged();
        break;
    case deDataSetScroll:
        DataSetScrolled(ScrollWindow());
        break;
    case deLayoutChange:
        SyncWindow(true);
        LayoutChanged();
        break;
    case deUpdateRecord:
        UpdateRecord();
        break;
    case deCheckBrowseMode:
        CheckBrowseMode();
        break;
    case deFocusControl:
        FocusControl(reinterpret_cast<TField**>(Info));
        break;
    default:
        break;
    }
}

int TDataLink::ActiveRecord() const
{
    TDataSet* Ds = DataSet();
    if (!m_active || !Ds)
        return 0;
    return std::max(Ds->ActiveRow() - m_firstRecord, 0);
}

void TDataLink::SetActiveRecord(int Value)
{
    if (TDataSet* Ds = DataSet(); m_active && Ds)
        Ds->SetActiveRow(m_firstRecord + Value);
}

void TDataLink::SetBufferCount(int Value)
{
    Value = std::max(Value, 1);
    if (Value == m_bufferCount)
        return;
    m_bufferCount = Value;
    if (m_active) {
        SyncWindow(true);
        DataSetChanged();
    }
}

int TDataLink::RecordCount() const
{
    TDataSet* Ds = DataSet();
    if (!m_active || !Ds)
        return 0;
    Ds->EnsureRows(m_firstRecord + m_bufferCount);
    return std::clamp(Ds->FetchedRowCount() - m_firstRecord, 0, m_bufferCount);
}

bool TDataLink::Bof() const { return DataSet() ? DataSet()->Bof() : true; }
bool TDataLink::Eof() const { return DataSet() ? DataSet()->Eof() : true; }
int TDataLink::MoveBy(int Distance) { return DataSet() && m_active ? DataSet()->MoveBy(Distance) : 0; }

bool TDataLink::Edit()
{
    if (!m_readOnly && m_dataSource)
        m_dataSource->Edit();
    return m_editing;
}

void TDataLink::UpdateRecord()
{
    m_updating = true;
    try {
        UpdateData();
    } catch (...) {
        m_updating = false;
        throw;
    }
    m_updating = false;
}

void TDataLink::DataSetScrolled(int) { DataSetChanged(); }
void TDataLink::FocusControl(TField**) {}
void TDataLink::RecordChanged(TField*) {}

// ---- TFieldDataLink

TFieldDataLink::TFieldDataLink() = default;
TFieldDataLink::~TFieldDataLink() = default;

void TFieldDataLink::SetFieldName(const QString& Value)
{
    if (Value == m_fieldName)
        return;
    m_fieldName = Value;
    UpdateField();
}

void TFieldDataLink::UpdateField()
{
    TField* NewField = nullptr;
    if (Active() && DataSet() && !m_fieldName.isEmpty())
        NewField = DataSet()->FieldByName(m_fieldName);
    if (NewField != m_field.data()) {
        m_field = NewField;
        m_modified = false;
        RecordChanged(nullptr);
    }
}

bool TFieldDataLink::CanModify() const { return !ReadOnly() && m_field && m_field->CanModify(); }

void TFieldDataLink::Reset() { RecordChanged(nullptr); }

bool TFieldDataLink::Edit()
{
    if (CanModify())
        TDataLink::Edit();
    return Editing();
}

void TFieldDataLink::ActiveChanged()
{
    UpdateField();
    if (OnActiveChange)
        OnActiveChange(this);
}

void TFieldDataLink::EditingChanged()
{
    if (OnEditingChange)
        OnEditingChange(this);
}

void TFieldDataLink::FocusControl(TField** Field)
{
    if (!Field || !*Field || *Field != m_field.data())
        return;
    auto* W = qobject_cast<QWidget*>(m_control.data());
    if (W && W->isEnabled()) {
        *Field = nullptr;
        W->setFocus(Qt::OtherFocusReason);
    }
}

void TFieldDataLink::LayoutChanged() { UpdateField(); }

void TFieldDataLink::RecordChanged(TField* Field)
{
    if (Field && Field != m_field.data())
        return;
    if (OnDataChange)
        OnDataChange(this);
    m_modified = false;
}

void TFieldDataLink::UpdateData()
{
    if (!m_modified)
        return;
    if (m_field && OnUpdateData)
        OnUpdateData(this);
    m_modified = false;
}

} // namespace Kesh
