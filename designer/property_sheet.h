// Kesh for Qt — Designer's property sheet for the library's components: the library's own
// value types shown in editors Designer has.
#pragma once
#include <QtDesigner/QDesignerPropertySheetExtension>
#include <QMetaProperty>
#include <QObject>
#include <QVariant>

class QExtensionManager;

namespace KeshDesigner {

/// How a property of a component is shown in Designer's property editor.
enum class TShownAs {
    Itself,    ///< a type Designer edits as it is
    FontText,  ///< a TFont as its one-line text ("Tahoma,8,$00800000,178,B"), colour included
    Color,     ///< a TColor (the library's only unsigned property type) as a colour
    ItemLines, ///< a TxBiStrings as lines "ID|Arabic|English"
    Number     ///< an int as a 64-bit number: Designer then marks it stdset="0" in the
               ///< .ui file, as it does every other type, and uic sets it by name
};

/// The editor a property gets; only properties a Kesh class declares are translated.
TShownAs ShownAs(const QMetaProperty& Property);
/// The value as Designer shows it, and back; anything not of the kind passes unchanged.
QVariant ToShown(TShownAs Kind, const QVariant& Value);
QVariant FromShown(TShownAs Kind, const QVariant& Shown, const QVariant& Current);

/// The name a data-aware control takes at design time when its field is set: "x" and the
/// field name without blanks, or "xx" and it when another object of Root has that name;
/// empty when both are taken (the name stays) or when the object has that name already.
QString NameForField(const QObject* Object, const QObject* Root, const QString& Field);

/// Designer's own sheet of a Kesh component, with the library's value types translated.
class TPropertySheet : public QObject, public QDesignerPropertySheetExtension
{
    Q_OBJECT
    Q_INTERFACES(QDesignerPropertySheetExtension)

public:
    TPropertySheet(QObject* Object, QDesignerPropertySheetExtension* Base, QObject* Parent);

    int count() const override { return m_base->count(); }
    int indexOf(const QString& Name) const override { return m_base->indexOf(Name); }
    QString propertyName(int Index) const override { return m_base->propertyName(Index); }
    QString propertyGroup(int Index) const override { return m_base->propertyGroup(Index); }
    void setPropertyGroup(int Index, const QString& Group) override { m_base->setPropertyGroup(Index, Group); }
    bool hasReset(int Index) const override { return m_base->hasReset(Index); }
    bool reset(int Index) override { return m_base->reset(Index); }
    bool isVisible(int Index) const override;
    void setVisible(int Index, bool Visible) override { m_base->setVisible(Index, Visible); }
    bool isAttribute(int Index) const override { return m_base->isAttribute(Index); }
    void setAttribute(int Index, bool Attribute) override { m_base->setAttribute(Index, Attribute); }
    QVariant property(int Index) const override;
    void setProperty(int Index, const QVariant& Value) override;
    bool isChanged(int Index) const override { return m_base->isChanged(Index); }
    void setChanged(int Index, bool Changed) override { m_base->setChanged(Index, Changed); }
    bool isEnabled(int Index) const override { return m_base->isEnabled(Index); }

private:
    TShownAs KindOf(int Index) const;
    /// A data-aware control takes the name of its field (see NameForField).
    void FollowField(const QString& Field);

    QObject* m_object;
    QDesignerPropertySheetExtension* m_base;
};

/// Puts the sheet in front of Designer's own for every Kesh component, and the context menu
/// beside it (once per manager).
void RegisterPropertySheet(QExtensionManager* Manager);

} // namespace KeshDesigner
