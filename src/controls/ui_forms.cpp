// Kesh for Qt — forms built from .ui files: stored value forms and the end-of-building
// binding of named objects and of the form manager.
#include "ui_forms.h"

#include "colors.h"
#include "core/messages.h"
#include "form_manager.h"
#include "platform/widgets.h"

#include <QColor>
#include <QFont>
#include <QMetaEnum>
#include <QMetaProperty>
#include <QMetaType>
#include <QVariant>
#include <QWidget>

namespace Kesh {

QStringList BiStringsToLines(const TxBiStrings& List)
{
    QStringList Lines;
    for (const TxBilingualItem& Item : List.Items())
        Lines << QStringLiteral("%1|%2|%3").arg(Item.ID).arg(Item.StrArabic, Item.StrEnglish);
    return Lines;
}

bool TryLinesToBiStrings(const QStringList& Lines, TxBiStrings& List, QString* Error)
{
    TxBiStrings Result;
    for (int I = 0; I < Lines.size(); ++I) {
        if (Lines[I].trimmed().isEmpty())
            continue;
        const QStringList Fields = Lines[I].split(QLatin1Char('|'));
        bool Ok = Fields.size() == 3;
        const int ID = Ok ? Fields[0].trimmed().toInt(&Ok) : 0;
        QString Reason;
        if (!Ok)
            Reason = QStringLiteral("line %1 is not \"ID|Arabic|English\": %2").arg(I + 1).arg(Lines[I]);
        else if (Result.IndexOf(ID) >= 0)
            Reason = QStringLiteral("line %1 repeats the ID %2").arg(I + 1).arg(ID);
        if (!Reason.isEmpty()) {
            if (Error)
                *Error = Reason;
            return false;
        }
        Result.Add(ID, Fields[1], Fields[2], RaNothing);
    }
    List = Result;
    return true;
}

namespace {

template <class From, class To>
void AddConversion(std::function<bool(const From&, To&)> Convert)
{
    const QMetaType F = QMetaType::fromType<From>(), T = QMetaType::fromType<To>();
    if (QMetaType::hasRegisteredConverterFunction(F, T))
        return;
    QMetaType::registerConverterFunction(
        [Convert](const void* Source, void* Target) {
            return Convert(*static_cast<const From*>(Source), *static_cast<To*>(Target));
        },
        F, T);
}

QString ContextOf(const QObject* Root, const QObject* Object, const QByteArray& Property)
{
    QString Where = Root->objectName();
    if (Object != Root)
        Where += QLatin1Char('.') + Object->objectName();
    return Where + QLatin1Char('.') + QString::fromLatin1(Property);
}

[[noreturn]] void Refuse(const QString& Reason)
{
    RaiseError(QStringLiteral("EndLoading\r\n") + Reason);
}

// Writes a value read from a .ui file: texts name the members of an enumeration or a set
// ("FoAutoCenter|FoSaveSize", qualified or not); anything else converts through QVariant.
bool WriteStored(QObject* Target, const QMetaProperty& Property, const QVariant& Value)
{
    if (Property.isEnumType() && Value.metaType() == QMetaType::fromType<QString>()) {
        const QMetaEnum Enum = Property.enumerator();
        QByteArrayList Keys;
        for (const QString& Key : Value.toString().split(QLatin1Char('|'), Qt::SkipEmptyParts))
            Keys << Key.trimmed().section(QStringLiteral("::"), -1).toLatin1();
        bool Ok = false;
        const int Number = Enum.isFlag() ? Enum.keysToValue(Keys.join('|').constData(), &Ok)
                                         : Enum.keyToValue(Keys.value(0).constData(), &Ok);
        return Ok && Property.write(Target, QVariant(Property.metaType(), &Number));
    }
    return Property.write(Target, Value);
}

// "QxForm_<P>" on the form: the form's manager takes them as its properties.
void ConfigureFormManager(QObject* Root)
{
    const QByteArray Prefix(QxFormPropertyPrefix);
    QList<QByteArray> Names;
    // Designer gives every form these properties; those left empty configure nothing.
    for (const QByteArray& Name : Root->dynamicPropertyNames()) {
        const QVariant Value = Root->property(Name);
        const bool Empty = (Value.metaType() == QMetaType::fromType<QString>() && Value.toString().isEmpty())
                        || (Value.metaType() == QMetaType::fromType<QStringList>() && Value.toStringList().isEmpty());
        if (Name.startsWith(Prefix) && !Empty)
            Names << Name;
    }
    if (Names.isEmpty())
        return;
    auto* Manager = Root->findChild<TQxForm*>(QString(), Qt::FindDirectChildrenOnly);
    if (!Manager) {
        if (!Root->isWidgetType())
            Refuse(QStringLiteral("%1: only a form can carry a form manager.").arg(Root->objectName()));
        const QString Name = Root->property(Prefix + "Name").toString();
        Manager = new TQxForm(Root, Name.isEmpty() ? QStringLiteral("QxForm1") : Name);
    }
    const QMetaObject* Meta = Manager->metaObject();
    // In the manager's own order, so that the result does not depend on the file's order.
    for (int I = 0; I < Meta->propertyCount(); ++I) {
        const QMetaProperty Property = Meta->property(I);
        const QByteArray Stored = Prefix + Property.name();
        if (!Names.removeOne(Stored))
            continue;
        if (!WriteStored(Manager, Property, Root->property(Stored)))
            Refuse(QStringLiteral("%1: the form manager cannot take the value \"%2\".")
                       .arg(ContextOf(Root, Root, Stored), Root->property(Stored).toString()));
    }
    Names.removeAll(Prefix + "Name");
    if (!Names.isEmpty())
        Refuse(QStringLiteral("%1: the form manager has no such property.").arg(ContextOf(Root, Root, Names[0])));
}

// "<P>Name" on any object: its pointer property P gets the object of that name.
void BindNamedObject(QObject* Root, QObject* Object, const QByteArray& Stored)
{
    const QByteArray Suffix(ObjectNameSuffix);
    const QByteArray Target = Stored.left(Stored.size() - Suffix.size());
    const QMetaObject* Meta = Object->metaObject();
    const int Index = Meta->indexOfProperty(Target.constData());
    if (Index < 0)
        return; // not a name this library binds
    const QMetaProperty Property = Meta->property(Index);
    const QMetaObject* Wanted = Property.metaType().metaObject();
    if (!(Property.metaType().flags() & QMetaType::PointerToQObject) || !Wanted)
        return;
    const QString Name = Object->property(Stored).toString();
    if (Name.isEmpty())
        return;
    bool Named = Root->objectName() == Name;
    QObject* Found = Named ? Wanted->cast(Root) : nullptr;
    for (QObject* Candidate : Root->findChildren<QObject*>(Name)) {
        if (Found)
            break;
        Named = true;
        Found = Wanted->cast(Candidate);
    }
    if (!Found)
        Refuse(QStringLiteral("%1: there is no %2 named \"%3\" on the form%4.")
                   .arg(ContextOf(Root, Object, Stored), QString::fromLatin1(Wanted->className()).section(QStringLiteral("::"), -1), Name,
                        Named ? QStringLiteral(" (an object of another class has that name)") : QString()));
    if (!Property.write(Object, QVariant(Property.metaType(), &Found)))
        Refuse(QStringLiteral("%1: %2 cannot be set.").arg(ContextOf(Root, Object, Stored), QString::fromLatin1(Target)));
}

void BindNamedObjects(QObject* Root)
{
    const QByteArray Suffix(ObjectNameSuffix);
    QList<QObject*> Objects{Root};
    Objects += Root->findChildren<QObject*>();
    for (QObject* Object : Objects)
        for (const QByteArray& Name : Object->dynamicPropertyNames())
            if (Name.size() > Suffix.size() && Name.endsWith(Suffix))
                BindNamedObject(Root, Object, Name);
}

void FinishUiForm(QObject* Root)
{
    if (IsDesigning(Root))
        return;
    ConfigureFormManager(Root);
    BindNamedObjects(Root);
}

const bool Registered = [] {
    RegisterUiValueConversions();
    AddEndLoadingHook(&FinishUiForm);
    return true;
}();

} // namespace

void RegisterUiValueConversions()
{
    AddConversion<QString, TFont>([](const QString& Text, TFont& Font) { return TryStrToFont(Text, Font); });
    AddConversion<TFont, QString>([](const TFont& Font, QString& Text) {
        Text = FontToStr(Font);
        return true;
    });
    AddConversion<QFont, TFont>([](const QFont& From, TFont& Font) {
        Font = TFont(From);
        return true;
    });
    // A TColor is a plain 32-bit number: a colour saved by Designer reaches it as a QColor.
    AddConversion<QColor, TColor>([](const QColor& From, TColor& Color) {
        Color = QColorToTColor(From);
        return true;
    });
    AddConversion<QStringList, TxBiStrings>([](const QStringList& Lines, TxBiStrings& List) {
        QString Error;
        if (TryLinesToBiStrings(Lines, List, &Error))
            return true;
        qWarning("TxBiStrings: %s", qPrintable(Error));
        return false;
    });
    AddConversion<TxBiStrings, QStringList>([](const TxBiStrings& List, QStringList& Lines) {
        Lines = BiStringsToLines(List);
        return true;
    });
}

} // namespace Kesh
