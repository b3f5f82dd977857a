// Editing through the grid on SQLite and PostgreSQL: typing, Enter, posting on leaving the
// row, a post from code with the editor open, a refused post, Escape, Insert, Ctrl+Delete,
// read-only columns, refused characters, pick lists and the ellipsis button; lazy reading.
#include "grid_fixture.h"
#include "db_test_helper.h"
#include "dialog_helper.h"
#include "platform/widgets.h"
#include <QAbstractItemModelTester>
#include <QComboBox>
#include <QLineEdit>
#include <QToolButton>

using namespace Kesh;
using namespace GridTest;

namespace {

QString Build(KeshTest::TTestDatabase& Db, int Rows)
{
    const QString T = Db.NewTable(QStringLiteral("Id %AUTOKEY%, Name VARCHAR(20), Qty INTEGER CHECK (Qty >= 0), Price NUMERIC(12,2)"));
    Db.Connection()->BeginTrans();
    for (int I = 1; I <= Rows; ++I)
        Db.Exec(QStringLiteral("INSERT INTO %1 (Id, Name, Qty, Price) VALUES (%2, 'Item %2', %2, %2.25)").arg(T).arg(I));
    Db.Connection()->CommitTrans();
    return T;
}

QWidget* Editor(TQxCustomDBGrid* Grid)
{
    // A closed editor lingers until deleted later: take the one shown.
    for (QWidget* W : Grid->viewport()->findChildren<QWidget*>(QStringLiteral("InplaceEditor")))
        if (W->isVisible())
            return W;
    return nullptr;
}

QString EditorText(TQxCustomDBGrid* Grid)
{
    QWidget* E = Editor(Grid);
    if (auto* L = qobject_cast<QLineEdit*>(E))
        return L->text();
    if (auto* C = qobject_cast<QComboBox*>(E))
        return C->currentText();
    return QStringLiteral("<no editor>");
}

} // namespace

// Opens the test database with a table of Rows rows, a query on it and a shown grid form F.
#define OPEN_GRID(Rows)                                                                                       \
    KESH_OPEN_TEST_DB(Db);                                                                                    \
    const QString T = Build(*Db, Rows);                                                                       \
    TADOQuery Q;                                                                                              \
    Q.SetConnection(Db->Connection());                                                                        \
    Q.SetSQL({QStringLiteral("SELECT Id, Name, Qty, Price FROM %1 ORDER BY Id").arg(T)});                     \
    Q.Open();                                                                                                 \
    Form F(&Q);                                                                                               \
    QVERIFY(F.Show())

