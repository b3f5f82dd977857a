// Kesh for Qt — the record browser's form: quick search, read-only grid, filter.
#pragma once
#include "qx_ado_browser.h"
#include "platform/kesh_global.h"
#include <QDialog>
#include <QList>
#include <QPointer>
#include <QVariant>
#include <memory>

namespace Kesh {

class TADOQuery;
class TDataSource;
class TField;
class TQxAdoBrowser;
class TQxEdit;
class TQxForm;
class TQxLabel;
class TQxSpeedButton;
class TQxdbGrid;

/// The modal form of TQxAdoBrowser::ShowBrowser.
///
/// Typing in the search box F1 re-queries at once (the prefix over the sort column); Down
/// goes to the grid. A click on a column title sorts by that column. Enter (or a double
/// click) picks the row when there is one, Esc cancels, F7 opens the filter dialog and
/// Alt+F7 drops its condition. Placement and size are remembered.
class KESH_EXPORT TAdoBrowserForm : public QDialog
{
    Q_OBJECT

public:
    TAdoBrowserForm(QWidget* AOwner, TQxAdoBrowser* Browser);
    ~TAdoBrowserForm() override;

    /// One field per browser column, of the column's type, and the grid's columns.
    void BuildColumns();
    /// Alternating column colours, the sort column highlighted.
    void ColorGrid();
    /// Runs the browser's query for the search text, the sort column and the filter.
    void OpenData();
    /// With CompressedView: the columns share the grid's width by their Width.
    void AdjustColumnsSize();

    /// The current row's value of browser column Index (invalid for a column without field).
    QVariant ItemValue(int Index) const;
    /// The field made for browser column Index, or nullptr for a refused type.
    TField* ItemField(int Index) const;
    /// The grid's column colours, as TColor (cell, title) per column.
    QList<QPair<quint32, quint32>> ColumnColors() const;

    int SortIndex = 0;
    QString CustomFilter;
    TQxAdoBrowser* Browser() const { return m_browser; }

    TQxForm* Fx;
    QWidget* TopPanel;
    TQxLabel* lblSearch;
    TQxEdit* F1;
    TQxdbGrid* G;
    QWidget* ToolBar;
    TQxSpeedButton* btnOk;
    TQxSpeedButton* btnCancel;
    TQxSpeedButton* btnFilter;
    TQxSpeedButton* btnClearFilter;
    TADOQuery* db;
    TDataSource* ds;

    void Button_Click(QObject* Sender);
    void GDblClick();
    void GTitleClick(int Column);
    void F1Change();

protected:
    bool eventFilter(QObject* Watched, QEvent* Event) override;
    void resizeEvent(QResizeEvent* Event) override;

private:
    void FxBeforeOpen(QObject* Sender, bool& Cancel);
    bool RightToLeft() const;
    std::unique_ptr<class TAdoBrowserFormPrivate> const d;
    QPointer<TQxAdoBrowser> m_browser;
};

} // namespace Kesh
