// Kesh for Qt — the form manager's properties ("QxForm_Caption_a" …) on every form edited
// in Qt Designer, ready to fill in without adding them by hand.
#pragma once
#include <QList>
#include <QPair>
#include <QVariant>

class QDesignerFormEditorInterface;
class QExtensionManager;
class QWidget;

namespace KeshDesigner {

/// The form manager's properties a form carries, with the empty value each starts from
/// (an empty one configures nothing: a form whose are all empty gets no manager).
QList<QPair<QString, QVariant>> FormProperties();

/// Adds those the form (Designer's main container) does not have yet, as dynamic
/// properties through Designer's sheet; a value already there stays. The number added.
int AddFormProperties(QExtensionManager* Manager, QWidget* Form);

/// Gives every form Designer opens or creates from now on those properties (once per
/// form editor).
void WatchFormWindows(QDesignerFormEditorInterface* Core);

} // namespace KeshDesigner
