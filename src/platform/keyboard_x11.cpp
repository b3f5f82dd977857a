// Kesh for Qt — keyboard layouts on X11: the XKB group of the wanted layout is locked.
//
// libX11 is loaded at run time, so the library starts on desktops without it (Wayland,
// offscreen) and X11 programs need no extra link dependency.
#include "keyboard_p.h"

#include <QLibrary>
#include <QRegularExpression>

#if __has_include(<X11/XKBlib.h>)
#include <X11/XKBlib.h>
#define KESH_HAVE_XKB 1
#endif

namespace Kesh {

QStringList XkbLayoutsOf(const QString& LayoutName)
{
    if (LayoutName == QLatin1String("00000401"))
        return {QStringLiteral("ara"), QStringLiteral("ar")};
    if (LayoutName == QLatin1String("00000409"))
        return {QStringLiteral("us"), QStringLiteral("gb")};
    if (LayoutName == QLatin1String("00000809"))
        return {QStringLiteral("gb")};
    // Any other name is taken as an XKB layout's own (no group is named like an identifier).
    if (LayoutName.isEmpty())
        return {};
    return {LayoutName};
}

QString LayoutNameOfXkb(const QString& XkbLayout)
{
    if (XkbLayout == QLatin1String("ara") || XkbLayout == QLatin1String("ar"))
        return QStringLiteral("00000401");
    if (XkbLayout == QLatin1String("us"))
        return QStringLiteral("00000409");
    if (XkbLayout == QLatin1String("gb"))
        return QStringLiteral("00000809");
    return XkbLayout;
}

QStringList XkbGroupsOfSymbols(const QString& Symbols)
{
    // Parts that are never a layout even without a group suffix.
    static const QStringList NotLayouts = {
        QStringLiteral("pc"), QStringLiteral("inet"), QStringLiteral("group"),
        QStringLiteral("ctrl"), QStringLiteral("compose"), QStringLiteral("level3"),
        QStringLiteral("level5"), QStringLiteral("altwin"), QStringLiteral("capslock"),
        QStringLiteral("terminate"), QStringLiteral("keypad"), QStringLiteral("kpdl"),
        QStringLiteral("nbsp"), QStringLiteral("eurosign"), QStringLiteral("rupeesign"),
        QStringLiteral("shift"), QStringLiteral("srvr_ctrl"), QStringLiteral("lv3"),
        QStringLiteral("lv5"), QStringLiteral("caps"), QStringLiteral("japan"),
        QStringLiteral("korean"), QStringLiteral("mac"), QStringLiteral("macintosh_vndr"),
        QStringLiteral("empty"), QStringLiteral("parens"), QStringLiteral("grab")};
    static const QRegularExpression Part(QStringLiteral("^([A-Za-z0-9_-]+)(\\([^)]*\\))?(?::(\\d+))?$"));
    QStringList groups;
    for (const QString& token : Symbols.split(QRegularExpression(QStringLiteral("[+|]")), Qt::SkipEmptyParts)) {
        const QRegularExpressionMatch m = Part.match(token);
        if (!m.hasMatch())
            continue;
        const QString name = m.captured(1);
        int group = 1;
        if (m.hasCaptured(3)) {
            group = m.captured(3).toInt();
        } else if (NotLayouts.contains(name)) {
            continue;
        }
        if (group < 1 || group > 4)
            continue;
        while (groups.size() < group)
            groups.append(QString());
        if (groups[group - 1].isEmpty())
            groups[group - 1] = name;
    }
    return groups;
}

#ifdef KESH_HAVE_XKB

namespace {

// The few entry points of libX11 the backend calls.
struct TX11
{
    decltype(&::XOpenDisplay) OpenDisplay = nullptr;
    decltype(&::XCloseDisplay) CloseDisplay = nullptr;
    decltype(&::XGetAtomName) GetAtomName = nullptr;
    decltype(&::XFree) Free = nullptr;
    decltype(&::XSync) Sync = nullptr;
    decltype(&::XkbAllocKeyboard) AllocKeyboard = nullptr;
    decltype(&::XkbFreeKeyboard) FreeKeyboard = nullptr;
    decltype(&::XkbGetNames) GetNames = nullptr;
    decltype(&::XkbGetState) GetState = nullptr;
    decltype(&::XkbLockGroup) LockGroup = nullptr;

