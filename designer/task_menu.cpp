// Kesh for Qt — the entries of a component's context menu in Qt Designer.
#include "task_menu.h"
#include "columns_editor.h"

#include "Kesh_dbGrid.h"
#include "colors.h"

#include <QAction>
#include <QColorDialog>
#include <QFontDialog>
#include <QMetaProperty>
#include <QPointer>
#include <QtDesigner/QDesignerFormWindowCursorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>
#include <QtDesigner/QExtensionFactory>
#include <QtDesigner/QExtensionManager>

namespace KeshDesigner {

namespace {

// The TFont properties a Kesh class declares, in declaration order.
QList<QByteArray> FontProperties(const QObject* Object)
{
    QList<QByteArray> Names;
    const QMetaObject* Meta = Object->metaObject();
    for (int I = 0; I < Meta->propertyCount(); ++I) {
        const QMetaProperty P = Meta->property(I);
        if (P.isWritable() && P.metaType() == QMetaType::fromType<Kesh::TFont>()
            && QByteArray(P.enclosingMetaObject()->className()).startsWith("Kesh::"))
            Names << P.name();
    }
    return Names;
}

class TTaskMenuFactory : public QExtensionFactory
{
public:
    using QExtensionFactory::QExtensionFactory;

protected:
    QObject* createExtension(QObject* Object, const QString& Iid, QObject* Parent) const override
    {
        auto* Widget = qobject_cast<QWidget*>(Object);
        if (Iid != QLatin1String(Q_TYPEID(QDesignerTaskMenuExtension)) || !Widget
            || !QByteArray(Object->metaObject()->className()).startsWith("Kesh::"))
            return nullptr;
        if (FontProperties(Object).isEmpty() && !qobject_cast<Kesh::TQxCustomDBGrid*>(Widget))
            return nullptr;
        return new TTaskMenu(Widget, Parent);
    }
};

} // namespace

Kesh::TFont PickedFont(const Kesh::TFont& Current, const QFont& Chosen, const QColor& Color)
{
    return Kesh::TFont(Chosen, Color.isValid() ? Kesh::QColorToTColor(Color) : Current.Color(), Current.Charset());
}

TTaskMenu::TTaskMenu(QWidget* Widget, QObject* Parent) : QObject(Parent), m_widget(Widget)
{
    if (qobject_cast<Kesh::TQxCustomDBGrid*>(Widget)) {
        auto* Action = new QAction(tr("Edit columns..."), this);
        Action->setObjectName(QStringLiteral("_ColumnsText"));
        connect(Action, &QAction::triggered, this, &TTaskMenu::EditColumns);
        m_actions << Action;
    }
    for (const QByteArray& Property : FontProperties(Widget)) {
        auto* Action = new QAction(tr("Edit font %1...").arg(QString::fromLatin1(Property)), this);
        Action->setObjectName(QString::fromLatin1(Property));
        connect(Action, &QAction::triggered, this, [this, Property] { EditFont(Property); });
        m_actions << Action;
    }
}

void TTaskMenu::Store(const QByteArray& Property, const QVariant& Value)
{
    // Through the form window's cursor, the change is an ordinary, undoable edit.
    if (QDesignerFormWindowInterface* Form = QDesignerFormWindowInterface::findFormWindow(m_widget))
        Form->cursor()->setWidgetProperty(m_widget, QString::fromLatin1(Property), Value);
    else
        m_widget->setProperty(Property.constData(), Value);
}

void TTaskMenu::EditFont(const QByteArray& Property)
{
    const QPointer<QWidget> Widget(m_widget);
    const Kesh::TFont Current = Widget->property(Property.constData()).value<Kesh::TFont>();
    const QString Name = Widget->objectName() + QLatin1Char('.') + QString::fromLatin1(Property);
    bool Ok = false;
    const QFont Chosen = QFontDialog::getFont(&Ok, Current.Font(), Widget->window(), tr("Font of %1").arg(Name));
    if (!Ok || !Widget)
        return;
    const QColor Color = QColorDialog::getColor(Current.PenColor(), Widget->window(), tr("Colour of %1").arg(Name));
    if (!Widget)
        return;
    const Kesh::TFont Picked = PickedFont(Current, Chosen, Color);
    if (QDesignerFormWindowInterface::findFormWindow(Widget.data()))
        Store(Property, Kesh::FontToStr(Picked)); // as the property editor shows it
    else
        Store(Property, QVariant::fromValue(Picked));
}

void TTaskMenu::EditColumns()
{
    const QPointer<QWidget> Widget(m_widget);
    TColumnsEditor Editor(Widget->property("_ColumnsText").toString(), Widget->window());
    Editor.setWindowTitle(tr("Columns of %1").arg(Widget->objectName()));
    if (Editor.exec() == QDialog::Accepted && Widget)
        Store("_ColumnsText", Editor.Text());
}

void RegisterTaskMenu(QExtensionManager* Manager)
{
    Manager->registerExtensions(new TTaskMenuFactory(Manager), Q_TYPEID(QDesignerTaskMenuExtension));
}

} // namespace KeshDesigner
