#include "main_window.h"
#include "customers_form.h"
#include "invoice_form.h"
#include "invoice_list_form.h"
#include "items_form.h"
#include "sample_db.h"
#include "settings_form.h"
#include "tools_form.h"

#include <Kesh.h>
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDate>
#include <QDir>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QStatusBar>
#include <QVBoxLayout>
#include <cstdio>

using namespace Kesh;

namespace Demo {

namespace {

const QString WindowSection = QStringLiteral("MainWindow");

TFont Sized(const TFont& Font, int Size, bool Bold)
{
    TFont F = Font;
    F.SetSize(Size);
    F.SetStyle(Bold ? TFontStyles(fsBold) : TFontStyles());
    return F;
}

// A label that shows one text in both languages, in a font of the given size.
TQxLabel* NewLabel(int Size, bool Bold)
{
    auto* Label = new TQxLabel;
    Label->SetAutoSize(false);
    Label->SetTransparent(true);
    const TFont F = Sized(TFont(QApplication::font()), Size, Bold);
    Label->SetFont_a(F);
    Label->SetFont_e(F);
    // One line of the font, with room for the taller Arabic glyphs of a fall-back font.
    Label->setFixedHeight(QFontMetrics(F.Font()).height() * 3 / 2);
    return Label;
}

void SetBiCaption(TxBilingual* Control, const TBiText& Text)
{
    Control->SetCaptionA(Text.Arabic);
    Control->SetCaptionE(Text.English);
}

// The connection string without its password, for the status bar.
QString Described(const QString& ConnectionString)
{
    QStringList Parts;
    for (const QString& Pair : ConnectionString.split(QLatin1Char(';'), Qt::SkipEmptyParts))
        if (!Pair.trimmed().startsWith(QLatin1String("Password"), Qt::CaseInsensitive))
            Parts << Pair.trimmed();
    return Parts.join(QStringLiteral("; "));
}

// The integer-date range of this month, Gregorian and Hijri: an invoice may carry either.
QString ThisMonthCriteria()
{
    const QDate Today = QDate::currentDate();
    const int First = DateEncode(Today.year(), Today.month(), 1);
    const int Last = DateEncode(Today.year(), Today.month(), Today.daysInMonth());
    return QStringLiteral("(Inv_date BETWEEN %1 AND %2) OR (Inv_date BETWEEN %3 AND %4)")
        .arg(First).arg(Last).arg(ConvertDate(First)).arg(ConvertDate(Last));
}

TQxForm* ManagerOf(QWidget* Window)
{
    return Window ? Window->findChild<TQxForm*>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
}

} // namespace

class TMainWindowPrivate
{
public:
    TDemoContext& Context;
    TQxForm* Manager = nullptr;
    QHash<QString, QMenu*> Menus;
    QList<TFormEntry*> Forms;
    QActionGroup* Languages = nullptr;

    TQxLabel* Company = nullptr;
    TQxLabel* Subtitle = nullptr;
    struct TFigureTile
    {
        TQxLabel* Title;
        TQxLabel* Value;
    };
    QList<TFigureTile> Tiles;
    QGridLayout* Buttons = nullptr;
    QLabel* Database = nullptr;
    TStartFigures Figures;
    TBiText CompanyName;
    TBiText Currency;

    explicit TMainWindowPrivate(TDemoContext& C) : Context(C) {}
    ~TMainWindowPrivate() { qDeleteAll(Forms); }

