// The form manager on live forms: creation rules, placement in the settings file, closing
// over unsaved changes, the language switch, opening hooks, background pictures, the
// bilingual menu captions and their stream form, and focus recovery.
#include "dialog_helper.h"

#include <Kesh.h>
#include "form_manager.h"
#include "platform/data/client_dataset.h"
#include "platform/data/data_source.h"
#include "platform/data/fields.h"
#include "platform/exceptions.h"
#include "platform/filer.h"

#include <QAction>
#include <QDialog>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
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

QSize ScreenSize()
{
    return QGuiApplication::primaryScreen()->geometry().size();
}

// A form with a name and a size, not shown.
std::unique_ptr<QWidget> MakeForm(const QString& Name, QSize Size = QSize(400, 300))
{
    auto Form = std::make_unique<QWidget>();
    Form->setObjectName(Name);
    Form->resize(Size);
    return Form;
}

// "cdsItems": one posted row (Id 1, Name Tea).
TClientDataSet* MakeItems(QObject* Owner)
{
    auto* Ds = new TClientDataSet(Owner);
    Ds->setObjectName(QStringLiteral("cdsItems"));
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
        if (E->type() == QEvent::WindowActivate)
            ++Activations;
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
        File = Form.menuBar()->addMenu(QStringLiteral("File"));
        File->setObjectName(QStringLiteral("mnuFile"));
        Open = File->addAction(QStringLiteral("Open"));
        Open->setObjectName(QStringLiteral("actOpen"));
        File->addSeparator()->setObjectName(QStringLiteral("sep1"));
        File->addAction(QStringLiteral("-"))->setObjectName(QStringLiteral("sep2"));
        Quit = File->addAction(QStringLiteral("Quit"));
        Quit->setObjectName(QStringLiteral("actQuit"));
        Form.menuBar()->addAction(QStringLiteral("Help"));
    }
    QMainWindow Form;
    QMenu* File;
    QAction* Open;
    QAction* Quit;
};

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
    void initTestCase() { QVERIFY(m_dir.isValid()); }

    void init()
    {
        m_savedConfig = ConfigFile;
        ConfigFile = m_dir.filePath(QStringLiteral("form-%1.ini").arg(QString::fromLatin1(QTest::currentDataTag())));
        QFile::remove(ConfigFile);
        Application()->SetBiDiMode(bdLeftToRight);
    }

    void cleanup()
    {
        Application()->SetBiDiMode(bdLeftToRight);
        ConfigFile = m_savedConfig;
    }

    // ------------------------------------------------------------ creation

    void creationRefusesWrongOwners_data()
    {
        QTest::addColumn<int>("owner");
        QTest::addColumn<QString>("text");
        const QString NotForm = QStringLiteral("QxForm1.Create\r\nOnly Allowed for TForm classes.");
        QTest::newRow("plain object") << 0 << NotForm;
        QTest::newRow("no owner") << 1 << NotForm;
        QTest::newRow("control on a form") << 2 << NotForm;
        QTest::newRow("second manager") << 3
                                        << QStringLiteral("QxForm1.Create\r\nOnly one TxForm class is allowed for each form.");
    }

    void creationRefusesWrongOwners()
    {
        QFETCH(int, owner);
        QFETCH(QString, text);
        QObject Plain;
        auto Form = MakeForm(QStringLiteral("Form1"));
        auto* Control = new QWidget(Form.get());
        if (owner == 3)
            new TQxForm(Form.get(), QStringLiteral("First"));
        QObject* Owners[] = {&Plain, nullptr, Control, Form.get()};
        DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        const auto Make = [&] { return new TQxForm(Owners[owner], QStringLiteral("QxForm1")); };
        QVERIFY_THROWS_EXCEPTION(EAbort, Make());
        QCOMPARE(Driver.Seen.size(), 1);
        QCOMPARE(Driver.Seen[0].Text, text);
        QCOMPARE(Form->findChildren<TQxForm*>().size(), owner == 3 ? 1 : 0);
        QCOMPARE(Plain.children().size(), 0);
    }

    void creationDefaults_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<TxFormOptions>("options");
        const TxFormOptions Mdi = FoSavePosition | FoSaveSize;
        for (bool Rtl : {false, true}) {
            const char* Dir = Rtl ? " rtl" : " ltr";
            QTest::addRow("widget%s", Dir) << 0 << Rtl << TxFormOptions(FoAutoCenter);
            QTest::addRow("dialog%s", Dir) << 1 << Rtl << TxFormOptions(FoAutoCenter);
            QTest::addRow("main window%s", Dir) << 2 << Rtl << TxFormOptions(FoAutoCenter);
            QTest::addRow("mdi parent%s", Dir) << 3 << Rtl << Mdi;
            QTest::addRow("mdi child%s", Dir) << 4 << Rtl << Mdi;
        }
    }

    void creationDefaults()
    {
        QFETCH(int, kind);
        QFETCH(bool, rtl);
        QFETCH(TxFormOptions, options);
        QMainWindow Main;
        auto* Area = new QMdiArea;
        Main.setCentralWidget(Area);
        QWidget* Form = nullptr;
        std::unique_ptr<QWidget> Owned;
        switch (kind) {
        case 0: Owned = std::make_unique<QWidget>(); break;
        case 1: Owned = std::make_unique<QDialog>(); break;
        case 2: Owned = std::make_unique<QMainWindow>(); break;
        case 3: Form = &Main; break;
        case 4: Form = Area->addSubWindow(new QWidget)->widget(); break;
        }
        if (Owned)
            Form = Owned.get();
        Form->setWindowTitle(QStringLiteral("Caption"));
        SetBiDiModeOf(Form, rtl ? bdRightToLeft : bdLeftToRight);
        auto* M = new TQxForm(Form, QStringLiteral("QxForm1"));
        QCOMPARE(M->GetOptions(), options);
        QCOMPARE(M->property("Options").value<TxFormOptions>(), options);
        QCOMPARE(M->GetLanguage(), rtl ? bdRightToLeft : bdLeftToRight);
        QCOMPARE(M->GetCaptionA(), rtl ? QStringLiteral("Caption") : QString());
        QCOMPARE(M->GetCaptionE(), rtl ? QString() : QStringLiteral("Caption"));
        QVERIFY(M->FirstStart());
        QVERIFY(!M->Opened());
        QCOMPARE(M->OwnerForm(), Form);
        // The caption of the current language is the form's caption.
        M->SetCaptionA(QStringLiteral("عنوان"));
        M->SetCaptionE(QStringLiteral("Title"));
        QCOMPARE(Form->windowTitle(), rtl ? QStringLiteral("عنوان") : QStringLiteral("Title"));
    }

    // ------------------------------------------------------------ placement

    void firstRunIsCentred_data()
    {
        QTest::addColumn<TxFormOptions>("options");
        QTest::addColumn<bool>("rtl");
        for (bool Rtl : {false, true}) {
            const char* Dir = Rtl ? " rtl" : " ltr";
            QTest::addRow("auto centre%s", Dir) << TxFormOptions(FoAutoCenter) << Rtl;
            QTest::addRow("saved position and size%s", Dir) << (FoSavePosition | FoSaveSize) << Rtl;
            QTest::addRow("saved position%s", Dir) << TxFormOptions(FoSavePosition) << Rtl;
        }
    }

    void firstRunIsCentred()
    {
        QFETCH(TxFormOptions, options);
        QFETCH(bool, rtl);
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        // Odd free space: the divisions truncate.
        auto Form = MakeForm(QStringLiteral("FormItems"), QSize(301, 211));
        Form->move(7, 9);
        auto* M = new TQxForm(Form.get(), QStringLiteral("QxForm1"));
        M->SetOptions(options);
        Kesh::EndLoading(Form.get());
        const QSize S = ScreenSize();
        QCOMPARE(Form->pos(), QPoint((S.width() - 301) / 2, (S.height() - 211) / 3));
        QCOMPARE(Form->size(), QSize(301, 211));
        QVERIFY(!QFile::exists(ConfigFile));
    }

    void placementIsSavedAndRestored_data()
    {
        QTest::addColumn<TxFormOptions>("options");
        QTest::addColumn<bool>("managerAlone");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QStringList>("keys");
        const QStringList Size{"Height=240", "Maximized=False", "Width=320"};
        for (bool Rtl : {false, true}) {
            const char* Dir = Rtl ? " rtl" : " ltr";
            for (bool Alone : {false, true}) {
                const char* How = Alone ? " manager deleted" : " form deleted";
                QTest::addRow("position and size%s%s", How, Dir) << (FoSavePosition | FoSaveSize) << Alone << Rtl
                                                                 << (QStringList{"Height=240", "Left=50", "Maximized=False", "Top=60", "Width=320"});
                QTest::addRow("position%s%s", How, Dir) << TxFormOptions(FoSavePosition) << Alone << Rtl << QStringList{"Left=50", "Top=60"};
                QTest::addRow("size%s%s", How, Dir) << TxFormOptions(FoSaveSize) << Alone << Rtl << Size;
            }
            QTest::addRow("auto centre%s", Dir) << TxFormOptions(FoAutoCenter) << false << Rtl << QStringList();
        }
    }

    void placementIsSavedAndRestored()
    {
        QFETCH(TxFormOptions, options);
        QFETCH(bool, managerAlone);
        QFETCH(bool, rtl);
        QFETCH(QStringList, keys);
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        {
            auto Form = MakeForm(QStringLiteral("FormItems"), QSize(200, 150));
            auto* M = new TQxForm(Form.get(), QStringLiteral("QxForm1"));
            M->SetOptions(options);
            Kesh::EndLoading(Form.get());
            Form->move(50, 60);
            Form->resize(320, 240);
            if (managerAlone) {
                delete M;
                QCOMPARE(IniLines().mid(1), keys);
            }
        }
        const QStringList Lines = IniLines();
        QCOMPARE(Lines.mid(1), keys);
        if (!keys.isEmpty())
            QCOMPARE(Lines.value(0), QStringLiteral("[FormItems.QxForm1]"));

        auto Form = MakeForm(QStringLiteral("FormItems"), QSize(200, 150));
        auto* M = new TQxForm(Form.get(), QStringLiteral("QxForm1"));
        M->SetOptions(options);
        Kesh::EndLoading(Form.get());
        const QSize Size = options.testFlag(FoSaveSize) ? QSize(320, 240) : QSize(200, 150);
        const QSize S = ScreenSize();
        const QPoint Centre((S.width() - Size.width()) / 2, (S.height() - Size.height()) / 3);
        QCOMPARE(Form->size(), Size);
        QCOMPARE(Form->pos(), options.testFlag(FoSavePosition) ? QPoint(50, 60) : Centre);
        QVERIFY(!Form->isMaximized());
    }

    void maximizedFormIsSavedAndRestored()
    {
        QSize Maximized;
        {
            auto Form = MakeForm(QStringLiteral("FormItems"), QSize(200, 150));
            auto* M = new TQxForm(Form.get(), QStringLiteral("QxForm1"));
            M->SetOptions(FoSavePosition | FoSaveSize);
            Form->showMaximized();
            QVERIFY(QTest::qWaitForWindowExposed(Form.get()));
            QTRY_VERIFY(Form->width() > 200);
            Maximized = Form->size();
            QVERIFY(Form->close());
        }
        QVERIFY(IniLines().contains(QStringLiteral("Maximized=True")));
        QVERIFY(IniLines().contains(QStringLiteral("Width=%1").arg(Maximized.width())));
        QVERIFY(IniLines().contains(QStringLiteral("Height=%1").arg(Maximized.height())));

        auto Form = MakeForm(QStringLiteral("FormItems"), QSize(200, 150));
        auto* M = new TQxForm(Form.get(), QStringLiteral("QxForm1"));
        M->SetOptions(FoSavePosition | FoSaveSize);
        Kesh::EndLoading(Form.get());
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
        auto* Child = new QWidget;
        Child->setObjectName(QStringLiteral("FormChild"));
        QMdiSubWindow* Sub = Area->addSubWindow(Child);
        Sub->resize(300, 200);
        new TQxForm(Child, QStringLiteral("QxForm1"));
        Sub->show();
        const QSize Room = Area->viewport()->size();
        QCOMPARE(Sub->pos(), QPoint((Room.width() - 300) / 2, (Room.height() - 200) / 3));
        Sub->move(20, 30);
        delete Sub;
        QCOMPARE(IniLines(), (QStringList{"[FormChild.QxForm1]", "Height=200", "Left=20", "Maximized=False",
                                          "Top=30", "Width=300"}));
    }

    // ------------------------------------------------------------ closing

    // Escape on a managed dialog passes the same check as closing it.
    void escapeOnADialogIsChecked()
    {
        Application()->SetBiDiMode(bdLeftToRight);
        auto Dialog = std::make_unique<QDialog>();
        Dialog->setObjectName(QStringLiteral("DlgItems"));
        Dialog->resize(300, 200);
        auto* Edit = new QLineEdit(Dialog.get());
        auto* M = new TQxForm(Dialog.get(), QStringLiteral("QxForm1"));
        M->SetOptions(M->GetOptions() | FoCheckModified);
        TClientDataSet* Ds = MakeItems(Dialog.get());
        QSignalSpy Rejected(Dialog.get(), &QDialog::rejected);
        QVERIFY(ShowAndActivate(Dialog.get()));
        Edit->setFocus();
        Ds->Edit();
        Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("Coffee"));
        {
            DialogDriver Driver;
            Driver.Click(QStringLiteral("btnOk"));
            QTest::keyClick(Edit, Qt::Key_Escape);
            QVERIFY(Driver.Errors.isEmpty());
            QCOMPARE(Driver.Seen.size(), 1);
            QCOMPARE(Driver.Seen[0].Text, QStringLiteral("cdsItems\r\n") + English);
        }
        QVERIFY(Dialog->isVisible());
        QCOMPARE(Rejected.count(), 0);
        Ds->Post();
        QTest::keyClick(Edit, Qt::Key_Escape);
        QVERIFY(!Dialog->isVisible());
        QCOMPARE(Rejected.count(), 1);
        QCOMPARE(Dialog->result(), int(QDialog::Rejected));
    }

    void closeIsRefusedOverUnsavedChanges_data()
    {
        QTest::addColumn<int>("change"); // 0 edit, 1 insert
        QTest::addColumn<bool>("withSource");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("culprit");
        for (bool Rtl : {false, true}) {
            const char* Dir = Rtl ? " rtl" : " ltr";
            QTest::addRow("edited dataset%s", Dir) << 0 << false << Rtl << "cdsItems";
            QTest::addRow("edited dataset with source%s", Dir) << 0 << true << Rtl << "cdsItems";
            QTest::addRow("insert seen by source%s", Dir) << 1 << true << Rtl << "dsItems";
            QTest::addRow("insert without edits%s", Dir) << 1 << false << Rtl << "";
        }
    }

    void closeIsRefusedOverUnsavedChanges()
    {
        QFETCH(int, change);
        QFETCH(bool, withSource);
        QFETCH(bool, rtl);
        QFETCH(QString, culprit);
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        auto Form = MakeForm(QStringLiteral("FormItems"));
        auto* M = new TQxForm(Form.get(), QStringLiteral("QxForm1"));
        M->SetOptions(M->GetOptions() | FoCheckModified | FoSavePosition);
        TClientDataSet* Ds = MakeItems(Form.get());
        if (withSource) {
            auto* Source = new TDataSource(Form.get());
            Source->setObjectName(QStringLiteral("dsItems"));
            Source->SetDataSet(Ds);
        }
        QVERIFY(ShowAndActivate(Form.get()));
        if (change == 0) {
            Ds->Edit();
            Ds->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("Coffee"));
        } else {
            Ds->Insert();
        }
        {
            DialogDriver Driver;
            Driver.Click(QStringLiteral("btnOk"));
            const bool Closed = Form->close();
            QCOMPARE(Closed, culprit.isEmpty());
            QVERIFY(Driver.Errors.isEmpty());
            if (Closed) {
                QCOMPARE(Driver.Seen.size(), 0);
                return;
            }
            QCOMPARE(Driver.Seen.size(), 1);
            QCOMPARE(Driver.Seen[0].Text, culprit + QStringLiteral("\r\n") + (rtl ? Arabic : English));
            QCOMPARE(Driver.Seen[0].Title, rtl ? QStringLiteral("خطأ") : QStringLiteral("Error"));
        }
        QVERIFY(Form->isVisible());
        if (change == 0)
            Ds->Post();
        else
            Ds->Cancel();
        QVERIFY(Form->close());
        QVERIFY(!Form->isVisible());
        const QPoint At = Form->pos();
        Form.reset();
        QCOMPARE(IniLines(), (QStringList{"[FormItems.QxForm1]", QStringLiteral("Left=%1").arg(At.x()),
                                          QStringLiteral("Top=%1").arg(At.y())}));
    }

    void autoFreeDeletesTheClosedForm_data()
    {
        QTest::addColumn<bool>("autoFree");
        QTest::addColumn<bool>("rtl");
        for (bool Rtl : {false, true}) {
            QTest::addRow("auto free%s", Rtl ? " rtl" : " ltr") << true << Rtl;
            QTest::addRow("kept%s", Rtl ? " rtl" : " ltr") << false << Rtl;
        }
    }

    void autoFreeDeletesTheClosedForm()
    {
        QFETCH(bool, autoFree);
        QFETCH(bool, rtl);
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        auto* Raw = MakeForm(QStringLiteral("FormItems")).release();
        QPointer<QWidget> Form = Raw;
        auto* M = new TQxForm(Raw, QStringLiteral("QxForm1"));
        if (autoFree)
            M->SetOptions(M->GetOptions() | FoAutoFree);
        QVERIFY(ShowAndActivate(Raw));
        QVERIFY(Raw->close());
        if (autoFree) {
            QTRY_VERIFY(Form.isNull());
        } else {
            QTest::qWait(50);
            QVERIFY(!Form.isNull());
            QVERIFY(!Form->isVisible());
            delete Raw;
        }
    }

    // ------------------------------------------------------------ opening

    void beforeOpenCanCancel_data()
    {
        QTest::addColumn<int>("handler"); // 0 none, 1 allows, 2 cancels
        QTest::addColumn<bool>("rtl");
        for (bool Rtl : {false, true}) {
            const char* Dir = Rtl ? " rtl" : " ltr";
            QTest::addRow("no handler%s", Dir) << 0 << Rtl;
            QTest::addRow("allows%s", Dir) << 1 << Rtl;
            QTest::addRow("cancels%s", Dir) << 2 << Rtl;
        }
    }

    void beforeOpenCanCancel()
    {
        QFETCH(int, handler);
        QFETCH(bool, rtl);
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        auto Form = MakeForm(QStringLiteral("FormItems"));
        auto* M = new TQxForm(Form.get(), QStringLiteral("QxForm1"));
        int Calls = 0;
        QObject* Sender = nullptr;
        if (handler > 0)
            M->BeforeOpen = [&](QObject* S, bool& Cancel) {
                ++Calls;
                Sender = S;
                QVERIFY(!Cancel);
                Cancel = handler == 2;
            };
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
        Form->show();
        QCOMPARE(Calls, handler > 0 ? 1 : 0);
        if (handler > 0)
            QCOMPARE(Sender, Form.get());
        if (handler == 2) {
            QTRY_VERIFY(!Form->isVisible());
            QCOMPARE(QGuiApplication::overrideCursor(), nullptr);
        } else {
            QTest::qWait(50);
            QVERIFY(Form->isVisible());
            QVERIFY(QGuiApplication::overrideCursor() != nullptr);
        }
        while (QGuiApplication::overrideCursor())
            QGuiApplication::restoreOverrideCursor();
        QCOMPARE(M->Opened(), handler == 1);
    }

    void firstActivationRefreshesOnce_data()
    {
        QTest::addColumn<bool>("refresh");
        QTest::addColumn<bool>("rtl");
        for (bool Rtl : {false, true}) {
            QTest::addRow("refresh%s", Rtl ? " rtl" : " ltr") << true << Rtl;
            QTest::addRow("no refresh%s", Rtl ? " rtl" : " ltr") << false << Rtl;
        }
    }

    void firstActivationRefreshesOnce()
    {
        QFETCH(bool, refresh);
        QFETCH(bool, rtl);
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        TOwnForm Form;
        Form.setObjectName(QStringLiteral("FormItems"));
        Form.resize(300, 200);
        auto* M = new TQxForm(&Form, QStringLiteral("QxForm1"));
        if (refresh)
            M->SetOptions(M->GetOptions() | FoRefreshData);
        TClientDataSet* Clean = MakeItems(&Form);
        TClientDataSet* Dirty = MakeItems(&Form);
        TClientDataSet* Closed = MakeItems(&Form);
        Closed->Close();
        int CleanRefreshes = 0, DirtyRefreshes = 0;
        Clean->AfterRefresh = [&](TDataSet*) { ++CleanRefreshes; };
        Dirty->AfterRefresh = [&](TDataSet*) { ++DirtyRefreshes; };
        Dirty->Edit();
        Dirty->FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("Milk"));

        QVERIFY(ShowAndActivate(&Form));
        QVERIFY(!M->FirstStart());
        QCOMPARE(CleanRefreshes, refresh ? 1 : 0);
        QCOMPARE(DirtyRefreshes, 0);
        QCOMPARE(Form.Activations, 1);
        QCOMPARE(Dirty->FieldByName(QStringLiteral("Name"))->AsString(), QStringLiteral("Milk"));

        // Later activations neither refresh nor reach the form.
        QWidget Other;
        Other.resize(100, 100);
        QVERIFY(ShowAndActivate(&Other));
        QVERIFY(ShowAndActivate(&Form));
        QCOMPARE(CleanRefreshes, refresh ? 1 : 0);
        QCOMPARE(Form.Activations, 1);
        Dirty->Cancel();
    }

    // ------------------------------------------------------------ language

    void languageSwitchOfALiveForm_data()
    {
        QTest::addColumn<bool>("startRtl");
        QTest::newRow("english to arabic") << false;
        QTest::newRow("arabic to english") << true;
    }

    void languageSwitchOfALiveForm()
    {
        QFETCH(bool, startRtl);
        Application()->SetBiDiMode(startRtl ? bdRightToLeft : bdLeftToRight);
        TMenuForm F;
        auto* Central = new QWidget;
        F.Form.setCentralWidget(Central);
        auto* Placed = new QPushButton(QStringLiteral("Placed"), Central);
        Placed->setGeometry(10, 10, 80, 25);
        auto* Row = new QWidget(Central);
        Row->setGeometry(0, 100, 300, 40);
        auto* RowLayout = new QHBoxLayout(Row);
        auto* InLayout = new QLineEdit(Row);
        InLayout->setFixedWidth(100);
        RowLayout->addWidget(InLayout);
        RowLayout->addStretch();

        auto* M = new TQxForm(&F.Form, QStringLiteral("QxForm1"));
        M->SetCaptionA(QStringLiteral("الأصناف"));
        M->SetCaptionE(QStringLiteral("Items"));
        M->BiMenuItems().GetAllMenuItems();
        QCOMPARE(Names(M->BiMenuItems()), (QStringList{"mnuFile", "actOpen", "actQuit"}));
        const QStringList ArabicCaps{"ملف", "فتح", "خروج"};
        const QStringList EnglishCaps{"File", "Open", "Quit"};
        for (int I = 0; I < 3; ++I) {
            TxMenuItemRec Rec;
            Rec.CapA = ArabicCaps[I];
            Rec.CapE = EnglishCaps[I];
            M->BiMenuItems().SetMenuItemRec(I, Rec);
        }
        QVERIFY(ShowAndActivate(&F.Form));
        QTRY_COMPARE(InLayout->x(), startRtl ? Row->width() - InLayout->width() - RowLayout->contentsMargins().right()
                                             : RowLayout->contentsMargins().left());
        const int PlacedX = Placed->x();
        const int InLayoutX = InLayout->x();
        QObject* Sender = nullptr;
        int Calls = 0;
        M->OnLangChange = [&](QObject* S) {
            Sender = S;
            ++Calls;
        };

        M->SetLang(startRtl ? bdLeftToRight : bdRightToLeft);

        const bool Rtl = !startRtl;
        QCOMPARE(M->GetLanguage(), Rtl ? bdRightToLeft : bdLeftToRight);
        QCOMPARE(F.Form.layoutDirection(), Rtl ? Qt::RightToLeft : Qt::LeftToRight);
        QCOMPARE(Placed->layoutDirection(), F.Form.layoutDirection());
        QCOMPARE(F.Form.windowTitle(), Rtl ? QStringLiteral("الأصناف") : QStringLiteral("Items"));
        const QStringList& Caps = Rtl ? ArabicCaps : EnglishCaps;
        QCOMPARE(F.File->title(), Caps[0]);
        QCOMPARE(F.Open->text(), Caps[1]);
        QCOMPARE(F.Quit->text(), Caps[2]);
        QCOMPARE(Placed->x(), Central->width() - PlacedX - Placed->width());
        QTRY_COMPARE(InLayout->x(), Row->width() - InLayoutX - InLayout->width());
        QVERIFY(F.Form.isVisible());
        QCOMPARE(Calls, 1);
        QCOMPARE(Sender, M);
        QTRY_COMPARE(QApplication::activeWindow(), &F.Form);

        // And back: everything returns to where it was.
        M->SetLang(startRtl ? bdRightToLeft : bdLeftToRight);
        QCOMPARE(Placed->x(), PlacedX);
        QTRY_COMPARE(InLayout->x(), InLayoutX);
        QCOMPARE(F.Open->text(), (startRtl ? ArabicCaps : EnglishCaps)[1]);
        QCOMPARE(Calls, 2);
    }

    void langChangeFiresOnlyOnTheActiveForm_data()
    {
        QTest::addColumn<int>("which"); // 0 active, 1 shown but inactive, 2 never shown
        QTest::addColumn<int>("calls");
        QTest::newRow("active form") << 0 << 1;
        QTest::newRow("inactive form") << 1 << 0;
        QTest::newRow("hidden form") << 2 << 0;
    }

    void langChangeFiresOnlyOnTheActiveForm()
    {
        QFETCH(int, which);
        QFETCH(int, calls);
        std::unique_ptr<QWidget> Forms[3];
        TQxForm* Managers[3];
        int Calls[3] = {0, 0, 0};
        for (int I = 0; I < 3; ++I) {
            Forms[I] = MakeForm(QStringLiteral("Form%1").arg(I), QSize(200, 150));
            Managers[I] = new TQxForm(Forms[I].get(), QStringLiteral("QxForm1"));
            Managers[I]->OnLangChange = [&Calls, I](QObject*) { ++Calls[I]; };
            Kesh::EndLoading(Forms[I].get());
        }
        // Loading switches no language: nothing fired.
        QCOMPARE(Calls[0] + Calls[1] + Calls[2], 0);
        QVERIFY(ShowAndActivate(Forms[1].get()));
        QVERIFY(ShowAndActivate(Forms[0].get()));
        Managers[which]->SetLang(bdRightToLeft);
        QCOMPARE(Managers[which]->GetLanguage(), bdRightToLeft);
        QCOMPARE(Calls[which], calls);
        QCOMPARE(Calls[0] + Calls[1] + Calls[2], calls);
        QCOMPARE(Forms[which]->isVisible(), which != 2);
    }

    void switchToTheCurrentLanguageHidesTheForm_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("locked");
        QTest::newRow("english") << false << false;
        QTest::newRow("arabic") << true << false;
        QTest::newRow("locked english") << false << true;
        QTest::newRow("locked arabic") << true << true;
    }

    void switchToTheCurrentLanguageHidesTheForm()
    {
        QFETCH(bool, rtl);
        QFETCH(bool, locked);
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        auto Form = MakeForm(QStringLiteral("FormItems"));
        auto* M = new TQxForm(Form.get(), QStringLiteral("QxForm1"));
        QVERIFY(ShowAndActivate(Form.get()));
        M->SetLangLocked(locked);
        M->SetLang(rtl ? bdRightToLeft : bdLeftToRight);
        QCOMPARE(Form->isVisible(), locked);
        // A locked form does not switch at all.
        Form->show();
        M->SetLang(rtl ? bdLeftToRight : bdRightToLeft);
        QCOMPARE(M->GetLanguage(), locked == rtl ? bdRightToLeft : bdLeftToRight);
        QCOMPARE(Form->isVisible(), true);
    }

    // ------------------------------------------------------------ painting

    void texturePaintsTheBackground_data()
    {
        QTest::addColumn<int>("mode"); // 0 none, 1 stretched, 2 tiled
        QTest::addColumn<bool>("rtl");
        // Colours at x = 35, 55, 95 (y = 5) and x = 95 at y = 45 (a partial tile).
        QTest::addColumn<QList<QRgb>>("expected");
        const QRgb R = qRgb(255, 0, 0), B = qRgb(0, 0, 255);
        for (bool Rtl : {false, true}) {
            const char* Dir = Rtl ? " rtl" : " ltr";
            QTest::addRow("stretched%s", Dir) << 1 << Rtl << QList<QRgb>{R, B, B, B};
            QTest::addRow("tiled%s", Dir) << 2 << Rtl << QList<QRgb>{R, B, R, R};
            QTest::addRow("none%s", Dir) << 0 << Rtl << QList<QRgb>{};
        }
    }

    void texturePaintsTheBackground()
    {
        QFETCH(int, mode);
        QFETCH(bool, rtl);
        QFETCH(QList<QRgb>, expected);
        TOwnForm Form;
        Form.setObjectName(QStringLiteral("FormItems"));
        Form.resize(100, 60);
        SetBiDiModeOf(&Form, rtl ? bdRightToLeft : bdLeftToRight);
        auto* M = new TQxForm(&Form, QStringLiteral("QxForm1"));
        Kesh::EndLoading(&Form);
        // 30 x 20: the left half red, the right half blue.
        QPixmap Texture(30, 20);
        {
            QPainter P(&Texture);
            P.fillRect(0, 0, 15, 20, Qt::red);
            P.fillRect(15, 0, 15, 20, Qt::blue);
        }
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
        // Without the manager the form paints itself.
        delete M;
        Form.render(&Image);
        QCOMPARE(Image.pixel(50, 30), qRgb(0, 255, 0));
    }

    // ------------------------------------------------------------ menu items

    void menuItemErrorsAreShown_data()
    {
        QTest::addColumn<int>("call"); // 0 add by name, 1 get, 2 set
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("text");
        QTest::newRow("unknown name") << 0 << 0
                                      << "QxForm1TxBiMenuItems.AddMenuItem :\r\nAddItemByName ('mnuNone'): item not found!.";
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
        auto* M = new TQxForm(&F.Form, QStringLiteral("QxForm1"));
        M->BiMenuItems().GetAllMenuItems();
        QCOMPARE(M->BiMenuItems().Count(), 3);
        DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        TxMenuItemRec Rec;
        Rec.CapA = QStringLiteral("x");
        Rec.CapE = QStringLiteral("y");
        switch (call) {
        case 0: M->BiMenuItems().AddMenuItem(QStringLiteral("mnuNone")); break;
        case 1: Rec = M->BiMenuItems().GetMenuItemRec(index); break;
        case 2: M->BiMenuItems().SetMenuItemRec(index, Rec); break;
        }
        QCOMPARE(Driver.Seen.size(), 1);
        QCOMPARE(Driver.Seen[0].Text, text);
        if (call == 1) {
            QVERIFY(Rec.MenuItem.isNull());
            QVERIFY(Rec.ItemName.isEmpty() && Rec.CapA.isEmpty() && Rec.CapE.isEmpty());
        }
        QCOMPARE(Names(M->BiMenuItems()), (QStringList{"mnuFile", "actOpen", "actQuit"}));
        QCOMPARE(M->BiMenuItems().GetMenuItemRec(1).CapE, QStringLiteral("Open"));
    }

    void menuItemsFollowTheForm_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::newRow("english") << false;
        QTest::newRow("arabic") << true;
    }

    void menuItemsFollowTheForm()
    {
        QFETCH(bool, rtl);
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        TMenuForm F;
        SetBiDiModeOf(&F.Form, rtl ? bdRightToLeft : bdLeftToRight);
        auto* M = new TQxForm(&F.Form, QStringLiteral("QxForm1"));
        TxBiMenuItems& Items = M->BiMenuItems();
        Items.AddMenuItem(F.Open);
        Items.AddMenuItem(QStringLiteral("ACTQUIT")); // names compare without letter case
        QCOMPARE(Names(Items), (QStringList{"actOpen", "actQuit"}));
        QCOMPARE(Items.GetMenuItem(F.Quit), 1);
        QCOMPARE(Items.GetMenuItem(F.File->menuAction()), -1);
        QCOMPARE(Items.GetMenuItem(nullptr), -1);

        // A known item takes its new caption as the current language's one.
        F.Open->setText(QStringLiteral("Open…"));
        Items.AddMenuItem(F.Open);
        TxMenuItemRec Rec = Items.GetMenuItemRec(0);
        QCOMPARE(Rec.CapA, rtl ? QStringLiteral("Open…") : QStringLiteral("Open"));
        QCOMPARE(Rec.CapE, rtl ? QStringLiteral("Open") : QStringLiteral("Open…"));
        QCOMPARE(Rec.MenuItem.data(), F.Open);

        // Everything named, separators and nameless items left out; gone items dropped.
        Items.GetAllMenuItems();
        QCOMPARE(Names(Items), (QStringList{"actOpen", "actQuit", "mnuFile"}));
        delete F.Quit;
        Items.GetAllMenuItems();
        QCOMPARE(Names(Items), (QStringList{"actOpen", "mnuFile"}));

        Rec.CapA = QStringLiteral("فتح");
        Rec.CapE = QStringLiteral("Open file");
        Rec.ItemName = QStringLiteral("ignored");
        Items.SetMenuItemRec(0, Rec);
        Items.UpdateAllMenus();
        QCOMPARE(F.Open->text(), rtl ? QStringLiteral("فتح") : QStringLiteral("Open file"));
        QCOMPARE(Items.GetMenuItemRec(0).ItemName, QStringLiteral("actOpen"));
        Items.ClearMenuItems();
        QCOMPARE(Items.Count(), 0);
    }

    void menuItemsStreamRoundTrip_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::newRow("english") << false;
        QTest::newRow("arabic") << true;
    }

    void menuItemsStreamRoundTrip()
    {
        QFETCH(bool, rtl);
        QByteArray Data;
        {
            TMenuForm F;
            auto* M = new TQxForm(&F.Form, QStringLiteral("QxForm1"));
            M->BiMenuItems().GetAllMenuItems();
            TxMenuItemRec Rec;
            Rec.CapA = QStringLiteral("فتح");
            Rec.CapE = QStringLiteral("Open");
            M->BiMenuItems().SetMenuItemRec(1, Rec);
            // The live item's present name is what is stored.
            F.Open->setObjectName(QStringLiteral("actOpenFile"));
            QDataStream Out(&Data, QIODevice::WriteOnly);
            Out << M->BiMenuItems();
        }
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        TMenuForm F;
        F.Open->setObjectName(QStringLiteral("actOpenFile"));
        auto* M = new TQxForm(&F.Form, QStringLiteral("QxForm1"));
        QDataStream In(Data);
        In >> M->BiMenuItems();
        QCOMPARE(Names(M->BiMenuItems()), (QStringList{"mnuFile", "actOpenFile", "actQuit"}));
        QVERIFY(M->BiMenuItems().GetMenuItemRec(1).MenuItem.isNull());
        // Loading finds the items again.
        Kesh::EndLoading(&F.Form);
        QCOMPARE(M->BiMenuItems().GetMenuItemRec(1).MenuItem.data(), F.Open);
        QCOMPARE(M->BiMenuItems().GetMenuItemRec(1).CapA, QStringLiteral("فتح"));
        M->BiMenuItems().UpdateAllMenus();
        QCOMPARE(F.Open->text(), rtl ? QStringLiteral("فتح") : QStringLiteral("Open"));

        // Written again, the same bytes.
        QByteArray Again;
        QDataStream Out(&Again, QIODevice::WriteOnly);
        Out << M->BiMenuItems();
        QCOMPARE(Again, Data);
    }

    void badMenuStreamsChangeNothing_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<QString>("reason");
        const auto Build = [](auto Fill) {
            QByteArray B;
            QDataStream S(&B, QIODevice::WriteOnly);
            TWriter W(S);
            Fill(W);
            return B;
        };
        QByteArray Full;
        {
            TMenuForm F;
            auto* M = new TQxForm(&F.Form, QStringLiteral("QxForm1"));
            M->BiMenuItems().GetAllMenuItems();
            QDataStream S(&Full, QIODevice::WriteOnly);
            S << M->BiMenuItems();
        }
        for (int Cut : {0, 1, 3, 6, 11, int(Full.size()) / 2, int(Full.size()) - 1})
            QTest::addRow("cut at %d", Cut) << Full.left(Cut) << "ends in the middle";
        QTest::newRow("negative count") << Build([](TWriter& W) {
            W.WriteListBegin();
            W.WriteInteger(-1);
            W.WriteListEnd();
        }) << "Invalid record count -1.";
        QTest::newRow("more records than counted") << Build([](TWriter& W) {
            W.WriteListBegin();
            W.WriteInteger(0);
            W.WriteString(QStringLiteral("a"));
            W.WriteListEnd();
        }) << "more than 0 records";
        QTest::newRow("integer for a name") << Build([](TWriter& W) {
            W.WriteListBegin();
            W.WriteInteger(1);
            W.WriteInteger(7);
        }) << "expected string";
        QTest::newRow("huge count") << Build([](TWriter& W) {
            W.WriteListBegin();
            W.WriteInteger(2000000000);
            W.WriteString(QStringLiteral("a"));
        }) << "ends in the middle";
    }

    void badMenuStreamsChangeNothing()
    {
        QFETCH(QByteArray, data);
        QFETCH(QString, reason);
        TMenuForm F;
        auto* M = new TQxForm(&F.Form, QStringLiteral("QxForm1"));
        M->BiMenuItems().AddMenuItem(F.Quit);
        QDataStream In(data);
        try {
            In >> M->BiMenuItems();
            QFAIL("no error raised");
        } catch (const EReadError& E) {
            QVERIFY2(E.Message.startsWith(QStringLiteral("TxBiMenuItems.ReadMenuItems\r\n")), qPrintable(E.Message));
            QVERIFY2(E.Message.contains(reason), qPrintable(E.Message));
        }
        QCOMPARE(Names(M->BiMenuItems()), QStringList{"actQuit"});
        QCOMPARE(M->BiMenuItems().GetMenuItemRec(0).MenuItem.data(), F.Quit);
    }

    // ------------------------------------------------------------ messages

    void biMessagesFollowTheApplication_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::newRow("english") << false;
        QTest::newRow("arabic") << true;
    }

    void biMessagesFollowTheApplication()
    {
        QFETCH(bool, rtl);
        TxBiStrings List;
        List.Add(3, QStringLiteral("ثلاثة"), QStringLiteral("three"), RaNothing);
        auto Form = MakeForm(QStringLiteral("FormItems"));
        auto* M = new TQxForm(Form.get(), QStringLiteral("QxForm1"));
        M->SetBiStrings(List);
        TQxBiDiStrings Carrier;
        Carrier.setProperty("BiStrings", QVariant::fromValue(List));
        List.Clear(); // both hold copies
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        QCOMPARE(M->GetBiMsg(3), rtl ? QStringLiteral("ثلاثة") : QStringLiteral("three"));
        QCOMPARE(Carrier.GetBiMsg(3), M->GetBiMsg(3));
        M->SetStrings({QStringLiteral("a"), QStringLiteral("b")});
        QCOMPARE(M->property("Strings").toStringList(), (QStringList{"a", "b"}));
    }

    // ------------------------------------------------------------ focus

    void focusGoesToANearbyControl_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<QString>("disabled");
        QTest::addColumn<QString>("hidden");
        QTest::addColumn<bool>("reversed"); // edD before edC in tab order
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("expected");
        for (bool Rtl : {false, true}) {
            const char* Dir = Rtl ? " rtl" : " ltr";
            QTest::addRow("control itself%s", Dir) << "edD" << "" << "" << false << Rtl << "edD";
            QTest::addRow("disabled: next in parent%s", Dir) << "edC" << "edC" << "" << false << Rtl << "edD";
            QTest::addRow("hidden: next in parent%s", Dir) << "edC" << "" << "edC" << false << Rtl << "edD";
            QTest::addRow("last disabled: wraps%s", Dir) << "edD" << "edD" << "" << false << Rtl << "edC";
            QTest::addRow("alone in parent: neighbour%s", Dir) << "edE" << "edE" << "" << false << Rtl << "edC";
            QTest::addRow("hidden parent: neighbour%s", Dir) << "edE" << "" << "P2" << false << Rtl << "edC";
            QTest::addRow("neighbour by tab order%s", Dir) << "edE" << "edE" << "" << true << Rtl << "edD";
            QTest::addRow("container: its first%s", Dir) << "P1" << "" << "" << false << Rtl << "edC";
            QTest::addRow("nothing can take it%s", Dir) << "edE" << "edE,edC,edD" << "" << false << Rtl << "";
        }
    }

    void focusGoesToANearbyControl()
    {
        QFETCH(QString, control);
        QFETCH(QString, disabled);
        QFETCH(QString, hidden);
        QFETCH(bool, reversed);
        QFETCH(bool, rtl);
        QFETCH(QString, expected);
        QWidget Form;
        Form.resize(300, 200);
        SetBiDiModeOf(&Form, rtl ? bdRightToLeft : bdLeftToRight);
        const auto Make = [](QWidget* Parent, const char* Name, QWidget* W) {
            W->setParent(Parent);
            W->setObjectName(QLatin1String(Name));
            return W;
        };
        QWidget* P1 = Make(&Form, "P1", new QWidget);
        P1->resize(300, 90);
        QWidget* P2 = Make(&Form, "P2", new QWidget);
        P2->move(0, 100);
        QWidget* C = Make(P1, "edC", new QLineEdit);
        QWidget* D = Make(P1, "edD", new QLineEdit);
        D->move(0, 40);
        Make(P2, "edE", new QLineEdit);
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
};

int main(int argc, char** argv)
{
    TQxApplication App(argc, argv);
    App.setAttribute(Qt::AA_Use96Dpi, true);
    TestFormManager Test;
    return QTest::qExec(&Test, argc, argv);
}
#include "tst_form_manager.moc"
