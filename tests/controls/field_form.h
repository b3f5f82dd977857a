// Test fixture of the edit tests: a window holding a plain line edit, the control under
// test and another line edit, in that tab order; typing any text; the error message check.
#pragma once
#include "dialog_helper.h"

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

/// Checks that Driver met the error message Text alone, titled in the reading language,
/// or no dialog at all when Text is empty.
inline void ExpectError(const DialogDriver& Driver, const QString& Text, bool RightToLeft)
{
    QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(u'\n')));
    QCOMPARE(Driver.Seen.size(), Text.isEmpty() ? 0 : 1);
    if (!Text.isEmpty()) {
        QCOMPARE(Driver.Seen[0].Text, Text);
        QCOMPARE(Driver.Seen[0].Title, RightToLeft ? QStringLiteral("خطأ") : QStringLiteral("Error"));
    }
}

} // namespace KeshTest
