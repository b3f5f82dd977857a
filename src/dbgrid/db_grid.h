// Kesh for Qt — the data-aware grid: bilingual columns over a dataset, read lazily, with an
// indicator and a record-number column, in-place editing, multi-selection and a footer.
#pragma once
#include "grid_columns.h"
#include "grid_types.h"
#include "platform/widgets.h"
#include <QTableView>
#include <memory>

class QPainter;

namespace Kesh {

class TDataSet;
class TDataSource;
class TField;
class TQxBookmarkList;
class TQxGridDataLink;
class TQxdbGridFooter;

/// The grid. A QTableView over a model of the dataset that reads rows without moving the
/// cursor, and only the rows shown or scrolled to; the view's current row is the dataset's
/// cursor and the other way round. Its columns are TQxColumn items (built from the fields
/// while the collection is csDefault). The indicator column (11 pixels) and the record-number
/// column stand at the reading start (the vertical header); titles, cells and the fixed
/// columns are painted by the grid itself.
class KESH_EXPORT TQxCustomDBGrid : public QTableView, public TLoadable
{
    Q_OBJECT
    Q_MOC_INCLUDE("grid_footer.h")
    Q_MOC_INCLUDE("platform/data/data_source.h")
    Q_PROPERTY(bool _SaveLayout READ GetSaveLayout WRITE SetSaveLayout)
    Q_PROPERTY(bool _RowBiColor READ GetRowBiColor WRITE SetRowBiColor)
    Q_PROPERTY(bool _ViewRecordNo READ GetViewRecordNo WRITE SetViewRecordNo)
    Q_PROPERTY(int _ViewRecNoWidth READ GetViewRecNoWidth WRITE SetViewRecNoWidth)
    Q_PROPERTY(Kesh::TQxdbGridFooter* _Footer READ GetFooter WRITE SetGridFooter)
    Q_PROPERTY(Kesh::GridTypes::TDBGridOptions Options READ GetOptions WRITE SetOptions)
    Q_PROPERTY(quint32 Color READ GetColor WRITE SetColor)
    Q_PROPERTY(quint32 FixedColor READ GetFixedColor WRITE SetFixedColor)
    Q_PROPERTY(Kesh::TFont Font READ GetFont WRITE SetFont)
    Q_PROPERTY(Kesh::TFont TitleFont READ GetTitleFont WRITE SetTitleFont)
    Q_PROPERTY(bool DefaultDrawing READ GetDefaultDrawing WRITE SetDefaultDrawing)
    Q_PROPERTY(bool Readonly READ GetReadOnly WRITE SetReadOnly)
    Q_PROPERTY(Kesh::GridTypes::TImeMode ImeMode READ GetImeMode WRITE SetImeMode)
    Q_PROPERTY(QString ImeName READ GetImeName WRITE SetImeName)
    Q_PROPERTY(Kesh::TDataSource* DataSource READ GetDataSource WRITE SetDataSource)
    Q_PROPERTY(Kesh::TQxDBGridColumns* Columns READ GetColumns)
    Q_PROPERTY(QString _ColumnsText READ GetColumnsText WRITE SetColumnsText)
    Q_PROPERTY(Kesh::TBiDiMode BiDiMode READ BiDiMode WRITE SetBiDiMode)

public:
    explicit TQxCustomDBGrid(QWidget* Parent = nullptr);
    ~TQxCustomDBGrid() override;

