// The sales invoice of the demo, driven with real keys and clicks on a fresh sample database
// (SQLite file, or a PostgreSQL database of its own).
#include "db_test_helper.h"
#include "demo_test_helper.h"
#include "dialog_helper.h"
#include "invoice_form.h"
#include "invoice_list_form.h"
#include "sample_db.h"

#include <Kesh.h>
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>
#include <Kesh_dbControls.h>
#include <Kesh_dbGrid.h>
#include <KeshForm_AdoBrowser.h>

#include <QAbstractItemView>
#include <QComboBox>
#include <QLineEdit>
#include <QSqlDatabase>
#include <QSignalSpy>
#include <QSqlQuery>
#include <QtTest>

using namespace Kesh;

namespace {

const QString PostedText = QStringLiteral("This invoice is posted: it can no longer be changed or deleted.");

// The sample database in a database of the test's own (a file, or a PostgreSQL database
// dropped afterwards), with few invoices.
struct TDemoDatabase
{
    QVariant Scalar(const QString& Sql) { return DemoTest::Scalar(Conn, Sql); }
    TQxAdoConnection Conn;
};

#define OPEN_DEMO_DB(Var)                                                                   \
    KESH_OPEN_PRIVATE_TEST_DB(Var##Server);                                                 \
    TDemoDatabase Var;                                                                      \
    try {                                                                                   \
        Var.Conn.SetConnectionString(Var##Server->ConnectionString());                      \
        Var.Conn.Open();                                                                    \
        Demo::EnsureSampleDatabase(&Var.Conn, 400);                                         \
    } catch (const Exception& E) {                                                         \
        QFAIL(qPrintable(E.Message));                                                       \
    }

// Characters as the keyboard gives them (Arabic letters have no key code here).
void Type(QWidget* Widget, const QString& Text)
{
    for (const QChar C : Text) {
        if (C.unicode() < 128) {
            QTest::keyClick(Widget, C.toLatin1());
        } else {
            QTest::sendKeyEvent(QTest::Press, Widget, Qt::Key_unknown, QString(C), Qt::NoModifier);
            QTest::sendKeyEvent(QTest::Release, Widget, Qt::Key_unknown, QString(C), Qt::NoModifier);
        }
    }
}

// The window shown and active, so that its hot keys work.
struct TShownForm
{
    explicit TShownForm(TDemoDatabase& Db) : Context{&Db.Conn, QString(), QString()}, Form(Context)
    {
        Form.show();
        Form.activateWindow();
    }
    template <class T>
    T* Child(const char* Name)
    {
        return Form.findChild<T*>(QLatin1String(Name));
    }
    QWidget* Focus() { return QApplication::focusWidget() ? QApplication::focusWidget() : &Form; }

    Demo::TDemoContext Context;
    InvoiceForm Form;
};

void AddDrivers()
{
    QTest::addColumn<QString>("driver");
}

void SqliteOnly()
{
    AddDrivers();
    QTest::newRow("sqlite") << "sqlite";
}

// The invoice window on Db, shown and active, as S.
#define SHOW_INVOICE(S, Db) \
    TShownForm S(Db);       \
    QVERIFY(QTest::qWaitForWindowActive(&S.Form));

} // namespace

class TestDemoInvoice : public QObject
{
    Q_OBJECT

private:
    // The grid's open cell editor (the line edit of a drop list).
    static QWidget* Editor(TQxdbGrid* Grid)
    {
        for (QWidget* W : Grid->findChildren<QWidget*>(QStringLiteral("InplaceEditor")))
            if (W->isVisible()) {
                if (auto* Combo = qobject_cast<QComboBox*>(W))
                    return Combo->lineEdit();
                return W;
            }
        return Grid;
    }

    // The grid's item cell: opens its drop list with Alt+Down and takes entry Index.
    static void PickItem(TQxdbGrid* Grid, int Index)
    {
        QTest::keyClick(Grid, Qt::Key_F2);
        auto* Combo = Grid->findChild<QComboBox*>(QStringLiteral("InplaceEditor"));
        QVERIFY(Combo);
        QTest::keyClick(Combo->lineEdit(), Qt::Key_Down, Qt::AltModifier);
        QTRY_VERIFY(Combo->view()->isVisible());
        QTest::keyClick(Combo->view(), Qt::Key_Home);
        for (int I = 0; I < Index; ++I)
            QTest::keyClick(Combo->view(), Qt::Key_Down);
        QTest::keyClick(Combo->view(), Qt::Key_Return);
        QTRY_VERIFY(!Combo->view()->isVisible());
        QTest::keyClick(Combo->lineEdit(), Qt::Key_Return);
    }

    static int LineCount(TDemoDatabase& Db, int InvId)
    {
        return Db.Scalar(QStringLiteral("SELECT COUNT(*) FROM InvoiceLines WHERE Inv_id = %1").arg(InvId)).toInt();
    }

    // An invoice of the sample that is not posted and has at least two lines.
    static int OpenSampleInvoice(TDemoDatabase& Db)
    {
        return Db.Scalar(QStringLiteral("SELECT MIN(l.Inv_id) FROM InvoiceLines l JOIN Invoices i ON i.Inv_id = l.Inv_id "
                                        "WHERE NOT i.Posted GROUP BY l.Inv_id HAVING COUNT(*) >= 2 ORDER BY 1"))
            .toInt();
    }

private Q_SLOTS:
    void init() { Application()->SetBiDiMode(bdLeftToRight); }

    void createInvoiceWithTwoLines_data() { KeshTest::AddDriverRows(); }
    // Customer through the browser, one item from the drop list and one typed by code,
    // quantities typed, Ctrl+S: the database holds the header and both lines.
    void createInvoiceWithTwoLines()
    {
        OPEN_DEMO_DB(Db);
        // The words name the currency kept in the settings.
        Db.Conn.SaveSetting(Demo::SetCurrencyA, QStringLiteral("Currency"), QStringLiteral("دينار|ديناران|دنانير|دينارا"));
        Db.Conn.SaveSetting(Demo::SetCurrencyE, QStringLiteral("Currency"), QStringLiteral("Dinar"));
        SHOW_INVOICE(S, Db);
        const int InvId = S.Form.InvoiceId();
        QVERIFY(InvId > 0);

        const QString Prefix = Db.Scalar(QStringLiteral("SELECT Name_e FROM Customers ORDER BY Cust_id")).toString().left(5);
        KeshTest::DialogDriver Browser;
        Browser.OnShown = [&](QWidget* Dialog) {
            auto* Form = qobject_cast<TAdoBrowserForm*>(Dialog);
            QVERIFY(Form);
            Type(Form->F1, Prefix);
        };
        Browser.Press(Qt::Key_Return);
        QTest::keyClick(S.Focus(), Qt::Key_F4);
        QVERIFY2(Browser.Errors.isEmpty(), qPrintable(Browser.Errors.join('\n')));
        QCOMPARE(Browser.Seen.size(), 1);
        const QString CustomerName = S.Child<TQxLabel>("lblCustomerName")->GetCaption();
        QVERIFY2(CustomerName.startsWith(Prefix), qPrintable(CustomerName));
        const int CustId = S.Child<TQxdbEditButton>("dbbCustomer")->Field()->AsInteger();
        QCOMPARE(Db.Scalar(QStringLiteral("SELECT Name_e FROM Customers WHERE Cust_id = %1").arg(CustId)).toString(),
                 CustomerName);

        QSqlQuery Items(Db.Conn.Database());
        QVERIFY(Items.exec(QStringLiteral("SELECT Item_id, Code, Price FROM Items WHERE Active ORDER BY Code")));
        QVector<std::tuple<int, QString, double>> Active;
        while (Items.next())
            Active.append({Items.value(0).toInt(), Items.value(1).toString(), Items.value(2).toDouble()});
        QVERIFY(Active.size() >= 5);
        const auto [FirstId, FirstCode, FirstPrice] = Active[2];
        const auto [SecondId, SecondCode, SecondPrice] = Active[4];

        auto* Grid = S.Child<TQxdbGrid>("grdLines");
        Grid->setFocus();
        QTest::keyClick(Grid, Qt::Key_Insert);
        QCOMPARE(Grid->SelectedIndex(), 0);
        PickItem(Grid, 2);
        QCOMPARE(Grid->SelectedIndex(), 1);  // Enter moved on to the quantity
        Type(Grid, QStringLiteral("3"));
        QTest::keyClick(Editor(Grid), Qt::Key_Return);
        QCOMPARE(Grid->SelectedIndex(), 2);
        QTest::keyClick(Grid, Qt::Key_Return);  // the item's price stays
        QTest::keyClick(Grid, Qt::Key_Return);  // past the computed total: a new line
        QCOMPARE(Grid->DataSet()->State(), dsInsert);
        QCOMPARE(Grid->SelectedIndex(), 0);
        Type(Grid, SecondCode.toLower());
        QTest::keyClick(Editor(Grid), Qt::Key_Return);
        Type(Grid, QStringLiteral("2.5"));
        QTest::keyClick(Editor(Grid), Qt::Key_Return);

        const double Line1 = std::round(3 * FirstPrice * 100) / 100;
        const double Line2 = std::round(2.5 * SecondPrice * 100) / 100;
        QCOMPARE(S.Form.Total(), Line1 + Line2);
        QCOMPARE(S.Child<TQxLabel>("lblTotal")->GetCaption(), FormatFloat(QStringLiteral("#,##0.00"), Line1 + Line2));
        const Currency Amount(Line1 + Line2);
        const QString ArabicWords = NumberToArabicWords(Amount, {QStringLiteral("دينار"), QStringLiteral("ديناران"),
                                                            QStringLiteral("دنانير"), QStringLiteral("دينارا")})
                                        .trimmed();
        QVERIFY2(S.Child<TQxLabel>("lblWordsA")->GetCaption().startsWith(ArabicWords),
                 qPrintable(S.Child<TQxLabel>("lblWordsA")->GetCaption()));
        const QString EnglishWords = Trim(NumberToWordsE(Amount)) + QStringLiteral(" Dinars");
        QVERIFY2(S.Child<TQxLabel>("lblWordsE")->GetCaption().contains(EnglishWords),
                 qPrintable(S.Child<TQxLabel>("lblWordsE")->GetCaption()));

        // The drop list's pop-up took the activation; the window has it back, as on a screen.
        S.Form.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&S.Form));
        QTest::keyClick(Grid, Qt::Key_S, Qt::ControlModifier);
        QVERIFY(!S.Form.HasChanges());
        const int Saved = S.Form.InvoiceId();
        QVERIFY(Saved >= InvId);
        QCOMPARE(Db.Scalar(QStringLiteral("SELECT Cust_id FROM Invoices WHERE Inv_id = %1").arg(Saved)).toInt(), CustId);
        QCOMPARE(Db.Scalar(QStringLiteral("SELECT Total FROM Invoices WHERE Inv_id = %1").arg(Saved)).toDouble(), Line1 + Line2);
        QCOMPARE(LineCount(Db, Saved), 2);
        QSqlQuery Lines(Db.Conn.Database());
        QVERIFY(Lines.exec(QStringLiteral("SELECT Item_id, Qty, Price, Line_total FROM InvoiceLines WHERE Inv_id = %1 "
                                          "ORDER BY Line_id")
                               .arg(Saved)));
        const QList<QList<double>> Expected = {{double(FirstId), 3, FirstPrice, Line1}, {double(SecondId), 2.5, SecondPrice, Line2}};
        for (const QList<double>& Row : Expected) {
            QVERIFY(Lines.next());
            for (int C = 0; C < 4; ++C)
                QCOMPARE(Lines.value(C).toDouble(), Row[C]);
        }

        // In Arabic the customer and the items read in Arabic.
        S.Form.Manager()->SetLang(bdRightToLeft);
        QCOMPARE(S.Child<TQxLabel>("lblCustomerName")->GetCaption(),
                 Db.Scalar(QStringLiteral("SELECT Name_a FROM Customers WHERE Cust_id = %1").arg(CustId)).toString());
        Grid->DataSet()->First();
        QVERIFY(Grid->DataSet()->FieldByName(QStringLiteral("Item_id"))->DisplayText().endsWith(
            Db.Scalar(QStringLiteral("SELECT Name_a FROM Items WHERE Item_id = %1").arg(FirstId)).toString()));
    }