    // A menu item (or a menu's title) with its captions in both languages, known to the
    // form manager by its name so that a language switch gives it the other caption.
    void AddBiItem(QAction* Item, const QString& Name, const TBiText& Text)
    {
        Item->setObjectName(Name);
        TxBiMenuItems& Items = Manager->BiMenuItems();
        Items.AddMenuItem(Item);
        TxMenuItemRec Rec;
        Rec.CapA = Text.Arabic;
        Rec.CapE = Text.English;
        Items.SetMenuItemRec(Items.GetMenuItem(Item), Rec);
        Item->setText(Application()->BiDiMode() == bdRightToLeft ? Text.Arabic : Text.English);
    }
};

TMainWindow::TMainWindow(TDemoContext& Context, QWidget* Parent) : QMainWindow(Parent), d(new TMainWindowPrivate(Context))
{
    setObjectName(QStringLiteral("MainWindow"));
    // Fits a 1280 x 800 screen with room for a panel; the manager centres it on the first
    // run and then remembers where the user left it ("MainWindow.QxForm1").
    resize(1000, 680);
    setMinimumSize(800, 560);
    d->Manager = new TQxForm(this, QStringLiteral("QxForm1"));
    d->Manager->SetOptions(FoSavePosition | FoSaveSize);
    // With nothing remembered the manager opens the window at its minimum size: on the
    // first run the default size is remembered instead.
    const QString Section = objectName() + QLatin1Char('.') + d->Manager->objectName();
    if (ReadSetting(Section, QStringLiteral("Width"), QString()).toString().isEmpty()) {
        SaveSetting(Section, QStringLiteral("Width"), width());
        SaveSetting(Section, QStringLiteral("Height"), height());
    }
    BuildMenus();
    BuildStartPanel();
    RegisterForms();
    HideEmptyMenus();
    RefreshStart();
}

TMainWindow::~TMainWindow()
{
    // The forms are windows of their own: they go with the application's main window.
    for (TFormEntry* Entry : std::as_const(d->Forms))
        delete Entry->Window;
}

TDemoContext& TMainWindow::Context() const { return d->Context; }
TQxForm* TMainWindow::Manager() const { return d->Manager; }
QMenu* TMainWindow::Menu(const QString& Name) const { return d->Menus.value(Name); }
const QList<TFormEntry*>& TMainWindow::Forms() const { return d->Forms; }
TStartFigures TMainWindow::Figures() const { return d->Figures; }

QString TMainWindow::CompanyName() const { return BiStr(d->CompanyName.Arabic, d->CompanyName.English); }

void TMainWindow::BuildMenus()
{
    const auto AddMenu = [this](const QString& Name, const TBiText& Text) {
        QMenu* Menu = menuBar()->addMenu(QString());
        d->Menus.insert(Name, Menu);
        d->AddBiItem(Menu->menuAction(), QStringLiteral("mnu") + Name, Text);
        return Menu;
    };
    const auto AddItem = [this](QMenu* Menu, const QString& Name, const TBiText& Text, const QKeySequence& Keys) {
        QAction* Item = Menu->addAction(QString());
        d->AddBiItem(Item, QStringLiteral("act") + Name, Text);
        Item->setShortcut(Keys);
        return Item;
    };

    QMenu* File = AddMenu(QStringLiteral("File"), {QStringLiteral("ملف"), QStringLiteral("&File")});
    AddMenu(QStringLiteral("Lists"), {QStringLiteral("القوائم"), QStringLiteral("&Lists")});
    AddMenu(QStringLiteral("Sales"), {QStringLiteral("المبيعات"), QStringLiteral("&Sales")});
    QMenu* Tools = AddMenu(QStringLiteral("Tools"), {QStringLiteral("أدوات"), QStringLiteral("&Tools")});
    QMenu* Language = AddMenu(QStringLiteral("Language"), {QStringLiteral("اللغة"), QStringLiteral("Lan&guage")});
    QMenu* Help = AddMenu(QStringLiteral("Help"), {QStringLiteral("مساعدة"), QStringLiteral("&Help")});

    // Settings is a registered form (RegisterForms); Exit follows it.
    connect(AddItem(File, QStringLiteral("Exit"), {QStringLiteral("خروج"), QStringLiteral("E&xit")},
                    QKeySequence(Qt::CTRL | Qt::Key_Q)),
            &QAction::triggered, this, &QWidget::close);

    const auto AddCalendar = [&](const QString& Name, const TBiText& Text, const QKeySequence& Keys, bool Hijri) {
        connect(AddItem(Tools, Name, Text, Keys), &QAction::triggered, this, [Hijri] {
            int Day = DateToInt(Now());
            if (Hijri)
                Day = ConvertDate(Day);
            SelectDate(Day, Hijri);
        });
    };
    AddCalendar(QStringLiteral("Calendar"), {QStringLiteral("التقويم الميلادي…"), QStringLiteral("&Calendar…")},
                QKeySequence(Qt::CTRL | Qt::Key_K), false);
    AddCalendar(QStringLiteral("HijriCalendar"), {QStringLiteral("التقويم الهجري…"), QStringLiteral("&Hijri calendar…")},
                QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_K), true);

