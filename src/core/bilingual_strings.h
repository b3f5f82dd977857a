// Kesh for Qt — bilingual string lists: fixed choices with an Arabic and an English caption.
#pragma once
#include "platform/kesh_global.h"
#include <QDataStream>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

namespace Kesh {

class TReader;
class TWriter;

/// One choice: its key and its two captions.
struct KESH_EXPORT TxBilingualItem
{
    int ID = 0;
    QString StrArabic;
    QString StrEnglish;

    bool operator==(const TxBilingualItem& Other) const;
    bool operator!=(const TxBilingualItem& Other) const { return !(*this == Other); }
};

/// What TxBiStrings::Add does when the ID is already in the list.
enum TxBiStrReplaceActions {
    RaNothing, ///< replace the captions silently
    RaAbort,   ///< leave the list unchanged, silently
    RaError,   ///< show "Item ID already exists." and abort
    RaConfirm, ///< ask the user; replace on yes
    RaNewID    ///< overwrite the existing item with the new captions under GetNextID
};

/// A list of bilingual items kept sorted by ascending ID; a value type, copied by value.
///
/// A misuse (an unknown ID, an index out of range) shows its message with ShowError and
/// ends the operation with the silent abort (EAbort); the list is then unchanged.
/// Components store it as their "Items" value through the QDataStream operators below,
/// so a QVariant holding a list streams the same way.
class KESH_EXPORT TxBiStrings
{
public:
    TxBiStrings() = default;

    /// Adds the item, or resolves a duplicate ID by PAction; the list is sorted afterwards.
    void Add(int ID, const QString& PStrArabic, const QString& PStrEnglish, TxBiStrReplaceActions PAction);
    /// Removes the item with this ID (an ID, not an index).
    void Delete(int ID);
    void Clear();
    /// Swaps the items at two positions; the list may then be out of order until Sort or Add.
    void Exchange(int Index1, int Index2);
    /// Becomes a copy of Source, item by item.
    void Assign(const TxBiStrings& Source);
    /// As Assign, for a value that must hold a TxBiStrings ("Incompatible source." otherwise).
    void Assign(const QVariant& Source);

    /// The item at a position, 0 <= PItemIndex < Count.
    TxBilingualItem GetBilingualItem(int PItemIndex) const;
    /// The caption of the item with this ID in the application's language.
    QString GetItem(int ID) const;
    int GetCount() const { return int(m_items.size()); }
    int Count() const { return GetCount(); }
    /// A proposal for a new ID; it may be one that is present (see IndexOf).
    int GetNextID() const;
    /// Position of the first item with this ID, or -1.
    int IndexOf(int ID) const;
    /// Sorts by ascending ID.
    void Sort();

    /// Replaces the list by the one read: list begin, count, (ID, Arabic, English) per item,
    /// list end. A duplicate ID keeps its first item. A truncated or malformed stream raises
    /// EReadError and leaves the list unchanged.
    void ReadItems(TReader& Reader);
    /// Writes the list in the form ReadItems reads; an empty list is written too.
    void WriteItems(TWriter& Writer) const;

    const QVector<TxBilingualItem>& Items() const { return m_items; }

    bool operator==(const TxBiStrings& Other) const { return m_items == Other.m_items; }
    bool operator!=(const TxBiStrings& Other) const { return !(*this == Other); }

private:
    QVector<TxBilingualItem> m_items;
};

/// The stored form of a list (its "Items" value), as WriteItems and ReadItems give it.
KESH_EXPORT QDataStream& operator<<(QDataStream& Stream, const TxBiStrings& List);
/// Reads a list; raises EReadError for a truncated or malformed stream, leaving List unchanged.
KESH_EXPORT QDataStream& operator>>(QDataStream& Stream, TxBiStrings& List);

/// A non-visual component holding a plain list of lines, handed out by index.
class KESH_EXPORT TQxStrings : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QStringList Strings READ Strings WRITE SetStrings NOTIFY StringsChanged)

public:
    explicit TQxStrings(QObject* AOwner = nullptr);
    ~TQxStrings() override;

    const QStringList& Strings() const { return m_strings; }
    /// Copies the lines.
    void SetStrings(const QStringList& Value);
    /// Line Index; out of range shows "<Name>.GetString: Index out of range." and aborts.
    QString GetString(int Index) const;

Q_SIGNALS:
    void StringsChanged();

private:
    QStringList m_strings;
};

} // namespace Kesh

Q_DECLARE_METATYPE(Kesh::TxBiStrings)
