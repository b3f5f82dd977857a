// The data-aware image (formats by their first bytes, from real files, loading a file, the
// field check, accessibility) and the data-aware panel (its rules, its chaining to the data
// source's handler, its hook made in Loaded only).
#include "db_test_helper.h"
#include "dialog_helper.h"
#include "language_scope.h"

#include <Kesh.h>
#include <Kesh_Controls.h>
#include <Kesh_dbControls.h>
#include <platform/data.h>

#include <QAccessible>
#include <QApplication>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <QtTest>

using namespace Kesh;
using namespace KeshTest;

namespace {

// A 24×16 picture with a red left half, so what is shown can be checked.
QImage Sample()
{
    QImage Image(24, 16, QImage::Format_RGB32);
    Image.fill(Qt::white);
    QPainter(&Image).fillRect(0, 0, 12, 16, Qt::red);
    return Image;
}

// A 1×1 GIF: Qt reads GIF but does not write it.
const QByteArray OnePixelGif = QByteArray::fromHex("47494638396101000100800000ff000000000021f90401000000002c00000000010001000002024401003b");

// The bytes of a small picture file of Format, written by Qt into Dir.
QByteArray PictureFile(const QTemporaryDir& Dir, const QString& Format, QString* Path = nullptr)
{
    const QString Name = Dir.filePath(QStringLiteral("picture.") + Format);
    if (Format == QLatin1String("gif")) {
        QFile F(Name);
        F.open(QIODevice::WriteOnly);
        F.write(OnePixelGif);
    } else if (!Sample().save(Name, Format.toLatin1())) {
        return QByteArray();
    }
    if (Path)
        *Path = Name;
    QFile F(Name);
    F.open(QIODevice::ReadOnly);
    return F.readAll();
}

struct Pictures
{
    TClientDataSet Ds;
    TDataSource Source;
    Pictures()
    {
        Ds.FieldDefs().Add(QStringLiteral("Photo"), ftBlob);
        Ds.FieldDefs().Add(QStringLiteral("Notes"), ftMemo);
        Ds.FieldDefs().Add(QStringLiteral("Name"), ftString, 20);
        Ds.CreateDataSet();
        Ds.Append();
        Ds.Post();
        Source.SetDataSet(&Ds);
    }
    void Bind(TQxdbImage& Image)
    {
        Image.SetDataSource(&Source);
        Image.SetDataField(QStringLiteral("Photo"));
    }
    void Store(const QByteArray& Bytes)
    {
        Ds.Edit();
        Ds.FieldByName(QStringLiteral("Photo"))->SetAsBytes(Bytes);
        Ds.Post();
    }
};

// A dataset of Rows rows with one string column, Name, and its source.
struct Names
{
    TClientDataSet Ds;
    TDataSource Source;
    explicit Names(int Rows = 0)
    {
        Ds.FieldDefs().Add(QStringLiteral("Name"), ftString, 20);
        Ds.CreateDataSet();
        for (int I = 0; I < Rows; ++I) {
            Ds.Append();
            Ds.Post();
        }
        Source.SetDataSet(&Ds);
    }
};

// Whether Run ends in a silent abort.
bool Aborts(const std::function<void()>& Run)
{
    try {
        Run();
    } catch (const EAbort&) {
        return true;
    }
    return false;
}

} // namespace

