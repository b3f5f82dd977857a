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
#include "dbgrid/Kesh_dbGrid.h"
#include "platform/data.h"
#include "platform/graphics.h"
#include "platform/widgets.h"
#include "dbcontrols/integer_fields.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QMouseEvent>
#include <QIcon>
#include <QKeyEvent>
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
} // namespace

class TAdoBrowserFormPrivate
{
public:
    QList<QPointer<TField>> ItemFields;  // per browser column; null for a refused type
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

    G = new TQxdbGrid(this);
    G->setObjectName(QStringLiteral("G"));
    G->SetReadOnly(true);
    G->SetOptions(dgTitles | dgIndicator | dgColumnResize | dgColLines | dgRowLines | dgRowSelect
                  | dgAlwaysShowSelection | dgTitleClick | dgTitleHotTrack);
    G->SetDataSource(ds);
    G->OnTitleClick = [this](TQxColumn* Column) {
        if (Column)
            GTitleClick(Column->Index());
    };
    G->viewport()->installEventFilter(this);

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
    G->SetDataSource(nullptr);
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
    if (!m_browser)
        return;
    db->Close();
    db->SetConnection(m_browser->GetConnection());
    const bool Rtl = RightToLeft();
    const TQxAdoBrowserCollection* Items = m_browser->BrowserItems();
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
            F->SetDataSet(db);
        }
        d->ItemFields << F;
    }
    // Every column gets a grid column, a refused one too (it shows empty).
    G->GetColumns()->Clear();
    for (int i = 0; i < Items->Count(); ++i) {
        const TQxAdoBrowserItem* Item = Items->Items(i);
        TQxColumn* Column = G->GetColumns()->Add();
        Column->GetBiDiField()->SetFieldName_a(Item->GetFieldName_a());
        Column->GetBiDiField()->SetFieldName_e(Item->GetFieldName_e());
        TQxColumnTitle* Title = Column->GetTitle();
        TFont Font = Title->GetFont_e();  // bold purple
        Font.SetSize(8);
        Title->SetFont_a(Font);
        Title->SetFont_e(Font);
        Title->SetCaptionA(Item->GetCaption_a());
        Title->SetCaptionE(Item->GetCaption_e());
        Title->SetAlignment(Qt::AlignCenter);
        Column->SetVisible(Item->GetWidth() > 0);
    }
}

void TAdoBrowserForm::ColorGrid()
{
    TQxDBGridColumns* Columns = G->GetColumns();
    for (int c = 0; c < Columns->Count(); ++c) {
        Columns->Items(c)->SetColor(c == SortIndex ? SortColor : c % 2 == 0 ? 0xFFFFFF : 0xF0F0F0);
        Columns->Items(c)->GetTitle()->SetColor(c % 2 == 0 ? 0xC8F0FA : 0xB4DCE6);
    }
}

QList<QPair<quint32, quint32>> TAdoBrowserForm::ColumnColors() const
{
    QList<QPair<quint32, quint32>> Colors;
    const TQxDBGridColumns* Columns = G->GetColumns();
    for (int c = 0; c < Columns->Count(); ++c)
        Colors << qMakePair(quint32(Columns->Items(c)->GetColor()), quint32(Columns->Items(c)->GetTitle()->GetColor()));
    return Colors;
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
    TQxDBGridColumns* Columns = G->GetColumns();
    int A = G->viewport()->width();
    if (G->GetOptions() & dgColLines)
        A -= Columns->Count() + 4;
    if (G->GetOptions() & dgIndicator)
        A -= 10;
    for (int i = 0; i < Items->Count() && i < Columns->Count(); ++i)
        Columns->Items(i)->SetWidth(Items->Items(i)->GetWidth() * A / T);
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
    if (Column < 0)
        return;
    F1->setFocus();
    SortIndex = Column;
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
    if (Watched == G->viewport() && Event->type() == QEvent::MouseButtonDblClick
        && static_cast<QMouseEvent*>(Event)->button() == Qt::LeftButton) {
        GDblClick();
        return true;
    }
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
