#include "form_msg.h"
#include "resources.h"
#include "platform/application.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QScreen>
#include <QSvgRenderer>
#include <QVBoxLayout>

namespace Kesh {

namespace {

// The form as drawn at design time; the frame around the text is taken from it.
constexpr int DesignWidth = 348;
constexpr int DesignHeight = 106;
constexpr int ToolbarHeight = 34;

// Draws one of the library's SVG icons into a square pixmap, sharp on high-density screens.
QPixmap RenderIcon(const QString& Resource, int Size)
{
    InitResources();
    const qreal Ratio = qApp ? qApp->devicePixelRatio() : 1.0;
    QImage Image(QSize(Size, Size) * Ratio, QImage::Format_ARGB32_Premultiplied);
    Image.fill(Qt::transparent);
    QSvgRenderer Renderer(Resource);
    if (Renderer.isValid()) {
        QPainter Painter(&Image);
        Renderer.render(&Painter);
    } else {
        qWarning("Kesh: icon %s could not be loaded", qUtf8Printable(Resource));
    }
    Image.setDevicePixelRatio(Ratio);
    return QPixmap::fromImage(Image);
}

QLabel* NewIcon(QWidget* Parent, const char* Name, const QString& Resource)
{
    auto* Icon = new QLabel(Parent);
    Icon->setObjectName(QLatin1String(Name));
    Icon->setFixedSize(TKeshFormMsg::IconSize, TKeshFormMsg::IconSize);
    Icon->setPixmap(RenderIcon(Resource, TKeshFormMsg::IconSize));
    Icon->hide();
    return Icon;
}

QPushButton* NewButton(QWidget* Parent, const char* Name, const QString& Caption, int Left)
{
    auto* Button = new QPushButton(Caption, Parent);
    Button->setObjectName(QLatin1String(Name));
    Button->setGeometry(Left, 1, TKeshFormMsg::ButtonWidth, TKeshFormMsg::ButtonHeight);
    return Button;
}

} // namespace

TKeshFormMsg::TKeshFormMsg(QWidget* AOwner, int Kind, const QString& Msg)
    : QDialog(AOwner, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint)
    , P1(new QWidget(this))
    , IcInfo(NewIcon(P1, "IcInfo", QStringLiteral(":/kesh/msg_info.svg")))
    , IcError(NewIcon(P1, "IcError", QStringLiteral(":/kesh/msg_error.svg")))
    , IcQuestion(NewIcon(P1, "IcQuestion", QStringLiteral(":/kesh/msg_question.svg")))
    , Info(new QLabel(P1))
    , Toolbar(new QWidget(this))
    // Created in tab order: Ok, Cancel, Yes, No.
    , btnOk(NewButton(Toolbar, "btnOk", QStringLiteral("Ok"), 2))
    , btnCancel(NewButton(Toolbar, "btnCancel", QStringLiteral("Cancel"), 84))
    , btnYes(NewButton(Toolbar, "btnYes", QStringLiteral("Yes"), 166))
    , btnNo(NewButton(Toolbar, "btnNo", QStringLiteral("No"), 248))
{
    setObjectName(QStringLiteral("KeshFormMsg"));
    setFont(QFont(QStringLiteral("Tahoma"), 8));
    P1->setObjectName(QStringLiteral("P1"));
    Info->setObjectName(QStringLiteral("Info"));
    Toolbar->setObjectName(QStringLiteral("Toolbar"));

    (Kind < mkError ? IcQuestion : Kind == mkError ? IcError : IcInfo)->show();
    for (QPushButton* Button : {btnOk, btnCancel, btnYes, btnNo})
        connect(Button, &QPushButton::clicked, this, [this, Button] { Button_Click(Button); });

    BuildLayout();
    ApplyLanguage();
    Info->setText(Msg);
    FitToText(Msg);
}

TKeshFormMsg::~TKeshFormMsg() = default;

void TKeshFormMsg::BuildLayout()
{
    // The label keeps its 8-pixel margins inside itself, on both sides, so that the layout
    // stays symmetric and mirrors cleanly in right to left (the icon moves to the right).
    Info->setTextFormat(Qt::PlainText);
    Info->setWordWrap(true);
    Info->setAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    Info->setContentsMargins(8, 0, 8, 0);
    Info->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);

    auto* Row = new QHBoxLayout(P1);
    Row->setContentsMargins(8, 4, 8, 4);
    Row->setSpacing(0);
    for (QLabel* Icon : {IcInfo, IcError, IcQuestion})
        Row->addWidget(Icon, 0, Qt::AlignVCenter);
    Row->addWidget(Info, 1);

    Toolbar->setFixedHeight(ToolbarHeight);
    auto* Column = new QVBoxLayout(this);
    Column->setContentsMargins(0, 0, 0, 0);
    Column->setSpacing(0);
    Column->addWidget(P1, 1);
    Column->addWidget(Toolbar);
}

void TKeshFormMsg::ApplyLanguage()
{
    const bool RightToLeft = Application()->BiDiMode() == bdRightToLeft;
    setLayoutDirection(RightToLeft ? Qt::RightToLeft : Qt::LeftToRight);

    QFont Font(QStringLiteral("Arial"));
    Font.setPixelSize(16);
    Font.setBold(RightToLeft);
    Info->setFont(Font);
    if (RightToLeft) {
        btnOk->setText(QStringLiteral("موافق"));
        btnCancel->setText(QStringLiteral("إهمال"));
        btnYes->setText(QStringLiteral("نعم"));
        btnNo->setText(QStringLiteral("لا"));
    }
}

// A hidden form gets its resize events only when shown; lay the children out now, so that
// the frame can be measured and the callers can place the buttons by the final width.
void TKeshFormMsg::LayOutNow()
{
    for (QLayout* Layout : {layout(), P1->layout()}) {
        Layout->invalidate();
        Layout->activate();
    }
}

void TKeshFormMsg::FitToText(const QString& Msg)
{
    // The frame around the text, from the design-time layout.
    resize(DesignWidth, DesignHeight);
    LayOutNow();
    const int EW = width() - Info->contentsRect().width();
    const int EH = height() - Info->contentsRect().height();

    const QScreen* Screen = QGuiApplication::primaryScreen();
    const QRect Area = Screen ? Screen->geometry() : QRect(0, 0, 1024, 768);
    const QRect Bounds(0, 0, (Area.width() / 3) * 2, IconSize);
    const QRect Text = QFontMetrics(Info->font()).boundingRect(
        Bounds, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap | Qt::TextExpandTabs, Msg);

    // Never narrower than the Yes and No buttons side by side with the toolbar's padding.
    const int Width = qMax(Text.width() + EW, 2 * ButtonWidth + 2 + 4);
    const int Height = qMax(Text.height(), IconSize) + EH;
    setFixedSize(Width, Height);
    LayOutNow();

    // A third from the top, not centred; never above the screen.
    move(Area.x() + (Area.width() - Width) / 2, Area.y() + qMax(0, (Area.height() - Height) / 3));
}

void TKeshFormMsg::Button_Click(QObject* Sender)
{
    if (Sender == btnOk || Sender == btnYes)
        done(1);
    else if (Sender == btnCancel || Sender == btnNo)
        done(2);
}

} // namespace Kesh
