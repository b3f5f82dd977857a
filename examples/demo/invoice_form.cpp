#include "invoice_form.h"

#include "sample_db.h"
#include "ui_invoice_form.h"

#include <Kesh.h>
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>
#include <Kesh_dbControls.h>
#include <Kesh_dbGrid.h>

#include <QCloseEvent>
#include <QStyle>

using namespace Kesh;

namespace {

const QString HeaderSql = QStringLiteral(
    "SELECT Inv_id, Inv_date, Cust_id, Payment, Posted, Notes, Total FROM Invoices WHERE Inv_id = :Inv_id");
const QString LinesSql = QStringLiteral(
    "SELECT Line_id, Item_id, Qty, Price, Line_total FROM InvoiceLines WHERE Inv_id = :Inv_id ORDER BY Line_id");
const QChar ItemSeparator(0x2014);  // "P001 — Pencil"

template <class F>
F* AddField(TDataSet* DataSet, const char* Name)
{
    auto* Field = new F(DataSet);
    Field->SetFieldName(QLatin1String(Name));
    return Field;
}

// Money is kept to the cent; the line total is rounded the same way everywhere.
double RoundMoney(double Value)
{
    return double(RoundNumber(Value, 2, RtNone));
}

} // namespace

InvoiceForm::InvoiceForm(Demo::TDemoContext& Context, QWidget* Parent)
    : QWidget(Parent), m_context(Context), m_ui(std::make_unique<Ui::InvoiceForm>())
{
    // The data sources exist before the form's controls, which name them in the .ui file.
    CreateDataSets();
    m_ui->setupUi(this);
    BuildCustomerBrowser();
    // Binds the controls to dsInvoice/dsLines, the grid to its footer, and creates the form
    // manager from the form's QxForm_ properties.
    Kesh::EndLoading(this);
    m_manager = findChild<TQxForm*>();
    LoadItems();
    BuildLinesGrid();

    m_ui->bbnSave->setIcon(style()->standardIcon(QStyle::SP_DialogSaveButton));
    m_ui->bbnNew->setIcon(style()->standardIcon(QStyle::SP_FileIcon));
    m_ui->bbnDelete->setIcon(style()->standardIcon(QStyle::SP_TrashIcon));
    m_ui->bbnClose->setIcon(style()->standardIcon(QStyle::SP_DialogCloseButton));
    connect(m_ui->bbnNew, &QAbstractButton::clicked, this, [this] { NewInvoice(); });
    connect(m_ui->bbnSave, &QAbstractButton::clicked, this, [this] { Save(); });
    connect(m_ui->bbnPost, &QAbstractButton::clicked, this, [this] { PostInvoice(); });
    connect(m_ui->bbnDelete, &QAbstractButton::clicked, this, [this] { DeleteInvoice(); });
    connect(m_ui->bbnClose, &QAbstractButton::clicked, this, &QWidget::close);
    m_ui->dbbCustomer->_OnButtonClick = [this](QObject*) { PickCustomer(); };
    m_ui->dbbDate->_OnButtonClick = [this](QObject*) { PickDate(); };
    connect(m_ui->chkHijri, &QAbstractButton::toggled, this, &InvoiceForm::SwitchCalendar);
    if (m_manager)
        m_manager->OnLangChange = [this](QObject*) { Retranslate(); };

    NewInvoice();
}

InvoiceForm::~InvoiceForm()
{
    // The datasets close with the form's children: nothing may answer them any more.
    m_headerSource->OnDataChange = nullptr;
    m_headerSource->OnStateChange = nullptr;
    disconnect(m_totals, nullptr, this, nullptr);
    for (TDataSet* Ds : {static_cast<TDataSet*>(m_header), static_cast<TDataSet*>(m_lines)}) {
        Ds->AfterPost = Ds->AfterDelete = Ds->AfterCancel = nullptr;
        Ds->BeforeInsert = Ds->BeforeEdit = Ds->BeforeDelete = Ds->BeforePost = nullptr;
    }
}

