// Kesh for Qt — the bilingual panel with an optional gradient face.
#pragma once
#include "label.h"
// After label.h: the host application's enumerations must be declared first.
#include "colors.h"
#include <QFrame>
#include <memory>

namespace Kesh {

/// A raised frame that paints its face in Color or, with _GradFill, as a gradient from
/// _ColorFrom to _ColorTo, and shows a bilingual caption in the label's text styles.
class KESH_EXPORT TQxCustomPanel : public QFrame, public TLoadable, public TxBilingual, public TxStyledCaption
{
    Q_OBJECT
    Q_PROPERTY(QString Caption READ GetCaption WRITE SetCaption)
    Q_PROPERTY(Kesh::TFont Font READ GetFont WRITE SetFont)
    KESH_BILINGUAL_PROPERTIES
    Q_PROPERTY(bool _GradFill READ GetGradFill WRITE SetGradFill)
    Q_PROPERTY(quint32 _ColorFrom READ GetColorFrom WRITE SetColorFrom)
    Q_PROPERTY(quint32 _ColorTo READ GetColorTo WRITE SetColorTo)
    Q_PROPERTY(Kesh::Colors::TxGradDir _Direction READ GetDirection WRITE SetDirection)
    KESH_TEXT_LOOK_PROPERTIES
    Q_PROPERTY(quint32 Color READ GetColor WRITE SetColor)
    Q_PROPERTY(Qt::Alignment Alignment READ GetAlignment WRITE SetAlignment)
    Q_PROPERTY(Kesh::TBiDiMode BiDiMode READ BiDiMode WRITE SetBiDiMode)

public:
    /// A raised one-pixel panel on the button face colour, caption centred; both caption
    /// fonts copy the panel's font.
    explicit TQxCustomPanel(QWidget* Parent = nullptr);
    ~TQxCustomPanel() override;

    /// The caption shown.
    QString GetCaption() const;
    void SetCaption(const QString& Value);
    /// The font the caption is drawn in (with its colour).
    TFont GetFont() const;
    void SetFont(const TFont& Value);

    /// Paint the face as a gradient (False: plain Color).
    bool GetGradFill() const;
    void SetGradFill(bool Value);
    /// Colour of the first column (gdHorizontal) or row (gdVertical) of the face (clWhite).
    TColor GetColorFrom() const;
    void SetColorFrom(TColor Value);
    /// Colour of the last column or row of the face (clBtnFace).
    TColor GetColorTo() const;
    void SetColorTo(TColor Value);
    /// Direction of the gradient (gdHorizontal: from the left edge to the right one).
    TxGradDir GetDirection() const;
    void SetDirection(TxGradDir Value);


    /// Face colour without a gradient (clBtnFace).
    TColor GetColor() const;
    void SetColor(TColor Value);
    /// Horizontal alignment of the caption (centred); left and right swap under right to left.
    Qt::Alignment GetAlignment() const;
    void SetAlignment(Qt::Alignment Value);

    TBiDiMode BiDiMode() const { return BiDiModeOf(this); }
    void SetBiDiMode(TBiDiMode Value) { SetBiDiModeOf(this, Value); }

protected:
    void Loaded() override;
    bool event(QEvent* Event) override;
    void changeEvent(QEvent* Event) override;
    void paintEvent(QPaintEvent* Event) override;

private:
    void TextLookChanged() override { update(); }
    TBiDiMode BiLanguage() const override;
    void ShowBiCaption(const QString& Caption) override;
    void ShowBiFont(const TFont& Font) override;

    std::unique_ptr<struct TQxCustomPanelPrivate> const d;
};

/// The panel as placed on forms.
class KESH_EXPORT TQxPanel : public TQxCustomPanel
{
    Q_OBJECT
public:
    explicit TQxPanel(QWidget* Parent = nullptr) : TQxCustomPanel(Parent) {}
};

} // namespace Kesh
