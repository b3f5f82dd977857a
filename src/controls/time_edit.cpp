#include "time_edit.h"

#include "core/conversions.h"
#include "core/integer_times.h"
#include "core/messages.h"
#include "platform/exceptions.h"
#include "platform/rtl/numbers.h"

#include <limits>

namespace Kesh {

namespace {

int StrToInt(const QString& S)
{
    int Value = 0;
    if (!TryStrToInt(S, Value))
        throw EConvertError(QStringLiteral("'%1' is not a valid integer value").arg(S));
    return Value;
}

QString TimeText(int Hours, int Minutes)
{
    return Int2Str(Hours, 2) + QLatin1Char(':') + Int2Str(Minutes, 2);
}

} // namespace

TQxTimeEdit::TQxTimeEdit(QWidget* Parent) : TQxCustomEdit(Parent)
{
}

int TQxTimeEdit::AsIntegerTime() const
{
    static const TSysCharSet Delims{'.', ':'};
    QString Rest = text();
    // "9" is nine o'clock and "9:5" is 9:50: a short hour is padded in front, a short
    // minute behind.
    QString Hours = GetToken(Rest, Delims).left(2);
    if (Hours.size() < 2)
        Hours.prepend(QLatin1Char('0'));
    QString Minutes = GetToken(Rest, Delims).left(2);
    if (Minutes.size() < 2)
        Minutes.append(QLatin1Char('0'));
    return TimeEncode(StrToInt(Hours), StrToInt(Minutes));
}

bool TQxTimeEdit::IsEmpty() const
{
    return Kesh::IsEmpty(text());
}

void TQxTimeEdit::SetAsInteger(int Value)
{
    SetAsDate(IntToTime(Value));
}

void TQxTimeEdit::SetAsFloat(double Value)
{
    qint64 Whole = 0;
    try {
        Whole = Round(Value - Frac(Value));
    } catch (const EConvertError&) {
        setText(QStringLiteral("#Error#"));
        return;
    }
    // A number beyond 32 bits is no time of day, as any other invalid time.
    if (Whole < std::numeric_limits<int>::min() || Whole > std::numeric_limits<int>::max())
        clear();
    else
        SetAsInteger(int(Whole));
}

TDateTime TQxTimeEdit::AsDate() const
{
    return IntToTime(AsIntegerTime());
}

void TQxTimeEdit::SetAsDate(TDateTime Value)
{
    if (Value == 0) {
        clear();
        return;
    }
    if (!DateTimeToQDate(Value).isValid()) {
        setText(QStringLiteral("#Error#"));
        return;
    }
    int H = 0, M = 0, S = 0, Ms = 0;
    DecodeTime(Value, H, M, S, Ms);
    setText(TimeText(H, M));
}

bool TQxTimeEdit::AcceptsChar(QChar C) const
{
    if (C >= QLatin1Char('0') && C <= QLatin1Char('9'))
        return true;
    // Each separator may be typed once.
    return (C == QLatin1Char('.') || C == QLatin1Char(':')) && !text().contains(C);
}

void TQxTimeEdit::DoExit()
{
    emit Exit();
    const int Time = AsIntegerTime();
    // The bound is on the encoded number: 12 hours 75 minutes passes.
    if (m_checkTime && (Time < 0 || Time >= 2360))
        RaiseError(BiStr(QStringLiteral("الوقت غير صحيح."), QStringLiteral("Incorrect time.")), this);
    const QString Digits = Int2Str(Time, 4);
    setText(Digits.left(2) + QLatin1Char(':') + Digits.mid(2, 2));
}

} // namespace Kesh
