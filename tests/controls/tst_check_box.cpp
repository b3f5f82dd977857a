// The bilingual check box: glyph names and files, the glyph's side and the caption's
// rectangle under both directions, clicks by mouse and key, the linked control, Enter.
#include "check_box.h"

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QSignalSpy>
#include <QImageReader>
#include <QVBoxLayout>
#include <QtTest>

using namespace Kesh;

namespace {

const QColor Magenta(255, 0, 255);
const QColor ButtonHighlight(255, 255, 0);
const QColor ButtonShadow(0, 128, 0);

TFont SharpFont()
{
    QFont F(QStringLiteral("DejaVu Sans"));
    F.setPointSize(10);
    F.setStyleStrategy(QFont::NoAntialias);
    return TFont(F, clBlack, ARABIC_CHARSET);
}

TFont NamedFont(const QString& Name)
{
    TFont F;
    F.SetName(Name);
    return F;
}

QImage Render(QWidget& W)
{
    QImage Image(W.size(), QImage::Format_ARGB32);
    Image.fill(Magenta);
    W.render(&Image, QPoint(), QRegion(), QWidget::DrawChildren);
    return Image;
}

// The glyph file read on its own (by Qt's SVG image reader) and laid on magenta.
QImage Glyph(const QString& Name)
{
    QImage Image(TQxCheckBox::GlyphSize, TQxCheckBox::GlyphSize, QImage::Format_ARGB32);
    Image.fill(Magenta);
    QPainter Painter(&Image);
    Painter.drawImage(0, 0, QImage(TQxCheckBox::GlyphFile(Name)));
    return Image;
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

// A window with an edit before the check box and one after it, in tab order.
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
        Layout->addWidget(Before);
        Layout->addWidget(Box);
        Layout->addWidget(After);
        Box->SetCaptionE(QStringLiteral("Active"));
        Box->SetCaptionA(QStringLiteral("فعال"));
    }
    bool Show()
    {
        Window.show();
        return QTest::qWaitForWindowActive(&Window);
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

    void defaults()
    {
        TQxCheckBox B;
        QCOMPARE(B.size(), QSize(100, 16));
        QCOMPARE(B.focusPolicy(), Qt::StrongFocus);
        QCOMPARE(B.GetChecked(), false);
        QCOMPARE(B.GetStyle(), cbsStyle_1);
        QCOMPARE(B.GetTextStyle(), TxNormal);
        QCOMPARE(B.GetTextShade(), TColor(0x808080));
        QCOMPARE(B.GetTextShadowPos(), 1);
        QCOMPARE(B.GetControl(), nullptr);
        QCOMPARE(B.GetFont().Name(), QStringLiteral("Tahoma"));
        QCOMPARE(B.GetFont().Charset(), ARABIC_CHARSET);
        QCOMPARE(B.GetFont().Color(), clNavy);
        QCOMPARE(B.GetFont_a(), B.GetFont());
        QCOMPARE(B.GetFont_e(), B.GetFont());
        QCOMPARE(QByteArray(B.metaObject()->userProperty().name()), QByteArray("Checked"));
    }

    void glyphName_data()
    {
        QTest::addColumn<int>("style");
        QTest::addColumn<bool>("checked");
        QTest::addColumn<QString>("name");
        for (int Style = cbsStyle_1; Style <= cbsStyle_4; ++Style) {
            QTest::addRow("style %d on", Style + 1) << Style << true << QStringLiteral("CheckBox%1_ON").arg(Style + 1);
            QTest::addRow("style %d off", Style + 1) << Style << false << QStringLiteral("CheckBox%1_OFF").arg(Style + 1);
        }
    }
    void glyphName()
    {
        QFETCH(int, style);
        QFETCH(bool, checked);
        QFETCH(QString, name);
        TQxCheckBox B;
        B.SetStyle(TxCheckBoxStyles(style));
        B.SetChecked(checked);
        QCOMPARE(B.GlyphName(), name);
        // Stored in upper case, found in any case.
        const QString File = TQxCheckBox::GlyphFile(name);
        QCOMPARE(File, QStringLiteral(":/kesh/%1.svg").arg(name.toUpper()));
        QCOMPARE(TQxCheckBox::GlyphFile(name.toLower()), File);
        QCOMPARE(QImageReader(File).size(), QSize(16, 16));
        // Each state has a look of its own.
        const QString Other = QStringLiteral("CheckBox%1_%2").arg(style + 1).arg(checked ? "OFF" : "ON");
        QVERIFY(Glyph(name) != Glyph(Other));
    }

    void unknownGlyph()
    {
        QVERIFY(TQxCheckBox::GlyphFile(QStringLiteral("CheckBox5_ON")).isEmpty());
        QVERIFY(TQxCheckBox::GlyphFile(QString()).isEmpty());
    }

    void glyphSideAndText_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<int>("style");
        QTest::addColumn<bool>("checked");
        QTest::newRow("ltr style 1 on") << false << int(cbsStyle_1) << true;
        QTest::newRow("rtl style 1 on") << true << int(cbsStyle_1) << true;
        QTest::newRow("ltr style 3 off") << false << int(cbsStyle_3) << false;
        QTest::newRow("rtl style 4 off") << true << int(cbsStyle_4) << false;
    }
    void glyphSideAndText()
    {
        QFETCH(bool, rtl);
        QFETCH(int, style);
        QFETCH(bool, checked);
        TQxCheckBox B;
        B.SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        B.resize(160, 24);
        B.SetFont(SharpFont());
        B.setText(rtl ? QStringLiteral("فعال") : QStringLiteral("Active"));
        B.SetStyle(TxCheckBoxStyles(style));
        B.SetChecked(checked);
        const int W = B.width();
        const QRect ExpectedGlyph(rtl ? W - 16 : 0, 0, 16, 16);
        QCOMPARE(B.GlyphRect(), ExpectedGlyph);
        QCOMPARE(B.TextRect(), rtl ? QRect(0, 0, W - 20, 24) : QRect(20, 0, W - 20, 24));

        const QImage Image = Render(B);
        QVERIFY(SameLook(Image.copy(ExpectedGlyph), Glyph(B.GlyphName())));
        // The caption lies in its rectangle, against the glyph's side, 20 px from the edge.
        const QRect Text = PixelsOfColor(Image, Qt::black, Image.rect());
        QVERIFY(!Text.isEmpty());
        QVERIFY(B.TextRect().contains(Text));
        if (rtl) {
            QVERIFY2(Text.right() <= W - 21 && Text.right() >= W - 25, qPrintable(QString::number(Text.right())));
        } else {
            QVERIFY2(Text.left() >= 20 && Text.left() <= 24, qPrintable(QString::number(Text.left())));
        }
        // Vertically centred.
        QVERIFY(qAbs(Text.center().y() - 12) <= 2);
        // Nothing but the glyph and the caption is painted: the parent shows through.
        QCOMPARE(Image.pixelColor(rtl ? 0 : W - 1, 20), Magenta);
    }

