#include "currency.h"

#include "../exceptions.h"

#include <cmath>

namespace Kesh {

namespace {

// The scaled value must round into qint64; both bounds are exact in long double.
qint64 ScaledRaw(long double Value)
{
    const long double Scaled = std::nearbyint(Value * 10000.0L);
    if (!(Scaled >= -9223372036854775808.0L && Scaled < 9223372036854775808.0L))
        throw EConvertError(QStringLiteral("Value out of the range of Currency"));
    return qint64(Scaled);
}

} // namespace

Currency::Currency(double Value) : m_raw(ScaledRaw(Value)) {}

Currency::Currency(long double Value) : m_raw(ScaledRaw(Value)) {}

void Currency::RangeError() { throw EConvertError(QStringLiteral("Value out of the range of Currency")); }

} // namespace Kesh
