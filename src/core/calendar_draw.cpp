// Kesh for Qt — the calendar form's month: which day buttons show which days.
#include "form_calendar.h"
#include "form_calendar_p.h"
#include "integer_dates.h"

#include "controls/buttons.h"

namespace Kesh {

namespace {

// The weekday row of a Gregorian day: DayOfWeek counts from Sunday, the rows from Saturday.
int WeekDayRow(TDateTime Day)
{
    const int Row = DayOfWeek(Day) + 1;
    return Row > 7 ? 1 : Row;
}

} // namespace

int TKeshFormCalendar::GetFirstHijriDay() const
{
    int Year = 0, Month = 0, Day = 0;
    DateDecode(d->Date, Year, Month, Day);
    return WeekDayRow(IntToDate(ConvertDate(DateEncode(Year, Month, 1))));
}

void TKeshFormCalendar::ClearCell(int Week, int Row)
{
    TQxSpeedButton* Button = DayButton(Week, Row);
    Button->setEnabled(false);
    Button->setAutoRaise(true);
    Button->setText(QString());
}

void TKeshFormCalendar::DrawCalendar()
{
    int First = 1, Days = 0;
    if (!d->Hijri) {
        const int Year = GetYear(d->Date), Month = GetMonth(d->Date);
        First = WeekDayRow(IntToDate(DateEncode(Year, Month, 1)));
        Days = Month >= 1 && Month <= 12 ? DaysInAMonth(Year, Month) : 0;
    } else {
        First = GetFirstHijriDay();
        // One short of the Hijri month's length: its last day has no button, by design.
        Days = GetDaysInMonth(d->Date);
    }

    for (int Row = 1; Row < First; ++Row)
        ClearCell(1, Row);

    int Week = 1, Row = First;
    for (int Day = 1; Day <= Days && Week <= Weeks; ++Day) {
        TQxSpeedButton* Button = DayButton(Week, Row);
        Button->setEnabled(true);
        Button->setAutoRaise(false);
        Button->setText(QString::number(Day));
        if (++Row > WeekDays) {
            Row = 1;
            ++Week;
        }
    }

    // A last day on W67 leaves nothing to clear, and the frame where it was: kept on purpose.
    if (Week <= Weeks) {
        for (; Week <= Weeks; ++Week, Row = 1) {
            for (; Row <= WeekDays; ++Row)
                ClearCell(Week, Row);
        }
        FocusCurDay();
    }
}

void TKeshFormCalendar::FocusCurDay()
{
    const QString Day = QString::number(GetDay(d->Date));
    for (int Week = 1; Week <= Weeks; ++Week) {
        for (int Row = 1; Row <= WeekDays; ++Row) {
            const TQxSpeedButton* Button = DayButton(Week, Row);
            if (Button->text() == Day) {
                Box->move(Button->x() - 1, Button->y() - 1);
                return;
            }
        }
    }
}

} // namespace Kesh
