// Kesh for Qt — forms built from .ui files (Qt Designer, uic): the value forms a .ui file
// stores for the library's own types, and the binding of objects named in the file.
//
// What a .ui file holds and what Kesh::EndLoading(form) makes of it:
// - A dynamic property "<P>Name" (a string) on any object of the form names the object
//   that its pointer property P is to hold: "DataSourceName" = "dsCustomers" on a grid
//   sets its DataSource to the TDataSource called dsCustomers, which the program created
//   as a child of the form before EndLoading. A name that no object of the right class
//   carries is refused with an error naming the form, the object and the property.
// - Dynamic properties "QxForm_<P>" on the form itself configure its form manager: the
//   TQxForm (created when the form has none) receives them as its property P, e.g.
//   "QxForm_Caption_a", "QxForm_Options" ("FoAutoCenter|FoSaveSize"), "QxForm_BiStrings".
//   "QxForm_Name" names a manager created this way ("QxForm1" otherwise).
//   One left empty (a text or a list) is as if absent: a form whose are all empty gets no
//   manager.
// - Values: a TFont is stored as the text of FontToStr ("Tahoma,8,$00800000,178,B"), a
//   TColor as a colour, a TxBiStrings list as lines "ID|Arabic|English"; the conversions
//   below are registered with Qt's meta-type system, so QObject::setProperty accepts them.
#pragma once
#include "core/bilingual_strings.h"
#include "platform/kesh_global.h"
#include <QString>
#include <QStringList>

namespace Kesh {

/// The lines "ID|Arabic|English" of a list, one per item in order.
KESH_EXPORT QStringList BiStringsToLines(const TxBiStrings& List);
/// Reads such lines (blank lines skipped); false with the reason in Error, leaving List
/// alone, for a line without exactly three fields, an ID that is not an integer, or an ID
/// given twice.
KESH_EXPORT bool TryLinesToBiStrings(const QStringList& Lines, TxBiStrings& List, QString* Error = nullptr);

/// The prefix of the form manager's properties on a form.
inline constexpr char QxFormPropertyPrefix[] = "QxForm_";
/// The suffix of a dynamic property that names the object of a pointer property.
inline constexpr char ObjectNameSuffix[] = "Name";

/// Registers the conversions between the stored forms and the library's types (done once
/// when the library loads; calling it again does nothing).
KESH_EXPORT void RegisterUiValueConversions();

} // namespace Kesh
