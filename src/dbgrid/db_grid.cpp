// Kesh for Qt — the data-aware grid.
#include "db_grid.h"
#include "bookmark_list.h"
#include "grid_data_link.h"
#include "grid_footer.h"
#include "grid_views_p.h"
#include "colors.h"
#include "conversions.h"
#include "messages.h"
#include "resources.h"
#include "settings.h"
#include "platform/data/dataset.h"
#include "platform/data/dataset_model.h"
#include "platform/data/fields.h"
#include "platform/keyboard.h"
#include <QAbstractButton>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QHash>
#include <QLocale>
#include <QMimeData>
#include <QPainter>
#include <QPointer>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyle>
#include <QSvgRenderer>
#include <QComboBox>
#include <QLineEdit>
#include <QTimer>
#include <QUrl>
#include <utility>

namespace Kesh {

namespace {
const TDBGridOptions DefaultOptions = dgEditing | dgTitles | dgIndicator | dgColumnResize | dgColLines | dgRowLines
                                      | dgTabs | dgConfirmDelete | dgCancelOnExit | dgTitleClick | dgTitleHotTrack;

// The indicator glyphs, in the order of their indexes.
const char* const GlyphNames[] = {"TQXDBGRIDARROW", "TQXDBGRIDEDIT", "TQXDBGRIDINSERT", "TQXDBGRIDMULTIDOT",
                                  "TQXDBGRIDMULTIARROW"};

QSvgRenderer* Glyph(int Index)
{
    static QHash<int, QSvgRenderer*> Cache;
    if (!Cache.contains(Index)) {
        InitResources();
        Cache.insert(Index, new QSvgRenderer(QStringLiteral(":/kesh/%1.svg").arg(QLatin1String(GlyphNames[Index]))));
    }
    return Cache.value(Index);
}

// Columns whose values are typed in Latin digits: they always take the English layout.
bool IsNumericOrDate(TFieldType Type)
{
    switch (Type) {
    case ftSmallint: case ftInteger: case ftWord: case ftFloat: case ftCurrency: case ftBCD: case ftDate:
    case ftDateTime: case ftLargeint: case ftFMTBcd:
        return true;
    default:
        return false;
    }
}

TFont CreationFont(const QString& Name, int Size, TColor Color)
{
    TFont F;
    F.SetName(Name);
    F.SetSize(Size);
    F.SetColor(Color);
    return F;
}

void ShowLater(QWidget* Grid, const QString& Message)
{
    // Not inside the mouse or key handler that met the error: a modal message there would
    // run under a half-handled event.
    QTimer::singleShot(0, Grid, [Grid, Message] { ShowError(Message, Grid); });
}
} // namespace

struct TQxCustomDBGridPrivate
{
    explicit TQxCustomDBGridPrivate(TQxCustomDBGrid* Grid) : Columns(Grid), Link(Grid), Bookmarks(Grid) {}

    TQxDBGridColumns Columns;
    TQxGridDataLink Link;
    TQxBookmarkList Bookmarks;
    TDataSetModel Model;
    TQxGridDelegate* Delegate = nullptr;
    TQxGridTitleHeader* Titles = nullptr;
    TQxGridIndicatorHeader* Indicator = nullptr;
    QPointer<QAbstractButton> Corner;
    QPointer<TQxdbGridFooter> Footer;
    QPointer<TDataSource> Source;
    QList<TField*> ModelFields;

    TDBGridOptions Options = DefaultOptions;
    bool SaveLayout = false;
    bool RowBiColor = false;
    bool ViewRecordNo = false;
    int RecNoWidth = 48;
    TColor Color = 0xE0E8EC;
    TColor FixedColor = clBtnFace;
    TFont Font = CreationFont(QStringLiteral("Tahoma"), 10, clWindowText);
    TFont TitleFont = CreationFont(QStringLiteral("Microsoft Sans Serif"), 8, clPurple);
    bool DefaultDrawing = true;
    bool ReadOnly = false;
    TImeMode ImeMode = imDontCare;
    QString ImeName;

    int LayoutLock = 0;
    bool LayoutPending = false;
    int UpdateLock = 0;
    bool ApplyingLayout = false;
    bool Syncing = false;
    bool BusyCalc = false;
    bool SharingWidths = false;
    bool CommitFailed = false;
    QPersistentModelIndex EditorIndex;  // the cell the open editor belongs to
    int EnteredColumn = -1;
    int Anchor = -1;
    QString LayoutSectionName;
    QString KeyboardLayout;
    QPainter* Canvas = nullptr;

    TDataSet* DataSet() const { return Source ? Source->DataSet() : nullptr; }
    bool Active() const { return Link.Active() && DataSet() && DataSet()->Active(); }
};

// ---------------------------------------------------------------- creation

TQxCustomDBGrid::TQxCustomDBGrid(QWidget* Parent) : QTableView(Parent), d(new TQxCustomDBGridPrivate(this))
{
    connect(&d->Columns, &TQxDBGridColumns::ColumnsChanged, this, &TQxCustomDBGrid::ColumnsChanged);
    d->Titles = new TQxGridTitleHeader(this);
    d->Indicator = new TQxGridIndicatorHeader(this);
    setHorizontalHeader(d->Titles);
    setVerticalHeader(d->Indicator);
    d->Delegate = new TQxGridDelegate(this);
    setItemDelegate(d->Delegate);
    setModel(&d->Model);
    setSelectionMode(QAbstractItemView::NoSelection);
    setEditTriggers(QAbstractItemView::AnyKeyPressed | QAbstractItemView::EditKeyPressed | QAbstractItemView::DoubleClicked);
    setWordWrap(false);
    setTabKeyNavigation(true);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setAcceptDrops(true);
    viewport()->setAcceptDrops(true);
    setDragDropMode(QAbstractItemView::DropOnly);
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);

    // Korean input composes in the cell, so the editor is always open there.
    if (QLocale::system().language() == QLocale::Korean)
        d->Options |= dgAlwaysShowEditor;
    d->Corner = findChild<QAbstractButton*>(QString(), Qt::FindDirectChildrenOnly);
    if (d->Corner)
        d->Corner->installEventFilter(this);
    connect(d->Titles, &QHeaderView::sectionResized, this, [this](int Logical, int, int New) {
        if (d->ApplyingLayout)
            return;
        if (TQxColumn* C = d->Columns.Items(Logical))
            C->SetWidth(New);
        PlaceFooter();
    });
    connect(d->Titles, &QHeaderView::sectionMoved, this, [this](int, int From, int To) {
        if (d->ApplyingLayout)
            return;
        // The header's visual order stays its logical order: the columns themselves move.
        d->ApplyingLayout = true;
        d->Titles->moveSection(To, From);
        d->ApplyingLayout = false;
        d->Columns.Move(From, To);
        if (OnColumnMoved)
            OnColumnMoved(this, From, To);
    });
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, this, [this] { PlaceFooter(); });
    ApplyLook();
    LayoutChanged();
}

