// Window services of the platform layer: which children a layout places, focus moves in
// tab order, mirroring of hand-placed children and the queued close.
#include "platform/widgets.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QVBoxLayout>
#include <QtTest>

#include <memory>

using namespace Kesh;

namespace {

// How the widget under test is placed in its parent.
enum Placement {
    InTopLayout,
    InSubLayout,
    InGridInSubLayout,
    BesideLayout,
    RemovedFromLayout,
    ParentWithoutLayout,
    InsideLaidOutBox,
    NoParent
};

// Counts the close events that reach it.
class CloseCounter : public QWidget
{
public:
    int Closes = 0;

protected:
    void closeEvent(QCloseEvent* Event) override
    {
        ++Closes;
        QWidget::closeEvent(Event);
    }
};

} // namespace

Q_DECLARE_METATYPE(Placement)

class TestWidgets : public QObject
{
    Q_OBJECT

private slots:
    void isManagedByLayout_data()
    {
        QTest::addColumn<Placement>("placement");
        QTest::addColumn<bool>("managed");

        QTest::newRow("in the parent's layout") << InTopLayout << true;
        QTest::newRow("in a sub-layout") << InSubLayout << true;
        QTest::newRow("in a grid inside a sub-layout") << InGridInSubLayout << true;
        QTest::newRow("hand-placed beside a layout") << BesideLayout << false;
        QTest::newRow("taken out of the layout") << RemovedFromLayout << false;
        QTest::newRow("parent without a layout") << ParentWithoutLayout << false;
        QTest::newRow("hand-placed in a box the layout places") << InsideLaidOutBox << false;
        QTest::newRow("no parent") << NoParent << false;
    }

    void isManagedByLayout()
    {
        QFETCH(Placement, placement);
        QFETCH(bool, managed);

        QWidget Parent;
        auto* W = new QLabel(QStringLiteral("x"));
        std::unique_ptr<QWidget> Orphan;
        auto* Top = placement == ParentWithoutLayout || placement == NoParent ? nullptr : new QVBoxLayout(&Parent);
        if (Top)
            Top->addWidget(new QPushButton(QStringLiteral("first")));
        switch (placement) {
        case InTopLayout:
            Top->addWidget(W);
            break;
        case InSubLayout: {
            auto* Row = new QHBoxLayout;
            Top->addLayout(Row);
            Row->addWidget(W);
            break;
        }
        case InGridInSubLayout: {
            auto* Row = new QHBoxLayout;
            Top->addLayout(Row);
            auto* Grid = new QGridLayout;
            Row->addLayout(Grid);
            Grid->addWidget(new QPushButton, 0, 0);
            Grid->addWidget(W, 1, 1);
            break;
        }
        case BesideLayout:
        case ParentWithoutLayout:
            W->setParent(&Parent);
            break;
        case RemovedFromLayout:
            Top->addWidget(W);
            Top->removeWidget(W);
            break;
        case InsideLaidOutBox: {
            // The layout places W's parent, and that parent's own layout holds another widget.
            auto* Box = new QWidget;
            Top->addWidget(Box);
            (new QHBoxLayout(Box))->addWidget(new QPushButton);
            W->setParent(Box);
            break;
        }
        case NoParent:
            Orphan.reset(W);
            break;
        }
        QCOMPARE(IsManagedByLayout(W), managed);
    }

    void isManagedByLayoutOfNothing()
    {
        QVERIFY(!IsManagedByLayout(nullptr));
    }

