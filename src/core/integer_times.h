// Kesh for Qt — integer times (hhmm) of a day.
#pragma once
#include "platform/kesh_global.h"
#include "platform/rtl/datetime.h"
#include <QString>

namespace Kesh {

KESH_EXPORT int TimeEncode(int Hours, int Minutes);
KESH_EXPORT void TimeDecode(int T, int& Hours, int& Minutes);
KESH_EXPORT int TimeToMinIndex(int T);
KESH_EXPORT int MinIndexToTime(int I);
KESH_EXPORT int TimeToInt(TDateTime T);
KESH_EXPORT TDateTime IntToTime(int T);
/// Hours and minutes separated by '.' or ':'; −1 when the text does not parse.
KESH_EXPORT int StringToTime(const QString& S);
KESH_EXPORT int MinutesBetween(int FromTime, int ToTime);
KESH_EXPORT int TimeBetween(int FromTime, int ToTime);

} // namespace Kesh
