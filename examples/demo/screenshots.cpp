#include "screenshots.h"
#include "main_window.h"

#include <Kesh.h>

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QPointer>
#include <QTimer>
#include <cstdio>

using namespace Kesh;

namespace Demo {

namespace {

const QSize MainWindowSize(1000, 680);

QString ShotFile(const QString& Folder, const QString& Name, const QString& Lang)
{
    return QDir(Folder).filePath(Name + QLatin1Char('-') + Lang + QStringLiteral(".png"));
}

bool Save(QWidget* Window, const QString& File)
{
    if (!Window->grab().save(File)) {
        std::fprintf(stderr, "Cannot write %s\n", qPrintable(File));
        return false;
    }
    std::printf("%s\n", qPrintable(File));
    return true;
}

// A few turns of the event loop: a window shown now is laid out and painted after them.
void Settle()
{
    for (int I = 0; I < 3; ++I)
        QCoreApplication::processEvents();
}

bool WriteDialogs(const QString& Folder, const QString& Lang)
{
    const struct {
        const char* Name;
        std::function<void()> Show;
    } Dialogs[] = {
        {"dialog-info", [] { ShowMsg(BiStr(QStringLiteral("تم حفظ الفاتورة رقم 1024."), QStringLiteral("Invoice 1024 was saved."))); }},
        {"dialog-error", [] { ShowError(BiStr(QStringLiteral("من فضلك قم بحفظ أو إهمال التعديلات أولاً."), QStringLiteral("Please save or cancel changes first."))); }},
        {"dialog-question", [] { Sure(BiStr(QStringLiteral("سيُحذف الصنف نهائياً."), QStringLiteral("The item will be deleted for good.")), false); }},
        {"calendar", [] { int Day = 20261124; SelectDate(Day, false); }},
        {"calendar-hijri", [] { int Day = 14480515; SelectDate(Day, true); }},
    };
    for (const auto& Dialog : Dialogs) {
        const QString File = ShotFile(Folder, QString::fromLatin1(Dialog.Name), Lang);
        if (!SaveDialog(File, Dialog.Show)) {
            std::fprintf(stderr, "Cannot write %s\n", qPrintable(File));
            return false;
        }
        std::printf("%s\n", qPrintable(File));
    }
    return true;
}

bool WriteForms(TMainWindow& Window, const QString& Folder, const QString& Lang)
{
    for (TFormEntry* Entry : Window.Forms()) {
        QPointer<QWidget> Form = Window.OpenForm(Entry->Name);
        if (!Form) {
            std::fprintf(stderr, "The form %s did not open\n", qPrintable(Entry->Name));
            return false;
        }
        Settle();
        if (!Save(Form, ShotFile(Folder, Entry->Name.toLower(), Lang)))
            return false;
        if (Entry->Shots && !Entry->Shots(Form, Folder, Lang)) {
            std::fprintf(stderr, "Cannot write the screenshots of the form %s\n", qPrintable(Entry->Name));
            return false;
        }
        // A form still holding something unsaved refuses to close: it goes all the same.
        if (Form && !Form->close())
            delete Form;
        Settle();
    }
    return true;
}

} // namespace

bool SaveDialog(const QString& File, const std::function<void()>& Show)
{
    return SaveDialogChain({File}, Show, nullptr, nullptr);
}

bool SaveDialogChain(const QStringList& Files, const std::function<void()>& Show,
                     const std::function<void(QDialog*, int)>& Prepare, const std::function<void(QDialog*, int)>& Advance)
{
    int Written = 0;
    bool Failed = false;
    QPointer<QDialog> Seen;
    int Turns = 0;
    QTimer Poll;
    Poll.setInterval(50);
    QObject::connect(&Poll, &QTimer::timeout, [&] {
        auto* Dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!Dialog)
            return;
        if (Written == Files.size() || Failed) { // done: close what is still open, innermost first
            Dialog->reject();
            return;
        }
        if (Dialog != Seen) { // a new dialog: prepared now, saved after it has laid itself out
            Seen = Dialog;
            Turns = 0;
            if (Prepare)
                Prepare(Dialog, Written);
            return;
        }
        if (++Turns < 2)
            return;
        if (!Dialog->grab().save(Files[Written])) {
            Failed = true;
            return;
        }
        ++Written;
        if (Written < Files.size() && Advance)
            Advance(Dialog, Written - 1);
        else
            Dialog->reject();
    });
    Poll.start();
    Show();
    // Show returns when its own dialog closed; dialogs opened after it are closed too.
    Poll.stop();
    return !Failed && Written == Files.size();
}

int WriteScreenshots(TMainWindow& Window, const QString& Folder)
{
    if (!QDir().mkpath(Folder)) {
        std::fprintf(stderr, "Cannot create the folder %s\n", qPrintable(Folder));
        return 1;
    }
    Window.show();
    for (TBiDiMode Mode : {bdLeftToRight, bdRightToLeft}) {
        Window.SetLanguage(Mode);
        // The screenshots are taken at the window's default size, whatever was remembered.
        Window.resize(MainWindowSize);
        Settle();
        const QString Lang = Mode == bdRightToLeft ? QStringLiteral("ar") : QStringLiteral("en");
        if (!Save(&Window, ShotFile(Folder, QStringLiteral("main"), Lang)) || !WriteForms(Window, Folder, Lang)
            || !WriteDialogs(Folder, Lang))
            return 1;
    }
    return 0;
}

} // namespace Demo
