// Kesh for Qt — the bilingual panel.
#include "panel.h"
#include "accessibility_p.h"

#include <QPainter>

namespace Kesh {

struct TQxCustomPanelPrivate
{
    QString Caption;
    TFont Font;
    bool GradFill = false;
    TColor ColorFrom = clWhite;
    TColor ColorTo = clBtnFace;
    TxGradDir Direction = gdHorizontal;
    TColor Color = clBtnFace;
    Qt::Alignment Alignment = Qt::AlignHCenter;
};

TQxCustomPanel::TQxCustomPanel(QWidget* Parent) : QFrame(Parent), TxStyledCaption(2), d(new TQxCustomPanelPrivate)
{
    setFrameStyle(QFrame::Panel | QFrame::Raised);
    setLineWidth(1);
    d->Font = FontOf(this);
    InitBiFonts(d->Font);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

TQxCustomPanel::~TQxCustomPanel() = default;

QString TQxCustomPanel::GetCaption() const { return d->Caption; }

void TQxCustomPanel::SetCaption(const QString& Value)
{
    if (d->Caption != Value) {
        d->Caption = Value;
        update();
        NotifyAccessible(this, QAccessible::NameChanged);
    }
}

TFont TQxCustomPanel::GetFont() const { return d->Font; }

void TQxCustomPanel::SetFont(const TFont& Value)
{
    d->Font = Value;
    // Children that follow their parent's font take it too.
    ApplyFont(this, Value);
    update();
}

bool TQxCustomPanel::GetGradFill() const { return d->GradFill; }

void TQxCustomPanel::SetGradFill(bool Value)
{
    if (d->GradFill != Value) {
        d->GradFill = Value;
        update();
    }
}

TColor TQxCustomPanel::GetColorFrom() const { return d->ColorFrom; }

void TQxCustomPanel::SetColorFrom(TColor Value)
{
    if (d->ColorFrom != Value) {
        d->ColorFrom = Value;
        update();
    }
}

TColor TQxCustomPanel::GetColorTo() const { return d->ColorTo; }

void TQxCustomPanel::SetColorTo(TColor Value)
{
    if (d->ColorTo != Value) {
        d->ColorTo = Value;
        update();
    }
}

TxGradDir TQxCustomPanel::GetDirection() const { return d->Direction; }

void TQxCustomPanel::SetDirection(TxGradDir Value)
{
    if (d->Direction != Value) {
        d->Direction = Value;
        update();
    }
}


TColor TQxCustomPanel::GetColor() const { return d->Color; }

void TQxCustomPanel::SetColor(TColor Value)
{
    if (d->Color != Value) {
        d->Color = Value;
        update();
    }
}

Qt::Alignment TQxCustomPanel::GetAlignment() const { return d->Alignment; }

void TQxCustomPanel::SetAlignment(Qt::Alignment Value)
{
    Value &= Qt::AlignHorizontal_Mask;
    if (d->Alignment != Value) {
        d->Alignment = Value;
        update();
    }
}

void TQxCustomPanel::Loaded()
{
    BiLoaded();
}

bool TQxCustomPanel::event(QEvent* Event)
{
    if (Event->type() == QEvent::Polish)
        EndLoading();
    return QFrame::event(Event);
}

void TQxCustomPanel::changeEvent(QEvent* Event)
{
    QFrame::changeEvent(Event);
    if (Event->type() == QEvent::LayoutDirectionChange)
        BiDirectionChanged(IsLoading()); else if (Event->type() == QEvent::EnabledChange) {
        update();
    }
}

void TQxCustomPanel::paintEvent(QPaintEvent*)
{
    QPainter Painter(this);
    Painter.setLayoutDirection(layoutDirection());
    const QRect Face = contentsRect();
    // The frame covers the border, so the gradient runs exactly over the face inside it.
    if (d->GradFill) {
        if (Face != rect())
            Painter.fillRect(rect(), TColorToQColor(d->Color));
        PaintGradient(&Painter, Face, d->ColorFrom, d->ColorTo, d->Direction);
    } else {
        Painter.fillRect(rect(), TColorToQColor(d->Color));
    }
    drawFrame(&Painter);
    const int Flags = int(d->Alignment) | Qt::AlignVCenter | Qt::TextShowMnemonic;
    DrawStyledText(&Painter, Face, Flags, d->Caption, d->Font, TextLook(), isEnabled());
}

TBiDiMode TQxCustomPanel::BiLanguage() const { return BiDiMode(); }
void TQxCustomPanel::ShowBiCaption(const QString& Caption) { SetCaption(Caption); }
void TQxCustomPanel::ShowBiFont(const TFont& Font) { SetFont(Font); }

} // namespace Kesh
