#include "ado_parameters.h"
#include "db_consts_p.h"

namespace Kesh {

TParameters::TParameters() = default;
TParameters::~TParameters() = default;

int TParameters::Count() const { return int(m_items.size()); }

TParameter* TParameters::Items(int Index) const
{
    return Index >= 0 && Index < m_items.size() ? m_items[Index].get() : nullptr;
}

TParameter* TParameters::FindParam(const QString& Name) const
{
    for (const auto& P : m_items)
        if (P->Name.compare(Name, Qt::CaseInsensitive) == 0)
            return P.get();
    return nullptr;
}

TParameter* TParameters::ParamByName(const QString& Name) const
{
    TParameter* P = FindParam(Name);
    if (!P)
        DBConsts::DatabaseError(QStringLiteral("Parameter '%1' not found").arg(Name));
    return P;
}

TParameter* TParameters::AddParameter(const QString& Name)
{
    m_items.append(std::make_shared<TParameter>(Name));
    return m_items.last().get();
}

void TParameters::Clear() { m_items.clear(); }

namespace {

// Calls Found(start, length, name) for each `:name` of SQL outside quotes and comments.
template <typename F>
void ScanParameters(const QString& SQL, F Found)
{
    const int N = int(SQL.size());
    auto IsNameChar = [](QChar C) { return C.isLetterOrNumber() || C == QLatin1Char('_'); };
    int i = 0;
    while (i < N) {
        const QChar C = SQL[i];
        if (C == QLatin1Char('\'') || C == QLatin1Char('"') || C == QLatin1Char('`') || C == QLatin1Char('[')) {
            // Quoted text and identifiers; a doubled quote stays inside.
            const QChar Close = C == QLatin1Char('[') ? QLatin1Char(']') : C;
            ++i;
            while (i < N) {
                if (SQL[i] == Close) {
                    if (i + 1 < N && SQL[i + 1] == Close && Close != QLatin1Char(']')) {
                        i += 2;
                        continue;
                    }
                    break;
                }
                ++i;
            }
            ++i;
        } else if (C == QLatin1Char('-') && i + 1 < N && SQL[i + 1] == QLatin1Char('-')) {
            while (i < N && SQL[i] != QLatin1Char('\n'))
                ++i;
        } else if (C == QLatin1Char('/') && i + 1 < N && SQL[i + 1] == QLatin1Char('*')) {
            const int End = SQL.indexOf(QLatin1String("*/"), i + 2);
            i = End < 0 ? N : End + 2;
        } else if (C == QLatin1Char(':')) {
            if (i + 1 < N && SQL[i + 1] == QLatin1Char(':')) {  // a PostgreSQL cast
                i += 2;
                continue;
            }
            int j = i + 1;
            while (j < N && IsNameChar(SQL[j]))
                ++j;
            const QString Name = SQL.mid(i + 1, j - i - 1);
            if (!Name.isEmpty() && !Name[0].isDigit())
                Found(i, j - i, Name);
            i = std::max(j, i + 1);
        } else {
            ++i;
        }
    }
}

} // namespace

QStringList TParameters::ParseSQL(const QString& SQL)
{
    QStringList Names;
    ScanParameters(SQL, [&](int, int, const QString& Name) {
        if (!Names.contains(Name, Qt::CaseInsensitive))
            Names << Name;
    });
    return Names;
}

QString TParameters::Substitute(const QString& SQL, const std::function<QString(const QString&)>& Literal)
{
    QString R;
    int Done = 0;
    ScanParameters(SQL, [&](int Start, int Length, const QString& Name) {
        R += QStringView(SQL).mid(Done, Start - Done);
        R += Literal(Name);
        Done = Start + Length;
    });
    R += QStringView(SQL).mid(Done);
    return R;
}

void TParameters::Refresh(const QString& SQL)
{
    QList<std::shared_ptr<TParameter>> Items;
    for (const QString& Name : ParseSQL(SQL)) {
        std::shared_ptr<TParameter> Kept;
        for (const auto& P : m_items)
            if (P->Name.compare(Name, Qt::CaseInsensitive) == 0)
                Kept = P;
        Items.append(Kept ? Kept : std::make_shared<TParameter>(Name));
    }
    m_items = Items;
}

} // namespace Kesh