TQxCustomDBGrid::~TQxCustomDBGrid()
{
    if (d->Footer)
        d->Footer->SetGrid(nullptr);
    d->Link.SetDataSource(nullptr);
}

void TQxCustomDBGrid::ApplyLook()
{
    QFont F = d->Font.Font();
    setFont(F);
    QPalette P = palette();
    P.setColor(QPalette::Base, TColorToQColor(d->Color));
    P.setColor(QPalette::Window, TColorToQColor(d->FixedColor));
    setPalette(P);
    verticalHeader()->setDefaultSectionSize(QFontMetrics(F).height() + 4);
    viewport()->update();
}

void TQxCustomDBGrid::Loaded()
{
    LayoutChanged();
    if (d->SaveLayout)
        ReadLayout();
}

// ---------------------------------------------------------------- properties

bool TQxCustomDBGrid::GetSaveLayout() const { return d->SaveLayout; }
void TQxCustomDBGrid::SetSaveLayout(bool Value) { d->SaveLayout = Value; }
bool TQxCustomDBGrid::GetRowBiColor() const { return d->RowBiColor; }

void TQxCustomDBGrid::SetRowBiColor(bool Value)
{
    d->RowBiColor = Value;
    viewport()->update();
}

bool TQxCustomDBGrid::GetViewRecordNo() const { return d->ViewRecordNo; }

void TQxCustomDBGrid::SetViewRecordNo(bool Value)
{
    d->ViewRecordNo = Value;
    if (Value)
        d->Options |= dgIndicator;
    LayoutChanged();
}

int TQxCustomDBGrid::GetViewRecNoWidth() const { return d->RecNoWidth; }

void TQxCustomDBGrid::SetViewRecNoWidth(int Value)
{
    d->RecNoWidth = std::clamp(Value, 20, 200);
    LayoutChanged();
}

TQxdbGridFooter* TQxCustomDBGrid::GetFooter() const { return d->Footer; }

void TQxCustomDBGrid::SetGridFooter(TQxdbGridFooter* Value)
{
    if (Value == d->Footer)
        return;
    if (d->Footer) {
        d->Footer->SetGrid(nullptr);
        d->Footer->RemoveColumns();
    }
    d->Footer = Value;
    if (!Value)
        return;
    Value->SetGrid(this);
    Value->BuildColumns();
    Recalc();
    Value->update();
}

TDBGridOptions TQxCustomDBGrid::GetOptions() const { return d->Options; }

void TQxCustomDBGrid::SetOptions(TDBGridOptions Value)
{
    if (Value == d->Options)
        return;
    d->Options = Value;
    LayoutChanged();
}

TColor TQxCustomDBGrid::GetColor() const { return d->Color; }
void TQxCustomDBGrid::SetColor(TColor Value) { d->Color = Value; ApplyLook(); }
TColor TQxCustomDBGrid::GetFixedColor() const { return d->FixedColor; }
void TQxCustomDBGrid::SetFixedColor(TColor Value) { d->FixedColor = Value; ApplyLook(); }
TFont TQxCustomDBGrid::GetFont() const { return d->Font; }

void TQxCustomDBGrid::SetFont(const TFont& Value)
{
    d->Font = Value;
    for (int I = 0; I < d->Columns.Count(); ++I)
        d->Columns.Items(I)->RefreshDefaultFont();
    ApplyLook();
    LayoutChanged();
}

TFont TQxCustomDBGrid::GetTitleFont() const { return d->TitleFont; }

void TQxCustomDBGrid::SetTitleFont(const TFont& Value)
{
    d->TitleFont = Value;
    LayoutChanged();
}

bool TQxCustomDBGrid::GetDefaultDrawing() const { return d->DefaultDrawing; }
void TQxCustomDBGrid::SetDefaultDrawing(bool Value) { d->DefaultDrawing = Value; viewport()->update(); }
bool TQxCustomDBGrid::GetReadOnly() const { return d->ReadOnly; }

void TQxCustomDBGrid::SetReadOnly(bool Value)
{
    d->ReadOnly = Value;
    if (Value)
        HideEditor();
}

TImeMode TQxCustomDBGrid::GetImeMode() const { return d->ImeMode; }
void TQxCustomDBGrid::SetImeMode(TImeMode Value) { d->ImeMode = Value; }
QString TQxCustomDBGrid::GetImeName() const { return d->ImeName; }
void TQxCustomDBGrid::SetImeName(const QString& Value) { d->ImeName = Value; }
TDataSource* TQxCustomDBGrid::GetDataSource() const { return d->Source; }

void TQxCustomDBGrid::SetDataSource(TDataSource* Value)
{
    if (Value == d->Source)
        return;
    d->Source = Value;
    d->Model.SetDataSet(Value ? Value->DataSet() : nullptr);
    d->Link.SetDataSource(Value);
    if (!d->Link.Active())
        LinkActive(false);
}

TQxDBGridColumns* TQxCustomDBGrid::GetColumns() const { return &d->Columns; }

void TQxCustomDBGrid::SetBiDiMode(TBiDiMode Value)
{
    SetBiDiModeOf(this, Value);
    ApplyBiDiMode();
}

TDataSet* TQxCustomDBGrid::DataSet() const { return d->DataSet(); }
TQxGridDataLink* TQxCustomDBGrid::DataLink() const { return &d->Link; }
TQxBookmarkList* TQxCustomDBGrid::SelectedRows() const { return &d->Bookmarks; }
QPainter* TQxCustomDBGrid::Canvas() const { return d->Canvas; }
bool TQxCustomDBGrid::BusyCalc() const { return d->BusyCalc; }
bool TQxCustomDBGrid::CommitFailed() const { return d->CommitFailed; }
QString TQxCustomDBGrid::LayoutSectionName() const { return d->LayoutSectionName; }
QString TQxCustomDBGrid::KeyboardLayout() const { return d->KeyboardLayout; }
int TQxCustomDBGrid::DefaultColumnWidth() const { return 64; }

int TQxCustomDBGrid::IndicatorOffset() const
{
    return ((d->Options & dgIndicator) ? 1 : 0) + (d->ViewRecordNo ? 1 : 0);
}

int TQxCustomDBGrid::SelectedIndex() const { return currentIndex().isValid() ? currentIndex().column() : -1; }

void TQxCustomDBGrid::SetSelectedIndex(int Value)
{
    if (Value < 0 || Value >= d->Model.columnCount())
        return;
    const int Row = currentIndex().isValid() ? currentIndex().row() : (d->Active() ? d->DataSet()->CurrentRow() : -1);
    if (Row >= 0 && Row < d->Model.rowCount())
        setCurrentIndex(d->Model.index(Row, Value));
}

TField* TQxCustomDBGrid::SelectedField() const
{
    TQxColumn* C = d->Columns.Items(SelectedIndex());
    return C ? C->Field() : nullptr;
}

