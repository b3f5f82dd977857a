// Kesh for Qt — keeping library errors inside the data-aware controls' event handlers.
#pragma once
#include <QObject>
#include <functional>

namespace Kesh {

/// Runs Action; a silent abort ends it quietly, any other library error is shown with
/// ShowError (Sender gets the focus back). True when Action ran to its end.
bool Guarded(QObject* Sender, const std::function<void()>& Action);

} // namespace Kesh
