// Data-aware buttons: the rule SetAction chooses, both enabling tables, the actions by real
// clicks, the focus move that posts typed text, the apply step and closing the form.
#include "db_test_helper.h"
#include "dialog_helper.h"

#include <Kesh.h>
#include <Kesh_dbControls.h>
#include <platform/data.h>

#include <QApplication>
#include <QtTest>
#include <memory>

using namespace Kesh;
using namespace KeshTest;

namespace {

// An item list in memory: Name and Qty, with rows as given.
struct Items
{
    TClientDataSet Ds;
    TDataSource Source;
    explicit Items(int Rows)
    {
        Ds.FieldDefs().Add(QStringLiteral("Name"), ftString, 30);
        Ds.FieldDefs().Add(QStringLiteral("Qty"), ftInteger);
        Ds.CreateDataSet();
        for (int I = 1; I <= Rows; ++I) {
            Ds.Append();
            Ds.FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("Item %1").arg(I));
            Ds.FieldByName(QStringLiteral("Qty"))->SetAsInteger(I);
            Ds.Post();
        }
        Ds.MergeChangeLog();
        Ds.First();
        Source.SetDataSet(&Ds);
    }
};

// A window with an edit on Name and one button of each class per action asked for.
struct Form
{
    QWidget Window;
    TQxdbEdit* Edit = new TQxdbEdit(&Window);
    TQxEdit* Other = new TQxEdit(&Window);
    explicit Form(TDataSource* Source)
    {
        Window.resize(500, 200);
        Edit->setGeometry(10, 10, 200, 21);
        Edit->SetDataSource(Source);
        Edit->SetDataField(QStringLiteral("Name"));
        Other->setGeometry(10, 40, 200, 21);
    }
    template <class B>
    B* Button(TDataSource* Source, TxActionType Action, int X)
    {
        auto* Result = new B(&Window);
        Result->setGeometry(X, 100, 70, 25);
        Result->SetAction(Action);
        Result->SetDataSource(Source);
        Result->show();
        return Result;
    }
    bool Show()
    {
        Window.show();
        QApplication::setActiveWindow(&Window);
        return QTest::qWaitForWindowActive(&Window);
    }
};

void Click(QWidget* Button) { QTest::mouseClick(Button, Qt::LeftButton, {}, Button->rect().center()); }

} // namespace

class TestDbButtons : public QObject
{
    Q_OBJECT

private slots:
    void setAction_data()
    {
        QTest::addColumn<int>("action");
        QTest::addColumn<int>("rule");
        QTest::newRow("save") << int(atSave) << int(txEditing);
        QTest::newRow("cancel") << int(atCancel) << int(txEditing);
        QTest::newRow("add") << int(atAdd) << int(txBrowsing);
        QTest::newRow("edit") << int(atEdit) << int(txBrowsing);
        QTest::newRow("close form") << int(atCloseForm) << int(txBrowsing);
        QTest::newRow("first") << int(atFirst) << int(txBrowsing);
        QTest::newRow("prior") << int(atPrior) << int(txBrowsing);
        QTest::newRow("next") << int(atNext) << int(txBrowsing);
        QTest::newRow("last") << int(atLast) << int(txBrowsing);
        QTest::newRow("refresh") << int(atRefresh) << int(txBrowsing);
        QTest::newRow("delete") << int(atDelete) << int(txBrowsingNotEmpty);
        QTest::newRow("apply updates") << int(atApplyUpdates) << int(txAllways);
    }
    // The action sets the rule; choosing "user's click" afterwards keeps it; the property
    // system sees the same.
    void setAction()
    {
        QFETCH(int, action);
        QFETCH(int, rule);
        TQxdbSpeedButton B;
        B.setProperty("_DataAction", action);
        QCOMPARE(int(B.GetEnabledWhen()), rule);
        B.SetAction(atUserOnClick);
        QCOMPARE(int(B.GetEnabledWhen()), rule);
        QCOMPARE(B.property("_EnabledWhen").toInt(), rule);
        QCOMPARE(int(B.GetDataAction()), int(atUserOnClick));
    }

