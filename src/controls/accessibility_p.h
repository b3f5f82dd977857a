// Kesh for Qt — what the self-painting controls tell assistive technology.
#pragma once
#include <QAccessible>

class QWidget;

namespace Kesh {

/// Tells assistive technology that Widget's accessible Kind (name, value) has changed.
inline void NotifyAccessible(QWidget* Widget, QAccessible::Event Kind)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(reinterpret_cast<QObject*>(Widget), Kind);
    QAccessible::updateAccessibility(&event);
}

} // namespace Kesh
