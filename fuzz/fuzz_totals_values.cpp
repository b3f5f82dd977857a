// Fuzzes the reading of values that TDataSetTotals sums: arbitrary texts (one per line) in
// a text column of a client dataset. The total must be what the classic walk (AsFloat of
// every row, a text it cannot read counted as 0) gives, must follow an edit of every row,
// and must come back to 0 when every row is deleted.
// Input: 1 option byte (decimal separator), then the texts separated by '\n'.
#include "platform/data.h"
#include "platform/exceptions.h"
#include "platform/rtl.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace Kesh;

namespace {

// AsFloat of every row; false when a value is out of the range where sums compare.
bool Walk(TDataSet& Ds, long double& Sum, long double& Magnitude)
{
    Sum = Magnitude = 0;
    for (Ds.First(); !Ds.Eof(); Ds.Next()) {
        double V = 0;
        try {
            V = Ds.FieldByName(QStringLiteral("S"))->AsFloat();
        } catch (const Exception&) {
            continue;
        }
        if (!std::isfinite(V) || std::fabs(V) > 1e300)
            return false;
        Sum += V;
        Magnitude += std::fabs(V);
    }
    return true;
}

bool Near(long double A, long double B, long double Magnitude)
{
    return std::fabs(double(A - B)) <= 1e-9 * double(std::max<long double>(1, Magnitude));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    if (Size < 1 || Size > 4096)
        return 0;
    FormatSettings.DecimalSeparator = (Data[0] & 1) ? QLatin1Char(',') : QLatin1Char('.');
    const QStringList Texts = QString::fromUtf8(reinterpret_cast<const char*>(Data + 1), qsizetype(Size - 1))
                                  .split(QLatin1Char('\n'));
    TClientDataSet Ds;
    Ds.FieldDefs().Add(QStringLiteral("S"), ftWideString, 8192);
    Ds.CreateDataSet();
    TDataSetTotals Totals;
    Totals.SetFieldNames({QStringLiteral("S")});
    Totals.SetDataSet(&Ds);
    for (const QString& T : Texts) {
        Ds.Append();
        Ds.FieldByName(QStringLiteral("S"))->SetAsString(T);
        Ds.Post();
    }
    long double Sum, Magnitude;
    if (!Totals.Ready())
        std::abort();
    bool Finite = Walk(Ds, Sum, Magnitude);
    if (Finite && !Near(Totals.Value(0), Sum, Magnitude))
        std::abort();
    long double Seen = Magnitude;
    // Every row edited to the next row's text, then every row deleted.
    int Row = 0;
    for (Ds.First(); !Ds.Eof(); Ds.Next(), ++Row) {
        Ds.Edit();
        Ds.FieldByName(QStringLiteral("S"))->SetAsString(Texts[(Row + 1) % Texts.size()]);
        Ds.Post();
    }
    if (Walk(Ds, Sum, Magnitude) && !Near(Totals.Value(0), Sum, Magnitude))
        std::abort();
    Finite = Finite && Walk(Ds, Sum, Magnitude);
    Seen += Magnitude;
    Ds.Last();
    while (!Ds.IsEmpty())
        Ds.Delete();
    if (Finite && !Near(Totals.Value(0), 0, Seen))
        std::abort();
    return 0;
}
