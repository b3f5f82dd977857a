// Kesh for Qt — integer dates (yyyymmdd) with the tabular Hijri calendar beside the Gregorian one.
#pragma once
#include "platform/kesh_global.h"
#include "platform/rtl/datetime.h"
#include <QString>

namespace Kesh {

/// Name tables [language][n]: language 0 English, 1 Arabic; n from 1 (index 0 unused).
extern KESH_EXPORT const QString TxDayName[2][8];        ///< 1 = Saturday … 7 = Friday
extern KESH_EXPORT const QString TxMonthName[2][13];     ///< Gregorian months
extern KESH_EXPORT const QString TxHijriMonthName[2][13];

KESH_EXPORT int DateToInt(TDateTime D);
KESH_EXPORT TDateTime IntToDate(int D);
KESH_EXPORT int AsDate(const QString& S);
KESH_EXPORT int DateEncode(int Year, int Month, int Day);
KESH_EXPORT void DateDecode(int D, int& Year, int& Month, int& Day);
KESH_EXPORT int GetYear(int D);
KESH_EXPORT int GetMonth(int D);
KESH_EXPORT int GetDay(int D);
KESH_EXPORT void SetDay(int& D, int Day);
KESH_EXPORT QString DateToString(int D);
KESH_EXPORT bool IsDate(int D);
KESH_EXPORT bool IsHijri(int D);
KESH_EXPORT int ConvertDate(int D);
KESH_EXPORT QString DateToWords(int D);
KESH_EXPORT int GetDaysInMonth(int D);
KESH_EXPORT int GetDaysLeft(int D);
KESH_EXPORT void DateDiff(int D1, int D2, int& Years, int& Months, int& Days);
KESH_EXPORT int DaysInc(int D, int N);
KESH_EXPORT int MonthsInc(int D, int N);
KESH_EXPORT int YearsInc(int D, int N);

} // namespace Kesh
