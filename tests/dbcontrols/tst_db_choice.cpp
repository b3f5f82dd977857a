// Data-aware choices: the check box's value lists, the radio group's values and keys, the
// fixed drop list's keys, on Boolean and text fields, in both languages and on SQLite and
// PostgreSQL.
#include "db_test_helper.h"
#include "dialog_helper.h"
#include "language_scope.h"

#include <Kesh.h>
#include <Kesh_dbControls.h>
#include <platform/data.h>

#include <QApplication>
#include <QRadioButton>
#include <QtTest>

using namespace Kesh;
using namespace KeshTest;

namespace {

// Two rows: a text column Flag and a Boolean column Paid.
struct Rows
{
    TClientDataSet Ds;
    TDataSource Source;
    explicit Rows(const QString& Flag1 = QStringLiteral("yes"), const QString& Flag2 = QStringLiteral("N"))
    {
        Ds.FieldDefs().Add(QStringLiteral("Flag"), ftString, 10);
        Ds.FieldDefs().Add(QStringLiteral("Paid"), ftBoolean);
        Ds.CreateDataSet();
        const QString Flags[] = {Flag1, Flag2};
        for (int I = 0; I < 2; ++I) {
            Ds.Append();
            Ds.FieldByName(QStringLiteral("Flag"))->SetAsString(Flags[I]);
            Ds.FieldByName(QStringLiteral("Paid"))->SetAsBoolean(I == 0);
            Ds.Post();
        }
        Ds.First();
        Source.SetDataSet(&Ds);
    }
    TField* F(const char* Name) const { return Ds.FieldByName(QLatin1String(Name)); }
};

bool ShowActive(QWidget& Window)
{
    Window.resize(400, 300);
    Window.show();
    QApplication::setActiveWindow(&Window);
    return QTest::qWaitForWindowActive(&Window);
}

// A radio button answers clicks on its mark and text only, at the reading side.
void ClickRadio(QRadioButton* Button)
{
    const int X = Button->isRightToLeft() ? Button->width() - 8 : 8;
    QTest::mouseClick(Button, Qt::LeftButton, {}, QPoint(X, Button->height() / 2));
}

} // namespace

