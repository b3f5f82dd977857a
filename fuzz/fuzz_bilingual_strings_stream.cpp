// Fuzzes the stored form of bilingual string lists: any bytes either read as a list that
// writes back to the same list, or raise EReadError leaving the list as it was.
#include <Kesh.h>
#include "platform/filer.h"

#include <QIODevice>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    using namespace Kesh;
    const QByteArray Bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(Data), qsizetype(Size));
    TxBiStrings List;
    List.Add(7, QStringLiteral("سبعة"), QStringLiteral("seven"), RaAbort);
    const TxBiStrings Before = List;
    QDataStream In(Bytes);
    try {
        In >> List;
    } catch (const EReadError&) {
        if (List != Before)
            std::abort();
        return 0;
    }
    // Read lists are sorted and hold each ID once.
    for (int I = 1; I < List.Count(); ++I)
        if (List.Items()[I - 1].ID >= List.Items()[I].ID)
            std::abort();
    QByteArray Again;
    {
        QDataStream Out(&Again, QIODevice::WriteOnly);
        Out << List;
    }
    TxBiStrings Back;
    QDataStream In2(Again);
    In2 >> Back;
    if (Back != List)
        std::abort();
    return 0;
}
