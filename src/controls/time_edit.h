// Kesh for Qt — the time edit: hours and minutes typed as text, held as an integer time.
#pragma once
#include "edit.h"

namespace Kesh {

/// A line edit for a time of day ("HH:MM" once the focus leaves) whose value is the
/// integer time hours*100 + minutes. It shares the look and navigation of TQxEdit; its
/// standard size is forced only while no layout places it.
class KESH_EXPORT TQxTimeEdit : public TQxCustomEdit
{
    Q_OBJECT
    Q_PROPERTY(bool _CheckTime READ GetCheckTime WRITE SetCheckTime)

public:
    explicit TQxTimeEdit(QWidget* Parent = nullptr);

    /// Refuse, on leaving, a time whose encoded value is below 0 or 2360 and above.
    bool GetCheckTime() const { return m_checkTime; }
    void SetCheckTime(bool Value) { m_checkTime = Value; }

    /// The text read as hours (first two characters before '.' or ':') and minutes (first
    /// two after, "3" meaning 30); raises EConvertError for a part that is not a number.
    int AsIntegerTime() const;
    /// True when the trimmed text is empty.
    bool IsEmpty() const;
    /// AsIntegerTime.
    int AsInteger() const { return AsIntegerTime(); }
    /// Shows IntToTime(Value): an invalid time or 0 empties the box.
    void SetAsInteger(int Value);
    /// AsIntegerTime as a number.
    double AsFloat() const { return AsIntegerTime(); }
    /// Drops the fraction, then as SetAsInteger; a value beyond 64 bits writes "#Error#".
    void SetAsFloat(double Value);
    /// IntToTime(AsIntegerTime): the time of day, no date.
    TDateTime AsDate() const;
    /// 0 empties the box; any other value shows its hours and minutes as "HH:MM".
    void SetAsDate(TDateTime Value);
    TDateTime AsDateTime() const { return AsDate(); }
    void SetAsDateTime(TDateTime Value) { SetAsDate(Value); }

protected:
    bool SizeRuleApplies() const override { return !IsManagedByLayout(); }
    bool AcceptsChar(QChar C) const override;
    /// Fires Exit, then refuses an out-of-range time (with _CheckTime) or writes "HH:MM".
    void DoExit() override;

private:
    bool m_checkTime = false;
};

} // namespace Kesh
