// Kesh for Qt — keeping library errors inside the data-aware controls' event handlers.
#pragma once
#include <QObject>
#include <functional>

namespace Kesh {

/// Runs Action; a silent abort ends it quietly, any other library error is shown with
/// ShowError (Sender gets the focus back). True when Action ran to its end.
bool Guarded(QObject* Sender, const std::function<void()>& Action);

/// In the form designer, names Control after its field: "x" and the field name without
/// blanks, or "xx" and the same when another object of the form has that name; otherwise
/// (or outside the designer) the name stays.
void NameAfterField(QObject* Control, const QString& FieldName);

} // namespace Kesh
