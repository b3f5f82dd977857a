#include "integer_fields.h"

#include "conversions.h"
#include "integer_dates.h"
#include "integer_times.h"
#include "messages.h"
#include "platform/exceptions.h"
#include "platform/rtl/numbers.h"

namespace Kesh {

namespace {

bool RightToLeft() { return Application()->BiDiMode() == bdRightToLeft; }

bool IsNullValue(const QVariant& V) { return !V.isValid() || V.isNull(); }

QString Two(int Value) { return QStringLiteral("%1").arg(Value, 2, 10, QLatin1Char('0')); }

[[noreturn]] void InvalidDate()
{
    throw EDatabaseError(BiStr(QStringLiteral("قيمة التاريخ غير صحيحة."), QStringLiteral("Invalid date value.")));
}

[[noreturn]] void InvalidTime()
{
    throw EDatabaseError(BiStr(QStringLiteral("قيمة الوقت غير صحيحة."), QStringLiteral("Invalid Time value.")));
}

void IncorrectNumber(TField* Field)
{
    ShowError(BiStr(QStringLiteral("الرقم غير صحيح."), QStringLiteral("Incorrect number.")));
    Field->Clear();
}

const QChar ArabicAm(0x0635);  // ص
const QChar ArabicPm(0x0645);  // م

// Time text as the run-time time reader takes it: "." is ":" and the Arabic marks are
// the English ones, so text shown in either language reads back.
QString TimeReaderText(const QString& Text)
{
    QString S = Text;
    S.replace(QLatin1Char('.'), QLatin1Char(':'));
    S.replace(ArabicAm, QLatin1String(" am"));
    S.replace(ArabicPm, QLatin1String(" pm"));
    return S;
}

// Numbers, and text of digits alone, are the raw value; other text is date or time text.
bool IsRawNumber(const QVariant& Value, int& Number)
{
    if (Value.metaType().id() != QMetaType::QString) {
        bool Ok = false;
        Number = Value.toInt(&Ok);
        return Ok;
    }
    return TryStrToInt(Value.toString(), Number);
}

} // namespace

// ---- TQxDateField

TQxDateField::TQxDateField(QObject* Owner) : TIntegerField(Owner) { SetDataType(ftInteger); }

int TQxDateField::StringToDate(const QString& Text) const
{
    if (Text.isEmpty())
        return -1;
    const TSysCharSet Delims{'-', '.', '/', ':', '\\'};
    if (TokenCount(Text, Delims) != 3)
        InvalidDate();
    QString Rest = Text;
    const int Day = GetInteger(Rest, Delims);
    const int Month = GetInteger(Rest, Delims);
    const int Year = GetInteger(Rest, Delims);
    if (Day < 1 || Day > 31 || Month < 1 || Month > 12)
        InvalidDate();
    if (!(Year >= 1900 && Year <= 2100) && !(Year >= 1300 && Year <= 1500))
        InvalidDate();
    if (Year <= 1500 && Day >= 31)
        throw EDatabaseError(BiStr(QStringLiteral("قيمة التاريخ الهجري غير صحيحة."), QStringLiteral("Invalid Hijri date.")));
    if (Year > 1500 && !IsValidDate(Year, Month, Day))
        InvalidDate();
    return Year * 10000 + Month * 100 + Day;
}

void TQxDateField::SetText(const QString& Value)
{
    if (StringToDate(Value) == -1) {
        IncorrectNumber(this);
        return;
    }
    TIntegerField::SetText(Value);
}

void TQxDateField::SetAsString(const QString& Value)
{
    if (Value.isEmpty())
        Clear();
    else
        TIntegerField::SetVarValue(StringToDate(Value));
}

void TQxDateField::SetAsDateTime(TDateTime Value) { TIntegerField::SetVarValue(DateToInt(Value)); }

bool TQxDateField::IsValidChar(QChar Ch) const
{
    return Ch.isDigit() || QStringLiteral("-./:\\").contains(Ch);
}

QString TQxDateField::DateText(int Date)
{
    int Y = 0, M = 0, D = 0;
    DateDecode(Date, Y, M, D);
    return QStringLiteral("%1-%2-%3").arg(D).arg(M).arg(Y, 4, 10, QLatin1Char('0'));
}

QString TQxDateField::GetAsString() const { return IsNull() ? QString() : DateText(GetAsInteger()); }

int TQxDateField::GetAsInteger() const { return IsNull() ? 0 : TIntegerField::GetAsInteger(); }

TDateTime TQxDateField::GetAsDateTime() const { return IntToDate(GetAsInteger()); }

void TQxDateField::SetVarValue(const QVariant& Value)
{
    int Number = 0;
    if (IsNullValue(Value))
        TIntegerField::SetVarValue(QVariant());
    else if (IsRawNumber(Value, Number))
        TIntegerField::SetVarValue(Number);
    else
        SetAsString(Value.toString());
}

void TQxDateField::GetText(QString& Text, bool) const { Text = GetAsString(); }

// ---- TQxTimeField

TQxTimeField::TQxTimeField(QObject* Owner) : TSmallintField(Owner) {}

int TQxTimeField::AsMinIndex() const { return TimeToMinIndex(GetAsInteger()); }

void TQxTimeField::SetAsMinIndex(int Value) { TSmallintField::SetVarValue(MinIndexToTime(Value)); }

void TQxTimeField::SetText(const QString& Value)
{
    TDateTime Time = 0;
    if (!TryStrToTime(TimeReaderText(Value), Time)) {
        IncorrectNumber(this);
        return;
    }
    TSmallintField::SetText(Value);
}

void TQxTimeField::SetAsString(const QString& Value)
{
    if (Value.isEmpty()) {
        Clear();
        return;
    }
    int Hours = 0, Minutes = 0;
    if (m_format24) {
        const TSysCharSet Delims{':', '.', ' '};
        QString Rest = Value;
        Hours = GetInteger(Rest, Delims);
        Minutes = GetInteger(Rest, Delims);
    } else {
        TDateTime Time = 0;
        if (!TryStrToTime(TimeReaderText(Value), Time))
            InvalidTime();
        int Sec = 0, MSec = 0;
        DecodeTime(Time, Hours, Minutes, Sec, MSec);
    }
    if (Hours < 0 || Hours > 23 || Minutes < 0 || Minutes > 59)
        InvalidTime();
    TSmallintField::SetVarValue(Hours * 100 + Minutes);
}

void TQxTimeField::SetAsDateTime(TDateTime Value) { TSmallintField::SetVarValue(TimeToInt(Value)); }

bool TQxTimeField::IsValidChar(QChar Ch) const
{
    const bool Range = Ch >= QLatin1Char('.') && Ch <= QLatin1Char(':');
    if (m_format24)
        return Range;
    if (Range || Ch == QLatin1Char(' '))
        return true;
    if (RightToLeft())
        return Ch == ArabicAm || Ch == ArabicPm;
    return QStringLiteral("apmAPM").contains(Ch);
}

QString TQxTimeField::GetAsString() const
{
    if (IsNull())
        return QString();
    const int Value = GetAsInteger();
    int H = Value / 100;
    const int M = Value % 100;
    if (m_format24)
        return Two(H) + QLatin1Char(':') + Two(M);
    const bool Pm = H > 11;
    const QString Mark = RightToLeft() ? (Pm ? QStringLiteral(" م") : QStringLiteral(" ص"))
                                       : (Pm ? QStringLiteral(" pm") : QStringLiteral(" am"));
    if (H > 11)
        H -= 12;
    if (H == 0)
        H = 12;
    return Two(H) + QLatin1Char(':') + Two(M) + Mark;
}

int TQxTimeField::GetAsInteger() const { return IsNull() ? 0 : TSmallintField::GetAsInteger(); }

TDateTime TQxTimeField::GetAsDateTime() const { return IntToTime(GetAsInteger()); }

void TQxTimeField::SetVarValue(const QVariant& Value)
{
    int Number = 0;
    if (IsNullValue(Value))
        TSmallintField::SetVarValue(QVariant());
    else if (IsRawNumber(Value, Number))
        TSmallintField::SetVarValue(Number);
    else
        SetAsString(Value.toString());
}

void TQxTimeField::GetText(QString& Text, bool) const { Text = GetAsString(); }

} // namespace Kesh
