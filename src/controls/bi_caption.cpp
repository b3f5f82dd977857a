// Kesh for Qt — the Arabic and English caption and font that bilingual classes carry.
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

void TxBilingual::SetCaptionA(const QString& Value)
{
    m_bi.CaptionA = Value;
    if (ShowsArabic())
        ShowBiCaption(Value);
}

void TxBilingual::SetCaptionE(const QString& Value)
{
    m_bi.CaptionE = Value;
    if (!ShowsArabic())
        ShowBiCaption(Value);
}

void TxBilingual::SetFont_a(const TFont& Value)
{
    m_bi.FontA = Value;
    if (ShowsArabic())
        ShowBiFont(Value);
}

void TxBilingual::SetFont_e(const TFont& Value)
{
    m_bi.FontE = Value;
    if (!ShowsArabic())
        ShowBiFont(Value);
}

bool TxBilingual::ApplyBiCaption()
{
    QString Caption;
    TFont Font;
    if (!m_bi.Pick(BiLanguage(), Caption, Font))
        return false;
    ShowBiCaption(Caption);
    ShowBiFont(Font);
    return true;
}

} // namespace Kesh
