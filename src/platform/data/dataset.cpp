#include "dataset.h"
#include "data_source.h"
#include "db_consts_p.h"
#include "fields.h"
#include "record_store_p.h"
#include "../rtl/datetime.h"
#include <QDateTime>
#include <QtEndian>
#include <algorithm>
#include <climits>
#include <vector>

namespace Kesh {

using namespace DBConsts;
using Detail::TColumnBlock;
using Detail::TRecordStore;

namespace {

QByteArray EncodeBookmark(quint32 Id)
{
    QByteArray B(sizeof(quint32), Qt::Uninitialized);
    qToBigEndian(Id, B.data());
    return B;
}

bool DecodeBookmark(const QByteArray& B, quint32& Id)
{
    if (B.size() != int(sizeof(quint32)))
        return false;
    Id = qFromBigEndian<quint32>(B.constData());
    return true;
}

bool IsStringType(TFieldType T)
{
    switch (T) {
    case ftString: case ftWideString: case ftFixedChar: case ftFixedWideChar: case ftMemo:
    case ftWideMemo: case ftFmtMemo: case ftGuid:
        return true;
    default:
        return false;
    }
}

} // namespace

class TDataSetPrivate
{
public:
    explicit TDataSetPrivate(TDataSet* Q) : q(Q) {}

    TDataSet* q;
    TDataSetState state = dsInactive;
    TFieldDefs defs;
    QList<TField*> fields;
    std::shared_ptr<TRecordStore> store;
    quint64 storeGeneration = 0;
    bool fetchedAll = true;
    int fetchBlock = 256;
    int cursor = -1;       // view row of the cursor
    int active = -1;       // view row the fields read
    quint32 cursorId = 0;  // the cursor's row, to find it again after a clone changed the order
    bool bof = true;
    bool eof = true;
    bool modified = false;
    TRecordValues editBuffer;  // the row being edited or inserted
    TRecordValues oldValues;   // the row as read, in dsEdit
    QBitArray changed;         // columns changed by the edit
    int insertPos = -1;        // view row of the unposted row in dsInsert
    QList<TDataSource*> sources;
    int disableCount = 0;
    TDataSetState disableState = dsInactive;
    TDataEvent enableEvent = deDataSetChange;
    quint64 structureVersion = 0;
    TRecordValues scratch;     // the row a descendant is filling (AppendRow)
    qint64 scratchId = -1;     // its id in the store, until committed
    TColumnBlock* fetchedBlocks = nullptr;  // the blocks of the row BeginFetchedRow started
    int fetchedRow = 0;                     // and its place in them

    void CommitRow()
    {
        if (scratchId < 0)
            return;
        store->PutAll(quint32(scratchId), scratch);
        scratchId = -1;
    }
    void ReleaseScratch()
    {
        CommitRow();
        scratch.fill(QVariant());
    }

    // Lets go of the rows (a clone may keep them).
    void DropStore()
    {
        if (store) {
            auto& Sharers = store->Sharers;
            Sharers.erase(std::remove(Sharers.begin(), Sharers.end(), q), Sharers.end());
        }
        store.reset();
    }
    // A row was written: this dataset and every other that shares its rows hear of it.
    void RowWritten(const TRecordValues& Old, const TRecordValues& New)
    {
        emit q->RowWritten(Old, New);
        const std::vector<TDataSet*> Others = store ? store->Sharers : std::vector<TDataSet*>();
        for (TDataSet* Other : Others)
            if (Other != q)
                emit Other->RowWritten(Old, New);
    }

