// The Arabic and English captions and fonts that every bilingual control publishes: the
// properties of the shared piece, the member of the reading language shown at once, and a
// switch of direction showing the other pair.
#include <Kesh_Controls.h>

#include <QtTest>

using namespace Kesh;

namespace {

TFont NamedFont(const QString& Name)
{
    TFont F;
    F.SetName(Name);
    return F;
}

// A control of the named class on Parent, and how to read the caption it shows.
struct TShown
{
    QWidget* Control = nullptr;
    std::function<QString()> Caption;
};

TShown Make(const QString& Kind, QWidget* Parent)
{
    if (Kind == QLatin1String("label")) {
        auto* c = new TQxLabel(Parent);
        return {c, [c] { return c->GetCaption(); }};
    }
    if (Kind == QLatin1String("check box")) {
        auto* c = new TQxCheckBox(Parent);
        return {c, [c] { return c->text(); }};
    }
    if (Kind == QLatin1String("panel")) {
        auto* c = new TQxPanel(Parent);
        return {c, [c] { return c->GetCaption(); }};
    }
    if (Kind == QLatin1String("radio group")) {
        auto* c = new TQxRadioGroup(Parent);
        return {c, [c] { return c->title(); }};
    }
    if (Kind == QLatin1String("speed button")) {
        auto* c = new TQxSpeedButton(Parent);
        return {c, [c] { return c->text(); }};
    }
    if (Kind == QLatin1String("bit button")) {
        auto* c = new TQxBitBtn(Parent);
        return {c, [c] { return c->text(); }};
    }
    auto* c = new TQxIconButton(Parent);
    return {c, [c] { return c->text(); }};
}

} // namespace

class TestBilingual : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void publishedPairFollowsTheDirection_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("rightToLeft");
        for (const char* kind : {"label", "check box", "panel", "radio group", "speed button", "bit button", "icon button"}) {
            QTest::addRow("%s ltr", kind) << QString::fromLatin1(kind) << false;
            QTest::addRow("%s rtl", kind) << QString::fromLatin1(kind) << true;
        }
    }
    void publishedPairFollowsTheDirection()
    {
        QFETCH(QString, kind);
        QFETCH(bool, rightToLeft);
        QWidget Form;
        Form.setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        const TShown c = Make(kind, &Form);
        const QString arabic = QStringLiteral("الاسم"), english = QStringLiteral("Name");

        // Set through the meta-object, as a form builder or Qt Designer does.
        QVERIFY(c.Control->setProperty("_Caption_a", arabic));
        QVERIFY(c.Control->setProperty("_Caption_e", english));
        QVERIFY(c.Control->setProperty("_Font_a", QVariant::fromValue(NamedFont(QStringLiteral("Arial")))));
        QVERIFY(c.Control->setProperty("_Font_e", QVariant::fromValue(NamedFont(QStringLiteral("Courier")))));
        QCOMPARE(c.Control->property("_Caption_a").toString(), arabic);
        QCOMPARE(c.Control->property("_Caption_e").toString(), english);
        QCOMPARE(c.Control->property("_Font_a").value<TFont>().Name(), QStringLiteral("Arial"));
        QCOMPARE(c.Control->property("_Font_e").value<TFont>().Name(), QStringLiteral("Courier"));

        QCOMPARE(c.Caption(), rightToLeft ? arabic : english);
        QCOMPARE(c.Control->font().family(), rightToLeft ? QStringLiteral("Arial") : QStringLiteral("Courier"));

        // The other language's member changes nothing shown.
        c.Control->setProperty(rightToLeft ? "_Caption_e" : "_Caption_a", QStringLiteral("x"));
        QCOMPARE(c.Caption(), rightToLeft ? arabic : english);

        Form.setLayoutDirection(rightToLeft ? Qt::LeftToRight : Qt::RightToLeft);
        QCOMPARE(c.Caption(), QStringLiteral("x"));
        QCOMPARE(c.Control->font().family(), rightToLeft ? QStringLiteral("Courier") : QStringLiteral("Arial"));
    }

    // The controls that draw a styled caption publish its look, each with its own shadow
    // offset, and repaint it: a shadowed caption shows its shade copy.
    void styledCaptionLook_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("shadowPos");
        QTest::newRow("label") << "label" << 2;
        QTest::newRow("check box") << "check box" << 1;
        QTest::newRow("panel") << "panel" << 2;
    }
    void styledCaptionLook()
    {
        QFETCH(QString, kind);
        QWidget Form;
        const TShown c = Make(kind, &Form);
        QTEST(c.Control->property("_TextShadowPos").toInt(), "shadowPos");
        QCOMPARE(c.Control->property("_TextShade").toUInt(), quint32(clGray));
        c.Control->setProperty("_Caption_e", QStringLiteral("WWWW"));
        c.Control->resize(120, 24);
        const QImage Plain = c.Control->grab().toImage();
        QVERIFY(c.Control->setProperty("_TextStyle", QVariant::fromValue(TxShadow)));
        QVERIFY(c.Control->setProperty("_TextShade", quint32(0x0000FF))); // red
        QVERIFY(c.Control->setProperty("_TextShadowPos", 3));
        const QImage Shadowed = c.Control->grab().toImage();
        auto Reds = [](const QImage& I) {
            int n = 0;
            for (int y = 0; y < I.height(); ++y)
                for (int x = 0; x < I.width(); ++x)
                    n += qRed(I.pixel(x, y)) > 160 && qGreen(I.pixel(x, y)) < 110 && qBlue(I.pixel(x, y)) < 110;
            return n;
        };
        QCOMPARE(Reds(Plain), 0);
        QVERIFY(Reds(Shadowed) > 10);
    }
};

QTEST_MAIN(TestBilingual)
#include "tst_bilingual.moc"