    void itemTypedInTheGrid_data()
    {
        AddDrivers();
        QTest::addColumn<int>("how");  // 0 code, 1 code in lower case, 2 English name, 3 Arabic name, 4 no item's
        QTest::addColumn<bool>("found");
        QTest::newRow("code") << "sqlite" << 0 << true;
        QTest::newRow("lower-case code") << "sqlite" << 1 << true;
        QTest::newRow("English name") << "sqlite" << 2 << true;
        QTest::newRow("Arabic name") << "sqlite" << 3 << true;
        QTest::newRow("unknown") << "sqlite" << 4 << false;
    }
    // What may be typed in the item cell: a code or a name in either language; anything
    // else is refused with a message and the cell keeps the text.
    void itemTypedInTheGrid()
    {
        QFETCH(int, how);
        QFETCH(bool, found);
        OPEN_DEMO_DB(Db);
        SHOW_INVOICE(S, Db);
        QSqlQuery Item(Db.Conn.Database());
        QVERIFY(Item.exec(QStringLiteral("SELECT Item_id, Code, Name_e, Name_a, Price FROM Items WHERE Active ORDER BY Code DESC")));
        QVERIFY(Item.next());
        const QString Texts[] = {Item.value(1).toString(), Item.value(1).toString().toLower(), Item.value(2).toString(),
                                 Item.value(3).toString(), QStringLiteral("zzq")};
        auto* Grid = S.Child<TQxdbGrid>("grdLines");
        Grid->setFocus();
        QTest::keyClick(Grid, Qt::Key_Insert);
        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        Type(Grid, Texts[how]);
        auto* Combo = Grid->findChild<QComboBox*>(QStringLiteral("InplaceEditor"));
        QVERIFY(Combo);
        QTest::keyClick(Combo->lineEdit(), Qt::Key_Return);
        TField* ItemId = Grid->DataSet()->FieldByName(QStringLiteral("Item_id"));
        if (found) {
            QCOMPARE(Driver.Seen.size(), 0);
            QCOMPARE(ItemId->AsInteger(), Item.value(0).toInt());
            QCOMPARE(Grid->DataSet()->FieldByName(QStringLiteral("Price"))->AsFloat(), Item.value(4).toDouble());
            QCOMPARE(Grid->SelectedIndex(), 1);
        } else {
            QTRY_COMPARE(Driver.Seen.size(), 1);
            QVERIFY2(Driver.Seen[0].Text.contains(Texts[how]), qPrintable(Driver.Seen[0].Text));
            QVERIFY(ItemId->IsNull());
            QCOMPARE(Grid->SelectedIndex(), 0);
        }
    }

