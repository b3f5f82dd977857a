// Fuzzes the stored form of a form's bilingual menu captions: any bytes either read as
// records that write back and read again to the same records, or raise EReadError and
// leave the records as they were.
#include <Kesh.h>
#include "controls/form_manager.h"
#include "platform/filer.h"

#include <QIODevice>
#include <QStringList>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace Kesh;

// What a record holds once read: its name and both captions (the live item stays empty).
QList<QStringList> Records(const TxBiMenuItems& Items)
{
    QList<QStringList> Result;
    for (int I = 0; I < Items.Count(); ++I) {
        const TxMenuItemRec Rec = Items.GetMenuItemRec(I);
        Result.append({Rec.ItemName, Rec.CapA, Rec.CapE});
    }
    return Result;
}

QByteArray Written(const TxBiMenuItems& Items)
{
    QByteArray Bytes;
    QDataStream Out(&Bytes, QIODevice::WriteOnly);
    Out << Items;
    return Bytes;
}

// A list that is not empty before the read, so that a failed read has something to keep.
void Preset(TxBiMenuItems& Items)
{
    QByteArray Bytes;
    {
        QDataStream Out(&Bytes, QIODevice::WriteOnly);
        TWriter Writer(Out);
        Writer.WriteListBegin();
        Writer.WriteInteger(2);
        for (const QString& S : {QStringLiteral("mnuFile"), QStringLiteral("ملف"), QStringLiteral("File"),
                                 QStringLiteral("mnuExit"), QStringLiteral("خروج"), QStringLiteral("Exit")})
            Writer.WriteString(S);
        Writer.WriteListEnd();
    }
    QDataStream In(Bytes);
    In >> Items;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    const QByteArray Bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(Data), qsizetype(Size));
    TxBiMenuItems Items;
    Preset(Items);
    const QList<QStringList> Before = Records(Items);
    if (Before.size() != 2)
        std::abort();

    QDataStream In(Bytes);
    try {
        In >> Items;
    } catch (const EReadError&) {
        if (Records(Items) != Before)
            std::abort();
        return 0;
    }

    // What was read writes back in a form that reads again to the same records, and that
    // form is stable.
    const QList<QStringList> Read = Records(Items);
    if (Read.size() != Items.Count())
        std::abort();
    const QByteArray Again = Written(Items);
    TxBiMenuItems Back;
    QDataStream In2(Again);
    In2 >> Back;
    if (Records(Back) != Read || Written(Back) != Again)
        std::abort();
    return 0;
}
