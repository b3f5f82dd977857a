#include "browser_form.h"
#include "browser_buttons_p.h"
#include "browser_filter_form.h"
#include "qx_ado_browser.h"
#include "controls/buttons.h"
#include "controls/edit.h"
#include "controls/form_manager.h"
#include "controls/label.h"
#include "core/messages.h"
#include "core/resources.h"
#include "platform/data.h"
#include "platform/graphics.h"
#include "platform/widgets.h"
#include "dbcontrols/integer_fields.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QIcon>
#include <QKeyEvent>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QVBoxLayout>

namespace Kesh {

// ---------------------------------------------------------------------------------------------
// The tool-bar buttons

TQxSpeedButton* NewBrowserButton(QWidget* Parent, const char* Name, const char* Icon, const QString& CaptionA,
                                 const QString& CaptionE, const QString& HintA, const QString& HintE,
                                 const QKeySequence& Key)
{
    InitResources();
    auto* Button = new TQxSpeedButton(Parent);
    Button->setObjectName(QLatin1String(Name));
    Button->setIcon(QIcon(QStringLiteral(":/kesh/%1.svg").arg(QLatin1String(Icon))));
    Button->setIconSize(QSize(20, 20));
    Button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    Button->setAutoRaise(true);
    Button->SetCaptionA(CaptionA);
    Button->SetCaptionE(CaptionE);
    Button->SetHintA(HintA);
    Button->SetHintE(HintE);
    Button->SetHotKey(Key);
    return Button;
}

namespace {

constexpr quint32 SortColor = 0xF0FFFF;  // colours are $00BBGGRR
const QColor TitleText(0x80, 0x00, 0x80);

QColor ToQColor(quint32 C) { return QColor(C & 0xFF, (C >> 8) & 0xFF, (C >> 16) & 0xFF); }

// Cells painted on their column's colour.
class TBrowserDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    QList<QPair<quint32, quint32>>* Colors = nullptr;

protected:
    void initStyleOption(QStyleOptionViewItem* Option, const QModelIndex& Index) const override
    {
        QStyledItemDelegate::initStyleOption(Option, Index);
        if (Colors && Index.column() < Colors->size())
            Option->backgroundBrush = ToQColor((*Colors)[Index.column()].first);
    }
};

// Titles in bold purple on their column's title colour; a click sorts.
class TBrowserHeader : public QHeaderView
{
public:
    explicit TBrowserHeader(QWidget* Parent) : QHeaderView(Qt::Horizontal, Parent)
    {
        setSectionsClickable(true);
        setHighlightSections(false);
        QFont F = font();
        F.setBold(true);
        setFont(F);
    }
    QList<QPair<quint32, quint32>>* Colors = nullptr;

protected:
    void paintSection(QPainter* Painter, const QRect& Rect, int Section) const override
    {
        Painter->save();
        const QColor Back = Colors && Section < Colors->size() ? ToQColor((*Colors)[Section].second)
                                                               : palette().button().color();
        Painter->fillRect(Rect, Back);
        Painter->setPen(palette().mid().color());
        Painter->drawLine(Rect.topRight(), Rect.bottomRight());
        Painter->drawLine(Rect.bottomLeft(), Rect.bottomRight());
        Painter->setPen(TitleText);
        Painter->setFont(font());
        const QString Text = model() ? model()->headerData(Section, orientation()).toString() : QString();
        Painter->drawText(Rect.adjusted(2, 0, -2, 0), Qt::AlignCenter, Text);
        Painter->restore();
    }
};

} // namespace

class TAdoBrowserFormPrivate
{
public:
    TDataSetModel Model;
    TBrowserDelegate* Delegate = nullptr;
    TBrowserHeader* Header = nullptr;
    QList<QPair<quint32, quint32>> Colors;
    QList<QPointer<TField>> ItemFields;  // per browser column; null for a refused type
    QList<int> ItemColumns;              // grid column per browser column; -1 without one
    bool Opened = false;
};

