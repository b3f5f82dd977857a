#include "data_packet.h"
#include "../data/db_consts_p.h"
#include "../data/fields.h"
#include <QJsonDocument>
#include <QMetaEnum>
#include <QRegularExpression>
#include <QUuid>
#include <cmath>

namespace Kesh {

using namespace DBConsts;

QBitArray TDeltaRecord::Changed() const
{
    const int N = Fields ? Fields->Count() : int(NewValues.size());
    QBitArray Bits(N);
    for (int c = 0; c < N; ++c) {
        const QVariant New = NewValues.value(c);
        if (UpdateKind == ukInsert)
            Bits.setBit(c, !New.isNull());
        else if (UpdateKind == ukModify) {
            const QVariant Old = OldValues.value(c);
            Bits.setBit(c, Old.isNull() != New.isNull() || (!Old.isNull() && Old != New));
        }
    }
    return Bits;
}

int TDeltaRecord::IndexOf(const QString& FieldName) const
{
    const int i = Fields ? Fields->IndexOf(FieldName) : -1;
    if (i < 0)
        DatabaseError(SFieldNotFound(FieldName));
    return i;
}

QVariant TDeltaRecord::OldValue(const QString& FieldName) const { return OldValues.value(IndexOf(FieldName)); }
QVariant TDeltaRecord::NewValue(const QString& FieldName) const { return NewValues.value(IndexOf(FieldName)); }

void TDeltaRecord::SetNewValue(const QString& FieldName, const QVariant& Value)
{
    const int i = IndexOf(FieldName);
    if (NewValues.size() <= i)
        NewValues.resize(Fields->Count());
    NewValues[i] = Value;
}

namespace DataPacket {

namespace {

enum TKind { kText, kInteger, kLarge, kFloat, kDecimal, kBool, kDate, kTime, kDateTime, kBinary, kGuid };

TKind KindOf(TFieldType Type)
{
    switch (Type) {
    case ftSmallint: case ftInteger: case ftWord: case ftAutoInc: return kInteger;
    case ftLargeint: return kLarge;
    case ftFloat: return kFloat;
    case ftCurrency: case ftBCD: case ftFMTBcd: return kDecimal;
    case ftBoolean: return kBool;
    case ftDate: return kDate;
    case ftTime: return kTime;
    case ftDateTime: case ftTimeStamp: case ftOraTimeStamp: return kDateTime;
    case ftBytes: case ftVarBytes: case ftBlob: case ftGraphic: case ftTypedBinary: case ftOraBlob: return kBinary;
    case ftGuid: return kGuid;
    default: return kText;
    }
}

const QString DateFormat = QStringLiteral("yyyy-MM-dd");
const QString TimeFormat = QStringLiteral("HH:mm:ss.zzz");
const QString DateTimeFormat = QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz");

bool IsDecimalText(const QString& S)
{
    static const QRegularExpression Re(QStringLiteral("^[-+]?(\\d{1,40}(\\.\\d{0,40})?|\\.\\d{1,40})([eE][-+]?\\d{1,4})?$"));
    return Re.match(S).hasMatch();
}

QString DecimalText(const QVariant& V)
{
    if (V.metaType().id() == QMetaType::Double || V.metaType().id() == QMetaType::Float)
        return QString::number(V.toDouble(), 'g', 17);
    return V.toString();
}

bool Fail(QString& Error, const QString& Message)
{
    Error = Message;
    return false;
}

} // namespace

QString FieldTypeName(TFieldType Type)
{
    return QString::fromLatin1(QMetaEnum::fromType<TFieldType>().valueToKey(Type));
}

TFieldType FieldTypeFromName(const QString& Name)
{
    bool Ok = false;
    const int V = QMetaEnum::fromType<TFieldType>().keyToValue(Name.toLatin1().constData(), &Ok);
    return Ok ? TFieldType(V) : ftUnknown;
}

QJsonValue EncodeValue(const QVariant& Value, TFieldType Type)
{
    if (!Value.isValid() || Value.isNull())
        return QJsonValue(QJsonValue::Null);
    switch (KindOf(Type)) {
    case kInteger: return QJsonValue(Value.toLongLong());
    case kLarge: return QString::number(Value.toLongLong());
    case kFloat: {
        const double D = Value.toDouble();
        if (std::isfinite(D))
            return D;
        return std::isnan(D) ? QStringLiteral("NaN") : D > 0 ? QStringLiteral("Infinity") : QStringLiteral("-Infinity");
    }
    case kDecimal: return DecimalText(Value);
    case kBool: return Value.toBool();
    case kDate: return Value.toDate().toString(DateFormat);
    case kTime: return Value.toTime().toString(TimeFormat);
    case kDateTime: return Value.toDateTime().toString(DateTimeFormat);
    case kBinary: return QString::fromLatin1(Value.toByteArray().toBase64());
    case kGuid: return Value.toString();
    case kText: return Value.toString();
    }
    return Value.toString();
}

bool DecodeValue(const QJsonValue& Json, TFieldType Type, QVariant& Value)
{
    const QMetaType Meta = TField::ValueType(Type);
    if (Json.isNull()) {
        Value = Meta.isValid() ? QVariant(Meta) : QVariant();
        return true;
    }
    switch (KindOf(Type)) {
    case kInteger: {
        if (!Json.isDouble())
            return false;
        const double D = Json.toDouble();
        if (D != std::floor(D) || D < -2147483648.0 || D > 2147483647.0)
            return false;
        Value = int(Json.toInteger());
        return true;
    }
    case kLarge: {
        bool Ok = false;
        qint64 N = 0;
        if (Json.isString())
            N = Json.toString().toLongLong(&Ok);
        else if (Json.isDouble()) {
            const double D = Json.toDouble();
            Ok = D == std::floor(D) && std::fabs(D) <= 9007199254740992.0;
            N = Json.toInteger();
        }
        if (!Ok)
            return false;
        Value = qlonglong(N);
        return true;
    }
    case kFloat: {
        if (Json.isDouble()) {
            Value = Json.toDouble();
            return true;
        }
        const QString S = Json.toString();
        if (S == QLatin1String("NaN")) Value = std::nan("");
        else if (S == QLatin1String("Infinity")) Value = HUGE_VAL;
        else if (S == QLatin1String("-Infinity")) Value = -HUGE_VAL;
        else return false;
        return true;
    }
    case kDecimal: {
        const QString S = Json.isDouble() ? QString::number(Json.toDouble(), 'g', 17) : Json.toString();
        if (!Json.isDouble() && (!Json.isString() || !IsDecimalText(S)))
            return false;
        bool Ok = false;
        const double D = S.toDouble(&Ok);
        if (!Ok || !std::isfinite(D))
            return false;
        Value = D;
        return true;
    }
    case kBool:
        if (!Json.isBool())
            return false;
        Value = Json.toBool();
        return true;
    case kDate: {
        const QDate D = QDate::fromString(Json.toString(), DateFormat);
        if (!Json.isString() || !D.isValid())
            return false;
        Value = D;
        return true;
    }
    case kTime: {
        const QString S = Json.toString();
        QTime T = QTime::fromString(S, TimeFormat);
        if (!T.isValid())
            T = QTime::fromString(S, QStringLiteral("HH:mm:ss"));
        if (!Json.isString() || !T.isValid())
            return false;
        Value = T;
        return true;
    }
    case kDateTime: {
        const QString S = Json.toString();
        QDateTime T = QDateTime::fromString(S, DateTimeFormat);
        if (!T.isValid())
            T = QDateTime::fromString(S, QStringLiteral("yyyy-MM-ddTHH:mm:ss"));
        if (!Json.isString() || !T.isValid())
            return false;
        Value = T;
        return true;
    }
    case kBinary: {
        if (!Json.isString())
            return false;
        const auto R = QByteArray::fromBase64Encoding(Json.toString().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
        if (!R)
            return false;
        Value = *R;
        return true;
    }
    case kGuid: {
        const QUuid U(Json.toString());
        if (!Json.isString() || U.isNull())
            return false;
        Value = U.toString();
        return true;
    }
    case kText:
        if (!Json.isString())
            return false;
        Value = Json.toString();
        return true;
    }
    return false;
}

QJsonArray EncodeFields(const TFieldDefs& Fields, const QStringList& KeyFields)
{
    QJsonArray A;
    for (const TFieldDef& F : Fields.Items()) {
        QJsonObject O;
        O.insert(QStringLiteral("name"), F.Name);
        O.insert(QStringLiteral("type"), FieldTypeName(F.DataType));
        if (F.Size)
            O.insert(QStringLiteral("size"), F.Size);
        if (F.Precision)
            O.insert(QStringLiteral("precision"), F.Precision);
        O.insert(QStringLiteral("required"), F.Required);
        O.insert(QStringLiteral("readOnly"), F.ReadOnly);
        if (F.AutoValue)
            O.insert(QStringLiteral("autoValue"), true);
        O.insert(QStringLiteral("key"), KeyFields.contains(F.Name, Qt::CaseInsensitive));
        A.append(O);
    }
    return A;
}

bool DecodeFields(const QJsonValue& Json, TFieldDefs& Fields, QStringList& KeyFields, QString& Error)
{
    Fields.Clear();
    KeyFields.clear();
    if (!Json.isArray() || Json.toArray().isEmpty())
        return Fail(Error, QStringLiteral("The packet has no field list"));
    const QJsonArray A = Json.toArray();
    for (const QJsonValue& V : A) {
        const QJsonObject O = V.toObject();
        TFieldDef F;
        F.Name = O.value(QStringLiteral("name")).toString();
        F.DataType = FieldTypeFromName(O.value(QStringLiteral("type")).toString());
        if (F.Name.isEmpty() || F.DataType == ftUnknown)
            return Fail(Error, QStringLiteral("The packet has a field without a name or a known type"));
        if (Fields.IndexOf(F.Name) >= 0)
            return Fail(Error, SDuplicateFieldName(F.Name));
        F.Size = qBound(0, O.value(QStringLiteral("size")).toInt(), 1 << 30);
        F.Precision = qBound(0, O.value(QStringLiteral("precision")).toInt(), 1000);
        F.Required = O.value(QStringLiteral("required")).toBool();
        F.ReadOnly = O.value(QStringLiteral("readOnly")).toBool();
        F.AutoValue = O.value(QStringLiteral("autoValue")).toBool();
        if (O.value(QStringLiteral("key")).toBool())
            KeyFields << F.Name;
        Fields.Append(F);
    }
    return true;
}

QJsonArray EncodeRow(const TRecordValues& Row, const TFieldDefs& Fields)
{
    QJsonArray A;
    for (int c = 0; c < Fields.Count(); ++c)
        A.append(EncodeValue(Row.value(c), Fields[c].DataType));
    return A;
}

bool DecodeRow(const QJsonValue& Json, const TFieldDefs& Fields, TRecordValues& Row, QString& Error)
{
    const QJsonArray A = Json.toArray();
    if (!Json.isArray() || A.size() != Fields.Count())
        return Fail(Error, QStringLiteral("A row does not have one value per field"));
    Row.resize(Fields.Count());
    for (int c = 0; c < Fields.Count(); ++c)
        if (!DecodeValue(A.at(c), Fields[c].DataType, Row[c]))
            return Fail(Error, QStringLiteral("Invalid value for field '%1'").arg(Fields[c].Name));
    return true;
}

QJsonObject EncodePacket(const TDataPacket& Packet)
{
    QJsonObject O;
    O.insert(QStringLiteral("fields"), EncodeFields(Packet.Fields, Packet.KeyFields));
    QJsonArray Rows;
    for (const TRecordValues& R : Packet.Rows)
        Rows.append(EncodeRow(R, Packet.Fields));
    O.insert(QStringLiteral("rows"), Rows);
    O.insert(QStringLiteral("next"), Packet.NextToken.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(Packet.NextToken));
    return O;
}

namespace {

void WriteString(const QString& Text, QByteArray& Out)
{
    static const char Hex[] = "0123456789abcdef";
    Out += '"';
    for (const char C : Text.toUtf8()) {
        const auto U = static_cast<unsigned char>(C);
        if (C == '"' || C == '\\') {
            Out += '\\';
            Out += C;
        } else if (U < 0x20) {
            Out += "\\u00";
            Out += Hex[U >> 4];
            Out += Hex[U & 15];
        } else {
            Out += C;
        }
    }
    Out += '"';
}

// A value as EncodeValue gives it, as JSON text.
void WriteValue(const QVariant& Value, TFieldType Type, QByteArray& Out)
{
    if (!Value.isValid() || Value.isNull()) {
        Out += "null";
        return;
    }
    switch (KindOf(Type)) {
    case kInteger:
        Out += QByteArray::number(Value.toLongLong());
        return;
    case kBool:
        Out += Value.toBool() ? "true" : "false";
        return;
    case kText:
        WriteString(Value.metaType().id() == QMetaType::QString ? *static_cast<const QString*>(Value.constData())
                                                                : Value.toString(),
                    Out);
        return;
    default:
        break;
    }
    const QJsonValue J = EncodeValue(Value, Type);
    if (J.isString())
        WriteString(J.toString(), Out);
    else if (J.isDouble())
        Out += QByteArray::number(J.toDouble(), 'g', QLocale::FloatingPointShortest);
    else if (J.isBool())
        Out += J.toBool() ? "true" : "false";
    else
        Out += "null";
}

} // namespace

void WritePacket(const TDataPacket& Packet, QByteArray& Out)
{
    const TFieldDefs& Fields = Packet.Fields;
    Out.reserve(Out.size() + 64 + qsizetype(Packet.Rows.size()) * Fields.Count() * 12);
    Out += "{\"fields\":";
    Out += QJsonDocument(EncodeFields(Fields, Packet.KeyFields)).toJson(QJsonDocument::Compact);
    Out += ",\"next\":";
    if (Packet.NextToken.isEmpty())
        Out += "null";
    else
        WriteString(Packet.NextToken, Out);
    Out += ",\"rows\":[";
    QVector<TFieldType> Types;
    for (const TFieldDef& F : Fields.Items())
        Types << F.DataType;
    for (qsizetype r = 0; r < Packet.Rows.size(); ++r) {
        if (r)
            Out += ',';
        Out += '[';
        const TRecordValues& Row = Packet.Rows[r];
        for (int c = 0; c < Types.size(); ++c) {
            if (c)
                Out += ',';
            WriteValue(Row.value(c), Types[c], Out);
        }
        Out += ']';
    }
    Out += "]}";
}

bool DecodePacket(const QJsonObject& Json, TDataPacket& Packet, QString& Error)
{
    Packet = TDataPacket();
    if (!DecodeFields(Json.value(QStringLiteral("fields")), Packet.Fields, Packet.KeyFields, Error))
        return false;
    const QJsonValue Rows = Json.value(QStringLiteral("rows"));
    if (!Rows.isArray() && !Rows.isUndefined())
        return Fail(Error, QStringLiteral("The packet's rows are not a list"));
    for (const QJsonValue& R : Rows.toArray()) {
        TRecordValues Row;
        if (!DecodeRow(R, Packet.Fields, Row, Error))
            return false;
        Packet.Rows.append(Row);
    }
    const QJsonValue Next = Json.value(QStringLiteral("next"));
    if (!Next.isNull() && !Next.isUndefined() && !Next.isString())
        return Fail(Error, QStringLiteral("The packet's paging token is not text"));
    Packet.NextToken = Next.toString();
    return true;
}

namespace {

const char* const KindNames[] = {"modify", "insert", "delete"};

} // namespace

QJsonObject EncodeDelta(const TFieldDefs& Fields, const QList<TDeltaRecord>& Rows)
{
    QJsonArray A;
    for (const TDeltaRecord& R : Rows) {
        QJsonObject O;
        O.insert(QStringLiteral("kind"), QLatin1String(KindNames[R.UpdateKind]));
        if (R.UpdateKind != ukInsert)
            O.insert(QStringLiteral("old"), EncodeRow(R.OldValues, Fields));
        if (R.UpdateKind != ukDelete)
            O.insert(QStringLiteral("new"), EncodeRow(R.NewValues, Fields));
        A.append(O);
    }
    QJsonObject Delta;
    Delta.insert(QStringLiteral("fields"), EncodeFields(Fields, QStringList()));
    Delta.insert(QStringLiteral("rows"), A);
    return Delta;
}

bool DecodeDelta(const QJsonObject& Json, TFieldDefs& Fields, QList<TDeltaRecord>& Rows, QString& Error)
{
    Rows.clear();
    QStringList Keys;
    if (!DecodeFields(Json.value(QStringLiteral("fields")), Fields, Keys, Error))
        return false;
    const QJsonValue A = Json.value(QStringLiteral("rows"));
    if (!A.isArray())
        return Fail(Error, QStringLiteral("The delta's rows are not a list"));
    for (const QJsonValue& V : A.toArray()) {
        const QJsonObject O = V.toObject();
        const QString Kind = O.value(QStringLiteral("kind")).toString();
        TDeltaRecord R;
        R.Fields = &Fields;
        if (Kind == QLatin1String("modify")) R.UpdateKind = ukModify;
        else if (Kind == QLatin1String("insert")) R.UpdateKind = ukInsert;
        else if (Kind == QLatin1String("delete")) R.UpdateKind = ukDelete;
        else return Fail(Error, QStringLiteral("A delta row has no known kind"));
        if (R.UpdateKind != ukInsert && !DecodeRow(O.value(QStringLiteral("old")), Fields, R.OldValues, Error))
            return false;
        if (R.UpdateKind != ukDelete && !DecodeRow(O.value(QStringLiteral("new")), Fields, R.NewValues, Error))
            return false;
        Rows.append(R);
    }
    return true;
}

QJsonArray EncodeParams(const QList<TPacketParam>& Params)
{
    QJsonArray A;
    for (const TPacketParam& P : Params) {
        QJsonObject O;
        O.insert(QStringLiteral("name"), P.Name);
        O.insert(QStringLiteral("type"), FieldTypeName(P.DataType));
        O.insert(QStringLiteral("value"), EncodeValue(P.Value, P.DataType));
        A.append(O);
    }
    return A;
}

bool DecodeParams(const QJsonValue& Json, QList<TPacketParam>& Params, QString& Error)
{
    Params.clear();
    if (Json.isUndefined() || Json.isNull())
        return true;
    if (!Json.isArray())
        return Fail(Error, QStringLiteral("Params is not a list"));
    for (const QJsonValue& V : Json.toArray()) {
        const QJsonObject O = V.toObject();
        TPacketParam P;
        P.Name = O.value(QStringLiteral("name")).toString();
        P.DataType = FieldTypeFromName(O.value(QStringLiteral("type")).toString());
        if (P.Name.isEmpty() || P.DataType == ftUnknown)
            return Fail(Error, QStringLiteral("A parameter has no name or no known type"));
        if (!DecodeValue(O.value(QStringLiteral("value")), P.DataType, P.Value))
            return Fail(Error, QStringLiteral("Invalid value for parameter '%1'").arg(P.Name));
        Params.append(P);
    }
    return true;
}

int NestingDepth(const QByteArray& Text, int Limit)
{
    int Depth = 0, Deepest = 0;
    bool InString = false;
    for (int i = 0; i < Text.size(); ++i) {
        const char C = Text[i];
        if (InString) {
            if (C == '\\')
                ++i;
            else if (C == '"')
                InString = false;
        } else if (C == '"') {
            InString = true;
        } else if (C == '[' || C == '{') {
            if (++Depth > Deepest && (Deepest = Depth) > Limit)
                return Deepest;
        } else if (C == ']' || C == '}') {
            --Depth;
        }
    }
    return Deepest;
}

bool ParseObject(const QByteArray& Text, int MaxDepth, QJsonObject& Object, QString& Error)
{
    if (NestingDepth(Text, MaxDepth) > MaxDepth)
        return Fail(Error, QStringLiteral("The request nests deeper than %1 levels").arg(MaxDepth));
    QJsonParseError Parse;
    const QJsonDocument Doc = QJsonDocument::fromJson(Text, &Parse);
    if (Parse.error != QJsonParseError::NoError)
        return Fail(Error, QStringLiteral("Malformed JSON: %1 at offset %2").arg(Parse.errorString()).arg(Parse.offset));
    if (!Doc.isObject())
        return Fail(Error, QStringLiteral("The request is not a JSON object"));
    Object = Doc.object();
    return true;
}

} // namespace DataPacket
} // namespace Kesh