class TestDbChoice : public QObject
{
    Q_OBJECT

private slots:
    void checkBox_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<bool>("checked");
        QTest::addColumn<QString>("afterClick");
        QTest::newRow("text in the checked list, any case") << "Flag" << "yes" << true << "N";
        QTest::newRow("text in the unchecked list") << "Flag" << "no" << false << "Y";
        QTest::newRow("text in neither list") << "Flag" << "maybe" << false << "Y";
        QTest::newRow("text null") << "Flag" << "" << false << "Y";
        QTest::newRow("Boolean true") << "Paid" << "True" << true << "False";
        QTest::newRow("Boolean false") << "Paid" << "False" << false << "True";
    }
    // Read by the lists; a click writes the first value of the other list.
    void checkBox()
    {
        QFETCH(QString, field);
        QFETCH(QString, stored);
        Rows R;
        R.Ds.Edit();
        R.Ds.FieldByName(field)->SetAsString(stored);
        R.Ds.Post();
        QWidget Window;
        auto* Box = new TQxdbCheckBox(&Window);
        Box->SetValueChecked(QStringLiteral("Y;Yes;1"));
        Box->SetValueUnchecked(QStringLiteral(" N ; No;0"));
        Box->SetDataSource(&R.Source);
        Box->SetDataField(field);
        QVERIFY(ShowActive(Window));
        QTEST(Box->GetChecked(), "checked");
        QCOMPARE(R.Ds.FieldByName(field)->AsString(), stored);  // nothing written by reading
        QTest::mouseClick(Box, Qt::LeftButton);
        QCOMPARE(R.Ds.State(), dsEdit);
        R.Ds.Post();
        QTEST(R.Ds.FieldByName(field)->AsString(), "afterClick");
        // Moving shows the next row's value.
        R.Ds.Next();
        QVERIFY(!Box->GetChecked());  // the second row holds "N" and False
    }

    // A read-only link or dataset does not toggle; the lists are re-read when set.
    void checkBoxRefusals()
    {
        Rows R;
        QWidget Window;
        auto* Box = new TQxdbCheckBox(&Window);
        Box->SetDataSource(&R.Source);
        Box->SetDataField(QStringLiteral("Flag"));
        QVERIFY(!Box->GetChecked());
        Box->SetValueChecked(QStringLiteral("YES"));
        QVERIFY(Box->GetChecked());
        QVERIFY(ShowActive(Window));
        Box->SetReadOnly(true);
        QTest::mouseClick(Box, Qt::LeftButton);
        QVERIFY(Box->GetChecked());
        QCOMPARE(R.Ds.State(), dsBrowse);
        Box->SetReadOnly(false);
        R.Ds.SetReadOnly(true);
        QTest::keyClick(Box, Qt::Key_Space);
        QVERIFY(Box->GetChecked());
        // Leaving the box writes its value.
        R.Ds.SetReadOnly(false);
        QTest::mouseClick(Box, Qt::LeftButton);
        QVERIFY(!Box->GetChecked());
        auto* Other = new QLineEdit(&Window);
        Other->show();
        Other->setFocus();
        QCOMPARE(R.F("Flag")->AsString(), QStringLiteral("False"));
    }

    void radioGroup_data()
    {
        QTest::addColumn<QStringList>("values");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("index");
        QTest::addColumn<int>("click");
        QTest::addColumn<QString>("written");
        const QStringList Items{QStringLiteral("Cash"), QStringLiteral("Card"), QStringLiteral("Credit")};
        QTest::newRow("by value") << QStringList{"C", "K", "R"} << "K" << 1 << 2 << "R";
        QTest::newRow("values are exact") << QStringList{"C", "K", "R"} << "k" << -1 << 0 << "C";
        QTest::newRow("no value: the item text") << QStringList{"C", "", "R"} << "Card" << 1 << 0 << "C";
        QTest::newRow("no values at all") << QStringList() << "Credit" << 2 << 1 << "Card";
        QTest::newRow("unknown value clears") << QStringList{"C", "K", "R"} << "Z" << -1 << 1 << "K";
    }
    // The field's text selects the button of that value; a click writes the button's value.
    void radioGroup()
    {
        QFETCH(QStringList, values);
        QFETCH(QString, stored);
        QFETCH(int, click);
        Rows R(stored);
        QWidget Window;
        auto* Group = new TQxdbRadioGroup(&Window);
        Group->setGeometry(10, 10, 200, 120);
        Group->SetItems_e({QStringLiteral("Cash"), QStringLiteral("Card"), QStringLiteral("Credit")});
        Group->SetItems_a({QStringLiteral("نقد"), QStringLiteral("بطاقة"), QStringLiteral("آجل")});
        Group->SetValues(values);
        Group->SetDataSource(&R.Source);
        Group->SetDataField(QStringLiteral("Flag"));
        QVERIFY(ShowActive(Window));
        QTEST(Group->GetItemIndex(), "index");
        QCOMPARE(Group->GetValue(), stored);
        QSignalSpy Spy(Group, &TQxdbRadioGroup::ValueChanged);
        ClickRadio(Group->Button(click));
        QCOMPARE(Group->GetItemIndex(), click);
        QCOMPARE(R.Ds.State(), dsEdit);
        QCOMPARE(Spy.size(), 1);
        R.Ds.Post();
        QTEST(R.F("Flag")->AsString(), "written");
    }

    // Escape restores the field's value, Enter moves on, the language switch keeps the
    // choice and shows the other items; a read-only group refuses the choice.
    void radioGroupKeysAndLanguage()
    {
        Rows R(QStringLiteral("K"));
        QWidget Window;
        auto* Group = new TQxdbRadioGroup(&Window);
        Group->setGeometry(10, 10, 200, 120);
        Group->SetItems_e({QStringLiteral("Cash"), QStringLiteral("Card")});
        Group->SetItems_a({QStringLiteral("نقد"), QStringLiteral("بطاقة")});
        Group->SetCaptionE(QStringLiteral("Payment"));
        Group->SetCaptionA(QStringLiteral("الدفع"));
        Group->SetValues({QStringLiteral("C"), QStringLiteral("K")});
        Group->SetDataSource(&R.Source);
        Group->SetDataField(QStringLiteral("Flag"));
        auto* After = new QLineEdit(&Window);
        After->setGeometry(10, 150, 100, 21);
        QVERIFY(ShowActive(Window));
        Group->Button(1)->setFocus();
        QTest::keyClick(Group->Button(1), Qt::Key_Up);
        QCOMPARE(Group->GetValue(), QStringLiteral("C"));
        QCOMPARE(R.Ds.State(), dsEdit);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QCOMPARE(Group->GetValue(), QStringLiteral("K"));
        QCOMPARE(Group->GetItemIndex(), 1);
        {
            Language L(true);
            QCOMPARE(Group->title(), QStringLiteral("الدفع"));
            QCOMPARE(Group->Button(1)->text(), QStringLiteral("بطاقة"));
            QCOMPARE(Group->GetItemIndex(), 1);
            QCOMPARE(Group->layoutDirection(), Qt::RightToLeft);
        }
        QCOMPARE(Group->Button(1)->text(), QStringLiteral("Card"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QVERIFY(After->hasFocus());
        R.Ds.Cancel();
        Group->SetReadOnly(true);
        ClickRadio(Group->Button(0));
        QCOMPARE(Group->GetItemIndex(), 1);
        QCOMPARE(R.Ds.State(), dsBrowse);
    }

    void fixedDropList_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QStringList>("keys");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("choose");
        QTest::addColumn<QString>("written");
        QTest::newRow("text") << "Flag" << QStringList{"yes", "N"} << "Yes" << 1 << "N";
        QTest::newRow("Boolean") << "Paid" << QStringList{"-1", "0"} << "Yes" << 1 << "False";
    }
    // The field's value selects the entry of that key; choosing writes the key.
    void fixedDropList()
    {
        QFETCH(QString, field);
        QFETCH(QStringList, keys);
        QFETCH(int, choose);
        Rows R;
        QWidget Window;
        auto* List = new TQxdbFixedDropList(&Window);
        List->SetItems_e({QStringLiteral("Yes"), QStringLiteral("No")});
        List->SetItems_a({QStringLiteral("نعم"), QStringLiteral("لا")});
        List->SetValues(keys);
        List->SetDataSource(&R.Source);
        List->SetDataField(field);
        QVERIFY(ShowActive(Window));
        QTEST(List->currentText(), "shown");
        QCOMPARE(List->Data(), keys[0]);
        List->setFocus();
        List->setCurrentIndex(choose);
        QCOMPARE(R.Ds.State(), dsEdit);
        QTEST(R.Ds.FieldByName(field)->AsString(), "written");
        R.Ds.Cancel();
        QCOMPARE(List->Data(), keys[0]);
        R.Ds.Next();
        QCOMPARE(List->Data(), keys[1]);
        {
            Language L(true);
            QCOMPARE(List->currentText(), QStringLiteral("لا"));
        }
        // A dataset that cannot be changed keeps its value, and the list shows it again.
        R.Ds.SetReadOnly(true);
        List->setCurrentIndex(0);
        QCOMPARE(List->Data(), keys[1]);
        QCOMPARE(R.Ds.State(), dsBrowse);
    }

    // In the form designer a check box and an image are named after their field.
    void namedAfterTheFieldWhenDesigned()
    {
        QWidget Form;
        SetDesigning(&Form);
        auto* Box = new TQxdbCheckBox(&Form);
        Box->SetDataField(QStringLiteral("Is Active"));
        QCOMPARE(Box->objectName(), QStringLiteral("xIsActive"));
        auto* Second = new TQxdbCheckBox(&Form);
        Second->SetDataField(QStringLiteral("IsActive"));
        QCOMPARE(Second->objectName(), QStringLiteral("xxIsActive"));
        auto* Image = new TQxdbImage(&Form);
        Image->setObjectName(QStringLiteral("kept"));
        auto* Third = new TQxdbCheckBox(&Form);
        Third->setObjectName(QStringLiteral("kept2"));
        Third->SetDataField(QStringLiteral("IsActive"));
        QCOMPARE(Third->objectName(), QStringLiteral("kept2"));  // both names are taken
        Image->SetDataField(QStringLiteral("Photo"));
        QCOMPARE(Image->objectName(), QStringLiteral("xPhoto"));
        QWidget Running;
        auto* Plain = new TQxdbCheckBox(&Running);
        Plain->SetDataField(QStringLiteral("IsActive"));
        QCOMPARE(Plain->objectName(), QString());
    }

    // The three choices edit a row of a real table.
    void database_data() { AddDriverRows(); }
    void database()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString Table = Db->NewTable(QStringLiteral("Id %AUTOKEY%, Active VARCHAR(1), Kind VARCHAR(1), Unit VARCHAR(3)"));
        QVERIFY(Db->Exec(QStringLiteral("INSERT INTO %1 (Active, Kind, Unit) VALUES ('Y', 'A', 'pc')").arg(Table)));
        TADOTable Ds;
        Ds.SetConnection(Db->Connection());
        Ds.SetTableName(Table);
        Ds.Open();
        TDataSource Source;
        Source.SetDataSet(&Ds);
        QWidget Window;
        auto* Box = new TQxdbCheckBox(&Window);
        Box->SetValueChecked(QStringLiteral("Y"));
        Box->SetValueUnchecked(QStringLiteral("N"));
        Box->SetDataSource(&Source);
        Box->SetDataField(QStringLiteral("Active"));
        auto* Group = new TQxdbRadioGroup(&Window);
        Group->setGeometry(0, 30, 200, 100);
        Group->SetItems({QStringLiteral("Goods"), QStringLiteral("Service")});
        Group->SetValues({QStringLiteral("A"), QStringLiteral("B")});
        Group->SetDataSource(&Source);
        Group->SetDataField(QStringLiteral("Kind"));
        auto* List = new TQxdbFixedDropList(&Window);
        List->move(0, 140);
        List->SetItems_e({QStringLiteral("Piece"), QStringLiteral("Box")});
        List->SetValues({QStringLiteral("pc"), QStringLiteral("box")});
        List->SetDataSource(&Source);
        List->SetDataField(QStringLiteral("Unit"));
        QVERIFY(ShowActive(Window));
        QVERIFY(Box->GetChecked());
        QCOMPARE(Group->GetItemIndex(), 0);
        QCOMPARE(List->currentText(), QStringLiteral("Piece"));
        QTest::mouseClick(Box, Qt::LeftButton);
        ClickRadio(Group->Button(1));
        List->setCurrentIndex(1);
        Ds.Post();
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Active FROM %1").arg(Table)).toString(), QStringLiteral("N"));
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Kind FROM %1").arg(Table)).toString(), QStringLiteral("B"));
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Unit FROM %1").arg(Table)).toString(), QStringLiteral("box"));
    }
};

QTEST_MAIN(TestDbChoice)
#include "tst_db_choice.moc"