    void styledCaption_data()
    {
        QTest::addColumn<int>("style");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<bool>("white");
        QTest::addColumn<bool>("shade");
        QTest::addColumn<bool>("engraved");
        QTest::newRow("normal") << int(TxNormal) << true << false << false << false;
        QTest::newRow("3D") << int(Tx3D) << true << true << true << false;
        QTest::newRow("shadow") << int(TxShadow) << true << false << true << false;
        QTest::newRow("disabled 3D ignores the style") << int(Tx3D) << false << false << false << true;
        QTest::newRow("disabled shadow ignores the style") << int(TxShadow) << false << false << false << true;
    }
    void styledCaption()
    {
        QFETCH(int, style);
        QFETCH(bool, enabled);
        TQxCheckBox B;
        B.resize(160, 24);
        B.SetFont(SharpFont());
        B.setText(QStringLiteral("Active"));
        B.SetTextStyle(TxTextStyle(style));
        B.SetTextShade(0x808080);
        B.setEnabled(enabled);
        const QImage Image = Render(B);
        QTEST(!PixelsOfColor(Image, Qt::white, B.TextRect()).isEmpty(), "white");
        QTEST(!PixelsOfColor(Image, QColor(128, 128, 128), B.TextRect()).isEmpty(), "shade");
        QCOMPARE(!PixelsOfColor(Image, Qt::black, B.TextRect()).isEmpty(), enabled);
        QTEST(!PixelsOfColor(Image, ButtonHighlight, B.TextRect()).isEmpty(), "engraved");
        QTEST(!PixelsOfColor(Image, ButtonShadow, B.TextRect()).isEmpty(), "engraved");
    }

