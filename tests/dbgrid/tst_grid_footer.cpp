// The footer: its totals equal a walk over every record (random data on SQLite and
// PostgreSQL, through inserts, edits, deletes and Refresh), formats, the pending-edit rule,
// and the labels' placement under their columns in both directions.
#include "grid_fixture.h"
#include "db_test_helper.h"
#include "label.h"
#include "platform/rtl/numbers.h"
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QVBoxLayout>

using namespace Kesh;
using namespace GridTest;

namespace {

// The classic footer's walk over every record.
double Walk(TDataSet* Ds, const QString& Field)
{
    const QByteArray Mark = Ds->Bookmark();
    double Total = 0;
    Ds->First();
    while (!Ds->Eof()) {
        Total += Ds->FieldByName(Field)->AsFloat();
        Ds->Next();
    }
    if (!Mark.isEmpty())
        Ds->GotoBookmark(Mark);
    return Total;
}

QString Shown(TQxdbGridFooter& Footer, int Column) { return Footer.Labels(Column)->GetCaption(); }

} // namespace

class TestGridFooter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void totalsEqualWalk_data() { KeshTest::AddDriverRows(); }
    void totalsEqualWalk()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = Db->NewTable(QStringLiteral("Id %AUTOKEY%, Qty INTEGER, Amount NUMERIC(14,2)"));
        QRandomGenerator Random(20261124);
        Db->Connection()->BeginTrans();
        for (int I = 1; I <= 2000; ++I)
            Db->Exec(QStringLiteral("INSERT INTO %1 (Id, Qty, Amount) VALUES (%2, %3, %4.%5)")
                         .arg(T).arg(I).arg(int(Random.bounded(1000)) - 200).arg(Random.bounded(5000)).arg(Random.bounded(100), 2, 10, QLatin1Char('0')));
        Db->Connection()->CommitTrans();
        TADOQuery Q;
        Q.SetConnection(Db->Connection());
        Q.SetSQL({QStringLiteral("SELECT Id, Qty, Amount FROM %1 ORDER BY Id").arg(T)});
        Q.Open();
        // A decimal column is shown exactly; the walk's double sum agrees to the printed digits.
        const QString Format = QStringLiteral("#,##0.00");
        Q.FieldByName(QStringLiteral("Amount"))->SetDisplayFormat(Format);
        Form F(&Q);
        TQxdbGridFooter Footer(&F.Window);
        F.Grid->SetGridFooter(&Footer);
        F.Grid->GetColumns()->Items(1)->SetTotalValue(true);
        F.Grid->GetColumns()->Items(2)->SetTotalValue(true);
        QVERIFY(F.Show());
        // Compares the footer with the walk; returns an empty text or what differs.
        auto Check = [&](const char* Step) {
            QElapsedTimer Wait;
            Wait.start();
            while (!Footer.TotalsReady() && Wait.elapsed() < 20000)
                QTest::qWait(5);
            QCoreApplication::processEvents();
            const QString Qty = FloatToStr(Walk(&Q, QStringLiteral("Qty")));
            const QString Amount = FormatFloat(Format, Walk(&Q, QStringLiteral("Amount")));
            if (Shown(Footer, 1) != Qty || Shown(Footer, 2) != Amount)
                return QStringLiteral("%1: %2 / %3, %4 / %5").arg(QLatin1String(Step), Shown(Footer, 1), Qty, Shown(Footer, 2), Amount);
            return QString();
        };
        // Opening does not read the table to total it.
        QTRY_VERIFY_WITH_TIMEOUT(Footer.TotalsReady(), 20000);
        QVERIFY(!Q.FetchedAll());
        QString Differs = Check("open");
        QVERIFY2(Differs.isEmpty(), qPrintable(Differs));
        for (int Step = 0; Step < 12; ++Step) {
            switch (Random.bounded(4)) {
            case 0:
                Q.Append();
                Q.FieldByName(QStringLiteral("Id"))->SetAsInteger(5000 + Step);
                Q.FieldByName(QStringLiteral("Qty"))->SetAsInteger(int(Random.bounded(300)));
                Q.FieldByName(QStringLiteral("Amount"))->SetAsFloat(Random.bounded(10000) / 100.0);
                Q.Post();
                break;
            case 1:
                Q.SetRecNo(1 + int(Random.bounded(50)));
                Q.Edit();
                Q.FieldByName(QStringLiteral("Qty"))->SetAsInteger(int(Random.bounded(300)) - 100);
                Q.Post();
                break;
            case 2:
                Q.SetRecNo(1 + int(Random.bounded(50)));
                Q.Delete();
                break;
            default:
                Q.Refresh();
                break;
            }
            Differs = Check("step");
            QVERIFY2(Differs.isEmpty(), qPrintable(Differs));
        }
    }

    void formatsAndStates()
    {
        auto Ds = Items(0);
        Form F(Ds.get());
        TQxdbGridFooter Footer(&F.Window);
        F.Grid->SetGridFooter(&Footer);
        F.Grid->GetColumns()->Items(2)->SetTotalValue(true);
        F.Grid->GetColumns()->Items(3)->SetTotalValue(true);
        QVERIFY(F.Show());
        QTRY_COMPARE(Shown(Footer, 2), QStringLiteral("0"));  // empty dataset
        Ds->FieldByName(QStringLiteral("Price"))->SetDisplayFormat(QStringLiteral("#,##0.00"));
        Ds->Append();
        Ds->FieldByName(QStringLiteral("Qty"))->SetAsInteger(3);
        Ds->FieldByName(QStringLiteral("Price"))->SetAsFloat(1234.5);
        Ds->Post();
        QTRY_COMPARE(Shown(Footer, 3), QStringLiteral("1,234.50"));
        QCOMPARE(Shown(Footer, 2), QStringLiteral("3"));
        // While a record is edited the totals stay as they were; the post shows the new ones.
        Ds->Edit();
        Ds->FieldByName(QStringLiteral("Qty"))->SetAsInteger(10);
        QCoreApplication::processEvents();
        QCOMPARE(Shown(Footer, 2), QStringLiteral("3"));
        Ds->Post();
        QTRY_COMPARE(Shown(Footer, 2), QStringLiteral("10"));
        // The current record stays where it was.
        QCOMPARE(Ds->RecNo(), 1);
        // A column without _TotalValue shows nothing.
        QCOMPARE(Shown(Footer, 1), QString());
        // The grid sums a column on request too: only totalable fields, a posted walk.
        Ds->Append();
        Ds->FieldByName(QStringLiteral("Qty"))->SetAsInteger(5);
        Ds->FieldByName(QStringLiteral("Price"))->SetAsFloat(0.25);
        Ds->Post();
        QCOMPARE(F.Grid->CalcColumnSum(2), 15.0);
        QCOMPARE(F.Grid->CalcColumnSum(3), 1234.75);
        QCOMPARE(F.Grid->CalcColumnSum(1), 0.0);   // a string column
        QCOMPARE(F.Grid->CalcColumnSum(9), 0.0);   // no such column
    }

    // Without data the labels show the fields' names while a form is designed, nothing at run time.
    void fieldNamesWithoutData_data()
    {
        QTest::addColumn<bool>("designing");
        QTest::newRow("designing") << true;
        QTest::newRow("running") << false;
    }
    void fieldNamesWithoutData()
    {
        QFETCH(bool, designing);
        auto Ds = Items(2);
        Form F(Ds.get());
        TQxdbGridFooter Footer(&F.Window);
        SetDesigning(&Footer, designing);
        F.Grid->GetColumns()->SetState(csCustomized);
        TQxColumnField* B = F.Grid->GetColumns()->Items(2)->GetBiDiField();
        B->SetFieldName_e(QStringLiteral("Qty"));
        B->SetFieldName_a(QStringLiteral("Price"));  // applied under right to left only
        F.Grid->SetGridFooter(&Footer);
        QVERIFY(F.Show());
        Ds->Close();
        QCoreApplication::processEvents();
        QVERIFY(Footer.LabelCount() > 2);
        TQxLabel* L = Footer.Labels(2);
        QCOMPARE(L->GetCaption_e(), designing ? QStringLiteral("Qty") : QString());
        QCOMPARE(L->GetCaption_a(), designing ? QStringLiteral("Price") : QString());
        QCOMPARE(L->GetCaption(), designing ? QStringLiteral("Qty") : QString());
    }

    void placement_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("separator");
        QTest::newRow("ltr") << false << false;
        QTest::newRow("rtl, separators") << true << true;
    }
    void placement()
    {
        QFETCH(bool, rtl);
        QFETCH(bool, separator);
        auto Ds = Items(3);
        Form F(Ds.get());
        TQxdbGridFooter Footer(&F.Window);
        Footer.SetSeparator(separator);
        F.Grid->SetGridFooter(&Footer);
        F.Grid->GetColumns()->Items(0)->GetBiDiField()->SetAlign_a(Qt::AlignLeft);
        F.RightToLeft(rtl);
        QVERIFY(F.Show());
        QCoreApplication::processEvents();
        // Directly under the grid, as wide as it.
        QCOMPARE(Footer.geometry().top(), F.Grid->geometry().bottom() + 1);
        QCOMPARE(Footer.width(), F.Grid->width());
        QCOMPARE(Footer.height(), 21);
        // Each label under its title: column 0 at the reading start (the right end under rtl).
        const QHeaderView* H = F.Grid->horizontalHeader();
        for (int I = 0; I < 3; ++I) {
            TQxLabel* L = Footer.Labels(I);
            const int Title = H->mapTo(&F.Window, QPoint(H->sectionViewportPosition(I), 0)).x() - Footer.x();
            QCOMPARE(L->x(), Title + 1);
            QCOMPARE(L->width(), H->sectionSize(I) - 4);
            QCOMPARE(Footer.Separators(I)->isVisible(), separator);
            if (separator) {
                QCOMPARE(Footer.Separators(I)->x(), L->x() - 3);
                QCOMPARE(Footer.Separators(I)->width(), 4);
            }
        }
        if (rtl) {
            QVERIFY(Footer.Labels(0)->x() > Footer.Labels(1)->x());
            QVERIFY(Footer.Labels(0)->geometry().right() > Footer.width() - 80);
            // A left alignment reads from the right under right to left.
            QCOMPARE(Footer.Labels(0)->layoutDirection(), Qt::RightToLeft);
        } else {
            QVERIFY(Footer.Labels(0)->x() < Footer.Labels(1)->x());
        }
        // Scrolling sideways carries the labels along.
        const int Before = Footer.Labels(1)->x();
        F.Grid->GetColumns()->Items(0)->SetWidth(F.Grid->GetColumns()->Items(0)->GetWidth() + 30);
        QCoreApplication::processEvents();
        QCOMPARE(Footer.Labels(1)->x(), Before + (rtl ? -30 : 30));
    }
    // A footer placed by a layout under its grid keeps every label under its title when
    // columns are resized or moved, the grid scrolls sideways, or the window is resized.
    void followsColumnsInLayout_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("action");
        for (const bool Rtl : {false, true})
            for (const char* Action : {"resize column", "move column", "scroll", "resize window", "widen column 0 in code"})
                QTest::addRow("%s, %s", Rtl ? "rtl" : "ltr", Action) << Rtl << QString::fromLatin1(Action);
    }
    void followsColumnsInLayout()
    {
        QFETCH(bool, rtl);
        QFETCH(QString, action);
        auto Ds = Items(3);
        QWidget Window;
        auto* Layout = new QVBoxLayout(&Window);
        Layout->setSpacing(0);
        Layout->setContentsMargins(17, 5, 9, 5);  // the footer's x is not 0 in the window
        TDataSource Source;
        Source.SetDataSet(Ds.get());
        auto* Grid = new TQxdbGrid(&Window);
        auto* Footer = new TQxdbGridFooter(&Window);
        Layout->addWidget(Grid);
        Layout->addWidget(Footer);
        Grid->SetDataSource(&Source);
        Grid->SetGridFooter(Footer);
        Grid->GetColumns()->Items(2)->SetTotalValue(true);  // Qty: 1 + 2 + 3
        if (rtl)
            Grid->SetBiDiMode(bdRightToLeft);
        Window.resize(300, 250);  // narrower than the columns: the grid scrolls sideways
        Window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Window));
        QHeaderView* H = Grid->horizontalHeader();
        auto Misplaced = [&] {
            QCoreApplication::processEvents();
            QStringList Wrong;
            for (int I = 0; I < Footer->LabelCount(); ++I) {
                const int Title = H->mapTo(&Window, QPoint(H->sectionViewportPosition(I), 0)).x()
                                  - Footer->mapTo(&Window, QPoint(0, 0)).x();
                const TQxLabel* L = Footer->Labels(I);
                const bool Shown = Title + H->sectionSize(I) > 0 && Title < Footer->width();
                if (L->x() != Title + 1 || L->width() != H->sectionSize(I) - 4 || L->isVisible() != Shown)
                    Wrong << QStringLiteral("label %1 at %2 width %3 %4, title at %5 width %6")
                                 .arg(I).arg(L->x()).arg(L->width())
                                 .arg(L->isVisible() ? QStringLiteral("shown") : QStringLiteral("hidden"))
                                 .arg(Title).arg(H->sectionSize(I));
            }
            return Wrong.join(QStringLiteral("; "));
        };
        QCOMPARE(Misplaced(), QString());
        if (action == QLatin1String("resize column"))
            H->resizeSection(1, H->sectionSize(1) + 40);
        else if (action == QLatin1String("move column"))
            H->moveSection(2, 0);  // as a drag of the title does
        else if (action == QLatin1String("scroll"))
            Grid->horizontalScrollBar()->setValue(Grid->horizontalScrollBar()->maximum());
        else if (action == QLatin1String("resize window"))
            Window.resize(420, 260);
        else
            Grid->GetColumns()->Items(0)->SetWidth(Grid->GetColumns()->Items(0)->GetWidth() + 25);
        QCOMPARE(Misplaced(), QString());
        QCOMPARE(Footer->Labels(2)->GetCaption(), action == QLatin1String("move column") ? QString() : QStringLiteral("6"));
        if (action == QLatin1String("move column")) {
            // The total went along with its column.
            QCOMPARE(Grid->GetColumns()->Items(0)->GetFieldName(), QStringLiteral("Qty"));
            QCOMPARE(Footer->Labels(0)->GetCaption(), QStringLiteral("6"));
        }
    }
};

QTEST_MAIN(TestGridFooter)
#include "tst_grid_footer.moc"
