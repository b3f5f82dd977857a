// Kesh for Qt — the client-side rows of a dataset (private to src/platform/data).
#pragma once
#include "dataset.h"
#include <QString>
#include <QVariant>
#include <QVector>
#include <algorithm>
#include <bitset>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

namespace Kesh::Detail {

// One column of a chunk of 256 rows. Values of one simple type are kept unboxed: 8-byte
// numbers and booleans, or text packed in one buffer (one byte a character while the texts
// are Latin-1, else UTF-16), with a null bitmap; a number column may mix two number types
// (SQLite's NUMERIC gives whole values as integers, others as doubles), each row's type
// then kept in a second bitmap; a column that mixes other types falls back to QVariants.
// A million rows so cost a fraction of one QVariant (32 bytes, plus a heap block per
// string) each.
class TColumnBlock
{
public:
    static constexpr int Rows = 256;

    QVariant Get(int R) const
    {
        switch (m_kind) {
        case Empty:
            return QVariant();
        case Scalar:
            return m_nulls.test(R) ? QVariant(QMetaType(m_type))
                                   : FromScalar(m_scalars[R], m_alt && m_alt->test(R) ? m_altType : m_type);
        case String: {
            if (m_nulls.test(R))
                return QVariant(QMetaType::fromType<QString>());
            const TSpan& S = m_spans[R];
            if (!m_wide)
                return QVariant(QString::fromLatin1(m_text8.data() + S.Start, qsizetype(S.Length)));
            return QVariant(QString(reinterpret_cast<const QChar*>(m_text.data() + S.Start), qsizetype(S.Length)));
        }
        default:
            return m_variants[R];
        }
    }

    void Put(int R, const QVariant& V)
    {
        if (R >= m_capacity)
            Grow(R);
        const int Type = V.metaType().id();
        if (m_kind != Variant && Type == m_type) {  // the common case: one type per column
            if (V.isNull())
                m_nulls.set(R);
            else if (m_kind == Scalar)
                SetScalar(R, ToScalar(V, Type), false);
            else
                SetText(R, *static_cast<const QString*>(V.constData()));
            return;
        }
        if (Type == QMetaType::UnknownType || V.isNull()) {
            if (m_kind == Variant)
                m_variants[R] = V;
            else
                m_nulls.set(R);
            return;
        }
        if (m_kind == Empty) {
            Start(Type);
            if (m_kind != Variant) {
                Put(R, V);
                return;
            }
        }
        if (m_kind == Scalar && IsScalarType(Type) && (m_altType == 0 || m_altType == Type)) {
            m_altType = Type;
            SetScalar(R, ToScalar(V, Type), true);
            return;
        }
        if (m_kind != Variant)
            ToVariants();
        m_variants[R] = V;
    }

    // Rows come in bulk (a chunk before this one is full): the arrays take the whole chunk
    // at once instead of growing to it. Only before the first value.
    void ReserveChunk()
    {
        if (m_kind == Empty)
            m_capacity = Rows;
    }

    // The chunk is full: give back what its text buffer reserved beyond its size.
    void Seal()
    {
        if (m_kind == String) {
            m_text.shrink_to_fit();
            m_text8.shrink_to_fit();
        }
    }

private:
    enum Kind : quint8 { Empty, Scalar, String, Variant };
    struct TSpan
    {
        quint32 Start;
        quint32 Length;
    };

