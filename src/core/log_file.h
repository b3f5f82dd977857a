// Kesh for Qt — the plain-text log file beside the executable.
#pragma once
#include "platform/kesh_global.h"
#include <QString>

namespace Kesh {

/// Appends one line, indented by the current depth, to LogFilename.
KESH_EXPORT void LogAdd(const QString& S);
/// Logs S (when not empty) and indents the following lines by four more blanks.
KESH_EXPORT void LogStart(const QString& S);
/// Takes four blanks of indentation back, never below zero.
KESH_EXPORT void LogEnd();

} // namespace Kesh
