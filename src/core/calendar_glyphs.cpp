// Kesh for Qt — the calendar tool bar's glyphs, painted at every device pixel ratio.
#include "form_calendar_p.h"

#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>

namespace Kesh {

namespace {

class TCalendarGlyph : public QIconEngine
{
public:
    TCalendarGlyph(const QString& Name, bool Mirrored) : m_name(Name), m_mirrored(Mirrored) {}

    void paint(QPainter* Painter, const QRect& Rect, QIcon::Mode Mode, QIcon::State) override
    {
        Painter->save();
        Painter->setRenderHint(QPainter::Antialiasing);
        Painter->translate(Rect.topLeft());
        Painter->scale(Rect.width() / 24.0, Rect.height() / 24.0);
        const bool Disabled = Mode == QIcon::Disabled;
        if (m_name == QLatin1String("ok")) {
            Painter->setPen(QPen(Disabled ? Qt::gray : QColor(0x1E, 0x8C, 0x2E), 3.2, Qt::SolidLine, Qt::RoundCap,
                                 Qt::RoundJoin));
            QPainterPath Tick;
            Tick.moveTo(4.5, 12.5);
            Tick.lineTo(10, 18);
            Tick.lineTo(19.5, 6);
            Painter->drawPath(Tick);
        } else if (m_name == QLatin1String("cancel")) {
            Painter->setPen(QPen(Disabled ? Qt::gray : QColor(0xC6, 0x28, 0x28), 3.2, Qt::SolidLine, Qt::RoundCap));
            Painter->drawLine(QPointF(6, 6), QPointF(18, 18));
            Painter->drawLine(QPointF(18, 6), QPointF(6, 18));
        } else {
            // A month arrow: "next" points the way the months run, "prior" back.
            const bool PointsRight = (m_name == QLatin1String("next")) != m_mirrored;
            QPainterPath Arrow;
            Arrow.moveTo(8, 4);
            Arrow.lineTo(17, 12);
            Arrow.lineTo(8, 20);
            Arrow.closeSubpath();
            if (!PointsRight) {
                Painter->translate(24, 0);
                Painter->scale(-1, 1);
            }
            Painter->setPen(Qt::NoPen);
            Painter->setBrush(Disabled ? QColor(Qt::gray) : QColor(0x1F, 0x4E, 0xA8));
            Painter->drawPath(Arrow);
        }
        Painter->restore();
    }

    QPixmap pixmap(const QSize& Size, QIcon::Mode Mode, QIcon::State State) override
    {
        QPixmap Pixmap(Size);
        Pixmap.fill(Qt::transparent);
        QPainter Painter(&Pixmap);
        paint(&Painter, QRect(QPoint(0, 0), Size), Mode, State);
        return Pixmap;
    }

    QIconEngine* clone() const override { return new TCalendarGlyph(m_name, m_mirrored); }

private:
    QString m_name;
    bool m_mirrored;
};

} // namespace

QIcon CalendarGlyph(const QString& Name, Qt::LayoutDirection Direction)
{
    return QIcon(new TCalendarGlyph(Name, Direction == Qt::RightToLeft));
}

} // namespace Kesh
