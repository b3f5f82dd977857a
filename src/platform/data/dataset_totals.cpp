#include "dataset_totals.h"
#include "ado_connection.h"
#include "ado_dataset.h"
#include "dataset.h"
#include "fields.h"
#include "../exceptions.h"
#include "../rtl/numbers.h"
#include <QPointer>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QtNumeric>
#include <charconv>
#include <cmath>
#include <vector>

namespace Kesh {

namespace {

// A sum kept exactly as a decimal, Units / 10^Scale, for values with a short decimal form
// (integers, currency, numeric text from a server, doubles whose shortest text is short);
// anything else goes to a long double. Adding a value and taking it off again is exact, so
// running totals do not drift.
class TExactSum
{
public:
    void Add(const QVariant& V, bool Negate)
    {
        if (!V.isValid() || V.isNull())
            return;
        switch (V.metaType().id()) {
        case QMetaType::Int: case QMetaType::LongLong: case QMetaType::Short: case QMetaType::SChar:
        case QMetaType::Char: case QMetaType::Long:
            AddInteger(V.toLongLong(), Negate);
            return;
        case QMetaType::UInt: case QMetaType::UShort: case QMetaType::UChar: case QMetaType::ULong:
        case QMetaType::ULongLong: {
            const qulonglong U = V.toULongLong();
            if (U <= qulonglong(std::numeric_limits<qint64>::max()))
                AddInteger(qint64(U), Negate);
            else
                AddRest(static_cast<long double>(U), Negate);
            return;
        }
        case QMetaType::Bool:
            AddInteger(V.toBool() ? 1 : 0, Negate);
            return;
        case QMetaType::Double: case QMetaType::Float:
            AddDouble(V.toDouble(), Negate);
            return;
        case QMetaType::QString: {
            const QString S = V.toString().trimmed();
            if (AddDecimal(S, Negate))
                return;
            double D;  // text in the user's format (separators), as a field reads it
            if (TryStrToFloat(S, D))
                AddDouble(D, Negate);
            return;
        }
        default: {
            bool Ok = false;
            const double D = V.toDouble(&Ok);
            if (Ok)
                AddDouble(D, Negate);
        }
        }
    }

    long double Value() const
    {
        return static_cast<long double>(m_units) / Pow10(m_scale) + m_rest;
    }

    bool operator==(const TExactSum& Other) const
    {
        return Value() == Other.Value();
    }

private:
#ifdef __SIZEOF_INT128__
    using TWide = __int128;
    static constexpr int MaxDigits = 36;
    static constexpr int MaxScale = 18;
    static bool Mul(TWide A, TWide B, TWide& R) { return !__builtin_mul_overflow(A, B, &R); }
    static bool Plus(TWide A, TWide B, TWide& R) { return !__builtin_add_overflow(A, B, &R); }
#else
    using TWide = qint64;
    static constexpr int MaxDigits = 18;
    static constexpr int MaxScale = 6;
    static bool Mul(TWide A, TWide B, TWide& R) { return !qMulOverflow(A, B, &R); }
    static bool Plus(TWide A, TWide B, TWide& R) { return !qAddOverflow(A, B, &R); }
#endif

    static long double Pow10(int N)
    {
        long double R = 1;
        for (int i = 0; i < N; ++i)
            R *= 10;
        return R;
    }
    static bool Scale(TWide V, int By, TWide& R)
    {
        R = V;
        for (int i = 0; i < By; ++i)
            if (!Mul(R, 10, R))
                return false;
        return true;
    }

