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
KESH_EXPORT void DecodeDate(TDateTime Date, int& Year, int& Month, int& Day);
/// Checked time of day (0..23, 0..59, 0..59, 0..999); raises EConvertError otherwise.
KESH_EXPORT TDateTime EncodeTime(int Hour, int Min, int Sec, int MSec);
KESH_EXPORT bool TryEncodeTime(int Hour, int Min, int Sec, int MSec, TDateTime& Time);
/// Splits the time part after rounding to whole milliseconds.
KESH_EXPORT void DecodeTime(TDateTime Time, int& Hour, int& Min, int& Sec, int& MSec);
/// Sunday = 1 … Saturday = 7.
KESH_EXPORT int DayOfWeek(TDateTime Date);
KESH_EXPORT TDateTime IncDay(TDateTime Date, int NumberOfDays = 1);
/// Keeps the day, clamped to the last day of the month reached; keeps the time.
KESH_EXPORT TDateTime IncMonth(TDateTime Date, int NumberOfMonths = 1);
KESH_EXPORT TDateTime IncYear(TDateTime Date, int NumberOfYears = 1);
KESH_EXPORT bool IsLeapYear(int Year);
KESH_EXPORT int DaysInAMonth(int Year, int Month);
KESH_EXPORT bool IsValidDate(int Year, int Month, int Day);
/// Today at midnight; the current date and time.
KESH_EXPORT TDateTime Date();
KESH_EXPORT TDateTime Now();

KESH_EXPORT QDate DateTimeToQDate(TDateTime Value);
KESH_EXPORT TDateTime QDateToDateTime(const QDate& Value);
KESH_EXPORT QDateTime DateTimeToQDateTime(TDateTime Value);
KESH_EXPORT TDateTime QDateTimeToDateTime(const QDateTime& Value);

} // namespace Kesh