    d->Languages = new QActionGroup(this);
    for (const auto& [Name, Text, Key, Mode] :
         {std::tuple{QStringLiteral("Arabic"), TBiText{QStringLiteral("العربية"), QStringLiteral("&Arabic")}, Qt::Key_A, bdRightToLeft},
          std::tuple{QStringLiteral("English"), TBiText{QStringLiteral("الإنجليزية"), QStringLiteral("&English")}, Qt::Key_E, bdLeftToRight}}) {
        QAction* Item = AddItem(Language, Name, Text, QKeySequence(Qt::CTRL | Qt::SHIFT | Key));
        Item->setCheckable(true);
        Item->setChecked(Application()->BiDiMode() == Mode);
        Item->setData(int(Mode));
        d->Languages->addAction(Item);
        connect(Item, &QAction::triggered, this, [this, Mode = Mode] { SetLanguage(Mode); });
    }

    connect(AddItem(Help, QStringLiteral("About"), {QStringLiteral("حول البرنامج"), QStringLiteral("&About")},
                    QKeySequence(Qt::Key_F1)),
            &QAction::triggered, this, &TMainWindow::About);
}

void TMainWindow::BuildStartPanel()
{
    auto* Central = new QWidget;
    auto* Layout = new QVBoxLayout(Central);
    Layout->setContentsMargins(16, 16, 16, 16);
    Layout->setSpacing(16);

    auto* Header = new TQxPanel;
    Header->SetGradFill(true);
    Header->SetColorFrom(clWhite);
    Header->SetColorTo(0x00EBC8AA); // $00BBGGRR: a light blue
    Header->SetDirection(gdVertical);
    auto* HeaderLayout = new QVBoxLayout(Header);
    HeaderLayout->setContentsMargins(20, 12, 20, 12);
    d->Company = NewLabel(20, true);
    d->Company->setObjectName(QStringLiteral("lblCompany"));
    d->Company->SetTextStyle(Tx3D);
    d->Subtitle = NewLabel(11, false);
    d->Subtitle->setObjectName(QStringLiteral("lblSubtitle"));
    SetBiCaption(d->Subtitle, {QStringLiteral("مبيعات كيش: العملاء والأصناف والفواتير بالعربية والإنجليزية"),
                               QStringLiteral("Kesh Sales: customers, items and invoices in Arabic and English")});
    HeaderLayout->addWidget(d->Company);
    HeaderLayout->addWidget(d->Subtitle);
    Layout->addWidget(Header);

    auto* FigureRow = new QHBoxLayout;
    FigureRow->setSpacing(12);
    const TBiText Titles[] = {
        {QStringLiteral("العملاء"), QStringLiteral("Customers")},
        {QStringLiteral("الأصناف"), QStringLiteral("Items")},
        {QStringLiteral("الفواتير"), QStringLiteral("Invoices")},
        {QStringLiteral("مبيعات هذا الشهر"), QStringLiteral("Sales this month")},
    };
    for (const TBiText& Title : Titles) {
        auto* Tile = new TQxPanel;
        Tile->setFrameShape(QFrame::StyledPanel);
        Tile->SetColor(0x00FAF5F0);
        auto* TileLayout = new QVBoxLayout(Tile);
        TileLayout->setContentsMargins(12, 8, 12, 8);
        TMainWindowPrivate::TFigureTile Labels{NewLabel(10, false), NewLabel(16, true)};
        SetBiCaption(Labels.Title, Title);
        Labels.Value->setObjectName(QStringLiteral("lblFigure%1").arg(d->Tiles.size() + 1));
        TileLayout->addWidget(Labels.Title);
        TileLayout->addWidget(Labels.Value);
        d->Tiles << Labels;
        FigureRow->addWidget(Tile, 1);
    }
    Layout->addLayout(FigureRow);

    // One button per registered form, for the mouse; the menus carry the hot keys.
    d->Buttons = new QGridLayout;
    d->Buttons->setHorizontalSpacing(12);
    d->Buttons->setVerticalSpacing(8);
    Layout->addLayout(d->Buttons);
    Layout->addStretch(1);
    setCentralWidget(Central);

    d->Database = new QLabel;
    d->Database->setObjectName(QStringLiteral("lblDatabase"));
    statusBar()->addWidget(d->Database, 1);
}

