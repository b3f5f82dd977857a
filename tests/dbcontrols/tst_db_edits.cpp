// Data-aware edits and text: display and edit text, writing on leaving, on Enter and on
// Post, Escape, read-only, "#Error#", the typing rule of the field, the value property,
// the language switch, the date button; on SQLite and PostgreSQL.
#include "db_test_helper.h"
#include "dialog_helper.h"
#include "language_scope.h"

#include <Kesh.h>
#include <Kesh_dbControls.h>
#include <platform/data.h>

#include <QApplication>
#include <QDataWidgetMapper>
#include <QtTest>
#include <memory>

using namespace Kesh;
using namespace KeshTest;

namespace {

// One row of every kind of column the edits meet.
struct Row
{
    TClientDataSet Ds;
    TDataSource Source;
    TQxDateField* Day = new TQxDateField(&Ds);
    TQxTimeField* At = new TQxTimeField(&Ds);
    Row()
    {
        // Persistent fields replace the dataset's own: one per column.
        (new TStringField(&Ds))->SetFieldName(QStringLiteral("Name"));
        (new TIntegerField(&Ds))->SetFieldName(QStringLiteral("Qty"));
        (new TFloatField(&Ds))->SetFieldName(QStringLiteral("Price"));
        Day->SetFieldName(QStringLiteral("Day"));
        At->SetFieldName(QStringLiteral("At"));
        (new TDateTimeField(&Ds))->SetFieldName(QStringLiteral("Stamp"));
        Ds.FieldDefs().Add(QStringLiteral("Name"), ftString, 30);
        Ds.FieldDefs().Add(QStringLiteral("Qty"), ftInteger);
        Ds.FieldDefs().Add(QStringLiteral("Price"), ftFloat);
        Ds.FieldDefs().Add(QStringLiteral("Day"), ftInteger);
        Ds.FieldDefs().Add(QStringLiteral("At"), ftSmallint);
        Ds.FieldDefs().Add(QStringLiteral("Stamp"), ftDateTime);
        Ds.CreateDataSet();
        for (int I = 0; I < 2; ++I) {
            Ds.Append();
            F("Name")->SetAsString(I ? QStringLiteral("Nut") : QStringLiteral("Bolt"));
            F("Qty")->SetAsInteger(5 + I);
            F("Price")->SetAsFloat(1234.5);
            Day->SetAsInteger(20240305 + I);
            At->SetAsInteger(1430);
            F("Stamp")->SetAsDateTime(EncodeDate(2024, 3, 5) + 0.6041666666666666);  // 14:30
            Ds.Post();
        }
        Ds.First();
        Source.SetDataSet(&Ds);
    }
    TField* F(const char* Name) const { return Ds.FieldByName(QLatin1String(Name)); }
};

struct Form
{
    QWidget Window;
    QLineEdit* Before = new QLineEdit(&Window);
    TQxdbEdit* Edit = new TQxdbEdit(&Window);
    QLineEdit* After = new QLineEdit(&Window);
    Form(TDataSource* Source, const QString& Field)
    {
        Window.resize(400, 120);
        Before->setGeometry(10, 10, 100, 21);
        Edit->move(10, 40);
        After->setGeometry(10, 70, 100, 21);
        Edit->SetDataSource(Source);
        Edit->SetDataField(Field);
    }
    bool Show()
    {
        Window.show();
        QApplication::setActiveWindow(&Window);
        if (!QTest::qWaitForWindowActive(&Window))
            return false;
        Before->setFocus();
        return Before->hasFocus();
    }
};

// Counts the date picker instead of opening it.
class TCountingEditButton : public TQxdbEditButton
{
public:
    using TQxdbEditButton::TQxdbEditButton;
    int Picks = 0;
protected:
    void PickDate() override { ++Picks; }
};

} // namespace

