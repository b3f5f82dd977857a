#include "invoice_list_form.h"

#include "invoice_form.h"
#include "ui_invoice_list_form.h"

#include <Kesh.h>
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>
#include <Kesh_dbControls.h>
#include <Kesh_dbGrid.h>

#include <QMouseEvent>
#include <QStyle>

using namespace Kesh;

namespace {

// A date range is asked in both calendars, so that invoices dated in Hijri are listed too;
// the newest invoice comes first.
const QString ListSql = QStringLiteral(
    "SELECT I.Inv_id, I.Inv_date, C.Name_a, C.Name_e, I.Payment, I.Total, I.Posted "
    "FROM Invoices I JOIN Customers C ON C.Cust_id = I.Cust_id "
    "WHERE I.Inv_date BETWEEN :From AND :To OR I.Inv_date BETWEEN :HijriFrom AND :HijriTo "
    "ORDER BY I.Inv_id DESC");

template <class F>
F* AddField(TDataSet* DataSet, const char* Name)
{
    auto* Field = new F(DataSet);
    Field->SetFieldName(QLatin1String(Name));
    return Field;
}

} // namespace

InvoiceListForm::InvoiceListForm(Demo::TDemoContext& Context, QWidget* Parent)
    : QWidget(Parent), m_context(Context), m_ui(std::make_unique<Ui::InvoiceListForm>())
{
    CreateDataSet();
    m_ui->setupUi(this);
    Kesh::EndLoading(this);
    m_manager = findChild<TQxForm*>();
    BuildGrid();

    m_ui->bbnOpen->setIcon(style()->standardIcon(QStyle::SP_DialogOpenButton));
    m_ui->bbnNew->setIcon(style()->standardIcon(QStyle::SP_FileIcon));
    m_ui->bbnShow->setIcon(style()->standardIcon(QStyle::SP_BrowserReload));
    m_ui->bbnClose->setIcon(style()->standardIcon(QStyle::SP_DialogCloseButton));
    connect(m_ui->bbnShow, &QAbstractButton::clicked, this, &InvoiceListForm::Refresh);
    connect(m_ui->bbnOpen, &QAbstractButton::clicked, this, &InvoiceListForm::OpenCurrent);
    connect(m_ui->bbnNew, &QAbstractButton::clicked, this, [this] { Open(0); });
    connect(m_ui->bbnClose, &QAbstractButton::clicked, this, &QWidget::close);
    for (TQxEditButton* Edit : {m_ui->edbFrom, m_ui->edbTo})
        Edit->_OnButtonClick = [this](QObject* Sender) { PickDate(static_cast<TQxEditButton*>(Sender)); };
    if (m_manager)
        m_manager->OnLangChange = [this](QObject*) { Retranslate(); };

    // The last month of the data (the sample's dates need not reach today).
    int Last = m_context.Conn->DMax(QStringLiteral("Invoices"), QStringLiteral("Inv_date"),
                                    QStringLiteral("Inv_date > 19000000"))
                   .toInt();
    if (!IsDate(Last))
        Last = DateToInt(Date());
    SetDateRange(DaysInc(Last, -30), Last);
    // The footer totals a bound column: the fields are bound once the invoices are read.
    m_ui->grdInvoices->GetColumns()->Items(4)->SetTotalValue(true);
    m_ui->ftrInvoices->CalcColumnsTotal();
    // The window opens on the list, where Enter opens an invoice.
    m_ui->grdInvoices->setFocus();
    Retranslate();
}

InvoiceListForm::~InvoiceListForm()
{
    m_source->OnDataChange = nullptr;
}

