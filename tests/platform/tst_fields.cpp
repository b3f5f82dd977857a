// Tests of TField and its typed descendants: conversions, text, formats, nulls, events.
#include "platform/data.h"
#include "platform/exceptions.h"
#include "platform/rtl/format_settings.h"
#include <QLineEdit>
#include <QtTest>
#include <memory>

using namespace Kesh;

namespace {

// A dataset of one row with one column of Type, in insert state.
std::unique_ptr<TClientDataSet> OneField(TFieldType Type, int Size = 0)
{
    auto Ds = std::make_unique<TClientDataSet>();
    Ds->FieldDefs().Add(QStringLiteral("F"), Type, Size);
    Ds->CreateDataSet();
    Ds->Append();
    return Ds;
}

QString Message(const std::function<void()>& F)
{
    try {
        F();
    } catch (const Exception& E) {
        return E.Message;
    }
    return QString();
}

// An integer shown as "#n" and typed as "#n": the pattern of the library's integer date field.
class THashField : public TIntegerField
{
public:
    using TIntegerField::TIntegerField;
    void SetText(const QString& Value) override { SetAsInteger(Value.mid(1).toInt() * 1); }

protected:
    void GetText(QString& Text, bool) const override { Text = IsNull() ? QString() : QLatin1Char('#') + QString::number(AsInteger()); }
};

} // namespace

