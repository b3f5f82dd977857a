// Kesh for Qt — the state of the calendar form, shared by its source files.
#pragma once
#include "form_calendar.h"
#include <QIcon>

namespace Kesh {

struct TKeshFormCalendarPrivate
{
    int Date = 0;
    bool Hijri = false;
    TQxLabel* Days[TKeshFormCalendar::WeekDays] = {};
    // Cells[week - 1][row - 1]
    TQxSpeedButton* Cells[TKeshFormCalendar::Weeks][TKeshFormCalendar::WeekDays] = {};
};

/// The tool-bar glyphs, drawn for the reading direction (the month arrows point the way
/// the months run): "ok", "cancel", "prior", "next".
QIcon CalendarGlyph(const QString& Name, Qt::LayoutDirection Direction);

} // namespace Kesh
