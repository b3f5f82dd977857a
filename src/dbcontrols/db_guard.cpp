#include "db_guard_p.h"

#include "messages.h"
#include "platform/exceptions.h"
#include "platform/widgets.h"
#include <QPointer>
#include <QWidget>

namespace Kesh {

bool Guarded(QObject* Sender, const std::function<void()>& Action)
{
    // No exception may cross Qt's event loop; Sender may be gone once the error is known.
    const QPointer<QObject> Target = Sender;
    try {
        Action();
        return true;
    } catch (const EAbort&) {
    } catch (const Exception& Error) {
        ShowError(Error.Message, Target.data());
    }
    return false;
}

void NameAfterField(QObject* Control, const QString& FieldName)
{
    if (FieldName.isEmpty() || !IsDesigning(Control))
        return;
    auto* Widget = qobject_cast<QWidget*>(Control);
    QObject* Form = Widget ? Widget->window() : Control->parent();
    const QString Base = QString(FieldName).remove(QLatin1Char(' '));
    for (const QString& Name : {QLatin1String("x") + Base, QLatin1String("xx") + Base}) {
        QObject* Holder = Form ? Form->findChild<QObject*>(Name) : nullptr;
        if (!Holder || Holder == Control) {
            Control->setObjectName(Name);
            return;
        }
    }
}

} // namespace Kesh
