// The calendar picker: the day buttons of example months in both calendars, switching the
// calendar, stepping months, its keys, cancel and double-click, driven with real events.
#include "dialog_helper.h"

#include <Kesh.h>
#include <Kesh_Controls.h>
#include <Kesh_Form_Calendar.h>

#include <QCalendar>
#include <QDate>
#include <QRadioButton>
#include <QtTest>

using namespace Kesh;
using KeshTest::DialogDriver;

namespace {

// Weekday row of a Gregorian day: Saturday 1 .. Friday 7.
int RowOf(const QDate& Day) { return (Day.dayOfWeek() + 1) % 7 + 1; }

// The first day and the number of day buttons of the month of Date, from Qt's calendars:
// the tabular Hijri month begins the day before Qt's civil one, and shows one day less
// than it has.
void Expected(int Date, bool Hijri, int& First, int& Days)
{
    const int Year = Date / 10000, Month = Date / 100 % 100;
    if (!Hijri) {
        First = RowOf(QDate(Year, Month, 1));
        Days = QDate(Year, Month, 1).daysInMonth();
        return;
    }
    const QCalendar Civil(QCalendar::System::IslamicCivil);
    First = RowOf(Civil.dateFromParts(Year, Month, 1).addDays(-1));
    Days = Civil.daysInMonth(Month, Year) - 1;
}

// Shows the form as its opening does, without running it modally.
void Open(TKeshFormCalendar& Form, int Date, bool Hijri)
{
    Form.SetDate(Date);
    Form.SetHijri(Hijri);
    Form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&Form));
}

// The cell the frame stands round, as week * 10 + row; 0 when it is round none.
int FramedCell(const TKeshFormCalendar& Form)
{
    for (int W = 1; W <= 6; ++W)
        for (int R = 1; R <= 7; ++R)
            if (Form.Box->pos() == Form.DayButton(W, R)->pos() - QPoint(1, 1))
                return W * 10 + R;
    return 0;
}

QString ShotDir()
{
    const QString Dir = qEnvironmentVariable("KESH_SHOTS");
    return Dir.isEmpty() ? QString() : Dir + QLatin1Char('/');
}

} // namespace

