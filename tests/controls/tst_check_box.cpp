// The bilingual check box: glyph names and files, the glyph's side and the caption's
// rectangle under both directions, clicks by mouse and key, the linked control, Enter.
#include "check_box.h"

#include <QApplication>
#include <QImageReader>
#include <QLineEdit>
#include <QPainter>
#include <QSignalSpy>
#include <QVBoxLayout>
#include <QtTest>

using namespace Kesh;

namespace {

const QColor Magenta(255, 0, 255), ButtonHighlight(255, 255, 0), ButtonShadow(0, 128, 0);

QImage OnMagenta(QSize Size, const std::function<void(QPainter&)>& Paint)
{
    QImage Image(Size, QImage::Format_ARGB32);
    Image.fill(Magenta);
    QPainter Painter(&Image);
    Paint(Painter);
    return Image;
}

QImage Render(QWidget& W)
{
    return OnMagenta(W.size(), [&](QPainter& P) { W.render(&P, QPoint(), QRegion(), QWidget::DrawChildren); });
}

// The glyph file read on its own by Qt's SVG image reader.
QImage Glyph(const QString& Name)
{
    const QSize Size(TQxCheckBox::GlyphSize, TQxCheckBox::GlyphSize);
    return OnMagenta(Size, [&](QPainter& P) { P.drawImage(0, 0, QImage(TQxCheckBox::GlyphFile(Name))); });
}

// Equal but for rounding at smoothed edges.
bool SameLook(const QImage& A, const QImage& B)
{
    if (A.size() != B.size())
        return false;
    for (int y = 0; y < A.height(); ++y)
        for (int x = 0; x < A.width(); ++x) {
            const QColor P = A.pixelColor(x, y), Q = B.pixelColor(x, y);
            if (qAbs(P.red() - Q.red()) > 3 || qAbs(P.green() - Q.green()) > 3 || qAbs(P.blue() - Q.blue()) > 3)
                return false;
        }
    return true;
}

QRect PixelsOfColor(const QImage& Image, const QColor& Color, const QRect& Within)
{
    QRect Bounds;
    for (int y = Within.top(); y <= Within.bottom(); ++y)
        for (int x = Within.left(); x <= Within.right(); ++x)
            if (Image.pixelColor(x, y) == Color)
                Bounds |= QRect(x, y, 1, 1);
    return Bounds;
}

// A box ready for painting checks: an unsmoothed black font, fixed size.
void Prepare(TQxCheckBox& B, bool Rtl)
{
    QFont F(QStringLiteral("DejaVu Sans"));
    F.setPointSize(10);
    F.setStyleStrategy(QFont::NoAntialias);
    B.SetBiDiMode(Rtl ? bdRightToLeft : bdLeftToRight);
    B.resize(160, 24);
    B.SetFont(TFont(F, clBlack, ARABIC_CHARSET));
    B.setText(Rtl ? QStringLiteral("فعال") : QStringLiteral("Active"));
}

// A shown window with an edit before the check box and one after it, the first focused.
struct Form
{
    QWidget Window;
    QLineEdit* Before = new QLineEdit(&Window);
    TQxCheckBox* Box = new TQxCheckBox(&Window);
    QLineEdit* After = new QLineEdit(&Window);

    explicit Form(bool RightToLeft)
    {
        Window.setLayoutDirection(RightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        auto* Layout = new QVBoxLayout(&Window);
        for (QWidget* W : std::initializer_list<QWidget*>{Before, Box, After})
            Layout->addWidget(W);
        Box->SetCaptionE(QStringLiteral("Active"));
        Box->SetCaptionA(QStringLiteral("فعال"));
    }
    bool Show()
    {
        Window.show();
        if (!QTest::qWaitForWindowActive(&Window))
            return false;
        Before->setFocus();
        return QTest::qWaitFor([&] { return Before->hasFocus(); });
    }
};

} // namespace

class TestCheckBox : public QObject
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

