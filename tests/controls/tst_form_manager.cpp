// The form manager on live forms: creation rules, placement in the settings file, closing
// over unsaved changes, the language switch, opening hooks, background pictures, the
// bilingual menu captions and their stream form, and focus recovery. Every test runs with
// the application in English and in Arabic.
#include "dialog_helper.h"

#include <Kesh.h>
#include "form_manager.h"
#include "platform/data/client_dataset.h"
#include "platform/data/data_source.h"
#include "platform/data/fields.h"
#include "platform/filer.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

using namespace Kesh;
using KeshTest::DialogDriver;

Q_DECLARE_METATYPE(Kesh::TxFormOptions)

namespace {

const QString Arabic = QStringLiteral("من فضلك قم بحفظ أو إهمال التعديلات أولاً.");
const QString English = QStringLiteral("Please save or cancel changes first.");

// The section line, then the section's keys in alphabetical order.
QStringList IniLines()
{
    QFile F(ConfigFile);
    if (!F.open(QIODevice::ReadOnly))
        return {};
    QStringList Lines = QString::fromUtf8(F.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    std::sort(Lines.begin() + qMin<qsizetype>(1, Lines.size()), Lines.end());
    return Lines;
}

TBiDiMode Mode(bool Rtl)
{
    return Rtl ? bdRightToLeft : bdLeftToRight;
}

// Where a form of Size is centred in Room: the free space halved across, a third down.
QPoint Centred(QSize Size, QSize Room = QGuiApplication::primaryScreen()->geometry().size())
{
    return QPoint((Room.width() - Size.width()) / 2, (Room.height() - Size.height()) / 3);
}

template <class T>
T* Named(T* Object, const char* Name)
{
    Object->setObjectName(QLatin1String(Name));
    return Object;
}

// A form with a name and a size, not shown.
template <class T = QWidget>
std::unique_ptr<T> MakeForm(const char* Name = "FormItems", QSize Size = QSize(400, 300))
{
    std::unique_ptr<T> Form(Named(new T, Name));
    Form->resize(Size);
    return Form;
}

// Puts the manager "QxForm1" on Form, with Extra added to its default options.
TQxForm* Manage(QWidget* Form, TxFormOptions Extra = {})
{
    auto* M = new TQxForm(Form, QStringLiteral("QxForm1"));
    M->SetOptions(M->GetOptions() | Extra);
    return M;
}

// Puts the manager "QxForm1" with exactly Options on Form, and ends the form's loading.
TQxForm* Loaded(QWidget* Form, TxFormOptions Options)
{
    auto* M = new TQxForm(Form, QStringLiteral("QxForm1"));
    M->SetOptions(Options);
    Kesh::EndLoading(Form);
    return M;
}

// "cdsItems": one posted row (Id 1, Name Tea).
TClientDataSet* MakeItems(QObject* Owner)
{
    auto* Ds = Named(new TClientDataSet(Owner), "cdsItems");
    Ds->FieldDefs().Add(QStringLiteral("Id"), ftInteger);
    Ds->FieldDefs().Add(QStringLiteral("Name"), ftString, 30);
    Ds->CreateDataSet();
    Ds->Append();
    Ds->FieldByName(QStringLiteral("Id"))->SetAsInteger(1);
    Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("Tea"));
    Ds->Post();
    Ds->MergeChangeLog();
    return Ds;
}

void SetName(TDataSet* Ds, const QString& Name)
{
    Ds->Edit();
    Ds->FieldByName(QStringLiteral("Name"))->SetAsString(Name);
}

bool ShowAndActivate(QWidget* W)
{
    W->show();
    W->activateWindow();
    return QTest::qWaitForWindowActive(W);
}

// A form that paints itself green and counts its own activations.
class TOwnForm : public QWidget
{
public:
    int Activations = 0;

protected:
    void paintEvent(QPaintEvent*) override { QPainter(this).fillRect(rect(), Qt::green); }
    bool event(QEvent* E) override
    {
        Activations += E->type() == QEvent::WindowActivate;
        return QWidget::event(E);
    }
};

// A menu bar File (mnuFile) with Open (actOpen), a separator, "-" and Quit (actQuit),
// and an unnamed Help action.
struct TMenuForm
{
    TMenuForm()
    {
        Form.setObjectName(QStringLiteral("FormMain"));
        Form.resize(400, 300);
        File = Named(Form.menuBar()->addMenu(QStringLiteral("File")), "mnuFile");
        Open = Named(File->addAction(QStringLiteral("Open")), "actOpen");
        Named(File->addSeparator(), "sep1");
        Named(File->addAction(QStringLiteral("-")), "sep2");
        Quit = Named(File->addAction(QStringLiteral("Quit")), "actQuit");
        Form.menuBar()->addAction(QStringLiteral("Help"));
    }
    QMainWindow Form;
    QMenu* File;
    QAction *Open, *Quit;
};

QByteArray Written(const TxBiMenuItems& Items)
{
    QByteArray Data;
    QDataStream Out(&Data, QIODevice::WriteOnly);
    Out << Items;
    return Data;
}

QStringList Names(const TxBiMenuItems& Items)
{
    QStringList R;
    for (int I = 0; I < Items.Count(); ++I)
        R << Items.GetMenuItemRec(I).ItemName;
    return R;
}

} // namespace

