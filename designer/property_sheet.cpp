// Kesh for Qt — Designer's property sheet for the library's components.
#include "property_sheet.h"
#include "task_menu.h"

#include "colors.h"
#include "ui_forms.h"
#include "platform/exceptions.h"

#include <QColor>
#include <climits>
#include <QMetaProperty>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <QtDesigner/QDesignerFormWindowCursorInterface>
#include <QtDesigner/QDesignerFormWindowInterface>
#include <QtDesigner/QExtensionFactory>
#include <QtDesigner/QExtensionManager>

namespace KeshDesigner {

TShownAs ShownAs(const QMetaProperty& Property)
{
    if (!Property.isValid() || !QByteArray(Property.enclosingMetaObject()->className()).startsWith("Kesh::"))
        return TShownAs::Itself;
    const QMetaType Type = Property.metaType();
    if (Type == QMetaType::fromType<Kesh::TFont>())
        return TShownAs::FontText;
    if (Type == QMetaType::fromType<Kesh::TColor>())
        return TShownAs::Color;
    if (Type == QMetaType::fromType<Kesh::TxBiStrings>())
        return TShownAs::ItemLines;
    // Qt's form writer leaves stdset="0" off int properties, and uic would then call a
    // set_FixedSize() that does not exist; a property with a Qt-style setter needs nothing.
    if (Type == QMetaType::fromType<int>() && !Property.hasStdCppSet() && !Property.isEnumType())
        return TShownAs::Number;
    return TShownAs::Itself;
}

QVariant ToShown(TShownAs Kind, const QVariant& Value)
{
    switch (Kind) {
    case TShownAs::FontText:
        return Value.canConvert<Kesh::TFont>() ? QVariant(Kesh::FontToStr(Value.value<Kesh::TFont>())) : Value;
    case TShownAs::Color:
        return QVariant(Kesh::TColorToQColor(Value.toUInt()));
    case TShownAs::ItemLines:
        return Value.canConvert<Kesh::TxBiStrings>() ? QVariant(Kesh::BiStringsToLines(Value.value<Kesh::TxBiStrings>()))
                                                     : Value;
    case TShownAs::Number:
        return QVariant(Value.toLongLong());
    case TShownAs::Itself:
        break;
    }
    return Value;
}

QVariant FromShown(TShownAs Kind, const QVariant& Shown, const QVariant& Current)
{
    switch (Kind) {
    case TShownAs::FontText: {
        // Text that is not a font keeps the font the component has.
        Kesh::TFont Font = Current.value<Kesh::TFont>();
        Kesh::TryStrToFont(Shown.toString(), Font);
        return QVariant::fromValue(Font);
    }
    case TShownAs::Color:
        return QVariant::fromValue(Kesh::QColorToTColor(Shown.value<QColor>()));
    case TShownAs::ItemLines: {
        Kesh::TxBiStrings List = Current.value<Kesh::TxBiStrings>();
        QString Error;
        if (!Kesh::TryLinesToBiStrings(Shown.toStringList(), List, &Error))
            qWarning("Kesh designer: %s", qPrintable(Error));
        return QVariant::fromValue(List);
    }
    case TShownAs::Number:
        return QVariant(int(qBound(qlonglong(INT_MIN), Shown.toLongLong(), qlonglong(INT_MAX))));
    case TShownAs::Itself:
        break;
    }
    return Shown;
}

TPropertySheet::TPropertySheet(QObject* Object, QDesignerPropertySheetExtension* Base, QObject* Parent)
    : QObject(Parent), m_object(Object), m_base(Base)
{
}

TShownAs TPropertySheet::KindOf(int Index) const
{
    const QMetaObject* Meta = m_object->metaObject();
    return ShownAs(Meta->property(Meta->indexOfProperty(m_base->propertyName(Index).toLatin1().constData())));
}

bool TPropertySheet::isVisible(int Index) const
{
    return m_base->isVisible(Index);
}

QVariant TPropertySheet::property(int Index) const
{
    return ToShown(KindOf(Index), m_base->property(Index));
}

void TPropertySheet::setProperty(int Index, const QVariant& Value)
{
    const TShownAs Kind = KindOf(Index);
    // Designer hands a value read from a .ui file in wrappers of its own (a string with its
    // translation data): its sheet unwraps them and the library's conversions do the rest.
    const bool Plain = Value.metaType() == ToShown(Kind, m_base->property(Index)).metaType();
    try {
        m_base->setProperty(Index, Kind == TShownAs::Itself || !Plain ? Value : FromShown(Kind, Value, m_base->property(Index)));
    } catch (const Kesh::Exception& E) {
        // A value the component refuses (columns text that does not read) keeps the old
        // one; Designer itself must not go down with it.
        qWarning("Kesh designer: %s", qPrintable(E.Message.simplified()));
        return;
    }
    const QString Name = m_base->propertyName(Index);
    if (Name == QLatin1String("DataField") || Name == QLatin1String("_DataField"))
        FollowField(m_object->property(Name.toLatin1().constData()).toString());
}

QString NameForField(const QObject* Object, const QObject* Root, const QString& Field)
{
    QString Bare = Field;
    Bare.remove(QLatin1Char(' '));
    if (Bare.isEmpty())
        return QString();
    for (const QString& Name : {QStringLiteral("x") + Bare, QStringLiteral("xx") + Bare}) {
        if (Object->objectName() == Name)
            return QString(); // already so
        const QObject* Other = Root->objectName() == Name ? Root : Root->findChild<QObject*>(Name);
        if (!Other || Other == Object)
            return Name;
    }
    return QString();
}

void TPropertySheet::FollowField(const QString& Field)
{
    auto* Widget = qobject_cast<QWidget*>(m_object);
    QDesignerFormWindowInterface* Form = Widget ? QDesignerFormWindowInterface::findFormWindow(Widget) : nullptr;
    const QObject* Root = Form && Form->mainContainer() ? Form->mainContainer() : m_object;
    while (!Form && Root->parent())
        Root = Root->parent();
    const QString Name = NameForField(m_object, Root, Field);
    if (Name.isEmpty())
        return;
    if (!Form) {
        m_base->setProperty(m_base->indexOf(QStringLiteral("objectName")), Name);
        return;
    }
    // As the user's own renaming, once the field's change is done: it can be undone, and
    // the object inspector follows.
    QPointer<QWidget> Target(Widget);
    QTimer::singleShot(0, Form, [Form, Target, Name] {
        if (Target)
            Form->cursor()->setWidgetProperty(Target, QStringLiteral("objectName"), Name);
    });
}

namespace {

// Serves the sheet of Kesh components; Designer's own factory serves everything else and
// provides the sheet this one translates.
class TSheetFactory : public QExtensionFactory
{
public:
    explicit TSheetFactory(QExtensionManager* Manager) : QExtensionFactory(Manager) {}

protected:
    QObject* createExtension(QObject* Object, const QString& Iid, QObject* Parent) const override
    {
        if (Iid != QLatin1String(Q_TYPEID(QDesignerPropertySheetExtension))
            || !QByteArray(Object->metaObject()->className()).startsWith("Kesh::"))
            return nullptr;
        // Designer's own sheet, asked for while this factory stands aside.
        QExtensionManager* Manager = extensionManager();
        Manager->unregisterExtensions(const_cast<TSheetFactory*>(this), Iid);
        QObject* BaseObject = Manager->extension(Object, Iid);
        Manager->registerExtensions(const_cast<TSheetFactory*>(this), Iid);
        auto* Base = qobject_cast<QDesignerPropertySheetExtension*>(BaseObject);
        return Base ? new TPropertySheet(Object, Base, Parent) : nullptr;
    }
};

} // namespace

void RegisterPropertySheet(QExtensionManager* Manager)
{
    static QList<QPointer<QExtensionManager>> Done;
    if (!Manager || Done.contains(Manager))
        return;
    Done << Manager;
    Manager->registerExtensions(new TSheetFactory(Manager), Q_TYPEID(QDesignerPropertySheetExtension));
    RegisterTaskMenu(Manager);
}

} // namespace KeshDesigner
