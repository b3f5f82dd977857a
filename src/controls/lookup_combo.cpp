// Kesh for Qt — the look-up combo.
#include "lookup_combo.h"
#include "core/conversions.h"
#include "edit.h"
#include "platform/graphics.h"
#include "platform/keyboard.h"
#include "platform/widgets.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QSignalBlocker>

namespace Kesh {

namespace {

constexpr TColor ComboColor = 0xF0FFFF; // a pale cream

bool IsPlain(const QKeyEvent* Event)
{
    return !(Event->modifiers()
        & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
}

// Pressing a modifier or lock key alone is no key of its own.
bool IsModifierKey(int Key)
{
    return Key == Qt::Key_unknown || (Key >= Qt::Key_Shift && Key <= Qt::Key_ScrollLock)
        || Key == Qt::Key_AltGr;
}

// The reasons under which the focus only seems to move: to or from the combo's own list,
// or while another window is active.
bool IsRealMove(const QFocusEvent* Event)
{
    return Event->reason() != Qt::PopupFocusReason && Event->reason() != Qt::ActiveWindowFocusReason;
}

// Keys that edit the text rather than move in the list.
bool IsTyping(const QKeyEvent* Event)
{
    if (Event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return false;
    switch (Event->key()) {
    case Qt::Key_Backspace:
    case Qt::Key_Delete:
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Home:
    case Qt::Key_End:
        return true;
    default:
        return !Event->text().isEmpty() && Event->text()[0].isPrint() && Event->key() != Qt::Key_Space;
    }
}

} // namespace

struct TxLookupComboData
{
    bool LimitToList = false;
    QStringList Values;
    QStringList ItemsA;
    QStringList ItemsE;
    int FixedSize = 1;
    QString OldText;
    QString LastData; // the key last announced by DataChanged
    TBiDiMode Mode = bdLeftToRight;
    bool SettingMode = false;
};

TQxCustomLookupCombo::TQxCustomLookupCombo(QWidget* Parent)
    : QComboBox(Parent), d(new TxLookupComboData)
{
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    // Completion is done here rather than by QCompleter, which stops completing while the
    // list is open and its view has the keyboard.
    setCompleter(nullptr);
    connect(lineEdit(), &QLineEdit::textEdited, this, &TQxCustomLookupCombo::Complete);
    view()->installEventFilter(this);

    QPalette palette = this->palette();
    palette.setColor(QPalette::Base, TColorToQColor(ComboColor));
    setPalette(palette);
    TFont font;
    font.SetCharset(ARABIC_CHARSET);
    ApplyFont(this, font);

    d->Mode = BiDiModeOf(this);
    connect(this, &QComboBox::currentTextChanged, this, &TQxCustomLookupCombo::CheckDataChanged);
    SetFixedSize(1);
}

TQxCustomLookupCombo::~TQxCustomLookupCombo() = default;

bool TQxCustomLookupCombo::GetLimitToList() const { return d->LimitToList; }
void TQxCustomLookupCombo::SetLimitToList(bool Value) { d->LimitToList = Value; }
QStringList TQxCustomLookupCombo::GetValues() const { return d->Values; }
QStringList TQxCustomLookupCombo::GetItems_a() const { return d->ItemsA; }
QStringList TQxCustomLookupCombo::GetItems_e() const { return d->ItemsE; }
int TQxCustomLookupCombo::GetFixedSize() const { return d->FixedSize; }
QString TQxCustomLookupCombo::OldText() const { return d->OldText; }
TBiDiMode TQxCustomLookupCombo::GetBiDiMode() const { return d->Mode; }
bool TQxCustomLookupCombo::IsEmpty() const { return Kesh::IsEmpty(currentText()); }

void TQxCustomLookupCombo::SetValues(const QStringList& Value)
{
    d->Values = Value;
    CheckDataChanged();
}

// The caption lists replace the shown items only under their own language; the two mixed
// directions take neither.
void TQxCustomLookupCombo::SetItems_a(const QStringList& Value)
{
    d->ItemsA = Value;
    if (d->Mode == bdRightToLeft) {
        ReplaceItems(Value);
        CheckDataChanged();
    }
}

void TQxCustomLookupCombo::SetItems_e(const QStringList& Value)
{
    d->ItemsE = Value;
    if (d->Mode == bdLeftToRight) {
        ReplaceItems(Value);
        CheckDataChanged();
    }
}

void TQxCustomLookupCombo::ReplaceItems(const QStringList& Items)
{
    clear();
    addItems(Items);
    // Qt selects the first item of a list that was empty; the choice stays open instead.
    setCurrentIndex(-1);
    clearEditText();
}

QString TQxCustomLookupCombo::Data() const
{
    if (d->Values.isEmpty())
        return QString();
    const int i = IndexOfCaption(currentText());
    return i >= 0 && i < d->Values.size() ? d->Values[i] : QString();
}

void TQxCustomLookupCombo::SetData(const QString& Value)
{
    setCurrentIndex(d->Values.indexOf(Value));
    if (currentIndex() == -1)
        clearEditText();
}

int TQxCustomLookupCombo::IndexOfCaption(const QString& Text) const
{
    for (int i = 0; i < count(); ++i)
        if (itemText(i).compare(Text, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

bool TQxCustomLookupCombo::Matched() const
{
    return IndexOfCaption(currentText()) >= 0;
}

void TQxCustomLookupCombo::Clear()
{
    clear();
    clearEditText();
    d->Values.clear();
    CheckDataChanged();
}

void TQxCustomLookupCombo::Undo()
{
    if (d->OldText.isEmpty()) {
        setCurrentIndex(-1);
        clearEditText();
    } else {
        ShowText(d->OldText);
    }
    hidePopup();
}

void TQxCustomLookupCombo::ShowText(const QString& Text)
{
    setCurrentIndex(findText(Text, Qt::MatchFixedString | Qt::MatchCaseSensitive));
    setEditText(Text);
}

void TQxCustomLookupCombo::ClearChoice()
{
    {
        // One change notification for the whole operation, whatever was shown.
        const QSignalBlocker blocker(this);
        setCurrentIndex(-1);
        clearEditText();
        SetData(QString());
    }
    emit editTextChanged(currentText());
    emit currentTextChanged(currentText());
}

void TQxCustomLookupCombo::CheckDataChanged()
{
    const QString now = Data();
    if (now == d->LastData)
        return;
    d->LastData = now;
    emit DataChanged(now);
}

void TQxCustomLookupCombo::SetBiDiMode(TBiDiMode Value)
{
    d->Mode = Value;
    d->SettingMode = true;
    SetBiDiModeOf(this, Value);
    d->SettingMode = false;
    SwitchLanguage(Value);
}

void TQxCustomLookupCombo::SwitchLanguage(TBiDiMode Mode)
{
    if (Mode != bdRightToLeft && Mode != bdLeftToRight)
        return;
    const QString key = Data();
    {
        // The same record stays chosen: no change to announce.
        const QSignalBlocker blocker(this);
        ReplaceItems(Mode == bdRightToLeft ? d->ItemsA : d->ItemsE);
        SetData(key);
    }
    CheckDataChanged();
}

void TQxCustomLookupCombo::changeEvent(QEvent* Event)
{
    if (Event->type() == QEvent::LayoutDirectionChange && !d->SettingMode) {
        d->Mode = BiDiModeOf(this);
        SwitchLanguage(d->Mode);
    }
    QComboBox::changeEvent(Event);
}

void TQxCustomLookupCombo::SetFixedSize(int Value)
{
    d->FixedSize = Value;
    // A standard step holds the width against every resize, by hand or by a layout.
    if (const int w = TQxCustomEdit::StepWidth(Value)) {
        setFixedWidth(w);
    } else {
        setMinimumWidth(0);
        setMaximumWidth(QWIDGETSIZE_MAX);
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    }
    update();
}

void TQxCustomLookupCombo::focusInEvent(QFocusEvent* Event)
{
    QComboBox::focusInEvent(Event);
    if (Event->reason() != Qt::PopupFocusReason)
        ActivateDirectionKeyboard(layoutDirection());
    if (IsRealMove(Event))
        d->OldText = currentText();
}

void TQxCustomLookupCombo::focusOutEvent(QFocusEvent* Event)
{
    QComboBox::focusOutEvent(Event);
    // The open list takes the keyboard focus into its own window: that is no leaving either.
    const QWidget* now = QApplication::focusWidget();
    if (!IsRealMove(Event) || (now && now->window() == view()->window()))
        return;
    if (!d->LimitToList || currentText().isEmpty() || Matched())
        return;
    Beep();
    // Taking the focus back inside its own loss would fight the move under way.
    QPointer<TQxCustomLookupCombo> self(this);
    QMetaObject::invokeMethod(this, [self] {
        if (self && self->isVisible())
            self->setFocus(Qt::OtherFocusReason);
    }, Qt::QueuedConnection);
}

// Incremental typing: the first caption that starts with the typed text, in any letter case,
// is chosen and its remainder selected, so the next key replaces it; an open list follows.
void TQxCustomLookupCombo::Complete(const QString& Typed)
{
    const int i = Typed.isEmpty() ? -1 : IndexOfPrefix(Typed);
    if (i < 0)
        return;
    setCurrentIndex(i);
    lineEdit()->setSelection(itemText(i).size(), Typed.size() - itemText(i).size());
    view()->setCurrentIndex(model()->index(i, modelColumn(), rootModelIndex()));
}

int TQxCustomLookupCombo::IndexOfPrefix(const QString& Typed) const
{
    for (int i = 0; i < count(); ++i)
        if (itemText(i).startsWith(Typed, Qt::CaseInsensitive))
            return i;
    return -1;
}

// While the list is open its view has the keyboard; typing still edits the text.
bool TQxCustomLookupCombo::eventFilter(QObject* Watched, QEvent* Event)
{
    if (Watched == view() && Event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(Event);
        if (IsTyping(key)) {
            keyPressEvent(key);
            return true;
        }
    }
    return QComboBox::eventFilter(Watched, Event);
}

void TQxCustomLookupCombo::keyPressEvent(QKeyEvent* Event)
{
    if (HandleKey(Event))
        Event->accept();
    else
        QComboBox::keyPressEvent(Event);
}

bool TQxCustomLookupCombo::HandleKey(QKeyEvent* Event)
{
    const int key = Event->key();
    const bool open = view()->isVisible();
    switch (key) {
    case Qt::Key_Insert:
        return false;
    case Qt::Key_Backspace:
        ClearChoice();
        return true;
    case Qt::Key_Enter:
    case Qt::Key_Return:
        if (open)
            hidePopup();
        else if (window()->isVisible())
            SelectNextControl(this, true);
        return true;
    case Qt::Key_Escape:
        if (!IsPlain(Event))
            return false;
        Undo();
        return true;
    case Qt::Key_Delete:
        ShowText(QString());
        return true;
    case Qt::Key_Space:
        if (!open)
            showPopup();
        return true;
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        return !open;
    case Qt::Key_Up:
    case Qt::Key_Down:
        if (!IsPlain(Event) || open)
            return false;
        SelectNextControl(this, key == Qt::Key_Down);
        return true;
    default:
        if (IsPlain(Event) && !open && !IsModifierKey(key))
            showPopup();
        return false;
    }
}

TQxFixedDropList::TQxFixedDropList(QWidget* Parent) : TQxCustomLookupCombo(Parent) {}

TQxFixedDropList::~TQxFixedDropList() = default;

} // namespace Kesh
