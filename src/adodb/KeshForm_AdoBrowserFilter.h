// Kesh for Qt — unit KeshForm_AdoBrowserFilter: the record browser's filter dialog.
#pragma once
#include "browser_filter_form.h"
