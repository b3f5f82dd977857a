// Kesh for Qt — the library's compiled-in resources (glyphs and pictures under :/kesh/).
#pragma once
#include "platform/kesh_global.h"

namespace Kesh {

/// Makes sure the resources of kesh.qrc are registered. A shared build registers them
/// when it loads; a static build needs this call. Cheap and safe to call any number of times.
KESH_EXPORT void InitResources();

} // namespace Kesh
