#include "log_file.h"
#include "globals.h"

#include <QFile>

namespace Kesh {

namespace {
int LogDepth = 0;
}

void LogAdd(const QString& S)
{
    // Opened and closed for every line, so nothing is lost when the host crashes.
    QFile File(LogFilename);
    if (LogFilename.isEmpty() || !File.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text))
        return;
    File.write((QString(LogDepth, QLatin1Char(' ')) + S + QLatin1Char('\n')).toUtf8());
}

void LogStart(const QString& S)
{
    if (!S.isEmpty())
        LogAdd(S);
    LogDepth += 4;
}

void LogEnd()
{
    LogDepth = qMax(0, LogDepth - 4);
}

} // namespace Kesh
