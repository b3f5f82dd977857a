#include "settings.h"
#include "conversions.h"
#include "globals.h"
#include "messages.h"
#include "platform/exceptions.h"

#include <QHash>
#include <QIODevice>
#include <QSet>
#include <QSettings>
#include <QStringList>

namespace Kesh {

namespace {

// QSettings does the file work (locking, atomic replacement, re-reading when another
// process changed the file); these two routines keep the text plain. Its own INI format
// escapes backslashes, quotes commas and encodes non-ASCII names, which other INI readers
// would take literally: a Windows path would come back with doubled backslashes.

#ifdef Q_OS_WIN
const char LineBreak[] = "\r\n";
#else
const char LineBreak[] = "\n";
#endif

// QSettings looks keys up in normalised form: no empty segments between slashes.
QString JoinKey(const QString& Section, const QString& Key)
{
    QStringList Parts = Section.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    Parts += Key.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    return Parts.join(QLatin1Char('/'));
}

bool IsQuoted(const QString& V)
{
    return V.size() >= 2 && (V.front() == QLatin1Char('"') || V.front() == QLatin1Char('\''))
        && V.back() == V.front();
}

bool ReadIni(QIODevice& Device, QSettings::SettingsMap& Map)
{
    QByteArray Data = Device.readAll();
    if (Data.startsWith("\xEF\xBB\xBF"))
        Data.remove(0, 3);
    const QString Text = QString::fromUtf8(Data);
    QString Section;
    QSet<QString> Seen; // lower case: the first of two keys differing only in case wins
    for (QStringView Line : QStringView(Text).split(QLatin1Char('\n'))) {
        Line = Line.trimmed();
        if (Line.isEmpty() || Line.startsWith(QLatin1Char(';')) || Line.startsWith(QLatin1Char('#')))
            continue;
        const qsizetype Close = Line.lastIndexOf(QLatin1Char(']'));
        if (Line.startsWith(QLatin1Char('[')) && Close > 0) {
            Section = Line.mid(1, Close - 1).trimmed().toString();
            continue;
        }
        const qsizetype Equals = Line.indexOf(QLatin1Char('='));
        if (Equals <= 0)
            continue;
        QString Value = Line.mid(Equals + 1).trimmed().toString();
        if (IsQuoted(Value))
            Value = Value.mid(1, Value.size() - 2);
        const QString FullKey = JoinKey(Section, Line.left(Equals).trimmed().toString());
        if (FullKey.isEmpty() || Seen.contains(FullKey.toLower()))
            continue;
        Seen.insert(FullKey.toLower());
        Map.insert(FullKey, Value);
    }
    return true;
}

QString ValueText(const QVariant& V)
{
    QString Text = V.metaType() == QMetaType::fromType<QStringList>() ? V.toStringList().join(QLatin1Char(','))
                                                                      : V.toString();
    // One line per key; SaveSetting refuses line breaks, this guards other writers.
    Text.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    if (Text != Text.trimmed() || IsQuoted(Text))
        Text = QLatin1Char('"') + Text + QLatin1Char('"');
    return Text;
}

bool WriteIni(QIODevice& Device, const QSettings::SettingsMap& Map)
{
    // Sections in the order they first appear, spelt as first seen; top-level keys first.
    QStringList Order{QString()};
    QHash<QString, QString> Spelling{{QString(), QString()}};
    QHash<QString, QStringList> Lines;
    for (auto It = Map.cbegin(); It != Map.cend(); ++It) {
        const qsizetype Slash = It.key().lastIndexOf(QLatin1Char('/'));
        const QString Section = Slash < 0 ? QString() : It.key().left(Slash);
        const QString Id = Section.toLower();
        if (!Spelling.contains(Id)) {
            Spelling.insert(Id, Section);
            Order.append(Id);
        }
        Lines[Id].append(It.key().mid(Slash + 1) + QLatin1Char('=') + ValueText(It.value()));
    }
    QString Out;
    for (const QString& Id : std::as_const(Order)) {
        if (!Lines.contains(Id))
            continue;
        if (!Id.isEmpty())
            Out += QLatin1Char('[') + Spelling.value(Id) + QLatin1Char(']') + QLatin1String(LineBreak);
        for (const QString& Line : Lines.value(Id))
            Out += Line + QLatin1String(LineBreak);
        Out += QLatin1String(LineBreak);
    }
    return Device.write(Out.toUtf8()) >= 0;
}

QSettings::Format PlainIniFormat()
{
    static const QSettings::Format Format = QSettings::registerFormat(QStringLiteral("ini"), ReadIni, WriteIni);
    return Format;
}

// Names are compared without regard to case, as in any INI file; QSettings compares them
// exactly (its case-sensitivity option of custom formats has no effect on Unix), so a key
// already in the file is found, and kept in its spelling, here.
QString StoredKey(const QSettings& Settings, const QString& Path)
{
    if (Settings.contains(Path))
        return Path;
    const QStringList Keys = Settings.allKeys();
    for (const QString& Key : Keys)
        if (Key.compare(Path, Qt::CaseInsensitive) == 0)
            return Key;
    return Path;
}

bool HasLineBreak(const QString& S)
{
    return S.contains(QLatin1Char('\n')) || S.contains(QLatin1Char('\r'));
}

// A key that would read back as something else: a comment, a section header, a split pair.
bool IsStorableKey(const QString& Key)
{
    return !Key.contains(QLatin1Char('=')) && !Key.startsWith(QLatin1Char(';'))
        && !Key.startsWith(QLatin1Char('#')) && !Key.startsWith(QLatin1Char('['));
}

} // namespace

QVariant ReadSetting(const QString& Section, const QString& Key, const QVariant& Default)
{
    const QString Fallback = AsString(Default);
    const QString Path = JoinKey(Section.trimmed(), Key.trimmed());
    if (ConfigFile.isEmpty() || Key.trimmed().isEmpty())
        return Fallback;
    QSettings Settings(ConfigFile, PlainIniFormat());
    const QVariant Value = Settings.value(StoredKey(Settings, Path));
    return Value.isValid() ? Value.toString() : Fallback;
}

void SaveSetting(const QString& Section, const QString& Key, const QVariant& Value)
{
    const QString S = Section.trimmed();
    const QString K = Key.trimmed();
    const QString Text = AsString(Value);
    if (K.isEmpty())
        RaiseError(QStringLiteral("SaveSetting\r\nThe key is empty."));
    if (!IsStorableKey(K))
        RaiseError(QStringLiteral("SaveSetting\r\nThe key \"%1\" cannot be stored: a key may not hold \"=\" "
                                  "nor begin with \";\", \"#\" or \"[\".")
                       .arg(K));
    if (HasLineBreak(S) || HasLineBreak(K) || HasLineBreak(Text))
        RaiseError(QStringLiteral("SaveSetting\r\nA settings file keeps one line per key: the section, key "
                                  "or value of \"%1\" holds a line break.")
                       .arg(K));
    if (ConfigFile.isEmpty())
        throw EIniFileException(QStringLiteral("Unable to write the settings: no settings file is set."));

    QSettings Settings(ConfigFile, PlainIniFormat());
    Settings.setValue(StoredKey(Settings, JoinKey(S, K)), Text);
    Settings.sync();
    if (Settings.status() != QSettings::NoError)
        throw EIniFileException(QStringLiteral("Unable to write to %1").arg(ConfigFile));
}

} // namespace Kesh
