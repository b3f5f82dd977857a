// Finding a row with the record browser (F4), a drop list filled from a table, and a date
// picked in the calendar, Gregorian or Hijri (F3).
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>
#include <Kesh_Form_Calendar.h>
#include <QFormLayout>

using namespace Kesh;

int main(int argc, char** argv)
{
    TQxApplication app(argc, argv);
    TQxAdoConnection conn;
    conn.SetConnectionString(QStringLiteral("Driver=QSQLITE;Database=:memory:"));
    conn.Open();
    conn.Exec(QStringLiteral(
        "CREATE TABLE Cities (City_id INTEGER PRIMARY KEY, Name_a VARCHAR(40), Name_e VARCHAR(40));"
        "INSERT INTO Cities VALUES (1, 'الرياض', 'Riyadh'); INSERT INTO Cities VALUES (2, 'جدة', 'Jeddah');"
        "CREATE TABLE Customers (Cust_id INTEGER PRIMARY KEY, Name_a TEXT COLLATE NOCASE,"
        " Name_e TEXT COLLATE NOCASE, City_id INTEGER, Joined INTEGER);"
        "CREATE INDEX Customers_Name_a ON Customers (Name_a);"
        "CREATE INDEX Customers_Name_e ON Customers (Name_e)"));
    for (int i = 1; i <= 300; ++i)
        conn.Exec(QStringLiteral("INSERT INTO Customers VALUES (%1, 'عميل %1', 'Customer %1', %2, %3)")
                      .arg(i).arg(i % 2 + 1).arg(DaysInc(20240101, i)));

    QWidget form;
    form.setObjectName(QStringLiteral("FormPick"));
    auto* manager = new TQxForm(&form, QStringLiteral("QxForm1"));
    manager->SetCaptionA(QStringLiteral("اختيار"));
    manager->SetCaptionE(QStringLiteral("Pick"));

    //! [browser]
    auto* browser = new TQxAdoBrowser(&form);
    browser->SetConnection(&conn);
    browser->SetSourceTables(QStringLiteral("Customers"));
    browser->SetDatabaseType(dtSQLite);            // "LIMIT 30": each keystroke reads 30 rows
    browser->SetCaption_a(QStringLiteral("العملاء"));
    browser->SetCaption_e(QStringLiteral("Customers"));
    const struct { const char* fieldA; const char* fieldE; const char* titleA; const char* titleE; int width; } columns[] = {
        {"Name_a", "Name_e", "الاسم", "Name", 30},     // the first column is the quick search's
        {"Cust_id", "Cust_id", "الرقم", "Number", 8},
        {"Joined", "Joined", "الانضمام", "Joined", 12}};
    for (const auto& c : columns) {
        TQxAdoBrowserItem* item = browser->BrowserItems()->Add();
        item->SetFieldName_a(QString::fromLatin1(c.fieldA));
        item->SetFieldName_e(QString::fromLatin1(c.fieldE));
        item->SetCaption_a(QString::fromUtf8(c.titleA));
        item->SetCaption_e(QString::fromUtf8(c.titleE));
        item->SetWidth(c.width);
    }
    browser->BrowserItems()->Items(2)->SetFieldClass(fcDate);   // an integer date column
    browser->BrowserItems()->Items(2)->SetDataType(ftInteger);

    auto* customer = new TQxEditButton(&form);     // "..." or F4 opens the browser
    customer->SetFixedSize(2);
    customer->SetHotKey(QKeySequence(Qt::Key_F4));
    customer->_OnButtonClick = [browser, customer](QObject*) {
        if (browser->ShowBrowser())                // modal; true when a row was picked
            customer->setText(browser->BrowserItems()->Items(0)->Value().toString());
    };
    //! [browser]

    //! [droplist]
    auto* city = new TQxAdoDropList(&form);        // the rows of a table as a look-up list
    city->SetConnection(&conn);
    city->SetListTable(QStringLiteral("Cities"));
    city->SetListKey(QStringLiteral("City_id"));
    city->SetListField_a(QStringLiteral("Name_a"));
    city->SetListField_e(QStringLiteral("Name_e"));
    city->SetOrderBy(QStringLiteral("City_id"));
    city->SetShowKey(false);                       // captions only, not "2: Jeddah"
    city->FillDataList();                          // reads the rows; Requery() reads them again
    city->SetData(QStringLiteral("2"));            // the key; the user sees Jeddah or جدة
    //! [droplist]

    //! [calendar]
    auto* hijriDate = new TQxEditButton(&form);
    hijriDate->SetPickDate(true);                  // the button opens the calendar on the date
    hijriDate->SetPickHijri(true);                 // and writes the picked day as Hijri
    hijriDate->SetHotKey(QKeySequence(Qt::Key_F3));
    hijriDate->setText(QString::number(ConvertDate(DateToInt(Date()))));
    // From code: SelectDate(date, hijri) opens the same month view, modal.
    auto* pick = new TQxBitBtn(&form);
    pick->SetCaptionA(QStringLiteral("تاريخ ميلادي…"));
    pick->SetCaptionE(QStringLiteral("Gregorian date…"));
    QObject::connect(pick, &QAbstractButton::clicked, [pick] {
        int day = 0;                               // 0: opens on today
        if (SelectDate(day, false))
            pick->setText(DateToString(day));
    });
    //! [calendar]

    auto* layout = new QFormLayout(&form);
    auto label = [&form](const char* arabic, const char* english) {
        auto* text = new TQxLabel(&form);
        text->SetCaptionA(QString::fromUtf8(arabic));
        text->SetCaptionE(QString::fromUtf8(english));
        text->SetAutoSize(false);
        return text;
    };
    layout->addRow(label("العميل (F4)", "Customer (F4)"), customer);
    layout->addRow(label("المدينة", "City"), city);
    layout->addRow(label("التاريخ (F3)", "Date (F3)"), hijriDate);
    layout->addRow(pick);
    form.show();
    manager->SetLang(bdRightToLeft);
    Application()->SetBiDiMode(bdRightToLeft);
    return app.exec();
}
