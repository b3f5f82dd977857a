// The record browser's form and filter dialog driven as a user would, on SQLite and
// PostgreSQL, in English and in Arabic.
#include <KeshForm_AdoBrowser.h>
#include <KeshForm_AdoBrowserFilter.h>
#include <Kesh_AdoDB.h>
#include <Kesh_Controls.h>
#include <Kesh_dbGrid.h>

#include "db_test_helper.h"
#include "dialog_helper.h"

#include <QAbstractButton>
#include <QHeaderView>
#include <QTimer>
#include <QTableView>
#include <QtTest>

using namespace Kesh;

namespace {

struct TCustomer
{
    int Code;
    const char16_t* NameA;
    const char* NameE;
    int Joined;
    const char* Phone;
};

const TCustomer Customers[] = {
    {1, u"أحمد", "Ahmed", 20240105, "555-0101"},
    {2, u"أمل", "Amal", 20231120, "555-0102"},
    {3, u"بدر", "Badr", 20220301, "555-0103"},
    {4, u"أوبراين", "O'Brien", 20210615, "555-0104"},
    {5, u"باسم", "Basim", 20200101, "555-0105"},
    {6, u"سعيد", "Said; --", 20191231, "555-0106"},
};

// A browser of the customers: name (sorted by at first), code, joining date (an integer
// date) and a hidden phone column.
struct TFixture
{
    std::unique_ptr<KeshTest::TTestDatabase> Db;
    TQxAdoConnection Conn;
    TQxAdoBrowser Browser;
    QString Table;

    bool Init(std::unique_ptr<KeshTest::TTestDatabase> Database)
    {
        Db = std::move(Database);
        Table = Db->NewTable(QStringLiteral("Code INTEGER, Name_a VARCHAR(40), Name_e VARCHAR(40), Joined INTEGER, Phone VARCHAR(20)"));
        for (const TCustomer& C : Customers) {
            QString NameE = QLatin1String(C.NameE);
            NameE.replace(QLatin1Char('\''), QLatin1String("''"));  // fixed test data
            if (!Db->Exec(QStringLiteral("INSERT INTO %1 VALUES (%2, '%3', '%4', %5, '%6')")
                              .arg(Table).arg(C.Code).arg(QString::fromUtf16(C.NameA), NameE)
                              .arg(C.Joined).arg(QLatin1String(C.Phone))))
                return false;
        }
        Conn.SetConnectionString(Db->ConnectionString());
        Conn.Open();
        Browser.setObjectName(QStringLiteral("brCustomers"));
        Browser.SetConnection(&Conn);
        Browser.SetSourceTables(Table);
        Browser.SetDatabaseType(Db->IsPostgres() ? dtPostgreSQL : dtSQLite);
        Browser.SetCaption_a(QStringLiteral("العملاء"));
        Browser.SetCaption_e(QStringLiteral("Customers"));
        Add(QStringLiteral("Name_a"), QStringLiteral("Name_e"), QStringLiteral("الاسم"), QStringLiteral("Name"), 30);
        Add(QStringLiteral("Code"), QStringLiteral("Code"), QStringLiteral("الرقم"), QStringLiteral("Code"), 8);
        Add(QStringLiteral("Joined"), QStringLiteral("Joined"), QStringLiteral("الانضمام"), QStringLiteral("Joined"), 12);
        Add(QStringLiteral("Phone"), QStringLiteral("Phone"), QStringLiteral("الهاتف"), QStringLiteral("Phone"), 0);
        Browser.BrowserItems()->Items(2)->SetFieldClass(fcDate);
        Browser.BrowserItems()->Items(2)->SetDataType(ftInteger);
        Browser.AdjustDataTypes();
        return true;
    }
    void Add(const QString& A, const QString& E, const QString& CapA, const QString& CapE, int Width)
    {
        TQxAdoBrowserItem* Item = Browser.BrowserItems()->Add();
        Item->SetFieldName_a(A);
        Item->SetFieldName_e(E);
        Item->SetCaption_a(CapA);
        Item->SetCaption_e(CapE);
        Item->SetWidth(Width);
    }
};

#define OPEN_FIXTURE(F)                                                                   \
    KESH_OPEN_TEST_DB(Db_);                                                               \
    TFixture F;                                                                           \
    QVERIFY(F.Init(std::move(Db_)))

// The names of the rows shown, in the grid's order.
QStringList Shown(TAdoBrowserForm& Form)
{
    QStringList Names;
    for (int r = 0; r < Form.G->model()->rowCount(); ++r)
        Names << Form.G->model()->index(r, 0).data(Qt::EditRole).toString();
    return Names;
}

// Types Text into Widget key by key, Arabic letters included.
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

void AddRows()
{
    QTest::addColumn<QString>("driver");
    QTest::addColumn<bool>("arabic");
    for (const char* D : {"sqlite", "postgres"})
        for (bool Arabic : {false, true})
            QTest::addRow("%s %s", D, Arabic ? "arabic" : "english") << QString::fromLatin1(D) << Arabic;
}

} // namespace

