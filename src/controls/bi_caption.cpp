// Kesh for Qt — the Arabic and English caption and font that bilingual classes carry.
#include "bi_caption.h"

#include <utility>

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
    BiMemberChanged(true, true, Value, m_bi.FontA);
}

void TxBilingual::SetCaptionE(const QString& Value)
{
    m_bi.CaptionE = Value;
    BiMemberChanged(false, true, Value, m_bi.FontE);
}

void TxBilingual::SetFont_a(const TFont& Value)
{
    m_bi.FontA = Value;
    BiMemberChanged(true, false, m_bi.CaptionA, Value);
}

void TxBilingual::SetFont_e(const TFont& Value)
{
    m_bi.FontE = Value;
    BiMemberChanged(false, false, m_bi.CaptionE, Value);
}

void TxBilingual::BiMemberChanged(bool Arabic, bool Caption, const QString& Text, const TFont& Font)
{
    if (Arabic != ShowsArabic())
        return;
    if (Caption)
        ShowBiCaption(Text);
    else
        ShowBiFont(Font);
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

void TxBilingual::BiDirectionChanged(bool Loading)
{
    if (Loading)
        m_languagePending = true;
    else
        ApplyBiLanguage();
}

void TxBilingual::BiLoaded()
{
    if (std::exchange(m_languagePending, false))
        ApplyBiLanguage();
}

} // namespace Kesh
