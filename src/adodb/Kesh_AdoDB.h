// Kesh for Qt — unit Kesh_AdoDB: the connection helpers, the datasets, the record browser
// and the drop lists over Qt SQL.
#pragma once
#include <Kesh.h>
#include "platform/data.h"
#include "qx_ado_connection.h"
#include "qx_ado_datasets.h"
#include "qx_ado_browser.h"
#include "qx_ado_drop_list.h"
#include "qx_provider_list.h"
