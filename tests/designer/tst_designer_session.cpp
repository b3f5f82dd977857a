// Kesh for Qt — the plugin inside Designer's own form editor (made offscreen, without its
// main window): every form gets the form manager's properties, the grid's columns edited
// through its context menu are saved in the form, and Form > Preview builds components
// that run as in a program while those of the form window stay designed.
#include "Kesh.h"
#include "Kesh_dbGrid.h"
#include "columns_editor.h"
#include "dialog_helper.h"

#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QPointer>
#include <QProcess>
#include <QTemporaryDir>
#include <QUndoStack>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>
#include <QtDesigner/QDesignerFormWindowManagerInterface>
#include <QtDesigner/QDesignerIntegration>
#include <QtDesigner/QDesignerTaskMenuExtension>
#include <QtDesigner/QExtensionManager>
#include <QtTest>

// Designer's own start-up, exported by its components library (its header is not shipped).
class QDesignerComponents
{
public:
    static void initializeResources();
    static QDesignerFormEditorInterface* createFormEditor(QObject* Parent);
    static QObject* createTaskMenu(QDesignerFormEditorInterface* Core, QObject* Parent);
    static void initializePlugins(QDesignerFormEditorInterface* Core);
};

using namespace Kesh;

namespace {

QString ReadForm(const QString& Name)
{
    QFile File(QStringLiteral(KESH_FORMS_DIR "/") + Name);
    return File.open(QIODevice::ReadOnly) ? QString::fromUtf8(File.readAll()) : QString();
}

const char EmptyForm[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<ui version="4.0"><class>Orders</class><widget class="QWidget" name="Orders">
<property name="geometry"><rect><x>0</x><y>0</y><width>400</width><height>300</height></rect></property>
</widget><resources/><connections/></ui>)";

bool IsKesh(const QObject* O) { return QByteArray(O->metaObject()->className()).startsWith("Kesh::"); }

// Whether each Kesh component painted outside a form window was being designed then.
class TPaintWatch : public QObject
{
public:
    QList<bool> PreviewDesigning;
    bool eventFilter(QObject* O, QEvent* E) override
    {
        if (E->type() == QEvent::Paint && O->isWidgetType() && IsKesh(O)
            && !QDesignerFormWindowInterface::findFormWindow(static_cast<QWidget*>(O)))
            PreviewDesigning << IsDesigning(O);
        return false;
    }
};

} // namespace

class TestDesignerSession : public QObject
{
    Q_OBJECT

    QDesignerFormEditorInterface* m_core = nullptr;

    QDesignerFormWindowInterface* Open(const QString& Contents)
    {
        QDesignerFormWindowManagerInterface* Windows = m_core->formWindowManager();
        QDesignerFormWindowInterface* Form = Windows->createFormWindow(nullptr);
        Form->setContents(Contents);
        Windows->setActiveFormWindow(Form);
        QCoreApplication::processEvents(); // the plugin adds its properties once the form is read
        return Form;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QDesignerComponents::initializeResources();
        m_core = QDesignerComponents::createFormEditor(this);
        m_core->setIntegration(new QDesignerIntegration(m_core, m_core));
        QDesignerComponents::createTaskMenu(m_core, m_core);
        QDesignerComponents::initializePlugins(m_core);
        QVERIFY(m_core->formWindowManager());
    }

    void formPropertiesOnEveryForm_data()
    {
        QTest::addColumn<QString>("form");
        QTest::addColumn<QStringList>("kept"); // values the file had
        QTest::newRow("new form") << QString::fromLatin1(EmptyForm) << QStringList{};
        QTest::newRow("form with its manager") << ReadForm(QStringLiteral("customer_card.ui"))
                                               << QStringList{"بطاقة العميل", "FoAutoCenter|FoCheckModified", "1|هل تريد الحفظ؟|Save the changes?"};
    }
    void formPropertiesOnEveryForm()
    {
        QFETCH(QString, form);
        QFETCH(QStringList, kept);
        QVERIFY(!form.isEmpty());
        QDesignerFormWindowInterface* Form = Open(form);
        QVERIFY(Form->mainContainer());
        const QString Saved = Form->contents();
        for (const char* Name : {"QxForm_Name", "QxForm_Caption_a", "QxForm_Caption_e", "QxForm_Options", "QxForm_BiStrings"})
            QVERIFY2(Saved.count(QStringLiteral("<property name=\"%1\" stdset=\"0\">").arg(QLatin1String(Name))) == 1, Name);
        for (const QString& Value : kept)
            QVERIFY2(Saved.contains(Value), qPrintable(Value));
        delete Form;
    }