    void nextControl_data()
    {
        QTest::addColumn<bool>("rightToLeft");
        QTest::addColumn<int>("current");
        QTest::addColumn<bool>("forward");
        QTest::addColumn<int>("disabled"); // -1: none
        QTest::addColumn<int>("hidden");
        QTest::addColumn<int>("clickOnly");
        QTest::addColumn<int>("expected");

        // The tab order is e0, e2, e1, e3: not the order of creation or of position.
        for (const bool Rtl : {false, true}) {
            const char* Dir = Rtl ? "rtl" : "ltr";
            QTest::addRow("%s: forward in tab order", Dir) << Rtl << 0 << true << -1 << -1 << -1 << 2;
            QTest::addRow("%s: backward in tab order", Dir) << Rtl << 1 << false << -1 << -1 << -1 << 2;
            QTest::addRow("%s: wraps forward", Dir) << Rtl << 3 << true << -1 << -1 << -1 << 0;
            QTest::addRow("%s: wraps backward", Dir) << Rtl << 0 << false << -1 << -1 << -1 << 3;
            QTest::addRow("%s: skips a disabled control", Dir) << Rtl << 0 << true << 2 << -1 << -1 << 1;
            QTest::addRow("%s: skips a hidden control", Dir) << Rtl << 2 << true << -1 << 1 << -1 << 3;
            QTest::addRow("%s: skips a click-only control", Dir) << Rtl << 1 << true << -1 << -1 << 3 << 0;
            QTest::addRow("%s: skips a disabled one when wrapping back", Dir) << Rtl << 0 << false << 3 << -1 << -1 << 1;
        }
    }

