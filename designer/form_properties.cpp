// Kesh for Qt — the form manager's properties on every form edited in Qt Designer.
#include "form_properties.h"

#include "ui_forms.h"

#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <QtDesigner/QDesignerDynamicPropertySheetExtension>
#include <QtDesigner/QDesignerFormEditorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>
#include <QtDesigner/QDesignerFormWindowManagerInterface>
#include <QtDesigner/QDesignerPropertySheetExtension>
#include <QtDesigner/QExtensionManager>

namespace KeshDesigner {

QList<QPair<QString, QVariant>> FormProperties()
{
    const QString Prefix = QString::fromLatin1(Kesh::QxFormPropertyPrefix);
    return {{Prefix + QStringLiteral("Name"), QString()},
            {Prefix + QStringLiteral("Caption_a"), QString()},
            {Prefix + QStringLiteral("Caption_e"), QString()},
            {Prefix + QStringLiteral("Options"), QString()}, // "FoAutoCenter|FoSaveSize"
            {Prefix + QStringLiteral("BiStrings"), QStringList()}}; // lines "ID|Arabic|English"
}

int AddFormProperties(QExtensionManager* Manager, QWidget* Form)
{
    auto* Sheet = qt_extension<QDesignerPropertySheetExtension*>(Manager, Form);
    auto* Dynamic = qt_extension<QDesignerDynamicPropertySheetExtension*>(Manager, Form);
    if (!Sheet || !Dynamic || !Dynamic->dynamicPropertiesAllowed())
        return 0;
    int Added = 0;
    for (const auto& [Name, Empty] : FormProperties()) {
        const int Index = Sheet->indexOf(Name);
        if (Index >= 0 && Sheet->isVisible(Index))
            continue; // loaded from the form's file, or added by the designer
        Added += Dynamic->addDynamicProperty(Name, Empty) >= 0;
    }
    return Added;
}

void WatchFormWindows(QDesignerFormEditorInterface* Core)
{
    static QList<QPointer<QDesignerFormEditorInterface>> Watched;
    QDesignerFormWindowManagerInterface* Windows = Core ? Core->formWindowManager() : nullptr;
    if (!Windows || Watched.contains(Core))
        return;
    Watched << Core;
    QObject::connect(Windows, &QDesignerFormWindowManagerInterface::formWindowAdded, Windows,
                     [Core](QDesignerFormWindowInterface* Window) {
                         const QPointer<QDesignerFormWindowInterface> Form(Window);
                         auto Add = [Core, Form] {
                             if (Form && Form->mainContainer())
                                 AddFormProperties(Core->extensionManager(), Form->mainContainer());
                         };
                         // A form read from a file has its own values once the reading is done.
                         QObject::connect(Window, &QDesignerFormWindowInterface::mainContainerChanged, Window,
                                          [Add] { QTimer::singleShot(0, Add); });
                         QTimer::singleShot(0, Window, Add);
                     });
}

} // namespace KeshDesigner