    // ---- published
    /// Column widths are read from the settings file when the dataset opens and written
    /// there when it closes (section: form name "." grid name; keys "Column_0" …).
    bool GetSaveLayout() const;
    void SetSaveLayout(bool Value);
    /// Odd visible rows darker by 16 in each of red, green and blue.
    bool GetRowBiColor() const;
    void SetRowBiColor(bool Value);
    /// A record-number column between the indicator and the data (turns dgIndicator on).
    bool GetViewRecordNo() const;
    void SetViewRecordNo(bool Value);
    /// Width of the record-number column, 20..200 (48).
    int GetViewRecNoWidth() const;
    void SetViewRecNoWidth(int Value);
    TQxdbGridFooter* GetFooter() const;
    /// Attaches a footer (nullptr detaches); the footer builds its labels at once.
    void SetGridFooter(TQxdbGridFooter* Value);
    TDBGridOptions GetOptions() const;
    void SetOptions(TDBGridOptions Value);
    /// The grid's background (0xE0E8EC).
    TColor GetColor() const;
    void SetColor(TColor Value);
    /// Colour of the fixed columns (clBtnFace).
    TColor GetFixedColor() const;
    void SetFixedColor(TColor Value);
    /// The cells' font ("Tahoma" 10), unless a column assigns its own.
    TFont GetFont() const;
    void SetFont(const TFont& Value);
    /// Font of the record-number column ("Microsoft Sans Serif" 8, purple).
    TFont GetTitleFont() const;
    void SetTitleFont(const TFont& Value);
    /// The grid writes the cells' text itself (before OnDrawDataCell/OnDrawColumnCell).
    bool GetDefaultDrawing() const;
    void SetDefaultDrawing(bool Value);
    bool GetReadOnly() const;
    void SetReadOnly(bool Value);
    TImeMode GetImeMode() const;
    void SetImeMode(TImeMode Value);
    QString GetImeName() const;
    void SetImeName(const QString& Value);
    TDataSource* GetDataSource() const;
    void SetDataSource(TDataSource* Value);
    TQxDBGridColumns* GetColumns() const;
    /// The columns in their text form (TQxDBGridColumns::GetText), as forms store them.
    QString GetColumnsText() const;
    void SetColumnsText(const QString& Value);
    TBiDiMode BiDiMode() const { return BiDiModeOf(this); }
    /// Sets the grid's own direction; titles, field names, fonts and alignments follow.
    void SetBiDiMode(TBiDiMode Value);

    // ---- the data grid's interface
    TDataSet* DataSet() const;
    TQxGridDataLink* DataLink() const;
    /// The records selected with dgMultiSelect.
    TQxBookmarkList* SelectedRows() const;
    /// The column of the current cell (0-based data column), and its field.
    int SelectedIndex() const;
    void SetSelectedIndex(int Value);
    TField* SelectedField() const;
    void SetSelectedField(TField* Value);
    /// Data columns that show a field.
    int FieldCount() const;
    TField* Fields(int Index) const;
    bool ValidFieldIndex(int Index) const;
    /// Fixed columns before the data: 1 with dgIndicator, 1 more with _ViewRecordNo.
    int IndicatorOffset() const;
    /// Width of a column without a field (64).
    int DefaultColumnWidth() const;
    /// Sum of one column over the whole dataset (0 unless the column's field is totalable).
    double CalcColumnSum(int ColumnIndex);
    /// Shares the free width among the _AutoSize columns.
    void SetupColumnsWidths();
    void ReadLayout();
    void SaveLayout();
    /// The settings section of the widths (formed by ReadLayout).
    QString LayoutSectionName() const;
    /// The keyboard layout a column with an explicit Keyboard saved (empty when none).
    QString KeyboardLayout() const;
    void BeginLayout();
    void EndLayout();
    void BeginUpdate();
    void EndUpdate();
    /// Re-lays the columns (widths, order, fixed columns) and repaints.
    void LayoutChanged();
    /// Starts editing the current cell (as F2).
    void ShowEditor();
    void HideEditor();
    bool EditorMode() const;
    /// The grid's key handler (Enter moves to the next column); runs the user's OnKeyDown after.
    void MyOnKeyDown(QObject* Sender, int& Key, Qt::KeyboardModifiers Shift);
    /// Paints one data cell the standard way (background, text) into Rect on Canvas().
    void DefaultDrawColumnCell(const QRect& Rect, int DataCol, TQxColumn* Column, TGridDrawState State);
    void DefaultDrawDataCell(const QRect& Rect, TField* Field, TGridDrawState State);
    /// The painter of the cell being drawn (valid inside the drawing events only).
    QPainter* Canvas() const;
    /// True while the grid's footer totals are being computed.
    bool BusyCalc() const;