    void postedInvoiceIsLocked_data()
    {
        AddDrivers();
        QTest::addColumn<QString>("attempt");
        for (const char* Driver : {"sqlite", "postgres"})
            for (const char* Attempt : {"type notes", "type quantity", "insert line", "delete line", "delete invoice"})
                QTest::addRow("%s, %s", Driver, Attempt) << Driver << Attempt;
    }
    // After "Post" and its question, every change is refused with the posted message and the
    // database keeps the invoice as it was.
    void postedInvoiceIsLocked()
    {
        QFETCH(QString, attempt);
        OPEN_DEMO_DB(Db);
        const int InvId = OpenSampleInvoice(Db);
        QVERIFY(InvId > 0);
        const int Lines = LineCount(Db, InvId);
        const double Total = Db.Scalar(QStringLiteral("SELECT Total FROM Invoices WHERE Inv_id = %1").arg(InvId)).toDouble();
        SHOW_INVOICE(S, Db);
        QVERIFY(S.Form.OpenInvoice(InvId));
        {
            KeshTest::DialogDriver Question;
            Question.Click(QStringLiteral("btnYes"));
            QTest::mouseClick(S.Child<QWidget>("bbnPost"), Qt::LeftButton);
            QCOMPARE(Question.Seen.size(), 1);
        }
        QVERIFY(S.Form.IsPosted());
        QVERIFY(Db.Scalar(QStringLiteral("SELECT Posted FROM Invoices WHERE Inv_id = %1").arg(InvId)).toBool());

        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        auto* Grid = S.Child<TQxdbGrid>("grdLines");
        if (attempt == QLatin1String("type notes")) {
            auto* Notes = S.Child<TQxdbEdit>("dbeNotes");
            Notes->setFocus();
            Type(Notes, QStringLiteral("x"));
            QVERIFY(!Notes->text().contains(QLatin1Char('x')));
        } else if (attempt == QLatin1String("type quantity")) {
            Grid->setFocus();
            Grid->SetSelectedIndex(1);
            Type(Grid, QStringLiteral("9"));
        } else if (attempt == QLatin1String("insert line")) {
            Grid->setFocus();
            QTest::keyClick(Grid, Qt::Key_Insert);
        } else if (attempt == QLatin1String("delete line")) {
            Grid->setFocus();
            QTest::keyClick(Grid, Qt::Key_Delete, Qt::ControlModifier);
        } else {
            QTest::mouseClick(S.Child<QWidget>("bbnDelete"), Qt::LeftButton);
        }
        QTRY_VERIFY(!Driver.Seen.isEmpty());
        QCOMPARE(Driver.Seen.last().Text, PostedText);
        QCOMPARE(Grid->DataSet()->State(), dsBrowse);
        QCOMPARE(Grid->DataSet()->RecordCount(), Lines);
        QVERIFY(!S.Form.HasChanges());
        QCOMPARE(LineCount(Db, InvId), Lines);
        QCOMPARE(Db.Scalar(QStringLiteral("SELECT Total FROM Invoices WHERE Inv_id = %1").arg(InvId)).toDouble(), Total);
    }

