#include "entry_page.h"

#include <Kesh.h>
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>
#include "ui_entry_page.h"

#include <QHBoxLayout>
#include <QLayout>
#include <QStyle>

using namespace Kesh;

namespace {

TFont Enlarged(TFont Font, int Size)
{
    Font.SetSize(Size);
    Font.SetStyle(fsBold);
    return Font;
}

// The value is isolated with its own direction: "23 Nov 2026" after an Arabic caption
// would otherwise be reordered into "Nov 2026 23".
QString SummaryLine(const QString& Arabic, const QString& English, const QString& Value)
{
    const QChar FirstStrongIsolate(0x2068), PopIsolate(0x2069);
    return BiStr(Arabic, English) + QStringLiteral(": ") + FirstStrongIsolate + Value + PopIsolate + QLatin1Char('\n');
}

} // namespace

EntryPage::EntryPage(const QString& DatabaseFile, QWidget* Parent)
    : DemoPage(Parent), m_conn(new TQxAdoConnection(this)), m_customers(new TQxAdoBrowser(this))
{
    // The form is made in Qt Designer (entry_page.ui): captions, item lists, widths, typing
    // rules, hot keys and the tab order are stored there. Code adds what a .ui file cannot
    // hold: fonts derived from the application's, icons, the date button's action.
    Ui::EntryPage Form;
    Form.setupUi(this);
    m_header = Form.pnlHeader;
    m_title = Form.lblTitle;
    m_invoiceNo = Form.edtInvoiceNo;
    m_customer = Form.edtCustomer;
    m_date = Form.edbDate;
    m_time = Form.tmeDelivery;
    m_city = Form.dplCity;
    OpenDatabase(DatabaseFile);
    m_quantity = Form.edtQuantity;
    m_price = Form.edtPrice;
    m_hasDiscount = Form.chkDiscount;
    m_discount = Form.edtDiscount;
    m_total = Form.lblTotal;
    m_payment = Form.rgpPayment;
    m_note = Form.lblNote;
    m_save = Form.bbnSave;
    m_clear = Form.sbnClear;

    m_title->SetFont_a(Enlarged(m_title->GetFont_a(), 16));
    m_title->SetFont_e(Enlarged(m_title->GetFont_e(), 16));
    m_total->SetFont_a(Enlarged(m_total->GetFont_a(), 9));
    m_total->SetFont_e(Enlarged(m_total->GetFont_e(), 9));
    // F3 or the button: the day in the calendar picker, opened on the day shown (today when
    // the box is empty); the edit keeps showing dates as text.
    m_date->_OnButtonClick = [](QObject* Sender) {
        auto* Edit = static_cast<TQxEditButton*>(Sender);
        int Day = Edit->text().trimmed().isEmpty() ? 0 : DateToInt(Edit->AsDate());
        if (SelectDate(Day, false))
            Edit->SetAsDate(IntToDate(Day));
    };
    m_date->Button()->SetHintA(QStringLiteral("التقويم (F3)"));
    m_date->Button()->SetHintE(QStringLiteral("Calendar (F3)"));
    m_save->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    m_clear->setIcon(style()->standardIcon(QStyle::SP_DialogResetButton));

    for (TQxEdit* Edit : {m_quantity, m_price, m_discount})
        connect(Edit, &QLineEdit::textChanged, this, &EntryPage::UpdateTotal);
    connect(m_hasDiscount, &QAbstractButton::toggled, this, &EntryPage::UpdateTotal);
    connect(m_save, &QAbstractButton::clicked, this, &EntryPage::Save);
    connect(m_clear, &QAbstractButton::clicked, this, &EntryPage::Clear);
    BuildCustomerPicker();

    // Binds the discount check box to the edit it names (_ControlName) and the city list to
    // the connection it names (_ConnectionName), and ends the building of every component.
    Kesh::EndLoading(this);
    m_city->FillDataList();
    FillSample();
    Retranslate();
}

