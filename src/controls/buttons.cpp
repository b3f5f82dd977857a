// Kesh for Qt — bilingual buttons.
#include "buttons.h"
#include "bi_caption.h"
#include "core/conversions.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QList>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QShortcut>
#include <QShortcutEvent>

namespace Kesh {

namespace {

// The live hot keys of every bilingual button.
QList<QShortcut*>& HotKeys()
{
    static QList<QShortcut*> keys;
    return keys;
}

bool Matches(const QShortcut* Key, const QKeyEvent* Event)
{
    const QKeyCombination pressed(Event->modifiers() & ~Qt::KeypadModifier, Qt::Key(Event->key()));
    return !Key->key().isEmpty() && Key->key()[0] == pressed;
}

// A button's hot key is seen before the focused control, as a form previewing its keys: the
// focused control may not claim a key (ShortcutOverride) that an enabled, visible button of
// its window answers, so the shortcut fires and the key never reaches the control.
class THotKeyPreview : public QObject
{
public:
    using QObject::QObject;

    static void Install()
    {
        static QPointer<THotKeyPreview> filter;
        if (!filter && qApp) {
            filter = new THotKeyPreview(qApp);
            qApp->installEventFilter(filter);
        }
    }

    bool eventFilter(QObject* Watched, QEvent* Event) override
    {
        if (Event->type() != QEvent::ShortcutOverride || !Watched->isWidgetType())
            return false;
        const QWidget* window = static_cast<QWidget*>(Watched)->window();
        const auto* key = static_cast<QKeyEvent*>(Event);
        for (const QShortcut* hotKey : HotKeys()) {
            const auto* button = static_cast<const QWidget*>(hotKey->parent());
            if (button->window() == window && button->isVisible() && button->isEnabled()
                && Matches(hotKey, key)) {
                Event->ignore();
                return true;
            }
        }
        return false;
    }
};

} // namespace

struct TxBiButtonData
{
    QString HintA;
    QString HintE;
    QShortcut* HotKey = nullptr; // child of the button, made with the first hot key
    QPointer<QMenu> PopupMenu;
    TBiDiMode Mode = bdLeftToRight;
    bool SettingMode = false; // SetBiDiMode applies the language itself
};

template <class Base>
TxBiButton<Base>::TxBiButton(QWidget* Parent) : Base(Parent), d(new TxBiButtonData)
{
    InitBiFonts(FontOf(this));
    d->Mode = BiDiModeOf(this);
}

template <class Base>
TxBiButton<Base>::~TxBiButton()
{
    HotKeys().removeOne(d->HotKey);
}

template <class Base> QString TxBiButton<Base>::GetHint_a() const { return d->HintA; }
template <class Base> QString TxBiButton<Base>::GetHint_e() const { return d->HintE; }
template <class Base> QMenu* TxBiButton<Base>::GetPopupMenu() const { return d->PopupMenu; }
template <class Base> void TxBiButton<Base>::SetPopupMenu(QMenu* Value) { d->PopupMenu = Value; }
template <class Base> TBiDiMode TxBiButton<Base>::GetBiDiMode() const { return d->Mode; }

template <class Base>
bool TxBiButton<Base>::IsRightToLeft() const
{
    return BiDiModeOf(this) == bdRightToLeft;
}

// The members, like the hints, treat every direction but right to left as English.
template <class Base> TBiDiMode TxBiButton<Base>::BiLanguage() const { return BiDiModeOf(this); }
template <class Base> void TxBiButton<Base>::ShowBiCaption(const QString& Caption) { this->setText(Caption); }
template <class Base> void TxBiButton<Base>::ShowBiFont(const TFont& Font) { ApplyFont(this, Font); }

template <class Base>
void TxBiButton<Base>::SetHintA(const QString& Value)
{
    d->HintA = Value;
    if (IsRightToLeft())
        this->setToolTip(Value);
}

template <class Base>
void TxBiButton<Base>::SetHintE(const QString& Value)
{
    d->HintE = Value;
    if (!IsRightToLeft())
        this->setToolTip(Value);
}

template <class Base>
QKeySequence TxBiButton<Base>::GetHotKey() const
{
    return d->HotKey ? d->HotKey->key() : QKeySequence();
}

template <class Base>
void TxBiButton<Base>::SetHotKey(const QKeySequence& Value)
{
    const QKeySequence key = Value.isEmpty() ? QKeySequence() : QKeySequence(Value[0]);
    if (!d->HotKey) {
        if (key.isEmpty())
            return;
        // A QShortcut of window context fires only while its button is visible and enabled,
        // so a disabled button leaves the key to the focused control.
        d->HotKey = new QShortcut(this);
        d->HotKey->setContext(Qt::WindowShortcut);
        QObject::connect(d->HotKey, &QShortcut::activated, this, [this] { Click(); });
        QObject::connect(d->HotKey, &QShortcut::activatedAmbiguously, this, [this] { Click(); });
        HotKeys().append(d->HotKey);
        THotKeyPreview::Install();
    }
    d->HotKey->setKey(key);
    if (!key.isEmpty() && this->toolTip().isEmpty())
        this->setToolTip(key.toString(QKeySequence::PortableText));
}

template <class Base>
void TxBiButton<Base>::SetBiDiMode(TBiDiMode Value)
{
    d->Mode = Value;
    d->SettingMode = true;
    SetBiDiModeOf(this, Value);
    d->SettingMode = false;
    if (!IsLoading())
        ApplyLanguage();
}

template <class Base>
void TxBiButton<Base>::ApplyLanguage()
{
    const TBiDiMode Mode = d->Mode;
    if (Mode != bdLeftToRight && Mode != bdRightToLeft)
        return;
    // A blank caption counts as none: the other language's caption and font stay.
    if (!IsEmpty(BiCaption().CaptionOf(Mode)))
        ApplyBiCaption();
    this->setToolTip(Mode == bdRightToLeft ? d->HintA : d->HintE);
}

template <class Base>
void TxBiButton<Base>::Loaded()
{
    ApplyLanguage();
}

template <class Base>
void TxBiButton<Base>::Click()
{
    if (d->PopupMenu)
        PopupBelow(d->PopupMenu, this);
    else
        this->click();
}

template <class Base>
bool TxBiButton<Base>::event(QEvent* Event)
{
    switch (Event->type()) {
    case QEvent::Polish:
        EndLoading();
        break;
    case QEvent::Shortcut:
        // The button's own shortcut is its caption's mnemonic (Alt+letter).
        if (!static_cast<QShortcutEvent*>(Event)->isAmbiguous() && this->isEnabled()) {
            Click();
            return true;
        }
        break;
    default:
        break;
    }
    return Base::event(Event);
}

template <class Base>
void TxBiButton<Base>::changeEvent(QEvent* Event)
{
    if (Event->type() == QEvent::LayoutDirectionChange && !d->SettingMode) {
        d->Mode = BiDiModeOf(this);
        if (!IsLoading())
            ApplyLanguage();
    }
    Base::changeEvent(Event);
}

// Qt clicks inside its release handlers; the button is let up first so that they only tidy
// up, and Click() acts instead.
template <class Base>
void TxBiButton<Base>::mouseReleaseEvent(QMouseEvent* Event)
{
    const bool clicks = Event->button() == Qt::LeftButton && this->isDown()
        && this->hitButton(Event->position().toPoint());
    if (clicks)
        this->setDown(false);
    Base::mouseReleaseEvent(Event);
    if (clicks) {
        Event->accept();
        Click();
    }
}

template <class Base>
void TxBiButton<Base>::keyReleaseEvent(QKeyEvent* Event)
{
    const bool clicks = !Event->isAutoRepeat() && this->isDown()
        && (Event->key() == Qt::Key_Space || Event->key() == Qt::Key_Select);
    if (clicks)
        this->setDown(false);
    Base::keyReleaseEvent(Event);
    if (clicks)
        Click();
}

template <class Base>
void TxBiButton<Base>::keyPressEvent(QKeyEvent* Event)
{
    if constexpr (std::is_base_of_v<QPushButton, Base>) {
        const bool enter = Event->key() == Qt::Key_Enter || Event->key() == Qt::Key_Return;
        if (enter && (this->autoDefault() || this->isDefault())) {
            Event->accept();
            Click();
            return;
        }
    }
    Base::keyPressEvent(Event);
}

template <class Base>
void TxBiButton<Base>::contextMenuEvent(QContextMenuEvent* Event)
{
    if (!d->PopupMenu) {
        Base::contextMenuEvent(Event);
        return;
    }
    Event->accept();
    d->PopupMenu->popup(Event->globalPos());
}

template class TxBiButton<QToolButton>;
template class TxBiButton<QPushButton>;

TQxSpeedButton::TQxSpeedButton(QWidget* Parent) : TxBiButton<QToolButton>(Parent)
{
    setFocusPolicy(Qt::NoFocus);
    setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
}

TQxSpeedButton::~TQxSpeedButton() = default;

void TQxSpeedButton::Click()
{
    // A speed button never takes the focus, so the control that has it would not notice the
    // click; taking the focus away runs its exit check (which may show a message) first.
    if (!isWindow())
        if (QWidget* focused = window()->focusWidget(); focused && focused != this)
            focused->clearFocus();
    TxBiButton<QToolButton>::Click();
}

TQxBitBtn::TQxBitBtn(QWidget* Parent) : TxBiButton<QPushButton>(Parent) {}

TQxBitBtn::~TQxBitBtn() = default;

TQxIconButton::TQxIconButton(QWidget* Parent) : TxBiButton<QPushButton>(Parent) {}

TQxIconButton::TQxIconButton(const QIcon& Icon, QWidget* Parent) : TxBiButton<QPushButton>(Parent)
{
    setIcon(Icon);
}

TQxIconButton::~TQxIconButton() = default;

} // namespace Kesh
