#include "strings.h"

namespace Kesh {

QString Trim(const QString& S)
{
    qsizetype First = 0;
    qsizetype Last = S.size() - 1;
    while (First <= Last && S.at(First).unicode() <= 0x20)
        ++First;
    while (Last >= First && S.at(Last).unicode() <= 0x20)
        --Last;
    return S.mid(First, Last - First + 1);
}

QString StringReplace(const QString& S, const QString& OldPattern, const QString& NewPattern, TReplaceFlags Flags)
{
    if (OldPattern.isEmpty())
        return S;
    const Qt::CaseSensitivity Cs = Flags.testFlag(rfIgnoreCase) ? Qt::CaseInsensitive : Qt::CaseSensitive;
    QString Result;
    qsizetype From = 0;
    // The search resumes after each replacement, so inserted text is never searched again.
    for (qsizetype At = S.indexOf(OldPattern, 0, Cs); At >= 0; At = S.indexOf(OldPattern, From, Cs)) {
        Result += QStringView(S).mid(From, At - From);
        Result += NewPattern;
        From = At + OldPattern.size();
        if (!Flags.testFlag(rfReplaceAll))
            break;
    }
    Result += QStringView(S).mid(From);
    return Result;
}

QString QuotedStr(const QString& S)
{
    QString Result = S;
    Result.replace(QLatin1Char('\''), QStringLiteral("''"));
    return QLatin1Char('\'') + Result + QLatin1Char('\'');
}

} // namespace Kesh
