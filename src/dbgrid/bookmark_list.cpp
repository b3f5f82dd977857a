// Kesh for Qt — the records selected in a grid.
#include "bookmark_list.h"
#include "db_grid.h"
#include "platform/data/dataset.h"
#include "platform/data/dataset_model.h"
#include <QHeaderView>

namespace Kesh {

struct TQxBookmarkListPrivate
{
    TQxCustomDBGrid* Grid = nullptr;
    QList<QByteArray> List;
    // the last look-up
    mutable QByteArray CacheItem;
    mutable int CacheIndex = -1;
    mutable bool CacheFound = false;
    bool LinkActive = false;

    TDataSet* DataSet() const { return Grid->DataSet(); }
    void Invalidate() const
    {
        CacheItem.clear();
        CacheIndex = -1;
        CacheFound = false;
    }
};

TQxBookmarkList::TQxBookmarkList(TQxCustomDBGrid* Grid) : d(new TQxBookmarkListPrivate) { d->Grid = Grid; }
TQxBookmarkList::~TQxBookmarkList() = default;

int TQxBookmarkList::Count() const { return int(d->List.size()); }
QByteArray TQxBookmarkList::Items(int Index) const { return d->List.value(Index); }

QByteArray TQxBookmarkList::CurrentRow() const
{
    if (!d->LinkActive || !d->DataSet() || !d->DataSet()->Active())
        throw EInvalidGridOperation(QStringLiteral("Cannot perform this operation on a closed dataset"));
    return d->DataSet()->Bookmark();
}

bool TQxBookmarkList::CurrentRowSelected() const
{
    const QByteArray Current = CurrentRow();
    int Index;
    return !Current.isEmpty() && Find(Current, Index);
}

void TQxBookmarkList::SetCurrentRowSelected(bool Value)
{
    const QByteArray Current = CurrentRow();
    if (Current.isEmpty())
        return;
    int Index;
    if (Find(Current, Index) == Value)
        return;
    if (Value)
        InsertItem(Index, Current);
    else
        DeleteItem(Index);
    d->Grid->viewport()->update();
    d->Grid->verticalHeader()->viewport()->update();
}

bool TQxBookmarkList::Find(const QByteArray& Item, int& Index) const
{
    // The same bookmark as last time (a byte array shares its data when copied).
    if (!d->CacheItem.isNull() && Item.constData() == d->CacheItem.constData() && d->CacheIndex >= 0) {
        Index = d->CacheIndex;
        return d->CacheFound;
    }
    int Low = 0, High = Count() - 1;
    bool Found = false;
    while (Low <= High) {
        const int Mid = (Low + High) / 2;
        const int R = Compare(d->List[Mid], Item);
        if (R >= 0) {
            High = Mid - 1;
            if (R == 0) {
                Found = true;
                Low = Mid;
            }
        } else {
            Low = Mid + 1;
        }
    }
    Index = Low;
    d->CacheItem = Item;
    d->CacheIndex = Index;
    d->CacheFound = Found;
    return Found;
}

int TQxBookmarkList::IndexOf(const QByteArray& Item) const
{
    int Index;
    return Find(Item, Index) ? Index : -1;
}

void TQxBookmarkList::InsertItem(int Index, const QByteArray& Item)
{
    d->List.insert(std::clamp(Index, 0, Count()), Item);
    d->Invalidate();
}

void TQxBookmarkList::DeleteItem(int Index)
{
    if (Index < 0 || Index >= Count())
        return;
    d->List.removeAt(Index);
    d->Invalidate();
}

void TQxBookmarkList::Clear()
{
    if (d->List.isEmpty())
        return;
    d->List.clear();
    d->Invalidate();
    d->Grid->viewport()->update();
    d->Grid->verticalHeader()->viewport()->update();
}

void TQxBookmarkList::Delete()
{
    TDataSet* Ds = d->DataSet();
    if (!Ds)
        return;
    Ds->DisableControls();
    try {
        for (int I = Count() - 1; I >= 0; --I) {
            Ds->GotoBookmark(d->List[I]);
            Ds->Delete();
            DeleteItem(I);
        }
    } catch (...) {
        Ds->EnableControls();
        throw;
    }
    Ds->EnableControls();
}

bool TQxBookmarkList::Refresh()
{
    TDataSet* Ds = d->DataSet();
    if (!Ds)
        return false;
    Ds->CheckBrowseMode();
    bool Dropped = false;
    for (int I = Count() - 1; I >= 0; --I)
        if (!Ds->BookmarkValid(d->List[I])) {
            DeleteItem(I);
            Dropped = true;
        }
    Ds->UpdateCursorPos();
    if (Dropped)
        d->Grid->viewport()->update();
    return Dropped;
}

int TQxBookmarkList::Compare(const QByteArray& Item1, const QByteArray& Item2) const
{
    TDataSet* Ds = d->DataSet();
    return Ds ? Ds->CompareBookmarks(Item1, Item2) : 0;
}

void TQxBookmarkList::LinkActive(bool Value)
{
    Clear();
    d->List.clear();
    d->Invalidate();
    d->LinkActive = Value;
}

void TQxBookmarkList::DataChanged() { d->Invalidate(); }

void TQxBookmarkList::SetRowSelected(int Row, bool Value)
{
    TDataSet* Ds = d->DataSet();
    if (!d->LinkActive || !Ds || !Ds->Active() || Row < 0 || Row >= Ds->FetchedRowCount())
        return;
    QByteArray Item;
    {
        TRowReader Reader(Ds, Row);
        Item = Ds->Bookmark();
    }
    if (Item.isEmpty())
        return;
    int Index;
    if (Find(Item, Index) == Value)
        return;
    if (Value)
        InsertItem(Index, Item);
    else
        DeleteItem(Index);
    d->Grid->viewport()->update();
    d->Grid->verticalHeader()->viewport()->update();
}

bool TQxBookmarkList::RowSelected(int Row) const
{
    TDataSet* Ds = d->DataSet();
    if (d->List.isEmpty() || !d->LinkActive || !Ds || !Ds->Active() || Row < 0 || Row >= Ds->FetchedRowCount())
        return false;
    QByteArray Item;
    {
        TRowReader Reader(Ds, Row);
        Item = Ds->Bookmark();
    }
    int Index;
    return !Item.isEmpty() && Find(Item, Index);
}

} // namespace Kesh