// The header is one row of Invoices read through a dataset that carries the posting lock;
// the lines are kept in memory until the invoice is saved, so that header and lines are
// written together in one transaction.
void InvoiceForm::CreateDataSets()
{
    m_header = new TQxAdoDataSet(this);
    m_header->setObjectName(QStringLiteral("qryInvoice"));
    AddField<TIntegerField>(m_header, "Inv_id");
    AddField<TQxDateField>(m_header, "Inv_date");
    AddField<TIntegerField>(m_header, "Cust_id");
    AddField<TStringField>(m_header, "Payment")->SetSize(1);
    AddField<TBooleanField>(m_header, "Posted");
    AddField<TStringField>(m_header, "Notes")->SetSize(200);
    AddField<TFloatField>(m_header, "Total")->SetDisplayFormat(QStringLiteral("#,##0.00"));
    m_header->SetConnection(m_context.Conn);
    m_header->SetCommandText(HeaderSql);
    m_header->SetLockType(ltOptimistic);
    m_header->SetLockedField(QStringLiteral("Posted"));
    m_header->SetLockedMsgID(MsgPosted);
    m_header->SetConfirmDel(true);
    m_header->SetConfirmMsgID(MsgDeleteInvoice);
    m_header->OnNewRecord = [this](TDataSet* Ds) {
        Ds->FieldByName(QStringLiteral("Inv_id"))
            ->SetAsInteger(Demo::NextId(m_context.Conn, QStringLiteral("Invoices"), QStringLiteral("Inv_id")));
        Ds->FieldByName(QStringLiteral("Inv_date"))->SetAsInteger(DateToInt(Date()));
        Ds->FieldByName(QStringLiteral("Payment"))->SetAsString(QStringLiteral("C"));
        Ds->FieldByName(QStringLiteral("Posted"))->SetAsBoolean(false);
        Ds->FieldByName(QStringLiteral("Total"))->SetAsFloat(0);
    };
    m_headerSource = new TDataSource(this);
    m_headerSource->setObjectName(QStringLiteral("dsInvoice"));
    m_headerSource->SetDataSet(m_header);
    m_headerSource->OnDataChange = [this](TDataSource*, TField* Field) {
        if (!Field || Field->FieldName() == QLatin1String("Cust_id"))
            ShowCustomerName();
        if (!Field || Field->FieldName() == QLatin1String("Inv_date"))
            ShowOtherDate();
        if (!Field || Field->FieldName() == QLatin1String("Posted"))
            ShowHeaderState();
    };
    m_headerSource->OnStateChange = [this](TDataSource*) { ShowHeaderState(); };

    m_lines = new TClientDataSet(this);
    m_lines->setObjectName(QStringLiteral("cdsLines"));
    m_lines->FieldDefs().Add(QStringLiteral("Line_id"), ftInteger);
    m_lines->FieldDefs().Add(QStringLiteral("Item_id"), ftInteger);
    m_lines->FieldDefs().Add(QStringLiteral("Qty"), ftFloat);
    m_lines->FieldDefs().Add(QStringLiteral("Price"), ftFloat);
    m_lines->FieldDefs().Add(QStringLiteral("Line_total"), ftFloat);
    m_lines->CreateDataSet();
    m_lines->FieldByName(QStringLiteral("Qty"))->SetDisplayFormat(QStringLiteral("#,##0.###"));
    for (const char* Name : {"Price", "Line_total"})
        m_lines->FieldByName(QLatin1String(Name))->SetDisplayFormat(QStringLiteral("#,##0.00"));
    m_lines->FieldByName(QStringLiteral("Line_id"))->SetVisible(false);

    TField* Item = m_lines->FieldByName(QStringLiteral("Item_id"));
    Item->OnGetText = [this](TField* Sender, QString& Text, bool) {
        Text = Sender->IsNull() ? QString() : ItemText(Sender->AsInteger());
    };
    Item->OnSetText = [this](TField* Sender, const QString& Text) {
        if (Text.trimmed().isEmpty()) {
            Sender->Clear();
            return;
        }
        const int Index = FindItem(Text);
        if (Index < 0)
            throw EDatabaseError(Tr(u"لا يوجد صنف بهذا الرمز أو الاسم: %1", "No item has this code or name: %1")
                                     .arg(Text.trimmed()));
        Sender->SetAsInteger(m_items[Index].Id);
    };
    for (const char* Name : {"Item_id", "Qty", "Price"})
        m_lines->FieldByName(QLatin1String(Name))->OnChange = [this](TField* Field) { LineChanged(Field); };
    m_lines->FieldByName(QStringLiteral("Line_total"))->OnChange = [this](TField*) { ShowTotal(); };

    // A posted invoice keeps its lines too; the grid asks before a delete (dgConfirmDelete).
    const auto Guard = [this](TDataSet*) { CheckLinesEditable(); };
    m_lines->BeforeInsert = Guard;
    m_lines->BeforeEdit = Guard;
    m_lines->BeforeDelete = Guard;
    m_lines->OnNewRecord = [](TDataSet* Ds) { Ds->FieldByName(QStringLiteral("Qty"))->SetAsFloat(1); };
    m_lines->BeforePost = [this](TDataSet* Ds) {
        if (m_loading)
            return;
        if (Ds->FieldByName(QStringLiteral("Item_id"))->IsNull())
            RaiseError(Tr(u"اختر الصنف من القائمة.", "Choose the item from the list."));
        if (Ds->FieldByName(QStringLiteral("Qty"))->AsFloat() <= 0)
            RaiseError(Tr(u"أدخل كمية أكبر من صفر.", "Enter a quantity above zero."));
    };
    const auto Changed = [this](TDataSet*) {
        if (!m_loading) {
            m_linesDirty = true;
            ShowTotal();
        }
    };
    m_lines->AfterPost = Changed;
    m_lines->AfterDelete = Changed;
    m_lines->AfterCancel = [this](TDataSet*) { ShowTotal(); };
    m_linesSource = new TDataSource(this);
    m_linesSource->setObjectName(QStringLiteral("dsLines"));
    m_linesSource->SetDataSet(m_lines);

    m_totals = new TDataSetTotals(this);
    m_totals->SetDataSet(m_lines);
    m_totals->SetFieldNames({QStringLiteral("Line_total")});
    connect(m_totals, &TDataSetTotals::Changed, this, &InvoiceForm::ShowTotal);
}

