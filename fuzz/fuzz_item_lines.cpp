// Fuzzes the item lines of a .ui file ("ID|Arabic|English" per line): any text either
// becomes a list that writes back to lines reading as the same list, or is refused.
#include "ui_forms.h"
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    const QStringList Lines = QString::fromUtf8(reinterpret_cast<const char*>(Data), int(Size)).split(QLatin1Char('\n'));
    Kesh::TxBiStrings List;
    QString Error;
    if (!Kesh::TryLinesToBiStrings(Lines, List, &Error)) {
        if (Error.isEmpty() || List.Count() != 0)
            abort(); // a refusal says why and changes nothing
        return 0;
    }
    Kesh::TxBiStrings Again;
    if (!Kesh::TryLinesToBiStrings(Kesh::BiStringsToLines(List), Again) || !(Again == List))
        abort();
    return 0;
}