class TestDbImagePanel : public QObject
{
    Q_OBJECT

private slots:
    void formats_data()
    {
        QTest::addColumn<QString>("driver");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QSize>("size");
        for (const char* D : {"sqlite", "postgres"}) {
            QTest::addRow("%s: bmp", D) << D << "bmp" << "bmp" << QSize(24, 16);
            QTest::addRow("%s: ico", D) << D << "ico" << "ico" << QSize(24, 16);
            QTest::addRow("%s: gif", D) << D << "gif" << "gif" << QSize(1, 1);
            QTest::addRow("%s: jpeg", D) << D << "jpg" << "jpeg" << QSize(24, 16);
            QTest::addRow("%s: png", D) << D << "png" << "png" << QSize(24, 16);
        }
    }
    // Real files of every format, stored in a blob column of a real table, shown.
    void formats()
    {
        QFETCH(QString, file);
        QFETCH(QString, format);
        KESH_OPEN_TEST_DB(Db);
        QTemporaryDir Dir;
        const QByteArray Bytes = PictureFile(Dir, file);
        QVERIFY(!Bytes.isEmpty());
        QCOMPARE(TQxdbImage::FormatOf(Bytes), format);
        const QString Table = Db->NewTable(Db->IsPostgres() ? QStringLiteral("Id %AUTOKEY%, Photo BYTEA")
                                                            : QStringLiteral("Id %AUTOKEY%, Photo BLOB"));
        TADOTable Ds;
        Ds.SetConnection(Db->Connection());
        Ds.SetTableName(Table);
        Ds.Open();
        Ds.Append();
        Ds.FieldByName(QStringLiteral("Photo"))->SetAsBytes(Bytes);
        Ds.Post();
        Ds.Close();
        Ds.Open();
        TDataSource Source;
        Source.SetDataSet(&Ds);
        TQxdbImage Image;
        Image.resize(100, 100);
        Image.SetDataSource(&Source);
        Image.SetDataField(QStringLiteral("Photo"));
        QCOMPARE(Image.Format(), format);
        QTEST(Image.Picture().size(), "size");
        if (format != QLatin1String("gif"))  // the left half is red, within JPEG's error
            QVERIFY(qAbs(Image.Picture().pixelColor(2, 8).red() - 255) < 24 && Image.Picture().pixelColor(2, 8).green() < 40);
        QCOMPARE(Image.property("Picture").value<QImage>(), Image.Picture());
        QCOMPARE(Ds.FieldByName(QStringLiteral("Photo"))->AsBytes(), Bytes);
    }

