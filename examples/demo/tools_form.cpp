#include "tools_form.h"
#include "ui_tools_form.h"

#include <Kesh.h>
#include <Kesh_Controls.h>

#include <QApplication>

using namespace Kesh;

namespace Demo {

class TToolsFormPrivate
{
public:
    Ui::ToolsForm Form;
};

namespace {

// QLabel aligns plain text by the text's own direction, so digits and Latin names would stick
// to the left of an Arabic form; pin the results to the reading side of the application.
void AlignToReadingSide(QLabel* Label)
{
    const Qt::Alignment Side = QApplication::layoutDirection() == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft;
    Label->setAlignment(Side | Qt::AlignAbsolute | Qt::AlignVCenter);
}

void Embolden(TQxLabel* Heading)
{
    for (auto [Get, Set] : {std::pair{&TQxLabel::GetFont_a, &TQxLabel::SetFont_a}, std::pair{&TQxLabel::GetFont_e, &TQxLabel::SetFont_e}}) {
        TFont F = (Heading->*Get)();
        F.SetStyle(fsBold);
        (Heading->*Set)(F);
    }
}

} // namespace

TToolsForm::TToolsForm(TDemoContext& Context, QWidget* Parent) : QWidget(Parent, Qt::Window), d(new TToolsFormPrivate)
{
    Q_UNUSED(Context)
    // Made in Qt Designer (tools_form.ui); the results are worked out here.
    Ui::ToolsForm& F = d->Form;
    F.setupUi(this);
    for (TQxLabel* Heading : {F.lblDateHead, F.lblAmountHead, F.lblRoundHead, F.lblTimeHead})
        Embolden(Heading);
    EndLoading(this);
    F.edbDate->setText(QString::number(DateToInt(Now())));
    F.edtAmount->setText(QStringLiteral("975.50"));
    F.edtValue->setText(QStringLiteral("2.3"));
    F.edtDecimals->setText(QStringLiteral("2"));
    F.dplRule->SetData(QString::number(int(RtNearHaf)));
    F.tmeFrom->setText(QStringLiteral("22:15"));
    F.tmeTo->setText(QStringLiteral("06:40"));

    connect(F.edbDate, &QLineEdit::textChanged, this, &TToolsForm::UpdateDate);
    connect(F.edtAmount, &QLineEdit::textChanged, this, &TToolsForm::UpdateAmount);
    connect(F.edtValue, &QLineEdit::textChanged, this, &TToolsForm::UpdateRounding);
    connect(F.edtDecimals, &QLineEdit::textChanged, this, &TToolsForm::UpdateRounding);
    connect(F.dplRule, &QComboBox::currentIndexChanged, this, &TToolsForm::UpdateRounding);
    connect(F.tmeFrom, &QLineEdit::textChanged, this, &TToolsForm::UpdateSpan);
    connect(F.tmeTo, &QLineEdit::textChanged, this, &TToolsForm::UpdateSpan);
    connect(Application(), &THostApplication::BiDiModeChanged, this, &TToolsForm::UpdateAll);
    UpdateAll();
}

TToolsForm::~TToolsForm() = default;

void TToolsForm::UpdateAll()
{
    Ui::ToolsForm& F = d->Form;
    for (QLabel* Result : {F.lblGregorianValue, F.lblHijriValue, F.lblArabicWordsValue, F.lblEnglishWordsValue,
                           F.lblResultValue, F.lblSpanValue})
        AlignToReadingSide(Result);
    UpdateDate();
    UpdateAmount();
    UpdateRounding();
    UpdateSpan();
}

void TToolsForm::UpdateDate()
{
    Ui::ToolsForm& F = d->Form;
    const int D = F.edbDate->AsInteger();
    if (!IsDate(D)) {
        F.lblGregorianValue->setText(BiStr(QStringLiteral("تاريخ غير صحيح: اكتب سنة وشهراً ويوماً (20261124) أو اختره بالمفتاح F3"),
                                           QStringLiteral("Not a valid date: type year, month and day (20261124) or pick it with F3")));
        F.lblHijriValue->clear();
        return;
    }
    const int G = IsHijri(D) ? ConvertDate(D) : D;
    const int H = IsHijri(D) ? D : ConvertDate(D);
    F.lblGregorianValue->setText(DateToString(G) + QStringLiteral("   ") + DateToWords(G));
    F.lblHijriValue->setText(DateToString(H) + QStringLiteral("   ") + DateToWords(H));
}

void TToolsForm::UpdateAmount()
{
    Ui::ToolsForm& F = d->Form;
    long double Value = 0;
    if (!TryStrToFloat(F.edtAmount->text(), Value) || Value < 0 || Value >= 1e12L) {
        F.lblArabicWordsValue->setText(BiStr(QStringLiteral("أدخل مبلغاً من 0 إلى 999999999999"),
                                             QStringLiteral("Enter an amount from 0 to 999999999999")));
        F.lblEnglishWordsValue->clear();
        return;
    }
    const Currency Amount(Value);
    F.lblArabicWordsValue->setText(NumberToArabicWords(Amount, {QStringLiteral("ريال"), QStringLiteral("ريالان"),
                                                          QStringLiteral("ريالات"), QStringLiteral("ريالا")}));
    F.lblEnglishWordsValue->setText(Trim(NumberToWordsE(Amount)) + QStringLiteral(" Riyals"));
}

void TToolsForm::UpdateRounding()
{
    Ui::ToolsForm& F = d->Form;
    long double Value = 0;
    const int Decimals = F.edtDecimals->AsInteger();
    if (!TryStrToFloat(F.edtValue->text(), Value) || Decimals < 0 || Decimals > 8) {
        F.lblResultValue->setText(BiStr(QStringLiteral("أدخل رقماً وعدد خانات من 0 إلى 8"),
                                        QStringLiteral("Enter a number and 0 to 8 decimals")));
        return;
    }
    const auto Rule = TxRoundTypes(qBound(0, F.dplRule->Data().toInt(), int(RtNearOne)));
    F.lblResultValue->setText(FloatToStr(RoundNumber(Value, Decimals, Rule)));
}

// A shift from 22:15 to 06:40 runs over midnight: 8:25, not a negative time.
void TToolsForm::UpdateSpan()
{
    Ui::ToolsForm& F = d->Form;
    const int From = F.tmeFrom->AsIntegerTime();
    const int To = F.tmeTo->AsIntegerTime();
    if (StringToTime(F.tmeFrom->text()) < 0 || StringToTime(F.tmeTo->text()) < 0) {
        F.lblSpanValue->setText(BiStr(QStringLiteral("اكتب الوقتين بالساعات والدقائق (22:15)"),
                                      QStringLiteral("Type both times as hours and minutes (22:15)")));
        return;
    }
    const int Span = TimeBetween(From, To);
    F.lblSpanValue->setText(QStringLiteral("%1:%2  (%3 %4)")
                                .arg(Span / 100)
                                .arg(Span % 100, 2, 10, QLatin1Char('0'))
                                .arg(MinutesBetween(From, To))
                                .arg(BiStr(QStringLiteral("دقيقة"), QStringLiteral("minutes"))));
}

} // namespace Demo
