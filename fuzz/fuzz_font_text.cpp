// Fuzzes the text form of fonts: any text gives a font, and a font read from text writes
// back to text that reads as the same font.
#include <Kesh.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    using namespace Kesh;
    const QString S = QString::fromUtf8(reinterpret_cast<const char*>(Data), qsizetype(Size));
    TFont Font;
    if (!TryStrToFont(S, Font)) {
        if (StrToFont(S) != TFont())
            std::abort();
        return 0;
    }
    const QString Text = FontToStr(Font);
    if (Text.contains(QLatin1Char('\n')) || StrToFont(Text) != Font)
        std::abort();
    return 0;
}
