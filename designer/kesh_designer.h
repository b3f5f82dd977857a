// Kesh for Qt — the Qt Designer plugin: every visual component of the library in the widget
// box, grouped by unit, with editable published properties.
#pragma once
#include <QtUiPlugin/QDesignerCustomWidgetCollectionInterface>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>
#include <QIcon>
#include <QObject>
#include <QSize>
#include <functional>

class QPainter;

namespace KeshDesigner {

/// What the widget box needs to know of one component.
struct TComponent
{
    const char* ClassName;   ///< fully qualified, as uic writes it ("Kesh::TQxEdit")
    const char* Group;       ///< the unit ("Kesh_Controls")
    const char* Header;      ///< the include of the generated code ("Kesh_Controls.h")
    const char* ToolTip;
    QSize DefaultSize;       ///< the size the component is created with
    bool Container;          ///< other widgets may be dropped on it
    std::function<QWidget*(QWidget* Parent)> Create;
    std::function<void(QPainter& Painter)> DrawIcon; ///< on a 32 × 32 canvas
};

/// Every component the plugin offers, in widget-box order.
const QList<TComponent>& Components();

/// Marks a component Designer created as being designed, until it turns out to be placed
/// outside any form window (Form > Preview builds the form there): then it runs as built
/// by a program.
void MarkDesigning(QWidget* Widget);

/// The widget-box entry of one component.
class TWidgetInterface : public QObject, public QDesignerCustomWidgetInterface
{
    Q_OBJECT
    Q_INTERFACES(QDesignerCustomWidgetInterface)

public:
    TWidgetInterface(const TComponent& Component, QObject* Parent);

    QString name() const override;
    QString group() const override;
    QString toolTip() const override;
    QString whatsThis() const override;
    QString includeFile() const override;
    QIcon icon() const override;
    bool isContainer() const override;
    QWidget* createWidget(QWidget* Parent) override;
    bool isInitialized() const override { return m_initialized; }
    void initialize(QDesignerFormEditorInterface* Core) override;
    QString domXml() const override;

private:
    TComponent m_component;
    bool m_initialized = false;
    QDesignerFormEditorInterface* m_core = nullptr; // set inside Designer only
};

/// The collection Designer loads.
class TCollection : public QObject, public QDesignerCustomWidgetCollectionInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetCollectionInterface")
    Q_INTERFACES(QDesignerCustomWidgetCollectionInterface)

public:
    explicit TCollection(QObject* Parent = nullptr);
    QList<QDesignerCustomWidgetInterface*> customWidgets() const override { return m_widgets; }

private:
    QList<QDesignerCustomWidgetInterface*> m_widgets;
};

} // namespace KeshDesigner