void InvoiceForm::BuildLinesGrid()
{
    struct TColumnText
    {
        const char* Field;
        const char16_t* TitleA;
        const char* TitleE;
        int Width;
        bool Number;
    };
    const TColumnText Texts[] = {
        {"Item_id", u"الصنف", "Item", 330, false},
        {"Qty", u"الكمية", "Quantity", 90, true},
        {"Price", u"السعر", "Price", 110, true},
        {"Line_total", u"الإجمالي", "Line total", 130, true},
    };
    TQxdbGrid* Grid = m_ui->grdLines;
    TQxDBGridColumns* Columns = Grid->GetColumns();
    Columns->Clear();
    for (const TColumnText& T : Texts) {
        TQxColumn* C = Columns->Add();
        C->SetFieldName(QLatin1String(T.Field));
        C->SetWidth(T.Width);
        TQxColumnField* B = C->GetBiDiField();
        B->SetAlign_a(T.Number ? Qt::AlignRight : Qt::AlignLeft);
        B->SetAlign_e(T.Number ? Qt::AlignRight : Qt::AlignLeft);
        B->SetKeyboard(T.Number ? kxEnglish : kxBiDiMode);
        C->GetTitle()->SetCaptionA(QString::fromUtf16(T.TitleA));
        C->GetTitle()->SetCaptionE(QLatin1String(T.TitleE));
    }
    // The item is chosen from a drop list of codes and names; the line total is computed.
    Columns->Items(0)->SetButtonStyle(cbsAuto);
    Columns->Items(0)->SetDropDownRows(14);
    Columns->Items(3)->SetReadOnly(true);
    Columns->Items(0)->SetAutoSize(true);
    Grid->SetRowBiColor(true);
    Grid->SetViewRecordNo(true);
    Grid->SetViewRecNoWidth(36);
    // On a posted invoice Ctrl+Delete is refused before the grid asks its question.
    Grid->OnKeyDown = [this](QObject*, int& Key, Qt::KeyboardModifiers Shift) {
        if (Key == Qt::Key_Delete && (Shift & Qt::ControlModifier) && IsPosted()) {
            Key = 0;
            ShowError(TxDataSetRules::Message(m_header, MsgPosted));
        }
    };
    Columns->Items(1)->SetTotalValue(true);
    Columns->Items(3)->SetTotalValue(true);
    m_ui->ftrLines->SetSeparator(true);
    Retranslate();
}

void InvoiceForm::BuildCustomerBrowser()
{
    m_customers = new TQxAdoBrowser(this);
    m_customers->setObjectName(QStringLiteral("brCustomers"));
    m_customers->SetConnection(m_context.Conn);
    m_customers->SetSourceTables(QStringLiteral("Customers"));
    m_customers->SetDatabaseType(m_context.Conn->Database().driverName() == QLatin1String("QPSQL") ? dtPostgreSQL
                                                                                                  : dtSQLite);
    m_customers->SetCaption_a(QStringLiteral("العملاء"));
    m_customers->SetCaption_e(QStringLiteral("Customers"));
    m_customers->SetCompressedView(true);
    const struct
    {
        const char* A;
        const char* E;
        const char16_t* CapA;
        const char* CapE;
        int Width;
    } Columns[] = {{"Name_a", "Name_e", u"الاسم", "Name", 30},
                   {"Cust_id", "Cust_id", u"الرقم", "No.", 8},
                   {"Phone", "Phone", u"الهاتف", "Phone", 12}};
    for (const auto& C : Columns) {
        TQxAdoBrowserItem* Item = m_customers->BrowserItems()->Add();
        Item->SetFieldName_a(QLatin1String(C.A));
        Item->SetFieldName_e(QLatin1String(C.E));
        Item->SetCaption_a(QString::fromUtf16(C.CapA));
        Item->SetCaption_e(QLatin1String(C.CapE));
        Item->SetWidth(C.Width);
    }
    m_customers->BrowserItems()->Items(1)->SetDataType(ftInteger);
}

