// The bilingual label: caption and font switching, the text styles on rendered images,
// frame, background, accelerators, automatic size and dragging the window.
#include "label.h"

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QtTest>

#include <algorithm>
#include <set>

using namespace Kesh;

namespace {

const QColor Magenta(255, 0, 255);
const QColor Sand(0xFA, 0xF0, 0xC8);
const QColor ButtonHighlight(255, 255, 0);
const QColor ButtonShadow(0, 128, 0);
const QColor Shade(128, 128, 128);

// A font drawn without smoothing, so every text pixel has exactly the pen's colour.
TFont SharpFont(TColor Color = clBlack)
{
    QFont F(QStringLiteral("DejaVu Sans"));
    F.setPointSize(14);
    F.setBold(true);
    F.setStyleStrategy(QFont::NoAntialias);
    return TFont(F, Color, ARABIC_CHARSET);
}

TFont NamedFont(const QString& Name, TColor Color)
{
    TFont F;
    F.SetName(Name);
    F.SetColor(Color);
    return F;
}

// The widget as it paints itself onto a magenta sheet (nothing else behind it).
QImage Render(QWidget& W)
{
    QImage Image(W.size(), QImage::Format_ARGB32);
    Image.fill(Magenta);
    W.render(&Image, QPoint(), QRegion(), QWidget::DrawChildren);
    return Image;
}

using PixelSet = std::set<std::pair<int, int>>;

PixelSet PixelsOf(const QImage& Image, const QColor& Color)
{
    PixelSet Found;
    for (int y = 0; y < Image.height(); ++y)
        for (int x = 0; x < Image.width(); ++x)
            if (Image.pixelColor(x, y) == Color)
                Found.insert({x, y});
    return Found;
}

bool Has(const PixelSet& Set, int X, int Y) { return Set.count({X, Y}) > 0; }

QRect BoundsOf(const PixelSet& Set)
{
    QRect R;
    for (const auto& [x, y] : Set)
        R |= QRect(x, y, 1, 1);
    return R;
}

struct TestLabel
{
    TQxLabel Label;
    explicit TestLabel(bool RightToLeft, const QString& Caption = QStringLiteral("Hello"))
    {
        Label.SetBiDiMode(RightToLeft ? bdRightToLeft : bdLeftToRight);
        Label.resize(200, 40);
        Label.SetFont(SharpFont());
        Label.SetCaption(Caption);
    }
};

} // namespace