    void SetScalar(int R, quint64 Bits, bool Alt)
    {
        m_scalars[R] = Bits;
        m_nulls.reset(R);
        if (Alt && !m_alt)
            m_alt = std::make_unique<std::bitset<Rows>>();
        if (m_alt)
            m_alt->set(size_t(R), Alt);
    }
    static bool IsLatin1(const QString& Text)
    {
        for (const QChar C : Text)
            if (C.unicode() > 0xFF)
                return false;
        return true;
    }
    size_t TextSize() const { return m_wide ? m_text.size() : m_text8.size(); }
    void SetText(int R, const QString& Text)
    {
        if (!m_nulls.test(R))
            m_garbage += m_spans[R].Length;  // an overwritten text stays until the buffer is packed
        if (m_garbage > 4096 && m_garbage > TextSize() / 2)
            Pack();
        if (!m_wide && !IsLatin1(Text))
            Widen();
        const size_t Start = TextSize();
        if (m_text.capacity() == 0 && m_text8.capacity() == 0) {
            const size_t Reserve = size_t(m_capacity) * (size_t(Text.size()) + 4);  // texts of a column are alike
            m_wide ? m_text.reserve(Reserve) : m_text8.reserve(Reserve);
        }
        if (m_wide) {
            const auto* Chars = reinterpret_cast<const char16_t*>(Text.utf16());
            m_text.insert(m_text.end(), Chars, Chars + Text.size());
        } else {
            for (const QChar C : Text)
                m_text8.push_back(char(C.unicode()));
        }
        m_spans[R] = {quint32(Start), quint32(Text.size())};
        m_nulls.reset(R);
    }
    // A text beyond Latin-1 came: every text of the block goes to UTF-16.
    void Widen()
    {
        m_text.reserve(m_text8.capacity());
        for (const char C : m_text8)
            m_text.push_back(char16_t(quint8(C)));  // a Latin-1 byte is its code point
        std::vector<char>().swap(m_text8);
        m_wide = true;
    }
    // Small results stay small: the arrays grow to the 256 rows of a chunk as rows come.
    void Grow(int R)
    {
        const int Capacity = std::min(Rows, std::max(R + 1, 2 * m_capacity));
        auto Resize = [&](auto& Array) {
            using T = std::remove_reference_t<decltype(Array[0])>;
            if (!Array)
                return;
            std::unique_ptr<T[]> Bigger(new T[size_t(Capacity)]());
            std::move(Array.get(), Array.get() + m_capacity, Bigger.get());
            Array = std::move(Bigger);
        };
        Resize(m_scalars);
        Resize(m_spans);
        Resize(m_variants);
        m_capacity = Capacity;
    }
    void Pack()
    {
        auto PackInto = [this](auto& Buffer) {
            std::remove_reference_t<decltype(Buffer)> Text;
            Text.reserve(Buffer.size() - m_garbage);
            for (int R = 0; R < m_capacity; ++R) {
                if (m_nulls.test(R) || m_spans[R].Length == 0)
                    continue;
                const quint32 Start = quint32(Text.size());
                Text.insert(Text.end(), Buffer.begin() + m_spans[R].Start,
                            Buffer.begin() + m_spans[R].Start + m_spans[R].Length);
                m_spans[R].Start = Start;
            }
            Buffer.swap(Text);
        };
        m_wide ? PackInto(m_text) : PackInto(m_text8);
        m_garbage = 0;
    }
    static bool IsScalarType(int Type)
    {
        switch (Type) {
        case QMetaType::Bool: case QMetaType::Int: case QMetaType::UInt: case QMetaType::LongLong:
        case QMetaType::ULongLong: case QMetaType::Double:
            return true;
        default:
            return false;
        }
    }
    // V holds exactly Type: read it in place.
    static quint64 ToScalar(const QVariant& V, int Type)
    {
        const void* P = V.constData();
        switch (Type) {
        case QMetaType::Double: {
            quint64 Bits;
            std::memcpy(&Bits, P, sizeof Bits);
            return Bits;
        }
        case QMetaType::Bool: return *static_cast<const bool*>(P) ? 1 : 0;
        case QMetaType::Int: return quint64(qint64(*static_cast<const int*>(P)));
        case QMetaType::UInt: return *static_cast<const uint*>(P);
        default: return *static_cast<const quint64*>(P);  // LongLong, ULongLong
        }
    }
    static QVariant FromScalar(quint64 Bits, int Type)
    {
        switch (Type) {
        case QMetaType::Bool: return QVariant(Bits != 0);
        case QMetaType::Int: return QVariant(int(qint64(Bits)));
        case QMetaType::UInt: return QVariant(uint(Bits));
        case QMetaType::LongLong: return QVariant(qlonglong(Bits));
        case QMetaType::ULongLong: return QVariant(qulonglong(Bits));
        default: {
            double D;
            std::memcpy(&D, &Bits, sizeof D);
            return QVariant(D);
        }
        }
    }
    void Start(int Type)
    {
        m_type = Type;
        if (IsScalarType(Type)) {
            m_kind = Scalar;
            m_scalars.reset(new quint64[size_t(m_capacity)]());
        } else if (Type == QMetaType::QString) {
            m_kind = String;
            m_spans.reset(new TSpan[size_t(m_capacity)]());
        } else {
            ToVariants();
        }
    }
    void ToVariants()
    {
        std::unique_ptr<QVariant[]> Values(new QVariant[size_t(m_capacity)]);
        if (m_kind == Scalar || m_kind == String)
            for (int R = 0; R < m_capacity; ++R)
                Values[R] = Get(R);
        m_variants = std::move(Values);
        m_scalars.reset();
        m_spans.reset();
        m_alt.reset();
        std::vector<char16_t>().swap(m_text);
        std::vector<char>().swap(m_text8);
        m_kind = Variant;
    }

