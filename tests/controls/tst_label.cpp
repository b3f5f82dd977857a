// The bilingual label: caption and font switching, the text styles on rendered images,
// frame, background, accelerators, automatic size and dragging the window.
#include "label.h"

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QtTest>

#include <algorithm>
#include <set>

using namespace Kesh;

namespace {

const QColor Magenta(255, 0, 255), Sand(0xFA, 0xF0, 0xC8), Shade(128, 128, 128);
const QColor ButtonHighlight(255, 255, 0), ButtonShadow(0, 128, 0);

// Drawn without smoothing, so every text pixel has exactly the pen's colour.
TFont SharpFont()
{
    QFont F(QStringLiteral("DejaVu Sans"));
    F.setPointSize(14);
    F.setBold(true);
    F.setStyleStrategy(QFont::NoAntialias);
    return TFont(F, clBlack, ARABIC_CHARSET);
}

TFont NamedFont(const QString& Name, TColor Color)
{
    TFont F;
    F.SetName(Name);
    F.SetColor(Color);
    return F;
}

// The widget as it paints itself onto a magenta sheet.
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

struct TestLabel : TQxLabel
{
    explicit TestLabel(bool RightToLeft, const QString& Text = QStringLiteral("Hello"))
    {
        SetBiDiMode(RightToLeft ? bdRightToLeft : bdLeftToRight);
        resize(200, 40);
        SetFont(SharpFont());
        SetCaption(Text);
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

    void switchLanguage_data()
    {
        QTest::addColumn<QString>("captionA");
        QTest::addColumn<QString>("captionE");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("byApplication");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        const QString A = QStringLiteral("الاسم"), E = QStringLiteral("Name");
        QTest::newRow("to right to left") << A << E << false << false << E << A;
        QTest::newRow("by the application") << A << E << false << true << E << A;
        QTest::newRow("no Arabic keeps English") << "" << E << false << false << E << E;
        QTest::newRow("no English keeps Arabic") << A << "" << true << false << A << A;
        QTest::newRow("no English, application") << A << "" << true << true << A << A;
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
        // The hidden language is set last: its setters must not show it.
        auto SetA = [&] { L.SetFont_a(NamedFont(QStringLiteral("FontA"), clRed)); L.SetCaptionA(captionA); };
        auto SetE = [&] { L.SetFont_e(NamedFont(QStringLiteral("FontE"), clBlue)); L.SetCaptionE(captionE); };
        if (rtl) { SetA(); SetE(); } else { SetE(); SetA(); }
        auto FontOf = [&](const QString& C) { return QLatin1String(C == captionA ? "FontA" : "FontE"); };
        QFETCH(QString, before);
        QCOMPARE(L.GetCaption(), before);
        QCOMPARE(L.GetFont().Name(), FontOf(before));

        if (byApplication)
            Application()->SetBiDiMode(To);
        else
            L.SetBiDiMode(To);
        QCOMPARE(L.BiDiMode(), To);
        QFETCH(QString, after);
        QCOMPARE(L.GetCaption(), after);
        QCOMPARE(L.GetFont().Name(), FontOf(after));
        QCOMPARE(L.GetFont().Color(), FontOf(after) == QLatin1String("FontA") ? clRed : clBlue);
        // An empty caption of the shown language empties the label.
        if (To == bdRightToLeft) L.SetCaptionA(QString()); else L.SetCaptionE(QString());
        QVERIFY(L.GetCaption().isEmpty());
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
        TestLabel Plain(rtl, Caption), Styled(rtl, Caption);
        const PixelSet Text = PixelsOf(Render(Plain), Qt::black);
        QVERIFY(Text.size() > 50);
        Styled.SetTextStyle(TxTextStyle(style));
        Styled.SetTextShade(0x808080);
        Styled.SetTextShadowPos(shadowPos);
        Styled.setEnabled(enabled);
        const QImage Image = Render(Styled);

        // Each pixel shows the last copy drawn over it: the text over the shade copy over
        // the white copy over the background.
        int Mismatches = 0;
        QSet<QRgb> Seen;
        for (int y = 0; y < Image.height(); ++y)
            for (int x = 0; x < Image.width(); ++x) {
                QColor Expected = Sand;
                if (!enabled)
                    Expected = Has(Text, x, y) ? ButtonShadow : Has(Text, x - 1, y - 1) ? ButtonHighlight : Sand;
                else if (Has(Text, x, y))
                    Expected = Qt::black;
                else if (style == Tx3D)
                    Expected = Has(Text, x - 1, y - 1) ? Shade : Has(Text, x + 1, y + 1) ? QColor(Qt::white) : Sand;
                else if (style == TxShadow && Has(Text, x - shadowPos, y - shadowPos))
                    Expected = Shade;
                Mismatches += Image.pixelColor(x, y) != Expected;
                Seen.insert(Expected.rgb());
            }
        QCOMPARE(Mismatches, 0);
        QVERIFY(Seen.contains((enabled ? Shade : ButtonHighlight).rgb()));
        QCOMPARE(Seen.contains(QColor(Qt::white).rgb()), enabled && style == Tx3D);
    }

    void placeAndFrame_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<int>("alignment");
        QTest::addColumn<int>("layout");
        QTest::addColumn<int>("side"); // -1 left, 0 centre, 1 right
        QTest::addColumn<int>("height"); // -1 top, 0 middle, 1 bottom
        QTest::addColumn<int>("frame"); // a pen style, Qt::NoPen for none
        QTest::addColumn<bool>("transparent");
        const int Left = Qt::AlignLeft, Right = Qt::AlignRight, Centre = Qt::AlignHCenter;
        QTest::newRow("ltr left middle") << false << Left << int(tlCenter) << -1 << 0 << int(Qt::NoPen) << false;
        QTest::newRow("rtl left is right") << true << Left << int(tlCenter) << 1 << 0 << int(Qt::NoPen) << false;
        QTest::newRow("ltr right top, transparent") << false << Right << int(tlTop) << 1 << -1 << int(Qt::NoPen) << true;
        QTest::newRow("rtl right is left, bottom") << true << Right << int(tlBottom) << -1 << 1 << int(Qt::NoPen) << false;
        QTest::newRow("ltr centre bottom, solid") << false << Centre << int(tlBottom) << 0 << 1 << int(Qt::SolidLine) << false;
        QTest::newRow("rtl centre top, solid") << true << Centre << int(tlTop) << 0 << -1 << int(Qt::SolidLine) << false;
        QTest::newRow("dashed, transparent") << false << Centre << int(tlCenter) << 0 << 0 << int(Qt::DashLine) << true;
    }
    void placeAndFrame()
    {
        QFETCH(bool, rtl);
        QFETCH(int, alignment);
        QFETCH(int, layout);
        QFETCH(int, side);
        QFETCH(int, height);
        QFETCH(int, frame);
        QFETCH(bool, transparent);
        TestLabel L(rtl);
        L.resize(300, 80);
        L.SetAlignment(Qt::Alignment(alignment));
        L.SetLayout(TTextLayout(layout));
        L.SetColor(0x00FF00);
        L.SetTransparent(transparent);
        L.SetRectangle(frame != Qt::NoPen);
        L.SetRectColor(clRed);
        L.SetRectStyle(frame == Qt::NoPen ? Qt::SolidLine : Qt::PenStyle(frame));
        QCOMPARE(L.testAttribute(Qt::WA_OpaquePaintEvent), !transparent);
        const QImage Image = Render(L);
        const int W = L.width(), H = L.height();

        QRect Text;
        for (const auto& [x, y] : PixelsOf(Image, Qt::black))
            Text |= QRect(x, y, 1, 1);
        QVERIFY(Text.width() > 30);
        const bool Across = side < 0 ? Text.left() < 6 : side > 0 ? Text.right() > W - 7 : qAbs(Text.center().x() - W / 2) < 6;
        QVERIFY2(Across, qPrintable(QStringLiteral("text at %1..%2").arg(Text.left()).arg(Text.right())));
        QVERIFY(height < 0 ? Text.top() < 10 : height > 0 ? Text.bottom() > H - 10 : qAbs(Text.center().y() - H / 2) < 6);

        const QColor Fill = transparent ? Magenta : QColor(Qt::green);
        QCOMPARE(Image.pixelColor(1, 1), Fill);
        int RedOnTop = 0;
        for (int x = 0; x < W; ++x)
            RedOnTop += Image.pixelColor(x, 0) == Qt::red;
        if (frame == Qt::NoPen) {
            QCOMPARE(RedOnTop, 0);
            QCOMPARE(Image.pixelColor(W - 1, H - 1), Fill);
        } else if (frame == Qt::DashLine) {
            QVERIFY(RedOnTop > W / 4 && RedOnTop < W);
        } else {
            QCOMPARE(RedOnTop, W);
            for (const QPoint& P : {QPoint(0, H / 2), QPoint(W - 1, H / 2), QPoint(W - 1, H - 1)})
                QCOMPARE(Image.pixelColor(P), QColor(Qt::red));
        }
    }