void InvoiceForm::LoadItems()
{
    m_items.clear();
    m_itemIndex.clear();
    TADOQuery Query;
    Query.SetConnection(m_context.Conn);
    Query.SetSQL({QStringLiteral("SELECT Item_id, Code, Name_a, Name_e, Price, Active FROM Items ORDER BY Code")});
    Query.Open();
    for (; !Query.Eof(); Query.Next()) {
        TItem Item;
        Item.Id = Query.FieldByName(QStringLiteral("Item_id"))->AsInteger();
        Item.Code = Query.FieldByName(QStringLiteral("Code"))->AsString().trimmed();
        Item.NameA = Query.FieldByName(QStringLiteral("Name_a"))->AsString();
        Item.NameE = Query.FieldByName(QStringLiteral("Name_e"))->AsString();
        Item.Price = Query.FieldByName(QStringLiteral("Price"))->AsFloat();
        TField* Active = Query.FieldByName(QStringLiteral("Active"));
        Item.Active = Active->IsNull() || Active->AsBoolean();
        m_itemIndex.insert(Item.Id, int(m_items.size()));
        m_items.append(Item);
    }
}

// ---------------------------------------------------------------- reading and writing

void InvoiceForm::OpenHeader(int InvId)
{
    m_header->Close();
    m_header->Parameters()->ParamByName(QStringLiteral("Inv_id"))->Value = InvId;
    m_header->Open();
}

void InvoiceForm::LoadLines(int InvId)
{
    TADOQuery Query;
    Query.SetConnection(m_context.Conn);
    Query.SetSQL({LinesSql});
    Query.Parameters()->ParamByName(QStringLiteral("Inv_id"))->Value = InvId;
    Query.Open();
    m_loading = true;
    m_lines->DisableControls();
    try {
        if (m_lines->State() != dsBrowse)
            m_lines->Cancel();
        m_lines->EmptyDataSet();
        for (; !Query.Eof(); Query.Next()) {
            m_lines->Append();
            for (const char* Name : {"Line_id", "Item_id", "Qty", "Price", "Line_total"})
                m_lines->FieldByName(QLatin1String(Name))->SetValue(Query.FieldByName(QLatin1String(Name))->Value());
            m_lines->Post();
        }
        m_lines->MergeChangeLog();
        m_lines->First();
    } catch (...) {
        m_loading = false;
        m_lines->EnableControls();
        throw;
    }
    m_loading = false;
    m_lines->EnableControls();
    m_linesDirty = false;
    m_totals->Recalculate();
    ShowTotal();
}

// The lines are written again as a whole, numbered after the highest line number.
void InvoiceForm::WriteLines(int InvId)
{
    TADOQuery Delete;
    Delete.SetConnection(m_context.Conn);
    Delete.SetSQL({QStringLiteral("DELETE FROM InvoiceLines WHERE Inv_id = :Inv_id")});
    Delete.Parameters()->ParamByName(QStringLiteral("Inv_id"))->Value = InvId;
    Delete.ExecSQL();
    TADOQuery Insert;
    Insert.SetConnection(m_context.Conn);
    Insert.SetSQL({QStringLiteral("INSERT INTO InvoiceLines (Line_id, Inv_id, Item_id, Qty, Price, Line_total) "
                                  "VALUES (:Line_id, :Inv_id, :Item_id, :Qty, :Price, :Line_total)")});
    int LineId = Demo::NextId(m_context.Conn, QStringLiteral("InvoiceLines"), QStringLiteral("Line_id"));
    const QByteArray Here = m_lines->Bookmark();
    m_lines->DisableControls();
    try {
        for (m_lines->First(); !m_lines->Eof(); m_lines->Next()) {
            TParameters* P = Insert.Parameters();
            P->ParamByName(QStringLiteral("Line_id"))->Value = LineId++;
            P->ParamByName(QStringLiteral("Inv_id"))->Value = InvId;
            P->ParamByName(QStringLiteral("Item_id"))->Value = m_lines->FieldByName(QStringLiteral("Item_id"))->AsInteger();
            P->ParamByName(QStringLiteral("Qty"))->Value = m_lines->FieldByName(QStringLiteral("Qty"))->AsFloat();
            P->ParamByName(QStringLiteral("Price"))->Value = m_lines->FieldByName(QStringLiteral("Price"))->AsFloat();
            P->ParamByName(QStringLiteral("Line_total"))->Value =
                m_lines->FieldByName(QStringLiteral("Line_total"))->AsFloat();
            Insert.ExecSQL();
        }
    } catch (...) {
        m_lines->EnableControls();
        throw;
    }
    if (!Here.isEmpty() && m_lines->BookmarkValid(Here))
        m_lines->GotoBookmark(Here);
    m_lines->EnableControls();
}

