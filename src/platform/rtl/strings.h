// Kesh for Qt — string routines of the run-time library.
#pragma once
#include "../kesh_global.h"
#include <QFlags>
#include <QString>

namespace Kesh {

enum TReplaceFlag { rfReplaceAll = 0x1, rfIgnoreCase = 0x2 };
Q_DECLARE_FLAGS(TReplaceFlags, TReplaceFlag)

/// Removes every character <= U+0020 at both ends.
KESH_EXPORT QString Trim(const QString& S);
/// S in single quotes, each quote inside doubled: O'Brien gives 'O''Brien'.
KESH_EXPORT QString QuotedStr(const QString& S);
/// First occurrence only unless rfReplaceAll; rfIgnoreCase compares without regard to case.
KESH_EXPORT QString StringReplace(const QString& S, const QString& OldPattern, const QString& NewPattern,
                                  TReplaceFlags Flags = {});

} // namespace Kesh

Q_DECLARE_OPERATORS_FOR_FLAGS(Kesh::TReplaceFlags)
