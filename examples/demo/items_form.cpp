#include "items_form.h"
#include "demo_context.h"
#include "sample_db.h"
#include "ui_items_form.h"

#include <Kesh.h>
#include <Kesh_AdoDB.h>
#include <Kesh_dbControls.h>

#include <Kesh_dbGrid.h>

#include <QFileDialog>
#include <QScopeGuard>
#include <QStyle>

using namespace Kesh;

namespace Demo {

TItemsForm::TItemsForm(TDemoContext& Context, QWidget* Parent) : TListForm(Context, Parent), m_ui(new Ui::ItemsForm)
{
    m_source->setObjectName(QStringLiteral("dsItems"));
    m_ui->setupUi(this);
    m_ui->xUnit_id->SetConnection(Context.Conn);
    connect(m_ui->btnLoadPhoto, &QAbstractButton::clicked, this, &TItemsForm::AskPicture);
    connect(m_ui->btnClearPhoto, &QAbstractButton::clicked, this, &TItemsForm::ClearPicture);
    ReadUnits();

    TParts Parts;
    Parts.Grid = m_ui->grdItems;
    Parts.Footer = m_ui->ftrItems;
    Parts.FirstEdit = m_ui->xName_a;
    Parts.FindButton = m_ui->btnFind;
    Parts.Table = QStringLiteral("Items");
    Parts.KeyField = QStringLiteral("Item_id");
    Parts.CountColumn = 1;
    Parts.CountA = u"عدد الأصناف: %1";
    Parts.CountE = "%1 items";
    Open(CreateItems(), Parts,
         {{"Code", nullptr, u"الرمز", "Code", 75},
          {"Name_e", "Name_a", u"الاسم", "Name", 250, false, true},
          {"Unit_id", nullptr, u"الوحدة", "Unit", 75},
          {"Price", nullptr, u"السعر", "Price", 95},
          {"Stock", nullptr, u"الرصيد", "In stock", 85, true},
          {"Stock_value", nullptr, u"قيمة الرصيد", "Stock value", 125, true},
          {"Active", nullptr, u"فعال", "Active", 50}},
         {{"Name_e", "Name_a", u"الاسم", "Name", 30},
          {"Code", nullptr, u"الرمز", "Code", 10},
          {"Item_id", nullptr, u"الرقم", "No.", 0}},
         QStringLiteral("الأصناف"), QStringLiteral("Items"));
    // Ctrl+click and Shift+arrows pick several items for "Delete selected".
    Grid()->SetOptions(Grid()->GetOptions() | dgMultiSelect);
    m_ui->btnDeleteSelected->setIcon(style()->standardIcon(QStyle::SP_DialogDiscardButton));
    connect(m_ui->btnDeleteSelected, &QAbstractButton::clicked, this, &TItemsForm::DeleteSelected);
}

int TItemsForm::DeleteSelected()
{
    TQxBookmarkList* Selected = Grid()->SelectedRows();
    if (Selected->Count() == 0) {
        ShowMsg(BiStr(QStringLiteral("اختر الأصناف أولاً بالنقر مع Ctrl أو Shift."),
                      QStringLiteral("Pick the items first with Ctrl+click or Shift+arrows.")));
        return 0;
    }
    if (!Sure(BiStr(QStringLiteral("سيُحذف %1 من الأصناف المختارة."), QStringLiteral("%1 selected items will be deleted."))
                  .arg(Selected->Count()),
              false))
        return 0;
    // An item on an invoice stays: its lines would lose their name. One query asks which.
    TDataSet* Items = DataSet();
    QHash<qint64, QByteArray> Picked;
    for (int I = 0; I < Selected->Count(); ++I) {
        Items->GotoBookmark(Selected->Items(I));
        Picked.insert(Items->FieldByName(QStringLiteral("Item_id"))->AsString().toLongLong(), Selected->Items(I));
    }
    QStringList Ids;
    for (auto It = Picked.cbegin(); It != Picked.cend(); ++It)
        Ids << QString::number(It.key());
    int Used = 0;
    if (std::unique_ptr<TADODataSet> InUse{m_context.Conn->OpenRecordSet(
            QStringLiteral("SELECT DISTINCT Item_id FROM InvoiceLines WHERE Item_id IN (%1)").arg(Ids.join(QLatin1Char(','))), true)}) {
        for (; !InUse->Eof(); InUse->Next(), ++Used)
            Selected->DeleteItem(Selected->IndexOf(Picked.value(InUse->Fields().first()->AsString().toLongLong())));
    }
    const int Count = Selected->Count();
    if (Count > 0) {
        // One question was asked for all of them: the dataset's own question per row is off meanwhile.
        auto* Rules = qobject_cast<TQxAdoDataSet*>(Items);
        const bool Confirm = Rules && Rules->GetConfirmDel();
        const auto Restore = qScopeGuard([Rules, Confirm] {
            if (Rules)
                Rules->SetConfirmDel(Confirm);
        });
        if (Rules)
            Rules->SetConfirmDel(false);
        Selected->Delete();
    }
    if (Used > 0)
        ShowMsg(BiStr(QStringLiteral("حُذف %1، وبقي %2 لأن في الفواتير سطوراً لها."),
                      QStringLiteral("%1 deleted; %2 kept because invoice lines use them."))
                    .arg(Count)
                    .arg(Used));
    return Count;
}

TItemsForm::~TItemsForm() = default;

// Stock_value is the query's Stock * Price; the form keeps it up to date while an item is
// edited, so that the grid and the footer's total follow without reading the rows again.
TDataSet* TItemsForm::CreateItems()
{
    auto* Items = new TQxAdoDataSet(this);
    Items->setObjectName(QStringLiteral("tblItems"));
    auto Add = [Items](TField* Field, const char* Name) {
        Field->SetFieldName(QLatin1String(Name));
        return Field;
    };
    Add(new TIntegerField(Items), "Item_id");
    Add(new TStringField(Items), "Code")->SetSize(12);
    Add(new TStringField(Items), "Name_a")->SetSize(80);
    Add(new TStringField(Items), "Name_e")->SetSize(80);
    TField* Unit = Add(new TStringField(Items), "Unit_id");
    Unit->SetSize(3);
    TField* Price = Add(new TBCDField(Items), "Price");
    Price->SetDisplayFormat(QStringLiteral("#,##0.00"));
    Price->SetEditFormat(QStringLiteral("0.00"));
    TField* Stock = Add(new TIntegerField(Items), "Stock");
    Stock->SetDisplayFormat(QStringLiteral("#,##0"));
    TField* Active = Add(new TBooleanField(Items), "Active");
    Add(new TBlobField(Items), "Photo");
    TField* Value = Add(new TBCDField(Items), "Stock_value");
    Value->SetDisplayFormat(QStringLiteral("#,##0.00"));

    Items->SetConnection(m_context.Conn);
    Items->SetCommandText(QStringLiteral("SELECT Item_id, Code, Name_a, Name_e, Unit_id, Price, Stock, Active, Photo, "
                                         "Stock * Price AS Stock_value FROM Items ORDER BY Item_id"));
    Items->SetLockType(ltOptimistic);
    Items->SetConfirmDel(true);
    Items->SetConfirmMsgID(1);

    auto Revalue = [Value, Stock, Price](TField*) { Value->SetAsFloat(double(Stock->AsInteger()) * Price->AsFloat()); };
    Stock->OnChange = Revalue;
    Price->OnChange = Revalue;
    Items->OnNewRecord = [this, Active, Stock, Price](TDataSet* Ds) {
        // The next number, and a code after it in the style of the others ("I0201").
        if (m_context.Conn) {
            const int Id = NextId(m_context.Conn, QStringLiteral("Items"), QStringLiteral("Item_id"));
            Ds->FieldByName(QStringLiteral("Item_id"))->SetAsInteger(Id);
            Ds->FieldByName(QStringLiteral("Code"))->SetAsString(QStringLiteral("I%1").arg(Id, 4, 10, QLatin1Char('0')));
        }
        Active->SetAsBoolean(true);
        Stock->SetAsInteger(0);
        Price->SetAsFloat(0);
    };
    Items->BeforePost = [this](TDataSet* Ds) {
        const std::pair<const char*, QWidget*> Required[] = {
            {"Code", m_ui->xCode}, {"Name_a", m_ui->xName_a}, {"Name_e", m_ui->xName_e}};
        for (const auto& [Field, Edit] : Required)
            if (Ds->FieldByName(QLatin1String(Field))->AsString().trimmed().isEmpty())
                RaiseError(BiStr(QStringLiteral("أدخل رمز الصنف واسمه بالعربية والإنجليزية."),
                                 QStringLiteral("Enter the item's code and its name in Arabic and in English.")),
                           Edit);
    };
    Unit->OnGetText = [this](TField* Field, QString& Text, bool Display) {
        const auto Name = m_units.constFind(Field->AsString());
        if (!Display || Name == m_units.constEnd())
            Text = Field->AsString();
        else
            Text = Application()->BiDiMode() == bdRightToLeft ? Name->first : Name->second;
    };
    Active->OnGetText = [](TField* Field, QString& Text, bool Display) {
        Text = Display ? (Field->AsBoolean() ? QStringLiteral("✓") : QString()) : Field->AsString();
    };
    return Items;
}

void TItemsForm::ReadUnits()
{
    if (!m_context.Conn)
        return;
    std::unique_ptr<TADODataSet> Units(
        m_context.Conn->OpenRecordSet(QStringLiteral("SELECT Unit_id, Name_a, Name_e FROM Units"), true));
    if (!Units)
        return;
    for (; !Units->Eof(); Units->Next())
        m_units.insert(Units->Fields()[0]->AsString(), {Units->Fields()[1]->AsString(), Units->Fields()[2]->AsString()});
}

bool TItemsForm::LoadPicture(const QString& FileName)
{
    try {
        m_ui->xPhoto->LoadFromFile(FileName);
        return true;
    } catch (const EAbort&) {
    } catch (const Exception& E) {
        ShowError(E.Message);
    }
    return false;
}

void TItemsForm::AskPicture()
{
    const QString File = QFileDialog::getOpenFileName(
        this, m_ui->btnLoadPhoto->text(), QString(),
        BiStr(QStringLiteral("صور (*.png *.jpg *.jpeg *.bmp *.gif *.ico)"), QStringLiteral("Pictures (*.png *.jpg *.jpeg *.bmp *.gif *.ico)")));
    if (!File.isEmpty())
        LoadPicture(File);
}

void TItemsForm::ClearPicture()
{
    TDataSet* Ds = DataSet();
    if (!Ds || !Ds->Active() || Ds->IsEmpty())
        return;
    try {
        if (Ds->State() == dsBrowse)
            Ds->Edit();
        Ds->FieldByName(QStringLiteral("Photo"))->Clear();
    } catch (const EAbort&) {
    } catch (const Exception& E) {
        ShowError(E.Message);
    }
}

} // namespace Demo
