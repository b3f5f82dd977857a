// Fuzzes the `:name` parameter scanner of SQL command texts (listing and substitution).
#include <Kesh_AdoDB.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    using namespace Kesh;
    const QString S = QString::fromUtf8(reinterpret_cast<const char*>(Data), qsizetype(Size));
    const QStringList Names = TParameters::ParseSQL(S);
    QStringList Seen;
    // Each parameter replaced by its own text gives the text back.
    const QString Same = TParameters::Substitute(S, [&](const QString& Name) {
        if (!Seen.contains(Name, Qt::CaseInsensitive))
            Seen << Name;
        return QLatin1Char(':') + Name;
    });
    if (Same != S || Seen != Names)
        std::abort();
    (void)TParameters::Substitute(S, [](const QString&) { return QStringLiteral("'x'"); });
    return 0;
}
