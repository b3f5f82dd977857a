#include "db_edits.h"

#include "db_guard_p.h"
#include "integer_dates.h"
#include "integer_fields.h"
#include "platform/data/dataset.h"
#include "platform/widgets.h"
#include <QKeyEvent>
#include <QKeySequence>
#include <algorithm>

#include "Kesh_Form_Calendar.h"

namespace Kesh {

namespace {

// What may be typed into a field of this class: the integer date and time fields read
// their own text, the numbers their digits.
TxDataEntry EntryFor(const TField* Field)
{
    if (!Field || qobject_cast<const TQxDateField*>(Field) || qobject_cast<const TQxTimeField*>(Field))
        return DeAnything;
    switch (Field->DataType()) {
    case ftSmallint: case ftInteger: case ftWord: case ftLargeint: case ftAutoInc:
        return DeInteger;
    case ftFloat: case ftCurrency: case ftBCD: case ftFMTBcd:
        return DeFloat;
    default:
        return DeAnything;
    }
}

// Keys that change the text of a line edit.
bool ChangesText(const QKeyEvent* Event)
{
    const bool Command = (Event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier)) && !(Event->modifiers() & Qt::AltModifier);
    if (!Command && !Event->text().isEmpty() && Event->text().at(0).unicode() >= 32)
        return true;
    return Event->key() == Qt::Key_Backspace || Event->key() == Qt::Key_Delete || Event->matches(QKeySequence::Paste)
           || Event->matches(QKeySequence::Cut) || Event->matches(QKeySequence::Undo) || Event->matches(QKeySequence::Redo);
}

const QString ErrorMark = QStringLiteral("#Error#");

} // namespace

// ---- TxDataEdit

template <class Base>
TxDataEdit<Base>::TxDataEdit(QWidget* Parent) : Base(Parent), TxFieldBinding(this)
{
    DataLink()->OnDataChange = [this](TFieldDataLink*) {
        FollowField();
        ShowField();
    };
    DataLink()->OnActiveChange = [this](TFieldDataLink*) { FollowField(); };
    DataLink()->OnEditingChange = [this](TFieldDataLink*) { FollowField(); };
    DataLink()->OnUpdateData = [this](TFieldDataLink*) {
        if (this->text() != ErrorMark)
            Field()->SetText(this->text());
    };
    // A field may show itself differently in the other language (the time field's marks),
    // also when the form keeps its own direction.
    QObject::connect(Application(), &THostApplication::BiDiModeChanged, this, [this] {
        if (!DataLink()->IsModified())
            ShowField();
    });
    QObject::connect(this, &QLineEdit::textChanged, this, [this](const QString& Text) {
        if (!m_showing)
            DataLink()->Modified();
        NotifyDataChanged(Text);
    });
    FollowField();
}

template <class Base>
TxDataEdit<Base>::~TxDataEdit() = default;

template <class Base>
void TxDataEdit<Base>::BindingChanged()
{
    FollowField();
    ShowField();
}

template <class Base>
void TxDataEdit<Base>::ReadOnlyChanged()
{
    FollowField();
}

template <class Base>
void TxDataEdit<Base>::SetData(const QString& Value)
{
    if (Value == this->text() || !BeginEditing())
        return;
    this->setText(Value);
}

template <class Base>
void TxDataEdit<Base>::FollowField()
{
    this->setReadOnly(!DataLink()->CanModify());
    this->SetDataEntry(EntryFor(Field()));
}

template <class Base>
void TxDataEdit<Base>::ShowField()
{
    QString Text;
    if (TField* F = Field())
        Text = this->hasFocus() && !this->isReadOnly() ? F->Text() : F->DisplayText();
    m_showing = true;
    if (Text != this->text())
        this->setText(Text);
    m_showing = false;
}

// Puts the dataset in edit mode before the text changes; the typed text survives the
// new reading of the row that entering edit mode brings.
template <class Base>
bool TxDataEdit<Base>::BeginEditing()
{
    if (!Field())
        return false;
    if (DataLink()->Editing())
        return true;
    const QString Typed = this->text();
    const bool Modified = DataLink()->IsModified();
    const bool Editing = Guarded(this, [this] { DataLink()->Edit(); }) && DataLink()->Editing();
    if (Editing && Modified && this->text() != Typed) {
        this->setText(Typed);
        DataLink()->Modified();
    }
    return Editing;
}

