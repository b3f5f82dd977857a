// Kesh for Qt — the Qt Designer plugin: the widget-box entries and their descriptions.
#include "kesh_designer.h"
#include "property_sheet.h"
#include "form_properties.h"

#include "platform/widgets.h"

#include <QMetaProperty>
#include <QPainter>
#include <QPixmap>
#include <QWidget>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>
#include <QEvent>
#include <QtDesigner/QExtensionManager>
#include <memory>

namespace KeshDesigner {

namespace {

// Designer builds a form's widgets in its form window, and builds them again, through the
// same plugin, outside any form window for Form > Preview: decided once the widget is
// placed, at its first polish.
class TPreviewWatcher : public QObject
{
public:
    bool eventFilter(QObject* Object, QEvent* Event) override
    {
        if (Event->type() == QEvent::Polish) {
            Object->removeEventFilter(this);
            if (!QDesignerFormWindowInterface::findFormWindow(static_cast<QWidget*>(Object)))
                Kesh::SetDesigning(Object, false);
        }
        return false;
    }
};

// The properties a Kesh class adds to its Qt base, in declaration order.
QList<QMetaProperty> OwnProperties(const QMetaObject* Meta)
{
    QList<QMetaProperty> Result;
    for (int I = 0; I < Meta->propertyCount(); ++I) {
        const QMetaProperty P = Meta->property(I);
        if (QByteArray(P.enclosingMetaObject()->className()).startsWith("Kesh::"))
            Result << P;
    }
    return Result;
}
} // namespace

void MarkDesigning(QWidget* Widget)
{
    static TPreviewWatcher Watcher;
    Kesh::SetDesigning(Widget);
    Widget->installEventFilter(&Watcher);
}

TWidgetInterface::TWidgetInterface(const TComponent& Component, QObject* Parent)
    : QObject(Parent), m_component(Component)
{
}

QString TWidgetInterface::name() const { return QString::fromLatin1(m_component.ClassName); }
QString TWidgetInterface::group() const { return QString::fromLatin1(m_component.Group); }
QString TWidgetInterface::toolTip() const { return QString::fromUtf8(m_component.ToolTip); }
QString TWidgetInterface::whatsThis() const { return toolTip(); }
QString TWidgetInterface::includeFile() const { return QString::fromLatin1(m_component.Header); }
bool TWidgetInterface::isContainer() const { return m_component.Container; }

QIcon TWidgetInterface::icon() const
{
    QPixmap Canvas(32, 32);
    Canvas.fill(Qt::transparent);
    QPainter Painter(&Canvas);
    Painter.setRenderHint(QPainter::Antialiasing);
    m_component.DrawIcon(Painter);
    Painter.end();
    return QIcon(Canvas);
}

QWidget* TWidgetInterface::createWidget(QWidget* Parent)
{
    QWidget* Widget = m_component.Create(Parent);
    // Inside Designer the component behaves as designed, not as run; a run-time loader of
    // .ui files (QUiLoader) initializes the plugin without a form editor and gets live ones.
    if (m_core)
        MarkDesigning(Widget);
    return Widget;
}

void TWidgetInterface::initialize(QDesignerFormEditorInterface* Core)
{
    m_initialized = true;
    if (!Core || m_core)
        return;
    m_core = Core;
    RegisterPropertySheet(Core->extensionManager());
    WatchFormWindows(Core);
}

QString TWidgetInterface::domXml() const
{
    const QString Class = name();
    const QString ObjectName = Class.section(QStringLiteral("::"), -1).mid(1); // "QxEdit"
    QString Xml = QStringLiteral("<ui language=\"c++\">\n <widget class=\"%1\" name=\"%2\">\n"
                                 "  <property name=\"geometry\"><rect><x>0</x><y>0</y>"
                                 "<width>%3</width><height>%4</height></rect></property>\n")
                      .arg(Class, ObjectName)
                      .arg(m_component.DefaultSize.width())
                      .arg(m_component.DefaultSize.height());
    QString PlainStrings;  // string properties Designer edits as plain, untranslated text
    const std::unique_ptr<QWidget> Sample(m_component.Create(nullptr));
    for (const QMetaProperty& P : OwnProperties(Sample->metaObject())) {
        // A pointer to another object is stored as that object's name, bound when the
        // form finishes building (Kesh::EndLoading).
        if ((P.metaType().flags() & QMetaType::PointerToQObject) && P.isWritable())
            Xml += QStringLiteral("  <property name=\"%1Name\" stdset=\"0\"><string notr=\"true\"></string></property>\n")
                       .arg(QString::fromLatin1(P.name()));
        // Captions are the program's own bilingual texts, not for Qt's translation.
        else if (P.metaType() == QMetaType::fromType<QString>() && P.isWritable())
            // Texts of several lines (the grid's columns) get Designer's text editor.
            PlainStrings += QStringLiteral("    <stringpropertyspecification name=\"%1\" notr=\"true\" type=\"%2\"/>\n")
                         .arg(QString::fromLatin1(P.name()), QByteArray(P.name()).endsWith("Text") ? QStringLiteral("multiline") : QStringLiteral("singleline"));
    }
    Xml += QStringLiteral(" </widget>\n <customwidgets>\n  <customwidget>\n   <class>%1</class>\n").arg(Class);
    if (!PlainStrings.isEmpty())
        Xml += QStringLiteral("   <propertyspecifications>\n") + PlainStrings + QStringLiteral("   </propertyspecifications>\n");
    Xml += QStringLiteral("  </customwidget>\n </customwidgets>\n</ui>\n");
    return Xml;
}

TCollection::TCollection(QObject* Parent) : QObject(Parent)
{
    for (const TComponent& Component : Components())
        m_widgets << new TWidgetInterface(Component, this);
}

} // namespace KeshDesigner