void TQxCustomDBGrid::SetSelectedField(TField* Value)
{
    for (int I = 0; I < d->Columns.Count(); ++I)
        if (d->Columns.Items(I)->Field() == Value) {
            SetSelectedIndex(I);
            return;
        }
}

int TQxCustomDBGrid::FieldCount() const { return d->Link.FieldCount(); }
TField* TQxCustomDBGrid::Fields(int Index) const { return d->Link.Fields(Index); }
bool TQxCustomDBGrid::ValidFieldIndex(int Index) const { return Fields(Index) != nullptr; }

// ---------------------------------------------------------------- layout

void TQxCustomDBGrid::BeginLayout() { ++d->LayoutLock; }

void TQxCustomDBGrid::EndLayout()
{
    if (d->LayoutLock > 0 && --d->LayoutLock == 0 && std::exchange(d->LayoutPending, false))
        LayoutChanged();
}

void TQxCustomDBGrid::BeginUpdate() { ++d->UpdateLock; setUpdatesEnabled(false); }

void TQxCustomDBGrid::EndUpdate()
{
    if (d->UpdateLock > 0 && --d->UpdateLock == 0)
        setUpdatesEnabled(true);
}

void TQxCustomDBGrid::ColumnsChanged(bool)
{
    LayoutChanged();
    Recalc();  // a column's _TotalValue may have changed
}

void TQxCustomDBGrid::LayoutChanged()
{
    if (d->LayoutLock > 0) {
        d->LayoutPending = true;
        return;
    }
    if (d->ApplyingLayout)
        return;
    d->ApplyingLayout = true;
    // Fields of the columns, then the model's columns (only when they changed: a reset
    // of the model loses the current cell).
    d->Link.ClearMapping();
    QList<TField*> Fields;
    for (int I = 0; I < d->Columns.Count(); ++I) {
        TQxColumn* C = d->Columns.Items(I);
        C->BindField();
        d->Link.AddMapping(C->GetFieldName());
        Fields << C->Field();
    }
    if (Fields != d->ModelFields || d->Model.columnCount() != Fields.size()) {
        d->ModelFields = Fields;
        d->Model.SetFields(Fields);
    }
    for (int I = 0; I < d->Columns.Count() && I < d->Titles->count(); ++I) {
        TQxColumn* C = d->Columns.Items(I);
        d->Titles->resizeSection(I, C->GetWidth());
        d->Titles->setSectionHidden(I, !C->GetVisible());
    }
    d->Titles->setVisible(d->Options & dgTitles);
    d->Titles->setSectionResizeMode(QHeaderView::Interactive);
    d->Titles->setSectionsMovable(d->Options & dgColumnResize);
    if (!(d->Options & dgColumnResize))
        d->Titles->setSectionResizeMode(QHeaderView::Fixed);
    // Qt draws both kinds of lines or none; one kind alone is drawn with the cells.
    setShowGrid((d->Options & dgColLines) && (d->Options & dgRowLines));
    setTabKeyNavigation(d->Options & dgTabs);
    d->ApplyingLayout = false;
    UpdateFixedColumns();
    UpdateTitles();
    if (d->Footer && d->Footer->LabelCount() != d->Columns.Count())
        d->Footer->BuildColumns();
    SyncCurrent();
    PlaceFooter();
    viewport()->update();
}

void TQxCustomDBGrid::UpdateFixedColumns()
{
    d->Indicator->setVisible(IndicatorOffset() > 0);
    updateGeometries();
    d->Indicator->viewport()->update();
    if (d->Corner)
        d->Corner->update();
}

void TQxCustomDBGrid::UpdateTitles()
{
    d->Titles->updateGeometry();
    updateGeometries();
    d->Titles->viewport()->update();
}

void TQxCustomDBGrid::updateGeometries()
{
    QTableView::updateGeometries();
    PlaceFooter();
}

void TQxCustomDBGrid::SetupColumnsWidths()
{
    // A message shown below runs events (a resize among them) that must not report again.
    if (IsLoading() || d->Columns.Count() == 0 || !d->Active() || d->SharingWidths)
        return;
    const QScopedValueRollback<bool> Guard(d->SharingWidths, true);
    BeginUpdate();
    int A = 0, F = 0, Visible = 0;
    for (int I = 0; I < d->Columns.Count(); ++I) {
        TQxColumn* C = d->Columns.Items(I);
        if (!C->GetVisible())
            continue;
        ++Visible;
        if (C->GetAutoSize() && C->Field())
            A += C->Field()->DisplayWidth();
        else
            F += C->GetWidth();
    }
    const int ClientWidth = width() - 2 * frameWidth()
                            - (verticalScrollBar()->isVisibleTo(this) ? verticalScrollBar()->width() : 0);
    int W = ClientWidth - F;
    if (d->Options & dgColLines)
        W -= 4 + Visible;
    if (d->Options & dgIndicator)
        W -= 11;
    if (d->ViewRecordNo)
        W -= d->RecNoWidth;
    if (A > 0) {
        if (W == 0)
            ShowError(objectName() + QStringLiteral(".SetupColumnsWidths: Illegal columns widths.") + QString::number(W));
        BeginLayout();
        for (int I = 0; I < d->Columns.Count(); ++I) {
            TQxColumn* C = d->Columns.Items(I);
            if (C->GetVisible() && C->GetAutoSize() && C->Field())
                C->SetWidth(C->Field()->DisplayWidth() * W / A);
        }
        EndLayout();
    }
    EndUpdate();
}

void TQxCustomDBGrid::ReadLayout()
{
    if (d->Columns.Count() == 0)
        return;
    const QString Form = window() ? window()->objectName() : QString();
    d->LayoutSectionName = Form + QLatin1Char('.') + objectName();
    BeginLayout();
    for (int I = 0; I < d->Columns.Count(); ++I) {
        TQxColumn* C = d->Columns.Items(I);
        bool Ok = false;
        const int W = ReadSetting(d->LayoutSectionName, QStringLiteral("Column_%1").arg(I), C->GetWidth()).toInt(&Ok);
        if (Ok)
            C->SetWidth(W);
    }
    EndLayout();
}

void TQxCustomDBGrid::SaveLayout()
{
    if (d->Columns.Count() == 0 || d->LayoutSectionName.isEmpty())
        return;
    for (int I = 0; I < d->Columns.Count(); ++I)
        SaveSetting(d->LayoutSectionName, QStringLiteral("Column_%1").arg(I), d->Columns.Items(I)->GetWidth());
}

// ---------------------------------------------------------------- language

void TQxCustomDBGrid::ApplyBiDiMode()
{
    if (IsLoading() || d->Columns.Count() == 0)
        return;
    BeginLayout();
    for (int I = 0; I < d->Columns.Count(); ++I) {
        TQxColumn* C = d->Columns.Items(I);
        C->GetBiDiField()->SetBiDiField();
        C->GetTitle()->SetBiDiCaption();
    }
    EndLayout();
    SetupColumnsWidths();
    if (d->Footer)
        d->Footer->DoPaint();
    Q_EMIT BiDiModeApplied();
}

