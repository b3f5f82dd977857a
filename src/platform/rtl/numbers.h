// Kesh for Qt — text to number and number to text, with the original semantics.
#pragma once
#include "../kesh_global.h"
#include <QString>

namespace Kesh {

/// Decimal or hexadecimal ($ or 0x prefix) 32-bit integer; optional sign; leading
/// blanks (U+0020) skipped; anything after the digits fails.
KESH_EXPORT bool TryStrToInt(const QString& S, int& Value);
KESH_EXPORT bool TryStrToInt64(const QString& S, qint64& Value);
/// Decimal number with FormatSettings.DecimalSeparator and an optional exponent; blanks
/// (U+0020) may stand around it; no thousand separators. Correctly rounded; false for text
/// that is not such a number or for a value beyond the range of the result type.
KESH_EXPORT bool TryStrToFloat(const QString& S, long double& Value);
KESH_EXPORT bool TryStrToFloat(const QString& S, double& Value);
/// Raises EConvertError "'S' is not a valid floating point value".
KESH_EXPORT long double StrToFloat(const QString& S);
/// Shortest text with at most 15 significant digits ("1E20", "1E-5" outside fixed range;
/// "NAN", "INF", "-INF").
KESH_EXPORT QString FloatToStr(long double Value);
/// The pattern language of '#', '0', ',', '.', 'E+'/'E-', ';' sections and quoted literals;
/// rounds the 18-significant-digit decimal form half away from zero.
KESH_EXPORT QString FormatFloat(const QString& Format, long double Value);
/// Round half to even, as the original platform's Round; raises EConvertError when the
/// result does not fit in 64 bits (or for NaN).
KESH_EXPORT qint64 Round(long double Value);
/// The fraction, with the sign of Value.
KESH_EXPORT long double Frac(long double Value);
/// Toward zero; raises EConvertError as Round does.
KESH_EXPORT qint64 Trunc(long double Value);

} // namespace Kesh
