// Kesh for Qt — fixed-point money amount with four decimals.
#pragma once
#include "../kesh_global.h"
#include <QtGlobal>

namespace Kesh {

/// A 64-bit integer scaled by 10000, as the original platform's Currency.
class KESH_EXPORT Currency
{
public:
    constexpr Currency() = default;
    constexpr Currency(int Value) : m_raw(qint64(Value) * 10000) {}
    constexpr Currency(qint64 Value) : m_raw(Value * 10000) {}
    /// Rounds to the nearest 1/10000, ties to even.
    Currency(double Value);
    Currency(long double Value);

    static constexpr Currency FromRaw(qint64 Raw) { Currency C; C.m_raw = Raw; return C; }
    constexpr qint64 Raw() const { return m_raw; }
    long double ToExtended() const { return static_cast<long double>(m_raw) / 10000.0L; }
    double ToDouble() const { return static_cast<double>(ToExtended()); }

    friend constexpr bool operator==(Currency A, Currency B) { return A.m_raw == B.m_raw; }
    friend constexpr bool operator!=(Currency A, Currency B) { return A.m_raw != B.m_raw; }
    friend constexpr bool operator<(Currency A, Currency B) { return A.m_raw < B.m_raw; }
    friend constexpr Currency operator+(Currency A, Currency B) { return FromRaw(A.m_raw + B.m_raw); }
    friend constexpr Currency operator-(Currency A, Currency B) { return FromRaw(A.m_raw - B.m_raw); }

private:
    qint64 m_raw = 0;
};

} // namespace Kesh