TFormEntry& TMainWindow::RegisterForm(QMenu* InMenu, const QString& Name, const TBiText& Caption,
                                      const TFormFactory& Create, const QKeySequence& Keys)
{
    auto* Entry = new TFormEntry{Name, Caption, Create, {}, nullptr, {}};
    d->Forms << Entry;
    if (InMenu) {
        // Before Exit in the File menu, at the end of any other.
        const QList<QAction*> Existing = InMenu->actions();
        QAction* Before = InMenu == Menu(QStringLiteral("File")) && !Existing.isEmpty() ? Existing.first() : nullptr;
        Entry->Action = new QAction(InMenu);
        InMenu->insertAction(Before, Entry->Action);
        if (Before)
            InMenu->insertSeparator(Before);
        d->AddBiItem(Entry->Action, QStringLiteral("act") + Name, Caption);
        Entry->Action->setShortcut(Keys);
        connect(Entry->Action, &QAction::triggered, this, [this, Name] { OpenForm(Name); });
        HideEmptyMenus();
    }

    auto* Button = new TQxBitBtn;
    Button->setObjectName(QStringLiteral("btn") + Name);
    QString A = Caption.Arabic, E = Caption.English;
    E.remove(QLatin1Char('&'));
    A.remove(QChar(0x2026)); // the ellipsis says "opens a window" in a menu, not on a button
    E.remove(QChar(0x2026));
    // The hot key shows on the button, so that the keyboard's way is seen. A left-to-right
    // isolate holds its signs to its letters: after an Arabic caption "Ctrl+," would read ",Ctrl+".
    if (!Keys.isEmpty()) {
        const QString Key = QStringLiteral("   ") + QChar(0x2066) + Keys.toString(QKeySequence::NativeText) + QChar(0x2069);
        A += Key;
        E += Key;
    }
    SetBiCaption(Button, {A, E});
    Button->setMinimumHeight(32);
    Button->setFocusPolicy(Qt::StrongFocus);
    connect(Button, &QPushButton::clicked, this, [this, Name] { OpenForm(Name); });
    const int Index = d->Forms.size() - 1;
    d->Buttons->addWidget(Button, Index / 4, Index % 4);
    return *Entry;
}

