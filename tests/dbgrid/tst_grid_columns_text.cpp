// The grid's columns as JSON text, as forms made in Designer store them: what reads, what
// is refused (changing nothing), exact round trips, and a grid bound through the text.
#include "grid_fixture.h"
#include "platform/exceptions.h"
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Kesh;
using namespace GridTest;

namespace {

QByteArray Stream(const TQxDBGridColumns& Columns)
{
    QByteArray Bytes;
    QDataStream Out(&Bytes, QIODevice::WriteOnly);
    Columns.SaveToStream(Out);
    return Bytes;
}

// Two columns with many assigned values, made through the accessors.
void Preset(TQxDBGridColumns& Columns)
{
    TQxColumn* A = Columns.Add();
    A->SetFieldName(QStringLiteral("Name"));
    A->SetWidth(140);
    A->SetColor(clYellow);
    A->SetReadOnly(true);
    A->SetPickList({QStringLiteral("قلم"), QStringLiteral("Pen|1,\"x\"")});
    A->GetTitle()->SetCaptionA(QStringLiteral("الاسم"));
    A->GetTitle()->SetCaptionE(QStringLiteral("Name"));
    A->GetTitle()->SetColor(clAqua);
    A->GetBiDiField()->SetKeyboard(kxArabic);
    A->GetBiDiField()->SetAlign_a(Qt::AlignRight);
    A->GetBiDiField()->SetFieldName_e(QStringLiteral("NameE"));
    TQxColumn* B = Columns.Add();
    B->SetFieldName(QStringLiteral("Qty"));
    B->SetVisible(false);
    B->SetButtonStyle(cbsEllipsis);
    B->SetDropDownRows(12);
    B->SetAutoSize(true);
}

} // namespace

