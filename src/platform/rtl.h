// Kesh for Qt — the run-time routines of dates, numbers, formats and strings.
#pragma once
#include "rtl/currency.h"
#include "rtl/datetime.h"
#include "rtl/format_settings.h"
#include "rtl/numbers.h"
#include "rtl/strings.h"
