// Kesh for Qt — the grid's delegate, editors and header views.
#include "grid_views_p.h"
#include "db_grid.h"
#include "colors.h"
#include "platform/data/dataset.h"
#include "platform/data/fields.h"
#include "platform/widgets.h"
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QPainter>
#include <QStyle>
#include <QToolButton>

namespace Kesh {

// ---------------------------------------------------------------- TQxInplaceEdit

TQxInplaceEdit::TQxInplaceEdit(QWidget* Parent, bool Ellipsis) : QLineEdit(Parent)
{
    setFrame(false);
    if (Ellipsis) {
        m_button = new QToolButton(this);
        m_button->setObjectName(QStringLiteral("EditButton"));
        m_button->setText(QStringLiteral("…"));
        m_button->setCursor(Qt::ArrowCursor);
        m_button->setFocusPolicy(Qt::NoFocus);
        connect(m_button, &QToolButton::clicked, this, &TQxInplaceEdit::EditButtonClicked);
    }
}

void TQxInplaceEdit::resizeEvent(QResizeEvent* Event)
{
    QLineEdit::resizeEvent(Event);
    if (!m_button)
        return;
    // The button stands at the end of the reading direction, the text keeps clear of it.
    const int W = std::min(height(), 18);
    const bool Rtl = layoutDirection() == Qt::RightToLeft;
    m_button->setGeometry(Rtl ? 0 : width() - W, 0, W, height());
    setTextMargins(Rtl ? W : 0, 0, Rtl ? 0 : W, 0);
}

// ---------------------------------------------------------------- TQxGridDelegate

TQxGridDelegate::TQxGridDelegate(TQxCustomDBGrid* Grid) : QStyledItemDelegate(Grid), m_grid(Grid) {}

void TQxGridDelegate::paint(QPainter* Painter, const QStyleOptionViewItem& Option, const QModelIndex& Index) const
{
    m_grid->DrawCell(Painter, Option.rect, Index);
}

QWidget* TQxGridDelegate::createEditor(QWidget* Parent, const QStyleOptionViewItem&, const QModelIndex& Index) const
{
    TQxColumn* C = m_grid->GetColumns()->Items(Index.column());
    if (!C)
        return nullptr;
    QWidget* Editor = nullptr;
    if (C->GetButtonStyle() == cbsAuto && !C->GetPickList().isEmpty()) {
        auto* Combo = new QComboBox(Parent);
        Combo->setEditable(true);
        Combo->addItems(C->GetPickList());
        Combo->setMaxVisibleItems(std::max(C->GetDropDownRows(), 1));
        Combo->setFrame(false);
        Combo->lineEdit()->installEventFilter(const_cast<TQxGridDelegate*>(this));
        connect(Combo->lineEdit(), &QLineEdit::textEdited, m_grid, [G = m_grid, Combo] { G->EditorTextEdited(Combo); });
        connect(Combo, &QComboBox::activated, m_grid, [G = m_grid, Combo] { G->EditorTextEdited(Combo); });
        Editor = Combo;
    } else {
        auto* Edit = new TQxInplaceEdit(Parent, C->GetButtonStyle() == cbsEllipsis);
        connect(Edit, &TQxInplaceEdit::EditButtonClicked, m_grid, [G = m_grid] { G->EditButtonClicked(); });
        connect(Edit, &QLineEdit::textEdited, m_grid, [G = m_grid, Edit] { G->EditorTextEdited(Edit); });
        TField* F = C->Field();
        if (F && (F->DataType() == ftString || F->DataType() == ftWideString || F->DataType() == ftFixedChar)
            && F->Size() > 0)
            Edit->setMaxLength(F->Size());
        Edit->setAlignment(QStyle::visualAlignment(m_grid->layoutDirection(), C->GetAlignment()) | Qt::AlignVCenter);
        Editor = Edit;
    }
    Editor->setObjectName(QStringLiteral("InplaceEditor"));
    Editor->setLayoutDirection(m_grid->layoutDirection());
    Editor->setFont(C->GetFont().Font());
    Editor->setAutoFillBackground(true);
    return Editor;
}

void TQxGridDelegate::setEditorData(QWidget* Editor, const QModelIndex& Index) const
{
    TQxColumn* C = m_grid->GetColumns()->Items(Index.column());
    TField* F = C ? C->Field() : nullptr;
    SetEditorText(Editor, F ? F->Text() : QString());
}

void TQxGridDelegate::updateEditorGeometry(QWidget* Editor, const QStyleOptionViewItem& Option, const QModelIndex&) const
{
    Editor->setGeometry(Option.rect);  // the whole cell: no strip of its highlight shows around
}

QString TQxGridDelegate::EditorText(const QWidget* Editor)
{
    if (auto* Combo = qobject_cast<const QComboBox*>(Editor))
        return Combo->currentText();
    if (auto* Edit = qobject_cast<const QLineEdit*>(Editor))
        return Edit->text();
    return QString();
}

void TQxGridDelegate::SetEditorText(QWidget* Editor, const QString& Text)
{
    if (auto* Combo = qobject_cast<QComboBox*>(Editor))
        Combo->setEditText(Text);
    else if (auto* Edit = qobject_cast<QLineEdit*>(Editor)) {
        Edit->setText(Text);
        Edit->selectAll();
    }
}

bool TQxGridDelegate::eventFilter(QObject* Object, QEvent* Event)
{
    QWidget* Editor = qobject_cast<QWidget*>(Object);
    // The combo's line edit reports for its combo.
    if (Editor && qobject_cast<QComboBox*>(Editor->parentWidget()))
        Editor = Editor->parentWidget();
    // A message box or a pop-up taking the focus for a while leaves the editor open (Qt
    // would write and close it): the user's text stays where it was typed.
    if (Editor && Event->type() == QEvent::FocusOut) {
        const Qt::FocusReason Reason = static_cast<QFocusEvent*>(Event)->reason();
        if (Reason == Qt::ActiveWindowFocusReason || Reason == Qt::PopupFocusReason)
            return false;
    }
    if (!Editor || Event->type() != QEvent::KeyPress)
        return QStyledItemDelegate::eventFilter(Editor ? Editor : Object, Event);
    auto* Key = static_cast<QKeyEvent*>(Event);
    const TQxColumn* C = m_grid->GetColumns()->Items(m_grid->currentIndex().column());
    TField* F = C ? C->Field() : nullptr;
    const bool Enter = Key->key() == Qt::Key_Return || Key->key() == Qt::Key_Enter;
    if (Enter && (Key->modifiers() & Qt::ControlModifier) && C && C->GetButtonStyle() == cbsEllipsis) {
        m_grid->EditButtonClicked();
        return true;
    }
    if (Enter && !(Key->modifiers() & ~Qt::KeypadModifier)) {
        // Write the cell, then move on as Enter does in the grid (next column).
        Q_EMIT commitData(Editor);
        if (!m_grid->CommitFailed()) {
            Q_EMIT closeEditor(Editor, NoHint);
            QKeyEvent Again(QEvent::KeyPress, Key->key(), Key->modifiers());
            QApplication::sendEvent(m_grid, &Again);
        }
        return true;
    }
    // The field's text rules: characters it cannot hold are refused with a beep.
    const QString Text = Key->text();
    if (F && !Text.isEmpty() && !(Key->modifiers() & (Qt::ControlModifier | Qt::AltModifier))
        && Text.at(0).isPrint()) {
        for (const QChar Ch : Text)
            if (!F->IsValidChar(Ch)) {
                Beep(16);
                return true;
            }
    }
    return QStyledItemDelegate::eventFilter(Editor, Event);
}

// ---------------------------------------------------------------- TQxGridTitleHeader

TQxGridTitleHeader::TQxGridTitleHeader(TQxCustomDBGrid* Grid) : QHeaderView(Qt::Horizontal, Grid), m_grid(Grid)
{
    setMouseTracking(true);
    setSectionsClickable(true);
    setHighlightSections(false);
    setMinimumSectionSize(0);
    setDefaultAlignment(Qt::AlignCenter);
}

QSize TQxGridTitleHeader::sizeHint() const
{
    int H = QFontMetrics(m_grid->GetTitleFont().Font()).height();
    TQxDBGridColumns* Columns = m_grid->GetColumns();
    for (int I = 0; I < Columns->Count(); ++I)
        H = std::max(H, QFontMetrics(Columns->Items(I)->GetTitle()->GetFont().Font()).height());
    return QSize(length(), H + 6);
}

void TQxGridTitleHeader::paintSection(QPainter* Painter, const QRect& Rect, int LogicalIndex) const
{
    TQxColumn* C = m_grid->GetColumns()->Items(LogicalIndex);
    if (!C)
        return;
    TQxColumnTitle* T = C->GetTitle();
    TColor Color = T->GetColor();
    if ((m_grid->GetOptions() & dgTitleHotTrack) && LogicalIndex == m_hot)
        Color = ChangeColor(Color, 16);
    Painter->save();
    Painter->fillRect(Rect, TColorToQColor(Color));
    // A raised edge, as fixed cells have.
    Painter->setPen(QColor(Qt::white));
    Painter->drawLine(Rect.topLeft(), Rect.topRight());
    Painter->drawLine(Rect.topLeft(), Rect.bottomLeft());
    Painter->setPen(TColorToQColor(clBtnShadow));
    Painter->drawLine(Rect.bottomLeft(), Rect.bottomRight());
    Painter->drawLine(Rect.topRight(), Rect.bottomRight());
    const TFont Font = T->GetFont();
    Painter->setFont(Font.Font());
    Painter->setPen(Font.PenColor());
    QRect TextRect = Rect.adjusted(2, 2, -2, -2);
    if (LogicalIndex == m_pressed)
        TextRect.translate(1, 1);
    const Qt::Alignment Align = QStyle::visualAlignment(m_grid->layoutDirection(), T->GetAlignment());
    Painter->drawText(TextRect, int(Align | Qt::AlignVCenter | Qt::TextSingleLine), T->GetCaption());
    Painter->restore();
}

void TQxGridTitleHeader::mousePressEvent(QMouseEvent* Event)
{
    if (Event->button() == Qt::LeftButton && (m_grid->GetOptions() & dgTitleClick)
        && cursor().shape() != Qt::SplitHCursor) {
        m_pressed = logicalIndexAt(Event->position().toPoint());
        viewport()->update();
    }
    QHeaderView::mousePressEvent(Event);
}

void TQxGridTitleHeader::mouseReleaseEvent(QMouseEvent* Event)
{
    const int Was = std::exchange(m_pressed, -1);
    QHeaderView::mouseReleaseEvent(Event);
    if (Was >= 0) {
        viewport()->update();
        if (Was == logicalIndexAt(Event->position().toPoint()) && m_grid->OnTitleClick)
            m_grid->OnTitleClick(m_grid->GetColumns()->Items(Was));
    }
}

void TQxGridTitleHeader::mouseMoveEvent(QMouseEvent* Event)
{
    const int Hot = logicalIndexAt(Event->position().toPoint());
    if (Hot != m_hot) {
        m_hot = Hot;
        if (m_grid->GetOptions() & dgTitleHotTrack)
            viewport()->update();
    }
    QHeaderView::mouseMoveEvent(Event);
}

void TQxGridTitleHeader::leaveEvent(QEvent* Event)
{
    m_hot = -1;
    viewport()->update();
    QHeaderView::leaveEvent(Event);
}

bool TQxGridTitleHeader::viewportEvent(QEvent* Event)
{
    // The mouse leaves the titles through their viewport (which the header's own leave
    // event does not always follow): no title stays hot.
    if (Event->type() == QEvent::Leave && m_hot >= 0) {
        m_hot = -1;
        viewport()->update();
    }
    return QHeaderView::viewportEvent(Event);
}

// ---------------------------------------------------------------- TQxGridIndicatorHeader

TQxGridIndicatorHeader::TQxGridIndicatorHeader(TQxCustomDBGrid* Grid) : QHeaderView(Qt::Vertical, Grid), m_grid(Grid)
{
    setSectionResizeMode(QHeaderView::Fixed);
    setSectionsClickable(false);
    setHighlightSections(false);
    setMinimumSectionSize(4);
}

QSize TQxGridIndicatorHeader::sizeHint() const
{
    const TDBGridOptions O = m_grid->GetOptions();
    return QSize(((O & dgIndicator) ? 11 : 0) + (m_grid->GetViewRecordNo() ? m_grid->GetViewRecNoWidth() : 0), length());
}

QRect TQxGridIndicatorHeader::IndicatorRect(const QRect& Cell) const
{
    if (!(m_grid->GetOptions() & dgIndicator))
        return QRect();
    // The outer edge: the left one, or the right one under right to left.
    return layoutDirection() == Qt::RightToLeft ? QRect(Cell.right() - 10, Cell.top(), 11, Cell.height())
                                                : QRect(Cell.left(), Cell.top(), 11, Cell.height());
}

QRect TQxGridIndicatorHeader::RecNoRect(const QRect& Cell) const
{
    if (!m_grid->GetViewRecordNo())
        return QRect();
    const int W = m_grid->GetViewRecNoWidth();
    const int Indicator = (m_grid->GetOptions() & dgIndicator) ? 11 : 0;
    return layoutDirection() == Qt::RightToLeft ? QRect(Cell.right() - Indicator - W + 1, Cell.top(), W, Cell.height())
                                                : QRect(Cell.left() + Indicator, Cell.top(), W, Cell.height());
}

void TQxGridIndicatorHeader::paintSection(QPainter* Painter, const QRect& Rect, int LogicalIndex) const
{
    m_grid->DrawIndicator(Painter, Rect, LogicalIndex);
}

} // namespace Kesh
