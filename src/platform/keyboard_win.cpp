// Kesh for Qt — keyboard layouts on Windows: the layouts are loaded and activated by name.
#include "keyboard_p.h"

#ifdef Q_OS_WIN
#include <windows.h>

namespace Kesh {

namespace {

class TWindowsKeyboard : public TKeyboardBackend
{
public:
    bool Activate(const QString& LayoutName) override
    {
        if (LayoutName.isEmpty())
            return false;
        const std::wstring name = LayoutName.toStdWString();
        HKL layout = LoadKeyboardLayoutW(name.c_str(), KLF_ACTIVATE);
        return layout && ActivateKeyboardLayout(layout, 0) != nullptr;
    }

    QString Active() const override
    {
        wchar_t name[KL_NAMELENGTH] = {};
        if (!GetKeyboardLayoutNameW(name))
            return QString();
        return QString::fromWCharArray(name);
    }
};

} // namespace

std::unique_ptr<TKeyboardBackend> CreateWindowsKeyboardBackend()
{
    return std::make_unique<TWindowsKeyboard>();
}

} // namespace Kesh
#endif