bool InvoiceForm::Validate()
{
    const TField* Customer = m_header->FieldByName(QStringLiteral("Cust_id"));
    const TField* Day = m_header->FieldByName(QStringLiteral("Inv_date"));
    const QString Payment = m_header->FieldByName(QStringLiteral("Payment"))->AsString();
    struct TRule
    {
        bool Ok;
        QWidget* Control;
        QString Message;
    };
    const bool KnownCustomer =
        !Customer->IsNull()
        && m_context.Conn->DCount(QStringLiteral("Customers"),
                                  QStringLiteral("Cust_id = %1").arg(Customer->AsInteger())) > 0;
    const TRule Rules[] = {
        {KnownCustomer, m_ui->dbbCustomer, Tr(u"اختر العميل (F4).", "Choose the customer (F4).")},
        {!Day->IsNull() && IsDate(Day->AsInteger()), m_ui->dbbDate, Tr(u"أدخل تاريخاً صحيحاً (F3).", "Enter a valid date (F3).")},
        {Payment == QLatin1String("C") || Payment == QLatin1String("R") || Payment == QLatin1String("K"),
         m_ui->rgpPayment, Tr(u"اختر طريقة الدفع.", "Choose how the customer pays.")},
        {!m_lines->IsEmpty(), m_ui->grdLines, Tr(u"أضف سطراً واحداً على الأقل.", "Add at least one line.")},
    };
    for (const TRule& R : Rules)
        if (!R.Ok) {
            ShowError(R.Message, R.Control);
            return false;
        }
    return true;
}

bool InvoiceForm::Save()
{
    if (IsPosted())
        return true;
    TADOConnection* Conn = m_context.Conn;
    try {
        // What the controls and the grid still hold is written into the rows first.
        if (m_header->State() == dsEdit || m_header->State() == dsInsert)
            m_header->UpdateRecord();
        if (m_lines->State() == dsInsert && !m_lines->Modified())
            m_lines->Cancel();
        else if (m_lines->State() != dsBrowse)
            m_lines->Post();
        if (!Validate())
            return false;
        if (m_header->State() == dsBrowse)
            m_header->Edit();
        const bool Fresh = m_header->State() == dsInsert;
        Conn->BeginTrans();
        try {
            TField* Id = m_header->FieldByName(QStringLiteral("Inv_id"));
            // Another window may have taken the number shown since the invoice was started.
            if (Fresh)
                Id->SetAsInteger(std::max(Id->AsInteger(),
                                          Demo::NextId(m_context.Conn, QStringLiteral("Invoices"), QStringLiteral("Inv_id"))));
            m_header->FieldByName(QStringLiteral("Total"))->SetAsFloat(RoundMoney(Total()));
            WriteLines(Id->AsInteger());
            m_header->Post();
            Conn->CommitTrans();
        } catch (...) {
            Conn->RollbackTrans();
            throw;
        }
        LoadLines(InvoiceId());
        ShowHeaderState();
        Q_EMIT Changed(InvoiceId());
        return true;
    } catch (const EAbort&) {
        return false;
    } catch (const Exception& E) {
        ShowError(E.Message);
        return false;
    }
}

bool InvoiceForm::PostInvoice()
{
    if (IsPosted()) {
        ShowMsg(TxDataSetRules::Message(m_header, MsgPosted));
        return false;
    }
    if (HasChanges() || m_header->State() == dsInsert) {
        if (!Save())
            return false;
    }
    if (!SelectYes(Tr(u"ترحيل الفاتورة رقم %1؟ لا يمكن تعديل الفاتورة المرحّلة ولا حذفها.",
                      "Post invoice no. %1? A posted invoice can no longer be changed or deleted.")
                       .arg(InvoiceId()),
                   false))
        return false;
    try {
        m_header->Edit();
        m_header->FieldByName(QStringLiteral("Posted"))->SetAsBoolean(true);
        m_header->Post();
    } catch (const EAbort&) {
        return false;
    } catch (const Exception& E) {
        if (m_header->State() != dsBrowse)
            m_header->Cancel();
        ShowError(E.Message);
        return false;
    }
    ShowHeaderState();
    Q_EMIT Changed(InvoiceId());
    return true;
}

bool InvoiceForm::DeleteInvoice()
{
    if (m_header->State() == dsInsert) {
        // Never saved: dropping it is starting afresh.
        if (HasChanges() && !Sure(Tr(u"ستُهمل الفاتورة الجديدة.", "The new invoice will be dropped."), false))
            return false;
        DiscardChanges();
        return NewInvoice();
    }
    const int Id = InvoiceId();
    TADOConnection* Conn = m_context.Conn;
    try {
        if (m_header->State() == dsEdit)
            m_header->Cancel();
        Conn->BeginTrans();
        try {
            m_header->Delete();  // the posting lock and the question
            TADOQuery Lines;
            Lines.SetConnection(Conn);
            Lines.SetSQL({QStringLiteral("DELETE FROM InvoiceLines WHERE Inv_id = :Inv_id")});
            Lines.Parameters()->ParamByName(QStringLiteral("Inv_id"))->Value = Id;
            Lines.ExecSQL();
            Conn->CommitTrans();
        } catch (...) {
            Conn->RollbackTrans();
            throw;
        }
    } catch (const EAbort&) {
        return false;
    } catch (const Exception& E) {
        ShowError(E.Message);
        OpenInvoice(Id);
        return false;
    }
    m_linesDirty = false;
    Q_EMIT Changed(Id);
    return NewInvoice();
}