    void accelChar_data()
    {
        QTest::addColumn<QString>("caption1");
        QTest::addColumn<bool>("accel1");
        QTest::addColumn<QString>("caption2");
        QTest::addColumn<bool>("same");
        QTest::newRow("&& is one &") << "A&&B" << true << "A&B" << true;
        QTest::newRow("& kept without accelerators") << "A&B" << false << "AB" << false;
        QTest::newRow("&x is x underlined") << "&AB" << true << "AB" << false;
        QTest::newRow("&& kept without accelerators") << "A&&B" << false << "A&B" << false;
    }
    void accelChar()
    {
        QFETCH(QString, caption1);
        QFETCH(bool, accel1);
        QFETCH(QString, caption2);
        QFETCH(bool, same);
        TestLabel L1(false, caption1), L2(false, caption2);
        L1.SetShowAccelChar(accel1);
        L2.SetShowAccelChar(false);
        const QImage I1 = Render(L1), I2 = Render(L2);
        QCOMPARE(I1 == I2, same);
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
        QTest::newRow("ltr") << true << false;
        QTest::newRow("rtl") << true << true;
        QTest::newRow("no accelerators") << false << false;
    }
    void acceleratorFocusesControl()
    {
        QFETCH(bool, showAccel);
        QFETCH(bool, rtl);
        QWidget Window;
        Window.setLayoutDirection(rtl ? Qt::RightToLeft : Qt::LeftToRight);
        auto* Layout = new QVBoxLayout(&Window);
        auto* First = new QLineEdit;
        auto* L = new TQxLabel;
        auto* Target = new QLineEdit;
        for (QWidget* W : {static_cast<QWidget*>(First), static_cast<QWidget*>(L), static_cast<QWidget*>(Target)})
            Layout->addWidget(W);
        L->SetShowAccelChar(showAccel);
        L->SetCaptionA(QStringLiteral("ال&اسم"));
        L->SetCaptionE(QStringLiteral("&Name"));
        L->SetFocusControl(Target);
        Window.show();
        QVERIFY(QTest::qWaitForWindowActive(&Window));
        First->setFocus();
        QTRY_VERIFY(First->hasFocus());
        if (rtl) {
            // The letter alef: keyClick() takes Latin keys only.
            for (const auto Type : {QTest::Press, QTest::Release})
                QTest::sendKeyEvent(Type, &Window, Qt::Key(0x0627), QString(QChar(0x0627)), Qt::AltModifier);
        } else {
            QTest::keyClick(&Window, Qt::Key_N, Qt::AltModifier);
        }
        QCOMPARE(Target->hasFocus(), showAccel);
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
        QTest::newRow("empty keeps one line") << "" << false;
        QTest::newRow("lone & keeps one line") << "&" << false;
        QTest::newRow("long ltr grows right") << "A rather long caption text" << false;
        QTest::newRow("long rtl grows left") << "عنوان طويل نوعا ما للاختبار" << true;
    }
    void autoSize()
    {
        QFETCH(QString, caption);
        QFETCH(bool, rtl);
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
        QCOMPARE(L->height(), Metrics.boundingRect(QRect(0, 0, 10000, 1000), Qt::AlignLeft | Qt::AlignTop, QStringLiteral("Hg")).height());
        if (caption.size() > 1) {
            QCOMPARE(L->width(), Metrics.boundingRect(QRect(0, 0, 10000, 100), 0, caption).width());
            QVERIFY(L->width() > 101);
        }
        if (rtl)
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
        Window.setGeometry(100, 100, 300, 200);
        auto* L = new TQxLabel(&Window);
        L->move(20, 20);
        L->SetMovable(movable);
        Window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Window));
        const QPoint Start = Window.pos(), Delta(30, 20);
        QTest::mousePress(L, Qt::LeftButton, {}, QPoint(5, 5));
        QTest::mouseMove(L, QPoint(5, 5) + Delta);
        QTest::mouseRelease(L, Qt::LeftButton, {}, QPoint(5, 5) + Delta);
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
        QTest::mouseClick(&L, Qt::RightButton, {}, QPoint(5, 5));
        QCOMPARE(Clicked.size(), 1);
    }

    // The caption, font and text-style properties are checked with the other bilingual controls.
    void publishedProperties()
    {
        TQxLabel L;
        for (const char* Name : {"_RectStyle", "_RectColor", "Color", "_Movable"})
            QVERIFY2(L.metaObject()->indexOfProperty(Name) >= 0, Name);
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