class TestGridEdit : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Invoice lines typed from the keyboard alone: a pick-list item column, a quantity, a
    // price the item fills in and a computed read-only total; Enter goes through the columns
    // and on to a new line at the end, which the next Enter past the last column posts.
    void invoiceLinesFromTheKeyboard_data() { AddRtlRows(); }
    void invoiceLinesFromTheKeyboard()
    {
        QFETCH(bool, rtl);
        TClientDataSet Lines;
        Lines.FieldDefs().Add(QStringLiteral("Item"), ftString, 20);
        Lines.FieldDefs().Add(QStringLiteral("Qty"), ftInteger);
        Lines.FieldDefs().Add(QStringLiteral("Price"), ftFloat);
        Lines.FieldDefs().Add(QStringLiteral("Total"), ftFloat);
        Lines.CreateDataSet();
        const QMap<QString, double> Prices{{QStringLiteral("Pen"), 2.5}, {QStringLiteral("Ruler"), 4}};
        auto Field = [&](const char* Name) { return Lines.FieldByName(QLatin1String(Name)); };
        auto Compute = [&](TField*) {
            Field("Total")->SetAsFloat(Field("Qty")->AsInteger() * Field("Price")->AsFloat());
        };
        Field("Item")->OnChange = [&](TField* F) { Field("Price")->SetAsFloat(Prices.value(F->AsString())); };
        Field("Qty")->OnChange = Compute;
        Field("Price")->OnChange = Compute;
        Lines.Append();
        Field("Item")->SetAsString(QStringLiteral("Ruler"));
        Field("Qty")->SetAsInteger(1);
        Lines.Post();
        Form F(&Lines);
        F.Grid->GetColumns()->Clear();
        for (const char* Name : {"Item", "Qty", "Price", "Total"})
            F.Grid->GetColumns()->Add()->SetFieldName(QLatin1String(Name));
        F.Grid->GetColumns()->Items(0)->SetPickList(Prices.keys());
        F.Grid->GetColumns()->Items(3)->SetReadOnly(true);
        F.RightToLeft(rtl);
        QVERIFY(F.Show());
        // From the last column of the last line, Enter starts a new line at the end.
        F.Grid->SetSelectedIndex(3);
        QTest::keyClick(F.Grid, Qt::Key_Return);
        QCOMPARE(Lines.State(), dsInsert);
        QCOMPARE(Lines.RecNo(), -1);
        QCOMPARE(F.Grid->SelectedIndex(), 0);
        QTest::keyClicks(F.Grid, QStringLiteral("Pen"));
        QVERIFY(qobject_cast<QComboBox*>(Editor(F.Grid)));  // the pick list drops from the cell
        QTest::keyClick(Editor(F.Grid), Qt::Key_Return);
        QCOMPARE(F.Grid->SelectedIndex(), 1);
        QCOMPARE(Field("Price")->AsFloat(), 2.5);  // filled in by the item
        QTest::keyClicks(F.Grid, QStringLiteral("4"));
        QTest::keyClick(Editor(F.Grid), Qt::Key_Return);
        QCOMPARE(F.Grid->SelectedIndex(), 2);
        QCOMPARE(Field("Total")->AsFloat(), 10.0);
        QTest::keyClick(F.Grid, Qt::Key_Return);
        QCOMPARE(F.Grid->SelectedIndex(), 3);
        QTest::keyClicks(F.Grid, QStringLiteral("9"));  // the computed column refuses typing
        QVERIFY(!F.Grid->EditorMode());
        QCOMPARE(Field("Total")->AsFloat(), 10.0);
        // Past the last column the line is posted and the next one started.
        QTest::keyClick(F.Grid, Qt::Key_Return);
        QCOMPARE(Lines.State(), dsInsert);
        QCOMPARE(F.Grid->SelectedIndex(), 0);
        QTest::keyClick(F.Grid, Qt::Key_Escape);  // an untouched new line is dropped
        QCOMPARE(Lines.State(), dsBrowse);
        QCOMPARE(Lines.RecordCount(), 2);
        Lines.Last();
        QCOMPARE(Field("Item")->AsString(), QStringLiteral("Pen"));
        QCOMPARE(Field("Qty")->AsInteger(), 4);
        QCOMPARE(Field("Total")->AsFloat(), 10.0);
    }

    void typingAndPosting_data() { KeshTest::AddDriverRows(); }
    void typingAndPosting()
    {
        OPEN_GRID(1000);
        // Only the rows shown (and a block) were read.
        QVERIFY(!Q.FetchedAll());
        QVERIFY2(Q.FetchedRowCount() <= 64, qPrintable(QString::number(Q.FetchedRowCount())));
        QAbstractItemModelTester Tester(F.Grid->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);

        // Typing starts an edit with the key typed; Enter writes it and moves to the next column.
        QTest::mouseClick(F.Grid->viewport(), Qt::LeftButton, {}, F.Cell(2, 1));
        QTest::keyClicks(F.Grid, QStringLiteral("Zed"));
        QCOMPARE(Q.State(), dsEdit);
        QCOMPARE(EditorText(F.Grid), QStringLiteral("Zed"));
        QTest::keyClick(Editor(F.Grid), Qt::Key_Return);
        QCOMPARE(F.Grid->SelectedIndex(), 2);
        QCOMPARE(Q.FieldByName(QStringLiteral("Name"))->AsString(), QStringLiteral("Zed"));
        // Leaving the row posts it.
        QTest::keyClick(F.Grid, Qt::Key_Down);
        QCOMPARE(Q.State(), dsBrowse);
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Name FROM %1 WHERE Id = 3").arg(T)).toString(), QStringLiteral("Zed"));

        // A post from code (a tool-bar button that takes no focus) keeps the text being typed.
        QTest::keyClicks(F.Grid, QStringLiteral("42"));
        QVERIFY(Editor(F.Grid));
        Q.Post();
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Qty FROM %1 WHERE Id = 4").arg(T)).toInt(), 42);
        QVERIFY(!Editor(F.Grid) || !Editor(F.Grid)->isVisible());

        // Escape drops the editor's text, a second Escape the record's changes.
        QTest::keyClick(F.Grid, Qt::Key_Down);
        QTest::keyClicks(F.Grid, QStringLiteral("7"));
        QTest::keyClick(Editor(F.Grid), Qt::Key_Escape);
        QCOMPARE(Q.FieldByName(QStringLiteral("Qty"))->AsInteger(), 5);
        QTest::keyClick(F.Grid, Qt::Key_Escape);
        QCOMPARE(Q.State(), dsBrowse);
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Qty FROM %1 WHERE Id = 5").arg(T)).toInt(), 5);
    }

    void refusedPost_data() { KeshTest::AddDriverRows(); }
    void refusedPost()
    {
        OPEN_GRID(20);
        QTest::mouseClick(F.Grid->viewport(), Qt::LeftButton, {}, F.Cell(1, 2));
        QTest::keyClicks(F.Grid, QStringLiteral("-5"));
        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnOK"));
        QTest::keyClick(Editor(F.Grid), Qt::Key_Down);
        QTRY_VERIFY(Driver.Seen.size() >= 1);
        QTest::qWait(50);
        QCOMPARE(Driver.Seen.size(), 1);
        QVERIFY2(!Driver.Seen[0].Text.isEmpty(), "the database's refusal is shown");
        // The row stays, in edit, with the typed value still in the editor.
        QCOMPARE(Q.State(), dsEdit);
        QCOMPARE(Q.RecNo(), 2);
        QCOMPARE(F.Grid->currentIndex().row(), 1);
        QCOMPARE(EditorText(F.Grid), QStringLiteral("-5"));
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Qty FROM %1 WHERE Id = 2").arg(T)).toInt(), 2);
        // Corrected, it posts.
        auto* Line = qobject_cast<QLineEdit*>(Editor(F.Grid));
        QVERIFY(Line);
        Line->setText(QStringLiteral("6"));
        QTest::keyClick(Line, Qt::Key_Down);
        QCOMPARE(Q.State(), dsBrowse);
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Qty FROM %1 WHERE Id = 2").arg(T)).toInt(), 6);
        QCOMPARE(Driver.Seen.size(), 1);
    }

    void insertAndDelete_data() { KeshTest::AddDriverRows(); }
    void insertAndDelete()
    {
        KESH_OPEN_TEST_DB(Db);
        const QString T = Build(*Db, 5);
        TADOQuery Q;
        Q.SetConnection(Db->Connection());
        Q.SetSQL({QStringLiteral("SELECT Id, Name, Qty, Price FROM %1 ORDER BY Id").arg(T)});
        Q.Open();
        Form F(&Q);
        F.Grid->GetColumns()->Items(0)->SetReadOnly(true);
        QVERIFY(F.Show());
        // A read-only column refuses typing.
        QTest::keyClicks(F.Grid, QStringLiteral("9"));
        QCOMPARE(Q.State(), dsBrowse);
        // Insert, type the new record, post it by leaving it.
        QTest::keyClick(F.Grid, Qt::Key_Insert);
        QCOMPARE(Q.State(), dsInsert);
        Q.FieldByName(QStringLiteral("Id"))->SetAsInteger(100);
        F.Grid->SetSelectedIndex(1);
        QTest::keyClicks(F.Grid, QStringLiteral("New"));
        QTest::keyClick(Editor(F.Grid), Qt::Key_Return);
        QTest::keyClicks(F.Grid, QStringLiteral("3"));
        QTest::keyClick(Editor(F.Grid), Qt::Key_Up);
        QCOMPARE(Q.State(), dsBrowse);
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT Name FROM %1 WHERE Id = 100").arg(T)).toString(), QStringLiteral("New"));
        // Ctrl+Delete asks in the grid's language; No keeps the record, Yes deletes it.
        KeshTest::DialogDriver Driver;
        Driver.Click(QStringLiteral("btnNo")).Click(QStringLiteral("btnYes"));
        const int Id = Q.FieldByName(QStringLiteral("Id"))->AsInteger();
        QTest::keyClick(F.Grid, Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(T)).toInt(), 6);
        QTest::keyClick(F.Grid, Qt::Key_Delete, Qt::ControlModifier);
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1").arg(T)).toInt(), 5);
        QCOMPARE(Db->Scalar(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE Id = %2").arg(T).arg(Id)).toInt(), 0);
        QCOMPARE(Driver.Seen.size(), 2);
        QVERIFY2(Driver.Seen[0].Text.contains(QStringLiteral("Delete record?")), qPrintable(Driver.Seen[0].Text));
    }

    void editorKinds()
    {
        auto Ds = Items(3);
        Form F(Ds.get());
        TQxColumn* Name = F.Grid->GetColumns()->Items(1);
        Name->SetPickList({QStringLiteral("Pen"), QStringLiteral("Book")});
        TQxColumn* Qty = F.Grid->GetColumns()->Items(2);
        Qty->SetButtonStyle(cbsEllipsis);
        int Clicks = 0;
        F.Grid->OnEditButtonClick = [&](QObject*) { ++Clicks; };
        QVERIFY(F.Show());
        // A pick list drops down in a combo.
        F.Grid->SetSelectedIndex(1);
        QTest::keyClick(F.Grid, Qt::Key_F2);
        auto* Combo = qobject_cast<QComboBox*>(Editor(F.Grid));
        QVERIFY(Combo);
        QCOMPARE(Combo->count(), 2);
        QCOMPARE(Combo->currentText(), QStringLiteral("Item 1"));
        QTest::keyClick(Combo, Qt::Key_Escape);
        // The ellipsis button calls the event.
        F.Grid->SetSelectedIndex(2);
        QTest::keyClick(F.Grid, Qt::Key_F2);
        auto* Line = qobject_cast<QLineEdit*>(Editor(F.Grid));
        QVERIFY(Line);
        auto* Button = Line->findChild<QToolButton*>(QStringLiteral("EditButton"));
        QVERIFY(Button && Button->isVisible());
        QTest::mouseClick(Button, Qt::LeftButton);
        QCOMPARE(Clicks, 1);
        QTest::keyClick(Line, Qt::Key_Return, Qt::ControlModifier);
        QCOMPARE(Clicks, 2);
        // A character an integer field cannot hold is refused with a beep.
        const int Beeps = BeepCount();
        QTest::keyClicks(Line, QStringLiteral("x"));
        QCOMPARE(BeepCount(), Beeps + 1);
        QVERIFY(!Line->text().contains(QLatin1Char('x')));
    }
};

QTEST_MAIN(TestGridEdit)
#include "tst_grid_edit.moc"
