// The connection helpers on SQLite and on PostgreSQL.
#include <Kesh_AdoDB.h>

#include "dialog_helper.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

using namespace Kesh;

class TestQxAdoConnection : public QObject
{
    Q_OBJECT

public:
    TestQxAdoConnection() { Conn.setObjectName(QStringLiteral("AppDB")); }

private:
    QTemporaryDir Dir;
    TQxAdoConnection Conn;
    QString Schema;

    // Opens Conn on the driver of the current data row, in a fresh schema or file.
    bool Connect()
    {
        QFETCH_GLOBAL(QString, driver);
        Conn.Close();
        if (driver == QLatin1String("sqlite")) {
            static int Files = 0;
            Conn.SetConnectionString(QStringLiteral("Driver=QSQLITE;Database=") + Dir.filePath(QStringLiteral("t%1.db").arg(++Files)));
            Conn.Open();
            return true;
        }
        const QString Pg = qEnvironmentVariable("KESH_TEST_PG");
        if (Pg.isEmpty()) {
            if (qEnvironmentVariable("CI") == QLatin1String("true"))
                qFatal("KESH_TEST_PG is not set: the PostgreSQL tests cannot run under CI");
            return false;
        }
        // A database of its own keeps parallel test programs apart (the Settings table is shared by name).
        Schema = QStringLiteral("kesh_helpers_%1").arg(QCoreApplication::applicationPid());
        Conn.SetConnectionString(Pg);
        Conn.Open();
        Conn.Execute(QStringLiteral("DROP DATABASE IF EXISTS %1").arg(Schema));
        Conn.Execute(QStringLiteral("CREATE DATABASE %1").arg(Schema));
        Conn.Close();
        QString Own = Pg;
        Own.replace(QRegularExpression(QStringLiteral("Database=[^;]*")), QStringLiteral("Database=") + Schema);
        Conn.SetConnectionString(Own);
        Conn.Open();
        return true;
    }

