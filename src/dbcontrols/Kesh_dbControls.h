// Kesh for Qt — unit Kesh_dbControls: data-aware buttons, integer date and time fields,
// data-aware edits, labels, choice controls, image and panel.
#pragma once
#include "integer_fields.h"
#include "db_buttons.h"
#include "db_edits.h"
#include "db_choice.h"
#include "db_image_panel.h"
