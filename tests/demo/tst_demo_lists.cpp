// The customers and items forms of the demo, driven by keys and clicks on a fresh sample
// database (SQLite and PostgreSQL): look-up with the browser, editing in the card, a new
// record's key, the delete question, the footer's totals against the database, and the
// refusal to close over unsaved changes.
#include "customers_form.h"
#include "demo_context.h"
#include "items_form.h"
#include "sample_db.h"

#include "db_test_helper.h"
#include "demo_test_helper.h"
#include "dialog_helper.h"

#include <Kesh.h>
#include <KeshForm_AdoBrowser.h>
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>
#include <Kesh_dbControls.h>
#include <Kesh_dbGrid.h>

#include <QBuffer>
#include <QComboBox>
#include <QImage>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QtTest>

using namespace Kesh;
using namespace DemoTest;

namespace {

// The sample database with a few invoices, in a database of the test's own, and the
// context the forms are given.
struct TSample
{
    explicit TSample(const KeshTest::TTestDatabase& Db)
    {
        Conn.SetConnectionString(Db.ConnectionString());
        Conn.Open();
        Demo::EnsureSampleDatabase(&Conn, 300);
        Context.Conn = &Conn;
    }
    QVariant Scalar(const QString& Sql) const { return DemoTest::Scalar(Conn, Sql); }
    TQxAdoConnection Conn;
    Demo::TDemoContext Context;
};

#define OPEN_SAMPLE_DB(Sample)          \
    KESH_OPEN_PRIVATE_TEST_DB(Sample##Db); \
    TSample Sample(*Sample##Db);

// A list form of Class on the sample of the current driver, shown.
#define SHOW_LIST(Class, Form, Db) \
    OPEN_SAMPLE_DB(Db);            \
    Class Form(Db.Context);        \
    ShowForm(Form);

// The same on SQLite only, for what does not depend on the server.
#define OPEN_SQLITE_SAMPLE(Sample)                                                               \
    QString Sample##Reason;                                                                      \
    auto Sample##Db = KeshTest::TTestDatabase::OpenPrivate(QStringLiteral("sqlite"), Sample##Reason); \
    QVERIFY2(Sample##Db, qPrintable(Sample##Reason));                                            \
    TSample Sample(*Sample##Db);

int Key(Demo::TListForm& Form, const char* Field) { return Form.DataSet()->FieldByName(QLatin1String(Field))->AsInteger(); }

QString Total(const TSample& Db, const QString& Expression, const QString& Table)
{
    return FormatFloat(QStringLiteral("#,##0.00"), Db.Scalar(QStringLiteral("SELECT SUM(%1) FROM %2").arg(Expression, Table)).toDouble());
}

QString FooterText(Demo::TListForm& Form, int Column) { return Form.Footer()->Labels(Column)->GetCaption(); }

} // namespace

class TestDemoLists : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { Application()->SetBiDiMode(bdLeftToRight); }
    void cleanupTestCase() { Application()->SetBiDiMode(bdLeftToRight); }

    void findWithBrowser_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<bool>("arabic");
        for (const char* Driver : {"sqlite", "postgres"})
            for (bool Arabic : {false, true})
                QTest::addRow("%s-%s", Driver, Arabic ? "ar" : "en") << QString::fromLatin1(Driver) << Arabic;
    }
    // F4, a prefix of a name typed into the quick search, Enter: the form is on the first
    // customer of that prefix in the name order.
    void findWithBrowser()
    {
        OPEN_SAMPLE_DB(Db);
        QFETCH(bool, arabic);
        Application()->SetBiDiMode(arabic ? bdRightToLeft : bdLeftToRight);
        const QString Column = arabic ? QStringLiteral("Name_a") : QStringLiteral("Name_e");
        const QString Name = Db.Scalar(QStringLiteral("SELECT %1 FROM Customers WHERE Cust_id = 217").arg(Column)).toString();
        const QString Prefix = Name.left(4);
        QSqlQuery Expected(Db.Context.Conn->Database());
        QVERIFY(Expected.exec(QStringLiteral("SELECT Cust_id FROM Customers WHERE %1 LIKE '%2%' ORDER BY %1")
                                  .arg(Column, QString(Prefix).replace(QLatin1Char('\''), QLatin1String("''")))));
        QVERIFY(Expected.next());
        const int Wanted = Expected.value(0).toInt();

        Demo::TCustomersForm Form(Db.Context);
        ShowForm(Form);
        QCOMPARE(Key(Form, "Cust_id"), 1);
        KeshTest::DialogDriver Driver;
        QString Title;
        Driver.OnShown = [&](QWidget* Dialog) {
            Title = Dialog->windowTitle();
            auto* Browser = qobject_cast<TAdoBrowserForm*>(Dialog);
            QVERIFY(Browser);
            Type(Browser->F1, Prefix);
        };
        Driver.Press(Qt::Key_Return);
        QTest::keyClick(&Form, Qt::Key_F4);
        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(QLatin1Char('\n'))));
        QCOMPARE(Driver.Seen.size(), 1);
        QCOMPARE(Title, arabic ? QStringLiteral("العملاء") : QStringLiteral("Customers"));
        QCOMPARE(Key(Form, "Cust_id"), Wanted);
        // The grid shows that row as its current one.
        QCOMPARE(Form.Grid()->currentIndex().row(), Form.DataSet()->CurrentRow());
    }

