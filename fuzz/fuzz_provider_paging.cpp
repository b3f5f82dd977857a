// Fuzzes how a provider reads a packet: the ORDER BY reader on any SELECT text, and a
// paging token as a client may forge it, read into the SELECT that the database runs.
// Either may be refused (false, EProviderRequestError), never crash; an accepted token
// binds one value per placeholder and writes no token text into the SQL.
#include "platform/remote/provider.h"
#include "platform/remote/provider_paging_p.h"
#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <cstdint>
#include <cstdlib>

using namespace Kesh;

namespace {

const QSqlDriver* Driver()
{
    static int Argc = 1;
    static char Name[] = "fuzz";
    static char* Argv[] = {Name, nullptr};
    // Never destroyed: Qt SQL's own globals go before static objects would.
    static auto* App = new QCoreApplication(Argc, Argv);
    static auto* Db = new QSqlDatabase(QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("fuzz")));
    (void)App;
    return Db->driver();
}

TFieldDefs Fields()
{
    TFieldDefs F;
    for (auto [Name, Type] : {std::pair{"Id", ftInteger}, {"Name", ftWideString}, {"Grp", ftLargeint}, {"Price", ftBCD}}) {
        TFieldDef D;
        D.Name = QString::fromLatin1(Name);
        D.DataType = Type;
        F.Append(D);
    }
    return F;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    if (Size < 1)
        return 0;
    const QString Text = QString::fromUtf8(reinterpret_cast<const char*>(Data) + 1, int(Size - 1));
    const TFieldDefs F = Fields();
    if (Data[0] & 1) {
        QList<Detail::TPager::TOrderItem> Order;
        bool HasOrder = false;
        if (Detail::TPager::ParseOrder(Text, F, Order, HasOrder))
            for (const auto& I : Order)
                if (I.Column < 0 || I.Column >= F.Count())
                    std::abort();
        return 0;
    }
    try {
        Detail::TPager Pager(F, {0}, Driver(), int(Data[0] >> 1) - 1, Text);
        QVariantMap Binds;
        bool UseCursor = true;
        const QString Sql = Pager.Wrap(QStringLiteral("SELECT Id, Name, Grp, Price FROM t ORDER BY Grp DESC, Name"), Binds, UseCursor);
        for (auto B = Binds.cbegin(); B != Binds.cend(); ++B)
            if (!Sql.contains(QLatin1Char(':') + B.key()))
                std::abort();
        // A plain count (an offset token) is validated as a number and may be written as
        // one; any other token text must stay out of the SQL.
        bool Number = false;
        Text.toLongLong(&Number);
        if (!Number && Text.size() > 8 && Sql.contains(Text))
            std::abort();
    } catch (const EProviderRequestError&) {
    }
    return 0;
}