void InvoiceListForm::CreateDataSet()
{
    m_invoices = new TQxAdoDataSet(this);
    m_invoices->setObjectName(QStringLiteral("qryInvoices"));
    AddField<TIntegerField>(m_invoices, "Inv_id");
    AddField<TQxDateField>(m_invoices, "Inv_date");
    AddField<TStringField>(m_invoices, "Name_a");
    AddField<TStringField>(m_invoices, "Name_e");
    AddField<TStringField>(m_invoices, "Payment")->OnGetText = [this](TField* Sender, QString& Text, bool) {
        const QString Code = Sender->AsString();
        Text = Code == QLatin1String("C")   ? Tr(u"نقداً", "Cash")
               : Code == QLatin1String("R") ? Tr(u"آجل", "Credit")
               : Code == QLatin1String("K") ? Tr(u"بطاقة", "Card")
                                            : Code;
    };
    AddField<TFloatField>(m_invoices, "Total")->SetDisplayFormat(QStringLiteral("#,##0.00"));
    AddField<TBooleanField>(m_invoices, "Posted")->OnGetText = [this](TField* Sender, QString& Text, bool) {
        Text = !Sender->IsNull() && Sender->AsBoolean() ? Tr(u"مرحّلة", "Posted") : QString();
    };
    m_invoices->SetConnection(m_context.Conn);
    m_invoices->SetCommandText(ListSql);
    m_invoices->SetLockType(ltReadOnly);
    m_source = new TDataSource(this);
    m_source->setObjectName(QStringLiteral("dsInvoices"));
    m_source->SetDataSet(m_invoices);
}

void InvoiceListForm::BuildGrid()
{
    struct TColumnText
    {
        const char* FieldE;
        const char* FieldA;
        const char16_t* TitleA;
        const char* TitleE;
        int Width;
        Qt::Alignment Align;
    };
    const TColumnText Texts[] = {
        {"Inv_id", nullptr, u"الرقم", "No.", 80, Qt::AlignRight},
        {"Inv_date", nullptr, u"التاريخ", "Date", 100, Qt::AlignLeft},
        {"Name_e", "Name_a", u"العميل", "Customer", 320, Qt::AlignLeft},
        {"Payment", nullptr, u"الدفع", "Payment", 90, Qt::AlignLeft},
        {"Total", nullptr, u"الإجمالي", "Total", 130, Qt::AlignRight},
        {"Posted", nullptr, u"الحالة", "State", 90, Qt::AlignLeft},
    };
    TQxdbGrid* Grid = m_ui->grdInvoices;
    TQxDBGridColumns* Columns = Grid->GetColumns();
    Columns->Clear();
    for (const TColumnText& T : Texts) {
        TQxColumn* C = Columns->Add();
        C->SetFieldName(QLatin1String(T.FieldE));
        C->SetWidth(T.Width);
        TQxColumnField* B = C->GetBiDiField();
        B->SetFieldName_e(QLatin1String(T.FieldE));
        if (T.FieldA)
            B->SetFieldName_a(QLatin1String(T.FieldA));
        B->SetAlign_a(T.Align);
        B->SetAlign_e(T.Align);
        C->GetTitle()->SetCaptionA(QString::fromUtf16(T.TitleA));
        C->GetTitle()->SetCaptionE(QLatin1String(T.TitleE));
    }
    // The customer's column takes the width left; the form's minimum width holds every column.
    Columns->Items(2)->SetAutoSize(true);
    Grid->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    Grid->SetReadOnly(true);
    Grid->SetOptions((Grid->GetOptions() | dgRowSelect | dgAlwaysShowSelection) & ~dgEditing);
    Grid->SetRowBiColor(true);
    Grid->OnKeyDown = [this](QObject*, int& Key, Qt::KeyboardModifiers Shift) {
        if ((Key == Qt::Key_Return || Key == Qt::Key_Enter) && !(Shift & ~Qt::KeypadModifier)) {
            Key = 0;
            OpenCurrent();
        }
    };
    // A double click on a row opens it (the press before it made the row current).
    Grid->viewport()->installEventFilter(this);
    m_ui->ftrInvoices->SetSeparator(true);
    m_source->OnDataChange = [this](TDataSource*, TField* Field) {
        if (!Field && m_invoices->Active())
            m_ui->lblCount->SetCaption(Tr(u"عدد الفواتير: %1", "Invoices: %1").arg(m_invoices->RecordCount()));
    };
}

bool InvoiceListForm::eventFilter(QObject* Watched, QEvent* Event)
{
    if (Watched == m_ui->grdInvoices->viewport() && Event->type() == QEvent::MouseButtonDblClick) {
        const auto* Mouse = static_cast<QMouseEvent*>(Event);
        if (Mouse->button() == Qt::LeftButton && m_ui->grdInvoices->indexAt(Mouse->position().toPoint()).isValid()) {
            OpenCurrent();
            return true;
        }
    }
    return QWidget::eventFilter(Watched, Event);
}