void TQxCustomDBGrid::changeEvent(QEvent* Event)
{
    QTableView::changeEvent(Event);
    if (Event->type() == QEvent::LayoutDirectionChange) {
        if (d->Corner)
            d->Corner->setLayoutDirection(layoutDirection());
        ApplyBiDiMode();
        UpdateFixedColumns();
    } else if (Event->type() == QEvent::EnabledChange) {
        viewport()->update();
    }
}

// ---------------------------------------------------------------- the data link's notifications

void TQxCustomDBGrid::LinkActive(bool Value)
{
    if (!Value) {
        HideEditor();
        if (d->SaveLayout)
            SaveLayout();
    }
    d->Bookmarks.LinkActive(Value);
    d->Model.SetDataSet(d->DataSet());
    if (d->Columns.State() == csDefault) {
        d->Columns.RebuildColumns();
        d->Columns.SetStateOnly(csDefault);
    } else {
        LayoutChanged();
    }
    if (Value) {
        ApplyBiDiMode();
        if (!d->BusyCalc) {
            d->BusyCalc = true;
            if (d->Footer) {
                d->Footer->BuildColumns();
                d->Footer->CalcColumnsTotal();
            }
            if (d->SaveLayout)
                ReadLayout();
            d->BusyCalc = false;
        }
        if (d->Options & dgAlwaysShowEditor)
            QTimer::singleShot(0, this, [this] { ShowEditor(); });
    } else if (d->Footer) {
        d->Footer->DoPaint();
    }
    SyncCurrent();
}

void TQxCustomDBGrid::DataChanged()
{
    d->Bookmarks.DataChanged();
    SyncCurrent();
    viewport()->update();
    d->Indicator->viewport()->update();
    Recalc();
}

void TQxCustomDBGrid::Recalc()
{
    if (!d->Footer || d->BusyCalc)
        return;
    d->BusyCalc = true;
    d->Footer->CalcColumnsTotal();
    d->BusyCalc = false;
}

void TQxCustomDBGrid::Scrolled()
{
    SyncCurrent();
    d->Indicator->viewport()->update();
}

void TQxCustomDBGrid::EditingChanged()
{
    // The dataset posted or cancelled behind the editor's back: the editor has nothing left to write.
    if (!d->Link.Editing())
        HideEditor();
    d->Indicator->viewport()->update();
    viewport()->update();
    Recalc();
}

void TQxCustomDBGrid::RecordChanged(TField*)
{
    viewport()->update();
    d->Indicator->viewport()->update();
}

QWidget* TQxCustomDBGrid::OpenEditor() const
{
    if (state() != QAbstractItemView::EditingState)
        return nullptr;
    // A closed editor lingers until deleted later: the open one is the one shown.
    for (QWidget* W : viewport()->findChildren<QWidget*>(QStringLiteral("InplaceEditor"), Qt::FindDirectChildrenOnly))
        if (W->isVisible())
            return W;
    return nullptr;
}

void TQxCustomDBGrid::UpdateData()
{
    // The dataset asks for pending values (a Post from code or a button): write the editor's.
    QWidget* Editor = OpenEditor();
    TDataSet* Ds = d->DataSet();
    // The editor's own cell: by now the view's current cell may be the one clicked next.
    if (!Editor || !Ds || !d->EditorIndex.isValid() || d->EditorIndex.row() != Ds->CurrentRow())
        return;
    TQxColumn* C = d->Columns.Items(d->EditorIndex.column());
    TField* F = C ? C->Field() : nullptr;
    const QString Text = TQxGridDelegate::EditorText(Editor);
    if (F && Text != F->Text())
        F->SetText(Text);
}

void TQxCustomDBGrid::DataLayoutChanged() { LinkActive(d->Link.Active()); }

// ---------------------------------------------------------------- cursor

void TQxCustomDBGrid::SyncCurrent()
{
    if (d->Syncing || !d->Active() || d->Model.columnCount() == 0)
        return;
    const int Row = d->DataSet()->CurrentRow();
    if (Row < 0)
        return;
    if (Row >= d->Model.rowCount())
        d->Model.fetchMore(QModelIndex());
    if (Row >= d->Model.rowCount())
        return;
    int Col = currentIndex().isValid() ? currentIndex().column() : -1;
    if (Col < 0 || d->Titles->isSectionHidden(Col)) {
        Col = 0;
        while (Col < d->Model.columnCount() - 1 && d->Titles->isSectionHidden(Col))
            ++Col;
    }
    const QModelIndex Target = d->Model.index(Row, Col);
    if (currentIndex() != Target) {
        d->Syncing = true;
        selectionModel()->setCurrentIndex(Target, QItemSelectionModel::NoUpdate);
        d->Syncing = false;
    }
    scrollTo(Target);
    d->Indicator->viewport()->update();
}

void TQxCustomDBGrid::MoveToRow(int Row)
{
    TDataSet* Ds = d->DataSet();
    if (!Ds || Row == Ds->CurrentRow())
        return;
    Ds->MoveBy(Row - Ds->CurrentRow());
}

void TQxCustomDBGrid::currentChanged(const QModelIndex& Current, const QModelIndex& Previous)
{
    if (!d->Syncing && d->Active() && Current.isValid() && Current.row() != d->DataSet()->CurrentRow()) {
        try {
            MoveToRow(Current.row());
        } catch (const Exception& E) {
            // The row could not be left (a refused post): stay, the editor and its text too.
            d->Syncing = true;
            selectionModel()->setCurrentIndex(Previous, QItemSelectionModel::NoUpdate);
            d->Syncing = false;
            if (!dynamic_cast<const EAbort*>(&E))
                ShowLater(this, E.Message);
            return;
        }
        if (d->DataSet()->CurrentRow() != Current.row()) {
            QTableView::currentChanged(Current, Previous);
            SyncCurrent();
            return;
        }
    }
    QTableView::currentChanged(Current, Previous);
    d->Indicator->viewport()->update();
    if (Current.column() != d->EnteredColumn) {
        if (d->EnteredColumn >= 0)
            ColExit();
        d->EnteredColumn = Current.column();
        if (Current.isValid())
            ColEnter();
    }
    if ((d->Options & dgAlwaysShowEditor) && Current.isValid() && hasFocus())
        QTimer::singleShot(0, this, [this] { ShowEditor(); });
}

void TQxCustomDBGrid::ColEnter()
{
    TQxColumn* C = d->Columns.Items(SelectedIndex());
    if (!C)
        return;
    TField* F = C->Field();
    const QString Arabic = QStringLiteral("00000401"), English = QStringLiteral("00000409");
    if (F && IsNumericOrDate(F->DataType())) {
        if (!d->KeyboardLayout.isEmpty())
            d->KeyboardLayout = ActiveKeyboardLayout();
        ActivateKeyboardLayout(English);
    } else {
        switch (C->GetBiDiField()->GetKeyboard()) {
        case kxSystem:
            if (!d->KeyboardLayout.isEmpty())
                ActivateKeyboardLayout(d->KeyboardLayout);
            break;
        case kxArabic:
            d->KeyboardLayout = ActiveKeyboardLayout();
            ActivateKeyboardLayout(Arabic);
            break;
        case kxEnglish:
            d->KeyboardLayout = ActiveKeyboardLayout();
            ActivateKeyboardLayout(English);
            break;
        case kxBiDiMode:
            d->KeyboardLayout = ActiveKeyboardLayout();
            ActivateKeyboardLayout(BiDiMode() == bdRightToLeft ? Arabic : English);
            break;
        }
    }
    if (OnColEnter)
        OnColEnter(this);
}

