#include "list_form.h"
#include "demo_context.h"
#include "screenshots.h"

#include <Kesh.h>
#include <KeshForm_AdoBrowser.h>
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>
#include <Kesh_dbControls.h>
#include <Kesh_dbGrid.h>

#include <QAbstractButton>
#include <QDir>
#include <QKeyEvent>
#include <QSqlDriver>
#include <QStyle>
#include <QTimer>
#include <cstdio>

using namespace Kesh;

namespace Demo {

namespace {

// The tool bar's buttons are named alike on every list form; their icons come from the style.
void SetToolBarIcons(QWidget* Form)
{
    const std::pair<const char*, QStyle::StandardPixmap> Icons[] = {
        {"btnFirst", QStyle::SP_MediaSkipBackward}, {"btnPrior", QStyle::SP_MediaSeekBackward},
        {"btnNext", QStyle::SP_MediaSeekForward},   {"btnLast", QStyle::SP_MediaSkipForward},
        {"btnAdd", QStyle::SP_FileDialogNewFolder}, {"btnDelete", QStyle::SP_TrashIcon},
        {"btnSave", QStyle::SP_DialogSaveButton},   {"btnCancel", QStyle::SP_DialogCancelButton},
        {"btnFind", QStyle::SP_FileDialogContentsView}};
    for (const auto& [Name, Icon] : Icons)
        if (auto* Button = Form->findChild<QAbstractButton*>(QLatin1String(Name)))
            Button->setIcon(Form->style()->standardIcon(Icon));
}

TxDatabaseType DatabaseTypeOf(TADOConnection* Conn)
{
    const QString Driver = Conn->Database().driverName();
    if (Driver == QLatin1String("QSQLITE"))
        return dtSQLite;
    if (Driver == QLatin1String("QPSQL"))
        return dtPostgreSQL;
    return dtUnknown;
}

} // namespace

TListForm::TListForm(TDemoContext& Context, QWidget* Parent)
    : QWidget(Parent, Qt::Window), m_context(Context), m_source(new TDataSource(this))
{
}

TListForm::~TListForm()
{
    // Closed while the grid stands, so that it writes its column widths.
    if (m_dataSet)
        m_dataSet->Close();
}

// The browser and the count ask the database itself, which only an SQL dataset on the
// application's connection reads (not one served by the application server).
bool TListForm::OnConnection() const
{
    const auto* Sql = qobject_cast<const TADODataSet*>(m_dataSet);
    return Sql && m_context.Conn && Sql->Connection() == m_context.Conn;
}

TQxForm* TListForm::FormManager() const { return findChild<TQxForm*>(QString(), Qt::FindDirectChildrenOnly); }

void TListForm::Open(TDataSet* DataSet, const TParts& Parts, std::initializer_list<TGridColumn> Columns,
                     std::initializer_list<TBrowserColumn> BrowserColumns, const QString& BrowserA, const QString& BrowserE)
{
    m_dataSet = DataSet;
    m_parts = Parts;
    m_grid = Parts.Grid;
    m_footer = Parts.Footer;
    m_firstEdit = Parts.FirstEdit;
    SetToolBarIcons(this);

    TQxDBGridColumns* GridColumns = m_grid->GetColumns();
    for (const TGridColumn& C : Columns) {
        TQxColumn* Column = GridColumns->Add();
        Column->SetFieldName(QLatin1String(C.FieldE));
        Column->SetWidth(C.Width);
        Column->SetAutoSize(C.Stretch);
        TQxColumnField* B = Column->GetBiDiField();
        B->SetFieldName_e(QLatin1String(C.FieldE));
        B->SetFieldName_a(QLatin1String(C.FieldA ? C.FieldA : C.FieldE));
        B->SetKeyboard(C.FieldA ? kxBiDiMode : kxSystem);
        // Numbers end at the trailing side in both languages, ticks stand in the middle; a
        // number shown as a name (a city by its key) reads as text.
        const TField* Field = DataSet->FindField(QLatin1String(C.FieldE));
        const bool Number = qobject_cast<const TNumericField*>(Field) && !Field->OnGetText;
        const Qt::Alignment Align = qobject_cast<const TBooleanField*>(Field) ? Qt::AlignHCenter
                                    : Number                                  ? Qt::AlignRight
                                                                              : Qt::AlignLeft;
        B->SetAlign_a(Align);
        B->SetAlign_e(Align);
        Column->GetTitle()->SetCaptionA(QString::fromUtf16(C.TitleA));
        Column->GetTitle()->SetCaptionE(QLatin1String(C.TitleE));
    }
    // Browsing only: the card edits, the grid shows and moves.
    // An insert started from the tool bar must outlive the grid's focus; Tab goes on to the card.
    m_grid->SetOptions((m_grid->GetOptions() & ~(dgEditing | dgCancelOnExit | dgTabs)) | dgRowSelect | dgAlwaysShowSelection);
    m_grid->SetReadOnly(true);

    // Binds the names the .ui gives (data source, footer) and starts the form manager.
    EndLoading(this);
    connect(DataSet, &TDataSet::RowWritten, this, [this](const TRecordValues& Old, const TRecordValues& New) {
        m_count += Old.isEmpty() ? 1 : New.isEmpty() ? -1 : 0;
        ShowCount();
    });
    connect(DataSet, &TDataSet::RowsReset, this, &TListForm::Recount);
    // The footer makes new labels when the data opens and when the language changes.
    connect(m_grid, &TQxCustomDBGrid::BiDiModeApplied, this, [this] { QTimer::singleShot(0, this, [this] { ShowCount(); }); });
    // A new record is typed in the card: its first box takes the focus.
    DataSet->AfterInsert = [this, Chained = DataSet->AfterInsert](TDataSet* Ds) {
        if (Chained)
            Chained(Ds);
        if (m_firstEdit && m_firstEdit->isVisible())
            m_firstEdit->setFocus(Qt::OtherFocusReason);
    };
    m_source->SetDataSet(DataSet);
    try {
        DataSet->Open();
        for (int I = 0; I < GridColumns->Count(); ++I)
            if (Columns.begin()[I].Total)
                GridColumns->Items(I)->SetTotalValue(true);
        m_footer->CalcColumnsTotal();
        if (Parts.FindButton)
            connect(Parts.FindButton, &QAbstractButton::clicked, this, [this] { Find(); });
        if (OnConnection())
            BuildBrowser(BrowserColumns, BrowserA, BrowserE);
        else if (Parts.FindButton)
            Parts.FindButton->setEnabled(false);
    } catch (const EAbort&) {
    } catch (const Exception& E) {
        ShowError(E.Message);
    }
    Recount();
}

void TListForm::BuildBrowser(std::initializer_list<TBrowserColumn> Columns, const QString& CaptionA, const QString& CaptionE)
{
    m_browser = new TQxAdoBrowser(this);
    m_browser->setObjectName(objectName() + QStringLiteral("Browser"));
    m_browser->SetConnection(m_context.Conn);
    m_browser->SetSourceTables(m_parts.Table);
    m_browser->SetDatabaseType(DatabaseTypeOf(m_context.Conn));
    m_browser->SetCaption_a(CaptionA);
    m_browser->SetCaption_e(CaptionE);
    m_browser->SetCompressedView(true);
    for (const TBrowserColumn& C : Columns) {
        TQxAdoBrowserItem* Item = m_browser->BrowserItems()->Add();
        Item->SetFieldName_e(QLatin1String(C.FieldE));
        Item->SetFieldName_a(QLatin1String(C.FieldA ? C.FieldA : C.FieldE));
        Item->SetCaption_a(QString::fromUtf16(C.TitleA));
        Item->SetCaption_e(QLatin1String(C.TitleE));
        Item->SetWidth(C.Width);
        if (C.Date) {
            Item->SetFieldClass(fcDate);
            Item->SetDataType(ftInteger);
        }
    }
}

bool TListForm::Find()
{
    if (!m_browser || !m_dataSet || !m_dataSet->Active())
        return false;
    try {
        // An edit in progress is posted first, as any move would.
        m_dataSet->CheckBrowseMode();
        if (!m_browser->ShowBrowser())
            return false;
        const int Key = m_browser->BrowserItems()->GetItemIndex(m_parts.KeyField);
        const bool Found = Key >= 0 && m_dataSet->Locate(m_parts.KeyField, m_browser->BrowserItems()->Items(Key)->Value());
        m_grid->setFocus();
        return Found;
    } catch (const EAbort&) {
    } catch (const Exception& E) {
        ShowError(E.Message);
    }
    return false;
}

bool TListForm::SaveBrowserShots(QWidget* Form, const QString& Folder, const QString& Lang)
{
    auto* List = qobject_cast<TListForm*>(Form);
    if (!List || !List->Browser())
        return false;
    QStringList Files;
    for (const char* Name : {"browser-", "browser-filter-"})
        Files << QDir(Folder).filePath(QLatin1String(Name) + Lang + QStringLiteral(".png"));
    const bool Saved = SaveDialogChain(
        Files, [List] { List->Find(); },
        [](QDialog* Dialog, int Index) {
            if (auto* Browser = qobject_cast<TAdoBrowserForm*>(Dialog); Browser && Index == 0)
                Browser->F1->setText(BiStr(QStringLiteral("م"), QStringLiteral("Al")));
        },
        [](QDialog* Dialog, int) {
            if (auto* Browser = qobject_cast<TAdoBrowserForm*>(Dialog))
                QMetaObject::invokeMethod(Browser->btnFilter, "click", Qt::QueuedConnection);
        });
    if (Saved)
        for (const QString& File : std::as_const(Files))
            std::printf("%s\n", qPrintable(File));
    return Saved;
}

// The count comes from the database while rows remain unread, so that opening the form does
// not read them all; posts and deletes then adjust it.
void TListForm::Recount()
{
    if (!m_dataSet || !m_dataSet->Active()) {
        m_count = 0;
    } else if (m_dataSet->FetchedAll() || !OnConnection()) {
        m_count = m_dataSet->RecordCount();
    } else {
        m_count = m_context.Conn->DCount(m_parts.Table, QString());
    }
    ShowCount();
    QTimer::singleShot(0, this, [this] { ShowCount(); });
}

void TListForm::ShowCount()
{
    TQxLabel* Label = m_footer ? m_footer->Labels(m_parts.CountColumn) : nullptr;
    if (!Label || !m_parts.CountA)
        return;
    Label->SetCaptionA(QString::fromUtf16(m_parts.CountA).arg(m_count));
    Label->SetCaptionE(QString::fromLatin1(m_parts.CountE).arg(m_count));
}

void TListForm::keyPressEvent(QKeyEvent* Event)
{
    // Enter on a row of the grid goes to the card, to edit that record.
    const bool Enter = Event->key() == Qt::Key_Return || Event->key() == Qt::Key_Enter;
    if (Enter && m_grid && m_grid->hasFocus() && m_firstEdit) {
        m_firstEdit->setFocus(Qt::TabFocusReason);
        return;
    }
    QWidget::keyPressEvent(Event);
}

} // namespace Demo