    void deletingALineAsks_data()
    {
        AddDrivers();
        QTest::addColumn<bool>("yes");
        for (const char* Driver : {"sqlite", "postgres"}) {
            QTest::addRow("%s, no", Driver) << Driver << false;
            QTest::addRow("%s, yes", Driver) << Driver << true;
        }
    }
    // Ctrl+Delete asks; "yes" drops the line, the total follows, and saving writes both.
    void deletingALineAsks()
    {
        QFETCH(bool, yes);
        OPEN_DEMO_DB(Db);
        const int InvId = OpenSampleInvoice(Db);
        const int Lines = LineCount(Db, InvId);
        const double First = Db.Scalar(QStringLiteral("SELECT Line_total FROM InvoiceLines WHERE Inv_id = %1 ORDER BY Line_id")
                                           .arg(InvId))
                                 .toDouble();
        const double Total = Db.Scalar(QStringLiteral("SELECT SUM(Line_total) FROM InvoiceLines WHERE Inv_id = %1").arg(InvId))
                                 .toDouble();
        SHOW_INVOICE(S, Db);
        QVERIFY(S.Form.OpenInvoice(InvId));
        auto* Grid = S.Child<TQxdbGrid>("grdLines");
        Grid->setFocus();
        {
            KeshTest::DialogDriver Driver;
            Driver.Click(QLatin1String(yes ? "btnYes" : "btnNo"));
            QTest::keyClick(Grid, Qt::Key_Delete, Qt::ControlModifier);
            QCOMPARE(Driver.Seen.size(), 1);
            QCOMPARE(Driver.Seen[0].Text, QStringLiteral("Delete record?"));
        }
        QCOMPARE(Grid->DataSet()->RecordCount(), yes ? Lines - 1 : Lines);
        QCOMPARE(S.Form.Total(), std::round((yes ? Total - First : Total) * 100) / 100);
        QCOMPARE(S.Form.HasChanges(), yes);
        QSignalSpy Changed(&S.Form, &InvoiceForm::Changed);
        QVERIFY(S.Form.Save());
        QCOMPARE(Changed.size(), 1);
        QCOMPARE(Changed[0][0].toInt(), InvId);
        QCOMPARE(LineCount(Db, InvId), yes ? Lines - 1 : Lines);
        QCOMPARE(Db.Scalar(QStringLiteral("SELECT Total FROM Invoices WHERE Inv_id = %1").arg(InvId)).toDouble(),
                 std::round((yes ? Total - First : Total) * 100) / 100);
    }

