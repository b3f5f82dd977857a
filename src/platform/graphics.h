// Kesh for Qt — the colour and font value types of the classic component platform.
#pragma once
// The namespace's own meta-object (with TBiDiMode) must come before the using-directive
// below, or a later Q_ENUM_NS in Kesh would see two staticMetaObjects.
#include "application.h"
#include "kesh_global.h"
#include <QColor>
#include <QFlags>
#include <QFont>
#include <QMetaType>
#include <QObject>

namespace Kesh {

/// A colour as $00BBGGRR (red in the lowest byte), or a system colour: clSysColor | index.
using TColor = quint32;

constexpr TColor clSysColor = 0x80000000u; ///< marks a system colour; the low byte is its index
constexpr TColor clNone = 0x1FFFFFFFu;     ///< no colour (drawn transparent)
constexpr TColor clDefault = 0x20000000u;  ///< the control's default colour

constexpr TColor clBlack = 0x000000, clMaroon = 0x000080, clGreen = 0x008000, clOlive = 0x008080;
constexpr TColor clNavy = 0x800000, clPurple = 0x800080, clTeal = 0x808000, clGray = 0x808080;
constexpr TColor clSilver = 0xC0C0C0, clRed = 0x0000FF, clLime = 0x00FF00, clYellow = 0x00FFFF;
constexpr TColor clBlue = 0xFF0000, clFuchsia = 0xFF00FF, clAqua = 0xFFFF00, clWhite = 0xFFFFFF;
constexpr TColor clLtGray = clSilver, clDkGray = clGray;
constexpr TColor clMoneyGreen = 0xC0DCC0, clSkyBlue = 0xF0CAA6, clCream = 0xF0FBFF, clMedGray = 0xA4A0A0;

// System colours, by the classic system-colour index.
constexpr TColor clScrollBar = clSysColor | 0, clBackground = clSysColor | 1;
constexpr TColor clActiveCaption = clSysColor | 2, clInactiveCaption = clSysColor | 3;
constexpr TColor clMenu = clSysColor | 4, clWindow = clSysColor | 5, clWindowFrame = clSysColor | 6;
constexpr TColor clMenuText = clSysColor | 7, clWindowText = clSysColor | 8;
constexpr TColor clCaptionText = clSysColor | 9, clActiveBorder = clSysColor | 10;
constexpr TColor clInactiveBorder = clSysColor | 11, clAppWorkSpace = clSysColor | 12;
constexpr TColor clHighlight = clSysColor | 13, clHighlightText = clSysColor | 14;
constexpr TColor clBtnFace = clSysColor | 15, clBtnShadow = clSysColor | 16;
constexpr TColor clGrayText = clSysColor | 17, clBtnText = clSysColor | 18;
constexpr TColor clInactiveCaptionText = clSysColor | 19, clBtnHighlight = clSysColor | 20;
constexpr TColor cl3DDkShadow = clSysColor | 21, cl3DLight = clSysColor | 22;
constexpr TColor clInfoText = clSysColor | 23, clInfoBk = clSysColor | 24;
constexpr TColor clHotLight = clSysColor | 26, clGradientActiveCaption = clSysColor | 27;
constexpr TColor clGradientInactiveCaption = clSysColor | 28, clMenuHighlight = clSysColor | 29;
constexpr TColor clMenuBar = clSysColor | 30;

/// A system colour resolved through the application's palette (a fixed classic table without
/// a GUI application); any other colour is returned unchanged.
KESH_EXPORT TColor ColorToRGB(TColor Color);
/// The resolved colour as a QColor; clNone is fully transparent.
KESH_EXPORT QColor TColorToQColor(TColor Color);
/// Red, green and blue of the QColor as a TColor; an invalid or fully transparent colour is clNone.
KESH_EXPORT TColor QColorToTColor(const QColor& Color);
/// A TColor of three channels, each clamped to 0..255.
KESH_EXPORT TColor RGBToColor(int Red, int Green, int Blue);

// Character sets of a font, by their classic numbers.
constexpr int ANSI_CHARSET = 0, DEFAULT_CHARSET = 1, SYMBOL_CHARSET = 2, MAC_CHARSET = 77;
constexpr int SHIFTJIS_CHARSET = 128, HANGEUL_CHARSET = 129, JOHAB_CHARSET = 130, GB2312_CHARSET = 134;
constexpr int CHINESEBIG5_CHARSET = 136, GREEK_CHARSET = 161, TURKISH_CHARSET = 162;
constexpr int VIETNAMESE_CHARSET = 163, HEBREW_CHARSET = 177, ARABIC_CHARSET = 178;
constexpr int BALTIC_CHARSET = 186, RUSSIAN_CHARSET = 204, THAI_CHARSET = 222;
constexpr int EASTEUROPE_CHARSET = 238, OEM_CHARSET = 255;

/// The style enumeration lives in its own namespace only so that moc can register it
/// (Kesh itself carries its Q_NAMESPACE elsewhere); it reads as Kesh::fsBold.
namespace Graphics {
Q_NAMESPACE_EXPORT(KESH_EXPORT)
/// One style of a font.
enum TFontStyle { fsBold = 0x1, fsItalic = 0x2, fsUnderline = 0x4, fsStrikeOut = 0x8 };
Q_DECLARE_FLAGS(TFontStyles, TFontStyle)
Q_FLAG_NS(TFontStyles)
} // namespace Graphics
using namespace Graphics;

/// A font as the classic platform knows it: a QFont with a colour and a character set.
class KESH_EXPORT TFont
{
public:
    /// "Microsoft Sans Serif", 8 points, clWindowText, DEFAULT_CHARSET, no style.
    TFont();
    /// The QFont's family, size and style; a pixel size is taken as points at 96 dots per inch.
    explicit TFont(const QFont& Font, TColor Color = clWindowText, int Charset = DEFAULT_CHARSET);

    QString Name() const { return m_font.family(); }
    void SetName(const QString& Value) { m_font.setFamily(Value); }
    /// Size in whole points.
    int Size() const { return m_font.pointSize(); }
    /// Clamped to 1..MaxSize points.
    void SetSize(int Value);
    TFontStyles Style() const;
    void SetStyle(TFontStyles Value);
    TColor Color() const { return m_color; }
    void SetColor(TColor Value) { m_color = Value; }
    /// Character set number, 0..255.
    int Charset() const { return m_charset; }
    /// Kept to the low byte, as the character set is one byte.
    void SetCharset(int Value) { m_charset = Value & 0xFF; }

    /// The font to draw with.
    const QFont& Font() const { return m_font; }
    /// Its colour resolved for drawing.
    QColor PenColor() const { return TColorToQColor(m_color); }

    /// Equal in name, size, style, colour and character set.
    bool operator==(const TFont& Other) const;
    bool operator!=(const TFont& Other) const { return !(*this == Other); }

    static constexpr int MaxSize = 1638; ///< the largest size in points a font may take

private:
    QFont m_font;
    TColor m_color = clWindowText;
    int m_charset = DEFAULT_CHARSET;
};

} // namespace Kesh

Q_DECLARE_OPERATORS_FOR_FLAGS(Kesh::Graphics::TFontStyles)
Q_DECLARE_METATYPE(Kesh::TFont)
