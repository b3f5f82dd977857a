// Window services of the platform layer: which children a layout places, focus moves in
// tab order, mirroring of hand-placed children and the queued close. Every test runs left
// to right and right to left.
#include "platform/widgets.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>
#include <QtTest>

using namespace Kesh;

namespace {

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

bool ShowAndActivate(QWidget* W)
{
    W->show();
    W->activateWindow();
    return QTest::qWaitForWindowActive(W);
}

} // namespace

class TestWidgets : public QObject
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
        QGuiApplication::setLayoutDirection(rtl ? Qt::RightToLeft : Qt::LeftToRight);
    }

    void isManagedByLayout_data()
    {
        QTest::addColumn<QString>("widget");
        QTest::addColumn<bool>("managed");
        QTest::newRow("in the parent's layout") << "inTop" << true;
        QTest::newRow("in a sub-layout") << "inRow" << true;
        QTest::newRow("in a grid inside a sub-layout") << "inGrid" << true;
        QTest::newRow("hand-placed beside a layout") << "beside" << false;
        QTest::newRow("taken out of the layout") << "removed" << false;
        QTest::newRow("parent without a layout") << "noLayout" << false;
        QTest::newRow("hand-placed in a box the layout places") << "inBox" << false;
        QTest::newRow("no parent") << "orphan" << false;
    }

    void isManagedByLayout()
    {
        QFETCH(QString, widget);
        QFETCH(bool, managed);
        QWidget Parent, Bare, Orphan;
        auto* Top = new QVBoxLayout(&Parent);
        auto* Row = new QHBoxLayout;
        Top->addLayout(Row);
        auto* Grid = new QGridLayout;
        Row->addLayout(Grid);
        auto* Box = new QWidget; // placed by the layout, with a layout of its own
        (new QHBoxLayout(Box))->addWidget(new QPushButton);
        Top->addWidget(Box);
        const QHash<QString, QWidget*> W{{"inTop", new QLabel},          {"inRow", new QLabel},
                                         {"inGrid", new QLabel},         {"beside", new QLabel(&Parent)},
                                         {"removed", new QLabel},        {"inBox", new QLabel(Box)},
                                         {"noLayout", new QLabel(&Bare)}, {"orphan", &Orphan}};
        Top->addWidget(W["inTop"]);
        Row->addWidget(W["inRow"]);
        Grid->addWidget(new QPushButton, 0, 0);
        Grid->addWidget(W["inGrid"], 1, 1);
        Top->addWidget(W["removed"]);
        Top->removeWidget(W["removed"]);
        QCOMPARE(IsManagedByLayout(W[widget]), managed);
        QVERIFY(!IsManagedByLayout(nullptr));
    }

    void nextControl_data()
    {
        QTest::addColumn<int>("current");
        QTest::addColumn<bool>("forward");
        QTest::addColumn<int>("unfit"); // -1: none
        QTest::addColumn<char>("how");  // d disabled, h hidden, c click only
        QTest::addColumn<int>("expected");
        // The tab order is e0, e2, e1, e3: not the order of creation or of position.
        QTest::newRow("forward in tab order") << 0 << true << -1 << ' ' << 2;
        QTest::newRow("backward in tab order") << 1 << false << -1 << ' ' << 2;
        QTest::newRow("wraps forward") << 3 << true << -1 << ' ' << 0;
        QTest::newRow("wraps backward") << 0 << false << -1 << ' ' << 3;
        QTest::newRow("skips a disabled control") << 0 << true << 2 << 'd' << 1;
        QTest::newRow("skips a hidden control") << 2 << true << 1 << 'h' << 3;
        QTest::newRow("skips a click-only control") << 1 << true << 3 << 'c' << 0;
        QTest::newRow("skips a disabled one when wrapping back") << 0 << false << 3 << 'd' << 1;
    }

    void nextControl()
    {
        QFETCH(int, current);
        QFETCH(bool, forward);
        QFETCH(int, unfit);
        QFETCH(char, how);
        QFETCH(int, expected);
        QWidget Window;
        auto* Layout = new QVBoxLayout(&Window);
        QList<QLineEdit*> E;
        for (int I = 0; I < 4; ++I)
            Layout->addWidget(E.emplaceBack(new QLineEdit(QString::number(I))));
        QWidget::setTabOrder(E[0], E[2]);
        QWidget::setTabOrder(E[2], E[1]);
        QWidget::setTabOrder(E[1], E[3]);
        if (unfit >= 0)
            how == 'd' ? E[unfit]->setEnabled(false) : how == 'h' ? E[unfit]->hide() : E[unfit]->setFocusPolicy(Qt::ClickFocus);

        QCOMPARE(NextControlIn(&Window, E[current], forward), E[expected]);
        QVERIFY(ShowAndActivate(&Window));
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
        auto *A = new QLineEdit(Group), *B = new QLineEdit(Group);
        B->move(0, 30);
        Layout->addWidget(Outside);
        Layout->addWidget(Group);
        Layout->addWidget(new QLabel(QStringLiteral("no focus")));

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
        QVERIFY(ShowAndActivate(&Window));
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
        auto* Grandchild = new QWidget(Child); // mirrored within its own parent
        Grandchild->setGeometry(5, 7, 10, 10);

        MirrorChildren(&Parent);
        QCOMPARE(Child->geometry(), QRect(mirroredX, 30, width, 40));
        QCOMPARE(Grandchild->geometry(), QRect(width - 15, 7, 10, 10));
        MirrorChildren(&Parent); // twice gives the original places back
        QCOMPARE(Child->geometry(), QRect(x, 30, width, 40));
        QCOMPARE(Grandchild->geometry(), QRect(5, 7, 10, 10));
        MirrorChildren(nullptr);
    }

    // Layouts mirror their widgets by themselves (mirroring once more would undo that), and
    // composite widgets place their own parts; only what the user placed by hand moves,
    // at every depth, also inside scroll areas, tab pages and widgets a layout places.
    void mirrorMovesOnlyHandPlacedWidgets()
    {
        QFETCH_GLOBAL(bool, rtl);
        QWidget Window;
        Window.resize(500, 400);
        auto* Top = new QVBoxLayout(&Window);
        auto* Row = new QHBoxLayout;
        Top->addLayout(Row);
        auto* Button = new QPushButton(QStringLiteral("OK"));
        Button->setFixedWidth(60);
        Row->addWidget(Button);
        Row->addStretch();
        auto* Box = new QWidget;
        Box->setFixedHeight(50);
        Top->addWidget(Box);
        Top->addStretch();
        const auto Place = [](QWidget* W, QWidget* Parent, QRect R) {
            W->setParent(Parent);
            W->setGeometry(R);
            return W;
        };
        auto* Area = new QScrollArea;
        Area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
        auto* Content = new QWidget;
        Content->resize(400, 300);
        auto* Tabs = new QTabWidget;
        auto* Page1 = new QWidget;
        auto* Page2 = new QWidget;
        auto* Combo = new QComboBox;
        Combo->setEditable(true);
        auto* Edit = new QLineEdit(QStringLiteral("x"));
        Edit->setClearButtonEnabled(true);
        const QList<QWidget*> HandPlaced{
            Place(new QWidget, Box, {10, 5, 30, 20}),     Place(new QWidget, &Window, {20, 350, 40, 20}),
            Place(Area, &Window, {10, 100, 200, 150}),    Place(new QWidget, Content, {30, 40, 50, 20}),
            Place(Tabs, &Window, {220, 100, 260, 200}),   Place(new QWidget, Page1, {10, 10, 40, 20}),
            Place(new QWidget, Page2, {0, 30, 60, 20}),   Place(new QSpinBox, &Window, {10, 310, 120, 24}),
            Place(Combo, &Window, {150, 310, 150, 24}),   Place(Edit, &Window, {300, 340, 190, 24})};
        Area->setWidget(Content);
        Tabs->addTab(Page1, QStringLiteral("one"));
        Tabs->addTab(Page2, QStringLiteral("two"));
        Window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Window));
        // The layout puts the button at the leading edge for the direction.
        QCOMPARE(Button->x() < 250, !rtl);

        QHash<QWidget*, QRect> Before;
        for (QWidget* W : Window.findChildren<QWidget*>())
            if (!W->isWindow())
                Before.insert(W, W->geometry());
        QVERIFY(Before.size() > 20);
        MirrorChildren(&Window);
        for (auto It = Before.cbegin(); It != Before.cend(); ++It) {
            QRect Expected = It.value();
            if (HandPlaced.contains(It.key()))
                Expected.moveLeft(It.key()->parentWidget()->width() - Expected.x() - Expected.width());
            QVERIFY2(It.key()->geometry() == Expected, It.key()->metaObject()->className());
        }
    }

    void postCloseWaitsForTheEventLoop()
    {
        auto* Gone = new CloseCounter;
        CloseCounter Kept;
        Gone->show();
        Kept.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Kept));
        PostClose(Gone);
        PostClose(&Kept);
        PostClose(nullptr);
        QCOMPARE(Kept.Closes, 0);
        QVERIFY(Kept.isVisible());
        // The request to a window deleted meanwhile dies with it; the other one still arrives.
        delete Gone;
        QTRY_COMPARE(Kept.Closes, 1);
        QVERIFY(!Kept.isVisible());
    }
};

QTEST_MAIN(TestWidgets)
#include "tst_widgets.moc"
