// Kesh for Qt — unit Kesh_AdoDB: the connection helpers and the datasets over Qt SQL.
#pragma once
#include <Kesh.h>
#include "platform/data.h"
#include "qx_ado_connection.h"
#include "qx_ado_datasets.h"
