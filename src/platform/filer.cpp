#include "filer.h"
#include "exceptions.h"

namespace Kesh {

namespace {

QString TypeName(quint8 Type)
{
    switch (Type) {
    case vaNull: return QStringLiteral("list end");
    case vaList: return QStringLiteral("list");
    case vaInt32: return QStringLiteral("integer");
    case vaWString: return QStringLiteral("string");
    }
    return QStringLiteral("unknown value type %1").arg(Type);
}

} // namespace

void TWriter::WriteListBegin() { m_stream << quint8(vaList); }
void TWriter::WriteListEnd() { m_stream << quint8(vaNull); }
void TWriter::WriteInteger(qint32 Value) { m_stream << quint8(vaInt32) << Value; }
void TWriter::WriteString(const QString& Value) { m_stream << quint8(vaWString) << Value; }

void TReader::CheckStatus()
{
    if (m_stream.status() == QDataStream::ReadPastEnd)
        throw EReadError(QStringLiteral("Stream read error: the data ends in the middle of a value."));
    if (m_stream.status() != QDataStream::Ok)
        throw EReadError(QStringLiteral("Stream read error: the data is corrupt."));
}

TValueType TReader::NextValue()
{
    if (!m_peeked) {
        m_stream >> m_next;
        CheckStatus();
        m_peeked = true;
    }
    return TValueType(m_next);
}

void TReader::Expect(TValueType Type)
{
    const quint8 Found = NextValue();
    if (Found != Type)
        throw EReadError(QStringLiteral("Invalid stream format: expected %1, found %2.")
                             .arg(TypeName(Type), TypeName(Found)));
    m_peeked = false;
}

void TReader::ReadListBegin() { Expect(vaList); }
bool TReader::EndOfList() { return NextValue() == vaNull; }
void TReader::ReadListEnd() { Expect(vaNull); }

qint32 TReader::ReadInteger()
{
    Expect(vaInt32);
    qint32 Value = 0;
    m_stream >> Value;
    CheckStatus();
    return Value;
}

QString TReader::ReadString()
{
    Expect(vaWString);
    // QDataStream reads a string in bounded blocks, so a forged length cannot make it
    // allocate more than the data that is really there.
    QString Value;
    m_stream >> Value;
    CheckStatus();
    return Value;
}

} // namespace Kesh
