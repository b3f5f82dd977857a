// Kesh for Qt — window services the classic platform gave every control: focus moves in
// tab order, a queued close, the counted system beep, mirroring of absolutely placed
// children, pop-up menus under a control, and the reading direction of a widget.
#pragma once
#include "application.h"
#include "graphics.h"
#include "kesh_global.h"

class QMenu;
class QObject;
class QWidget;

namespace Kesh {

/// The system beep (the classic MessageBeep; 16 is the error beep). Counted, so tests can
/// check that a refused key beeped.
KESH_EXPORT void Beep(unsigned Type = 0);
/// Beeps since the process started.
KESH_EXPORT int BeepCount();

/// The next (Forward) or previous tab-stop control after Current among the descendants of
/// Container, in the focus chain's order, wrapping round; nullptr when there is none
/// (Current itself is returned when it is the only one). Only enabled widgets visible
/// within Container that accept Tab focus and have no focus proxy qualify.
KESH_EXPORT QWidget* NextControlIn(QWidget* Container, QWidget* Current, bool Forward);

/// Moves the focus from From to the next (Forward) or previous control of its window, as a
/// dialog does on Tab / Shift+Tab. Does nothing when the window has no other control.
KESH_EXPORT void SelectNextControl(QWidget* From, bool Forward);

/// Asks Window to close once control returns to the event loop (a posted close request).
KESH_EXPORT void PostClose(QWidget* Window);

/// True when the layout of Widget's parent places Widget, directly or through any nesting
/// of sub-layouts.
KESH_EXPORT bool IsManagedByLayout(const QWidget* Widget);

/// Mirrors the horizontal position of every child of Parent that no layout manages, at
/// every nesting level: x becomes parent width − x − width. Layouts mirror themselves and
/// the inner parts of Qt's composite widgets are left alone.
KESH_EXPORT void MirrorChildren(QWidget* Parent);

/// Opens Menu below Control: under its lower left corner, or under its lower right corner
/// with the menu's right edge there when Control is right to left.
KESH_EXPORT void PopupBelow(QMenu* Menu, QWidget* Control);

/// The reading direction of a widget: bdRightToLeft exactly when it lays out right to left.
KESH_EXPORT TBiDiMode BiDiModeOf(const QWidget* Widget);
/// Sets a widget's own direction (only bdRightToLeft is right to left).
KESH_EXPORT void SetBiDiModeOf(QWidget* Widget, TBiDiMode Mode);

/// A widget's font as a TFont: its QFont, and its text colour from its palette.
KESH_EXPORT TFont FontOf(const QWidget* Widget);
/// Gives a widget the font and, in its palette, the font's colour for every kind of text.
KESH_EXPORT void ApplyFont(QWidget* Widget, const TFont& Font);

/// The end-of-building hook of a component. Components made in code are live at once
/// (IsLoading() is false); a builder that sets properties first may call BeginLoading().
/// Loaded() runs once: at EndLoading(), called by Kesh::EndLoading(form) for every
/// component of a form, or by the component itself at its first polish.
class KESH_EXPORT TLoadable
{
public:
    virtual ~TLoadable();
    bool IsLoading() const { return m_loading; }
    bool IsLoaded() const { return m_loaded; }
    void BeginLoading() { if (!m_loaded) m_loading = true; }
    /// Runs Loaded() the first time only.
    void EndLoading();

protected:
    virtual void Loaded() {}

private:
    bool m_loading = false;
    bool m_loaded = false;
};

/// Ends the building of a form: first the end-of-building hooks run once on Root (they
/// bind objects named in a .ui file, see AddEndLoadingHook), then the loading of every
/// TLoadable object below Root (Root included) ends, parents before children, each in
/// creation order.
KESH_EXPORT void EndLoading(QObject* Root);

/// A step that Kesh::EndLoading(Root) runs on the root before any Loaded(); it may raise.
using TEndLoadingHook = void (*)(QObject* Root);
/// Adds a hook (once; a second registration of the same hook is ignored).
KESH_EXPORT void AddEndLoadingHook(TEndLoadingHook Hook);

/// True while Object, or any of its parents, is being edited in a form designer (the
/// Qt Designer plugin marks every component it creates): a component then opens no
/// database, shows no dialog and installs no run-time hooks on its form.
KESH_EXPORT bool IsDesigning(const QObject* Object);
/// Marks Object, and so everything below it, as being designed (or not).
KESH_EXPORT void SetDesigning(QObject* Object, bool Value = true);

} // namespace Kesh