void TMainWindow::RegisterForms()
{
    // The forms of the application, one RegisterForm each; the start panel's buttons follow this order.
    RegisterForm(Menu(QStringLiteral("Lists")), QStringLiteral("Customers"), {QStringLiteral("العملاء"), QStringLiteral("&Customers")},
                 FormOf<TCustomersForm>(), QKeySequence(Qt::CTRL | Qt::Key_1))
        .Shots = &TListForm::SaveBrowserShots;
    RegisterForm(Menu(QStringLiteral("Lists")), QStringLiteral("Items"), {QStringLiteral("الأصناف"), QStringLiteral("&Items")},
                 FormOf<TItemsForm>(), QKeySequence(Qt::CTRL | Qt::Key_2));
    auto& Invoice = RegisterForm(Menu(QStringLiteral("Sales")), QStringLiteral("Invoice"),
                                 {QStringLiteral("فاتورة جديدة…"), QStringLiteral("&New invoice…")}, FormOf<InvoiceForm>(),
                                 QKeySequence(Qt::CTRL | Qt::Key_I));
    // What an invoice changes shows at once on the start panel.
    Invoice.Create = [this](TDemoContext& Context, QWidget* Parent) -> QWidget* {
        auto* Form = new InvoiceForm(Context, Parent);
        connect(Form, &InvoiceForm::Changed, this, &TMainWindow::RefreshStart);
        return Form;
    };
    // Beside the new invoice, one of the sample's invoices with several lines.
    Invoice.Shots = [](QWidget* Form, const QString& Folder, const QString& Lang) {
        auto* Shown = static_cast<InvoiceForm*>(Form);
        QVector<QVariant> Id(1);
        if (!Shown->Context().Conn->DLookup(
                QStringLiteral("SELECT MIN(I.Inv_id) FROM Invoices I WHERE NOT I.Posted AND "
                               "(SELECT COUNT(*) FROM InvoiceLines L WHERE L.Inv_id = I.Inv_id) >= 5"),
                Id)
            || !Shown->OpenInvoice(Id[0].toInt()))
            return false;
        QCoreApplication::processEvents();
        const QString File = QDir(Folder).filePath(QStringLiteral("invoice-filled-") + Lang + QStringLiteral(".png"));
        if (!Form->grab().save(File))
            return false;
        std::printf("%s\n", qPrintable(File));
        return true;
    };
    auto& Invoices = RegisterForm(Menu(QStringLiteral("Sales")), QStringLiteral("Invoices"),
                                  {QStringLiteral("الفواتير…"), QStringLiteral("&Invoices…")}, FormOf<InvoiceListForm>(),
                                  QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_I));
    // The list opens its invoices in the invoice window.
    Invoices.Create = [this](TDemoContext& Context, QWidget* Parent) -> QWidget* {
        auto* List = new InvoiceListForm(Context, Parent);
        List->OnOpenInvoice = [this, List](int InvId) {
            auto* Form = static_cast<InvoiceForm*>(OpenForm(QStringLiteral("Invoice")));
            if (Form)
                connect(Form, &InvoiceForm::Changed, List, &InvoiceListForm::Refresh, Qt::UniqueConnection);
            if (Form && InvId)
                Form->OpenInvoice(InvId);
            else if (Form)
                Form->NewInvoice();
        };
        return List;
    };
    auto& Settings = RegisterForm(Menu(QStringLiteral("File")), QStringLiteral("Settings"),
                                  {QStringLiteral("الإعدادات…"), QStringLiteral("&Settings…")}, FormOf<TSettingsForm>(),
                                  QKeySequence(Qt::CTRL | Qt::Key_Comma));
    // The company name and currency shown here come from the settings.
    Settings.Create = [this](TDemoContext& Context, QWidget* Parent) -> QWidget* {
        auto* Form = new TSettingsForm(Context, Parent);
        connect(Form, &TSettingsForm::Saved, this, &TMainWindow::RefreshStart);
        return Form;
    };
    RegisterForm(Menu(QStringLiteral("Tools")), QStringLiteral("Tools"),
                 {QStringLiteral("التواريخ والمبالغ والتقريب…"), QStringLiteral("&Dates, amounts and rounding…")},
                 FormOf<TToolsForm>(), QKeySequence(Qt::CTRL | Qt::Key_T));
}

void TMainWindow::HideEmptyMenus()
{
    for (QMenu* Item : std::as_const(d->Menus))
        Item->menuAction()->setVisible(!Item->isEmpty());
}

QWidget* TMainWindow::OpenForm(const QString& Name)
{
    for (TFormEntry* Entry : d->Forms) {
        if (Entry->Name != Name)
            continue;
        if (!Entry->Window) {
            // A window of its own (no parent): its manager owns its placement and language,
            // and it is freed when it closes; this window frees what is still open at its end.
            QApplication::setOverrideCursor(Qt::WaitCursor);
            try {
                Entry->Window = Entry->Create(d->Context, nullptr);
            } catch (const Exception& E) {
                QApplication::restoreOverrideCursor();
                ShowError(E.Message);
                return nullptr;
            }
            QApplication::restoreOverrideCursor();
            Entry->Window->setAttribute(Qt::WA_DeleteOnClose);
        }
        Entry->Window->show();
        Entry->Window->raise();
        Entry->Window->activateWindow();
        return Entry->Window;
    }
    return nullptr;
}

QList<QWidget*> TMainWindow::OpenForms() const
{
    QList<QWidget*> Open;
    for (QWidget* Window : QApplication::topLevelWidgets())
        if (Window != this && Window->isVisible() && !Window->isModal() && ManagerOf(Window))
            Open << Window;
    return Open;
}

