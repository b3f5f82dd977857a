// Kesh for Qt — unit KeshForm_AdoBrowser: the record browser's form.
#pragma once
#include "browser_form.h"