// Shows the browser of fixture F and waits for it.
#define SHOW_FORM(Form)                                                                                       \
    TAdoBrowserForm Form(nullptr, &F.Browser);                                                                \
    Form.show();                                                                                              \
    QVERIFY(QTest::qWaitForWindowExposed(&Form))

class TestAdoBrowserForm : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { Application()->SetBiDiMode(bdLeftToRight); }

    void typingSearchesTheSortColumn_data() { AddRows(); }
    void typingSearchesTheSortColumn()
    {
        QFETCH(bool, arabic);
        OPEN_FIXTURE(F);
        Application()->SetBiDiMode(arabic ? bdRightToLeft : bdLeftToRight);
        SHOW_FORM(Form);
        QCOMPARE(Form.windowTitle(), arabic ? QStringLiteral("العملاء") : QStringLiteral("Customers"));
        QCOMPARE(Shown(Form).size(), 6);
        Type(Form.F1, arabic ? QStringLiteral("أ") : QStringLiteral("A"));
        const QStringList A = arabic ? QStringList{"أحمد", "أمل", "أوبراين"} : QStringList{"Ahmed", "Amal"};
        QCOMPARE(Shown(Form), A);
        Type(Form.F1, arabic ? QStringLiteral("م") : QStringLiteral("m"));
        QCOMPARE(Shown(Form), QStringList{A[1]});
        QVERIFY(Form.db->CommandText().endsWith(QLatin1String("LIMIT 30")));
        // Down goes to the grid; the row picked there is the one returned.
        QTest::keyClick(Form.F1, Qt::Key_Down);
        QCOMPARE(QApplication::focusWidget(), Form.G);
        QCOMPARE(Form.ItemValue(1).toInt(), 2);
    }

    void titleClickSortsAndColours_data() { AddRows(); }
    void titleClickSortsAndColours()
    {
        QFETCH(bool, arabic);
        OPEN_FIXTURE(F);
        Application()->SetBiDiMode(arabic ? bdRightToLeft : bdLeftToRight);
        SHOW_FORM(Form);
        using C = QPair<quint32, quint32>;
        QCOMPARE(Form.ColumnColors(), (QList<C>{{0xF0FFFF, 0xC8F0FA}, {0xF0F0F0, 0xB4DCE6},
                                                {0xFFFFFF, 0xC8F0FA}, {0xF0F0F0, 0xB4DCE6}}));
        QHeaderView* Header = Form.G->horizontalHeader();
        QVERIFY(Form.G->isColumnHidden(3));  // width 0: hidden, still read
        const TQxColumnTitle* Title = Form.G->GetColumns()->Items(0)->GetTitle();
        QCOMPARE(Title->GetCaption(), arabic ? QStringLiteral("الاسم") : QStringLiteral("Name"));
        QVERIFY(Title->GetFont().Style() & fsBold);
        QCOMPARE(quint32(Title->GetFont().Color()), quint32(0x800080));
        QTest::mouseClick(Header->viewport(), Qt::LeftButton, {},
                          QPoint(Header->sectionViewportPosition(1) + Header->sectionSize(1) / 2, 5));
        QCOMPARE(Form.SortIndex, 1);
        QCOMPARE(Form.ColumnColors(), (QList<C>{{0xFFFFFF, 0xC8F0FA}, {0xF0FFFF, 0xB4DCE6},
                                                {0xFFFFFF, 0xC8F0FA}, {0xF0F0F0, 0xB4DCE6}}));
        QCOMPARE(QApplication::focusWidget(), Form.F1);
        QCOMPARE(Form.G->model()->index(0, 1).data(Qt::EditRole).toInt(), 1);
        // The search now runs over the codes.
        Type(Form.F1, QStringLiteral("4"));
        QCOMPARE(Form.G->model()->rowCount(), 1);
        QCOMPARE(Form.ItemValue(3).toString(), QStringLiteral("555-0104"));
    }

    void filterDialogNarrowsAndAltF7Clears_data() { AddRows(); }
    void filterDialogNarrowsAndAltF7Clears()
    {
        QFETCH(bool, arabic);
        OPEN_FIXTURE(F);
        Application()->SetBiDiMode(arabic ? bdRightToLeft : bdLeftToRight);
        SHOW_FORM(Form);
        KeshTest::DialogDriver Driver;
        QStringList Labels;
        Driver.OnShown = [&](QWidget* Dialog) {
            for (int n = 1; n <= 4; ++n)
                Labels << Dialog->findChild<TQxLabel*>(QStringLiteral("L%1").arg(n))->GetCaption();
            Dialog->findChild<TQxEdit*>(QStringLiteral("D1"))->setText(arabic ? QStringLiteral("ب") : QStringLiteral("a"));
            Dialog->findChild<TQxEdit*>(QStringLiteral("D3"))->setText(QStringLiteral("1-3-2022"));
        };
        Driver.Click(QStringLiteral("btnOk"));
        QTest::keyClick(Form.F1, Qt::Key_F7);
        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join('\n')));
        QCOMPARE(Driver.Seen.size(), 1);
        QCOMPARE(Driver.Seen[0].Title, arabic ? QStringLiteral(" فلتر: العملاء") : QStringLiteral(" Filter: Customers"));
        const QStringList Expected = arabic ? QStringList{"الاسم", "الرقم", "الانضمام", "الهاتف"}
                                            : QStringList{"Name", "Code", "Joined", "Phone"};
        QCOMPARE(Labels, Expected);
        const QString Column = arabic ? QStringLiteral("Name_a") : QStringLiteral("Name_e");
        QCOMPARE(Form.CustomFilter, QStringLiteral("(%1 Like '%%2%') AND (Joined = 20220301)")
                                        .arg(Column, arabic ? QStringLiteral("ب") : QStringLiteral("a")));
        QCOMPARE(Shown(Form), QStringList{arabic ? QStringLiteral("بدر") : QStringLiteral("Badr")});
        Form.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&Form));
        QTest::keyClick(Form.F1, Qt::Key_F7, Qt::AltModifier);
        QVERIFY(Form.CustomFilter.isEmpty());
        QCOMPARE(Shown(Form).size(), 6);
    }

    void filterRefusesBadValueAndStaysOpen_data() { KeshTest::AddDriverRows(); }
    void filterRefusesBadValueAndStaysOpen()
    {
        OPEN_FIXTURE(F);
        SHOW_FORM(Form);
        const QString Before = Form.db->CommandText();
        // The refusal's message opens inside the OK click: every answer is a queued click, so
        // that this poll is free to answer the next dialog.
        QStringList Seen;
        const auto ClickLater = [](QWidget* Dialog, const char* Name) {
            QMetaObject::invokeMethod(Dialog->findChild<QAbstractButton*>(QLatin1String(Name)), "click",
                                      Qt::QueuedConnection);
        };
        QTimer Poll;
        QPointer<QWidget> Last;
        connect(&Poll, &QTimer::timeout, this, [&] {
            QWidget* Dialog = QApplication::activeModalWidget();
            if (!Dialog || Dialog == Last)
                return;
            Last = Dialog;
            const KeshTest::DialogSeen What = KeshTest::DialogDriver::Read(Dialog);
            Seen << QLatin1String(Dialog->metaObject()->className()) + QLatin1Char('|') + What.Text;
            if (Seen.size() == 1) {
                Dialog->findChild<TQxEdit*>(QStringLiteral("D2"))->setText(QStringLiteral("1; DELETE FROM x"));
                ClickLater(Dialog, "btnOk");
            } else if (Seen.size() == 2) {
                ClickLater(Dialog, "btnOk");
            } else {
                ClickLater(Dialog, "btnCancel");
                Poll.stop();
            }
        });
        Poll.start(20);
        QTest::keyClick(Form.F1, Qt::Key_F7);
        QCOMPARE(Seen.size(), 3);  // filter, its message, the filter again
        QVERIFY(Seen[0].startsWith(QLatin1String("Kesh::TFormAdoBrowserFilter")));
        QVERIFY2(Seen[1].endsWith(QLatin1String("|The value entered in [Code] is not a valid number.")), qPrintable(Seen[1]));
        QVERIFY(Seen[2].startsWith(QLatin1String("Kesh::TFormAdoBrowserFilter")));
        QVERIFY(Form.CustomFilter.isEmpty());
        QCOMPARE(Form.db->CommandText(), Before);
    }

    void okNeedsARow_data() { KeshTest::AddDriverRows(); }
    void okNeedsARow()
    {
        OPEN_FIXTURE(F);
        SHOW_FORM(Form);
        Type(Form.F1, QStringLiteral("zz"));
        QCOMPARE(Form.G->model()->rowCount(), 0);
        QTest::keyClick(Form.F1, Qt::Key_Return);
        QVERIFY(Form.isVisible());
        Form.btnOk->Click();
        QVERIFY(Form.isVisible());
        Form.F1->clear();
        QTest::mouseDClick(Form.G->viewport(), Qt::LeftButton, {}, Form.G->visualRect(Form.G->model()->index(1, 0)).center());
        QVERIFY(!Form.isVisible());
        QCOMPARE(Form.result(), 1);
    }

    // The picked row's values, the hidden column's too, come back into the items.
    void showBrowserCopiesValues_data() { AddRows(); }
    void showBrowserCopiesValues()
    {
        QFETCH(bool, arabic);
        OPEN_FIXTURE(F);
        Application()->SetBiDiMode(arabic ? bdRightToLeft : bdLeftToRight);
        KeshTest::DialogDriver Driver;
        Driver.OnShown = [&](QWidget* Dialog) {
            auto* Form = qobject_cast<TAdoBrowserForm*>(Dialog);
            QVERIFY(Form);
            Type(Form->F1, arabic ? QStringLiteral("أو") : QStringLiteral("O'"));
        };
        Driver.Press(Qt::Key_Return);
        QVERIFY(F.Browser.ShowBrowser());
        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join('\n')));
        const TQxAdoBrowserCollection* Items = F.Browser.BrowserItems();
        QCOMPARE(Items->Items(0)->Value().toString(), arabic ? QStringLiteral("أوبراين") : QStringLiteral("O'Brien"));
        QCOMPARE(Items->Items(1)->Value().toInt(), 4);
        QCOMPARE(Items->Items(2)->Value().toInt(), 20210615);
        QCOMPARE(Items->Items(3)->Value().toString(), QStringLiteral("555-0104"));

        KeshTest::DialogDriver Cancel;
        Cancel.Press(Qt::Key_Escape);
        QVERIFY(!F.Browser.ShowBrowser());
        QCOMPARE(Items->Items(1)->Value().toInt(), 4);  // kept from the last pick
    }

    // Typing hostile text in the real search box and filter: the query runs and finds its rows.
    void hostileTyping_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("rows");
        const struct { const char* Name; const char16_t* Text; int Rows; } Cases[] = {
            {"quote", u"O'", 1}, {"semicolon comment", u"Said; --", 1}, {"closing", u"'); DROP TABLE x; --", 0},
            {"arabic", u"باس", 1}, {"backslash", u"\\", 0},
        };
        for (const char* D : {"sqlite", "postgres"})
            for (const auto& C : Cases)
                QTest::addRow("%s %s", D, C.Name) << QString::fromLatin1(D) << QString::fromUtf16(C.Text) << C.Rows;
    }
    void hostileTyping()
    {
        QFETCH(QString, text);
        QFETCH(int, rows);
        OPEN_FIXTURE(F);
        // Arabic names are searched in Arabic.
        if (text.front().script() == QChar::Script_Arabic)
            Application()->SetBiDiMode(bdRightToLeft);
        SHOW_FORM(Form);
        Type(Form.F1, text);
        QVERIFY(Form.db->Active());
        QCOMPARE(Form.G->model()->rowCount(), rows);
        Form.F1->clear();
        KeshTest::DialogDriver Driver;
        Driver.OnShown = [&](QWidget* Dialog) { Dialog->findChild<TQxEdit*>(QStringLiteral("D1"))->setText(text); };
        Driver.Click(QStringLiteral("btnOk"));
        Form.btnFilter->Click();
        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join('\n')));
        QVERIFY(Form.db->Active());
        QCOMPARE(Form.G->model()->rowCount(), rows);
        QCOMPARE(F.Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(F.Table)).toInt(), 6);
    }

    void compressedViewSharesWidth_data() { KeshTest::AddDriverRows(); }
    void compressedViewSharesWidth()
    {
        OPEN_FIXTURE(F);
        F.Browser.SetCompressedView(true);
        TAdoBrowserForm Form(nullptr, &F.Browser);
        Form.resize(600, 400);
        Form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Form));
        // Widths 30, 8, 12 (and the hidden 0) of the grid's width, in that proportion.
        const int W0 = Form.G->columnWidth(0), W1 = Form.G->columnWidth(1), W2 = Form.G->columnWidth(2);
        QVERIFY(W0 > 0);
        QVERIFY(qAbs(W0 * 8 - W1 * 30) <= 30 * 2 && qAbs(W0 * 12 - W2 * 30) <= 30 * 2);
        QVERIFY(W0 + W1 + W2 <= Form.G->viewport()->width());
    }
};

QTEST_MAIN(TestAdoBrowserForm)
#include "tst_ado_browser_form.moc"