void TQxCustomDBGrid::ColExit()
{
    if (!d->KeyboardLayout.isEmpty())
        ActivateKeyboardLayout(d->KeyboardLayout);
    if (OnColExit)
        OnColExit(this);
}

// ---------------------------------------------------------------- editing

bool TQxCustomDBGrid::CanEditColumn(int Column) const
{
    TQxColumn* C = d->Columns.Items(Column);
    TField* F = C ? C->Field() : nullptr;
    return (d->Options & dgEditing) && !(d->Options & dgRowSelect) && !d->ReadOnly && F && !C->GetReadOnly()
           && F->CanModify();
}

bool TQxCustomDBGrid::edit(const QModelIndex& Index, EditTrigger Trigger, QEvent* Event)
{
    // Only a trigger that opens an editor puts the record in edit (Qt asks on every move too).
    if (!Index.isValid() || (Trigger != QAbstractItemView::AllEditTriggers && !(editTriggers() & Trigger)))
        return QTableView::edit(Index, Trigger, Event);
    if (state() == QAbstractItemView::EditingState)
        return false;
    if (!d->Active() || !CanEditColumn(Index.column()) || Index.row() != d->DataSet()->CurrentRow())
        return false;
    TField* F = d->Columns.Items(Index.column())->Field();
    if (Trigger == QAbstractItemView::AnyKeyPressed && Event && Event->type() == QEvent::KeyPress) {
        const QString Text = static_cast<QKeyEvent*>(Event)->text();
        if (Text.isEmpty() || !Text.at(0).isPrint())
            return false;
        for (const QChar Ch : Text)
            if (!F->IsValidChar(Ch)) {
                Beep(16);
                return false;
            }
    }
    // A key typed into the cell changes the record at once; an editor opened otherwise (F2,
    // a double click, dgAlwaysShowEditor) puts it in edit at the first change of its text.
    if (Trigger == QAbstractItemView::AnyKeyPressed) {
        try {
            if (!d->Link.Edit())
                return false;
        } catch (const Exception& E) {
            if (!dynamic_cast<const EAbort*>(&E))
                ShowLater(this, E.Message);
            return false;
        }
    }
    d->EditorIndex = Index;
    if (QTableView::edit(Index, Trigger, Event))
        return true;
    d->EditorIndex = QPersistentModelIndex();
    return false;
}

void TQxCustomDBGrid::EditorTextEdited(QWidget* Editor)
{
    TDataSet* Ds = d->DataSet();
    if (!d->Active() || Ds->State() == dsEdit || Ds->State() == dsInsert)
        return;
    // Going into edit refreshes the row, editor included: the user's text is put back.
    auto* Combo = qobject_cast<QComboBox*>(Editor);
    QLineEdit* Line = Combo ? Combo->lineEdit() : qobject_cast<QLineEdit*>(Editor);
    const QString Typed = Line ? Line->text() : QString();
    const int Cursor = Line ? Line->cursorPosition() : 0;
    bool Editing = false;
    try {
        Editing = d->Link.Edit();
    } catch (const Exception& E) {
        if (!dynamic_cast<const EAbort*>(&E))
            ShowLater(this, E.Message);
    }
    if (Editing && Line && Line->text() != Typed) {
        Line->setText(Typed);
        Line->setCursorPosition(Cursor);
    }
    if (!Editing) {  // refused: the cell shows its field again
        TQxColumn* C = d->Columns.Items(d->EditorIndex.column());
        TQxGridDelegate::SetEditorText(Editor, C && C->Field() ? C->Field()->Text() : QString());
    }
}

bool TQxCustomDBGrid::CommitEditor(QWidget* Editor)
{
    // Into the editor's own cell; once its record is left the text was written on leaving
    // (UpdateData), and the record now current is not the editor's.
    if (!d->Active() || !d->EditorIndex.isValid() || d->EditorIndex.row() != d->DataSet()->CurrentRow())
        return true;
    TQxColumn* C = d->Columns.Items(d->EditorIndex.column());
    TField* F = C ? C->Field() : nullptr;
    if (!F)
        return true;
    const QString Text = TQxGridDelegate::EditorText(Editor);
    try {
        if (Text != F->Text()) {
            if (!d->Link.Edit())
                return true;
            F->SetText(Text);
        }
    } catch (const Exception& E) {
        if (!dynamic_cast<const EAbort*>(&E))
            ShowLater(this, E.Message);
        return false;
    }
    return true;
}

void TQxCustomDBGrid::commitData(QWidget* Editor) { d->CommitFailed = !CommitEditor(Editor); }

void TQxCustomDBGrid::closeEditor(QWidget* Editor, QAbstractItemDelegate::EndEditHint Hint)
{
    // A text the field refused keeps its editor open (reverting is Escape's job).
    if (std::exchange(d->CommitFailed, false) && Hint != QAbstractItemDelegate::RevertModelCache)
        return;
    QTableView::closeEditor(Editor, Hint);
}

void TQxCustomDBGrid::ShowEditor()
{
    if (currentIndex().isValid() && state() != QAbstractItemView::EditingState)
        edit(currentIndex(), QAbstractItemView::AllEditTriggers, nullptr);
}

void TQxCustomDBGrid::HideEditor()
{
    if (QWidget* Editor = OpenEditor())
        QTableView::closeEditor(Editor, QAbstractItemDelegate::RevertModelCache);
}

bool TQxCustomDBGrid::EditorMode() const { return state() == QAbstractItemView::EditingState; }

void TQxCustomDBGrid::EditButtonClicked()
{
    if (OnEditButtonClick)
        OnEditButtonClick(this);
}

void TQxCustomDBGrid::DeleteRecords()
{
    TDataSet* Ds = d->DataSet();
    if (!d->Active() || !(d->Options & dgEditing) || d->ReadOnly || !Ds->CanModify() || Ds->IsEmpty())
        return;
    const bool Many = (d->Options & dgMultiSelect) && d->Bookmarks.Count() > 0;
    const bool Rtl = BiDiMode() == bdRightToLeft;
    const QString Question = Many ? (Rtl ? QStringLiteral("حذف كل السجلات المختارة؟") : QStringLiteral("Delete all selected records?"))
                                  : (Rtl ? QStringLiteral("حذف السجل؟") : QStringLiteral("Delete record?"));
    if ((d->Options & dgConfirmDelete) && !SelectYes(Question, false))
        return;
    HideEditor();
    if (Many)
        d->Bookmarks.Delete();
    else
        Ds->Delete();
}

