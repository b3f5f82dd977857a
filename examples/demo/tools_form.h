// Kesh Sales: the tools window. Converts dates between the Gregorian and Hijri calendars,
// writes amounts in Arabic and English words and rounds by the library's rules.
#pragma once
#include "demo_context.h"

#include <QWidget>
#include <memory>

namespace Demo {

class TToolsForm : public QWidget
{
    Q_OBJECT
public:
    explicit TToolsForm(TDemoContext& Context, QWidget* Parent = nullptr);
    ~TToolsForm() override;

private:
    void UpdateDate();
    void UpdateAmount();
    void UpdateRounding();
    void UpdateAll();

    std::unique_ptr<class TToolsFormPrivate> const d;
};

} // namespace Demo
