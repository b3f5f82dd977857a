#include "provider_paging_p.h"
#include "data_packet.h"
#include "provider.h"
#include "../data/server_cursor_p.h"
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSqlDriver>

namespace Kesh::Detail {

namespace {

const QLatin1String KeysetPrefix("k");
const QLatin1String Alias("kesh_page");

[[noreturn]] void BadToken() { throw EProviderRequestError(QStringLiteral("Invalid paging token")); }

// Types whose values compare in the database exactly as they travel in a token.
bool Orderable(TFieldType T)
{
    switch (T) {
    case ftString: case ftWideString: case ftFixedChar: case ftFixedWideChar: case ftGuid:
    case ftSmallint: case ftInteger: case ftWord: case ftAutoInc: case ftLargeint: case ftBoolean:
        return true;
    default:
        return false;
    }
}

// The databases whose LIMIT/OFFSET and NULL order the wrapper knows.
bool Wrappable(const QSqlDriver* Driver)
{
    return Driver && (Driver->dbmsType() == QSqlDriver::SQLite || Driver->dbmsType() == QSqlDriver::PostgreSQL);
}

QString Unquote(const QString& Ident)
{
    if (Ident.size() >= 2 && (Ident.front() == QLatin1Char('"') || Ident.front() == QLatin1Char('`')
                              || Ident.front() == QLatin1Char('[')))
        return Ident.mid(1, Ident.size() - 2);
    return Ident;
}

// The column of Fields a name of the ORDER BY stands for; -1 when none, or when the name
// could be one that the dataset renamed because the result held it twice.
int ColumnNamed(const TFieldDefs& Fields, const QString& Ident)
{
    const QString Name = Unquote(Ident);
    int Found = -1;
    for (int c = 0; c < Fields.Count(); ++c)
        if (Fields[c].Name.compare(Name, Qt::CaseInsensitive) == 0) {
            if (Found >= 0)
                return -1;
            Found = c;
        }
    if (Found < 0)
        return -1;
    static const QRegularExpression Renamed(QStringLiteral("^(.+)_\\d+$"));
    const QRegularExpressionMatch M = Renamed.match(Fields[Found].Name);
    if (M.hasMatch() && Fields.IndexOf(M.captured(1)) >= 0)
        return -1;
    return Found;
}

// Top-level (outside parentheses) start of the last ORDER BY in Stripped, or -1.
int TopLevelOrderBy(const QString& Stripped, int& ListStart)
{
    static const QRegularExpression OrderBy(QStringLiteral("\\bORDER\\s+BY\\b"), QRegularExpression::CaseInsensitiveOption);
    int Found = -1;
    auto It = OrderBy.globalMatch(Stripped);
    while (It.hasNext()) {
        const QRegularExpressionMatch M = It.next();
        int Depth = 0;
        for (int i = 0; i < M.capturedStart(); ++i)
            Depth += Stripped[i] == QLatin1Char('(') ? 1 : Stripped[i] == QLatin1Char(')') ? -1 : 0;
        if (Depth == 0) {
            Found = int(M.capturedStart());
            ListStart = int(M.capturedEnd());
        }
    }
    return Found;
}

// Whether a qualified name (t.col) in the ORDER BY can only mean the result's column of
// that name: the command reads one table.
bool OneTable(const QString& Stripped)
{
    static const QRegularExpression From(QStringLiteral("\\bFROM\\b"), QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression Join(QStringLiteral("\\bJOIN\\b|\\bUNION\\b|\\bINTERSECT\\b|\\bEXCEPT\\b"),
                                         QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression FromList(QStringLiteral("\\bFROM\\b(.*?)(?:\\bWHERE\\b|\\bGROUP\\b|\\bORDER\\b|\\bHAVING\\b|$)"),
                                             QRegularExpression::CaseInsensitiveOption
                                                 | QRegularExpression::DotMatchesEverythingOption);
    return Stripped.count(From) == 1 && !Join.match(Stripped).hasMatch()
           && !FromList.match(Stripped).captured(1).contains(QLatin1Char(','));
}

} // namespace

TPager::TPager(const TFieldDefs& Fields, const QVector<int>& Keys, const QSqlDriver* Driver, int Count,
               const QString& Token)
    : m_fields(Fields), m_keys(Keys), m_driver(Driver), m_count(Count)
{
    if (Token.isEmpty())
        return;
    if (Token.startsWith(KeysetPrefix)) {
        const QByteArray Json = QByteArray::fromBase64(Token.mid(KeysetPrefix.size()).toLatin1(),
                                                       QByteArray::Base64UrlEncoding | QByteArray::AbortOnBase64DecodingErrors);
        // A token is a flat array: anything nested is refused before it is parsed.
        if (Json.isEmpty() || DataPacket::NestingDepth(Json, 2) != 1)
            BadToken();
        QJsonParseError Error;
        const QJsonDocument Doc = QJsonDocument::fromJson(Json, &Error);
        if (Error.error != QJsonParseError::NoError || !Doc.isArray() || Doc.array().isEmpty())
            BadToken();
        m_after = Doc.array();
        m_keysetToken = true;
        return;
    }
    bool Ok = false;
    m_offset = Token.toInt(&Ok);
    if (!Ok || m_offset < 0)
        BadToken();
}

bool TPager::ParseOrder(const QString& Select, const TFieldDefs& Fields, QList<TOrderItem>& Order, bool& HasOrder)
{
    Order.clear();
    const QString Stripped = StripLiterals(Select);
    int ListStart = 0;
    HasOrder = TopLevelOrderBy(Stripped, ListStart) >= 0;
    if (!HasOrder)
        return false;
    const QString List = Stripped.mid(ListStart);
    if (List.contains(QLatin1Char('(')) || List.contains(QLatin1Char(')')))
        return false;
    static const QString Ident = QStringLiteral("(?:\"[^\"]+\"|`[^`]+`|\\[[^\\]]+\\]|[A-Za-z_][\\w$]*)");
    static const QRegularExpression Item(
        QStringLiteral("^\\s*(?:(%1)\\s*\\.\\s*)?(%1|\\d+)\\s*(ASC|DESC)?\\s*(?:NULLS\\s+(FIRST|LAST))?\\s*$").arg(Ident),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression Keyword(QStringLiteral("^(?:LIMIT|OFFSET|FETCH|FOR|COLLATE|ASC|DESC|NULLS)$"),
                                            QRegularExpression::CaseInsensitiveOption);
    for (const QString& Part : List.split(QLatin1Char(','))) {
        const QRegularExpressionMatch M = Item.match(Part);
        if (!M.hasMatch() || Keyword.match(M.captured(2)).hasMatch())
            return false;
        TOrderItem I;
        bool Number = false;
        const int Position = M.captured(2).toInt(&Number);
        if (Number)
            I.Column = Position >= 1 && Position <= Fields.Count() ? Position - 1 : -1;
        else if (M.captured(1).isEmpty() || OneTable(Stripped))
            I.Column = ColumnNamed(Fields, M.captured(2));
        if (I.Column < 0)
            return false;
        I.Descending = M.captured(3).compare(QLatin1String("DESC"), Qt::CaseInsensitive) == 0;
        if (!M.captured(4).isEmpty())
            I.NullsFirst = M.captured(4).compare(QLatin1String("FIRST"), Qt::CaseInsensitive) == 0 ? 1 : 0;
        Order << I;
    }
    return !Order.isEmpty();
}

bool TPager::PlanKeyset(const QString& Select)
{
    if (m_keys.isEmpty())
        return false;
    bool HasOrder = false;
    if (!ParseOrder(Select, m_fields, m_order, HasOrder) && HasOrder)
        return false;
    for (int Key : std::as_const(m_keys)) {
        bool Listed = false;
        for (const TOrderItem& I : std::as_const(m_order))
            Listed = Listed || I.Column == Key;
        if (!Listed) {
            TOrderItem I;
            I.Column = Key;
            m_order << I;
        }
    }
    const bool Postgres = m_driver->dbmsType() == QSqlDriver::PostgreSQL;
    for (TOrderItem& I : m_order) {
        if (I.Column >= m_fields.Count() || !Orderable(m_fields[I.Column].DataType))
            return false;
        // Where NULLs sort when the command does not say: first ascending on SQLite, last
        // on PostgreSQL.
        if (I.NullsFirst < 0)
            I.NullsFirst = Postgres ? I.Descending : !I.Descending;
    }
    return true;
}

// (c1 after v1) OR (c1 = v1 AND c2 after v2) OR …, NULLs placed as the ORDER BY places them.
QString TPager::KeysetWhere(QVariantMap& Binds) const
{
    if (m_after.size() != m_order.size())
        BadToken();
    QStringList Equal, Or;
    for (int i = 0; i < m_order.size(); ++i) {
        const TOrderItem& I = m_order[i];
        const TFieldDef& F = m_fields[I.Column];
        QVariant Value;
        if (!DataPacket::DecodeValue(m_after.at(i), F.DataType, Value))
            BadToken();
        const QString Column = Alias + QLatin1Char('.') + m_driver->escapeIdentifier(F.Name, QSqlDriver::FieldName);
        QString Placeholder;
        if (!Value.isNull()) {
            Placeholder = QStringLiteral("kesh_page_%1").arg(i);
            Binds.insert(Placeholder, Value);
            Placeholder.prepend(QLatin1Char(':'));
        }
        QString After;
        if (Value.isNull()) {
            if (I.NullsFirst)
                After = Column + QLatin1String(" IS NOT NULL");
        } else {
            const QString Beyond = Column + (I.Descending ? QLatin1String(" < ") : QLatin1String(" > ")) + Placeholder;
            After = I.NullsFirst ? Beyond : QStringLiteral("(%1 IS NULL OR %2)").arg(Column, Beyond);
        }
        if (!After.isEmpty())
            Or << QStringList(Equal + QStringList{After}).join(QLatin1String(" AND "));
        Equal << (Value.isNull() ? Column + QLatin1String(" IS NULL") : Column + QLatin1String(" = ") + Placeholder);
    }
    return Or.isEmpty() ? QStringLiteral("1 = 0") : QLatin1Char('(') + Or.join(QLatin1String(") OR (")) + QLatin1Char(')');
}

QString TPager::Wrap(const QString& Select, QVariantMap& Binds, bool& UseCursor)
{
    m_kind = Scan;
    m_order.clear();
    if (!Wrappable(m_driver) || !TServerCursor::Suits(StripLiterals(Select))) {
        if (m_keysetToken)
            BadToken();
        return Select;
    }
    UseCursor = false;  // one packet, or every row: read with one query
    m_kind = PlanKeyset(Select) ? Keyset : Offset;
    if (m_keysetToken && m_kind != Keyset)
        BadToken();
    QString Sql = QStringLiteral("SELECT * FROM (%1) %2").arg(Select, Alias);
    if (m_kind == Keyset) {
        if (m_keysetToken)
            Sql += QLatin1String(" WHERE ") + KeysetWhere(Binds);
        QStringList Items;
        for (const TOrderItem& I : std::as_const(m_order))
            Items << Alias + QLatin1Char('.') + m_driver->escapeIdentifier(m_fields[I.Column].Name, QSqlDriver::FieldName)
                         + (I.Descending ? QLatin1String(" DESC") : QLatin1String(" ASC"))
                         + (I.NullsFirst ? QLatin1String(" NULLS FIRST") : QLatin1String(" NULLS LAST"));
        Sql += QLatin1String(" ORDER BY ") + Items.join(QLatin1String(", "));
    } else if (m_count < 0 && m_offset == 0) {
        return Select;
    }
    // The row after the packet tells whether another one follows.
    if (m_count >= 0)
        Sql += QStringLiteral(" LIMIT %1").arg(qint64(m_count) + 1);
    else if (m_offset > 0 && m_driver->dbmsType() == QSqlDriver::SQLite)
        Sql += QLatin1String(" LIMIT -1");
    if (m_offset > 0)
        Sql += QStringLiteral(" OFFSET %1").arg(m_offset);
    return Sql;
}

QString TPager::NextToken(const TRecordValues& Last, int Sent) const
{
    if (m_kind != Keyset)
        return QString::number(qint64(m_offset) + Sent);
    QJsonArray Values;
    for (const TOrderItem& I : m_order)
        Values.append(DataPacket::EncodeValue(Last.value(I.Column), m_fields[I.Column].DataType));
    return KeysetPrefix + QString::fromLatin1(QJsonDocument(Values).toJson(QJsonDocument::Compact)
                                                  .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
}

} // namespace Kesh::Detail