    void tabOrder_data()
    {
        QTest::addColumn<bool>("items");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("customers") << false
                                   << QStringList{"xName_a", "xName_e", "xJoined", "xNotes", "xCity_id", "xPhone",
                                                  "xCredit_limit", "xActive", "grdCustomers"};
        QTest::newRow("items") << true
                               << QStringList{"xName_a", "xName_e", "xActive", "xCode", "xUnit_id", "xPrice", "xStock",
                                              "btnLoadPhoto", "btnClearPhoto", "grdItems"};
    }
    // Tab walks from the grid through the card in reading order and back to the grid; the
    // tool bar is reached by its keys, not by Tab.
    void tabOrder()
    {
        QFETCH(bool, items);
        QFETCH(QStringList, order);
        OPEN_SQLITE_SAMPLE(Sample);
        std::unique_ptr<Demo::TListForm> Form;
        if (items)
            Form.reset(new Demo::TItemsForm(Sample.Context));
        else
            Form.reset(new Demo::TCustomersForm(Sample.Context));
        ShowForm(*Form);
        Form->Grid()->setFocus();
        QStringList Visited;
        for (int I = 0; I < order.size(); ++I) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            Visited << QApplication::focusWidget()->objectName();
        }
        QCOMPARE(Visited, order);
    }

    // Switched to Arabic while open, as the main window switches its forms: the grid shows
    // the Arabic names and titles, the footer counts in Arabic, the city list and the city
    // column show Arabic names; and back.
    void languageSwitch()
    {
        OPEN_SQLITE_SAMPLE(Sample);
        Demo::TCustomersForm Form(Sample.Context);
        ShowForm(Form);
        const int City = Key(Form, "City_id");
        auto CityName = [&](const char* Column) {
            return Sample.Scalar(QStringLiteral("SELECT %1 FROM Cities WHERE City_id = %2").arg(QLatin1String(Column)).arg(City)).toString();
        };
        for (TBiDiMode Mode : {bdRightToLeft, bdLeftToRight}) {
            const bool Arabic = Mode == bdRightToLeft;
            Form.FormManager()->SetLang(Mode);
            Application()->SetBiDiMode(Mode);
            ShowForm(Form);
            QTest::qWait(20);
            TQxColumn* Name = Form.Grid()->GetColumns()->Items(1);
            QCOMPARE(Name->GetFieldName(), Arabic ? QStringLiteral("Name_a") : QStringLiteral("Name_e"));
            QCOMPARE(Name->GetTitle()->GetCaption(), Arabic ? QStringLiteral("الاسم") : QStringLiteral("Name"));
            QCOMPARE(FooterText(Form, 1), Arabic ? QStringLiteral("عدد العملاء: 300") : QStringLiteral("300 customers"));
            QCOMPARE(W<QComboBox>(Form, "xCity_id")->currentText(), CityName(Arabic ? "Name_a" : "Name_e"));
            QCOMPARE(Form.DataSet()->FieldByName(QStringLiteral("City_id"))->DisplayText(), CityName(Arabic ? "Name_a" : "Name_e"));
            QCOMPARE(Form.layoutDirection(), Arabic ? Qt::RightToLeft : Qt::LeftToRight);
        }
    }

    void editName_data() { KeshTest::AddDriverRows(); }
    // A name changed in the card and saved with Ctrl+S is what the database holds.
    void editName()
    {
        SHOW_LIST(Demo::TCustomersForm, Form, Db);
        Form.Grid()->setFocus();
        for (int I = 0; I < 4; ++I)
            QTest::keyClick(Form.Grid(), Qt::Key_Down);
        QCOMPARE(Key(Form, "Cust_id"), 5);
        QTest::keyClick(Form.Grid(), Qt::Key_Return);
        QCOMPARE(QApplication::focusWidget(), W<QWidget>(Form, "xName_a"));
        const QString Arabic = QStringLiteral("شركة الاختبار «الأولى»");
        const QString English = QStringLiteral("O'Neil & Sons");
        Retype(W<QWidget>(Form, "xName_a"), Arabic);
        Retype(W<QWidget>(Form, "xName_e"), English);
        QCOMPARE(Form.DataSet()->State(), dsEdit);
        QTest::keyClick(W<QWidget>(Form, "xName_e"), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(Form.DataSet()->State(), dsBrowse);
        QCOMPARE(Db.Scalar(QStringLiteral("SELECT Name_a FROM Customers WHERE Cust_id = 5")).toString(), Arabic);
        QCOMPARE(Db.Scalar(QStringLiteral("SELECT Name_e FROM Customers WHERE Cust_id = 5")).toString(), English);
    }

    // F3 opens the calendar on the joining date; the next month picked there and OK: the
    // card shows the day a month later, and Save writes it.
    void pickJoinedDate()
    {
        OPEN_SQLITE_SAMPLE(Sample);
        Demo::TCustomersForm Form(Sample.Context);
        ShowForm(Form);
        QVERIFY(Form.DataSet()->Locate(QStringLiteral("Cust_id"), 7));
        const int Joined = Key(Form, "Joined");
        W<QWidget>(Form, "xName_e")->setFocus();
        KeshTest::DialogDriver Driver;
        Driver.OnShown = [](QWidget* Calendar) { QTest::mouseClick(W<QWidget>(*Calendar, "btnNextMonth"), Qt::LeftButton); };
        Driver.Click(QStringLiteral("btnOk"));
        QTest::keyClick(W<QWidget>(Form, "xName_e"), Qt::Key_F3);
        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(QLatin1Char('\n'))));
        QCOMPARE(Driver.Seen.size(), 1);
        QCOMPARE(Form.DataSet()->State(), dsEdit);
        const int Month = Joined / 100 % 100;
        const int Expected = (Joined / 10000 + (Month == 12 ? 1 : 0)) * 10000 + (Month % 12 + 1) * 100 + Joined % 100;
        QCOMPARE(W<TQxdbEditButton>(Form, "xJoined")->Data(), TQxDateField::DateText(Expected));
        QCOMPARE(Sample.Scalar(QStringLiteral("SELECT Joined FROM Customers WHERE Cust_id = 7")).toInt(), Joined);
        ShowForm(Form);  // back to the front after the calendar, as a window manager does
        QTest::keyClick(W<QWidget>(Form, "xJoined"), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(Form.DataSet()->State(), dsBrowse);
        QCOMPARE(Sample.Scalar(QStringLiteral("SELECT Joined FROM Customers WHERE Cust_id = 7")).toInt(), Expected);
    }

    void insertCustomer_data() { KeshTest::AddDriverRows(); }
    // Insert on the tool bar: the next key, today's date; Save writes the row; the footer
    // counts it.
    void insertCustomer()
    {
        SHOW_LIST(Demo::TCustomersForm, Form, Db);
        const int Count = Db.Scalar(QStringLiteral("SELECT COUNT(*) FROM Customers")).toInt();
        const int Next = Db.Scalar(QStringLiteral("SELECT MAX(Cust_id) FROM Customers")).toInt() + 1;
        QCOMPARE(Form.RecordCount(), Count);
        QTest::mouseClick(W<QWidget>(Form, "btnAdd"), Qt::LeftButton);
        QCOMPARE(Form.DataSet()->State(), dsInsert);
        QCOMPARE(Key(Form, "Cust_id"), Next);
        QCOMPARE(Key(Form, "Joined"), DateToInt(Date()));
        // Saving without names is refused, with the reason, and nothing is written.
        {
            KeshTest::DialogDriver Driver;
            Driver.Press(Qt::Key_Return);
            QTest::mouseClick(W<QWidget>(Form, "btnSave"), Qt::LeftButton);
            QCOMPARE(Driver.Seen.size(), 1);
            QVERIFY2(Driver.Seen[0].Text.contains(QStringLiteral("name")), qPrintable(Driver.Seen[0].Text));
        }
        QCOMPARE(Form.DataSet()->State(), dsInsert);
        Retype(W<QWidget>(Form, "xName_a"), QStringLiteral("عميل جديد"));
        Retype(W<QWidget>(Form, "xName_e"), QStringLiteral("New customer"));
        Retype(W<QWidget>(Form, "xCredit_limit"), QStringLiteral("2500.5"));
        QTest::mouseClick(W<QWidget>(Form, "btnSave"), Qt::LeftButton);
        QCOMPARE(Form.DataSet()->State(), dsBrowse);
        QCOMPARE(Db.Scalar(QStringLiteral("SELECT Name_e FROM Customers WHERE Cust_id = %1").arg(Next)).toString(),
                 QStringLiteral("New customer"));
        QCOMPARE(Db.Scalar(QStringLiteral("SELECT Credit_limit FROM Customers WHERE Cust_id = %1").arg(Next)).toDouble(), 2500.5);
        QCOMPARE(Form.RecordCount(), Count + 1);
        QCOMPARE(FooterText(Form, 1), QStringLiteral("%1 customers").arg(Count + 1));
    }

    void deleteAsks_data() { KeshTest::AddDriverRows(); }
    // Ctrl+Del asks first: No keeps the customer, Yes deletes it in the database.
    void deleteAsks()
    {
        SHOW_LIST(Demo::TCustomersForm, Form, Db);
        QVERIFY(Form.DataSet()->Locate(QStringLiteral("Cust_id"), 42));
        const int Count = Form.RecordCount();
        for (const char* Answer : {"btnNo", "btnYes"}) {
            ShowForm(Form);  // back to the front after the last question, as a window manager does
            Form.Grid()->setFocus();
            KeshTest::DialogDriver Driver;
            Driver.Click(QLatin1String(Answer));
            QTest::keyClick(Form.Grid(), Qt::Key_Delete, Qt::ControlModifier);
            QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(QLatin1Char('\n'))));
            QCOMPARE(Driver.Seen.size(), 1);
            QVERIFY2(Driver.Seen[0].Text.endsWith(QStringLiteral("Delete this customer?")), qPrintable(Driver.Seen[0].Text));
            const bool Deleted = qstrcmp(Answer, "btnYes") == 0;
            QCOMPARE(Db.Scalar(QStringLiteral("SELECT COUNT(*) FROM Customers WHERE Cust_id = 42")).toInt(), Deleted ? 0 : 1);
            QCOMPARE(Form.RecordCount(), Deleted ? Count - 1 : Count);
        }
        QVERIFY(Key(Form, "Cust_id") != 42);
    }

    void footerTotals_data() { KeshTest::AddDriverRows(); }
    // After edits through the card the footer's totals are the database's sums.
    void footerTotals()
    {
        SHOW_LIST(Demo::TCustomersForm, Form, Db);
        QTRY_VERIFY(Form.Footer()->TotalsReady());
        QCOMPARE(FooterText(Form, 4), Total(Db, QStringLiteral("Credit_limit"), QStringLiteral("Customers")));
        QCOMPARE(FooterText(Form, 5), Total(Db, QStringLiteral("Balance"), QStringLiteral("Customers")));
        for (int Customer : {3, 150, 299}) {
            QVERIFY(Form.DataSet()->Locate(QStringLiteral("Cust_id"), Customer));
            Retype(W<QWidget>(Form, "xCredit_limit"), QString::number(Customer * 1000 + 0.25, 'f', 2));
            QTest::keyClick(W<QWidget>(Form, "xCredit_limit"), Qt::Key_S, Qt::ControlModifier);
            QCOMPARE(Form.DataSet()->State(), dsBrowse);
        }
        QTRY_VERIFY(Form.Footer()->TotalsReady());
        QCOMPARE(FooterText(Form, 4), Total(Db, QStringLiteral("Credit_limit"), QStringLiteral("Customers")));
        QCOMPARE(FooterText(Form, 5), Total(Db, QStringLiteral("Balance"), QStringLiteral("Customers")));
    }

    void closeRefusedWhileEditing_data() { KeshTest::AddDriverRows(); }
    // A typed change that is neither saved nor cancelled keeps the form open, with a message.
    void closeRefusedWhileEditing()
    {
        SHOW_LIST(Demo::TCustomersForm, Form, Db);
        Retype(W<QWidget>(Form, "xPhone"), QStringLiteral("0500000000"));
        {
            KeshTest::DialogDriver Driver;
            Driver.Press(Qt::Key_Return);
            QVERIFY(!Form.close());
            QCOMPARE(Driver.Seen.size(), 1);
        }
        QVERIFY(Form.isVisible());
        // The window comes back to the front when the message closes, as a window manager does.
        ShowForm(Form);
        W<QWidget>(Form, "xPhone")->setFocus();
        QTest::keyClick(W<QWidget>(Form, "xPhone"), Qt::Key_Escape);
        QCOMPARE(Form.DataSet()->State(), dsBrowse);
        QVERIFY(Form.close());
    }

    void itemsStockValue_data() { KeshTest::AddDriverRows(); }
    // A new price changes the item's stock value at once, and the footer's totals stay the
    // database's sums of stock and of stock times price.
    void itemsStockValue()
    {
        SHOW_LIST(Demo::TItemsForm, Form, Db);
        QTRY_VERIFY(Form.Footer()->TotalsReady());
        const QString StockValue = QStringLiteral("Stock * Price");
        QCOMPARE(FooterText(Form, 5), Total(Db, StockValue, QStringLiteral("Items")));
        QVERIFY(Form.DataSet()->Locate(QStringLiteral("Item_id"), 7));
        const int Stock = Key(Form, "Stock");
        Retype(W<QWidget>(Form, "xPrice"), QStringLiteral("12.75"));
        W<QWidget>(Form, "xStock")->setFocus();  // leaving the price writes it
        QCOMPARE(Form.DataSet()->FieldByName(QStringLiteral("Stock_value"))->AsFloat(), Stock * 12.75);
        Retype(W<QWidget>(Form, "xStock"), QString::number(Stock + 10));
        QTest::keyClick(W<QWidget>(Form, "xStock"), Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(Form.DataSet()->State(), dsBrowse);
        QCOMPARE(Db.Scalar(QStringLiteral("SELECT Stock FROM Items WHERE Item_id = 7")).toInt(), Stock + 10);
        QTRY_VERIFY(Form.Footer()->TotalsReady());
        QCOMPARE(FooterText(Form, 5), Total(Db, StockValue, QStringLiteral("Items")));
        QCOMPARE(FooterText(Form, 4), FormatFloat(QStringLiteral("#,##0"), Db.Scalar(QStringLiteral("SELECT SUM(Stock) FROM Items")).toDouble()));
    }

    void itemsDeleteSelected_data() { KeshTest::AddDriverRows(); }
    // Ctrl+click picks rows; "Delete selected" asks once, deletes the items no invoice uses
    // and keeps (and names the count of) those an invoice line uses.
    void itemsDeleteSelected()
    {
        SHOW_LIST(Demo::TItemsForm, Form, Db);
        // Two unused items and one used one among the rows on screen (the grid is in key order).
        QList<int> Unused, Used;
        for (int Id = 1; Id <= 12; ++Id)
            (Db.Scalar(QStringLiteral("SELECT COUNT(*) FROM InvoiceLines WHERE Item_id = %1").arg(Id)).toInt() ? Used : Unused) << Id;
        QVERIFY(Unused.size() >= 2 && !Used.isEmpty());
        const QList<int> Picked = {Unused[0], Used[0], Unused[1]};
        TQxdbGrid* Grid = Form.Grid();
        for (const int Id : Picked) {
            const QRect Cell = Grid->visualRect(Grid->model()->index(Id - 1, 2));
            QVERIFY(Grid->viewport()->rect().contains(Cell.center()));
            QTest::mouseClick(Grid->viewport(), Qt::LeftButton, Qt::ControlModifier, Cell.center());
        }
        QCOMPARE(Grid->SelectedRows()->Count(), 3);
        const int Count = Form.RecordCount();
        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnYes")).Click(QStringLiteral("btnOk"));
        try {
            W<QAbstractButton>(Form, "btnDeleteSelected")->click();
        } catch (const Exception& E) {
            QFAIL(qPrintable(E.Message));
        }
        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(QLatin1Char('\n'))));
        QCOMPARE(Driver.Seen.size(), 2);
        QVERIFY2(Driver.Seen[1].Text.contains(QStringLiteral("2 deleted; 1 kept")), qPrintable(Driver.Seen[1].Text));
        const QString Ids = QStringLiteral("%1, %2, %3").arg(Picked[0]).arg(Picked[1]).arg(Picked[2]);
        QCOMPARE(Db.Scalar(QStringLiteral("SELECT COUNT(*) FROM Items WHERE Item_id IN (%1)").arg(Ids)).toInt(), 1);
        QCOMPARE(Db.Scalar(QStringLiteral("SELECT COUNT(*) FROM Items WHERE Item_id = %1").arg(Used[0])).toInt(), 1);
        QCOMPARE(Form.RecordCount(), Count - 2);
        QCOMPARE(Grid->SelectedRows()->Count(), 0);
    }

    void itemsPicture_data() { KeshTest::AddDriverRows(); }
    // A picture loaded on an item is saved in its row; clearing it empties the column; a
    // file that is no picture is refused with a message.
    void itemsPicture()
    {
        SHOW_LIST(Demo::TItemsForm, Form, Db);
        QVERIFY(Form.DataSet()->Locate(QStringLiteral("Item_id"), 3));
        QTemporaryDir Dir;
        QImage Picture(40, 30, QImage::Format_RGB32);
        Picture.fill(Qt::darkCyan);
        const QString File = Dir.filePath(QStringLiteral("item.png"));
        QVERIFY(Picture.save(File));
        QVERIFY(Form.LoadPicture(File));
        QVERIFY(!W<TQxdbImage>(Form, "xPhoto")->Picture().isNull());
        QTest::keyClick(&Form, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(Form.DataSet()->State(), dsBrowse);
        const QByteArray Stored = Db.Scalar(QStringLiteral("SELECT Photo FROM Items WHERE Item_id = 3")).toByteArray();
        QVERIFY(Stored.startsWith("\x89PNG"));
        QCOMPARE(QImage::fromData(Stored).size(), QSize(40, 30));

        QTest::mouseClick(W<QWidget>(Form, "btnClearPhoto"), Qt::LeftButton);
        QVERIFY(W<TQxdbImage>(Form, "xPhoto")->Picture().isNull());
        QTest::keyClick(&Form, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(Db.Scalar(QStringLiteral("SELECT Photo FROM Items WHERE Item_id = 3")).isNull());

        const QString Text = Dir.filePath(QStringLiteral("notes.png"));
        QFile Notes(Text);
        QVERIFY(Notes.open(QIODevice::WriteOnly));
        Notes.write("not a picture");
        Notes.close();
        KeshTest::DialogDriver Driver;
        Driver.Press(Qt::Key_Return);
        QVERIFY(!Form.LoadPicture(Text));
        QCOMPARE(Driver.Seen.size(), 1);
        QCOMPARE(Form.DataSet()->State(), dsBrowse);
    }
};

QTEST_MAIN(TestDemoLists)
#include "tst_demo_lists.moc"
