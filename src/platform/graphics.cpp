#include "graphics.h"

#include <QGuiApplication>
#include <QPalette>
#include <algorithm>
#include <iterator>

namespace Kesh {

namespace {

struct SystemColor
{
    QPalette::ColorGroup Group;
    QPalette::ColorRole Role;
    QRgb Classic; // the classic desktop's value, used when there is no GUI application
};

// Index = the classic system-colour index; the palette role that plays the same part in Qt.
const SystemColor SystemColors[] = {
    {QPalette::Active, QPalette::Button, 0xC8C8C8},             // scroll bar
    {QPalette::Active, QPalette::Dark, 0x000000},               // desktop
    {QPalette::Active, QPalette::Highlight, 0x99B4D1},          // active caption
    {QPalette::Inactive, QPalette::Highlight, 0xBFCDDB},        // inactive caption
    {QPalette::Active, QPalette::Window, 0xF0F0F0},             // menu
    {QPalette::Active, QPalette::Base, 0xFFFFFF},               // window
    {QPalette::Active, QPalette::Shadow, 0x646464},             // window frame
    {QPalette::Active, QPalette::WindowText, 0x000000},         // menu text
    {QPalette::Active, QPalette::Text, 0x000000},               // window text
    {QPalette::Active, QPalette::HighlightedText, 0x000000},    // caption text
    {QPalette::Active, QPalette::Window, 0xB4B4B4},             // active border
    {QPalette::Inactive, QPalette::Window, 0xF4F7FC},           // inactive border
    {QPalette::Active, QPalette::Dark, 0xABABAB},               // application work space
    {QPalette::Active, QPalette::Highlight, 0x0078D7},          // highlight
    {QPalette::Active, QPalette::HighlightedText, 0xFFFFFF},    // highlighted text
    {QPalette::Active, QPalette::Button, 0xF0F0F0},             // button face
    {QPalette::Active, QPalette::Dark, 0xA0A0A0},               // button shadow
    {QPalette::Disabled, QPalette::Text, 0x6D6D6D},             // grey text
    {QPalette::Active, QPalette::ButtonText, 0x000000},         // button text
    {QPalette::Inactive, QPalette::HighlightedText, 0x000000},  // inactive caption text
    {QPalette::Active, QPalette::Light, 0xFFFFFF},              // button highlight
    {QPalette::Active, QPalette::Shadow, 0x696969},             // 3-D dark shadow
    {QPalette::Active, QPalette::Midlight, 0xE3E3E3},           // 3-D light
    {QPalette::Active, QPalette::ToolTipText, 0x000000},        // tool-tip text
    {QPalette::Active, QPalette::ToolTipBase, 0xFFFFE1},        // tool-tip background
    {QPalette::Active, QPalette::NoRole, 0x000000},             // (unused index)
    {QPalette::Active, QPalette::Link, 0x0066CC},               // hot-tracked item
    {QPalette::Active, QPalette::Highlight, 0xB9D1EA},          // active caption gradient
    {QPalette::Inactive, QPalette::Highlight, 0xD7E4F2},        // inactive caption gradient
    {QPalette::Active, QPalette::Highlight, 0x3399FF},          // highlighted menu item
    {QPalette::Active, QPalette::Window, 0xF0F0F0},             // menu bar
};

TColor FromRgb(QRgb Rgb) { return RGBToColor(qRed(Rgb), qGreen(Rgb), qBlue(Rgb)); }

} // namespace

TColor ColorToRGB(TColor Color)
{
    if (!(Color & clSysColor))
        return Color;
    const unsigned Index = Color & 0xFF;
    // An index the system does not know resolves to black, as the classic desktop does.
    if (Index >= std::size(SystemColors) || SystemColors[Index].Role == QPalette::NoRole)
        return clBlack;
    const SystemColor& S = SystemColors[Index];
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return FromRgb(S.Classic);
    return FromRgb(QGuiApplication::palette().color(S.Group, S.Role).rgb());
}

QColor TColorToQColor(TColor Color)
{
    if (Color == clNone)
        return QColor(Qt::transparent);
    const TColor C = ColorToRGB(Color);
    return QColor(int(C & 0xFF), int((C >> 8) & 0xFF), int((C >> 16) & 0xFF));
}

TColor QColorToTColor(const QColor& Color)
{
    if (!Color.isValid() || Color.alpha() == 0)
        return clNone;
    return RGBToColor(Color.red(), Color.green(), Color.blue());
}

TColor RGBToColor(int Red, int Green, int Blue)
{
    const auto Channel = [](int C) { return TColor(std::clamp(C, 0, 255)); };
    return Channel(Red) | (Channel(Green) << 8) | (Channel(Blue) << 16);
}

TFont::TFont()
{
    m_font.setFamily(QStringLiteral("Microsoft Sans Serif"));
    m_font.setPointSize(8);
}

TFont::TFont(const QFont& Font, TColor Color, int Charset) : m_font(Font), m_color(Color)
{
    SetCharset(Charset);
    // Sizes are whole points here; a font given in pixels has no point size, and
    // 96 dots per inch is the classic screen.
    if (m_font.pointSize() > 0)
        SetSize(m_font.pointSize());
    else
        SetSize(m_font.pixelSize() > 0 ? qRound(m_font.pixelSize() * 72.0 / 96.0) : 8);
}

void TFont::SetSize(int Value)
{
    m_font.setPointSize(std::clamp(Value, 1, MaxSize));
}

TFontStyles TFont::Style() const
{
    TFontStyles S;
    S.setFlag(fsBold, m_font.bold());
    S.setFlag(fsItalic, m_font.italic());
    S.setFlag(fsUnderline, m_font.underline());
    S.setFlag(fsStrikeOut, m_font.strikeOut());
    return S;
}

void TFont::SetStyle(TFontStyles Value)
{
    m_font.setBold(Value.testFlag(fsBold));
    m_font.setItalic(Value.testFlag(fsItalic));
    m_font.setUnderline(Value.testFlag(fsUnderline));
    m_font.setStrikeOut(Value.testFlag(fsStrikeOut));
}

bool TFont::operator==(const TFont& Other) const
{
    return Name() == Other.Name() && Size() == Other.Size() && Style() == Other.Style()
        && m_color == Other.m_color && m_charset == Other.m_charset;
}

} // namespace Kesh
