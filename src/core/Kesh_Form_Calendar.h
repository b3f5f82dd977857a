// Kesh for Qt — unit Kesh_Form_Calendar: the calendar picker.
#pragma once
#include "form_calendar.h"
#include "select_date.h"