    void columnsEditedAndSaved()
    {
        QDesignerFormWindowInterface* Form = Open(ReadForm(QStringLiteral("customer_card.ui")));
        auto* Grid = Form->mainContainer()->findChild<TQxdbGrid*>(QStringLiteral("grdCustomers"));
        QVERIFY(Grid);
        QVERIFY(IsDesigning(Grid));
        auto* Menu = qt_extension<QDesignerTaskMenuExtension*>(m_core->extensionManager(), Grid);
        QVERIFY(Menu);
        KeshTest::DialogDriver Driver;
        Driver.OnShown = [](QWidget* Dialog) {
            auto* Title = Dialog->findChild<QLineEdit*>(QStringLiteral("Title._Caption_e"));
            if (Title) {
                Title->setText(QStringLiteral("Customer no."));
                emit Title->textEdited(Title->text());
            }
        };
        Driver.Click(QStringLiteral("btnOk"));
        Menu->preferredEditAction()->trigger();
        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join('\n')));
        QCOMPARE(Grid->GetColumns()->Count(), 2);
        // Saved with the form, as uic sets it by name, and undone as any edit.
        const QString Saved = Form->contents();
        QVERIFY(Saved.contains(QLatin1String("<property name=\"_ColumnsText\" stdset=\"0\">")));
        QVERIFY(Saved.contains(QLatin1String("Customer no.")));
        QTemporaryDir Dir;
        QFile File(Dir.filePath(QStringLiteral("card.ui")));
        QVERIFY(File.open(QIODevice::WriteOnly));
        File.write(Saved.toUtf8());
        File.close();
        QProcess Uic;
        Uic.start(QStringLiteral(KESH_UIC), {File.fileName()});
        QVERIFY(Uic.waitForFinished(60000));
        QCOMPARE(Uic.exitCode(), 0);
        QVERIFY(Uic.readAllStandardOutput().contains("grdCustomers->setProperty(\"_ColumnsText\""));
        Form->commandHistory()->undo();
        QVERIFY(!Grid->GetColumnsText().contains(QLatin1String("Customer no.")));
        delete Form;
    }

    void previewRunsAsAProgram()
    {
        QDesignerFormWindowInterface* Form = Open(ReadForm(QStringLiteral("customer_card.ui")));
        TPaintWatch Watch;
        qApp->installEventFilter(&Watch);
        const QPixmap Preview = m_core->formWindowManager()->createPreviewPixmap();
        qApp->removeEventFilter(&Watch);
        QVERIFY(!Preview.isNull());
        QVERIFY(Watch.PreviewDesigning.size() > 10); // the card's components, painted
        QVERIFY(!Watch.PreviewDesigning.contains(true));
        // The form window's own stay designed.
        const QList<QWidget*> Designed = Form->mainContainer()->findChildren<QWidget*>();
        int Kesh = 0;
        for (QWidget* W : Designed)
            if (IsKesh(W)) {
                ++Kesh;
                QVERIFY2(IsDesigning(W), W->metaObject()->className());
            }
        QVERIFY(Kesh > 10);
        delete Form;
    }
};

int main(int argc, char** argv)
{
    // Designer finds the plugin as it would in the build tree.
    qputenv("QT_PLUGIN_PATH", QFileInfo(QStringLiteral(KESH_DESIGNER_PLUGIN)).dir().absolutePath().section(QLatin1Char('/'), 0, -2).toLocal8Bit());
    TQxApplication App(argc, argv);
    TestDesignerSession Test;
    return QTest::qExec(&Test, argc, argv);
}
#include "tst_designer_session.moc"
