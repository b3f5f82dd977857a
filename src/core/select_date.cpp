// Kesh for Qt — SelectDate: the month view shown modally for one pick.
#include "select_date.h"
#include "form_calendar.h"
#include "integer_dates.h"

namespace Kesh {

bool SelectDate(int& Date, bool Hijri)
{
    // The application owns the form: a top-level window of its own.
    TKeshFormCalendar Form;
    Form.SetHijri(Hijri);
    if (Date == 0 || !IsDate(Date)) {
        int Today = DateToInt(Kesh::Date());
        if (Hijri && !IsHijri(Today))
            Today = ConvertDate(Today);
        Form.SetDate(Today);
    } else {
        Form.SetDate(Date);
    }
    if (Form.exec() != 1)
        return false;
    int Picked = Form.GetDate();
    if (Hijri != IsHijri(Picked))
        Picked = ConvertDate(Picked);
    Date = Picked;
    return true;
}

} // namespace Kesh
