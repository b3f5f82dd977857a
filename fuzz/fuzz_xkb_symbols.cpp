// Fuzzes the reading of XKB symbols names (text that the X server hands over): any text
// gives at most four groups of plain layout names, and the groups written back with their
// numbers read as the same groups.
#include "platform/keyboard_p.h"

#include <QRegularExpression>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    using namespace Kesh;
    const QString Symbols = QString::fromUtf8(reinterpret_cast<const char*>(Data), qsizetype(Size));
    const QStringList Groups = XkbGroupsOfSymbols(Symbols);
    if (Groups.size() > 4)
        std::abort();
    static const QRegularExpression Name(QStringLiteral("^[A-Za-z0-9_-]*$"));
    QStringList Parts{QStringLiteral("pc")};
    for (int i = 0; i < Groups.size(); ++i) {
        if (!Name.match(Groups[i]).hasMatch())
            std::abort();
        if (!Groups[i].isEmpty())
            Parts << QStringLiteral("%1:%2").arg(Groups[i]).arg(i + 1);
    }
    if (!Groups.isEmpty() && Groups.last().isEmpty())
        std::abort(); // a trailing group nobody names is never listed
    if (XkbGroupsOfSymbols(Parts.join(QLatin1Char('+'))) != Groups)
        std::abort();
    // Whatever the layouts, a name maps to an identifier and back without failing.
    for (const QString& Group : Groups)
        if (!Group.isEmpty() && XkbLayoutsOf(LayoutNameOfXkb(Group)).isEmpty())
            std::abort();
    return 0;
}
