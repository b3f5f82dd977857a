// Kesh for Qt — "Edit font…" in Designer's context menu of a component.
#include "font_task_menu.h"

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

class TFontTaskMenuFactory : public QExtensionFactory
{
public:
    using QExtensionFactory::QExtensionFactory;

protected:
    QObject* createExtension(QObject* Object, const QString& Iid, QObject* Parent) const override
    {
        auto* Widget = qobject_cast<QWidget*>(Object);
        if (Iid != QLatin1String(Q_TYPEID(QDesignerTaskMenuExtension)) || !Widget
            || !QByteArray(Object->metaObject()->className()).startsWith("Kesh::") || FontProperties(Object).isEmpty())
            return nullptr;
        return new TFontTaskMenu(Widget, Parent);
    }
};

} // namespace

Kesh::TFont PickedFont(const Kesh::TFont& Current, const QFont& Chosen, const QColor& Color)
{
    return Kesh::TFont(Chosen, Color.isValid() ? Kesh::QColorToTColor(Color) : Current.Color(), Current.Charset());
}

TFontTaskMenu::TFontTaskMenu(QWidget* Widget, QObject* Parent) : QObject(Parent), m_widget(Widget)
{
    for (const QByteArray& Property : FontProperties(Widget)) {
        auto* Action = new QAction(tr("Edit font %1...").arg(QString::fromLatin1(Property)), this);
        Action->setObjectName(QString::fromLatin1(Property));
        connect(Action, &QAction::triggered, this, [this, Property] { Edit(Property); });
        m_actions << Action;
    }
}

void TFontTaskMenu::Edit(const QByteArray& Property)
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
    // Through the form window's cursor, the change is an ordinary, undoable edit.
    if (QDesignerFormWindowInterface* Form = QDesignerFormWindowInterface::findFormWindow(Widget.data()))
        Form->cursor()->setWidgetProperty(Widget, QString::fromLatin1(Property), Kesh::FontToStr(Picked));
    else
        Widget->setProperty(Property.constData(), QVariant::fromValue(Picked));
}

void RegisterFontTaskMenu(QExtensionManager* Manager)
{
    Manager->registerExtensions(new TFontTaskMenuFactory(Manager), Q_TYPEID(QDesignerTaskMenuExtension));
}

} // namespace KeshDesigner
