// Kesh for Qt — the Arabic and English caption and font that bilingual controls carry.
#pragma once
#include "platform/application.h"
#include "platform/graphics.h"
#include "platform/kesh_global.h"
#include <QString>

namespace Kesh {

/// The two captions and fonts of a bilingual control, and the rule that picks one.
struct KESH_EXPORT TBiCaption
{
    QString CaptionA; ///< Arabic caption
    QString CaptionE; ///< English caption
    TFont FontA;      ///< font of the Arabic caption
    TFont FontE;      ///< font of the English caption

    /// The caption and font of Mode's language (Arabic for bdRightToLeft, English for
    /// bdLeftToRight) into Caption and Font. An empty caption of that language changes
    /// nothing and gives false: the control keeps what it shows, with no fall-back.
    bool Pick(TBiDiMode Mode, QString& Caption, TFont& Font) const;
    /// The caption of Mode's language, which may be empty.
    QString CaptionOf(TBiDiMode Mode) const { return Mode == bdRightToLeft ? CaptionA : CaptionE; }
    const TFont& FontOf(TBiDiMode Mode) const { return Mode == bdRightToLeft ? FontA : FontE; }
};

} // namespace Kesh
