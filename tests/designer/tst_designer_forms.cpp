// Kesh for Qt — a form made in Designer and compiled by uic: the stored values of every
// component in both languages, the form manager it carries, and the binding of the
// objects it names (data sources created in code, controls of the form).
#include "Kesh.h"
#include "Kesh_Controls.h"
#include "Kesh_AdoDB.h"
#include "Kesh_dbControls.h"
#include "Kesh_dbGrid.h"
#include "db_test_helper.h"
#include "dialog_helper.h"
#include "platform/data/ado_dataset.h"
#include "ui_customer_card.h"

#include <QRadioButton>
#include <QtTest>

using namespace Kesh;

namespace {

// A built form: the uic class set up on a widget, its data source made in code first.
struct TCard
{
    QWidget Form;
    Ui::CustomerCard Ui;
    TDataSource* Source;
    TADOConnection* Connection;
    explicit TCard(const QString& SourceName = QStringLiteral("dsCustomers"))
    {
        Source = new TDataSource(&Form);
        Source->setObjectName(SourceName);
        Connection = new TADOConnection(&Form); // the drop list names it
        Connection->setObjectName(QStringLiteral("dbMain"));
        Ui.setupUi(&Form);
    }
    TQxForm* Manager() const { return Form.findChild<TQxForm*>(); }
    /// A dataset over Sql on the card's data source, made in code as a program does.
    TADODataSet* DataSetOver(KeshTest::TTestDatabase& Db, const QString& Sql)
    {
        auto* Set = new TADODataSet(&Form);
        Set->SetConnection(Db.Connection());
        Set->SetCommandText(Sql);
        Source->SetDataSet(Set);
        return Set;
    }
};

// The text a component shows now.
QString Shown(QWidget* W, const QString& What)
{
    if (What == QLatin1String("item0"))
        return static_cast<QComboBox*>(W)->itemText(0);
    if (What == QLatin1String("button1"))
        return static_cast<TQxRadioGroup*>(W)->Button(1)->text();
    if (What == QLatin1String("toolTip"))
        return W->toolTip();
    return W->property(What.toLatin1().constData()).toString();
}

// Runs EndLoading and returns the text of the error it showed ("" when it showed none).
QString EndLoadingError(QWidget* Form)
{
    KeshTest::DialogDriver Driver;
    Driver.Click(QStringLiteral("btnOk"));
    bool Aborted = false;
    try {
        Kesh::EndLoading(Form);
    } catch (const EAbort&) {
        Aborted = true;
    }
    if (Driver.Seen.isEmpty())
        return Aborted ? QStringLiteral("aborted without a message") : QString();
    return Aborted ? Driver.Seen[0].Text : QStringLiteral("shown but not aborted: ") + Driver.Seen[0].Text;
}

} // namespace

