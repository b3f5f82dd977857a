// Test helper: drives real modal dialogs (QDialog::exec()) from inside a test.
//
// Usage:
//
//     KeshTest::DialogDriver Driver;
//     Driver.Click(QStringLiteral("btnYes"));           // answer for the first dialog
//     const bool Answer = Kesh::Sure(QStringLiteral("Delete?"), false);
//     QCOMPARE(Driver.Seen.size(), 1);
//     QCOMPARE(Driver.Seen[0].Title, QStringLiteral("Alert"));
//     QCOMPARE(Driver.Seen[0].Buttons, (QStringList{"btnYes", "btnNo"}));
//     QVERIFY(Driver.Errors.isEmpty());
//
// While it exists the driver polls QApplication::activeModalWidget(). Each new modal dialog
// is read into a DialogSeen (title, text, buttons in on-screen order, focus, default
// button, geometry), passed to OnShown, optionally saved as PNG, and then given the next
// queued answer: a click on a named button or a key press. A dialog for which no answer is
// queued, or whose button cannot be found, is rejected (so the test never hangs) and noted
// in Errors; so is a dialog that stays open TimeoutMs after its answer.
//
// Safety net for every test of a widget application: while no DialogDriver exists, a modal
// dialog left open for WatchdogMs is rejected with a qWarning naming its title and text, so
// a test that shows a message without answering it is slowed down, not hung.
#pragma once
#include <QList>
#include <QPointer>
#include <QRect>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <QWidget>
#include <functional>

namespace KeshTest {

/// What a modal dialog showed, read while it was open.
struct DialogSeen
{
    QString ClassName;       ///< the dialog's class (metaObject()->className())
    QString Title;           ///< windowTitle
    QString Text;            ///< the QLabel named "Info", else all visible labels joined by "\n"
    QStringList Buttons;     ///< objectNames of the visible buttons, on screen from left to right
    QStringList ButtonTexts; ///< their texts, same order
    QString Focused;         ///< objectName of the dialog's focus widget
    QString Default;         ///< objectName of the default push button, if any
    QRect Frame;             ///< frameGeometry of the dialog
    QRect Client;            ///< geometry of the dialog
    Qt::LayoutDirection Direction = Qt::LeftToRight;
    /// Left edge of each of Buttons, in the dialog's own coordinates (same order).
    QList<int> ButtonLefts;
};

/// Answers modal dialogs shown while it lives; see the top of this file.
class DialogDriver
{
public:
    DialogDriver();
    ~DialogDriver();
    DialogDriver(const DialogDriver&) = delete;
    DialogDriver& operator=(const DialogDriver&) = delete;

    /// Queues an answer: click the visible button whose objectName or text (without '&') is Button.
    DialogDriver& Click(const QString& Button);
    /// Queues an answer: press Key on the dialog's focus widget (or the dialog).
    DialogDriver& Press(int Key, Qt::KeyboardModifiers Modifiers = Qt::NoModifier);

    /// Runs for each dialog while it is open, before its answer is given.
    std::function<void(QWidget* Dialog)> OnShown;
    /// When not empty, the next dialog is saved here as PNG (then the name is cleared).
    QString ShotFile;
    /// How long a dialog may stay open after its answer before the driver rejects it.
    int TimeoutMs = 10000;

    QList<DialogSeen> Seen; ///< every dialog met, in order
    QStringList Errors;     ///< what went wrong (no answer queued, no such button, left open)

    /// How long the watchdog lets a modal dialog wait while no driver exists.
    static constexpr int WatchdogMs = 1000;

    /// Reads a dialog as DialogSeen describes; usable on any top-level widget.
    static DialogSeen Read(QWidget* Dialog);

private:
    struct Answer
    {
        QString Button;
        int Key = 0;
        Qt::KeyboardModifiers Modifiers;
    };
    void Poll();
    void Handle(QWidget* Dialog);
    void Give(QWidget* Dialog, const Answer& A);

    QTimer m_timer;
    QList<Answer> m_answers;
    QPointer<QWidget> m_handled;
    qint64 m_handledAt = 0;
};

} // namespace KeshTest
