// Kesh for Qt — keyboard layouts: the one seam through which controls switch between the
// Arabic and the English layout.
#pragma once
#include "kesh_global.h"
#include <QString>
#include <QStringList>
#include <Qt>
#include <memory>

namespace Kesh {

/// Layout names are Windows keyboard layout identifiers: "00000401" Arabic, "00000409"
/// English (US). Backends that know other names (an XKB layout such as "fr") accept them too.
class KESH_EXPORT TKeyboardBackend
{
public:
    virtual ~TKeyboardBackend();
    /// Makes LayoutName the active layout; false when the desktop does not have it.
    virtual bool Activate(const QString& LayoutName) = 0;
    /// The name of the active layout; empty when it cannot be told.
    virtual QString Active() const = 0;
};

/// Activates a layout through the installed backend; false when it cannot.
KESH_EXPORT bool ActivateKeyboardLayout(const QString& LayoutName);
/// The name of the active layout.
KESH_EXPORT QString ActiveKeyboardLayout();
/// The layout that was active when the backend was installed (the screen's default).
KESH_EXPORT QString DefaultKeyboardLayout();
/// Replaces the backend; the new one's active layout becomes the default layout. A null
/// backend brings back the platform's own on the next use.
KESH_EXPORT void SetKeyboardBackend(std::unique_ptr<TKeyboardBackend> Backend);

/// Activates the layout of a control reading in Direction: Application()->BiDiKeyboard for
/// right to left, NonBiDiKeyboard otherwise ("00000401"/"00000409" when those are empty).
KESH_EXPORT bool ActivateDirectionKeyboard(Qt::LayoutDirection Direction);

/// The X11 backend on Display (the DISPLAY variable when empty): it locks the XKB group whose
/// symbols are the Arabic ("ar"/"ara") or English ("us", else "gb") layout. Null when libX11
/// cannot be loaded or the display cannot be opened.
KESH_EXPORT std::unique_ptr<TKeyboardBackend> CreateX11KeyboardBackend(const QString& Display = QString());

/// A backend that only remembers: every activation is recorded and succeeds (an empty name
/// fails). The platform's backend where the desktop gives no way to switch, and the tests'.
/// The history keeps the last MaxHistory names, so a long session does not grow it forever.
class KESH_EXPORT TRecordingKeyboard : public TKeyboardBackend
{
public:
    static constexpr int MaxHistory = 1000;

    explicit TRecordingKeyboard(const QString& Initial = QStringLiteral("00000409"));
    bool Activate(const QString& LayoutName) override;
    QString Active() const override { return m_active; }
    /// The layouts activated so far (the last MaxHistory), oldest first.
    QStringList History() const { return m_history; }
    void ClearHistory() { m_history.clear(); }

private:
    QString m_active;
    QStringList m_history;
};

} // namespace Kesh