    void glyphName_data()
    {
        QTest::addColumn<int>("style");
        QTest::addColumn<bool>("checked");
        for (int Style = cbsStyle_1; Style <= cbsStyle_4; ++Style) {
            QTest::addRow("style %d on", Style + 1) << Style << true;
            QTest::addRow("style %d off", Style + 1) << Style << false;
        }
    }
    void glyphName()
    {
        QFETCH(int, style);
        QFETCH(bool, checked);
        TQxCheckBox B;
        B.SetStyle(TxCheckBoxStyles(style));
        B.SetChecked(checked);
        const QString Name = QStringLiteral("CheckBox%1_%2").arg(style + 1).arg(checked ? "ON" : "OFF");
        QCOMPARE(B.GlyphName(), Name);
        // Stored in upper case, found in any case.
        const QString File = TQxCheckBox::GlyphFile(Name);
        QCOMPARE(File, QStringLiteral(":/kesh/%1.svg").arg(Name.toUpper()));
        QCOMPARE(TQxCheckBox::GlyphFile(Name.toLower()), File);
        QCOMPARE(QImageReader(File).size(), QSize(16, 16));
        // Each state has a look of its own.
        const QString Other = QStringLiteral("CheckBox%1_%2").arg(style + 1).arg(checked ? "OFF" : "ON");
        QVERIFY(Glyph(Name) != Glyph(Other));
        QVERIFY(TQxCheckBox::GlyphFile(QStringLiteral("CheckBox5_ON")).isEmpty());
        QVERIFY(TQxCheckBox::GlyphFile(QString()).isEmpty());
    }

