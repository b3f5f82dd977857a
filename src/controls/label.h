// Kesh for Qt — the bilingual label, and the styled caption drawing that labels, check boxes
// and panels share.
#pragma once
#include "bi_caption.h"
#include "platform/graphics.h"
#include "platform/kesh_global.h"
#include "platform/widgets.h"
#include <QWidget>
#include <functional>
#include <memory>

class QPainter;

namespace Kesh {

/// The enumerations live in their own namespace only so that moc can register them; they
/// read as Kesh::Tx3D, Kesh::tlCenter.
namespace TextStyles {
Q_NAMESPACE_EXPORT(KESH_EXPORT)
/// How a caption is drawn: plain; embossed (a white copy up-left, a shade copy down-right,
/// then the text); or with a shade copy offset down-right.
enum TxTextStyle { TxNormal, Tx3D, TxShadow };
Q_ENUM_NS(TxTextStyle)
/// Vertical placement of a label's text.
enum TTextLayout { tlTop, tlCenter, tlBottom };
Q_ENUM_NS(TTextLayout)
} // namespace TextStyles
using namespace TextStyles;

/// The look of a styled caption: its style, the colour of the shade copy, and the offset in
/// pixels (right and down) of the TxShadow copy.
struct TxTextLook
{
    TxTextStyle Style = TxNormal;
    TColor Shade = clGray;
    int ShadowPos = 1;
};

/// The published look of a styled caption, for the Q_OBJECT section of a TxStyledCaption.
#define KESH_TEXT_LOOK_PROPERTIES \
    Q_PROPERTY(Kesh::TextStyles::TxTextStyle _TextStyle READ GetTextStyle WRITE SetTextStyle) \
    Q_PROPERTY(quint32 _TextShade READ GetTextShade WRITE SetTextShade) \
    Q_PROPERTY(int _TextShadowPos READ GetTextShadowPos WRITE SetTextShadowPos)

/// What the controls that draw a styled caption share: the accessors of its look. A
/// change repaints through TextLookChanged().
class KESH_EXPORT TxStyledCaption
{
public:
    TxTextStyle GetTextStyle() const { return m_look.Style; }
    void SetTextStyle(TxTextStyle Value);
    /// Colour of the shade copy of Tx3D and TxShadow ($808080).
    TColor GetTextShade() const { return m_look.Shade; }
    void SetTextShade(TColor Value);
    /// Offset right and down of the TxShadow copy, in pixels.
    int GetTextShadowPos() const { return m_look.ShadowPos; }
    void SetTextShadowPos(int Value);

protected:
    explicit TxStyledCaption(int ShadowPos) { m_look.ShadowPos = ShadowPos; }
    virtual ~TxStyledCaption() = default;
    const TxTextLook& TextLook() const { return m_look; }
    virtual void TextLookChanged() = 0;

private:
    TxTextLook m_look;
};

/// Draws Text into Rect with the QPainter text Flags (alignment, Qt::TextWordWrap,
/// Qt::TextShowMnemonic ...) in Font. Enabled: the copies of Look's style, then the text in
/// Font's colour in Rect itself. Disabled, whatever the style: the engraved look, the text in
/// the button-highlight colour 1 px down-right and in the button-shadow colour in place.
/// The whole string is drawn in one call, so joined scripts keep their shapes.
KESH_EXPORT void DrawStyledText(QPainter* Canvas, const QRect& Rect, int Flags, const QString& Text,
                                const TFont& Font, const TxTextLook& Look, bool Enabled);

/// A bilingual static text that paints itself: an Arabic and an English caption with a font
/// each, shown by the label's reading direction, drawn plain, embossed or shadowed, on an
/// opaque or transparent background with an optional frame.
class KESH_EXPORT TQxCustomLabel : public QWidget, public TLoadable, public TxBilingual, public TxStyledCaption
{
    Q_OBJECT
    Q_PROPERTY(QString Caption READ GetCaption WRITE SetCaption)
    Q_PROPERTY(Kesh::TFont Font READ GetFont WRITE SetFont)
    KESH_BILINGUAL_PROPERTIES
    KESH_TEXT_LOOK_PROPERTIES
    Q_PROPERTY(bool _Rectangle READ GetRectangle WRITE SetRectangle)
    Q_PROPERTY(quint32 _RectColor READ GetRectColor WRITE SetRectColor)
    Q_PROPERTY(Qt::PenStyle _RectStyle READ GetRectStyle WRITE SetRectStyle)
    Q_PROPERTY(bool _Movable READ GetMovable WRITE SetMovable)
    Q_PROPERTY(Qt::Alignment Alignment READ GetAlignment WRITE SetAlignment)
    Q_PROPERTY(bool WordWrap READ GetWordWrap WRITE SetWordWrap)
    Q_PROPERTY(Kesh::TextStyles::TTextLayout Layout READ GetLayout WRITE SetLayout)
    Q_PROPERTY(bool AutoSize READ GetAutoSize WRITE SetAutoSize)
    Q_PROPERTY(bool ShowAccelChar READ GetShowAccelChar WRITE SetShowAccelChar)
    Q_PROPERTY(bool Transparent READ GetTransparent WRITE SetTransparent)
    Q_PROPERTY(quint32 Color READ GetColor WRITE SetColor)
    Q_PROPERTY(QWidget* FocusControl READ GetFocusControl WRITE SetFocusControl)
    Q_PROPERTY(Kesh::TBiDiMode BiDiMode READ BiDiMode WRITE SetBiDiMode)

public:
    /// Width 101, height 21, Tahoma 8 in navy with the Arabic character set, opaque on
    /// $C8F0FA, text centred vertically; both caption fonts copy the font the widget had
    /// before those defaults.
    explicit TQxCustomLabel(QWidget* Parent = nullptr);
    ~TQxCustomLabel() override;

