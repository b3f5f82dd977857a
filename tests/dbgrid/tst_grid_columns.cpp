// The grid's columns: default colours and widths, shared widths of auto-size columns, the
// bilingual titles and field bindings, the totals flag, streaming and remembered widths.
#include "grid_fixture.h"
#include "dialog_helper.h"
#include "globals.h"
#include "platform/exceptions.h"
#include <QBuffer>
#include <QScrollBar>
#include <QTemporaryDir>

using namespace Kesh;
using namespace GridTest;

class TestGridColumns : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void defaultColours_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<quint32>("cell");
        QTest::addColumn<quint32>("title");
        QTest::newRow("0") << 0 << quint32(0xFFFFFF) << quint32(0xC8F0FA);
        QTest::newRow("1") << 1 << quint32(0xE0E8EC) << quint32(0xB4DCE6);
        QTest::newRow("2") << 2 << quint32(0xFFFFFF) << quint32(0xC8F0FA);
    }
    void defaultColours()
    {
        QFETCH(int, index);
        QFETCH(quint32, cell);
        QFETCH(quint32, title);
        auto Ds = Items(3);
        Form F(Ds.get());
        F.Grid->GetColumns()->Items(4)->SetVisible(false);
        QVERIFY(F.Show());
        TQxColumn* C = F.Grid->GetColumns()->Items(index);
        QCOMPARE(C->GetColor(), cell);
        QCOMPARE(C->GetTitle()->GetColor(), title);
        // As painted: row 1 is not the current cell, so it shows the band itself.
        QCOMPARE(F.CellColor(1, index), Rgb(cell));
        const QHeaderView* H = F.Grid->horizontalHeader();
        const QPoint P = H->mapTo(F.Grid, QPoint(H->sectionViewportPosition(index) + 3, H->height() - 3));
        QCOMPARE(F.Image().pixelColor(P), Rgb(title));
        // Outside a grid the system colours are the defaults.
        TQxColumn Free;
        QCOMPARE(Free.GetColor(), clWindow);
        QCOMPARE(Free.GetTitle()->GetColor(), clBtnFace);
    }

    void defaultWidths()
    {
        TQxColumn Free;
        QCOMPARE(Free.GetWidth(), 64);
        auto Ds = Items(2);
        Form F(Ds.get());
        TQxColumn* Unbound = F.Grid->GetColumns()->Add();
        Unbound->SetFieldName(QStringLiteral("NoSuchField"));
        QVERIFY(!Unbound->Field());
        QCOMPARE(Unbound->GetWidth(), F.Grid->DefaultColumnWidth());
        TQxColumn* Name = F.Grid->GetColumns()->Add();
        Name->SetFieldName(QStringLiteral("Name"));
        const int Zeros = QFontMetrics(Name->GetFont().Font()).horizontalAdvance(QLatin1Char('0')) * 20 + 4;
        const int Title = QFontMetrics(Name->GetTitle()->GetFont().Font()).horizontalAdvance(QStringLiteral("Name")) + 4;
        QCOMPARE(Name->GetWidth(), std::max(Zeros, Title));
        // A user's width is kept and streamed; the default is not.
        QVERIFY(!Name->IsWidthStored());
        Name->SetWidth(77);
        QVERIFY(Name->IsWidthStored());
        QCOMPARE(F.Grid->horizontalHeader()->sectionSize(Name->Index()), 77);
    }

    void autoSize_data()
    {
        QTest::addColumn<int>("free");
        QTest::newRow("400") << 400;
        QTest::newRow("401") << 401;
    }
    void autoSize()
    {
        QFETCH(int, free);
        auto Ds = Items(2);
        Ds->FieldByName(QStringLiteral("Name"))->SetDisplayWidth(10);
        Ds->FieldByName(QStringLiteral("Qty"))->SetDisplayWidth(30);
        Form F(Ds.get());
        F.Grid->SetOptions(F.Grid->GetOptions() & ~(dgColLines | dgIndicator));
        TQxDBGridColumns* Cols = F.Grid->GetColumns();
        Cols->Clear();
        TQxColumn* A = Cols->Add();
        A->SetFieldName(QStringLiteral("Name"));
        TQxColumn* B = Cols->Add();
        B->SetFieldName(QStringLiteral("Qty"));
        TQxColumn* Fixed = Cols->Add();
        Fixed->SetFieldName(QStringLiteral("Id"));
        Fixed->SetWidth(50);
        F.Grid->resize(free + 50 + 2 * F.Grid->frameWidth(), 200);
        QVERIFY(F.Show());
        A->SetAutoSize(true);
        B->SetAutoSize(true);
        QCOMPARE(A->GetWidth(), 100);
        QCOMPARE(B->GetWidth(), 300);
        QCOMPARE(Fixed->GetWidth(), 50);
    }

    // A grid laid out before its window shows leaves room for its vertical scroll bar: the
    // auto-size column takes the rest, and no horizontal scroll bar appears.
    void autoSizeLeavesRoomForTheScrollBar()
    {
        auto Ds = Items(100);
        Form F(Ds.get());
        TQxDBGridColumns* Cols = F.Grid->GetColumns();
        Cols->Clear();
        TQxColumn* Name = Cols->Add();
        Name->SetFieldName(QStringLiteral("Name"));
        TQxColumn* Id = Cols->Add();
        Id->SetFieldName(QStringLiteral("Id"));
        Id->SetWidth(50);
        Name->SetAutoSize(true);
        F.Grid->resize(400, 200);
        QVERIFY(F.Show());
        QVERIFY(F.Grid->verticalScrollBar()->isVisible());
        QCOMPARE(F.Grid->horizontalScrollBar()->maximum(), 0);
        QVERIFY(Name->GetWidth() > 200);
    }

    void illegalWidthsReported()
    {
        auto Ds = Items(2);
        Form F(Ds.get());
        F.Grid->SetOptions(F.Grid->GetOptions() & ~(dgColLines | dgIndicator));
        TQxDBGridColumns* Cols = F.Grid->GetColumns();
        Cols->Clear();
        TQxColumn* Fixed = Cols->Add();
        Fixed->SetFieldName(QStringLiteral("Id"));
        Fixed->SetWidth(100);
        TQxColumn* A = Cols->Add();
        A->SetFieldName(QStringLiteral("Name"));
        F.Grid->resize(100 + 2 * F.Grid->frameWidth(), 200);
        QVERIFY(F.Show());
        QTest::qWait(20);
        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOK"));
        A->SetAutoSize(true);
        QCOMPARE(Driver.Seen.size(), 1);
        QVERIFY2(Driver.Seen[0].Text.contains(QStringLiteral("Grid1.SetupColumnsWidths: Illegal columns widths.0")),
                 qPrintable(Driver.Seen[0].Text));
        QCOMPARE(A->GetWidth(), 0);
    }

    void languageSwitch()
    {
        auto Ds = Items(2);
        Form F(Ds.get());
        TQxDBGridColumns* Cols = F.Grid->GetColumns();
        Cols->Clear();
        TQxColumn* C = Cols->Add();
        C->SetFieldName(QStringLiteral("Name"));
        TQxColumnField* B = C->GetBiDiField();
        TFont Arabic = C->GetFont(), English = C->GetFont();
        Arabic.SetName(QStringLiteral("Noto Sans Arabic"));
        English.SetName(QStringLiteral("DejaVu Sans"));
        B->SetFont_a(Arabic);
        B->SetFont_e(English);
        B->SetAlign_a(Qt::AlignRight);
        B->SetAlign_e(Qt::AlignHCenter);
        B->SetFieldName_e(QStringLiteral("Name"));
        C->GetTitle()->SetCaptionA(QStringLiteral("الاسم"));
        C->GetTitle()->SetCaptionE(QStringLiteral("Name"));
        QCOMPARE(C->GetTitle()->GetCaption(), QStringLiteral("Name"));
        QCOMPARE(C->GetFont().Name(), QStringLiteral("DejaVu Sans"));

        // No Arabic field name: the field stays, font and alignment switch regardless.
        F.Grid->SetBiDiMode(bdRightToLeft);
        QCOMPARE(C->GetFieldName(), QStringLiteral("Name"));
        QCOMPARE(C->GetFont().Name(), QStringLiteral("Noto Sans Arabic"));
        QCOMPARE(C->GetAlignment(), Qt::Alignment(Qt::AlignRight));
        QCOMPARE(C->GetTitle()->GetCaption(), QStringLiteral("الاسم"));
        // With one, the column binds it at once (it is applied again on each setter).
        B->SetFieldName_a(QStringLiteral("Qty"));
        QCOMPARE(C->Field(), Ds->FieldByName(QStringLiteral("Qty")));
        // The application's direction reaches a grid without its own.
        F.Grid->setAttribute(Qt::WA_SetLayoutDirection, false);
        Application()->SetBiDiMode(bdRightToLeft);
        QCoreApplication::processEvents();
        Application()->SetBiDiMode(bdLeftToRight);
        QCoreApplication::processEvents();
        QCOMPARE(C->Field(), Ds->FieldByName(QStringLiteral("Name")));
        QCOMPARE(C->GetTitle()->GetCaption(), QStringLiteral("Name"));
        Application()->SetBiDiMode(bdRightToLeft);
        QCoreApplication::processEvents();
        QCOMPARE(C->Field(), Ds->FieldByName(QStringLiteral("Qty")));
        Application()->SetBiDiMode(bdLeftToRight);
        // An empty caption of the new language keeps the old one.
        C->GetTitle()->SetCaptionE(QString());
        F.Grid->SetBiDiMode(bdRightToLeft);
        F.Grid->SetBiDiMode(bdLeftToRight);
        QCOMPARE(C->GetTitle()->GetCaption(), QStringLiteral("الاسم"));
    }

    void totalValue_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<bool>("footer");
        QTest::addColumn<bool>("expected");
        QTest::addColumn<bool>("message");
        QTest::newRow("string") << "Name" << true << false << true;
        QTest::newRow("integer without footer") << "Qty" << false << false << false;
        QTest::newRow("integer with footer") << "Qty" << true << true << false;
        QTest::newRow("float with footer") << "Price" << true << true << false;
        QTest::newRow("unbound") << "Missing" << true << false << false;
    }
    void totalValue()
    {
        QFETCH(QString, field);
        QFETCH(bool, footer);
        QFETCH(bool, expected);
        QFETCH(bool, message);
        auto Ds = Items(2);
        Form F(Ds.get());
        TQxdbGridFooter Footer(&F.Window);
        if (footer)
            F.Grid->SetGridFooter(&Footer);
        TQxColumn* C = F.Grid->GetColumns()->Add();
        C->SetFieldName(field);
        KeshTest::DialogDriver Driver;
        if (message)
            Driver.Click(QStringLiteral("btnOK"));
        bool Aborted = false;
        try {
            C->SetTotalValue(true);
        } catch (const EAbort&) {
            Aborted = true;
        }
        QCOMPARE(C->GetTotalValue(), expected);
        QCOMPARE(Aborted, message);
        QCOMPARE(Driver.Seen.size(), message ? 1 : 0);
        if (message)
            QVERIFY(Driver.Seen[0].Text.contains(QStringLiteral(
                "Only the following field types can have total: Smallint, Integer, Word, Float, Currency, BCD, AutoInc and LargeInt.")));
        C->SetTotalValue(false);
        QVERIFY(!C->GetTotalValue());
    }

    void streamRoundTrip()
    {
        auto Ds = Items(2);
        Form F(Ds.get());
        TQxDBGridColumns* Cols = F.Grid->GetColumns();
        Cols->Clear();
        TQxColumn* C = Cols->Add();
        C->SetFieldName(QStringLiteral("Name"));
        C->SetWidth(91);
        C->SetColor(clYellow);
        C->SetPickList({QStringLiteral("a"), QStringLiteral("ب")});
        C->SetButtonStyle(cbsEllipsis);
        C->GetTitle()->SetCaptionA(QStringLiteral("الاسم"));
        C->GetTitle()->SetCaptionE(QStringLiteral("Name"));
        C->GetBiDiField()->SetFieldName_a(QStringLiteral("Name"));
        C->GetBiDiField()->SetKeyboard(kxArabic);
        Cols->Add()->SetFieldName(QStringLiteral("Qty"));
        QByteArray Bytes;
        {
            QDataStream Out(&Bytes, QIODevice::WriteOnly);
            Cols->SaveToStream(Out);
        }
        Form G(Ds.get());
        QDataStream In(Bytes);
        G.Grid->GetColumns()->LoadFromStream(In);
        TQxDBGridColumns* Read = G.Grid->GetColumns();
        QCOMPARE(Read->Count(), 2);
        QCOMPARE(Read->State(), csCustomized);
        TQxColumn* R = Read->Items(0);
        QCOMPARE(R->GetFieldName(), QStringLiteral("Name"));
        QCOMPARE(R->GetWidth(), 91);
        QCOMPARE(R->GetColor(), clYellow);
        QCOMPARE(R->GetPickList(), C->GetPickList());
        QCOMPARE(R->GetButtonStyle(), cbsEllipsis);
        QCOMPARE(R->GetTitle()->GetCaption_a(), QStringLiteral("الاسم"));
        QCOMPARE(R->GetTitle()->GetCaption(), QStringLiteral("Name"));
        QCOMPARE(R->GetBiDiField()->GetKeyboard(), kxArabic);
        QVERIFY(!Read->Items(1)->IsWidthStored());
        QCOMPARE(Read->Items(1)->Field(), Ds->FieldByName(QStringLiteral("Qty")));

        // Every cut of the stream is refused and leaves the columns as they were.
        for (int Cut = 0; Cut < Bytes.size(); Cut += 7) {
            QDataStream Short(Bytes.left(Cut));
            QVERIFY_THROWS_EXCEPTION(EReadError, Read->LoadFromStream(Short));
            QCOMPARE(Read->Count(), 2);
            QCOMPARE(Read->Items(0)->GetWidth(), 91);
        }
    }

    void layoutInSettingsFile()
    {
        QTemporaryDir Dir;
        const QString Saved = ConfigFile;
        ConfigFile = Dir.filePath(QStringLiteral("app.ini"));
        {
            auto Ds = Items(2);
            Form F(Ds.get());
            F.Grid->SetSaveLayout(true);
            Ds->Close();
            Ds->CreateDataSet();  // opening reads the widths and forms the section
            QCOMPARE(F.Grid->LayoutSectionName(), QStringLiteral("ItemsForm.Grid1"));
            F.Grid->GetColumns()->Items(1)->SetWidth(123);
            Ds->Close();  // saved
            QFile File(ConfigFile);
            QVERIFY(File.open(QIODevice::ReadOnly));
            const QString Text = QString::fromUtf8(File.readAll());
            QVERIFY2(Text.contains(QStringLiteral("[ItemsForm.Grid1]")) && Text.contains(QStringLiteral("Column_1=123")),
                     qPrintable(Text));
        }
        auto Ds = Items(2);
        Form F(Ds.get());
        F.Grid->SetSaveLayout(true);
        Ds->Close();
        Ds->CreateDataSet();
        QCOMPARE(F.Grid->GetColumns()->Items(1)->GetWidth(), 123);
        ConfigFile = Saved;
    }
};

QTEST_MAIN(TestGridColumns)
#include "tst_grid_columns.moc"
