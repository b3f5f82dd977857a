// The edits and combos switch the keyboard to the layout of their direction when they take
// the focus, whether by Tab or by a click.
#include "field_form.h"

#include <Kesh_Controls.h>
#include "platform/keyboard.h"

#include <QtTest>

using namespace Kesh;
using KeshTest::FieldForm;

namespace {

// Moves the focus into the control of a shown form as a user would, and gives the layouts
// activated on the way; leaving by Tab must activate nothing more. With Own the control
// has its own direction, the window the other one.
template <class Control>
QStringList LayoutsOnEntry(bool RightToLeft, bool ByMouse, bool Own = false)
{
    FieldForm<Control> F(RightToLeft != Own);
    if (Own)
        F.Edit->setLayoutDirection(RightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    if (!F.Show())
        return {QStringLiteral("form not shown")};
    F.Before->setFocus(Qt::OtherFocusReason);
    auto owned = std::make_unique<TRecordingKeyboard>();
    TRecordingKeyboard* keyboard = owned.get();
    SetKeyboardBackend(std::move(owned));
    if (ByMouse)
        QTest::mouseClick(F.Edit, Qt::LeftButton, {}, QPoint(5, F.Edit->height() / 2));
    else
        QTest::keyClick(F.Before, Qt::Key_Tab);
    if (!F.Edit->hasFocus())
        return {QStringLiteral("focus did not arrive")};
    const QStringList history = keyboard->History();
    QTest::keyClick(F.Edit, Qt::Key_Tab);
    const bool Quiet = keyboard->History() == history;
    SetKeyboardBackend(nullptr);
    return Quiet ? history : QStringList{QStringLiteral("leaving activated a layout")};
}

} // namespace

class TestKeyboardFocus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        Application()->SetBiDiKeyboard(QStringLiteral("00000401"));
        Application()->SetNonBiDiKeyboard(QStringLiteral("00000409"));
    }

    void focusActivatesTheDirectionsLayout_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<bool>("rightToLeft");
        QTest::addColumn<bool>("byMouse");
        QTest::addColumn<QStringList>("expected");
        const QStringList arabic{QStringLiteral("00000401")};
        const QStringList english{QStringLiteral("00000409")};
        QTest::addColumn<bool>("own");
        for (bool rtl : {false, true})
            QTest::addRow("edit, own direction %s", rtl ? "rtl" : "ltr") << "edit" << rtl << false << (rtl ? arabic : english) << true;
        for (const char* control : {"edit", "edit button", "time edit", "drop list"}) {
            for (bool rtl : {false, true}) {
                for (bool mouse : {false, true}) {
                    QTest::addRow("%s %s %s", control, rtl ? "rtl" : "ltr", mouse ? "click" : "tab")
                        << QString::fromLatin1(control) << rtl << mouse << (rtl ? arabic : english) << false;
                }
            }
        }
    }
    void focusActivatesTheDirectionsLayout()
    {
        QFETCH(QString, control);
        QFETCH(bool, rightToLeft);
        QFETCH(bool, byMouse);
        QFETCH(bool, own);
        QStringList layouts;
        if (control == QLatin1String("edit"))
            layouts = LayoutsOnEntry<TQxEdit>(rightToLeft, byMouse, own);
        else if (control == QLatin1String("edit button"))
            layouts = LayoutsOnEntry<TQxEditButton>(rightToLeft, byMouse);
        else if (control == QLatin1String("time edit"))
            layouts = LayoutsOnEntry<TQxTimeEdit>(rightToLeft, byMouse);
        else
            layouts = LayoutsOnEntry<TQxFixedDropList>(rightToLeft, byMouse);
        QTEST(layouts, "expected");
    }
};

QTEST_MAIN(TestKeyboardFocus)
#include "tst_keyboard_focus.moc"