TAdoBrowserForm::TAdoBrowserForm(QWidget* AOwner, TQxAdoBrowser* Browser)
    : QDialog(AOwner, Qt::Dialog | Qt::WindowTitleHint | Qt::WindowCloseButtonHint | Qt::WindowMaximizeButtonHint)
    , d(new TAdoBrowserFormPrivate)
    , m_browser(Browser)
{
    setObjectName(QStringLiteral("AdoBrowserForm"));
    setMinimumSize(380, 300);
    resize(380, 300);

    TopPanel = new QWidget(this);
    TopPanel->setObjectName(QStringLiteral("TopPanel"));
    lblSearch = new TQxLabel(TopPanel);
    lblSearch->setObjectName(QStringLiteral("lblSearch"));
    lblSearch->SetCaptionA(QStringLiteral("البحث السريع"));
    lblSearch->SetCaptionE(QStringLiteral("Quick search"));
    lblSearch->SetTransparent(true);
    lblSearch->SetAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    lblSearch->setFixedWidth(lblSearch->fontMetrics().horizontalAdvance(QStringLiteral("Quick search")) + 12);
    F1 = new TQxEdit(TopPanel);
    F1->setObjectName(QStringLiteral("F1"));
    F1->SetFixedSize(0);
    lblSearch->SetFocusControl(F1);
    auto* Top = new QHBoxLayout(TopPanel);
    Top->setContentsMargins(6, 6, 6, 4);
    Top->addWidget(lblSearch);
    Top->addWidget(F1, 1);

    db = new TADOQuery(this);
    db->setObjectName(QStringLiteral("db"));
    db->SetParamCheck(false);
    db->SetLockType(ltReadOnly);
    ds = new TDataSource(this);
    ds->setObjectName(QStringLiteral("ds"));
    ds->SetDataSet(db);

    G = new QTableView(this);
    G->setObjectName(QStringLiteral("G"));
    d->Header = new TBrowserHeader(G);
    d->Header->Colors = &d->Colors;
    G->setHorizontalHeader(d->Header);
    d->Delegate = new TBrowserDelegate(G);
    d->Delegate->Colors = &d->Colors;
    G->setItemDelegate(d->Delegate);
    G->setEditTriggers(QAbstractItemView::NoEditTriggers);
    G->setSelectionBehavior(QAbstractItemView::SelectRows);
    G->setSelectionMode(QAbstractItemView::SingleSelection);
    G->setTabKeyNavigation(false);
    G->verticalHeader()->setDefaultSectionSize(20);
    G->verticalHeader()->setFixedWidth(12);
    d->Model.SetDataSet(db);
    G->setModel(&d->Model);
    connect(G->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& Current) {
                if (Current.isValid() && db->Active() && db->RecNo() != Current.row() + 1)
                    db->SetRecNo(Current.row() + 1);
            });
    connect(G, &QAbstractItemView::doubleClicked, this, [this] { GDblClick(); });
    connect(d->Header, &QHeaderView::sectionClicked, this, [this](int Column) { GTitleClick(Column); });

    ToolBar = new QWidget(this);
    ToolBar->setObjectName(QStringLiteral("ToolBar"));
    btnOk = NewBrowserButton(ToolBar, "btnOk", "browser_ok", QStringLiteral("موافق"), QStringLiteral("OK"),
                             QStringLiteral("ENTER"), QStringLiteral("ENTER"), QKeySequence(Qt::Key_Return));
    btnCancel = NewBrowserButton(ToolBar, "btnCancel", "browser_cancel", QStringLiteral("إلغاء"),
                                 QStringLiteral("Cancel"), QStringLiteral("ESCAPE"), QStringLiteral("ESCAPE"),
                                 QKeySequence(Qt::Key_Escape));
    btnFilter = NewBrowserButton(ToolBar, "btnFilter", "browser_filter", QStringLiteral("فلتر"),
                                 QStringLiteral("Filter"), QStringLiteral("[F7] تطبيق الفلتر"),
                                 QStringLiteral("[F7] Apply filter"), QKeySequence(Qt::Key_F7));
    btnClearFilter = NewBrowserButton(ToolBar, "btnClearFilter", "browser_clear_filter",
                                      QStringLiteral("إلغاء الفلتر"), QStringLiteral("Clear"),
                                      QStringLiteral("[Alt+F7] إلغاء الفلتر"),
                                      QStringLiteral("[Alt+F7] Clear filter"), QKeySequence(Qt::ALT | Qt::Key_F7));
    auto* Bar = new QHBoxLayout(ToolBar);
    Bar->setContentsMargins(4, 2, 4, 2);
    Bar->addWidget(btnOk);
    Bar->addWidget(btnCancel);
    Bar->addStretch(1);
    Bar->addWidget(btnFilter);
    Bar->addWidget(btnClearFilter);
    for (TQxSpeedButton* Button : {btnOk, btnCancel, btnFilter, btnClearFilter}) {
        Button->setFocusPolicy(Qt::NoFocus);
        connect(Button, &QAbstractButton::clicked, this, [this, Button] { Button_Click(Button); });
    }

    auto* Column = new QVBoxLayout(this);
    Column->setContentsMargins(0, 0, 0, 0);
    Column->setSpacing(0);
    Column->addWidget(TopPanel);
    Column->addWidget(G, 1);
    Column->addWidget(ToolBar);

    connect(F1, &QLineEdit::textChanged, this, [this] { F1Change(); });
    F1->installEventFilter(this);
    G->installEventFilter(this);

    Fx = new TQxForm(this, QStringLiteral("Fx"));
    Fx->SetOptions(FoSavePosition | FoSaveSize);
    if (m_browser) {
        Fx->SetCaptionA(m_browser->GetCaption_a());
        Fx->SetCaptionE(m_browser->GetCaption_e());
    }
    Fx->BeforeOpen = [this](QObject* Sender, bool& Cancel) { FxBeforeOpen(Sender, Cancel); };
}

