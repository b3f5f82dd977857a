// Kesh for Qt — the dataset framework: datasets, fields, data sources and links, the
// table model for grids, and the ADO connection and datasets over Qt SQL.
#pragma once
#include "data/data_types.h"
#include "data/field_defs.h"
#include "data/fields.h"
#include "data/dataset.h"
#include "data/data_source.h"
#include "data/client_dataset.h"
#include "data/dataset_model.h"
#include "data/dataset_totals.h"
#include "data/ado_connection.h"
#include "data/ado_parameters.h"
#include "data/ado_dataset.h"
