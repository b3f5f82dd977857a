// Kesh for Qt — how a provider reads one packet of rows (private to src/platform/remote).
#pragma once
#include "../data/client_dataset.h"
#include "../data/field_defs.h"
#include <QJsonArray>
#include <QVariantMap>
#include <QVector>

class QSqlDriver;

namespace Kesh::Detail {

// Reads a packet of a provider's SELECT at a cost that grows with the packet, not with the
// rows before it. The SELECT is wrapped where it can be:
//  - Keyset: rows in the order of the command's ORDER BY (plain columns of the result) and
//    then the base table's key, each packet starting after the last row of the previous
//    one, whose order values the token carries: SELECT * FROM (cmd) WHERE after-last
//    ORDER BY … LIMIT count + 1, the values bound.
//  - Offset: no usable order or key: LIMIT count + 1 OFFSET n pushed into the database.
//  - Scan: a command that cannot be wrapped is read as it stands, skipping n rows.
// The token alone says where the next packet starts, so any server instance answers it.
class TPager
{
public:
    enum TKind { Scan, Offset, Keyset };

    // Fields: the provider's columns; Keys: those of the base table's primary key.
    // Raises EProviderRequestError for a token that is not one of ours.
    TPager(const TFieldDefs& Fields, const QVector<int>& Keys, const QSqlDriver* Driver, int Count, const QString& Token);

    // The SELECT to run instead of Select (TADODataSet's select wrap).
    QString Wrap(const QString& Select, QVariantMap& Binds, bool& UseCursor);

    TKind Kind() const { return m_kind; }
    // Rows of the opened result to skip before the packet.
    int Skip() const { return m_kind == Scan ? m_offset : 0; }
    // The token of the packet after one that ends with Last.
    QString NextToken(const TRecordValues& Last, int Sent) const;

    // The order of a SELECT's result as its top-level ORDER BY gives it in columns of
    // Fields (position, descending, nulls first: -1 unsaid, 0 last, 1 first); false when
    // it has none or one that is not plain columns.
    struct TOrderItem
    {
        int Column = -1;
        bool Descending = false;
        int NullsFirst = -1;
    };
    static bool ParseOrder(const QString& Select, const TFieldDefs& Fields, QList<TOrderItem>& Order, bool& HasOrder);

private:
    bool PlanKeyset(const QString& Stripped);
    QString KeysetWhere(QVariantMap& Binds) const;

    TFieldDefs m_fields;
    QVector<int> m_keys;
    const QSqlDriver* m_driver;
    int m_count;
    int m_offset = 0;
    bool m_keysetToken = false;
    QJsonArray m_after;  // the order values of the last row sent (keyset token)
    TKind m_kind = Scan;
    QList<TOrderItem> m_order;
};

} // namespace Kesh::Detail