// ---------------------------------------------------------------- the dates

int InvoiceListForm::TypedDate(TQxEditButton* Edit) const
{
    const int Day = Kesh::AsDate(Edit->text().trimmed());
    return IsDate(Day) ? Day : 0;
}

void InvoiceListForm::PickDate(TQxEditButton* Edit)
{
    int Day = TypedDate(Edit);
    if (SelectDate(Day, IsDate(Day) && IsHijri(Day)))
        Edit->setText(TQxDateField::DateText(Day));
}

void InvoiceListForm::SetDateRange(int From, int To)
{
    m_ui->edbFrom->setText(TQxDateField::DateText(From));
    m_ui->edbTo->setText(TQxDateField::DateText(To));
    Refresh();
}

void InvoiceListForm::Refresh()
{
    int From = TypedDate(m_ui->edbFrom);
    int To = TypedDate(m_ui->edbTo);
    if (!From || !To) {
        ShowError(Tr(u"أدخل تاريخين صحيحين، مثل 1-3-2025.", "Enter two valid dates, such as 1-3-2025."),
                  From ? m_ui->edbTo : m_ui->edbFrom);
        return;
    }
    // Either bound may be typed in either calendar; the list asks for both.
    const int GregorianFrom = IsHijri(From) ? ConvertDate(From) : From;
    const int GregorianTo = IsHijri(To) ? ConvertDate(To) : To;
    try {
        const int Current = CurrentInvoice();
        m_invoices->Close();
        TParameters* P = m_invoices->Parameters();
        P->ParamByName(QStringLiteral("From"))->Value = GregorianFrom;
        P->ParamByName(QStringLiteral("To"))->Value = GregorianTo;
        P->ParamByName(QStringLiteral("HijriFrom"))->Value = ConvertDate(GregorianFrom);
        P->ParamByName(QStringLiteral("HijriTo"))->Value = ConvertDate(GregorianTo);
        m_invoices->Open();
        if (Current)
            m_invoices->Locate(QStringLiteral("Inv_id"), Current);
    } catch (const Exception& E) {
        ShowError(E.Message);
    }
}

// ---------------------------------------------------------------- opening

int InvoiceListForm::CurrentInvoice() const
{
    if (!m_invoices->Active() || m_invoices->IsEmpty())
        return 0;
    return m_invoices->FieldByName(QStringLiteral("Inv_id"))->AsInteger();
}

void InvoiceListForm::OpenCurrent()
{
    if (const int Id = CurrentInvoice())
        Open(Id);
}

void InvoiceListForm::Open(int InvId)
{
    if (OnOpenInvoice) {
        OnOpenInvoice(InvId);
        return;
    }
    auto* Form = new InvoiceForm(m_context);
    Form->setAttribute(Qt::WA_DeleteOnClose);
    // What was changed there shows here once it is closed.
    connect(Form, &QObject::destroyed, this, &InvoiceListForm::Refresh);
    Form->show();
    if (InvId)
        Form->OpenInvoice(InvId);
}

// ---------------------------------------------------------------- language

bool InvoiceListForm::Rtl() const
{
    return (m_manager ? m_manager->GetLanguage() : Application()->BiDiMode()) == bdRightToLeft;
}

QString InvoiceListForm::Tr(const char16_t* Arabic, const char* English) const
{
    return Rtl() ? QString::fromUtf16(Arabic) : QString::fromUtf8(English);
}

void InvoiceListForm::changeEvent(QEvent* Event)
{
    QWidget::changeEvent(Event);
    if (Event->type() == QEvent::LayoutDirectionChange)
        Retranslate();
}

void InvoiceListForm::Retranslate()
{
    if (!m_invoices)
        return;
    m_ui->edbFrom->setToolTip(Tr(u"يوم-شهر-سنة، ميلادي أو هجري؛ الزر يفتح التقويم",
                                 "day-month-year, Gregorian or Hijri; the button opens the calendar"));
    m_ui->edbTo->setToolTip(m_ui->edbFrom->toolTip());
    if (m_invoices->Active())
        m_ui->lblCount->SetCaption(Tr(u"عدد الفواتير: %1", "Invoices: %1").arg(m_invoices->RecordCount()));
    m_ui->grdInvoices->viewport()->update();
}