class TestDbEdits : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { FormatSettings.ThousandSeparator = QLatin1Char(','); FormatSettings.DecimalSeparator = QLatin1Char('.'); }

    // Away from the focus the field's display text, inside it the edit text.
    void displayAndEditText_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("displayFormat");
        QTest::addColumn<QString>("editFormat");
        QTest::addColumn<bool>("rightToLeft");
        QTest::addColumn<QString>("display");
        QTest::addColumn<QString>("edit");
        QTest::newRow("text") << "Name" << "" << "" << false << "Bolt" << "Bolt";
        QTest::newRow("money") << "Price" << "#,##0.00" << "0.##" << false << "1,234.50" << "1234.5";
        QTest::newRow("integer date") << "Day" << "" << "" << false << "5-3-2024" << "5-3-2024";
        QTest::newRow("integer date, Arabic") << "Day" << "" << "" << true << "5-3-2024" << "5-3-2024";
        QTest::newRow("integer time") << "At" << "" << "" << false << "14:30" << "14:30";
        QTest::newRow("date-time pattern") << "Stamp" << "d-m-yyyy hh:nn" << "" << false << "5-3-2024 14:30"
                                           << "2024-03-05 14:30:00";
    }
    void displayAndEditText()
    {
        QFETCH(QString, field);
        QFETCH(QString, displayFormat);
        QFETCH(QString, editFormat);
        QFETCH(bool, rightToLeft);
        Language L(rightToLeft);
        Row R;
        R.Ds.FieldByName(field)->SetDisplayFormat(displayFormat);
        R.Ds.FieldByName(field)->SetEditFormat(editFormat);
        Form F(&R.Source, field);
        QVERIFY(F.Show());
        QTEST(F.Edit->text(), "display");
        F.Edit->setFocus();
        QTEST(F.Edit->text(), "edit");
        F.After->setFocus();
        QTEST(F.Edit->text(), "display");
        QCOMPARE(R.Ds.State(), dsBrowse);  // looking changes nothing
    }

    // Typed text is written when the focus leaves, on Enter, or when Post asks; Escape
    // drops it and shows the field again.
    void writing_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<QString>("name");
        QTest::newRow("tab away") << "tab" << "Washer";
        QTest::newRow("enter") << "enter" << "Washer";
        QTest::newRow("post while focused") << "post" << "Washer";
        QTest::newRow("escape") << "escape" << "Bolt";
    }
    void writing()
    {
        QFETCH(QString, how);
        Row R;
        Form F(&R.Source, QStringLiteral("Name"));
        QVERIFY(F.Show());
        F.Edit->setFocus();
        F.Edit->selectAll();
        QTest::keyClicks(F.Edit, QStringLiteral("Washer"));
        QCOMPARE(R.Ds.State(), dsEdit);
        QCOMPARE(R.F("Name")->AsString(), QStringLiteral("Bolt"));  // not yet
        if (how == QLatin1String("tab"))
            F.After->setFocus();
        else if (how == QLatin1String("enter"))
            QTest::keyClick(F.Edit, Qt::Key_Return);
        else if (how == QLatin1String("post"))
            R.Ds.Post();
        else
            QTest::keyClick(F.Edit, Qt::Key_Escape);
        QTEST(R.F("Name")->AsString(), "name");
        QTEST(F.Edit->text(), "name");
        if (how == QLatin1String("enter"))
            QVERIFY(F.After->hasFocus());
    }

    // A value the field refuses is shown as an error; the typed text stays, the field keeps
    // its value, the focus comes back.
    void refusedValueKeepsTheText()
    {
        Row R;
        Form F(&R.Source, QStringLiteral("Day"));
        QVERIFY(F.Show());
        F.Edit->setFocus();
        F.Edit->selectAll();
        QTest::keyClicks(F.Edit, QStringLiteral("30-2-2024"));
        DialogDriver Driver;
        Driver.Click(QStringLiteral("OK"));
        F.After->setFocus();
        QTRY_COMPARE(Driver.Seen.size(), 1);
        QCOMPARE(Driver.Seen[0].Text, QStringLiteral("Invalid date value."));
        QCOMPARE(F.Edit->text(), QStringLiteral("30-2-2024"));
        QCOMPARE(R.Day->AsInteger(), 20240305);
        QTRY_VERIFY(F.Edit->hasFocus());
    }

    // Typing follows the field: digits only for whole numbers, the date's own characters.
    void typingRule_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<int>("entry");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::newRow("integer") << "Qty" << int(DeInteger) << "1a2.3" << "123";
        QTest::newRow("float") << "Price" << int(DeFloat) << "1a2.3" << "12.3";
        QTest::newRow("text") << "Name" << int(DeAnything) << "1a2.3" << "1a2.3";
        QTest::newRow("integer date") << "Day" << int(DeAnything) << "7a/3x/2024" << "7/3/2024";
        QTest::newRow("integer time") << "At" << int(DeAnything) << "9:1a5" << "9:15";
    }
    void typingRule()
    {
        QFETCH(QString, field);
        QFETCH(QString, typed);
        Row R;
        Form F(&R.Source, field);
        QVERIFY(F.Show());
        QTEST(int(F.Edit->GetDataEntry()), "entry");
        F.Edit->setFocus();
        F.Edit->selectAll();
        QTest::keyClick(F.Edit, Qt::Key_Backspace);
        for (QChar C : typed)
            QTest::keyClick(F.Edit, C.toLatin1());
        QTEST(F.Edit->text(), "shown");
    }

    // Read-only field, link or dataset: nothing can be typed and the dataset stays put.
    void readOnly_data()
    {
        QTest::addColumn<QString>("what");
        QTest::newRow("field") << "field";
        QTest::newRow("link") << "link";
        QTest::newRow("dataset") << "dataset";
    }
    void readOnly()
    {
        QFETCH(QString, what);
        Row R;
        if (what == QLatin1String("field"))
            R.F("Name")->SetReadOnly(true);
        if (what == QLatin1String("dataset"))
            R.Ds.SetReadOnly(true);
        Form F(&R.Source, QStringLiteral("Name"));
        if (what == QLatin1String("link"))
            F.Edit->setProperty("Readonly", true);
        QVERIFY(F.Show());
        QVERIFY(F.Edit->isReadOnly());
        F.Edit->setFocus();
        QTest::keyClicks(F.Edit, QStringLiteral("xy"));
        QCOMPARE(F.Edit->text(), QStringLiteral("Bolt"));
        QCOMPARE(R.Ds.State(), dsBrowse);
        // An unbound edit is read-only too.
        TQxdbEdit Unbound;
        QVERIFY(Unbound.isReadOnly());
    }

    // "#Error#", which the typed setters show for a value they cannot show, never reaches
    // the field.
    void errorMarkIsNotWritten()
    {
        Row R;
        Form F(&R.Source, QStringLiteral("Name"));
        QVERIFY(F.Show());
        F.Edit->setFocus();
        R.Ds.Edit();
        F.Edit->SetAsDate(1e9);
        QCOMPARE(F.Edit->text(), QStringLiteral("#Error#"));
        F.After->setFocus();
        R.Ds.Post();
        QCOMPARE(R.F("Name")->AsString(), QStringLiteral("Bolt"));
        QCOMPARE(F.Edit->text(), QStringLiteral("Bolt"));
    }

    // The value is the USER property, with a change signal, as in Qt's own controls.
    void valueProperty()
    {
        Row R;
        TQxdbEdit Edit;
        TQxdbEditButton EditButton;
        TQxdbText Text;
        for (QWidget* W : std::initializer_list<QWidget*>{&Edit, &EditButton, &Text}) {
            const QMetaProperty P = W->metaObject()->userProperty();
            QCOMPARE(P.name(), "Data");
            QVERIFY(P.hasNotifySignal());
            W->setProperty("DataSource", QVariant::fromValue(&R.Source));
            W->setProperty("DataField", QStringLiteral("Name"));
            QSignalSpy Spy(W, P.notifySignal());
            QCOMPARE(P.read(W).toString(), QStringLiteral("Bolt"));
            R.Ds.Next();
            QCOMPARE(P.read(W).toString(), QStringLiteral("Nut"));
            QCOMPARE(Spy.size(), 1);
            R.Ds.First();
        }
        // Written through the property, as a mapper or delegate does, it is as typed.
        Edit.setProperty("Data", QStringLiteral("Screw"));
        QCOMPARE(R.Ds.State(), dsEdit);
        R.Ds.Post();
        QCOMPARE(R.F("Name")->AsString(), QStringLiteral("Screw"));
    }

    // The language switch shows the field in the other language (the time's marks).
    void languageSwitch()
    {
        Row R;
        R.At->SetFormat24(false);
        Form F(&R.Source, QStringLiteral("At"));
        auto* Label = new TQxdbText(&F.Window);
        Label->SetDataSource(&R.Source);
        Label->SetDataField(QStringLiteral("At"));
        QVERIFY(F.Show());
        QCOMPARE(F.Edit->text(), QStringLiteral("02:30 pm"));
        QCOMPARE(Label->Data(), QStringLiteral("02:30 pm"));
        {
            Language L(true);
            QCOMPARE(F.Edit->text(), QStringLiteral("02:30 م"));
            QCOMPARE(Label->Data(), QStringLiteral("02:30 م"));
            QCOMPARE(Label->GetCaption(), QStringLiteral("02:30 م"));
            QCOMPARE(F.Edit->layoutDirection(), Qt::RightToLeft);
        }
        QCOMPARE(F.Edit->text(), QStringLiteral("02:30 pm"));
    }

    // The button of an edit on an integer date field opens the date picker; on other fields
    // it does nothing unless the program gives it a handler.
    void dateButton()
    {
        Row R;
        QWidget Window;
        auto* Date = new TCountingEditButton(&Window);
        Date->SetDataSource(&R.Source);
        Date->SetDataField(QStringLiteral("Day"));
        auto* Name = new TCountingEditButton(&Window);
        Name->move(0, 30);
        Name->SetDataSource(&R.Source);
        Name->SetDataField(QStringLiteral("Name"));
        Window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&Window));
        QTest::mouseClick(Date->Button(), Qt::LeftButton);
        QTest::mouseClick(Name->Button(), Qt::LeftButton);
        QCOMPARE(Date->Picks, 1);
        QCOMPARE(Name->Picks, 0);
        int Own = 0;
        Name->_OnButtonClick = [&](QObject*) { ++Own; };
        QTest::mouseClick(Name->Button(), Qt::LeftButton);
        QCOMPARE(Own, 1);
    }

    // The real picker: the next month, confirmed, lands in the field; a cancel changes nothing.
    void datePicker_data()
    {
        QTest::addColumn<QString>("answer");
        QTest::addColumn<int>("date");
        QTest::newRow("next month, OK") << "btnOk" << 20240405;
        QTest::newRow("cancel") << "btnCancel" << 20240305;
    }
    void datePicker()
    {
        QFETCH(QString, answer);
        Row R;
        QWidget Window;
        auto* Edit = new TQxdbEditButton(&Window);
        Edit->SetDataSource(&R.Source);
        Edit->SetDataField(QStringLiteral("Day"));
        Window.show();
        QApplication::setActiveWindow(&Window);
        QVERIFY(QTest::qWaitForWindowActive(&Window));
        DialogDriver Driver;
        Driver.OnShown = [](QWidget* Dialog) {
            if (auto* Next = Dialog->findChild<QAbstractButton*>(QStringLiteral("btnNextMonth")))
                QTest::mouseClick(Next, Qt::LeftButton);
        };
        Driver.Click(answer);
        QTest::mouseClick(Edit->Button(), Qt::LeftButton);
        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join(u'\n')));
        QCOMPARE(Driver.Seen.size(), 1);
        R.Ds.CheckBrowseMode();
        QTEST(R.Day->AsInteger(), "date");
    }

    // Editing a row of a real table: typed date and time, posted.
    void database_data() { AddDriverRows(); }
    void database()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString Table = Db->NewTable(QStringLiteral("Id %AUTOKEY%, Name VARCHAR(30), Day INTEGER, At SMALLINT"));
        QVERIFY(Db->Exec(QStringLiteral("INSERT INTO %1 (Name, Day, At) VALUES ('Bolt', 20240305, 900)").arg(Table)));
        TADOTable Ds;
        Ds.SetConnection(Db->Connection());
        Ds.SetTableName(Table);
        auto* Day = new TQxDateField(&Ds);
        Day->SetFieldName(QStringLiteral("Day"));
        auto* At = new TQxTimeField(&Ds);
        At->SetFieldName(QStringLiteral("At"));
        (new TIntegerField(&Ds))->SetFieldName(QStringLiteral("Id"));
        (new TStringField(&Ds))->SetFieldName(QStringLiteral("Name"));
        Ds.Open();
        TDataSource Source;
        Source.SetDataSet(&Ds);
        Form F(&Source, QStringLiteral("Day"));
        auto* Time = new TQxdbEdit(&F.Window);
        Time->move(200, 40);
        Time->SetDataSource(&Source);
        Time->SetDataField(QStringLiteral("At"));
        QVERIFY(F.Show());
        QCOMPARE(F.Edit->text(), QStringLiteral("5-3-2024"));
        QCOMPARE(Time->text(), QStringLiteral("09:00"));
        F.Edit->setFocus();
        F.Edit->selectAll();
        QTest::keyClicks(F.Edit, QStringLiteral("1/9/1445"));
        QTest::keyClick(F.Edit, Qt::Key_Return);
        Time->setFocus();
        Time->selectAll();
        QTest::keyClicks(Time, QStringLiteral("17.45"));
        Ds.Post();
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Day FROM %1").arg(Table)).toInt(), 14450901);
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT At FROM %1").arg(Table)).toInt(), 1745);
        QCOMPARE(Time->text(), QStringLiteral("17:45"));
    }
};

QTEST_MAIN(TestDbEdits)
#include "tst_db_edits.moc"
