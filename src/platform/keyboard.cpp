// Kesh for Qt — keyboard layouts: the installed backend and the recording backend.
#include "keyboard.h"
#include "keyboard_p.h"
#include "application.h"

#include <QGuiApplication>
#include <QMutex>

namespace Kesh {

namespace {

struct TKeyboardSeam
{
    QMutex Lock;
    std::unique_ptr<TKeyboardBackend> Backend;
    QString Default;
};

TKeyboardSeam& Seam()
{
    static TKeyboardSeam seam;
    return seam;
}

// The platform's own backend: Windows switches layouts itself; on X11 the XKB groups of the
// desktop are switched; anywhere else (offscreen, Wayland) nothing can be switched and the
// requests are only recorded.
std::unique_ptr<TKeyboardBackend> PlatformBackend()
{
#ifdef Q_OS_WIN
    return CreateWindowsKeyboardBackend();
#else
    if (qGuiApp && QGuiApplication::platformName() == QLatin1String("xcb")) {
        if (auto backend = CreateX11KeyboardBackend())
            return backend;
    }
    return std::make_unique<TRecordingKeyboard>();
#endif
}

// The seam's backend, created on first use; call with the lock held.
TKeyboardBackend& Backend(TKeyboardSeam& seam)
{
    if (!seam.Backend) {
        seam.Backend = PlatformBackend();
        seam.Default = seam.Backend->Active();
    }
    return *seam.Backend;
}

} // namespace

TKeyboardBackend::~TKeyboardBackend() = default;

bool ActivateKeyboardLayout(const QString& LayoutName)
{
    TKeyboardSeam& seam = Seam();
    QMutexLocker locker(&seam.Lock);
    return Backend(seam).Activate(LayoutName);
}

QString ActiveKeyboardLayout()
{
    TKeyboardSeam& seam = Seam();
    QMutexLocker locker(&seam.Lock);
    return Backend(seam).Active();
}

QString DefaultKeyboardLayout()
{
    TKeyboardSeam& seam = Seam();
    QMutexLocker locker(&seam.Lock);
    Backend(seam);
    return seam.Default;
}

void SetKeyboardBackend(std::unique_ptr<TKeyboardBackend> Backend)
{
    TKeyboardSeam& seam = Seam();
    QMutexLocker locker(&seam.Lock);
    seam.Backend = std::move(Backend);
    seam.Default = seam.Backend ? seam.Backend->Active() : QString();
}

bool ActivateDirectionKeyboard(Qt::LayoutDirection Direction)
{
    QString name;
    if (Direction == Qt::RightToLeft) {
        name = Application()->BiDiKeyboard();
        if (name.isEmpty())
            name = QStringLiteral("00000401");
    } else {
        name = Application()->NonBiDiKeyboard();
        if (name.isEmpty())
            name = QStringLiteral("00000409");
    }
    return ActivateKeyboardLayout(name);
}

TRecordingKeyboard::TRecordingKeyboard(const QString& Initial) : m_active(Initial) {}

bool TRecordingKeyboard::Activate(const QString& LayoutName)
{
    if (LayoutName.isEmpty())
        return false;
    m_active = LayoutName;
    if (m_history.size() >= MaxHistory)
        m_history.removeFirst();
    m_history.append(LayoutName);
    return true;
}

} // namespace Kesh
