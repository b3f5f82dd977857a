// The message routines and their form, driven as real modal dialogs.
#include "dialog_helper.h"

#include <Kesh.h>
#include <Kesh_Form_Msg.h>
#include "platform/data/client_dataset.h"
#include "platform/data/data_source.h"

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QScreen>
#include <QTemporaryDir>
#include <QtTest>

using namespace Kesh;
using KeshTest::DialogDriver;

namespace {

enum Routine { RShowMsg, RShowError, RRaiseError, RSure, RSelectYes };

// Calls a routine; the answer of a question is 1 (Yes) or 0 (No), -1 for the others.
int Call(Routine R, const QString& Msg, bool DefaultYes = false, QObject* Sender = nullptr)
{
    switch (R) {
    case RShowMsg: ShowMsg(Msg, Sender); return -1;
    case RShowError: ShowError(Msg, Sender); return -1;
    case RRaiseError:
        try {
            RaiseError(Msg, Sender);
        } catch (const EAbort&) {
        }
        return -1;
    case RSure: return Sure(Msg, DefaultYes) ? 1 : 0;
    case RSelectYes: return SelectYes(Msg, DefaultYes) ? 1 : 0;
    }
    return -1;
}

QString ReadFile(const QString& Name)
{
    QFile F(Name);
    return F.open(QIODevice::ReadOnly) ? QString::fromUtf8(F.readAll()) : QString();
}

int CountMessageForms()
{
    int N = 0;
    for (QWidget* W : QApplication::topLevelWidgets())
        N += qobject_cast<TKeshFormMsg*>(W) != nullptr;
    return N;
}

// Raises from inside an event handler, as a control's slot would.
class Thrower : public QObject
{
public:
    std::function<void()> Action;
    bool event(QEvent* E) override { return E->type() == QEvent::User ? (Action(), true) : QObject::event(E); }
};

// What the driver saw of the form beyond the generic reading.
struct FormDetails
{
    QString Icon;
    bool Bold = false;
    int IconLeft = 0, InfoLeft = 0, ToolbarWidth = 0, InfoTextWidth = 0, InfoHeight = 0;
    int InfoNeeds = 0; // the height the label itself needs at its width
};

FormDetails Details(QWidget* Dialog)
{
    FormDetails D;
    auto* Form = qobject_cast<TKeshFormMsg*>(Dialog);
    if (!Form)
        return D;
    for (QLabel* Icon : {Form->IcInfo, Form->IcError, Form->IcQuestion})
        if (Icon->isVisibleTo(Form)) {
            D.Icon += Icon->objectName();
            D.IconLeft = Icon->mapTo(Form, QPoint(0, 0)).x();
        }
    const QRect Text = Form->Info->contentsRect();
    D.Bold = Form->Info->font().bold();
    D.InfoLeft = Form->Info->mapTo(Form, Text.topLeft()).x();
    D.ToolbarWidth = Form->Toolbar->width();
    D.InfoTextWidth = Text.width();
    D.InfoHeight = Text.height();
    D.InfoNeeds = Form->Info->heightForWidth(Form->Info->width());
    return D;
}

} // namespace

