// The time edit: typing, the parser and the "HH:MM" text on leaving, the range check,
// typed views and the size rule that holds only outside layouts.
#include "field_form.h"

#include <Kesh.h>
#include <Kesh_Controls.h>

#include <QVBoxLayout>
#include <QtTest>

using namespace Kesh;
using namespace KeshTest;

class TestTimeEdit : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        FormatSettings.DecimalSeparator = QLatin1Char('.');
    }

    void cleanup() { Application()->SetBiDiMode(bdLeftToRight); }

    void typingFilter_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<int>("beeps");

        QTest::newRow("each separator once") << false << "07:3.5" << "07:3.5" << 0;
        QTest::newRow("second point refused") << false << "1..2" << "1.2" << 1;
        QTest::newRow("second colon refused, rtl") << true << "1::2" << "1:2" << 1;
        QTest::newRow("letters refused") << false << "1a2" << "12" << 1;
        QTest::newRow("minus refused") << false << "-5" << "5" << 1;
        QTest::newRow("blank refused") << false << "1 2" << "12" << 1;
        QTest::newRow("Arabic-Indic digit refused, rtl") << true << "٧" << "" << 1;
        QTest::newRow("backspace passes") << false << "12:3\b" << "12:" << 0;
    }
    void typingFilter()
    {
        QFETCH(bool, rtl);
        QFETCH(QString, typed);
        FieldForm<TQxTimeEdit> F(rtl);
        QVERIFY(F.Show());
        const int Beeps = BeepCount();
        Type(F.Edit, typed);
        QTEST(F.Edit->text(), "expected");
        QTEST(BeepCount() - Beeps, "beeps");
    }

    // What is typed, its value, and the text once the focus has left.
    void leaving_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("value");

        QTest::newRow("hour alone") << false << "7" << "07:00" << 700;
        QTest::newRow("short minute gets its zero behind") << false << "7.3" << "07:30" << 730;
        QTest::newRow("no separator: two digits of hours") << false << "1234" << "12:00" << 1200;
        QTest::newRow("empty box") << false << "" << "00:00" << 0;
        QTest::newRow("9:5 is 9:50, rtl") << true << "9:5" << "09:50" << 950;
        QTest::newRow("long parts cut to two digits") << false << "123:456" << "12:45" << 1245;
        QTest::newRow("third part ignored") << false << "7:3.5" << "07:30" << 730;
        QTest::newRow("a leading separator is skipped") << false << ":30" << "30:00" << 3000;
    }
    void leaving()
    {
        QFETCH(bool, rtl);
        QFETCH(QString, typed);
        QFETCH(int, value);
        FieldForm<TQxTimeEdit> F(rtl);
        QVERIFY(F.Show());
        Type(F.Edit, typed);
        QCOMPARE(F.Edit->AsInteger(), value);
        QCOMPARE(F.Edit->AsFloat(), double(value));
        QCOMPARE(F.Edit->AsDate(), IntToTime(value));
        QSignalSpy Exits(F.Edit, &TQxCustomEdit::Exit);
        QTest::keyClick(F.Edit, Qt::Key_Tab);
        QTEST(F.Edit->text(), "shown");
        QCOMPARE(Exits.count(), 1);
        QTRY_VERIFY(F.After->hasFocus());
    }

    // Exit comes before the check; a refused time keeps its text and the focus.
    void checkTime_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("check");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QString>("shown");

        const QString En = QStringLiteral("Incorrect time.");
        const QString Ar = QStringLiteral("الوقت غير صحيح.");
        QTest::newRow("24:00 refused") << "24:00" << true << false << En << "24:00";
        QTest::newRow("24:00 refused, rtl") << "24:00" << true << true << Ar << "24:00";
        QTest::newRow("23:59 accepted") << "23:59" << true << false << "" << "23:59";
        QTest::newRow("24:00 without the check") << "24:00" << false << false << "" << "24:00";
        QTest::newRow("the bound is on the number") << "12.75" << true << false << "" << "12:75";
        QTest::newRow("negative refused, rtl") << "-1:00" << true << true << Ar << "-1:00";
        QTest::newRow("empty accepted") << "" << true << false << "" << "00:00";
        // Letters can only be pasted; the parser refuses them with the conversion error.
        QTest::newRow("letters") << "ab:30" << false << false << "'ab' is not a valid integer value" << "ab:30";
    }
    void checkTime()
    {
        QFETCH(QString, text);
        QFETCH(bool, check);
        QFETCH(bool, rtl);
        QFETCH(QString, message);
        Application()->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        FieldForm<TQxTimeEdit> F(rtl);
        QVERIFY(F.Edit->setProperty("_CheckTime", check));
        F.Edit->setText(text);
        QVERIFY(F.Show());

        DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOk"));
        QList<int> DialogsAtExit;
        connect(F.Edit, &TQxCustomEdit::Exit, this, [&] { DialogsAtExit << int(Driver.Seen.size()); });
        QTest::keyClick(F.Edit, Qt::Key_Tab);

        ExpectError(Driver, message, rtl);
        QCOMPARE(DialogsAtExit, QList<int>{0});
        QTEST(F.Edit->text(), "shown");
        QTRY_VERIFY((message.isEmpty() ? static_cast<QWidget*>(F.After) : F.Edit)->hasFocus());
    }

    void noNumber()
    {
        TQxTimeEdit E;
        E.setText(QStringLiteral("ab:30"));
        QVERIFY_THROWS_EXCEPTION(EConvertError, E.AsIntegerTime());
        E.setText(QStringLiteral("  "));
        QVERIFY(E.IsEmpty()); // empty to the eye, yet no number
        QVERIFY_THROWS_EXCEPTION(EConvertError, E.AsIntegerTime());
    }

    void setters_data()
    {
        QTest::addColumn<QString>("view");
        QTest::addColumn<double>("value");
        QTest::addColumn<QString>("expected");

        const double HalfPast12 = (12 * 60 + 30) / 1440.0;
        QTest::newRow("date 0 empties") << "date" << 0.0 << "";
        QTest::newRow("date with a day part") << "date" << 45413.75 << "18:00";
        QTest::newRow("date-time drops seconds") << "datetime" << HalfPast12 + 59 / 86400.0 << "12:30";
        QTest::newRow("date before day 0") << "date" << -1.25 << "06:00";
        QTest::newRow("date out of range") << "date" << 1e10 << "#Error#";
        QTest::newRow("integer") << "integer" << 905.0 << "09:05";
        QTest::newRow("integer midnight empties") << "integer" << 0.0 << "";
        QTest::newRow("integer 24:00 is no time") << "integer" << 2400.0 << "";
        QTest::newRow("integer 60 minutes is no time") << "integer" << 1260.0 << "";
        QTest::newRow("float drops the fraction") << "float" << 1230.75 << "12:30";
        QTest::newRow("float beyond 32 bits") << "float" << 1e12 << "";
        QTest::newRow("float beyond 64 bits") << "float" << 1e30 << "#Error#";
    }
    void setters()
    {
        QFETCH(QString, view);
        QFETCH(double, value);
        TQxTimeEdit E;
        E.setText(QStringLiteral("old"));
        if (view == QLatin1String("date"))
            E.SetAsDate(value);
        else if (view == QLatin1String("datetime"))
            E.SetAsDateTime(value);
        else if (view == QLatin1String("integer"))
            E.SetAsInteger(int(value));
        else
            E.SetAsFloat(value);
        QTEST(E.text(), "expected");
    }

    // Placed by hand the step fixes the width; in a layout it is not even stored.
    void sizeRule_data()
    {
        QTest::addColumn<bool>("inLayout");
        QTest::addColumn<bool>("rtl");
        QTest::newRow("placed by hand, rtl") << false << true;
        QTest::newRow("in a layout") << true << false;
    }
    void sizeRule()
    {
        QFETCH(bool, inLayout);
        QFETCH(bool, rtl);
        QWidget Window;
        Window.setLayoutDirection(rtl ? Qt::RightToLeft : Qt::LeftToRight);
        Window.resize(600, 200);
        auto* E = new TQxTimeEdit(&Window);
        if (inLayout)
            (new QVBoxLayout(&Window))->addWidget(E, 0, Qt::AlignTop);
        Window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Window));
        E->SetFixedSize(2);
        if (!inLayout) {
            E->resize(300, 40);
            QCOMPARE(E->size(), QSize(205, 21));
            E->SetFixedSize(0);
            E->resize(300, 40);
            QCOMPARE(E->size(), QSize(300, 21));
            return;
        }
        QCOMPARE(E->GetFixedSize(), 1);
        QTRY_VERIFY(E->width() > 500);
        const QSize Given = E->size();
        E->resize(120, 40);
        QCOMPARE(E->size(), QSize(120, 40));
        Window.resize(601, 200); // the layout places it again
        QTRY_COMPARE(E->size(), QSize(Given.width() + 1, Given.height()));
    }
};

QTEST_MAIN(TestTimeEdit)
#include "tst_time_edit.moc"
