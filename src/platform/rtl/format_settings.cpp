#include "format_settings.h"

#include <QLocale>

namespace Kesh {

namespace {

QChar FirstChar(const QString& S) { return S.isEmpty() ? QChar() : S.at(0); }

// Qt writes a time format as "h:mm:ss AP t"; the run-time routines read the classic
// syntax, where minutes are "n"/"nn", the marker is "ampm" and "t" means something else.
// Qt's time-zone field has no classic counterpart and is dropped with its blanks.
QString ToClassicTimeFormat(const QString& QtFormat)
{
    QString Result;
    const int Len = QtFormat.size();
    for (int I = 0; I < Len;) {
        const QChar C = QtFormat.at(I);
        int Run = 1;
        while (I + Run < Len && QtFormat.at(I + Run) == C)
            ++Run;
        switch (C.unicode()) {
        case 'H':
        case 'h':
            Result += QString(qMin(Run, 2), QLatin1Char('h'));
            break;
        case 'm':
            Result += QString(qMin(Run, 2), QLatin1Char('n'));
            break;
        case 's':
            Result += QString(qMin(Run, 2), QLatin1Char('s'));
            break;
        case 'z':
            Result += Run >= 3 ? QStringLiteral("zzz") : QStringLiteral("z");
            break;
        case 'A':
        case 'a':
            Result += QStringLiteral("ampm");
            if (I + Run < Len && (QtFormat.at(I + Run) == QLatin1Char('P') || QtFormat.at(I + Run) == QLatin1Char('p')))
                ++Run;
            break;
        case 't':
            while (Result.endsWith(QLatin1Char(' ')))
                Result.chop(1);
            break;
        case '\'': {
            // Quoted literal text: copied with its quotes, which the classic syntax shares.
            int End = QtFormat.indexOf(QLatin1Char('\''), I + 1);
            if (End < 0)
                End = Len - 1;
            Result += QtFormat.mid(I, End - I + 1);
            Run = End - I + 1;
            break;
        }
        default:
            Result += QString(Run, C);
            break;
        }
        I += Run;
    }
    return Result.trimmed();
}

// The first character of a locale's date or time pattern that is neither a letter nor a blank
// nor quoted text, or Default.
QChar SeparatorOf(const QString& Pattern, QChar Default)
{
    bool Quoted = false;
    for (const QChar C : Pattern) {
        if (C == QLatin1Char('\''))
            Quoted = !Quoted;
        else if (!Quoted && !C.isLetter() && !C.isSpace())
            return C;
    }
    return Default;
}

} // namespace

TFormatSettings TFormatSettings::FromSystemLocale()
{
    const QLocale Locale = QLocale::system();
    TFormatSettings S;
    S.DecimalSeparator = FirstChar(Locale.decimalPoint());
    if (S.DecimalSeparator.isNull())
        S.DecimalSeparator = QLatin1Char('.');
    S.ThousandSeparator = FirstChar(Locale.groupSeparator());
    S.DateSeparator = SeparatorOf(Locale.dateFormat(QLocale::ShortFormat), QLatin1Char('/'));
    S.TimeSeparator = SeparatorOf(Locale.timeFormat(QLocale::ShortFormat), QLatin1Char(':'));
    S.TimeAMString = Locale.amText();
    S.TimePMString = Locale.pmText();
    S.ShortTimeFormat = ToClassicTimeFormat(Locale.timeFormat(QLocale::ShortFormat));
    S.LongTimeFormat = ToClassicTimeFormat(Locale.timeFormat(QLocale::LongFormat));
    return S;
}

TFormatSettings FormatSettings = TFormatSettings::FromSystemLocale();

} // namespace Kesh