    void nextControl()
    {
        QFETCH(bool, rightToLeft);
        QFETCH(int, current);
        QFETCH(bool, forward);
        QFETCH(int, disabled);
        QFETCH(int, hidden);
        QFETCH(int, clickOnly);
        QFETCH(int, expected);

        QWidget Window;
        Window.setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        auto* Layout = new QVBoxLayout(&Window);
        QList<QLineEdit*> E;
        for (int I = 0; I < 4; ++I) {
            E << new QLineEdit(QString::number(I));
            Layout->addWidget(E.last());
        }
        QWidget::setTabOrder(E[0], E[2]);
        QWidget::setTabOrder(E[2], E[1]);
        QWidget::setTabOrder(E[1], E[3]);
        if (disabled >= 0)
            E[disabled]->setEnabled(false);
        if (hidden >= 0)
            E[hidden]->hide();
        if (clickOnly >= 0)
            E[clickOnly]->setFocusPolicy(Qt::ClickFocus);

        QCOMPARE(NextControlIn(&Window, E[current], forward), E[expected]);

        Window.show();
        Window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&Window));
        E[current]->setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), E[current]);
        SelectNextControl(E[current], forward);
        QCOMPARE(QApplication::focusWidget(), E[expected]);
    }

    void nextControlLimits()
    {
        QWidget Window;
        auto* Layout = new QVBoxLayout(&Window);
        auto* Outside = new QLineEdit;
        auto* Group = new QWidget;
        auto* Inner = new QVBoxLayout(Group);
        auto* A = new QLineEdit;
        auto* B = new QLineEdit;
        auto* Label = new QLabel(QStringLiteral("no focus"));
        Layout->addWidget(Outside);
        Layout->addWidget(Group);
        Inner->addWidget(A);
        Inner->addWidget(B);
        Layout->addWidget(Label);

        // The search stays inside the container and wraps round within it.
        QCOMPARE(NextControlIn(Group, B, true), A);
        QCOMPARE(NextControlIn(Group, A, false), B);
        // From outside the container, its first or last control.
        QCOMPARE(NextControlIn(Group, Outside, true), A);
        QCOMPARE(NextControlIn(Group, nullptr, false), B);
        QCOMPARE(NextControlIn(nullptr, A, true), nullptr);
        // A lone control is its own next; a container without one gives none.
        B->setEnabled(false);
        QCOMPARE(NextControlIn(Group, A, true), A);
        A->setFocusPolicy(Qt::NoFocus);
        QCOMPARE(NextControlIn(Group, A, true), nullptr);
        // The container itself never qualifies, even when it could take the focus.
        Group->setFocusPolicy(Qt::StrongFocus);
        QCOMPARE(NextControlIn(Group, nullptr, true), nullptr);

        // With no other control on the window, the focus stays.
        Outside->setEnabled(false);
        A->setFocusPolicy(Qt::StrongFocus);
        Group->setFocusPolicy(Qt::NoFocus);
        Window.show();
        Window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&Window));
        A->setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), A);
        SelectNextControl(A, true);
        QCOMPARE(QApplication::focusWidget(), A);
        SelectNextControl(nullptr, true);
        QCOMPARE(QApplication::focusWidget(), A);
    }

    void mirrorHandPlaced_data()
    {
        QTest::addColumn<int>("x");
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("mirroredX");

        // The parent is 300 pixels wide.
        QTest::newRow("near the left edge") << 10 << 50 << 240;
        QTest::newRow("touching the left edge") << 0 << 100 << 200;
        QTest::newRow("centred stays") << 100 << 100 << 100;
        QTest::newRow("wider than the parent") << -20 << 400 << -80;
        QTest::newRow("partly outside on the right") << 280 << 60 << -40;
    }

    void mirrorHandPlaced()
    {
        QFETCH(int, x);
        QFETCH(int, width);
        QFETCH(int, mirroredX);

        QWidget Parent;
        Parent.resize(300, 200);
        auto* Child = new QWidget(&Parent);
        Child->setGeometry(x, 30, width, 40);
        // A grandchild is mirrored within its own parent.
        auto* Grandchild = new QWidget(Child);
        Grandchild->setGeometry(5, 7, 10, 10);

        MirrorChildren(&Parent);
        QCOMPARE(Child->geometry(), QRect(mirroredX, 30, width, 40));
        QCOMPARE(Grandchild->geometry(), QRect(width - 15, 7, 10, 10));
        // Twice gives the original places back.
        MirrorChildren(&Parent);
        QCOMPARE(Child->geometry(), QRect(x, 30, width, 40));
        QCOMPARE(Grandchild->geometry(), QRect(5, 7, 10, 10));
    }

    void mirrorLeavesLayoutChildren_data()
    {
        QTest::addColumn<bool>("rightToLeft");
        QTest::newRow("left to right") << false;
        QTest::newRow("right to left") << true;
    }

    // A layout mirrors its widgets by itself when the direction changes; mirroring them once
    // more would undo that.
    void mirrorLeavesLayoutChildren()
    {
        QFETCH(bool, rightToLeft);

        QWidget Parent;
        Parent.setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        auto* Top = new QVBoxLayout(&Parent);
        auto* Row = new QHBoxLayout;
        Top->addLayout(Row);
        auto* Button = new QPushButton(QStringLiteral("OK"));
        Button->setFixedWidth(60);
        Row->addWidget(Button);
        Row->addStretch();
        auto* Box = new QWidget;
        Box->setFixedHeight(50);
        Top->addWidget(Box);
        auto* InBox = new QWidget(Box);
        auto* Beside = new QWidget(&Parent);
        Parent.resize(300, 200);
        Parent.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Parent));
        InBox->setGeometry(10, 5, 30, 20);
        Beside->setGeometry(20, 150, 40, 20);

        // The layout puts the button at the leading edge for the direction.
        const QRect ButtonPlace = Button->geometry();
        QCOMPARE(ButtonPlace.x() < 150, !rightToLeft);
        const QRect BoxPlace = Box->geometry();

        MirrorChildren(&Parent);
        QCOMPARE(Button->geometry(), ButtonPlace);
        QCOMPARE(Box->geometry(), BoxPlace);
        // Hand-placed children are mirrored, also inside a widget the layout places.
        QCOMPARE(Beside->geometry(), QRect(300 - 20 - 40, 150, 40, 20));
        QCOMPARE(InBox->geometry(), QRect(Box->width() - 10 - 30, 5, 30, 20));
    }

    void mirrorRecursesIntoScrollAreaAndTabs_data()
    {
        QTest::addColumn<bool>("rightToLeft");
        QTest::newRow("left to right") << false;
        QTest::newRow("right to left") << true;
    }

    void mirrorRecursesIntoScrollAreaAndTabs()
    {
        QFETCH(bool, rightToLeft);

        QWidget Window;
        Window.setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        Window.resize(500, 400);
        auto* Area = new QScrollArea(&Window);
        Area->setGeometry(10, 10, 200, 150);
        Area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        auto* Content = new QWidget;
        Content->resize(400, 300);
        auto* InContent = new QWidget(Content);
        InContent->setGeometry(30, 40, 50, 20);
        Area->setWidget(Content);

        auto* Tabs = new QTabWidget(&Window);
        Tabs->setGeometry(220, 10, 260, 200);
        auto* Page1 = new QWidget;
        auto* Page2 = new QWidget;
        auto* OnPage1 = new QWidget(Page1);
        auto* OnPage2 = new QWidget(Page2);
        OnPage1->setGeometry(10, 10, 40, 20);
        OnPage2->setGeometry(0, 30, 60, 20);
        Tabs->addTab(Page1, QStringLiteral("one"));
        Tabs->addTab(Page2, QStringLiteral("two"));
        Window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Window));

        const QRect Viewport = Area->viewport()->geometry();
        const QRect ScrollBar = Area->horizontalScrollBar()->geometry();
        const QRect ContentPlace = Content->geometry();
        const QRect TabBar = Tabs->tabBar()->geometry();
        const QRect PagePlace = Page1->geometry();
        const int PageWidth = Page1->width();
        QVERIFY(PageWidth > 100);

        MirrorChildren(&Window);
        // The composite widgets themselves are hand-placed children of the window.
        QCOMPARE(Area->geometry(), QRect(500 - 10 - 200, 10, 200, 150));
        QCOMPARE(Tabs->geometry(), QRect(500 - 220 - 260, 10, 260, 200));
        // What the user placed inside them is mirrored within its own container…
        QCOMPARE(InContent->geometry(), QRect(400 - 30 - 50, 40, 50, 20));
        QCOMPARE(OnPage1->geometry(), QRect(PageWidth - 10 - 40, 10, 40, 20));
        QCOMPARE(OnPage2->geometry(), QRect(Page2->width() - 0 - 60, 30, 60, 20));
        // …while their own inner parts stay where the widgets put them.
        QCOMPARE(Area->viewport()->geometry(), Viewport);
        QCOMPARE(Area->horizontalScrollBar()->geometry(), ScrollBar);
        QCOMPARE(Content->geometry(), ContentPlace);
        QCOMPARE(Tabs->tabBar()->geometry(), TabBar);
        QCOMPARE(Page1->geometry(), PagePlace);
    }

    void mirrorLeavesCompositeInternals()
    {
        QWidget Window;
        Window.resize(400, 100);
        auto* Spin = new QSpinBox(&Window);
        Spin->setGeometry(10, 10, 120, 24);
        auto* Combo = new QComboBox(&Window);
        Combo->setEditable(true);
        Combo->setGeometry(150, 10, 150, 24);
        auto* Edit = new QLineEdit(&Window);
        Edit->setClearButtonEnabled(true);
        Edit->setText(QStringLiteral("x"));
        Edit->setGeometry(10, 50, 200, 24);
        Window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Window));

        QList<QPair<QWidget*, QRect>> Inner;
        for (QWidget* Composite : {static_cast<QWidget*>(Spin), static_cast<QWidget*>(Combo), static_cast<QWidget*>(Edit)})
            for (QWidget* Part : Composite->findChildren<QWidget*>())
                if (!Part->isWindow())
                    Inner << qMakePair(Part, Part->geometry());
        QVERIFY(Inner.size() >= 2);

        MirrorChildren(&Window);
        QCOMPARE(Spin->geometry(), QRect(400 - 10 - 120, 10, 120, 24));
        QCOMPARE(Combo->geometry(), QRect(400 - 150 - 150, 10, 150, 24));
        QCOMPARE(Edit->geometry(), QRect(400 - 10 - 200, 50, 200, 24));
        for (const auto& [Part, Place] : Inner)
            QCOMPARE(Part->geometry(), Place);
        MirrorChildren(nullptr);
    }

    void postCloseWaitsForTheEventLoop()
    {
        CloseCounter Window;
        Window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Window));
        PostClose(&Window);
        QCOMPARE(Window.Closes, 0);
        QVERIFY(Window.isVisible());
        QTRY_COMPARE(Window.Closes, 1);
        QVERIFY(!Window.isVisible());
        PostClose(nullptr);
    }

    void postCloseToAWindowGoneMeanwhile()
    {
        auto* Gone = new CloseCounter;
        CloseCounter Kept;
        Gone->show();
        Kept.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Kept));
        PostClose(Gone);
        PostClose(&Kept);
        // The request to the deleted window dies with it; the other one still arrives.
        delete Gone;
        QTRY_COMPARE(Kept.Closes, 1);
        QVERIFY(!Kept.isVisible());
    }
};

QTEST_MAIN(TestWidgets)
#include "tst_widgets.moc"
