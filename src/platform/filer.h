// Kesh for Qt — tagged values on a QDataStream, for the lists that components store.
#pragma once
#include "kesh_global.h"
#include <QDataStream>
#include <QString>

namespace Kesh {

/// The tag written before every value; the list end is the null tag.
enum TValueType : quint8 { vaNull = 0, vaList = 1, vaInt32 = 4, vaWString = 18 };

/// Writes tagged values: list markers, 32-bit integers, strings.
class KESH_EXPORT TWriter
{
public:
    explicit TWriter(QDataStream& Stream) : m_stream(Stream) {}
    void WriteListBegin();
    void WriteListEnd();
    void WriteInteger(qint32 Value);
    void WriteString(const QString& Value);

private:
    QDataStream& m_stream;
};

/// Reads what TWriter wrote. A truncated stream, a value of another type than the one asked
/// for or a failed stream raises EReadError; nothing is allocated beyond the data present.
class KESH_EXPORT TReader
{
public:
    explicit TReader(QDataStream& Stream) : m_stream(Stream) {}
    void ReadListBegin();
    /// True when the next value is the list end marker (which stays unread).
    bool EndOfList();
    void ReadListEnd();
    qint32 ReadInteger();
    QString ReadString();
    /// The type of the next value, without reading it.
    TValueType NextValue();

private:
    void Expect(TValueType Type);
    void CheckStatus();

    QDataStream& m_stream;
    bool m_peeked = false;
    quint8 m_next = 0;
};

} // namespace Kesh
