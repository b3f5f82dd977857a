// Kesh for Qt — the package globals that locate the host application's files.
#pragma once
#include "platform/kesh_global.h"
#include <QString>

namespace Kesh {

extern KESH_EXPORT QString ProgPath;    ///< folder of the executable, with trailing separator
extern KESH_EXPORT QString ReportPath;  ///< ProgPath + "Reports/"
extern KESH_EXPORT QString ConfigFile;  ///< the executable's path with ".ini"
extern KESH_EXPORT QString AppName;     ///< the executable's name without folder and extension
extern KESH_EXPORT QString LogFilename; ///< the executable's path with ".LOG"
extern KESH_EXPORT bool Logging;        ///< message routines log when set; starts false

/// The unit's load-time set-up: computes the globals from Application()->ExeName(), sets the
/// keyboard layouts and the time format. Runs when the application object is constructed;
/// a host that changes ExeName afterwards may call it again.
KESH_EXPORT void InitializeKesh();

} // namespace Kesh