class TestLabel_ : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QPalette P = QApplication::palette();
        P.setColor(QPalette::Light, ButtonHighlight);
        P.setColor(QPalette::Dark, ButtonShadow);
        QApplication::setPalette(P);
    }

    void cleanup() { Application()->SetBiDiMode(bdLeftToRight); }

    void defaults()
    {
        TQxLabel L;
        QCOMPARE(L.size(), QSize(101, 21));
        QCOMPARE(L.GetTextStyle(), TxNormal);
        QCOMPARE(L.GetTextShade(), TColor(0x808080));
        QCOMPARE(L.property("_TextShadowPos").toInt(), 2);
        QCOMPARE(L.GetRectangle(), false);
        QCOMPARE(L.GetRectStyle(), Qt::SolidLine);
        QCOMPARE(L.GetAutoSize(), false);
        QCOMPARE(L.GetShowAccelChar(), true);
        QCOMPARE(L.GetTransparent(), false);
        QCOMPARE(L.GetColor(), TColor(0xC8F0FA));
        QCOMPARE(L.GetLayout(), tlCenter);
        QCOMPARE(L.GetFont().Name(), QStringLiteral("Tahoma"));
        QCOMPARE(L.GetFont().Size(), 8);
        QCOMPARE(L.GetFont().Charset(), ARABIC_CHARSET);
        QCOMPARE(L.GetFont().Color(), TColor(0x800000));
        // The caption fonts copy the widget's font from before the label's own defaults.
        QCOMPARE(L.GetFont_a(), L.GetFont_e());
        QVERIFY(L.GetFont_a() != L.GetFont());
        QVERIFY(L.GetCaption().isEmpty());
    }

    void switchLanguage_data()
    {
        QTest::addColumn<QString>("captionA");
        QTest::addColumn<QString>("captionE");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("byApplication");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("fontBefore");
        QTest::addColumn<QString>("after");
        QTest::addColumn<QString>("fontAfter");
        const QString A = QStringLiteral("الاسم"), E = QStringLiteral("Name");
        QTest::newRow("to right to left") << A << E << false << false << E << "FontE" << A << "FontA";
        QTest::newRow("to left to right") << A << E << true << false << A << "FontA" << E << "FontE";
        QTest::newRow("by the application") << A << E << false << true << E << "FontE" << A << "FontA";
        QTest::newRow("no Arabic keeps English") << "" << E << false << false << E << "FontE" << E << "FontE";
        QTest::newRow("no English keeps Arabic") << A << "" << true << false << A << "FontA" << A << "FontA";
        QTest::newRow("no English, application") << A << "" << true << true << A << "FontA" << A << "FontA";
    }
    void switchLanguage()
    {
        QFETCH(QString, captionA);
        QFETCH(QString, captionE);
        QFETCH(bool, rtl);
        QFETCH(bool, byApplication);
        const TBiDiMode From = rtl ? bdRightToLeft : bdLeftToRight;
        const TBiDiMode To = rtl ? bdLeftToRight : bdRightToLeft;
        if (byApplication)
            Application()->SetBiDiMode(From);
        TQxLabel L;
        if (!byApplication)
            L.SetBiDiMode(From);
        L.SetFont_a(NamedFont(QStringLiteral("FontA"), clRed));
        L.SetFont_e(NamedFont(QStringLiteral("FontE"), clBlue));
        L.SetCaptionA(captionA);
        L.SetCaptionE(captionE);
        QTEST(L.GetCaption(), "before");
        QTEST(L.GetFont().Name(), "fontBefore");

        if (byApplication)
            Application()->SetBiDiMode(To);
        else
            L.SetBiDiMode(To);
        QCOMPARE(L.BiDiMode(), To);
        QTEST(L.GetCaption(), "after");
        QTEST(L.GetFont().Name(), "fontAfter");
        QCOMPARE(L.GetFont().Color(), L.GetFont().Name() == QLatin1String("FontA") ? clRed : clBlue);
    }

    void loadingPutsOffTheSwitch_data()
    {
        QTest::addColumn<bool>("switchWhileLoading");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<QString>("fontName");
        QTest::newRow("switched while loading") << true << "عربي" << "FontA";
        QTest::newRow("no switch keeps the design font") << false << "English" << "Tahoma";
    }
    void loadingPutsOffTheSwitch()
    {
        QFETCH(bool, switchWhileLoading);
        QWidget Form;
        auto* L = new TQxLabel(&Form);
        L->BeginLoading();
        L->SetFont_a(NamedFont(QStringLiteral("FontA"), clRed));
        L->SetCaptionA(QStringLiteral("عربي"));
        L->SetCaptionE(QStringLiteral("English"));
        L->SetAutoSize(true);
        if (switchWhileLoading)
            Form.setLayoutDirection(Qt::RightToLeft);
        QCOMPARE(L->GetCaption(), QStringLiteral("English"));
        QCOMPARE(L->size(), QSize(101, 21)); // no sizing while loading
        EndLoading(&Form);
        QTEST(L->GetCaption(), "caption");
        QTEST(L->GetFont().Name(), "fontName");
        QCOMPARE(L->size(), L->sizeHint());
    }

    void settersShowOwnLanguageOnly_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::newRow("left to right") << false;
        QTest::newRow("right to left") << true;
    }
    void settersShowOwnLanguageOnly()
    {
        QFETCH(bool, rtl);
        TQxLabel L;
        L.SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        L.SetCaption(QStringLiteral("start"));
        L.SetCaptionA(QStringLiteral("عربي"));
        QCOMPARE(L.GetCaption(), rtl ? QStringLiteral("عربي") : QStringLiteral("start"));
        L.SetCaptionE(QStringLiteral("English"));
        QCOMPARE(L.GetCaption(), rtl ? QStringLiteral("عربي") : QStringLiteral("English"));
        L.SetFont_a(NamedFont(QStringLiteral("FontA"), clRed));
        L.SetFont_e(NamedFont(QStringLiteral("FontE"), clRed));
        QCOMPARE(L.GetFont().Name(), rtl ? QStringLiteral("FontA") : QStringLiteral("FontE"));
        // An empty caption of the shown language empties the label.
        if (rtl)
            L.SetCaptionA(QString());
        else
            L.SetCaptionE(QString());
        QVERIFY(L.GetCaption().isEmpty());
    }

    void textStyles_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<int>("style");
        QTest::addColumn<int>("shadowPos");
        QTest::addColumn<bool>("enabled");
        for (const bool Rtl : {false, true}) {
            const char* Side = Rtl ? "rtl" : "ltr";
            QTest::addRow("%s 3D", Side) << Rtl << int(Tx3D) << 2 << true;
            QTest::addRow("%s shadow 2", Side) << Rtl << int(TxShadow) << 2 << true;
            QTest::addRow("%s shadow 4", Side) << Rtl << int(TxShadow) << 4 << true;
            QTest::addRow("%s disabled 3D", Side) << Rtl << int(Tx3D) << 2 << false;
            QTest::addRow("%s disabled shadow", Side) << Rtl << int(TxShadow) << 3 << false;
            QTest::addRow("%s disabled normal", Side) << Rtl << int(TxNormal) << 2 << false;
        }
    }
    void textStyles()
    {
        QFETCH(bool, rtl);
        QFETCH(int, style);
        QFETCH(int, shadowPos);
        QFETCH(bool, enabled);
        const QString Caption = rtl ? QStringLiteral("مرحبا بكم") : QStringLiteral("Hello");
        TestLabel Plain(rtl, Caption);
        const PixelSet Text = PixelsOf(Render(Plain.Label), Qt::black);
        QVERIFY(Text.size() > 50);

        TestLabel Styled(rtl, Caption);
        Styled.Label.SetTextStyle(TxTextStyle(style));
        Styled.Label.SetTextShade(0x808080);
        Styled.Label.SetTextShadowPos(shadowPos);
        Styled.Label.setEnabled(enabled);
        const QImage Image = Render(Styled.Label);

        // Each pixel shows the last copy drawn over it: the text itself over the shade
        // copy over the white copy over the background.
        int Mismatches = 0;
        QSet<QRgb> Seen;
        for (int y = 0; y < Image.height(); ++y) {
            for (int x = 0; x < Image.width(); ++x) {
                QColor Expected = Sand;
                if (!enabled) {
                    if (Has(Text, x, y))
                        Expected = ButtonShadow;
                    else if (Has(Text, x - 1, y - 1))
                        Expected = ButtonHighlight;
                } else if (Has(Text, x, y)) {
                    Expected = Qt::black;
                } else if (style == Tx3D && Has(Text, x - 1, y - 1)) {
                    Expected = Shade;
                } else if (style == Tx3D && Has(Text, x + 1, y + 1)) {
                    Expected = Qt::white;
                } else if (style == TxShadow && Has(Text, x - shadowPos, y - shadowPos)) {
                    Expected = Shade;
                }
                if (Image.pixelColor(x, y) != Expected)
                    ++Mismatches;
                Seen.insert(Expected.rgb());
            }
        }
        QCOMPARE(Mismatches, 0);
        // The copies really are there.
        QVERIFY(Seen.contains((enabled ? Shade : ButtonHighlight).rgb()));
        QCOMPARE(Seen.contains(QColor(Qt::white).rgb()), enabled && style == Tx3D);
    }

    void alignmentAndLayout_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<int>("alignment");
        QTest::addColumn<int>("layout");
        QTest::addColumn<QString>("side");
        QTest::addColumn<QString>("height");
        QTest::newRow("ltr left centre") << false << int(Qt::AlignLeft) << int(tlCenter) << "left" << "middle";
        QTest::newRow("rtl left is right") << true << int(Qt::AlignLeft) << int(tlCenter) << "right" << "middle";
        QTest::newRow("ltr right top") << false << int(Qt::AlignRight) << int(tlTop) << "right" << "top";
        QTest::newRow("rtl right is left, bottom") << true << int(Qt::AlignRight) << int(tlBottom) << "left" << "bottom";
        QTest::newRow("ltr centre bottom") << false << int(Qt::AlignHCenter) << int(tlBottom) << "centre" << "bottom";
    }
    void alignmentAndLayout()
    {
        QFETCH(bool, rtl);
        QFETCH(int, alignment);
        QFETCH(int, layout);
        QFETCH(QString, side);
        QFETCH(QString, height);
        TestLabel T(rtl);
        T.Label.resize(300, 80);
        T.Label.SetAlignment(Qt::Alignment(alignment));
        T.Label.SetLayout(TTextLayout(layout));
        const QRect Text = BoundsOf(PixelsOf(Render(T.Label), Qt::black));
        QVERIFY(!Text.isEmpty());
        const int W = T.Label.width(), H = T.Label.height();
        if (side == QLatin1String("left"))
            QVERIFY2(Text.left() < 6, qPrintable(QString::number(Text.left())));
        else if (side == QLatin1String("right"))
            QVERIFY2(Text.right() > W - 7, qPrintable(QString::number(Text.right())));
        else
            QVERIFY(qAbs(Text.center().x() - W / 2) < 6);
        if (height == QLatin1String("top"))
            QVERIFY(Text.top() < 10);
        else if (height == QLatin1String("bottom"))
            QVERIFY(Text.bottom() > H - 10);
        else
            QVERIFY(qAbs(Text.center().y() - H / 2) < 6);
    }

    void frame_data()
    {
        QTest::addColumn<bool>("rectangle");
        QTest::addColumn<int>("penStyle");
        QTest::addColumn<bool>("rtl");
        QTest::newRow("no frame") << false << int(Qt::SolidLine) << false;
        QTest::newRow("solid") << true << int(Qt::SolidLine) << false;
        QTest::newRow("solid rtl") << true << int(Qt::SolidLine) << true;
        QTest::newRow("dashed") << true << int(Qt::DashLine) << false;
    }
    void frame()
    {
        QFETCH(bool, rectangle);
        QFETCH(int, penStyle);
        QFETCH(bool, rtl);
        TestLabel T(rtl);
        T.Label.SetRectangle(rectangle);
        T.Label.SetRectColor(clRed);
        T.Label.SetRectStyle(Qt::PenStyle(penStyle));
        const QImage Image = Render(T.Label);
        const int W = Image.width(), H = Image.height();
        int RedOnTop = 0;
        for (int x = 0; x < W; ++x)
            RedOnTop += Image.pixelColor(x, 0) == Qt::red;
        if (!rectangle) {
            QCOMPARE(RedOnTop, 0);
            QCOMPARE(Image.pixelColor(0, 0), Sand);
            return;
        }
        QCOMPARE(Image.pixelColor(0, 0), QColor(Qt::red));
        QCOMPARE(Image.pixelColor(0, H / 2 - (penStyle == Qt::SolidLine ? 0 : H / 2)), QColor(Qt::red));
        if (penStyle == Qt::SolidLine) {
            QCOMPARE(RedOnTop, W);
            QCOMPARE(Image.pixelColor(W - 1, H - 1), QColor(Qt::red));
            QCOMPARE(Image.pixelColor(W - 1, H / 2), QColor(Qt::red));
            QCOMPARE(Image.pixelColor(1, 1), Sand);
        } else {
            QVERIFY(RedOnTop > W / 4 && RedOnTop < W);
        }
    }

    void background_data()
    {
        QTest::addColumn<bool>("transparent");
        QTest::addColumn<quint32>("color");
        QTest::addColumn<QColor>("corner");
        QTest::newRow("opaque sand") << false << 0xC8F0FAu << Sand;
        QTest::newRow("opaque own colour") << false << 0x00FF00u << QColor(Qt::green);
        QTest::newRow("transparent") << true << 0x00FF00u << Magenta;
    }
    void background()
    {
        QFETCH(bool, transparent);
        QFETCH(quint32, color);
        TestLabel T(false);
        T.Label.SetColor(color);
        T.Label.SetTransparent(transparent);
        QCOMPARE(T.Label.testAttribute(Qt::WA_OpaquePaintEvent), !transparent);
        const QImage Image = Render(T.Label);
        QTEST(Image.pixelColor(0, 0), "corner");
        QTEST(Image.pixelColor(Image.width() - 1, Image.height() - 1), "corner");
        QVERIFY(PixelsOf(Image, Qt::black).size() > 50); // the text is drawn either way
    }

    void accelChar_data()
    {
        QTest::addColumn<QString>("caption1");
        QTest::addColumn<bool>("accel1");
        QTest::addColumn<QString>("caption2");
        QTest::addColumn<bool>("accel2");
        QTest::addColumn<bool>("same");
        QTest::newRow("&& is one &") << "A&&B" << true << "A&B" << false << true;
        QTest::newRow("& kept without accelerators") << "A&B" << false << "AB" << false << false;
        QTest::newRow("&x is x underlined") << "&AB" << true << "AB" << false << false;
        QTest::newRow("&& kept without accelerators") << "A&&B" << false << "A&B" << false << false;
    }
    void accelChar()
    {
        QFETCH(QString, caption1);
        QFETCH(bool, accel1);
        QFETCH(QString, caption2);
        QFETCH(bool, accel2);
        QFETCH(bool, same);
        TestLabel L1(false, caption1), L2(false, caption2);
        L1.Label.SetShowAccelChar(accel1);
        L2.Label.SetShowAccelChar(accel2);
        const QImage I1 = Render(L1.Label), I2 = Render(L2.Label);
        if (same) {
            QCOMPARE(I1, I2);
            return;
        }
        QVERIFY(I1 != I2);
        if (caption1.startsWith(QLatin1Char('&')) && accel1) {
            // The underline adds pixels below the letters and removes none of them.
            const PixelSet P1 = PixelsOf(I1, Qt::black), P2 = PixelsOf(I2, Qt::black);
            QVERIFY(std::includes(P1.begin(), P1.end(), P2.begin(), P2.end()));
            QVERIFY(P1.size() > P2.size());
        }
    }

    void acceleratorFocusesControl_data()
    {
        QTest::addColumn<bool>("showAccel");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("focused");
        QTest::newRow("ltr") << true << false << true;
        QTest::newRow("rtl") << true << true << true;
        QTest::newRow("no accelerators") << false << false << false;
    }
    void acceleratorFocusesControl()
    {
        QFETCH(bool, showAccel);
        QFETCH(bool, rtl);
        QWidget Window;
        Window.setLayoutDirection(rtl ? Qt::RightToLeft : Qt::LeftToRight);
        auto* Layout = new QVBoxLayout(&Window);
        auto* First = new QLineEdit(&Window);
        auto* L = new TQxLabel(&Window);
        auto* Target = new QLineEdit(&Window);
        Layout->addWidget(First);
        Layout->addWidget(L);
        Layout->addWidget(Target);
        L->SetShowAccelChar(showAccel);
        L->SetCaptionA(QStringLiteral("ال&اسم"));
        L->SetCaptionE(QStringLiteral("&Name"));
        L->SetFocusControl(Target);
        Window.show();
        QVERIFY(QTest::qWaitForWindowActive(&Window));
        First->setFocus();
        QTRY_VERIFY(First->hasFocus());
        if (rtl)
        {
            // The letter alef: keyClick() takes Latin keys only.
            const QString Alef(QChar(0x0627));
            QTest::sendKeyEvent(QTest::Press, &Window, Qt::Key(0x0627), Alef, Qt::AltModifier);
            QTest::sendKeyEvent(QTest::Release, &Window, Qt::Key(0x0627), Alef, Qt::AltModifier);
        }
        else
            QTest::keyClick(&Window, Qt::Key_N, Qt::AltModifier);
        QTEST(Target->hasFocus(), "focused");
        QCOMPARE(First->hasFocus(), !showAccel);
        // A deleted focus control is forgotten.
        delete Target;
        QCOMPARE(L->GetFocusControl(), nullptr);
        First->setFocus();
        QTest::keyClick(&Window, Qt::Key_N, Qt::AltModifier);
        QVERIFY(First->hasFocus());
    }

    void autoSize_data()
    {
        QTest::addColumn<QString>("caption");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("keepsRight");
        QTest::newRow("empty keeps one line") << "" << false << false;
        QTest::newRow("lone & keeps one line") << "&" << false << false;
        QTest::newRow("long ltr grows right") << "A rather long caption text" << false << false;
        QTest::newRow("long rtl grows left") << "عنوان طويل نوعا ما للاختبار" << true << true;
    }
    void autoSize()
    {
        QFETCH(QString, caption);
        QFETCH(bool, rtl);
        QFETCH(bool, keepsRight);
        QWidget Parent;
        Parent.resize(600, 100);
        auto* L = new TQxLabel(&Parent);
        L->SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        L->SetFont(SharpFont());
        L->setGeometry(200, 10, 101, 21);
        L->SetCaption(caption);
        L->SetAutoSize(true);
        const QFontMetrics Metrics(SharpFont().Font(), L);
        // One line, as tall as any one-line caption.
        const QRect Line = Metrics.boundingRect(QRect(0, 0, 10000, 1000), Qt::AlignLeft | Qt::AlignTop, QStringLiteral("Hg"));
        QCOMPARE(L->height(), Line.height());
        if (caption.size() > 1) {
            QCOMPARE(L->width(), Metrics.boundingRect(QRect(0, 0, 10000, 100), 0, caption).width());
            QVERIFY(L->width() > 101);
        }
        if (keepsRight)
            QCOMPARE(L->geometry().right(), 200 + 101 - 1);
        else
            QCOMPARE(L->x(), 200);
        // A later caption change resizes again.
        const int Before = L->width();
        L->SetCaption(caption + caption + QStringLiteral("x"));
        QVERIFY(L->width() > Before);
    }

    void movableDragsWindow_data()
    {
        QTest::addColumn<bool>("movable");
        QTest::addColumn<bool>("rtl");
        QTest::newRow("movable") << true << false;
        QTest::newRow("movable rtl") << true << true;
        QTest::newRow("fixed") << false << false;
    }
    void movableDragsWindow()
    {
        QFETCH(bool, movable);
        QFETCH(bool, rtl);
        QWidget Window(nullptr, Qt::FramelessWindowHint);
        Window.setLayoutDirection(rtl ? Qt::RightToLeft : Qt::LeftToRight);
        Window.resize(300, 200);
        Window.move(100, 100);
        auto* L = new TQxLabel(&Window);
        L->move(20, 20);
        L->SetMovable(movable);
        Window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Window));
        const QPoint Start = Window.pos();
        const QPoint Local(5, 5);
        const QPoint Global = L->mapToGlobal(Local);
        QMouseEvent Press(QEvent::MouseButtonPress, Local, Global, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(L, &Press);
        const QPoint Delta(30, 20);
        QMouseEvent Move(QEvent::MouseMove, Local + Delta, Global + Delta, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(L, &Move);
        QMouseEvent Release(QEvent::MouseButtonRelease, Local + Delta, Global + Delta, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(L, &Release);
        QCOMPARE(Window.pos(), movable ? Start + Delta : Start);
    }

    void mouseEvents()
    {
        TQxLabel L;
        int Entered = 0, Left = 0;
        L.OnMouseEnter = [&](QObject* Sender) { Entered += Sender == &L; };
        L.OnMouseLeave = [&](QObject* Sender) { Left += Sender == &L; };
        QSignalSpy Clicked(&L, &TQxCustomLabel::clicked);
        QEnterEvent Enter(QPointF(2, 2), QPointF(2, 2), QPointF(2, 2));
        QApplication::sendEvent(&L, &Enter);
        QEvent Leave(QEvent::Leave);
        QApplication::sendEvent(&L, &Leave);
        QCOMPARE(Entered, 1);
        QCOMPARE(Left, 1);
        QTest::mouseClick(&L, Qt::LeftButton, {}, QPoint(5, 5));
        QCOMPARE(Clicked.size(), 1);
        QTest::mouseClick(&L, Qt::RightButton, {}, QPoint(5, 5));
        QCOMPARE(Clicked.size(), 1);
    }

    void publishedProperties()
    {
        TQxLabel L;
        QVERIFY(L.setProperty("_Caption_e", QStringLiteral("Total")));
        QCOMPARE(L.GetCaption(), QStringLiteral("Total"));
        QVERIFY(L.setProperty("_TextStyle", QVariant::fromValue(TxShadow)));
        QCOMPARE(L.GetTextStyle(), TxShadow);
        QVERIFY(L.setProperty("_RectStyle", QVariant::fromValue(Qt::DotLine)));
        QCOMPARE(L.GetRectStyle(), Qt::DotLine);
        QVERIFY(L.setProperty("_Font_e", QVariant::fromValue(NamedFont(QStringLiteral("Courier"), clRed))));
        QCOMPARE(L.GetFont().Name(), QStringLiteral("Courier"));
        QVERIFY(L.setProperty("Color", 0x123456u));
        QCOMPARE(L.GetColor(), TColor(0x123456));
    }
};

int main(int argc, char** argv)
{
    TQxApplication App(argc, argv);
    App.setAttribute(Qt::AA_Use96Dpi, true);
    TestLabel_ Test;
    return QTest::qExec(&Test, argc, argv);
}
#include "tst_label.moc"
