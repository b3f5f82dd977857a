// Kesh for Qt — unit Kesh_dbGrid: the data grid, its columns, multi-selection and footer totals.
#pragma once
#include "bookmark_list.h"
#include "db_grid.h"
#include "grid_columns.h"
#include "grid_data_link.h"
#include "grid_footer.h"
#include "grid_types.h"