    // ---- events
    TQxGridCellColorEvent _OnCellColor;
    TQxDropFileEvent _OnDropFile;
    TQxDBGridClickEvent OnCellClick;
    TQxDBGridClickEvent OnTitleClick;
    TQxGridNotifyEvent OnColEnter;
    TQxGridNotifyEvent OnColExit;
    TQxMovedEvent OnColumnMoved;
    TQxDrawDataCellEvent OnDrawDataCell;
    TQxDrawColumnCellEvent OnDrawColumnCell;
    TQxGridNotifyEvent OnEditButtonClick;
    /// The user's key handler; it runs after the grid's own (which may have cleared Key).
    TQxKeyEvent OnKeyDown;

Q_SIGNALS:
    /// The grid's language was applied again (titles and fields of the current mode).
    void BiDiModeApplied();

protected:
    void Loaded() override;
    bool event(QEvent* Event) override;
    bool eventFilter(QObject* Watched, QEvent* Event) override;
    void changeEvent(QEvent* Event) override;
    void keyPressEvent(QKeyEvent* Event) override;
    void mousePressEvent(QMouseEvent* Event) override;
    void mouseDoubleClickEvent(QMouseEvent* Event) override;
    void contextMenuEvent(QContextMenuEvent* Event) override;
    void resizeEvent(QResizeEvent* Event) override;
    void moveEvent(QMoveEvent* Event) override;
    void showEvent(QShowEvent* Event) override;
    void focusInEvent(QFocusEvent* Event) override;
    void focusOutEvent(QFocusEvent* Event) override;
    void dragEnterEvent(QDragEnterEvent* Event) override;
    void dragMoveEvent(QDragMoveEvent* Event) override;
    void dropEvent(QDropEvent* Event) override;
    void currentChanged(const QModelIndex& Current, const QModelIndex& Previous) override;
    bool edit(const QModelIndex& Index, EditTrigger Trigger, QEvent* Event) override;
    void commitData(QWidget* Editor) override;
    void closeEditor(QWidget* Editor, QAbstractItemDelegate::EndEditHint Hint) override;
    void scrollContentsBy(int Dx, int Dy) override;
    void updateGeometries() override;

private:
    friend class TQxGridDataLink;
    friend class TQxColumn;
    friend class TQxDBGridColumns;
    friend class TQxGridDelegate;
    friend class TQxGridTitleHeader;
    friend class TQxGridIndicatorHeader;
    friend class TQxBookmarkList;
    friend class TQxdbGridFooter;
    friend struct TQxCustomDBGridPrivate;
    // link notifications
    void LinkActive(bool Value);
    void DataChanged();
    void Scrolled();
    void EditingChanged();
    void RecordChanged(TField* Field);
    void UpdateData();
    void DataLayoutChanged();
    // helpers
    void ColumnsChanged(bool Layout);
    void ApplyBiDiMode();
    void SyncCurrent();
    void MoveToRow(int Row);
    void ColEnter();
    void ColExit();
    void DrawCell(QPainter* Painter, const QRect& Rect, const QModelIndex& Index);
    void DrawCorner(QPainter* Painter, const QRect& Rect);
    void DrawIndicator(QPainter* Painter, const QRect& Rect, int Row);
    bool CanEditColumn(int Column) const;
    bool CommitEditor(QWidget* Editor);
    void EditorTextEdited(QWidget* Editor);
    QWidget* OpenEditor() const;
    void DeleteRecords();
    void SelectRange(int From, int To);
    void PlaceFooter();
    void Recalc();
    void UpdateFixedColumns();
    void UpdateTitles();
    void ApplyLook();
    void EditButtonClicked();
    /// The last write of the editor's text into its field failed (the editor stays).
    bool CommitFailed() const;
    std::unique_ptr<struct TQxCustomDBGridPrivate> const d;
};

/// The grid as placed on forms.
class KESH_EXPORT TQxdbGrid : public TQxCustomDBGrid
{
    Q_OBJECT
public:
    explicit TQxdbGrid(QWidget* Parent = nullptr) : TQxCustomDBGrid(Parent) {}
};

} // namespace Kesh
