// Kesh for Qt — the calendar form: its components, its Arabic texts and its handlers.
#include "form_calendar.h"
#include "form_calendar_p.h"
#include "integer_dates.h"

#include "controls/buttons.h"
#include "controls/form_manager.h"
#include "controls/label.h"
#include "controls/panel.h"
#include "controls/radio_group.h"
#include "platform/application.h"
#include "platform/widgets.h"

#include <QEvent>
#include <QFrame>
#include <QLayout>
#include <QPainter>
#include <QShortcut>

namespace Kesh {

namespace {

constexpr int ClientWidth = 225;
constexpr int ClientHeight = 270;
constexpr int Border = 4;
constexpr int CellSize = 25;
constexpr int CellStep = 24;
constexpr int FirstCellLeft = 75;
constexpr int FirstCellTop = 4;
constexpr TColor FormColor = 0xEBFAFF;
constexpr TColor ToolBarColor = 0xD8E9EC;

const char* const WeekDayNames[2][TKeshFormCalendar::WeekDays] = {
    {"Saturday", "Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday"},
    {"السبت", "الأحد", "الإثنين", "الثلاثاء", "الأربعاء", "الخميس", "الجمعة"}};

TFont FormFont()
{
    TFont Font;
    Font.SetName(QStringLiteral("Tahoma"));
    Font.SetSize(8);
    return Font;
}

// The red frame: a clear square with a pen of width 2, that lets clicks through.
class TDayFrame : public QWidget
{
public:
    explicit TDayFrame(QWidget* Parent) : QWidget(Parent)
    {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        resize(CellSize + 2, CellSize + 2);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter Painter(this);
        Painter.setPen(QPen(Qt::red, 2));
        Painter.setBrush(Qt::NoBrush);
        Painter.drawRect(QRectF(rect()).adjusted(1, 1, -1, -1));
    }
};

TQxSpeedButton* ToolButton(QWidget* Parent, const char* Name, int Left)
{
    auto* Button = new TQxSpeedButton(Parent);
    Button->setObjectName(QLatin1String(Name));
    Button->setGeometry(Left, 2, 32, 34);
    Button->setAutoRaise(true);
    Button->setCursor(Qt::PointingHandCursor);
    Button->setToolButtonStyle(Qt::ToolButtonIconOnly);
    Button->setIconSize(QSize(24, 24));
    return Button;
}

} // namespace

TKeshFormCalendar::TKeshFormCalendar(QWidget* AOwner)
    : QDialog(AOwner, Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint
                          | Qt::WindowCloseButtonHint)
    , Bevel1(new QFrame(this))
    , Box(new TDayFrame(this))
    , G(new TQxRadioGroup(this))
    , ToolBar(new TQxPanel(this))
    , btnOk(ToolButton(ToolBar, "btnOk", 2))
    , btnCancel(ToolButton(ToolBar, "btnCancel", 34))
    , btnPrevMonth(ToolButton(ToolBar, "btnPrevMonth", ClientWidth - 2 * Border - 2 - 64))
    , btnNextMonth(ToolButton(ToolBar, "btnNextMonth", ClientWidth - 2 * Border - 2 - 32))
    , Fx(new TQxForm(this, QStringLiteral("Fx")))
    , d(new TKeshFormCalendarPrivate)
{
    setObjectName(QStringLiteral("KeshFormCalendar"));
    // Not parent-directed: the form is left to right unless built under right to left.
    setLayoutDirection(Qt::LeftToRight);
    setFixedSize(ClientWidth, ClientHeight);
    QPalette Palette = palette();
    Palette.setColor(QPalette::Window, TColorToQColor(FormColor));
    setPalette(Palette);
    setAutoFillBackground(true);
    ApplyFont(this, FormFont());

    Bevel1->setObjectName(QStringLiteral("Bevel1"));
    Bevel1->setFrameStyle(QFrame::Box | QFrame::Sunken);
    Bevel1->setGeometry(Border, Border, ClientWidth - 2 * Border, 177);

    BuildDays();
    Box->setObjectName(QStringLiteral("Box"));
    Box->move(d->Cells[0][0]->x() - 1, d->Cells[0][0]->y() - 1);
    Box->raise();

    G->setObjectName(QStringLiteral("G"));
    G->setGeometry(Border, Border + 177, ClientWidth - 2 * Border, 47);
    G->SetColumns(2);
    // The design's 47 pixels hold the title and one row of items only with slim margins.
    if (QLayout* Items = G->layout())
        Items->setContentsMargins(8, 0, 8, 2);
    G->SetCaptionE(QStringLiteral(" Calendar type "));
    G->SetCaptionA(QStringLiteral(" نوع التقويم "));
    G->SetItems_e({QStringLiteral("Gregorian"), QStringLiteral("Hijri")});
    G->SetItems_a({QStringLiteral("ميلادي"), QStringLiteral("هجري")});
    connect(G, &TQxRadioGroup::ItemIndexChanged, this, [this] { GClick(G); });

    BuildToolBar();

    Fx->SetCaptionE(QStringLiteral("Calendar"));
    Fx->SetCaptionA(QStringLiteral(" التقويم"));
    setWindowTitle(Fx->GetCaptionE());
    Fx->BeforeOpen = [this](QObject* Sender, bool& Cancel) { FxBeforeOpen(Sender, Cancel); };

    if (Application()->BiDiMode() == bdRightToLeft)
        ApplyArabic();
}

TKeshFormCalendar::~TKeshFormCalendar() = default;

void TKeshFormCalendar::BuildDays()
{
    for (int Row = 1; Row <= WeekDays; ++Row) {
        auto* Label = new TQxLabel(this);
        Label->setObjectName(QStringLiteral("LD%1").arg(Row));
        Label->setGeometry(Border, 5 + CellStep * (Row - 1), 69, 22);
        Label->SetAlignment(Qt::AlignRight);
        Label->SetLayout(tlCenter);
        Label->SetCaptionE(QString::fromUtf8(WeekDayNames[0][Row - 1]));
        Label->SetCaptionA(QString::fromUtf8(WeekDayNames[1][Row - 1]));
        d->Days[Row - 1] = Label;
    }
    for (int Week = 1; Week <= Weeks; ++Week) {
        for (int Row = 1; Row <= WeekDays; ++Row) {
            auto* Button = new TQxSpeedButton(this);
            Button->setObjectName(QStringLiteral("W%1%2").arg(Week).arg(Row));
            Button->setGeometry(FirstCellLeft + CellStep * (Week - 1), FirstCellTop + CellStep * (Row - 1), CellSize,
                                CellSize);
            Button->setToolButtonStyle(Qt::ToolButtonTextOnly);
            connect(Button, &QAbstractButton::clicked, this, [this, Button] { Calendar_Button_Click(Button); });
            Button->installEventFilter(this);
            d->Cells[Week - 1][Row - 1] = Button;
        }
    }
}

void TKeshFormCalendar::BuildToolBar()
{
    ToolBar->setObjectName(QStringLiteral("ToolBar"));
    ToolBar->setGeometry(Border, ClientHeight - Border - 38, ClientWidth - 2 * Border, 38);
    ToolBar->SetColor(ToolBarColor);
    const struct
    {
        TQxSpeedButton* Button;
        const char* Glyph;
        QString HintE, HintA;
        QKeySequence Key;
    } Tools[] = {
        {btnOk, "ok", QStringLiteral("[Enter]"), QStringLiteral("[Enter]"), QKeySequence(Qt::Key_Return)},
        {btnCancel, "cancel", QStringLiteral("[Esc]"), QStringLiteral("[Esc]"), QKeySequence(Qt::Key_Escape)},
        {btnPrevMonth, "prior", QStringLiteral("Previous month [PgUp]"), QStringLiteral("الشهر السابق [PgUp]"),
         QKeySequence(Qt::Key_PageUp)},
        {btnNextMonth, "next", QStringLiteral("Next month [PgDn]"), QStringLiteral("الشهر التالي [PgDn]"),
         QKeySequence(Qt::Key_PageDown)},
    };
    for (const auto& Tool : Tools) {
        Tool.Button->SetHintE(Tool.HintE);
        Tool.Button->SetHintA(Tool.HintA);
        Tool.Button->SetHotKey(Tool.Key);
        Tool.Button->setIcon(CalendarGlyph(QLatin1String(Tool.Glyph), Qt::LeftToRight));
        TQxSpeedButton* Button = Tool.Button;
        connect(Button, &QAbstractButton::clicked, this, [this, Button] { Button_Click(Button); });
    }
    // The keypad's Enter confirms as Return does.
    auto* Enter = new QShortcut(QKeySequence(Qt::Key_Enter), this);
    connect(Enter, &QShortcut::activated, btnOk, [this] { btnOk->Click(); });
}

void TKeshFormCalendar::ApplyArabic()
{
    MirrorChildren(this);
    setLayoutDirection(Qt::RightToLeft);
    setWindowTitle(Fx->GetCaptionA());
    btnPrevMonth->setIcon(CalendarGlyph(QStringLiteral("prior"), Qt::RightToLeft));
    btnNextMonth->setIcon(CalendarGlyph(QStringLiteral("next"), Qt::RightToLeft));
}

int TKeshFormCalendar::GetDate() const { return d->Date; }
void TKeshFormCalendar::SetDate(int Value) { d->Date = Value; }
bool TKeshFormCalendar::GetHijri() const { return d->Hijri; }
void TKeshFormCalendar::SetHijri(bool Value) { d->Hijri = Value; }

TQxSpeedButton* TKeshFormCalendar::DayButton(int Week, int Row) const
{
    if (Week < 1 || Week > Weeks || Row < 1 || Row > WeekDays)
        return nullptr;
    return d->Cells[Week - 1][Row - 1];
}

TQxLabel* TKeshFormCalendar::DayLabel(int Row) const
{
    return Row >= 1 && Row <= WeekDays ? d->Days[Row - 1] : nullptr;
}

void TKeshFormCalendar::ShowDate()
{
    const QString Text = DateToString(d->Date);
    ToolBar->SetCaptionA(Text);
    ToolBar->SetCaptionE(Text);
    ToolBar->repaint();
}

void TKeshFormCalendar::FxBeforeOpen(QObject*, bool&)
{
    G->SetItemIndex(d->Hijri ? 1 : 0);
    ShowDate();
    DrawCalendar();
}

void TKeshFormCalendar::GClick(QObject*)
{
    const bool NewHijri = G->GetItemIndex() == 1;
    if (NewHijri == d->Hijri)
        return;
    d->Date = ConvertDate(d->Date);
    d->Hijri = NewHijri;
    ShowDate();
    DrawCalendar();
}

void TKeshFormCalendar::Calendar_Button_Click(QObject* Sender)
{
    const auto* Button = qobject_cast<TQxSpeedButton*>(Sender);
    if (!Button)
        return;
    bool Ok = false;
    const int Day = Button->text().toInt(&Ok);
    if (!Ok)
        return; // an empty cell
    d->Date = DateEncode(GetYear(d->Date), GetMonth(d->Date), Day);
    ShowDate();
    DrawCalendar();
}

void TKeshFormCalendar::Calendar_Double_Click(QObject*)
{
    btnOk->Click();
}

void TKeshFormCalendar::Button_Click(QObject* Sender)
{
    if (Sender == btnOk) {
        done(1);
    } else if (Sender == btnCancel) {
        done(2);
    } else if (Sender == btnPrevMonth || Sender == btnNextMonth) {
        d->Date = MonthsInc(d->Date, Sender == btnPrevMonth ? -1 : 1);
        ShowDate();
        DrawCalendar();
    }
}

void TKeshFormCalendar::F1Change(QObject*)
{
    const int Value = AsDate(ToolBar->GetCaption_e());
    if (Value == 0)
        return;
    d->Date = Value;
    DrawCalendar();
}

bool TKeshFormCalendar::eventFilter(QObject* Watched, QEvent* Event)
{
    // The day buttons share one double-click handler; only a day, not an empty cell, counts.
    if (Event->type() == QEvent::MouseButtonDblClick) {
        auto* Button = qobject_cast<TQxSpeedButton*>(Watched);
        if (Button && Button->isEnabled() && !Button->text().isEmpty()) {
            Calendar_Double_Click(Button);
            return true;
        }
    }
    return QDialog::eventFilter(Watched, Event);
}

} // namespace Kesh
