// Kesh for Qt — "Edit font…" in Designer's context menu of a component: a TFont chosen as
// a font and a colour, the character set kept.
#pragma once
#include "platform/graphics.h"
#include <QtDesigner/QDesignerTaskMenuExtension>
#include <QColor>
#include <QFont>
#include <QObject>

class QExtensionManager;

namespace KeshDesigner {

/// The font a designer picked: Chosen's name, size and style, Color (unless invalid: the
/// current colour stays), Current's character set.
Kesh::TFont PickedFont(const Kesh::TFont& Current, const QFont& Chosen, const QColor& Color);

/// One action per TFont property of the component: a font dialog, then a colour dialog.
class TFontTaskMenu : public QObject, public QDesignerTaskMenuExtension
{
    Q_OBJECT
    Q_INTERFACES(QDesignerTaskMenuExtension)

public:
    TFontTaskMenu(QWidget* Widget, QObject* Parent);
    QList<QAction*> taskActions() const override { return m_actions; }
    QAction* preferredEditAction() const override { return m_actions.value(0); }

    /// Asks for the font and colour of Property and stores them as Designer's own edit.
    void Edit(const QByteArray& Property);

private:
    QWidget* m_widget;
    QList<QAction*> m_actions;
};

/// Offers the menu on every Kesh component with a TFont property (once per manager).
void RegisterFontTaskMenu(QExtensionManager* Manager);

} // namespace KeshDesigner
