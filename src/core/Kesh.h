// Kesh for Qt — unit Kesh: everything of the core in one include.
#pragma once
#include "platform/application.h"
#include "platform/exceptions.h"
#include "platform/rtl.h"

#include "conversions.h"
#include "globals.h"
#include "log_file.h"
#include "messages.h"
#include "integer_dates.h"
#include "integer_times.h"
#include "rounding.h"
#include "number_words.h"
#include "text_utils.h"
