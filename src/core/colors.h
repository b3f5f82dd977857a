// Kesh for Qt — colour shifts, fonts as text, gradients.
#pragma once
#include "platform/graphics.h"
#include "platform/kesh_global.h"
#include <QObject>
#include <QString>

class QPainter;
class QRect;

namespace Kesh {

/// The direction enumeration lives in its own namespace only so that moc can register it
/// (Kesh itself carries its Q_NAMESPACE elsewhere); it reads as Kesh::gdHorizontal.
namespace Colors {
Q_NAMESPACE_EXPORT(KESH_EXPORT)
/// Direction of a gradient: from left to right, or from top to bottom.
enum TxGradDir { gdHorizontal, gdVertical };
Q_ENUM_NS(TxGradDir)
} // namespace Colors
using namespace Colors;

/// Color (a system colour resolved first) with Delta added to each of red, green and blue,
/// each clamped to 0..255.
KESH_EXPORT TColor ChangeColor(TColor Color, int Delta);

/// The font as one line: "Name,Size,$BBGGRR colour,Charset,Styles", e.g.
/// "Tahoma,8,$00800000,178,BI"; styles are the letters B, I, U and S.
KESH_EXPORT QString FontToStr(const TFont& Font);
/// Reads what FontToStr wrote (blanks around the numbers allowed, the colour also in decimal
/// or 0x-hexadecimal); false, leaving Font alone, when the text is not such a line.
KESH_EXPORT bool TryStrToFont(const QString& S, TFont& Font);
/// TryStrToFont, or the default TFont when the text is not a font.
KESH_EXPORT TFont StrToFont(const QString& S);

/// Fills Rect from From to To: the first column (gdHorizontal) or row (gdVertical) has
/// exactly From, the last exactly To.
KESH_EXPORT void PaintGradient(QPainter* Canvas, const QRect& Rect, TColor From, TColor To, TxGradDir Direction);

} // namespace Kesh
