// Kesh for Qt — internal: the icon buttons of the browser's tool bars.
#pragma once
#include <QKeySequence>
#include <QString>

class QWidget;

namespace Kesh {

class TQxSpeedButton;

/// A flat tool-bar button named Name showing the library icon Icon (":/kesh/<Icon>.svg"),
/// with its Arabic and English captions and hints and the hot key Key.
TQxSpeedButton* NewBrowserButton(QWidget* Parent, const char* Name, const char* Icon, const QString& CaptionA,
                                 const QString& CaptionE, const QString& HintA, const QString& HintE,
                                 const QKeySequence& Key);

} // namespace Kesh
