#include "globals.h"
#include "platform/application.h"
#include "platform/rtl/format_settings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>

namespace Kesh {

QString ProgPath;
QString ReportPath;
QString ConfigFile;
QString AppName;
QString LogFilename;
bool Logging = false;

namespace {

// The executable's path with its extension (the part after the last dot of the
// file name, if any) replaced.
QString ChangeFileExt(const QString& Path, const QString& Ext)
{
    const QFileInfo Info(Path);
    const QString Name = Info.fileName();
    const int Dot = Name.lastIndexOf(QLatin1Char('.'));
    const QString Base = Dot > 0 ? Name.left(Dot) : Name;
    const QString Folder = Path.left(Path.size() - Name.size());
    return Folder + Base + Ext;
}

} // namespace

void InitializeKesh()
{
    const QString Exe = Application()->ExeName();
    ProgPath = Exe.isEmpty() ? QString() : QDir::toNativeSeparators(QFileInfo(Exe).absolutePath() + QLatin1Char('/'));
    ReportPath = ProgPath + QStringLiteral("Reports") + QDir::separator();
    ConfigFile = ChangeFileExt(Exe, QStringLiteral(".ini"));
    AppName = ChangeFileExt(QFileInfo(Exe).fileName(), QString());
    LogFilename = ChangeFileExt(Exe, QStringLiteral(".LOG"));

    Application()->SetBiDiKeyboard(QStringLiteral("00000401"));
    Application()->SetNonBiDiKeyboard(QStringLiteral("00000409"));

    // Times formatted through the run-time routines show hours and minutes without
    // leading zeros and an Arabic morning/evening marker, whatever the locale.
    FormatSettings.TimeAMString = QStringLiteral("ص");
    FormatSettings.TimePMString = QStringLiteral("م");
    FormatSettings.ShortTimeFormat = QStringLiteral("h:m ampm");
    FormatSettings.LongTimeFormat = QStringLiteral("h:m ampm");

    // QRandomGenerator::global() is seeded by the system; nothing to do for Randomize.
}

// The executable's path is known only once the application object exists.
static void StartUp() { InitializeKesh(); }
Q_COREAPP_STARTUP_FUNCTION(StartUp)

} // namespace Kesh
