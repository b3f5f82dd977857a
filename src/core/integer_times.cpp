// Kesh for Qt — integer times (hhmm): packing, minute indexes, text and durations.

#include "integer_times.h"

#include "conversions.h"
#include "platform/exceptions.h"
#include "platform/rtl/numbers.h"
#include "platform/rtl/strings.h"

namespace Kesh {

namespace {

// Packed values are never range-checked; the arithmetic wraps instead of overflowing so
// that absurd input gives an absurd value, not undefined behaviour.
int Wrap(qint64 Value)
{
    return static_cast<int>(static_cast<quint32>(Value));
}

} // namespace

int TimeEncode(int Hours, int Minutes)
{
    return Wrap(qint64(Hours) * 100 + Minutes);
}

void TimeDecode(int T, int& Hours, int& Minutes)
{
    Hours = T / 100;
    Minutes = T % 100;
}

int TimeToMinIndex(int T)
{
    return (T / 100) * 60 + T % 100;
}

int MinIndexToTime(int I)
{
    return Wrap(qint64(I / 60) * 100 + I % 60);
}

int TimeToInt(TDateTime T)
{
    try {
        int Hour = 0, Min = 0, Sec = 0, MSec = 0;
        DecodeTime(T, Hour, Min, Sec, MSec);
        return Hour * 100 + Min; // seconds are dropped, not rounded
    } catch (const Exception&) {
        return 0;
    }
}

TDateTime IntToTime(int T)
{
    TDateTime Result = 0;
    // Hours above 23, minutes above 59 or negative parts give midnight.
    return TryEncodeTime(T / 100, T % 100, 0, 0, Result) ? Result : 0;
}

int StringToTime(const QString& S)
{
    static const TSysCharSet Delims{'.', ':'};
    QString Rest = S;
    int Hours = 0, Minutes = 0;
    if (!TryStrToInt(Trim(GetToken(Rest, Delims)), Hours))
        return -1;
    // Anything after the minutes is ignored: '10:15:30' reads as 1015.
    if (!TryStrToInt(Trim(GetToken(Rest, Delims)), Minutes))
        return -1;
    return TimeEncode(Hours, Minutes);
}

int MinutesBetween(int FromTime, int ToTime)
{
    const qint64 From = TimeToMinIndex(FromTime);
    const qint64 To = TimeToMinIndex(ToTime);
    // Compared as packed values: an earlier end means the interval crosses midnight.
    if (ToTime < FromTime)
        return Wrap(1440 - From + To);
    return Wrap(To - From);
}

int TimeBetween(int FromTime, int ToTime)
{
    return MinIndexToTime(MinutesBetween(FromTime, ToTime));
}

} // namespace Kesh
