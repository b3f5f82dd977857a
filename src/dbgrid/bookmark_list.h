// Kesh for Qt — the records selected in a grid, as a sorted list of bookmarks.
#pragma once
#include "platform/exceptions.h"
#include "platform/kesh_global.h"
#include <QByteArray>
#include <QList>
#include <memory>

namespace Kesh {

class TQxCustomDBGrid;

/// A grid operation that cannot be done now (on a closed dataset).
class KESH_EXPORT EInvalidGridOperation : public Exception
{
public:
    using Exception::Exception;
};

/// The records selected in a grid with dgMultiSelect, as the dataset's bookmarks kept in the
/// dataset's bookmark order (so a look-up is a binary search).
class KESH_EXPORT TQxBookmarkList
{
public:
    explicit TQxBookmarkList(TQxCustomDBGrid* Grid);
    ~TQxBookmarkList();
    TQxBookmarkList(const TQxBookmarkList&) = delete;
    TQxBookmarkList& operator=(const TQxBookmarkList&) = delete;

    int Count() const;
    QByteArray Items(int Index) const;
    QByteArray operator[](int Index) const { return Items(Index); }
    /// Whether the current record is selected. Raises EInvalidGridOperation on a closed dataset.
    bool CurrentRowSelected() const;
    /// Selects or unselects the current record (nothing on an empty dataset).
    void SetCurrentRowSelected(bool Value);
    /// Binary search: true when found; Index is the place found or the insertion place.
    bool Find(const QByteArray& Item, int& Index) const;
    int IndexOf(const QByteArray& Item) const;
    void InsertItem(int Index, const QByteArray& Item);
    void DeleteItem(int Index);
    /// Empties the list (and repaints the grid when it was not empty).
    void Clear();
    /// Deletes every selected record from the dataset, then empties the list.
    void Delete();
    /// Drops bookmarks that are no longer valid; true when any was dropped.
    bool Refresh();
    /// The dataset's CompareBookmarks.
    int Compare(const QByteArray& Item1, const QByteArray& Item2) const;
    /// The current record's bookmark. Raises EInvalidGridOperation on a closed dataset.
    QByteArray CurrentRow() const;
    /// Clears the list and records whether the grid's link is active.
    void LinkActive(bool Value);
    /// Forgets the cached look-up.
    void DataChanged();
    /// Selects or unselects the record at view row Row (without moving the cursor).
    void SetRowSelected(int Row, bool Value);
    /// Whether view row Row's record is selected.
    bool RowSelected(int Row) const;

private:
    std::unique_ptr<struct TQxBookmarkListPrivate> const d;
};

} // namespace Kesh
