// Kesh for Qt — the data-entry edits: a line edit with standard widths, state colours,
// keyboard navigation between fields, a typing filter, an exit check and typed views.
#pragma once
// The host object's header comes first: its namespace-level enumerations must be declared
// before the using-directives of the enumeration namespaces below and in graphics.h.
#include "platform/application.h"
#include "platform/graphics.h"
#include "platform/kesh_global.h"
#include "platform/rtl/datetime.h"

#include <QKeySequence>
#include <QLineEdit>
#include <functional>

namespace Kesh {

class TQxBitBtn;

/// The enumeration lives in its own namespace only so that moc can register it; it reads
/// as Kesh::DeInteger.
namespace EditTypes {
Q_NAMESPACE_EXPORT(KESH_EXPORT)
/// What a data-entry edit accepts while typing and checks when the focus leaves.
enum TxDataEntry { DeAnything, DeInteger, DeFloat };
Q_ENUM_NS(TxDataEntry)
} // namespace EditTypes
using namespace EditTypes;

/// The look and keyboard behaviour that every data-entry line edit of the library shares:
/// standard widths with the height kept at 21, background colours that follow the enabled
/// state, Enter/Up/Down moving between fields, a filter of typed characters and a check run
/// when the focus leaves.
class KESH_EXPORT TQxCustomEdit : public QLineEdit
{
    Q_OBJECT
    Q_PROPERTY(int _FixedSize READ GetFixedSize WRITE SetFixedSize)
    Q_PROPERTY(Kesh::TColor _ColorEnabled READ GetColorEnabled WRITE SetColorEnabled)
    Q_PROPERTY(Kesh::TColor _ColorDisabled READ GetColorDisabled WRITE SetColorDisabled)
    Q_PROPERTY(Kesh::TColor Color READ GetColor WRITE SetColor)
    Q_PROPERTY(bool Readonly READ isReadOnly WRITE setReadOnly)

public:
    /// The height every size change is brought back to.
    static constexpr int FixedHeight = 21;
    /// The width of a standard step (1..6: 101, 205, … 621); 0 for any other step.
    static int StepWidth(int Step);

    /// Standard width step; 0 (or any value outside 1..6) leaves the width free.
    int GetFixedSize() const { return m_fixedSize; }
    /// Stores the step and applies the width at once; ignored while the size rule is off.
    void SetFixedSize(int Value);
    /// Background while enabled; it takes effect at the next change of the enabled state.
    TColor GetColorEnabled() const { return m_colorEnabled; }
    void SetColorEnabled(TColor Value);
    /// Background while disabled; it takes effect at the next change of the enabled state.
    TColor GetColorDisabled() const { return m_colorDisabled; }
    void SetColorDisabled(TColor Value);
    /// The background shown now (the palette's Base colour).
    TColor GetColor() const;
    void SetColor(TColor Value);

    /// True when a layout of the parent places the control; the standard size is then not
    /// forced on the time edit. The data-entry edit forces it always.
    bool IsManagedByLayout() const;

    QSize sizeHint() const override;

Q_SIGNALS:
    /// Fired when the focus has left the control, around its exit check (the classic OnExit).
    void Exit();

protected:
    explicit TQxCustomEdit(QWidget* Parent = nullptr);

    /// Whether the standard width and height are forced now.
    virtual bool SizeRuleApplies() const { return true; }
    /// Whether a typed printable character may reach the text.
    virtual bool AcceptsChar(QChar C) const = 0;
    /// The check and the Exit signal, in the order the control defines. May raise: an
    /// EAbort ends it silently, any other library exception is shown as an error.
    virtual void DoExit() = 0;
    /// Called after every size change, once the size rule is applied.
    virtual void Resized() {}
    /// Called when _FixedSize has taken a new value.
    virtual void FixedSizeChanged() {}

    void keyPressEvent(QKeyEvent* Event) override;
    /// Activates the keyboard layout of the control's direction.
    void focusInEvent(QFocusEvent* Event) override;
    void focusOutEvent(QFocusEvent* Event) override;
    void resizeEvent(QResizeEvent* Event) override;
    void changeEvent(QEvent* Event) override;

private:
    void MoveFocus(bool Forward);
    void ApplySizeRule();
    void ApplyStateColor();
    void AlignToReadingSide();