class TestFormCalendar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { Application()->SetBiDiMode(bdLeftToRight); }

    void monthLayout_data()
    {
        QTest::addColumn<int>("date");
        QTest::addColumn<bool>("hijri");
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("days");
        QTest::newRow("starts on Saturday") << 20240601 << false << 1 << 30;
        QTest::newRow("starts on Friday, 31 days") << 20240315 << false << 7 << 31;
        QTest::newRow("leap February") << 20240229 << false << 6 << 29;
        QTest::newRow("starts on Sunday") << 20230101 << false << 2 << 31;
        QTest::newRow("30-day Hijri month") << 14450110 << true << 0 << 29;
        QTest::newRow("29-day Hijri month") << 14450215 << true << 0 << 28;
        QTest::newRow("Hijri starting Friday") << 14460701 << true << 0 << 0;
    }
    void monthLayout()
    {
        QFETCH(int, date);
        QFETCH(bool, hijri);
        QFETCH(int, first);
        QFETCH(int, days);
        int refFirst = 0, refDays = 0;
        Expected(date, hijri, refFirst, refDays);
        if (first)
            QCOMPARE(refFirst, first); // the row's own figures agree with Qt's calendars
        if (days)
            QCOMPARE(refDays, days);

        TKeshFormCalendar Form;
        Open(Form, date, hijri);
        int enabled = 0;
        for (int W = 1; W <= 6; ++W) {
            for (int R = 1; R <= 7; ++R) {
                const int Day = (W - 1) * 7 + R - (refFirst - 1);
                const bool IsDay = Day >= 1 && Day <= refDays;
                const TQxSpeedButton* B = Form.DayButton(W, R);
                QCOMPARE(B->text(), IsDay ? QString::number(Day) : QString());
                QCOMPARE(B->isEnabled(), IsDay);
                QCOMPARE(B->autoRaise(), !IsDay); // empty cells are flat
                enabled += B->isEnabled();
            }
        }
        QCOMPARE(enabled, refDays);
        const int Cell = (date % 100) + refFirst - 2; // zero-based cell of the day
        QCOMPARE(FramedCell(Form), (Cell / 7 + 1) * 10 + Cell % 7 + 1);
        QCOMPARE(Form.ToolBar->GetCaption(), DateToString(date));
        QCOMPARE(Form.G->GetItemIndex(), hijri ? 1 : 0);
    }

    // The last day of a Hijri month has no button: on that day the frame stays put.
    void lastHijriDayLeavesTheFrame()
    {
        TKeshFormCalendar Form;
        const QPoint Start = Form.Box->pos();
        Open(Form, 14450130, true);
        QCOMPARE(Form.Box->pos(), Start);
        QCOMPARE(Form.ToolBar->GetCaption(), QStringLiteral("30-01-1445"));
    }

    void switchingCalendars()
    {
        TKeshFormCalendar Form;
        Open(Form, 20240315, false);
        auto Buttons = Form.G->findChildren<QRadioButton*>();
        QCOMPARE(Buttons.size(), 2);
        // On the round mark: a radio button answers on its mark and text only.
        const QPoint Mark(8, Buttons[1]->height() / 2);
        QTest::mouseClick(Buttons[1], Qt::LeftButton, {}, Mark);
        QVERIFY(Form.GetHijri());
        QCOMPARE(Form.GetDate(), 14450906);
        QCOMPARE(Form.ToolBar->GetCaption(), QStringLiteral("06-09-1445"));
        QCOMPARE(Form.DayButton(1, 1)->text(), QString()); // 1 Ramadan 1445 was a Sunday
        QCOMPARE(Form.DayButton(1, 2)->text(), QStringLiteral("1"));
        QCOMPARE(FramedCell(Form), 17);
        QTest::mouseClick(Buttons[0], Qt::LeftButton, {}, Mark);
        QVERIFY(!Form.GetHijri());
        QCOMPARE(Form.GetDate(), 20240315);
        QCOMPARE(FramedCell(Form), 37);
    }

    void steppingMonths_data()
    {
        QTest::addColumn<int>("date");
        QTest::addColumn<bool>("hijri");
        QTest::addColumn<QString>("how");
        QTest::addColumn<int>("expected");
        QTest::newRow("PgDn clamps to February") << 20240131 << false << "PgDn" << 20240229;
        QTest::newRow("PgUp over the year") << 20240115 << false << "PgUp" << 20231215;
        QTest::newRow("next button") << 20241130 << false << "next" << 20241230;
        QTest::newRow("prior button") << 20240331 << false << "prior" << 20240229;
        // Hijri dates step a Gregorian month: 10 Ramadan 1445 is 19 March 2024, and 19 April
        // is 11 Shawwal; 5 Muharram 1445 is 22 July 2023, and 22 June is 4 Dhu al-Hijjah 1444.
        QTest::newRow("Hijri PgDn") << 14450910 << true << "PgDn" << 14451011;
        QTest::newRow("Hijri PgUp over the year") << 14450105 << true << "PgUp" << 14441204;
    }
    void steppingMonths()
    {
        QFETCH(int, date);
        QFETCH(bool, hijri);
        QFETCH(QString, how);
        TKeshFormCalendar Form;
        Open(Form, date, hijri);
        if (how == QLatin1String("PgDn"))
            QTest::keyClick(&Form, Qt::Key_PageDown);
        else if (how == QLatin1String("PgUp"))
            QTest::keyClick(&Form, Qt::Key_PageUp);
        else
            QTest::mouseClick(how == QLatin1String("next") ? Form.btnNextMonth : Form.btnPrevMonth, Qt::LeftButton);
        QTEST(Form.GetDate(), "expected");
        QCOMPARE(Form.ToolBar->GetCaption(), DateToString(Form.GetDate()));
        int first = 0, days = 0;
        Expected(Form.GetDate(), hijri, first, days);
        QCOMPARE(Form.DayButton(1, first)->text(), QStringLiteral("1"));
    }

    void clickingADay()
    {
        TKeshFormCalendar Form;
        Open(Form, 20240601, false);
        QTest::mouseClick(Form.DayButton(3, 4), Qt::LeftButton); // the 18th
        QCOMPARE(Form.GetDate(), 20240618);
        QCOMPARE(FramedCell(Form), 34);
        QCOMPARE(Form.ToolBar->GetCaption(), QStringLiteral("18-06-2024"));
        QTest::mouseClick(Form.DayButton(6, 7), Qt::LeftButton); // an empty cell
        QCOMPARE(Form.GetDate(), 20240618);
    }

    void selectDate_data()
    {
        QTest::addColumn<int>("date");
        QTest::addColumn<bool>("hijri");
        QTest::addColumn<QString>("answer");
        QTest::addColumn<bool>("confirmed");
        QTest::addColumn<int>("expected");
        QTest::newRow("Enter keeps the day") << 20240315 << false << "Return" << true << 20240315;
        QTest::newRow("keypad Enter") << 20240315 << false << "Enter" << true << 20240315;
        QTest::newRow("OK button") << 20240315 << false << "btnOk" << true << 20240315;
        QTest::newRow("Esc cancels") << 20240315 << false << "Escape" << false << 20240315;
        QTest::newRow("Cancel button") << 20240315 << false << "btnCancel" << false << 20240315;
        QTest::newRow("double-click a day") << 20240315 << false << "double-click W34" << true << 20240312;
        QTest::newRow("Hijri caller, Gregorian date") << 20240315 << true << "Return" << true << 14450906;
        QTest::newRow("Gregorian caller, Hijri date") << 14450906 << false << "Return" << true << 20240315;
        QTest::newRow("PgDn then Enter") << 20240315 << false << "PgDn Return" << true << 20240415;
        QTest::newRow("double-click, Hijri") << 14450906 << true << "double-click W13" << true << 14450902;
    }
    void selectDate()
    {
        QFETCH(int, date);
        QFETCH(bool, hijri);
        QFETCH(QString, answer);
        DialogDriver Driver;
        Driver.OnShown = [&](QWidget* Dialog) {
            auto* Form = qobject_cast<TKeshFormCalendar*>(Dialog);
            if (!Form)
                return;
            // Keys reach the window the user works in: the form, once it is active.
            QApplication::setActiveWindow(Form);
            if (!QTest::qWaitForWindowActive(Form))
                return;
            for (const QString& Step : answer.split(QLatin1Char(' '))) {
                static const QHash<QString, Qt::Key> Keys{{"Return", Qt::Key_Return}, {"Enter", Qt::Key_Enter},
                                                          {"PgDn", Qt::Key_PageDown}, {"Escape", Qt::Key_Escape}};
                if (Keys.contains(Step)) {
                    QTest::keyClick(Form->focusWidget() ? Form->focusWidget() : Form, Keys[Step]);
                } else if (Step.startsWith(QLatin1String("btn"))) {
                    QTest::mouseClick(Form->findChild<QAbstractButton*>(Step), Qt::LeftButton);
                } else if (Step.startsWith(QLatin1Char('W'))) {
                    auto* Day = Form->findChild<QAbstractButton*>(Step);
                    QTest::mouseClick(Day, Qt::LeftButton);
                    QTest::mouseDClick(Day, Qt::LeftButton);
                }
            }
        };
        int value = date;
        QTEST(SelectDate(value, hijri), "confirmed");
        QTEST(value, "expected");
        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(u'\n')));
        QCOMPARE(Driver.Seen.size(), 1);
    }

    void selectDateOpensOnToday()
    {
        DialogDriver Driver;
        int shown = -1, item = -1;
        Driver.OnShown = [&](QWidget* Dialog) {
            auto* Form = qobject_cast<TKeshFormCalendar*>(Dialog);
            shown = Form->GetDate();
            item = Form->G->GetItemIndex();
        };
        Driver.Press(Qt::Key_Escape);
        int value = 0;
        QVERIFY(!SelectDate(value, true));
        QCOMPARE(value, 0);
        QCOMPARE(shown, ConvertDate(DateToInt(Kesh::Date())));
        QVERIFY(IsHijri(shown));
        QCOMPARE(item, 1);
    }

    void arabicForm()
    {
        Application()->SetBiDiMode(bdRightToLeft);
        TKeshFormCalendar Form;
        Open(Form, 20240315, false);
        QCOMPARE(Form.layoutDirection(), Qt::RightToLeft);
        QCOMPARE(Form.windowTitle(), QStringLiteral(" التقويم"));
        QCOMPARE(Form.G->title(), QStringLiteral(" نوع التقويم "));
        QCOMPARE(Form.G->GetItems(), (QStringList{QStringLiteral("ميلادي"), QStringLiteral("هجري")}));
        QCOMPARE(Form.btnNextMonth->toolTip(), QStringLiteral("الشهر التالي [PgDn]"));
        QCOMPARE(Form.btnPrevMonth->toolTip(), QStringLiteral("الشهر السابق [PgUp]"));
        QCOMPARE(Form.DayLabel(1)->GetCaption(), QStringLiteral("السبت"));
        // Mirrored: the weekday captions on the right, week 1 next to them.
        QVERIFY(Form.DayLabel(1)->x() > Form.width() / 2);
        QVERIFY(Form.DayButton(1, 1)->x() > Form.DayButton(6, 1)->x());
        QVERIFY(Form.btnOk->mapTo(&Form, QPoint()).x() > Form.width() / 2);
        QCOMPARE(FramedCell(Form), 37);
        if (!ShotDir().isEmpty())
            Form.grab().save(ShotDir() + QStringLiteral("calendar_ar.png"));
    }

    void englishFormLooks()
    {
        TKeshFormCalendar Form;
        Open(Form, 20240315, false);
        QCOMPARE(Form.windowTitle(), QStringLiteral("Calendar"));
        QCOMPARE(Form.G->title(), QStringLiteral(" Calendar type "));
        QCOMPARE(Form.btnNextMonth->toolTip(), QStringLiteral("Next month [PgDn]"));
        QCOMPARE(Form.btnOk->toolTip(), QStringLiteral("[Enter]"));
        QVERIFY(Form.DayLabel(1)->x() < Form.DayButton(1, 1)->x());
        // The frame is red round the day; the day buttons stay clickable through it.
        const QImage Shot = Form.grab().toImage();
        const QPoint Corner = Form.Box->geometry().topLeft() + QPoint(1, 1);
        QCOMPARE(QColor(Shot.pixel(Corner)), QColor(Qt::red));
        if (!ShotDir().isEmpty())
            Shot.save(ShotDir() + QStringLiteral("calendar_en.png"));
    }

    void editButtonPicksAnIntegerDate()
    {
        QWidget Window;
        auto* Edit = new TQxEditButton(&Window);
        Edit->SetPickDate(true);
        Edit->SetAsInteger(20240315);
        int handlerCalls = 0;
        Edit->_OnButtonClick = [&](QObject*) { ++handlerCalls; };
        Window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Window));
        DialogDriver Driver;
        Driver.OnShown = [](QWidget* Dialog) {
            auto* Day = Dialog->findChild<QAbstractButton*>(QStringLiteral("W51")); // the 23rd
            QTest::mouseClick(Day, Qt::LeftButton);
            QTest::mouseDClick(Day, Qt::LeftButton);
        };
        QTest::mouseClick(Edit->Button(), Qt::LeftButton);
        QCOMPARE(Edit->AsInteger(), 20240323);
        QCOMPARE(handlerCalls, 1);
        QVERIFY(Driver.Errors.isEmpty());

        // Cancelled, or read-only: the text stays.
        Driver.Press(Qt::Key_Escape);
        Driver.OnShown = nullptr;
        QTest::mouseClick(Edit->Button(), Qt::LeftButton);
        QCOMPARE(Edit->AsInteger(), 20240323);
        Edit->setReadOnly(true);
        QTest::mouseClick(Edit->Button(), Qt::LeftButton);
        QCOMPARE(Driver.Seen.size(), 2);
    }
};

QTEST_MAIN(TestFormCalendar)
#include "tst_form_calendar.moc"