class TestGridColumnsText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void roundTripIsExact()
    {
        TQxDBGridColumns Columns;
        Preset(Columns);
        const QString Text = Columns.GetText();
        TQxDBGridColumns Again;
        Again.SetText(Text);
        QCOMPARE(Again.GetText(), Text);
        // The same assigned values (an empty text may come back as a null one: the stream
        // tells them apart, the columns do not).
        TQxDBGridColumns Third;
        Third.SetText(Again.GetText());
        QCOMPARE(Stream(Third), Stream(Again));
        QCOMPARE(Again.Items(0)->GetWidth(), 140);
        QCOMPARE(Again.Items(0)->GetColor(), clYellow);
        QCOMPARE(Again.Items(0)->GetTitle()->GetColor(), clAqua);
        QCOMPARE(Again.Items(0)->GetBiDiField()->GetAlign_a(), Qt::AlignRight);
        QCOMPARE(Again.Items(0)->GetPickList(), Columns.Items(0)->GetPickList());
        QCOMPARE(Again.Items(1)->GetVisible(), false);
        QCOMPARE(Again.Items(1)->GetDropDownRows(), 12);
        QVERIFY(!Again.Items(1)->IsWidthStored());
        QCOMPARE(Text.count(QLatin1Char('\n')), 3); // "[", one line per column, "]"
    }

    void reads_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("check"); // "member=value" read back through the accessors
        QTest::newRow("empty: from the fields") << "" << -1 << "";
        QTest::newRow("blank: from the fields") << " \n " << -1 << "";
        QTest::newRow("no columns") << "[]" << 0 << "";
        QTest::newRow("field only") << R"([{"FieldName":"Qty"}])" << 1 << "FieldName=Qty";
        QTest::newRow("width") << R"([{"Width":75}])" << 1 << "Width=75";
        QTest::newRow("width written as 75.0") << R"([{"Width":75.0}])" << 1 << "Width=75";
        QTest::newRow("arabic title") << R"([{"Title._Caption_a":"الكمية"}])" << 1 << "Title._Caption_a=الكمية";
        QTest::newRow("pick list") << R"([{"PickList":["a","ب"]}])" << 1 << "PickList=a,ب";
        QTest::newRow("keyboard") << R"([{"_BiDiField.Keyboard":2}])" << 1 << "Keyboard=2";
        QTest::newRow("read-only") << R"([{"Readonly":1}])" << 1 << "Readonly=1";
        QTest::newRow("two columns") << R"([{"FieldName":"A"},{"FieldName":"B"}])" << 2 << "FieldName=A";
    }
    void reads()
    {
        QFETCH(QString, text);
        QFETCH(int, count);
        QFETCH(QString, check);
        TQxDBGridColumns Columns;
        Preset(Columns);
        Columns.SetText(text);
        QCOMPARE(Columns.State(), count < 0 ? csDefault : csCustomized);
        QCOMPARE(Columns.Count(), qMax(count, 0));
        QCOMPARE(Columns.GetText(), count < 0 ? QString() : Columns.GetText());
        if (check.isEmpty())
            return;
        const QString Member = check.section(QLatin1Char('='), 0, 0), Value = check.section(QLatin1Char('='), 1);
        TQxColumn* C = Columns.Items(0);
        QString Actual;
        if (Member == QLatin1String("FieldName")) Actual = C->GetFieldName();
        else if (Member == QLatin1String("Width")) Actual = QString::number(C->GetWidth());
        else if (Member == QLatin1String("Title._Caption_a")) Actual = C->GetTitle()->GetCaption_a();
        else if (Member == QLatin1String("PickList")) Actual = C->GetPickList().join(QLatin1Char(','));
        else if (Member == QLatin1String("Keyboard")) Actual = QString::number(C->GetBiDiField()->GetKeyboard());
        else if (Member == QLatin1String("Readonly")) Actual = QString::number(C->GetReadOnly()) + (C->IsReadOnlyStored() ? "" : "?");
        QCOMPARE(Actual, Value);
        // What was read writes back to text that reads to the same columns.
        TQxDBGridColumns Again;
        Again.SetText(Columns.GetText());
        QCOMPARE(Again.GetText(), Columns.GetText());
    }

    void refused_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("error");
        QTest::newRow("not JSON") << "[{" << "Not JSON at offset";
        QTest::newRow("an object") << R"({"FieldName":"A"})" << "not a list";
        QTest::newRow("a number for a column") << "[1]" << "Column 1 is not an object";
        QTest::newRow("second column bad") << R"([{"FieldName":"A"},"B"])" << "Column 2 is not an object";
        QTest::newRow("unknown member") << R"([{"Wide":3}])" << "Unknown property Wide";
        QTest::newRow("fraction") << R"([{"Width":1.5}])" << "Width is not a 32-bit integer";
        QTest::newRow("beyond 32 bits") << R"([{"Color":3e10}])" << "Color is not a 32-bit integer";
        QTest::newRow("width out of range") << R"([{"Width":-5}])" << "Value of Width out of range";
        QTest::newRow("true for a flag") << R"([{"Visible":true}])" << "Visible is neither";
        QTest::newRow("null") << R"([{"FieldName":null}])" << "FieldName is neither";
        QTest::newRow("number in a pick list") << R"([{"PickList":["a",1]}])" << "PickList lists something";
        QTest::newRow("text for a number") << R"([{"Width":"80"}])" << "expected integer, found string";
        QTest::newRow("list for a text") << R"([{"FieldName":["A"]}])" << "expected string, found list";
        QTest::newRow("bad font") << R"([{"Font":"Tahoma"}])" << "Invalid font";
        QTest::newRow("keyboard out of range") << R"([{"_BiDiField.Keyboard":9}])" << "out of range";
    }
    void refused()
    {
        QFETCH(QString, text);
        QFETCH(QString, error);
        TQxDBGridColumns Columns;
        Preset(Columns);
        const QByteArray Before = Stream(Columns);
        try {
            Columns.SetText(text);
            QFAIL("read");
        } catch (const EReadError& E) {
            QVERIFY2(E.Message.contains(error), qPrintable(E.Message));
        }
        QCOMPARE(Stream(Columns), Before);
    }

    void gridShowsColumnsInBothLanguages()
    {
        auto Ds = Items(3);
        Form F(Ds.get());
        F.Grid->SetBiDiMode(bdLeftToRight);
        QVERIFY(F.Grid->setProperty("_ColumnsText", QStringLiteral(
            R"([{"FieldName":"Name","Width":90,"Title._Caption_a":"الصنف","Title._Caption_e":"Item"},)"
            R"({"FieldName":"Qty","Title._Caption_a":"الكمية","Title._Caption_e":"Quantity","_TotalValue":0}])")));
        TQxDBGridColumns* C = F.Grid->GetColumns();
        QCOMPARE(C->Count(), 2);
        QCOMPARE(C->Items(0)->Field(), Ds->FieldByName(QStringLiteral("Name")));
        QCOMPARE(C->Items(0)->GetWidth(), 90);
        QCOMPARE(C->Items(1)->GetTitle()->GetCaption(), QStringLiteral("Quantity"));
        F.Grid->SetBiDiMode(bdRightToLeft);
        QCOMPARE(C->Items(1)->GetTitle()->GetCaption(), QStringLiteral("الكمية"));
        QCOMPARE(C->Items(0)->GetTitle()->GetCaption(), QStringLiteral("الصنف"));
        // Back to the columns of the fields.
        F.Grid->SetColumnsText(QString());
        QCOMPARE(C->State(), csDefault);
        QCOMPARE(C->Count(), Ds->Fields().size());
    }
};

QTEST_MAIN(TestGridColumnsText)
#include "tst_grid_columns_text.moc"
