// The editing datasets' rules, ApplyValue and Sum, on SQLite and on PostgreSQL.
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>

#include "db_test_helper.h"
#include "dialog_helper.h"

#include <QtTest>

using namespace Kesh;

class TestQxAdoDataSets : public QObject
{
    Q_OBJECT

    // A form with a manager that knows messages 1 (locked) and 2 (confirm), and two sets
    // over one table of three rows, the second of them locked.
    struct TFixture
    {
        std::unique_ptr<KeshTest::TTestDatabase> Db;
        QString Table;
        std::unique_ptr<QWidget> Form;
        TQxForm* Manager = nullptr;

        bool Make(const QString& Driver, QString& Reason)
        {
            Db = KeshTest::TTestDatabase::Open(Driver, Reason);
            if (!Db)
                return false;
            Table = Db->NewTable(QStringLiteral("Id INTEGER PRIMARY KEY, Name VARCHAR(30), Qty INTEGER, "
                                                "Price NUMERIC(10,2), Locked BOOLEAN"));
            Db->Exec(QStringLiteral("INSERT INTO %1 VALUES (1, 'Pen', 3, 2.50, NULL), (2, 'Ink', 4, 7.25, %2), (3, 'Pad', NULL, NULL, %3)")
                         .arg(Table, Db->IsPostgres() ? "TRUE" : "1", Db->IsPostgres() ? "FALSE" : "0"));
            Form = std::make_unique<QWidget>();
            Form->setObjectName(QStringLiteral("FormItems"));
            Manager = new TQxForm(Form.get(), QStringLiteral("QxForm1"));
            TxBiStrings Messages;
            Messages.Add(1, QStringLiteral("السجل مقفل."), QStringLiteral("The row is locked."), RaError);
            Messages.Add(2, QStringLiteral("حذف السجل؟"), QStringLiteral("Delete the row?"), RaError);
            Manager->SetBiStrings(Messages);
            return true;
        }