    void closingWithChangesAsks_data()
    {
        AddDrivers();
        QTest::addColumn<QStringList>("answers");
        QTest::addColumn<bool>("closed");
        QTest::addColumn<bool>("saved");
        QTest::newRow("save") << "sqlite" << QStringList{"btnYes"} << true << true;
        QTest::newRow("discard") << "sqlite" << QStringList{"btnNo", "btnYes"} << true << false;
        QTest::newRow("stay") << "sqlite" << QStringList{"btnNo", "btnNo"} << false << false;
    }
    // Closing over unsaved notes asks to save them; declining asks once more before losing them.
    void closingWithChangesAsks()
    {
        QFETCH(QStringList, answers);
        QFETCH(bool, closed);
        QFETCH(bool, saved);
        OPEN_DEMO_DB(Db);
        const int InvId = OpenSampleInvoice(Db);
        SHOW_INVOICE(S, Db);
        QVERIFY(S.Form.OpenInvoice(InvId));
        auto* Notes = S.Child<TQxdbEdit>("dbeNotes");
        Notes->setFocus();
        Notes->selectAll();
        Type(Notes, QStringLiteral("Deliver by noon"));
        QVERIFY(S.Form.HasChanges());
        KeshTest::DialogDriver Driver;
        for (const QString& Answer : answers)
            Driver.Click(Answer);
        QCOMPARE(S.Form.close(), closed);
        QCOMPARE(Driver.Seen.size(), answers.size());
        QCOMPARE(Db.Scalar(QStringLiteral("SELECT Notes FROM Invoices WHERE Inv_id = %1").arg(InvId)).toString()
                     == QLatin1String("Deliver by noon"),
                 saved);
        QCOMPARE(S.Form.HasChanges(), !closed);
    }

