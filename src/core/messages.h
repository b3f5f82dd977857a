// Kesh for Qt — user-facing messages.
#pragma once
#include "platform/kesh_global.h"
#include <QString>

class QObject;

namespace Kesh {

/// Shows an error; the silent-abort text "Operation aborted" is never shown.
KESH_EXPORT void ShowError(const QString& Msg, QObject* Sender = nullptr);
/// ShowError, then the silent abort.
[[noreturn]] KESH_EXPORT void RaiseError(const QString& Msg, QObject* Sender = nullptr);

} // namespace Kesh
