// Fuzzes the text readers of the entry controls with any UTF-8 text: the time edit's
// integer time may only raise EConvertError, the data-entry edit's typed getters never
// raise, and what they read writes back to text that reads the same.
#include <Kesh.h>
#include "controls/edit.h"
#include "controls/time_edit.h"
#include "core/integer_times.h"

#include <QApplication>
#include <QLocale>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace Kesh;

// Widgets need an application object; one for the whole run, never shown.
QApplication& App()
{
    static QApplication* Instance = [] {
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
        static int Argc = 1;
        static char Name[] = "fuzz_entry_parsers";
        static char* Argv[] = {Name, nullptr};
        return new QApplication(Argc, Argv);
    }();
    return *Instance;
}

// The first byte picks the locale whose date form and decimal separator the text is read in.
void ChooseLocale(uint8_t Choice)
{
    static const QLocale Locales[] = {QLocale(QLocale::English, QLocale::UnitedStates),
                                      QLocale(QLocale::Arabic, QLocale::Egypt),
                                      QLocale(QLocale::German, QLocale::Germany),
                                      QLocale(QLocale::English, QLocale::UnitedKingdom)};
    const QLocale& L = Locales[Choice % 4];
    QLocale::setDefault(L);
    FormatSettings.DecimalSeparator = L.decimalPoint().at(0);
    FormatSettings.TimeAMString = L.amText();
    FormatSettings.TimePMString = L.pmText();
}

void CheckTimeEdit(TQxTimeEdit& Edit, const QString& S)
{
    Edit.setText(S);
    try {
        const int Time = Edit.AsIntegerTime();
        // Two characters of hours and of minutes: "-9".."99" each, or a short hexadecimal.
        if (Time < -999 || Time > 9999)
            std::abort();
        if (Edit.AsInteger() != Time || Edit.AsFloat() != Time || Edit.AsDate() != IntToTime(Time))
            std::abort();
    } catch (const EConvertError&) {
    }
}

void CheckNumbers(TQxEdit& Edit, const QString& S)
{
    Edit.setText(S);
    const int I = Edit.AsInteger();
    const double F = Edit.AsFloat();
    Edit.SetAsInteger(I);
    if (Edit.AsInteger() != I)
        std::abort();
    if (std::isfinite(F)) {
        // The written text keeps 15 significant digits.
        Edit.SetAsFloat(F);
        const double Back = Edit.AsFloat();
        if (std::fabs(Back - F) > std::fabs(F) * 1e-14)
            std::abort();
    }
}

void CheckDates(TQxEdit& Edit, const QString& S)
{
    Edit.setText(S);
    const TDateTime Day = Edit.AsDate();
    const TDateTime Moment = Edit.AsDateTime();
    if (!std::isfinite(Day) || !std::isfinite(Moment) || Day != std::trunc(Day))
        std::abort();
    // A date alone is also a date with no time.
    if (Day != 0 && Moment != Day)
        std::abort();
    if (Day != 0) {
        Edit.SetAsDate(Day);
        if (Edit.AsDate() != Day)
            std::abort();
    }
    if (Moment != 0) {
        // The written time stops at whole seconds.
        Edit.SetAsDateTime(Moment);
        const TDateTime Back = Edit.AsDateTime();
        if (std::trunc(Back) != std::trunc(Moment) || std::fabs(Back - Moment) >= 1.0 / 86400)
            std::abort();
    }
}

} // namespace

// Fontconfig keeps its start-up caches to the end of the process on purpose.
extern "C" const char* __lsan_default_suppressions()
{
    return "leak:libfontconfig.so\n";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    App();
    if (Size == 0)
        return 0;
    ChooseLocale(Data[0]);
    const QString S = QString::fromUtf8(reinterpret_cast<const char*>(Data + 1), qsizetype(Size - 1));

    // Made once: each run sets the text afresh.
    static auto* Time = new TQxTimeEdit;
    static auto* Edit = new TQxEdit;
    CheckTimeEdit(*Time, S);
    CheckNumbers(*Edit, S);
    CheckDates(*Edit, S);
    return 0;
}
