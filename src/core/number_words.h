// Kesh for Qt — amounts written out in Arabic and English words.
#pragma once
#include "platform/kesh_global.h"
#include "platform/rtl/currency.h"
#include <QString>
#include <QStringList>

namespace Kesh {

/// Arabic words of the whole part; Names = singular, dual, plural, singular accusative.
KESH_EXPORT QString NumberToWords(Currency Value, const QStringList& Names);
/// The same words with every joiner in Arabic letters ("و", "ألف", "ألفاً و", "مليون" …)
/// where NumberToWords keeps its stored question marks: for text a reader sees.
KESH_EXPORT QString NumberToArabicWords(Currency Value, const QStringList& Names);
/// English words of the whole part.
KESH_EXPORT QString NumberToWordsE(Currency Value);

} // namespace Kesh
