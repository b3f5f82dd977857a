// Kesh for Qt — pattern replacement and the search key of a text.
#pragma once
#include "platform/kesh_global.h"
#include "platform/rtl/strings.h"
#include <QString>
#include <QStringList>

namespace Kesh {

KESH_EXPORT QString Replace(const QString& S, const QString& OldPattern, const QString& NewPattern,
                            TReplaceFlags Flags = {});
/// Applies every pattern in turn; a count mismatch shows an error and aborts.
KESH_EXPORT QString Replace(const QString& S, const QStringList& Patterns, const QStringList& Data,
                            TReplaceFlags Flags = {});
KESH_EXPORT QString StringFilter(const QString& S);

} // namespace Kesh
