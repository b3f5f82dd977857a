#include "core_tools_page.h"

#include <Kesh.h>

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QVBoxLayout>

using namespace Kesh;

namespace {
QLabel* ResultLabel()
{
    auto* L = new QLabel;
    L->setWordWrap(true);
    L->setTextInteractionFlags(Qt::TextSelectableByMouse);
    L->setMinimumWidth(380);
    QFont F = L->font();
    F.setBold(true);
    L->setFont(F);
    return L;
}
} // namespace

CoreToolsPage::CoreToolsPage(QWidget* Parent) : DemoPage(Parent)
{
    auto* Layout = new QVBoxLayout(this);

    m_dateBox = new QGroupBox;
    auto* DateForm = new QFormLayout(m_dateBox);
    m_dateEdit = new QLineEdit(QStringLiteral("05-03-2024"));
    m_gregorian = ResultLabel();
    m_hijri = ResultLabel();
    DateForm->addRow(m_dateLabel = new QLabel, m_dateEdit);
    DateForm->addRow(m_gregorianLabel = new QLabel, m_gregorian);
    DateForm->addRow(m_hijriLabel = new QLabel, m_hijri);
    Layout->addWidget(m_dateBox);

    m_amountBox = new QGroupBox;
    auto* AmountForm = new QFormLayout(m_amountBox);
    m_amountEdit = new QLineEdit(QStringLiteral("1250125"));
    m_arabicWords = ResultLabel();
    m_englishWords = ResultLabel();
    AmountForm->addRow(m_amountLabel = new QLabel, m_amountEdit);
    AmountForm->addRow(m_arabicLabel = new QLabel, m_arabicWords);
    AmountForm->addRow(m_englishLabel = new QLabel, m_englishWords);
    Layout->addWidget(m_amountBox);

    m_roundBox = new QGroupBox;
    auto* RoundForm = new QFormLayout(m_roundBox);
    m_valueEdit = new QLineEdit(QStringLiteral("2.3"));
    m_decimals = new QSpinBox;
    m_decimals->setRange(0, 8);
    m_decimals->setValue(2);
    m_rule = new QComboBox;
    m_result = ResultLabel();
    RoundForm->addRow(m_valueLabel = new QLabel, m_valueEdit);
    RoundForm->addRow(m_decimalsLabel = new QLabel, m_decimals);
    RoundForm->addRow(m_ruleLabel = new QLabel, m_rule);
    RoundForm->addRow(m_resultLabel = new QLabel, m_result);
    Layout->addWidget(m_roundBox);
    Layout->addStretch();

    connect(m_dateEdit, &QLineEdit::textChanged, this, &CoreToolsPage::UpdateDate);
    connect(m_amountEdit, &QLineEdit::textChanged, this, &CoreToolsPage::UpdateAmount);
    connect(m_valueEdit, &QLineEdit::textChanged, this, &CoreToolsPage::UpdateRounding);
    connect(m_decimals, &QSpinBox::valueChanged, this, &CoreToolsPage::UpdateRounding);
    connect(m_rule, &QComboBox::currentIndexChanged, this, &CoreToolsPage::UpdateRounding);
    Retranslate();
}

QString CoreToolsPage::Title() const
{
    return BiStr(QStringLiteral("أدوات أساسية"), QStringLiteral("Core tools"));
}

