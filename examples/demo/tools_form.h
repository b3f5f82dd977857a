// Kesh Sales: the tools window. Converts dates between the Gregorian and Hijri calendars,
// writes amounts in Arabic and English words, rounds by the library's rules and measures
// the time between two times of day.
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
    void UpdateSpan();
    void UpdateAll();

    std::unique_ptr<class TToolsFormPrivate> const d;
};

} // namespace Demo
