// Colour shifts, system colours, fonts as text and gradients.
#include "colors.h"
#include "platform/graphics.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <QtTest>

#include <limits>

using namespace Kesh;

namespace {

const QColor ButtonFace(200, 100, 50);
const QColor Base(250, 240, 230);
const QColor Highlight(10, 20, 30);

TFont MakeFont(const QString& Name, int Size, TFontStyles Style, TColor Color, int Charset)
{
    TFont F;
    F.SetName(Name);
    F.SetSize(Size);
    F.SetStyle(Style);
    F.SetColor(Color);
    F.SetCharset(Charset);
    return F;
}

} // namespace

class TestColors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // Known values for the system colours that the tests resolve.
        QPalette P = QApplication::palette();
        P.setColor(QPalette::Button, ButtonFace);
        P.setColor(QPalette::Base, Base);
        P.setColor(QPalette::Highlight, Highlight);
        QApplication::setPalette(P);
    }

    void changeColor_data()
    {
        QTest::addColumn<quint32>("color");
        QTest::addColumn<int>("delta");
        QTest::addColumn<quint32>("expected");
        QTest::newRow("white darker (alternate row)") << quint32(clWhite) << -16 << 0xEFEFEFu;
        QTest::newRow("white lighter stays white") << quint32(clWhite) << 40 << quint32(clWhite);
        QTest::newRow("dark stops at 0") << 0x050A0Fu << -8 << 0x000207u;
        QTest::newRow("black darker stays black") << quint32(clBlack) << -1 << quint32(clBlack);
        QTest::newRow("channels apart") << 0x102030u << 16 << 0x203040u;
        QTest::newRow("largest delta") << 0x102030u << std::numeric_limits<int>::max() << 0xFFFFFFu;
        QTest::newRow("smallest delta") << 0x102030u << std::numeric_limits<int>::min() << 0u;
        QTest::newRow("button face resolved") << quint32(clBtnFace) << -16 << 0x2254B8u;
        QTest::newRow("window resolved, clamped") << quint32(clWindow) << 10 << 0xF0FAFFu;
    }
    void changeColor()
    {
        QFETCH(quint32, color);
        QFETCH(int, delta);
        QFETCH(quint32, expected);
        QCOMPARE(ChangeColor(color, delta), expected);
    }

    void systemColorsFollowThePalette_data()
    {
        QTest::addColumn<quint32>("color");
        QTest::addColumn<QColor>("expected");
        QTest::newRow("button face") << quint32(clBtnFace) << ButtonFace;
        QTest::newRow("window") << quint32(clWindow) << Base;
        QTest::newRow("highlight") << quint32(clHighlight) << Highlight;
        QTest::newRow("unknown index is black") << (clSysColor | 25u) << QColor(Qt::black);
        QTest::newRow("plain colour") << 0x336699u << QColor(0x99, 0x66, 0x33);
    }
    void systemColorsFollowThePalette()
    {
        QFETCH(quint32, color);
        QFETCH(QColor, expected);
        QCOMPARE(TColorToQColor(color), expected);
        QCOMPARE(QColorToTColor(TColorToQColor(color)), ColorToRGB(color));
    }

    void noColorIsTransparent()
    {
        QCOMPARE(TColorToQColor(clNone).alpha(), 0);
        QCOMPARE(QColorToTColor(QColor(Qt::transparent)), clNone);
        QCOMPARE(QColorToTColor(QColor()), clNone);
    }

    void fontRoundTrip_data()
    {
        QTest::addColumn<TFont>("font");
        QTest::newRow("default") << TFont();
        QTest::newRow("label") << MakeFont(QStringLiteral("Tahoma"), 8, fsBold, 0x800000, ARABIC_CHARSET);
        QTest::newRow("every style") << MakeFont(QStringLiteral("Arial"), 12, fsBold | fsItalic | fsUnderline | fsStrikeOut,
                                                 clRed, DEFAULT_CHARSET);
        QTest::newRow("comma in name") << MakeFont(QStringLiteral("Foo, Bar"), 10, fsItalic, clBlue, ANSI_CHARSET);
        QTest::newRow("arabic name") << MakeFont(QStringLiteral("خط عربي"), 14, {}, clGreen, ARABIC_CHARSET);
        QTest::newRow("system colour") << MakeFont(QStringLiteral("Tahoma"), 10, fsUnderline, clWindowText, OEM_CHARSET);
        QTest::newRow("largest size") << MakeFont(QStringLiteral("Big"), TFont::MaxSize, {}, clWhite, SYMBOL_CHARSET);
    }
    void fontRoundTrip()
    {
        QFETCH(TFont, font);
        const QString Text = FontToStr(font);
        QVERIFY(!Text.contains(QLatin1Char('\n')));
        QCOMPARE(StrToFont(Text), font);
    }

    void fontText()
    {
        QCOMPARE(FontToStr(MakeFont(QStringLiteral("Tahoma"), 8, fsBold | fsItalic, 0x800000, ARABIC_CHARSET)),
                 QStringLiteral("Tahoma,8,$00800000,178,BI"));
        QCOMPARE(FontToStr(MakeFont(QStringLiteral("Tahoma"), 8, {}, clBtnFace, 1)),
                 QStringLiteral("Tahoma,8,$8000000F,1,"));
    }

    void strToFontAcceptsWrittenVariants_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<TFont>("font");
        const TFont Navy = MakeFont(QStringLiteral("Tahoma"), 8, fsBold | fsItalic, 0x800000, ARABIC_CHARSET);
        QTest::newRow("blanks and lower case") << QStringLiteral("Tahoma, 8 , $800000 , 178 , ib") << Navy;
        QTest::newRow("decimal colour") << QStringLiteral("Tahoma,8,8388608,178,BI") << Navy;
        QTest::newRow("0x colour") << QStringLiteral("Tahoma,8,0x800000,178,BI") << Navy;
        QTest::newRow("signed system colour") << QStringLiteral("Tahoma,8,-2147483633,1,")
                                              << MakeFont(QStringLiteral("Tahoma"), 8, {}, clBtnFace, 1);
    }
    void strToFontAcceptsWrittenVariants()
    {
        QFETCH(QString, text);
        QFETCH(TFont, font);
        QCOMPARE(StrToFont(text), font);
    }

    void strToFontOfGarbageGivesTheDefault_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("word") << QStringLiteral("hello");
        QTest::newRow("field missing") << QStringLiteral("Tahoma,8,$0,1");
        QTest::newRow("size zero") << QStringLiteral("Tahoma,0,$0,1,");
        QTest::newRow("size too large") << QStringLiteral("Tahoma,99999,$0,1,");
        QTest::newRow("size not a number") << QStringLiteral("Tahoma,eight,$0,1,");
        QTest::newRow("colour not hex") << QStringLiteral("Tahoma,8,$GG,1,");
        QTest::newRow("colour too long") << QStringLiteral("Tahoma,8,$123456789,1,");
        QTest::newRow("colour beyond 32 bits") << QStringLiteral("Tahoma,8,4294967296,1,");
        QTest::newRow("charset too large") << QStringLiteral("Tahoma,8,$0,256,");
        QTest::newRow("unknown style") << QStringLiteral("Tahoma,8,$0,1,X");
        QTest::newRow("line break in name") << QStringLiteral("Tah\noma,8,$0,1,");
    }
    void strToFontOfGarbageGivesTheDefault()
    {
        QFETCH(QString, text);
        QCOMPARE(StrToFont(text), TFont());
        TFont Kept = MakeFont(QStringLiteral("Kept"), 20, fsBold, clRed, 178);
        QVERIFY(!TryStrToFont(text, Kept));
        QCOMPARE(Kept.Name(), QStringLiteral("Kept"));
    }

    void fontFromQFont()
    {
        QFont Q(QStringLiteral("Arial"));
        Q.setPixelSize(16);
        Q.setBold(true);
        const TFont F(Q, clNavy, ARABIC_CHARSET);
        QCOMPARE(F.Size(), 12); // 16 px at 96 dots per inch
        QCOMPARE(F.Style(), TFontStyles(fsBold));
        QCOMPARE(F.PenColor(), QColor(0, 0, 0x80));
    }

    void paintGradient_data()
    {
        QTest::addColumn<QRect>("rect");
        QTest::addColumn<int>("direction");
        QTest::addColumn<quint32>("from");
        QTest::addColumn<quint32>("to");
        QTest::newRow("horizontal") << QRect(0, 0, 60, 8) << int(gdHorizontal) << 0x123456u << 0xFEDCBAu;
        QTest::newRow("vertical") << QRect(0, 0, 8, 60) << int(gdVertical) << 0x123456u << 0xFEDCBAu;
        QTest::newRow("horizontal, offset") << QRect(5, 7, 30, 4) << int(gdHorizontal) << quint32(clBlack) << quint32(clWhite);
        QTest::newRow("vertical, offset") << QRect(7, 5, 4, 30) << int(gdVertical) << quint32(clRed) << quint32(clBlue);
        QTest::newRow("system colours") << QRect(0, 0, 40, 40) << int(gdVertical) << quint32(clBtnFace) << quint32(clWindow);
        QTest::newRow("two lines") << QRect(0, 0, 2, 5) << int(gdHorizontal) << 0x0000FFu << 0x00FF00u;
    }
    void paintGradient()
    {
        QFETCH(QRect, rect);
        QFETCH(int, direction);
        QFETCH(quint32, from);
        QFETCH(quint32, to);
        const QRgb Outside = qRgb(1, 2, 3);
        QImage Image(80, 80, QImage::Format_RGB32);
        Image.fill(Outside);
        {
            QPainter P(&Image);
            PaintGradient(&P, rect, from, to, TxGradDir(direction));
        }
        const bool Horizontal = direction == gdHorizontal;
        const int Lines = Horizontal ? rect.width() : rect.height();
        const int Along = Horizontal ? rect.height() : rect.width();
        const auto Pixel = [&](int Line, int I) {
            return QColor(Horizontal ? Image.pixel(rect.left() + Line, rect.top() + I)
                                     : Image.pixel(rect.left() + I, rect.top() + Line));
        };
        for (int I = 0; I < Along; ++I) {
            QCOMPARE(Pixel(0, I), TColorToQColor(from));
            QCOMPARE(Pixel(Lines - 1, I), TColorToQColor(to));
        }
        // In between, each channel moves steadily from one end to the other.
        const QColor A = TColorToQColor(from), B = TColorToQColor(to);
        for (int Line = 1; Line < Lines; ++Line) {
            const QColor Prev = Pixel(Line - 1, 0), Cur = Pixel(Line, 0);
            QVERIFY((Cur.red() - Prev.red()) * (B.red() - A.red()) >= 0);
            QVERIFY((Cur.green() - Prev.green()) * (B.green() - A.green()) >= 0);
            QVERIFY((Cur.blue() - Prev.blue()) * (B.blue() - A.blue()) >= 0);
        }
        // Nothing outside the rectangle is touched.
        QCOMPARE(Image.pixel(rect.right() + 1, rect.top()), Outside);
        QCOMPARE(Image.pixel(rect.left(), rect.bottom() + 1), Outside);
        if (rect.left() > 0)
            QCOMPARE(Image.pixel(rect.left() - 1, rect.top()), Outside);
        if (rect.top() > 0)
            QCOMPARE(Image.pixel(rect.left(), rect.top() - 1), Outside);
    }

    void paintGradientWithoutACanvasDoesNothing()
    {
        PaintGradient(nullptr, QRect(0, 0, 5, 5), clRed, clBlue, gdHorizontal);
        QImage Image(5, 5, QImage::Format_RGB32);
        Image.fill(Qt::white);
        QPainter P(&Image);
        PaintGradient(&P, QRect(), clRed, clBlue, gdHorizontal);
        P.end();
        QCOMPARE(Image.pixel(0, 0), qRgb(255, 255, 255));
    }
};

QTEST_MAIN(TestColors)
#include "tst_colors.moc"
