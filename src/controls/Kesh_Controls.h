// Kesh for Qt — unit Kesh_Controls: the bilingual visual controls in one include.
#pragma once
#include "Kesh.h"
#include "platform/widgets.h"

#include "bi_caption.h"
#include "buttons.h"
#include "edit.h"
#include "time_edit.h"
#include "label.h"
#include "check_box.h"
#include "panel.h"
#include "radio_group.h"
#include "form_manager.h"
#include "lookup_combo.h"
#include "ui_forms.h"
