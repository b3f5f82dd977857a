#include "bilingual_strings.h"
#include "conversions.h"
#include "messages.h"
#include "platform/exceptions.h"
#include "platform/filer.h"

#include <QHash>
#include <QSet>
#include <algorithm>

namespace Kesh {

namespace {

bool ByID(const TxBilingualItem& A, const TxBilingualItem& B) { return A.ID < B.ID; }

} // namespace

bool TxBilingualItem::operator==(const TxBilingualItem& Other) const
{
    return ID == Other.ID && StrArabic == Other.StrArabic && StrEnglish == Other.StrEnglish;
}

void TxBiStrings::Add(int ID, const QString& PStrArabic, const QString& PStrEnglish, TxBiStrReplaceActions PAction)
{
    // Copied first: the captions may be references into this very list.
    TxBilingualItem Item{ID, PStrArabic, PStrEnglish};
    int Idx = IndexOf(ID);
    if (Idx >= 0) {
        switch (PAction) {
        case RaNothing:
            break;
        case RaAbort:
            return;
        case RaError:
            RaiseError(QStringLiteral("TxBiStrings.Add\r\nItem ID already exists."));
        case RaConfirm:
            if (!SelectYes(QStringLiteral("TxBiStrings.Add\r\nItem ID already exists. "
                                          "Do you want to replace existing item?"),
                           false))
                return;
            // The question ran an event loop; the list may have changed meanwhile.
            Idx = IndexOf(ID);
            break;
        case RaNewID:
            Item.ID = GetNextID();
            break;
        }
    }
    if (Idx >= 0)
        m_items[Idx] = std::move(Item);
    else
        m_items.append(std::move(Item));
    Sort();
}

void TxBiStrings::Delete(int ID)
{
    const int Idx = IndexOf(ID);
    if (Idx < 0)
        RaiseError(QStringLiteral("Item (@) does not exist.").replace(QLatin1Char('@'), QString::number(ID)));
    m_items.remove(Idx);
}

void TxBiStrings::Clear() { m_items.clear(); }

void TxBiStrings::Exchange(int Index1, int Index2)
{
    if (Index1 < 0 || Index1 >= GetCount() || Index2 < 0 || Index2 >= GetCount())
        RaiseError(QStringLiteral("TxBiStrings.Exchange: item index out of range."));
    m_items.swapItemsAt(Index1, Index2);
}

void TxBiStrings::Assign(const TxBiStrings& Source)
{
    if (&Source == this)
        return;
    // Item by item with RaNothing: a later duplicate ID replaces the captions of the first,
    // in its place. The index keeps this linear for long lists.
    QVector<TxBilingualItem> Items;
    QHash<int, int> Position;
    for (const TxBilingualItem& Item : Source.m_items) {
        const auto Found = Position.constFind(Item.ID);
        if (Found != Position.constEnd()) {
            Items[*Found] = Item;
        } else {
            Position.insert(Item.ID, int(Items.size()));
            Items.append(Item);
        }
    }
    std::stable_sort(Items.begin(), Items.end(), ByID);
    m_items = std::move(Items);
}

void TxBiStrings::Assign(const QVariant& Source)
{
    if (Source.metaType() != QMetaType::fromType<TxBiStrings>())
        RaiseError(QStringLiteral("TxBiStrings.Assign: Incompatible source."));
    Assign(Source.value<TxBiStrings>());
}

TxBilingualItem TxBiStrings::GetBilingualItem(int PItemIndex) const
{
    if (PItemIndex < 0 || PItemIndex >= GetCount())
        RaiseError(QStringLiteral("TxBiStrings.GetBilingualItem: item index out of range."));
    return m_items.at(PItemIndex);
}

QString TxBiStrings::GetItem(int ID) const
{
    const int Idx = IndexOf(ID);
    if (Idx < 0)
        RaiseError(QStringLiteral("The item (") + QString::number(ID) + QStringLiteral(") does not exist."));
    const TxBilingualItem& Item = m_items.at(Idx);
    return BiStr(Item.StrArabic, Item.StrEnglish);
}

int TxBiStrings::GetNextID() const
{
    // Each item above the running proposal moves it past that item. An ID equal to the
    // proposal leaves it alone, so the proposal can be taken: callers check with IndexOf.
    int R = 1;
    for (const TxBilingualItem& Item : m_items) {
        // 32-bit arithmetic: past the largest ID the proposal wraps to the smallest.
        if (R < Item.ID)
            R = int(quint32(Item.ID) + 1u);
    }
    return R;
}

int TxBiStrings::IndexOf(int ID) const
{
    // Linear: Exchange may have left the list out of order.
    for (int I = 0; I < GetCount(); ++I)
        if (m_items.at(I).ID == ID)
            return I;
    return -1;
}

void TxBiStrings::Sort()
{
    if (!std::is_sorted(m_items.cbegin(), m_items.cend(), ByID))
        std::stable_sort(m_items.begin(), m_items.end(), ByID);
}

void TxBiStrings::ReadItems(TReader& Reader)
{
    // Everything is read aside first, so a bad stream leaves the list as it was. The count
    // only confirms what follows: nothing is reserved for it, so a forged count costs nothing.
    Reader.ReadListBegin();
    const qint32 Count = Reader.ReadInteger();
    if (Count < 0)
        throw EReadError(QStringLiteral("TxBiStrings.ReadItems\r\nInvalid item count %1.").arg(Count));
    QVector<TxBilingualItem> Items;
    QSet<int> Seen;
    for (qint32 I = 0; I < Count; ++I) {
        TxBilingualItem Item;
        Item.ID = Reader.ReadInteger();
        Item.StrArabic = Reader.ReadString();
        Item.StrEnglish = Reader.ReadString();
        // As adding with RaAbort: the first item of an ID wins.
        if (!Seen.contains(Item.ID)) {
            Seen.insert(Item.ID);
            Items.append(std::move(Item));
        }
    }
    if (!Reader.EndOfList())
        throw EReadError(QStringLiteral("TxBiStrings.ReadItems\r\nThe list holds more than %1 items.").arg(Count));
    Reader.ReadListEnd();
    std::stable_sort(Items.begin(), Items.end(), ByID);
    m_items = std::move(Items);
}

void TxBiStrings::WriteItems(TWriter& Writer) const
{
    Writer.WriteListBegin();
    Writer.WriteInteger(GetCount());
    for (const TxBilingualItem& Item : m_items) {
        Writer.WriteInteger(Item.ID);
        Writer.WriteString(Item.StrArabic);
        Writer.WriteString(Item.StrEnglish);
    }
    Writer.WriteListEnd();
}

QDataStream& operator<<(QDataStream& Stream, const TxBiStrings& List)
{
    TWriter Writer(Stream);
    List.WriteItems(Writer);
    return Stream;
}

QDataStream& operator>>(QDataStream& Stream, TxBiStrings& List)
{
    TReader Reader(Stream);
    List.ReadItems(Reader);
    return Stream;
}

TQxStrings::TQxStrings(QObject* AOwner) : QObject(AOwner) {}

TQxStrings::~TQxStrings() = default;

void TQxStrings::SetStrings(const QStringList& Value)
{
    if (Value == m_strings)
        return;
    m_strings = Value;
    Q_EMIT StringsChanged();
}

QString TQxStrings::GetString(int Index) const
{
    if (Index < 0 || Index >= m_strings.size())
        RaiseError(objectName() + QStringLiteral(".GetString: Index out of range."));
    return m_strings.at(Index);
}

} // namespace Kesh
