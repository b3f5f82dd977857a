#include "numbers.h"

#include "../exceptions.h"
#include "format_settings.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

namespace Kesh {

namespace {

int HexDigit(QChar C)
{
    const char16_t U = C.unicode();
    if (U >= '0' && U <= '9')
        return U - '0';
    if (U >= 'a' && U <= 'f')
        return U - 'a' + 10;
    if (U >= 'A' && U <= 'F')
        return U - 'A' + 10;
    return -1;
}

// The classic integer reading: blanks (U+0020 only), an optional sign, then decimal digits
// or hexadecimal ones after "$" or "0x". Decimal text must fit the signed range; hexadecimal
// text may use the whole unsigned range of the width and is taken as its bit pattern
// ("$FFFFFFFF" is -1 in 32 bits), as the original run-time library does.
bool ParseInteger(const QString& S, int Bits, qint64& Value)
{
    const qsizetype Len = S.size();
    qsizetype I = 0;
    while (I < Len && S.at(I) == QLatin1Char(' '))
        ++I;
    bool Negative = false;
    if (I < Len && (S.at(I) == QLatin1Char('-') || S.at(I) == QLatin1Char('+')))
        Negative = S.at(I++) == QLatin1Char('-');

    int Base = 10;
    if (I < Len && S.at(I) == QLatin1Char('$')) {
        Base = 16;
        ++I;
    } else if (I + 1 < Len && S.at(I) == QLatin1Char('0') && (S.at(I + 1) == QLatin1Char('x') || S.at(I + 1) == QLatin1Char('X'))) {
        Base = 16;
        I += 2;
    }
    if (I >= Len)
        return false;

    const quint64 Limit = Base == 16 ? (Bits == 64 ? ~quint64(0) : (quint64(1) << Bits) - 1)
                                     : (quint64(1) << (Bits - 1)) - (Negative ? 0 : 1);
    quint64 Magnitude = 0;
    for (; I < Len; ++I) {
        const int D = HexDigit(S.at(I));
        if (D < 0 || D >= Base)
            return false;
        if (Magnitude > (Limit - quint64(D)) / quint64(Base))
            return false;
        Magnitude = Magnitude * quint64(Base) + quint64(D);
    }

    if (Base == 16 && Bits == 32)
        Magnitude = quint64(qint64(qint32(quint32(Magnitude)))); // the 32-bit pattern, sign-extended
    // Two's-complement negation on the unsigned value keeps -2^(Bits-1) free of overflow.
    if (Negative)
        Magnitude = ~Magnitude + 1;
    Value = Bits == 32 ? qint64(qint32(quint32(Magnitude))) : qint64(Magnitude);
    return true;
}

// The text of a decimal number reduced to "<digits>e<exponent>" without a decimal point,
// so that the C library converts it the same way under every C locale.
struct DecimalText
{
    bool Negative = false;
    std::string Digits;       // significant digits, no leading zeros; empty for zero
    qint64 Exponent = 0;      // value = Digits * 10^Exponent
};

bool IsDigit(QChar C) { return C.unicode() >= '0' && C.unicode() <= '9'; }

// The classic TextToFloat grammar: [blanks] [sign] digits [sep digits] [(E|e) [sign] digits] [blanks],
// with at least one digit in the mantissa and the decimal separator of FormatSettings.
bool ParseDecimal(const QString& S, DecimalText& Out)
{
    const QChar Separator = FormatSettings.DecimalSeparator;
    const qsizetype Len = S.size();
    qsizetype I = 0;
    while (I < Len && S.at(I) == QLatin1Char(' '))
        ++I;
    if (I < Len && (S.at(I) == QLatin1Char('-') || S.at(I) == QLatin1Char('+')))
        Out.Negative = S.at(I++) == QLatin1Char('-');

    bool AnyDigit = false;
    bool InFraction = false;
    qint64 FractionDigits = 0;
    for (; I < Len; ++I) {
        const QChar C = S.at(I);
        if (IsDigit(C)) {
            AnyDigit = true;
            if (!Out.Digits.empty() || C != QLatin1Char('0'))
                Out.Digits += char(C.unicode());
            if (InFraction)
                ++FractionDigits;
        } else if (C == Separator && !InFraction) {
            InFraction = true;
        } else {
            break;
        }
    }
    if (!AnyDigit)
        return false;

    qint64 Exponent = 0;
    if (I < Len && (S.at(I) == QLatin1Char('e') || S.at(I) == QLatin1Char('E'))) {
        ++I;
        bool NegativeExponent = false;
        if (I < Len && (S.at(I) == QLatin1Char('-') || S.at(I) == QLatin1Char('+')))
            NegativeExponent = S.at(I++) == QLatin1Char('-');
        if (I >= Len || !IsDigit(S.at(I)))
            return false;
        // Beyond this the value is zero or infinite anyway; the cap keeps the sum below in range.
        constexpr qint64 Cap = 100000000;
        for (; I < Len && IsDigit(S.at(I)); ++I)
            Exponent = qMin(Cap, Exponent * 10 + (S.at(I).unicode() - '0'));
        if (NegativeExponent)
            Exponent = -Exponent;
    }
    while (I < Len && S.at(I) == QLatin1Char(' '))
        ++I;
    if (I != Len)
        return false;

    // Zeros ending the fraction were kept in Digits only if a significant digit preceded them.
    Out.Exponent = Exponent - FractionDigits;
    return true;
}

template <typename T>
bool ConvertDecimal(const DecimalText& D, T& Value)
{
    T Result = 0;
    if (!D.Digits.empty()) {
        const std::string Text = D.Digits + 'e' + std::to_string(D.Exponent);
        errno = 0;
        if constexpr (std::is_same_v<T, long double>)
            Result = std::strtold(Text.c_str(), nullptr);
        else
            Result = std::strtod(Text.c_str(), nullptr);
        // ERANGE also reports an underflow to a tiny or zero value, which is a fine result.
        if (std::isinf(Result))
            return false;
    }
    Value = D.Negative ? -Result : Result;
    return true;
}

// Bounds of qint64 as long doubles; both are exact powers of two.
constexpr long double Int64Lower = -9223372036854775808.0L;
constexpr long double Int64UpperExclusive = 9223372036854775808.0L;

qint64 ToInt64(long double Whole)
{
    if (!(Whole >= Int64Lower && Whole < Int64UpperExclusive))
        throw EConvertError(QStringLiteral("Invalid floating point operation"));
    return qint64(Whole);
}

} // namespace

bool TryStrToInt(const QString& S, int& Value)
{
    qint64 V = 0;
    if (!ParseInteger(S, 32, V))
        return false;
    Value = int(V);
    return true;
}

bool TryStrToInt64(const QString& S, qint64& Value) { return ParseInteger(S, 64, Value); }

bool TryStrToFloat(const QString& S, long double& Value)
{
    DecimalText D;
    return ParseDecimal(S, D) && ConvertDecimal(D, Value);
}

bool TryStrToFloat(const QString& S, double& Value)
{
    DecimalText D;
    return ParseDecimal(S, D) && ConvertDecimal(D, Value);
}

long double StrToFloat(const QString& S)
{
    long double Value = 0;
    if (!TryStrToFloat(S, Value))
        throw EConvertError(QStringLiteral("'%1' is not a valid floating point value").arg(S));
    return Value;
}

qint64 Round(long double Value) { return ToInt64(std::nearbyint(Value)); }

long double Frac(long double Value) { return Value - std::trunc(Value); }

qint64 Trunc(long double Value) { return ToInt64(std::trunc(Value)); }

} // namespace Kesh
