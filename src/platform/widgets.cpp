// Kesh for Qt — window services shared by the controls.
#include "widgets.h"

#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QAtomicInt>
#include <QCalendarWidget>
#include <QComboBox>
#include <QDockWidget>
#include <QLayout>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QScrollArea>
#include <QSet>
#include <QSplitter>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>

namespace Kesh {

namespace {
QAtomicInt g_beeps;

bool Qualifies(QWidget* W, QWidget* Container)
{
    return (W->focusPolicy() & Qt::TabFocus) && !W->focusProxy() && W->isEnabled()
        && W->isVisibleTo(Container) && !W->isWindow();
}

bool IsInLayout(const QLayout* Layout, const QWidget* W)
{
    for (int i = 0; i < Layout->count(); ++i) {
        QLayoutItem* item = Layout->itemAt(i);
        if (item->widget() == W)
            return true;
        if (item->layout() && IsInLayout(item->layout(), W))
            return true;
    }
    return false;
}

// Widgets whose children are their own inner parts, placed by the widget itself.
bool IsComposite(const QWidget* W)
{
    return qobject_cast<const QAbstractScrollArea*>(W) || qobject_cast<const QComboBox*>(W)
        || qobject_cast<const QAbstractSpinBox*>(W) || qobject_cast<const QLineEdit*>(W)
        || qobject_cast<const QToolBar*>(W) || qobject_cast<const QMenuBar*>(W)
        || qobject_cast<const QStatusBar*>(W) || qobject_cast<const QSplitter*>(W)
        || qobject_cast<const QDockWidget*>(W) || qobject_cast<const QTabBar*>(W)
        || qobject_cast<const QTabWidget*>(W) || qobject_cast<const QStackedWidget*>(W)
        || qobject_cast<const QCalendarWidget*>(W) || qobject_cast<const QMainWindow*>(W);
}

// The user-placed containers inside a composite widget, whose own children may be
// placed by hand.
QList<QWidget*> InnerContainers(QWidget* W)
{
    QList<QWidget*> inner;
    if (auto* area = qobject_cast<QScrollArea*>(W)) {
        if (area->widget())
            inner << area->widget();
    } else if (auto* tabs = qobject_cast<QTabWidget*>(W)) {
        for (int i = 0; i < tabs->count(); ++i)
            inner << tabs->widget(i);
    } else if (auto* stack = qobject_cast<QStackedWidget*>(W)) {
        for (int i = 0; i < stack->count(); ++i)
            inner << stack->widget(i);
    } else if (auto* main = qobject_cast<QMainWindow*>(W)) {
        if (main->centralWidget())
            inner << main->centralWidget();
        for (QDockWidget* dock : main->findChildren<QDockWidget*>(Qt::FindDirectChildrenOnly))
            if (dock->widget())
                inner << dock->widget();
    } else if (auto* dock = qobject_cast<QDockWidget*>(W)) {
        if (dock->widget())
            inner << dock->widget();
    }
    return inner;
}
} // namespace

void Beep(unsigned Type)
{
    Q_UNUSED(Type)
    g_beeps.fetchAndAddRelaxed(1);
    if (qobject_cast<QApplication*>(QCoreApplication::instance()))
        QApplication::beep();
}

int BeepCount()
{
    return g_beeps.loadRelaxed();
}

QWidget* NextControlIn(QWidget* Container, QWidget* Current, bool Forward)
{
    if (!Container)
        return nullptr;
    QWidget* start = Current && Container->isAncestorOf(Current) ? Current : Container;
    QWidget* w = start;
    // The focus chain is circular over the whole window; walk it once round.
    do {
        w = Forward ? w->nextInFocusChain() : w->previousInFocusChain();
        if (w != Container && Container->isAncestorOf(w) && Qualifies(w, Container))
            return w;
    } while (w && w != start);
    return nullptr;
}

void SelectNextControl(QWidget* From, bool Forward)
{
    if (!From)
        return;
    if (QWidget* next = NextControlIn(From->window(), From, Forward); next && next != From)
        next->setFocus(Forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
}

bool IsManagedByLayout(const QWidget* Widget)
{
    const QWidget* parent = Widget ? Widget->parentWidget() : nullptr;
    return parent && parent->layout() && IsInLayout(parent->layout(), Widget);
}

void PostClose(QWidget* Window)
{
    if (Window)
        QMetaObject::invokeMethod(Window, &QWidget::close, Qt::QueuedConnection);
}

void MirrorChildren(QWidget* Parent)
{
    if (!Parent)
        return;
    if (IsComposite(Parent)) {
        for (QWidget* inner : InnerContainers(Parent))
            MirrorChildren(inner);
        return;
    }
    const int width = Parent->width();
    for (QWidget* child : Parent->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (child->isWindow())
            continue;
        if (!IsManagedByLayout(child))
            child->move(width - child->x() - child->width(), child->y());
        MirrorChildren(child);
    }
}

void PopupBelow(QMenu* Menu, QWidget* Control)
{
    if (!Menu || !Control)
        return;
    QPoint at = Control->mapToGlobal(QPoint(0, Control->height()));
    if (Control->layoutDirection() == Qt::RightToLeft)
        at = Control->mapToGlobal(QPoint(Control->width(), Control->height()))
            - QPoint(Menu->sizeHint().width(), 0);
    Menu->popup(at);
}

TBiDiMode BiDiModeOf(const QWidget* Widget)
{
    return Widget && Widget->layoutDirection() == Qt::RightToLeft ? bdRightToLeft : bdLeftToRight;
}

void SetBiDiModeOf(QWidget* Widget, TBiDiMode Mode)
{
    if (Widget)
        Widget->setLayoutDirection(Mode == bdRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
}

TFont FontOf(const QWidget* Widget)
{
    if (!Widget)
        return TFont();
    return TFont(Widget->font(), QColorToTColor(Widget->palette().color(QPalette::WindowText)));
}

void ApplyFont(QWidget* Widget, const TFont& Font)
{
    if (!Widget)
        return;
    Widget->setFont(Font.Font());
    QPalette palette = Widget->palette();
    const QColor color = Font.PenColor();
    for (QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Active, role, color);
        palette.setColor(QPalette::Inactive, role, color);
    }
    Widget->setPalette(palette);
}

TLoadable::~TLoadable() = default;

void TLoadable::EndLoading()
{
    if (m_loaded)
        return;
    m_loaded = true;
    m_loading = false;
    Loaded();
}

namespace {
QList<TEndLoadingHook>& EndLoadingHooks()
{
    static QList<TEndLoadingHook> Hooks;
    return Hooks;
}

// The objects marked as designed; an entry leaves with its object.
QSet<const QObject*>& Designed()
{
    static QSet<const QObject*> Objects;
    return Objects;
}

void EndLoadingTree(QObject* Root)
{
    if (auto* loadable = dynamic_cast<TLoadable*>(Root))
        loadable->EndLoading();
    // A Loaded() may delete or add objects: guard the children taken beforehand.
    QList<QPointer<QObject>> children;
    for (QObject* child : Root->children())
        children << child;
    for (const QPointer<QObject>& child : children)
        if (child)
            EndLoadingTree(child);
}
} // namespace

void EndLoading(QObject* Root)
{
    if (!Root)
        return;
    for (TEndLoadingHook Hook : EndLoadingHooks())
        Hook(Root);
    EndLoadingTree(Root);
}

void AddEndLoadingHook(TEndLoadingHook Hook)
{
    if (Hook && !EndLoadingHooks().contains(Hook))
        EndLoadingHooks().append(Hook);
}

bool IsDesigning(const QObject* Object)
{
    const QSet<const QObject*>& Objects = Designed();
    for (; Object; Object = Object->parent())
        if (Objects.contains(Object))
            return true;
    return false;
}

void SetDesigning(QObject* Object, bool Value)
{
    if (!Object || Designed().contains(Object) == Value)
        return;
    if (Value) {
        Designed().insert(Object);
        QObject::connect(Object, &QObject::destroyed, [Object] { Designed().remove(Object); });
    } else {
        Designed().remove(Object);
    }
}

} // namespace Kesh
