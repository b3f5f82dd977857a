// Kesh demo: shows the library at work in Arabic and English. Without a display it
// renders every page in both languages to PNG files and exits.
#include "demo_page.h"
#include "demo_window.h"

#include <Kesh.h>

#include <QDir>
#include <QTabWidget>
#include <cstdio>

using namespace Kesh;

namespace {

bool HasDisplay()
{
    return !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM") || !qEnvironmentVariableIsEmpty("DISPLAY")
        || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

QString ScreenshotFolder(int argc, char** argv)
{
    for (int I = 1; I + 1 < argc; ++I)
        if (qstrcmp(argv[I], "--screenshots") == 0)
            return QString::fromLocal8Bit(argv[I + 1]);
    return QString();
}

int WriteScreenshots(DemoWindow& Window, const QString& Folder)
{
    if (!QDir().mkpath(Folder)) {
        std::fprintf(stderr, "Cannot create the folder %s\n", qPrintable(Folder));
        return 1;
    }
    Window.show();
    for (TBiDiMode Mode : {bdLeftToRight, bdRightToLeft}) {
        Application()->SetBiDiMode(Mode);
        const QString Lang = Mode == bdRightToLeft ? QStringLiteral("ar") : QStringLiteral("en");
        for (int I = 0; I < Window.Pages().size(); ++I) {
            Window.Tabs()->setCurrentIndex(I);
            QCoreApplication::processEvents();
            const QString File = QDir(Folder).filePath(Window.Pages()[I]->PageName() + QLatin1Char('-') + Lang + QStringLiteral(".png"));
            if (!Window.grab().save(File)) {
                std::fprintf(stderr, "Cannot write %s\n", qPrintable(File));
                return 1;
            }
            std::printf("%s\n", qPrintable(File));
        }
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    QString Folder = ScreenshotFolder(argc, argv);
    if (!HasDisplay()) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        if (Folder.isEmpty())
            Folder = QStringLiteral("screenshots");
    }
    TQxApplication App(argc, argv);
    DemoWindow Window;
    if (!Folder.isEmpty())
        return WriteScreenshots(Window, Folder);
    Window.show();
    return App.exec();
}
