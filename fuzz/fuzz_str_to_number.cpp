// Fuzzes TryStrToInt, TryStrToInt64, TryStrToFloat and TryStrToTime on arbitrary UTF-8 or
// UTF-16 text, and the calendar routines on whatever number the text holds.
// Input: 1 option byte (text encoding, decimal separator), then the text.
#include "platform/exceptions.h"
#include "platform/rtl.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace Kesh;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    if (Size < 1)
        return 0;
    const uint8_t Options = Data[0];
    FormatSettings.DecimalSeparator = (Options & 2) ? QLatin1Char(',') : QLatin1Char('.');
    const char* Text = reinterpret_cast<const char*>(Data + 1);
    const qsizetype Len = qsizetype(Size - 1);
    const QString S = (Options & 1) ? QString(reinterpret_cast<const QChar*>(Text), Len / 2)
                                    : QString::fromUtf8(Text, Len);

    int I = 0;
    qint64 I64 = 0;
    long double X = 0;
    double D = 0;
    const bool IntOk = TryStrToInt(S, I);
    const bool Int64Ok = TryStrToInt64(S, I64);
    const bool FloatOk = TryStrToFloat(S, X);
    const bool DoubleOk = TryStrToFloat(S, D);

    // Every 32-bit integer text is a 64-bit one; decimal integer text is also a number.
    if (IntOk && !Int64Ok)
        std::abort();
    const bool Hex = S.contains(QLatin1Char('$')) || S.contains(QLatin1Char('x')) || S.contains(QLatin1Char('X'));
    if (IntOk && !Hex && (I64 != I || !FloatOk || X != I || !DoubleOk || D != I))
        std::abort();
    if (Int64Ok && !Hex && (!FloatOk || X != static_cast<long double>(I64)))
        std::abort();
    // The double reading fails only where the value leaves the double range.
    if (DoubleOk && !FloatOk)
        std::abort();
    if (FloatOk && !DoubleOk && std::fabs(X) < 1e308L)
        std::abort();
    if ((FloatOk && std::isnan(X)) || (DoubleOk && std::isnan(D)))
        std::abort();

    TDateTime Time = -1;
    if (TryStrToTime(S, Time) && !(Time >= 0 && Time < 1))
        std::abort();

    if (DoubleOk) {
        int Y, M, Dd, H, Mi, Se, Ms;
        DecodeDate(D, Y, M, Dd);
        DecodeTime(D, H, Mi, Se, Ms);
        if (Y != 0 && !IsValidDate(Y, M, Dd))
            std::abort();
        if (H < 0 || H > 23 || Mi < 0 || Mi > 59 || Se < 0 || Se > 59 || Ms < 0 || Ms > 999)
            std::abort();
        (void)DayOfWeek(D);
        (void)IncDay(D, I);
        (void)DateTimeToQDateTime(D);
        try {
            (void)IncMonth(D, I);
            (void)IncYear(D, I);
        } catch (const EConvertError&) {
        }
        try {
            (void)Round(D);
            (void)Currency(D);
        } catch (const EConvertError&) {
        }
    }
    return 0;
}