    void AddInteger(qint64 V, bool Negate)
    {
        TWide Scaled;
        if (Scale(TWide(V), m_scale, Scaled) && Accumulate(Negate ? -Scaled : Scaled))
            return;
        AddRest(static_cast<long double>(V), Negate);
    }
    void AddDouble(double V, bool Negate)
    {
        if (!std::isfinite(V))
            return AddRest(V, Negate);
        char Text[64];
        const auto R = std::to_chars(Text, Text + sizeof Text, V);  // the shortest exact text
        if (R.ec != std::errc() || !AddDecimal(QLatin1String(Text, int(R.ptr - Text)), Negate))
            AddRest(V, Negate);
    }
    void AddRest(long double V, bool Negate) { m_rest += Negate ? -V : V; }
    bool Accumulate(TWide V) { return Plus(m_units, V, m_units); }

    // [sign] digits [. digits] [e [sign] digits]; false (nothing added) for anything else or
    // for a value too long to keep exactly.
    template <typename TText>
    bool AddDecimal(const TText& S, bool Negate)
    {
        const int N = int(S.size());
        int i = 0;
        bool Minus = false;
        if (i < N && (S[i] == QLatin1Char('-') || S[i] == QLatin1Char('+')))
            Minus = S[i++] == QLatin1Char('-');
        TWide Mantissa = 0;
        int Digits = 0, Fraction = 0, Exponent = 0;
        bool Any = false, Point = false;
        for (; i < N; ++i) {
            const QChar C = S[i];
            if (C == QLatin1Char('.') && !Point) {
                Point = true;
                continue;
            }
            if (C < QLatin1Char('0') || C > QLatin1Char('9'))
                break;
            Any = true;
            if (Mantissa != 0 || C != QLatin1Char('0'))
                if (++Digits > MaxDigits)
                    return false;
            Mantissa = Mantissa * 10 + (C.unicode() - '0');
            if (Point)
                ++Fraction;
        }
        if (!Any)
            return false;
        if (i < N && (S[i] == QLatin1Char('e') || S[i] == QLatin1Char('E'))) {
            ++i;
            bool ExpMinus = false;
            if (i < N && (S[i] == QLatin1Char('-') || S[i] == QLatin1Char('+')))
                ExpMinus = S[i++] == QLatin1Char('-');
            if (i >= N)
                return false;
            for (; i < N && S[i] >= QLatin1Char('0') && S[i] <= QLatin1Char('9'); ++i)
                if ((Exponent = Exponent * 10 + (S[i].unicode() - '0')) > 1000)
                    return false;
            if (ExpMinus)
                Exponent = -Exponent;
        }
        if (i != N)
            return false;
        int Frac = Fraction - Exponent;
        if (Frac < 0) {
            if (!Scale(Mantissa, -Frac, Mantissa))
                return false;
            Frac = 0;
        }
        while (Frac > 0 && Mantissa % 10 == 0) {  // 2.50 needs one decimal, not two
            Mantissa /= 10;
            --Frac;
        }
        if (Frac > MaxScale)
            return false;
        TWide Units = m_units;
        int UnitsScale = m_scale;
        if (Frac > UnitsScale) {
            if (!Scale(Units, Frac - UnitsScale, Units))
                return false;
            UnitsScale = Frac;
        } else if (!Scale(Mantissa, UnitsScale - Frac, Mantissa)) {
            return false;
        }
        if (!Plus(Units, (Minus != Negate) ? -Mantissa : Mantissa, Units))
            return false;
        m_units = Units;
        m_scale = UnitsScale;
        return true;
    }

    TWide m_units = 0;
    int m_scale = 0;
    long double m_rest = 0;
};

// A connection that only this thread may use, and that a second connection cannot reach.
bool IsPrivateMemoryDatabase(const QSqlDatabase& Db)
{
    if (Db.driverName() != QLatin1String("QSQLITE"))
        return false;
    const QString Name = Db.databaseName().trimmed();
    return Name.isEmpty() || Name == QLatin1String(":memory:") || Name.contains(QLatin1String("mode=memory"))
           || Name.startsWith(QLatin1String("file::memory:"));
}

} // namespace

class TDataSetTotalsPrivate
{
public:
    explicit TDataSetTotalsPrivate(TDataSetTotals* Q) : q(Q) {}

