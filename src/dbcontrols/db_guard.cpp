#include "db_guard_p.h"

#include "messages.h"
#include "platform/exceptions.h"
#include <QPointer>

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

} // namespace Kesh
