// The bilingual panel (gradient face, styled caption) and the bilingual radio group
// (language switch keeping the chosen item, columns, choices by code and by user).
#include "panel.h"
#include "radio_group.h"

#include <QApplication>
#include <QGridLayout>
#include <QImage>
#include <QRadioButton>
#include <QSignalSpy>
#include <QtTest>

using namespace Kesh;

namespace {

TFont NamedFont(const QString& Name)
{
    TFont F;
    F.SetName(Name);
    return F;
}

QColor Rgb(TColor C) { return TColorToQColor(C); }

} // namespace

class TestPanelRadio : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QPalette P = QApplication::palette();
        P.setColor(QPalette::Light, QColor(255, 255, 0));
        P.setColor(QPalette::Dark, QColor(0, 128, 0));
        QApplication::setPalette(P);
    }

    void cleanup() { Application()->SetBiDiMode(bdLeftToRight); }

    void panelFace_data()
    {
        QTest::addColumn<bool>("grad");
        QTest::addColumn<int>("direction");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<quint32>("from");
        QTest::addColumn<quint32>("to");
        QTest::newRow("plain") << false << int(gdHorizontal) << false << 0xFF0000u << 0x0000FFu;
        QTest::newRow("horizontal") << true << int(gdHorizontal) << false << 0x0000FFu << 0xFF0000u;
        QTest::newRow("horizontal rtl") << true << int(gdHorizontal) << true << 0x0000FFu << 0xFF0000u;
        QTest::newRow("vertical") << true << int(gdVertical) << false << 0xFFFFFFu << 0x000000u;
        QTest::newRow("vertical rtl") << true << int(gdVertical) << true << 0x336699u << 0xC8F0FAu;
    }
    void panelFace()
    {
        QFETCH(bool, grad);
        QFETCH(int, direction);
        QFETCH(bool, rtl);
        QFETCH(quint32, from);
        QFETCH(quint32, to);
        TQxPanel P;
        P.SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        P.resize(120, 60);
        P.SetColor(0x00FF00);
        P.SetGradFill(grad);
        P.SetColorFrom(from);
        P.SetColorTo(to);
        P.SetDirection(TxGradDir(direction));
        const QImage Image = P.grab().toImage();
        const QRect Face = P.contentsRect();
        QVERIFY(Face.width() < P.width()); // inside the frame
        // The raised frame: light above, dark below.
        QVERIFY(Image.pixelColor(0, 0) != Image.pixelColor(P.width() - 1, P.height() - 1));
        const bool Horizontal = direction == gdHorizontal;
        const QPoint First = Horizontal ? QPoint(Face.left(), Face.center().y()) : QPoint(Face.center().x(), Face.top());
        const QPoint Last = Horizontal ? QPoint(Face.right(), Face.center().y()) : QPoint(Face.center().x(), Face.bottom());
        // Across the other way the colour does not change.
        const QPoint Across = Horizontal ? QPoint(Face.left(), Face.bottom()) : QPoint(Face.right(), Face.top());
        const QColor Mid = Image.pixelColor(Face.center());
        if (!grad) {
            for (const QPoint& Pt : {First, Last, Across, Face.center()})
                QCOMPARE(Image.pixelColor(Pt), QColor(Qt::green));
            return;
        }
        QCOMPARE(Image.pixelColor(First), Rgb(from));
        QCOMPARE(Image.pixelColor(Last), Rgb(to));
        QCOMPARE(Image.pixelColor(Across), Rgb(from));
        // Half-way the colour is half-way.
        QVERIFY(qAbs(Mid.red() - (Rgb(from).red() + Rgb(to).red()) / 2) <= 4);
        QVERIFY(qAbs(Mid.blue() - (Rgb(from).blue() + Rgb(to).blue()) / 2) <= 4);
    }

    void panelCaption_data()
    {
        QTest::addColumn<int>("style");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("enabled");
        QTest::addColumn<bool>("white");
        QTest::newRow("normal") << int(TxNormal) << false << true << false;
        QTest::newRow("3D rtl") << int(Tx3D) << true << true << true;
        QTest::newRow("disabled 3D") << int(Tx3D) << false << false << false;
    }
    void panelCaption()
    {
        QFETCH(int, style);
        QFETCH(bool, rtl);
        QFETCH(bool, enabled);
        TQxPanel P;
        P.SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        P.resize(200, 50);
        P.SetColor(0xC8F0FA);
        QFont F(QStringLiteral("DejaVu Sans"));
        F.setPointSize(14);
        F.setStyleStrategy(QFont::NoAntialias);
        P.SetFont(TFont(F, clBlack));
        P.SetCaption(rtl ? QStringLiteral("لوحة") : QStringLiteral("Panel"));
        P.SetTextStyle(TxTextStyle(style));
        P.setEnabled(enabled);
        const QImage Image = P.grab().toImage();
        QHash<QRgb, QRect> Bounds; // of each colour inside the frame
        for (int y = 1; y < Image.height() - 1; ++y)
            for (int x = 1; x < Image.width() - 1; ++x)
                Bounds[Image.pixel(x, y)] |= QRect(x, y, 1, 1);
        const QRect Text = Bounds.value(qRgb(0, 0, 0)), White = Bounds.value(qRgb(255, 255, 255));
        QCOMPARE(!Text.isEmpty(), enabled);
        QTEST(!White.isEmpty(), "white");
        QCOMPARE(Bounds.contains(qRgb(0, 128, 0)), !enabled); // engraved
        if (enabled) {
            // Centred both ways.
            QVERIFY(qAbs(Text.center().x() - P.width() / 2) <= 3);
            QVERIFY(qAbs(Text.center().y() - P.height() / 2) <= 3);
        }
        if (style == Tx3D && enabled)
            QCOMPARE(White.topLeft(), Text.topLeft() - QPoint(1, 1));
    }

    // The caption and font of the panel and of the radio group's frame when a language has
    // none (the plain switch is checked with the other bilingual controls).
    void switchCaption_data()
    {
        QTest::addColumn<bool>("radio");
        QTest::addColumn<QString>("captionA");
        QTest::addColumn<QString>("captionE");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("before");
        QTest::addColumn<QString>("after");
        const QString A = QStringLiteral("البيانات"), E = QStringLiteral("Data");
        for (const bool Radio : {false, true}) {
            const char* Kind = Radio ? "radio" : "panel";
            QTest::addRow("%s no Arabic keeps English", Kind) << Radio << "" << E << false << E << E;
            QTest::addRow("%s no English keeps Arabic", Kind) << Radio << A << "" << true << A << A;
        }
    }
    void switchCaption()
    {
        QFETCH(bool, radio);
        QFETCH(QString, captionA);
        QFETCH(QString, captionE);
        QFETCH(bool, rtl);
        QFETCH(QString, after);
        auto Check = [&](auto& W) {
            W.SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
            W.SetFont_a(NamedFont(QStringLiteral("FontA")));
            W.SetFont_e(NamedFont(QStringLiteral("FontE")));
            W.SetCaptionA(captionA);
            W.SetCaptionE(captionE);
            QTEST(W.property("Caption").toString(), "before");
            W.SetBiDiMode(rtl ? bdLeftToRight : bdRightToLeft);
            QCOMPARE(W.property("Caption").toString(), after);
            QCOMPARE(W.GetFont().Name(), after == captionA ? QStringLiteral("FontA") : QStringLiteral("FontE"));
        };
        TQxPanel P;
        TQxRadioGroup G;
        if (radio)
            Check(G);
        else
            Check(P);
    }

    void radioSwitchKeepsIndex_data()
    {
        QTest::addColumn<QStringList>("itemsA");
        QTest::addColumn<QStringList>("itemsE");
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("byApplication");
        QTest::addColumn<int>("index");
        QTest::addColumn<QStringList>("after");
        QTest::addColumn<int>("indexAfter");
        const QStringList A{QStringLiteral("نقدا"), QStringLiteral("آجل"), QStringLiteral("شيك")};
        const QStringList E{QStringLiteral("Cash"), QStringLiteral("Credit"), QStringLiteral("Cheque")};
        QTest::newRow("to right to left") << A << E << false << false << 1 << A << 1;
        QTest::newRow("to left to right") << A << E << true << false << 2 << E << 2;
        QTest::newRow("by the application") << A << E << false << true << 0 << A << 0;
        QTest::newRow("nothing chosen") << A << E << false << false << -1 << A << -1;
        QTest::newRow("no Arabic items keep English") << QStringList() << E << false << false << 1 << E << 1;
        QTest::newRow("fewer Arabic items") << A.mid(0, 2) << E << false << false << 2 << A.mid(0, 2) << 1;
    }
    void radioSwitchKeepsIndex()
    {
        QFETCH(QStringList, itemsA);
        QFETCH(QStringList, itemsE);
        QFETCH(bool, rtl);
        QFETCH(bool, byApplication);
        QFETCH(int, index);
        QFETCH(QStringList, after);
        QFETCH(int, indexAfter);
        const TBiDiMode From = rtl ? bdRightToLeft : bdLeftToRight;
        const TBiDiMode To = rtl ? bdLeftToRight : bdRightToLeft;
        if (byApplication)
            Application()->SetBiDiMode(From);
        TQxRadioGroup G;
        if (!byApplication)
            G.SetBiDiMode(From);
        G.SetItems_a(itemsA);
        G.SetItems_e(itemsE);
        G.SetItemIndex(index);
        QSignalSpy Changed(&G, &TQxRadioGroup::ItemIndexChanged);
        if (byApplication)
            Application()->SetBiDiMode(To);
        else
            G.SetBiDiMode(To);
        QCOMPARE(G.GetItems(), after);
        QCOMPARE(G.GetItemIndex(), indexAfter);
        QCOMPARE(Changed.size(), indexAfter == index ? 0 : 1);
        for (int i = 0; i < after.size(); ++i) {
            QCOMPARE(G.Button(i)->text(), after[i]);
            QCOMPARE(G.Button(i)->isChecked(), i == indexAfter);
        }
        QCOMPARE(G.Button(int(after.size())), nullptr);
    }

    void radioItemIndex_data()
    {
        QTest::addColumn<int>("start");
        QTest::addColumn<int>("set");
        QTest::addColumn<int>("expected");
        QTest::addColumn<int>("signals");
        QTest::newRow("choose") << -1 << 2 << 2 << 1;
        QTest::newRow("same again") << 2 << 2 << 2 << 0;
        QTest::newRow("none") << 1 << -1 << -1 << 1;
        QTest::newRow("below none") << 1 << -7 << -1 << 1;
        QTest::newRow("past the end") << 0 << 9 << 3 << 1;
    }
    void radioItemIndex()
    {
        QFETCH(int, start);
        QFETCH(int, set);
        QFETCH(int, expected);
        TQxRadioGroup G;
        G.SetItems({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c"), QStringLiteral("d")});
        G.SetItemIndex(start);
        QSignalSpy Changed(&G, &TQxRadioGroup::ItemIndexChanged);
        QVERIFY(G.setProperty("ItemIndex", set));
        QCOMPARE(G.GetItemIndex(), expected);
        QTEST(int(Changed.size()), "signals");
        for (int i = 0; i < 4; ++i)
            QCOMPARE(G.Button(i)->isChecked(), i == expected);
        QCOMPARE(QByteArray(G.metaObject()->userProperty().name()), QByteArray("ItemIndex"));
    }

    void radioUserChoice_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::newRow("ltr") << false;
        QTest::newRow("rtl") << true;
    }
    void radioUserChoice()
    {
        QFETCH(bool, rtl);
        TQxRadioGroup G;
        G.SetBiDiMode(rtl ? bdRightToLeft : bdLeftToRight);
        G.SetItems({QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
        G.resize(200, 150);
        G.show();
        QVERIFY(QTest::qWaitForWindowExposed(&G));
        QSignalSpy Changed(&G, &TQxRadioGroup::ItemIndexChanged);
        // On the round indicator, which sits on the reading side.
        QRadioButton* B = G.Button(1);
        QTest::mouseClick(B, Qt::LeftButton, {}, QPoint(rtl ? B->width() - 6 : 6, B->height() / 2));
        QCOMPARE(G.GetItemIndex(), 1);
        QCOMPARE(Changed.size(), 1);
        QCOMPARE(Changed.at(0).at(0).toInt(), 1);
    }

    void radioColumns_data()
    {
        QTest::addColumn<int>("columns");
        QTest::addColumn<QString>("cells"); // the row and column of each item
        QTest::newRow("one column") << 1 << "00 10 20";
        QTest::newRow("five in two") << 2 << "00 10 20 01 11";
        QTest::newRow("four in two") << 2 << "00 10 01 11";
        QTest::newRow("more columns than items") << 5 << "00 01";
        QTest::newRow("zero columns is one") << 0 << "00 10";
    }
    void radioColumns()
    {
        QFETCH(int, columns);
        QFETCH(QString, cells);
        const QStringList Cells = cells.split(QLatin1Char(' '));
        const int Last = int(Cells.size()) - 1;
        QStringList Items;
        for (int i = 0; i <= Last; ++i)
            Items << QStringLiteral("Item %1").arg(i);
        for (const bool Rtl : {false, true}) {
            TQxRadioGroup G;
            G.SetBiDiMode(Rtl ? bdRightToLeft : bdLeftToRight);
            G.SetItems(Items);
            G.SetColumns(columns);
            G.resize(400, 200);
            G.layout()->activate();
            auto* Grid = qobject_cast<QGridLayout*>(G.layout());
            QVERIFY(Grid);
            for (int i = 0; i <= Last; ++i) {
                int R = -1, C = -1, RS = 0, CS = 0;
                Grid->getItemPosition(Grid->indexOf(G.Button(i)), &R, &C, &RS, &CS);
                QCOMPARE(QStringLiteral("%1%2").arg(R).arg(C), Cells[i]);
            }
            // The first column sits on the reading side.
            if (!Cells[Last].endsWith(QLatin1Char('0')))
                QCOMPARE(G.Button(0)->x() < G.Button(Last)->x(), !Rtl);
        }
    }
};

int main(int argc, char** argv)
{
    TQxApplication App(argc, argv);
    App.setAttribute(Qt::AA_Use96Dpi, true);
    TestPanelRadio Test;
    return QTest::qExec(&Test, argc, argv);
}
#include "tst_panel_radio.moc"