template <class Base>
bool TxDataEdit<Base>::WriteField()
{
    if (!DataLink()->IsModified() || !Field())
        return true;
    if (this->text() == ErrorMark || !BeginEditing()) {
        DataLink()->Reset();
        return true;
    }
    return Guarded(this, [this] { DataLink()->UpdateRecord(); });
}

template <class Base>
bool TxDataEdit<Base>::AcceptsChar(QChar C) const
{
    return Base::AcceptsChar(C) && (!Field() || Field()->IsValidChar(C));
}

// A typed character that the filter refuses: the base edit beeps, nothing is edited.
template <class Base>
bool TxDataEdit<Base>::Refused(const QKeyEvent* Event) const
{
    const QString Typed = Event->text();
    return std::any_of(Typed.begin(), Typed.end(), [this](QChar C) { return C.unicode() >= 32 && !AcceptsChar(C); });
}

template <class Base>
void TxDataEdit<Base>::DoExit()
{
    if (WriteField() && !DataLink()->IsModified())
        ShowField();  // the display text again
    emit this->Exit();
}

template <class Base>
void TxDataEdit<Base>::keyPressEvent(QKeyEvent* Event)
{
    const int Key = Event->key();
    if (Key == Qt::Key_Escape && DataLink()->IsModified()) {
        DataLink()->Reset();
        this->selectAll();
        Event->accept();
        return;
    }
    if (Key == Qt::Key_Return || Key == Qt::Key_Enter) {
        if (!WriteField()) {
            Event->accept();
            return;
        }
    } else if (ChangesText(Event) && !this->isReadOnly() && !Refused(Event) && !BeginEditing()) {
        Beep();
        Event->accept();
        return;
    }
    Base::keyPressEvent(Event);
}

template <class Base>
void TxDataEdit<Base>::focusInEvent(QFocusEvent* Event)
{
    Base::focusInEvent(Event);
    if (!DataLink()->IsModified())
        ShowField();  // the edit text while editing
}

template <class Base>
void TxDataEdit<Base>::changeEvent(QEvent* Event)
{
    Base::changeEvent(Event);
    // A field may show itself differently in the other language (the time field's marks).
    if (Event->type() == QEvent::LayoutDirectionChange && !DataLink()->IsModified())
        ShowField();
}

template class TxDataEdit<TQxEdit>;
template class TxDataEdit<TQxEditButton>;

// ---- TQxdbEdit, TQxdbEditButton

TQxdbEdit::TQxdbEdit(QWidget* Parent) : TxDataEdit<TQxEdit>(Parent) {}
TQxdbEdit::~TQxdbEdit() = default;

TQxdbEditButton::TQxdbEditButton(QWidget* Parent) : TxDataEdit<TQxEditButton>(Parent)
{
    _OnButtonClick = [this](QObject*) { Guarded(this, [this] { ButtonClicked(); }); };
}

TQxdbEditButton::~TQxdbEditButton() = default;

void TQxdbEditButton::ButtonClicked()
{
    if (qobject_cast<TQxDateField*>(Field()))
        PickDate();
}

void TQxdbEditButton::PickDate()
{
    // The picker opens in the calendar of the field's date (Gregorian when empty).
    int Date = Field()->AsInteger();
    if (SelectDate(Date, IsHijri(Date)))
        SetData(TQxDateField::DateText(Date));
}

// ---- TQxdbText

TQxdbText::TQxdbText(QWidget* Parent) : TQxCustomLabel(Parent), TxFieldBinding(this)
{
    DataLink()->OnDataChange = [this](TFieldDataLink*) { ShowField(); };
    DataLink()->OnActiveChange = [this](TFieldDataLink*) { ShowField(); };
    connect(Application(), &THostApplication::BiDiModeChanged, this, [this] { ShowField(); });
}

TQxdbText::~TQxdbText() = default;

QString TQxdbText::Data() const { return m_data; }

void TQxdbText::ShowField()
{
    const QString Text = Field() ? Field()->DisplayText() : QString();
    SetCaption(Text);
    if (Text == m_data)
        return;
    m_data = Text;
    emit DataChanged(m_data);
}

void TQxdbText::changeEvent(QEvent* Event)
{
    TQxCustomLabel::changeEvent(Event);
    if (Event->type() == QEvent::LayoutDirectionChange)
        ShowField();
}

} // namespace Kesh
