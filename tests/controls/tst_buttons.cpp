// The bilingual buttons: language switching, hot keys, pop-up menus and the speed button's
// focus hand-over, driven with real mouse and key events on a shown, active window.
#include <Kesh_Controls.h>

#include <QLineEdit>
#include <QMenu>
#include <QScreen>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QtTest>

using namespace Kesh;

namespace {

enum Kind { KSpeed, KBit, KIcon };

// Runs Do on a new button of kind K (the three share their bilingual API, not a class).
template <class F>
QAbstractButton* MakeButton(int K, QWidget* Parent, F&& Do)
{
    QAbstractButton* made = nullptr;
    auto apply = [&](auto* b) { made = b; Do(*b); };
    if (K == KSpeed)
        apply(new TQxSpeedButton(Parent));
    else if (K == KBit)
        apply(new TQxBitBtn(Parent));
    else
        apply(new TQxIconButton(Parent));
    if (Parent)
        Parent->layout()->addWidget(made);
    return made;
}

// Counts the key presses that reach a widget, the modifier keys pressed alone left out.
struct KeyCounter : QObject
{
    explicit KeyCounter(QWidget* W) { W->installEventFilter(this); }
    int Presses = 0;
    bool eventFilter(QObject*, QEvent* E) override
    {
        if (E->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(E)->key();
            Presses += key < Qt::Key_Shift || key > Qt::Key_Alt;
        }
        return false;
    }
};

// A form whose edit has the focus, with room for buttons below it.
struct Form
{
    QWidget Window;
    QLineEdit* Edit = new QLineEdit(&Window);

    explicit Form(bool Rtl = false)
    {
        Window.setLayoutDirection(Rtl ? Qt::RightToLeft : Qt::LeftToRight);
        (new QVBoxLayout(&Window))->addWidget(Edit);
        Window.move(QGuiApplication::primaryScreen()->availableGeometry().center() - QPoint(100, 100));
    }
    bool Show()
    {
        Window.show();
        Window.activateWindow();
        if (!QTest::qWaitForWindowActive(&Window))
            return false;
        Edit->setFocus();
        return Edit->hasFocus();
    }
};

TFont MakeFont(int Size)
{
    return TFont(QFont(QStringLiteral("DejaVu Sans"), Size));
}

} // namespace

// A descendant that takes over the icon button's action. The count is kept outside the
// object: GCC's speculative devirtualization otherwise warns on other buttons' calls.
class CountingIconButton : public TQxIconButton
{
public:
    static inline int Clicks = 0;
    void Click() override { ++Clicks; }
};