// ---------------------------------------------------------------- moving between invoices

bool InvoiceForm::NewInvoice()
{
    if (!AskToLeave())
        return false;
    try {
        DiscardChanges();
        OpenHeader(0);
        m_header->Append();
        LoadLines(0);
    } catch (const Exception& E) {
        ShowError(E.Message);
        return false;
    }
    const QSignalBlocker Quiet(m_ui->chkHijri);
    m_ui->chkHijri->SetChecked(false);
    ShowHeaderState();
    m_ui->dbbCustomer->setFocus();
    return true;
}

bool InvoiceForm::OpenInvoice(int InvId)
{
    if (!AskToLeave())
        return false;
    try {
        DiscardChanges();
        OpenHeader(InvId);
        if (m_header->IsEmpty()) {
            ShowError(Tr(u"لا توجد فاتورة برقم %1.", "There is no invoice no. %1.").arg(InvId));
            NewInvoice();
            return false;
        }
        LoadLines(InvId);
    } catch (const Exception& E) {
        ShowError(E.Message);
        return false;
    }
    const QSignalBlocker Quiet(m_ui->chkHijri);
    m_ui->chkHijri->SetChecked(IsHijri(m_header->FieldByName(QStringLiteral("Inv_date"))->AsInteger()));
    ShowHeaderState();
    m_ui->grdLines->setFocus();
    return true;
}

bool InvoiceForm::AskToLeave()
{
    if (!HasChanges())
        return true;
    if (SelectYes(Tr(u"في الفاتورة تعديلات لم تُحفظ. هل تريد حفظها؟", "The invoice has unsaved changes. Save them?"), true))
        return Save();
    if (Sure(Tr(u"ستضيع التعديلات.", "The changes will be lost."), false)) {
        DiscardChanges();
        return true;
    }
    return false;
}

void InvoiceForm::DiscardChanges()
{
    if (m_lines->State() != dsBrowse)
        m_lines->Cancel();
    if (m_header->Active() && m_header->State() != dsBrowse)
        m_header->Cancel();
    if (m_linesDirty && m_header->Active() && !m_header->IsEmpty())
        LoadLines(InvoiceId());
    m_linesDirty = false;
}

void InvoiceForm::closeEvent(QCloseEvent* Event)
{
    if (!AskToLeave()) {
        Event->ignore();
        return;
    }
    DiscardChanges();
    QWidget::closeEvent(Event);
}

// ---------------------------------------------------------------- header

void InvoiceForm::PickCustomer()
{
    if (!m_customers->ShowBrowser()) {
        m_ui->dbbCustomer->setFocus();
        return;
    }
    try {
        m_headerSource->Edit();
        m_header->FieldByName(QStringLiteral("Cust_id"))->SetAsInteger(m_customers->BrowserItems()->Items(1)->Value().toInt());
    } catch (const EAbort&) {
    } catch (const Exception& E) {
        ShowError(E.Message);
    }
    m_ui->dbbCustomer->setFocus();
}

// The calendar picker opens in the calendar the user chose; the date is stored in it.
void InvoiceForm::PickDate()
{
    TField* Field = m_header->FieldByName(QStringLiteral("Inv_date"));
    const bool Hijri = m_ui->chkHijri->GetChecked();
    int Day = Field->IsNull() ? 0 : Field->AsInteger();
    if (IsDate(Day) && IsHijri(Day) != Hijri)
        Day = ConvertDate(Day);
    if (!SelectDate(Day, Hijri))
        return;
    try {
        m_headerSource->Edit();
        Field->SetAsInteger(Day);
    } catch (const EAbort&) {
    } catch (const Exception& E) {
        ShowError(E.Message);
    }
}

// Choosing the other calendar stores the invoice's date converted into it.
void InvoiceForm::SwitchCalendar(bool Hijri)
{
    TField* Field = m_header->FieldByName(QStringLiteral("Inv_date"));
    const int Day = Field->IsNull() ? 0 : Field->AsInteger();
    if (!IsDate(Day) || IsHijri(Day) == Hijri)
        return;
    try {
        m_headerSource->Edit();
        Field->SetAsInteger(ConvertDate(Day));
        return;
    } catch (const EAbort&) {
    } catch (const Exception& E) {
        ShowError(E.Message);
    }
    const QSignalBlocker Quiet(m_ui->chkHijri);
    m_ui->chkHijri->SetChecked(!Hijri);
}

void InvoiceForm::ShowCustomerName()
{
    const TField* Customer = m_header->Active() ? m_header->FieldByName(QStringLiteral("Cust_id")) : nullptr;
    QString Name;
    if (Customer && !Customer->IsNull()) {
        Name = m_context.Conn->NameLookup(QStringLiteral("Customers"),
                                          QStringLiteral("Cust_id = %1").arg(Customer->AsInteger()),
                                          Rtl() ? bdRightToLeft : bdLeftToRight);
        if (Name.isEmpty())
            Name = Tr(u"(لا يوجد عميل بهذا الرقم)", "(no customer has this number)");
    }
    m_ui->lblCustomerName->SetCaption(Name);
}

