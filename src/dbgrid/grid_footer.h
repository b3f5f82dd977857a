// Kesh for Qt — the footer of a grid: the totals of its columns, each under its column.
#pragma once
#include "panel.h"
#include <QPointer>
#include <memory>

namespace Kesh {

class TQxCustomDBGrid;
class TQxLabel;

/// A panel under a grid that shows, under each column whose _TotalValue is set, the sum of
/// the column's field over every record, in the field's DisplayFormat. The sums are those a
/// walk over every record would give, kept without reading the records (an aggregate on the
/// database while rows remain unread, adjusted by posts and deletes afterwards).
class KESH_EXPORT TQxdbGridFooter : public TQxCustomPanel
{
    Q_OBJECT
    Q_PROPERTY(bool _Separtor READ GetSeparator WRITE SetSeparator)

public:
    /// 21 pixels high, raised, gradient colours 0xF0FFFF to 0xCAD0D4, no caption.
    explicit TQxdbGridFooter(QWidget* Parent = nullptr);
    ~TQxdbGridFooter() override;

    TQxCustomDBGrid* Grid() const;
    /// A 4-pixel line 3 pixels before every label.
    bool GetSeparator() const;
    void SetSeparator(bool Value);

    /// (Re)creates one label and one separator per grid column.
    void BuildColumns();
    /// Frees every label and separator.
    void RemoveColumns();
    /// Shows the totals again (only while the dataset is browsing).
    void CalcColumnsTotal();
    /// Places the footer under the grid and refreshes the labels' fonts.
    void DoPaint();
    /// The label under column I (nullptr when there is none).
    TQxLabel* Labels(int I) const;
    int LabelCount() const;
    /// The separator before label I.
    QWidget* Separators(int I) const;
    /// True once the totals shown are final (no sum is still being computed).
    bool TotalsReady() const;

protected:
    void paintEvent(QPaintEvent* Event) override;

private:
    friend class TQxCustomDBGrid;
    friend class TQxDBGridColumns;
    void SetGrid(TQxCustomDBGrid* Grid);
    void MoveColumn(int From, int To);
    void PlaceLabels();
    void ShowTotals();
    std::unique_ptr<struct TQxdbGridFooterPrivate> const d;
};

} // namespace Kesh