    bool Load(QLibrary& Lib)
    {
        Lib.setFileNameAndVersion(QStringLiteral("X11"), 6);
        if (!Lib.load())
            return false;
        return Resolve(Lib, OpenDisplay, "XOpenDisplay") && Resolve(Lib, CloseDisplay, "XCloseDisplay")
            && Resolve(Lib, GetAtomName, "XGetAtomName") && Resolve(Lib, Free, "XFree")
            && Resolve(Lib, Sync, "XSync") && Resolve(Lib, AllocKeyboard, "XkbAllocKeyboard")
            && Resolve(Lib, FreeKeyboard, "XkbFreeKeyboard") && Resolve(Lib, GetNames, "XkbGetNames")
            && Resolve(Lib, GetState, "XkbGetState") && Resolve(Lib, LockGroup, "XkbLockGroup");
    }

    template <class F>
    static bool Resolve(QLibrary& Lib, F& Target, const char* Name)
    {
        Target = reinterpret_cast<F>(Lib.resolve(Name));
        return Target != nullptr;
    }
};

class TX11Keyboard : public TKeyboardBackend
{
public:
    TX11Keyboard() = default;
    ~TX11Keyboard() override
    {
        if (m_display)
            m_x.CloseDisplay(m_display);
    }

    bool Open(const QString& DisplayName)
    {
        if (!m_x.Load(m_lib))
            return false;
        const QByteArray name = DisplayName.toLocal8Bit();
        m_display = m_x.OpenDisplay(name.isEmpty() ? nullptr : name.constData());
        return m_display != nullptr;
    }

    bool Activate(const QString& LayoutName) override
    {
        const QStringList groups = Groups();
        for (const QString& wanted : XkbLayoutsOf(LayoutName)) {
            const int group = groups.indexOf(wanted);
            if (group < 0)
                continue;
            if (!m_x.LockGroup(m_display, XkbUseCoreKbd, unsigned(group)))
                return false;
            m_x.Sync(m_display, False);
            return true;
        }
        return false;
    }

    QString Active() const override
    {
        XkbStateRec state{};
        if (m_x.GetState(m_display, XkbUseCoreKbd, &state) != Success)
            return QString();
        const QStringList groups = Groups();
        const int group = state.group;
        return group < groups.size() ? LayoutNameOfXkb(groups[group]) : QString();
    }

private:
    // The layout of each group, read anew each time: the desktop may change its layouts.
    QStringList Groups() const
    {
        QStringList groups;
        XkbDescPtr desc = m_x.AllocKeyboard();
        if (!desc)
            return groups;
        if (m_x.GetNames(m_display, XkbSymbolsNameMask, desc) == Success && desc->names
            && desc->names->symbols != None) {
            if (char* symbols = m_x.GetAtomName(m_display, desc->names->symbols)) {
                groups = XkbGroupsOfSymbols(QString::fromLatin1(symbols));
                m_x.Free(symbols);
            }
        }
        m_x.FreeKeyboard(desc, 0, True);
        return groups;
    }

    QLibrary m_lib;
    TX11 m_x;
    Display* m_display = nullptr;
};

} // namespace

std::unique_ptr<TKeyboardBackend> CreateX11KeyboardBackend(const QString& DisplayName)
{
    auto backend = std::make_unique<TX11Keyboard>();
    if (!backend->Open(DisplayName))
        return nullptr;
    return backend;
}

#else

std::unique_ptr<TKeyboardBackend> CreateX11KeyboardBackend(const QString&)
{
    return nullptr;
}

#endif

} // namespace Kesh
