// Kesh for Qt — the enumerations of the dataset framework and of its ADO datasets.
#pragma once
// Kesh's own meta-object (with TBiDiMode) must come before `using namespace DB` below, or
// a later Q_ENUM_NS in Kesh would see two staticMetaObjects.
#include "../application.h"
#include "../kesh_global.h"
#include <QFlags>
#include <QObject>

namespace Kesh {

/// The enumerations live in their own namespace only so that moc can register them
/// (Kesh itself already carries a Q_NAMESPACE elsewhere); `using namespace DB` below
/// makes them read as plain Kesh names: Kesh::dsBrowse, Kesh::ftInteger.
namespace DB {
Q_NAMESPACE_EXPORT(KESH_EXPORT)

/// What a dataset is doing: closed, browsing, editing the current row, inserting a new one.
enum TDataSetState { dsInactive, dsBrowse, dsEdit, dsInsert };
Q_ENUM_NS(TDataSetState)

/// Data type of a field, in the classic ordinal order (forms and lists store the number).
enum TFieldType {
    ftUnknown, ftString, ftSmallint, ftInteger, ftWord, ftBoolean, ftFloat, ftCurrency, ftBCD,
    ftDate, ftTime, ftDateTime, ftBytes, ftVarBytes, ftAutoInc, ftBlob, ftMemo, ftGraphic,
    ftFmtMemo, ftParadoxOle, ftDBaseOle, ftTypedBinary, ftCursor, ftFixedChar, ftWideString,
    ftLargeint, ftADT, ftArray, ftReference, ftDataSet, ftOraBlob, ftOraClob, ftVariant,
    ftInterface, ftIDispatch, ftGuid, ftTimeStamp, ftFMTBcd, ftFixedWideChar, ftWideMemo,
    ftOraTimeStamp, ftOraInterval
};
Q_ENUM_NS(TFieldType)

/// Where a field's value comes from; only data fields (a column of the rows) are supported.
enum TFieldKind { fkData };
Q_ENUM_NS(TFieldKind)

/// Options of TDataSet::Locate.
enum TLocateOption { loCaseInsensitive = 0x1, loPartialKey = 0x2 };
Q_DECLARE_FLAGS(TLocateOptions, TLocateOption)
Q_FLAG_NS(TLocateOptions)

/// Notifications a dataset sends through its data sources to their data links.
enum TDataEvent {
    deFieldChange, deRecordChange, deDataSetChange, deDataSetScroll, deLayoutChange,
    deUpdateRecord, deUpdateState, deCheckBrowseMode, deFocusControl
};
Q_ENUM_NS(TDataEvent)

/// How TADODataSet reads its CommandText.
enum TCommandType { cmdUnknown, cmdText, cmdTable, cmdStoredProc, cmdFile, cmdTableDirect };
Q_ENUM_NS(TCommandType)

/// Where the cursor library runs; the rows of a TADODataSet are always held client-side.
enum TCursorLocation { clUseServer, clUseClient };
Q_ENUM_NS(TCursorLocation)

/// The cursor type asked for; kept for the connection helpers that set it.
enum TCursorType { ctUnspecified, ctOpenForwardOnly, ctKeyset, ctDynamic, ctStatic };
Q_ENUM_NS(TCursorType)

/// ltReadOnly refuses every change; the others write with optimistic locking.
enum TLockType { ltUnspecified, ltReadOnly, ltPessimistic, ltOptimistic, ltBatchOptimistic };
Q_ENUM_NS(TLockType)

/// Direction of a command parameter.
enum TParameterDirection { pdUnknown, pdInput, pdOutput, pdInputOutput, pdReturnValue };
Q_ENUM_NS(TParameterDirection)

} // namespace DB

using namespace DB;

} // namespace Kesh

Q_DECLARE_OPERATORS_FOR_FLAGS(Kesh::DB::TLocateOptions)