// The page's customers (with an integer joining date) and cities live in the demo database.
// The name columns are NOCASE with plain indexes, so the browser's quick search reads its
// 30 rows from an index however many customers there are.
void EntryPage::OpenDatabase(const QString& DatabaseFile)
{
    m_conn->setObjectName(QStringLiteral("EntryDB"));
    try {
        m_conn->SetConnectionString(QStringLiteral("Driver=QSQLITE;Database=") + DatabaseFile);
        m_conn->Open();
        if (!m_conn->TableExists(QStringLiteral("EntryCustomers")))
            m_conn->Exec(QStringLiteral(
                "CREATE TABLE EntryCustomers (Code INTEGER PRIMARY KEY, Name_a TEXT COLLATE NOCASE, "
                "Name_e TEXT COLLATE NOCASE, Joined INTEGER);"
                "CREATE INDEX EntryCustomers_Name_a ON EntryCustomers (Name_a);"
                "CREATE INDEX EntryCustomers_Name_e ON EntryCustomers (Name_e);"
                "INSERT INTO EntryCustomers VALUES (1, 'مؤسسة النور التجارية', 'Al Noor Trading Est.', 20190312);"
                "INSERT INTO EntryCustomers VALUES (2, 'شركة الأمل', 'Al Amal Company', 20200901);"
                "INSERT INTO EntryCustomers VALUES (3, 'مكتبة المعرفة', 'Knowledge Bookshop', 20211115);"
                "INSERT INTO EntryCustomers VALUES (4, 'مطاعم البحر الأحمر', 'Red Sea Restaurants', 20220220);"
                "INSERT INTO EntryCustomers VALUES (5, 'صيدلية الشفاء', 'Al Shifa Pharmacy', 20230105);"
                "INSERT INTO EntryCustomers VALUES (6, 'أوبراين للاستيراد', 'O''Brien Imports', 20230618);"
                "INSERT INTO EntryCustomers VALUES (7, 'بيت العطور', 'House of Perfumes', 20240410);"
                "INSERT INTO EntryCustomers VALUES (8, 'مخابز السنابل', 'Sanabel Bakeries', 20241201)"));
        if (!m_conn->TableExists(QStringLiteral("Cities")))
            m_conn->Exec(QStringLiteral(
                "CREATE TABLE Cities (Code VARCHAR(3), Name_a VARCHAR(40), Name_e VARCHAR(40));"
                "INSERT INTO Cities VALUES ('RUH', 'الرياض', 'Riyadh');"
                "INSERT INTO Cities VALUES ('JED', 'جدة', 'Jeddah');"
                "INSERT INTO Cities VALUES ('MKK', 'مكة المكرمة', 'Makkah');"
                "INSERT INTO Cities VALUES ('MED', 'المدينة المنورة', 'Madinah');"
                "INSERT INTO Cities VALUES ('DMM', 'الدمام', 'Dammam')"));
    } catch (const Exception& E) {
        ShowError(E.Message);
    }
}

// A "..." button (F4) by the customer box opens the browser of the customers.
void EntryPage::BuildCustomerPicker()
{
    m_customers->setObjectName(QStringLiteral("brCustomers"));
    m_customers->SetConnection(m_conn);
    m_customers->SetSourceTables(QStringLiteral("EntryCustomers"));
    m_customers->SetDatabaseType(dtSQLite);
    m_customers->SetCaption_a(QStringLiteral("العملاء"));
    m_customers->SetCaption_e(QStringLiteral("Customers"));
    m_customers->SetCompressedView(true);
    const struct { const char* A; const char* E; const char16_t* CapA; const char* CapE; int Width; } Columns[] = {
        {"Name_a", "Name_e", u"الاسم", "Name", 30}, {"Code", "Code", u"الرقم", "Code", 8},
        {"Joined", "Joined", u"تاريخ الانضمام", "Joined", 12}};
    for (const auto& C : Columns) {
        TQxAdoBrowserItem* Item = m_customers->BrowserItems()->Add();
        Item->SetFieldName_a(QLatin1String(C.A));
        Item->SetFieldName_e(QLatin1String(C.E));
        Item->SetCaption_a(QString::fromUtf16(C.CapA));
        Item->SetCaption_e(QLatin1String(C.CapE));
        Item->SetWidth(C.Width);
    }
    m_customers->BrowserItems()->Items(2)->SetFieldClass(fcDate);
    m_customers->BrowserItems()->Items(2)->SetDataType(ftInteger);

    auto* Button = new TQxSpeedButton;
    Button->setObjectName(QStringLiteral("sbnCustomer"));
    Button->setText(QStringLiteral("..."));
    Button->SetHintA(QStringLiteral("اختيار العميل (F4)"));
    Button->SetHintE(QStringLiteral("Pick the customer (F4)"));
    Button->SetHotKey(QKeySequence(Qt::Key_F4));
    Button->setFocusPolicy(Qt::NoFocus);
    connect(Button, &QAbstractButton::clicked, this, &EntryPage::PickCustomer);
    auto* Box = new QWidget;
    QWidget* Parent = m_customer->parentWidget();
    if (QLayout* Layout = Parent->layout())
        delete Layout->replaceWidget(m_customer, Box, Qt::FindChildrenRecursively);
    auto* Row = new QHBoxLayout(Box);
    Row->setContentsMargins(0, 0, 0, 0);
    Row->setSpacing(2);
    Row->addWidget(m_customer);
    Row->addWidget(Button);
    Row->addStretch(1);
}

