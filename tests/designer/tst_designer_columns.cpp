// Kesh for Qt — the grid's columns edited in Designer: each editor of the columns dialog
// writes its member (or leaves a default unstored), refuses what is not a value and keeps
// the old one, the list adds, moves and deletes, and "Edit columns..." on a grid stores
// what the dialog gives.
#include "Kesh.h"
#include "Kesh_dbGrid.h"
#include "columns_editor.h"
#include "dialog_helper.h"
#include "task_menu.h"

#include <QCheckBox>
#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QtTest>

using namespace Kesh;
using namespace KeshDesigner;

namespace {

// A column with values to change or take away.
const QString Stored = QStringLiteral(
    R"([{"FieldName":"Qty","Width":80,"Color":65535,"Readonly":1,"PickList":["x"],"ButtonStyle":1,)"
    R"("Title._Caption_a":"الكمية","Title._Caption_e":"Quantity"},{"FieldName":"Name"}])");

// Types Input into the editor named Key as a user would.
void Type(QWidget* W, const QString& Input)
{
    if (auto* Line = qobject_cast<QLineEdit*>(W)) {
        Line->setText(Input); // as typed: keyClicks knows no Arabic
        emit Line->textEdited(Input);
    } else if (auto* Spin = qobject_cast<QSpinBox*>(W)) {
        Spin->setValue(Input.toInt());
    } else if (auto* Combo = qobject_cast<QComboBox*>(W)) {
        const int I = Combo->findText(Input);
        QVERIFY2(I >= 0, qPrintable(Input));
        Combo->setCurrentIndex(I);
        emit Combo->activated(I);
    } else if (auto* Box = qobject_cast<QCheckBox*>(W)) {
        Box->setCheckState(Input == QLatin1String("on") ? Qt::Checked : Input == QLatin1String("off") ? Qt::Unchecked : Qt::PartiallyChecked);
    } else if (auto* Edit = qobject_cast<QPlainTextEdit*>(W)) {
        Edit->setPlainText(Input);
    } else {
        QFAIL("no editor of that kind");
    }
}

QJsonObject FirstColumn(const QString& Text)
{
    return QJsonDocument::fromJson(Text.toUtf8()).array().first().toObject();
}

// A member as compact JSON, "" when it is not stored.
QString Member(const QJsonObject& Column, const QString& Key)
{
    if (!Column.contains(Key))
        return QString();
    const QByteArray Json = QJsonDocument(QJsonArray{Column.value(Key)}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(Json.mid(1, Json.size() - 2));
}

QStringList FieldNames(const QString& Text)
{
    QStringList Names;
    for (const QJsonValue& C : QJsonDocument::fromJson(Text.toUtf8()).array())
        Names << C.toObject().value(QLatin1String("FieldName")).toString();
    return Names;
}

} // namespace

class TestDesignerColumns : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void editors_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("stored"); // the member as JSON; "" not stored
        QTest::newRow("field") << "FieldName" << "Price" << R"("Price")";
        QTest::newRow("arabic title") << "Title._Caption_a" << "السعر" << R"("السعر")";
        QTest::newRow("english title") << "Title._Caption_e" << "Price" << R"("Price")";
        QTest::newRow("field in english") << "_BiDiField.FieldName_e" << "PriceE" << R"("PriceE")";
        QTest::newRow("width") << "Width" << "120" << "120";
        QTest::newRow("width back to default") << "Width" << "-1" << "";
        QTest::newRow("arabic alignment") << "_BiDiField.Align_a" << "Right" << "2";
        QTest::newRow("english alignment") << "_BiDiField.Align_e" << "Centre" << "4";
        QTest::newRow("title alignment") << "Title.Alignment" << "Left" << "1";
        QTest::newRow("colour by name") << "Color" << "red" << "255"; // $BBGGRR
        QTest::newRow("colour as #rrggbb") << "Color" << "#0000ff" << "16711680";
        QTest::newRow("colour taken away") << "Color" << "" << "";
        QTest::newRow("title colour") << "Title.Color" << "#00ff00" << "65280";
        QTest::newRow("read-only off") << "Readonly" << "off" << "0";
        QTest::newRow("read-only as the field") << "Readonly" << "partly" << "";
        QTest::newRow("hidden") << "Visible" << "off" << "0";
        QTest::newRow("total") << "_TotalValue" << "on" << "1";
        QTest::newRow("auto size") << "_AutoSize" << "on" << "1";
        QTest::newRow("button none") << "ButtonStyle" << "cbsNone" << "2";
        QTest::newRow("button default") << "ButtonStyle" << "cbsAuto" << "";
        QTest::newRow("drop-down rows") << "DropDownRows" << "12" << "12";
        QTest::newRow("pick list") << "PickList" << "نقد\nCash\n" << R"(["نقد","Cash"])";
        QTest::newRow("pick list emptied") << "PickList" << "" << "";
        QTest::newRow("keyboard") << "_BiDiField.Keyboard" << "kxArabic" << "1";
        QTest::newRow("arabic font") << "_BiDiField.Font_a" << "Tahoma,10,$00000080,178,B" << R"("Tahoma,10,$00000080,178,B")";
        QTest::newRow("arabic title font") << "Title._Font_a" << "Arial,9,$00000000,178," << R"("Arial,9,$00000000,178,")";
    }
    void editors()
    {
        QFETCH(QString, key);
        QFETCH(QString, input);
        QFETCH(QString, stored);
        TColumnsEditor Editor(Stored);
        QWidget* W = Editor.findChild<QWidget*>(key);
        QVERIFY(W);
        Type(W, input);
        QCOMPARE(Editor.Problem(), QString());
        Editor.accept();
        QCOMPARE(Editor.result(), int(QDialog::Accepted));
        const QJsonObject Column = FirstColumn(Editor.Text());
        QCOMPARE(Member(Column, key), stored);
        // The other column is untouched, and the grid takes what the dialog wrote (adding
        // the title and font it shows in its language).
        QCOMPARE(FieldNames(Editor.Text()).last(), QStringLiteral("Name"));
        TQxdbGrid Grid;
        Grid.SetColumnsText(Editor.Text());
        QCOMPARE(Member(FirstColumn(Grid.GetColumnsText()), key), stored);
        TQxdbGrid Again;
        Again.SetColumnsText(Grid.GetColumnsText());
        QCOMPARE(Again.GetColumnsText(), Grid.GetColumnsText());
    }

    void badValuesRefused_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("problem");
        QTest::newRow("colour") << "Color" << "reddish" << "\"reddish\" is not a colour";
        QTest::newRow("font") << "Title._Font_e" << "Tahoma" << "\"Tahoma\" is not a font";
        QTest::newRow("english font") << "_BiDiField.Font_e" << "x,y" << "\"x,y\" is not a font";
    }
    void badValuesRefused()
    {
        QFETCH(QString, key);
        QFETCH(QString, input);
        QFETCH(QString, problem);
        TColumnsEditor Editor(Stored);
        const QString Before = Member(FirstColumn(Editor.Text()), key);
        Type(Editor.findChild<QWidget*>(key), input);
        QVERIFY2(Editor.Problem().startsWith(problem), qPrintable(Editor.Problem()));
        QVERIFY(Editor.findChild<QLabel*>(QStringLiteral("Problem"))->text() == Editor.Problem());
        Editor.accept(); // refused while the value stands
        QCOMPARE(Editor.result(), int(QDialog::Rejected));
        QCOMPARE(Member(FirstColumn(Editor.Text()), key), Before);
        Type(Editor.findChild<QWidget*>(key), QString()); // corrected (or left to its default)
        if (key.contains(QLatin1String("Font")))
            Type(Editor.findChild<QWidget*>(key), QStringLiteral("Tahoma,8,$00000000,0,"));
        QCOMPARE(Editor.Problem(), QString());
        Editor.accept();
        QCOMPARE(Editor.result(), int(QDialog::Accepted));
    }

    void listOperations_data()
    {
        QTest::addColumn<QString>("steps"); // a: add after the selected, d: delete, u/w: up/down, digits: select
        QTest::addColumn<QStringList>("fields");
        QTest::newRow("add at the end") << "1a" << QStringList{"Qty", "Name", "New"};
        QTest::newRow("add after the first") << "0a" << QStringList{"Qty", "New", "Name"};
        QTest::newRow("move down") << "0w" << QStringList{"Name", "Qty"};
        QTest::newRow("move up from the top: stays") << "0u" << QStringList{"Qty", "Name"};
        QTest::newRow("move down from the bottom: stays") << "1w" << QStringList{"Qty", "Name"};
        QTest::newRow("delete") << "0d" << QStringList{"Name"};
        QTest::newRow("delete all: columns of the fields") << "0dd" << QStringList{};
        QTest::newRow("add to none") << "0dda" << QStringList{"New"};
        QTest::newRow("add, move up twice") << "1auu" << QStringList{"New", "Qty", "Name"};
    }
    void listOperations()
    {
        QFETCH(QString, steps);
        QFETCH(QStringList, fields);
        TColumnsEditor Editor(Stored);
        auto* List = Editor.findChild<QListWidget*>(QStringLiteral("Columns"));
        for (const QChar Step : steps) {
            if (Step.isDigit())
                List->setCurrentRow(Step.digitValue());
            else if (Step == QLatin1Char('a')) {
                QTest::mouseClick(Editor.findChild<QWidget*>(QStringLiteral("btnAdd")), Qt::LeftButton);
                Type(Editor.findChild<QWidget*>(QStringLiteral("FieldName")), QStringLiteral("New"));
            } else if (Step == QLatin1Char('d'))
                QTest::mouseClick(Editor.findChild<QWidget*>(QStringLiteral("btnDelete")), Qt::LeftButton);
            else
                QTest::mouseClick(Editor.findChild<QWidget*>(Step == QLatin1Char('u') ? QStringLiteral("btnUp") : QStringLiteral("btnDown")), Qt::LeftButton);
        }
        QCOMPARE(FieldNames(Editor.Text()), fields);
        QCOMPARE(Editor.Text().isEmpty(), fields.isEmpty());
        QCOMPARE(List->count(), fields.size());
        // The list shows each column's field and titles; the editors show the selected one.
        if (!fields.isEmpty()) {
            QVERIFY(List->item(0)->text().startsWith(fields[0] + QStringLiteral(" — ")));
            QCOMPARE(Editor.findChild<QLineEdit*>(QStringLiteral("FieldName"))->text(), fields.value(List->currentRow()));
        }
        // The title of the moved column went with it.
        if (fields.contains(QStringLiteral("Qty")))
            QVERIFY(List->item(fields.indexOf(QStringLiteral("Qty")))->text().endsWith(QStringLiteral("Quantity / الكمية")));
    }

    void unreadableStoredColumns()
    {
        TColumnsEditor Editor(QStringLiteral("[{\"FieldName\":"));
        QVERIFY(Editor.Problem().contains(QStringLiteral("cannot be read")));
        QCOMPARE(Editor.findChild<QListWidget*>(QStringLiteral("Columns"))->count(), 0);
        QVERIFY(!Editor.findChild<QWidget*>(QStringLiteral("FieldName"))->isEnabled());
        QTest::mouseClick(Editor.findChild<QWidget*>(QStringLiteral("btnAdd")), Qt::LeftButton);
        QVERIFY(Editor.findChild<QWidget*>(QStringLiteral("FieldName"))->isEnabled());
        Editor.accept();
        QCOMPARE(Editor.result(), int(QDialog::Accepted));
        QCOMPARE(FieldNames(Editor.Text()), QStringList{QString()});
    }

    void menuEditsTheGrid_data()
    {
        QTest::addColumn<QString>("button");
        QTest::newRow("OK") << "btnOk";
        QTest::newRow("Cancel") << "btnCancel";
    }
    void menuEditsTheGrid()
    {
        QFETCH(QString, button);
        QWidget Form;
        auto* Grid = new TQxdbGrid(&Form);
        Grid->setObjectName(QStringLiteral("grdItems"));
        Grid->SetColumnsText(Stored);
        const QString Before = Grid->GetColumnsText();
        TTaskMenu Menu(Grid, nullptr);
        QCOMPARE(Menu.taskActions().first()->objectName(), QStringLiteral("_ColumnsText"));
        QCOMPARE(Menu.preferredEditAction(), Menu.taskActions().first());
        KeshTest::DialogDriver Driver;
        Driver.OnShown = [](QWidget* Dialog) {
            if (auto* E = qobject_cast<TColumnsEditor*>(Dialog))
                Type(E->findChild<QWidget*>(QStringLiteral("Title._Caption_e")), QStringLiteral("Amount"));
        };
        Driver.Click(button);
        Menu.taskActions().first()->trigger();
        QCOMPARE(Driver.Seen.size(), 1);
        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join('\n')));
        QCOMPARE(Driver.Seen[0].Title, QStringLiteral("Columns of grdItems"));
        if (button == QLatin1String("btnCancel")) {
            QCOMPARE(Grid->GetColumnsText(), Before);
            return;
        }
        Grid->SetBiDiMode(bdLeftToRight);
        QCOMPARE(Grid->GetColumns()->Items(0)->GetTitle()->GetCaption(), QStringLiteral("Amount"));
        Grid->SetBiDiMode(bdRightToLeft);
        QCOMPARE(Grid->GetColumns()->Items(0)->GetTitle()->GetCaption(), QStringLiteral("الكمية"));
        QCOMPARE(Grid->GetColumns()->Items(0)->GetWidth(), 80);
    }
};

int main(int argc, char** argv)
{
    TQxApplication App(argc, argv);
    TestDesignerColumns Test;
    return QTest::qExec(&Test, argc, argv);
}
#include "tst_designer_columns.moc"
