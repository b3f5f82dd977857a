// Kesh for Qt — the grid's painting pieces: the cell delegate with its in-place editors, the
// title header and the fixed columns (indicator and record number). Private to the grid.
#pragma once
#include <QHeaderView>
#include <QLineEdit>
#include <QStyledItemDelegate>

class QToolButton;

namespace Kesh {

class TQxCustomDBGrid;

/// The in-place line editor, with an ellipsis button for cbsEllipsis columns.
class TQxInplaceEdit : public QLineEdit
{
    Q_OBJECT
public:
    TQxInplaceEdit(QWidget* Parent, bool Ellipsis);
    QToolButton* Button() const { return m_button; }

Q_SIGNALS:
    void EditButtonClicked();

protected:
    void resizeEvent(QResizeEvent* Event) override;

private:
    QToolButton* m_button = nullptr;
};

/// Paints the data cells through the grid and makes the in-place editors.
class TQxGridDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit TQxGridDelegate(TQxCustomDBGrid* Grid);
    void paint(QPainter* Painter, const QStyleOptionViewItem& Option, const QModelIndex& Index) const override;
    QWidget* createEditor(QWidget* Parent, const QStyleOptionViewItem& Option, const QModelIndex& Index) const override;
    void setEditorData(QWidget* Editor, const QModelIndex& Index) const override;
    void setModelData(QWidget*, QAbstractItemModel*, const QModelIndex&) const override {}
    void updateEditorGeometry(QWidget* Editor, const QStyleOptionViewItem& Option, const QModelIndex& Index) const override;
    /// The text an editor holds.
    static QString EditorText(const QWidget* Editor);
    static void SetEditorText(QWidget* Editor, const QString& Text);

protected:
    bool eventFilter(QObject* Object, QEvent* Event) override;

private:
    TQxCustomDBGrid* m_grid;
};

/// The column titles: colours, fonts and captions of the columns' titles.
class TQxGridTitleHeader : public QHeaderView
{
    Q_OBJECT
public:
    explicit TQxGridTitleHeader(TQxCustomDBGrid* Grid);
    QSize sizeHint() const override;
    int Pressed() const { return m_pressed; }
    int Hot() const { return m_hot; }

protected:
    void paintSection(QPainter* Painter, const QRect& Rect, int LogicalIndex) const override;
    void mousePressEvent(QMouseEvent* Event) override;
    void mouseReleaseEvent(QMouseEvent* Event) override;
    void mouseMoveEvent(QMouseEvent* Event) override;
    void leaveEvent(QEvent* Event) override;
    bool viewportEvent(QEvent* Event) override;

private:
    TQxCustomDBGrid* m_grid;
    int m_pressed = -1;
    int m_hot = -1;
};

/// The fixed columns at the reading start: the indicator (11 pixels, at the outer edge) and
/// the record-number column.
class TQxGridIndicatorHeader : public QHeaderView
{
    Q_OBJECT
public:
    explicit TQxGridIndicatorHeader(TQxCustomDBGrid* Grid);
    QSize sizeHint() const override;
    /// The indicator's and the record number's parts of a cell of the header.
    QRect IndicatorRect(const QRect& Cell) const;
    QRect RecNoRect(const QRect& Cell) const;

protected:
    void paintSection(QPainter* Painter, const QRect& Rect, int LogicalIndex) const override;

private:
    TQxCustomDBGrid* m_grid;
};

} // namespace Kesh
