// Kesh for Qt — integer date (yyyymmdd) and integer time (hhmm) columns as date and time fields.
#pragma once
#include "platform/application.h"
#include "platform/data/fields.h"
#include "platform/kesh_global.h"

namespace Kesh {

/// An integer column holding an integer date (year*10000 + month*100 + day, Gregorian or
/// Hijri). Its text is "d-m-yyyy" (5-3-2024, 1-9-1445) for display and editing alike, so
/// grids and data-aware controls show and accept dates without knowing the field.
///
/// Text is read by StringToDate; a value that is not a date raises EDatabaseError "Invalid
/// date value." (Arabic under right to left), a Hijri day 31 "Invalid Hijri date.". Setting
/// empty text (SetText) shows "Incorrect number." and leaves the field null.
class KESH_EXPORT TQxDateField : public TIntegerField
{
    Q_OBJECT
public:
    explicit TQxDateField(QObject* Owner = nullptr);

    /// The integer date of Text: day, month and year separated by any of "-./:\"; -1 for
    /// empty text. Raises EDatabaseError for anything that is not a Gregorian date of years
    /// 1900..2100 or a Hijri date of years 1300..1500 (days 1..30).
    int StringToDate(const QString& Text) const;

    /// The text of an integer date: "d-m-yyyy".
    static QString DateText(int Date);

    /// Empty text: "Incorrect number." is shown and the field becomes null; otherwise as
    /// SetAsString.
    void SetText(const QString& Value) override;
    /// Empty text clears the field; otherwise StringToDate's value.
    void SetAsString(const QString& Value) override;
    /// Through the integer date of the TDateTime's day.
    void SetAsDateTime(TDateTime Value) override;
    /// Digits and the separators StringToDate reads.
    bool IsValidChar(QChar Ch) const override;

protected:
    QString GetAsString() const override;
    /// The raw integer; 0 when null.
    int GetAsInteger() const override;
    TDateTime GetAsDateTime() const override;
    /// Numbers are stored as they are; other text goes through SetAsString.
    void SetVarValue(const QVariant& Value) override;
    void GetText(QString& Text, bool DisplayText) const override;
    int GetDataSize() const override { return 4; }
};

/// A small-integer column holding an integer time (hours*100 + minutes). Its text is "hh:mm"
/// (Format24) or "hh:mm am"/"hh:mm pm" (" ص"/" م" under right to left).
///
/// Typing in 12-hour mode (IsValidChar): digits, ":", ".", the blank, and under left to right
/// the letters a, p and m in either case, so "2:30 pm" can be typed; under right to left the
/// Arabic marks ص and م instead of the letters. In 24-hour mode only "." to ":" in character
/// code (".", "/", the digits, ":"). Either mark is read back in either language.
class KESH_EXPORT TQxTimeField : public TSmallintField
{
    Q_OBJECT
    Q_PROPERTY(bool Format24 READ Format24 WRITE SetFormat24)
    Q_PROPERTY(int AsMinIndex READ AsMinIndex WRITE SetAsMinIndex)
public:
    explicit TQxTimeField(QObject* Owner = nullptr);

    /// Show 24-hour text (true, the default) or 12-hour text with a morning/evening mark.
    bool Format24() const { return m_format24; }
    void SetFormat24(bool Value) { m_format24 = Value; }

    /// Minutes since midnight: 1430 reads as 870.
    int AsMinIndex() const;
    void SetAsMinIndex(int Value);

    /// Text that is not a time (TryStrToTime after "." became ":") shows "Incorrect number."
    /// and leaves the field null; otherwise as SetAsString.
    void SetText(const QString& Value) override;
    /// Empty text clears the field. 24-hour: the first two numbers are hours and minutes;
    /// 12-hour: read as a time with its mark. Hours over 23 or minutes over 59 raise
    /// EDatabaseError "Invalid Time value.".
    void SetAsString(const QString& Value) override;
    void SetAsDateTime(TDateTime Value) override;
    bool IsValidChar(QChar Ch) const override;

protected:
    QString GetAsString() const override;
    int GetAsInteger() const override;
    TDateTime GetAsDateTime() const override;
    void SetVarValue(const QVariant& Value) override;
    void GetText(QString& Text, bool DisplayText) const override;
    int GetDataSize() const override { return 2; }

private:
    bool m_format24 = true;
};

} // namespace Kesh
