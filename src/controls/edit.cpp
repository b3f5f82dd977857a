#include "edit.h"

#include "buttons.h"
#include "core/conversions.h"
#include "core/messages.h"
#include "core/select_date.h"
#include "platform/exceptions.h"
#include "platform/keyboard.h"
#include "platform/rtl/datetime.h"
#include "platform/rtl/numbers.h"
#include "platform/widgets.h"

#include <QFocusEvent>
#include <QKeyEvent>
#include <QPointer>
#include <QStyle>

#include <algorithm>

namespace Kesh {

namespace {

constexpr unsigned ErrorBeep = 16;

// A value the calendar cannot show leaves a visible mark in the box.
QString DateTextOrError(TDateTime Value, QString (*ToText)(TDateTime))
{
    try {
        return ToText(Value);
    } catch (const EConvertError&) {
        return QStringLiteral("#Error#");
    }
}

// No exception may leave an event handler: the silent abort ends Action quietly, any
// other library error is shown as the application object would show it.
// Sender, which gets the focus back, may be gone by then.
template <class F>
void RunGuarded(QObject* Sender, F&& Action)
{
    const QPointer<QObject> Target = Sender;
    try {
        Action();
    } catch (const EAbort&) {
    } catch (const Exception& E) {
        ShowError(E.Message, Target.data());
    }
}

} // namespace

// ---- TQxCustomEdit ----

TQxCustomEdit::TQxCustomEdit(QWidget* Parent) : QLineEdit(Parent)
{
    setFont(TFont().Font());
    resize(StepWidth(m_fixedSize), FixedHeight);
    ApplyStateColor();
    AlignToReadingSide();
}

int TQxCustomEdit::StepWidth(int Step)
{
    return Step >= 1 && Step <= 6 ? 101 + 104 * (Step - 1) : 0;
}

void TQxCustomEdit::SetFixedSize(int Value)
{
    if (!SizeRuleApplies())
        return;
    m_fixedSize = Value;
    FixedSizeChanged();
    updateGeometry();
    ApplySizeRule();
    update();
}

void TQxCustomEdit::SetColorEnabled(TColor Value)
{
    m_colorEnabled = Value;
    update();
}

void TQxCustomEdit::SetColorDisabled(TColor Value)
{
    m_colorDisabled = Value;
    update();
}

TColor TQxCustomEdit::GetColor() const
{
    return QColorToTColor(palette().color(QPalette::Base));
}

void TQxCustomEdit::SetColor(TColor Value)
{
    QPalette P = palette();
    P.setColor(QPalette::All, QPalette::Base, TColorToQColor(Value));
    setPalette(P);
}

bool TQxCustomEdit::IsManagedByLayout() const
{
    return Kesh::IsManagedByLayout(this);
}

QSize TQxCustomEdit::sizeHint() const
{
    const QSize Hint = QLineEdit::sizeHint();
    if (!SizeRuleApplies())
        return Hint;
    const int W = StepWidth(m_fixedSize);
    return QSize(W ? W : Hint.width(), FixedHeight);
}

void TQxCustomEdit::MoveFocus(bool Forward)
{
    // A hidden window has no focus to move: the key is swallowed all the same.
    if (window()->isVisible())
        SelectNextControl(this, Forward);
}

void TQxCustomEdit::keyPressEvent(QKeyEvent* Event)
{
    const int Key = Event->key();
    const Qt::KeyboardModifiers Mods = Event->modifiers();
    const bool Plain = !(Mods & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    // Control or Command without Alt (Alt+Control is AltGr on some systems) makes a
    // command such as paste, never typing.
    const bool Command = (Mods & (Qt::ControlModifier | Qt::MetaModifier)) && !(Mods & Qt::AltModifier);
    if (Key == Qt::Key_Return || Key == Qt::Key_Enter) {
        MoveFocus(true);
    } else if (Plain && (Key == Qt::Key_Up || Key == Qt::Key_Down)) {
        MoveFocus(Key == Qt::Key_Down);
    } else {
        // Control characters (Backspace, Escape) keep their meaning; the filter judges
        // what would be typed into the text.
        const QString Typed = Command ? QString() : Event->text();
        const bool Refused = std::any_of(Typed.begin(), Typed.end(),
                                         [this](QChar C) { return C.unicode() >= 32 && !AcceptsChar(C); });
        if (!Refused) {
            QLineEdit::keyPressEvent(Event);
            return;
        }
        Beep(ErrorBeep);
    }
    Event->accept();
}

void TQxCustomEdit::focusInEvent(QFocusEvent* Event)
{
    QLineEdit::focusInEvent(Event);
    // The layout of the control's language is ready before the first key is typed.
    if (Event->reason() != Qt::PopupFocusReason)
        ActivateDirectionKeyboard(layoutDirection());
}

void TQxCustomEdit::focusOutEvent(QFocusEvent* Event)
{
    QLineEdit::focusOutEvent(Event);
    // A pop-up menu or another window taking over leaves the focus conceptually here.
    if (Event->reason() == Qt::PopupFocusReason || Event->reason() == Qt::ActiveWindowFocusReason)
        return;
    RunGuarded(this, [this] { DoExit(); });
}

void TQxCustomEdit::resizeEvent(QResizeEvent* Event)
{
    QLineEdit::resizeEvent(Event);
    ApplySizeRule();
    Resized();
}

void TQxCustomEdit::changeEvent(QEvent* Event)
{
    QLineEdit::changeEvent(Event);
    if (Event->type() == QEvent::EnabledChange)
        ApplyStateColor();
    else if (Event->type() == QEvent::LayoutDirectionChange)
        AlignToReadingSide();
}

// QLineEdit places text by the direction of its content, so numbers and dates would sit at
// the left of a right-to-left box. The text starts at the reading side of the control, as
// the classic edit did; an alignment the program chose itself is left alone.
void TQxCustomEdit::AlignToReadingSide()
{
    const Qt::Alignment Horizontal = alignment() & Qt::AlignHorizontal_Mask;
    if (Horizontal != Qt::AlignLeft && Horizontal != m_readingSide)
        return;
    m_readingSide = Qt::AlignAbsolute | (layoutDirection() == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft);
    setAlignment(m_readingSide | (alignment() & Qt::AlignVertical_Mask));
}

// Resizing from inside a resize event is safe: the nested event finds the size right.
void TQxCustomEdit::ApplySizeRule()
{
    if (!SizeRuleApplies())
        return;
    const int W = StepWidth(m_fixedSize);
    const QSize Wanted(W ? W : width(), FixedHeight);
    if (size() != Wanted)
        resize(Wanted);
}

void TQxCustomEdit::ApplyStateColor()
{
    SetColor(isEnabled() ? m_colorEnabled : m_colorDisabled);
}

// ---- TQxEdit ----

TQxEdit::TQxEdit(QWidget* Parent) : TQxCustomEdit(Parent)
{
    FixedSizeChanged();
}

// Layouts keep the standard size through the size hint; a free width stretches.
void TQxEdit::FixedSizeChanged()
{
    setSizePolicy(StepWidth(GetFixedSize()) ? QSizePolicy::Fixed : QSizePolicy::Expanding, QSizePolicy::Fixed);
}

bool TQxEdit::IsEmpty() const
{
    return Kesh::IsEmpty(text());
}

int TQxEdit::AsInteger() const
{
    return Kesh::AsInteger(text());
}

void TQxEdit::SetAsInteger(int Value)
{
    setText(QString::number(Value));
}

double TQxEdit::AsFloat() const
{
    return double(Kesh::AsFloat(text()));
}

void TQxEdit::SetAsFloat(double Value)
{
    setText(FloatToStr(Value));
}

TDateTime TQxEdit::AsDate() const
{
    TDateTime Value = 0;
    return TryStrToDate(text(), Value) ? Value : 0;
}

void TQxEdit::SetAsDate(TDateTime Value)
{
    if (Value == 0)
        clear();
    else
        setText(DateTextOrError(Value, DateToStr));
}

TDateTime TQxEdit::AsDateTime() const
{
    TDateTime Value = 0;
    return TryStrToDateTime(text(), Value) ? Value : 0;
}

void TQxEdit::SetAsDateTime(TDateTime Value)
{
    if (Value == 0)
        clear();
    else
        setText(DateTextOrError(Value, DateTimeToStr));
}

bool TQxEdit::AcceptsChar(QChar C) const
{
    if (m_dataEntry == DeAnything)
        return true;
    if (C >= QLatin1Char('0') && C <= QLatin1Char('9'))
        return true;
    if (C == QLatin1Char('-'))
        return text().isEmpty();
    // The point typed is always '.', whatever the locale's separator.
    return m_dataEntry == DeFloat && C == QLatin1Char('.') && !text().contains(QLatin1Char('.'));
}

bool TQxEdit::NumberIsValid() const
{
    if (m_dataEntry == DeInteger) {
        qint64 I = 0;
        return TryStrToInt64(text(), I);
    }
    if (m_dataEntry == DeFloat) {
        long double F = 0;
        return TryStrToFloat(text(), F);
    }
    return true;
}

void TQxEdit::DoExit()
{
    if (!Kesh::IsEmpty(text()) && !NumberIsValid())
        ShowError(BiStr(QStringLiteral("الرقم غير صحيح."), QStringLiteral("Incorrect number.")), this);
    emit Exit();
}

// ---- TQxEditButton ----

TQxEditButton::TQxEditButton(QWidget* Parent) : TQxEdit(Parent), m_button(new TQxBitBtn(this))
{
    m_button->setText(QStringLiteral("..."));
    QFont Bold = m_button->font();
    Bold.setBold(true);
    m_button->setFont(Bold);
    // The edit keeps the focus while its own button is used: no exit check runs for it.
    m_button->setFocusPolicy(Qt::NoFocus);
    m_button->setCursor(Qt::ArrowCursor);
    connect(m_button, &QAbstractButton::clicked, this, &TQxEditButton::ButtonClick);
    PlaceButton();
}

QKeySequence TQxEditButton::GetHotKey() const
{
    return m_button->GetHotKey();
}

void TQxEditButton::SetHotKey(const QKeySequence& Value)
{
    m_button->SetHotKey(Value);
}

void TQxEditButton::ButtonClick()
{
    if (!isVisible() || !isEnabled())
        return;
    const QPointer<TQxEditButton> Self = this; // the handler may close the form
    RunGuarded(this, [&] {
        if (m_pickDate && !isReadOnly()) {
            int Date = AsInteger();
            if (SelectDate(Date, m_pickHijri) && Self) {
                SetAsInteger(Date);
                emit textEdited(text());
            }
        }
        if (Self && _OnButtonClick)
            _OnButtonClick(this);
        if (Self)
            setFocus(Qt::OtherFocusReason);
    });
}

void TQxEditButton::Resized()
{
    PlaceButton();
}

void TQxEditButton::changeEvent(QEvent* Event)
{
    TQxEdit::changeEvent(Event);
    if (Event->type() == QEvent::LayoutDirectionChange || Event->type() == QEvent::StyleChange)
        PlaceButton();
}

// The button fills the inside of the frame at the trailing edge; the text margin on that
// side keeps the text clear of it.
void TQxEditButton::PlaceButton()
{
    const int Frame = hasFrame() ? style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this) : 0;
    const bool RightToLeft = layoutDirection() == Qt::RightToLeft;
    m_button->setGeometry(RightToLeft ? Frame : width() - Frame - ButtonWidth, Frame, ButtonWidth,
                          qMax(0, height() - 2 * Frame));
    const int Margin = ButtonWidth + 2;
    setTextMargins(RightToLeft ? Margin : 0, 0, RightToLeft ? 0 : Margin, 0);
}

} // namespace Kesh