void CoreToolsPage::Retranslate()
{
    m_dateBox->setTitle(BiStr(QStringLiteral("تحويل التاريخ (ميلادي / هجري)"), QStringLiteral("Date converter (Gregorian / Hijri)")));
    m_dateLabel->setText(BiStr(QStringLiteral("التاريخ (يوم-شهر-سنة):"), QStringLiteral("Date (day-month-year):")));
    m_gregorianLabel->setText(BiStr(QStringLiteral("ميلادي:"), QStringLiteral("Gregorian:")));
    m_hijriLabel->setText(BiStr(QStringLiteral("هجري:"), QStringLiteral("Hijri:")));

    m_amountBox->setTitle(BiStr(QStringLiteral("المبلغ كتابة"), QStringLiteral("Amount in words")));
    m_amountLabel->setText(BiStr(QStringLiteral("المبلغ:"), QStringLiteral("Amount:")));
    m_arabicLabel->setText(BiStr(QStringLiteral("بالعربية:"), QStringLiteral("Arabic:")));
    m_englishLabel->setText(BiStr(QStringLiteral("بالإنجليزية:"), QStringLiteral("English:")));

    m_roundBox->setTitle(BiStr(QStringLiteral("التقريب"), QStringLiteral("Rounding")));
    m_valueLabel->setText(BiStr(QStringLiteral("القيمة:"), QStringLiteral("Value:")));
    m_decimalsLabel->setText(BiStr(QStringLiteral("الخانات العشرية:"), QStringLiteral("Decimals:")));
    m_ruleLabel->setText(BiStr(QStringLiteral("القاعدة:"), QStringLiteral("Rule:")));
    m_resultLabel->setText(BiStr(QStringLiteral("النتيجة:"), QStringLiteral("Result:")));

    const int Rule = qMax(0, m_rule->currentIndex());
    const QSignalBlocker Blocker(m_rule);
    m_rule->clear();
    m_rule->addItems({BiStr(QStringLiteral("عادي (إلى عدد صحيح)"), QStringLiteral("Normal (to a whole number)")),
                      BiStr(QStringLiteral("بدون"), QStringLiteral("None")),
                      BiStr(QStringLiteral("حذف الكسر"), QStringLiteral("Drop the fraction")),
                      BiStr(QStringLiteral("لأقرب نصف"), QStringLiteral("Nearest half")),
                      BiStr(QStringLiteral("لأقرب واحد"), QStringLiteral("Nearest one"))});
    m_rule->setCurrentIndex(Rule == 0 ? int(RtNearHaf) : Rule);

    for (QLabel* Result : {m_gregorian, m_hijri, m_arabicWords, m_englishWords, m_result})
        AlignToReadingSide(Result);
    UpdateDate();
    UpdateAmount();
    UpdateRounding();
}

void CoreToolsPage::UpdateDate()
{
    const int D = AsDate(m_dateEdit->text());
    if (!IsDate(D)) {
        const QString Bad = BiStr(QStringLiteral("تاريخ غير صحيح"), QStringLiteral("Not a valid date"));
        m_gregorian->setText(Bad);
        m_hijri->clear();
        return;
    }
    const int G = IsHijri(D) ? ConvertDate(D) : D;
    const int H = IsHijri(D) ? D : ConvertDate(D);
    m_gregorian->setText(DateToString(G) + QStringLiteral("   ") + DateToWords(G));
    m_hijri->setText(DateToString(H) + QStringLiteral("   ") + DateToWords(H));
}

void CoreToolsPage::UpdateAmount()
{
    long double Value = 0;
    if (!TryStrToFloat(m_amountEdit->text(), Value) || Value < 0 || Value >= 1e12L) {
        m_arabicWords->setText(BiStr(QStringLiteral("أدخل مبلغاً من 0 إلى 999999999999"),
                                     QStringLiteral("Enter an amount from 0 to 999999999999")));
        m_englishWords->clear();
        return;
    }
    const Currency Amount(Value);
    m_arabicWords->setText(NumberToWords(Amount, {QStringLiteral("ريال"), QStringLiteral("ريالان"),
                                                  QStringLiteral("ريالات"), QStringLiteral("ريالا")}));
    m_englishWords->setText(Trim(NumberToWordsE(Amount)) + QStringLiteral(" Riyals"));
}

void CoreToolsPage::UpdateRounding()
{
    long double Value = 0;
    if (!TryStrToFloat(m_valueEdit->text(), Value)) {
        m_result->setText(BiStr(QStringLiteral("ليس رقماً"), QStringLiteral("Not a number")));
        return;
    }
    const auto Rule = TxRoundTypes(qMax(0, m_rule->currentIndex()));
    m_result->setText(FloatToStr(RoundNumber(Value, m_decimals->value(), Rule)));
}
