// Kesh for Qt — rounding by a house rule.
#pragma once
#include "platform/kesh_global.h"

namespace Kesh {

enum TxRoundTypes { RtNormal, RtNone, RtNoFrac, RtNearHaf, RtNearOne };

KESH_EXPORT long double RoundNumber(long double Value, int Decimals, TxRoundTypes RoundType);

} // namespace Kesh