    void listShowsTheDates_data() { KeshTest::AddDriverRows(); }
    // The list holds the invoices of the dates asked, its footer their total; Enter and a
    // double click open the invoice under the cursor.
    void listShowsTheDates()
    {
        OPEN_DEMO_DB(Db);
        const int To = Db.Scalar(QStringLiteral("SELECT MAX(Inv_date) FROM Invoices")).toInt();
        const int From = DaysInc(To, -20);
        const QString Range = QStringLiteral("Inv_date BETWEEN %1 AND %2").arg(From).arg(To);
        const int Count = Db.Conn.DCount(QStringLiteral("Invoices"), Range);
        QVERIFY(Count > 1);
        const double Sum = Db.Scalar(QStringLiteral("SELECT SUM(Total) FROM Invoices WHERE ") + Range).toDouble();
        const int Newest = Db.Scalar(QStringLiteral("SELECT MAX(Inv_id) FROM Invoices WHERE ") + Range).toInt();

        Demo::TDemoContext Context{&Db.Conn, QString(), QString()};
        InvoiceListForm List(Context);
        QList<int> Opened;
        List.OnOpenInvoice = [&](int Id) { Opened << Id; };
        List.show();
        QVERIFY(QTest::qWaitForWindowExposed(&List));
        auto* From_ = List.findChild<TQxEditButton*>(QStringLiteral("edbFrom"));
        From_->selectAll();
        Type(From_, TQxDateField::DateText(From));
        QTest::mouseClick(List.findChild<QWidget*>(QStringLiteral("bbnShow")), Qt::LeftButton);
        auto* Grid = List.findChild<TQxdbGrid*>(QStringLiteral("grdInvoices"));
        Grid->DataSet()->Last();
        Grid->DataSet()->First();
        QCOMPARE(Grid->DataSet()->RecordCount(), Count);
        QCOMPARE(List.CurrentInvoice(), Newest);
        auto* Footer = List.findChild<TQxdbGridFooter*>(QStringLiteral("ftrInvoices"));
        QTRY_VERIFY(Footer->TotalsReady());
        QCOMPARE(Footer->Labels(4)->GetCaption(), FormatFloat(QStringLiteral("#,##0.00"), Sum));
        Grid->setFocus();
        QTest::keyClick(Grid, Qt::Key_Return);
        QTest::keyClick(Grid, Qt::Key_Down);
        const QRect Cell = Grid->visualRect(Grid->model()->index(1, 2));
        QTest::mouseDClick(Grid->viewport(), Qt::LeftButton, {}, Cell.center());
        QCOMPARE(Opened.size(), 2);
        QCOMPARE(Opened[0], Newest);
        QCOMPARE(Opened[1], Grid->DataSet()->FieldByName(QStringLiteral("Inv_id"))->AsInteger());
        QVERIFY(Opened[1] < Newest);
    }

