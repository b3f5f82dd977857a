#include "items_page.h"

#include <Kesh_AdoDB.h>
#include <Kesh_dbGrid.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

using namespace Kesh;

namespace {
struct TSample
{
    const char* Code;
    const char* NameA;
    const char* NameE;
    double Price;
    int Qty;
};
// Items added to the demo's three when the page first opens the table.
const TSample Samples[] = {
    {"P10", "مسطرة", "Ruler", 3.50, 120},      {"P11", "ممحاة", "Eraser", 1.25, 300},
    {"P12", "قلم رصاص", "Pencil", 0.75, 500},   {"P13", "آلة حاسبة", "Calculator", 45.00, 18},
    {"P14", "دباسة", "Stapler", 14.90, 40},    {"P15", "ورق طباعة", "Printer paper", 22.00, 65},
    {"P16", "ملف", "Folder", 2.40, 210},       {"P17", "حبر طابعة", "Printer ink", 89.00, 12},
    {"P18", "شريط لاصق", "Adhesive tape", 4.10, 150}, {"P19", "لوحة مفاتيح", "Keyboard", 120.00, 9},
};
} // namespace

ItemsPage::ItemsPage(const QString& DatabaseFile, QWidget* Parent)
    : DemoPage(Parent), m_conn(new TQxAdoConnection(this)), m_query(new TADOQuery(this)),
      m_source(new TDataSource(this))
{
    setObjectName(QStringLiteral("ItemsPage"));
    auto* Layout = new QVBoxLayout(this);
    m_hint = new QLabel;
    m_hint->setWordWrap(true);
    Layout->addWidget(m_hint);
    m_grid = new TQxdbGrid;
    m_grid->setObjectName(QStringLiteral("ItemsGrid"));
    m_footer = new TQxdbGridFooter;
    m_footer->SetSeparator(true);
    auto* GridBox = new QVBoxLayout;
    GridBox->setSpacing(0);
    GridBox->addWidget(m_grid);
    GridBox->addWidget(m_footer);
    Layout->addLayout(GridBox, 1);
    auto* Buttons = new QHBoxLayout;
    m_delete = new QPushButton;
    m_delete->setObjectName(QStringLiteral("DeleteSelected"));
    Buttons->addWidget(m_delete);
    Buttons->addStretch();
    Layout->addLayout(Buttons);
    m_error = new QLabel;
    m_error->setWordWrap(true);
    Layout->addWidget(m_error);
    connect(m_delete, &QPushButton::clicked, this, &ItemsPage::DeleteSelected);

    try {
        m_conn->SetConnectionString(QStringLiteral("Driver=QSQLITE;Database=") + DatabaseFile);
        m_conn->Open();
        PrepareTable();
        m_query->SetConnection(m_conn);
        m_query->SetSQL({QStringLiteral("SELECT Code, Name_a, Name_e, Price, Qty, Qty * Price AS Stock_value "
                                        "FROM Items ORDER BY Code")});
        BuildColumns();
        m_grid->SetViewRecordNo(true);
        m_grid->SetRowBiColor(true);
        m_grid->SetOptions(m_grid->GetOptions() | dgMultiSelect);
        m_grid->SetSaveLayout(true);
        m_grid->SetGridFooter(m_footer);
        m_source->SetDataSet(m_query);
        m_grid->SetDataSource(m_source);
        m_query->Open();
        for (const char* Name : {"Price", "Stock_value"})
            m_query->FieldByName(QString::fromLatin1(Name))->SetDisplayFormat(QStringLiteral("#,##0.00"));
        m_query->FieldByName(QStringLiteral("Qty"))->SetDisplayFormat(QStringLiteral("#,##0"));
        m_grid->GetColumns()->Items(3)->SetTotalValue(true);
        m_grid->GetColumns()->Items(4)->SetTotalValue(true);
        m_footer->CalcColumnsTotal();
        // The stock value is computed by the query: read it again after a change.
        m_query->AfterPost = [this](TDataSet*) { QTimer::singleShot(0, m_query, [this] { m_query->Refresh(); }); };
    } catch (const Exception& E) {
        m_error->setText(E.Message);
    }
    Retranslate();
}

ItemsPage::~ItemsPage()
{
    // Closing while the grid still stands writes its column widths to the settings file.
    m_query->Close();
}

