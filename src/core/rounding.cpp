// Kesh for Qt — rounding by a house rule.
#include "rounding.h"

#include "platform/rtl/numbers.h"

namespace Kesh {

namespace {

// The rule itself; the decimals are cut afterwards by the fixed-point formatting.
long double ApplyRule(long double Value, TxRoundTypes RoundType)
{
    const long double Fraction = Frac(Value);
    const long double Whole = Value - Fraction;
    switch (RoundType) {
    case RtNormal:
        return static_cast<long double>(Round(Value));
    case RtNone:
        return Value;
    case RtNoFrac:
        return Whole;
    case RtNearHaf:
        // A negative fraction is below every threshold, so negatives truncate toward zero.
        if (Fraction < 0.25L)
            return Whole;
        return Fraction < 0.75L ? Whole + 0.5L : Whole + 1;
    case RtNearOne:
        return Fraction < 0.5L ? Whole : Whole + 1;
    }
    return Value;
}

// "0", "0.0" … "0.000000"; any request above six places gets four.
QString DecimalsPattern(int Decimals)
{
    if (Decimals < 1)
        return QStringLiteral("0");
    const int Places = Decimals > 6 ? 4 : Decimals;
    return QStringLiteral("0.") + QString(Places, QLatin1Char('0'));
}

} // namespace

long double RoundNumber(long double Value, int Decimals, TxRoundTypes RoundType)
{
    return StrToFloat(FormatFloat(DecimalsPattern(Decimals), ApplyRule(Value, RoundType)));
}

} // namespace Kesh
