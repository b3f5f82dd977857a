// Kesh for Qt — the bilingual radio group.
#pragma once
#include "bi_caption.h"
#include "platform/kesh_global.h"
#include "platform/widgets.h"
#include <QGroupBox>
#include <QStringList>
#include <memory>

class QButtonGroup;
class QRadioButton;

namespace Kesh {

/// A titled group of exclusive radio buttons, one per item, laid out in Columns columns
/// (filled top to bottom). The title, items and font come in Arabic and English and follow
/// the group's reading direction; the chosen item stays chosen across a switch.
class KESH_EXPORT TQxRadioGroup : public QGroupBox, public TLoadable, public TxBilingual
{
    Q_OBJECT
    Q_PROPERTY(QString Caption READ title WRITE setTitle)
    Q_PROPERTY(QStringList Items READ GetItems WRITE SetItems)
    Q_PROPERTY(QStringList _Items_a READ GetItems_a WRITE SetItems_a)
    Q_PROPERTY(QStringList _Items_e READ GetItems_e WRITE SetItems_e)
    Q_PROPERTY(Kesh::TFont Font READ GetFont WRITE SetFont)
    KESH_BILINGUAL_PROPERTIES
    Q_PROPERTY(int ItemIndex READ GetItemIndex WRITE SetItemIndex NOTIFY ItemIndexChanged USER true)
    Q_PROPERTY(int Columns READ GetColumns WRITE SetColumns)
    Q_PROPERTY(Kesh::TBiDiMode BiDiMode READ BiDiMode WRITE SetBiDiMode)

public:
    /// An empty group of one column with no item chosen; both fonts copy the group's font.
    explicit TQxRadioGroup(QWidget* Parent = nullptr);
    ~TQxRadioGroup() override;


    /// The items shown, one radio button each. ItemIndex is kept when still in range.
    QStringList GetItems() const;
    void SetItems(const QStringList& Value);
    QStringList GetItems_a() const;
    /// Arabic items; shown at once when the group is right to left.
    void SetItems_a(const QStringList& Value);
    QStringList GetItems_e() const;
    /// English items; shown at once when the group is not right to left.
    void SetItems_e(const QStringList& Value);

    /// The font of the title and the items (with its colour).
    TFont GetFont() const;
    void SetFont(const TFont& Value);

    /// The chosen item, −1 for none; a value out of range is brought to −1 or the last item.
    int GetItemIndex() const;
    void SetItemIndex(int Value);
    /// Number of columns, at least 1.
    int GetColumns() const;
    void SetColumns(int Value);

    /// The radio button of item Index, or nullptr.
    QRadioButton* Button(int Index) const;

    TBiDiMode BiDiMode() const { return BiDiModeOf(this); }
    void SetBiDiMode(TBiDiMode Value) { SetBiDiModeOf(this, Value); }

Q_SIGNALS:
    /// The chosen item changed, by the user or from code.
    void ItemIndexChanged(int Index);

protected:
    void Loaded() override;
    bool event(QEvent* Event) override;
    void changeEvent(QEvent* Event) override;

private:
    TBiDiMode BiLanguage() const override;
    void ShowBiCaption(const QString& Caption) override;
    void ShowBiFont(const TFont& Font) override;
    void ApplyBiLanguage() override;
    void BuildButtons();
    void PlaceButtons();
    void ShowItemIndex();

    std::unique_ptr<struct TQxRadioGroupPrivate> const d;
};

} // namespace Kesh