TAdoBrowserForm::~TAdoBrowserForm()
{
    d->Model.SetDataSet(nullptr);
}

bool TAdoBrowserForm::RightToLeft() const
{
    return BiDiModeOf(this) == bdRightToLeft;
}

void TAdoBrowserForm::FxBeforeOpen(QObject*, bool&)
{
    if (d->Opened)
        return;
    d->Opened = true;
    SortIndex = 0;
    BuildColumns();
    ColorGrid();
    OpenData();
    if (m_browser && m_browser->GetCompressedView())
        AdjustColumnsSize();
    F1->setFocus();
}

namespace {

// The field that shows a browser column of this type, or nullptr for a type the browser
// does not show.
TField* NewItemField(const TQxAdoBrowserItem* Item, QObject* Owner)
{
    const TFieldType Type = Item->GetDataType();
    const TxFieldClasses Class = Item->GetFieldClass();
    switch (Type) {
    case ftString: case ftFixedChar: case ftOraInterval: return new TStringField(Owner);
    case ftWideString: case ftFixedWideChar: return new TWideStringField(Owner);
    case ftSmallint: return Class == fcTime ? static_cast<TField*>(new TQxTimeField(Owner)) : new TSmallintField(Owner);
    case ftInteger: return Class == fcDate ? static_cast<TField*>(new TQxDateField(Owner)) : new TIntegerField(Owner);
    case ftWord: return new TWordField(Owner);
    case ftBoolean: return new TBooleanField(Owner);
    case ftFloat: return new TFloatField(Owner);
    case ftCurrency: return new TCurrencyField(Owner);
    case ftBCD: return new TBCDField(Owner);
    case ftFMTBcd: return new TFMTBCDField(Owner);
    case ftDate: {
        auto* F = new TDateField(Owner);
        F->SetDisplayFormat(QStringLiteral("d-m-yyyy"));
        return F;
    }
    case ftTime: {
        auto* F = new TTimeField(Owner);
        F->SetDisplayFormat(QStringLiteral("hh:mm"));
        return F;
    }
    case ftDateTime: {
        auto* F = new TDateTimeField(Owner);
        if (Class == fcDate)
            F->SetDisplayFormat(QStringLiteral("d-m-yyyy"));
        else if (Class == fcTime)
            F->SetDisplayFormat(QStringLiteral("hh:mm"));
        return F;
    }
    case ftVarBytes: return new TVarBytesField(Owner);
    case ftAutoInc: return new TAutoIncField(Owner);
    case ftLargeint: return new TLargeintField(Owner);
    case ftGuid: return new TGuidField(Owner);
    case ftTimeStamp: case ftOraTimeStamp: return new TSQLTimeStampField(Owner);
    default: return nullptr;
    }
}

} // namespace

void TAdoBrowserForm::BuildColumns()
{
    d->ItemFields.clear();
    d->ItemColumns.clear();
    if (!m_browser)
        return;
    db->Close();
    db->SetConnection(m_browser->GetConnection());
    const bool Rtl = RightToLeft();
    const TQxAdoBrowserCollection* Items = m_browser->BrowserItems();
    int Column = 0;
    for (int i = 0; i < Items->Count(); ++i) {
        const TQxAdoBrowserItem* Item = Items->Items(i);
        const QString Name = Item->FieldName(Rtl);
        TField* F = Name.isEmpty() ? nullptr : NewItemField(Item, db);
        if (!F && !Name.isEmpty())
            ShowError(QStringLiteral("The type specified for the field (") + Name + QStringLiteral(") is not supported."));
        if (F) {
            F->SetFieldName(Name);
            F->SetFieldKind(fkData);
            F->SetDisplayWidth(Item->GetWidth());
            F->SetDisplayLabel(Rtl ? Item->GetCaption_a() : Item->GetCaption_e());
            F->SetDataSet(db);
        }
        d->ItemFields << F;
        d->ItemColumns << (F ? Column++ : -1);
    }
}

void TAdoBrowserForm::ColorGrid()
{
    d->Colors.clear();
    int Columns = 0;
    for (const int C : d->ItemColumns)
        Columns = std::max(Columns, C + 1);
    for (int c = 0; c < Columns; ++c)
        d->Colors << (c % 2 == 0 ? qMakePair(quint32(0xFFFFFF), quint32(0xC8F0FA))
                                 : qMakePair(quint32(0xF0F0F0), quint32(0xB4DCE6)));
    const int SortColumn = SortIndex >= 0 && SortIndex < d->ItemColumns.size() ? d->ItemColumns[SortIndex] : -1;
    if (SortColumn >= 0 && SortColumn < d->Colors.size())
        d->Colors[SortColumn].first = SortColor;
    G->viewport()->update();
    d->Header->viewport()->update();
}