void EntryPage::PickCustomer()
{
    if (m_customers->ShowBrowser())
        m_customer->setText(m_customers->BrowserItems()->Items(0)->Value().toString());
    m_customer->setFocus();
}

void EntryPage::FillSample()
{
    m_invoiceNo->SetAsInteger(1024);
    m_customer->setText(QStringLiteral("مؤسسة النور التجارية"));
    m_date->SetAsDate(Date());
    m_time->SetAsInteger(1030);
    m_city->SetData(QStringLiteral("JED"));
    m_quantity->SetAsInteger(12);
    m_price->SetAsFloat(27.5);
    m_hasDiscount->SetChecked(true);
    m_discount->SetAsInteger(5);
    m_payment->SetItemIndex(1);
}

QString EntryPage::Title() const
{
    return BiStr(QStringLiteral("إدخال البيانات"), QStringLiteral("Data entry"));
}

// The bilingual controls switch their own captions; tool tips of plain Qt properties
// are left to the page.
void EntryPage::Retranslate()
{
    m_invoiceNo->setToolTip(BiStr(QStringLiteral("أرقام فقط"), QStringLiteral("Digits only")));
    m_date->setToolTip(BiStr(QStringLiteral("اضغط F3 أو الزر لتاريخ اليوم"), QStringLiteral("Press F3 or the button for today's date")));
    m_time->setToolTip(BiStr(QStringLiteral("ساعات ودقائق، مثل 14:30"), QStringLiteral("Hours and minutes, such as 14:30")));
    m_city->setToolTip(BiStr(QStringLiteral("اختر من القائمة"), QStringLiteral("Choose from the list")));
    m_discount->setToolTip(BiStr(QStringLiteral("من 0 إلى 100"), QStringLiteral("From 0 to 100")));
    UpdateTotal();
}

long double EntryPage::LineTotal() const
{
    const long double Gross = static_cast<long double>(m_quantity->AsInteger()) * m_price->AsFloat();
    const long double Rate = m_hasDiscount->GetChecked() ? m_discount->AsFloat() : 0;
    return Gross * (100 - Rate) / 100;
}

void EntryPage::UpdateTotal()
{
    m_total->SetCaption(FormatFloat(QStringLiteral("#,##0.00"), LineTotal()));
}

// The delivery time as hours*100 + minutes, or -1 when the text is no time of day.
int EntryPage::TypedTime() const
{
    try {
        const int Time = m_time->AsIntegerTime();
        int Hours = 0, Minutes = 0;
        TimeDecode(Time, Hours, Minutes);
        return Time >= 0 && Hours < 24 && Minutes < 60 ? Time : -1;
    } catch (const EConvertError&) {
        return -1;
    }
}

