#include "messages.h"
#include "conversions.h"
#include "form_msg.h"
#include "globals.h"
#include "log_file.h"
#include "platform/application.h"
#include "platform/data/fields.h"
#include "platform/exceptions.h"

#include <QApplication>
#include <QPointer>
#include <QPushButton>

#include <utility>

namespace Kesh {

namespace {

void LogIfOn(const char* Routine, const QString& Msg)
{
    if (Logging)
        LogAdd(QLatin1String(Routine) + QStringLiteral(": ") + Msg);
}

// Forms need a widget application; a console host gets the text as a warning.
bool CanShowForms()
{
    return qobject_cast<QApplication*>(QCoreApplication::instance()) != nullptr;
}

void ReturnFocus(QObject* Sender)
{
    if (auto* Field = qobject_cast<TField*>(Sender))
        Field->FocusControl();
    else if (auto* Widget = qobject_cast<QWidget*>(Sender))
        Widget->setFocus(Qt::OtherFocusReason);
}

// exec(), then the window that was active before gets the activation back: some window
// systems (and the offscreen platform) leave no window active when a modal dialog closes.
int ExecModal(TKeshFormMsg& Form)
{
    const QPointer<QWidget> Active = QApplication::activeWindow();
    const int Result = Form.exec();
    if (Active && Active->isVisible() && QApplication::activeWindow() != Active)
        Active->activateWindow();
    return Result;
}

void MakeDefault(QPushButton* Button)
{
    Button->setDefault(true);
    Button->setFocus(Qt::OtherFocusReason);
}

// Shows an information or error form with Ok alone, centred, and frees it.
void ShowWithOk(int Kind, const QString& Caption, const QString& Msg, QObject* Sender)
{
    if (!CanShowForms()) {
        qWarning("%s: %s", qUtf8Printable(Caption), qUtf8Printable(Msg));
        return;
    }
    TKeshFormMsg Form(nullptr, Kind, Msg);
    Form.btnCancel->hide();
    Form.btnYes->hide();
    Form.btnNo->hide();
    Form.setWindowTitle(Caption);
    Form.btnOk->move((Form.Toolbar->width() - Form.btnOk->width()) / 2, Form.btnOk->y());
    MakeDefault(Form.btnOk);
    const QPointer<QObject> Target = Sender; // it may go away while the form is open
    ExecModal(Form);
    ReturnFocus(Target.data());
}

// The question forms live until the application ends, one per question. A QDialog cannot
// be the child of a non-widget object, so they are kept here and deleted by a post routine,
// which QApplication runs first thing in its destructor, while widgets can still be deleted.
QList<QPointer<TKeshFormMsg>>& KeptForms()
{
    static QList<QPointer<TKeshFormMsg>> Forms;
    return Forms;
}

void FreeKeptForms()
{
    const QList<QPointer<TKeshFormMsg>> Forms = std::exchange(KeptForms(), {});
    for (const QPointer<TKeshFormMsg>& Form : Forms)
        delete Form.data();
}

void KeepForm(TKeshFormMsg* Form)
{
    if (KeptForms().isEmpty())
        qAddPostRoutine(FreeKeptForms);
    KeptForms().append(Form);
}

// Yes and No side by side, 2 pixels apart, centred; Yes on the side where reading begins.
void PlaceYesNo(TKeshFormMsg& Form)
{
    const int W = TKeshFormMsg::ButtonWidth;
    const int L = (Form.Toolbar->width() - 2 * W - 2) / 2;
    const bool RightToLeft = Form.layoutDirection() == Qt::RightToLeft;
    Form.btnYes->move(RightToLeft ? L + W + 2 : L, Form.btnYes->y());
    Form.btnNo->move(RightToLeft ? L : L + W + 2, Form.btnNo->y());
}

bool AskYesNo(const QString& Text, bool DefaultYes)
{
    if (!CanShowForms()) {
        qWarning("%s (%s)", qUtf8Printable(Text), DefaultYes ? "Yes" : "No");
        return DefaultYes;
    }
    auto* Form = new TKeshFormMsg(nullptr, TKeshFormMsg::mkQuestion, Text);
    KeepForm(Form);
    Form->btnOk->hide();
    Form->btnCancel->hide();
    Form->setWindowTitle(BiStr(QStringLiteral("تنبيه"), QStringLiteral("Alert")));
    PlaceYesNo(*Form);
    MakeDefault(DefaultYes ? Form->btnYes : Form->btnNo);
    return ExecModal(*Form) == 1;
}

} // namespace

void ShowMsg(const QString& Msg, QObject* Sender)
{
    LogIfOn("ShowMsg", Msg);
    ShowWithOk(TKeshFormMsg::mkInformation, BiStr(QStringLiteral("معلومات"), QStringLiteral("Information")), Msg,
               Sender);
}

void ShowError(const QString& Msg, QObject* Sender)
{
    // The silent abort's own text must never reach the user.
    if (Msg.compare(QLatin1String("Operation aborted"), Qt::CaseInsensitive) == 0)
        return;
    LogIfOn("ShowError", Msg);
    ShowWithOk(TKeshFormMsg::mkError, BiStr(QStringLiteral("خطأ"), QStringLiteral("Error")), Msg, Sender);
}

void RaiseError(const QString& Msg, QObject* Sender)
{
    ShowError(Msg, Sender);
    Abort();
}

bool Sure(const QString& Msg, bool DefaultYes)
{
    LogIfOn("Sure", Msg);
    return AskYesNo(BiStr(QStringLiteral("هل أنت متأكد؟"), QStringLiteral("Are you sure?")) + QLatin1Char(' ') + Msg,
                    DefaultYes);
}

bool SelectYes(const QString& Msg, bool DefaultYes)
{
    LogIfOn("SelectYes", Msg);
    return AskYesNo(Msg, DefaultYes);
}

// Exceptions that TQxApplication catches in its event loop are shown as errors.
static void ShowExceptionsAsErrors()
{
    Application()->ShowException = [](const QString& Msg) { ShowError(Msg); };
}
Q_COREAPP_STARTUP_FUNCTION(ShowExceptionsAsErrors)

} // namespace Kesh
