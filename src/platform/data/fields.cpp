#include "fields.h"
#include "dataset.h"
#include "db_consts_p.h"
#include "../rtl/format_settings.h"
#include "../rtl/numbers.h"
#include <QDateTime>
#include <QLocale>
#include <QMetaEnum>
#include <QUuid>
#include <climits>
#include <memory>
#include <cmath>

namespace Kesh {

using namespace DBConsts;

namespace {

bool IsNullValue(const QVariant& V) { return !V.isValid() || V.isNull(); }

bool IsText(const QVariant& V) { return V.metaType().id() == QMetaType::QString; }


constexpr double MSecsPerDay = 86400000.0;

// Text shown with a DisplayFormat comes back with thousands separators: accept it.
QString WithoutThousands(const QString& S)
{
    QString R = S;
    if (!FormatSettings.ThousandSeparator.isNull() && FormatSettings.ThousandSeparator != FormatSettings.DecimalSeparator)
        R.remove(FormatSettings.ThousandSeparator);
    return R;
}

bool ParseInteger(const QString& S, qint64& V) { return TryStrToInt64(S, V) || TryStrToInt64(WithoutThousands(S), V); }

bool ParseFloat(const QString& S, double& V) { return TryStrToFloat(S, V) || TryStrToFloat(WithoutThousands(S), V); }

TDateTime TimeToDateTime(const QTime& T) { return T.msecsSinceStartOfDay() / MSecsPerDay; }

QTime DateTimeToTime(TDateTime V)
{
    const double Frac = std::fabs(V - std::trunc(V));
    return QTime::fromMSecsSinceStartOfDay(int(std::llround(Frac * MSecsPerDay)) % int(MSecsPerDay));
}

// Text in ISO 8601 (or the locale's short form) as a TDateTime.
bool ParseDateTimeText(const QString& Text, TDateTime& Value)
{
    const QString S = Text.trimmed();
    static const char* const DateTimeFormats[] = {"yyyy-MM-dd HH:mm:ss.zzz", "yyyy-MM-dd HH:mm:ss", "yyyy-MM-dd HH:mm",
                                                  "yyyy-MM-ddTHH:mm:ss.zzz", "yyyy-MM-ddTHH:mm:ss", "yyyy-MM-ddTHH:mm"};
    for (const char* F : DateTimeFormats) {
        const QDateTime Dt = QDateTime::fromString(S, QLatin1String(F));
        if (Dt.isValid()) {
            Value = QDateTimeToDateTime(Dt);
            return true;
        }
    }
    const QDateTime Iso = QDateTime::fromString(S, Qt::ISODateWithMs);
    if (Iso.isValid()) {
        Value = QDateTimeToDateTime(Iso.toLocalTime());
        return true;
    }
    QDate D = QDate::fromString(S, QStringLiteral("yyyy-MM-dd"));
    if (!D.isValid())
        D = QLocale().toDate(S, QLocale::ShortFormat);
    if (D.isValid()) {
        Value = QDateToDateTime(D);
        return true;
    }
    for (const char* F : {"HH:mm:ss.zzz", "HH:mm:ss", "H:mm:ss", "HH:mm", "H:mm"}) {
        const QTime T = QTime::fromString(S, QLatin1String(F));
        if (T.isValid()) {
            Value = TimeToDateTime(T);
            return true;
        }
    }
    const QDateTime L = QLocale().toDateTime(S, QLocale::ShortFormat);
    if (L.isValid()) {
        Value = QDateTimeToDateTime(L);
        return true;
    }
    return false;
}

int DefaultDisplayWidth(TFieldType T, int Size)
{
    switch (T) {
    case ftString: case ftWideString: case ftFixedChar: case ftFixedWideChar:
        return Size > 0 ? Size : 20;
    case ftSmallint: return 6;
    case ftWord: return 5;
    case ftInteger: case ftAutoInc: return 11;
    case ftLargeint: return 15;
    case ftBoolean: return 5;
    case ftDate: return 10;
    case ftTime: return 8;
    case ftDateTime: case ftTimeStamp: case ftOraTimeStamp: return 19;
    case ftGuid: return 38;
    case ftBytes: case ftVarBytes: return Size > 0 ? 2 * Size : 10;
    default: return 10;
    }
}

} // namespace

class TFieldPrivate
{
public:
    TDataSet* dataSet = nullptr;
    QVariant detachedValue;  // the raw value of a field that belongs to no dataset
    QString fieldName;
    TFieldType dataType = ftUnknown;
    TFieldKind kind = fkData;
    int column = -1;
    bool dynamic = false;
    int size = 0;
    QString displayLabel;
    int displayWidth = -1;
    QString displayFormat;
    QString editFormat;
    Qt::Alignment alignment = Qt::AlignLeft;
    bool readOnly = false;
    bool visible = true;
    bool required = false;
};

// ---- TField

TField::TField(QObject* Owner) : QObject(Owner), d(new TFieldPrivate)
{
    if (auto* DataSet = qobject_cast<TDataSet*>(Owner))
        SetDataSet(DataSet);
}

TField::~TField()
{
    if (d->dataSet)
        d->dataSet->RemoveField(this);
}

TDataSet* TField::DataSet() const { return d->dataSet; }

void TField::SetDataSet(TDataSet* Value)
{
    if (Value == d->dataSet)
        return;
    if (Value)
        Value->AddField(this);  // refuses an open dataset
    if (d->dataSet) {
        if (d->dataSet->Active()) {
            if (Value)
                Value->RemoveField(this);
            DatabaseError(SDataSetOpen());
        }
        d->dataSet->RemoveField(this);
    }
    d->dataSet = Value;
    d->column = -1;
}

void TField::Bind(int Column, bool Dynamic)
{
    d->column = Column;
    d->dynamic = Dynamic;
}

bool TField::IsDynamic() const { return d->dynamic; }

QString TField::FieldName() const { return d->fieldName; }
void TField::SetFieldName(const QString& Value) { d->fieldName = Value; }
TFieldType TField::DataType() const { return d->dataType; }
void TField::SetDataType(TFieldType Value) { d->dataType = Value; }
TFieldKind TField::FieldKind() const { return d->kind; }
void TField::SetFieldKind(TFieldKind Value) { d->kind = Value; }
int TField::FieldNo() const { return d->column + 1; }
int TField::Index() const { return d->dataSet ? int(d->dataSet->Fields().indexOf(const_cast<TField*>(this))) : -1; }
int TField::Size() const { return d->size; }
void TField::SetSize(int Value) { d->size = Value; }
QString TField::DisplayName() const { return d->displayLabel.isEmpty() ? d->fieldName : d->displayLabel; }
QString TField::DisplayLabel() const { return DisplayName(); }
void TField::SetDisplayLabel(const QString& Value) { d->displayLabel = Value; }
int TField::DisplayWidth() const
{
    return d->displayWidth >= 0 ? d->displayWidth : DefaultDisplayWidth(d->dataType, d->size);
}
void TField::SetDisplayWidth(int Value) { d->displayWidth = Value; }
QString TField::DisplayFormat() const { return d->displayFormat; }
void TField::SetDisplayFormat(const QString& Value) { d->displayFormat = Value; }
QString TField::EditFormat() const { return d->editFormat; }
void TField::SetEditFormat(const QString& Value) { d->editFormat = Value; }
Qt::Alignment TField::Alignment() const { return d->alignment; }
void TField::SetAlignment(Qt::Alignment Value) { d->alignment = Value; }
bool TField::ReadOnly() const { return d->readOnly; }
void TField::SetReadOnly(bool Value) { d->readOnly = Value; }
bool TField::Visible() const { return d->visible; }
void TField::SetVisible(bool Value) { d->visible = Value; }
bool TField::Required() const { return d->required; }
void TField::SetRequired(bool Value) { d->required = Value; }

bool TField::CanModify() const
{
    return !d->readOnly && d->dataSet && d->dataSet->Active() && d->dataSet->CanModify();
}

bool TField::IsNull() const { return IsNullValue(RawValue()); }
void TField::Clear() { SetRawValue(QVariant()); }

QVariant TField::RawValue() const
{
    if (!d->dataSet || d->column < 0)
        return d->detachedValue;
    return d->dataSet->ColumnValue(d->column);
}

void TField::SetRawValue(const QVariant& Value)
{
    if (!d->dataSet)
        DatabaseError(QStringLiteral("Field '%1' has no dataset").arg(DisplayName()));
    if (!d->dataSet->Active())
        DatabaseError(SDataSetClosed());
    if (d->dataSet->State() != dsEdit && d->dataSet->State() != dsInsert)
        DatabaseError(SNotEditing());
    if (d->readOnly)
        DatabaseError(SFieldReadOnly(DisplayName()));
    if (OnValidate) {
        // The handler reads the new value through the field; a refusal puts the old one back.
        const QVariant Old = RawValue();
        d->dataSet->SetColumnValue(this, Value);
        try {
            OnValidate(this);
        } catch (...) {
            d->dataSet->SetColumnValue(this, Old);
            throw;
        }
    } else {
        d->dataSet->SetColumnValue(this, Value);
    }
    d->dataSet->DataEvent(deFieldChange, qintptr(this));
    if (OnChange)
        OnChange(this);
}

void TField::AccessError(const QString& TypeName) const
{
    DatabaseError(QStringLiteral("Cannot access field '%1' as type %2").arg(DisplayName(), TypeName));
}

void TField::ConvertError(const QString& Text, const QString& TypeName) const
{
    DatabaseError(QStringLiteral("'%1' is not a valid %2 value for field '%3'").arg(Text, TypeName, DisplayName()));
}

QMetaType TField::ValueType(TFieldType Type)
{
    switch (Type) {
    case ftString: case ftWideString: case ftFixedChar: case ftFixedWideChar: case ftMemo: case ftWideMemo:
    case ftFmtMemo: case ftGuid: case ftOraClob:
        return QMetaType::fromType<QString>();
    case ftSmallint: case ftInteger: case ftWord: case ftAutoInc:
        return QMetaType::fromType<int>();
    case ftLargeint:
        return QMetaType::fromType<qlonglong>();
    case ftFloat: case ftCurrency: case ftBCD: case ftFMTBcd:
        return QMetaType::fromType<double>();
    case ftBoolean:
        return QMetaType::fromType<bool>();
    case ftDate:
        return QMetaType::fromType<QDate>();
    case ftTime:
        return QMetaType::fromType<QTime>();
    case ftDateTime: case ftTimeStamp: case ftOraTimeStamp:
        return QMetaType::fromType<QDateTime>();
    case ftBytes: case ftVarBytes: case ftBlob: case ftGraphic: case ftTypedBinary: case ftOraBlob:
        return QMetaType::fromType<QByteArray>();
    default:
        return QMetaType();
    }
}

// ---- generic readers: any held value to any type, as the classic fields convert

QString TField::GetAsString() const
{
    const QVariant V = RawValue();
    if (V.metaType().id() == QMetaType::QString)
        return *static_cast<const QString*>(V.constData());
    if (IsNullValue(V))
        return QString();
    switch (V.metaType().id()) {
    case QMetaType::Bool: return V.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::Double: case QMetaType::Float: return FloatToStr(V.toDouble());
    case QMetaType::QDate: return V.toDate().toString(QStringLiteral("yyyy-MM-dd"));
    case QMetaType::QTime: return V.toTime().toString(QStringLiteral("HH:mm:ss"));
    case QMetaType::QDateTime: return V.toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    case QMetaType::QByteArray: return QString::fromUtf8(V.toByteArray());
    default: return V.toString();
    }
}

int TField::GetAsInteger() const
{
    const qint64 V = GetAsLargeInt();
    if (V < INT_MIN || V > INT_MAX)
        ConvertError(QString::number(V), QStringLiteral("integer"));
    return int(V);
}

qint64 TField::GetAsLargeInt() const
{
    const QVariant V = RawValue();
    switch (V.metaType().id()) {  // the common cases first, read in place
    case QMetaType::LongLong: return *static_cast<const qlonglong*>(V.constData());
    case QMetaType::Int: return *static_cast<const int*>(V.constData());
    default: break;
    }
    if (IsNullValue(V))
        return 0;
    bool Ok = false;
    if (IsText(V)) {
        qint64 R;
        if (TryStrToInt64(V.toString(), R))
            return R;
        ConvertError(V.toString(), QStringLiteral("integer"));
    }
    if (V.metaType().id() == QMetaType::Double || V.metaType().id() == QMetaType::Float)
        return qint64(Round(V.toDouble()));
    const qint64 R = V.toLongLong(&Ok);
    if (!Ok)
        AccessError(QStringLiteral("Integer"));
    return R;
}

double TField::GetAsFloat() const
{
    const QVariant V = RawValue();
    if (IsNullValue(V))
        return 0;
    if (IsText(V)) {
        double R;
        bool Ok = false;
        if (TryStrToFloat(V.toString(), R))
            return R;
        R = V.toString().trimmed().toDouble(&Ok);  // text written by a server
        if (Ok)
            return R;
        ConvertError(V.toString(), QStringLiteral("floating point"));
    }
    switch (V.metaType().id()) {
    case QMetaType::QDate: case QMetaType::QTime: case QMetaType::QDateTime:
        return GetAsDateTime();
    default:
        break;
    }
    bool Ok = false;
    const double R = V.toDouble(&Ok);
    if (!Ok)
        AccessError(QStringLiteral("Float"));
    return R;
}

Kesh::Currency TField::GetAsCurrency() const { return Kesh::Currency(GetAsFloat()); }

bool TField::GetAsBoolean() const
{
    const QVariant V = RawValue();
    if (IsNullValue(V))
        return false;
    if (IsText(V)) {
        const QString S = V.toString().trimmed();
        return !S.isEmpty() && QStringLiteral("YyTt1").contains(S[0]);
    }
    return V.toBool();
}

TDateTime TField::GetAsDateTime() const
{
    const QVariant V = RawValue();
    if (IsNullValue(V))
        return 0;
    switch (V.metaType().id()) {
    case QMetaType::QDateTime: return QDateTimeToDateTime(V.toDateTime());
    case QMetaType::QDate: return QDateToDateTime(V.toDate());
    case QMetaType::QTime: return TimeToDateTime(V.toTime());
    case QMetaType::QString: {
        TDateTime R;
        if (!ParseDateTimeText(V.toString(), R))
            ConvertError(V.toString(), QStringLiteral("date and time"));
        return R;
    }
    default: {
        bool Ok = false;
        const double R = V.toDouble(&Ok);
        if (!Ok)
            AccessError(QStringLiteral("DateTime"));
        return R;
    }
    }
}

QByteArray TField::GetAsBytes() const
{
    const QVariant V = RawValue();
    if (IsNullValue(V))
        return QByteArray();
    if (V.metaType().id() == QMetaType::QByteArray)
        return V.toByteArray();
    return GetAsString().toUtf8();
}

QVariant TField::GetAsVariant() const
{
    const QVariant V = RawValue();
    const QMetaType Type = ValueType(d->dataType);
    if (IsNullValue(V))
        return Type.isValid() ? QVariant(Type) : QVariant();
    if (!Type.isValid() || V.metaType() == Type)
        return V;
    switch (Type.id()) {
    case QMetaType::Int: return GetAsInteger();
    case QMetaType::LongLong: return GetAsLargeInt();
    case QMetaType::Double: return GetAsFloat();
    case QMetaType::Bool: return GetAsBoolean();
    case QMetaType::QString: return GetAsString();
    case QMetaType::QByteArray: return GetAsBytes();
    case QMetaType::QDate: return DateTimeToQDate(GetAsDateTime());
    case QMetaType::QTime: return DateTimeToTime(GetAsDateTime());
    case QMetaType::QDateTime: return DateTimeToQDateTime(GetAsDateTime());
    default: return V;
    }
}

// ---- writers

void TField::SetVarValue(const QVariant& Value)
{
    if (IsNullValue(Value)) {
        SetRawValue(QVariant());
        return;
    }
    const QMetaType Type = ValueType(d->dataType);
    QVariant V = Value;
    if (Type.isValid() && V.metaType() != Type && !V.convert(Type))
        ConvertError(Value.toString(), QString::fromLatin1(Type.name()));
    SetRawValue(V);
}

void TField::SetAsString(const QString& Value) { SetVarValue(Value); }
void TField::SetAsInteger(int Value) { SetVarValue(Value); }
void TField::SetAsLargeInt(qint64 Value) { SetVarValue(QVariant::fromValue<qlonglong>(Value)); }
void TField::SetAsFloat(double Value) { SetVarValue(Value); }
void TField::SetAsCurrency(Kesh::Currency Value) { SetVarValue(Value.ToDouble()); }
void TField::SetAsBoolean(bool Value) { SetVarValue(Value); }
void TField::SetAsDateTime(TDateTime Value) { SetVarValue(DateTimeToQDateTime(Value)); }
void TField::SetAsBytes(const QByteArray& Value) { SetVarValue(Value); }

// ---- text

void TField::GetText(QString& Text, bool) const { Text = GetAsString(); }

QString TField::Text() const
{
    QString T;
    if (OnGetText)
        OnGetText(const_cast<TField*>(this), T, false);
    else
        GetText(T, false);
    return T;
}

QString TField::DisplayText() const
{
    QString T;
    if (OnGetText)
        OnGetText(const_cast<TField*>(this), T, true);
    else
        GetText(T, true);
    return T;
}

void TField::SetText(const QString& Value)
{
    if (OnSetText)
        OnSetText(this, Value);
    else
        SetAsString(Value);
}

bool TField::IsValidChar(QChar) const { return true; }

QVariant TField::ValueOf(TFieldType Type, const QVariant& Raw)
{
    const QMetaType Held = ValueType(Type);
    if (IsNullValue(Raw))
        return Held.isValid() ? QVariant(Held) : QVariant();
    if (!Held.isValid() || Raw.metaType() == Held)
        return Raw;  // what GetAsVariant gives without a field
    // Other types go through the field class itself, whose readers may be overridden.
    std::unique_ptr<TField> F(CreateFieldOfType(Type));
    F->d->detachedValue = Raw;
    return F->Value();
}

QVariant TField::OldValue() const
{
    if (!d->dataSet || d->column < 0)
        return QVariant();
    const QVariant V = d->dataSet->OldColumnValue(d->column);
    const QMetaType Type = ValueType(d->dataType);
    if (IsNullValue(V))
        return Type.isValid() ? QVariant(Type) : QVariant();
    QVariant R = V;
    if (Type.isValid() && R.metaType() != Type)
        R.convert(Type);
    return R;
}

QVariant TField::NewValue() const { return GetAsVariant(); }

void TField::FocusControl()
{
    if (!d->dataSet || !d->dataSet->Active())
        return;
    TField* Self = this;
    d->dataSet->DataEvent(deFocusControl, qintptr(&Self));
}

int TField::GetDataSize() const { return 0; }

// ---- strings

TStringField::TStringField(QObject* Owner) : TField(Owner)
{
    SetDataType(ftString);
    SetSize(20);
}

int TStringField::GetDataSize() const { return Size() + 1; }

TWideStringField::TWideStringField(QObject* Owner) : TStringField(Owner) { SetDataType(ftWideString); }

TGuidField::TGuidField(QObject* Owner) : TStringField(Owner)
{
    SetDataType(ftGuid);
    SetSize(38);
}

void TGuidField::SetVarValue(const QVariant& Value)
{
    if (IsNullValue(Value) || (IsText(Value) && Value.toString().isEmpty())) {
        TField::SetVarValue(QVariant());
        return;
    }
    const QUuid Id = Value.metaType().id() == QMetaType::QUuid ? Value.toUuid() : QUuid::fromString(Value.toString().trimmed());
    if (Id.isNull() && Value.toString().trimmed() != QUuid().toString())
        ConvertError(Value.toString(), QStringLiteral("GUID"));
    TField::SetVarValue(Id.toString(QUuid::WithBraces).toUpper());
}

// ---- numbers

TNumericField::TNumericField(QObject* Owner) : TField(Owner) { SetAlignment(Qt::AlignRight); }

bool TNumericField::IsValidChar(QChar Ch) const
{
    // A number whose text the program reads itself (a look-up shown by name) takes any text.
    if (OnSetText)
        return true;
    if (Ch.isDigit() || Ch == QLatin1Char('+') || Ch == QLatin1Char('-'))
        return true;
    switch (DataType()) {
    case ftFloat: case ftCurrency: case ftBCD: case ftFMTBcd:
        return Ch == FormatSettings.DecimalSeparator || Ch == QLatin1Char('e') || Ch == QLatin1Char('E');
    default:
        return false;
    }
}

QString TNumericField::TextFormat(bool DisplayText) const
{
    // As the classic fields: editing uses DisplayFormat too unless an EditFormat is set.
    return DisplayText || EditFormat().isEmpty() ? DisplayFormat() : EditFormat();
}

TIntegerField::TIntegerField(QObject* Owner) : TNumericField(Owner), m_typeMin(INT_MIN), m_typeMax(INT_MAX)
{
    SetDataType(ftInteger);
}

void TIntegerField::CheckRange(qint64 Value) const
{
    qint64 Min = m_typeMin, Max = m_typeMax;
    if (m_minValue != 0 || m_maxValue != 0) {
        Min = std::max<qint64>(Min, m_minValue);
        Max = std::min<qint64>(Max, m_maxValue);
    }
    if (Value < Min || Value > Max)
        DatabaseError(QStringLiteral("%1 is not a valid value for field '%2'. The allowed range is %3 to %4")
                          .arg(Value).arg(DisplayName()).arg(Min).arg(Max));
}

qint64 TNumericField::IntegerOf(const QVariant& Value) const
{
    qint64 V = 0;
    if (IsText(Value)) {
        if (!ParseInteger(Value.toString(), V))
            ConvertError(Value.toString(), QStringLiteral("integer"));
    } else if (Value.metaType().id() == QMetaType::Double || Value.metaType().id() == QMetaType::Float) {
        V = qint64(Round(Value.toDouble()));
    } else {
        bool Ok = false;
        V = Value.toLongLong(&Ok);
        if (!Ok)
            ConvertError(Value.toString(), QStringLiteral("integer"));
    }
    return V;
}

void TIntegerField::SetVarValue(const QVariant& Value)
{
    if (IsNullValue(Value) || (IsText(Value) && Value.toString().isEmpty())) {
        TField::SetVarValue(QVariant());
        return;
    }
    const qint64 V = IntegerOf(Value);
    CheckRange(V);
    TField::SetVarValue(int(V));
}

void TIntegerField::GetText(QString& Text, bool DisplayText) const
{
    if (IsNull()) {
        Text.clear();
        return;
    }
    const QString Format = TextFormat(DisplayText);
    const int V = GetAsInteger();
    Text = Format.isEmpty() ? QString::number(V) : FormatFloat(Format, V);
}

TSmallintField::TSmallintField(QObject* Owner) : TIntegerField(Owner)
{
    SetDataType(ftSmallint);
    SetTypeRange(-32768, 32767);
}

TWordField::TWordField(QObject* Owner) : TIntegerField(Owner)
{
    SetDataType(ftWord);
    SetTypeRange(0, 65535);
}

TAutoIncField::TAutoIncField(QObject* Owner) : TIntegerField(Owner) { SetDataType(ftAutoInc); }

TLargeintField::TLargeintField(QObject* Owner) : TNumericField(Owner) { SetDataType(ftLargeint); }

void TLargeintField::SetVarValue(const QVariant& Value)
{
    if (IsNullValue(Value) || (IsText(Value) && Value.toString().isEmpty())) {
        TField::SetVarValue(QVariant());
        return;
    }
    const qint64 V = IntegerOf(Value);
    TField::SetVarValue(QVariant::fromValue<qlonglong>(V));
}

void TLargeintField::GetText(QString& Text, bool DisplayText) const
{
    if (IsNull()) {
        Text.clear();
        return;
    }
    const QString Format = TextFormat(DisplayText);
    const qint64 V = GetAsLargeInt();
    Text = Format.isEmpty() ? QString::number(V) : FormatFloat(Format, static_cast<long double>(V));
}

TFloatField::TFloatField(QObject* Owner) : TNumericField(Owner) { SetDataType(ftFloat); }

void TFloatField::SetVarValue(const QVariant& Value)
{
    if (IsNullValue(Value) || (IsText(Value) && Value.toString().isEmpty())) {
        TField::SetVarValue(QVariant());
        return;
    }
    double V = 0;
    if (IsText(Value)) {
        if (!ParseFloat(Value.toString(), V))
            ConvertError(Value.toString(), QStringLiteral("floating point"));
    } else {
        bool Ok = false;
        V = Value.toDouble(&Ok);
        if (!Ok)
            ConvertError(Value.toString(), QStringLiteral("floating point"));
    }
    if (!std::isfinite(V))
        ConvertError(Value.toString(), QStringLiteral("floating point"));
    TField::SetVarValue(V);
}

void TFloatField::GetText(QString& Text, bool DisplayText) const
{
    if (IsNull()) {
        Text.clear();
        return;
    }
    const double V = GetAsFloat();
    QString Format = TextFormat(DisplayText);
    if (Format.isEmpty() && m_currency)
        Format = DisplayText ? QStringLiteral("#,##0.00") : QStringLiteral("0.00");
    if (!Format.isEmpty()) {
        Text = FormatFloat(Format, V);
    } else if (m_precision >= 15 || m_precision <= 0) {
        Text = FloatToStr(V);
    } else {
        Text = QString::number(V, 'g', m_precision);
        Text.replace(QLatin1Char('.'), FormatSettings.DecimalSeparator);
    }
}

TCurrencyField::TCurrencyField(QObject* Owner) : TFloatField(Owner)
{
    SetDataType(ftCurrency);
    SetCurrency(true);
}

TBCDField::TBCDField(QObject* Owner) : TFloatField(Owner) { SetDataType(ftBCD); }

void TBCDField::SetVarValue(const QVariant& Value)
{
    if (IsNullValue(Value) || (IsText(Value) && Value.toString().isEmpty())) {
        TFloatField::SetVarValue(Value);
        return;
    }
    double V = 0;
    bool Ok = false;
    if (IsText(Value))
        Ok = ParseFloat(Value.toString(), V);
    else
        V = Value.toDouble(&Ok);
    if (!Ok)
        ConvertError(Value.toString(), QStringLiteral("BCD"));
    TFloatField::SetVarValue(Kesh::Currency(V).ToDouble());
}

TFMTBCDField::TFMTBCDField(QObject* Owner) : TFloatField(Owner) { SetDataType(ftFMTBcd); }

// ---- booleans

TBooleanField::TBooleanField(QObject* Owner) : TField(Owner) { SetDataType(ftBoolean); }

QString TBooleanField::TrueText() const
{
    const QString T = m_displayValues.section(QLatin1Char(';'), 0, 0);
    return m_displayValues.isEmpty() ? QStringLiteral("True") : T;
}

QString TBooleanField::FalseText() const
{
    return m_displayValues.isEmpty() ? QStringLiteral("False") : m_displayValues.section(QLatin1Char(';'), 1, 1);
}

QString TBooleanField::GetAsString() const
{
    if (IsNull())
        return QString();
    return GetAsBoolean() ? TrueText() : FalseText();
}

void TBooleanField::SetVarValue(const QVariant& Value)
{
    if (IsNullValue(Value)) {
        TField::SetVarValue(QVariant());
        return;
    }
    if (!IsText(Value)) {
        TField::SetVarValue(Value.toBool());
        return;
    }
    const QString S = Value.toString().trimmed();
    if (S.isEmpty()) {
        TField::SetVarValue(QVariant());
        return;
    }
    auto Matches = [&S](const QString& Candidate) {
        return !Candidate.isEmpty() && Candidate.startsWith(S, Qt::CaseInsensitive);
    };
    if (Matches(TrueText()) || Matches(QStringLiteral("True")))
        TField::SetVarValue(true);
    else if (Matches(FalseText()) || Matches(QStringLiteral("False")))
        TField::SetVarValue(false);
    else
        ConvertError(S, QStringLiteral("boolean"));
}

void TBooleanField::GetText(QString& Text, bool) const { Text = GetAsString(); }

// ---- dates and times

TDateTimeField::TDateTimeField(QObject* Owner) : TField(Owner) { SetDataType(ftDateTime); }

QString TDateTimeField::DefaultText(TDateTime Value) const
{
    const bool HasTime = std::fabs(Value - std::trunc(Value)) * MSecsPerDay >= 0.5;
    return FormatDateTime(HasTime ? QStringLiteral("yyyy-mm-dd hh\":\"nn\":\"ss") : QStringLiteral("yyyy-mm-dd"), Value);
}

QString TDateTimeField::GetAsString() const { return IsNull() ? QString() : DefaultText(GetAsDateTime()); }

void TDateTimeField::SetVarValue(const QVariant& Value)
{
    if (IsNullValue(Value) || (IsText(Value) && Value.toString().trimmed().isEmpty())) {
        TField::SetVarValue(QVariant());
        return;
    }
    TDateTime V = 0;
    switch (Value.metaType().id()) {
    case QMetaType::QDateTime: V = QDateTimeToDateTime(Value.toDateTime()); break;
    case QMetaType::QDate: V = QDateToDateTime(Value.toDate()); break;
    case QMetaType::QTime: V = TimeToDateTime(Value.toTime()); break;
    case QMetaType::QString:
        if (!ParseDateTimeText(Value.toString(), V))
            ConvertError(Value.toString(), QStringLiteral("date and time"));
        break;
    default: {
        bool Ok = false;
        V = Value.toDouble(&Ok);
        if (!Ok)
            ConvertError(Value.toString(), QStringLiteral("date and time"));
    }
    }
    switch (DataType()) {
    case ftDate: TField::SetVarValue(DateTimeToQDate(V)); break;
    case ftTime: TField::SetVarValue(DateTimeToTime(V)); break;
    default: TField::SetVarValue(DateTimeToQDateTime(V)); break;
    }
}

void TDateTimeField::GetText(QString& Text, bool DisplayText) const
{
    if (IsNull()) {
        Text.clear();
        return;
    }
    const TDateTime V = GetAsDateTime();
    Text = DisplayText && !DisplayFormat().isEmpty() ? FormatDateTime(DisplayFormat(), V) : DefaultText(V);
}

TDateField::TDateField(QObject* Owner) : TDateTimeField(Owner) { SetDataType(ftDate); }

QString TDateField::DefaultText(TDateTime Value) const { return FormatDateTime(QStringLiteral("yyyy-mm-dd"), Value); }

TTimeField::TTimeField(QObject* Owner) : TDateTimeField(Owner) { SetDataType(ftTime); }

QString TTimeField::DefaultText(TDateTime Value) const { return FormatDateTime(QStringLiteral("hh\":\"nn\":\"ss"), Value); }

TSQLTimeStampField::TSQLTimeStampField(QObject* Owner) : TDateTimeField(Owner) { SetDataType(ftTimeStamp); }

// ---- bytes

TBytesField::TBytesField(QObject* Owner) : TField(Owner)
{
    SetDataType(ftBytes);
    SetSize(16);
}

QString TBytesField::GetAsString() const { return QString::fromLatin1(GetAsBytes().toHex().toUpper()); }

void TBytesField::SetVarValue(const QVariant& Value)
{
    if (IsText(Value)) {
        const QString S = Value.toString().trimmed();
        const QByteArray Bytes = QByteArray::fromHex(S.toLatin1());
        if (S.size() % 2 != 0 || Bytes.toHex().compare(S.toLatin1(), Qt::CaseInsensitive) != 0)
            ConvertError(S, QStringLiteral("hexadecimal"));
        TField::SetVarValue(S.isEmpty() ? QVariant() : QVariant(Bytes));
        return;
    }
    TField::SetVarValue(Value);
}

TVarBytesField::TVarBytesField(QObject* Owner) : TBytesField(Owner) { SetDataType(ftVarBytes); }

TBlobField::TBlobField(QObject* Owner) : TField(Owner) { SetDataType(ftBlob); }

QString TBlobField::GetAsString() const { return QString::fromUtf8(GetAsBytes()); }

void TBlobField::SetVarValue(const QVariant& Value)
{
    TField::SetVarValue(IsText(Value) ? QVariant(Value.toString().toUtf8()) : Value);
}

void TBlobField::GetText(QString& Text, bool DisplayText) const
{
    if (!DisplayText) {
        Text = GetAsString();
        return;
    }
    QString Name = QString::fromLatin1(QMetaEnum::fromType<TFieldType>().valueToKey(DataType())).mid(2).toUpper();
    Text = QLatin1Char('(') + Name + QLatin1Char(')');
    if (IsNull())
        Text = Text.toLower();
}

TGraphicField::TGraphicField(QObject* Owner) : TBlobField(Owner) { SetDataType(ftGraphic); }

TMemoField::TMemoField(QObject* Owner) : TBlobField(Owner) { SetDataType(ftMemo); }

QString TMemoField::GetAsString() const
{
    const QVariant V = RawValue();
    if (IsNullValue(V))
        return QString();
    return V.metaType().id() == QMetaType::QByteArray ? QString::fromUtf8(V.toByteArray()) : V.toString();
}

void TMemoField::SetVarValue(const QVariant& Value)
{
    if (IsNullValue(Value)) {
        TField::SetVarValue(QVariant());
        return;
    }
    TField::SetVarValue(Value.metaType().id() == QMetaType::QByteArray ? QString::fromUtf8(Value.toByteArray())
                                                                        : Value.toString());
}

TWideMemoField::TWideMemoField(QObject* Owner) : TMemoField(Owner) { SetDataType(ftWideMemo); }

// ---- factory

TField* CreateFieldOfType(TFieldType Type, QObject* Owner)
{
    switch (Type) {
    case ftString: case ftFixedChar: return new TStringField(Owner);
    case ftWideString: case ftFixedWideChar: return new TWideStringField(Owner);
    case ftSmallint: return new TSmallintField(Owner);
    case ftInteger: return new TIntegerField(Owner);
    case ftWord: return new TWordField(Owner);
    case ftBoolean: return new TBooleanField(Owner);
    case ftFloat: return new TFloatField(Owner);
    case ftCurrency: return new TCurrencyField(Owner);
    case ftBCD: return new TBCDField(Owner);
    case ftDate: return new TDateField(Owner);
    case ftTime: return new TTimeField(Owner);
    case ftDateTime: return new TDateTimeField(Owner);
    case ftBytes: return new TBytesField(Owner);
    case ftVarBytes: return new TVarBytesField(Owner);
    case ftAutoInc: return new TAutoIncField(Owner);
    case ftBlob: case ftTypedBinary: case ftOraBlob: return new TBlobField(Owner);
    case ftMemo: case ftFmtMemo: case ftOraClob: return new TMemoField(Owner);
    case ftGraphic: return new TGraphicField(Owner);
    case ftWideMemo: return new TWideMemoField(Owner);
    case ftLargeint: return new TLargeintField(Owner);
    case ftGuid: return new TGuidField(Owner);
    case ftTimeStamp: case ftOraTimeStamp: return new TSQLTimeStampField(Owner);
    case ftFMTBcd: return new TFMTBCDField(Owner);
    default: return nullptr;
    }
}

} // namespace Kesh
