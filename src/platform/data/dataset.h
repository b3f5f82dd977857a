// Kesh for Qt — TDataSet: a cursor over client-side rows, with states, events and fields.
#pragma once
#include "data_types.h"
#include "field_defs.h"
#include <QBitArray>
#include <QByteArray>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariant>
#include <QVector>
#include <functional>
#include <memory>

namespace Kesh {

class TDataSet;
class TDataSource;
class TDataLink;
class TField;

using TDataSetNotifyEvent = std::function<void(TDataSet*)>;
/// One row: one value per column of FieldDefs(), in column order.
using TRecordValues = QVector<QVariant>;

/// A cursor with states over rows held client-side.
///
/// The base class owns the rows, the cursor, the states, the events, the fields and the
/// notifications of data sources; a descendant only supplies rows (InternalOpen,
/// InternalFetch) and writes changes (ApplyInsert, ApplyUpdate, ApplyDelete). Rows are
/// fetched lazily: opening reads at most 64 rows, then blocks of FetchBlockSize (256) are
/// read as the cursor or a reader needs them; RecordCount, Last, Append and Locate read
/// the remaining rows.
///
/// Rows are addressed by their "view row": 0-based position in the current order, an
/// unposted inserted row included. RecNo is 1-based (-1 on an unposted row). Bookmarks
/// are stable across inserts and deletes and are shared with clones.
///
/// A refusal (EAbort or any exception) raised from a Before… event or hook leaves the
/// dataset exactly as it was. Errors are EDatabaseError with the classic texts.
class KESH_EXPORT TDataSet : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool Active READ Active WRITE SetActive)
    Q_PROPERTY(Kesh::DB::TDataSetState State READ State)
    Q_PROPERTY(int FetchBlockSize READ FetchBlockSize WRITE SetFetchBlockSize)

public:
    explicit TDataSet(QObject* Owner = nullptr);
    ~TDataSet() override;

    // ---- opening and state
    bool Active() const;
    void SetActive(bool Value);
    void Open() { SetActive(true); }
    /// Closes (BeforeClose, AfterClose); an unposted edit is dropped without Cancel events.
    void Close() { SetActive(false); }
    TDataSetState State() const;
    /// A field was changed since Edit/Insert.
    bool Modified() const;
    /// Whether rows may be changed at all (Insert, Edit, Delete raise otherwise).
    virtual bool CanModify() const;

    // ---- navigation (each posts a pending edit first, see CheckBrowseMode)
    void First();
    void Last();
    void Next() { MoveBy(1); }
    void Prior() { MoveBy(-1); }
    /// Moves up to Distance rows; returns the distance moved.
    int MoveBy(int Distance);
    bool Bof() const;
    bool Eof() const;
    /// 1-based number of the active row; -1 on an unposted row; 0 when empty or closed.
    int RecNo() const;
    void SetRecNo(int Value);
    /// Number of rows; reads every remaining row first, so it is always the full count.
    int RecordCount() const;
    bool IsEmpty() const;

    // ---- bookmarks
    /// Bookmark of the active row; empty on an unposted row or an empty dataset.
    QByteArray Bookmark() const;
    /// Raises EDatabaseError "Record not found" for a bookmark that is no longer valid.
    void GotoBookmark(const QByteArray& Bookmark);
    bool BookmarkValid(const QByteArray& Bookmark) const;
    /// -1, 0, 1 in the order the rows were read (rows inserted later sort after them);
    /// an empty bookmark sorts first.
    int CompareBookmarks(const QByteArray& Bookmark1, const QByteArray& Bookmark2) const;

    // ---- editing
    /// Edits the current row; on an empty dataset inserts instead.
    void Edit();
    /// A new row before the current one.
    void Insert();
    /// A new row after the last one.
    void Append();
    /// Flushes the data links (UpdateRecord) then writes the row: an insert in dsInsert,
    /// an update in dsEdit. On failure the state and the edited values stay.
    void Post();
    void Cancel();
    /// Deletes the current row (in dsInsert: cancels the new row).
    void Delete();
    /// Re-reads the rows, keeping the position on the same row when it can.
    void Refresh();
    /// Posts a modified edit or cancels an unmodified one; raises on a closed dataset.
    void CheckBrowseMode();
    /// Asks the data links to write their pending values into the fields.
    void UpdateRecord();
    /// Points the field reads back at the cursor's row (after SetActiveRow).
    void UpdateCursorPos();

    // ---- fields
    const QList<TField*>& Fields() const;
    int FieldCount() const;
    /// Raises EDatabaseError "Field 'X' not found".
    TField* FieldByName(const QString& FieldName) const;
    /// Case-insensitive; nullptr when there is no such field.
    TField* FindField(const QString& FieldName) const;
    void GetFieldNames(QStringList& List) const;
    /// The columns of the rows (filled when the dataset opens).
    const TFieldDefs& FieldDefs() const;

    // ---- data-aware controls
    void DisableControls();
    /// On the last call, links hear one DataSetChanged (and the state when it changed).
    void EnableControls();
    bool ControlsDisabled() const;

    /// Moves to the first row whose fields (names separated by ';') equal KeyValues (one
    /// value, or a QVariantList with one value per field); false and no move otherwise.
    bool Locate(const QString& KeyFields, const QVariant& KeyValues, TLocateOptions Options = {});

    // ---- row access for grids and models: no events, the cursor stays
    /// View rows available now (rows read so far, plus an unposted row).
    int FetchedRowCount() const;
    bool FetchedAll() const;
    /// Reads one more block of rows; returns the number read.
    int FetchMore();
    /// Reads every remaining row.
    void FetchAll();
    int FetchBlockSize() const;
    void SetFetchBlockSize(int Value);
    /// View row of the cursor; -1 when empty or closed.
    int CurrentRow() const;
    /// View row the fields read from (the cursor's row unless SetActiveRow moved it).
    int ActiveRow() const;
    /// Points the field reads at view row Row (read first when needed) without moving the
    /// cursor or sending events; restore it with SetActiveRow(CurrentRow()) or UpdateCursorPos.
    void SetActiveRow(int Row);

    // ---- events
    TDataSetNotifyEvent BeforeOpen, AfterOpen, BeforeClose, AfterClose;
    TDataSetNotifyEvent BeforeInsert, AfterInsert, BeforeEdit, AfterEdit;
    TDataSetNotifyEvent BeforePost, AfterPost, BeforeCancel, AfterCancel;
    TDataSetNotifyEvent BeforeDelete, AfterDelete, BeforeScroll, AfterScroll;
    TDataSetNotifyEvent BeforeRefresh, AfterRefresh, OnNewRecord;