class TestFields : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        FormatSettings.DecimalSeparator = QLatin1Char('.');
        FormatSettings.ThousandSeparator = QLatin1Char(',');
        FormatSettings.TimeAMString = QStringLiteral("AM");
        FormatSettings.TimePMString = QStringLiteral("PM");
    }
    void text_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("format");
        QTest::addColumn<QString>("asString");
        QTest::addColumn<QString>("displayText");
        QTest::addColumn<QString>("editText");
        QTest::newRow("integer") << int(ftInteger) << "42" << "" << "42" << "42" << "42";
        QTest::newRow("integer, leading blank") << int(ftInteger) << " 5" << "" << "5" << "5" << "5";
        QTest::newRow("integer, format") << int(ftInteger) << "1234567" << "#,##0" << "1234567" << "1,234,567" << "1,234,567";
        QTest::newRow("integer, typed with separators") << int(ftInteger) << "1,234" << "" << "1234" << "1234" << "1234";
        QTest::newRow("smallint") << int(ftSmallint) << "-32768" << "" << "-32768" << "-32768" << "-32768";
        QTest::newRow("largeint, exact") << int(ftLargeint) << "9007199254740993" << "" << "9007199254740993"
                                         << "9007199254740993" << "9007199254740993";
        QTest::newRow("float") << int(ftFloat) << "2.5" << "" << "2.5" << "2.5" << "2.5";
        QTest::newRow("float, format") << int(ftFloat) << "1234.5" << "#,##0.00" << "1234.5" << "1,234.50" << "1,234.50";
        QTest::newRow("float, typed as shown") << int(ftFloat) << "1,234.50" << "" << "1234.5" << "1234.5" << "1234.5";
        QTest::newRow("float, half away from zero") << int(ftFloat) << "0.125" << "0.00" << "0.125" << "0.13" << "0.13";
        QTest::newRow("currency") << int(ftCurrency) << "1234.5" << "" << "1234.5" << "1,234.50" << "1234.50";
        QTest::newRow("bcd rounds to 4 places") << int(ftBCD) << "1.23456" << "" << "1.2346" << "1.2346" << "1.2346";
        QTest::newRow("boolean, prefix") << int(ftBoolean) << "t" << "" << "True" << "True" << "True";
        QTest::newRow("boolean, any case") << int(ftBoolean) << "FALSE" << "" << "False" << "False" << "False";
        QTest::newRow("string") << int(ftString) << "نص عربي" << "" << "نص عربي" << "نص عربي" << "نص عربي";
        QTest::newRow("date") << int(ftDate) << "2024-03-05" << "" << "2024-03-05" << "2024-03-05" << "2024-03-05";
        QTest::newRow("date, classic format") << int(ftDate) << "2024-03-05" << "d-m-yyyy" << "2024-03-05" << "5-3-2024"
                                              << "2024-03-05";
        QTest::newRow("date, names") << int(ftDate) << "2024-03-05" << "dd mmm yy" << "2024-03-05" << "05 Mar 24"
                                     << "2024-03-05";
        QTest::newRow("time") << int(ftTime) << "14:30" << "" << "14:30:00" << "14:30:00" << "14:30:00";
        QTest::newRow("time, hh:mm is minutes") << int(ftTime) << "14:05" << "hh:mm" << "14:05:00" << "14:05" << "14:05:00";
        QTest::newRow("time, 12 hours") << int(ftTime) << "14:05" << "h:nn am/pm" << "14:05:00" << "2:05 pm" << "14:05:00";
        QTest::newRow("time, ampm") << int(ftTime) << "00:15" << "hh:nn ampm" << "00:15:00" << "12:15 AM" << "00:15:00";
        QTest::newRow("datetime") << int(ftDateTime) << "2024-03-05 14:30:15" << "" << "2024-03-05 14:30:15"
                                  << "2024-03-05 14:30:15" << "2024-03-05 14:30:15";
        QTest::newRow("datetime at midnight") << int(ftDateTime) << "2024-03-05" << "" << "2024-03-05" << "2024-03-05"
                                              << "2024-03-05";
        QTest::newRow("datetime, quoted text") << int(ftDateTime) << "2024-03-05 09:07:00" << "dd/mm/yyyy \"at\" hh:nn"
                                               << "2024-03-05 09:07:00" << "05/03/2024 at 09:07" << "2024-03-05 09:07:00";
        QTest::newRow("guid") << int(ftGuid) << "1b4e28ba-2fa1-11d2-883f-0016d3cca427" << ""
                              << "{1B4E28BA-2FA1-11D2-883F-0016D3CCA427}" << "{1B4E28BA-2FA1-11D2-883F-0016D3CCA427}"
                              << "{1B4E28BA-2FA1-11D2-883F-0016D3CCA427}";
        QTest::newRow("bytes") << int(ftVarBytes) << "00ff10" << "" << "00FF10" << "00FF10" << "00FF10";
        QTest::newRow("blob") << int(ftBlob) << "data" << "" << "data" << "(BLOB)" << "data";
        QTest::newRow("memo") << int(ftMemo) << "long text" << "" << "long text" << "(MEMO)" << "long text";
        QTest::newRow("empty text is null") << int(ftInteger) << "" << "" << "" << "" << "";
    }
    void text()
    {
        QFETCH(int, type);
        QFETCH(QString, input);
        QFETCH(QString, format);
        auto Ds = OneField(TFieldType(type));
        TField* F = Ds->Fields()[0];
        F->SetDisplayFormat(format);
        F->SetText(input);
        QTEST(F->AsString(), "asString");
        QTEST(F->DisplayText(), "displayText");
        QTEST(F->Text(), "editText");
        // The value survives a post and a new read of the row.
        Ds->Post();
        Ds->First();
        QTEST(F->AsString(), "asString");
        QCOMPARE(F->IsNull(), input.isEmpty());
    }
    void conversionErrors_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("message");
        QTest::newRow("integer") << int(ftInteger) << "12a" << "'12a' is not a valid integer value for field 'F'";
        QTest::newRow("integer, trailing blank") << int(ftInteger) << "5 " << "'5 ' is not a valid integer value for field 'F'";
        QTest::newRow("smallint range") << int(ftSmallint) << "40000"
                                        << "40000 is not a valid value for field 'F'. The allowed range is -32768 to 32767";
        QTest::newRow("word range") << int(ftWord) << "-1" << "-1 is not a valid value for field 'F'. The allowed range is 0 to 65535";
        QTest::newRow("integer range") << int(ftInteger) << "2147483648"
                                       << "2147483648 is not a valid value for field 'F'. The allowed range is -2147483648 to 2147483647";
        QTest::newRow("float") << int(ftFloat) << "1.2.3" << "'1.2.3' is not a valid floating point value for field 'F'";
        QTest::newRow("boolean") << int(ftBoolean) << "maybe" << "'maybe' is not a valid boolean value for field 'F'";
        QTest::newRow("date") << int(ftDate) << "2024-13-45" << "'2024-13-45' is not a valid date and time value for field 'F'";
        QTest::newRow("guid") << int(ftGuid) << "not-a-guid" << "'not-a-guid' is not a valid GUID value for field 'F'";
        QTest::newRow("hex") << int(ftBytes) << "zz" << "'zz' is not a valid hexadecimal value for field 'F'";
    }
    void conversionErrors()
    {
        QFETCH(int, type);
        QFETCH(QString, input);
        auto Ds = OneField(TFieldType(type));
        TField* F = Ds->Fields()[0];
        QTEST(Message([&] { F->SetText(input); }), "message");
        QVERIFY(F->IsNull());  // a refused value leaves the old one
    }
    void nulls()
    {
        auto Ds = OneField(ftInteger);
        TField* F = Ds->Fields()[0];
        QVERIFY(F->IsNull());
        QCOMPARE(F->AsString(), QString());
        QCOMPARE(F->AsInteger(), 0);
        QCOMPARE(F->AsFloat(), 0.0);
        QVERIFY(!F->AsBoolean());
        const QVariant V = F->AsVariant();
        QVERIFY(V.isValid() && V.isNull());  // Null, not Unassigned
        QCOMPARE(V.metaType(), QMetaType::fromType<int>());
        F->SetAsInteger(3);
        QVERIFY(!F->IsNull());
        F->Clear();
        QVERIFY(F->IsNull());
        F->SetAsVariant(QVariant());
        QVERIFY(F->IsNull());
    }
    void typedValues()
    {
        TClientDataSet Ds;
        Ds.FieldDefs().Add(QStringLiteral("I"), ftInteger);
        Ds.FieldDefs().Add(QStringLiteral("D"), ftDateTime);
        Ds.FieldDefs().Add(QStringLiteral("S"), ftString);
        Ds.FieldDefs().Add(QStringLiteral("C"), ftCurrency);
        Ds.CreateDataSet();
        Ds.Append();
        TField* I = Ds.Fields()[0];
        TField* D = Ds.Fields()[1];
        TField* S = Ds.Fields()[2];
        TField* C = Ds.Fields()[3];
        I->SetAsFloat(2.5);  // rounds half to even, as Round does
        QCOMPARE(I->AsInteger(), 2);
        QCOMPARE(I->AsVariant().metaType(), QMetaType::fromType<int>());
        D->SetAsDateTime(45356.75);  // 2024-03-05 18:00
        QCOMPARE(D->AsString(), QStringLiteral("2024-03-05 18:00:00"));
        QCOMPARE(D->AsDateTime(), 45356.75);
        QCOMPARE(D->AsVariant().toDateTime(), QDateTime(QDate(2024, 3, 5), QTime(18, 0)));
        S->SetAsInteger(17);
        QCOMPARE(S->AsString(), QStringLiteral("17"));
        QCOMPARE(S->AsInteger(), 17);
        S->SetAsString(QStringLiteral("yes"));
        QVERIFY(S->AsBoolean());
        QVERIFY_THROWS_EXCEPTION(EDatabaseError, S->AsInteger());
        C->SetAsCurrency(Currency::FromRaw(12345));
        QCOMPARE(C->AsFloat(), 1.2345);
        QCOMPARE(C->AsCurrency().Raw(), 12345);
    }
    void validateAndChange()
    {
        auto Ds = OneField(ftInteger);
        TField* F = Ds->Fields()[0];
        F->SetAsInteger(1);
        int Changes = 0;
        QList<int> Seen;
        F->OnChange = [&](TField*) { ++Changes; };
        F->OnValidate = [&](TField* Field) {
            Seen << Field->AsInteger();  // the new value reads through the field
            if (Field->AsInteger() < 0)
                throw EDatabaseError(QStringLiteral("no negatives"));
        };
        F->SetAsInteger(5);
        QCOMPARE(Message([&] { F->SetAsInteger(-1); }), QStringLiteral("no negatives"));
        QCOMPARE(F->AsInteger(), 5);
        QCOMPARE(Seen, QList<int>({5, -1}));
        QCOMPARE(Changes, 1);
    }
    void textEvents()
    {
        auto Ds = OneField(ftString);
        TField* F = Ds->Fields()[0];
        F->OnGetText = [](TField* Field, QString& Text, bool Display) {
            Text = (Display ? QStringLiteral("D:") : QStringLiteral("E:")) + Field->AsString();
        };
        F->OnSetText = [](TField* Field, const QString& Text) { Field->SetAsString(Text.toUpper()); };
        F->SetText(QStringLiteral("abc"));
        QCOMPARE(F->AsString(), QStringLiteral("ABC"));
        QCOMPARE(F->DisplayText(), QStringLiteral("D:ABC"));
        QCOMPARE(F->Text(), QStringLiteral("E:ABC"));
    }
    void defaults()
    {
        TClientDataSet Ds;
        Ds.FieldDefs().Add(QStringLiteral("Qty"), ftInteger);
        Ds.FieldDefs().Add(QStringLiteral("Name"), ftWideString, 25);
        Ds.FieldDefs().Add(QStringLiteral("Price"), ftFloat);
        Ds.CreateDataSet();
        TField* Qty = Ds.Fields()[0];
        TField* Name = Ds.Fields()[1];
        QCOMPARE(Qty->Alignment(), Qt::Alignment(Qt::AlignRight));
        QCOMPARE(Ds.Fields()[2]->Alignment(), Qt::Alignment(Qt::AlignRight));
        QCOMPARE(Name->Alignment(), Qt::Alignment(Qt::AlignLeft));
        QCOMPARE(Name->DisplayWidth(), 25);
        QCOMPARE(Name->DisplayLabel(), QStringLiteral("Name"));
        Name->SetDisplayLabel(QStringLiteral("الاسم"));
        QCOMPARE(Name->DisplayName(), QStringLiteral("الاسم"));
        QCOMPARE(Qty->DataSize(), 4);
        QVERIFY(Qty->Visible());
        QVERIFY(!Qty->ReadOnly());
        QCOMPARE(Qty->DataSet(), &Ds);
        QCOMPARE(Qty->property("DisplayWidth").toInt(), 11);
    }
    void descendantOverridesText()
    {
        TClientDataSet Ds;
        Ds.FieldDefs().Add(QStringLiteral("N"), ftInteger);
        auto* F = new THashField(&Ds);
        F->SetFieldName(QStringLiteral("N"));
        Ds.CreateDataSet();
        Ds.Append();
        F->SetText(QStringLiteral("#12"));
        QCOMPARE(F->AsInteger(), 12);
        QCOMPARE(F->DisplayText(), QStringLiteral("#12"));
        QCOMPARE(F->Text(), QStringLiteral("#12"));
        TDataSetModel Model;
        Model.SetDataSet(&Ds);
        QCOMPARE(Model.data(Model.index(0, 0)).toString(), QStringLiteral("#12"));  // grids see the override
    }
    void validChars()
    {
        auto Ints = OneField(ftInteger);
        auto Floats = OneField(ftFloat);
        auto Strings = OneField(ftString);
        QVERIFY(Ints->Fields()[0]->IsValidChar(QLatin1Char('7')));
        QVERIFY(Ints->Fields()[0]->IsValidChar(QLatin1Char('-')));
        QVERIFY(!Ints->Fields()[0]->IsValidChar(QLatin1Char('.')));
        QVERIFY(Floats->Fields()[0]->IsValidChar(QLatin1Char('.')));
        QVERIFY(!Floats->Fields()[0]->IsValidChar(QLatin1Char('x')));
        QVERIFY(Strings->Fields()[0]->IsValidChar(QLatin1Char('x')));
        // A number read from text by the program (a code shown by its name) takes letters.
        Ints->Fields()[0]->OnSetText = [](TField* Sender, const QString& Text) { Sender->SetAsInteger(Text.size()); };
        QVERIFY(Ints->Fields()[0]->IsValidChar(QLatin1Char('x')));
        QVERIFY(Ints->Fields()[0]->IsValidChar(QChar(0x0628)));
    }
    void focusControl()
    {
        auto Ds = OneField(ftString);
        TDataSource Source;
        Source.SetDataSet(Ds.get());
        QWidget Window;
        auto* First = new QLineEdit(&Window);
        auto* Second = new QLineEdit(&Window);
        Second->move(0, 40);
        TFieldDataLink Link1, Link2;
        Link1.SetControl(First);
        Link2.SetControl(Second);
        for (TFieldDataLink* L : {&Link1, &Link2}) {
            L->SetDataSource(&Source);
            L->SetFieldName(QStringLiteral("F"));
        }
        Window.show();
        QApplication::setActiveWindow(&Window);
        QVERIFY(QTest::qWaitForWindowActive(&Window));
        Second->setFocus();
        Ds->Fields()[0]->FocusControl();
        QTRY_VERIFY(First->hasFocus());  // the first link takes it, the second hears nothing more
    }
};

QTEST_MAIN(TestFields)
#include "tst_fields.moc"