    void amountInWords_data()
    {
        AddDrivers();
        QTest::addColumn<QString>("price");
        QTest::addColumn<QString>("arabic");
        QTest::addColumn<QString>("english");
        QTest::newRow("cents only") << "sqlite" << "0.75" << QStringLiteral("صفر ريال و75 هللة فقط لا غير")
                                    << "Only Zero Riyals and 75 Halalas";
        QTest::newRow("one") << "sqlite" << "1" << QStringLiteral("ريال واحد فقط لا غير") << "Only One Riyal";
        QTest::newRow("two, one cent") << "sqlite" << "2.01" << QStringLiteral("ريالان و1 هللة فقط لا غير")
                                       << "Only Two Riyals and 1 Halala";
        QTest::newRow("thousands") << "sqlite" << "3000.5" << QStringLiteral("ثلاثة آلاف ريال و50 هللة فقط لا غير")
                                   << "Only Three Thousands Riyals and 50 Halalas";
    }
    // The total in words: the whole currency in words, the sub-unit in figures, each named
    // in the settings' forms and in the number's grammar.
    void amountInWords()
    {
        QFETCH(QString, price);
        QFETCH(QString, arabic);
        QFETCH(QString, english);
        OPEN_DEMO_DB(Db);
        SHOW_INVOICE(S, Db);
        auto* Grid = S.Child<TQxdbGrid>("grdLines");
        Grid->setFocus();
        QTest::keyClick(Grid, Qt::Key_Insert);
        PickItem(Grid, 0);
        QTest::keyClick(Grid, Qt::Key_Return);  // quantity 1
        QCOMPARE(Grid->SelectedIndex(), 2);
        Type(Grid, price);
        QTest::keyClick(Editor(Grid), Qt::Key_Return);
        QCOMPARE(S.Child<TQxLabel>("lblWordsA")->GetCaption(), arabic);
        QCOMPARE(S.Child<TQxLabel>("lblWordsE")->GetCaption(), english);
    }

    void escapeUndoesTheLine_data() { SqliteOnly(); }
    // Escape in the grid gives the line back as it was and leaves the window open.
    void escapeUndoesTheLine()
    {
        OPEN_DEMO_DB(Db);
        const int InvId = OpenSampleInvoice(Db);
        SHOW_INVOICE(S, Db);
        QVERIFY(S.Form.OpenInvoice(InvId));
        const double Total = S.Form.Total();
        auto* Grid = S.Child<TQxdbGrid>("grdLines");
        Grid->setFocus();
        Grid->SetSelectedIndex(1);
        const double Qty = Grid->DataSet()->FieldByName(QStringLiteral("Qty"))->AsFloat();
        Type(Grid, QStringLiteral("99"));
        QTest::keyClick(Editor(Grid), Qt::Key_Return);
        QVERIFY(S.Form.Total() != Total);
        QTest::keyClick(Grid, Qt::Key_Escape);
        QVERIFY(S.Form.isVisible());
        QCOMPARE(Grid->DataSet()->FieldByName(QStringLiteral("Qty"))->AsFloat(), Qty);
        QCOMPARE(S.Form.Total(), Total);
        QVERIFY(!S.Form.HasChanges());
    }

    void calendarChoice_data() { SqliteOnly(); }
    // The Hijri box stores the date converted, and the other calendar's date is shown beside.
    void calendarChoice()
    {
        OPEN_DEMO_DB(Db);
        SHOW_INVOICE(S, Db);
        TField* Day = S.Child<TQxdbEditButton>("dbbDate")->Field();
        const int Gregorian = Day->AsInteger();
        QVERIFY(IsDate(Gregorian) && !IsHijri(Gregorian));
        QTest::mouseClick(S.Child<TQxCheckBox>("chkHijri"), Qt::LeftButton);
        QCOMPARE(Day->AsInteger(), ConvertDate(Gregorian));
        QVERIFY(S.Child<TQxLabel>("lblOtherDate")->GetCaption().contains(TQxDateField::DateText(Gregorian)));
        QTest::mouseClick(S.Child<TQxCheckBox>("chkHijri"), Qt::LeftButton);
        QCOMPARE(Day->AsInteger(), Gregorian);
    }
};

QTEST_MAIN(TestDemoInvoice)
#include "tst_demo_invoice.moc"
