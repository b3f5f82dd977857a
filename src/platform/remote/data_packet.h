// Kesh for Qt — data packets: a dataset's columns and rows, a client's change log and
// typed parameter values, as JSON that any server instance can read back.
#pragma once
#include "../data/client_dataset.h"
#include "../data/field_defs.h"
#include <QBitArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QStringList>

namespace Kesh {

/// Columns and rows of one packet. NextToken is empty when no rows remain; otherwise it
/// asks the provider for the rows that follow.
struct KESH_EXPORT TDataPacket
{
    TFieldDefs Fields;
    /// Columns that find a row in the base table (its primary key).
    QStringList KeyFields;
    QList<TRecordValues> Rows;
    QString NextToken;
};

/// One change of a client's log as a provider applies it. OldValues holds the row as the
/// client read it (modify, delete), NewValues the row as the client left it (insert,
/// modify). A handler may change NewValues before the row is written.
struct KESH_EXPORT TDeltaRecord
{
    TUpdateKind UpdateKind = ukModify;
    TRecordValues OldValues;
    TRecordValues NewValues;
    /// Columns of the row, shared by every record of one delta.
    const TFieldDefs* Fields = nullptr;

    /// Columns whose new value differs from the old one (every non-null column of an insert).
    QBitArray Changed() const;
    /// The value of a column by name (case-insensitive); raises for an unknown name.
    QVariant OldValue(const QString& FieldName) const;
    QVariant NewValue(const QString& FieldName) const;
    void SetNewValue(const QString& FieldName, const QVariant& Value);
    int IndexOf(const QString& FieldName) const;
};

/// One typed parameter value as a client sends it.
struct KESH_EXPORT TPacketParam
{
    QString Name;
    TFieldType DataType = ftUnknown;
    QVariant Value;
};

/// Readers never trust their input: every reader checks shapes, types and counts and
/// returns false with a message instead of raising.
namespace DataPacket {

/// Decimals and 64-bit integers as text (exact), dates and times ISO 8601, binary base64.
KESH_EXPORT QJsonValue EncodeValue(const QVariant& Value, TFieldType Type);
/// The value of a column of Type; false when Json does not hold one (wrong kind, bad
/// number, date or base64).
KESH_EXPORT bool DecodeValue(const QJsonValue& Json, TFieldType Type, QVariant& Value);
KESH_EXPORT QString FieldTypeName(TFieldType Type);
/// ftUnknown for a name that is not a field type.
KESH_EXPORT TFieldType FieldTypeFromName(const QString& Name);

KESH_EXPORT QJsonArray EncodeFields(const TFieldDefs& Fields, const QStringList& KeyFields);
KESH_EXPORT bool DecodeFields(const QJsonValue& Json, TFieldDefs& Fields, QStringList& KeyFields, QString& Error);
KESH_EXPORT QJsonArray EncodeRow(const TRecordValues& Row, const TFieldDefs& Fields);
KESH_EXPORT bool DecodeRow(const QJsonValue& Json, const TFieldDefs& Fields, TRecordValues& Row, QString& Error);

KESH_EXPORT QJsonObject EncodePacket(const TDataPacket& Packet);
/// The JSON text of EncodePacket(Packet) written straight from the values, without
/// building the document (a server's answers of many rows), compact, appended to Out.
KESH_EXPORT void WritePacket(const TDataPacket& Packet, QByteArray& Out);
KESH_EXPORT bool DecodePacket(const QJsonObject& Json, TDataPacket& Packet, QString& Error);

/// A change log: {"fields": [...], "rows": [{"kind": "modify", "old": [...], "new": [...]}]}.
KESH_EXPORT QJsonObject EncodeDelta(const TFieldDefs& Fields, const QList<TDeltaRecord>& Rows);
KESH_EXPORT bool DecodeDelta(const QJsonObject& Json, TFieldDefs& Fields, QList<TDeltaRecord>& Rows, QString& Error);

KESH_EXPORT QJsonArray EncodeParams(const QList<TPacketParam>& Params);
KESH_EXPORT bool DecodeParams(const QJsonValue& Json, QList<TPacketParam>& Params, QString& Error);

/// Parses a JSON object, refusing nesting deeper than MaxDepth before the parser sees it.
KESH_EXPORT bool ParseObject(const QByteArray& Text, int MaxDepth, QJsonObject& Object, QString& Error);
/// The deepest nesting of arrays and objects in Text (strings skipped); stops counting
/// past Limit.
KESH_EXPORT int NestingDepth(const QByteArray& Text, int Limit);

} // namespace DataPacket
} // namespace Kesh
