// What the self-painting controls tell assistive technology, read back through QAccessible:
// the text shown, the role, the state and the value, in both languages. (The offscreen
// platform has no accessibility bridge, so change events are not delivered here.)
#include <Kesh_Controls.h>

#include <QAccessible>
#include <QLineEdit>
#include <QtTest>

using namespace Kesh;

namespace {

QAccessibleInterface* Iface(QWidget* W)
{
    return QAccessible::queryAccessibleInterface(W);
}

} // namespace

class TestAccessibility : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nameAndRole_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<bool>("rightToLeft");
        QTest::addColumn<QString>("caption");
        QTest::addColumn<int>("role");
        QTest::addColumn<QString>("name");
        const int label = QAccessible::StaticText, box = QAccessible::CheckBox;
        const int pane = QAccessible::Pane, group = QAccessible::Grouping;
        QTest::newRow("label en") << "label" << false << "&Name" << label << "Name";
        QTest::newRow("label ar") << "label" << true << "الا&سم" << label << "الاسم";
        QTest::newRow("label double ampersand") << "label" << false << "R&&D" << label << "R&D";
        QTest::newRow("check box en") << "check box" << false << "Paid" << box << "Paid";
        QTest::newRow("check box ar") << "check box" << true << "مدفوع" << box << "مدفوع";
        // The check box draws "&" as a character, so it reads as one.
        QTest::newRow("check box ampersand") << "check box" << false << "R&D" << box << "R&D";
        QTest::newRow("panel en") << "panel" << false << "Totals" << pane << "Totals";
        QTest::newRow("panel ar") << "panel" << true << "المجاميع" << pane << "المجاميع";
        QTest::newRow("radio group en") << "radio group" << false << "Payment" << group << "Payment";
        QTest::newRow("radio group ar") << "radio group" << true << "الدفع" << group << "الدفع";
    }
    void nameAndRole()
    {
        QFETCH(QString, kind);
        QFETCH(bool, rightToLeft);
        QFETCH(QString, caption);
        QWidget Form;
        Form.setLayoutDirection(rightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        QWidget* w = nullptr;
        if (kind == QLatin1String("label"))
            w = new TQxLabel(&Form);
        else if (kind == QLatin1String("check box"))
            w = new TQxCheckBox(&Form);
        else if (kind == QLatin1String("panel"))
            w = new TQxPanel(&Form);
        else
            w = new TQxRadioGroup(&Form);
        // The caption of the other language is what must not be read.
        w->setProperty(rightToLeft ? "_Caption_e" : "_Caption_a", QStringLiteral("other"));
        w->setProperty(rightToLeft ? "_Caption_a" : "_Caption_e", caption);
        QAccessibleInterface* a = Iface(w);
        QVERIFY(a);
        QTEST(int(a->role()), "role");
        QTEST(a->text(QAccessible::Name), "name");

        // After a language switch it reads in the new language.
        Form.setLayoutDirection(rightToLeft ? Qt::LeftToRight : Qt::RightToLeft);
        QCOMPARE(a->text(QAccessible::Name), QStringLiteral("other"));

        w->setEnabled(false);
        QVERIFY(a->state().disabled);
    }

    void checkBoxStateAndAction()
    {
        QWidget Form;
        auto* box = new TQxCheckBox(&Form);
        box->SetCaptionE(QStringLiteral("Paid"));
        QAccessibleInterface* a = Iface(box);
        QVERIFY(a->state().checkable);
        QVERIFY(!a->state().checked);
        QCOMPARE(a->text(QAccessible::Value), QStringLiteral("0"));

        box->SetChecked(true);
        QVERIFY(a->state().checked);
        QCOMPARE(a->text(QAccessible::Value), QStringLiteral("1"));

        // Assistive technology toggles it as a user would.
        QAccessibleActionInterface* act = a->actionInterface();
        QVERIFY(act);
        QVERIFY(act->actionNames().contains(QAccessibleActionInterface::toggleAction()));
        act->doAction(QAccessibleActionInterface::toggleAction());
        QVERIFY(!box->isChecked());
        box->setEnabled(false);
        act->doAction(QAccessibleActionInterface::toggleAction());
        QVERIFY(!box->isChecked());
    }

    void radioGroupValueIsTheChosenItem()
    {
        QWidget Form;
        auto* g = new TQxRadioGroup(&Form);
        g->SetItems_e({QStringLiteral("Cash"), QStringLiteral("Card")});
        g->SetItems_a({QStringLiteral("نقدا"), QStringLiteral("بطاقة")});
        QAccessibleInterface* a = Iface(g);
        QCOMPARE(a->text(QAccessible::Value), QString());
        g->SetItemIndex(1);
        QCOMPARE(a->text(QAccessible::Value), QStringLiteral("Card"));
        Form.setLayoutDirection(Qt::RightToLeft);
        QCOMPARE(a->text(QAccessible::Value), QStringLiteral("بطاقة"));
        // The buttons are the group's children for assistive technology too.
        QCOMPARE(a->childCount(), 2);
        QCOMPARE(a->child(1)->role(), QAccessible::RadioButton);
        QVERIFY(a->child(1)->state().checked);
    }

    void labelNamesItsFocusControl()
    {
        QWidget Form;
        auto* label = new TQxLabel(&Form);
        auto* edit = new QLineEdit(&Form);
        label->SetCaptionE(QStringLiteral("&Name"));
        label->SetFocusControl(edit);
        QAccessibleInterface* a = Iface(label);
        QVERIFY(!a->text(QAccessible::Accelerator).isEmpty());
        const auto related = a->relations(QAccessible::Labelled);
        QCOMPARE(related.size(), 1);
        QCOMPARE(related[0].first->object(), edit);
    }
};

QTEST_MAIN(TestAccessibility)
#include "tst_accessibility.moc"