    // Both tables: a general change of the dataset, and a change of the edit state.
    void enablingTables_data()
    {
        QTest::addColumn<int>("rule");
        QTest::addColumn<QString>("state");
        QTest::addColumn<bool>("onDataChange");
        QTest::addColumn<bool>("onEditingChange");
        struct Row { const char* State; bool Data[4]; bool Editing[4]; };
        // rules in the order txAllways, txEditing, txBrowsing, txBrowsingNotEmpty
        const Row Rows[] = {
            {"closed", {false, false, false, false}, {false, false, false, false}},
            {"empty", {true, false, true, false}, {true, false, true, false}},
            {"browse", {true, false, true, true}, {true, false, true, true}},
            {"edit", {true, true, true, true}, {true, true, false, false}},
            {"insert", {true, true, true, true}, {true, true, false, false}},
            {"edit, dataset turned read-only", {true, false, true, true}, {true, false, false, false}},
            {"no data source", {false, false, false, false}, {false, false, false, false}},
        };
        const char* Rules[] = {"txAllways", "txEditing", "txBrowsing", "txBrowsingNotEmpty"};
        for (const Row& R : Rows)
            for (int Rule = 0; Rule < 4; ++Rule)
                QTest::addRow("%s, %s", R.State, Rules[Rule]) << Rule << QString::fromLatin1(R.State) << R.Data[Rule]
                                                             << R.Editing[Rule];
    }
    void enablingTables()
    {
        QFETCH(int, rule);
        QFETCH(QString, state);
        Items I(state == QLatin1String("empty") ? 0 : 2);
        TQxdbBitBtn B;
        B.SetDataSource(state == QLatin1String("no data source") ? nullptr : &I.Source);
        B.SetEnabledWhen(TxEnabledWhenType(rule));
        if (state == QLatin1String("closed"))
            I.Ds.Close();
        else if (state.startsWith(QLatin1String("edit")))
            I.Ds.Edit();
        else if (state == QLatin1String("insert"))
            I.Ds.Insert();
        if (state.contains(QLatin1String("read-only")))
            I.Ds.SetReadOnly(true);
        B.DataChanged();
        QTEST(B.isEnabled(), "onDataChange");
        B.EditingChanged();
        QTEST(B.isEnabled(), "onEditingChange");
        // The link calls them itself: a change of state gives the editing table.
        B.setEnabled(!B.isEnabled());
        B.ActiveChanged();
        QTEST(B.isEnabled(), "onEditingChange");
    }

    // The buttons follow the dataset by themselves as it changes state.
    void followsTheDataset()
    {
        Items I(1);
        TQxdbIconButton Save, Delete, Add;
        Save.SetAction(atSave);
        Delete.SetAction(atDelete);
        Add.SetAction(atAdd);
        for (TxDataButton* B : std::initializer_list<TxDataButton*>{&Save, &Delete, &Add})
            B->SetDataSource(&I.Source);
        QVERIFY(!Save.isEnabled() && Delete.isEnabled() && Add.isEnabled());
        I.Ds.Edit();
        QVERIFY(Save.isEnabled() && !Delete.isEnabled() && !Add.isEnabled());
        I.Ds.Cancel();
        QVERIFY(!Save.isEnabled() && Delete.isEnabled() && Add.isEnabled());
        I.Ds.Delete();
        QVERIFY(!Delete.isEnabled());
        I.Ds.Close();
        QVERIFY(!Add.isEnabled());
        I.Ds.CreateDataSet();
        QVERIFY(Add.isEnabled());
        // Removing the data source disables the button.
        {
            auto Source = std::make_unique<TDataSource>();
            Source->SetDataSet(&I.Ds);
            Add.SetDataSource(Source.get());
            QVERIFY(Add.isEnabled());
        }
        QVERIFY(!Add.isEnabled());
        QCOMPARE(Add.GetDataSource(), nullptr);
    }

    // A button without a data source is disabled once it is loaded.
    void unboundIsDisabledWhenLoaded()
    {
        QWidget Window;
        auto* B = new TQxdbSpeedButton(&Window);
        B->BeginLoading();
        B->SetAction(atNext);
        QVERIFY(B->isEnabled());
        EndLoading(&Window);
        QVERIFY(!B->isEnabled());
    }

