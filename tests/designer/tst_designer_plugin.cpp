// Kesh for Qt — the Qt Designer plugin as Designer loads it: every component in the widget
// box, its description, icon and default size; the property sheet's editors for the
// library's value types; and what uic makes of the published names.
#include "Kesh.h"
#include "Kesh_Controls.h"
#include "Kesh_dbControls.h"
#include "Kesh_AdoDB.h"
#include "Kesh_dbGrid.h"
#include "dialog_helper.h"
#include "task_menu.h"
#include "property_sheet.h"
#include "form_properties.h"

#include <QBuffer>
#include <QColorDialog>
#include <QFontDatabase>
#include <QFontDialog>
#include <QtDesigner/QDesignerTaskMenuExtension>
#include <QPluginLoader>
#include <QProcess>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QExtensionFactory>
#include <QtDesigner/QExtensionManager>
#include <QtDesigner/QFormBuilder>
#include <QtDesigner/QDesignerPropertySheetExtension>
#include <QtDesigner/QDesignerDynamicPropertySheetExtension>
#include <QtTest>
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>

using namespace Kesh;
using namespace KeshDesigner;

namespace {

// Stands for Designer's own property sheet: every property of the object, as it is.
class TPlainSheet : public QObject, public QDesignerPropertySheetExtension
{
    Q_OBJECT
    Q_INTERFACES(QDesignerPropertySheetExtension)
public:
    TPlainSheet(QObject* Object, QObject* Parent) : QObject(Parent), m_object(Object) {}
    int count() const override { return m_object->metaObject()->propertyCount(); }
    int indexOf(const QString& Name) const override { return m_object->metaObject()->indexOfProperty(Name.toLatin1()); }
    QString propertyName(int I) const override { return QString::fromLatin1(m_object->metaObject()->property(I).name()); }
    QString propertyGroup(int) const override { return QString(); }
    void setPropertyGroup(int, const QString&) override {}
    bool hasReset(int) const override { return false; }
    bool reset(int) override { return false; }
    bool isVisible(int) const override { return true; }
    void setVisible(int, bool) override {}
    bool isAttribute(int) const override { return false; }
    void setAttribute(int, bool) override {}
    QVariant property(int I) const override { return m_object->metaObject()->property(I).read(m_object); }
    void setProperty(int I, const QVariant& V) override
    {
        if (m_object->metaObject()->property(I).write(m_object, V))
            m_changed.insert(I);
    }
    bool isChanged(int I) const override { return m_changed.contains(I); }
    void setChanged(int I, bool C) override { C ? void(m_changed.insert(I)) : void(m_changed.remove(I)); }
    bool isEnabled(int) const override { return true; }

private:
    QObject* m_object;
    QSet<int> m_changed;
};

class TPlainSheetFactory : public QExtensionFactory
{
public:
    using QExtensionFactory::QExtensionFactory;
    QObject* createExtension(QObject* Object, const QString& Iid, QObject* Parent) const override
    {
        return Iid == QLatin1String(Q_TYPEID(QDesignerPropertySheetExtension)) ? new TPlainSheet(Object, Parent) : nullptr;
    }
};

// Stands for Designer's sheet of a form: its own properties and the dynamic ones added
// through it (kept as the object's dynamic properties, after the static ones).
class TFormSheet : public TPlainSheet, public QDesignerDynamicPropertySheetExtension
{
    Q_OBJECT
    Q_INTERFACES(QDesignerDynamicPropertySheetExtension)
public:
    TFormSheet(QObject* Object, QObject* Parent) : TPlainSheet(Object, Parent), m_form(Object) {}
    int count() const override { return Static() + int(m_form->dynamicPropertyNames().size()); }
    int indexOf(const QString& Name) const override
    {
        const int I = TPlainSheet::indexOf(Name);
        const int D = int(m_form->dynamicPropertyNames().indexOf(Name.toLatin1()));
        return I >= 0 ? I : D >= 0 ? Static() + D : -1;
    }
    QString propertyName(int I) const override
    {
        return I < Static() ? TPlainSheet::propertyName(I) : QString::fromLatin1(m_form->dynamicPropertyNames().value(I - Static()));
    }
    QVariant property(int I) const override { return I < Static() ? TPlainSheet::property(I) : m_form->property(propertyName(I).toLatin1()); }
    bool dynamicPropertiesAllowed() const override { return true; }
    int addDynamicProperty(const QString& Name, const QVariant& Value) override
    {
        if (!canAddDynamicProperty(Name))
            return -1;
        m_form->setProperty(Name.toLatin1(), Value);
        return indexOf(Name);
    }
    bool removeDynamicProperty(int) override { return false; }
    bool isDynamicProperty(int I) const override { return I >= Static(); }
    bool canAddDynamicProperty(const QString& Name) const override { return indexOf(Name) < 0; }

private:
    int Static() const { return TPlainSheet::count(); }
    QObject* m_form;
};

class TFormSheetFactory : public QExtensionFactory
{
public:
    using QExtensionFactory::QExtensionFactory;
    QObject* createExtension(QObject* Object, const QString& Iid, QObject* Parent) const override
    {
        if (Iid != QLatin1String(Q_TYPEID(QDesignerPropertySheetExtension))
            && Iid != QLatin1String(Q_TYPEID(QDesignerDynamicPropertySheetExtension)))
            return nullptr;
        return new TFormSheet(Object, Parent);
    }
};

// Designer's form editor, as far as the plugin sees it: the extension manager.
class TCore : public QDesignerFormEditorInterface
{
public:
    explicit TCore(QObject* Parent) : QDesignerFormEditorInterface(Parent)
    {
        auto* Manager = new QExtensionManager(this);
        setExtensionManager(Manager);
        Manager->registerExtensions(new TPlainSheetFactory(Manager), Q_TYPEID(QDesignerPropertySheetExtension));
    }
};

// Saves a form as Designer does: each property of a component as its sheet shows it.
class TSheetBuilder : public QFormBuilder
{
public:
    explicit TSheetBuilder(QExtensionManager* Manager) : m_manager(Manager) {}

protected:
    QList<DomProperty*> computeProperties(QObject* Object) override
    {
        auto* Sheet = qt_extension<QDesignerPropertySheetExtension*>(m_manager, Object);
        if (!Sheet || !QByteArray(Object->metaObject()->className()).startsWith("Kesh::"))
            return {createProperty(Object, QStringLiteral("objectName"), Object->objectName())};
        QList<DomProperty*> Properties;
        for (int I = 0; I < Sheet->count(); ++I) {
            const QMetaObject* Meta = Object->metaObject();
            const QMetaProperty P = Meta->property(Meta->indexOfProperty(Sheet->propertyName(I).toLatin1()));
            const bool Own = P.isValid() && QByteArray(P.enclosingMetaObject()->className()).startsWith("Kesh::");
            // Designer writes enumerations through a path of its own (stdset="0" as well).
            if ((Own && P.isWritable() && !P.isEnumType() && !(P.metaType().flags() & QMetaType::PointerToQObject)) || Sheet->propertyName(I) == QLatin1String("geometry"))
                if (DomProperty* D = createProperty(Object, Sheet->propertyName(I), Sheet->property(I)))
                    Properties << D;
        }
        return Properties;
    }

private:
    QExtensionManager* m_manager;
};

struct TDom
{
    QString Class, Name;
    QSize Size;
    QStringList Unstandard;   // properties written with stdset="0"
    QStringList NotTranslated; // string properties marked notr
};

TDom ReadDom(const QString& Xml, QString& Error)
{
    TDom Dom;
    QXmlStreamReader R(Xml);
    QString Property;
    while (!R.atEnd()) {
        if (R.readNext() != QXmlStreamReader::StartElement)
            continue;
        const QStringView Tag = R.name();
        if (Tag == u"widget" && Dom.Class.isEmpty()) {
            Dom.Class = R.attributes().value("class").toString();
            Dom.Name = R.attributes().value("name").toString();
        } else if (Tag == u"property") {
            Property = R.attributes().value("name").toString();
            if (R.attributes().value("stdset") == u"0")
                Dom.Unstandard << Property;
        } else if (Tag == u"width" && Property == QLatin1String("geometry")) {
            Dom.Size.setWidth(R.readElementText().toInt());
        } else if (Tag == u"height" && Property == QLatin1String("geometry")) {
            Dom.Size.setHeight(R.readElementText().toInt());
        } else if (Tag == u"stringpropertyspecification" && R.attributes().value("notr") == u"true") {
            Dom.NotTranslated << R.attributes().value("name").toString();
        }
    }
    if (R.hasError())
        Error = R.errorString();
    return Dom;
}

// The pointer properties a Kesh class adds: each is stored as "<name>Name".
QStringList PointerProperties(const QMetaObject* Meta)
{
    QStringList Names;
    for (int I = 0; I < Meta->propertyCount(); ++I) {
        const QMetaProperty P = Meta->property(I);
        if (QByteArray(P.enclosingMetaObject()->className()).startsWith("Kesh::")
            && (P.metaType().flags() & QMetaType::PointerToQObject) && P.isWritable())
            Names << QString::fromLatin1(P.name()) + QStringLiteral("Name");
    }
    return Names;
}

bool PaintedSomething(const QImage& Image)
{
    int Painted = 0;
    for (int Y = 0; Y < Image.height(); ++Y)
        for (int X = 0; X < Image.width(); ++X)
            Painted += qAlpha(Image.pixel(X, Y)) > 0;
    return Painted > Image.width() * Image.height() / 10;
}

} // namespace

