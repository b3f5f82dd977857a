// Kesh Sales: the screenshot run. Without a display the application writes a PNG of its main
// window, of every registered form and of the library's dialogs, in both languages.
#pragma once
#include <QString>
#include <QStringList>
#include <functional>

class QDialog;

namespace Demo {

class TMainWindow;

/// Runs Show, which opens a modal dialog, saves the dialog to File once it is laid out and
/// rejects it. False when no dialog came or the file could not be written.
bool SaveDialog(const QString& File, const std::function<void()>& Show);

/// Runs Show, which opens a modal dialog, and saves it and the dialogs that follow it to
/// Files in turn. Prepare runs on each new dialog before it is saved (to type a search, say);
/// Advance runs after dialog Index was saved and, while files remain, must open the next
/// one (a queued click is best). When every file is written, the open dialogs are rejected.
/// False when fewer dialogs than files were seen.
bool SaveDialogChain(const QStringList& Files, const std::function<void()>& Show,
                     const std::function<void(QDialog* Dialog, int Index)>& Prepare,
                     const std::function<void(QDialog* Dialog, int Index)>& Advance);

/// Writes "main-<ar|en>.png", "<form>-<ar|en>.png" for every registered form (and what the
/// form's own Shots add) and the dialogs' screenshots into Folder, printing each path.
/// Returns the process's exit code.
int WriteScreenshots(TMainWindow& Window, const QString& Folder);

} // namespace Demo
