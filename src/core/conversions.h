// Kesh for Qt — the bilingual choice, tolerant conversions and tokens.
#pragma once
#include "platform/kesh_global.h"
#include <QString>
#include <QVariant>
#include <bitset>
#include <initializer_list>

namespace Kesh {

class TField;

/// `Arabic` while the application reads right to left, `English` otherwise.
KESH_EXPORT QString BiStr(const QString& Arabic, const QString& English);
/// 0 for English, 1 for Arabic: the row of a two-row name table.
KESH_EXPORT int LangIndex();

/// The variant as text; an invalid or null variant gives empty text, a Boolean "True" or
/// "False", a floating-point number FloatToStr's text (locale decimal separator).
KESH_EXPORT QString AsString(const QVariant& V);
/// The field's text; empty for no field or when reading it fails.
KESH_EXPORT QString AsString(TField* Field);
/// True only for "TRUE" in any letter case.
KESH_EXPORT bool AsBoolean(const QString& S);
KESH_EXPORT QVariant IIF(bool Condition, const QVariant& TrueValue, const QVariant& FalseValue);
/// True when Trim(S) is empty.
KESH_EXPORT bool IsEmpty(const QString& S);
/// TryStrToInt of S, or 0.
KESH_EXPORT int AsInteger(const QString& S);
/// TryStrToFloat of S under FormatSettings, or 0.
KESH_EXPORT long double AsFloat(const QString& S);
/// Decimal text left-padded with "0" to (Width and 15) characters.
KESH_EXPORT QString Int2Str(qint64 Value, int Width);

/// A set of character codes 0..255; characters from U+0100 up are never members.
class KESH_EXPORT TSysCharSet
{
public:
    TSysCharSet() = default;
    TSysCharSet(std::initializer_list<char> Chars);
    bool Contains(QChar C) const { return C.unicode() < 256 && m_bits.test(C.unicode()); }
    TSysCharSet& Include(unsigned char C) { m_bits.set(C); return *this; }

private:
    std::bitset<256> m_bits;
};

/// Number of maximal runs of non-delimiters; empty tokens are not counted.
KESH_EXPORT int TokenCount(const QString& S, const TSysCharSet& Delims);
/// Removes one leading delimiter, then takes characters up to the next delimiter.
KESH_EXPORT QString GetToken(QString& S, const TSysCharSet& Delims);
KESH_EXPORT int GetInteger(QString& S, const TSysCharSet& Delims);
KESH_EXPORT bool GetBoolean(QString& S, const TSysCharSet& Delims);

} // namespace Kesh
