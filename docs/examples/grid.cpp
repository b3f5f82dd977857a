// The data grid over an SQL dataset: bilingual columns, row colours, record numbers,
// multi-selection, column widths kept, and a footer of totals.
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>
#include <Kesh_dbGrid.h>
#include <QVBoxLayout>

using namespace Kesh;

int main(int argc, char** argv)
{
    TQxApplication app(argc, argv);
    TQxAdoConnection conn;
    conn.SetConnectionString(QStringLiteral("Driver=QSQLITE;Database=:memory:"));
    conn.Open();
    conn.Exec(QStringLiteral("CREATE TABLE Items (Code VARCHAR(8) PRIMARY KEY, Name_a VARCHAR(60), Name_e VARCHAR(60),"
                             " Price NUMERIC(12,2), Qty INTEGER)"));
    for (int i = 1; i <= 500; ++i)
        conn.Exec(QStringLiteral("INSERT INTO Items VALUES ('P%1', 'صنف %1', 'Item %1', %2, %3)")
                      .arg(i).arg(i % 97 + 0.25).arg(i % 13));

    QWidget form;
    form.setObjectName(QStringLiteral("FormItems"));
    auto* manager = new TQxForm(&form, QStringLiteral("QxForm1"));
    manager->SetCaptionA(QStringLiteral("الأصناف"));
    manager->SetCaptionE(QStringLiteral("Items"));

    //! [grid]
    auto* items = new TADOQuery(&form);
    items->SetConnection(&conn);
    items->SetSQL({QStringLiteral("SELECT Code, Name_a, Name_e, Price, Qty FROM Items ORDER BY Code")});
    auto* source = new TDataSource(&form);
    source->SetDataSet(items);

    auto* grid = new TQxdbGrid(&form);
    grid->setObjectName(QStringLiteral("ItemsGrid"));      // names its layout section
    struct { const char* english; const char* arabic; const char* titleA; const char* titleE; bool number; } columns[] = {
        {"Code", nullptr, "الرمز", "Code", false},
        {"Name_e", "Name_a", "الاسم", "Name", false},          // Name_a in Arabic, Name_e in English
        {"Price", nullptr, "السعر", "Price", true},
        {"Qty", nullptr, "الكمية", "Quantity", true}};
    for (const auto& c : columns) {
        TQxColumn* column = grid->GetColumns()->Add();
        column->SetFieldName(QString::fromLatin1(c.english));
        TQxColumnField* bidi = column->GetBiDiField();       // the field and alignment by language
        bidi->SetFieldName_e(QString::fromLatin1(c.english));
        bidi->SetFieldName_a(QString::fromLatin1(c.arabic ? c.arabic : c.english));
        bidi->SetAlign_e(c.number ? Qt::AlignRight : Qt::AlignLeft);
        bidi->SetAlign_a(c.number ? Qt::AlignRight : Qt::AlignLeft);
        bidi->SetKeyboard(c.arabic ? kxBiDiMode : kxEnglish);  // keyboard layout while editing
        column->GetTitle()->SetCaptionA(QString::fromUtf8(c.titleA));
        column->GetTitle()->SetCaptionE(QString::fromUtf8(c.titleE));
        column->SetWidth(c.number ? 90 : 180);
    }
    grid->SetViewRecordNo(true);                   // the record-number column
    grid->SetRowBiColor(true);                     // alternate row colours
    grid->SetOptions(grid->GetOptions() | dgMultiSelect);
    grid->SetSaveLayout(true);                     // column widths in the settings file
    //! [grid]

    //! [footer]
    auto* footer = new TQxdbGridFooter(&form);
    footer->SetSeparator(true);
    grid->SetGridFooter(footer);
    grid->SetDataSource(source);
    items->Open();                                 // reads 64 rows; the grid reads on as it scrolls
    items->FieldByName(QStringLiteral("Price"))->SetDisplayFormat(QStringLiteral("#,##0.00"));
    grid->GetColumns()->Items(2)->SetTotalValue(true);   // Price and Qty summed in the footer,
    grid->GetColumns()->Items(3)->SetTotalValue(true);   // by the database, without reading rows
    footer->CalcColumnsTotal();
    //! [footer]

    auto* layout = new QVBoxLayout(&form);
    layout->setSpacing(0);
    layout->addWidget(grid);
    layout->addWidget(footer);
    form.resize(640, 420);
    form.show();
    manager->SetLang(bdRightToLeft);
    Application()->SetBiDiMode(bdRightToLeft);
    return app.exec();
}