// ---------------------------------------------------------------- keyboard

void TQxCustomDBGrid::MyOnKeyDown(QObject* Sender, int& Key, Qt::KeyboardModifiers Shift)
{
    if ((Key == Qt::Key_Return || Key == Qt::Key_Enter) && !(Shift & ~Qt::KeypadModifier) && !(d->Options & dgRowSelect)) {
        Key = 0;
        int Next = SelectedIndex() + 1;
        while (Next < d->Model.columnCount() && d->Titles->isSectionHidden(Next))
            ++Next;
        if (Next < d->Model.columnCount()) {
            SetSelectedIndex(Next);
        } else {
            QKeyEvent Tab(QEvent::KeyPress, Qt::Key_Tab, Qt::NoModifier);
            keyPressEvent(&Tab);
        }
    }
    if (OnKeyDown)
        OnKeyDown(Sender, Key, Shift);
}

void TQxCustomDBGrid::keyPressEvent(QKeyEvent* Event)
{
    // Keys sent to the grid while its editor is open belong to the editor.
    if (QWidget* Editor = OpenEditor(); Editor && !Event->text().isEmpty()
        && Event->text().at(0).isPrint() && !(Event->modifiers() & (Qt::ControlModifier | Qt::AltModifier))) {
        QApplication::sendEvent(Editor->focusProxy() ? Editor->focusProxy() : Editor, Event);
        return;
    }
    int Key = Event->key();
    const Qt::KeyboardModifiers Mods = Event->modifiers() & ~Qt::KeypadModifier;
    MyOnKeyDown(this, Key, Mods);
    if (Key == 0) {
        Event->accept();
        return;
    }
    TDataSet* Ds = d->DataSet();
    if (!d->Active()) {
        QTableView::keyPressEvent(Event);
        return;
    }
    const bool Ctrl = Mods & Qt::ControlModifier;
    const bool ShiftKey = Mods & Qt::ShiftModifier;
    const bool Multi = d->Options & dgMultiSelect;
    const bool CanAppend = (d->Options & dgEditing) && !d->ReadOnly && Ds->CanModify();
    try {
        switch (Key) {
        case Qt::Key_Up:
        case Qt::Key_Down: {
            if (Ctrl)
                break;
            const int Step = Key == Qt::Key_Down ? 1 : -1;
            const int Row = Ds->CurrentRow();
            if (Multi && ShiftKey) {
                const int Target = Row + Step;
                if (d->Bookmarks.RowSelected(Target) && d->Bookmarks.RowSelected(Row)) {
                    d->Bookmarks.SetRowSelected(Row, false);
                    Ds->MoveBy(Step);
                } else {
                    d->Bookmarks.SetRowSelected(Row, true);
                    Ds->MoveBy(Step);
                    d->Bookmarks.SetRowSelected(Ds->CurrentRow(), true);
                }
            } else {
                if (Multi)
                    d->Bookmarks.Clear();
                const bool NewUnchanged = Ds->State() == dsInsert && !Ds->Modified();
                if (Step > 0 && Ds->MoveBy(1) == 0 && Ds->Eof() && CanAppend && !NewUnchanged)
                    Ds->Append();
                else if (Step < 0)
                    Ds->MoveBy(-1);
            }
            Event->accept();
            return;
        }
        case Qt::Key_PageUp:
        case Qt::Key_PageDown: {
            if (Multi && !ShiftKey)
                d->Bookmarks.Clear();
            const int Page = std::max(1, viewport()->height() / std::max(1, verticalHeader()->defaultSectionSize()) - 1);
            Ds->MoveBy(Key == Qt::Key_PageDown ? Page : -Page);
            Event->accept();
            return;
        }
        case Qt::Key_Home:
        case Qt::Key_End:
            if (!Ctrl)
                break;
            if (Multi)
                d->Bookmarks.Clear();
            if (Key == Qt::Key_Home)
                Ds->First();
            else
                Ds->Last();
            Event->accept();
            return;
        case Qt::Key_Insert:
            if (Mods == Qt::NoModifier && CanAppend) {
                Ds->Insert();
                Event->accept();
                return;
            }
            break;
        case Qt::Key_Delete:
            if (Ctrl) {
                DeleteRecords();
                Event->accept();
                return;
            }
            break;
        case Qt::Key_Escape:
            if (Ds->State() == dsEdit || Ds->State() == dsInsert) {
                Ds->Cancel();
                Event->accept();
                return;
            }
            break;
        case Qt::Key_Tab:
        case Qt::Key_Backtab: {
            if (!(d->Options & dgTabs) || Ctrl)
                break;
            const bool Back = Key == Qt::Key_Backtab || ShiftKey;
            int Col = SelectedIndex() + (Back ? -1 : 1);
            while (Col >= 0 && Col < d->Model.columnCount() && d->Titles->isSectionHidden(Col))
                Col += Back ? -1 : 1;
            if (Col >= 0 && Col < d->Model.columnCount()) {
                SetSelectedIndex(Col);
            } else {
                const int Before = Ds->CurrentRow();
                const bool NewUnchanged = Ds->State() == dsInsert && !Ds->Modified();
                if (Back)
                    Ds->MoveBy(-1);
                else if (Ds->MoveBy(1) == 0 && CanAppend && !NewUnchanged)
                    Ds->Append();
                if (Ds->CurrentRow() != Before || Ds->State() == dsInsert) {
                    int First = Back ? d->Model.columnCount() - 1 : 0;
                    while (First >= 0 && First < d->Model.columnCount() && d->Titles->isSectionHidden(First))
                        First += Back ? -1 : 1;
                    SetSelectedIndex(First);
                }
            }
            Event->accept();
            return;
        }
        default:
            break;
        }
    } catch (const Exception& E) {
        if (!dynamic_cast<const EAbort*>(&E))
            ShowLater(this, E.Message);
        Event->accept();
        return;
    }
    QTableView::keyPressEvent(Event);
}

bool TQxCustomDBGrid::event(QEvent* Event)
{
    // Tab belongs to the grid while dgTabs is set (Qt would move the focus).
    if (Event->type() == QEvent::KeyPress) {
        auto* Key = static_cast<QKeyEvent*>(Event);
        if ((Key->key() == Qt::Key_Tab || Key->key() == Qt::Key_Backtab) && (d->Options & dgTabs)
            && !(Key->modifiers() & Qt::ControlModifier)) {
            keyPressEvent(Key);
            return true;
        }
    }
    return QTableView::event(Event);
}

// ---------------------------------------------------------------- mouse and focus

