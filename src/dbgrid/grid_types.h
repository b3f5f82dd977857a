// Kesh for Qt — the enumerations and event types of the data grid.
#pragma once
// The host application's meta-object must be declared before the namespace below.
#include "platform/graphics.h"
#include "platform/kesh_global.h"
#include <QFlags>
#include <QObject>
#include <QRect>
#include <QString>
#include <functional>

namespace Kesh {

class TField;
class TQxColumn;

/// The enumerations live in their own namespace only so that moc can register them; they
/// read as Kesh::kxArabic, Kesh::dgEditing.
namespace GridTypes {
Q_NAMESPACE_EXPORT(KESH_EXPORT)

/// The keyboard layout a column selects when it is entered.
enum TxColumnKeyboard { kxSystem, kxArabic, kxEnglish, kxBiDiMode };
Q_ENUM_NS(TxColumnKeyboard)

/// The in-place editor's button: a drop-down for a pick list (cbsAuto), an ellipsis button
/// that calls OnEditButtonClick (cbsEllipsis), or none.
enum TColumnButtonStyle { cbsAuto, cbsEllipsis, cbsNone };
Q_ENUM_NS(TColumnButtonStyle)

/// Columns made by the grid from the dataset's fields, or defined by the user.
enum TDBGridColumnsState { csDefault, csCustomized };
Q_ENUM_NS(TDBGridColumnsState)

/// Input-method modes; kept for forms that set them (Qt chooses the input method itself).
enum TImeMode { imDisable, imClose, imOpen, imDontCare, imSAlpha, imAlpha, imHira, imSKata, imKata,
                imChinese, imSHanguel, imHanguel };
Q_ENUM_NS(TImeMode)

/// The grid's options.
enum TDBGridOption {
    dgEditing = 0x1, dgAlwaysShowEditor = 0x2, dgTitles = 0x4, dgIndicator = 0x8,
    dgColumnResize = 0x10, dgColLines = 0x20, dgRowLines = 0x40, dgTabs = 0x80,
    dgRowSelect = 0x100, dgAlwaysShowSelection = 0x200, dgConfirmDelete = 0x400,
    dgCancelOnExit = 0x800, dgMultiSelect = 0x1000, dgTitleClick = 0x2000, dgTitleHotTrack = 0x4000
};
Q_DECLARE_FLAGS(TDBGridOptions, TDBGridOption)
Q_FLAG_NS(TDBGridOptions)

/// How a cell is drawn: selected (highlighted), focused, fixed, in a selected row...
enum TGridDrawStateItem { gdSelected = 0x1, gdFocused = 0x2, gdFixed = 0x4, gdRowSelected = 0x8,
                          gdHotTrack = 0x10, gdPressed = 0x20 };
Q_DECLARE_FLAGS(TGridDrawState, TGridDrawStateItem)
Q_FLAG_NS(TGridDrawState)

} // namespace GridTypes
using namespace GridTypes;

/// Files dropped on the grid: their number and their paths joined by "|".
using TQxDropFileEvent = std::function<void(QObject* PSender, int PCount, const QString& PFilename)>;
/// A click on a cell or a title of Column.
using TQxDBGridClickEvent = std::function<void(TQxColumn* Column)>;
/// Per-cell colours of data column Column: change FontColor and CellColor to recolour it.
using TQxGridCellColorEvent = std::function<void(QObject* Sender, int Column, TColor& FontColor, TColor& CellColor)>;
/// Draws a cell (the grid's Canvas() is the painter) of Field.
using TQxDrawDataCellEvent = std::function<void(QObject* Sender, const QRect& Rect, TField* Field, TGridDrawState State)>;
/// Draws a cell (the grid's Canvas() is the painter) of data column DataCol.
using TQxDrawColumnCellEvent =
    std::function<void(QObject* Sender, const QRect& Rect, int DataCol, TQxColumn* Column, TGridDrawState State)>;
/// A plain notification with the grid as sender.
using TQxGridNotifyEvent = std::function<void(QObject* Sender)>;
/// A column was dragged from FromIndex to ToIndex.
using TQxMovedEvent = std::function<void(QObject* Sender, int FromIndex, int ToIndex)>;
/// The grid's key handler as the user may replace it: Key may be set to 0 to swallow the key.
using TQxKeyEvent = std::function<void(QObject* Sender, int& Key, Qt::KeyboardModifiers Shift)>;

} // namespace Kesh

Q_DECLARE_OPERATORS_FOR_FLAGS(Kesh::GridTypes::TDBGridOptions)
Q_DECLARE_OPERATORS_FOR_FLAGS(Kesh::GridTypes::TGridDrawState)
