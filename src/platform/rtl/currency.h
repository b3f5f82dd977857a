// Kesh for Qt — fixed-point money amount with four decimals.
#pragma once
#include "../kesh_global.h"
#include <QtGlobal>
#include <limits>

namespace Kesh {

/// A 64-bit integer scaled by 10000, as the original platform's Currency.
class KESH_EXPORT Currency
{
public:
    constexpr Currency() = default;
    constexpr Currency(int Value) : m_raw(qint64(Value) * 10000) {}
    /// Raises EConvertError when Value * 10000 does not fit in 64 bits.
    constexpr Currency(qint64 Value) : m_raw(Scaled(Value)) {}
    /// Rounds to the nearest 1/10000, ties to even; raises EConvertError for a value out of
    /// range (about ±9.22E14) or not a number.
    Currency(double Value);
    Currency(long double Value);

    static constexpr Currency FromRaw(qint64 Raw) { Currency C; C.m_raw = Raw; return C; }
    constexpr qint64 Raw() const { return m_raw; }
    long double ToExtended() const { return static_cast<long double>(m_raw) / 10000.0L; }
    double ToDouble() const { return static_cast<double>(ToExtended()); }

    friend constexpr bool operator==(Currency A, Currency B) { return A.m_raw == B.m_raw; }
    friend constexpr bool operator!=(Currency A, Currency B) { return A.m_raw != B.m_raw; }
    friend constexpr bool operator<(Currency A, Currency B) { return A.m_raw < B.m_raw; }
    /// Sum and difference; raise EConvertError when the result leaves the range.
    friend constexpr Currency operator+(Currency A, Currency B) { return FromRaw(CheckedAdd(A.m_raw, B.m_raw)); }
    friend constexpr Currency operator-(Currency A, Currency B) { return FromRaw(CheckedSub(A.m_raw, B.m_raw)); }

private:
    static constexpr qint64 Max = std::numeric_limits<qint64>::max();
    static constexpr qint64 Min = std::numeric_limits<qint64>::min();
    [[noreturn]] static void RangeError();
    static constexpr qint64 Scaled(qint64 V) { return V > Max / 10000 || V < Min / 10000 ? (RangeError(), 0) : V * 10000; }
    static constexpr qint64 CheckedAdd(qint64 A, qint64 B)
    {
        return (B > 0 && A > Max - B) || (B < 0 && A < Min - B) ? (RangeError(), 0) : A + B;
    }
    static constexpr qint64 CheckedSub(qint64 A, qint64 B)
    {
        return (B < 0 && A > Max + B) || (B > 0 && A < Min + B) ? (RangeError(), 0) : A - B;
    }

    qint64 m_raw = 0;
};

} // namespace Kesh
