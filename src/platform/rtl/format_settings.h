// Kesh for Qt — the process-wide number and time format settings.
#pragma once
#include "../kesh_global.h"
#include <QChar>
#include <QString>

namespace Kesh {

struct KESH_EXPORT TFormatSettings
{
    QChar DecimalSeparator;
    QChar ThousandSeparator;
    QChar DateSeparator;  ///< what "/" in a FormatDateTime pattern gives
    QChar TimeSeparator;  ///< what ":" in a FormatDateTime pattern gives
    QString TimeAMString;
    QString TimePMString;
    QString ShortTimeFormat;
    QString LongTimeFormat;

    /// Separators and time strings of QLocale::system().
    static TFormatSettings FromSystemLocale();
};

/// Read by every conversion of the run-time routines; tests and the library may change it.
extern KESH_EXPORT TFormatSettings FormatSettings;

} // namespace Kesh