QList<QPair<quint32, quint32>> TAdoBrowserForm::ColumnColors() const
{
    return d->Colors;
}

void TAdoBrowserForm::OpenData()
{
    if (!m_browser)
        return;
    // One refresh of the grid for the whole re-query, not one for the close and one for the open.
    db->DisableControls();
    try {
        db->Close();
        db->SetSQL({m_browser->BuildQueryText(SortIndex, F1->text(), CustomFilter, RightToLeft())});
        db->Open();
    } catch (...) {
        db->EnableControls();
        throw;
    }
    db->EnableControls();
    // Hidden columns stay in the rows: their values are still returned.
    const TQxAdoBrowserCollection* Items = m_browser->BrowserItems();
    for (int i = 0; i < d->ItemColumns.size(); ++i)
        if (d->ItemColumns[i] >= 0)
            G->setColumnHidden(d->ItemColumns[i], Items->Items(i)->GetWidth() <= 0);
    if (d->Model.rowCount() > 0)
        G->setCurrentIndex(d->Model.index(0, std::max(0, d->ItemColumns.value(SortIndex, 0))));
}

void TAdoBrowserForm::AdjustColumnsSize()
{
    if (!m_browser)
        return;
    const TQxAdoBrowserCollection* Items = m_browser->BrowserItems();
    int T = 0;
    for (int i = 0; i < Items->Count(); ++i)
        T += Items->Items(i)->GetWidth();
    if (T <= 0)
        return;
    int A = G->viewport()->width();
    if (G->showGrid())
        A -= d->Model.columnCount() + 4;
    if (G->verticalHeader()->isVisible())
        A -= 10;
    for (int i = 0; i < Items->Count() && i < d->ItemColumns.size(); ++i)
        if (d->ItemColumns[i] >= 0)
            G->setColumnWidth(d->ItemColumns[i], Items->Items(i)->GetWidth() * A / T);
}

TField* TAdoBrowserForm::ItemField(int Index) const
{
    return Index >= 0 && Index < d->ItemFields.size() ? d->ItemFields[Index].data() : nullptr;
}

QVariant TAdoBrowserForm::ItemValue(int Index) const
{
    const TField* F = ItemField(Index);
    return F && db->Active() && !db->IsEmpty() ? F->AsVariant() : QVariant();
}

void TAdoBrowserForm::Button_Click(QObject* Sender)
{
    F1->setFocus();
    if (Sender == btnOk) {
        if (db->Active() && !db->IsEmpty())
            done(1);
    } else if (Sender == btnCancel) {
        done(2);
    } else if (Sender == btnFilter) {
        TFormAdoBrowserFilter Filter(this, m_browser);
        if (Filter.exec() == 1) {
            CustomFilter = Filter.Criteria();
            OpenData();
        }
        F1->setFocus();
    } else if (Sender == btnClearFilter) {
        CustomFilter.clear();
        OpenData();
    }
}

void TAdoBrowserForm::GDblClick()
{
    Button_Click(btnOk);
}

void TAdoBrowserForm::GTitleClick(int Column)
{
    const int Item = int(d->ItemColumns.indexOf(Column));
    if (Item < 0)
        return;
    F1->setFocus();
    SortIndex = Item;
    ColorGrid();
    OpenData();
}

void TAdoBrowserForm::F1Change()
{
    if (d->Opened)
        OpenData();
}

bool TAdoBrowserForm::eventFilter(QObject* Watched, QEvent* Event)
{
    if (Event->type() == QEvent::KeyPress) {
        auto* Key = static_cast<QKeyEvent*>(Event);
        const auto Mods = Key->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
        if (Watched == F1 && Key->key() == Qt::Key_Down && Mods == Qt::NoModifier) {
            G->setFocus();
            return true;
        }
        // Enter in the search box or the grid picks the row instead of moving on.
        if ((Watched == F1 || Watched == G) && (Key->key() == Qt::Key_Return || Key->key() == Qt::Key_Enter)
            && Mods == Qt::NoModifier) {
            btnOk->Click();
            return true;
        }
    }
    return QDialog::eventFilter(Watched, Event);
}

void TAdoBrowserForm::resizeEvent(QResizeEvent* Event)
{
    QDialog::resizeEvent(Event);
    if (d->Opened && m_browser && m_browser->GetCompressedView())
        AdjustColumnsSize();
}

} // namespace Kesh
