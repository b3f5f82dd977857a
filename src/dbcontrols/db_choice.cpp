#include "db_choice.h"

#include "db_guard_p.h"
#include "platform/widgets.h"
#include <QApplication>
#include <QChildEvent>
#include <QKeyEvent>
#include <QRadioButton>

namespace Kesh {

namespace {

// The values of a ";"-separated list, each trimmed, as the classic field-name lists split.
QStringList SplitValues(const QString& List)
{
    QStringList Result;
    for (const QString& Item : List.split(QLatin1Char(';')))
        Result << Item.trimmed();
    return Result;
}

bool IsBoolean(const TField* Field) { return Field && Field->DataType() == ftBoolean; }

// Starts editing through Link; errors are shown. True when the dataset is in edit mode.
bool StartEditing(QObject* Control, TFieldDataLink& Link)
{
    return Link.Editing() || (Guarded(Control, [&Link] { Link.Edit(); }) && Link.Editing());
}

void WriteOnExit(QObject* Control, TFieldDataLink& Link)
{
    Guarded(Control, [&Link] { Link.UpdateRecord(); });
}

} // namespace

// ---- TQxdbCheckBox

struct TQxdbCheckBoxPrivate
{
    QString ValueChecked = QStringLiteral("True");
    QString ValueUnchecked = QStringLiteral("False");
};

TQxdbCheckBox::TQxdbCheckBox(QWidget* Parent) : TQxCheckBox(Parent), TxFieldBinding(this), d(new TQxdbCheckBoxPrivate)
{
    DataLink()->OnDataChange = [this](TFieldDataLink*) { FieldDataChange(); };
    DataLink()->OnActiveChange = [this](TFieldDataLink*) { FieldDataChange(); };
    DataLink()->OnUpdateData = [this](TFieldDataLink*) { UpdateData(); };
}

TQxdbCheckBox::~TQxdbCheckBox() = default;

void TQxdbCheckBox::DataFieldChanged(const QString& Value)
{
    NameAfterField(this, Value);
}

QString TQxdbCheckBox::GetValueChecked() const { return d->ValueChecked; }
void TQxdbCheckBox::SetValueChecked(const QString& Value)
{
    d->ValueChecked = Value;
    FieldDataChange();
}
QString TQxdbCheckBox::GetValueUnchecked() const { return d->ValueUnchecked; }
void TQxdbCheckBox::SetValueUnchecked(const QString& Value)
{
    d->ValueUnchecked = Value;
    FieldDataChange();
}

bool TQxdbCheckBox::ValueMatches(const QString& Value, const QString& List)
{
    const QStringList Values = SplitValues(List);
    return std::any_of(Values.begin(), Values.end(),
                       [&Value](const QString& V) { return V.compare(Value, Qt::CaseInsensitive) == 0; });
}

void TQxdbCheckBox::FieldDataChange()
{
    const TField* F = Field();
    if (!F)
        SetChecked(false);
    else if (IsBoolean(F))
        SetChecked(!F->IsNull() && F->AsBoolean());
    else
        SetChecked(ValueMatches(F->Text(), d->ValueChecked));  // neither list: unchecked too
}

void TQxdbCheckBox::UpdateData()
{
    TField* F = Field();
    if (IsBoolean(F))
        F->SetAsBoolean(GetChecked());
    else
        F->SetText(SplitValues(GetChecked() ? d->ValueChecked : d->ValueUnchecked).value(0));
}

// A click toggles only when the dataset takes the change.
void TQxdbCheckBox::nextCheckState()
{
    if (!Field() || !DataLink()->CanModify() || !StartEditing(this, *DataLink()))
        return;
    TQxCheckBox::nextCheckState();
    DataLink()->Modified();
}

void TQxdbCheckBox::focusOutEvent(QFocusEvent* Event)
{
    TQxCheckBox::focusOutEvent(Event);
    WriteOnExit(this, *DataLink());
}

// ---- TQxdbRadioGroup

struct TQxdbRadioGroupPrivate
{
    QString Value;
    QStringList Values;
    bool InSetValue = false;
};

TQxdbRadioGroup::TQxdbRadioGroup(QWidget* Parent) : TQxRadioGroup(Parent), TxFieldBinding(this), d(new TQxdbRadioGroupPrivate)
{
    DataLink()->OnDataChange = [this](TFieldDataLink*) { SetValue(Field() ? Field()->Text() : QString()); };
    DataLink()->OnActiveChange = DataLink()->OnDataChange;
    DataLink()->OnUpdateData = [this](TFieldDataLink*) { Field()->SetText(d->Value); };
    connect(this, &TQxRadioGroup::ItemIndexChanged, this, [this](int Index) {
        if (!d->InSetValue)
            Chosen(Index);
    });
}

TQxdbRadioGroup::~TQxdbRadioGroup() = default;

QStringList TQxdbRadioGroup::GetValues() const { return d->Values; }
void TQxdbRadioGroup::SetValues(const QStringList& Value)
{
    d->Values = Value;
    DataLink()->Reset();
}
QString TQxdbRadioGroup::GetValue() const { return d->Value; }

QString TQxdbRadioGroup::GetButtonValue(int Index) const
{
    if (Index >= 0 && Index < d->Values.size() && !d->Values[Index].isEmpty())
        return d->Values[Index];
    return GetItems().value(Index);
}

void TQxdbRadioGroup::SetValue(const QString& Value)
{
    if (Value == d->Value)
        return;
    Select(Value);
    d->Value = Value;
    emit ValueChanged(Value);
    if (OnChange)
        OnChange(this);
}

// Selects the first button of Value (none: no selection), keeping the focus in the group.
void TQxdbRadioGroup::Select(const QString& Value)
{
    d->InSetValue = true;
    const QRadioButton* Old = Button(GetItemIndex());
    const bool HadFocus = Old && Old->hasFocus();
    int Index = -1;
    for (int I = 0; I < GetItems().size() && Index < 0; ++I)
        if (GetButtonValue(I) == Value)
            Index = I;
    SetItemIndex(Index);
    if (HadFocus && Index >= 0)
        Button(Index)->setFocus(Qt::OtherFocusReason);
    d->InSetValue = false;
}

// The user chose button Index: the dataset goes into edit mode first, or the choice goes back.
void TQxdbRadioGroup::Chosen(int Index)
{
    if (Field() && !(DataLink()->CanModify() && StartEditing(this, *DataLink()))) {
        Select(d->Value);
        Beep();
        return;
    }
    if (Index >= 0)
        SetValue(GetButtonValue(Index));
    if (DataLink()->Editing())
        DataLink()->Modified();
}

// The next control of the form after the group's own buttons.
void TQxdbRadioGroup::FocusNextControl()
{
    QWidget* Next = this;
    for (int I = 0; Button(I); ++I)
        Next = Button(I);
    for (int Steps = 0; Next && (Next == this || isAncestorOf(Next)) && Steps <= GetItems().size(); ++Steps)
        Next = NextControlIn(window(), Next, true);
    if (Next && Next != this && !isAncestorOf(Next))
        Next->setFocus(Qt::TabFocusReason);
}

bool TQxdbRadioGroup::HandleKey(QKeyEvent* Event)
{
    switch (Event->key()) {
    case Qt::Key_Return: case Qt::Key_Enter:
        FocusNextControl();
        return true;
    case Qt::Key_Backspace: case Qt::Key_Space:
        if (Field() && DataLink()->CanModify())
            StartEditing(this, *DataLink());
        return false;
    case Qt::Key_Escape:
        DataLink()->Reset();
        return true;
    default:
        return false;
    }
}

bool TQxdbRadioGroup::eventFilter(QObject* Watched, QEvent* Event)
{
    if (qobject_cast<QRadioButton*>(Watched) && Watched->parent() == this) {
        if (Event->type() == QEvent::KeyPress && HandleKey(static_cast<QKeyEvent*>(Event)))
            return true;
        if (Event->type() == QEvent::FocusOut && !isAncestorOf(QApplication::focusWidget()))
            WriteOnExit(this, *DataLink());
    }
    return TQxRadioGroup::eventFilter(Watched, Event);
}

// The buttons are rebuilt with the items; each new one reports its keys here.
void TQxdbRadioGroup::childEvent(QChildEvent* Event)
{
    if (Event->added())
        Event->child()->installEventFilter(this);
    TQxRadioGroup::childEvent(Event);
}

void TQxdbRadioGroup::keyPressEvent(QKeyEvent* Event)
{
    if (HandleKey(Event))
        Event->accept();
    else
        TQxRadioGroup::keyPressEvent(Event);
}

// ---- TQxdbFixedDropList

TQxdbFixedDropList::TQxdbFixedDropList(QWidget* Parent) : TQxCustomLookupCombo(Parent), TxFieldBinding(this)
{
    DataLink()->OnDataChange = [this](TFieldDataLink*) { FieldDataChange(); };
    DataLink()->OnActiveChange = DataLink()->OnDataChange;
    connect(this, &TQxCustomLookupCombo::DataChanged, this, [this] { Change(); });
}

TQxdbFixedDropList::~TQxdbFixedDropList() = default;

void TQxdbFixedDropList::FieldDataChange()
{
    if (m_updating)
        return;
    const TField* F = Field();
    QString Key;
    if (F && IsBoolean(F))
        Key = F->IsNull() ? QString() : F->AsBoolean() ? QStringLiteral("-1") : QStringLiteral("0");
    else if (F)
        Key = F->Text();
    m_updating = true;
    SetData(Key);
    m_updating = false;
}

void TQxdbFixedDropList::Change()
{
    TField* F = Field();
    if (m_updating || !F)
        return;
    m_updating = true;
    const bool Written = DataLink()->CanModify() && StartEditing(this, *DataLink()) && Guarded(this, [this, F] {
        const QString Key = Data();
        if (IsBoolean(F) && !Key.isEmpty())
            F->SetAsBoolean(Key.compare(QLatin1String("false"), Qt::CaseInsensitive) != 0 && Key != QLatin1String("0"));
        else
            F->SetText(Key);
    });
    m_updating = false;
    if (!Written)
        FieldDataChange();  // the field keeps its value, and the list shows it again
}

} // namespace Kesh
