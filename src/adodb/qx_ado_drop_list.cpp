#include "qx_ado_drop_list.h"
#include "core/conversions.h"
#include "core/messages.h"
#include "platform/data/ado_connection.h"
#include "platform/data/ado_dataset.h"
#include "platform/data/data_source.h"
#include "platform/data/fields.h"
#include "platform/rtl/strings.h"
#include "platform/widgets.h"

#include <QEvent>
#include <QPointer>
#include <QScopedValueRollback>
#include <QSet>

namespace Kesh {

// ---------------------------------------------------------------------------------------------
// TxAdoListSource

TxAdoListSource::TxAdoListSource() : m_query(new TADOQuery)
{
    m_query->SetParamCheck(false);
    m_query->SetCursorType(ctKeyset);
    m_query->SetCursorLocation(clUseServer);
    m_query->SetLockType(ltReadOnly);
}

TxAdoListSource::~TxAdoListSource() = default;

TADOConnection* TxAdoListSource::GetConnection() const { return m_query->Connection(); }
void TxAdoListSource::SetConnection(TADOConnection* Value) { m_query->SetConnection(Value); }

bool TxAdoListSource::CanRefill() const
{
    return m_query->Connection() && m_query->Connection()->Connected();
}

QString TxAdoListSource::SelectText()
{
    if (!m_query->Connection() || m_listKey.isEmpty() || m_listFieldA.isEmpty() || m_listFieldE.isEmpty()
        || m_listTable.isEmpty())
        return QString();
    QString Text = QStringLiteral("Select ") + m_listKey + QStringLiteral(", ") + m_listFieldA + QStringLiteral(", ")
        + m_listFieldE + QStringLiteral(" From ") + m_listTable;
    m_criteria = Trim(m_criteria);
    if (!m_criteria.isEmpty())
        Text += QStringLiteral(" Where ") + m_criteria;
    return Text + QStringLiteral(" Order By ") + (m_orderBy.isEmpty() ? m_listKey : m_orderBy);
}

void TxAdoListSource::Fill(TQxCustomLookupCombo* Combo)
{
    const QString Text = SelectText();
    if (Text.isEmpty())
        return;
    m_query->Close();
    m_query->SetSQL({Text});
    m_query->Open();
    Combo->setCurrentIndex(-1);
    Combo->Clear();
    QStringList Keys, TextsA, TextsE;
    QSet<QString> Seen;
    for (m_query->First(); !m_query->Eof(); m_query->Next()) {
        const QString Key = m_query->Fields()[0]->AsString();
        if (Seen.contains(Key))
            continue;  // the first row of a key wins
        Seen.insert(Key);
        const QString Prefix = m_showKey ? Key + QStringLiteral(": ") : QString();
        Keys << Key;
        TextsA << Prefix + m_query->Fields()[1]->AsString();
        TextsE << Prefix + m_query->Fields()[2]->AsString();
    }
    m_query->Close();
    // Keys first: the captions that become the shown items then match a key each.
    Combo->SetValues(Keys);
    Combo->SetItems_a(TextsA);
    Combo->SetItems_e(TextsE);
}

void TxAdoListSource::Refill(TQxCustomLookupCombo* Combo)
{
    if (m_busy)
        return;
    const QScopedValueRollback<bool> Busy(m_busy, true);
    const QString Key = Combo->Data();
    Combo->Clear();
    Fill(Combo);
    Combo->SetData(Key);
}

// ---------------------------------------------------------------------------------------------
// TQxAdoDropList

TQxAdoDropList::TQxAdoDropList(QWidget* Parent) : TQxCustomLookupCombo(Parent) {}
TQxAdoDropList::~TQxAdoDropList() = default;

void TQxAdoDropList::FillDataList()
{
    Fill(this);
}

void TQxAdoDropList::Requery()
{
    Clear();
    FillDataList();
}

void TQxAdoDropList::Rebuild()
{
    if (CanRefill() && !IsDesigning(this))
        Refill(this);
}

void TQxAdoDropList::SetBiDiMode(TBiDiMode Value)
{
    TQxCustomLookupCombo::SetBiDiMode(Value);
    Rebuild();
}

// The application's language switch reaches every widget as a direction change.
void TQxAdoDropList::changeEvent(QEvent* Event)
{
    TQxCustomLookupCombo::changeEvent(Event);
    if (Event->type() == QEvent::LayoutDirectionChange)
        Rebuild();
}

// ---------------------------------------------------------------------------------------------
// TQxAdoLookupDropList

class TQxAdoLookupDropListPrivate
{
public:
    TFieldDataLink DataLink;
    QPointer<TDataSource> Source;
    QMetaObject::Connection SourceGone;
    bool Updating = false;  // the control is writing its field
    bool Showing = false;   // the field's value is being shown
};

namespace {

// The classic Boolean texts: -1 for true, 0 for false, and back (any non-zero number is true).
QString BoolToStr(bool Value) { return Value ? QStringLiteral("-1") : QStringLiteral("0"); }

bool StrToBool(const QString& Text)
{
    if (Text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
        return true;
    return AsFloat(Text) != 0;
}

} // namespace

TQxAdoLookupDropList::TQxAdoLookupDropList(QWidget* Parent)
    : TQxCustomLookupCombo(Parent), d(new TQxAdoLookupDropListPrivate)
{
    d->DataLink.SetControl(this);
    d->DataLink.OnDataChange = [this](TFieldDataLink*) { FieldDataChange(); };
    connect(this, &TQxCustomLookupCombo::DataChanged, this, [this] {
        if (!d->Showing && !Refilling())
            Change();
    });
}

TQxAdoLookupDropList::~TQxAdoLookupDropList()
{
    d->DataLink.OnDataChange = nullptr;
    disconnect(d->SourceGone);
}

QString TQxAdoLookupDropList::GetDataField() const { return d->DataLink.FieldName(); }
void TQxAdoLookupDropList::SetDataField(const QString& Value) { d->DataLink.SetFieldName(Value); }
TDataSource* TQxAdoLookupDropList::GetDataSource() const { return d->Source; }
TField* TQxAdoLookupDropList::Field() const { return d->DataLink.Field(); }

void TQxAdoLookupDropList::SetDataSource(TDataSource* Value)
{
    disconnect(d->SourceGone);
    d->Source = Value;
    d->DataLink.SetDataSource(Value);
    if (Value)
        d->SourceGone = connect(Value, &QObject::destroyed, this, [this] {
            d->Source = nullptr;
            d->DataLink.SetDataSource(nullptr);
        });
}

void TQxAdoLookupDropList::FillDataList()
{
    Fill(this);
}

void TQxAdoLookupDropList::Requery()
{
    if (IsDesigning(this))
        return;
    if (!Query()->Connection())
        RaiseError(objectName() + QStringLiteral(": No connection assigned."));
    if (CanRefill())
        Refill(this);
}

void TQxAdoLookupDropList::SetBiDiMode(TBiDiMode Value)
{
    TQxCustomLookupCombo::SetBiDiMode(Value);
    if (CanRefill())
        Requery();
}

void TQxAdoLookupDropList::changeEvent(QEvent* Event)
{
    TQxCustomLookupCombo::changeEvent(Event);
    if (Event->type() == QEvent::LayoutDirectionChange && CanRefill())
        Requery();
}

void TQxAdoLookupDropList::FieldDataChange()
{
    TField* F = Field();
    if (d->Updating || !F)
        return;
    d->Showing = true;
    try {
        if (count() == 0 && !Refilling())
            FillDataList();
        SetData(F->DataType() == ftBoolean && !F->IsNull() ? BoolToStr(F->AsBoolean()) : F->AsString());
    } catch (...) {
        d->Showing = false;
        throw;
    }
    d->Showing = false;
}

void TQxAdoLookupDropList::Change()
{
    TField* F = Field();
    if (!F)
        return;
    d->Updating = true;
    try {
        if (d->DataLink.Edit()) {
            const QString Key = Data();
            if (F->DataType() == ftBoolean)
                F->SetAsBoolean(StrToBool(Key));
            else
                F->SetAsString(Key);
        }
    } catch (...) {
        d->Updating = false;
        throw;
    }
    d->Updating = false;
}

} // namespace Kesh