void ItemsPage::PrepareTable()
{
    QStringList Fields;
    m_conn->GetFieldNames(QStringLiteral("Items"), Fields);
    if (!Fields.contains(QStringLiteral("Qty"), Qt::CaseInsensitive)) {
        if (!m_conn->Exec(QStringLiteral("ALTER TABLE Items ADD COLUMN Qty INTEGER DEFAULT 0")))
            throw Exception(m_conn->ErrorMessage());
        m_conn->Exec(QStringLiteral("UPDATE Items SET Qty = 25"));
        for (const TSample& S : Samples) {
            TADOQuery Insert;
            Insert.SetConnection(m_conn);
            Insert.SetSQL({QStringLiteral("SELECT Code, Name_a, Name_e, Price, Qty FROM Items WHERE 1 = 0")});
            Insert.Open();
            Insert.Append();
            Insert.FieldByName(QStringLiteral("Code"))->SetAsString(QString::fromLatin1(S.Code));
            Insert.FieldByName(QStringLiteral("Name_a"))->SetAsString(QString::fromUtf8(S.NameA));
            Insert.FieldByName(QStringLiteral("Name_e"))->SetAsString(QString::fromLatin1(S.NameE));
            Insert.FieldByName(QStringLiteral("Price"))->SetAsFloat(S.Price);
            Insert.FieldByName(QStringLiteral("Qty"))->SetAsInteger(S.Qty);
            Insert.Post();
        }
    }
}

void ItemsPage::BuildColumns()
{
    struct TColumnText
    {
        const char* Field;
        const char* FieldA;
        const char* TitleA;
        const char* TitleE;
        bool Number;
        int Width;
    };
    const TColumnText Texts[] = {
        {"Code", nullptr, "الرمز", "Code", false, 60},
        {"Name_e", "Name_a", "الاسم", "Name", false, 190},
        {"Price", nullptr, "السعر", "Price", true, 90},
        {"Qty", nullptr, "الكمية", "Quantity", true, 80},
        {"Stock_value", nullptr, "القيمة", "Value", true, 110},
    };
    TQxDBGridColumns* Columns = m_grid->GetColumns();
    for (const TColumnText& T : Texts) {
        TQxColumn* C = Columns->Add();
        C->SetFieldName(QString::fromLatin1(T.Field));
        C->SetWidth(T.Width);
        TQxColumnField* B = C->GetBiDiField();
        B->SetFieldName_e(QString::fromLatin1(T.Field));
        if (T.FieldA)
            B->SetFieldName_a(QString::fromLatin1(T.FieldA));
        B->SetAlign_e(T.Number ? Qt::AlignRight : Qt::AlignLeft);
        B->SetAlign_a(T.Number ? Qt::AlignRight : Qt::AlignLeft);
        B->SetKeyboard(T.FieldA ? kxBiDiMode : kxEnglish);
        C->GetTitle()->SetCaptionA(QString::fromUtf8(T.TitleA));
        C->GetTitle()->SetCaptionE(QString::fromLatin1(T.TitleE));
        if (qstrcmp(T.Field, "Stock_value") == 0)
            C->SetReadOnly(true);
    }
}

QString ItemsPage::Title() const { return BiStr(QStringLiteral("الأصناف"), QStringLiteral("Items")); }

void ItemsPage::Retranslate()
{
    // Key names are Latin: isolate each, so the Arabic sentence keeps its order around them.
    auto Key = [](const char* Name) { return QStringLiteral("\u2066%1\u2069").arg(QLatin1String(Name)); };
    m_hint->setText(BiStr(QStringLiteral("النقر مع %1 أو %2، أو %2 مع الأسهم، يختار عدة أصناف؛ اكتب في خلية لتعديلها، "
                                         "و%3 للخلية التالية، و%4 لصنف جديد، و%5 للحذف.")
                              .arg(Key("Ctrl"), Key("Shift"), Key("Enter"), Key("Insert"), Key("Ctrl+Delete")),
                          QStringLiteral("Ctrl+click, Shift+click or Shift+arrows select several items; type in a cell to "
                                         "edit it, Enter moves on, Insert adds an item, Ctrl+Delete deletes.")));
    AlignToReadingSide(m_hint);
    m_delete->setText(BiStr(QStringLiteral("حذف المختار"), QStringLiteral("Delete selected")));
}

void ItemsPage::DeleteSelected()
{
    try {
        TQxBookmarkList* Selected = m_grid->SelectedRows();
        if (Selected->Count() == 0) {
            ShowMsg(BiStr(QStringLiteral("لم يُختر أي صنف."), QStringLiteral("No item is selected.")));
            return;
        }
        if (!Sure(BiStr(QStringLiteral("سيُحذف %1 من الأصناف."), QStringLiteral("%1 items will be deleted."))
                      .arg(Selected->Count()),
                  false))
            return;
        Selected->Delete();
    } catch (const EAbort&) {
    } catch (const Exception& E) {
        ShowError(E.Message);
    }
}