class TestDesignerForms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bilingualTexts_data()
    {
        QTest::addColumn<QString>("object");
        QTest::addColumn<QString>("what");
        QTest::addColumn<QString>("arabic");
        QTest::addColumn<QString>("english");
        QTest::newRow("form title") << "CustomerCard" << "windowTitle" << "بطاقة العميل" << "Customer card";
        QTest::newRow("panel") << "pnlHeader" << "Caption" << "العملاء" << "Customers";
        QTest::newRow("label on panel") << "lblCount" << "Caption" << "العدد" << "Count";
        QTest::newRow("label") << "lblName" << "Caption" << "الاسم" << "Name";
        QTest::newRow("check box") << "chkActive" << "Caption" << "نشط" << "Active";
        QTest::newRow("radio title") << "rgpGender" << "Caption" << "الجنس" << "Gender";
        QTest::newRow("radio item") << "rgpGender" << "button1" << "أنثى" << "Female";
        QTest::newRow("drop list") << "dplKind" << "item0" << "نقد" << "Cash";
        QTest::newRow("speed button") << "sbnSave" << "text" << "حفظ" << "Save";
        QTest::newRow("speed button hint") << "sbnSave" << "toolTip" << "حفظ التغييرات" << "Save the changes";
        QTest::newRow("bit button") << "bbnOk" << "text" << "موافق" << "OK";
        QTest::newRow("icon button") << "ibnPrint" << "text" << "طباعة" << "Print";
    }
    void bilingualTexts()
    {
        QFETCH(QString, object);
        QFETCH(QString, what);
        QFETCH(QString, arabic);
        QFETCH(QString, english);
        TCard Card;
        Kesh::EndLoading(&Card.Form);
        QVERIFY(Card.Manager());
        auto* W = object == Card.Form.objectName() ? &Card.Form : Card.Form.findChild<QWidget*>(object);
        QVERIFY(W);
        Card.Manager()->SetLang(bdRightToLeft);
        QCOMPARE(Shown(W, what), arabic);
        Card.Manager()->SetLang(bdLeftToRight);
        QCOMPARE(Shown(W, what), english);
    }

    void storedValues_data()
    {
        QTest::addColumn<QString>("object");
        QTest::addColumn<QString>("property");
        QTest::addColumn<QVariant>("expected");
        TFont Arabic(QFont(QStringLiteral("Tahoma"), 10), clMaroon, ARABIC_CHARSET);
        Arabic.SetStyle(fsBold);
        TFont English(QFont(QStringLiteral("Arial"), 9), clNavy, ANSI_CHARSET);
        English.SetStyle(fsItalic | fsUnderline);
        QTest::newRow("font with colour and charset") << "lblName" << "_Font_a" << QVariant::fromValue(Arabic);
        QTest::newRow("font with styles") << "lblName" << "_Font_e" << QVariant::fromValue(English);
        QTest::newRow("enumeration") << "lblName" << "_TextStyle" << QVariant::fromValue(Tx3D);
        QTest::newRow("colour") << "lblName" << "Color" << QVariant::fromValue(clYellow);
        QTest::newRow("shade colour") << "lblName" << "_TextShade" << QVariant::fromValue(clBlue);
        QTest::newRow("gradient end") << "pnlHeader" << "_ColorTo" << QVariant::fromValue(RGBToColor(200, 220, 240));
        QTest::newRow("gradient direction") << "pnlHeader" << "_Direction" << QVariant::fromValue(gdVertical);
        QTest::newRow("gradient on") << "pnlHeader" << "_GradFill" << QVariant(true);
        QTest::newRow("fixed size") << "edtName" << "_FixedSize" << QVariant(2);
        QTest::newRow("edit colour") << "edtName" << "_ColorEnabled" << QVariant::fromValue(RGBToColor(240, 255, 240));
        QTest::newRow("data entry") << "edtAge" << "_DataEntry" << QVariant::fromValue(DeInteger);
        QTest::newRow("edit button hot key") << "edbCode" << "_HotKey" << QVariant(QKeySequence(Qt::Key_F4));
        QTest::newRow("time check") << "tmeVisit" << "_CheckTime" << QVariant(true);
        QTest::newRow("keys") << "dplKind" << "_Values" << QVariant(QStringList{"C", "R"});
        QTest::newRow("limit to list") << "dplKind" << "_LimitToList" << QVariant(true);
        QTest::newRow("check style") << "chkActive" << "_Style" << QVariant::fromValue(cbsStyle_3);
        QTest::newRow("columns") << "rgpGender" << "Columns" << QVariant(2);
        QTest::newRow("button hot key") << "sbnSave" << "_HotKey" << QVariant(QKeySequence(Qt::Key_F2));
        TFont Green(QFont(QStringLiteral("Tahoma"), 9), clGreen, ANSI_CHARSET);
        Green.SetStyle(fsBold);
        QTest::newRow("button font") << "bbnOk" << "_Font_e" << QVariant::fromValue(Green);
    }
    void storedValues()
    {
        QFETCH(QString, object);
        QFETCH(QString, property);
        QFETCH(QVariant, expected);
        TCard Card;
        Kesh::EndLoading(&Card.Form);
        QObject* O = Card.Form.findChild<QObject*>(object);
        QVERIFY(O);
        const QVariant Actual = O->property(property.toLatin1().constData());
        QVERIFY2(Actual.isValid(), "no such property");
        QVERIFY2(O->dynamicPropertyNames().indexOf(property.toLatin1()) < 0, "stored as a dynamic property");
        if (Actual.metaType() != expected.metaType())
            QCOMPARE(Actual.toUInt(), expected.toUInt()); // a TColor is an unsigned number
        else
            QCOMPARE(Actual, expected);
    }

    void fontShownInItsLanguage()
    {
        TCard Card;
        Kesh::EndLoading(&Card.Form);
        Card.Manager()->SetLang(bdRightToLeft);
        QCOMPARE(Card.Ui.lblName->GetFont().Color(), clMaroon);
        QCOMPARE(Card.Ui.lblName->GetFont().Size(), 10);
        Card.Manager()->SetLang(bdLeftToRight);
        QCOMPARE(Card.Ui.lblName->GetFont().Color(), clNavy);
        QVERIFY(Card.Ui.lblName->GetFont().Font().underline());
    }

    void formManagerFromTheForm()
    {
        TCard Card;
        QVERIFY(!Card.Manager()); // made at the end of building, not by uic
        Kesh::EndLoading(&Card.Form);
        TQxForm* M = Card.Manager();
        QVERIFY(M);
        QCOMPARE(M->objectName(), QStringLiteral("QxForm1"));
        QCOMPARE(M->GetOptions(), TxFormOptions(FoAutoCenter | FoCheckModified));
        QCOMPARE(M->GetBiStrings().Count(), 2);
        Application()->SetBiDiMode(bdRightToLeft);
        QCOMPARE(M->GetBiMsg(2), QStringLiteral("لا يمكن الحذف."));
        Application()->SetBiDiMode(bdLeftToRight);
        QCOMPARE(M->GetBiMsg(1), QStringLiteral("Save the changes?"));
        // A second EndLoading keeps the one manager.
        Kesh::EndLoading(&Card.Form);
        QCOMPARE(Card.Form.findChildren<TQxForm*>().size(), 1);
    }

    void controlsBoundByName()
    {
        TCard Card;
        Kesh::EndLoading(&Card.Form);
        QCOMPARE(Card.Ui.lblName->GetFocusControl(), Card.Ui.edtName);
        QCOMPARE(Card.Ui.chkActive->GetControl(), Card.Ui.edtAge);
        QVERIFY(!Card.Ui.edtAge->isEnabled()); // the check box rules it from the binding on
        QTest::keyClick(Card.Ui.chkActive, Qt::Key_Space);
        QVERIFY(Card.Ui.edtAge->isEnabled());
        QCOMPARE(Card.Ui.xName->GetDataSource(), Card.Source);
        QCOMPARE(Card.Ui.dbbPost->GetDataSource(), Card.Source);
        QCOMPARE(Card.Ui.adlProduct->GetConnection(), Card.Connection);
        QCOMPARE(Card.Ui.grdCustomers->GetDataSource(), Card.Source);
        QCOMPARE(Card.Ui.grdCustomers->GetFooter(), Card.Ui.ftrCustomers);
    }

    void dataBinding_data() { KeshTest::AddDriverRows(); }
    void dataBinding()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString Table = Db->NewTable(QStringLiteral("Id INTEGER PRIMARY KEY, Name VARCHAR(30), Note VARCHAR(10)"));
        Db->Exec(QStringLiteral("INSERT INTO %1 VALUES (1, 'Pen', 'x')").arg(Table));
        Db->Exec(QStringLiteral("INSERT INTO %1 VALUES (2, 'قلم', NULL)").arg(Table));
        TCard Card;
        TADODataSet* Set = Card.DataSetOver(*Db, QStringLiteral("SELECT * FROM %1 ORDER BY Id").arg(Table));
        Card.Connection->SetConnectionString(Db->ConnectionString());
        Card.Connection->Open();
        Card.Ui.adlProduct->SetListTable(Table);
        Kesh::EndLoading(&Card.Form);
        Card.Ui.adlProduct->FillDataList();
        QCOMPARE(Card.Ui.adlProduct->count(), 2);
        QCOMPARE(Card.Ui.adlProduct->itemText(1), QStringLiteral("قلم"));
        Set->Open();
        QCOMPARE(Card.Ui.xName->text(), QStringLiteral("Pen"));
        QCOMPARE(Card.Ui.grdCustomers->model()->rowCount(), 2); // the grid shows the same rows
        // The form's two columns, not one per field, bound to the fields they name.
        TQxDBGridColumns* Columns = Card.Ui.grdCustomers->GetColumns();
        QCOMPARE(Columns->State(), csCustomized);
        QCOMPARE(Columns->Count(), 2);
        QCOMPARE(Columns->Items(1)->Field(), Set->FieldByName(QStringLiteral("Name")));
        QCOMPARE(Columns->Items(0)->GetWidth(), 40);
        QVERIFY(Columns->Items(1)->GetReadOnly());
        QCOMPARE(Columns->Items(1)->GetPickList(), (QStringList{"قلم", "Pen"}));
        QCOMPARE(Columns->Items(1)->GetBiDiField()->GetKeyboard(), kxArabic);
        QCOMPARE(Columns->Items(1)->GetTitle()->GetColor(), clYellow);
        Card.Manager()->SetLang(bdRightToLeft);
        QCOMPARE(Columns->Items(0)->GetTitle()->GetCaption(), QStringLiteral("الرقم"));
        QCOMPARE(Columns->Items(0)->GetAlignment(), Qt::AlignRight);
        Card.Manager()->SetLang(bdLeftToRight);
        QCOMPARE(Columns->Items(0)->GetTitle()->GetCaption(), QStringLiteral("No."));
        QCOMPARE(Columns->Items(0)->GetAlignment(), Qt::AlignLeft);
        QCOMPARE(Columns->Items(1)->GetTitle()->GetCaption(), QStringLiteral("Name"));
        Set->Next();
        QCOMPARE(Card.Ui.xName->text(), QStringLiteral("قلم"));
        // Typed into the bound edit and saved by the bound button: no code per control.
        QVERIFY(Card.Ui.dbbPost->isEnabled() == false); // saving waits for an edit
        Card.Ui.xName->SetData(QStringLiteral("حبر"));
        QVERIFY(Card.Ui.dbbPost->isEnabled());
        Card.Ui.dbbPost->Click();
        QCOMPARE(Set->State(), dsBrowse);
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Name FROM %1 WHERE Id = 2").arg(Table)).toString(), QStringLiteral("حبر"));
    }

    void badNamesRefused_data()
    {
        QTest::addColumn<QString>("object");
        QTest::addColumn<QString>("property");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("error");
        QTest::newRow("unknown data source") << "xName" << "DataSourceName" << QVariant("dsMissing")
                                             << "CustomerCard.xName.DataSourceName: there is no TDataSource named \"dsMissing\" on the form.";
        QTest::newRow("object of another class") << "xName" << "DataSourceName" << QVariant("edtName")
                                                 << "there is no TDataSource named \"edtName\" on the form (an object of another class has that name).";
        QTest::newRow("unknown control") << "lblName" << "FocusControlName" << QVariant("edtNothing")
                                         << "CustomerCard.lblName.FocusControlName: there is no QWidget named \"edtNothing\"";
        QTest::newRow("unknown manager property") << "CustomerCard" << "QxForm_Colour" << QVariant("red")
                                                  << "CustomerCard.QxForm_Colour: the form manager has no such property.";
        QTest::newRow("bad option") << "CustomerCard" << "QxForm_Options" << QVariant("FoAutoCenter|FoNever")
                                    << "CustomerCard.QxForm_Options: the form manager cannot take the value \"FoAutoCenter|FoNever\".";
        QTest::newRow("bad message line") << "CustomerCard" << "QxForm_BiStrings" << QVariant(QStringList{"1|a"})
                                          << "CustomerCard.QxForm_BiStrings: the form manager cannot take the value";
    }
    void badNamesRefused()
    {
        QFETCH(QString, object);
        QFETCH(QString, property);
        QFETCH(QVariant, value);
        QFETCH(QString, error);
        TCard Card;
        QObject* O = object == Card.Form.objectName() ? &Card.Form : Card.Form.findChild<QObject*>(object);
        QVERIFY(O);
        O->setProperty(property.toLatin1().constData(), value);
        if (property == QLatin1String("QxForm_BiStrings"))
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("TxBiStrings: line 1 is not"));
        const QString Text = EndLoadingError(&Card.Form);
        QVERIFY2(Text.contains(error), qPrintable(Text));
        QVERIFY2(Text.startsWith(QLatin1String("EndLoading")), qPrintable(Text));
    }

    void emptyFormPropertiesIgnored_data()
    {
        QTest::addColumn<QVariantMap>("values");
        QTest::addColumn<QString>("title"); // "-": no manager made
        const QVariantMap AllEmpty{{"QxForm_Name", QString()}, {"QxForm_Caption_a", QString()}, {"QxForm_Caption_e", QString()},
                                   {"QxForm_Options", QString()}, {"QxForm_BiStrings", QStringList()}};
        QTest::newRow("all empty: no manager") << AllEmpty << "-";
        QVariantMap Caption = AllEmpty;
        Caption["QxForm_Caption_e"] = QStringLiteral("Orders");
        QTest::newRow("a caption: a manager") << Caption << "Orders";
        QVariantMap Named = AllEmpty;
        Named["QxForm_Name"] = QStringLiteral("fmOrders");
        QTest::newRow("a name only: a manager") << Named << "";
    }
    void emptyFormPropertiesIgnored()
    {
        QFETCH(QVariantMap, values);
        QFETCH(QString, title);
        QWidget Form;
        Form.setObjectName(QStringLiteral("Orders"));
        for (auto It = values.begin(); It != values.end(); ++It)
            Form.setProperty(It.key().toLatin1(), It.value());
        QCOMPARE(EndLoadingError(&Form), QString());
        auto* M = Form.findChild<TQxForm*>();
        QCOMPARE(M != nullptr, title != QLatin1String("-"));
        if (!M)
            return;
        QCOMPARE(M->objectName(), values.value("QxForm_Name").toString().isEmpty() ? QStringLiteral("QxForm1") : values.value("QxForm_Name").toString());
        M->SetLang(bdLeftToRight);
        QCOMPARE(Form.windowTitle(), title);
    }

    void valuesFromCode()
    {
        // The stored forms are ordinary conversions: code may use them through setProperty.
        TQxLabel L;
        QVERIFY(L.setProperty("_Font_e", QStringLiteral("Courier,12,$000000FF,0,S")));
        QCOMPARE(L.GetFont_e().Color(), clRed);
        QVERIFY(L.GetFont_e().Font().strikeOut());
        QVERIFY(!L.setProperty("_Font_e", QStringLiteral("not a font")));
        QCOMPARE(L.GetFont_e().Name(), QStringLiteral("Courier"));
        TQxBiDiStrings S;
        QVERIFY(S.setProperty("BiStrings", QStringList{"5|خمسة|Five", "", " 2 |اثنان|Two"}));
        QCOMPARE(BiStringsToLines(S.GetBiStrings()), (QStringList{"2|اثنان|Two", "5|خمسة|Five"}));
        QTest::ignoreMessage(QtWarningMsg, "TxBiStrings: line 2 repeats the ID 5");
        QVERIFY(!S.setProperty("BiStrings", QStringList{"5|a|b", "5|c|d"}));
        QCOMPARE(S.GetBiStrings().Count(), 2);
    }

    void nothingBoundWhileDesigning()
    {
        TCard Card(QStringLiteral("dsOther"));
        SetDesigning(&Card.Form);
        QVERIFY(IsDesigning(Card.Ui.lblCount)); // a grandchild
        QCOMPARE(EndLoadingError(&Card.Form), QString());
        QVERIFY(!Card.Manager());
        QVERIFY(!Card.Ui.lblName->GetFocusControl());
        SetDesigning(&Card.Form, false);
        QVERIFY(!IsDesigning(Card.Ui.lblCount));
    }
};

int main(int argc, char** argv)
{
    TQxApplication App(argc, argv);
    App.setAttribute(Qt::AA_Use96Dpi, true);
    TestDesignerForms Test;
    return QTest::qExec(&Test, argc, argv);
}
#include "tst_designer_forms.moc"