// Shows the error and gives the focus to the field at fault; false when a field is wrong.
bool EntryPage::Validate()
{
    struct Rule
    {
        bool Ok;
        QWidget* Field;
        const char16_t* Arabic;
        const char16_t* English;
    };
    const double Discount = m_discount->AsFloat();
    const int Time = TypedTime();
    const Rule Rules[] = {
        {m_invoiceNo->AsInteger() > 0, m_invoiceNo, u"أدخل رقم الفاتورة.", u"Enter the invoice number."},
        {!m_customer->IsEmpty(), m_customer, u"أدخل اسم العميل.", u"Enter the customer's name."},
        {m_date->AsDate() != 0, m_date, u"أدخل تاريخاً صحيحاً.", u"Enter a valid date."},
        {m_time->IsEmpty() || Time >= 0, m_time, u"أدخل وقتاً صحيحاً، مثل 14:30.", u"Enter a valid time, such as 14:30."},
        {!m_city->IsEmpty() && m_city->Matched(), m_city, u"اختر مدينة التسليم من القائمة.",
         u"Choose the delivery city from the list."},
        {m_quantity->AsInteger() > 0, m_quantity, u"أدخل كمية أكبر من صفر.", u"Enter a quantity above zero."},
        {!m_price->IsEmpty() && m_price->AsFloat() >= 0, m_price, u"أدخل سعر الوحدة.", u"Enter the unit price."},
        {!m_hasDiscount->GetChecked() || (!m_discount->IsEmpty() && Discount >= 0 && Discount <= 100), m_discount,
         u"الخصم من 0 إلى 100.", u"The discount is from 0 to 100."},
        {m_payment->GetItemIndex() >= 0, m_payment, u"اختر طريقة الدفع.", u"Choose how the customer pays."},
    };
    for (const Rule& R : Rules) {
        if (!R.Ok) {
            ShowError(BiStr(QString::fromUtf16(R.Arabic), QString::fromUtf16(R.English)), R.Field);
            return false;
        }
    }
    return true;
}

void EntryPage::Save()
{
    if (!Validate())
        return;
    const QString Digits = Int2Str(TypedTime(), 4);
    const QString Time = m_time->IsEmpty() ? BiStr(QStringLiteral("غير محدد"), QStringLiteral("not set"))
                                           : Digits.left(2) + QLatin1Char(':') + Digits.mid(2);
    const QString Discount = m_hasDiscount->GetChecked() ? FloatToStr(m_discount->AsFloat()) + QLatin1Char('%')
                                                         : BiStr(QStringLiteral("بدون"), QStringLiteral("none"));
    const QString Summary =
        BiStr(QStringLiteral("تم حفظ السطر:"), QStringLiteral("The line was saved:")) + QLatin1Char('\n')
        + SummaryLine(QStringLiteral("رقم الفاتورة"), QStringLiteral("Invoice no."), QString::number(m_invoiceNo->AsInteger()))
        + SummaryLine(QStringLiteral("العميل"), QStringLiteral("Customer"), m_customer->text().trimmed())
        + SummaryLine(QStringLiteral("التاريخ"), QStringLiteral("Date"), m_date->text().trimmed())
        + SummaryLine(QStringLiteral("وقت التسليم"), QStringLiteral("Delivery time"), Time)
        + SummaryLine(QStringLiteral("المدينة"), QStringLiteral("City"),
                      m_city->currentText() + QStringLiteral(" (") + m_city->Data() + QLatin1Char(')'))
        + SummaryLine(QStringLiteral("الكمية"), QStringLiteral("Quantity"), QString::number(m_quantity->AsInteger()))
        + SummaryLine(QStringLiteral("سعر الوحدة"), QStringLiteral("Unit price"), FloatToStr(m_price->AsFloat()))
        + SummaryLine(QStringLiteral("الخصم"), QStringLiteral("Discount"), Discount)
        + SummaryLine(QStringLiteral("الدفع"), QStringLiteral("Payment"), m_payment->GetItems().value(m_payment->GetItemIndex()))
        + SummaryLine(QStringLiteral("الإجمالي"), QStringLiteral("Total"), FormatFloat(QStringLiteral("#,##0.00"), LineTotal()));
    ShowMsg(Summary.trimmed(), m_invoiceNo);
}

void EntryPage::Clear()
{
    for (TQxEdit* Edit : {m_invoiceNo, m_customer, static_cast<TQxEdit*>(m_date), m_quantity, m_price, m_discount})
        Edit->clear();
    m_time->clear();
    m_city->SetData(QString());
    m_hasDiscount->SetChecked(false);
    m_payment->SetItemIndex(-1);
    m_invoiceNo->setFocus(Qt::OtherFocusReason);
}