    // Each action by a real click on each kind of button.
    void actions_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("action");
        QTest::addColumn<QString>("setup");
        QTest::addColumn<int>("state");
        QTest::addColumn<int>("recNo");
        QTest::addColumn<int>("records");
        const char* Kinds[] = {"bit", "speed", "icon"};
        for (int K = 0; K < 3; ++K) {
            QTest::addRow("%s: save", Kinds[K]) << K << int(atSave) << "edit" << int(dsBrowse) << 2 << 3;
            QTest::addRow("%s: cancel", Kinds[K]) << K << int(atCancel) << "edit" << int(dsBrowse) << 2 << 3;
            QTest::addRow("%s: add", Kinds[K]) << K << int(atAdd) << "" << int(dsInsert) << -1 << 3;
            QTest::addRow("%s: edit", Kinds[K]) << K << int(atEdit) << "" << int(dsEdit) << 2 << 3;
            QTest::addRow("%s: delete", Kinds[K]) << K << int(atDelete) << "" << int(dsBrowse) << 2 << 2;
            QTest::addRow("%s: first", Kinds[K]) << K << int(atFirst) << "" << int(dsBrowse) << 1 << 3;
            QTest::addRow("%s: prior", Kinds[K]) << K << int(atPrior) << "" << int(dsBrowse) << 1 << 3;
            QTest::addRow("%s: next", Kinds[K]) << K << int(atNext) << "" << int(dsBrowse) << 3 << 3;
            QTest::addRow("%s: last", Kinds[K]) << K << int(atLast) << "" << int(dsBrowse) << 3 << 3;
            QTest::addRow("%s: refresh", Kinds[K]) << K << int(atRefresh) << "" << int(dsBrowse) << 2 << 3;
        }
    }
    void actions()
    {
        QFETCH(int, kind);
        QFETCH(int, action);
        QFETCH(QString, setup);
        Items I(3);
        I.Ds.Next();
        Form F(&I.Source);
        QWidget* B = kind == 0 ? static_cast<QWidget*>(F.Button<TQxdbBitBtn>(&I.Source, TxActionType(action), 10))
                   : kind == 1 ? static_cast<QWidget*>(F.Button<TQxdbSpeedButton>(&I.Source, TxActionType(action), 10))
                               : static_cast<QWidget*>(F.Button<TQxdbIconButton>(&I.Source, TxActionType(action), 10));
        QVERIFY(F.Show());
        if (setup == QLatin1String("edit"))
            I.Ds.Edit();
        QVERIFY(B->isEnabled());
        Click(B);
        QTEST(int(I.Ds.State()), "state");
        QTEST(I.Ds.RecNo(), "recNo");
        QTEST(I.Ds.RecordCount(), "records");
    }

    // Typed text reaches the field before Post, through the focus move of the click, also
    // from a tool-bar button that never takes the focus; on SQLite and PostgreSQL.
    void typedTextIsPosted_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<bool>("speed");
        for (const char* D : {"sqlite", "postgres"})
            for (bool Speed : {false, true})
                QTest::addRow("%s, %s", D, Speed ? "speed button" : "bit button") << QString::fromLatin1(D) << Speed;
    }
    void typedTextIsPosted()
    {
        QFETCH(bool, speed);
        KESH_OPEN_TEST_DB(Db);
        const QString Table = Db->NewTable(QStringLiteral("Id %AUTOKEY%, Name VARCHAR(30), Qty INTEGER"));
        QVERIFY(Db->Exec(QStringLiteral("INSERT INTO %1 (Name, Qty) VALUES ('Bolt', 5)").arg(Table)));
        TADOTable Ds;
        Ds.SetConnection(Db->Connection());
        Ds.SetTableName(Table);
        Ds.Open();
        TDataSource Source;
        Source.SetDataSet(&Ds);
        Form F(&Source);
        QWidget* Save = speed ? static_cast<QWidget*>(F.Button<TQxdbSpeedButton>(&Source, atSave, 10))
                              : static_cast<QWidget*>(F.Button<TQxdbBitBtn>(&Source, atSave, 10));
        QVERIFY(F.Show());
        QVERIFY(!Save->isEnabled());
        F.Edit->setFocus();
        QVERIFY(F.Edit->hasFocus());
        QCOMPARE(F.Edit->text(), QStringLiteral("Bolt"));
        F.Edit->selectAll();
        QTest::keyClicks(F.Edit, QStringLiteral("Nut"));
        QCOMPARE(Ds.State(), dsEdit);
        QVERIFY(Save->isEnabled());
        Click(Save);
        QCOMPARE(Ds.State(), dsBrowse);
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Name FROM %1").arg(Table)).toString(), QStringLiteral("Nut"));
        QCOMPARE(F.Edit->text(), QStringLiteral("Nut"));
        // The focus stays where the click left it: a tool-bar button never takes it.
        QCOMPARE(F.Edit->hasFocus(), speed);
    }

    // _ApplyUpdates sends the change log of a client dataset after saving and moving
    // actions only; the apply action sends it always; other datasets ignore the flag.
    void applyUpdates_data()
    {
        QTest::addColumn<int>("action");
        QTest::addColumn<bool>("flag");
        QTest::addColumn<int>("applied");
        QTest::addColumn<int>("left");
        QTest::newRow("save with the flag") << int(atSave) << true << 1 << 0;
        QTest::newRow("save without it") << int(atSave) << false << 0 << 1;
        QTest::newRow("next with the flag") << int(atNext) << true << 1 << 0;
        QTest::newRow("cancel with the flag") << int(atCancel) << true << 0 << 0;
        QTest::newRow("apply updates") << int(atApplyUpdates) << false << 1 << 0;
    }
    void applyUpdates()
    {
        QFETCH(int, action);
        QFETCH(bool, flag);
        Items I(2);
        int Applied = 0;
        I.Ds.OnApplyUpdate = [&](TClientDataSet*, TUpdateKind, const TRecordValues&, const TRecordValues&) { ++Applied; };
        Form F(&I.Source);
        auto* B = F.Button<TQxdbBitBtn>(&I.Source, TxActionType(action), 10);
        B->SetApplyUpdates(flag);
        QVERIFY(F.Show());
        I.Ds.Edit();
        I.Ds.FieldByName(QStringLiteral("Qty"))->SetAsInteger(9);
        if (action == atNext || action == atApplyUpdates)
            I.Ds.Post();
        Click(B);
        QTEST(Applied, "applied");
        QTEST(I.Ds.ChangeCount(), "left");
    }

    void applyUpdatesOnAnAdoDatasetDoesNothing()
    {
        QString Reason;
        auto Db = TTestDatabase::Open(QStringLiteral("sqlite"), Reason);
        QVERIFY2(Db, qPrintable(Reason));
        const QString Table = Db->NewTable(QStringLiteral("Id %AUTOKEY%, Name VARCHAR(30)"));
        QVERIFY(Db->Exec(QStringLiteral("INSERT INTO %1 (Name) VALUES ('a')").arg(Table)));
        TADOTable Ds;
        Ds.SetConnection(Db->Connection());
        Ds.SetTableName(Table);
        Ds.Open();
        TDataSource Source;
        Source.SetDataSet(&Ds);
        Form F(&Source);
        auto* Apply = F.Button<TQxdbBitBtn>(&Source, atApplyUpdates, 10);
        auto* Save = F.Button<TQxdbBitBtn>(&Source, atSave, 90);
        Save->SetApplyUpdates(true);
        QVERIFY(F.Show());
        DialogDriver Driver;
        Click(Apply);
        Ds.Edit();
        Ds.FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("b"));
        Click(Save);
        QCOMPARE(Driver.Seen.size(), 0);
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Name FROM %1").arg(Table)).toString(), QStringLiteral("b"));
    }

    // A failing Post is shown and leaves the edit; a failing Cancel is swallowed.
    void failures()
    {
        Items I(1);
        Form F(&I.Source);
        auto* Save = F.Button<TQxdbBitBtn>(&I.Source, atSave, 10);
        auto* Cancel = F.Button<TQxdbBitBtn>(&I.Source, atCancel, 90);
        QVERIFY(F.Show());
        I.Ds.BeforePost = [](TDataSet*) { throw EDatabaseError(QStringLiteral("Qty must be positive")); };
        I.Ds.BeforeCancel = [](TDataSet*) { throw EDatabaseError(QStringLiteral("cannot cancel")); };
        I.Ds.Edit();
        {
            DialogDriver Driver;
            Driver.Click(QStringLiteral("OK"));
            Click(Save);
            QCOMPARE(Driver.Seen.size(), 1);
            QCOMPARE(Driver.Seen[0].Text, QStringLiteral("Qty must be positive"));
            QCOMPARE(I.Ds.State(), dsEdit);
        }
        {
            DialogDriver Driver;
            Click(Cancel);
            QCOMPARE(Driver.Seen.size(), 0);
            QCOMPARE(I.Ds.State(), dsEdit);
        }
        // A silent refusal ends the click without a message.
        I.Ds.BeforePost = [](TDataSet*) { Abort(); };
        DialogDriver Driver;
        Click(Save);
        QCOMPARE(Driver.Seen.size(), 0);
    }

    void closeForm()
    {
        Items I(1);
        Form F(&I.Source);
        auto* Close = F.Button<TQxdbBitBtn>(&I.Source, atCloseForm, 10);
        QVERIFY(F.Show());
        Click(Close);
        QTRY_VERIFY(!F.Window.isVisible());
    }

    // The user's own click runs for atUserOnClick, then the apply step.
    void userOnClick()
    {
        Items I(1);
        Form F(&I.Source);
        auto* B = F.Button<TQxdbSpeedButton>(&I.Source, atUserOnClick, 10);
        int Clicks = 0;
        QObject::connect(B, &QAbstractButton::clicked, [&] { ++Clicks; });
        QVERIFY(F.Show());
        Click(B);
        QCOMPARE(Clicks, 1);
        auto* Next = F.Button<TQxdbSpeedButton>(&I.Source, atNext, 90);
        QObject::connect(Next, &QAbstractButton::clicked, [&] { ++Clicks; });
        Click(Next);
        QCOMPARE(Clicks, 1);
    }
};

QTEST_MAIN(TestDbButtons)
#include "tst_db_buttons.moc"
