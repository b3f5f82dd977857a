// The look-up combo: keys behind bilingual captions, the language switch, and its keyboard
// rules driven with real key events on a shown, active window.
#include "field_form.h"

#include <Kesh_Controls.h>

#include <QAbstractItemView>
#include <QMetaProperty>
#include <QVBoxLayout>
#include <QtTest>

using namespace Kesh;
using KeshTest::FieldForm;

namespace {

const QStringList Keys{QStringLiteral("10"), QStringLiteral("20"), QStringLiteral("30")};
const QStringList English{QStringLiteral("Cash"), QStringLiteral("Cheque"), QStringLiteral("Card")};
const QStringList Arabic{QStringLiteral("نقدا"), QStringLiteral("شيك"), QStringLiteral("بطاقة")};

void Fill(TQxCustomLookupCombo& C, const QStringList& Values = Keys, const QStringList& Items = English)
{
    C.SetItems_a(Arabic);
    C.SetItems_e(Items);
    C.SetValues(Values);
}

// An edit, the combo holding Key, another edit; the combo has the focus once shown.
struct Form : FieldForm<TQxFixedDropList>
{
    Form(bool Rtl, const QString& Key) : FieldForm(Rtl)
    {
        Fill(*Edit);
        Edit->SetData(Key);
    }
    bool ListOpen() const { return Edit->view()->isVisible(); }
    // Opens and closes the list; the offscreen platform leaves the popup active after it
    // hides, so the form is made active again.
    bool OpenAndCloseList()
    {
        Edit->showPopup();
        if (!QTest::qWaitFor([this] { return ListOpen(); }))
            return false;
        Edit->hidePopup();
        Window.activateWindow();
        return QTest::qWaitForWindowActive(&Window) && QTest::qWaitFor([this] { return Edit->hasFocus(); });
    }
};

} // namespace

