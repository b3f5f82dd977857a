// Kesh for Qt — TDateTime and the calendar routines of the run-time library.
#pragma once
#include "../kesh_global.h"
#include <QDate>
#include <QDateTime>

namespace Kesh {

/// Days since 1899-12-30; the fraction is the time of day.
using TDateTime = double;

/// Checked Gregorian date; raises EConvertError for a date that does not exist.
KESH_EXPORT TDateTime EncodeDate(int Year, int Month, int Day);
KESH_EXPORT bool TryEncodeDate(int Year, int Month, int Day, TDateTime& Date);
/// The calendar day (the date part is truncated toward zero); all 0 outside years 1..9999.
KESH_EXPORT void DecodeDate(TDateTime Date, int& Year, int& Month, int& Day);
/// Checked time of day (0..23, 0..59, 0..59, 0..999); raises EConvertError otherwise.
KESH_EXPORT TDateTime EncodeTime(int Hour, int Min, int Sec, int MSec);
KESH_EXPORT bool TryEncodeTime(int Hour, int Min, int Sec, int MSec, TDateTime& Time);
/// Splits the time part after rounding to whole milliseconds; a time that rounds up to the
/// next midnight gives 23:59:59.999, so it stays on the day DecodeDate gives.
KESH_EXPORT void DecodeTime(TDateTime Time, int& Hour, int& Min, int& Sec, int& MSec);
/// Reads "h[:n[:s[.z]]]" with an optional morning/evening marker (FormatSettings.TimeAMString /
/// TimePMString, or "AM"/"PM") before or after, blanks allowed around the parts; false otherwise.
KESH_EXPORT bool TryStrToTime(const QString& S, TDateTime& Value);
/// As TryStrToTime; raises EConvertError "'S' is not a valid time".
KESH_EXPORT TDateTime StrToTime(const QString& S);
/// The day in the default QLocale's short date form with a four-digit year; raises
/// EConvertError for a value outside years 1..9999.
KESH_EXPORT QString DateToStr(TDateTime Date);
/// DateToStr, then a blank and "hh:mm:ss" unless the time is midnight; raises as DateToStr.
KESH_EXPORT QString DateTimeToStr(TDateTime DateTime);
/// Reads a date in the form DateToStr writes, or ISO "yyyy-MM-dd", blanks around allowed;
/// false (Value untouched) otherwise.
KESH_EXPORT bool TryStrToDate(const QString& S, TDateTime& Value);
/// A date as TryStrToDate, then optionally a blank and a time as TryStrToTime reads it.
KESH_EXPORT bool TryStrToDateTime(const QString& S, TDateTime& Value);
/// Sunday = 1 … Saturday = 7; 0 outside years 1..9999.
KESH_EXPORT int DayOfWeek(TDateTime Date);
/// Moves the day and keeps the time, also for values before day 0.
KESH_EXPORT TDateTime IncDay(TDateTime Date, int NumberOfDays = 1);
/// Keeps the day, clamped to the last day of the month reached; keeps the time. Raises
/// EConvertError when the result (or Date) lies outside years 1..9999.
KESH_EXPORT TDateTime IncMonth(TDateTime Date, int NumberOfMonths = 1);
/// IncMonth by 12 * NumberOfYears: 2024-02-29 + 1 year is 2025-02-28.
KESH_EXPORT TDateTime IncYear(TDateTime Date, int NumberOfYears = 1);
KESH_EXPORT bool IsLeapYear(int Year);
/// 28..31; 0 for a month outside 1..12.
KESH_EXPORT int DaysInAMonth(int Year, int Month);
KESH_EXPORT bool IsValidDate(int Year, int Month, int Day);
/// Today at midnight; the current date and time.
KESH_EXPORT TDateTime Date();
KESH_EXPORT TDateTime Now();

/// The value as text by the classic pattern Format: d dd (day), ddd dddd (day name), m mm
/// (month, or minutes right after an hour), mmm mmmm (month name), yy yyyy, h hh, n nn, s ss,
/// z zzz, am/pm a/p (12-hour clock with that mark, in the pattern's case), ampm (12-hour with
/// FormatSettings' strings), c, t tt, text in "double" or 'single' quotes as it stands; "/"
/// and ":" give FormatSettings.DateSeparator and TimeSeparator. Values outside years
/// 1..9999 give zeros for the date parts.
KESH_EXPORT QString FormatDateTime(const QString& Format, TDateTime Value);

/// Conversions in local time; an invalid or out-of-range value gives an invalid QDate or
/// QDateTime, and an invalid QDate or QDateTime gives 0.
KESH_EXPORT QDate DateTimeToQDate(TDateTime Value);
KESH_EXPORT TDateTime QDateToDateTime(const QDate& Value);
KESH_EXPORT QDateTime DateTimeToQDateTime(TDateTime Value);
KESH_EXPORT TDateTime QDateTimeToDateTime(const QDateTime& Value);

} // namespace Kesh
