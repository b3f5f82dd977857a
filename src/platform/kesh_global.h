// Kesh for Qt — export macro shared by every public header.
#pragma once
#include <QtCore/qglobal.h>

#if defined(KESH_BUILDING_LIBRARY)
#define KESH_EXPORT Q_DECL_EXPORT
#else
#define KESH_EXPORT Q_DECL_IMPORT
#endif
