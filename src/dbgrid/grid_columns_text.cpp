// Kesh for Qt — the grid's columns as JSON text: the tagged stream of SaveToStream, one
// object per column, its (name, value) pairs as members. Forms made in Qt Designer store
// the columns in this form (the grid's _ColumnsText).
#include "grid_columns.h"
#include "db_grid.h"
#include "platform/exceptions.h"
#include "platform/filer.h"
#include <QIODevice>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cmath>
#include <cstdint>

namespace Kesh {

namespace {

[[noreturn]] void Refuse(const QString& Reason)
{
    throw EReadError(QStringLiteral("TQxDBGridColumns.SetText\r\n") + Reason);
}

// One value of the stream: an integer, a string or a list of strings (the pick list).
QJsonValue ReadValue(TReader& R)
{
    switch (R.NextValue()) {
    case vaInt32:
        return R.ReadInteger();
    case vaList: {
        QJsonArray Items;
        R.ReadListBegin();
        while (!R.EndOfList())
            Items << R.ReadString();
        R.ReadListEnd();
        return Items;
    }
    default:
        return R.ReadString();
    }
}

void WriteValue(TWriter& W, const QString& Name, const QJsonValue& Value)
{
    W.WriteString(Name);
    if (Value.isString())
        return W.WriteString(Value.toString());
    if (Value.isDouble()) {
        const double Number = Value.toDouble();
        if (Number != std::floor(Number) || Number < INT32_MIN || Number > INT32_MAX)
            Refuse(QStringLiteral("%1 is not a 32-bit integer.").arg(Name));
        return W.WriteInteger(qint32(Number));
    }
    if (!Value.isArray())
        Refuse(QStringLiteral("%1 is neither a number, a text nor a list of texts.").arg(Name));
    W.WriteListBegin();
    for (const QJsonValue& Item : Value.toArray()) {
        if (!Item.isString())
            Refuse(QStringLiteral("%1 lists something that is not a text.").arg(Name));
        W.WriteString(Item.toString());
    }
    W.WriteListEnd();
}

} // namespace

QString TQxDBGridColumns::GetText() const
{
    if (State() == csDefault)
        return QString();
    QByteArray Bytes;
    {
        QDataStream Out(&Bytes, QIODevice::WriteOnly);
        SaveToStream(Out);
    }
    QDataStream In(Bytes);
    TReader R(In);
    R.ReadString(); // the stream's signature
    QStringList Lines;
    R.ReadListBegin();
    while (!R.EndOfList()) {
        QJsonObject Column;
        R.ReadListBegin();
        while (!R.EndOfList()) {
            const QString Name = R.ReadString();
            Column.insert(Name, ReadValue(R));
        }
        R.ReadListEnd();
        Lines << QString::fromUtf8(QJsonDocument(Column).toJson(QJsonDocument::Compact));
    }
    // One column a line, so that a form's file shows changes column by column.
    return Lines.isEmpty() ? QStringLiteral("[]") : QStringLiteral("[\n") + Lines.join(QStringLiteral(",\n")) + QStringLiteral("\n]");
}

void TQxDBGridColumns::SetText(const QString& Text)
{
    if (Text.trimmed().isEmpty())
        return SetState(csDefault);
    QJsonParseError Error;
    const QJsonDocument Document = QJsonDocument::fromJson(Text.toUtf8(), &Error);
    if (Error.error != QJsonParseError::NoError)
        Refuse(QStringLiteral("Not JSON at offset %1: %2.").arg(Error.offset).arg(Error.errorString()));
    if (!Document.isArray())
        Refuse(QStringLiteral("The columns are not a list."));
    QByteArray Bytes;
    {
        QDataStream Out(&Bytes, QIODevice::WriteOnly);
        TWriter W(Out);
        W.WriteString(QStringLiteral("TQxDBGridColumns"));
        W.WriteListBegin();
        const QJsonArray Columns = Document.array();
        for (qsizetype I = 0; I < Columns.size(); ++I) {
            if (!Columns[I].isObject())
                Refuse(QStringLiteral("Column %1 is not an object.").arg(I + 1));
            const QJsonObject Column = Columns[I].toObject();
            W.WriteListBegin();
            for (auto It = Column.begin(); It != Column.end(); ++It)
                WriteValue(W, It.key(), It.value());
            W.WriteListEnd();
        }
        W.WriteListEnd();
    }
    QDataStream In(Bytes);
    LoadFromStream(In); // checks names and ranges; changes nothing when it raises
}

QString TQxCustomDBGrid::GetColumnsText() const { return GetColumns()->GetText(); }
void TQxCustomDBGrid::SetColumnsText(const QString& Value) { GetColumns()->SetText(Value); }

} // namespace Kesh
