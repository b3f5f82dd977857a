// Kesh for Qt — TKeshFormCalendar: the month view behind SelectDate.
#pragma once
#include "platform/kesh_global.h"
#include <QDialog>
#include <memory>

class QFrame;

namespace Kesh {

class TQxForm;
class TQxLabel;
class TQxPanel;
class TQxRadioGroup;
class TQxSpeedButton;

/// A small modal month view of integer dates, Gregorian or Hijri: 42 day buttons in six
/// week columns of seven weekday rows (Saturday first), a red frame round the day on view, a
/// choice of calendar and a tool bar with OK, Cancel, previous and next month.
///
/// The form's own direction is left to right unless the application reads right to left
/// when it is built: then the form mirrors itself and shows its Arabic texts. exec() gives
/// 1 for OK (Enter, or a double-click on a day) and 2 for Cancel (Esc); PgUp and PgDn step
/// the month. The components are public under the names they carry as objectName.
class KESH_EXPORT TKeshFormCalendar : public QDialog
{
    Q_OBJECT
    Q_PROPERTY(int Date READ GetDate WRITE SetDate)
    Q_PROPERTY(bool Hijri READ GetHijri WRITE SetHijri)

public:
    static constexpr int Weeks = 6;    ///< week columns W1x..W6x
    static constexpr int WeekDays = 7; ///< weekday rows Wx1 (Saturday)..Wx7 (Friday)

    explicit TKeshFormCalendar(QWidget* AOwner = nullptr);
    ~TKeshFormCalendar() override;

    /// The integer date on view, in the view's calendar. Setting it before the form opens
    /// only stores it; the view is drawn when the form opens.
    int GetDate() const;
    void SetDate(int Value);
    /// The calendar of the view: false Gregorian, true Hijri.
    bool GetHijri() const;
    void SetHijri(bool Value);

    /// The day button of week column Week (1..6) and weekday row Row (1..7); null outside.
    TQxSpeedButton* DayButton(int Week, int Row) const;
    /// The weekday caption of row Row (1..7); null outside.
    TQxLabel* DayLabel(int Row) const;

    // The form's handlers; Sender is the component that raised the event.
    /// Before the form opens: selects the calendar, shows the date and draws the month.
    void FxBeforeOpen(QObject* Sender, bool& Cancel);
    /// The calendar type chosen in G: converts the date on view when it changes.
    void GClick(QObject* Sender);
    /// A day button: that day of the month on view becomes the date.
    void Calendar_Button_Click(QObject* Sender);
    /// A double-click on a day button: as OK.
    void Calendar_Double_Click(QObject* Sender);
    /// The tool bar: OK ends with 1, Cancel with 2, the month buttons step the month.
    void Button_Click(QObject* Sender);
    /// Makes the date the tool bar's English caption reads the date on view, when it is one.
    void F1Change(QObject* Sender);

    /// Fills the day buttons for the month on view and moves the frame to the day.
    void DrawCalendar();
    /// Moves the frame round the first day button captioned with the day of Date.
    void FocusCurDay();
    /// The weekday row (1 Saturday .. 7 Friday) of the first day of Date's Hijri month.
    int GetFirstHijriDay() const;

    QFrame* const Bevel1;
    QWidget* const Box;          ///< the red frame round the day on view
    TQxRadioGroup* const G;      ///< the calendar type
    TQxPanel* const ToolBar;     ///< its caption shows the date on view
    TQxSpeedButton* const btnOk;
    TQxSpeedButton* const btnCancel;
    TQxSpeedButton* const btnPrevMonth;
    TQxSpeedButton* const btnNextMonth;
    TQxForm* const Fx;

protected:
    bool eventFilter(QObject* Watched, QEvent* Event) override;

private:
    void BuildDays();
    void BuildToolBar();
    void ApplyArabic();
    void ShowDate();
    void ClearCell(int Week, int Row);

    std::unique_ptr<struct TKeshFormCalendarPrivate> const d;
};

} // namespace Kesh
