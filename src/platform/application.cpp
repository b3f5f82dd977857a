#include "application.h"
#include "exceptions.h"

#include <QGuiApplication>
#include <cstdio>

namespace Kesh {

THostApplication::THostApplication()
{
    ShowException = [](const QString& Msg) { std::fprintf(stderr, "%s\n", qPrintable(Msg)); };
}

void THostApplication::SetBiDiMode(TBiDiMode Value)
{
    if (Value == m_biDiMode)
        return;
    m_biDiMode = Value;
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        QGuiApplication::setLayoutDirection(Value == bdRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    Q_EMIT BiDiModeChanged(Value);
}

QString THostApplication::ExeName() const
{
    if (!m_exeName.isEmpty() || !QCoreApplication::instance())
        return m_exeName;
    return QCoreApplication::applicationFilePath();
}

THostApplication* Application()
{
    // Never destroyed: it must outlive every form and every static of the host.
    static THostApplication* const host = new THostApplication;
    return host;
}

TQxApplication::TQxApplication(int& argc, char** argv) : QApplication(argc, argv) {}

bool TQxApplication::notify(QObject* Receiver, QEvent* Event)
{
    // No exception may cross Qt's event loop: the abort ends the handler quietly,
    // any other library error is shown, as the original application object did.
    try {
        return QApplication::notify(Receiver, Event);
    } catch (const EAbort&) {
    } catch (const Exception& E) {
        if (Application()->ShowException)
            Application()->ShowException(E.Message);
    }
    return false;
}

} // namespace Kesh
