// Kesh for Qt — the bilingual check box that draws its own glyphs and styled caption.
#pragma once
#include "label.h"
#include <QAbstractButton>
#include <memory>

namespace Kesh {

/// The enumeration lives in its own namespace only so that moc can register it; it reads as
/// Kesh::cbsStyle_1.
namespace CheckBoxStyles {
Q_NAMESPACE_EXPORT(KESH_EXPORT)
/// The four glyph sets of the check box.
enum TxCheckBoxStyles { cbsStyle_1, cbsStyle_2, cbsStyle_3, cbsStyle_4 };
Q_ENUM_NS(TxCheckBoxStyles)
} // namespace CheckBoxStyles
using namespace CheckBoxStyles;

/// A bilingual check box: a 16×16 glyph of the chosen set at the top edge on the reading
/// side, the caption beside it in the label's text styles, and an optional linked control
/// whose Enabled always equals Checked. Enter moves the focus on, Space clicks.
class KESH_EXPORT TQxCheckBox : public QAbstractButton, public TLoadable, public TxBilingual, public TxStyledCaption
{
    Q_OBJECT
    Q_PROPERTY(bool Checked READ GetChecked WRITE SetChecked USER true)
    Q_PROPERTY(QString Caption READ text WRITE SetCaption)
    Q_PROPERTY(Kesh::TFont Font READ GetFont WRITE SetFont)
    KESH_BILINGUAL_PROPERTIES
    Q_PROPERTY(QWidget* _Control READ GetControl WRITE SetControl)
    Q_PROPERTY(Kesh::CheckBoxStyles::TxCheckBoxStyles _Style READ GetStyle WRITE SetStyle)
    KESH_TEXT_LOOK_PROPERTIES
    Q_PROPERTY(Kesh::TBiDiMode BiDiMode READ BiDiMode WRITE SetBiDiMode)

public:
    /// Width of the glyph, and the distance from the glyph's outer edge to the caption.
    static constexpr int GlyphSize = 16;
    static constexpr int TextIndent = 20;

    /// 100×16, a tab stop, unchecked, Tahoma 8 in navy with the Arabic character set; both
    /// caption fonts copy that font.
    explicit TQxCheckBox(QWidget* Parent = nullptr);
    ~TQxCheckBox() override;

    /// Setting the state from code updates _Control and repaints but emits no clicked().
    bool GetChecked() const { return isChecked(); }
    void SetChecked(bool Value) { setChecked(Value); }

    /// The caption shown now. An "&" is plain text: the caption is drawn without prefix
    /// processing, so it makes no Alt+letter shortcut either.
    void SetCaption(const QString& Value);
    /// The font the caption is drawn in (with its colour).
    TFont GetFont() const;
    void SetFont(const TFont& Value);

    /// The linked control (not owned); it is given Enabled = Checked at once and on every change.
    QWidget* GetControl() const;
    void SetControl(QWidget* Value);

    TxCheckBoxStyles GetStyle() const;
    void SetStyle(TxCheckBoxStyles Value);

    TBiDiMode BiDiMode() const { return BiDiModeOf(this); }
    void SetBiDiMode(TBiDiMode Value) { SetBiDiModeOf(this, Value); }

    /// Name of the glyph for the current style and state: "CheckBox<n>_ON" or "_OFF".
    QString GlyphName() const;
    /// The resource file holding the glyph called Name, matched without regard to case;
    /// empty when there is none.
    static QString GlyphFile(const QString& Name);
    /// Where the glyph is drawn: the top left corner, or the top right one when right to left.
    QRect GlyphRect() const;
    /// Where the caption is drawn: the client area less TextIndent pixels on the glyph's side.
    QRect TextRect() const;

    QSize sizeHint() const override;

protected:
    void Loaded() override;
    bool event(QEvent* Event) override;
    void changeEvent(QEvent* Event) override;
    void paintEvent(QPaintEvent* Event) override;
    void keyPressEvent(QKeyEvent* Event) override;
    void nextCheckState() override;

private:
    void TextLookChanged() override { update(); }
    TBiDiMode BiLanguage() const override;
    void ShowBiCaption(const QString& Caption) override;
    void ShowBiFont(const TFont& Font) override;
    void FollowChecked();

    std::unique_ptr<struct TQxCheckBoxPrivate> const d;
};

} // namespace Kesh