    /// The text shown.
    QString GetCaption() const;
    void SetCaption(const QString& Value);

    /// The font the text is drawn in (with its colour).
    TFont GetFont() const;
    void SetFont(const TFont& Value);


    /// A frame round the client area in _RectColor and _RectStyle.
    bool GetRectangle() const;
    void SetRectangle(bool Value);
    TColor GetRectColor() const;
    void SetRectColor(TColor Value);
    Qt::PenStyle GetRectStyle() const;
    void SetRectStyle(Qt::PenStyle Value);
    /// Pressing the left mouse button on the label drags its window.
    bool GetMovable() const;
    void SetMovable(bool Value);

    /// Horizontal alignment (Qt::AlignLeft by default; left and right swap under right to left).
    Qt::Alignment GetAlignment() const;
    void SetAlignment(Qt::Alignment Value);
    bool GetWordWrap() const;
    void SetWordWrap(bool Value);
    TTextLayout GetLayout() const;
    void SetLayout(TTextLayout Value);
    /// The label takes the size of its text (one line's height when empty); a label whose
    /// text sits on the right keeps its right edge.
    bool GetAutoSize() const;
    void SetAutoSize(bool Value);
    /// "&x" is drawn as an underlined x and makes Alt+x focus FocusControl; "&&" is one "&".
    bool GetShowAccelChar() const;
    void SetShowAccelChar(bool Value);
    /// Transparent: the background is not painted, the parent shows through.
    bool GetTransparent() const;
    void SetTransparent(bool Value);
    /// Background colour of an opaque label.
    TColor GetColor() const;
    void SetColor(TColor Value);
    /// The control that the caption's accelerator focuses; not owned, forgotten when deleted.
    QWidget* GetFocusControl() const;
    void SetFocusControl(QWidget* Value);

    TBiDiMode BiDiMode() const { return BiDiModeOf(this); }
    /// Sets the label's own direction; the caption and font follow.
    void SetBiDiMode(TBiDiMode Value) { SetBiDiModeOf(this, Value); }

    /// The size of the text (one line when empty) in the current font.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    std::function<void(QObject*)> OnMouseEnter; ///< after the mouse entered the label
    std::function<void(QObject*)> OnMouseLeave; ///< after the mouse left the label

Q_SIGNALS:
    /// The left button was pressed and released on the label.
    void clicked();
    void doubleClicked();

protected:
    void Loaded() override;
    bool event(QEvent* Event) override;
    void changeEvent(QEvent* Event) override;
    void paintEvent(QPaintEvent* Event) override;
    void mousePressEvent(QMouseEvent* Event) override;
    void mouseMoveEvent(QMouseEvent* Event) override;
    void mouseReleaseEvent(QMouseEvent* Event) override;
    void mouseDoubleClickEvent(QMouseEvent* Event) override;
    void enterEvent(QEnterEvent* Event) override;
    void leaveEvent(QEvent* Event) override;

private:
    void TextLookChanged() override { update(); }
    TBiDiMode BiLanguage() const override;
    void ShowBiCaption(const QString& Caption) override;
    void ShowBiFont(const TFont& Font) override;
    void Changed();
    void AdjustBounds();
    void UpdateShortcut();
    int TextFlags() const;
    QSize TextExtent(int Width) const;

    std::unique_ptr<struct TQxCustomLabelPrivate> const d;
};

/// The label as placed on forms.
class KESH_EXPORT TQxLabel : public TQxCustomLabel
{
    Q_OBJECT
public:
    explicit TQxLabel(QWidget* Parent = nullptr) : TQxCustomLabel(Parent) {}
};

} // namespace Kesh
