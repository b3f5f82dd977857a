// Kesh for Qt — SelectDate: a date picked by the user in the month view.
#pragma once
#include "platform/kesh_global.h"

namespace Kesh {

/// Lets the user pick a day in the modal month view, Gregorian or Hijri as Hijri says.
/// Date 0 (or a value that is no integer date) opens on today, in the calendar asked for;
/// any other date opens as given. True when the user confirmed: Date then holds the picked
/// day in the calendar named by Hijri. False on cancel, with Date untouched.
KESH_EXPORT bool SelectDate(int& Date, bool Hijri);

} // namespace Kesh