    Kind m_kind = Empty;
    bool m_wide = false;  // the text is in m_text (UTF-16), not m_text8 (Latin-1)
    int m_type = 0;
    int m_altType = 0;    // the second number type of the block, 0 while there is none
    int m_capacity = 16;  // rows the arrays hold
    std::bitset<Rows> m_nulls;
    std::unique_ptr<std::bitset<Rows>> m_alt;  // rows holding m_altType
    std::unique_ptr<quint64[]> m_scalars;
    std::unique_ptr<TSpan[]> m_spans;
    std::vector<char16_t> m_text;
    std::vector<char> m_text8;
    size_t m_garbage = 0;
    std::unique_ptr<QVariant[]> m_variants;
};

// Rows of a dataset, shared with its clones: chunks of 256 rows, column by column. A row's
// id (its bookmark) never changes and is never reused; its position is its place in m_order.
class TRecordStore
{
public:
    explicit TRecordStore(int Columns) : m_columns(std::max(Columns, 0)) {}

    int Columns() const { return m_columns; }
    int Count() const { return int(m_order.size()); }
    quint32 IdAt(int Position) const { return m_order[Position]; }
    bool Alive(quint32 Id) const { return Id < m_nextId && !m_dead[Id >> ChunkShift].test(Id & ChunkMask); }
    quint64 Generation() const { return m_generation; }

    QVariant Get(quint32 Id, int Column) const { return Block(Id, Column).Get(int(Id & ChunkMask)); }
    void Put(quint32 Id, int Column, const QVariant& Value) { Block(Id, Column).Put(int(Id & ChunkMask), Value); }
    TRecordValues Values(quint32 Id) const
    {
        TRecordValues R(m_columns);
        for (int c = 0; c < m_columns; ++c)
            R[c] = Get(Id, c);
        return R;
    }
    void PutAll(quint32 Id, const TRecordValues& Values)
    {
        static const QVariant Null;
        for (int c = 0; c < m_columns; ++c)
            Put(Id, c, c < Values.size() ? Values.at(c) : Null);
    }

    // The blocks of a row's chunk, one per column, for filling it column by column.
    TColumnBlock* Blocks(quint32 Id) { return m_chunks[Id >> ChunkShift].data(); }
    static int RowInChunk(quint32 Id) { return int(Id & ChunkMask); }

    // A new row at the end of the order (rows being read).
    quint32 Append()
    {
        const quint32 Id = NewId();
        m_order.push_back(Id);
        return Id;
    }
    // A new row at Position (a posted insert); changes the generation.
    quint32 InsertAt(int Position, const TRecordValues& Values)
    {
        const quint32 Id = NewId();
        PutAll(Id, Values);
        m_order.insert(m_order.begin() + Position, Id);
        ++m_generation;
        return Id;
    }
    void RemoveAt(int Position)
    {
        const quint32 Id = m_order[Position];
        m_order.erase(m_order.begin() + Position);
        m_dead[Id >> ChunkShift].set(Id & ChunkMask);
        for (int c = 0; c < m_columns; ++c)
            Put(Id, c, QVariant());
        ++m_generation;
    }
    // Position of a live row; Hint is where it probably is.
    int PositionOf(quint32 Id, int Hint) const
    {
        if (!Alive(Id))
            return -1;
        if (Hint >= 0 && Hint < Count() && m_order[Hint] == Id)
            return Hint;
        // Rows keep their reading order, so a row read is seldom after position Id.
        const int Start = std::min<int>(int(Id), Count() - 1);
        for (int i = Start; i >= 0; --i)
            if (m_order[i] == Id)
                return i;
        for (int i = Start + 1; i < Count(); ++i)
            if (m_order[i] == Id)
                return i;
        return -1;
    }

private:
    static constexpr int ChunkShift = 8;
    static constexpr quint32 ChunkMask = (1u << ChunkShift) - 1;
    static_assert((1 << ChunkShift) == TColumnBlock::Rows, "a chunk is one block per column");

    TColumnBlock& Block(quint32 Id, int Column) { return m_chunks[Id >> ChunkShift][size_t(Column)]; }
    const TColumnBlock& Block(quint32 Id, int Column) const { return m_chunks[Id >> ChunkShift][size_t(Column)]; }

    quint32 NewId()
    {
        const quint32 Id = m_nextId++;
        if ((Id >> ChunkShift) >= m_chunks.size()) {
            if (!m_chunks.empty())
                for (TColumnBlock& B : m_chunks.back())
                    B.Seal();
            m_chunks.emplace_back(size_t(m_columns));
            if (m_chunks.size() > 1)
                for (TColumnBlock& B : m_chunks.back())
                    B.ReserveChunk();
            m_dead.emplace_back();
        }
        return Id;
    }

public:
    // The datasets that share these rows with another (a dataset and its clones): each
    // hears of the rows the others write.
    std::vector<TDataSet*> Sharers;

private:
    int m_columns;
    std::vector<std::vector<TColumnBlock>> m_chunks;
    std::vector<quint32> m_order;
    std::vector<std::bitset<TColumnBlock::Rows>> m_dead;  // deleted rows, per chunk
    quint32 m_nextId = 0;
    quint64 m_generation = 0;
};

} // namespace Kesh::Detail
