#include "dialog_helper.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDateTime>
#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <algorithm>

namespace KeshTest {

namespace {

QString Plain(QString Text)
{
    return Text.remove(QLatin1Char('&'));
}

QList<QAbstractButton*> VisibleButtons(QWidget* Dialog)
{
    QList<QAbstractButton*> Buttons;
    for (QAbstractButton* Button : Dialog->findChildren<QAbstractButton*>())
        if (Button->isVisibleTo(Dialog))
            Buttons << Button;
    // On-screen order: widget coordinates are physical (x grows to the right) in both directions.
    std::stable_sort(Buttons.begin(), Buttons.end(), [Dialog](QAbstractButton* A, QAbstractButton* B) {
        const QPoint PA = A->mapTo(Dialog, QPoint(0, 0));
        const QPoint PB = B->mapTo(Dialog, QPoint(0, 0));
        return PA.y() != PB.y() ? PA.y() < PB.y() : PA.x() < PB.x();
    });
    return Buttons;
}

void Reject(QWidget* Dialog)
{
    if (auto* D = qobject_cast<QDialog*>(Dialog))
        D->reject();
    else
        Dialog->close();
}

int LiveDrivers = 0;

// Without a driver a modal dialog would wait for a user for ever and the test would hang
// until ctest kills it; the watchdog rejects it after a grace period and says so.
void StartWatchdog()
{
    if (!qobject_cast<QApplication*>(QCoreApplication::instance()))
        return;
    auto* Timer = new QTimer(QCoreApplication::instance());
    Timer->setInterval(50);
    QObject::connect(Timer, &QTimer::timeout, [] {
        static QPointer<QWidget> Open;
        static qint64 OpenSince = 0;
        QWidget* Dialog = QApplication::activeModalWidget();
        if (!Dialog || !Dialog->isVisible() || LiveDrivers > 0) {
            Open = nullptr;
            return;
        }
        const qint64 Now = QDateTime::currentMSecsSinceEpoch();
        if (Dialog != Open) {
            Open = Dialog;
            OpenSince = Now;
        } else if (Now - OpenSince >= DialogDriver::WatchdogMs) {
            const DialogSeen S = DialogDriver::Read(Dialog);
            qWarning("KeshTest: rejected modal dialog '%s' (%s) that no DialogDriver answered",
                     qUtf8Printable(S.Title), qUtf8Printable(S.Text));
            Open = nullptr;
            Reject(Dialog);
        }
    });
    Timer->start();
}
Q_COREAPP_STARTUP_FUNCTION(StartWatchdog)

} // namespace

DialogDriver::DialogDriver()
{
    m_timer.setInterval(10);
    QObject::connect(&m_timer, &QTimer::timeout, [this] { Poll(); });
    m_timer.start();
    ++LiveDrivers;
}

DialogDriver::~DialogDriver()
{
    --LiveDrivers;
}

DialogDriver& DialogDriver::Click(const QString& Button)
{
    m_answers.append(Answer{Button, 0, Qt::NoModifier});
    return *this;
}

DialogDriver& DialogDriver::Press(int Key, Qt::KeyboardModifiers Modifiers)
{
    m_answers.append(Answer{QString(), Key, Modifiers});
    return *this;
}

DialogSeen DialogDriver::Read(QWidget* Dialog)
{
    DialogSeen S;
    S.ClassName = QString::fromLatin1(Dialog->metaObject()->className());
    S.Title = Dialog->windowTitle();
    if (auto* Info = Dialog->findChild<QLabel*>(QStringLiteral("Info"))) {
        S.Text = Info->text();
    } else {
        QStringList Texts;
        for (QLabel* Label : Dialog->findChildren<QLabel*>())
            if (Label->isVisibleTo(Dialog) && !Label->text().isEmpty())
                Texts << Label->text();
        S.Text = Texts.join(QLatin1Char('\n'));
    }
    for (QAbstractButton* Button : VisibleButtons(Dialog)) {
        S.Buttons << Button->objectName();
        S.ButtonTexts << Plain(Button->text());
        S.ButtonLefts << Button->mapTo(Dialog, QPoint(0, 0)).x();
        auto* Push = qobject_cast<QPushButton*>(Button);
        if (Push && Push->isDefault())
            S.Default = Button->objectName();
    }
    if (QWidget* Focus = Dialog->focusWidget())
        S.Focused = Focus->objectName();
    S.Frame = Dialog->frameGeometry();
    S.Client = Dialog->geometry();
    S.Direction = Dialog->layoutDirection();
    return S;
}

void DialogDriver::Poll()
{
    QWidget* Dialog = QApplication::activeModalWidget();
    if (!Dialog || !Dialog->isVisible())
        return;
    if (Dialog != m_handled) {
        Handle(Dialog);
    } else if (QDateTime::currentMSecsSinceEpoch() - m_handledAt > TimeoutMs) {
        Errors << QStringLiteral("dialog '%1' stayed open after its answer").arg(Dialog->windowTitle());
        Reject(Dialog);
    }
}

void DialogDriver::Handle(QWidget* Dialog)
{
    m_handled = Dialog;
    m_handledAt = QDateTime::currentMSecsSinceEpoch();
    Seen << Read(Dialog);
    if (!ShotFile.isEmpty()) {
        Dialog->grab().save(ShotFile);
        ShotFile.clear();
    }
    if (OnShown)
        OnShown(Dialog);
    if (!Dialog->isVisible()) // OnShown answered it
        return;
    if (m_answers.isEmpty()) {
        Errors << QStringLiteral("no answer for dialog '%1'").arg(Dialog->windowTitle());
        Reject(Dialog);
        return;
    }
    Give(Dialog, m_answers.takeFirst());
}

void DialogDriver::Give(QWidget* Dialog, const Answer& A)
{
    if (A.Button.isEmpty()) {
        QWidget* Target = Dialog->focusWidget() ? Dialog->focusWidget() : Dialog;
        QTest::keyClick(Target, Qt::Key(A.Key), A.Modifiers);
        return;
    }
    for (QAbstractButton* Button : VisibleButtons(Dialog)) {
        if (Button->objectName() == A.Button || Plain(Button->text()) == A.Button) {
            QTest::mouseClick(Button, Qt::LeftButton);
            return;
        }
    }
    Errors << QStringLiteral("dialog '%1' has no visible button '%2'").arg(Dialog->windowTitle(), A.Button);
    Reject(Dialog);
}

} // namespace KeshTest