    void CreateTables()
    {
        QVERIFY(Conn.Exec(QStringLiteral(
            "CREATE TABLE Items (Item_id INTEGER PRIMARY KEY, Code VARCHAR(20), Name_a VARCHAR(50), "
            "Name_e VARCHAR(50), Price NUMERIC(12,2), Qty INTEGER);"
            "INSERT INTO Items VALUES (1, 'A7', 'قلم', 'Pen', 2.50, 10);"
            "INSERT INTO Items VALUES (2, 'A9', 'دفتر', 'Notebook', 7.25, NULL);"
            "INSERT INTO Items VALUES (3, 'B', '0', '0', NULL, 5);"
            "CREATE TABLE Settings (Setting_id INTEGER PRIMARY KEY, Setting_name VARCHAR(100), Setting_value VARCHAR(255))")));
    }

private Q_SLOTS:
    void initTestCase_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::newRow("sqlite") << QStringLiteral("sqlite");
        QTest::newRow("postgres") << QStringLiteral("postgres");
    }

    void init()
    {
        if (!Connect())
            QSKIP("KESH_TEST_PG is not set");
        CreateTables();
    }

    void cleanup()
    {
        Application()->SetBiDiMode(bdLeftToRight);
        Conn.Close();
        if (!Schema.isEmpty()) {
            TADOConnection Admin;
            Admin.SetConnectionString(qEnvironmentVariable("KESH_TEST_PG"));
            Admin.Open();
            Admin.Execute(QStringLiteral("DROP DATABASE IF EXISTS %1").arg(Schema));
        }
        Schema.clear();
    }

    void dLookup_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("criteria");
        QTest::addColumn<QString>("expected");
        QTest::newRow("value") << "Name_e" << "Item_id = 2" << "Notebook";
        QTest::newRow("arabic value") << "Name_a" << "Item_id = 1" << "قلم";
        QTest::newRow("null gives 0") << "Qty" << "Item_id = 2" << "0";
        QTest::newRow("no row gives 0") << "Name_e" << "Item_id = 99" << "0";
        QTest::newRow("blank criteria adds no where") << "Count(*)" << "   " << "3";
        QTest::newRow("colon is not a parameter") << "Name_e" << "Name_e <> ':x'  AND Item_id = 1" << "Pen";
        QTest::newRow("expression") << "Item_id * 10" << "Code = 'B'" << "30";
    }
    void dLookup()
    {
        QFETCH(QString, field);
        QFETCH(QString, criteria);
        QFETCH(QString, expected);
        QCOMPARE(AsString(Conn.DLookup(QStringLiteral("Items"), field, criteria)), expected);
    }

    // The look-up reads its value without a dataset; it must be what a query's field shows.
    void dLookupMatchesTheQueryField_data()
    {
        QTest::addColumn<QString>("field");
        QTest::newRow("integer") << "Qty";
        QTest::newRow("numeric") << "Price";
        QTest::newRow("text") << "Name_a";
        QTest::newRow("sum of numeric") << "Sum(Price)";
        QTest::newRow("count") << "Count(*)";
        QTest::newRow("boolean expression") << "Qty > 5";
    }
    void dLookupMatchesTheQueryField()
    {
        QFETCH(QString, field);
        const QVariant Got = Conn.DLookup(QStringLiteral("Items"), field, QStringLiteral("Item_id = 1"));
        std::unique_ptr<TADODataSet> Set(Conn.OpenRecordSet(
            QStringLiteral("Select ") + field + QStringLiteral(" From Items Where (Item_id = 1)"), true));
        QVERIFY(Set);
        const QVariant Want = Set->Fields().first()->Value();
        QCOMPARE(Got.metaType(), Want.metaType());
        QCOMPARE(Got, Want);
    }

    void dLookupKeepsTheErrorAndReturnsZero()
    {
        const QVariant V = Conn.DLookup(QStringLiteral("NoSuchTable"), QStringLiteral("x"), QString());
        QCOMPARE(V.toInt(), 0);
        QVERIFY(V.isValid());
        QVERIFY2(Conn.ErrorMessage().contains(QLatin1String("nosuchtable"), Qt::CaseInsensitive), qPrintable(Conn.ErrorMessage()));
        // A later success does not clear it.
        QCOMPARE(Conn.DCount(QStringLiteral("Items"), QString()), 3);
        QVERIFY(!Conn.ErrorMessage().isEmpty());
    }

    void aggregates()
    {
        QCOMPARE(Conn.DCount(QStringLiteral("Items"), QStringLiteral("Qty > 4")), 2);
        QCOMPARE(Conn.DCount(QStringLiteral("Items"), QStringLiteral("Qty > 400")), 0);
        QCOMPARE(Conn.DMax(QStringLiteral("Items"), QStringLiteral("Item_id"), QString()).toInt(), 3);
        QCOMPARE(Conn.DMin(QStringLiteral("Items"), QStringLiteral("Qty"), QString()).toInt(), 5);
        QCOMPARE(Conn.DSum(QStringLiteral("Items"), QStringLiteral("Price"), QString()).toDouble(), 9.75);
        QCOMPARE(Conn.DSum(QStringLiteral("Items"), QStringLiteral("Qty"), QStringLiteral("Item_id < 3")).toInt(), 10);
        const QVariant Nothing = Conn.DSum(QStringLiteral("Items"), QStringLiteral("Qty"), QStringLiteral("Item_id > 10"));
        // SUM of no rows is null, which the look-up already turns into 0: the text is "0".
        QVERIFY(Nothing.isValid());
        QCOMPARE(AsString(Nothing), QStringLiteral("0"));
    }

    void dLookupIntoAnArray()
    {
        QVector<QVariant> Values(3);
        QVERIFY(Conn.DLookup(QStringLiteral("SELECT Item_id, Code, Name_e FROM Items WHERE Item_id = 2"), Values));
        QCOMPARE(Values[0].toInt(), 2);
        QCOMPARE(Values[1].toString(), QStringLiteral("A9"));
        QCOMPARE(Values[2].toString(), QStringLiteral("Notebook"));

        QVERIFY(!Conn.DLookup(QStringLiteral("SELECT Item_id FROM Items WHERE Item_id = 99"), Values));
        QVERIFY(!Values[0].isValid() && !Values[2].isValid());

        QVector<QVariant> Two(2);
        {
            KeshTest::DialogDriver Driver;
            Driver.Click(QStringLiteral("btnOk"));
            QVERIFY(!Conn.DLookup(QStringLiteral("SELECT Item_id, Code, Name_e FROM Items"), Two)); // size mismatch
            QCOMPARE(Driver.Seen.size(), 1);
            QCOMPARE(Driver.Seen[0].Text, QStringLiteral("DLookup: number of fields not the same as output array."));
        }
        QVERIFY(!Conn.DLookup(QStringLiteral("SELECT nonsense FROM"), Two));
    }

    void getNextID_data()
    {
        QTest::addColumn<QString>("setup");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("criteria");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("text steps last digit") << "" << "Code" << "Item_id = 1" << QVariant(QStringLiteral("A8"));
        QTest::newRow("text 9 becomes 10") << "" << "Code" << "Item_id = 2" << QVariant(QStringLiteral("A10"));
        QTest::newRow("text letter gets 1") << "" << "Code" << "Item_id = 3" << QVariant(QStringLiteral("B1"));
        QTest::newRow("text 19 has no carry") << "UPDATE Items SET Code = '19' WHERE Item_id = 3" << "Code" << "Item_id = 3"
                                              << QVariant(QStringLiteral("110"));
        QTest::newRow("text on no rows") << "" << "Code" << "Item_id > 10" << QVariant(QStringLiteral("1"));
        QTest::newRow("number") << "" << "Item_id" << "" << QVariant(4.0);
        QTest::newRow("number on no rows") << "" << "Qty" << "Item_id > 10" << QVariant(1.0);
        QTest::newRow("decimal") << "" << "Price" << "" << QVariant(8.25);
    }
    void getNextID()
    {
        QFETCH(QString, setup);
        QFETCH(QString, field);
        QFETCH(QString, criteria);
        QFETCH(QVariant, expected);
        if (!setup.isEmpty())
            QVERIFY(Conn.Exec(setup));
        const QVariant Next = Conn.GetNextID(QStringLiteral("Items"), field, criteria);
        QCOMPARE(Next.typeId(), expected.typeId());
        QCOMPARE(Next, expected);
    }

    void nameLookup()
    {
        QCOMPARE(Conn.NameLookup(QStringLiteral("Items"), QStringLiteral("Item_id = 2"), bdRightToLeft), QStringLiteral("دفتر"));
        QCOMPARE(Conn.NameLookup(QStringLiteral("Items"), QStringLiteral("Item_id = 2"), bdLeftToRight), QStringLiteral("Notebook"));
        QCOMPARE(Conn.NameLookup(QStringLiteral("Items"), QStringLiteral("Item_id = 42"), bdLeftToRight), QString());
        QCOMPARE(Conn.NameLookup(QStringLiteral("Items"), QStringLiteral("Item_id = 3"), bdLeftToRight), QString());
        QCOMPARE(Conn.NameLookup(QStringLiteral("Items"), QStringLiteral("Item_id = 1"), bdLeftToRight,
                                 QStringLiteral("Name_a"), QStringLiteral("Code")), QStringLiteral("A7"));
        for (TBiDiMode Mode : {bdLeftToRight, bdRightToLeft}) {
            KeshTest::DialogDriver Driver;
            Driver.Click(QStringLiteral("btnOk"));
            Application()->SetBiDiMode(Mode);
            QVERIFY_THROWS_EXCEPTION(EAbort, Conn.NameLookup(QStringLiteral("Items"), QStringLiteral("Item_id = 1"), Mode,
                                                             QStringLiteral("Title_a"), QStringLiteral("Title")));
            QCOMPARE(Driver.Seen.size(), 1);
            QCOMPARE(Driver.Seen[0].Text, Mode == bdRightToLeft
                         ? QStringLiteral("ربما أحد أو كلا الحقلين [Name_a] و [Name_e] غير موجود.")
                         : QStringLiteral("Either [Name_a] or [Name_e] field doesn't exist."));
        }
    }

    void getNextIDRefusesOtherTypes()
    {
        QFETCH_GLOBAL(QString, driver);
        const QString Blob = driver == QLatin1String("postgres") ? QStringLiteral("BYTEA") : QStringLiteral("BLOB");
        QVERIFY(Conn.Exec(QStringLiteral("CREATE TABLE Stamps (Stamp_id INTEGER PRIMARY KEY, Seen %1)").arg(Blob)));
        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        QVERIFY(!Conn.GetNextID(QStringLiteral("Stamps"), QStringLiteral("Seen"), QString()).isValid());
        QCOMPARE(Driver.Seen.size(), 1);
        QCOMPARE(Driver.Seen[0].Text, QStringLiteral("GetNextID error: Unsupported field data type."));
    }

    void execRunsEveryStatement()
    {
        QVERIFY(Conn.Exec(QStringLiteral("  INSERT INTO Items (Item_id, Code) VALUES (10, 'X');\n ; ;"
                                         "INSERT INTO Items (Item_id, Code) VALUES (11, 'Y');  ")));
        QCOMPARE(Conn.DCount(QStringLiteral("Items"), QString()), 5);
        QVERIFY(Conn.Exec(QString()));
        // The first statement stays executed when the second fails.
        QVERIFY(!Conn.Exec(QStringLiteral("INSERT INTO Items (Item_id) VALUES (12); INSERT INTO Nowhere VALUES (1); "
                                          "INSERT INTO Items (Item_id) VALUES (13)")));
        QVERIFY(!Conn.ErrorMessage().isEmpty());
        QCOMPARE(Conn.DCount(QStringLiteral("Items"), QStringLiteral("Item_id IN (12, 13)")), 1);
    }

    void openRecordSet()
    {
        std::unique_ptr<TADODataSet> Set(Conn.OpenRecordSet(QStringLiteral("SELECT * FROM Items ORDER BY Item_id"), true));
        QVERIFY(Set);
        QVERIFY(Set->Active());
        QCOMPARE(Set->parent(), &Conn);
        QCOMPARE(Set->RecordCount(), 3);
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, Set->Edit());

        std::unique_ptr<TADODataSet> Editable(Conn.OpenRecordSet(QStringLiteral("SELECT * FROM Items ORDER BY Item_id"), false));
        QVERIFY(Editable);
        Editable->Edit();
        Editable->FieldByName(QStringLiteral("Name_e"))->SetAsString(QStringLiteral("Pencil"));
        Editable->Post();
        Editable.reset();
        QCOMPARE(Conn.DLookup(QStringLiteral("Items"), QStringLiteral("Name_e"), QStringLiteral("Item_id = 1")).toString(),
                 QStringLiteral("Pencil"));

        const QString Bad = QStringLiteral("SELECT * FROM Missing");
        QVERIFY(!Conn.OpenRecordSet(Bad, true));
        QVERIFY(Conn.ErrorMessage().endsWith(QStringLiteral("\r\n") + Bad));
    }

    void catalogue()
    {
        QVERIFY(Conn.TableExists(QStringLiteral("items")) && Conn.TableExists(QStringLiteral("SETTINGS")));
        QVERIFY(!Conn.TableExists(QStringLiteral("Item")));
        QVERIFY(Conn.FieldExists(QStringLiteral("Items"), QStringLiteral("NAME_A")));
        QVERIFY(!Conn.FieldExists(QStringLiteral("Items"), QStringLiteral("Name")));
        QVERIFY(!Conn.FieldExists(QStringLiteral("Missing"), QStringLiteral("Name_a")));
    }

    void settingsTable()
    {
        // A setting read for the first time becomes a row holding the default, without a name.
        QCOMPARE(Conn.ReadSetting(7, 25).toString(), QStringLiteral("25"));
        QCOMPARE(Conn.DLookup(QStringLiteral("Settings"), QStringLiteral("Setting_value"), QStringLiteral("Setting_id = 7")).toString(),
                 QStringLiteral("25"));
        QCOMPARE(AsString(Conn.DLookup(QStringLiteral("Settings"), QStringLiteral("Setting_name"), QStringLiteral("Setting_id = 7"))),
                 QStringLiteral("0")); // a null name reads as DLookup's 0
        QVERIFY(Conn.GetSettings() && Conn.GetSettings()->Active());

        // A name given later fills the row; a name already there stays.
        Conn.SaveSetting(7, QStringLiteral("Copies"), 3);
        Conn.SaveSetting(7, QStringLiteral("Other name"), true);
        QCOMPARE(Conn.ReadSetting(7, 25).toString(), QStringLiteral("True"));
        QCOMPARE(Conn.DLookup(QStringLiteral("Settings"), QStringLiteral("Setting_name"), QStringLiteral("Setting_id = 7")).toString(),
                 QStringLiteral("Copies"));

        Conn.SaveSetting(8, QStringLiteral("Company"), QStringLiteral("شركة النور"));
        QCOMPARE(Conn.ReadSetting(8, QString()).toString(), QStringLiteral("شركة النور"));
        Conn.SaveSetting(8, QString(), QString());
        QCOMPARE(Conn.ReadSetting(8, QStringLiteral("none")).toString(), QStringLiteral("none"));
        QCOMPARE(Conn.DCount(QStringLiteral("Settings"), QString()), 2);
    }

    void missingSettingsTableIsLoggedNotRaised()
    {
        QVERIFY(Conn.Exec(QStringLiteral("DROP TABLE Settings")));
        QTemporaryDir LogDir;
        const QString SavedLog = LogFilename;
        LogFilename = LogDir.filePath(QStringLiteral("app.LOG"));
        QCOMPARE(Conn.ReadSetting(1, QStringLiteral("d")).toString(), QStringLiteral("d"));
        QFile Log(LogFilename);
        LogFilename = SavedLog;
        QVERIFY(Log.open(QIODevice::ReadOnly));
        QVERIFY(Log.readAll().startsWith("ERROR: AppDB.OpenSettingsTable\r\n"));
    }

    void closedConnectionGivesEmptyResults()
    {
        Conn.Close();
        QVERIFY(!Conn.DLookup(QStringLiteral("Items"), QStringLiteral("Code"), QString()).isValid());
        QCOMPARE(Conn.DCount(QStringLiteral("Items"), QString()), 0);
        QVERIFY(!Conn.DMax(QStringLiteral("Items"), QStringLiteral("Qty"), QString()).isValid());
        QVERIFY(!Conn.DSum(QStringLiteral("Items"), QStringLiteral("Qty"), QString()).isValid());
        QVERIFY(!Conn.GetNextID(QStringLiteral("Items"), QStringLiteral("Qty"), QString()).isValid());
        QVERIFY(!Conn.Exec(QStringLiteral("DELETE FROM Items")));
        QVERIFY(!Conn.OpenRecordSet(QStringLiteral("SELECT 1"), true));
        QVERIFY(!Conn.TableExists(QStringLiteral("Items")));
        QVERIFY(!Conn.FieldExists(QStringLiteral("Items"), QStringLiteral("Code")));
        QCOMPARE(Conn.ReadSetting(1, 9).toInt(), 9);
        QVector<QVariant> Values(1, 5);
        QVERIFY(!Conn.DLookup(QStringLiteral("SELECT 1"), Values));
        QVERIFY(!Values[0].isValid());
    }

    void totalUsersCountsOpenRequests()
    {
        TQxAdoConnection Users;
        Users.SetConnectionString(Conn.ConnectionString());
        Users.Close(); // closed already: nothing to count
        QCOMPARE(Users.TotalUsers(), 0);
        Users.Open();
        Users.Open();
        QCOMPARE(Users.TotalUsers(), 2);
        Users.SetConnected(true);
        Users.Open(QString(), QString());
        QCOMPARE(Users.TotalUsers(), 4);
        Users.Close();
        QVERIFY(!Users.Connected());
        for (int I = 0; I < 5; ++I) {
            Users.Open();
            Users.Close();
        }
        QCOMPARE(Users.TotalUsers(), 3);
    }
};

QTEST_MAIN(TestQxAdoConnection)
#include "tst_qx_ado_connection.moc"