    int m_fixedSize = 1;
    Qt::Alignment m_readingSide;  // the alignment last given for the reading side
    TColor m_colorEnabled = clWhite;
    TColor m_colorDisabled = 0xF0F0F0;
};

/// The library's single-line text box for data-entry forms: the shared behaviour of
/// TQxCustomEdit, a choice of what may be typed and typed access to the text.
class KESH_EXPORT TQxEdit : public TQxCustomEdit
{
    Q_OBJECT
    Q_PROPERTY(Kesh::EditTypes::TxDataEntry _DataEntry READ GetDataEntry WRITE SetDataEntry)

public:
    explicit TQxEdit(QWidget* Parent = nullptr);

    TxDataEntry GetDataEntry() const { return m_dataEntry; }
    void SetDataEntry(TxDataEntry Value) { m_dataEntry = Value; }

    /// True when the text holds nothing but blanks and control characters.
    bool IsEmpty() const;
    /// The text as a 32-bit integer; 0 when empty or not a number.
    int AsInteger() const;
    /// The decimal text of Value.
    void SetAsInteger(int Value);
    /// The text as a number with FormatSettings' decimal separator; 0 when it is not one.
    double AsFloat() const;
    /// The shortest text of Value (FloatToStr).
    void SetAsFloat(double Value);
    /// The text as a date in the locale's short date form; 0 when it is not one.
    TDateTime AsDate() const;
    /// The locale's date text; 0 empties the box, a date out of range writes "#Error#".
    void SetAsDate(TDateTime Value);
    /// The text as a date with an optional time after a blank; 0 when it is not one.
    TDateTime AsDateTime() const;
    /// The date text followed by " hh:mm:ss" unless the time is midnight; 0 empties the box.
    void SetAsDateTime(TDateTime Value);

protected:
    bool AcceptsChar(QChar C) const override;
    void FixedSizeChanged() override;
    /// Checks a number box and shows "Incorrect number." on failure, then fires Exit.
    void DoExit() override;

private:
    bool NumberIsValid() const;

    TxDataEntry m_dataEntry = DeAnything;
};

/// A TQxEdit with a small "..." button inside its frame, at the trailing edge (right under
/// left to right, left under right to left), that raises _OnButtonClick. An edit of integer
/// dates (_PickDate) opens the calendar picker on its button first.
class KESH_EXPORT TQxEditButton : public TQxEdit
{
    Q_OBJECT
    Q_PROPERTY(QKeySequence _HotKey READ GetHotKey WRITE SetHotKey)
    Q_PROPERTY(bool _PickDate READ GetPickDate WRITE SetPickDate)
    Q_PROPERTY(bool _PickHijri READ GetPickHijri WRITE SetPickHijri)

public:
    /// Width of the inner button; the text keeps 2 pixels more clear of it.
    static constexpr int ButtonWidth = 18;

    explicit TQxEditButton(QWidget* Parent = nullptr);

    /// The key that clicks the button from anywhere on the window (kept by the button).
    QKeySequence GetHotKey() const;
    /// Also gives the button the key's text as its hint when it has none.
    void SetHotKey(const QKeySequence& Value);
    /// The inner button; it takes no focus.
    TQxBitBtn* Button() const { return m_button; }

    /// The text is an integer date (yyyymmdd): the button lets the user pick it in the
    /// calendar (SelectDate), starting from the date typed, and writes the confirmed day.
    bool GetPickDate() const { return m_pickDate; }
    void SetPickDate(bool Value) { m_pickDate = Value; }
    /// The calendar the picked date is written in: Hijri when set, else Gregorian.
    bool GetPickHijri() const { return m_pickHijri; }
    void SetPickHijri(bool Value) { m_pickHijri = Value; }

    /// Runs on a click of the button while the edit can take the focus; Sender is the edit.
    std::function<void(QObject* Sender)> _OnButtonClick;

    /// What a click of the button does: the calendar picker (with _PickDate, not on a
    /// read-only edit), then _OnButtonClick, then the focus back to the edit; nothing while
    /// the edit is hidden or disabled.
    void ButtonClick();

protected:
    void Resized() override;
    void changeEvent(QEvent* Event) override;

private:
    void PlaceButton();

    TQxBitBtn* m_button;
    bool m_pickDate = false;
    bool m_pickHijri = false;
};

} // namespace Kesh
