#include "resources.h"

#include <QtCore/qglobal.h>

// Q_INIT_RESOURCE declares the rcc function at the scope where it is used, which must be
// the global one.
static void InitKeshQrc() { Q_INIT_RESOURCE(kesh); }

namespace Kesh {

void InitResources()
{
    static const bool Done = (InitKeshQrc(), true);
    Q_UNUSED(Done)
}

} // namespace Kesh
