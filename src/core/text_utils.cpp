// Kesh for Qt — pattern replacement and the search key of a text.
#include "text_utils.h"

#include "messages.h"
#include "platform/exceptions.h"

namespace Kesh {

namespace {

// The blank, the Latin letters, and the positions of the Arabic letters in code page 1256.
bool IsSearchKeyChar(char16_t C)
{
    if (C == u' ' || (C >= u'A' && C <= u'Z') || (C >= u'a' && C <= u'z'))
        return true;
    if (C >= 0xC1 && C <= 0xDF)
        return true;
    switch (C) {
    case 0xE1: case 0xE3: case 0xE4: case 0xE5: case 0xE6: case 0xEC: case 0xED:
        return true;
    default:
        return false;
    }
}

// Spelling variants folded together so that a search finds every way of writing a name.
struct Folding
{
    QString From;
    QString To;
};
const Folding Foldings[] = {
    {QStringLiteral("أ"), QStringLiteral("ا")},
    {QStringLiteral("آ"), QStringLiteral("ا")},
    {QStringLiteral("إ"), QStringLiteral("ا")},
    {QStringLiteral("عبد ال"), QStringLiteral("عبدال")},
    {QStringLiteral("ة"), QStringLiteral("ه")},
    {QStringLiteral("ـ"), QString()},
    {QStringLiteral(" آل "), QStringLiteral(" ال ")},
};

} // namespace

QString Replace(const QString& S, const QString& OldPattern, const QString& NewPattern, TReplaceFlags Flags)
{
    return StringReplace(S, OldPattern, NewPattern, Flags);
}

QString Replace(const QString& S, const QStringList& Patterns, const QStringList& Data, TReplaceFlags Flags)
{
    if (Patterns.size() != Data.size()) {
        ShowError(QStringLiteral("Replace: number of patterns doesn't match number of data elements."));
        Abort();
    }
    QString Result = S;
    for (qsizetype I = 0; I < Patterns.size(); ++I)
        Result = StringReplace(Result, Patterns.at(I), Data.at(I), Flags);
    return Result;
}

QString StringFilter(const QString& S)
{
    const QString Trimmed = Trim(S);
    QString Result;
    if (Trimmed.isEmpty())
        return Result;
    Result.reserve(Trimmed.size());
    for (const QChar C : Trimmed)
        if (IsSearchKeyChar(C.unicode()))
            Result.append(C);
    // Runs of blanks are deliberately left as they are: the key keeps the text's spacing.
    // Every code unit above U+00FF is gone by now, so the foldings below change nothing
    // today; they state what the key is meant to equate.
    for (const Folding& F : Foldings)
        Result = StringReplace(Result, F.From, F.To, rfReplaceAll);
    return Result;
}

} // namespace Kesh
