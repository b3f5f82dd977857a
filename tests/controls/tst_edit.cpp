// The data-entry edit and the edit with a button: typing filter, focus keys, exit check,
// typed views, sizes, colours and the inner button.
#include "dialog_helper.h"
#include "field_form.h"

#include <Kesh.h>
#include <Kesh_Controls.h>

#include <QClipboard>
#include <QMenu>
#include <QVBoxLayout>
#include <QtTest>

using namespace Kesh;
using KeshTest::DialogDriver;
using KeshTest::FieldForm;
using KeshTest::Type;

namespace {

// The background in the middle of the box, as painted.
TColor PaintedColor(QWidget* W)
{
    const QImage Image = W->grab().toImage();
    return QColorToTColor(Image.pixelColor(Image.width() / 2, Image.height() / 2));
}

const double May1 = QDateToDateTime(QDate(2024, 5, 1));

} // namespace

class TestEdit : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }

    void cleanup()
    {
        FormatSettings.DecimalSeparator = QLatin1Char('.');
        Application()->SetBiDiMode(bdLeftToRight);
    }

    void defaultsAndProperties()
    {
        TQxEdit E;
        QCOMPARE(E.GetFixedSize(), 1);
        QCOMPARE(E.GetDataEntry(), DeAnything);
        QCOMPARE(E.GetColorDisabled(), TColor(0xF0F0F0));
        QCOMPARE(E.GetColor(), clWhite);
        QCOMPARE(E.size(), QSize(101, 21));
        QCOMPARE(E.font().family(), QStringLiteral("Microsoft Sans Serif"));
        QVERIFY(E.setProperty("_DataEntry", QStringLiteral("DeFloat")));
        QCOMPARE(E.GetDataEntry(), DeFloat);
        QVERIFY(E.setProperty("_FixedSize", 3));
        QCOMPARE(E.width(), 309);
        QVERIFY(E.setProperty("Readonly", true));
        QVERIFY(E.isReadOnly());
    }

    // The text starts at the reading side whatever its content; a chosen alignment stays.
    void readingSide_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("chosen");
        QTest::addColumn<int>("side");
        QTest::newRow("ltr") << false << false << int(Qt::AlignLeft);
        QTest::newRow("rtl") << true << false << int(Qt::AlignRight);
        QTest::newRow("ltr, centred by the program") << false << true << int(Qt::AlignHCenter);
        QTest::newRow("rtl, centred by the program") << true << true << int(Qt::AlignHCenter);
    }
    void readingSide()
    {
        QFETCH(bool, rtl);
        QFETCH(bool, chosen);
        QFETCH(int, side);
        QWidget Form;
        auto* Edit = new TQxEdit(&Form);
        auto* Time = new TQxTimeEdit(&Form);
        for (QLineEdit* Box : {static_cast<QLineEdit*>(Edit), static_cast<QLineEdit*>(Time)}) {
            Box->setText(QStringLiteral("1024"));
            if (chosen)
                Box->setAlignment(Qt::AlignHCenter | Qt::AlignVCenter);
        }
        // There and back again: the second switch must find its own alignment to replace.
        Form.setLayoutDirection(rtl ? Qt::LeftToRight : Qt::RightToLeft);
        Form.setLayoutDirection(rtl ? Qt::RightToLeft : Qt::LeftToRight);
        for (QLineEdit* Box : {static_cast<QLineEdit*>(Edit), static_cast<QLineEdit*>(Time)}) {
            QCOMPARE(int(Box->alignment() & Qt::AlignHorizontal_Mask & ~Qt::AlignAbsolute), side);
            QVERIFY(Box->alignment() & Qt::AlignVCenter);
        }
        if (chosen)
            return;
        // The digits are painted at that side: the first ink column is near it.
        Form.resize(300, 60);
        Edit->setGeometry(10, 10, 200, 21);
        const QImage Image = Edit->grab().toImage();
        int First = -1, Last = -1;
        for (int X = 3; X < Image.width() - 3; ++X)
            for (int Y = 3; Y < Image.height() - 3; ++Y)
                if (qGray(Image.pixel(X, Y)) < 128) {
                    if (First < 0)
                        First = X;
                    Last = X;
                }
        QVERIFY(First >= 0);
        if (rtl)
            QVERIFY2(Last > Image.width() - 40, qPrintable(QString::number(Last)));
        else
            QVERIFY2(First < 40, qPrintable(QString::number(First)));
    }

    void typingFilter_data()
    {
        QTest::addColumn<int>("entry");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("beeps");

        QTest::newRow("anything takes every character") << int(DeAnything) << true << "" << "a-.b 9" << "a-.b 9" << 0;
        QTest::newRow("integer refuses letters") << int(DeInteger) << false << "" << "1a2b" << "12" << 2;
        QTest::newRow("integer minus first, rtl") << int(DeInteger) << true << "" << "-5" << "-5" << 0;
        QTest::newRow("integer minus after a digit") << int(DeInteger) << false << "" << "5-" << "5" << 1;
        QTest::newRow("integer minus into set text") << int(DeInteger) << false << "7" << "-" << "7" << 1;
        QTest::newRow("integer minus after backspace") << int(DeInteger) << false << "7" << "\b-3" << "-3" << 0;
        QTest::newRow("integer refuses the point") << int(DeInteger) << false << "" << "1.5" << "15" << 1;
        QTest::newRow("integer refuses Arabic-Indic digits, rtl")
            << int(DeInteger) << true << "" << QStringLiteral("١٢") << "" << 2;
        QTest::newRow("float second point refused") << int(DeFloat) << false << "" << "-1.5.2" << "-1.52" << 1;
        QTest::newRow("float point after set text, rtl") << int(DeFloat) << true << "3.1" << ".4" << "3.14" << 1;
        QTest::newRow("float refuses comma and blank") << int(DeFloat) << false << "" << "1,5 2" << "152" << 2;
    }

    void typingFilter()
    {
        QFETCH(int, entry);
        QFETCH(bool, rtl);
        QFETCH(QString, start);
        QFETCH(QString, typed);
        FieldForm<TQxEdit> F(rtl);
        F.Edit->SetDataEntry(TxDataEntry(entry));
        F.Edit->setText(start);
        QVERIFY(F.Show());
        F.Edit->end(false);
        const int Beeps = BeepCount();
        Type(F.Edit, typed);
        QTEST(F.Edit->text(), "expected");
        QTEST(BeepCount() - Beeps, "beeps");
    }

    // Only typing is filtered: a pasted text goes in as it is.
    void pasteNotFiltered()
    {
        FieldForm<TQxEdit> F;
        F.Edit->SetDataEntry(DeInteger);
        F.Edit->setText(QStringLiteral("5"));
        QVERIFY(F.Show());
        F.Edit->end(false);
        QApplication::clipboard()->setText(QStringLiteral("-5x"));
        const int Beeps = BeepCount();
        QTest::keyClick(F.Edit, Qt::Key_V, Qt::ControlModifier);
        QCOMPARE(F.Edit->text(), QStringLiteral("5-5x"));
        QCOMPARE(BeepCount(), Beeps);
    }

    void focusKeys_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<int>("focus"); // -1 before, 0 the edit, 1 after

        QTest::newRow("Enter goes on") << false << int(Qt::Key_Return) << 0 << 1;
        QTest::newRow("keypad Enter goes on, rtl") << true << int(Qt::Key_Enter) << int(Qt::KeypadModifier) << 1;
        QTest::newRow("Down goes on") << false << int(Qt::Key_Down) << 0 << 1;
        QTest::newRow("Up goes back, rtl") << true << int(Qt::Key_Up) << 0 << -1;
        QTest::newRow("Shift+Down stays") << false << int(Qt::Key_Down) << int(Qt::ShiftModifier) << 0;
        QTest::newRow("Ctrl+Up stays") << false << int(Qt::Key_Up) << int(Qt::ControlModifier) << 0;
    }

    void focusKeys()
    {
        QFETCH(bool, rtl);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        QFETCH(int, focus);
        FieldForm<TQxEdit> F(rtl);
        F.Edit->SetDataEntry(DeInteger);
        F.Edit->setText(QStringLiteral("12"));
        QVERIFY(F.Show());
        const int Beeps = BeepCount();
        QTest::keyClick(F.Edit, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QWidget* Expected = focus < 0 ? F.Before : focus > 0 ? F.After : static_cast<QWidget*>(F.Edit);
        QTRY_VERIFY(Expected->hasFocus());
        QCOMPARE(F.Edit->text(), QStringLiteral("12"));
        QCOMPARE(BeepCount(), Beeps);
    }

    void enterOnHiddenWindow()
    {
        FieldForm<TQxEdit> F;
        F.Edit->setFocus();
        QTest::keyClick(F.Edit, Qt::Key_Return);
        QCOMPARE(F.Window.focusWidget(), F.Edit);
        QCOMPARE(F.Edit->text(), QString());
    }

    void exitCheck_data()
    {
        QTest::addColumn<int>("entry");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("decimal");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("message");

        const QString En = QStringLiteral("Incorrect number.");
        const QString Ar = QStringLiteral("الرقم غير صحيح.");
        QTest::newRow("integer fine") << int(DeInteger) << "123" << "." << false << "";
        QTest::newRow("integer with letters") << int(DeInteger) << "12a" << "." << false << En;
        QTest::newRow("integer with letters, rtl") << int(DeInteger) << "12a" << "." << true << Ar;
        QTest::newRow("integer beyond 32 bits") << int(DeInteger) << "9999999999" << "." << false << "";
        QTest::newRow("integer beyond 64 bits") << int(DeInteger) << "99999999999999999999" << "." << false << En;
        QTest::newRow("integer blanks only") << int(DeInteger) << "   " << "." << false << "";
        QTest::newRow("integer trailing blank, rtl") << int(DeInteger) << "5 " << "." << true << Ar;
        QTest::newRow("float with point, comma locale") << int(DeFloat) << "1.5" << "," << false << En;
        QTest::newRow("float with comma, comma locale") << int(DeFloat) << "1,5" << "," << false << "";
        QTest::newRow("anything is never checked") << int(DeAnything) << "abc" << "." << false << "";
    }

    void exitCheck()
    {
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
        QVERIFY(F.Show());

        DialogDriver Driver;
        if (!message.isEmpty())
            Driver.Click(QStringLiteral("btnOk"));
        QList<int> DialogsAtExit; // the dialogs already shown each time Exit fired
        connect(F.Edit, &TQxCustomEdit::Exit, this, [&] { DialogsAtExit << int(Driver.Seen.size()); });
        QTest::keyClick(F.Edit, Qt::Key_Tab);

        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(u'\n')));
        QCOMPARE(F.Edit->text(), text);
        if (message.isEmpty()) {
            QCOMPARE(Driver.Seen.size(), 0);
            QCOMPARE(DialogsAtExit, QList<int>{0});
            QTRY_VERIFY(F.After->hasFocus());
            return;
        }
        QCOMPARE(Driver.Seen.size(), 1);
        QCOMPARE(Driver.Seen[0].Text, message);
        QCOMPARE(Driver.Seen[0].Title, rtl ? QStringLiteral("خطأ") : QStringLiteral("Error"));
        QCOMPARE(DialogsAtExit, QList<int>{1}); // Exit fires after the failed check
        QTRY_VERIFY(F.Edit->hasFocus());
    }

    // A speed button takes no focus, yet clicking it (by mouse or by its hot key) runs the
    // focused edit's check first: the error is shown before the button's own click.
    void speedButtonRunsTheCheckFirst_data()
    {
        QTest::addColumn<bool>("byHotKey");
        QTest::addColumn<bool>("rtl");
        QTest::newRow("mouse") << false << false;
        QTest::newRow("mouse, rtl") << false << true;
        QTest::newRow("hot key") << true << false;
    }
    void speedButtonRunsTheCheckFirst()
    {
        QFETCH(bool, byHotKey);
        QFETCH(bool, rtl);
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        FieldForm<TQxEdit> F(rtl);
        F.Edit->SetDataEntry(DeInteger);
        F.Edit->setText(QStringLiteral("12a"));
        auto* Save = new TQxSpeedButton(&F.Window);
        Save->setGeometry(200, 40, 60, 24);
        Save->SetCaptionE(QStringLiteral("Save"));
        Save->SetHotKey(QKeySequence(Qt::CTRL | Qt::Key_S));
        QVERIFY(F.Show());

        DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        QList<int> DialogsAtClick;
        connect(Save, &QAbstractButton::clicked, this, [&] { DialogsAtClick << int(Driver.Seen.size()); });
        if (byHotKey)
            QTest::keyClick(F.Edit, Qt::Key_S, Qt::ControlModifier);
        else
            QTest::mouseClick(Save, Qt::LeftButton);

        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(u'\n')));
        QCOMPARE(Driver.Seen.size(), 1);
        QCOMPARE(Driver.Seen[0].Text, rtl ? QStringLiteral("الرقم غير صحيح.") : QStringLiteral("Incorrect number."));
        QCOMPARE(DialogsAtClick, QList<int>{1});
        QCOMPARE(F.Edit->text(), QStringLiteral("12a"));  // nothing typed is lost
        QTRY_VERIFY(F.Edit->hasFocus());
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
        QFETCH(double, asDateTime);
        TQxEdit E;
        E.setText(text);
        QTEST(E.AsInteger(), "asInteger");
        QTEST(E.AsFloat(), "asFloat");
        QTEST(E.IsEmpty(), "empty");
        QCOMPARE(E.AsDateTime(), asDateTime);
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
        QTest::newRow("date-time") << "datetime" << May1 + OneFiveNine << "." << "5/1/2024 13:05:09"
                                   << May1 + OneFiveNine;
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

    void sizeRule_data()
    {
        QTest::addColumn<int>("step");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<int>("width"); // 0: the width asked for stays

        QTest::newRow("0 leaves the width free") << 0 << false << 0;
        QTest::newRow("1") << 1 << false << 101;
        QTest::newRow("2, rtl") << 2 << true << 205;
        QTest::newRow("3") << 3 << false << 309;
        QTest::newRow("4") << 4 << false << 413;
        QTest::newRow("5, rtl") << 5 << true << 517;
        QTest::newRow("6") << 6 << false << 621;
        QTest::newRow("7 leaves the width free, rtl") << 7 << true << 0;
    }

    void sizeRule()
    {
        QFETCH(int, step);
        QFETCH(bool, rtl);
        QFETCH(int, width);
        FieldForm<TQxEdit> F(rtl);
        F.Edit->SetFixedSize(step);
        QCOMPARE(F.Edit->width(), width ? width : 101); // applied at once
        QVERIFY(F.Show());
        F.Edit->resize(250, 40);
        QCOMPARE(F.Edit->size(), QSize(width ? width : 250, 21));
        F.Edit->setGeometry(20, 30, 90, 10);
        QCOMPARE(F.Edit->geometry(), QRect(20, 30, width ? width : 90, 21));
    }

    void sizeInLayout()
    {
        QWidget Window;
        auto* Layout = new QVBoxLayout(&Window);
        auto* Standard = new TQxEdit;
        auto* Free = new TQxEdit;
        Standard->SetFixedSize(2);
        Free->SetFixedSize(0);
        Layout->addWidget(Standard);
        Layout->addWidget(Free);
        Layout->addStretch();
        Window.resize(600, 200);
        Window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Window));
        QTRY_COMPARE(Standard->size(), QSize(205, 21));
        QCOMPARE(Free->height(), 21);
        QVERIFY(Free->width() > 500);
        Standard->SetFixedSize(3);
        QTRY_COMPARE(Standard->size(), QSize(309, 21));
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

    void editButton_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::newRow("left to right") << false;
        QTest::newRow("right to left") << true;
    }

    // The button at the trailing edge, text kept clear of it, on a direction change too.
    void editButton()
    {
        QFETCH(bool, rtl);
        FieldForm<TQxEditButton> F(rtl);
        F.Edit->SetFixedSize(2);
        QVERIFY(F.Show());
        TQxBitBtn* Button = F.Edit->Button();
        QVERIFY(Button->isVisible());
        QCOMPARE(Button->text(), QStringLiteral("..."));
        QVERIFY(Button->font().bold());
        QCOMPARE(Button->focusPolicy(), Qt::NoFocus);
        QVERIFY(F.Edit->rect().contains(Button->geometry()));
        for (bool RightToLeft : {rtl, !rtl, rtl}) {
            F.Window.setLayoutDirection(RightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
            const int Frame = Button->y(); // the same frame at every edge
            QCOMPARE(Button->geometry(),
                     QRect(RightToLeft ? Frame : 205 - Frame - 18, Frame, 18, 21 - 2 * Frame));
            QCOMPARE(F.Edit->textMargins(), RightToLeft ? QMargins(20, 0, 0, 0) : QMargins(0, 0, 20, 0));
        }

        int Calls = 0;
        QObject* Sender = nullptr;
        F.Edit->_OnButtonClick = [&](QObject* S) {
            ++Calls;
            Sender = S;
            F.After->setFocus(); // the focus comes back to the edit afterwards
        };
        QTest::mouseClick(Button, Qt::LeftButton);
        QCOMPARE(Calls, 1);
        QCOMPARE(Sender, F.Edit);
        QTRY_VERIFY(F.Edit->hasFocus());
    }

    void editButtonClick_data()
    {
        QTest::addColumn<QString>("state");
        QTest::addColumn<QString>("handler");
        QTest::addColumn<int>("calls");
        QTest::addColumn<QString>("message");
        QTest::addColumn<bool>("focused");

        QTest::newRow("disabled edit") << "disabled" << "count" << 0 << "" << false;
        QTest::newRow("hidden edit") << "hidden" << "count" << 0 << "" << false;
        QTest::newRow("handler aborts silently") << "normal" << "abort" << 1 << "" << false;
        // The error message hands the focus to the edit it names.
        QTest::newRow("handler fails") << "normal" << "error" << 1 << "Lookup failed." << true;
    }

    void editButtonClick()
    {
        QFETCH(QString, state);
        QFETCH(QString, handler);
        QFETCH(QString, message);
        QFETCH(bool, focused);
        FieldForm<TQxEditButton> F;
        QVERIFY(F.Show());
        F.After->setFocus();
        F.Edit->setEnabled(state != QLatin1String("disabled"));
        F.Edit->setVisible(state != QLatin1String("hidden"));
        int Calls = 0;
        F.Edit->_OnButtonClick = [&](QObject*) {
            ++Calls;
            if (handler == QLatin1String("abort"))
                Abort();
            if (handler == QLatin1String("error"))
                throw EConvertError(QStringLiteral("Lookup failed."));
        };
        DialogDriver Driver;
        if (!message.isEmpty())
            Driver.Click(QStringLiteral("btnOk"));
        F.Edit->ButtonClick();
        QTEST(Calls, "calls");
        QVERIFY(Driver.Errors.isEmpty());
        QCOMPARE(Driver.Seen.size(), message.isEmpty() ? 0 : 1);
        if (!message.isEmpty())
            QCOMPARE(Driver.Seen[0].Text, message);
        QTRY_COMPARE(F.Edit->hasFocus(), focused);
    }

    void editButtonHotKey()
    {
        FieldForm<TQxEditButton> F;
        QVERIFY(F.Edit->setProperty("_HotKey", QKeySequence(Qt::Key_F4)));
        QCOMPARE(F.Edit->GetHotKey(), QKeySequence(Qt::Key_F4));
        QCOMPARE(F.Edit->Button()->toolTip(), QKeySequence(Qt::Key_F4).toString(QKeySequence::NativeText));
        int Calls = 0;
        F.Edit->_OnButtonClick = [&](QObject*) { ++Calls; };
        QVERIFY(F.Show());
        F.After->setFocus();
        QTest::keyClick(F.After, Qt::Key_F4);
        QCOMPARE(Calls, 1);
        QTRY_VERIFY(F.Edit->hasFocus());

        F.After->setFocus();
        F.Edit->setEnabled(false);
        QTest::keyClick(F.After, Qt::Key_F4);
        QCOMPARE(Calls, 1);
        QVERIFY(F.After->hasFocus());
    }
};

QTEST_MAIN(TestEdit)
#include "tst_edit.moc"
