// Kesh for Qt — the settings file of sections and keys beside the executable.
#pragma once
#include "platform/kesh_global.h"
#include <QString>
#include <QVariant>

namespace Kesh {

// The file is ConfigFile, a plain sections-and-keys text file in UTF-8:
//   [Section]
//   Key=Value
// Values are stored as text as they stand (no escapes), so any INI reader sees the same
// text; a value with leading or trailing blanks, or already wrapped in quotation marks,
// is written between double quotation marks, which reading removes. Section and key names
// are compared without regard to letter case and trimmed of blanks. Each call opens and
// closes the file.

/// The text stored at Section and Key, as a string variant; the text of Default (empty for
/// an invalid or null Default) when the file, section or key is missing.
KESH_EXPORT QVariant ReadSetting(const QString& Section, const QString& Key, const QVariant& Default);
/// Stores Value as text at Section and Key, creating the file and section when missing.
/// A file that cannot be written raises EIniFileException. An empty key, a key holding "=",
/// or a name or value holding a line break cannot be stored: RaiseError, nothing written.
KESH_EXPORT void SaveSetting(const QString& Section, const QString& Key, const QVariant& Value);

} // namespace Kesh