Q_SIGNALS:
    /// A row was written (a Post or Delete that succeeded) here or on a dataset sharing these
    /// rows (a clone), before the data links hear of it: OldValues is empty for a new row,
    /// NewValues for a deleted one.
    void RowWritten(const Kesh::TRecordValues& OldValues, const Kesh::TRecordValues& NewValues);
    /// The rows were replaced as a whole: opened, closed, re-read or emptied.
    void RowsReset();

protected:
    // ---- what a descendant supplies
    /// Opens the row source and fills FieldDefsRef() (or calls ShareRowsWith).
    virtual void InternalOpen() = 0;
    /// Appends up to MaxRows rows with AppendRow(); returning fewer means no rows remain.
    virtual int InternalFetch(int MaxRows);
    /// Releases the row source; the rows themselves are released by the base.
    virtual void InternalClose();
    /// Writes a new row; may fill in values the server gave (keys, defaults).
    virtual void ApplyInsert(TRecordValues& Values);
    /// Writes the changed columns of a row; NewValues may be refreshed from the server.
    virtual void ApplyUpdate(const TRecordValues& OldValues, TRecordValues& NewValues,
                             const QBitArray& Changed);
    virtual void ApplyDelete(const TRecordValues& OldValues);
    /// Re-reads the rows: by default InternalClose, InternalOpen, ResetRows.
    virtual void InternalRefresh();
    /// Fields whose values find the current row again after Refresh (a primary key).
    virtual QStringList RefreshKeyFields() const;
    /// Raises "Cannot modify a read-only dataset" unless CanModify.
    virtual void CheckCanModify() const;

    // ---- helpers for descendants
    TFieldDefs& FieldDefsRef();
    /// Appends a row and returns the FieldDefs().Count() values to fill in; they are kept
    /// at the next AppendRow or when InternalFetch/InternalOpen returns.
    QVariant* AppendRow();
    /// The same without a copy: appends a row that SetFetchedValue fills column by column
    /// (columns not set stay null). For descendants that read rows in bulk.
    void BeginFetchedRow();
    void SetFetchedValue(int Column, const QVariant& Value);
    /// Drops every row (the next rows come from InternalFetch again); call it once
    /// FieldDefs() holds the new columns.
    void ResetRows();
    /// Uses Source's rows and columns (all read first): an independent cursor on shared rows.
    void ShareRowsWith(TDataSet* Source);
    /// The active row as a record (the edit buffer in dsEdit/dsInsert).
    TRecordValues ActiveValues() const;
    void SetState(TDataSetState Value);
    virtual void DataEvent(TDataEvent Event, qintptr Info);

    // ---- event hooks; each fires the event of its name
    virtual void DoBeforeOpen();
    virtual void DoAfterOpen();
    virtual void DoBeforeClose();
    virtual void DoAfterClose();
    virtual void DoBeforeInsert();
    virtual void DoAfterInsert();
    virtual void DoBeforeEdit();
    virtual void DoAfterEdit();
    virtual void DoBeforePost();
    virtual void DoAfterPost();
    virtual void DoBeforeCancel();
    virtual void DoAfterCancel();
    virtual void DoBeforeDelete();
    virtual void DoAfterDelete();
    virtual void DoBeforeScroll();
    virtual void DoAfterScroll();
    virtual void DoBeforeRefresh();
    virtual void DoAfterRefresh();
    virtual void DoOnNewRecord();

    /// Closes without events; descendants call it in their destructor.
    void CloseSilently();

private:
    friend class TField;
    friend class TDataSource;
    friend class TDataLink;
    friend class TDataSetModel;
    friend class TDataSetPrivate;
    friend class TDataSetTotalsPrivate;
    /// The posted rows read so far and their stored values (no edit buffer, no unposted row).
    int StoredRowCount() const;
    QVariant StoredValue(int Row, int Column) const;
    /// Changes only when the rows are replaced as a whole (open, refresh, empty).
    const void* RowsIdentity() const;
    void BeginInsert(bool AtEnd);
    QVariant ColumnValue(int Column) const;
    QVariant OldColumnValue(int Column) const;
    void SetColumnValue(TField* Field, const QVariant& Value);
    void AddField(TField* Field);
    void RemoveField(TField* Field);
    void AddDataSource(TDataSource* Source);
    void RemoveDataSource(TDataSource* Source);
    bool EnsureRows(int Count) const;
    quint64 StructureVersion() const;
    std::unique_ptr<class TDataSetPrivate> const d;
};

} // namespace Kesh
