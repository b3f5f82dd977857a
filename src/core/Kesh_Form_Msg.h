// Kesh for Qt — unit Kesh_Form_Msg: the message form.
#pragma once
#include "form_msg.h"
