// Amounts in words: NumberToWords / NumberToWordsE against ICU's rule-based spell-out
// ("ar" and "en") on the same list of amounts, in one run.
#include "number_words.h"

#include <unicode/locid.h>
#include <unicode/rbnf.h>
#include <unicode/unistr.h>

#include <QRandomGenerator>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

using namespace Kesh;

namespace {

constexpr int AmountCount = 200000;
constexpr int Passes = 5;

// Whole amounts in 0..10^12-1 with an even spread of digit counts, so short and long
// amounts weigh alike.
std::vector<qint64> MakeAmounts()
{
    QRandomGenerator Random(12345);
    std::vector<qint64> Amounts;
    Amounts.reserve(AmountCount);
    for (int I = 0; I < AmountCount; ++I) {
        qint64 Limit = 1;
        for (int Digits = 1 + int(Random.bounded(12)); Digits > 0; --Digits)
            Limit *= 10;
        Amounts.push_back(Random.bounded(Limit));
    }
    return Amounts;
}

// The thread's processor time: the machine is shared, so wall time would mostly
// measure the other processes.
double CpuSeconds()
{
    timespec Now;
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &Now);
    return double(Now.tv_sec) + double(Now.tv_nsec) * 1e-9;
}

using Speller = std::function<qsizetype(qint64)>;

// Amounts per processor second of one pass; Sink keeps the work from being optimised away.
double Rate(const std::vector<qint64>& Amounts, const Speller& Spell, qsizetype& Sink)
{
    const double Start = CpuSeconds();
    for (qint64 A : Amounts)
        Sink += Spell(A);
    return double(Amounts.size()) / (CpuSeconds() - Start);
}

// Best of the passes of each; the passes alternate, so that a busy spell of the
// machine weighs on both alike.
std::pair<double, double> Compare(const std::vector<qint64>& Amounts, const Speller& Ours, const Speller& Peer)
{
    double BestOurs = 0, BestPeer = 0;
    qsizetype Sink = 0;
    for (int Pass = 0; Pass < Passes; ++Pass) {
        BestOurs = std::max(BestOurs, Rate(Amounts, Ours, Sink));
        BestPeer = std::max(BestPeer, Rate(Amounts, Peer, Sink));
    }
    if (Sink == 0)
        std::printf("(no output)\n");
    return {BestOurs, BestPeer};
}

std::unique_ptr<icu::RuleBasedNumberFormat> SpellOut(const char* Locale)
{
    UErrorCode Status = U_ZERO_ERROR;
    auto Format = std::make_unique<icu::RuleBasedNumberFormat>(icu::URBNF_SPELLOUT, icu::Locale(Locale), Status);
    if (U_FAILURE(Status)) {
        std::fprintf(stderr, "ICU spell-out for \"%s\" failed: %s\n", Locale, u_errorName(Status));
        return nullptr;
    }
    return Format;
}

void Report(const char* Ours, double OurRate, const char* Peer, double PeerRate)
{
    std::printf("%-28s %12.0f amounts/s\n", Ours, OurRate);
    std::printf("%-28s %12.0f amounts/s\n", Peer, PeerRate);
    std::printf("ratio (ours / ICU)           %12.2fx\n\n", OurRate / PeerRate);
}

} // namespace

int main()
{
    const std::vector<qint64> Amounts = MakeAmounts();
    const QStringList Riyal = {QStringLiteral("ريال"), QStringLiteral("ريالان"), QStringLiteral("ريالات"),
                               QStringLiteral("ريالا")};
    const auto Arabic = SpellOut("ar");
    const auto English = SpellOut("en");
    if (!Arabic || !English)
        return 1;

    const auto [OursAr, IcuAr] = Compare(
        Amounts, [&](qint64 A) { return NumberToWords(Currency(A), Riyal).size(); },
        [&](qint64 A) {
            icu::UnicodeString Text;
            Arabic->format(int64_t(A), Text);
            return qsizetype(Text.length());
        });
    const auto [OursEn, IcuEn] = Compare(
        Amounts, [&](qint64 A) { return NumberToWordsE(Currency(A)).size(); },
        [&](qint64 A) {
            icu::UnicodeString Text;
            English->format(int64_t(A), Text);
            return qsizetype(Text.length());
        });

    std::printf("%d amounts in 0..10^12, best of %d alternating passes, processor time\n\n", AmountCount,
                Passes);
    Report("NumberToWords (riyal)", OursAr, "ICU spell-out \"ar\"", IcuAr);
    Report("NumberToWordsE", OursEn, "ICU spell-out \"en\"", IcuEn);
    return 0;
}