class TestButtons : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { Application()->SetBiDiMode(bdLeftToRight); }

    void languageSwitch_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("byApplication");
        QTest::addColumn<QString>("captionA");
        QTest::addColumn<QString>("captionE");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("fontSize");
        const QString a = QStringLiteral("حفظ"), e = QStringLiteral("Save");
        for (int k : {KSpeed, KBit, KIcon}) {
            for (bool app : {false, true}) {
                const QByteArray n = QByteArray::number(k) + (app ? ", application" : ", own");
                QTest::newRow("both, ltr " + n) << k << app << a << e << false << e << 9;
                QTest::newRow("both, rtl " + n) << k << app << a << e << true << a << 12;
                // The English caption and font stay; the hint follows all the same.
                QTest::newRow("no Arabic, rtl " + n) << k << app << "" << e << true << e << 9;
                QTest::newRow("blank Arabic, rtl " + n) << k << app << "  " << e << true << e << 9;
                QTest::newRow("no English, ltr " + n) << k << app << a << "" << false << a << 12;
            }
        }
    }
    // The button starts in the other direction, then switches.
    void languageSwitch()
    {
        QFETCH(int, kind);
        QFETCH(bool, byApplication);
        QFETCH(QString, captionA);
        QFETCH(QString, captionE);
        QFETCH(bool, rtl);
        QFETCH(QString, text);
        QFETCH(int, fontSize);
        const TBiDiMode from = rtl ? bdLeftToRight : bdRightToLeft, to = rtl ? bdRightToLeft : bdLeftToRight;
        Application()->SetBiDiMode(from);
        QWidget parent;
        new QVBoxLayout(&parent);
        QAbstractButton* button = MakeButton(kind, &parent, [&](auto& b) {
            QCOMPARE(b.GetFont_a(), FontOf(&b)); // both fonts start as the button's own
            b.SetFont_a(MakeFont(12));
            b.SetFont_e(MakeFont(9));
            b.SetCaptionA(captionA);
            b.SetCaptionE(captionE);
            b.SetHintA(QStringLiteral("hint a"));
            b.SetHintE(QStringLiteral("hint e"));
            if (byApplication)
                Application()->SetBiDiMode(to);
            else
                b.SetBiDiMode(to);
            QCOMPARE(b.GetBiDiMode(), to);
        });
        QCOMPARE(button->layoutDirection(), rtl ? Qt::RightToLeft : Qt::LeftToRight);
        QCOMPARE(button->text(), text);
        QCOMPARE(button->font().pointSize(), fontSize);
        QCOMPARE(button->toolTip(), rtl ? QStringLiteral("hint a") : QStringLiteral("hint e"));
    }

    void setters_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<bool>("arabicShown");
        QTest::newRow("left to right") << int(bdLeftToRight) << false;
        QTest::newRow("right to left") << int(bdRightToLeft) << true;
        // The mixed modes show nothing new on the switch, and count as English for the setters.
        QTest::newRow("right to left, no align") << int(bdRightToLeftNoAlign) << false;
        QTest::newRow("reading only") << int(bdRightToLeftReadingOnly) << false;
    }
    void setters()
    {
        QFETCH(int, mode);
        QFETCH(bool, arabicShown);
        TQxBitBtn b;
        b.setText(QStringLiteral("before"));
        b.SetBiDiMode(TBiDiMode(mode));
        QCOMPARE(b.text(), QStringLiteral("before"));
        b.SetCaptionA(QStringLiteral("عربي"));
        b.SetCaptionE(QStringLiteral("English"));
        QCOMPARE(b.text(), arabicShown ? QStringLiteral("عربي") : QStringLiteral("English"));
        b.SetFont_a(MakeFont(14));
        b.SetFont_e(MakeFont(10));
        QCOMPARE(b.font().pointSize(), arabicShown ? 14 : 10);
        QVERIFY(b.setProperty("_Hint_a", QStringLiteral("تلميح")));
        QVERIFY(b.setProperty("_Hint_e", QStringLiteral("Hint")));
        QCOMPARE(b.toolTip(), arabicShown ? QStringLiteral("تلميح") : QStringLiteral("Hint"));
        // An empty caption of the shown language empties the button.
        b.setProperty(arabicShown ? "_Caption_a" : "_Caption_e", QString());
        QCOMPARE(b.text(), QString());
        // While loading the switch waits for the end.
        TQxSpeedButton s;
        s.BeginLoading();
        s.SetCaptionA(QStringLiteral("إغلاق"));
        s.SetCaptionE(QStringLiteral("Close"));
        s.SetBiDiMode(TBiDiMode(mode));
        QCOMPARE(s.text(), QStringLiteral("Close"));
        s.EndLoading();
        QCOMPARE(s.text(), arabicShown ? QStringLiteral("إغلاق") : QStringLiteral("Close"));
    }

    void hintFromHotKey_data()
    {
        QTest::addColumn<QString>("hint");
        QTest::addColumn<QKeySequence>("key");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("keyText");
        QTest::newRow("empty hint takes the key") << "" << QKeySequence(Qt::CTRL | Qt::Key_S) << "Ctrl+S" << "Ctrl+S";
        QTest::newRow("set hint kept") << "Save" << QKeySequence(Qt::CTRL | Qt::Key_S) << "Save" << "Ctrl+S";
        QTest::newRow("no key") << "" << QKeySequence() << "" << "";
        QTest::newRow("first combination only") << "" << QKeySequence(QStringLiteral("Ctrl+K, D")) << "Ctrl+K" << "Ctrl+K";
    }
    void hintFromHotKey()
    {
        QFETCH(QString, hint);
        QFETCH(QKeySequence, key);
        QFETCH(QString, expected);
        QFETCH(QString, keyText);
        TQxSpeedButton b;
        b.SetHintE(hint);
        QVERIFY(b.setProperty("_HotKey", key));
        QCOMPARE(b.toolTip(), expected);
        QCOMPARE(b.GetHotKey().toString(QKeySequence::PortableText), keyText);
    }

    void hotKey_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");

        const int ctrl = Qt::ControlModifier;
        for (bool rtl : {false, true}) {
            const QByteArray dir = rtl ? ", rtl" : ", ltr";
            QTest::newRow("speed, Ctrl+S" + dir) << int(KSpeed) << rtl << true << int(Qt::Key_S) << ctrl;
            QTest::newRow("bit, Ctrl+S" + dir) << int(KBit) << rtl << true << int(Qt::Key_S) << ctrl;
            QTest::newRow("icon, F2" + dir) << int(KIcon) << rtl << true << int(Qt::Key_F2) << 0;
            // Keys the edit would claim for itself still go to the button.
            QTest::newRow("bit, Ctrl+A" + dir) << int(KBit) << rtl << true << int(Qt::Key_A) << ctrl;
            QTest::newRow("speed, Delete" + dir) << int(KSpeed) << rtl << true << int(Qt::Key_Delete) << 0;
            QTest::newRow("disabled speed, Ctrl+S" + dir) << int(KSpeed) << rtl << false << int(Qt::Key_S) << ctrl;
            QTest::newRow("disabled bit, Delete" + dir) << int(KBit) << rtl << false << int(Qt::Key_Delete) << 0;
        }
    }
    void hotKey()
    {
        QFETCH(int, kind);
        QFETCH(bool, rtl);
        QFETCH(bool, enabled);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        Form form(rtl);
        form.Edit->setText(QStringLiteral("abc"));
        QAbstractButton* button = MakeButton(kind, &form.Window, [&](auto& b) {
            b.SetHotKey(QKeyCombination(Qt::KeyboardModifiers(modifiers), Qt::Key(key)));
        });
        button->setEnabled(enabled);
        QSignalSpy clicked(button, &QAbstractButton::clicked);
        QVERIFY(form.Show());
        form.Edit->setCursorPosition(1);
        KeyCounter reached(form.Edit);

        QTest::keyClick(form.Edit, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        // Taken by the button, the key never reaches the edit; refused, it does.
        QCOMPARE(clicked.count(), enabled ? 1 : 0);
        QCOMPARE(reached.Presses, enabled ? 0 : 1);
        QCOMPARE(form.Edit->text(), !enabled && key == Qt::Key_Delete ? QStringLiteral("ac") : QStringLiteral("abc"));
        QVERIFY(!form.Edit->hasSelectedText());
    }

    void twoHotKeysOnOneForm()
    {
        Form form(true), other;
        auto* save = MakeButton(KBit, &form.Window, [](auto& b) { b.SetHotKey(Qt::CTRL | Qt::Key_S); });
        auto* add = MakeButton(KSpeed, &form.Window, [](auto& b) { b.SetHotKey(Qt::CTRL | Qt::Key_N); });
        QSignalSpy saved(save, &QAbstractButton::clicked);
        QSignalSpy added(add, &QAbstractButton::clicked);
        QVERIFY(form.Show());
        QTest::keyClick(form.Edit, Qt::Key_N, Qt::ControlModifier);
        QTest::keyClick(form.Edit, Qt::Key_S, Qt::ControlModifier);
        QTest::keyClick(form.Edit, Qt::Key_N, Qt::ControlModifier);
        QCOMPARE(saved.count(), 1);
        QCOMPARE(added.count(), 2);
        // Another window is not their form.
        QVERIFY(other.Show());
        QTest::keyClick(other.Edit, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(saved.count(), 1);
    }

    // The mnemonic clicks, or opens the pop-up menu while there is one.
    void mnemonicGoesThroughClick()
    {
        Form form;
        auto* b = static_cast<TQxBitBtn*>(MakeButton(KBit, &form.Window, [](auto& b) { b.SetCaptionE(QStringLiteral("&Print")); }));
        auto* menu = new QMenu;
        menu->addAction(QStringLiteral("Preview"));
        QSignalSpy clicked(b, &QAbstractButton::clicked);
        QVERIFY(form.Show());
        QTest::keyClick(form.Edit, Qt::Key_P, Qt::AltModifier);
        QCOMPARE(clicked.count(), 1);
        b->SetPopupMenu(menu);
        QTest::keyClick(form.Edit, Qt::Key_P, Qt::AltModifier);
        QTRY_VERIFY(menu->isVisible());
        QCOMPARE(clicked.count(), 1);
        menu->close();
        delete menu;
        QCOMPARE(b->GetPopupMenu(), nullptr);
        b->Click();
        QCOMPARE(clicked.count(), 2);
    }

    void popupMenuInsteadOfClick_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<int>("how"); // 0 mouse, 1 hot key, 2 Space
        for (bool rtl : {false, true}) {
            const QByteArray dir = rtl ? ", rtl" : ", ltr";
            QTest::newRow("speed, mouse" + dir) << int(KSpeed) << rtl << 0;
            QTest::newRow("bit, mouse" + dir) << int(KBit) << rtl << 0;
            QTest::newRow("icon, mouse" + dir) << int(KIcon) << rtl << 0;
            QTest::newRow("speed, hot key" + dir) << int(KSpeed) << rtl << 1;
            QTest::newRow("bit, Space" + dir) << int(KBit) << rtl << 2;
        }
    }
    void popupMenuInsteadOfClick()
    {
        QFETCH(int, kind);
        QFETCH(bool, rtl);
        QFETCH(int, how);
        Form form(rtl);
        QMenu menu;
        menu.addAction(QStringLiteral("A longer first item"));
        QAbstractButton* button = MakeButton(kind, &form.Window, [&](auto& b) {
            b.SetCaptionE(QStringLiteral("More"));
            b.SetPopupMenu(&menu);
            b.SetHotKey(Qt::Key_F4);
        });
        QSignalSpy clicked(button, &QAbstractButton::clicked);
        QVERIFY(form.Show());
        if (how == 0) {
            QTest::mouseClick(button, Qt::LeftButton);
        } else if (how == 1) {
            QTest::keyClick(form.Edit, Qt::Key_F4);
        } else {
            button->setFocus();
            QTest::keyClick(button, Qt::Key_Space);
        }
        QTRY_VERIFY(menu.isVisible());
        QCOMPARE(clicked.count(), 0);
        // Below the button, from its reading side.
        const QRect r(button->mapToGlobal(QPoint(0, 0)), button->size());
        QCOMPARE(menu.geometry().top(), r.bottom() + 1);
        QCOMPARE(rtl ? menu.geometry().right() : menu.geometry().left(), rtl ? r.right() : r.left());
        menu.close();
    }

    // A descendant gives the icon button its action through Click(); a release off the
    // button is no click.
    void iconButtonClickOverridable()
    {
        Form form;
        auto* b = new CountingIconButton;
        CountingIconButton::Clicks = 0;
        form.Window.layout()->addWidget(b);
        b->SetHotKey(Qt::Key_F6);
        QSignalSpy clicked(b, &QAbstractButton::clicked);
        QVERIFY(form.Show());
        QTest::mouseClick(b, Qt::LeftButton);
        QTest::keyClick(form.Edit, Qt::Key_F6);
        QTest::mousePress(b, Qt::LeftButton);
        QTest::mouseRelease(b, Qt::LeftButton, {}, QPoint(-5, -5));
        QCOMPARE(b->Clicks, 2);
        QCOMPARE(clicked.count(), 0);
        QVERIFY(!b->isDown());
    }
};

int main(int argc, char** argv)
{
    QLocale::setDefault(QLocale::c());
    TQxApplication App(argc, argv);
    TestButtons Test;
    return QTest::qExec(&Test, argc, argv);
}
#include "tst_buttons.moc"
