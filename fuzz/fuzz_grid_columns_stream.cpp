// Fuzzes the stored form of a grid's columns: any bytes either read as columns that write
// back to a form that reads again to the same bytes, or raise EReadError and leave the
// columns as they were.
#include <Kesh_dbGrid.h>
#include "platform/exceptions.h"

#include <QGuiApplication>
#include <QIODevice>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace Kesh;

QByteArray Written(const TQxDBGridColumns& Columns)
{
    QByteArray Bytes;
    QDataStream Out(&Bytes, QIODevice::WriteOnly);
    Columns.SaveToStream(Out);
    return Bytes;
}

// Columns that are not empty before the read, so that a failed read has something to keep.
void Preset(TQxDBGridColumns& Columns)
{
    TQxColumn* C = Columns.Add();
    C->SetFieldName(QStringLiteral("Name"));
    C->SetWidth(80);
    C->GetTitle()->SetCaptionA(QStringLiteral("الاسم"));
    C->GetBiDiField()->SetKeyboard(kxArabic);
    Columns.Add()->SetFieldName(QStringLiteral("Qty"));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication App(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    const QByteArray Bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(Data), qsizetype(Size));
    TQxDBGridColumns Columns;
    Preset(Columns);
    const QByteArray Before = Written(Columns);
    QDataStream In(Bytes);
    try {
        Columns.LoadFromStream(In);
    } catch (const EReadError&) {
        if (Written(Columns) != Before)
            std::abort();
        return 0;
    }
    // What was read writes back in a form that reads again to the same columns.
    const QByteArray Once = Written(Columns);
    TQxDBGridColumns Again;
    QDataStream In2(Once);
    try {
        Again.LoadFromStream(In2);
    } catch (const EReadError&) {
        std::abort();
    }
    if (Written(Again) != Once)
        std::abort();
    return 0;
}
