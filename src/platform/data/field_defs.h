// Kesh for Qt — column definitions of a dataset (what the rows hold, before any TField exists).
#pragma once
#include "data_types.h"
#include <QList>
#include <QString>

namespace Kesh {

/// One column of a dataset's rows.
struct KESH_EXPORT TFieldDef
{
    QString Name;
    TFieldType DataType = ftUnknown;
    int Size = 0;            ///< characters of a string column, bytes of a binary one; 0 when unknown
    int Precision = 0;       ///< digits of a BCD column; 0 when unknown
    bool Required = false;   ///< the column refuses nulls
    bool ReadOnly = false;   ///< the column cannot be written (computed, or not in the base table)
    bool AutoValue = false;  ///< the server fills the column (auto-increment, serial)
};

/// The ordered column list of a dataset; names are unique without regard to case.
class KESH_EXPORT TFieldDefs
{
public:
    /// Appends a column; raises EDatabaseError "Duplicate field name 'X'" for a name already used.
    TFieldDef& Add(const QString& Name, TFieldType DataType, int Size = 0, bool Required = false);
    void Append(const TFieldDef& Def);
    void Clear() { m_defs.clear(); }
    int Count() const { return int(m_defs.size()); }
    bool IsEmpty() const { return m_defs.isEmpty(); }
    const TFieldDef& operator[](int Index) const { return m_defs[Index]; }
    TFieldDef& operator[](int Index) { return m_defs[Index]; }
    /// Index of the column named Name (case-insensitive), or -1.
    int IndexOf(const QString& Name) const;
    const QList<TFieldDef>& Items() const { return m_defs; }

private:
    QList<TFieldDef> m_defs;
};

} // namespace Kesh
