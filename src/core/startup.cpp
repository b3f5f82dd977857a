#include "startup.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QProcess>
#include <QSaveFile>
#include <QSettings>
#include <QStandardPaths>
#include <QWidget>

namespace Kesh {

namespace {

// A name becomes one file name or one registry value name: no separators.
QString SafeName(QString Name)
{
    return Name.replace(QLatin1Char('/'), QLatin1Char('_')).replace(QLatin1Char('\\'), QLatin1Char('_'))
        .replace(QChar(0), QLatin1Char('_'));
}

#ifndef Q_OS_WIN
// One argument of a desktop entry's Exec line: in double quotes, with ", `, $ and \ escaped
// by a backslash, and % doubled so that it is not read as a field code.
QString QuoteExecArg(const QString& Arg)
{
    QString R = QStringLiteral("\"");
    for (const QChar C : Arg) {
        if (C == QLatin1Char('"') || C == QLatin1Char('`') || C == QLatin1Char('$') || C == QLatin1Char('\\'))
            R += QLatin1Char('\\');
        else if (C == QLatin1Char('%'))
            R += QLatin1Char('%');
        R += C;
    }
    return R + QLatin1Char('"');
}

// The key file's own string escapes, which readers undo before the Exec quoting above.
QString EscapeValue(const QString& V)
{
    QString R;
    for (const QChar C : V) {
        switch (C.unicode()) {
        case '\\': R += QLatin1String("\\\\"); break;
        case '\n': R += QLatin1String("\\n"); break;
        case '\r': R += QLatin1String("\\r"); break;
        case '\t': R += QLatin1String("\\t"); break;
        default: R += C;
        }
    }
    if (R.startsWith(QLatin1Char(' ')))
        R.replace(0, 1, QLatin1String("\\s"));
    return R;
}

QString ExecLine(const QString& Entry, const QString& Path, bool Once)
{
    if (!Once)
        return QuoteExecArg(Path);
    // The shell gets the two paths as its own arguments, so no path is ever parsed by it:
    // the entry goes first, then the program takes the shell's place.
    return QStringLiteral("/bin/sh -c ") + QuoteExecArg(QStringLiteral("rm -f -- \"$1\"; exec \"$2\""))
        + QStringLiteral(" sh ") + QuoteExecArg(Entry) + QLatin1Char(' ') + QuoteExecArg(Path);
}
#endif

void BringToFront(QWidget* Form)
{
    if (auto* Sub = qobject_cast<QMdiSubWindow*>(Form->parentWidget())) {
        if (Sub->isMinimized())
            Sub->showNormal();
        if (QMdiArea* Area = Sub->mdiArea())
            Area->setActiveSubWindow(Sub);
        Form = Sub->window();
    }
    if (Form->isMinimized())
        Form->setWindowState(Form->windowState() & ~Qt::WindowMinimized);
    Form->raise();
    Form->activateWindow();
}

QWidget* FindForm(const QString& FormName)
{
    QWidget* Hidden = nullptr;
    const auto Matches = [&](QWidget* W) {
        return W->objectName().compare(FormName, Qt::CaseInsensitive) == 0;
    };
    for (QWidget* W : QApplication::topLevelWidgets()) {
        if (!Matches(W))
            continue;
        if (W->isVisible())
            return W;
        Hidden = Hidden ? Hidden : W;
    }
    // Forms shown inside an MDI area are children of their sub-window, not top-level.
    for (QWidget* W : QApplication::allWidgets())
        if (qobject_cast<QMdiSubWindow*>(W->parentWidget()) && Matches(W))
            return W;
    return Hidden;
}

} // namespace

QString StartupEntryPath(const QString& Name)
{
#ifdef Q_OS_WIN
    Q_UNUSED(Name)
    return QString();
#else
    if (Name.isEmpty())
        return QString();
    // GenericConfigLocation honours $XDG_CONFIG_HOME and defaults to ~/.config.
    const QString Config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    return Config + QStringLiteral("/autostart/") + SafeName(Name) + QStringLiteral(".desktop");
#endif
}

void RunOnStartup(const QString& Name, const QString& Path, bool Once)
{
    if (Name.isEmpty())
        return;
#ifdef Q_OS_WIN
    QSettings Key(QStringLiteral("HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\")
                      + (Once ? QStringLiteral("RunOnce") : QStringLiteral("Run")),
                  QSettings::NativeFormat);
    if (Key.isWritable())
        Key.setValue(SafeName(Name), QLatin1Char('"') + Path + QLatin1Char('"'));
#else
    const QString Entry = StartupEntryPath(Name);
    if (!QDir().mkpath(QFileInfo(Entry).absolutePath()))
        return;
    const QString Text = QStringLiteral("[Desktop Entry]\nType=Application\nName=") + EscapeValue(Name)
        + QStringLiteral("\nExec=") + EscapeValue(ExecLine(Entry, Path, Once))
        + QStringLiteral("\nTerminal=false\nX-GNOME-Autostart-enabled=true\n");
    QSaveFile File(Entry);
    if (File.open(QIODevice::WriteOnly)) {
        File.write(Text.toUtf8());
        File.commit();
    }
#endif
}

int Execute(const QString& FileName, const QString& Params, bool Wait)
{
    if (FileName.isEmpty())
        return -1;
    QProcess Process;
    Process.setProgram(FileName);
#ifdef Q_OS_WIN
    // The parameters reach the program exactly as written, as on a command line.
    Process.setNativeArguments(Params);
#else
    Process.setArguments(QProcess::splitCommand(Params));
#endif
    // The program shares our console rather than filling a buffer nobody reads.
    Process.setProcessChannelMode(QProcess::ForwardedChannels);
    if (!Wait) {
        Process.startDetached();
        return -1;
    }
    Process.start();
    if (!Process.waitForStarted(-1))
        return -1;
    Process.waitForFinished(-1);
    return Process.exitStatus() == QProcess::NormalExit ? Process.exitCode() : -1;
}

bool FormLoaded(const QString& FormName)
{
    if (FormName.isEmpty() || !qobject_cast<QApplication*>(QCoreApplication::instance()))
        return false;
    QWidget* Form = FindForm(FormName);
    if (!Form)
        return false;
    BringToFront(Form);
    return true;
}

} // namespace Kesh