class TestDesignerPlugin : public QObject
{
    Q_OBJECT

    QPluginLoader m_loader{QStringLiteral(KESH_DESIGNER_PLUGIN)};
    QList<QDesignerCustomWidgetInterface*> m_widgets;
    QDesignerFormEditorInterface* m_core = nullptr;

    QDesignerCustomWidgetInterface* Widget(const QString& Name) const
    {
        for (QDesignerCustomWidgetInterface* W : m_widgets)
            if (W->name() == Name)
                return W;
        return nullptr;
    }

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(m_loader.load(), qPrintable(m_loader.errorString()));
        auto* Collection = qobject_cast<QDesignerCustomWidgetCollectionInterface*>(m_loader.instance());
        QVERIFY(Collection);
        m_widgets = Collection->customWidgets();
        // As a run-time loader of .ui files does it: no form editor.
        for (QDesignerCustomWidgetInterface* W : m_widgets)
            W->initialize(nullptr);
    }

    void liveOutsideDesigner()
    {
        QWidget Form;
        for (QDesignerCustomWidgetInterface* W : m_widgets)
            QVERIFY2(!IsDesigning(W->createWidget(&Form)), qPrintable(W->name()));
        // Then Designer's own start: a form editor with its extension manager.
        m_core = new TCore(this);
        for (QDesignerCustomWidgetInterface* W : m_widgets)
            W->initialize(m_core);
    }

    void components_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("group");
        QTest::addColumn<QSize>("size");
        QTest::addColumn<bool>("container");
        const QString C = QStringLiteral("Kesh_Controls");
        QTest::newRow("edit") << "Kesh::TQxEdit" << C << QSize(101, 21) << false;
        QTest::newRow("edit button") << "Kesh::TQxEditButton" << C << QSize(101, 21) << false;
        QTest::newRow("time edit") << "Kesh::TQxTimeEdit" << C << QSize(101, 21) << false;
        QTest::newRow("fixed drop list") << "Kesh::TQxFixedDropList" << C << QSize(101, 21) << false;
        QTest::newRow("label") << "Kesh::TQxLabel" << C << QSize(101, 21) << false;
        QTest::newRow("speed button") << "Kesh::TQxSpeedButton" << C << QSize(23, 22) << false;
        QTest::newRow("bit button") << "Kesh::TQxBitBtn" << C << QSize(75, 25) << false;
        QTest::newRow("icon button") << "Kesh::TQxIconButton" << C << QSize(75, 25) << false;
        QTest::newRow("check box") << "Kesh::TQxCheckBox" << C << QSize(100, 16) << false;
        QTest::newRow("panel") << "Kesh::TQxPanel" << C << QSize(185, 41) << true;
        QTest::newRow("radio group") << "Kesh::TQxRadioGroup" << C << QSize(185, 105) << false;
        const QString D = QStringLiteral("Kesh_dbControls");
        QTest::newRow("db edit") << "Kesh::TQxdbEdit" << D << QSize(101, 21) << false;
        QTest::newRow("db edit button") << "Kesh::TQxdbEditButton" << D << QSize(101, 21) << false;
        QTest::newRow("db text") << "Kesh::TQxdbText" << D << QSize(101, 21) << false;
        QTest::newRow("db fixed drop list") << "Kesh::TQxdbFixedDropList" << D << QSize(101, 21) << false;
        QTest::newRow("db check box") << "Kesh::TQxdbCheckBox" << D << QSize(100, 16) << false;
        QTest::newRow("db radio group") << "Kesh::TQxdbRadioGroup" << D << QSize(185, 105) << false;
        QTest::newRow("db speed button") << "Kesh::TQxdbSpeedButton" << D << QSize(23, 22) << false;
        QTest::newRow("db bit button") << "Kesh::TQxdbBitBtn" << D << QSize(75, 25) << false;
        QTest::newRow("db icon button") << "Kesh::TQxdbIconButton" << D << QSize(75, 25) << false;
        QTest::newRow("db image") << "Kesh::TQxdbImage" << D << QSize(105, 105) << false;
        QTest::newRow("db panel") << "Kesh::TQxdbPanel" << D << QSize(185, 41) << true;
        const QString G = QStringLiteral("Kesh_dbGrid");
        QTest::newRow("grid") << "Kesh::TQxdbGrid" << G << QSize(320, 120) << false;
        QTest::newRow("grid footer") << "Kesh::TQxdbGridFooter" << G << QSize(320, 21) << false;
        const QString A = QStringLiteral("Kesh_AdoDB");
        QTest::newRow("table drop list") << "Kesh::TQxAdoDropList" << A << QSize(101, 21) << false;
        QTest::newRow("lookup drop list") << "Kesh::TQxAdoLookupDropList" << A << QSize(101, 21) << false;
    }
    void components()
    {
        QFETCH(QString, name);
        QFETCH(QString, group);
        QFETCH(QSize, size);
        QFETCH(bool, container);
        QDesignerCustomWidgetInterface* W = Widget(name);
        QVERIFY2(W, "not in the widget box");
        QCOMPARE(W->group(), group);
        QCOMPARE(W->includeFile(), group + QStringLiteral(".h"));
        QVERIFY(!W->toolTip().isEmpty());
        QCOMPARE(W->isContainer(), container);
        QVERIFY(W->isInitialized());

        QWidget Form;
        QWidget* Created = W->createWidget(&Form);
        QVERIFY(Created);
        QCOMPARE(Created->parentWidget(), &Form);
        QCOMPARE(QString::fromLatin1(Created->metaObject()->className()), name);
        QVERIFY(IsDesigning(Created));
        for (QWidget* Part : Created->findChildren<QWidget*>())
            QVERIFY(IsDesigning(Part));
        QVERIFY(!IsDesigning(&Form));

        QString Error;
        const TDom Dom = ReadDom(W->domXml(), Error);
        QVERIFY2(Error.isEmpty(), qPrintable(Error));
        QCOMPARE(Dom.Class, name);
        QCOMPARE(Dom.Name, name.mid(7)); // "Kesh::TQxEdit" is placed as "QxEdit"
        QCOMPARE(Dom.Size, size);
        // The constructor's own width, where it gives one, is the widget box's (a combo's
        // height follows its font, the box's is the standard 21).
        if (Created->testAttribute(Qt::WA_Resized))
            QCOMPARE(Created->width(), size.width());
        QCOMPARE(Dom.Unstandard, PointerProperties(Created->metaObject()));
        for (const QString& Text : Dom.NotTranslated) {
            const int I = Created->metaObject()->indexOfProperty(Text.toLatin1());
            QVERIFY2(I >= 0 && Created->metaObject()->property(I).metaType() == QMetaType::fromType<QString>(), qPrintable(Text));
        }
        if (Created->metaObject()->indexOfProperty("_Caption_a") >= 0)
            QVERIFY(Dom.NotTranslated.contains(QStringLiteral("_Caption_a")));
    }

    void everyComponentListed()
    {
        QStringList Names;
        for (QDesignerCustomWidgetInterface* W : m_widgets)
            Names << W->name();
        QCOMPARE(Names.size(), 26);
        QCOMPARE(QSet<QString>(Names.begin(), Names.end()).size(), Names.size());
    }

    void iconsDrawnAndDistinct()
    {
        QList<QImage> Seen;
        for (QDesignerCustomWidgetInterface* W : m_widgets) {
            const QImage Image = W->icon().pixmap(32, 32).toImage().convertToFormat(QImage::Format_ARGB32);
            QCOMPARE(Image.size(), QSize(32, 32));
            QVERIFY2(PaintedSomething(Image), qPrintable(W->name()));
            QVERIFY2(!Seen.contains(Image), qPrintable(W->name() + QStringLiteral(" looks like another component")));
            Seen << Image;
        }
    }

    void sheetEditors_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("property");
        QTest::addColumn<int>("shownType");
        QTest::addColumn<QVariant>("edited");
        QTest::addColumn<QVariant>("stored");
        TFont Red(QFont(QStringLiteral("Tahoma"), 14), clRed, ARABIC_CHARSET);
        Red.SetStyle(fsBold);
        const int String = QMetaType::QString, Color = QMetaType::QColor;
        QTest::newRow("font as text") << "Kesh::TQxLabel" << "_Font_a" << String
                                      << QVariant("Tahoma,14,$000000FF,178,B") << QVariant::fromValue(Red);
        QTest::newRow("button font") << "Kesh::TQxBitBtn" << "_Font_e" << String
                                     << QVariant("Tahoma,14,$000000FF,178,B") << QVariant::fromValue(Red);
        QTest::newRow("label colour") << "Kesh::TQxLabel" << "Color" << Color << QVariant(QColor(0, 255, 0))
                                      << QVariant::fromValue(clLime);
        QTest::newRow("shade colour") << "Kesh::TQxLabel" << "_TextShade" << Color << QVariant(QColor(0, 0, 255))
                                      << QVariant::fromValue(clBlue);
        QTest::newRow("check box shade") << "Kesh::TQxCheckBox" << "_TextShade" << Color << QVariant(QColor(255, 0, 0))
                                         << QVariant::fromValue(clRed);
        QTest::newRow("panel gradient") << "Kesh::TQxPanel" << "_ColorTo" << Color << QVariant(QColor(1, 2, 3))
                                        << QVariant::fromValue(RGBToColor(1, 2, 3));
        QTest::newRow("edit colour") << "Kesh::TQxEdit" << "_ColorDisabled" << Color << QVariant(QColor(9, 8, 7))
                                     << QVariant::fromValue(RGBToColor(9, 8, 7));
        QTest::newRow("standard width") << "Kesh::TQxEdit" << "_FixedSize" << int(QMetaType::LongLong)
                                        << QVariant(qlonglong(3)) << QVariant(3);
        QTest::newRow("columns") << "Kesh::TQxRadioGroup" << "Columns" << int(QMetaType::LongLong)
                                 << QVariant(qlonglong(2)) << QVariant(2);
        QTest::newRow("caption as it is") << "Kesh::TQxLabel" << "_Caption_a" << String << QVariant("اسم")
                                          << QVariant("اسم");
        QTest::newRow("hot key as it is") << "Kesh::TQxSpeedButton" << "_HotKey" << int(QMetaType::QKeySequence)
                                          << QVariant(QKeySequence("F5")) << QVariant(QKeySequence("F5"));
    }
    void sheetEditors()
    {
        QFETCH(QString, name);
        QFETCH(QString, property);
        QFETCH(int, shownType);
        QFETCH(QVariant, edited);
        QFETCH(QVariant, stored);
        QWidget Form;
        QWidget* W = Widget(name)->createWidget(&Form);
        auto* Sheet = qt_extension<QDesignerPropertySheetExtension*>(m_core->extensionManager(), W);
        QVERIFY(dynamic_cast<TPropertySheet*>(Sheet));
        const int I = Sheet->indexOf(property);
        QVERIFY(I >= 0);
        QCOMPARE(Sheet->property(I).metaType().id(), shownType);
        Sheet->setProperty(I, edited);
        QVERIFY(Sheet->isChanged(I));
        const QVariant Now = W->property(property.toLatin1().constData());
        if (Now.metaType() != stored.metaType())
            QCOMPARE(Now.toUInt(), stored.toUInt());
        else
            QCOMPARE(Now, stored);
        QCOMPARE(Sheet->property(I), edited); // read back as edited
    }

    void everyValueTypeHasAnEditor()
    {
        // A colour declared with another type name would reach Designer as a bare number.
        QWidget Form;
        for (QDesignerCustomWidgetInterface* I : m_widgets) {
            QWidget* W = I->createWidget(&Form);
            const QMetaObject* Meta = W->metaObject();
            for (int P = 0; P < Meta->propertyCount(); ++P) {
                const QMetaProperty Prop = Meta->property(P);
                const QByteArray Name = Prop.name();
                if (!QByteArray(Prop.enclosingMetaObject()->className()).startsWith("Kesh::"))
                    continue;
                const TShownAs Kind = ShownAs(Prop);
                const QByteArray Where = Meta->className() + QByteArray(".") + Name;
                if (Prop.metaType() == QMetaType::fromType<TFont>())
                    QVERIFY2(Kind == TShownAs::FontText, Where);
                else if (Prop.metaType() == QMetaType::fromType<TColor>())
                    QVERIFY2(Kind == TShownAs::Color, Where);
                else if (Prop.metaType() == QMetaType::fromType<int>() && !Prop.hasStdCppSet())
                    QVERIFY2(Kind == TShownAs::Number, Where);
                else if (Kind != TShownAs::Itself)
                    QFAIL(Where + " is translated though Designer edits it as it is");
            }
        }
    }

    void badFontTextKeepsTheFont()
    {
        QWidget Form;
        auto* Label = static_cast<TQxLabel*>(Widget(QStringLiteral("Kesh::TQxLabel"))->createWidget(&Form));
        const TFont Before = Label->GetFont_e();
        auto* Sheet = qt_extension<QDesignerPropertySheetExtension*>(m_core->extensionManager(), Label);
        Sheet->setProperty(Sheet->indexOf(QStringLiteral("_Font_e")), QStringLiteral("Tahoma,big"));
        QCOMPARE(Label->GetFont_e(), Before);
    }

    void nameFollowsField_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("property");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QStringList>("taken");
        QTest::addColumn<QString>("expected");
        QTest::newRow("blanks removed") << "Kesh::TQxdbEdit" << "DataField" << "Customer Name" << QStringList{} << "xCustomerName";
        QTest::newRow("name taken") << "Kesh::TQxdbCheckBox" << "DataField" << "Active" << QStringList{"xActive"} << "xxActive";
        QTest::newRow("both taken") << "Kesh::TQxdbRadioGroup" << "DataField" << "Kind" << QStringList{"xKind", "xxKind"} << "QxdbRadioGroup";
        QTest::newRow("blank field") << "Kesh::TQxdbText" << "DataField" << "  " << QStringList{} << "QxdbText";
        QTest::newRow("drop list") << "Kesh::TQxdbFixedDropList" << "_DataField" << "City Code" << QStringList{} << "xCityCode";
        QTest::newRow("image") << "Kesh::TQxdbImage" << "_DataField" << "Photo" << QStringList{} << "xPhoto";
    }
    void nameFollowsField()
    {
        QFETCH(QString, name);
        QFETCH(QString, property);
        QFETCH(QString, field);
        QFETCH(QStringList, taken);
        QFETCH(QString, expected);
        QWidget Form;
        for (const QString& Other : taken)
            (new QWidget(&Form))->setObjectName(Other);
        QWidget* W = Widget(name)->createWidget(&Form);
        W->setObjectName(name.mid(7));
        auto* Sheet = qt_extension<QDesignerPropertySheetExtension*>(m_core->extensionManager(), W);
        Sheet->setProperty(Sheet->indexOf(property), field);
        QCOMPARE(W->property(property.toLatin1().constData()).toString(), field);
        QCOMPARE(W->objectName(), expected);
    }

    void fontMenu_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QStringList>("fonts");
        QTest::newRow("label") << "Kesh::TQxLabel" << QStringList{"Font", "_Font_a", "_Font_e"};
        QTest::newRow("button") << "Kesh::TQxBitBtn" << QStringList{"_Font_a", "_Font_e"};
        QTest::newRow("radio group") << "Kesh::TQxRadioGroup" << QStringList{"Font", "_Font_a", "_Font_e"};
        QTest::newRow("grid") << "Kesh::TQxdbGrid" << QStringList{"_ColumnsText", "Font", "TitleFont"};
        QTest::newRow("edit: none") << "Kesh::TQxEdit" << QStringList{};
    }
    void fontMenu()
    {
        QFETCH(QString, name);
        QFETCH(QStringList, fonts);
        QWidget Form;
        QWidget* W = Widget(name)->createWidget(&Form);
        auto* Menu = qt_extension<QDesignerTaskMenuExtension*>(m_core->extensionManager(), W);
        QCOMPARE(Menu != nullptr, !fonts.isEmpty());
        if (!Menu)
            return;
        QStringList Offered;
        for (QAction* A : Menu->taskActions())
            Offered << A->objectName();
        QCOMPARE(Offered, fonts);
        QCOMPARE(Menu->preferredEditAction(), Menu->taskActions().first());
    }

    void fontMenuEditsFontAndColour_data()
    {
        QTest::addColumn<bool>("colourAccepted");
        QTest::newRow("font and colour") << true;
        QTest::newRow("colour dialog cancelled") << false;
    }
    void fontMenuEditsFontAndColour()
    {
        QFETCH(bool, colourAccepted);
        QWidget Form;
        auto* Label = static_cast<TQxLabel*>(Widget(QStringLiteral("Kesh::TQxLabel"))->createWidget(&Form));
        Label->SetFont_e(TFont(QFont(QStringLiteral("Tahoma"), 8), clNavy, ARABIC_CHARSET));
        auto* Menu = qt_extension<QDesignerTaskMenuExtension*>(m_core->extensionManager(), Label);
        // A family the font dialog lists, other than the current one.
        QString Family;
        for (const QString& F : QFontDatabase::families())
            if (F != QLatin1String("Tahoma") && QFontDatabase::isSmoothlyScalable(F) && Family.isEmpty())
                Family = F;
        QVERIFY(!Family.isEmpty());
        KeshTest::DialogDriver Driver;
        Driver.OnShown = [Family](QWidget* Dialog) {
            if (auto* F = qobject_cast<QFontDialog*>(Dialog))
                F->setCurrentFont(QFont(Family, 14));
            if (auto* C = qobject_cast<QColorDialog*>(Dialog))
                C->setCurrentColor(Qt::red);
        };
        Driver.Press(Qt::Key_Return);
        Driver.Press(colourAccepted ? Qt::Key_Return : Qt::Key_Escape);
        Menu->taskActions().at(2)->trigger(); // _Font_e
        QCOMPARE(Driver.Seen.size(), 2);
        QVERIFY2(Driver.Errors.isEmpty(), qPrintable(Driver.Errors.join('\n')));
        const TFont Now = Label->GetFont_e();
        QCOMPARE(Now.Name(), Family);
        QCOMPARE(Now.Size(), 14);
        QCOMPARE(Now.Color(), colourAccepted ? clRed : clNavy);
        QCOMPARE(Now.Charset(), ARABIC_CHARSET); // not a font dialog's matter: kept
    }

    void itemLines_data()
    {
        QTest::addColumn<QStringList>("lines");
        QTest::addColumn<QStringList>("stored"); // empty: refused, the list stays
        QTest::newRow("sorted by ID") << QStringList{"2|ب|B", "1|أ|A"} << QStringList{"1|أ|A", "2|ب|B"};
        QTest::newRow("blank lines skipped") << QStringList{"", "7|سبعة|Seven", "  "} << QStringList{"7|سبعة|Seven"};
        QTest::newRow("empty captions") << QStringList{"3||"} << QStringList{"3||"};
        QTest::newRow("two fields") << QStringList{"1|أ"} << QStringList{};
        QTest::newRow("four fields") << QStringList{"1|أ|A|x"} << QStringList{};
        QTest::newRow("ID not a number") << QStringList{"x|أ|A"} << QStringList{};
        QTest::newRow("ID twice") << QStringList{"1|أ|A", "1|ب|B"} << QStringList{};
    }
    void itemLines()
    {
        QFETCH(QStringList, lines);
        QFETCH(QStringList, stored);
        TxBiStrings Current;
        Current.Add(9, QStringLiteral("تسعة"), QStringLiteral("Nine"), RaNothing);
        if (stored.isEmpty())
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("^Kesh designer: line"));
        const QVariant Result = FromShown(TShownAs::ItemLines, lines, QVariant::fromValue(Current));
        QCOMPARE(ToShown(TShownAs::ItemLines, Result).toStringList(), stored.isEmpty() ? BiStringsToLines(Current) : stored);
    }

    void formPropertiesAdded_data()
    {
        QTest::addColumn<QString>("present"); // a property the form has before, with a value
        QTest::addColumn<int>("added");
        QTest::newRow("new form") << "" << 5;
        QTest::newRow("form with its caption") << "QxForm_Caption_a" << 4;
        QTest::newRow("form with its message list") << "QxForm_BiStrings" << 4;
        QTest::newRow("another dynamic property") << "QxForm_Language" << 5;
    }
    void formPropertiesAdded()
    {
        QFETCH(QString, present);
        QFETCH(int, added);
        QExtensionManager Manager;
        Manager.registerExtensions(new TFormSheetFactory(&Manager), Q_TYPEID(QDesignerPropertySheetExtension));
        Manager.registerExtensions(new TFormSheetFactory(&Manager), Q_TYPEID(QDesignerDynamicPropertySheetExtension));
        QWidget Form;
        const QVariant Kept = present.endsWith(QLatin1String("BiStrings")) ? QVariant(QStringList{"1|أ|A"}) : QVariant(QStringLiteral("x"));
        if (!present.isEmpty())
            Form.setProperty(present.toLatin1(), Kept);
        QCOMPARE(AddFormProperties(&Manager, &Form), added);
        QCOMPARE(AddFormProperties(&Manager, &Form), 0); // opened again: nothing twice
        for (const auto& [Name, Empty] : FormProperties()) {
            const QVariant Value = Form.property(Name.toLatin1());
            QVERIFY2(Value.isValid(), qPrintable(Name));
            QCOMPARE(Value, Name == present ? Kept : Empty);
        }
        if (!present.isEmpty())
            QCOMPARE(Form.property(present.toLatin1()), Kept);
        // Only the form manager's own properties, under the names the form reads.
        QStringList Names;
        for (const auto& P : FormProperties())
            Names << P.first;
        QCOMPARE(Names, (QStringList{"QxForm_Name", "QxForm_Caption_a", "QxForm_Caption_e", "QxForm_Options", "QxForm_BiStrings"}));
    }

    void uicCallsNoMissingSetter()
    {
        // A form as the form builder saves it (Designer saves through the same code), with
        // every published property of every component changed, compiles to code that sets
        // the library's properties by name, never through a set<Name>() that is not there.
        QWidget Form;
        Form.setObjectName(QStringLiteral("Form"));
        for (QDesignerCustomWidgetInterface* I : m_widgets) {
            QWidget* W = I->createWidget(&Form);
            W->setObjectName(I->name().mid(7));
            W->setProperty("_Caption_a", QStringLiteral("عربي"));
            W->setProperty("_Caption_e", QStringLiteral("English"));
        }
        TSheetBuilder Builder(m_core->extensionManager());
        QBuffer Ui;
        Ui.open(QIODevice::WriteOnly);
        Builder.save(&Ui, &Form);
        QTemporaryDir Dir;
        QFile File(Dir.filePath(QStringLiteral("form.ui")));
        QVERIFY(File.open(QIODevice::WriteOnly));
        File.write(Ui.data());
        File.close();
        QVERIFY2(Ui.data().contains("name=\"_Caption_a\" stdset=\"0\""), Ui.data().left(2000).constData());
        QVERIFY(Ui.data().contains("name=\"_FixedSize\" stdset=\"0\""));
        QVERIFY(Ui.data().contains("name=\"_Font_a\" stdset=\"0\""));
        QProcess Uic;
        Uic.start(QStringLiteral(KESH_UIC), {File.fileName()});
        QVERIFY(Uic.waitForFinished(60000));
        QCOMPARE(Uic.exitCode(), 0);
        const QString Code = QString::fromUtf8(Uic.readAllStandardOutput());
        QVERIFY(Code.contains(QLatin1String("QxLabel->setProperty(\"_Caption_a\"")));
        static const QRegularExpression Setter(QStringLiteral("->set_\\w+\\("));
        QVERIFY2(!Setter.match(Code).hasMatch(), qPrintable(Setter.match(Code).captured()));
        // Besides setProperty, uic calls only Qt's own setters of standard properties.
        static const QRegularExpression Call(QStringLiteral("(Qx\\w+)->set(\\w+)\\("));
        for (auto M = Call.globalMatch(Code); M.hasNext();) {
            const auto Match = M.next();
            const QString Name = Match.captured(2);
            if (Name == QLatin1String("Property") || Name == QLatin1String("ObjectName"))
                continue;
            QWidget* W = Form.findChild<QWidget*>(Match.captured(1), Qt::FindDirectChildrenOnly);
            if (!W)
                continue; // an inner part (the edit button's button), renamed by uic
            const QByteArray Property = Name.left(1).toLower().toLatin1() + Name.mid(1).toLatin1();
            const int P = W->metaObject()->indexOfProperty(Property);
            QVERIFY2(P >= 0 && W->metaObject()->property(P).hasStdCppSet(), qPrintable(Match.captured()));
        }
    }
};

int main(int argc, char** argv)
{
    TQxApplication App(argc, argv);
    App.setAttribute(Qt::AA_Use96Dpi, true);
    TestDesignerPlugin Test;
    return QTest::qExec(&Test, argc, argv);
}
#include "tst_designer_plugin.moc"