class TestMessages : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        Application()->SetBiDiMode(bdLeftToRight);
        Logging = false;
        QVERIFY(m_dir.isValid());
        LogFilename = m_dir.filePath(QStringLiteral("app.LOG"));
        QFile::remove(LogFilename);
    }
    void cleanup()
    {
        Application()->SetBiDiMode(bdLeftToRight);
        Logging = false;
        while (m_logDepth-- > 0)
            LogEnd();
        m_logDepth = 0;
    }

    // Each routine in both languages; what the form shows follows from the routine and the language.
    void dialogs_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<int>("routine");
        QTest::addColumn<bool>("defaultYes");
        QTest::addColumn<QString>("answer"); // a button's objectName, or "Enter"/"Escape"
        QTest::addColumn<int>("result");
        QTest::newRow("ShowMsg en") << false << int(RShowMsg) << false << "btnOk" << -1;
        QTest::newRow("ShowMsg ar") << true << int(RShowMsg) << false << "btnOk" << -1;
        QTest::newRow("ShowError en") << false << int(RShowError) << false << "btnOk" << -1;
        QTest::newRow("ShowError ar, Enter") << true << int(RShowError) << false << "Enter" << -1;
        QTest::newRow("Sure en, No focused, Yes clicked") << false << int(RSure) << false << "btnYes" << 1;
        QTest::newRow("Sure en, Yes focused, No clicked") << false << int(RSure) << true << "btnNo" << 0;
        QTest::newRow("Sure ar, No focused, Yes clicked") << true << int(RSure) << false << "btnYes" << 1;
        QTest::newRow("Sure en, Escape") << false << int(RSure) << true << "Escape" << 0;
        QTest::newRow("SelectYes en, Enter on Yes") << false << int(RSelectYes) << true << "Enter" << 1;
        QTest::newRow("SelectYes en, Enter on No") << false << int(RSelectYes) << false << "Enter" << 0;
        QTest::newRow("SelectYes ar, Enter on Yes") << true << int(RSelectYes) << true << "Enter" << 1;
    }
    void dialogs()
    {
        QFETCH(bool, rtl);
        QFETCH(int, routine);
        QFETCH(bool, defaultYes);
        QFETCH(QString, answer);
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        const bool Question = routine >= RSure;
        const QString Msg = routine == RShowError ? QStringLiteral("Item ID already exists.")
                            : Question ? QStringLiteral("Delete?") : QStringLiteral("Saved");
        const QStringList Titles[] = {{"Information", "معلومات"}, {"Error", "خطأ"}, {}, {"Alert", "تنبيه"}, {"Alert", "تنبيه"}};
        const char* const Icons[] = {"IcInfo", "IcError", "", "IcQuestion", "IcQuestion"};
        // Sure asks in the user's language; the buttons run in reading order.
        const QString Text = routine != RSure ? Msg : (rtl ? QStringLiteral("هل أنت متأكد؟ ") : QStringLiteral("Are you sure? ")) + Msg;
        const QStringList Buttons = !Question ? QStringList{"btnOk"} : rtl ? QStringList{"btnNo", "btnYes"} : QStringList{"btnYes", "btnNo"};
        const QStringList Texts = !Question ? QStringList{rtl ? "موافق" : "Ok"} : rtl ? QStringList{"لا", "نعم"} : QStringList{"Yes", "No"};
        const QString Focused = !Question ? "btnOk" : defaultYes ? "btnYes" : "btnNo";

        DialogDriver Driver;
        if (answer == QLatin1String("Enter"))
            Driver.Press(Qt::Key_Return);
        else if (answer == QLatin1String("Escape"))
            Driver.Press(Qt::Key_Escape);
        else
            Driver.Click(answer);
        FormDetails D;
        Driver.OnShown = [&D](QWidget* Dialog) { D = Details(Dialog); };

        QTEST(Call(Routine(routine), Msg, defaultYes), "result");
        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(QLatin1Char('\n'))));
        QCOMPARE(Driver.Seen.size(), 1);
        const KeshTest::DialogSeen& S = Driver.Seen.first();
        QCOMPARE(S.ClassName, QStringLiteral("Kesh::TKeshFormMsg"));
        QCOMPARE(S.Title, Titles[routine][rtl]);
        QCOMPARE(S.Text, Text);
        QCOMPARE(S.Buttons, Buttons);
        QCOMPARE(S.ButtonTexts, Texts);
        QCOMPARE(S.Focused, Focused);
        QCOMPARE(S.Default, Focused);
        QCOMPARE(D.Icon, QLatin1String(Icons[routine]));
        QCOMPARE(S.Direction, rtl ? Qt::RightToLeft : Qt::LeftToRight);
        QCOMPARE(D.Bold, rtl);
        // The icon stands on the side where reading begins.
        QCOMPARE(D.IconLeft > D.InfoLeft, rtl);

        // The buttons are centred in the toolbar; Yes and No are 2 pixels apart.
        const int W = TKeshFormMsg::ButtonWidth;
        if (S.Buttons.size() == 1) {
            QCOMPARE(S.ButtonLefts[0], (D.ToolbarWidth - W) / 2);
        } else {
            QCOMPARE(S.ButtonLefts[0], (D.ToolbarWidth - 2 * W - 2) / 2);
            QCOMPARE(S.ButtonLefts[1], S.ButtonLefts[0] + W + 2);
        }
    }

    void buttonsSetTheModalResult_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<int>("result");
        QTest::newRow("Ok") << "btnOk" << 1;
        QTest::newRow("Yes") << "btnYes" << 1;
        QTest::newRow("Cancel") << "btnCancel" << 2;
        QTest::newRow("No") << "btnNo" << 2;
        QTest::newRow("Escape") << QString() << 0;
    }
    void buttonsSetTheModalResult()
    {
        QFETCH(QString, button);
        TKeshFormMsg Form(nullptr, TKeshFormMsg::mkQuestion, QStringLiteral("All four"));
        DialogDriver Driver;
        if (button.isEmpty())
            Driver.Press(Qt::Key_Escape);
        else
            Driver.Click(button);
        QTEST(Form.exec(), "result");
        QVERIFY(Driver.Errors.isEmpty());
        QCOMPARE(Driver.Seen.size(), 1);
        // All four are there, in tab order Ok, Cancel, Yes, No.
        QCOMPARE(Driver.Seen[0].Buttons, (QStringList{"btnOk", "btnCancel", "btnYes", "btnNo"}));
    }

    void iconsAreDrawn_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("icon");
        QTest::addColumn<int>("minHue");
        QTest::addColumn<int>("maxHue");
        QTest::newRow("negative is question") << -3 << "IcQuestion" << 180 << 200;
        QTest::newRow("question") << 0 << "IcQuestion" << 180 << 200;
        QTest::newRow("error") << 1 << "IcError" << 0 << 15;
        QTest::newRow("information") << 2 << "IcInfo" << 200 << 225;
        QTest::newRow("above two is information") << 7 << "IcInfo" << 200 << 225;
    }
    void iconsAreDrawn()
    {
        QFETCH(int, kind);
        QFETCH(QString, icon);
        QFETCH(int, minHue);
        QFETCH(int, maxHue);
        TKeshFormMsg Form(nullptr, kind, QStringLiteral("x"));
        QStringList Visible;
        for (QLabel* L : {Form.IcInfo, Form.IcError, Form.IcQuestion})
            if (L->isVisibleTo(&Form))
                Visible << L->objectName();
        QCOMPARE(Visible, QStringList{icon});
        const QImage Image = Form.findChild<QLabel*>(icon)->pixmap().toImage();
        QCOMPARE(Image.size() / Image.devicePixelRatio(), QSize(64, 64));
        // Transparent corners, an opaque disc of the kind's colour (sampled off the glyph).
        QCOMPARE(qAlpha(Image.pixel(0, 0)), 0);
        const QColor Disc = QColor::fromRgba(Image.pixel(Image.width() / 8 + 2, Image.height() / 2));
        QCOMPARE(Disc.alpha(), 255);
        QVERIFY2(Disc.hue() >= minHue && Disc.hue() <= maxHue && Disc.saturation() > 128, qPrintable(Disc.name()));
    }

    void questionFormsOutliveTheCall()
    {
        const int Before = CountMessageForms();
        DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk")).Click(QStringLiteral("btnYes")).Click(QStringLiteral("btnNo"));
        ShowMsg(QStringLiteral("freed at once"));
        QCOMPARE(CountMessageForms(), Before);
        QVERIFY(Sure(QStringLiteral("kept"), false));
        QVERIFY(!SelectYes(QStringLiteral("kept too"), true));
        QCOMPARE(CountMessageForms(), Before + 2);
        for (QWidget* W : QApplication::topLevelWidgets())
            if (qobject_cast<TKeshFormMsg*>(W))
                QVERIFY(!W->isVisible());
        QCOMPARE(Driver.Seen.size(), 3);
    }

    // Each message is logged before its form is shown; the abort text is neither shown nor logged.
    void logging_data()
    {
        QTest::addColumn<int>("routine");
        QTest::addColumn<bool>("logging");
        QTest::addColumn<int>("depth");
        QTest::addColumn<QString>("msg");
        QTest::addColumn<QString>("line"); // empty: the form is not shown either, unless logging is off
        QTest::newRow("ShowMsg") << int(RShowMsg) << true << 0 << "Saved" << "ShowMsg: Saved\n";
        QTest::newRow("ShowMsg indented") << int(RShowMsg) << true << 2 << "Saved" << "        ShowMsg: Saved\n";
        QTest::newRow("ShowError") << int(RShowError) << true << 0 << "Bad" << "ShowError: Bad\n";
        QTest::newRow("RaiseError") << int(RRaiseError) << true << 0 << "Bad" << "ShowError: Bad\n";
        QTest::newRow("Sure logs the bare text") << int(RSure) << true << 0 << "Delete?" << "Sure: Delete?\n";
        QTest::newRow("SelectYes") << int(RSelectYes) << true << 1 << "Go on?" << "    SelectYes: Go on?\n";
        QTest::newRow("Arabic text") << int(RShowMsg) << true << 0 << "تم الحفظ" << "ShowMsg: تم الحفظ\n";
        QTest::newRow("off") << int(RShowMsg) << false << 0 << "Saved" << "";
        QTest::newRow("off, question") << int(RSure) << false << 0 << "Delete?" << "";
        QTest::newRow("abort text") << int(RShowError) << true << 0 << "Operation aborted" << "";
        QTest::newRow("abort text, mixed case") << int(RShowError) << true << 0 << "operation ABORTED" << "";
        QTest::newRow("abort text, RaiseError") << int(RRaiseError) << true << 0 << "Operation aborted" << "";
        QTest::newRow("abort text and more") << int(RShowError) << true << 0 << "Operation aborted." << "ShowError: Operation aborted.\n";
        QTest::newRow("ShowMsg does not filter") << int(RShowMsg) << true << 0 << "Operation aborted" << "ShowMsg: Operation aborted\n";
    }
    void logging()
    {
        QFETCH(int, routine);
        QFETCH(bool, logging);
        QFETCH(int, depth);
        QFETCH(QString, msg);
        QFETCH(QString, line);
        Logging = logging;
        for (m_logDepth = 0; m_logDepth < depth; ++m_logDepth)
            LogStart(QString());
        const bool Shown = !logging || !line.isEmpty();
        DialogDriver Driver;
        if (Shown)
            Driver.Click(routine >= RSure ? QStringLiteral("btnNo") : QStringLiteral("btnOk"));
        QString WhileShown;
        Driver.OnShown = [&WhileShown](QWidget*) { WhileShown = ReadFile(LogFilename); };
        Call(Routine(routine), msg);
        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(QLatin1Char('\n'))));
        QCOMPARE(Driver.Seen.size(), Shown ? 1 : 0);
        QCOMPARE(WhileShown, line);
        QCOMPARE(ReadFile(LogFilename), line); // nothing more afterwards
    }

    void raiseErrorShowsThenAborts()
    {
        DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        int SeenAtThrow = -1;
        try {
            RaiseError(QStringLiteral("TxBiStrings.Add\r\nItem ID already exists."));
        } catch (const EAbort& E) {
            SeenAtThrow = Driver.Seen.size();
            QCOMPARE(E.Message, QStringLiteral("Operation aborted"));
        }
        QCOMPARE(SeenAtThrow, 1);
        QCOMPARE(Driver.Seen[0].Title, QStringLiteral("Error"));
        QCOMPARE(Driver.Seen[0].Text, QStringLiteral("TxBiStrings.Add\r\nItem ID already exists."));
    }

    void focusReturnsToTheSender_data()
    {
        QTest::addColumn<int>("routine");
        QTest::addColumn<int>("sender"); // 0 none, 1 the widget, 2 the field the widget edits
        QTest::newRow("ShowMsg, widget") << int(RShowMsg) << 1;
        QTest::newRow("ShowError, widget") << int(RShowError) << 1;
        QTest::newRow("RaiseError, widget") << int(RRaiseError) << 1;
        QTest::newRow("ShowMsg, field") << int(RShowMsg) << 2;
        QTest::newRow("RaiseError, field") << int(RRaiseError) << 2;
        QTest::newRow("no sender") << int(RShowError) << 0;
    }
    void focusReturnsToTheSender()
    {
        QFETCH(int, routine);
        QFETCH(int, sender);
        QWidget Window;
        auto* First = new QLineEdit(&Window);
        auto* Second = new QLineEdit(&Window);
        Second->move(0, 40);
        Window.show();
        QVERIFY(QTest::qWaitForWindowActive(&Window));
        First->setFocus();
        QTRY_COMPARE(QApplication::focusWidget(), First);

        // Second edits the field "Name" of an open dataset.
        TClientDataSet Data;
        Data.FieldDefs().Add(QStringLiteral("Name"), ftString, 20);
        Data.CreateDataSet();
        TDataSource Source;
        Source.SetDataSet(&Data);
        TFieldDataLink Link;
        Link.SetDataSource(&Source);
        Link.SetFieldName(QStringLiteral("Name"));
        Link.SetControl(Second);
        QObject* const Senders[] = {nullptr, Second, Data.FieldByName(QStringLiteral("Name"))};

        DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        Call(Routine(routine), QStringLiteral("Value too large"), false, Senders[sender]);
        QCOMPARE(Driver.Seen.size(), 1);
        QWidget* const Expected = sender ? Second : First;
        QCOMPARE(Window.focusWidget(), Expected);
        QTRY_COMPARE(QApplication::focusWidget(), Expected);
    }

    void sizeFollowsTheText_data()
    {
        QTest::addColumn<QString>("msg");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("wraps");
        const QString Long = QStringLiteral("The record cannot be saved because another user changed it. ").repeated(12);
        const QString ArLong = QStringLiteral("لا يمكن حفظ السجل لأن مستخدماً آخر قام بتعديله. ").repeated(12);
        QTest::newRow("one word") << "Saved" << false << false;
        QTest::newRow("one word ar") << "تم" << true << false;
        QTest::newRow("empty") << "" << false << false;
        QTest::newRow("long") << Long << false << true;
        QTest::newRow("long ar") << ArLong << true << true;
        QTest::newRow("tabs and lines") << "Name:\tAli\nCode:\t7" << false << false;
    }
    void sizeFollowsTheText()
    {
        QFETCH(QString, msg);
        QFETCH(bool, rtl);
        QFETCH(bool, wraps);
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        const QRect Screen = QGuiApplication::primaryScreen()->geometry();
        const int MaxText = (Screen.width() / 3) * 2;

        DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        FormDetails D;
        Driver.OnShown = [&D](QWidget* Dialog) { D = Details(Dialog); };
        ShowMsg(msg);
        QCOMPARE(Driver.Seen.size(), 1);
        const KeshTest::DialogSeen& S = Driver.Seen[0];

        QVERIFY2(D.InfoHeight >= TKeshFormMsg::IconSize, qPrintable(QString::number(D.InfoHeight)));
        QVERIFY(D.InfoTextWidth <= MaxText);
        // The label wraps the text as it was measured: nothing is cut off.
        QVERIFY2(D.InfoNeeds <= D.InfoHeight, qPrintable(QStringLiteral("%1 > %2").arg(D.InfoNeeds).arg(D.InfoHeight)));
        const int LineHeight = [] { QFont F(QStringLiteral("Arial")); F.setPixelSize(16); return QFontMetrics(F).height(); }();
        if (wraps) {
            // A long text fills lines of nearly two thirds of the screen, and several of them.
            QVERIFY2(D.InfoTextWidth > MaxText - 80, qPrintable(QString::number(D.InfoTextWidth)));
            QVERIFY(D.InfoHeight > 3 * LineHeight);
        } else {
            QCOMPARE(D.InfoHeight, TKeshFormMsg::IconSize);
            QVERIFY(S.Client.width() < Screen.width() / 2);
        }
        // Centred across, a third of the free height from the top.
        const int FrameExtra = S.Frame.height() - S.Client.height();
        QVERIFY(qAbs(S.Frame.left() - (Screen.x() + (Screen.width() - S.Client.width()) / 2)) <= FrameExtra + 1);
        QVERIFY2(qAbs(S.Frame.top() - (Screen.y() + (Screen.height() - S.Client.height()) / 3)) <= FrameExtra + 1,
                 qPrintable(QStringLiteral("top %1 height %2").arg(S.Frame.top()).arg(S.Client.height())));
    }

    void exceptionsInEventsAreShown_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("text");
        QTest::newRow("abort is silent") << 0 << QString();
        QTest::newRow("database error") << 1 << "Field 'X' not found";
        QTest::newRow("convert error") << 2 << "'x' is not a valid floating point value";
        QTest::newRow("RaiseError inside a handler shows once") << 3 << "Refused";
    }
    void exceptionsInEventsAreShown()
    {
        QFETCH(int, kind);
        QFETCH(QString, text);
        QVERIFY(qobject_cast<TQxApplication*>(QCoreApplication::instance()));
        Thrower T;
        T.Action = [kind, text] {
            switch (kind) {
            case 0: Abort();
            case 1: throw EDatabaseError(text);
            case 2: throw EConvertError(text);
            default: RaiseError(text);
            }
        };
        DialogDriver Driver;
        if (!text.isEmpty())
            Driver.Click(QStringLiteral("btnOk"));
        QEvent E(QEvent::User);
        QCOMPARE(QCoreApplication::sendEvent(&T, &E), false);
        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(QLatin1Char('\n'))));
        QCOMPARE(Driver.Seen.size(), text.isEmpty() ? 0 : 1);
        if (!text.isEmpty()) {
            QCOMPARE(Driver.Seen[0].Title, QStringLiteral("Error"));
            QCOMPARE(Driver.Seen[0].Text, text);
        }
    }

private:
    QTemporaryDir m_dir;
    int m_logDepth = 0;
};

int main(int argc, char** argv)
{
    TQxApplication App(argc, argv);
    App.setAttribute(Qt::AA_Use96Dpi, true);
    TestMessages Test;
    return QTest::qExec(&Test, argc, argv);
}
#include "tst_messages.moc"