    // What the control cannot show it leaves empty, raises nothing and keeps the bytes.
    void notShown_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("placeable metafile") << QByteArray::fromHex("d7cdc69a0000000000000010001000000000000000") ;
        QTest::newRow("unknown") << QByteArray("hello, not a picture");
        QTest::newRow("one byte") << QByteArray("B");
        QTest::newRow("a JPEG's start only") << QByteArray::fromHex("ffd8ffe0");
        QTest::newRow("a bitmap header with nothing after") << QByteArray("BM");
    }
    void notShown()
    {
        QFETCH(QByteArray, bytes);
        Pictures P;
        TQxdbImage Image;
        P.Bind(Image);
        QTemporaryDir Dir;
        P.Store(PictureFile(Dir, QStringLiteral("png")));
        QVERIFY(!Image.Picture().isNull());
        QSignalSpy Spy(&Image, &TQxdbImage::PictureChanged);
        P.Store(bytes);
        QVERIFY(Image.Picture().isNull());
        QVERIFY(Image.pixmap().isNull());
        QCOMPARE(Image.Format(), QString());
        QCOMPARE(Spy.size(), 1);
        QCOMPARE(P.Ds.FieldByName(QStringLiteral("Photo"))->AsBytes(), bytes);
        P.Ds.Edit();
        P.Ds.FieldByName(QStringLiteral("Photo"))->Clear();
        P.Ds.Post();
        QVERIFY(Image.Picture().isNull());
    }

    // A picture file is stored as its own bytes, unposted; any other file is refused.
    void loadFromFile_data()
    {
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("rightToLeft");
        QTest::addColumn<QString>("message");
        QTest::newRow("png") << "png" << false << "";
        QTest::newRow("jpeg") << "jpg" << false << "";
        QTest::newRow("text file") << "txt" << false << "The file is not a picture of a shown kind (BMP, ICO, GIF, JPEG or PNG):";
        QTest::newRow("text file, Arabic") << "txt" << true << "الملف ليس صورة من الأنواع المعروضة (BMP أو ICO أو GIF أو JPEG أو PNG):";
        QTest::newRow("missing file") << "missing" << false << "Cannot open the file:";
    }
    void loadFromFile()
    {
        QFETCH(QString, file);
        QFETCH(bool, rightToLeft);
        QFETCH(QString, message);
        Language L(rightToLeft);
        Pictures P;
        TQxdbImage Image;
        P.Bind(Image);
        QTemporaryDir Dir;
        QString Path = Dir.filePath(QStringLiteral("missing.png"));
        QByteArray Bytes;
        if (file == QLatin1String("txt")) {
            Path = Dir.filePath(QStringLiteral("notes.png"));  // the name does not make it a picture
            QFile F(Path);
            F.open(QIODevice::WriteOnly);
            F.write("just text");
        } else if (file != QLatin1String("missing")) {
            Bytes = PictureFile(Dir, file, &Path);
        }
        DialogDriver Driver;
        if (!message.isEmpty())
            Driver.Click(QStringLiteral("OK"));
        QCOMPARE(Aborts([&] { Image.LoadFromFile(Path); }), !message.isEmpty());
        if (message.isEmpty()) {
            QCOMPARE(P.Ds.State(), dsEdit);
            QCOMPARE(P.Ds.FieldByName(QStringLiteral("Photo"))->AsBytes(), Bytes);
            QVERIFY(!Image.Picture().isNull());
            QCOMPARE(Driver.Seen.size(), 0);
        } else {
            QCOMPARE(P.Ds.State(), dsBrowse);
            QVERIFY(P.Ds.FieldByName(QStringLiteral("Photo"))->IsNull());
            QCOMPARE(Driver.Seen.size(), 1);
            QCOMPARE(Driver.Seen[0].Text, message + QLatin1Char('\n') + Path);
        }
    }

    // Only a binary column can be attached.
    void onlyBlobFields_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<bool>("accepted");
        QTest::newRow("blob") << "Photo" << true;
        QTest::newRow("memo") << "Notes" << false;
        QTest::newRow("string") << "Name" << false;
    }
    void onlyBlobFields()
    {
        QFETCH(QString, field);
        QFETCH(bool, accepted);
        Pictures P;
        TQxdbImage Image;
        Image.SetDataSource(&P.Source);
        DialogDriver Driver;
        Driver.Click(QStringLiteral("OK"));
        QCOMPARE(Aborts([&] { Image.SetDataField(field); }), !accepted);
        QCOMPARE(Image.Field() != nullptr, accepted);
        QCOMPARE(Driver.Seen.size(), accepted ? 0 : 1);
        if (!accepted)
            QCOMPARE(Driver.Seen[0].Text, QStringLiteral("Only TBlobField can be attached."));
    }

    // Assistive technology reads a graphic, and the format shown.
    void accessibility()
    {
        Pictures P;
        QTemporaryDir Dir;
        P.Store(PictureFile(Dir, QStringLiteral("png")));
        QWidget Window;
        auto* Image = new TQxdbImage(&Window);
        Image->setGeometry(0, 0, 60, 60);
        Image->setAccessibleName(QStringLiteral("Item photo"));
        Image->SetDataSource(&P.Source);
        Image->SetDataField(QStringLiteral("Photo"));
        Window.show();
        QAccessibleInterface* A = QAccessible::queryAccessibleInterface(Image);
        QVERIFY(A);
        QCOMPARE(A->role(), QAccessible::Graphic);
        QCOMPARE(A->text(QAccessible::Name), QStringLiteral("Item photo"));
        QCOMPARE(A->text(QAccessible::Description), QStringLiteral("PNG"));
    }

    // The panel's rules, hooked through a form description (EndLoading runs Loaded).
    void panelRules_data()
    {
        QTest::addColumn<int>("rule");
        QTest::addColumn<int>("rows");
        QTest::addColumn<QString>("enabledIn");  // browse, edit, insert, after post
        QTest::newRow("editing") << int(txEditing) << 1 << "0110";
        QTest::newRow("browsing") << int(txBrowsing) << 1 << "1001";
        QTest::newRow("browsing not empty") << int(txBrowsingNotEmpty) << 1 << "1001";
        QTest::newRow("browsing not empty, empty") << int(txBrowsingNotEmpty) << 0 << "0001";
        QTest::newRow("always") << int(txAllways) << 1 << "1111";
    }
    void panelRules()
    {
        QFETCH(int, rule);
        QFETCH(int, rows);
        QFETCH(QString, enabledIn);
        Names N(rows);
        TClientDataSet& Ds = N.Ds;
        TDataSource& Source = N.Source;
        QWidget Form;
        auto* Panel = new TQxdbPanel(&Form);
        auto* Inside = new TQxEdit(Panel);
        Panel->BeginLoading();
        Panel->SetEnabledWhen(TxEnabledWhenType(rule));
        Panel->SetDataSource(&Source);
        EndLoading(&Form);
        QString Seen;
        auto Note = [&] { Seen += Panel->isEnabled() ? QLatin1Char('1') : QLatin1Char('0'); };
        Panel->Refresh();
        Note();
        Ds.Edit();
        Note();
        Ds.Cancel();
        Ds.Insert();
        Note();
        Ds.FieldByName(QStringLiteral("Name"))->SetAsString(QStringLiteral("x"));
        Ds.Post();
        Note();
        QCOMPARE(Seen, enabledIn);
        QCOMPARE(Inside->isEnabled(), Panel->isEnabled());
    }

    // The source's own handler keeps working, once per change, after the panel's.
    void panelChainsTheSourceHandler()
    {
        Names N;
        TClientDataSet& Ds = N.Ds;
        TDataSource& Source = N.Source;
        QStringList Calls;
        QWidget Form;
        auto* Panel = new TQxdbPanel(&Form);
        Source.OnStateChange = [&](TDataSource* Sender) {
            QCOMPARE(Sender, &Source);
            Calls << QStringLiteral("own %1").arg(Panel ? Panel->isEnabled() : -1);
        };
        Panel->BeginLoading();
        Panel->SetEnabledWhen(txEditing);
        Panel->SetDataSource(&Source);
        EndLoading(&Form);
        Ds.Insert();
        Ds.Cancel();
        // The panel's state is set before the own handler runs.
        QCOMPARE(Calls, (QStringList{"own 1", "own 0"}));
        delete Panel;
        Panel = nullptr;
        Ds.Insert();
        QCOMPARE(Calls.size(), 3);
        QCOMPARE(Calls.last(), QStringLiteral("own -1"));
        Source.OnStateChange = nullptr;  // the source outlives Calls
    }

    // A panel made in code after building is not hooked: it follows only on Refresh.
    void panelCreatedInCodeIsNotHooked()
    {
        Names N;
        TClientDataSet& Ds = N.Ds;
        TDataSource& Source = N.Source;
        int Own = 0;
        Source.OnStateChange = [&](TDataSource*) { ++Own; };
        QWidget Form;
        Form.show();
        auto* Panel = new TQxdbPanel(&Form);
        Panel->show();  // loaded now, without a source: nothing hooked
        Panel->SetEnabledWhen(txEditing);
        Panel->SetDataSource(&Source);
        Ds.Insert();
        QVERIFY(Panel->isEnabled());
        QCOMPARE(Own, 1);
        Panel->Refresh();
        QVERIFY(Panel->isEnabled());
        Ds.Cancel();
        QVERIFY(Panel->isEnabled());
        Panel->Refresh();
        QVERIFY(!Panel->isEnabled());
        QCOMPARE(Own, 2);  // the two changes; an unhooked panel has no handler to chain
        Source.OnStateChange = nullptr;  // the source outlives Own
    }
};

QTEST_MAIN(TestDbImagePanel)
#include "tst_db_image_panel.moc"
