// Fuzzes the text parsers of the core unit: dates, times, tokens and the search key.
#include <Kesh.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    using namespace Kesh;
    const QString S = QString::fromUtf8(reinterpret_cast<const char*>(Data), qsizetype(Size));

    const int D = AsDate(S);
    if (IsDate(D)) {
        const int Other = ConvertDate(D);
        (void)DateToWords(D);
        (void)DateToString(Other);
        (void)GetDaysInMonth(D);
    }
    (void)StringToTime(S);

    const TSysCharSet Delims{',', ';', ':', '-', '.', '/'};
    const int Count = TokenCount(S, Delims);
    QString Rest = S;
    for (int I = 0; I <= Count && !Rest.isEmpty(); ++I)
        (void)GetToken(Rest, Delims);

    (void)StringFilter(S);
    (void)AsInteger(S);
    (void)AsFloat(S);
    return 0;
}
