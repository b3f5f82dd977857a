// Demo page: date conversion, amounts in words and rounding.
#pragma once
#include "demo_page.h"

class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QSpinBox;

class CoreToolsPage : public DemoPage
{
    Q_OBJECT
public:
    explicit CoreToolsPage(QWidget* Parent = nullptr);
    QString PageName() const override { return QStringLiteral("core-tools"); }
    QString Title() const override;
    void Retranslate() override;

private:
    void UpdateDate();
    void UpdateAmount();
    void UpdateRounding();

    QGroupBox* m_dateBox;
    QLabel* m_dateLabel;
    QLineEdit* m_dateEdit;
    QLabel* m_gregorianLabel;
    QLabel* m_gregorian;
    QLabel* m_hijriLabel;
    QLabel* m_hijri;

    QGroupBox* m_amountBox;
    QLabel* m_amountLabel;
    QLineEdit* m_amountEdit;
    QLabel* m_arabicLabel;
    QLabel* m_arabicWords;
    QLabel* m_englishLabel;
    QLabel* m_englishWords;

    QGroupBox* m_roundBox;
    QLabel* m_valueLabel;
    QLineEdit* m_valueEdit;
    QLabel* m_decimalsLabel;
    QSpinBox* m_decimals;
    QLabel* m_ruleLabel;
    QComboBox* m_rule;
    QLabel* m_resultLabel;
    QLabel* m_result;
};