void TQxCustomDBGrid::mousePressEvent(QMouseEvent* Event)
{
    const QModelIndex Index = indexAt(Event->position().toPoint());
    const Qt::KeyboardModifiers Mods = Event->modifiers();
    const bool Multi = (d->Options & dgMultiSelect) && d->Active() && Event->button() == Qt::LeftButton;
    const int From = d->Active() ? d->DataSet()->CurrentRow() : -1;
    QTableView::mousePressEvent(Event);
    if (!Index.isValid() || !d->Active())
        return;
    const bool Moved = d->DataSet()->CurrentRow() == Index.row();
    if (Multi && Moved) {
        if (Mods & Qt::ControlModifier) {
            d->Bookmarks.SetCurrentRowSelected(!d->Bookmarks.CurrentRowSelected());
            d->Anchor = Index.row();
        } else if (Mods & Qt::ShiftModifier) {
            SelectRange(d->Anchor >= 0 ? d->Anchor : From, Index.row());
        } else {
            d->Bookmarks.Clear();
            d->Anchor = Index.row();
        }
    }
    if (Moved && Event->button() == Qt::LeftButton && OnCellClick)
        OnCellClick(d->Columns.Items(Index.column()));
}

void TQxCustomDBGrid::SelectRange(int From, int To)
{
    if (From < 0)
        From = To;
    for (int Row = std::min(From, To); Row <= std::max(From, To); ++Row)
        d->Bookmarks.SetRowSelected(Row, true);
}

void TQxCustomDBGrid::mouseDoubleClickEvent(QMouseEvent* Event) { QTableView::mouseDoubleClickEvent(Event); }

void TQxCustomDBGrid::contextMenuEvent(QContextMenuEvent* Event)
{
    // A column's own pop-up menu, else the grid's context menu as Qt gives it.
    // The event comes to the widget under the mouse (the viewport, a header or the grid
    // itself): the screen position tells the cell. From the keyboard: the current cell.
    const bool Keyboard = Event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex Index = Keyboard ? currentIndex() : indexAt(viewport()->mapFromGlobal(Event->globalPos()));
    TQxColumn* C = d->Columns.Items(Index.isValid() ? Index.column() : -1);
    if (C && C->GetPopupMenu()) {
        C->GetPopupMenu()->exec(Keyboard ? viewport()->mapToGlobal(visualRect(Index).center()) : Event->globalPos());
        Event->accept();
        return;
    }
    QTableView::contextMenuEvent(Event);
}

void TQxCustomDBGrid::focusInEvent(QFocusEvent* Event)
{
    QTableView::focusInEvent(Event);
    if ((d->Options & dgAlwaysShowEditor) && currentIndex().isValid())
        QTimer::singleShot(0, this, [this] {
            if (hasFocus())
                ShowEditor();
        });
    viewport()->update();
}

void TQxCustomDBGrid::focusOutEvent(QFocusEvent* Event)
{
    QTableView::focusOutEvent(Event);
    QWidget* Now = QApplication::focusWidget();
    if (!Now || !isAncestorOf(Now)) {
        // Leaving for another control: the screen's default layout comes back, and an
        // untouched new record is dropped.
        ActivateKeyboardLayout(DefaultKeyboardLayout());
        TDataSet* Ds = d->DataSet();
        if ((d->Options & dgCancelOnExit) && d->Active() && Ds->State() == dsInsert && !Ds->Modified())
            Ds->Cancel();
    }
    viewport()->update();
}

// ---------------------------------------------------------------- geometry

void TQxCustomDBGrid::resizeEvent(QResizeEvent* Event)
{
    QTableView::resizeEvent(Event);
    d->Titles->viewport()->update();
    SetupColumnsWidths();
    PlaceFooter();
}

void TQxCustomDBGrid::moveEvent(QMoveEvent* Event)
{
    QTableView::moveEvent(Event);
    PlaceFooter();
}

void TQxCustomDBGrid::showEvent(QShowEvent* Event)
{
    QTableView::showEvent(Event);
    PlaceFooter();
}

void TQxCustomDBGrid::scrollContentsBy(int Dx, int Dy)
{
    QTableView::scrollContentsBy(Dx, Dy);
    if (Dx)
        PlaceFooter();
}

void TQxCustomDBGrid::PlaceFooter()
{
    if (d->Footer)
        d->Footer->DoPaint();
}

// ---------------------------------------------------------------- drops

void TQxCustomDBGrid::dragEnterEvent(QDragEnterEvent* Event)
{
    if (_OnDropFile && Event->mimeData()->hasUrls())
        Event->acceptProposedAction();
    else
        Event->ignore();
}

void TQxCustomDBGrid::dragMoveEvent(QDragMoveEvent* Event)
{
    if (_OnDropFile && Event->mimeData()->hasUrls())
        Event->acceptProposedAction();
    else
        Event->ignore();
}

void TQxCustomDBGrid::dropEvent(QDropEvent* Event)
{
    if (!_OnDropFile || !Event->mimeData()->hasUrls()) {
        Event->ignore();
        return;
    }
    QStringList Paths;
    for (const QUrl& Url : Event->mimeData()->urls())
        Paths << (Url.isLocalFile() ? Url.toLocalFile() : Url.toString()).left(255);
    Event->acceptProposedAction();
    _OnDropFile(this, int(Paths.size()), Paths.join(QLatin1Char('|')));
}

// ---------------------------------------------------------------- painting

void TQxCustomDBGrid::DrawCell(QPainter* Painter, const QRect& Rect, const QModelIndex& Index)
{
    TQxColumn* C = d->Columns.Items(Index.column());
    if (!C)
        return;
    const int Row = Index.row();
    const bool Current = Index == currentIndex();
    const bool CurrentRow = currentIndex().isValid() && Row == currentIndex().row();
    const bool Shown = hasFocus() || (d->Options & dgAlwaysShowSelection) || state() == QAbstractItemView::EditingState;
    const bool RowSelected = (d->Options & dgMultiSelect) && d->Bookmarks.RowSelected(Row);
    const bool Highlight = RowSelected || (Shown && (Current || ((d->Options & dgRowSelect) && CurrentRow)));
    TGridDrawState State;
    if (Highlight)
        State |= gdSelected;
    if (Current && hasFocus())
        State |= gdFocused;
    if (RowSelected || ((d->Options & dgRowSelect) && CurrentRow))
        State |= gdRowSelected;

    TFont Font = C->GetFont();
    TColor FontColor = Font.Color();
    TColor CellColor = C->GetColor();
    const int TopRow = rowAt(0);
    if (d->RowBiColor && (Row - std::max(TopRow, 0)) % 2 == 1)
        CellColor = ChangeColor(CellColor, -16);
    if (!isEnabled())
        FontColor = clGrayText;
    if (!Highlight && isEnabled() && _OnCellColor)
        _OnCellColor(this, Index.column(), FontColor, CellColor);
    if (Highlight) {
        CellColor = clHighlight;
        FontColor = clHighlightText;
    }
    Font.SetColor(FontColor);
    Painter->save();
    Painter->fillRect(Rect, TColorToQColor(CellColor));
    d->Canvas = Painter;
    Painter->setFont(Font.Font());
    Painter->setPen(Font.PenColor());
    if (d->DefaultDrawing) {
        const QString Text = Index.data(Qt::DisplayRole).toString();
        const Qt::Alignment Align = QStyle::visualAlignment(layoutDirection(), C->GetAlignment());
        Painter->drawText(Rect.adjusted(2, 2, -2, -2), int(Align | Qt::AlignVCenter | Qt::TextSingleLine), Text);
    }
    if (d->Columns.State() == csDefault && OnDrawDataCell)
        OnDrawDataCell(this, Rect, C->Field(), State);
    if (OnDrawColumnCell)
        OnDrawColumnCell(this, Rect, Index.column(), C, State);
    if (d->DefaultDrawing && (State & gdFocused) && !(d->Options & dgRowSelect)) {
        QPen Dotted(TColorToQColor(clWindowText), 1, Qt::DotLine);
        Painter->setPen(Dotted);
        Painter->setBrush(Qt::NoBrush);
        Painter->drawRect(Rect.adjusted(0, 0, -1, -1));
    }
    const bool ColLines = d->Options & dgColLines, RowLines = d->Options & dgRowLines;
    if (ColLines != RowLines) {
        QStyleOptionViewItem Option;
        initViewItemOption(&Option);
        Painter->setPen(QColor(QRgb(style()->styleHint(QStyle::SH_Table_GridLineColor, &Option, this))));
        // Where the view itself puts them: after the cell in the reading direction, and below.
        if (ColLines)
            Painter->drawLine(isRightToLeft() ? Rect.topLeft() : Rect.topRight(),
                              isRightToLeft() ? Rect.bottomLeft() : Rect.bottomRight());
        else
            Painter->drawLine(Rect.bottomLeft(), Rect.bottomRight());
    }
    d->Canvas = nullptr;
    Painter->restore();
}

