// A card of data-aware controls over one table, with the data-aware tool bar and the
// editing rules: a posted invoice is locked, deleting asks first, unsaved changes keep the
// form open.
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>
#include <Kesh_dbControls.h>
#include <QGridLayout>
#include <QHBoxLayout>

using namespace Kesh;

int main(int argc, char** argv)
{
    TQxApplication app(argc, argv);
    TQxAdoConnection conn;
    conn.SetConnectionString(QStringLiteral("Driver=QSQLITE;Database=:memory:"));
    conn.Open();
    conn.Exec(QStringLiteral(
        "CREATE TABLE Invoices (Inv_id INTEGER PRIMARY KEY, Inv_date INTEGER NOT NULL, Customer VARCHAR(80),"
        " Payment VARCHAR(1) NOT NULL, Posted BOOLEAN NOT NULL, Total NUMERIC(14,2));"
        "INSERT INTO Invoices VALUES (1, 20240311, 'مؤسسة النور', 'C', 1, 1250.50);"
        "INSERT INTO Invoices VALUES (2, 14450915, 'شركة الأمل', 'R', 0, 830)"));

    QWidget form;
    form.setObjectName(QStringLiteral("FormInvoice"));

    //! [rules]
    auto* manager = new TQxForm(&form, QStringLiteral("QxForm1"));
    manager->SetCaptionA(QStringLiteral("فاتورة"));
    manager->SetCaptionE(QStringLiteral("Invoice"));
    manager->SetOptions(FoAutoCenter | FoCheckModified);   // no closing over unsaved changes
    TxBiStrings messages;                          // the rules' messages, by number
    messages.Add(1, QStringLiteral("الفاتورة مرحلة ولا يمكن تعديلها."),
                 QStringLiteral("The invoice is posted and cannot be changed."), RaError);
    messages.Add(2, QStringLiteral("ستحذف الفاتورة."), QStringLiteral("The invoice will be deleted."), RaError);
    manager->SetBiStrings(messages);

    auto* invoices = new TQxAdoTable(&form);       // owned by the form: finds its manager
    invoices->SetConnection(&conn);
    invoices->SetTableName(QStringLiteral("Invoices"));
    invoices->SetLockedField(QStringLiteral("Posted"));   // a posted row refuses edit and delete
    invoices->SetLockedMsgID(1);
    invoices->SetConfirmDel(true);                 // "Are you sure? The invoice will be deleted."
    invoices->SetConfirmMsgID(2);
    //! [rules]

    //! [fields]
    // Persistent fields, created before opening: an integer date column gets TQxDateField,
    // which shows and reads "d-m-yyyy" (Gregorian or Hijri) and refuses a day that is none.
    (new TIntegerField(invoices))->SetFieldName(QStringLiteral("Inv_id"));
    (new TQxDateField(invoices))->SetFieldName(QStringLiteral("Inv_date"));
    for (const char* name : {"Customer", "Payment"})
        (new TStringField(invoices))->SetFieldName(QString::fromLatin1(name));
    (new TBooleanField(invoices))->SetFieldName(QStringLiteral("Posted"));
    auto* total = new TFloatField(invoices);
    total->SetFieldName(QStringLiteral("Total"));
    total->SetDisplayFormat(QStringLiteral("#,##0.00"));
    invoices->OnNewRecord = [&conn](TDataSet* ds) {   // defaults of a new row
        ds->FieldByName(QStringLiteral("Inv_id"))->SetAsInteger(
            conn.GetNextID(QStringLiteral("Invoices"), QStringLiteral("Inv_id"), QString()).toInt());
        ds->FieldByName(QStringLiteral("Inv_date"))->SetAsInteger(DateToInt(Date()));
        ds->FieldByName(QStringLiteral("Payment"))->SetAsString(QStringLiteral("C"));
        ds->FieldByName(QStringLiteral("Posted"))->SetAsBoolean(false);
    };
    auto* source = new TDataSource(&form);
    source->SetDataSet(invoices);
    //! [fields]

    //! [controls]
    auto* number = new TQxdbEdit(&form);
    number->SetDataSource(source);
    number->SetDataField(QStringLiteral("Inv_id"));
    number->SetReadOnly(true);
    auto* date = new TQxdbEditButton(&form);       // its button opens the calendar on the date
    date->SetDataSource(source);
    date->SetDataField(QStringLiteral("Inv_date"));
    date->SetPickDate(true);
    date->SetHotKey(QKeySequence(Qt::Key_F3));
    auto* customer = new TQxdbEdit(&form);
    customer->SetDataSource(source);
    customer->SetDataField(QStringLiteral("Customer"));
    customer->SetFixedSize(3);
    auto* payment = new TQxdbRadioGroup(&form);    // each button stands for a stored value
    payment->SetItems_a({QStringLiteral("نقدا"), QStringLiteral("آجل"), QStringLiteral("بطاقة")});
    payment->SetItems_e({QStringLiteral("Cash"), QStringLiteral("Credit"), QStringLiteral("Card")});
    payment->SetValues({QStringLiteral("C"), QStringLiteral("R"), QStringLiteral("K")});
    payment->SetColumns(3);
    payment->SetDataSource(source);
    payment->SetDataField(QStringLiteral("Payment"));
    auto* posted = new TQxdbCheckBox(&form);
    posted->SetCaptionA(QStringLiteral("مرحلة"));
    posted->SetCaptionE(QStringLiteral("Posted"));
    posted->SetDataSource(source);
    posted->SetDataField(QStringLiteral("Posted"));
    auto* totalText = new TQxdbText(&form);        // a label showing the field's display text
    totalText->SetDataSource(source);
    totalText->SetDataField(QStringLiteral("Total"));
    //! [controls]

    //! [toolbar]
    // The data-aware tool bar: no code behind it. Each button enables itself from the
    // dataset's state and, before acting, makes the focused edit write its text.
    auto* toolbar = new QHBoxLayout;
    const struct { TxActionType action; const char* arabic; const char* english; Qt::Key key; } actions[] = {
        {atFirst, "الأول", "First", Qt::Key_Home}, {atPrior, "السابق", "Prior", Qt::Key_PageUp},
        {atNext, "التالي", "Next", Qt::Key_PageDown}, {atLast, "الأخير", "Last", Qt::Key_End},
        {atAdd, "إضافة", "Add", Qt::Key_F2}, {atEdit, "تعديل", "Edit", Qt::Key_F6},
        {atSave, "حفظ", "Save", Qt::Key_F10}, {atCancel, "تراجع", "Cancel", Qt::Key_Escape},
        {atDelete, "حذف", "Delete", Qt::Key_F8}};
    for (const auto& a : actions) {
        auto* button = new TQxdbSpeedButton(&form);
        button->SetCaptionA(QString::fromUtf8(a.arabic));
        button->SetCaptionE(QString::fromUtf8(a.english));
        button->SetAction(a.action);               // also sets when it is enabled
        button->SetHotKey(QKeySequence(a.key));
        button->SetDataSource(source);
        toolbar->addWidget(button);
    }
    //! [toolbar]

    auto* grid = new QGridLayout(&form);
    grid->addLayout(toolbar, 0, 0, 1, 2);
    const struct { QWidget* control; const char* arabic; const char* english; } rows[] = {
        {number, "الرقم", "Number"}, {date, "التاريخ", "Date"}, {customer, "العميل", "Customer"},
        {totalText, "الإجمالي", "Total"}};
    for (const auto& r : rows) {
        auto* label = new TQxLabel(&form);
        label->SetCaptionA(QString::fromUtf8(r.arabic));
        label->SetCaptionE(QString::fromUtf8(r.english));
        label->SetAutoSize(false);
        const int row = grid->rowCount();
        grid->addWidget(label, row, 0);
        grid->addWidget(r.control, row, 1, Qt::AlignLeft);
    }
    grid->addWidget(payment, grid->rowCount(), 0, 1, 2);
    grid->addWidget(posted, grid->rowCount(), 1);
    grid->setRowStretch(grid->rowCount(), 1);
    grid->setColumnStretch(1, 1);

    //! [open]
    EndLoading(&form);
    invoices->Open();
    form.show();
    manager->SetLang(bdRightToLeft);
    Application()->SetBiDiMode(bdRightToLeft);
    return app.exec();
    //! [open]
}
