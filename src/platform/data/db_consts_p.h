// Kesh for Qt — the classic messages of the dataset framework (private to src/platform/data).
#pragma once
#include "../exceptions.h"
#include <QString>

namespace Kesh::DBConsts {

inline QString SFieldNotFound(const QString& Name) { return QStringLiteral("Field '%1' not found").arg(Name); }
inline QString SNotEditing() { return QStringLiteral("Dataset not in edit or insert mode"); }
inline QString SDataSetClosed() { return QStringLiteral("Cannot perform this operation on a closed dataset"); }
inline QString SDataSetOpen() { return QStringLiteral("Cannot perform this operation on an open dataset"); }
inline QString SDataSetEmpty() { return QStringLiteral("Cannot perform this operation on an empty dataset"); }
inline QString SDataSetReadOnly() { return QStringLiteral("Cannot modify a read-only dataset"); }
inline QString SFieldReadOnly(const QString& Name) { return QStringLiteral("Field '%1' cannot be modified").arg(Name); }
inline QString SFieldRequired(const QString& Name) { return QStringLiteral("Field '%1' must have a value").arg(Name); }
inline QString SRecordNotFound() { return QStringLiteral("Record not found"); }
inline QString SDuplicateFieldName(const QString& Name) { return QStringLiteral("Duplicate field name '%1'").arg(Name); }
inline QString SRowNotLocated()
{
    return QStringLiteral("Row cannot be located for updating. Some values may have been changed since it was last read.");
}

[[noreturn]] inline void DatabaseError(const QString& Message) { throw EDatabaseError(Message); }

} // namespace Kesh::DBConsts