    void checkedFromCode()
    {
        QLineEdit Edit;
        TQxCheckBox B;
        QSignalSpy Clicked(&B, &QAbstractButton::clicked);
        B.SetControl(&Edit);
        QVERIFY(!Edit.isEnabled()); // linked to an unchecked box: disabled at once
        B.SetChecked(true);
        QVERIFY(Edit.isEnabled());
        QVERIFY(B.setProperty("Checked", false));
        QVERIFY(!Edit.isEnabled());
        QCOMPARE(Clicked.size(), 0);
        // Linking to a checked box enables at once.
        QLineEdit Other;
        Other.setEnabled(false);
        B.SetChecked(true);
        B.SetControl(&Other);
        QVERIFY(Other.isEnabled());
    }

    void deletedControlIsForgotten()
    {
        TQxCheckBox B;
        auto* Edit = new QLineEdit;
        B.SetControl(Edit);
        delete Edit;
        QCOMPARE(B.GetControl(), nullptr);
        B.SetChecked(true); // must not touch the deleted edit
        QVERIFY(B.GetChecked());
    }

    void click_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("byMouse");
        QTest::addColumn<bool>("startChecked");
        QTest::newRow("mouse ltr") << false << true << false;
        QTest::newRow("mouse rtl") << true << true << false;
        QTest::newRow("mouse unchecks") << false << true << true;
        QTest::newRow("space ltr") << false << false << false;
        QTest::newRow("space rtl") << true << false << true;
    }
    void click()
    {
        QFETCH(bool, rtl);
        QFETCH(bool, byMouse);
        QFETCH(bool, startChecked);
        Form F(rtl);
        F.Box->SetChecked(startChecked);
        F.Box->SetControl(F.After);
        QVERIFY(F.Show());
        F.Before->setFocus();
        QTRY_VERIFY(F.Before->hasFocus());
        bool CheckedAtClick = startChecked;
        bool ControlAtClick = startChecked;
        int Clicks = 0;
        connect(F.Box, &QAbstractButton::clicked, F.Box, [&] {
            ++Clicks;
            CheckedAtClick = F.Box->GetChecked();
            ControlAtClick = F.After->isEnabled();
        });
        if (byMouse) {
            QTest::mouseClick(F.Box, Qt::LeftButton, {}, F.Box->GlyphRect().center());
        } else {
            F.Box->setFocus();
            QTest::keyClick(F.Box, Qt::Key_Space);
        }
        QCOMPARE(Clicks, 1);
        // By the time clicked() is emitted the state and the linked control have flipped.
        QCOMPARE(CheckedAtClick, !startChecked);
        QCOMPARE(ControlAtClick, !startChecked);
        QCOMPARE(F.Box->GetChecked(), !startChecked);
        QVERIFY(F.Box->hasFocus());
    }

    // The caption is drawn without prefix processing: "&" makes no Alt+letter shortcut.
    void ampersandMakesNoShortcut_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::newRow("ltr") << false;
        QTest::newRow("rtl") << true;
    }
    void ampersandMakesNoShortcut()
    {
        QFETCH(bool, rtl);
        Form F(rtl);
        F.Box->SetCaptionA(QStringLiteral("&حفظ"));
        F.Box->SetCaptionE(QStringLiteral("&Save"));
        F.Box->setProperty("Caption", QStringLiteral("&Keep"));
        QVERIFY(F.Show());
        F.Before->setFocus();
        QTRY_VERIFY(F.Before->hasFocus());
        QSignalSpy Clicked(F.Box, &QAbstractButton::clicked);
        QTest::keyClick(F.Before, Qt::Key_S, Qt::AltModifier);
        QTest::keyClick(F.Before, Qt::Key_K, Qt::AltModifier);
        QTest::qWait(250);  // a mnemonic clicks through animateClick, after a pause
        QCOMPARE(Clicked.size(), 0);
        QCOMPARE(F.Box->GetChecked(), false);
        QVERIFY(F.Box->shortcut().isEmpty());
        F.Box->SetBiDiMode(rtl ? bdLeftToRight : bdRightToLeft);
        QVERIFY(F.Box->shortcut().isEmpty());
    }

    void enterMovesFocus_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("modifiers");
        QTest::newRow("return ltr") << false << int(Qt::Key_Return) << int(Qt::NoModifier);
        QTest::newRow("return rtl") << true << int(Qt::Key_Return) << int(Qt::NoModifier);
        QTest::newRow("keypad enter") << false << int(Qt::Key_Enter) << int(Qt::KeypadModifier);
    }
    void enterMovesFocus()
    {
        QFETCH(bool, rtl);
        QFETCH(int, key);
        QFETCH(int, modifiers);
        Form F(rtl);
        QVERIFY(F.Show());
        F.Box->setFocus();
        QTRY_VERIFY(F.Box->hasFocus());
        QSignalSpy Clicked(F.Box, &QAbstractButton::clicked);
        QTest::keyClick(F.Box, Qt::Key(key), Qt::KeyboardModifiers(modifiers));
        QVERIFY(F.After->hasFocus());
        QCOMPARE(Clicked.size(), 0);
        QCOMPARE(F.Box->GetChecked(), false);
    }

    void focusRectangle()
    {
        Form F(false);
        QVERIFY(F.Show());
        F.Before->setFocus();
        QTRY_VERIFY(F.Before->hasFocus());
        const QImage Unfocused = F.Box->grab().toImage();
        // Focus cues show once the keyboard moved the focus.
        QTest::keyClick(F.Before, Qt::Key_Tab);
        QTRY_VERIFY(F.Box->hasFocus());
        const QImage Focused = F.Box->grab().toImage();
        // Only the caption's rectangle changes; the glyph stays as it was.
        const QRect Glyph = F.Box->GlyphRect();
        QCOMPARE(Focused.copy(Glyph), Unfocused.copy(Glyph));
        QVERIFY(Focused.copy(F.Box->TextRect()) != Unfocused.copy(F.Box->TextRect()));
    }

    void switchLanguage_data()
    {
        QTest::addColumn<QString>("captionA");
        QTest::addColumn<QString>("captionE");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        QTest::addColumn<QString>("fontAfter");
        const QString A = QStringLiteral("فعال"), E = QStringLiteral("Active");
        QTest::newRow("to right to left") << A << E << false << E << A << "FontA";
        QTest::newRow("to left to right") << A << E << true << A << E << "FontE";
        QTest::newRow("no Arabic keeps English") << "" << E << false << E << E << "FontE";
        QTest::newRow("no English keeps Arabic") << A << "" << true << A << A << "FontA";
    }
    void switchLanguage()
    {
        QFETCH(QString, captionA);
        QFETCH(QString, captionE);
        QFETCH(bool, rtl);
        TQxCheckBox B;
        B.SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        B.SetFont_a(NamedFont(QStringLiteral("FontA")));
        B.SetFont_e(NamedFont(QStringLiteral("FontE")));
        B.SetCaptionA(captionA);
        B.SetCaptionE(captionE);
        QTEST(B.text(), "before");
        const QRect GlyphBefore = B.GlyphRect();
        B.SetBiDiMode(rtl ? bdLeftToRight : bdRightToLeft);
        QTEST(B.text(), "after");
        QTEST(B.GetFont().Name(), "fontAfter");
        QVERIFY(B.GlyphRect() != GlyphBefore); // the glyph moves to the other side
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
