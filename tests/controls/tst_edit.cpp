// The data-entry edit and the edit with a button: typing filter, focus keys, exit check,
// typed views, sizes, colours and the inner button.
#include "field_form.h"

#include <Kesh.h>
#include <Kesh_Controls.h>

#include <QClipboard>
#include <QMenu>
#include <QVBoxLayout>
#include <QtTest>

using namespace Kesh;
using namespace KeshTest;

namespace {

// The background in the middle of the box, as painted.
TColor PaintedColor(QWidget* W)
{
    const QImage Image = W->grab().toImage();
    return QColorToTColor(Image.pixelColor(Image.width() / 2, Image.height() / 2));
}

const double May1 = QDateToDateTime(QDate(2024, 5, 1));
const QString BadNumber = QStringLiteral("Incorrect number.");
const QString BadNumberAr = QStringLiteral("الرقم غير صحيح.");

} // namespace

class TestEdit : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void cleanup()
    {
        FormatSettings.DecimalSeparator = QLatin1Char('.');
        Application()->SetBiDiMode(bdLeftToRight);
    }

    // The text starts at the reading side whatever its content; a chosen alignment stays.
    void readingSide_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("chosen");
        QTest::newRow("ltr") << false << false;
        QTest::newRow("rtl") << true << false;
        QTest::newRow("rtl, centred by the program") << true << true;
    }
    void readingSide()
    {
        QFETCH(bool, rtl);
        QFETCH(bool, chosen);
        QWidget Form;
        auto* Edit = new TQxEdit(&Form);
        const QList<QLineEdit*> Boxes{Edit, new TQxTimeEdit(&Form)};
        for (QLineEdit* Box : Boxes) {
            Box->setText(QStringLiteral("1024"));
            if (chosen)
                Box->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
        }
        // There and back again: the second switch must find its own alignment to replace.
        Form.setLayoutDirection(rtl ? Qt::LeftToRight : Qt::RightToLeft);
        Form.setLayoutDirection(rtl ? Qt::RightToLeft : Qt::LeftToRight);
        const int Side = chosen ? Qt::AlignHCenter : rtl ? Qt::AlignRight : Qt::AlignLeft;
        for (QLineEdit* Box : Boxes) {
            QCOMPARE(int(Box->alignment() & Qt::AlignHorizontal_Mask & ~Qt::AlignAbsolute), Side);
            QVERIFY(Box->alignment() & Qt::AlignVCenter);
        }
        if (chosen)
            return;
        // The digits are painted at that side.
        Edit->setGeometry(10, 10, 200, 21);
        const QImage Image = Edit->grab().toImage();
        int First = -1, Last = -1;
        for (int X = 3; X < Image.width() - 3; ++X)
            for (int Y = 3; Y < Image.height() - 3; ++Y)
                if (qGray(Image.pixel(X, Y)) < 128) {
                    First = First < 0 ? X : First;
                    Last = X;
                }
        QVERIFY(First >= 0);
        QVERIFY2(rtl ? Last > Image.width() - 40 : First < 40, qPrintable(QStringLiteral("%1..%2").arg(First).arg(Last)));
    }

    void typingFilter_data()
    {
        QTest::addColumn<QString>("entry"); // set by its published name
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("typed"); // after "\x16" pasted, not typed
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("beeps");

        QTest::newRow("anything takes every character") << "DeAnything" << true << "" << "a-.b 9" << "a-.b 9" << 0;
        QTest::newRow("integer refuses letters") << "DeInteger" << false << "" << "1a2b" << "12" << 2;
        QTest::newRow("integer minus after a digit") << "DeInteger" << false << "" << "5-" << "5" << 1;
        QTest::newRow("integer minus into set text") << "DeInteger" << false << "7" << "-" << "7" << 1;
        QTest::newRow("integer minus after backspace") << "DeInteger" << false << "7" << "\b-3" << "-3" << 0;
        QTest::newRow("integer refuses the point") << "DeInteger" << false << "" << "1.5" << "15" << 1;
        QTest::newRow("integer refuses Arabic-Indic digits, rtl") << "DeInteger" << true << "" << "١٢" << "" << 2;
        QTest::newRow("float second point refused") << "DeFloat" << false << "" << "-1.5.2" << "-1.52" << 1;
        QTest::newRow("float point after set text, rtl") << "DeFloat" << true << "3.1" << ".4" << "3.14" << 1;
        QTest::newRow("float refuses comma and blank") << "DeFloat" << false << "" << "1,5 2" << "152" << 2;
        QTest::newRow("a pasted text goes in as it is") << "DeInteger" << false << "5" << "\x16-5x" << "5-5x" << 0;
    }
    void typingFilter()
    {
        QFETCH(QString, entry);
        QFETCH(bool, rtl);
        QFETCH(QString, start);
        QFETCH(QString, typed);
        FieldForm<TQxEdit> F(rtl);
        QVERIFY(F.Edit->setProperty("_DataEntry", entry));
        F.Edit->setText(start);
        QVERIFY(F.Show());
        F.Edit->end(false);
        const int Beeps = BeepCount();
        if (typed.startsWith(u'\x16')) {
            QApplication::clipboard()->setText(typed.mid(1));
            QTest::keyClick(F.Edit, Qt::Key_V, Qt::ControlModifier);
        } else {
            Type(F.Edit, typed);
        }
        QTEST(F.Edit->text(), "expected");
        QTEST(BeepCount() - Beeps, "beeps");
    }

    void focusKeys_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<int>("focus"); // -1 before, 0 the edit, 1 after
        QTest::addColumn<bool>("shown");

        QTest::newRow("Enter goes on") << false << int(Qt::Key_Return) << 0 << 1 << true;
        QTest::newRow("keypad Enter goes on, rtl") << true << int(Qt::Key_Enter) << int(Qt::KeypadModifier) << 1 << true;
        QTest::newRow("Down goes on") << false << int(Qt::Key_Down) << 0 << 1 << true;
        QTest::newRow("Up goes back, rtl") << true << int(Qt::Key_Up) << 0 << -1 << true;
        QTest::newRow("Shift+Down stays") << false << int(Qt::Key_Down) << int(Qt::ShiftModifier) << 0 << true;
        QTest::newRow("Enter on a hidden window stays") << false << int(Qt::Key_Return) << 0 << 0 << false;
        QTest::newRow("Ctrl+Up stays") << false << int(Qt::Key_Up) << int(Qt::ControlModifier) << 0 << true;
    }
    void focusKeys()
    {
        QFETCH(bool, rtl);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(int, focus);
        QFETCH(bool, shown);
        FieldForm<TQxEdit> F(rtl);
        F.Edit->SetDataEntry(DeInteger);
        F.Edit->setText(QStringLiteral("12"));
        F.Edit->setFocus();
        QVERIFY(!shown || F.Show());
        const int Beeps = BeepCount();
        QTest::keyClick(F.Edit, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QWidget* Expected = focus < 0 ? F.Before : focus > 0 ? F.After : static_cast<QWidget*>(F.Edit);
        QTRY_COMPARE(F.Window.focusWidget(), Expected);
        QCOMPARE(F.Edit->text(), QStringLiteral("12"));
        QCOMPARE(BeepCount(), Beeps);
    }

    // Leaving by Tab runs the check, then Exit. A speed button takes no focus, yet clicking
    // it (by mouse or by its hot key) runs the check before its own click.
    void exitCheck_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<int>("entry");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("decimal");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("message");

        QTest::newRow("integer fine") << "tab" << int(DeInteger) << "123" << "." << false << "";
        QTest::newRow("integer with letters") << "tab" << int(DeInteger) << "12a" << "." << false << BadNumber;
        QTest::newRow("integer with letters, rtl") << "tab" << int(DeInteger) << "12a" << "." << true << BadNumberAr;
        QTest::newRow("integer beyond 32 bits") << "tab" << int(DeInteger) << "9999999999" << "." << false << "";
        QTest::newRow("integer beyond 64 bits") << "tab" << int(DeInteger) << "99999999999999999999" << "." << false << BadNumber;
        QTest::newRow("integer blanks only") << "tab" << int(DeInteger) << "   " << "." << false << "";
        QTest::newRow("integer trailing blank, rtl") << "tab" << int(DeInteger) << "5 " << "." << true << BadNumberAr;
        QTest::newRow("float with point, comma locale") << "tab" << int(DeFloat) << "1.5" << "," << false << BadNumber;
        QTest::newRow("float with comma, comma locale") << "tab" << int(DeFloat) << "1,5" << "," << false << "";
        QTest::newRow("anything is never checked") << "tab" << int(DeAnything) << "abc" << "." << false << "";
        QTest::newRow("speed button by mouse") << "mouse" << int(DeInteger) << "12a" << "." << false << BadNumber;
        QTest::newRow("speed button by mouse, rtl") << "mouse" << int(DeInteger) << "12a" << "." << true << BadNumberAr;
        QTest::newRow("speed button by hot key") << "key" << int(DeInteger) << "12a" << "." << false << BadNumber;
    }
    void exitCheck()
    {
        QFETCH(QString, way);
        QFETCH(int, entry);
        QFETCH(QString, text);
        QFETCH(QString, decimal);
        QFETCH(bool, rtl);
        QFETCH(QString, message);
        FormatSettings.DecimalSeparator = decimal.at(0);
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        FieldForm<TQxEdit> F(rtl);
        F.Edit->SetDataEntry(TxDataEntry(entry));
        F.Edit->setText(text);
        auto* Save = new TQxSpeedButton(&F.Window);
        Save->setGeometry(200, 40, 60, 24);
        Save->SetHotKey(QKeySequence(Qt::CTRL | Qt::Key_S));
        QVERIFY(F.Show());

        DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        QList<int> DialogsBefore; // the dialogs already shown when Exit or the click came
        const auto Note = [&] { DialogsBefore << int(Driver.Seen.size()); };
        if (way == QLatin1String("tab"))
            connect(F.Edit, &TQxCustomEdit::Exit, this, Note);
        else
            connect(Save, &QAbstractButton::clicked, this, Note);
        if (way == QLatin1String("tab"))
            QTest::keyClick(F.Edit, Qt::Key_Tab);
        else if (way == QLatin1String("key"))
            QTest::keyClick(F.Edit, Qt::Key_S, Qt::ControlModifier);
        else
            QTest::mouseClick(Save, Qt::LeftButton);

        ExpectError(Driver, message, rtl);
        QCOMPARE(DialogsBefore, QList<int>{int(Driver.Seen.size())});
        QCOMPARE(F.Edit->text(), text); // nothing typed is lost
        QTRY_VERIFY((message.isEmpty() ? static_cast<QWidget*>(F.After) : F.Edit)->hasFocus());
    }

    // A pop-up menu or another window takes the focus only for a while: no check, no Exit.
    void noCheckOnPassingFocusLoss()
    {
        FieldForm<TQxEdit> F;
        F.Edit->SetDataEntry(DeInteger);
        F.Edit->setText(QStringLiteral("12a"));
        QVERIFY(F.Show());
        DialogDriver Driver;
        QSignalSpy Exits(F.Edit, &TQxCustomEdit::Exit);
        QMenu Menu;
        Menu.addAction(QStringLiteral("Item"));
        Menu.popup(F.Edit->mapToGlobal(QPoint(0, 0)));
        QVERIFY(QTest::qWaitForWindowExposed(&Menu));
        Menu.close();
        QWidget Other;
        Other.show();
        QApplication::setActiveWindow(&Other);
        QVERIFY(QTest::qWaitForWindowActive(&Other));
        QApplication::setActiveWindow(&F.Window);
        QVERIFY(QTest::qWaitForWindowActive(&F.Window));
        QTRY_VERIFY(F.Edit->hasFocus());
        QCOMPARE(Driver.Seen.size(), 0);
        QCOMPARE(Exits.count(), 0);
    }

    void typedGetters_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("asInteger");
        QTest::addColumn<double>("asFloat");
        QTest::addColumn<double>("asDateTime");
        QTest::addColumn<bool>("empty");

        QTest::newRow("empty") << "" << 0 << 0.0 << 0.0 << true;
        QTest::newRow("blanks") << "  " << 0 << 0.0 << 0.0 << true;
        QTest::newRow("negative") << "-7" << -7 << -7.0 << 0.0 << false;
        QTest::newRow("leading blank") << " 5" << 5 << 5.0 << 0.0 << false;
        QTest::newRow("trailing blank") << "5 " << 0 << 5.0 << 0.0 << false;
        QTest::newRow("letters") << "12a" << 0 << 0.0 << 0.0 << false;
        QTest::newRow("decimal") << "1.5" << 0 << 1.5 << 0.0 << false;
        QTest::newRow("beyond 32 bits") << "9999999999" << 0 << 9999999999.0 << 0.0 << false;
        QTest::newRow("hexadecimal") << "$1F" << 31 << 0.0 << 0.0 << false;
        QTest::newRow("no such day") << "2/30/2024" << 0 << 0.0 << 0.0 << false;
        QTest::newRow("hour out of range") << "5/1/2024 25:00" << 0 << 0.0 << 0.0 << false;
        QTest::newRow("date and time") << "5/1/2024 18:00" << 0 << 0.0 << May1 + 0.75 << false;
    }
    void typedGetters()
    {
        QFETCH(QString, text);
        TQxEdit E;
        E.setText(text);
        QTEST(E.AsInteger(), "asInteger");
        QTEST(E.AsFloat(), "asFloat");
        QTEST(E.IsEmpty(), "empty");
        QTEST(E.AsDateTime(), "asDateTime");
        QCOMPARE(E.AsDate(), 0.0); // no row holds a date alone
    }

    void typedSetters_data()
    {
        QTest::addColumn<QString>("view");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("decimal");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<double>("readBack");

        const double OneFiveNine = (13 * 3600 + 5 * 60 + 9) / 86400.0;
        QTest::newRow("integer") << "integer" << -7.0 << "." << "-7" << -7.0;
        QTest::newRow("float") << "float" << 2.5 << "." << "2.5" << 2.5;
        QTest::newRow("float, comma locale") << "float" << 2.5 << "," << "2,5" << 2.5;
        QTest::newRow("float large") << "float" << 1e20 << "." << "1E20" << 1e20;
        QTest::newRow("date 0 empties") << "date" << 0.0 << "." << "" << 0.0;
        QTest::newRow("date drops the time") << "date" << May1 + 0.75 << "." << "5/1/2024" << May1;
        QTest::newRow("date before day 0") << "date" << -1.0 << "." << "12/29/1899" << -1.0;
        QTest::newRow("date out of range") << "date" << 1e9 << "." << "#Error#" << 0.0;
        QTest::newRow("date-time 0 empties") << "datetime" << 0.0 << "." << "" << 0.0;
        QTest::newRow("date-time at midnight") << "datetime" << May1 << "." << "5/1/2024" << May1;
        QTest::newRow("date-time") << "datetime" << May1 + OneFiveNine << "." << "5/1/2024 13:05:09" << May1 + OneFiveNine;
        QTest::newRow("date-time out of range") << "datetime" << -1e9 << "." << "#Error#" << 0.0;
    }
    void typedSetters()
    {
        QFETCH(QString, view);
        QFETCH(double, value);
        QFETCH(QString, decimal);
        QFETCH(double, readBack);
        FormatSettings.DecimalSeparator = decimal.at(0);
        TQxEdit E;
        E.setText(QStringLiteral("old"));
        double Read = 0;
        if (view == QLatin1String("integer")) {
            E.SetAsInteger(int(value));
            Read = E.AsInteger();
        } else if (view == QLatin1String("float")) {
            E.SetAsFloat(value);
            Read = E.AsFloat();
        } else if (view == QLatin1String("date")) {
            E.SetAsDate(value);
            Read = E.AsDate();
        } else {
            E.SetAsDateTime(value);
            Read = E.AsDateTime();
        }
        QTEST(E.text(), "expected");
        QVERIFY2(qAbs(Read - readBack) < 1e-6 * qMax(1.0, qAbs(readBack)), qPrintable(QString::number(Read, 'g', 17)));
    }

    // Steps 1 to 6 fix the width, by hand and in a layout alike; other steps leave it free.
    void sizeRule_data()
    {
        QTest::addColumn<int>("step");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("inLayout");
        QTest::addColumn<int>("width"); // 0: the width asked for stays

        QTest::newRow("0 leaves the width free") << 0 << false << false << 0;
        QTest::newRow("1") << 1 << false << false << 101;
        QTest::newRow("2, rtl") << 2 << true << false << 205;
        QTest::newRow("6") << 6 << false << false << 621;
        QTest::newRow("7 leaves the width free, rtl") << 7 << true << false << 0;
        QTest::newRow("3 in a layout") << 3 << false << true << 309;
        QTest::newRow("0 in a layout, rtl") << 0 << true << true << 0;
    }
    void sizeRule()
    {
        QFETCH(int, step);
        QFETCH(bool, rtl);
        QFETCH(bool, inLayout);
        QFETCH(int, width);
        FieldForm<TQxEdit> F(rtl);
        if (inLayout) {
            auto* Layout = new QVBoxLayout(&F.Window);
            Layout->addWidget(F.Edit);
            Layout->addStretch();
            QVERIFY(F.Show());
            QVERIFY(F.Edit->setProperty("_FixedSize", step)); // a change is applied at once
            QTRY_COMPARE(F.Edit->height(), 21);
            QTRY_VERIFY2(width ? F.Edit->width() == width : F.Edit->width() > 500, qPrintable(QString::number(F.Edit->width())));
            return;
        }
        F.Edit->SetFixedSize(step);
        QCOMPARE(F.Edit->width(), width ? width : 101);
        QVERIFY(F.Show());
        F.Edit->resize(250, 40);
        QCOMPARE(F.Edit->size(), QSize(width ? width : 250, 21));
        F.Edit->setGeometry(20, 30, 90, 10);
        QCOMPARE(F.Edit->geometry(), QRect(20, 30, width ? width : 90, 21));
    }

    void colours_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("throughParent");
        QTest::newRow("edit disabled") << false << false;
        QTest::newRow("parent disabled, rtl") << true << true;
    }
    void colours()
    {
        QFETCH(bool, rtl);
        QFETCH(bool, throughParent);
        FieldForm<TQxEdit> F(rtl);
        QVERIFY(F.Show());
        QWidget* Switch = throughParent ? static_cast<QWidget*>(&F.Window) : F.Edit;
        QCOMPARE(PaintedColor(F.Edit), clWhite);
        Switch->setEnabled(false);
        QCOMPARE(PaintedColor(F.Edit), TColor(0xF0F0F0));
        // New colours wait for the next change of the enabled state.
        F.Edit->SetColorEnabled(clYellow);
        F.Edit->SetColorDisabled(clSilver);
        QCOMPARE(F.Edit->GetColor(), TColor(0xF0F0F0));
        Switch->setEnabled(true);
        QCOMPARE(PaintedColor(F.Edit), clYellow);
        Switch->setEnabled(false);
        QCOMPARE(PaintedColor(F.Edit), clSilver);
    }

    // The button at the trailing edge, text kept clear of it, on direction changes too.
    void editButton()
    {
        FieldForm<TQxEditButton> F(true);
        F.Edit->SetFixedSize(2);
        QVERIFY(F.Show());
        TQxBitBtn* Button = F.Edit->Button();
        QVERIFY(Button->isVisible());
        QCOMPARE(Button->text(), QStringLiteral("..."));
        QVERIFY(Button->font().bold());
        QCOMPARE(Button->focusPolicy(), Qt::NoFocus);
        for (bool RightToLeft : {true, false, true}) {
            F.Window.setLayoutDirection(RightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
            const int Frame = Button->y(); // the same frame at every edge
            QCOMPARE(Button->geometry(), QRect(RightToLeft ? Frame : 205 - Frame - 18, Frame, 18, 21 - 2 * Frame));
            QCOMPARE(F.Edit->textMargins(), RightToLeft ? QMargins(20, 0, 0, 0) : QMargins(0, 0, 20, 0));
        }
    }

    void editButtonClick_data()
    {
        QTest::addColumn<QString>("way");
        QTest::addColumn<QString>("state");
        QTest::addColumn<QString>("handler");
        QTest::addColumn<int>("calls");
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("focused");

        // The focus comes back to the edit after the handler, unless it aborts.
        QTest::newRow("mouse") << "mouse" << "normal" << "count" << 1 << "" << true;
        QTest::newRow("hot key") << "key" << "normal" << "count" << 1 << "" << true;
        QTest::newRow("hot key, disabled edit") << "key" << "disabled" << "count" << 0 << "" << false;
        QTest::newRow("disabled edit") << "call" << "disabled" << "count" << 0 << "" << false;
        QTest::newRow("hidden edit") << "call" << "hidden" << "count" << 0 << "" << false;
        QTest::newRow("handler aborts silently") << "call" << "normal" << "abort" << 1 << "" << false;
        // The error message hands the focus to the edit it names.
        QTest::newRow("handler fails") << "call" << "normal" << "error" << 1 << "Lookup failed." << true;
    }
    void editButtonClick()
    {
        QFETCH(QString, way);
        QFETCH(QString, state);
        QFETCH(QString, handler);
        QFETCH(QString, message);
        QFETCH(bool, focused);
        FieldForm<TQxEditButton> F;
        QVERIFY(F.Edit->setProperty("_HotKey", QKeySequence(Qt::Key_F4)));
        QCOMPARE(F.Edit->Button()->toolTip(), QKeySequence(Qt::Key_F4).toString(QKeySequence::NativeText));
        QVERIFY(F.Show());
        F.After->setFocus();
        F.Edit->setEnabled(state != QLatin1String("disabled"));
        F.Edit->setVisible(state != QLatin1String("hidden"));
        int Calls = 0;
        F.Edit->_OnButtonClick = [&](QObject* Sender) {
            QCOMPARE(Sender, F.Edit);
            ++Calls;
            F.After->setFocus();
            if (handler == QLatin1String("abort"))
                Abort();
            if (handler == QLatin1String("error"))
                throw EConvertError(QStringLiteral("Lookup failed."));
        };
        DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        if (way == QLatin1String("key"))
            QTest::keyClick(F.After, Qt::Key_F4);
        else if (way == QLatin1String("mouse"))
            QTest::mouseClick(F.Edit->Button(), Qt::LeftButton);
        else
            F.Edit->ButtonClick();
        QTEST(Calls, "calls");
        ExpectError(Driver, message, false);
        QTRY_COMPARE(F.Edit->hasFocus(), focused);
    }

};

QTEST_MAIN(TestEdit)
#include "tst_edit.moc"
