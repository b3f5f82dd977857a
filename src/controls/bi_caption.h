// Kesh for Qt — the Arabic and English caption and font that bilingual classes carry, and the
// one rule that shows the current language's pair.
#pragma once
#include "platform/application.h"
#include "platform/graphics.h"
#include "platform/kesh_global.h"
#include <QString>

/// The published properties of TxBilingual's members, for the Q_OBJECT section of a class
/// that inherits it.
#define KESH_BILINGUAL_PROPERTIES \
    Q_PROPERTY(QString _Caption_a READ GetCaption_a WRITE SetCaptionA) \
    Q_PROPERTY(QString _Caption_e READ GetCaption_e WRITE SetCaptionE) \
    Q_PROPERTY(Kesh::TFont _Font_a READ GetFont_a WRITE SetFont_a) \
    Q_PROPERTY(Kesh::TFont _Font_e READ GetFont_e WRITE SetFont_e)

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

/// What every bilingual class shares: the accessors of `_Caption_a`, `_Caption_e`, `_Font_a`
/// and `_Font_e`, and the rule that shows them.
///
/// A class inherits it (beside its Qt base), declares the four Q_PROPERTYs on these
/// accessors and implements the three hooks. A setter stores its value and, when the host
/// reads in that member's language now, shows it at once (an Arabic member under
/// bdRightToLeft, an English one under any other mode). ApplyBiCaption shows the pair of the
/// host's language by TBiCaption::Pick: only for bdRightToLeft and bdLeftToRight, and only
/// when that language's caption is not empty.
class KESH_EXPORT TxBilingual
{
public:
    QString GetCaption_a() const { return m_bi.CaptionA; }
    void SetCaptionA(const QString& Value);
    QString GetCaption_e() const { return m_bi.CaptionE; }
    void SetCaptionE(const QString& Value);
    TFont GetFont_a() const { return m_bi.FontA; }
    void SetFont_a(const TFont& Value);
    TFont GetFont_e() const { return m_bi.FontE; }
    void SetFont_e(const TFont& Value);

    /// The four members at once (read-only view).
    const TBiCaption& BiCaption() const { return m_bi; }

protected:
    TxBilingual() = default;
    virtual ~TxBilingual() = default;
    TxBilingual(const TxBilingual&) = default;
    TxBilingual& operator=(const TxBilingual&) = default;

    /// The reading direction that decides which member is shown now.
    virtual TBiDiMode BiLanguage() const = 0;
    /// Shows Caption as the host's text.
    virtual void ShowBiCaption(const QString& Caption) = 0;
    /// Takes Font as the host's font.
    virtual void ShowBiFont(const TFont& Font) = 0;

    /// Shows the caption and font of BiLanguage() when its caption is not empty; true when
    /// it showed them.
    bool ApplyBiCaption();
    /// A member was stored; by default it is shown at once when BiLanguage() reads in its
    /// language. A class whose rule is "store and apply again" overrides it with
    /// ApplyBiCaption().
    virtual void BiMemberChanged(bool Arabic, bool Caption, const QString& Text, const TFont& Font);
    /// Stores both fonts without showing them (creation defaults).
    void InitBiFonts(const TFont& Font) { m_bi.FontA = m_bi.FontE = Font; }

    /// Shows every bilingual member in the current language; by default ApplyBiCaption().
    /// A class with more pairs (item lists) shows them too.
    virtual void ApplyBiLanguage() { ApplyBiCaption(); }
    /// The host's direction changed: ApplyBiLanguage() now, or at BiLoaded() while the
    /// host is still being built (Loading).
    void BiDirectionChanged(bool Loading);
    /// The host finished building: applies a direction change met meanwhile.
    void BiLoaded();

private:
    bool ShowsArabic() const { return BiLanguage() == bdRightToLeft; }
    TBiCaption m_bi;
    bool m_languagePending = false;
};

} // namespace Kesh
