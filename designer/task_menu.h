// Kesh for Qt — the entries of a component's context menu in Qt Designer: "Edit font…" for
// each TFont (a font and a colour, the character set kept) and, on a grid, "Edit columns…".
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

/// The menu of one component: "Edit columns..." first on a grid (named "_ColumnsText"),
/// then one action per TFont property (named after it).
class TTaskMenu : public QObject, public QDesignerTaskMenuExtension
{
    Q_OBJECT
    Q_INTERFACES(QDesignerTaskMenuExtension)

public:
    TTaskMenu(QWidget* Widget, QObject* Parent);
    QList<QAction*> taskActions() const override { return m_actions; }
    QAction* preferredEditAction() const override { return m_actions.value(0); }

    /// Asks for the font and colour of Property and stores them as Designer's own edit.
    void EditFont(const QByteArray& Property);
    /// Opens the columns editor on the grid's columns and stores what it gives.
    void EditColumns();

private:
    /// Sets a property as the designer's own, undoable edit (directly outside a form).
    void Store(const QByteArray& Property, const QVariant& Value);

    QWidget* m_widget;
    QList<QAction*> m_actions;
};

/// Offers the menu on every Kesh component that has such an entry (once per manager).
void RegisterTaskMenu(QExtensionManager* Manager);

} // namespace KeshDesigner
