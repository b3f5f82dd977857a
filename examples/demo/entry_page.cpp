#include "entry_page.h"

#include <Kesh.h>
#include <Kesh_Controls.h>

#include <QGridLayout>
#include <QHBoxLayout>
#include <QStyle>
#include <QVBoxLayout>

using namespace Kesh;

namespace {

// The fields keep their standard widths; the last column takes the spare room so that
// the form stays together at the reading side.
constexpr int CaptionColumn = 0;
constexpr int FieldColumn = 1;
constexpr int SpareColumn = 2;

TQxLabel* FieldCaption(const QString& Arabic, const QString& English)
{
    auto* Label = new TQxLabel;
    // The grid sizes the caption: it fills its cell, so every caption has the same width.
    Label->SetAutoSize(false);
    Label->SetTextStyle(TxNormal);
    Label->SetCaptionA(Arabic);
    Label->SetCaptionE(English);
    return Label;
}

TQxEdit* NumberEdit(TxDataEntry Kind)
{
    auto* Edit = new TQxEdit;
    Edit->SetDataEntry(Kind);
    return Edit;
}

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

EntryPage::EntryPage(QWidget* Parent) : DemoPage(Parent)
{
    auto* Layout = new QVBoxLayout(this);
    BuildHeader();
    Layout->addWidget(m_header);

    auto* Grid = new QGridLayout;
    Grid->setHorizontalSpacing(10);
    Grid->setColumnStretch(SpareColumn, 1);
    Layout->addLayout(Grid);
    BuildForm(Grid);

    m_note = new TQxLabel;
    m_note->SetTextStyle(TxShadow);
    m_note->SetTextShade(0xC8C8C8);   // a light shade keeps the small text readable
    m_note->SetTextShadowPos(1);
    m_note->SetTransparent(true);
    m_note->SetAutoSize(false);
    m_note->SetCaptionA(QStringLiteral("Enter ينقل إلى الحقل التالي، F3 يكتب تاريخ اليوم، Ctrl+S يحفظ السطر، F5 يفرغ النموذج."));
    m_note->SetCaptionE(QStringLiteral("Enter moves to the next field, F3 writes today's date, Ctrl+S saves the line, F5 empties the form."));
    Layout->addWidget(m_note);

    BuildButtons();
    Layout->addSpacing(6);
    auto* Bar = new QHBoxLayout;
    Bar->addWidget(m_save);
    Bar->addWidget(m_clear);
    Bar->addStretch();
    Layout->addLayout(Bar);
    Layout->addStretch();

    SetTabOrder();
    FillSample();
    Retranslate();
}

void EntryPage::BuildHeader()
{
    m_header = new TQxPanel;
    m_header->SetGradFill(true);
    // A vertical gradient reads the same in both directions.
    m_header->SetDirection(gdVertical);
    m_header->SetColorFrom(clWhite);
    m_header->SetColorTo(RGBToColor(170, 200, 235));
    m_header->setMinimumHeight(48);

    m_title = new TQxLabel;
    m_title->SetTextStyle(Tx3D);
    m_title->SetTransparent(true);
    m_title->SetAutoSize(false);
    m_title->SetFont_a(Enlarged(m_title->GetFont_a(), 16));
    m_title->SetFont_e(Enlarged(m_title->GetFont_e(), 16));
    m_title->SetCaptionA(QStringLiteral("فاتورة مبيعات: سطر جديد"));
    m_title->SetCaptionE(QStringLiteral("Sales invoice: new line"));
    auto* Inside = new QHBoxLayout(m_header);
    Inside->setContentsMargins(12, 4, 12, 4);
    Inside->addWidget(m_title);
    Inside->addStretch();
}

void EntryPage::BuildForm(QGridLayout* Grid)
{
    int Row = 0;
    // Captions and fields are added in reading order, which is also the order of the focus
    // chain; Qt's grid puts column 0 at the right under right to left.
    auto AddRow = [Grid, &Row](QWidget* Caption, QWidget* Field) {
        Grid->addWidget(Caption, Row, CaptionColumn);
        Grid->addWidget(Field, Row, FieldColumn, Qt::AlignLeft | Qt::AlignVCenter);
        ++Row;
    };

    m_invoiceNo = NumberEdit(DeInteger);
    AddRow(FieldCaption(QStringLiteral("رقم الفاتورة:"), QStringLiteral("Invoice no.:")), m_invoiceNo);

    m_customer = new TQxEdit;
    m_customer->SetFixedSize(3);
    AddRow(FieldCaption(QStringLiteral("العميل:"), QStringLiteral("Customer:")), m_customer);

    m_date = new TQxEditButton;
    m_date->_OnButtonClick = [](QObject* Sender) { static_cast<TQxEditButton*>(Sender)->SetAsDate(Date()); };
    m_date->Button()->SetHintA(QStringLiteral("تاريخ اليوم (F3)"));
    m_date->Button()->SetHintE(QStringLiteral("Today's date (F3)"));
    m_date->SetHotKey(QKeySequence(Qt::Key_F3));
    AddRow(FieldCaption(QStringLiteral("التاريخ:"), QStringLiteral("Date:")), m_date);

    m_time = new TQxTimeEdit;
    m_time->SetCheckTime(true);
    // In a layout the time edit takes the size it is given: give it the standard one.
    m_time->setFixedSize(TQxCustomEdit::StepWidth(1), TQxCustomEdit::FixedHeight);
    AddRow(FieldCaption(QStringLiteral("وقت التسليم:"), QStringLiteral("Delivery time:")), m_time);

    m_city = new TQxFixedDropList;
    m_city->SetFixedSize(2);
    m_city->SetLimitToList(true);
    m_city->SetValues({QStringLiteral("RUH"), QStringLiteral("JED"), QStringLiteral("MKK"), QStringLiteral("MED"),
                       QStringLiteral("DMM")});
    m_city->SetItems_a({QStringLiteral("الرياض"), QStringLiteral("جدة"), QStringLiteral("مكة المكرمة"),
                        QStringLiteral("المدينة المنورة"), QStringLiteral("الدمام")});
    m_city->SetItems_e({QStringLiteral("Riyadh"), QStringLiteral("Jeddah"), QStringLiteral("Makkah"),
                        QStringLiteral("Madinah"), QStringLiteral("Dammam")});
    AddRow(FieldCaption(QStringLiteral("مدينة التسليم:"), QStringLiteral("Delivery city:")), m_city);

    m_quantity = NumberEdit(DeInteger);
    AddRow(FieldCaption(QStringLiteral("الكمية:"), QStringLiteral("Quantity:")), m_quantity);

    m_price = NumberEdit(DeFloat);
    AddRow(FieldCaption(QStringLiteral("سعر الوحدة:"), QStringLiteral("Unit price:")), m_price);

    m_discount = NumberEdit(DeFloat);
    m_hasDiscount = new TQxCheckBox;
    m_hasDiscount->SetCaptionA(QStringLiteral("خصم (%):"));
    m_hasDiscount->SetCaptionE(QStringLiteral("Discount (%):"));
    m_hasDiscount->SetControl(m_discount);
    AddRow(m_hasDiscount, m_discount);

    m_total = new TQxLabel;
    m_total->SetAutoSize(false);
    m_total->SetTransparent(true);
    m_total->SetFont_a(Enlarged(m_total->GetFont_a(), 9));
    m_total->SetFont_e(Enlarged(m_total->GetFont_e(), 9));
    AddRow(FieldCaption(QStringLiteral("إجمالي السطر:"), QStringLiteral("Line total:")), m_total);

    m_payment = new TQxRadioGroup;
    m_payment->SetCaptionA(QStringLiteral("طريقة الدفع"));
    m_payment->SetCaptionE(QStringLiteral("Payment"));
    m_payment->SetItems_a({QStringLiteral("نقداً"), QStringLiteral("بطاقة"), QStringLiteral("آجل")});
    m_payment->SetItems_e({QStringLiteral("Cash"), QStringLiteral("Card"), QStringLiteral("On account")});
    m_payment->SetColumns(3);
    Grid->addWidget(m_payment, Row, CaptionColumn, 1, 2);

    for (TQxEdit* Edit : {m_quantity, m_price, m_discount})
        connect(Edit, &QLineEdit::textChanged, this, &EntryPage::UpdateTotal);
    connect(m_hasDiscount, &QAbstractButton::toggled, this, &EntryPage::UpdateTotal);
}

void EntryPage::BuildButtons()
{
    m_save = new TQxBitBtn;
    m_save->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    m_save->SetCaptionA(QStringLiteral("حفظ"));
    m_save->SetCaptionE(QStringLiteral("Save"));
    m_save->SetHintA(QStringLiteral("حفظ السطر (Ctrl+S)"));
    m_save->SetHintE(QStringLiteral("Save the line (Ctrl+S)"));
    m_save->SetHotKey(QKeySequence(Qt::CTRL | Qt::Key_S));
    connect(m_save, &QAbstractButton::clicked, this, &EntryPage::Save);

    m_clear = new TQxSpeedButton;
    m_clear->setIcon(style()->standardIcon(QStyle::SP_DialogResetButton));
    m_clear->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_clear->SetCaptionA(QStringLiteral("تفريغ"));
    m_clear->SetCaptionE(QStringLiteral("Clear"));
    m_clear->SetHintA(QStringLiteral("تفريغ النموذج (F5)"));
    m_clear->SetHintE(QStringLiteral("Empty the form (F5)"));
    m_clear->SetHotKey(QKeySequence(Qt::Key_F5));
    connect(m_clear, &QAbstractButton::clicked, this, &EntryPage::Clear);
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

// The layouts were filled in reading order already; spelling the chain out keeps it right
// should a row ever move. The radio group's buttons follow the group.
void EntryPage::SetTabOrder()
{
    const QList<QWidget*> Chain{m_invoiceNo, m_customer, m_date, m_time, m_city, m_quantity,
                                m_price, m_hasDiscount, m_discount, m_payment, m_save};
    for (int I = 0; I + 1 < Chain.size(); ++I)
        setTabOrder(Chain[I], Chain[I + 1]);
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
