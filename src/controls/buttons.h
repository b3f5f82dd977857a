// Kesh for Qt — buttons with an Arabic and an English caption, font and hint, a hot key
// answered from anywhere on their window, and a pop-up menu that opens on click.
#pragma once
#include "platform/application.h"
#include "bi_caption.h"
#include "platform/graphics.h"
#include "platform/kesh_global.h"
#include "platform/widgets.h"
#include <QKeySequence>
#include <QPushButton>
#include <QToolButton>
#include <memory>

class QMenu;
Q_MOC_INCLUDE(<QMenu>)

namespace Kesh {

struct TxBiButtonData;

/// The published properties of a TxBiButton, for the Q_OBJECT section of each button class.
#define KESH_BI_BUTTON_PROPERTIES \
    Q_PROPERTY(QKeySequence _HotKey READ GetHotKey WRITE SetHotKey) \
    KESH_BILINGUAL_PROPERTIES \
    Q_PROPERTY(QString _Hint_a READ GetHint_a WRITE SetHintA) \
    Q_PROPERTY(QString _Hint_e READ GetHint_e WRITE SetHintE) \
    Q_PROPERTY(QMenu* PopupMenu READ GetPopupMenu WRITE SetPopupMenu) \
    Q_PROPERTY(Kesh::TBiDiMode BiDiMode READ GetBiDiMode WRITE SetBiDiMode)

/// What the bilingual buttons share, over the Qt button class Base.
///
/// The button shows the caption, font and hint of its reading direction: Arabic under right to
/// left, English under left to right. Every click of the mouse, the Space key, the hot key or
/// the button's mnemonic goes through the virtual Click(); Qt's plain click() (and so the
/// clicked() signal, the button's OnClick) is what Click() runs when there is no pop-up menu.
template <class Base>
class KESH_EXPORT TxBiButton : public Base, public TLoadable, public TxBilingual
{
public:
    explicit TxBiButton(QWidget* Parent = nullptr);
    ~TxBiButton() override;

    // The captions and fonts (TxBilingual) start as copies of the button's font; a member
    // shows at once while the button reads in its language.

    /// Arabic hint (the tool tip under right to left).
    QString GetHint_a() const;
    void SetHintA(const QString& Value);
    /// English hint (the tool tip otherwise).
    QString GetHint_e() const;
    void SetHintE(const QString& Value);

    /// The key that clicks the button from anywhere on its window; empty = none. Only the
    /// first key combination of a sequence counts. An empty tool tip becomes the key's text.
    QKeySequence GetHotKey() const;
    void SetHotKey(const QKeySequence& Value);

    /// The menu that a click opens below the button instead of clicking it (not owned).
    QMenu* GetPopupMenu() const;
    void SetPopupMenu(QMenu* Value);

    /// The reading direction last applied to the button.
    TBiDiMode GetBiDiMode() const;
    /// Sets the button's own direction and shows the caption, font and hint of Value's
    /// language; the two mixed modes lay out left to right and change no text.
    void SetBiDiMode(TBiDiMode Value);

    /// What a click does: opens the pop-up menu when there is one, else Qt's click().
    virtual void Click();

protected:
    /// Shows the language of the direction the button ended its building with.
    void Loaded() override;
    bool event(QEvent* Event) override;
    void changeEvent(QEvent* Event) override;
    void mouseReleaseEvent(QMouseEvent* Event) override;
    void keyPressEvent(QKeyEvent* Event) override;
    void keyReleaseEvent(QKeyEvent* Event) override;
    void contextMenuEvent(QContextMenuEvent* Event) override;

private:
    TBiDiMode BiLanguage() const override;
    void ShowBiCaption(const QString& Caption) override;
    void ShowBiFont(const TFont& Font) override;
    void ApplyLanguage();
    bool IsRightToLeft() const;

    std::unique_ptr<TxBiButtonData> const d;
};

extern template class KESH_EXPORT TxBiButton<QToolButton>;
extern template class KESH_EXPORT TxBiButton<QPushButton>;

/// A tool-bar button that takes no focus: before it acts, the focused control of its window
/// loses the focus, so that control's exit check runs first.
class KESH_EXPORT TQxSpeedButton : public TxBiButton<QToolButton>
{
    Q_OBJECT
    KESH_BI_BUTTON_PROPERTIES

public:
    explicit TQxSpeedButton(QWidget* Parent = nullptr);
    ~TQxSpeedButton() override;

    /// Takes the focus from the window's focused control, then acts as every button does.
    void Click() override;
};

/// A push button with a glyph (its icon) and bilingual caption, font and hint.
class KESH_EXPORT TQxBitBtn : public TxBiButton<QPushButton>
{
    Q_OBJECT
    KESH_BI_BUTTON_PROPERTIES

public:
    explicit TQxBitBtn(QWidget* Parent = nullptr);
    ~TQxBitBtn() override;
};

/// A push button showing an icon beside its bilingual caption; descendants give it its
/// action by overriding Click().
class KESH_EXPORT TQxIconButton : public TxBiButton<QPushButton>
{
    Q_OBJECT
    KESH_BI_BUTTON_PROPERTIES

public:
    explicit TQxIconButton(QWidget* Parent = nullptr);
    /// A button showing Icon.
    explicit TQxIconButton(const QIcon& Icon, QWidget* Parent = nullptr);
    ~TQxIconButton() override;
};

} // namespace Kesh
