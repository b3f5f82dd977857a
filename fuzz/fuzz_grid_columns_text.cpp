// Fuzzes the text form of a grid's columns (JSON, as forms store it): any text either reads
// as columns whose text reads again to the same text, or raises EReadError and leaves the
// columns as they were.
#include <Kesh_dbGrid.h>
#include "platform/exceptions.h"

#include <QGuiApplication>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication App(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    using namespace Kesh;
    const QString Text = QString::fromUtf8(reinterpret_cast<const char*>(Data), qsizetype(Size));
    TQxDBGridColumns Columns;
    Columns.SetText(QStringLiteral(R"([{"FieldName":"Name","Width":80,"Title._Caption_a":"الاسم"},{"FieldName":"Qty"}])"));
    const QString Before = Columns.GetText();
    try {
        Columns.SetText(Text);
    } catch (const EReadError&) {
        if (Columns.GetText() != Before)
            std::abort();
        return 0;
    }
    const QString Once = Columns.GetText();
    TQxDBGridColumns Again;
    try {
        Again.SetText(Once);
    } catch (const EReadError&) {
        std::abort();
    }
    if (Again.GetText() != Once)
        std::abort();
    return 0;
}
