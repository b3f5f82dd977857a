// FloatToStr and FormatFloat: a value's decimal digits laid out by a general rule or by a pattern.
#include "format_settings.h"
#include "numbers.h"

#include <QVarLengthArray>

#include <cmath>
#include <cstdio>
#include <string>

namespace Kesh {

namespace {

// A finite value as 0.D1D2…Dn × 10^Exponent, without trailing zeros; no digits means zero.
struct Decimal
{
    bool Negative = false;
    std::string Digits;
    qint64 Exponent = 0;

    bool IsZero() const { return Digits.empty(); }
};

void StripTrailingZeros(Decimal& D)
{
    while (!D.Digits.empty() && D.Digits.back() == '0')
        D.Digits.pop_back();
    if (D.Digits.empty())
        D.Exponent = 0;
}

// The value's 18-significant-digit decimal form, correctly rounded from the binary value.
// Only the digits and the exponent of the text are read, so the C locale's decimal
// point does not matter.
Decimal ToDecimal(long double Value)
{
    Decimal D;
    D.Negative = std::signbit(Value);
    if (Value == 0)
        return D;
    char Buffer[64];
    std::snprintf(Buffer, sizeof Buffer, "%.17Le", std::fabs(Value));
    const char* P = Buffer;
    for (; *P && *P != 'e'; ++P)
        if (*P >= '0' && *P <= '9')
            D.Digits += *P;
    if (*P == 'e')
        D.Exponent = std::strtol(P + 1, nullptr, 10) + 1;
    StripTrailingZeros(D);
    return D;
}

// Keeps the first Keep digits, rounding half away from zero on the digits dropped.
void RoundDigits(Decimal& D, qint64 Keep)
{
    if (Keep >= qint64(D.Digits.size()))
        return;
    if (Keep < 0) {
        D.Digits.clear();
        D.Exponent = 0;
        return;
    }
    const bool Up = D.Digits[size_t(Keep)] >= '5';
    D.Digits.resize(size_t(Keep));
    if (Up) {
        while (!D.Digits.empty() && D.Digits.back() == '9')
            D.Digits.pop_back();
        if (D.Digits.empty()) {
            D.Digits = "1";
            ++D.Exponent;
        } else {
            ++D.Digits.back();
        }
    }
    StripTrailingZeros(D);
}

QString Latin(const std::string& S) { return QString::fromLatin1(S.data(), qsizetype(S.size())); }

// The classic general format with 15 significant digits: fixed notation while the
// exponent is within -3..15 digits, scientific ("1.5E20", "1E-5") outside.
QString GeneralFormat(long double Value)
{
    if (std::isnan(Value))
        return QStringLiteral("NAN");
    if (std::isinf(Value))
        return Value < 0 ? QStringLiteral("-INF") : QStringLiteral("INF");
    Decimal D = ToDecimal(Value);
    RoundDigits(D, 15);
    if (D.IsZero())
        return QStringLiteral("0");

    const QChar Separator = FormatSettings.DecimalSeparator;
    QString Result = D.Negative ? QStringLiteral("-") : QString();
    const qint64 N = qint64(D.Digits.size());
    if (D.Exponent > 15 || D.Exponent < -3) {
        Result += QLatin1Char(D.Digits[0]);
        if (N > 1)
            Result += Separator + Latin(D.Digits.substr(1));
        Result += QLatin1Char('E') + QString::number(D.Exponent - 1);
    } else if (D.Exponent <= 0) {
        Result += QLatin1Char('0') + Separator + QString(D.Exponent == 0 ? 0 : -D.Exponent, QLatin1Char('0')) + Latin(D.Digits);
    } else {
        Result += Latin(D.Digits.substr(0, size_t(D.Exponent)));
        if (N > D.Exponent)
            Result += Separator + Latin(D.Digits.substr(size_t(D.Exponent)));
        else
            Result += QString(D.Exponent - N, QLatin1Char('0'));
    }
    return Result;
}

// ---- The pattern language ----

// Sections of a pattern: split at ';' outside quoted text; at most three count.
QVarLengthArray<QStringView, 3> SplitSections(QStringView Format)
{
    QVarLengthArray<QStringView, 3> Sections;
    QChar Quote;
    qsizetype Start = 0;
    for (qsizetype I = 0; I < Format.size() && Sections.size() < 3; ++I) {
        const QChar C = Format.at(I);
        if (!Quote.isNull()) {
            if (C == Quote)
                Quote = QChar();
        } else if (C == QLatin1Char('"') || C == QLatin1Char('\'')) {
            Quote = C;
        } else if (C == QLatin1Char(';')) {
            Sections.append(Format.mid(Start, I - Start));
            Start = I + 1;
        }
    }
    if (Sections.size() < 3)
        Sections.append(Format.mid(Start));
    return Sections;
}

bool IsExponentAt(QStringView S, qsizetype I)
{
    const QChar C = S.at(I);
    return (C == QLatin1Char('E') || C == QLatin1Char('e')) && I + 1 < S.size()
        && (S.at(I + 1) == QLatin1Char('+') || S.at(I + 1) == QLatin1Char('-'));
}

// One token of a section. Quoted text and plain characters are literals; the first
// "E+"/"E-" with its zeros is the exponent; later ones are plain characters.
struct Token
{
    enum Kind { Literal, Placeholder, Point, Comma, Exponent } Type = Literal;
    QStringView Text;       // Literal: the text to copy
    bool Zero = false;      // Placeholder: '0' rather than '#'
    QChar Letter;           // Exponent: 'E' or 'e'
    bool PlusSign = false;  // Exponent: "E+" always shows a sign
    int ExpDigits = 0;      // Exponent: minimum number of exponent digits (at most 4)
};

// Walks a section token by token; Visit is called for every token in order.
template <typename Visitor>
void WalkSection(QStringView S, Visitor&& Visit)
{
    bool SeenExponent = false;
    for (qsizetype I = 0; I < S.size();) {
        const QChar C = S.at(I);
        Token T;
        if (C == QLatin1Char('"') || C == QLatin1Char('\'')) {
            qsizetype End = S.indexOf(C, I + 1);
            if (End < 0)
                End = S.size();
            T.Text = S.mid(I + 1, End - I - 1);
            I = qMin(End + 1, S.size());
        } else if (C == QLatin1Char('0') || C == QLatin1Char('#')) {
            T.Type = Token::Placeholder;
            T.Zero = C == QLatin1Char('0');
            ++I;
        } else if (C == QLatin1Char('.')) {
            T.Type = Token::Point;
            ++I;
        } else if (C == QLatin1Char(',')) {
            T.Type = Token::Comma;
            ++I;
        } else if (!SeenExponent && IsExponentAt(S, I)) {
            SeenExponent = true;
            T.Type = Token::Exponent;
            T.Letter = C;
            T.PlusSign = S.at(I + 1) == QLatin1Char('+');
            I += 2;
            int Zeros = 0;
            for (; I < S.size() && S.at(I) == QLatin1Char('0'); ++I)
                ++Zeros;
            T.ExpDigits = qMin(Zeros, 4);
        } else {
            T.Text = S.mid(I, 1);
            ++I;
        }
        Visit(T);
    }
}

// What a section asks for, gathered before any digit is placed.
struct SectionLayout
{
    qint64 IntPlaceholders = 0;
    qint64 FracPlaceholders = 0;
    qint64 MinIntDigits = 0;   // placeholders from the first integer '0' to the point
    qint64 MinFracDigits = 0;  // decimal places up to the last '0' after the point
    bool Thousands = false;
    bool Scientific = false;
};

SectionLayout ScanSection(QStringView S)
{
    SectionLayout L;
    bool AfterPoint = false;
    qint64 FirstIntZero = -1;
    WalkSection(S, [&](const Token& T) {
        switch (T.Type) {
        case Token::Placeholder:
            if (AfterPoint) {
                ++L.FracPlaceholders;
                if (T.Zero)
                    L.MinFracDigits = L.FracPlaceholders;
            } else {
                if (T.Zero && FirstIntZero < 0)
                    FirstIntZero = L.IntPlaceholders;
                ++L.IntPlaceholders;
            }
            break;
        case Token::Point:
            AfterPoint = true;
            break;
        case Token::Comma:
            if (!AfterPoint)
                L.Thousands = true;
            break;
        case Token::Exponent:
            L.Scientific = true;
            break;
        case Token::Literal:
            break;
        }
    });
    if (FirstIntZero >= 0)
        L.MinIntDigits = L.IntPlaceholders - FirstIntZero;
    if (L.Scientific)
        L.Thousands = false;
    return L;
}

// Rounds D as the section asks: to its decimal places, or in scientific notation to as
// many significant digits as it has placeholders (at least 1, at most 18).
void RoundForSection(Decimal& D, const SectionLayout& L)
{
    if (L.Scientific)
        RoundDigits(D, qBound(qint64(1), L.IntPlaceholders + L.FracPlaceholders, qint64(18)));
    else
        RoundDigits(D, D.Exponent + L.FracPlaceholders);
}

// The digits each part of the number shows, once D is rounded for the section.
struct Rendering
{
    std::string IntDigits;
    std::string FracDigits;
    qint64 Exponent = 0;
};

Rendering Distribute(const Decimal& D, const SectionLayout& L)
{
    Rendering R;
    const auto DigitAt = [&](qint64 Index) {
        return Index >= 0 && Index < qint64(D.Digits.size()) ? D.Digits[size_t(Index)] : '0';
    };
    qint64 IntCount = L.IntPlaceholders;
    qint64 FirstFrac = L.IntPlaceholders;
    if (!L.Scientific) {
        IntCount = qMax<qint64>(D.Exponent, 0);
        FirstFrac = D.Exponent;
    } else if (!D.IsZero()) {
        R.Exponent = D.Exponent - L.IntPlaceholders;
    }
    for (qint64 I = 0; I < IntCount; ++I)
        R.IntDigits += DigitAt(I);
    if (!L.Scientific && qint64(R.IntDigits.size()) < L.MinIntDigits)
        R.IntDigits.insert(0, size_t(L.MinIntDigits - qint64(R.IntDigits.size())), '0');
    for (qint64 I = 0; I < L.FracPlaceholders; ++I)
        R.FracDigits += DigitAt(FirstFrac + I);
    while (qint64(R.FracDigits.size()) > L.MinFracDigits && R.FracDigits.back() == '0')
        R.FracDigits.pop_back();
    return R;
}

QString ApplySection(QStringView S, const SectionLayout& L, const Rendering& R, bool Minus)
{
    const QChar DecimalSeparator = FormatSettings.DecimalSeparator;
    const QChar ThousandSeparator = FormatSettings.ThousandSeparator;
    const bool Group = L.Thousands && !ThousandSeparator.isNull();
    const qint64 IntLen = qint64(R.IntDigits.size());
    QString Out;
    if (Minus)
        Out += QLatin1Char('-');

    // Integer digits go right-aligned into the integer placeholders; the first one takes
    // any digits that have no placeholder of their own.
    qint64 NextInt = 0;
    const auto PutIntDigits = [&](qint64 Upto) {
        for (; NextInt < Upto; ++NextInt) {
            Out += QLatin1Char(R.IntDigits[size_t(NextInt)]);
            const qint64 Place = IntLen - 1 - NextInt;
            if (Group && Place > 0 && Place % 3 == 0)
                Out += ThousandSeparator;
        }
    };
    qint64 IntIndex = 0;
    qint64 FracIndex = 0;
    bool AfterPoint = false;
    WalkSection(S, [&](const Token& T) {
        switch (T.Type) {
        case Token::Literal:
            Out += T.Text;
            break;
        case Token::Placeholder:
            if (!AfterPoint) {
                ++IntIndex;
                PutIntDigits(qMax<qint64>(0, IntLen - (L.IntPlaceholders - IntIndex)));
            } else {
                if (FracIndex < qint64(R.FracDigits.size()))
                    Out += QLatin1Char(R.FracDigits[size_t(FracIndex)]);
                ++FracIndex;
            }
            break;
        case Token::Point:
            if (AfterPoint)
                break;
            AfterPoint = true;
            PutIntDigits(IntLen);
            if (!R.FracDigits.empty())
                Out += DecimalSeparator;
            break;
        case Token::Comma:
            break;
        case Token::Exponent: {
            Out += T.Letter;
            if (R.Exponent < 0)
                Out += QLatin1Char('-');
            else if (T.PlusSign)
                Out += QLatin1Char('+');
            const QString Digits = QString::number(R.Exponent < 0 ? -R.Exponent : R.Exponent);
            Out += QString(qMax<qsizetype>(0, T.ExpDigits - Digits.size()), QLatin1Char('0')) + Digits;
            break;
        }
        }
    });
    return Out;
}

} // namespace

QString FloatToStr(long double Value) { return GeneralFormat(Value); }

QString FormatFloat(const QString& Format, long double Value)
{
    if (!std::isfinite(Value))
        return GeneralFormat(Value);
    const auto Sections = SplitSections(Format);
    // A negative or zero section that is missing or empty falls back to the first one.
    const auto Pick = [&](int Index) { return Index < Sections.size() && !Sections[Index].isEmpty() ? Index : 0; };
    const int Wanted = Value > 0 ? 0 : Value < 0 ? 1 : 2;
    int Used = Pick(Wanted);
    if (Sections[Used].isEmpty())
        return GeneralFormat(Value);

    SectionLayout Layout = ScanSection(Sections[Used]);
    Decimal D = ToDecimal(Value);
    RoundForSection(D, Layout);
    if (D.IsZero() && Wanted != 2) {
        // A value that rounds to zero is shown as zero, by the zero section when there is one.
        Used = Pick(2);
        Layout = ScanSection(Sections[Used]);
    }
    if (!Layout.Scientific && D.Exponent > 18)
        return GeneralFormat(Value);
    const bool Minus = D.Negative && !D.IsZero() && Wanted == 1 && Used == 0;
    return ApplySection(Sections[Used], Layout, Distribute(D, Layout), Minus);
}

} // namespace Kesh
