// Kesh for Qt — the Arabic and English caption and font that bilingual controls carry.
#include "bi_caption.h"

namespace Kesh {

bool TBiCaption::Pick(TBiDiMode Mode, QString& Caption, TFont& Font) const
{
    if (Mode != bdRightToLeft && Mode != bdLeftToRight)
        return false;
    const QString& caption = CaptionOf(Mode);
    if (caption.isEmpty())
        return false;
    Caption = caption;
    Font = FontOf(Mode);
    return true;
}

} // namespace Kesh