    bool Editing() const { return state == dsEdit || state == dsInsert; }
    int StoredCount() const { return store ? store->Count() : 0; }
    int ViewCount() const { return StoredCount() + (insertPos >= 0 ? 1 : 0); }
    // Position in the store of a view row; -1 for the unposted row.
    int StoreIndex(int View) const
    {
        if (insertPos < 0 || View < insertPos)
            return View;
        return View == insertPos ? -1 : View - 1;
    }
    void SetCursor(int View)
    {
        cursor = View;
        active = View;
        const int S = View >= 0 ? StoreIndex(View) : -1;
        if (S >= 0)
            cursorId = store->IdAt(S);
    }
    // Another cursor on the same rows inserted or deleted: find our row again.
    void SyncStore()
    {
        if (!store || store->Generation() == storeGeneration)
            return;
        storeGeneration = store->Generation();
        int Pos = store->PositionOf(cursorId, cursor);
        if (Pos < 0)
            Pos = std::min(cursor, store->Count() - 1);
        if (insertPos >= 0) {
            insertPos = std::clamp(insertPos, 0, store->Count());
            Pos = insertPos;
        }
        SetCursor(store->Count() == 0 && insertPos < 0 ? -1 : Pos);
        ++structureVersion;
    }
    void MarkOwnChange()
    {
        if (store)
            storeGeneration = store->Generation();
        ++structureVersion;
    }
    // The first block after opening is small: a form or grid shows its first rows at once.
    static constexpr int FirstBlock = 64;
    void FetchBlock()
    {
        if (fetchedAll)
            return;
        const int Size = StoredCount() == 0 ? std::min(fetchBlock, FirstBlock) : fetchBlock;
        int Got = 0;
        try {
            Got = q->InternalFetch(Size);
        } catch (...) {
            ReleaseScratch();
            throw;
        }
        ReleaseScratch();
        if (Got < Size)
            fetchedAll = true;
    }
    bool EnsureRows(int Count)
    {
        while (ViewCount() < Count && !fetchedAll)
            FetchBlock();
        return ViewCount() >= Count;
    }
    void ClearEdit()
    {
        editBuffer.clear();
        oldValues.clear();
        changed.clear();
        insertPos = -1;
    }
    void SetBofEofAfterResync()
    {
        const bool Empty = ViewCount() == 0;
        bof = Empty;
        eof = Empty;
    }
    TRecordValues StoredRow(int View) const
    {
        const int S = StoreIndex(View);
        if (S < 0)
            return TRecordValues(defs.Count());
        return store->Values(store->IdAt(S));
    }
    bool HasPersistentFields() const
    {
        return std::any_of(fields.cbegin(), fields.cend(), [](TField* F) { return !F->IsDynamic(); });
    }
    void BindFields();
    void UnbindFields();
    bool FieldsMatchDefs() const;
    void CheckActive() const
    {
        if (state == dsInactive)
            DatabaseError(SDataSetClosed());
    }
    QVariantList KeyValuesOf(const QStringList& Names) const;
    int FindRow(const QList<TField*>& Keys, const QVariantList& Values, TLocateOptions Options);
};

// ---- fields

void TDataSetPrivate::BindFields()
{
    if (HasPersistentFields()) {
        for (TField* F : fields) {
            const int Column = defs.IndexOf(F->FieldName());
            if (Column < 0)
                DatabaseError(SFieldNotFound(F->FieldName()));
            F->Bind(Column, false);
        }
        return;
    }
    for (int i = 0; i < defs.Count(); ++i) {
        const TFieldDef& Def = defs[i];
        // Dynamic fields have no QObject parent: the dataset frees them, and a look-up that
        // opens a query per call does not pay for child events.
        TField* F = CreateFieldOfType(Def.DataType, nullptr);
        if (!F)
            F = new TWideStringField();
        F->SetDataSet(q);
        F->SetFieldName(Def.Name);
        if (Def.Size > 0)
            F->SetSize(Def.Size);
        F->SetRequired(Def.Required);
        F->SetReadOnly(Def.ReadOnly);
        F->Bind(i, true);
    }
}

void TDataSetPrivate::UnbindFields()
{
    const QList<TField*> All = fields;
    for (TField* F : All) {
        if (F->IsDynamic())
            delete F;  // removes itself from the list
        else
            F->Bind(-1, false);
    }
}

bool TDataSetPrivate::FieldsMatchDefs() const
{
    for (TField* F : fields)
        if (defs.IndexOf(F->FieldName()) < 0)
            return false;
    return HasPersistentFields() || fields.size() == defs.Count();
}

// ---- construction

TDataSet::TDataSet(QObject* Owner) : QObject(Owner), d(new TDataSetPrivate(this)) {}

TDataSet::~TDataSet()
{
    CloseSilently();
    const QList<TDataSource*> Sources = d->sources;
    for (TDataSource* S : Sources)
        S->SetDataSet(nullptr);
    const QList<TField*> All = d->fields;
    for (TField* F : All) {
        if (F->IsDynamic())
            delete F;
        else
            F->SetDataSet(nullptr);
    }
}

// ---- opening and closing

bool TDataSet::Active() const { return d->state != dsInactive; }
TDataSetState TDataSet::State() const { return d->state; }
bool TDataSet::Modified() const { return d->modified; }
bool TDataSet::CanModify() const { return true; }

void TDataSet::SetActive(bool Value)
{
    if (Value == Active())
        return;
    if (!Value) {
        DoBeforeClose();
        CloseSilently();
        DoAfterClose();
        return;
    }
    DoBeforeOpen();
    try {
        d->DropStore();
        d->fetchedBlocks = nullptr;
        d->fetchedAll = false;
        d->ClearEdit();
        InternalOpen();
        if (!d->store)
            d->store = std::make_shared<TRecordStore>(d->defs.Count());
        d->ReleaseScratch();
        d->storeGeneration = d->store->Generation();
        d->BindFields();
        d->EnsureRows(1);
    } catch (...) {
        d->scratchId = -1;
        d->fetchedBlocks = nullptr;
        try {
            InternalClose();
        } catch (...) {
        }
        d->UnbindFields();
        d->DropStore();
        d->fetchedAll = true;
        d->cursor = d->active = -1;
        throw;
    }
    ++d->structureVersion;
    d->SetCursor(d->ViewCount() > 0 ? 0 : -1);
    d->bof = true;
    d->eof = d->ViewCount() == 0;
    SetState(dsBrowse);
    emit RowsReset();
    DoAfterOpen();
}

void TDataSet::CloseSilently()
{
    if (d->state == dsInactive)
        return;
    d->ClearEdit();
    SetState(dsInactive);
    try {
        InternalClose();
    } catch (...) {
        // The rows are released below whatever the row source reported.
    }
    d->UnbindFields();
    d->scratchId = -1;
    d->fetchedBlocks = nullptr;
    d->scratch.clear();
    d->DropStore();
    d->fetchedAll = true;
    d->cursor = d->active = -1;
    d->bof = d->eof = true;
    ++d->structureVersion;
    emit RowsReset();
}

void TDataSet::SetState(TDataSetState Value)
{
    if (d->state == Value)
        return;
    d->state = Value;
    d->modified = false;
    DataEvent(deUpdateState, 0);
}

// ---- navigation

void TDataSet::First()
{
    CheckBrowseMode();
    DoBeforeScroll();
    d->SyncStore();
    d->SetCursor(d->ViewCount() > 0 ? 0 : -1);
    d->bof = true;
    d->eof = d->ViewCount() == 0;
    DataEvent(deDataSetChange, 0);
    DoAfterScroll();
}

void TDataSet::Last()
{
    CheckBrowseMode();
    DoBeforeScroll();
    FetchAll();
    d->SyncStore();
    d->SetCursor(d->ViewCount() - 1);
    d->eof = true;
    d->bof = d->ViewCount() == 0;
    DataEvent(deDataSetChange, 0);
    DoAfterScroll();
}

int TDataSet::MoveBy(int Distance)
{
    CheckBrowseMode();
    d->SyncStore();
    if (Distance == 0 || (Distance > 0 && d->eof) || (Distance < 0 && d->bof))
        return 0;
    DoBeforeScroll();
    d->bof = d->eof = false;
    qint64 Target = qint64(d->cursor) + Distance;
    if (Distance > 0) {
        d->EnsureRows(int(std::min<qint64>(Target + 1, INT_MAX)));
        if (Target > d->ViewCount() - 1) {
            Target = d->ViewCount() - 1;
            d->eof = true;
        }
    } else if (Target < 0) {
        Target = 0;
        d->bof = true;
    }
    const int Moved = int(Target) - d->cursor;
    d->SetCursor(int(Target));
    DataEvent(deDataSetScroll, Moved);
    DoAfterScroll();
    return Moved;
}

bool TDataSet::Bof() const { return d->bof; }
bool TDataSet::Eof() const { return d->eof; }

int TDataSet::RecNo() const
{
    d->SyncStore();
    if (d->state == dsInactive || d->active < 0)
        return 0;
    if (d->StoreIndex(d->active) < 0)
        return -1;
    return d->StoreIndex(d->active) + 1;
}

void TDataSet::SetRecNo(int Value)
{
    CheckBrowseMode();
    d->SyncStore();
    if (Value < 1 || Value == RecNo())
        return;
    DoBeforeScroll();
    d->EnsureRows(Value);
    d->SetCursor(std::min(Value, d->ViewCount()) - 1);
    d->bof = d->eof = false;
    DataEvent(deDataSetChange, 0);
    DoAfterScroll();
}

int TDataSet::RecordCount() const
{
    if (d->state == dsInactive)
        return 0;
    const_cast<TDataSet*>(this)->FetchAll();
    return d->StoredCount();
}

bool TDataSet::IsEmpty() const
{
    if (d->state == dsInactive)
        return true;
    d->EnsureRows(1);
    return d->ViewCount() == 0;
}

// ---- bookmarks

QByteArray TDataSet::Bookmark() const
{
    d->SyncStore();
    if (d->state == dsInactive || d->active < 0)
        return QByteArray();
    const int S = d->StoreIndex(d->active);
    return S < 0 ? QByteArray() : EncodeBookmark(d->store->IdAt(S));
}

bool TDataSet::BookmarkValid(const QByteArray& Bookmark) const
{
    quint32 Id;
    return d->store && DecodeBookmark(Bookmark, Id) && d->store->Alive(Id);
}

int TDataSet::CompareBookmarks(const QByteArray& Bookmark1, const QByteArray& Bookmark2) const
{
    quint32 A = 0, B = 0;
    const bool HasA = DecodeBookmark(Bookmark1, A);
    const bool HasB = DecodeBookmark(Bookmark2, B);
    if (!HasA || !HasB)
        return int(HasA) - int(HasB);
    return A < B ? -1 : (A > B ? 1 : 0);
}

void TDataSet::GotoBookmark(const QByteArray& Bookmark)
{
    CheckBrowseMode();
    d->SyncStore();
    quint32 Id;
    if (!DecodeBookmark(Bookmark, Id) || !d->store->Alive(Id))
        DatabaseError(SRecordNotFound());
    const int Pos = d->store->PositionOf(Id, d->cursor);
    if (Pos < 0)
        DatabaseError(SRecordNotFound());
    DoBeforeScroll();
    d->SetCursor(Pos);
    d->bof = d->eof = false;
    DataEvent(deDataSetChange, 0);
    DoAfterScroll();
}

// ---- editing

void TDataSet::CheckCanModify() const
{
    if (!CanModify())
        DatabaseError(SDataSetReadOnly());
}

void TDataSet::Edit()
{
    d->CheckActive();
    if (d->Editing())
        return;
    if (IsEmpty()) {
        Insert();
        return;
    }
    CheckBrowseMode();
    CheckCanModify();
    DoBeforeEdit();
    d->SyncStore();
    d->oldValues = d->StoredRow(d->cursor);
    d->editBuffer = d->oldValues;
    d->changed = QBitArray(d->defs.Count());
    d->active = d->cursor;
    SetState(dsEdit);
    DataEvent(deRecordChange, 0);
    DoAfterEdit();
}

void TDataSet::Insert()
{
    BeginInsert(false);
}

void TDataSet::Append()
{
    BeginInsert(true);
}

// A new row before the current one, or after the last one (all rows read first).
void TDataSet::BeginInsert(bool AtEnd)
{
    CheckBrowseMode();
    CheckCanModify();
    DoBeforeInsert();
    DoBeforeScroll();
    if (AtEnd)
        FetchAll();
    d->SyncStore();
    const int Previous = d->cursor;
    const int Pos = AtEnd ? d->StoredCount() : std::max(d->cursor, 0);
    d->insertPos = Pos;
    d->editBuffer = TRecordValues(d->defs.Count());
    d->oldValues = d->editBuffer;
    d->changed = QBitArray(d->defs.Count());
    d->SetCursor(Pos);
    d->bof = false;
    d->eof = AtEnd;
    ++d->structureVersion;
    SetState(dsInsert);
    try {
        DoOnNewRecord();
    } catch (...) {
        d->ClearEdit();
        d->SetCursor(Previous);
        d->SetBofEofAfterResync();
        ++d->structureVersion;
        SetState(dsBrowse);
        DataEvent(deDataSetChange, 0);
        throw;
    }
    d->modified = false;
    DataEvent(deDataSetChange, 0);
    DoAfterInsert();
    DoAfterScroll();
}

void TDataSet::Post()
{
    UpdateRecord();
    DataEvent(deCheckBrowseMode, 0);
    DoBeforePost();
    d->SyncStore();
    for (TField* F : std::as_const(d->fields))
        if (F->Required() && F->FieldNo() > 0 && d->editBuffer.value(F->FieldNo() - 1).isNull()) {
            // An auto-increment key is filled by the server on insert.
            if (!(d->state == dsInsert && F->DataType() == ftAutoInc))
                DatabaseError(SFieldRequired(F->DisplayName()));
        }
    TRecordValues Old;
    TRecordValues Values = d->editBuffer;
    if (d->state == dsEdit) {
        Old = d->oldValues;
        if (d->changed.count(true) > 0)
            ApplyUpdate(d->oldValues, Values, d->changed);
        d->store->PutAll(d->store->IdAt(d->StoreIndex(d->cursor)), Values);
    } else {
        ApplyInsert(Values);
        const int Pos = d->insertPos;
        d->insertPos = -1;
        d->store->InsertAt(Pos, Values);
        d->MarkOwnChange();
        d->SetCursor(Pos);
    }
    d->ClearEdit();
    d->SetBofEofAfterResync();
    d->RowWritten(Old, Values);
    SetState(dsBrowse);
    DataEvent(deDataSetChange, 0);
    DoAfterPost();
}

void TDataSet::Cancel()
{
    if (!d->Editing())
        return;
    DataEvent(deCheckBrowseMode, 0);
    DoBeforeCancel();
    if (d->state == dsInsert) {
        const int Pos = d->insertPos;
        d->ClearEdit();
        d->SetCursor(std::min(Pos, d->StoredCount() - 1));
        ++d->structureVersion;
    } else {
        d->ClearEdit();
        d->active = d->cursor;
    }
    d->SetBofEofAfterResync();
    SetState(dsBrowse);
    DataEvent(deDataSetChange, 0);
    DoAfterCancel();
}

void TDataSet::Delete()
{
    d->CheckActive();
    if (d->state == dsInsert) {
        Cancel();
        return;
    }
    d->SyncStore();
    if (d->StoredCount() == 0 && !d->EnsureRows(1))
        DatabaseError(SDataSetEmpty());
    CheckCanModify();
    DataEvent(deCheckBrowseMode, 0);
    DoBeforeDelete();
    DoBeforeScroll();
    const int Pos = d->cursor;
    const TRecordValues Old = d->StoredRow(Pos);
    ApplyDelete(Old);
    d->ClearEdit();
    d->store->RemoveAt(Pos);
    d->MarkOwnChange();
    d->RowWritten(Old, TRecordValues());
    d->EnsureRows(Pos + 1);
    d->SetCursor(std::min(Pos, d->ViewCount() - 1));
    d->SetBofEofAfterResync();
    SetState(dsBrowse);
    DataEvent(deDataSetChange, 0);
    DoAfterDelete();
    DoAfterScroll();
}

QVariantList TDataSetPrivate::KeyValuesOf(const QStringList& Names) const
{
    QVariantList Values;
    for (const QString& Name : Names) {
        TField* F = q->FindField(Name);
        if (!F)
            return QVariantList();
        Values << F->AsVariant();
    }
    return Values;
}

void TDataSet::Refresh()
{
    CheckBrowseMode();
    DoBeforeRefresh();
    d->SyncStore();
    const QStringList KeyNames = RefreshKeyFields();
    const QVariantList KeyValues = d->cursor >= 0 ? d->KeyValuesOf(KeyNames) : QVariantList();
    const int OldCursor = std::max(d->cursor, 0);
    try {
        InternalRefresh();
        if (d->store)
            d->ReleaseScratch();
        if (!d->store) {
            d->store = std::make_shared<TRecordStore>(d->defs.Count());
            d->fetchedAll = false;
        }
        d->storeGeneration = d->store->Generation();
        if (!d->FieldsMatchDefs()) {
            d->UnbindFields();
            d->BindFields();
            DataEvent(deLayoutChange, 0);
        } else {
            for (TField* F : std::as_const(d->fields))
                F->Bind(d->defs.IndexOf(F->FieldName()), F->IsDynamic());
        }
    } catch (...) {
        CloseSilently();
        throw;
    }
    int Pos = -1;
    if (!KeyValues.isEmpty()) {
        QList<TField*> Keys;
        for (const QString& Name : KeyNames)
            Keys << FieldByName(Name);
        Pos = d->FindRow(Keys, KeyValues, {});
    }
    if (Pos < 0) {
        d->EnsureRows(OldCursor + 1);
        Pos = std::min(OldCursor, d->ViewCount() - 1);
    }
    d->SetCursor(Pos);
    d->SetBofEofAfterResync();
    ++d->structureVersion;
    emit RowsReset();
    DataEvent(deDataSetChange, 0);
    DoAfterRefresh();
}

void TDataSet::CheckBrowseMode()
{
    d->CheckActive();
    DataEvent(deCheckBrowseMode, 0);
    if (d->Editing()) {
        UpdateRecord();
        if (d->modified)
            Post();
        else
            Cancel();
    }
}

void TDataSet::UpdateRecord()
{
    if (!d->Editing())
        DatabaseError(SNotEditing());
    DataEvent(deUpdateRecord, 0);
}

void TDataSet::UpdateCursorPos()
{
    d->SyncStore();
    d->active = d->cursor;
}

// ---- fields

const QList<TField*>& TDataSet::Fields() const { return d->fields; }
int TDataSet::FieldCount() const { return int(d->fields.size()); }

TField* TDataSet::FindField(const QString& FieldName) const
{
    for (TField* F : d->fields)
        if (F->FieldName().compare(FieldName, Qt::CaseInsensitive) == 0)
            return F;
    return nullptr;
}

TField* TDataSet::FieldByName(const QString& FieldName) const
{
    TField* F = FindField(FieldName);
    if (!F)
        DatabaseError(SFieldNotFound(FieldName));
    return F;
}

void TDataSet::GetFieldNames(QStringList& List) const
{
    List.clear();
    for (TField* F : d->fields)
        List << F->FieldName();
}

const TFieldDefs& TDataSet::FieldDefs() const { return d->defs; }
TFieldDefs& TDataSet::FieldDefsRef() { return d->defs; }

void TDataSet::AddField(TField* Field)
{
    if (Active())
        DatabaseError(SDataSetOpen());
    if (!d->fields.contains(Field))
        d->fields.append(Field);
}

void TDataSet::RemoveField(TField* Field)
{
    if (d->fields.removeOne(Field) && Active() && !Field->IsDynamic())
        DataEvent(deLayoutChange, 0);
}

QVariant TDataSet::ColumnValue(int Column) const
{
    d->SyncStore();
    if (!d->store || d->active < 0 || Column < 0 || Column >= d->store->Columns())
        return QVariant();
    // While Post tells the listeners of the written row, the edit buffer is already gone and
    // the row read is the stored one.
    if (d->Editing() && d->active == d->cursor && Column < d->editBuffer.size())
        return d->editBuffer[Column];
    const int S = d->StoreIndex(d->active);
    if (S < 0 || S >= d->store->Count())
        return QVariant();
    return d->store->Get(d->store->IdAt(S), Column);
}

QVariant TDataSet::OldColumnValue(int Column) const
{
    if (d->state == dsEdit && d->active == d->cursor && Column >= 0 && Column < d->oldValues.size())
        return d->oldValues[Column];
    if (d->state == dsInsert && d->active == d->cursor)
        return QVariant();
    return ColumnValue(Column);
}

void TDataSet::SetColumnValue(TField* Field, const QVariant& Value)
{
    const int Column = Field->FieldNo() - 1;
    if (Column < 0 || Column >= d->editBuffer.size())
        DatabaseError(SFieldNotFound(Field->FieldName()));
    d->editBuffer[Column] = Value;
    // A value typed back to what was read is no change: nothing to write, nothing to lock on.
    const QVariant& Old = d->oldValues.at(Column);
    const bool Same = (Old.isNull() && Value.isNull()) || (!Old.isNull() && !Value.isNull() && Old == Value);
    d->changed.setBit(Column, d->state == dsInsert || !Same);
    d->active = d->cursor;
}

TRecordValues TDataSet::ActiveValues() const
{
    if (!d->store || d->active < 0)
        return TRecordValues();
    if (d->Editing() && d->active == d->cursor)
        return d->editBuffer;
    return d->StoredRow(d->active);
}

// ---- data-aware controls

void TDataSet::DataEvent(TDataEvent Event, qintptr Info)
{
    if (Event == deFieldChange && d->Editing())
        d->modified = true;
    if (d->disableCount > 0) {
        if ((Event == deUpdateState && d->state == dsInactive) || Event == deLayoutChange)
            d->enableEvent = deLayoutChange;
        return;
    }
    if (d->sources.isEmpty())
        return;  // nobody listens: no work
    const QList<TDataSource*> Sources = d->sources;
    for (TDataSource* S : Sources)
        if (d->sources.contains(S))
            S->DataEvent(Event, Info);
}

void TDataSet::DisableControls()
{
    if (d->disableCount++ == 0) {
        d->disableState = d->state;
        d->enableEvent = deDataSetChange;
    }
}

void TDataSet::EnableControls()
{
    if (d->disableCount == 0 || --d->disableCount > 0)
        return;
    if (d->disableState != d->state)
        DataEvent(deUpdateState, 0);
    if (d->disableState != dsInactive && d->state != dsInactive)
        DataEvent(d->enableEvent, 0);
}

bool TDataSet::ControlsDisabled() const { return d->disableCount > 0; }

void TDataSet::AddDataSource(TDataSource* Source)
{
    if (!d->sources.contains(Source))
        d->sources.append(Source);
}

void TDataSet::RemoveDataSource(TDataSource* Source) { d->sources.removeOne(Source); }

// ---- Locate

namespace {

enum class TKeyKind { String, Integer, Float, Boolean, Date, Time, DateTime, Other };

TKeyKind KeyKindOf(TFieldType T)
{
    switch (T) {
    case ftSmallint: case ftInteger: case ftWord: case ftAutoInc: case ftLargeint:
        return TKeyKind::Integer;
    case ftFloat: case ftCurrency: case ftBCD: case ftFMTBcd:
        return TKeyKind::Float;
    case ftBoolean:
        return TKeyKind::Boolean;
    case ftDate:
        return TKeyKind::Date;
    case ftTime:
        return TKeyKind::Time;
    case ftDateTime: case ftTimeStamp: case ftOraTimeStamp:
        return TKeyKind::DateTime;
    default:
        return IsStringType(T) ? TKeyKind::String : TKeyKind::Other;
    }
}

// A date-like value as a QDateTime: QDate, QTime, QDateTime, a TDateTime number or text.
QDateTime AsQDateTime(const QVariant& V)
{
    switch (V.metaType().id()) {
    case QMetaType::QDate: return V.toDate().startOfDay();
    case QMetaType::QTime: return QDateTime(QDate(1899, 12, 30), V.toTime());
    case QMetaType::QDateTime: return V.toDateTime();
    case QMetaType::Double: case QMetaType::Float: case QMetaType::Int: case QMetaType::LongLong:
        return DateTimeToQDateTime(V.toDouble());
    default: {
        QDateTime R = QDateTime::fromString(V.toString(), Qt::ISODateWithMs);
        if (!R.isValid())
            R = QDate::fromString(V.toString(), Qt::ISODate).startOfDay();
        return R;
    }
    }
}

bool KeyMatches(TKeyKind Kind, const QVariant& Raw, const QVariant& Key, TLocateOptions Options)
{
    const bool RawNull = Raw.isNull();
    if (!Key.isValid() || Key.isNull())
        return RawNull;
    if (RawNull)
        return false;
    const Qt::CaseSensitivity Cs = Options.testFlag(loCaseInsensitive) ? Qt::CaseInsensitive : Qt::CaseSensitive;
    if (Kind == TKeyKind::String || Kind == TKeyKind::Other || Options.testFlag(loPartialKey)) {
        const QString S = Raw.toString();
        const QString K = Key.toString();
        return Options.testFlag(loPartialKey) ? S.startsWith(K, Cs) : S.compare(K, Cs) == 0;
    }
    bool Ok1 = false, Ok2 = false;
    switch (Kind) {
    case TKeyKind::Integer: {
        const qint64 A = Raw.toLongLong(&Ok1);
        const qint64 B = Key.toLongLong(&Ok2);
        if (Ok1 && Ok2)
            return A == B;
        const double FA = Raw.toDouble(&Ok1);
        const double FB = Key.toDouble(&Ok2);
        return Ok1 && Ok2 && FA == FB;
    }
    case TKeyKind::Float: {
        const double A = Raw.toDouble(&Ok1);
        const double B = Key.toDouble(&Ok2);
        return Ok1 && Ok2 && A == B;
    }
    case TKeyKind::Boolean:
        return Raw.toBool() == Key.toBool();
    case TKeyKind::Date:
        return AsQDateTime(Raw).date() == AsQDateTime(Key).date();
    case TKeyKind::Time:
        return AsQDateTime(Raw).time() == AsQDateTime(Key).time();
    default:
        return AsQDateTime(Raw) == AsQDateTime(Key);
    }
}

} // namespace

int TDataSetPrivate::FindRow(const QList<TField*>& Keys, const QVariantList& Values, TLocateOptions Options)
{
    QVector<int> Columns;
    QVector<TKeyKind> Kinds;
    for (TField* F : Keys) {
        Columns << F->FieldNo() - 1;
        Kinds << KeyKindOf(F->DataType());
    }
    for (int Row = 0;; ++Row) {
        if (Row >= StoredCount() && !EnsureRows(Row + 1 + (insertPos >= 0 ? 1 : 0)))
            return -1;
        if (Row >= StoredCount())
            return -1;
        const quint32 Id = store->IdAt(Row);
        bool All = true;
        for (int k = 0; k < Columns.size() && All; ++k)
            All = Columns[k] >= 0 && KeyMatches(Kinds[k], store->Get(Id, Columns[k]), Values[k], Options);
        if (All)
            return insertPos >= 0 && Row >= insertPos ? Row + 1 : Row;
    }
}

bool TDataSet::Locate(const QString& KeyFields, const QVariant& KeyValues, TLocateOptions Options)
{
    CheckBrowseMode();
    QList<TField*> Keys;
    for (const QString& Name : KeyFields.split(QLatin1Char(';'), Qt::SkipEmptyParts))
        Keys << FieldByName(Name.trimmed());
    QVariantList Values;
    if (Keys.size() == 1)
        Values << (KeyValues.metaType().id() == QMetaType::QVariantList && KeyValues.toList().size() == 1
                       ? KeyValues.toList().first() : KeyValues);
    else
        Values = KeyValues.toList();
    if (Keys.isEmpty() || Values.size() != Keys.size())
        DatabaseError(QStringLiteral("Locate: %1 key values for %2 key fields")
                          .arg(Values.size()).arg(Keys.size()));
    DoBeforeScroll();
    d->SyncStore();
    const int Pos = d->FindRow(Keys, Values, Options);
    if (Pos < 0)
        return false;
    d->SetCursor(Pos);
    d->bof = d->eof = false;
    DataEvent(deDataSetChange, 0);
    DoAfterScroll();
    return true;
}

// ---- row access for readers

int TDataSet::FetchedRowCount() const
{
    d->SyncStore();
    return d->ViewCount();
}

bool TDataSet::FetchedAll() const { return d->fetchedAll; }

int TDataSet::FetchMore()
{
    if (d->state == dsInactive || d->fetchedAll)
        return 0;
    const int Before = d->StoredCount();
    d->FetchBlock();
    return d->StoredCount() - Before;
}

void TDataSet::FetchAll()
{
    if (d->state == dsInactive && !d->store)
        return;
    while (!d->fetchedAll)
        d->FetchBlock();
}

int TDataSet::FetchBlockSize() const { return d->fetchBlock; }
void TDataSet::SetFetchBlockSize(int Value) { d->fetchBlock = std::max(Value, 1); }

int TDataSet::CurrentRow() const
{
    d->SyncStore();
    return d->cursor;
}

int TDataSet::ActiveRow() const
{
    d->SyncStore();
    return d->active;
}

void TDataSet::SetActiveRow(int Row)
{
    d->SyncStore();
    if (Row < 0 || !d->EnsureRows(Row + 1))
        return;
    d->active = Row;
}

bool TDataSet::EnsureRows(int Count) const { return d->EnsureRows(Count); }
int TDataSet::StoredRowCount() const { return d->StoredCount(); }
const void* TDataSet::RowsIdentity() const { return d->store.get(); }

QVariant TDataSet::StoredValue(int Row, int Column) const
{
    if (Row < 0 || Row >= d->StoredCount() || Column < 0 || Column >= d->store->Columns())
        return QVariant();
    return d->store->Get(d->store->IdAt(Row), Column);
}
quint64 TDataSet::StructureVersion() const { return d->structureVersion; }

// ---- the descendant's side

int TDataSet::InternalFetch(int) { return 0; }
void TDataSet::InternalClose() {}
void TDataSet::ApplyInsert(TRecordValues&) {}
void TDataSet::ApplyUpdate(const TRecordValues&, TRecordValues&, const QBitArray&) {}
void TDataSet::ApplyDelete(const TRecordValues&) {}

void TDataSet::InternalRefresh()
{
    InternalClose();
    InternalOpen();
    ResetRows();
}

QStringList TDataSet::RefreshKeyFields() const { return QStringList(); }

void TDataSet::BeginFetchedRow()
{
    if (!d->store)
        d->store = std::make_shared<TRecordStore>(d->defs.Count());
    d->CommitRow();
    const quint32 Id = d->store->Append();
    d->fetchedBlocks = d->store->Blocks(Id);
    d->fetchedRow = TRecordStore::RowInChunk(Id);
}

void TDataSet::SetFetchedValue(int Column, const QVariant& Value)
{
    if (d->fetchedBlocks && Column >= 0 && Column < d->store->Columns())
        d->fetchedBlocks[Column].Put(d->fetchedRow, Value);
}


QVariant* TDataSet::AppendRow()
{
    if (!d->store)
        d->store = std::make_shared<TRecordStore>(d->defs.Count());
    d->CommitRow();
    if (d->scratch.size() != d->store->Columns())
        d->scratch = TRecordValues(d->store->Columns());
    d->scratchId = d->store->Append();
    return d->scratch.data();
}

void TDataSet::ResetRows()
{
    d->scratchId = -1;
    d->fetchedBlocks = nullptr;
    d->DropStore();
    d->store = std::make_shared<TRecordStore>(d->defs.Count());
    d->storeGeneration = d->store->Generation();
    d->fetchedAll = false;
    d->cursor = d->active = -1;
    ++d->structureVersion;
}

void TDataSet::ShareRowsWith(TDataSet* Source)
{
    d->scratchId = -1;
    d->fetchedBlocks = nullptr;
    if (!Source || !Source->Active())
        DatabaseError(SDataSetClosed());
    Source->FetchAll();
    d->defs = Source->d->defs;
    d->DropStore();
    d->store = Source->d->store;
    for (TDataSet* Sharer : {Source, this})
        if (std::find(d->store->Sharers.begin(), d->store->Sharers.end(), Sharer) == d->store->Sharers.end())
            d->store->Sharers.push_back(Sharer);
    d->fetchedAll = true;
}

// ---- event hooks

#define KESH_FIRE(Event) \
    if (Event)           \
        Event(this);

void TDataSet::DoBeforeOpen() { KESH_FIRE(BeforeOpen) }
void TDataSet::DoAfterOpen()
{
    KESH_FIRE(AfterOpen)
    if (!IsEmpty())
        DoAfterScroll();
}
void TDataSet::DoBeforeClose() { KESH_FIRE(BeforeClose) }
void TDataSet::DoAfterClose() { KESH_FIRE(AfterClose) }
void TDataSet::DoBeforeInsert() { KESH_FIRE(BeforeInsert) }
void TDataSet::DoAfterInsert() { KESH_FIRE(AfterInsert) }
void TDataSet::DoBeforeEdit() { KESH_FIRE(BeforeEdit) }
void TDataSet::DoAfterEdit() { KESH_FIRE(AfterEdit) }
void TDataSet::DoBeforePost() { KESH_FIRE(BeforePost) }
void TDataSet::DoAfterPost() { KESH_FIRE(AfterPost) }
void TDataSet::DoBeforeCancel() { KESH_FIRE(BeforeCancel) }
void TDataSet::DoAfterCancel() { KESH_FIRE(AfterCancel) }
void TDataSet::DoBeforeDelete() { KESH_FIRE(BeforeDelete) }
void TDataSet::DoAfterDelete() { KESH_FIRE(AfterDelete) }
void TDataSet::DoBeforeScroll() { KESH_FIRE(BeforeScroll) }
void TDataSet::DoAfterScroll() { KESH_FIRE(AfterScroll) }
void TDataSet::DoBeforeRefresh() { KESH_FIRE(BeforeRefresh) }
void TDataSet::DoAfterRefresh() { KESH_FIRE(AfterRefresh) }
void TDataSet::DoOnNewRecord() { KESH_FIRE(OnNewRecord) }

#undef KESH_FIRE

} // namespace Kesh