void TQxCustomDBGrid::DefaultDrawColumnCell(const QRect& Rect, int, TQxColumn* Column, TGridDrawState)
{
    if (!d->Canvas || !Column)
        return;
    const Qt::Alignment Align = QStyle::visualAlignment(layoutDirection(), Column->GetAlignment());
    TField* F = Column->Field();
    d->Canvas->drawText(Rect.adjusted(2, 2, -2, -2), int(Align | Qt::AlignVCenter | Qt::TextSingleLine),
                        F ? F->DisplayText() : QString());
}

void TQxCustomDBGrid::DefaultDrawDataCell(const QRect& Rect, TField* Field, TGridDrawState)
{
    if (!d->Canvas || !Field)
        return;
    const Qt::Alignment Align = QStyle::visualAlignment(layoutDirection(), Field->Alignment());
    d->Canvas->drawText(Rect.adjusted(2, 2, -2, -2), int(Align | Qt::AlignVCenter | Qt::TextSingleLine), Field->DisplayText());
}

void TQxCustomDBGrid::DrawIndicator(QPainter* Painter, const QRect& Rect, int Row)
{
    Painter->save();
    Painter->fillRect(Rect, TColorToQColor(d->FixedColor));
    Painter->setPen(QColor(Qt::white));
    Painter->drawLine(Rect.topLeft(), Rect.topRight());
    Painter->setPen(TColorToQColor(clBtnShadow));
    Painter->drawLine(Rect.bottomLeft(), Rect.bottomRight());
    TDataSet* Ds = d->DataSet();
    if (d->Active() && Row < Ds->FetchedRowCount()) {
        const bool Current = Row == Ds->CurrentRow();
        const bool Selected = (d->Options & dgMultiSelect) && d->Bookmarks.RowSelected(Row);
        const QRect Ind = d->Indicator->IndicatorRect(Rect);
        if (Ind.isValid() && (Current || Selected)) {
            int G = 0;
            if (Current && Ds->State() == dsEdit)
                G = 1;
            else if (Current && Ds->State() == dsInsert)
                G = 2;
            else if (Ds->State() == dsBrowse && Selected)
                G = Current ? 4 : 3;
            // Right of the cell, centred vertically; mirrored under right to left.
            const QRectF Box(Ind.right() - 9, Ind.top() + (Ind.height() - 10) / 2.0, 9, 10);
            if (layoutDirection() == Qt::RightToLeft) {
                Painter->translate(Ind.left() + Ind.right() + 1, 0);
                Painter->scale(-1, 1);
            }
            Glyph(G)->render(Painter, Box);
            Painter->resetTransform();
        }
        const QRect Num = d->Indicator->RecNoRect(Rect);
        if (Num.isValid()) {
            int No;
            {
                TRowReader Reader(Ds, Row);
                No = Ds->RecNo();
            }
            if (No == -1)
                No = Ds->RecordCount() + 1;
            Painter->setFont(d->TitleFont.Font());
            Painter->setPen(d->TitleFont.PenColor());
            if (No != 0)
                Painter->drawText(Num.adjusted(2, 2, -2, -2), Qt::AlignCenter, QString::number(No));
        }
    }
    Painter->restore();
}

void TQxCustomDBGrid::DrawCorner(QPainter* Painter, const QRect& Rect)
{
    Painter->fillRect(Rect, TColorToQColor(d->FixedColor));
    Painter->setPen(TColorToQColor(clBtnShadow));
    Painter->drawLine(Rect.bottomLeft(), Rect.bottomRight());
    const QRect Num = d->Indicator->RecNoRect(Rect);
    if (!Num.isValid())
        return;
    Painter->setFont(d->TitleFont.Font());
    Painter->setPen(d->TitleFont.PenColor());
    Painter->drawText(Num, Qt::AlignCenter, BiDiMode() == bdRightToLeft ? QStringLiteral("م") : QStringLiteral("No."));
}

bool TQxCustomDBGrid::eventFilter(QObject* Watched, QEvent* Event)
{
    if (Watched == d->Corner && d->Corner) {
        if (Event->type() == QEvent::Paint) {
            QPainter Painter(d->Corner);
            DrawCorner(&Painter, d->Corner->rect());
            return true;
        }
        if (Event->type() == QEvent::MouseButtonPress || Event->type() == QEvent::MouseButtonRelease)
            return true;  // no "select all": the corner is the record-number column's title
    }
    return QTableView::eventFilter(Watched, Event);
}

double TQxCustomDBGrid::CalcColumnSum(int ColumnIndex)
{
    TDataSet* Ds = d->DataSet();
    if (d->Columns.Count() == 0 || !d->Active() || Ds->RecordCount() == 0 || ColumnIndex < 0
        || ColumnIndex >= d->Columns.Count())
        return 0;
    TField* F = d->Columns.Items(ColumnIndex)->Field();
    if (!F || !IsTotalableType(F->DataType()))
        return 0;
    // Every row is read now (RecordCount); sum them in place without moving the cursor.
    double Sum = 0;
    for (int Row = 0; Row < Ds->FetchedRowCount(); ++Row) {
        TRowReader Reader(Ds, Row);
        if (Ds->RecNo() > 0)
            Sum += F->AsFloat();
    }
    return Sum;
}

} // namespace Kesh