    void glyphSideAndText_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<int>("style");
        QTest::addColumn<bool>("checked");
        QTest::addColumn<int>("textStyle");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("ltr style 1 on") << false << int(cbsStyle_1) << true << int(TxNormal) << true;
        QTest::newRow("rtl style 1 on, 3D") << true << int(cbsStyle_1) << true << int(Tx3D) << true;
        QTest::newRow("ltr style 3 off, shadow") << false << int(cbsStyle_3) << false << int(TxShadow) << true;
        QTest::newRow("rtl style 4 off, disabled") << true << int(cbsStyle_4) << false << int(Tx3D) << false;
    }
    void glyphSideAndText()
    {
        QFETCH(bool, rtl);
        QFETCH(int, style);
        QFETCH(bool, checked);
        QFETCH(int, textStyle);
        QFETCH(bool, enabled);
        TQxCheckBox B;
        Prepare(B, rtl);
        B.SetStyle(TxCheckBoxStyles(style));
        B.SetChecked(checked);
        B.SetTextStyle(TxTextStyle(textStyle));
        B.SetTextShade(0x808080);
        B.setEnabled(enabled);
        const int W = B.width();
        const QRect ExpectedGlyph(rtl ? W - 16 : 0, 0, 16, 16);
        QCOMPARE(B.GlyphRect(), ExpectedGlyph);
        QCOMPARE(B.TextRect(), QRect(rtl ? 0 : 20, 0, W - 20, 24));

        const QImage Image = Render(B);
        QVERIFY(SameLook(Image.copy(ExpectedGlyph), Glyph(B.GlyphName())));
        // The styled copies show only when enabled; disabled, the caption is engraved.
        auto Bounds = [&](const QColor& C) { return PixelsOfColor(Image, C, B.TextRect()); };
        QCOMPARE(!Bounds(Qt::white).isEmpty(), enabled && textStyle == Tx3D);
        QCOMPARE(!Bounds(QColor(128, 128, 128)).isEmpty(), enabled && textStyle != TxNormal);
        QCOMPARE(!Bounds(ButtonHighlight).isEmpty(), !enabled);
        // The caption lies in its rectangle, against the glyph's side, 20 px from the edge,
        // vertically centred.
        const QRect Text = PixelsOfColor(Image, enabled ? QColor(Qt::black) : ButtonShadow, Image.rect());
        QVERIFY(!Text.isEmpty());
        QVERIFY(B.TextRect().contains(Text));
        const int Gap = rtl ? W - 1 - Text.right() : Text.left();
        QVERIFY2(Gap >= 20 && Gap <= 24, qPrintable(QString::number(Gap)));
        QVERIFY(qAbs(Text.center().y() - 12) <= 2);
        // Nothing but the glyph and the caption is painted: the parent shows through.
        QCOMPARE(Image.pixelColor(rtl ? 0 : W - 1, 20), Magenta);
        // A switch of direction moves the glyph to the other side.
        B.SetBiDiMode(rtl ? bdLeftToRight : bdRightToLeft);
        QCOMPARE(B.GlyphRect(), QRect(rtl ? 0 : W - 16, 0, 16, 16));
    }

    void linkedControl()
    {
        QLineEdit Edit, Other;
        TQxCheckBox B;
        QSignalSpy Clicked(&B, &QAbstractButton::clicked);
        B.SetControl(&Edit);
        QVERIFY(!Edit.isEnabled()); // linked to an unchecked box: disabled at once
        B.SetChecked(true);
        QVERIFY(Edit.isEnabled());
        QCOMPARE(QByteArray(B.metaObject()->userProperty().name()), QByteArray("Checked"));
        QVERIFY(B.setProperty("Checked", false));
        QVERIFY(!Edit.isEnabled());
        QCOMPARE(Clicked.size(), 0);
        // Linking to a checked box enables at once.
        Other.setEnabled(false);
        B.SetChecked(true);
        B.SetControl(&Other);
        QVERIFY(Other.isEnabled());
        // A deleted control is forgotten.
        auto* Gone = new QLineEdit;
        B.SetControl(Gone);
        delete Gone;
        QCOMPARE(B.GetControl(), nullptr);
        B.SetChecked(false);
        QVERIFY(!B.GetChecked());
    }

    // Mouse and Space toggle; Enter moves on; "&" in the caption makes no Alt+letter
    // shortcut, whichever way the caption was set.
    void input_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("input");
        QTest::addColumn<bool>("startChecked");
        for (const bool Rtl : {false, true}) {
            const char* Side = Rtl ? "rtl" : "ltr";
            QTest::addRow("mouse %s", Side) << Rtl << "mouse" << Rtl;
            QTest::addRow("space %s", Side) << Rtl << "space" << !Rtl;
            QTest::addRow("return %s", Side) << Rtl << "return" << false;
            QTest::addRow("alt+S %s", Side) << Rtl << "alt" << false;
        }
        QTest::newRow("keypad enter") << false << "enter" << true;
        QTest::newRow("alt+K, caption property") << false << "alt caption" << false;
    }
    void input()
    {
        QFETCH(bool, rtl);
        QFETCH(QString, input);
        QFETCH(bool, startChecked);
        Form F(rtl);
        QLineEdit Linked;
        F.Box->SetCaptionA(QStringLiteral("&حفظ"));
        F.Box->SetCaptionE(QStringLiteral("&Save"));
        if (input == QLatin1String("alt caption"))
            F.Box->setProperty("Caption", QStringLiteral("&Keep"));
        F.Box->SetChecked(startChecked);
        F.Box->SetControl(&Linked);
        QVERIFY(F.Show());
        if (input != QLatin1String("mouse"))
            F.Box->setFocus();
        // By the time clicked() is emitted the state and the linked control have flipped.
        QList<bool> AtClick;
        connect(F.Box, &QAbstractButton::clicked, F.Box, [&] { AtClick << F.Box->GetChecked() << Linked.isEnabled(); });
        if (input == QLatin1String("mouse"))
            QTest::mouseClick(F.Box, Qt::LeftButton, {}, F.Box->GlyphRect().center());
        else if (input == QLatin1String("space"))
            QTest::keyClick(F.Box, Qt::Key_Space);
        else if (input == QLatin1String("return"))
            QTest::keyClick(F.Box, Qt::Key_Return);
        else if (input == QLatin1String("enter"))
            QTest::keyClick(F.Box, Qt::Key_Enter, Qt::KeypadModifier);
        else
            QTest::keyClick(F.Box, input == QLatin1String("alt") ? Qt::Key_S : Qt::Key_K, Qt::AltModifier);
        QTest::qWait(input.startsWith(QLatin1String("alt")) ? 250 : 0); // a mnemonic clicks after a pause
        const bool Toggles = input == QLatin1String("mouse") || input == QLatin1String("space");
        QCOMPARE(AtClick, Toggles ? QList<bool>({!startChecked, !startChecked}) : QList<bool>());
        QCOMPARE(F.Box->GetChecked(), Toggles != startChecked);
        const bool MovesOn = input == QLatin1String("return") || input == QLatin1String("enter");
        QCOMPARE(F.After->hasFocus(), MovesOn);
        QCOMPARE(F.Box->hasFocus(), !MovesOn);
        F.Box->SetBiDiMode(rtl ? bdLeftToRight : bdRightToLeft);
        QVERIFY(F.Box->shortcut().isEmpty());
    }

    void focusRectangle()
    {
        Form F(false);
        QVERIFY(F.Show());
        const QImage Unfocused = F.Box->grab().toImage();
        // Focus cues show once the keyboard moved the focus, on the caption only.
        QTest::keyClick(F.Before, Qt::Key_Tab);
        QTRY_VERIFY(F.Box->hasFocus());
        const QImage Focused = F.Box->grab().toImage();
        QCOMPARE(Focused.copy(F.Box->GlyphRect()), Unfocused.copy(F.Box->GlyphRect()));
        QVERIFY(Focused.copy(F.Box->TextRect()) != Unfocused.copy(F.Box->TextRect()));
    }
};

int main(int argc, char** argv)
{
    TQxApplication App(argc, argv);
    App.setAttribute(Qt::AA_Use96Dpi, true);
    TestCheckBox Test;
    return QTest::qExec(&Test, argc, argv);
}
#include "tst_check_box.moc"
