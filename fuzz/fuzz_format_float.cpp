// Fuzzes FormatFloat and FloatToStr: any pattern text, any value, any separators.
// Input: 1 option byte, 10 value bytes (an 80-bit or a 64-bit float), then the pattern.
#include "platform/rtl.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>

using namespace Kesh;

namespace {

QChar SeparatorFrom(uint8_t Bits)
{
    static const char16_t Choices[] = {'.', ',', 0x066B, 0x066C, ' ', 0, '0', '\''};
    return QChar(Choices[Bits & 7]);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    if (Size < 11)
        return 0;
    const uint8_t Options = Data[0];
    long double Value = 0;
    if (Options & 0x80) {
        static_assert(sizeof(long double) >= 10, "80-bit extended expected");
        std::memcpy(&Value, Data + 1, 10);
        // Bit patterns the FPU never produces (pseudo-denormals, unnormals) are turned into
        // what arithmetic makes of them, a value or a NaN, as any computed value would be.
        volatile long double Zero = 0;
        Value = Value + Zero;
    } else {
        double D = 0;
        std::memcpy(&D, Data + 1, sizeof D);
        Value = D;
    }
    FormatSettings.DecimalSeparator = SeparatorFrom(Options);
    FormatSettings.ThousandSeparator = SeparatorFrom(Options >> 3);
    if (FormatSettings.DecimalSeparator.isNull())
        FormatSettings.DecimalSeparator = QLatin1Char('.');

    const char* Text = reinterpret_cast<const char*>(Data + 11);
    const qsizetype Len = qsizetype(Size - 11);
    const QString Format = (Options & 0x40) ? QString(reinterpret_cast<const QChar*>(Text), Len / 2)
                                            : QString::fromUtf8(Text, Len);
    const QString Formatted = FormatFloat(Format, Value);
    (void)Formatted;

    // FloatToStr must read back to the value within its 15 significant digits whenever the
    // decimal separator is one the parser can tell from digits, signs and blanks.
    const QString General = FloatToStr(Value);
    const QChar Sep = FormatSettings.DecimalSeparator;
    if (std::isfinite(Value) && Sep != QLatin1Char('0') && Sep != QLatin1Char(' ')) {
        long double Back = 0;
        if (!TryStrToFloat(General, Back))
            std::abort();
        const long double Tolerance = std::fabs(Value) * 1e-14L;
        if (!(std::fabs(Back - Value) <= Tolerance) && !(std::isinf(Back) && std::fabs(Value) > 1e4931L))
            std::abort();
    }
    return 0;
}