void InvoiceForm::ShowOtherDate()
{
    const TField* Field = m_header->Active() ? m_header->FieldByName(QStringLiteral("Inv_date")) : nullptr;
    const int Day = Field && !Field->IsNull() ? Field->AsInteger() : 0;
    if (!IsDate(Day)) {
        m_ui->lblOtherDate->SetCaption(QString());
        return;
    }
    const int Other = ConvertDate(Day);
    const QString Era = IsHijri(Other) ? Tr(u"هـ", "AH") : Tr(u"م", "AD");
    m_ui->lblOtherDate->SetCaption(Tr(u"الموافق %1 %2", "= %1 %2").arg(TQxDateField::DateText(Other), Era));
}

void InvoiceForm::ShowHeaderState()
{
    const bool Posted = IsPosted();
    m_ui->lblPosted->SetCaption(Posted ? Tr(u"فاتورة مرحّلة", "POSTED") : QString());
    const bool Saved = m_header->Active() && m_header->State() != dsInsert && !m_header->IsEmpty();
    m_ui->bbnPost->setEnabled(!Posted);
    m_ui->bbnDelete->setEnabled(m_header->Active());
    m_ui->bbnSave->setEnabled(!Posted);
    m_ui->bbnDelete->setToolTip(Saved ? QString() : Tr(u"إهمال الفاتورة الجديدة", "Drop the new invoice"));
}

// ---------------------------------------------------------------- lines

void InvoiceForm::CheckLinesEditable()
{
    if (!m_loading && IsPosted()) {
        ShowError(TxDataSetRules::Message(m_header, MsgPosted));
        Abort();
    }
}

// Choosing an item brings its price; quantity and price give the line total.
void InvoiceForm::LineChanged(TField* Field)
{
    if (m_loading)
        return;
    if (Field->FieldName() == QLatin1String("Item_id") && !Field->IsNull()) {
        const auto Found = m_itemIndex.constFind(Field->AsInteger());
        if (Found != m_itemIndex.constEnd())
            m_lines->FieldByName(QStringLiteral("Price"))->SetAsFloat(m_items[*Found].Price);
        return;  // the price's change computes the total
    }
    const double Qty = m_lines->FieldByName(QStringLiteral("Qty"))->AsFloat();
    const double Price = m_lines->FieldByName(QStringLiteral("Price"))->AsFloat();
    m_lines->FieldByName(QStringLiteral("Line_total"))->SetAsFloat(RoundMoney(Qty * Price));
}

QString InvoiceForm::ItemText(int ItemId) const
{
    const auto Found = m_itemIndex.constFind(ItemId);
    if (Found == m_itemIndex.constEnd())
        return QString::number(ItemId);
    const TItem& Item = m_items[*Found];
    return Item.Code + QLatin1Char(' ') + ItemSeparator + QLatin1Char(' ') + (Rtl() ? Item.NameA : Item.NameE);
}

// An item by the text of the drop list, its code, its full name in either language, or the
// start of a code or name that only one item has.
int InvoiceForm::FindItem(const QString& Text) const
{
    QString Key = Text.trimmed();
    const int Separator = Key.indexOf(ItemSeparator);
    if (Separator > 0)
        Key = Key.left(Separator).trimmed();
    for (int I = 0; I < m_items.size(); ++I) {
        const TItem& Item = m_items[I];
        if (Item.Code.compare(Key, Qt::CaseInsensitive) == 0 || Item.NameA.compare(Key, Qt::CaseInsensitive) == 0
            || Item.NameE.compare(Key, Qt::CaseInsensitive) == 0)
            return I;
    }
    int Found = -1;
    for (int I = 0; I < m_items.size(); ++I) {
        const TItem& Item = m_items[I];
        if (Item.Code.startsWith(Key, Qt::CaseInsensitive) || Item.NameA.startsWith(Key, Qt::CaseInsensitive)
            || Item.NameE.startsWith(Key, Qt::CaseInsensitive)) {
            if (Found >= 0)
                return -1;
            Found = I;
        }
    }
    return Found;
}

// ---------------------------------------------------------------- totals

double InvoiceForm::Total() const
{
    double Sum = double(m_totals->Value(0));
    const TField* LineTotal = m_lines->FieldByName(QStringLiteral("Line_total"));
    if (m_lines->State() == dsEdit)
        Sum += LineTotal->AsFloat() - LineTotal->OldValue().toDouble();
    else if (m_lines->State() == dsInsert)
        Sum += LineTotal->AsFloat();
    return RoundMoney(Sum);
}

