#include "messages.h"
#include "globals.h"
#include "log_file.h"
#include "platform/application.h"
#include "platform/exceptions.h"

#include <cstdio>

namespace Kesh {

void ShowError(const QString& Msg, QObject* Sender)
{
    Q_UNUSED(Sender)
    // The silent abort's own text must never reach the user.
    if (Msg.compare(QLatin1String("Operation aborted"), Qt::CaseInsensitive) == 0)
        return;
    if (Logging)
        LogAdd(QStringLiteral("ShowError: ") + Msg);
    std::fprintf(stderr, "%s\n", Msg.toLocal8Bit().constData());
}

void RaiseError(const QString& Msg, QObject* Sender)
{
    ShowError(Msg, Sender);
    Abort();
}

} // namespace Kesh
