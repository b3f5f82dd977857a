// Kesh for Qt — the bilingual label and the styled caption drawing.
#include "label.h"
#include "accessibility_p.h"

#include <QEnterEvent>
#include <QFontMetrics>
#include <QKeySequence>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QShortcutEvent>
#include <QWindow>

namespace Kesh {

void DrawStyledText(QPainter* Canvas, const QRect& Rect, int Flags, const QString& Text,
                    const TFont& Font, const TxTextLook& Look, bool Enabled)
{
    if (!Canvas || !Canvas->isActive() || Text.isEmpty())
        return;
    Canvas->save();
    Canvas->setFont(Font.Font());
    const auto Draw = [&](const QRect& R, const QColor& Color) {
        Canvas->setPen(Color);
        Canvas->drawText(R, Flags, Text);
    };
    if (!Enabled) {
        Draw(Rect.translated(1, 1), TColorToQColor(clBtnHighlight));
        Draw(Rect, TColorToQColor(clBtnShadow));
    } else {
        if (Look.Style == Tx3D) {
            Draw(Rect.translated(-1, -1), Qt::white);
            Draw(Rect.translated(1, 1), TColorToQColor(Look.Shade));
        } else if (Look.Style == TxShadow) {
            Draw(Rect.translated(Look.ShadowPos, Look.ShadowPos), TColorToQColor(Look.Shade));
        }
        Draw(Rect, Font.PenColor());
    }
    Canvas->restore();
}

struct TQxCustomLabelPrivate
{
    QString Caption;
    TFont Font;
    bool Rectangle = false;
    TColor RectColor = clBlack;
    Qt::PenStyle RectStyle = Qt::SolidLine;
    bool Movable = false;
    Qt::Alignment Alignment = Qt::AlignLeft;
    bool WordWrap = false;
    TTextLayout Layout = tlCenter;
    bool AutoSize = false;
    bool ShowAccelChar = true;
    bool Transparent = false;
    TColor Color = 0xC8F0FA;
    QPointer<QWidget> FocusControl;
    int ShortcutId = 0;
    bool Pressed = false;
    bool Dragging = false;
    QPoint DragOffset;
};

void TxStyledCaption::SetTextStyle(TxTextStyle Value)
{
    if (m_look.Style != Value) {
        m_look.Style = Value;
        TextLookChanged();
    }
}

void TxStyledCaption::SetTextShade(TColor Value)
{
    if (m_look.Shade != Value) {
        m_look.Shade = Value;
        TextLookChanged();
    }
}

void TxStyledCaption::SetTextShadowPos(int Value)
{
    if (m_look.ShadowPos != Value) {
        m_look.ShadowPos = Value;
        TextLookChanged();
    }
}

TQxCustomLabel::TQxCustomLabel(QWidget* Parent) : QWidget(Parent), TxStyledCaption(2), d(new TQxCustomLabelPrivate)
{
    // The caption fonts copy the font the label starts with, before its own defaults.
    InitBiFonts(FontOf(this));
    resize(101, 21);
    TFont Font;
    Font.SetName(QStringLiteral("Tahoma"));
    Font.SetSize(8);
    Font.SetCharset(ARABIC_CHARSET);
    Font.SetColor(clNavy);
    SetFont(Font);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

TQxCustomLabel::~TQxCustomLabel() = default;

QString TQxCustomLabel::GetCaption() const { return d->Caption; }

void TQxCustomLabel::SetCaption(const QString& Value)
{
    if (d->Caption == Value)
        return;
    d->Caption = Value;
    UpdateShortcut();
    Changed();
    NotifyAccessible(this, QAccessible::NameChanged);
}

TFont TQxCustomLabel::GetFont() const { return d->Font; }

void TQxCustomLabel::SetFont(const TFont& Value)
{
    d->Font = Value;
    // The widget carries the font too, so metrics, style sheets and FontOf agree.
    ApplyFont(this, Value);
    Changed();
}


bool TQxCustomLabel::GetRectangle() const { return d->Rectangle; }

void TQxCustomLabel::SetRectangle(bool Value)
{
    if (d->Rectangle != Value) {
        d->Rectangle = Value;
        update();
    }
}

TColor TQxCustomLabel::GetRectColor() const { return d->RectColor; }

void TQxCustomLabel::SetRectColor(TColor Value)
{
    if (d->RectColor != Value) {
        d->RectColor = Value;
        update();
    }
}

Qt::PenStyle TQxCustomLabel::GetRectStyle() const { return d->RectStyle; }

void TQxCustomLabel::SetRectStyle(Qt::PenStyle Value)
{
    if (d->RectStyle != Value) {
        d->RectStyle = Value;
        update();
    }
}

bool TQxCustomLabel::GetMovable() const { return d->Movable; }
void TQxCustomLabel::SetMovable(bool Value) { d->Movable = Value; }

Qt::Alignment TQxCustomLabel::GetAlignment() const { return d->Alignment; }

void TQxCustomLabel::SetAlignment(Qt::Alignment Value)
{
    Value &= Qt::AlignHorizontal_Mask;
    if (d->Alignment != Value) {
        d->Alignment = Value;
        Changed();
    }
}

bool TQxCustomLabel::GetWordWrap() const { return d->WordWrap; }

void TQxCustomLabel::SetWordWrap(bool Value)
{
    if (d->WordWrap != Value) {
        d->WordWrap = Value;
        Changed();
    }
}

TTextLayout TQxCustomLabel::GetLayout() const { return d->Layout; }

void TQxCustomLabel::SetLayout(TTextLayout Value)
{
    if (d->Layout != Value) {
        d->Layout = Value;
        update();
    }
}

bool TQxCustomLabel::GetAutoSize() const { return d->AutoSize; }

void TQxCustomLabel::SetAutoSize(bool Value)
{
    if (d->AutoSize != Value) {
        d->AutoSize = Value;
        Changed();
    }
}

bool TQxCustomLabel::GetShowAccelChar() const { return d->ShowAccelChar; }

void TQxCustomLabel::SetShowAccelChar(bool Value)
{
    if (d->ShowAccelChar != Value) {
        d->ShowAccelChar = Value;
        UpdateShortcut();
        Changed();
    }
}

bool TQxCustomLabel::GetTransparent() const { return d->Transparent; }

void TQxCustomLabel::SetTransparent(bool Value)
{
    if (d->Transparent == Value)
        return;
    d->Transparent = Value;
    // Qt paints what lies behind a widget only when the widget does not claim to cover it.
    setAttribute(Qt::WA_OpaquePaintEvent, !Value);
    update();
}

TColor TQxCustomLabel::GetColor() const { return d->Color; }

void TQxCustomLabel::SetColor(TColor Value)
{
    if (d->Color != Value) {
        d->Color = Value;
        update();
    }
}

QWidget* TQxCustomLabel::GetFocusControl() const { return d->FocusControl; }

void TQxCustomLabel::SetFocusControl(QWidget* Value)
{
    d->FocusControl = Value;
    UpdateShortcut();
}

QSize TQxCustomLabel::sizeHint() const
{
    return d->WordWrap ? TextExtent(width()) : TextExtent(-1);
}

QSize TQxCustomLabel::minimumSizeHint() const
{
    return d->AutoSize ? sizeHint() : QWidget::minimumSizeHint();
}

void TQxCustomLabel::Loaded()
{
    BiLoaded();
    AdjustBounds();
}

bool TQxCustomLabel::event(QEvent* Event)
{
    switch (Event->type()) {
    case QEvent::Polish:
        EndLoading();
        break;
    case QEvent::Shortcut: {
        auto* Shortcut = static_cast<QShortcutEvent*>(Event);
        if (d->ShortcutId && Shortcut->shortcutId() == d->ShortcutId) {
            if (d->FocusControl && d->FocusControl->isEnabled())
                d->FocusControl->setFocus(Qt::ShortcutFocusReason);
            return true;
        }
        break;
    }
    default:
        break;
    }
    return QWidget::event(Event);
}

void TQxCustomLabel::changeEvent(QEvent* Event)
{
    QWidget::changeEvent(Event);
    switch (Event->type()) {
    case QEvent::LayoutDirectionChange:
        BiDirectionChanged(IsLoading());
        Changed();
        break;
    case QEvent::EnabledChange:
        update();
        break;
    default:
        break;
    }
}

void TQxCustomLabel::paintEvent(QPaintEvent*)
{
    QPainter Painter(this);
    Painter.setLayoutDirection(layoutDirection());
    if (!d->Transparent)
        Painter.fillRect(rect(), TColorToQColor(d->Color));
    if (d->Rectangle) {
        Painter.setPen(QPen(TColorToQColor(d->RectColor), 0, d->RectStyle));
        Painter.setBrush(Qt::NoBrush);
        Painter.drawRect(rect().adjusted(0, 0, -1, -1));
    }
    DrawStyledText(&Painter, rect(), TextFlags(), d->Caption, d->Font, TextLook(), isEnabled());
}

void TQxCustomLabel::mousePressEvent(QMouseEvent* Event)
{
    if (Event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(Event);
    d->Pressed = true;
    if (d->Movable) {
        QWidget* Window = window();
        QWindow* Handle = Window->windowHandle();
        // The window manager moves the window when it can; otherwise follow the mouse here.
        if (!(Handle && Handle->startSystemMove())) {
            d->Dragging = true;
            d->DragOffset = Event->globalPosition().toPoint() - Window->pos();
        }
    }
    Event->accept();
}

void TQxCustomLabel::mouseMoveEvent(QMouseEvent* Event)
{
    if (d->Dragging)
        window()->move(Event->globalPosition().toPoint() - d->DragOffset);
    QWidget::mouseMoveEvent(Event);
}

void TQxCustomLabel::mouseReleaseEvent(QMouseEvent* Event)
{
    if (Event->button() != Qt::LeftButton)
        return QWidget::mouseReleaseEvent(Event);
    const bool WasPressed = d->Pressed;
    const bool WasDragging = d->Dragging;
    d->Pressed = d->Dragging = false;
    if (WasPressed && !WasDragging && rect().contains(Event->position().toPoint()))
        emit clicked();
    Event->accept();
}

void TQxCustomLabel::mouseDoubleClickEvent(QMouseEvent* Event)
{
    if (Event->button() == Qt::LeftButton)
        emit doubleClicked();
    QWidget::mouseDoubleClickEvent(Event);
}

void TQxCustomLabel::enterEvent(QEnterEvent* Event)
{
    QWidget::enterEvent(Event);
    if (OnMouseEnter)
        OnMouseEnter(this);
}

void TQxCustomLabel::leaveEvent(QEvent* Event)
{
    QWidget::leaveEvent(Event);
    if (OnMouseLeave)
        OnMouseLeave(this);
}

// Whatever changes the text's extent repaints and, with AutoSize, resizes.
void TQxCustomLabel::Changed()
{
    updateGeometry();
    AdjustBounds();
    update();
}

void TQxCustomLabel::AdjustBounds()
{
    if (!d->AutoSize || IsLoading())
        return;
    const QSize Extent = sizeHint();
    QRect Bounds = geometry();
    // A label whose text sits on the right grows to the left.
    const bool KeepRight = d->Alignment.testFlag(Qt::AlignRight) != (BiDiMode() == bdRightToLeft);
    if (KeepRight && !d->Alignment.testFlag(Qt::AlignHCenter))
        Bounds.setLeft(Bounds.right() + 1 - Extent.width());
    Bounds.setSize(Extent);
    setGeometry(Bounds);
}

void TQxCustomLabel::UpdateShortcut()
{
    if (d->ShortcutId)
        releaseShortcut(d->ShortcutId);
    d->ShortcutId = 0;
    if (d->ShowAccelChar && d->FocusControl) {
        const QKeySequence Key = QKeySequence::mnemonic(d->Caption);
        if (!Key.isEmpty())
            d->ShortcutId = grabShortcut(Key);
    }
}

int TQxCustomLabel::TextFlags() const
{
    int Flags = int(d->Alignment);
    Flags |= d->Layout == tlTop ? Qt::AlignTop : d->Layout == tlBottom ? Qt::AlignBottom : Qt::AlignVCenter;
    if (d->WordWrap)
        Flags |= Qt::TextWordWrap;
    if (d->ShowAccelChar)
        Flags |= Qt::TextShowMnemonic;
    return Flags;
}

QSize TQxCustomLabel::TextExtent(int Width) const
{
    // An empty caption, or a lone accelerator mark, still measures one line.
    QString Text = d->Caption;
    if (Text.isEmpty() || (d->ShowAccelChar && Text == QLatin1String("&")))
        Text = QStringLiteral(" ");
    const QFontMetrics Metrics(d->Font.Font(), this);
    const QRect Bounds(0, 0, Width > 0 ? Width : QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    const int Flags = Qt::AlignLeft | Qt::AlignTop | (TextFlags() & (Qt::TextWordWrap | Qt::TextShowMnemonic));
    return Metrics.boundingRect(Bounds, Flags, Text).size();
}

TBiDiMode TQxCustomLabel::BiLanguage() const { return BiDiMode(); }
void TQxCustomLabel::ShowBiCaption(const QString& Caption) { SetCaption(Caption); }
void TQxCustomLabel::ShowBiFont(const TFont& Font) { SetFont(Font); }

} // namespace Kesh
