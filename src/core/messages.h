// Kesh for Qt — user-facing messages: information, errors and yes/no questions.
#pragma once
#include "platform/kesh_global.h"
#include <QString>

class QObject;

namespace Kesh {

// Every routine shows a modal TKeshFormMsg in the application's language and, while
// Logging is on, first appends "<routine>: " + Msg to the log file. Without a widget
// application (QApplication) the text goes to qWarning instead, and Sure and SelectYes
// answer DefaultYes, as Enter would.
//
// Sender of ShowMsg, ShowError and RaiseError gets the focus back when the form closes:
// a TField through its FocusControl(), a QWidget through setFocus(); anything else is ignored.

/// Shows an information message.
KESH_EXPORT void ShowMsg(const QString& Msg, QObject* Sender = nullptr);
/// Shows an error; the silent-abort text "Operation aborted" (in any letter case) is never shown nor logged.
KESH_EXPORT void ShowError(const QString& Msg, QObject* Sender = nullptr);
/// ShowError, then the silent abort (EAbort), so the current handler ends without a second message.
[[noreturn]] KESH_EXPORT void RaiseError(const QString& Msg, QObject* Sender = nullptr);

/// Asks "Are you sure? " + Msg with Yes and No; true when the user chose Yes.
/// DefaultYes chooses the button that has the focus (and that Enter presses).
/// The form is kept, as every question's form, until the QApplication is destroyed.
KESH_EXPORT bool Sure(const QString& Msg, bool DefaultYes);
/// Asks Msg with Yes and No; as Sure without the "Are you sure?" prefix.
KESH_EXPORT bool SelectYes(const QString& Msg, bool DefaultYes);

} // namespace Kesh
