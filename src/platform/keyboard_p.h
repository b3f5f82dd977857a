// Kesh for Qt — keyboard layouts: the platform backends and the naming they share.
#pragma once
#include "keyboard.h"

namespace Kesh {

/// The XKB layouts that stand for a layout identifier, best first ("00000401" → ara, ar);
/// any other name stands for itself, as an XKB layout name.
KESH_EXPORT QStringList XkbLayoutsOf(const QString& LayoutName);
/// The layout identifier of an XKB layout ("ara" → "00000401"); the XKB name itself when
/// it has none.
KESH_EXPORT QString LayoutNameOfXkb(const QString& XkbLayout);
/// The XKB layout of each group (index 0 = group 1) named by an XKB symbols name such as
/// "pc+us+ara:2+inet(evdev)"; variants are dropped, groups nobody names stay empty.
KESH_EXPORT QStringList XkbGroupsOfSymbols(const QString& Symbols);

#ifdef Q_OS_WIN
std::unique_ptr<TKeyboardBackend> CreateWindowsKeyboardBackend();
#endif

} // namespace Kesh
