#include "field_defs.h"
#include "db_consts_p.h"

namespace Kesh {

TFieldDef& TFieldDefs::Add(const QString& Name, TFieldType DataType, int Size, bool Required)
{
    TFieldDef Def;
    Def.Name = Name;
    Def.DataType = DataType;
    Def.Size = Size;
    Def.Required = Required;
    Append(Def);
    return m_defs.last();
}

void TFieldDefs::Append(const TFieldDef& Def)
{
    if (IndexOf(Def.Name) >= 0)
        DBConsts::DatabaseError(DBConsts::SDuplicateFieldName(Def.Name));
    m_defs.append(Def);
}

int TFieldDefs::IndexOf(const QString& Name) const
{
    for (int i = 0; i < m_defs.size(); ++i)
        if (m_defs[i].Name.compare(Name, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

} // namespace Kesh