class TestFormManager : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::newRow("ltr") << false;
        QTest::newRow("rtl") << true;
    }

    void init()
    {
        QFETCH_GLOBAL(bool, rtl);
        QVERIFY(m_dir.isValid());
        m_rtl = rtl;
        m_savedConfig = ConfigFile;
        ConfigFile = m_dir.filePath(QStringLiteral("form-%1.ini").arg(++m_run));
        Application()->SetBiDiMode(Mode(rtl));
    }

    void cleanup()
    {
        Application()->SetBiDiMode(bdLeftToRight);
        ConfigFile = m_savedConfig;
    }

    void creation_data()
    {
        QTest::addColumn<int>("owner");
        QTest::addColumn<TxFormOptions>("options");
        QTest::addColumn<QString>("refusal");
        const TxFormOptions Centre(FoAutoCenter), Mdi = FoSavePosition | FoSaveSize;
        const QString NotForm = QStringLiteral("QxForm1.Create\r\nOnly Allowed for TForm classes.");
        QTest::newRow("widget") << 0 << Centre << QString();
        QTest::newRow("dialog") << 1 << Centre << QString();
        QTest::newRow("main window") << 2 << Centre << QString();
        QTest::newRow("mdi parent") << 3 << Mdi << QString();
        QTest::newRow("mdi child") << 4 << Mdi << QString();
        QTest::newRow("plain object") << 5 << Centre << NotForm;
        QTest::newRow("no owner") << 6 << Centre << NotForm;
        QTest::newRow("control on a form") << 7 << Centre << NotForm;
        QTest::newRow("second manager") << 8 << Centre << "QxForm1.Create\r\nOnly one TxForm class is allowed for each form.";
    }

    // Only a form may own a manager, and only one. The manager takes its language from the
    // form, not from the application.
    void creation()
    {
        QFETCH(int, owner);
        QFETCH(TxFormOptions, options);
        QFETCH(QString, refusal);
        Application()->SetBiDiMode(Mode(!m_rtl));
        QObject Plain;
        QMainWindow Main;
        auto* Area = new QMdiArea;
        Main.setCentralWidget(Area);
        const std::unique_ptr<QWidget> Owned(owner == 1 ? new QDialog : owner == 2 ? new QMainWindow : new QWidget);
        QObject* Owners[] = {Owned.get(), Owned.get(), Owned.get(), &Main, Area->addSubWindow(new QWidget)->widget(),
                             &Plain, nullptr, new QWidget(Owned.get()), Owned.get()};
        if (owner == 8)
            new TQxForm(Owned.get(), QStringLiteral("First"));
        if (!refusal.isEmpty()) {
            DialogDriver Driver;
            Driver.Click(QStringLiteral("btnOk"));
            QVERIFY_THROWS_EXCEPTION(EAbort, new TQxForm(Owners[owner], QStringLiteral("QxForm1")));
            QCOMPARE(Driver.Seen.size(), 1);
            QCOMPARE(Driver.Seen[0].Text, refusal);
            QCOMPARE(Owned->findChildren<TQxForm*>().size(), owner == 8 ? 1 : 0);
            QCOMPARE(Plain.children().size(), 0);
            return;
        }
        auto* Form = static_cast<QWidget*>(Owners[owner]);
        Form->setWindowTitle(QStringLiteral("Caption"));
        SetBiDiModeOf(Form, Mode(m_rtl));
        auto* M = Manage(Form);
        QCOMPARE(M->property("Options").value<TxFormOptions>(), options);
        QCOMPARE(M->GetLanguage(), Mode(m_rtl));
        QCOMPARE(M->GetCaptionA(), m_rtl ? QStringLiteral("Caption") : QString());
        QCOMPARE(M->GetCaptionE(), m_rtl ? QString() : QStringLiteral("Caption"));
        QVERIFY(M->FirstStart() && !M->Opened());
        // The caption of the current language is the form's caption.
        M->SetCaptionA(QStringLiteral("عنوان"));
        M->SetCaptionE(QStringLiteral("Title"));
        QCOMPARE(Form->windowTitle(), m_rtl ? QStringLiteral("عنوان") : QStringLiteral("Title"));
    }

    void placementIsSavedAndRestored_data()
    {
        QTest::addColumn<TxFormOptions>("options");
        QTest::addColumn<bool>("managerAlone");
        QTest::addColumn<QStringList>("keys");
        const QStringList Both{"Height=240", "Left=50", "Maximized=False", "Top=60", "Width=320"};
        QTest::newRow("position and size") << (FoSavePosition | FoSaveSize) << false << Both;
        QTest::newRow("position and size, manager deleted") << (FoSavePosition | FoSaveSize) << true << Both;
        QTest::newRow("position") << TxFormOptions(FoSavePosition) << false << QStringList{"Left=50", "Top=60"};
        QTest::newRow("size") << TxFormOptions(FoSaveSize) << false << QStringList{"Height=240", "Maximized=False", "Width=320"};
        QTest::newRow("auto centre") << TxFormOptions(FoAutoCenter) << false << QStringList();
    }

    // Without saved placement a form is centred on the screen; with it, it comes back.
    void placementIsSavedAndRestored()
    {
        QFETCH(TxFormOptions, options);
        QFETCH(bool, managerAlone);
        QFETCH(QStringList, keys);
        {
            auto Form = MakeForm("FormItems", QSize(201, 151)); // odd free space: the divisions truncate
            Form->move(7, 9);
            TQxForm* M = Loaded(Form.get(), options);
            QCOMPARE(Form->size(), QSize(201, 151));
            if (options & (FoAutoCenter | FoSavePosition))
                QCOMPARE(Form->pos(), Centred(QSize(201, 151)));
            QVERIFY(!QFile::exists(ConfigFile));
            Form->setGeometry(50, 60, 320, 240);
            if (managerAlone) {
                delete M;
                QCOMPARE(IniLines().mid(1), keys);
            }
        }
        const QStringList Lines = IniLines();
        QCOMPARE(Lines.mid(1), keys);
        if (!keys.isEmpty())
            QCOMPARE(Lines.value(0), QStringLiteral("[FormItems.QxForm1]"));

        auto Form = MakeForm("FormItems", QSize(200, 150));
        Loaded(Form.get(), options);
        const QSize Size = options.testFlag(FoSaveSize) ? QSize(320, 240) : QSize(200, 150);
        QCOMPARE(Form->size(), Size);
        QCOMPARE(Form->pos(), options.testFlag(FoSavePosition) ? QPoint(50, 60) : Centred(Size));
        QVERIFY(!Form->isMaximized());
    }

    void firstStartSize_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QSize>("expected");
        QTest::newRow("widget with a layout") << 0 << QSize(400, 300);
        QTest::newRow("main window with a menu bar") << 1 << QSize(400, 300);
        QTest::newRow("minimum set by the program") << 2 << QSize(250, 180);
    }

    // With no size saved yet the form keeps the size it was made with; only a minimum the
    // program set is taken, never the one a layout gives its window.
    void firstStartSize()
    {
        QFETCH(int, kind);
        QFETCH(QSize, expected);
        std::unique_ptr<QWidget> Form;
        if (kind == 1) {
            auto* Main = new QMainWindow;
            Main->menuBar()->addMenu(QStringLiteral("File"));
            Main->setCentralWidget(new QLineEdit);
            Form.reset(Main);
        } else {
            Form = std::make_unique<QWidget>();
            (new QHBoxLayout(Form.get()))->addWidget(new QLineEdit);
            if (kind == 2)
                Form->setMinimumSize(250, 180);
        }
        Form->setObjectName(QStringLiteral("FormFirst"));
        Form->resize(400, 300);
        Loaded(Form.get(), FoSaveSize);
        Form->show();
        QVERIFY(QTest::qWaitForWindowExposed(Form.get()));
        QCOMPARE(Form->size(), expected);
    }

    void maximizedFormIsSavedAndRestored()
    {
        QSize Maximized;
        {
            auto Form = MakeForm("FormItems", QSize(200, 150));
            Loaded(Form.get(), FoSavePosition | FoSaveSize);
            Form->showMaximized();
            QVERIFY(QTest::qWaitForWindowExposed(Form.get()));
            QTRY_VERIFY(Form->width() > 200);
            Maximized = Form->size();
            QVERIFY(Form->close());
        }
        const QStringList Lines = IniLines();
        QVERIFY(Lines.contains(QStringLiteral("Maximized=True")));
        QVERIFY(Lines.contains(QStringLiteral("Width=%1").arg(Maximized.width())));
        QVERIFY(Lines.contains(QStringLiteral("Height=%1").arg(Maximized.height())));

        auto Form = MakeForm("FormItems", QSize(200, 150));
        Loaded(Form.get(), FoSavePosition | FoSaveSize);
        QVERIFY(Form->windowState().testFlag(Qt::WindowMaximized));
    }

    void mdiChildIsPlacedInItsArea()
    {
        QMainWindow Main;
        auto* Area = new QMdiArea;
        Main.setCentralWidget(Area);
        Main.resize(700, 500);
        Main.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Main));
        auto* Child = Named(new QWidget, "FormChild");
        QMdiSubWindow* Sub = Area->addSubWindow(Child);
        Sub->resize(300, 200);
        Manage(Child);
        Sub->show();
        QCOMPARE(Sub->pos(), Centred(QSize(300, 200), Area->viewport()->size()));
        Sub->move(20, 30);
        delete Sub;
        QCOMPARE(IniLines(), (QStringList{"[FormChild.QxForm1]", "Height=200", "Left=20", "Maximized=False", "Top=30", "Width=300"}));
    }

    void closeIsRefusedOverUnsavedChanges_data()
    {
        QTest::addColumn<bool>("insert");
        QTest::addColumn<bool>("withSource");
        QTest::addColumn<bool>("escape"); // a dialog closed by the Escape key
        QTest::addColumn<QString>("culprit");
        QTest::newRow("edited dataset") << false << false << false << "cdsItems";
        QTest::newRow("edited dataset with source") << false << true << false << "cdsItems";
        QTest::newRow("insert seen by source") << true << true << false << "dsItems";
        QTest::newRow("insert without edits") << true << false << false << "";
        QTest::newRow("Escape on a dialog") << false << false << true << "cdsItems";
    }

    void closeIsRefusedOverUnsavedChanges()
    {
        QFETCH(bool, insert);
        QFETCH(bool, withSource);
        QFETCH(bool, escape);
        QFETCH(QString, culprit);
        std::unique_ptr<QWidget> Form(escape ? MakeForm<QDialog>().release() : MakeForm().release());
        auto* Edit = new QLineEdit(Form.get());
        Manage(Form.get(), FoCheckModified | FoSavePosition);
        int Rejections = 0;
        if (escape)
            connect(static_cast<QDialog*>(Form.get()), &QDialog::rejected, this, [&] { ++Rejections; });
        const auto Close = [&] {
            if (!escape)
                return Form->close();
            QTest::keyClick(Edit, Qt::Key_Escape);
            return !Form->isVisible();
        };
        TClientDataSet* Ds = MakeItems(Form.get());
        if (withSource)
            Named(new TDataSource(Form.get()), "dsItems")->SetDataSet(Ds);
        QVERIFY(ShowAndActivate(Form.get()));
        Edit->setFocus();
        insert ? Ds->Insert() : SetName(Ds, QStringLiteral("Coffee"));
        {
            DialogDriver Driver;
            Driver.Click(QStringLiteral("btnOk"));
            const bool Closed = Close();
            QCOMPARE(Closed, culprit.isEmpty());
            QVERIFY(Driver.Errors.isEmpty());
            QCOMPARE(Driver.Seen.size(), Closed ? 0 : 1);
            if (Closed)
                return;
            QCOMPARE(Driver.Seen[0].Text, culprit + QStringLiteral("\r\n") + (m_rtl ? Arabic : English));
            QCOMPARE(Driver.Seen[0].Title, m_rtl ? QStringLiteral("خطأ") : QStringLiteral("Error"));
        }
        QVERIFY(Form->isVisible());
        QCOMPARE(Rejections, 0);
        insert ? Ds->Cancel() : Ds->Post();
        QVERIFY(Close());
        QVERIFY(!Form->isVisible());
        QCOMPARE(Rejections, escape ? 1 : 0);
        const QPoint At = Form->pos();
        Form.reset();
        QCOMPARE(IniLines(), (QStringList{"[FormItems.QxForm1]", QStringLiteral("Left=%1").arg(At.x()),
                                          QStringLiteral("Top=%1").arg(At.y())}));
    }

    void autoFreeDeletesTheClosedForm()
    {
        QPointer<QWidget> Freed = MakeForm().release(), Kept = MakeForm().release();
        Manage(Freed, FoAutoFree);
        Manage(Kept);
        for (QWidget* Form : {Freed.data(), Kept.data()}) {
            QVERIFY(ShowAndActivate(Form));
            QVERIFY(Form->close());
        }
        QTRY_VERIFY(Freed.isNull());
        QVERIFY(!Kept.isNull() && !Kept->isVisible());
        delete Kept;
    }

    void openingHooks_data()
    {
        QTest::addColumn<int>("handler"); // BeforeOpen: 0 none, 1 allows, 2 cancels
        QTest::addColumn<bool>("refresh");
        QTest::newRow("no handler") << 0 << false;
        QTest::newRow("no handler, refresh") << 0 << true;
        QTest::newRow("allows, refresh") << 1 << true;
        QTest::newRow("cancels") << 2 << false;
    }

    // BeforeOpen may stop the opening; the first activation refreshes the clean open
    // datasets once and is the only one the form itself sees.
    void openingHooks()
    {
        QFETCH(int, handler);
        QFETCH(bool, refresh);
        TOwnForm Form;
        Form.resize(300, 200);
        auto* M = Manage(&Form, refresh ? FoRefreshData : TxFormOptions());
        int Calls = 0, CleanRefreshes = 0, DirtyRefreshes = 0;
        QObject* Sender = nullptr;
        if (handler > 0)
            M->BeforeOpen = [&](QObject* S, bool& Cancel) {
                ++Calls;
                Sender = S;
                QVERIFY(!Cancel);
                Cancel = handler == 2;
            };
        TClientDataSet* Clean = MakeItems(&Form);
        TClientDataSet* Dirty = MakeItems(&Form);
        MakeItems(&Form)->Close();
        Clean->AfterRefresh = [&](TDataSet*) { ++CleanRefreshes; };
        Dirty->AfterRefresh = [&](TDataSet*) { ++DirtyRefreshes; };
        SetName(Dirty, QStringLiteral("Milk"));
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        Form.show();
        QCOMPARE(Calls, handler > 0 ? 1 : 0);
        QCOMPARE(Sender, handler > 0 ? &Form : nullptr);
        if (handler == 2) {
            QTRY_VERIFY(!Form.isVisible());
            QTest::qWait(50);
            QVERIFY(!Form.isVisible());
            QCOMPARE(QGuiApplication::overrideCursor(), nullptr); // taken back with the opening
            QVERIFY(!M->Opened());
            return;
        }
        QTest::qWait(50);
        QVERIFY(QGuiApplication::overrideCursor() != nullptr);
        while (QGuiApplication::overrideCursor())
            QGuiApplication::restoreOverrideCursor();
        QCOMPARE(M->Opened(), handler == 1);
        QVERIFY(ShowAndActivate(&Form));
        QVERIFY(!M->FirstStart());
        QCOMPARE(CleanRefreshes, refresh ? 1 : 0);
        QCOMPARE(DirtyRefreshes, 0);
        QCOMPARE(Form.Activations, 1);
        QCOMPARE(Dirty->FieldByName(QStringLiteral("Name"))->AsString(), QStringLiteral("Milk"));
        // Later activations neither refresh nor reach the form.
        QWidget Other;
        QVERIFY(ShowAndActivate(&Other));
        QVERIFY(ShowAndActivate(&Form));
        QCOMPARE(CleanRefreshes, refresh ? 1 : 0);
        QCOMPARE(Form.Activations, 1);
        QCOMPARE(Calls, handler > 0 ? 1 : 0);
        Dirty->Cancel();
    }

    void languageSwitchOfALiveForm()
    {
        TMenuForm F;
        auto* Central = new QWidget;
        F.Form.setCentralWidget(Central);
        auto* RowLayout = new QHBoxLayout(Central);
        auto* InLayout = new QLineEdit;
        InLayout->setFixedWidth(100);
        RowLayout->addWidget(InLayout);
        RowLayout->addStretch();
        auto* Placed = new QPushButton(QStringLiteral("Placed"), Central);
        Placed->setGeometry(10, 10, 80, 25);

        auto* M = Manage(&F.Form);
        M->SetCaptionA(QStringLiteral("الأصناف"));
        M->SetCaptionE(QStringLiteral("Items"));
        M->BiMenuItems().GetAllMenuItems();
        QCOMPARE(Names(M->BiMenuItems()), (QStringList{"mnuFile", "actOpen", "actQuit"}));
        const QStringList ArabicCaps{"ملف", "فتح", "خروج"}, EnglishCaps{"File", "Open", "Quit"};
        for (int I = 0; I < 3; ++I)
            M->BiMenuItems().SetMenuItemRec(I, {nullptr, QString(), ArabicCaps[I], EnglishCaps[I]});
        QVERIFY(ShowAndActivate(&F.Form));
        const QMargins Margins = RowLayout->contentsMargins();
        QTRY_COMPARE(InLayout->x(), m_rtl ? Central->width() - InLayout->width() - Margins.right() : Margins.left());
        const int PlacedX = Placed->x(), InLayoutX = InLayout->x();
        QObject* Sender = nullptr;
        int Calls = 0;
        M->OnLangChange = [&](QObject* S) { Sender = S, ++Calls; };

        M->SetLang(Mode(!m_rtl));
        QCOMPARE(M->GetLanguage(), Mode(!m_rtl));
        QCOMPARE(F.Form.layoutDirection(), m_rtl ? Qt::LeftToRight : Qt::RightToLeft);
        QCOMPARE(F.Form.windowTitle(), m_rtl ? QStringLiteral("Items") : QStringLiteral("الأصناف"));
        QCOMPARE((QStringList{F.File->title(), F.Open->text(), F.Quit->text()}), m_rtl ? EnglishCaps : ArabicCaps);
        QCOMPARE(Placed->x(), Central->width() - PlacedX - Placed->width());
        QTRY_COMPARE(InLayout->x(), Central->width() - InLayoutX - InLayout->width());
        QVERIFY(F.Form.isVisible());
        QCOMPARE(Calls, 1);
        QCOMPARE(Sender, M);
        QTRY_COMPARE(QApplication::activeWindow(), &F.Form);

        // And back: everything returns to where it was.
        M->SetLang(Mode(m_rtl));
        QCOMPARE(Placed->x(), PlacedX);
        QTRY_COMPARE(InLayout->x(), InLayoutX);
        QCOMPARE(F.Open->text(), (m_rtl ? ArabicCaps : EnglishCaps)[1]);
        QCOMPARE(Calls, 2);
    }

    void setLangRules_data()
    {
        QTest::addColumn<int>("which"); // 0 active, 1 shown but inactive, 2 never shown
        QTest::addColumn<bool>("same"); // switched to the language it already has
        QTest::addColumn<bool>("locked");
        QTest::addColumn<int>("calls");
        QTest::addColumn<bool>("visible");
        QTest::newRow("active form") << 0 << false << false << 1 << true;
        QTest::newRow("inactive form") << 1 << false << false << 0 << true;
        QTest::newRow("hidden form") << 2 << false << false << 0 << false;
        QTest::newRow("same language hides the form") << 0 << true << false << 0 << false;
        QTest::newRow("locked, same language") << 0 << true << true << 0 << true;
        QTest::newRow("locked, other language") << 0 << false << true << 0 << true;
    }

    // OnLangChange fires only on the active form; a locked form keeps its language.
    void setLangRules()
    {
        QFETCH(int, which);
        QFETCH(bool, same);
        QFETCH(bool, locked);
        QFETCH(int, calls);
        QFETCH(bool, visible);
        std::unique_ptr<QWidget> Forms[3];
        TQxForm* Managers[3];
        int Calls[3] = {0, 0, 0};
        for (int I = 0; I < 3; ++I) {
            Forms[I] = MakeForm(I == 0 ? "Form0" : I == 1 ? "Form1" : "Form2", QSize(200, 150));
            Managers[I] = Manage(Forms[I].get());
            Managers[I]->OnLangChange = [&Calls, I](QObject*) { ++Calls[I]; };
            Kesh::EndLoading(Forms[I].get());
        }
        QCOMPARE(Calls[0] + Calls[1] + Calls[2], 0); // loading switches no language
        QVERIFY(ShowAndActivate(Forms[1].get()));
        QVERIFY(ShowAndActivate(Forms[0].get()));
        Managers[which]->SetLangLocked(locked);
        Managers[which]->SetLang(Mode(same ? m_rtl : !m_rtl));
        QCOMPARE(Managers[which]->GetLanguage(), Mode(same || locked ? m_rtl : !m_rtl));
        QCOMPARE(Calls[which], calls);
        QCOMPARE(Calls[0] + Calls[1] + Calls[2], calls);
        QCOMPARE(Forms[which]->isVisible(), visible);
    }

    void texturePaintsTheBackground_data()
    {
        QTest::addColumn<int>("mode"); // 0 none, 1 stretched, 2 tiled
        // Colours at x = 35, 55, 95 (y = 5) and x = 95 at y = 45 (a partial tile).
        QTest::addColumn<QList<QRgb>>("expected");
        const QRgb R = qRgb(255, 0, 0), B = qRgb(0, 0, 255);
        QTest::newRow("stretched") << 1 << QList<QRgb>{R, B, B, B};
        QTest::newRow("tiled") << 2 << QList<QRgb>{R, B, R, R};
        QTest::newRow("none") << 0 << QList<QRgb>{};
    }

    void texturePaintsTheBackground()
    {
        QFETCH(int, mode);
        QFETCH(QList<QRgb>, expected);
        TOwnForm Form;
        Form.resize(100, 60);
        SetBiDiModeOf(&Form, Mode(m_rtl));
        auto* M = Manage(&Form);
        Kesh::EndLoading(&Form);
        QPixmap Texture(30, 20); // the left half red, the right half blue
        Texture.fill(Qt::blue);
        QPainter(&Texture).fillRect(0, 0, 15, 20, Qt::red);
        if (mode > 0)
            M->SetTexture(Texture);
        M->SetTile(mode == 2);
        QImage Image(Form.size(), QImage::Format_RGB32);
        Image.fill(Qt::white);
        Form.render(&Image);
        // The form's own painting never runs while it is managed.
        for (const QPoint& P : {QPoint(1, 1), QPoint(50, 30), QPoint(98, 58)})
            QVERIFY(Image.pixel(P) != qRgb(0, 255, 0));
        if (mode == 0)
            return;
        const QPoint At[] = {{35, 5}, {55, 5}, {95, 5}, {95, 45}};
        for (int I = 0; I < 4; ++I)
            QCOMPARE(Image.pixel(At[I]), expected[I]);
        delete M; // without the manager the form paints itself
        Form.render(&Image);
        QCOMPARE(Image.pixel(50, 30), qRgb(0, 255, 0));
    }

    void menuItemErrorsAreShown_data()
    {
        QTest::addColumn<int>("call"); // 0 add by name, 1 get, 2 set
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("text");
        QTest::newRow("unknown name") << 0 << 0 << "QxForm1TxBiMenuItems.AddMenuItem :\r\nAddItemByName ('mnuNone'): item not found!.";
        QTest::newRow("get below range") << 1 << -1 << "QxForm1TxBiMenuItems.GetMenuItemRec\r\nIndex out of range.";
        QTest::newRow("get at count") << 1 << 3 << "QxForm1TxBiMenuItems.GetMenuItemRec\r\nIndex out of range.";
        QTest::newRow("set at count") << 2 << 3 << "QxForm1TxBiMenuItems.SetMenuItemRec: \r\nIndex out of range.3";
        QTest::newRow("set below range") << 2 << -2 << "QxForm1TxBiMenuItems.SetMenuItemRec: \r\nIndex out of range.-2";
    }

    void menuItemErrorsAreShown()
    {
        QFETCH(int, call);
        QFETCH(int, index);
        QFETCH(QString, text);
        TMenuForm F;
        TxBiMenuItems& Items = Manage(&F.Form)->BiMenuItems();
        Items.GetAllMenuItems();
        DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        TxMenuItemRec Rec{nullptr, QString(), QStringLiteral("x"), QStringLiteral("y")};
        switch (call) {
        case 0: Items.AddMenuItem(QStringLiteral("mnuNone")); break;
        case 1: Rec = Items.GetMenuItemRec(index); break;
        case 2: Items.SetMenuItemRec(index, Rec); break;
        }
        QCOMPARE(Driver.Seen.size(), 1);
        QCOMPARE(Driver.Seen[0].Text, text);
        if (call == 1)
            QVERIFY(Rec.MenuItem.isNull() && Rec.ItemName.isEmpty() && Rec.CapA.isEmpty() && Rec.CapE.isEmpty());
        QCOMPARE(Names(Items), (QStringList{"mnuFile", "actOpen", "actQuit"}));
        QCOMPARE(Items.GetMenuItemRec(1).CapE, QStringLiteral("Open"));
    }

    void menuItemsFollowTheFormAndStream()
    {
        TMenuForm F;
        SetBiDiModeOf(&F.Form, Mode(m_rtl));
        TxBiMenuItems& Items = Manage(&F.Form)->BiMenuItems();
        Items.AddMenuItem(F.Open);
        Items.AddMenuItem(QStringLiteral("ACTQUIT")); // names compare without letter case
        QCOMPARE(Names(Items), (QStringList{"actOpen", "actQuit"}));
        QCOMPARE(Items.GetMenuItem(F.Quit), 1);
        QCOMPARE(Items.GetMenuItem(F.File->menuAction()), -1);
        QCOMPARE(Items.GetMenuItem(nullptr), -1);

        // A known item takes its new caption as the current language's one.
        F.Open->setText(QStringLiteral("Open…"));
        Items.AddMenuItem(F.Open);
        const TxMenuItemRec Rec = Items.GetMenuItemRec(0);
        QCOMPARE(Rec.CapA, m_rtl ? QStringLiteral("Open…") : QStringLiteral("Open"));
        QCOMPARE(Rec.CapE, m_rtl ? QStringLiteral("Open") : QStringLiteral("Open…"));
        QCOMPARE(Rec.MenuItem.data(), F.Open);

        // Everything named, separators and nameless items left out; gone items dropped.
        Items.GetAllMenuItems();
        QCOMPARE(Names(Items), (QStringList{"actOpen", "actQuit", "mnuFile"}));
        delete F.Quit;
        Items.GetAllMenuItems();
        QCOMPARE(Names(Items), (QStringList{"actOpen", "mnuFile"}));

        Items.SetMenuItemRec(0, {nullptr, QStringLiteral("ignored"), QStringLiteral("فتح"), QStringLiteral("Open file")});
        Items.UpdateAllMenus();
        QCOMPARE(F.Open->text(), m_rtl ? QStringLiteral("فتح") : QStringLiteral("Open file"));
        QCOMPARE(Items.GetMenuItemRec(0).ItemName, QStringLiteral("actOpen"));

        // Through a stream: the live item's present name is stored; loading finds it again.
        F.Open->setObjectName(QStringLiteral("actOpenFile"));
        const QByteArray Data = Written(Items);
        TMenuForm G;
        G.Open->setObjectName(QStringLiteral("actOpenFile"));
        TxBiMenuItems& Read = Manage(&G.Form)->BiMenuItems();
        QDataStream In(Data);
        In >> Read;
        QCOMPARE(Names(Read), (QStringList{"actOpenFile", "mnuFile"}));
        QVERIFY(Read.GetMenuItemRec(0).MenuItem.isNull());
        Kesh::EndLoading(&G.Form);
        QCOMPARE(Read.GetMenuItemRec(0).MenuItem.data(), G.Open);
        QCOMPARE(Read.GetMenuItemRec(0).CapA, QStringLiteral("فتح"));
        Read.UpdateAllMenus();
        QCOMPARE(G.Open->text(), m_rtl ? QStringLiteral("فتح") : QStringLiteral("Open file"));
        QCOMPARE(Written(Read), Data); // written again, the same bytes
        Items.ClearMenuItems();
        QCOMPARE(Items.Count(), 0);
    }

    void badMenuStreamsChangeNothing_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QString>("reason");
        const auto Build = [](auto Fill) {
            QByteArray B;
            QDataStream S(&B, QIODevice::WriteOnly);
            TWriter W(S);
            W.WriteListBegin();
            Fill(W);
            return B;
        };
        QByteArray Full;
        {
            TMenuForm F;
            TxBiMenuItems& Items = Manage(&F.Form)->BiMenuItems();
            Items.GetAllMenuItems();
            Full = Written(Items);
        }
        for (int Cut : {0, 1, 3, 6, 11, int(Full.size()) / 2, int(Full.size()) - 1})
            QTest::addRow("cut at %d", Cut) << Full.left(Cut) << "ends in the middle";
        QTest::newRow("negative count") << Build([](TWriter& W) { W.WriteInteger(-1); W.WriteListEnd(); })
                                        << "Invalid record count -1.";
        QTest::newRow("more records than counted")
            << Build([](TWriter& W) { W.WriteInteger(0); W.WriteString(QStringLiteral("a")); W.WriteListEnd(); })
            << "more than 0 records";
        QTest::newRow("integer for a name") << Build([](TWriter& W) { W.WriteInteger(1); W.WriteInteger(7); })
                                            << "expected string";
        QTest::newRow("huge count") << Build([](TWriter& W) { W.WriteInteger(2000000000); W.WriteString(QStringLiteral("a")); })
                                    << "ends in the middle";
    }

    void badMenuStreamsChangeNothing()
    {
        QFETCH(QByteArray, data);
        QFETCH(QString, reason);
        TMenuForm F;
        TxBiMenuItems& Items = Manage(&F.Form)->BiMenuItems();
        Items.AddMenuItem(F.Quit);
        QDataStream In(data);
        try {
            In >> Items;
            QFAIL("no error raised");
        } catch (const EReadError& E) {
            QVERIFY2(E.Message.startsWith(QStringLiteral("TxBiMenuItems.ReadMenuItems\r\n")), qPrintable(E.Message));
            QVERIFY2(E.Message.contains(reason), qPrintable(E.Message));
        }
        QCOMPARE(Names(Items), QStringList{"actQuit"});
        QCOMPARE(Items.GetMenuItemRec(0).MenuItem.data(), F.Quit);
    }

    void biMessagesFollowTheApplication()
    {
        TxBiStrings List;
        List.Add(3, QStringLiteral("ثلاثة"), QStringLiteral("three"), RaNothing);
        auto Form = MakeForm();
        auto* M = Manage(Form.get());
        M->SetBiStrings(List);
        TQxBiDiStrings Carrier;
        Carrier.setProperty("BiStrings", QVariant::fromValue(List));
        List.Clear(); // both hold copies
        Application()->SetBiDiMode(Mode(!m_rtl));
        QCOMPARE(M->GetBiMsg(3), m_rtl ? QStringLiteral("three") : QStringLiteral("ثلاثة"));
        QCOMPARE(Carrier.GetBiMsg(3), M->GetBiMsg(3));
    }

    void focusGoesToANearbyControl_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("disabled");
        QTest::addColumn<QString>("hidden");
        QTest::addColumn<bool>("reversed"); // edD before edC in tab order
        QTest::addColumn<QString>("expected");
        QTest::newRow("control itself") << "edD" << "" << "" << false << "edD";
        QTest::newRow("disabled: next in parent") << "edC" << "edC" << "" << false << "edD";
        QTest::newRow("hidden: next in parent") << "edC" << "" << "edC" << false << "edD";
        QTest::newRow("last disabled: wraps") << "edD" << "edD" << "" << false << "edC";
        QTest::newRow("alone in parent: neighbour") << "edE" << "edE" << "" << false << "edC";
        QTest::newRow("hidden parent: neighbour") << "edE" << "" << "P2" << false << "edC";
        QTest::newRow("neighbour by tab order") << "edE" << "edE" << "" << true << "edD";
        QTest::newRow("container: its first") << "P1" << "" << "" << false << "edC";
        QTest::newRow("nothing can take it") << "edE" << "edE,edC,edD" << "" << false << "";
    }

    void focusGoesToANearbyControl()
    {
        QFETCH(QString, control);
        QFETCH(QString, disabled);
        QFETCH(QString, hidden);
        QFETCH(bool, reversed);
        QFETCH(QString, expected);
        QWidget Form;
        Form.resize(300, 200);
        QWidget* P1 = Named(new QWidget(&Form), "P1");
        P1->resize(300, 90);
        QWidget* P2 = Named(new QWidget(&Form), "P2");
        P2->move(0, 100);
        QWidget* C = Named(new QLineEdit(P1), "edC");
        QWidget* D = Named(new QLineEdit(P1), "edD");
        D->move(0, 40);
        Named(new QLineEdit(P2), "edE");
        if (reversed)
            QWidget::setTabOrder(D, C);
        for (const QString& Name : disabled.split(QLatin1Char(','), Qt::SkipEmptyParts))
            Form.findChild<QWidget*>(Name)->setEnabled(false);
        if (!hidden.isEmpty())
            Form.findChild<QWidget*>(hidden)->hide();
        QVERIFY(ShowAndActivate(&Form));
        if (QWidget* Focused = QApplication::focusWidget())
            Focused->clearFocus();
        QCOMPARE(Form.focusWidget(), nullptr);

        FocusOnControl(Form.findChild<QWidget*>(control));
        QWidget* Got = Form.focusWidget();
        QCOMPARE(Got ? Got->objectName() : QString(), expected);
        FocusOnControl(nullptr); // harmless
    }

private:
    QTemporaryDir m_dir;
    QString m_savedConfig;
    int m_run = 0;
    bool m_rtl = false;
};

int main(int argc, char** argv)
{
    TQxApplication App(argc, argv);
    App.setAttribute(Qt::AA_Use96Dpi, true);
    TestFormManager Test;
    return QTest::qExec(&Test, argc, argv);
}
#include "tst_form_manager.moc"
