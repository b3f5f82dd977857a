#include "conversions.h"
#include "platform/application.h"
#include "platform/data/fields.h"
#include "platform/exceptions.h"
#include "platform/rtl/numbers.h"
#include "platform/rtl/strings.h"

namespace Kesh {

QString BiStr(const QString& Arabic, const QString& English)
{
    return Application()->BiDiMode() == bdRightToLeft ? Arabic : English;
}

int LangIndex()
{
    return Application()->BiDiMode() == bdRightToLeft ? 1 : 0;
}

QString AsString(const QVariant& V)
{
    if (!V.isValid() || V.isNull())
        return QString();
    switch (V.typeId()) {
    case QMetaType::Bool:
        // The classic text of a Boolean, which AsBoolean reads back.
        return V.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::Double:
    case QMetaType::Float:
        return FloatToStr(V.toDouble());
    default:
        return V.toString();
    }
}

QString AsString(TField* Field)
{
    if (!Field)
        return QString();
    try {
        return Field->AsString();
    } catch (const Exception&) {
        return QString();
    } catch (const std::exception&) {
        return QString();
    }
}

bool AsBoolean(const QString& S)
{
    return S.compare(QLatin1String("TRUE"), Qt::CaseInsensitive) == 0;
}

QVariant IIF(bool Condition, const QVariant& TrueValue, const QVariant& FalseValue)
{
    return Condition ? TrueValue : FalseValue;
}

bool IsEmpty(const QString& S)
{
    return Trim(S).isEmpty();
}

int AsInteger(const QString& S)
{
    int Value = 0;
    return TryStrToInt(S, Value) ? Value : 0;
}

long double AsFloat(const QString& S)
{
    long double Value = 0;
    return TryStrToFloat(S, Value) ? Value : 0.0L;
}

QString Int2Str(qint64 Value, int Width)
{
    QString T = QString::number(Value);
    if (Width > 0) {
        // Only the low four bits of the width count: 16 pads nothing, 18 pads as 2.
        const int Pad = (Width & 15) - T.size();
        if (Pad > 0)
            T.prepend(QString(Pad, QLatin1Char('0')));
    }
    return T;
}

TSysCharSet::TSysCharSet(std::initializer_list<char> Chars)
{
    for (char C : Chars)
        m_bits.set(static_cast<unsigned char>(C));
}

int TokenCount(const QString& S, const TSysCharSet& Delims)
{
    int Count = 0;
    const int N = S.size();
    for (int I = 0; I < N; ++I) {
        if (!Delims.Contains(S.at(I))) {
            while (I + 1 < N && !Delims.Contains(S.at(I + 1)))
                ++I;
            ++Count;
        }
    }
    return Count;
}

QString GetToken(QString& S, const TSysCharSet& Delims)
{
    int Start = 0;
    if (!S.isEmpty() && Delims.Contains(S.at(0)))
        Start = 1;
    int End = Start;
    while (End < S.size() && !Delims.Contains(S.at(End)))
        ++End;
    // The delimiter that ends the token stays in S; the next call removes it.
    const QString Result = S.mid(Start, End - Start);
    S.remove(0, End);
    return Result;
}

int GetInteger(QString& S, const TSysCharSet& Delims)
{
    return AsInteger(GetToken(S, Delims));
}

bool GetBoolean(QString& S, const TSysCharSet& Delims)
{
    return AsBoolean(GetToken(S, Delims));
}

} // namespace Kesh