        template <class T> std::unique_ptr<T> OpenSet(QObject* Owner)
        {
            auto Set = std::make_unique<T>(Owner);
            Set->setObjectName(QStringLiteral("Items"));
            Set->SetConnection(Db->Connection());
            if constexpr (std::is_same_v<T, TQxAdoTable>)
                Set->SetTableName(Table);
            else
                Set->SetCommandText(QStringLiteral("SELECT * FROM %1 ORDER BY Id").arg(Table));
            Set->SetLockType(ltOptimistic);
            Set->SetLockedField(QStringLiteral("Locked"));
            Set->SetLockedMsgID(1);
            Set->SetConfirmMsgID(2);
            Set->Open();
            return Set;
        }
    };

#define KESH_FIXTURE(F)                                                        \
    QFETCH(QString, driver);                                                   \
    TFixture F;                                                                \
    QString F##Reason;                                                         \
    if (!F.Make(driver, F##Reason)) {                                          \
        if (driver == QLatin1String("postgres") && !KeshTest::PostgresRequired()) \
            QSKIP(qPrintable(F##Reason));                                      \
        QFAIL(qPrintable(F##Reason));                                          \
    }

private Q_SLOTS:
    void init() { Application()->SetBiDiMode(bdLeftToRight); }

    void defaults()
    {
        TQxAdoDataSet Set;
        QCOMPARE(Set.property("_AllowDelete").toBool(), true);
        QCOMPARE(Set.property("_AllowInsert").toBool(), true);
        QCOMPARE(Set.property("_ConfirmDel").toBool(), false);
        QCOMPARE(Set.property("_ConfirmMsgID").toInt(), 0);
        QCOMPARE(Set.property("_LockedMsgID").toInt(), 0);
        QCOMPARE(Set.property("_LockedField").toString(), QString());
        TQxAdoTable Table;
        QVERIFY(Table.setProperty("_LockedField", QStringLiteral("Locked")));
        QCOMPARE(Table.GetLockedField(), QStringLiteral("Locked"));
    }

    void insertRefusedSilently_data() { KeshTest::AddDriverRows(); }
    void insertRefusedSilently()
    {
        KESH_FIXTURE(F);
        auto Set = F.OpenSet<TQxAdoTable>(F.Form.get());
        Set->SetAllowInsert(false);
        KeshTest::DialogDriver Driver;
        QVERIFY_THROWS_EXCEPTION(EAbort, Set->Insert());
        QVERIFY_THROWS_EXCEPTION(EAbort, Set->Append());
        QCOMPARE(Set->State(), dsBrowse);
        QCOMPARE(Set->RecordCount(), 3);
        QVERIFY(Driver.Seen.isEmpty());
        Set->SetAllowInsert(true);
        Set->Append();
        QCOMPARE(Set->State(), dsInsert);
        Set->Cancel();
    }

    // Edit and delete of each row, in both languages: the locked row shows the form's
    // message in the application's language and stays as it was; a null lock is no lock.
    void lockedRow_data() { KeshTest::AddDriverRows(); }
    void lockedRow()
    {
        KESH_FIXTURE(F);
        for (TBiDiMode Mode : {bdLeftToRight, bdRightToLeft}) {
            Application()->SetBiDiMode(Mode);
            auto Set = F.OpenSet<TQxAdoDataSet>(F.Form.get());
            KeshTest::DialogDriver Driver;
            Driver.Click(QStringLiteral("btnOk")).Click(QStringLiteral("btnOk"));
            QVERIFY(Set->Locate(QStringLiteral("Id"), 2, {}));
            QVERIFY_THROWS_EXCEPTION(EAbort, Set->Edit());
            QCOMPARE(Set->State(), dsBrowse);
            QVERIFY_THROWS_EXCEPTION(EAbort, Set->Delete());
            QCOMPARE(Set->RecordCount(), 3);
            QCOMPARE(Driver.Seen.size(), 2);
            const QString Want = Mode == bdRightToLeft ? QStringLiteral("السجل مقفل.") : QStringLiteral("The row is locked.");
            QCOMPARE(Driver.Seen[0].Text, Want);
            QCOMPARE(Driver.Seen[1].Text, Want);
            // Row 1 has a null lock, row 3 a false one: both may be edited.
            for (int Id : {1, 3}) {
                QVERIFY(Set->Locate(QStringLiteral("Id"), Id, {}));
                Set->Edit();
                QCOMPARE(Set->State(), dsEdit);
                Set->Cancel();
            }
            QCOMPARE(Driver.Seen.size(), 2);
        }
    }

    void deleteRefusedWithoutMessage_data() { KeshTest::AddDriverRows(); }
    void deleteRefusedWithoutMessage()
    {
        KESH_FIXTURE(F);
        auto Set = F.OpenSet<TQxAdoTable>(F.Form.get());
        Set->SetAllowDelete(false);
        KeshTest::DialogDriver Driver;
        QVERIFY_THROWS_EXCEPTION(EAbort, Set->Delete());
        QVERIFY(Driver.Seen.isEmpty());
        QCOMPARE(F.Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(F.Table)).toInt(), 3);
    }

    // The confirmation question: "no" keeps the row, "yes" deletes it.
    void confirmDelete_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<int>("rowsLeft");
        for (const char* Driver : {"sqlite", "postgres"}) {
            QTest::addRow("%s no", Driver) << QString::fromLatin1(Driver) << QStringLiteral("btnNo") << 3;
            QTest::addRow("%s yes", Driver) << QString::fromLatin1(Driver) << QStringLiteral("btnYes") << 2;
        }
    }
    void confirmDelete()
    {
        KESH_FIXTURE(F);
        QFETCH(QString, answer);
        QFETCH(int, rowsLeft);
        auto Set = F.OpenSet<TQxAdoDataSet>(F.Form.get());
        Set->SetConfirmDel(true);
        KeshTest::DialogDriver Driver;
        Driver.Click(answer);
        if (answer == QLatin1String("btnNo"))
            QVERIFY_THROWS_EXCEPTION(EAbort, Set->Delete());
        else
            Set->Delete();
        QCOMPARE(Driver.Seen.size(), 1);
        QVERIFY2(Driver.Seen[0].Text.contains(QLatin1String("Delete the row?")), qPrintable(Driver.Seen[0].Text));
        QCOMPARE(F.Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(F.Table)).toInt(), rowsLeft);
    }

    void confirmWithoutManager_data() { KeshTest::AddDriverRows(); }
    void confirmWithoutManager()
    {
        KESH_FIXTURE(F);
        QObject Module;  // a data module: no form, no manager
        auto Set = F.OpenSet<TQxAdoTable>(&Module);
        Set->SetConfirmDel(true);
        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnNo"));
        QVERIFY_THROWS_EXCEPTION(EAbort, Set->Delete());
        QCOMPARE(Driver.Seen.size(), 1);
        QVERIFY2(Driver.Seen[0].Text.contains(QLatin1String("Can't find TQxForm component in the form!.")),
                 qPrintable(Driver.Seen[0].Text));
    }

    // A set kept by a page inside the form still finds the form's manager.
    void managerFoundFromAPage_data() { KeshTest::AddDriverRows(); }
    void managerFoundFromAPage()
    {
        KESH_FIXTURE(F);
        auto* Page = new QWidget(F.Form.get());
        auto Set = F.OpenSet<TQxAdoDataSet>(Page);
        QCOMPARE(TxDataSetRules::Message(Set.get(), 2), QStringLiteral("Delete the row?"));
    }

    void sum_data() { KeshTest::AddDriverRows(); }
    void sum()
    {
        KESH_FIXTURE(F);
        auto Set = F.OpenSet<TQxAdoDataSet>(F.Form.get());
        QVERIFY(Set->Locate(QStringLiteral("Id"), 2, {}));
        QCOMPARE(Set->Sum(QStringLiteral("Qty")), 7.0);   // the null counts as 0
        QCOMPARE(Set->Sum(QStringLiteral("Price")), 9.75);
        QCOMPARE(Set->Sum(QStringLiteral("Nothing")), 0.0);
        QCOMPARE(Set->FieldByName(QStringLiteral("Id"))->AsInteger(), 2);
        QCOMPARE(Set->State(), dsBrowse);
        auto Table = F.OpenSet<TQxAdoTable>(F.Form.get());
        QCOMPARE(Table->Sum(QStringLiteral("Qty")), 7.0);
        // An empty set and a closed one total 0.
        auto Empty = std::make_unique<TQxAdoDataSet>();
        Empty->SetConnection(F.Db->Connection());
        QCOMPARE(Empty->Sum(QStringLiteral("Qty")), 0.0);
        Empty->SetCommandText(QStringLiteral("SELECT * FROM %1 WHERE Id > 10").arg(F.Table));
        Empty->Open();
        QCOMPARE(Empty->Sum(QStringLiteral("Qty")), 0.0);
    }

    void applyValueOnReadOnlySetDoesNothing_data() { KeshTest::AddDriverRows(); }
    void applyValueOnReadOnlySetDoesNothing()
    {
        KESH_FIXTURE(F);
        auto Set = F.OpenSet<TQxAdoDataSet>(F.Form.get());
        Set->Close();
        Set->SetLockType(ltReadOnly);
        Set->Open();
        KeshTest::DialogDriver Driver;
        Set->ApplyValue(QStringLiteral("Name"), QStringLiteral("X"));
        QVERIFY(Driver.Seen.isEmpty());
        QCOMPARE(F.Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE Name = 'X'").arg(F.Table)).toInt(), 0);
    }

    // Without a lock every row takes the value and the position comes back; with the lock,
    // the dataset stops at the locked row with its message, restores the position and
    // enables the controls, while the table leaves both to the caller.
    void applyValue_data() { KeshTest::AddDriverRows(); }
    void applyValue()
    {
        KESH_FIXTURE(F);
        auto Set = F.OpenSet<TQxAdoDataSet>(F.Form.get());
        Set->SetLockedField(QString());
        QVERIFY(Set->Locate(QStringLiteral("Id"), 3, {}));
        Set->ApplyValue(QStringLiteral("Qty"), 9);
        QCOMPARE(F.Db->Scalar(QStringLiteral("SELECT SUM(Qty) FROM %1").arg(F.Table)).toInt(), 27);
        QCOMPARE(Set->FieldByName(QStringLiteral("Id"))->AsInteger(), 3);
        QVERIFY(!Set->ControlsDisabled());

        Set->SetLockedField(QStringLiteral("Locked"));
        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        Set->ApplyValue(QStringLiteral("Qty"), 5);
        QCOMPARE(Driver.Seen.size(), 1);  // the lock's message only: a refusal is not reported twice
        QCOMPARE(Driver.Seen[0].Text, QStringLiteral("The row is locked."));
        QCOMPARE(F.Db->Scalar(QStringLiteral("SELECT Qty FROM %1 WHERE Id = 1").arg(F.Table)).toInt(), 5);
        QCOMPARE(F.Db->Scalar(QStringLiteral("SELECT Qty FROM %1 WHERE Id = 2").arg(F.Table)).toInt(), 9);
        QCOMPARE(Set->FieldByName(QStringLiteral("Id"))->AsInteger(), 3);
        QCOMPARE(Set->State(), dsBrowse);
        QVERIFY(!Set->ControlsDisabled());

        auto Table = F.OpenSet<TQxAdoTable>(F.Form.get());
        QVERIFY(Table->Locate(QStringLiteral("Id"), 3, {}));
        Driver.Click(QStringLiteral("btnOk"));
        QVERIFY_THROWS_EXCEPTION(EAbort, Table->ApplyValue(QStringLiteral("Qty"), 1));
        QCOMPARE(Table->FieldByName(QStringLiteral("Id"))->AsInteger(), 2);
        QVERIFY(Table->ControlsDisabled());
        Table->EnableControls();
    }

    // A failed update of the dataset is shown with its name, the column and the value.
    void applyValueFailureIsShown_data() { KeshTest::AddDriverRows(); }
    void applyValueFailureIsShown()
    {
        KESH_FIXTURE(F);
        auto Set = F.OpenSet<TQxAdoDataSet>(F.Form.get());
        Set->SetLockedField(QString());
        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        Set->ApplyValue(QStringLiteral("Qty"), QStringLiteral("it's many"));
        QCOMPARE(Driver.Seen.size(), 1);
        QVERIFY2(Driver.Seen[0].Text.startsWith(QStringLiteral("Items.ApplyValue('Qty', 'it''s many')\r\n")),
                 qPrintable(Driver.Seen[0].Text));
        QCOMPARE(Set->State(), dsBrowse);
        QVERIFY(!Set->ControlsDisabled());
    }
};

QTEST_MAIN(TestQxAdoDataSets)
#include "tst_qx_ado_datasets.moc"