void TMainWindow::SetLanguage(TBiDiMode Mode)
{
    // Each window first, while its direction still differs from Mode, then the application,
    // whose direction the dialogs and the texts outside the windows follow. A manager asked
    // for the language its form already shows only hides the form: ask for a change only.
    QList<QWidget*> Windows = OpenForms();
    Windows << this;
    for (QWidget* Window : Windows) {
        TQxForm* Manager = ManagerOf(Window);
        if (!Manager || Manager->GetLanguage() == Mode)
            continue;
        const bool Visible = Window->isVisible();
        // The manager places a window again when it shows it after the switch, from the
        // settings file; what is stored there must be where the window is now.
        Manager->DoSavePos();
        Manager->DoSaveSize();
        Manager->SetLang(Mode);
        if (Visible && !Window->isVisible())
            Window->show();
    }
    Application()->SetBiDiMode(Mode);
    for (QAction* Item : d->Languages->actions())
        Item->setChecked(Item->data().toInt() == int(Mode));
    SaveSetting(WindowSection, QStringLiteral("Language"), Mode == bdRightToLeft ? QStringLiteral("ar") : QStringLiteral("en"));
    ShowFigures();
}

void TMainWindow::RefreshStart()
{
    TQxAdoConnection* Conn = d->Context.Conn;
    d->Figures = TStartFigures();
    if (Conn && Conn->Connected()) {
        d->CompanyName = {Conn->ReadSetting(SetCompanyA, QStringLiteral("شركة كيش التجارية")).toString(),
                          Conn->ReadSetting(SetCompanyE, QStringLiteral("Kesh Trading Company")).toString()};
        // The Arabic name may hold its four forms, "one|two|three to ten|eleven and up".
        d->Currency = {Conn->ReadSetting(SetCurrencyA, QStringLiteral("ريال")).toString().section(QLatin1Char('|'), 0, 0),
                       Conn->ReadSetting(SetCurrencyE, QStringLiteral("Riyal")).toString()};
        // Aggregates on the server: the start panel never loads a table.
        d->Figures.Customers = Conn->DCount(QStringLiteral("Customers"), QString());
        d->Figures.Items = Conn->DCount(QStringLiteral("Items"), QString());
        d->Figures.Invoices = Conn->DCount(QStringLiteral("Invoices"), QString());
        d->Figures.MonthSales = Conn->DSum(QStringLiteral("Invoices"), QStringLiteral("Total"), ThisMonthCriteria()).toDouble();
        d->Database->setText(Described(Conn->ConnectionString())
                             + (d->Context.Remote() ? QStringLiteral("  |  ") + d->Context.ServerUrl : QString()));
    }
    d->Manager->SetCaptionA(QStringLiteral("مبيعات كيش - ") + d->CompanyName.Arabic);
    d->Manager->SetCaptionE(QStringLiteral("Kesh Sales - ") + d->CompanyName.English);
    SetBiCaption(d->Company, d->CompanyName);
    ShowFigures();
}

void TMainWindow::ShowFigures()
{
    const QString Money = FormatFloat(QStringLiteral("#,##0.00"), d->Figures.MonthSales);
    const QString Count = QStringLiteral("#,##0");
    const QString Values[] = {FormatFloat(Count, d->Figures.Customers), FormatFloat(Count, d->Figures.Items),
                              FormatFloat(Count, d->Figures.Invoices)};
    for (int I = 0; I < 3; ++I)
        SetBiCaption(d->Tiles[I].Value, {Values[I], Values[I]});
    SetBiCaption(d->Tiles[3].Value, {Money + QLatin1Char(' ') + d->Currency.Arabic, Money + QLatin1Char(' ') + d->Currency.English});
    // A plain label aligns by its text, which here is Latin: pin it to the reading side.
    const bool Rtl = Application()->BiDiMode() == bdRightToLeft;
    d->Database->setAlignment((Rtl ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignAbsolute | Qt::AlignVCenter);
}

void TMainWindow::About()
{
    ShowMsg(BiStr(QStringLiteral("مبيعات كيش: تطبيق مبيعات صغير ثنائي اللغة مبني على مكونات كيش."),
                  QStringLiteral("Kesh Sales: a small bilingual sales application built on the Kesh components.")));
}

void TMainWindow::closeEvent(QCloseEvent* Event)
{
    // Each open form's manager decides: one with unsaved changes refuses and says why, and
    // the application stays open.
    for (QWidget* Form : OpenForms()) {
        if (!Form->close()) {
            Event->ignore();
            return;
        }
    }
    QMainWindow::closeEvent(Event);
}

void TMainWindow::changeEvent(QEvent* Event)
{
    // Back from a form: its changes show in the figures.
    if (Event->type() == QEvent::ActivationChange && isActiveWindow())
        RefreshStart();
    QMainWindow::changeEvent(Event);
}

} // namespace Demo
