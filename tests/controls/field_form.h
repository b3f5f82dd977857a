// Test fixture of the edit tests: a window holding a plain line edit, the control under
// test and another line edit, in that tab order, and a way to type any text into it.
#pragma once
#include <QApplication>
#include <QLineEdit>
#include <QtTest>

namespace KeshTest {

template <class Control>
struct FieldForm
{
    QWidget Window;
    QLineEdit* Before = new QLineEdit(&Window);
    Control* Edit = new Control(&Window);
    QLineEdit* After = new QLineEdit(&Window);

    explicit FieldForm(bool RightToLeft = false)
    {
        Window.resize(700, 120);
        Window.setLayoutDirection(RightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        Before->setGeometry(10, 10, 100, 21);
        Edit->move(10, 40);
        After->setGeometry(10, 70, 100, 21);
    }

    /// Shows the window, makes it active and puts the focus into the control.
    bool Show()
    {
        Window.show();
        QApplication::setActiveWindow(&Window);
        if (!QTest::qWaitForWindowActive(&Window))
            return false;
        Edit->setFocus(Qt::OtherFocusReason);
        return Edit->hasFocus();
    }
};

/// Types Text into W one character at a time, as key presses carrying that character;
/// "\b" is the Backspace key.
inline void Type(QWidget* W, const QString& Text)
{
    for (const QChar C : Text) {
        const char16_t U = C.toUpper().unicode();
        const Qt::Key Key = U == u'\b' ? Qt::Key_Backspace : U >= 0x20 && U < 0x7F ? Qt::Key(U) : Qt::Key_unknown;
        QTest::sendKeyEvent(QTest::Click, W, Key, QString(C), Qt::NoModifier);
    }
}

} // namespace KeshTest