class TestLookupCombo : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { Application()->SetBiDiMode(bdLeftToRight); }

    void dataRead_data()
    {
        QTest::addColumn<QStringList>("values");
        QTest::addColumn<QStringList>("items");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("data");
        QTest::addColumn<bool>("matched");
        QTest::newRow("caption") << Keys << English << "Cheque" << "20" << true;
        QTest::newRow("other letter case") << Keys << English << "cARD" << "30" << true;
        QTest::newRow("no caption matches") << Keys << English << "Che" << "" << false;
        QTest::newRow("no keys") << QStringList() << English << "Cash" << "" << true;
        QTest::newRow("duplicate captions: the first") << Keys << QStringList{"A", "B", "B"} << "b" << "20" << true;
        QTest::newRow("fewer keys than items") << QStringList{"1"} << English << "Card" << "" << true;
        QTest::newRow("empty list") << Keys << QStringList() << "Cash" << "" << false;
    }
    // Read through the user property, as data-aware code does.
    void dataRead()
    {
        QFETCH(QStringList, values);
        QFETCH(QStringList, items);
        QFETCH(QString, text);
        TQxCustomLookupCombo c;
        Fill(c, values, items);
        c.setEditText(text);
        QTEST(c.metaObject()->userProperty().read(&c).toString(), "data");
        QTEST(c.Matched(), "matched");
    }

    void dataWrite_data()
    {
        QTest::addColumn<QStringList>("values");
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("text");
        QTest::newRow("known key") << Keys << "30" << 2 << "Card";
        QTest::newRow("unknown key empties") << Keys << "99" << -1 << "";
        QTest::newRow("exact match only") << Keys << " 10" << -1 << "";
        QTest::newRow("duplicate keys: the first") << QStringList{"7", "7", "8"} << "7" << 0 << "Cash";
        QTest::newRow("key beyond the items") << QStringList{"1", "2", "3", "4"} << "4" << -1 << "";
    }
    void dataWrite()
    {
        QFETCH(QStringList, values);
        QFETCH(QString, key);
        QFETCH(int, index);
        TQxCustomLookupCombo c;
        Fill(c, values);
        c.setEditText(QStringLiteral("typed"));
        QSignalSpy changed(&c, &TQxCustomLookupCombo::DataChanged);
        c.SetData(key);
        QCOMPARE(c.currentIndex(), index);
        QTEST(c.currentText(), "text");
        QCOMPARE(changed.count(), index >= 0 ? 1 : 0);
    }

    void languageSwitchKeepsTheKey_data()
    {
        QTest::addColumn<bool>("byApplication");
        QTest::addColumn<QString>("key");
        QTest::newRow("own direction, Cheque") << false << "20";
        QTest::newRow("application, Card") << true << "30";
    }
    void languageSwitchKeepsTheKey()
    {
        QFETCH(bool, byApplication);
        QFETCH(QString, key);
        QWidget parent;
        auto* c = new TQxCustomLookupCombo(&parent);
        Fill(*c);
        c->SetData(key);
        QSignalSpy dataChanged(c, &TQxCustomLookupCombo::DataChanged);
        QSignalSpy textChanged(c, &QComboBox::currentTextChanged);
        for (TBiDiMode mode : {bdRightToLeft, bdLeftToRight}) {
            if (byApplication)
                Application()->SetBiDiMode(mode);
            else
                c->SetBiDiMode(mode);
            QCOMPARE(c->GetBiDiMode(), mode);
            QCOMPARE(c->itemText(0), (mode == bdRightToLeft ? Arabic : English)[0]);
            QCOMPARE(c->currentText(), (mode == bdRightToLeft ? Arabic : English)[Keys.indexOf(key)]);
            QCOMPARE(c->Data(), key);
        }
        // The same record stays chosen: nothing to announce.
        QCOMPARE(dataChanged.count(), 0);
        QCOMPARE(textChanged.count(), 0);
    }

    void captionListsReplaceTheItemsOfTheirLanguage_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("arabicCount");
        QTest::addColumn<int>("englishCount");
        QTest::newRow("left to right") << int(bdLeftToRight) << 2 << 1;
        QTest::newRow("right to left") << int(bdRightToLeft) << 3 << 3;
        // Neither list replaces the items under a mixed direction.
        QTest::newRow("no align") << int(bdRightToLeftNoAlign) << 2 << 2;
        QTest::newRow("reading only") << int(bdRightToLeftReadingOnly) << 2 << 2;
    }
    void captionListsReplaceTheItemsOfTheirLanguage()
    {
        QFETCH(int, mode);
        TQxCustomLookupCombo c;
        c.SetItems_e(QStringList{QStringLiteral("A"), QStringLiteral("B")});
        c.SetBiDiMode(TBiDiMode(mode));
        c.SetItems_a(Arabic);
        QTEST(c.count(), "arabicCount");
        c.SetItems_e(QStringList{QStringLiteral("One")});
        QTEST(c.count(), "englishCount");
        QCOMPARE(c.GetItems_a(), Arabic);
        QCOMPARE(c.currentText(), QString());
    }

    void clearKeepsTheCaptionLists()
    {
        TQxCustomLookupCombo c;
        Fill(c);
        c.SetData(QStringLiteral("10"));
        c.Clear();
        QCOMPARE(c.count(), 0);
        QCOMPARE(c.currentText(), QString());
        QCOMPARE(c.GetValues(), QStringList());
        QCOMPARE(c.GetItems_e(), English);
        c.setEditText(QStringLiteral("  "));
        QVERIFY(c.IsEmpty());
    }

    void widths_data()
    {
        QTest::addColumn<int>("step");
        QTest::addColumn<int>("width"); // 0: left as set
        for (int step : {1, 2, 6})
            QTest::addRow("%d", step) << step << 101 + 104 * (step - 1);
        QTest::newRow("0") << 0 << 0;
        QTest::newRow("7") << 7 << 0;
    }
    // A layout cannot stretch a standard width either.
    void widths()
    {
        QFETCH(int, step);
        QFETCH(int, width);
        QWidget form;
        auto* c = new TQxFixedDropList(&form);
        (new QVBoxLayout(&form))->addWidget(c);
        QVERIFY(c->setProperty("_FixedSize", step));
        c->resize(250, c->height());
        QCOMPARE(c->width(), width ? width : 250);
        form.resize(700, 100);
        form.show();
        QVERIFY(QTest::qWaitForWindowExposed(&form));
        QVERIFY(width ? c->width() == width : c->width() > 621);
    }

    void keys_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("key");    // the key chosen at the start
        QTest::addColumn<int>("keyCode");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<int>("index");      // the item chosen afterwards, its caption shown
        QTest::addColumn<int>("focus");      // -1 the edit before, 0 the combo, 1 the edit after
        QTest::addColumn<bool>("open");
        QTest::addColumn<int>("changes");    // OnChange notifications

        const int shift = Qt::ShiftModifier;
        for (bool rtl : {false, true}) {
            const QByteArray dir = rtl ? ", rtl" : ", ltr";
            QTest::newRow("Backspace clears the choice" + dir) << rtl << "20" << int(Qt::Key_Backspace) << 0 << -1 << 0 << false << 1;
            QTest::newRow("Backspace on nothing still notifies" + dir) << rtl << "" << int(Qt::Key_Backspace) << 0 << -1 << 0 << false << 1;
            QTest::newRow("Delete empties" + dir) << rtl << "20" << int(Qt::Key_Delete) << 0 << -1 << 0 << false << 1;
            QTest::newRow("Space opens" + dir) << rtl << "20" << int(Qt::Key_Space) << 0 << 1 << 0 << true << 0;
            QTest::newRow("Down goes to the next" + dir) << rtl << "20" << int(Qt::Key_Down) << 0 << 1 << 1 << false << 0;
            QTest::newRow("Up goes to the previous" + dir) << rtl << "20" << int(Qt::Key_Up) << 0 << 1 << -1 << false << 0;
            QTest::newRow("Shift+Down changes the item" + dir) << rtl << "20" << int(Qt::Key_Down) << shift << 2 << 0 << false << 1;
            QTest::newRow("Enter goes to the next" + dir) << rtl << "20" << int(Qt::Key_Return) << 0 << 1 << 1 << false << 0;
            QTest::newRow("keypad Enter too" + dir) << rtl << "20" << int(Qt::Key_Enter) << 0 << 1 << 1 << false << 0;
            QTest::newRow("Page Down ignored" + dir) << rtl << "20" << int(Qt::Key_PageDown) << 0 << 1 << 0 << false << 0;
        }
    }
    void keys()
    {
        QFETCH(bool, rtl);
        QFETCH(QString, key);
        QFETCH(int, keyCode);
        QFETCH(int, modifiers);
        QFETCH(int, index);
        QFETCH(int, focus);
        QFETCH(bool, open);
        Form form(rtl, key);
        QVERIFY(form.Show());
        QSignalSpy changed(form.Edit, &QComboBox::currentTextChanged);
        QTest::keyClick(form.Edit, Qt::Key(keyCode), Qt::KeyboardModifiers(modifiers));
        QCOMPARE(form.Edit->currentIndex(), index);
        QCOMPARE(form.Edit->currentText(), index < 0 ? QString() : (rtl ? Arabic : English)[index]);
        QCOMPARE(form.Edit->Data(), index < 0 ? QString() : Keys[index]);
        QTEST(int(changed.count()), "changes");
        QWidget* expected = focus < 0 ? form.Before : focus > 0 ? form.After : static_cast<QWidget*>(form.Edit);
        if (!open)
            QTRY_COMPARE(QApplication::focusWidget(), expected);
        QTRY_COMPARE(form.ListOpen(), open);
        // Enter closes an open list and stays.
        if (open) {
            QTest::keyClick(form.Edit, Qt::Key_Return);
            QVERIFY(!form.ListOpen());
            QTRY_COMPARE(QApplication::focusWidget(), form.Edit);
        }
    }

    void escapeUndoes_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("key");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("expected");
        for (bool rtl : {false, true}) {
            const QByteArray dir = rtl ? ", rtl" : ", ltr";
            QTest::newRow("back to the caption" + dir) << rtl << "20" << 0 << (rtl ? Arabic : English)[1];
            QTest::newRow("back to nothing" + dir) << rtl << "" << 0 << "";
            QTest::newRow("Shift+Escape is no undo" + dir) << rtl << "20" << int(Qt::ShiftModifier) << "zz";
        }
    }
    void escapeUndoes()
    {
        QFETCH(bool, rtl);
        QFETCH(QString, key);
        QFETCH(int, modifiers);
        Form form(rtl, key);
        QVERIFY(form.Show());
        QCOMPARE(form.Edit->OldText(), form.Edit->currentText());
        form.Edit->SetData(QStringLiteral("10"));
        form.Edit->setEditText(QStringLiteral("zz"));
        // Opening and closing the list is no new entering.
        QVERIFY(form.OpenAndCloseList());
        QTest::keyClick(form.Edit, Qt::Key_Escape, Qt::KeyboardModifiers(modifiers));
        QTEST(form.Edit->currentText(), "expected");
        QCOMPARE(form.Edit->Data(), modifiers ? QString() : key);
    }

    void typingOpensTheListAndCompletes_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<QString>("key");
        QTest::newRow("first prefix match, ltr") << false << "c" << "Cash" << "10";
        QTest::newRow("completed on, ltr") << false << "car" << "Card" << "30";
        QTest::newRow("other letter case, ltr") << false << "CHE" << "Cheque" << "20";
        QTest::newRow("no caption starts so, ltr") << false << "cx" << "Cx" << "";
        QTest::newRow("completed on, rtl") << true << QStringLiteral("شي") << Arabic[1] << "20";
    }
    // The first key opens the list (unless shifted); the rest are typed while its view has
    // the keyboard.
    void typingOpensTheListAndCompletes()
    {
        QFETCH(bool, rtl);
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        QFETCH(QString, key);
        Form form(rtl, QString());
        QVERIFY(form.Show());
        for (int i = 0; i < typed.size(); ++i) {
            QWidget* target = i == 0 ? static_cast<QWidget*>(form.Edit) : QApplication::focusWidget();
            const QChar c = typed[i];
            const auto code = Qt::Key(c.toUpper().unicode());
            const Qt::KeyboardModifiers mods = c.isUpper() ? Qt::ShiftModifier : Qt::NoModifier;
            QTest::sendKeyEvent(QTest::Click, target, code, QString(c), mods);
            if (i == 0)
                QTRY_COMPARE(form.ListOpen(), !mods);
        }
        QCOMPARE(form.Edit->currentText(), shown);
        QCOMPARE(form.Edit->Data(), key);
        if (!key.isEmpty()) {
            // The completed remainder is selected, so the next key replaces it.
            QCOMPARE(form.Edit->lineEdit()->selectedText(), shown.mid(typed.size()));
            if (form.ListOpen())
                QCOMPARE(form.Edit->view()->currentIndex().row(), Keys.indexOf(key));
        }
        form.Edit->hidePopup();
    }

    void limitToList_data()
    {
        QTest::addColumn<bool>("rtl");
        QTest::addColumn<bool>("limit");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("refused");
        for (bool rtl : {false, true}) {
            const QByteArray dir = rtl ? ", rtl" : ", ltr";
            QTest::newRow("outside the list" + dir) << rtl << true << "Bank" << true;
            QTest::newRow("empty is allowed" + dir) << rtl << true << "" << false;
            QTest::newRow("a caption in any case" + dir) << rtl << true << (rtl ? Arabic[1] : QStringLiteral("cheque")) << false;
            QTest::newRow("no limit" + dir) << rtl << false << "Bank" << false;
        }
    }
    void limitToList()
    {
        QFETCH(bool, rtl);
        QFETCH(bool, limit);
        QFETCH(QString, text);
        QFETCH(bool, refused);
        Form form(rtl, QString());
        form.Edit->SetLimitToList(limit);
        QVERIFY(form.Show());
        form.Edit->setEditText(text);
        const int beeps = BeepCount();
        // Opening the list is no leaving.
        QVERIFY(form.OpenAndCloseList());
        QCOMPARE(BeepCount(), beeps);
        QTest::keyClick(form.Edit, Qt::Key_Tab);
        QCOMPARE(BeepCount() - beeps, refused ? 1 : 0);
        QTest::qWait(20);
        QTRY_COMPARE(QApplication::focusWidget(), refused ? static_cast<QWidget*>(form.Edit) : form.After);
        QCOMPARE(form.Edit->currentText(), text);
    }
};

int main(int argc, char** argv)
{
    QLocale::setDefault(QLocale::c());
    TQxApplication App(argc, argv);
    TestLookupCombo Test;
    return QTest::qExec(&Test, argc, argv);
}
#include "tst_lookup_combo.moc"
