// Kesh for Qt — TParameter and TParameters: the named parameters of an ADO command.
#pragma once
#include "data_types.h"
#include <QList>
#include <QString>
#include <QVariant>
#include <functional>
#include <memory>

namespace Kesh {

/// One `:Name` parameter of a command text.
class KESH_EXPORT TParameter
{
public:
    explicit TParameter(const QString& Name = QString()) : Name(Name) {}
    QString Name;
    /// Unassigned (an invalid QVariant) and null both bind SQL NULL.
    QVariant Value;
    TFieldType DataType = ftUnknown;
    TParameterDirection Direction = pdInput;
    int Size = 0;
};

/// The parameters of a command, in order of first appearance in its text.
class KESH_EXPORT TParameters
{
public:
    TParameters();
    ~TParameters();
    TParameters(const TParameters&) = delete;
    TParameters& operator=(const TParameters&) = delete;

    int Count() const;
    TParameter* Items(int Index) const;
    TParameter* operator[](int Index) const { return Items(Index); }
    /// nullptr when there is none (case-insensitive).
    TParameter* FindParam(const QString& Name) const;
    /// Raises EDatabaseError "Parameter 'X' not found".
    TParameter* ParamByName(const QString& Name) const;
    TParameter* AddParameter(const QString& Name);
    void Clear();
    /// The `:name` parameters of SQL, outside quotes and comments, `::` casts excluded.
    static QStringList ParseSQL(const QString& SQL);
    /// SQL with each of those parameters replaced by Literal(name) (a quoted value).
    static QString Substitute(const QString& SQL, const std::function<QString(const QString&)>& Literal);
    /// Makes the list match SQL's parameters; a parameter that stays keeps its value.
    void Refresh(const QString& SQL);

private:
    QList<std::shared_ptr<TParameter>> m_items;
};

} // namespace Kesh