// The currency's four Arabic forms (one, two, three to ten, eleven and up) are kept in the
// setting separated by "|"; a single name serves for all four. The sub-unit comes last.
QStringList InvoiceForm::CurrencyNames(bool Arabic) const
{
    auto* Conn = m_context.Conn;
    const QString Main = Conn->ReadSetting(Arabic ? Demo::SetCurrencyA : Demo::SetCurrencyE,
                                           Arabic ? QStringLiteral("ريال|ريالان|ريالات|ريالا") : QStringLiteral("Riyal"))
                             .toString();
    const QString Sub = Conn->ReadSetting(Arabic ? Demo::SetSubUnitA : Demo::SetSubUnitE,
                                          Arabic ? QStringLiteral("هللة") : QStringLiteral("Halala"))
                            .toString();
    QStringList Names = Main.split(QLatin1Char('|'));
    while (Names.size() < 4)
        Names << Names.constFirst();
    return Names.mid(0, 4) << Sub.split(QLatin1Char('|')).constFirst();
}

namespace {
// "Riyal" for one, "Riyals" for any other count.
QString EnglishName(const QString& Name, qint64 Count)
{
    return Count == 1 || Name.endsWith(QLatin1Char('s'), Qt::CaseInsensitive) ? Name : Name + QLatin1Char('s');
}
} // namespace

void InvoiceForm::ShowTotal()
{
    if (!m_ui || !m_ui->lblTotal)
        return;
    const double Value = Total();
    m_ui->lblTotal->SetCaption(FormatFloat(QStringLiteral("#,##0.00"), Value));
    const Currency Amount(Value);
    const int Cents = int(qRound64(Value * 100) % 100);
    const QStringList Arabic = CurrencyNames(true);
    const QStringList English = CurrencyNames(false);
    const qint64 Whole = qint64(Value);
    // The word routines name no number for nothing: "zero" is said here.
    QString WordsA = Whole ? NumberToArabicWords(Amount, Arabic.mid(0, 4)).trimmed()
                           : QStringLiteral("صفر ") + Arabic.first();
    QString WordsE = Trim(NumberToWordsE(Amount));
    WordsE = (WordsE.isEmpty() ? QStringLiteral("Zero") : WordsE) + QLatin1Char(' ') + EnglishName(English.first(), Whole);
    if (Cents) {
        WordsA += QStringLiteral(" و%1 %2").arg(Cents).arg(Arabic.at(4));
        WordsE += QStringLiteral(" and %1 %2").arg(Cents).arg(EnglishName(English.at(4), Cents));
    }
    m_ui->lblWordsA->SetCaption(WordsA + QStringLiteral(" فقط لا غير"));
    m_ui->lblWordsE->SetCaption(QStringLiteral("Only ") + WordsE);
}

// ---------------------------------------------------------------- state

int InvoiceForm::InvoiceId() const
{
    if (!m_header->Active() || (m_header->IsEmpty() && m_header->State() != dsInsert))
        return 0;
    return m_header->FieldByName(QStringLiteral("Inv_id"))->AsInteger();
}

bool InvoiceForm::IsPosted() const
{
    if (!m_header->Active() || (m_header->IsEmpty() && m_header->State() != dsInsert))
        return false;
    const TField* Posted = m_header->FieldByName(QStringLiteral("Posted"));
    return !Posted->IsNull() && Posted->AsBoolean();
}

bool InvoiceForm::HasChanges()
{
    // Text typed in a control counts once it is in its field.
    try {
        if (m_header->Active() && m_header->State() != dsBrowse)
            m_header->UpdateRecord();
        if (m_lines->State() != dsBrowse)
            m_lines->UpdateRecord();
    } catch (const Exception&) {
        return true;  // text that its field refuses is a change too
    }
    const bool HeaderChanged = m_header->Active() && m_header->State() != dsBrowse && m_header->Modified();
    const bool LineChanged = m_lines->State() != dsBrowse && m_lines->Modified();
    return HeaderChanged || LineChanged || m_linesDirty;
}

bool InvoiceForm::Rtl() const
{
    return (m_manager ? m_manager->GetLanguage() : Application()->BiDiMode()) == bdRightToLeft;
}

QString InvoiceForm::Tr(const char16_t* Arabic, const char* English) const
{
    return Rtl() ? QString::fromUtf16(Arabic) : QString::fromUtf8(English);
}

void InvoiceForm::changeEvent(QEvent* Event)
{
    QWidget::changeEvent(Event);
    if (Event->type() == QEvent::LayoutDirectionChange)
        Retranslate();
}

// The texts the form computes follow the language: item names, the customer's name, the
// other calendar's date, the words of the total.
void InvoiceForm::Retranslate()
{
    if (!m_lines || m_ui->grdLines->GetColumns()->Count() == 0)
        return;
    QStringList Pick;
    for (const TItem& Item : m_items)
        if (Item.Active)
            Pick << ItemText(Item.Id);
    m_ui->grdLines->GetColumns()->Items(0)->SetPickList(Pick);
    m_ui->grdLines->viewport()->update();
    ShowCustomerName();
    ShowOtherDate();
    ShowHeaderState();
    ShowTotal();
}