    TDataSetTotals* q;
    QPointer<TDataSet> dataSet;
    QList<QMetaObject::Connection> links;
    QStringList names;
    QVector<int> columns;          // per slot: the dataset column, or -1
    std::vector<TExactSum> sums;   // per slot
    bool ready = true;

    void Link();
    void Unlink();
    void ResolveColumns();
    bool HasColumns() const { return std::any_of(columns.cbegin(), columns.cend(), [](int C) { return C >= 0; }); }
    void SumInMemory(std::vector<TExactSum>& Sums) const;
    bool SumOnServer(TADODataSet* DataSet, const QSqlDatabase& Db, std::vector<TExactSum>& Sums) const;
    QString AggregateSql(TADODataSet* DataSet, const QSqlDatabase& Db, QVector<int>& Selected) const;
    void Publish(std::vector<TExactSum> Sums, bool Ready);
    void RowWritten(const TRecordValues& Old, const TRecordValues& New);
};

void TDataSetTotalsPrivate::Link()
{
    if (!dataSet)
        return;
    links << QObject::connect(dataSet, &TDataSet::RowWritten, q,
                              [this](const TRecordValues& Old, const TRecordValues& New) { RowWritten(Old, New); });
    links << QObject::connect(dataSet, &TDataSet::RowsReset, q, [this] { q->Recalculate(); });
    links << QObject::connect(dataSet, &QObject::destroyed, q, [this] {
        Unlink();
        q->Recalculate();
    });
}

void TDataSetTotalsPrivate::Unlink()
{
    for (const QMetaObject::Connection& C : std::as_const(links))
        QObject::disconnect(C);
    links.clear();
}

void TDataSetTotalsPrivate::ResolveColumns()
{
    columns = QVector<int>(names.size(), -1);
    if (!dataSet || !dataSet->Active())
        return;
    for (int i = 0; i < names.size(); ++i) {
        if (names[i].isEmpty())
            continue;
        const TField* F = dataSet->FindField(names[i]);
        if (F && F->FieldNo() > 0)
            columns[i] = F->FieldNo() - 1;
        else
            columns[i] = dataSet->FieldDefs().IndexOf(names[i]);
    }
}

void TDataSetTotalsPrivate::SumInMemory(std::vector<TExactSum>& Sums) const
{
    const int Rows = dataSet->StoredRowCount();
    for (int i = 0; i < columns.size(); ++i) {
        if (columns[i] < 0)
            continue;
        for (int R = 0; R < Rows; ++R)
            Sums[size_t(i)].Add(dataSet->StoredValue(R, columns[i]), false);
    }
}

// SELECT SUM(…), … FROM (the dataset's own SELECT): one sum per distinct column, listed in Selected.
QString TDataSetTotalsPrivate::AggregateSql(TADODataSet* DataSet, const QSqlDatabase& Db, QVector<int>& Selected) const
{
    QString Select = DataSet->SelectText().trimmed();
    while (Select.endsWith(QLatin1Char(';')))
        Select = Select.chopped(1).trimmed();
    QStringList Sums;
    for (int C : columns) {
        if (C < 0 || Selected.contains(C))
            continue;
        Selected << C;
        Sums << QStringLiteral("SUM(kesh_rows.%1)")
                    .arg(Db.driver()->escapeIdentifier(DataSet->FieldDefs()[C].Name, QSqlDriver::FieldName));
    }
    return QStringLiteral("SELECT %1 FROM (%2) kesh_rows").arg(Sums.join(QStringLiteral(", ")), Select);
}

bool TDataSetTotalsPrivate::SumOnServer(TADODataSet* DataSet, const QSqlDatabase& Db, std::vector<TExactSum>& Sums) const
{
    QVector<int> Selected;
    QString Sql;
    try {
        Sql = AggregateSql(DataSet, Db, Selected);
    } catch (const Exception&) {
        return false;  // a command that is no SELECT
    }
    QSqlQuery Q(Db);
    Q.setForwardOnly(true);
    Q.setNumericalPrecisionPolicy(QSql::HighPrecision);  // decimal sums as exact text
    TParameters* Params = DataSet->Parameters();
    bool Ok;
    if (DataSet->ParamCheck() && Params->Count() > 0) {
        Ok = Q.prepare(Sql);
        for (int i = 0; Ok && i < Params->Count(); ++i) {
            const TParameter* P = Params->Items(i);
            const QMetaType Type = TField::ValueType(P->DataType);
            Q.bindValue(QLatin1Char(':') + P->Name,
                        P->Value.isValid() ? P->Value : QVariant(Type.isValid() ? Type : QMetaType::fromType<QString>()));
        }
        Ok = Ok && Q.exec();
    } else {
        Ok = Q.exec(Sql);
    }
    if (!Ok || !Q.next())
        return false;
    for (int k = 0; k < Selected.size(); ++k) {
        TExactSum Column;
        Column.Add(Q.value(k), false);
        for (int i = 0; i < columns.size(); ++i)
            if (columns[i] == Selected[k])
                Sums[size_t(i)] = Column;
    }
    return true;
}

void TDataSetTotalsPrivate::Publish(std::vector<TExactSum> Sums, bool Ready)
{
    const bool Changed = Sums != sums || Ready != ready;
    sums = std::move(Sums);
    ready = Ready;
    if (Changed)
        emit q->Changed();
}

void TDataSetTotalsPrivate::RowWritten(const TRecordValues& Old, const TRecordValues& New)
{
    std::vector<TExactSum> Sums = sums;
    for (int i = 0; i < columns.size(); ++i) {
        const int C = columns[i];
        if (C < 0)
            continue;
        Sums[size_t(i)].Add(Old.value(C), true);
        Sums[size_t(i)].Add(New.value(C), false);
    }
    Publish(std::move(Sums), ready);
}

// ---- TDataSetTotals

TDataSetTotals::TDataSetTotals(QObject* Parent) : QObject(Parent), d(new TDataSetTotalsPrivate(this)) {}

TDataSetTotals::~TDataSetTotals()
{
    d->Unlink();
}

TDataSet* TDataSetTotals::DataSet() const { return d->dataSet; }

void TDataSetTotals::SetDataSet(TDataSet* Value)
{
    if (Value == d->dataSet)
        return;
    d->Unlink();
    d->dataSet = Value;
    d->Link();
    Recalculate();
}

QStringList TDataSetTotals::FieldNames() const { return d->names; }

void TDataSetTotals::SetFieldNames(const QStringList& Names)
{
    if (Names == d->names)
        return;
    d->names = Names;
    Recalculate();
}

long double TDataSetTotals::Value(int Index) const
{
    return Index >= 0 && size_t(Index) < d->sums.size() ? d->sums[size_t(Index)].Value() : 0;
}

bool TDataSetTotals::Ready() const { return d->ready; }

void TDataSetTotals::Recalculate()
{
    d->ResolveColumns();
    std::vector<TExactSum> Sums(size_t(d->names.size()));
    TDataSet* DataSet = d->dataSet;
    if (!DataSet || !DataSet->Active() || !d->HasColumns())
        return d->Publish(std::move(Sums), true);
    if (!DataSet->FetchedAll()) {
        auto* Ado = qobject_cast<TADODataSet*>(DataSet);
        if (Ado && Ado->Connection() && Ado->Connection()->Connected()
            && d->SumOnServer(Ado, Ado->Connection()->Database(), Sums))
            return d->Publish(std::move(Sums), true);
        DataSet->FetchAll();
        Sums.assign(Sums.size(), TExactSum());
    }
    d->SumInMemory(Sums);
    d->Publish(std::move(Sums), true);
}

} // namespace Kesh
