#include "colors.h"

#include <QLinearGradient>
#include <QPainter>
#include <QRect>
#include <algorithm>
#include <limits>

namespace Kesh {

namespace {

// "$hex", "0xhex" or a decimal, signed or not: every 32-bit colour, system colours included.
bool ParseColor(QStringView Text, TColor& Color)
{
    Text = Text.trimmed();
    QStringView Hex;
    if (Text.startsWith(QLatin1Char('$')))
        Hex = Text.mid(1);
    else if (Text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive))
        Hex = Text.mid(2);
    if (!Hex.isNull()) {
        if (Hex.isEmpty() || Hex.size() > 8)
            return false;
        for (const QChar C : Hex) {
            const char16_t U = C.unicode();
            if (!((U >= '0' && U <= '9') || (U >= 'a' && U <= 'f') || (U >= 'A' && U <= 'F')))
                return false;
        }
        Color = Hex.toUInt(nullptr, 16);
        return true;
    }
    bool Ok = false;
    const qlonglong Value = Text.toLongLong(&Ok);
    if (!Ok || Value < std::numeric_limits<qint32>::min() || Value > std::numeric_limits<quint32>::max())
        return false;
    Color = TColor(Value);
    return true;
}

bool ParseStyles(QStringView Text, TFontStyles& Styles)
{
    Styles = {};
    for (const QChar C : Text.trimmed()) {
        switch (C.toUpper().unicode()) {
        case 'B': Styles |= fsBold; break;
        case 'I': Styles |= fsItalic; break;
        case 'U': Styles |= fsUnderline; break;
        case 'S': Styles |= fsStrikeOut; break;
        default: return false;
        }
    }
    return true;
}

bool ParseInt(QStringView Text, int Low, int High, int& Value)
{
    bool Ok = false;
    Value = Text.trimmed().toInt(&Ok);
    return Ok && Value >= Low && Value <= High;
}

} // namespace

TColor ChangeColor(TColor Color, int Delta)
{
    const TColor C = ColorToRGB(Color);
    // Widened first: a huge Delta must clamp, not overflow.
    const auto Shift = [Delta](TColor Channel) {
        return int(std::clamp<qint64>(qint64(Channel & 0xFF) + Delta, 0, 255));
    };
    return RGBToColor(Shift(C), Shift(C >> 8), Shift(C >> 16));
}

QString FontToStr(const TFont& Font)
{
    QString Styles;
    const TFontStyles S = Font.Style();
    if (S.testFlag(fsBold))
        Styles += QLatin1Char('B');
    if (S.testFlag(fsItalic))
        Styles += QLatin1Char('I');
    if (S.testFlag(fsUnderline))
        Styles += QLatin1Char('U');
    if (S.testFlag(fsStrikeOut))
        Styles += QLatin1Char('S');
    const QString Color = QStringLiteral("%1").arg(Font.Color(), 8, 16, QLatin1Char('0')).toUpper();
    return Font.Name() + QLatin1Char(',') + QString::number(Font.Size()) + QStringLiteral(",$") + Color
        + QLatin1Char(',') + QString::number(Font.Charset()) + QLatin1Char(',') + Styles;
}

bool TryStrToFont(const QString& S, TFont& Font)
{
    // The four numbers are taken from the right, so the name may hold commas.
    QStringView Rest(S);
    QStringView Fields[4];
    for (int I = 3; I >= 0; --I) {
        const qsizetype Comma = Rest.lastIndexOf(QLatin1Char(','));
        if (Comma < 0)
            return false;
        Fields[I] = Rest.mid(Comma + 1);
        Rest = Rest.left(Comma);
    }
    for (const QChar C : Rest)
        if (C.category() == QChar::Other_Control)
            return false;
    int Size = 0, Charset = 0;
    TColor Color = 0;
    TFontStyles Styles;
    if (!ParseInt(Fields[0], 1, TFont::MaxSize, Size) || !ParseColor(Fields[1], Color)
        || !ParseInt(Fields[2], 0, 255, Charset) || !ParseStyles(Fields[3], Styles))
        return false;
    TFont Result;
    Result.SetName(Rest.toString());
    Result.SetSize(Size);
    Result.SetColor(Color);
    Result.SetCharset(Charset);
    Result.SetStyle(Styles);
    Font = Result;
    return true;
}

TFont StrToFont(const QString& S)
{
    TFont Font;
    TryStrToFont(S, Font);
    return Font;
}

void PaintGradient(QPainter* Canvas, const QRect& Rect, TColor From, TColor To, TxGradDir Direction)
{
    if (!Canvas || !Canvas->isActive() || !Rect.isValid())
        return;
    // The end points sit on the centres of the first and last pixel lines, so those lines
    // carry the two colours exactly; beyond them the gradient pads.
    const QPointF Start = QPointF(Rect.topLeft()) + QPointF(0.5, 0.5);
    const QPointF End = Direction == gdVertical ? QPointF(Start.x(), Rect.bottom() + 0.5)
                                                : QPointF(Rect.right() + 0.5, Start.y());
    QLinearGradient Gradient(Start, End);
    Gradient.setColorAt(0, TColorToQColor(From));
    Gradient.setColorAt(1, TColorToQColor(To));
    Canvas->fillRect(Rect, Gradient);
}

} // namespace Kesh
