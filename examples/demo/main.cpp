// Kesh demo: shows the library at work in Arabic and English. Without a display it
// renders every page in both languages to PNG files and exits.
#include "demo_page.h"
#include "demo_window.h"
#include "entry_page.h"

#include <Kesh.h>
#include <KeshForm_AdoBrowser.h>
#include <Kesh_Controls.h>

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QPointer>
#include <QTabWidget>
#include <QTimer>
#include <cstdio>
#include <functional>

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

// Runs Show, which opens a modal dialog, saves the dialog to File once it is on screen and
// closes it with "No" / "Cancel" (reject).
bool SaveDialog(const QString& File, const std::function<void()>& Show)
{
    bool Saved = false;
    QPointer<QDialog> Seen;
    QTimer Poll;
    Poll.setInterval(50);
    QObject::connect(&Poll, &QTimer::timeout, [&] {
        auto* Dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!Dialog)
            return;
        if (Seen != Dialog) {  // let it lay itself out for one turn of the loop first
            Seen = Dialog;
            return;
        }
        Poll.stop();
        Saved = Dialog->grab().save(File);
        Dialog->reject();
    });
    Poll.start();
    Show();
    Poll.stop();
    return Saved;
}

bool WriteDialogs(const QString& Folder, const QString& Lang)
{
    const struct {
        const char* Name;
        std::function<void()> Show;
    } Dialogs[] = {
        {"dialog-info", [] { ShowMsg(BiStr(QStringLiteral("تم حفظ الفاتورة رقم 1024."), QStringLiteral("Invoice 1024 was saved."))); }},
        {"dialog-error", [] { ShowError(BiStr(QStringLiteral("الرقم غير صحيح."), QStringLiteral("Incorrect number."))); }},
        {"dialog-question", [] { Sure(BiStr(QStringLiteral("سيُحذف الصنف نهائياً."), QStringLiteral("The item will be deleted for good.")), false); }},
        {"calendar", [] { int Day = 20261124; SelectDate(Day, false); }},
        {"calendar-hijri", [] { int Day = 14480515; SelectDate(Day, true); }},
    };
    for (const auto& Dialog : Dialogs) {
        const QString File = QDir(Folder).filePath(QString::fromLatin1(Dialog.Name) + QLatin1Char('-') + Lang + QStringLiteral(".png"));
        if (!SaveDialog(File, Dialog.Show)) {
            std::fprintf(stderr, "Cannot write %s\n", qPrintable(File));
            return false;
        }
        std::printf("%s\n", qPrintable(File));
    }
    return true;
}

// The customer browser of the data-entry page with "a" typed, then its filter dialog.
bool WriteBrowser(DemoWindow& Window, const QString& Folder, const QString& Lang)
{
    auto* Page = Window.findChild<EntryPage*>();
    if (!Page)
        return false;
    QStringList Written;
    QPointer<QDialog> Seen;
    int Turns = 0;
    QTimer Poll;
    Poll.setInterval(50);
    QObject::connect(&Poll, &QTimer::timeout, [&] {
        auto* Dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!Dialog || (Dialog == Seen && ++Turns < 2))
            return;
        if (Dialog != Seen) {  // let it lay itself out first
            Seen = Dialog;
            Turns = 0;
            if (auto* Browser = qobject_cast<TAdoBrowserForm*>(Dialog); Browser && Written.isEmpty())
                Browser->F1->setText(BiStr(QStringLiteral("م"), QStringLiteral("a")));
            return;
        }
        if (Written.size() == 2) {  // the browser again, after its filter
            Poll.stop();
            Dialog->reject();
            return;
        }
        const QString File = QDir(Folder).filePath((Written.isEmpty() ? QStringLiteral("browser-") : QStringLiteral("browser-filter-"))
                                                   + Lang + QStringLiteral(".png"));
        if (Dialog->grab().save(File))
            Written << File;
        if (auto* Browser = qobject_cast<TAdoBrowserForm*>(Dialog))
            QMetaObject::invokeMethod(Browser->btnFilter, "click", Qt::QueuedConnection);
        else
            Dialog->reject();
        Seen = nullptr;
    });
    Poll.start();
    Page->PickCustomer();
    Poll.stop();
    for (const QString& File : Written)
        std::printf("%s\n", qPrintable(File));
    return Written.size() == 2;
}

int WriteScreenshots(DemoWindow& Window, const QString& Folder)
{
    if (!QDir().mkpath(Folder)) {
        std::fprintf(stderr, "Cannot create the folder %s\n", qPrintable(Folder));
        return 1;
    }
    Window.show();
    for (TBiDiMode Mode : {bdLeftToRight, bdRightToLeft}) {
        Window.SetLanguage(Mode);
        if (!Window.isVisible()) {
            std::fprintf(stderr, "The window did not come back after the language switch\n");
            return 1;
        }
        // The form manager puts the window back at its remembered placement when it shows it
        // again after the switch; the screenshots are all taken at one size.
        Window.resize(900, 640);
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
        if (!WriteDialogs(Folder, Lang))
            return 1;
        if (!WriteBrowser(Window, Folder, Lang)) {
            std::fprintf(stderr, "Cannot write the browser's screenshots\n");
            return 1;
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
