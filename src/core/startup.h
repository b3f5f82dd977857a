// Kesh for Qt — start-up registration, starting programs, bringing forms to the front.
#pragma once
#include "platform/kesh_global.h"
#include <QString>

namespace Kesh {

/// Registers Path to start when the user logs on: at every log-on, or at the next one only
/// when Once. On Windows a value Name = "\"Path\"" under the current user's
/// Software\Microsoft\Windows\CurrentVersion\Run (or RunOnce) key; elsewhere the XDG autostart
/// entry $XDG_CONFIG_HOME/autostart/<Name>.desktop (~/.config by default), whose command
/// deletes the entry before starting the program when Once. A place that cannot be written,
/// or an empty Name, is skipped without a message.
KESH_EXPORT void RunOnStartup(const QString& Name, const QString& Path, bool Once);

/// The XDG autostart entry that RunOnStartup writes for Name (empty on Windows and for an
/// empty Name).
KESH_EXPORT QString StartupEntryPath(const QString& Name);

/// Starts FileName with the blank-separated Params (quoting as a command line). With Wait,
/// blocks until the program ends and returns its exit code; without Wait returns -1 at once.
/// A program that cannot be started, or that crashes, gives -1.
KESH_EXPORT int Execute(const QString& FileName, const QString& Params, bool Wait);

/// Brings the application's top-level window (or MDI child) whose objectName is FormName,
/// compared without regard to case, to the front and activates it; false when there is none.
KESH_EXPORT bool FormLoaded(const QString& FormName);

} // namespace Kesh
