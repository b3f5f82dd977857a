#include "dataset_totals.h"
#include "ado_connection.h"
#include "ado_dataset.h"
#include "dataset.h"
#include "fields.h"
#include "../exceptions.h"
#include "../rtl/numbers.h"
#include <QMutex>
#include <QPointer>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QThreadPool>
#include <QtNumeric>
#include <atomic>
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
        const void* P = V.constData();  // the common types read in place: sums run over millions
        switch (V.metaType().id()) {
        case QMetaType::Int:
            AddInteger(*static_cast<const int*>(P), Negate);
            return;
        case QMetaType::LongLong:
            AddInteger(*static_cast<const qlonglong*>(P), Negate);
            return;
        case QMetaType::Double:
            AddDouble(*static_cast<const double*>(P), Negate);
            return;
        case QMetaType::Short: case QMetaType::SChar: case QMetaType::Char: case QMetaType::Long:
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
        case QMetaType::Float:
            AddDouble(V.toDouble(), Negate);
            return;
        case QMetaType::QString: {
            const QString& Text = *static_cast<const QString*>(V.constData());
            const QString S = Text.trimmed();
            if (AddDecimal(S, Negate))  // plain decimals, which a field reads the same
                return;
            double D;  // text in the user's format, then a server's, as a field reads it
            bool Ok = TryStrToFloat(Text, D);
            if (!Ok)
                D = S.toDouble(&Ok);
            if (Ok)
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
        static constexpr qint64 Powers[] = {1, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};
        R = V;
        if (By == 0 || V == 0)
            return true;
        for (; By > 0; By -= 9)
            if (!Mul(R, TWide(Powers[std::min(By, 9)]), R))
                return false;
        return true;
    }

    // Adds Mantissa / 10^Frac (Frac in 0..MaxScale) exactly; false (nothing added) on overflow.
    bool AddScaled(TWide Mantissa, int Frac, bool Negate)
    {
        TWide Units = m_units;
        int UnitsScale = m_scale;
        if (Frac > UnitsScale) {
            if (!Scale(Units, Frac - UnitsScale, Units))
                return false;
            UnitsScale = Frac;
        } else if (!Scale(Mantissa, UnitsScale - Frac, Mantissa)) {
            return false;
        }
        if (Negate && !Mul(Mantissa, -1, Mantissa))
            return false;
        if (!Plus(Units, Mantissa, Units))
            return false;
        m_units = Units;
        m_scale = UnitsScale;
        return true;
    }
    void AddInteger(qint64 V, bool Negate)
    {
        if (!AddScaled(TWide(V), 0, Negate))
            AddRest(static_cast<long double>(V), Negate);
    }
    // A double is taken as its shortest decimal text. Most have few decimals (amounts,
    // quantities): those are found with a few multiplications, the rest through to_chars.
    void AddDouble(double V, bool Negate)
    {
        if (!std::isfinite(V))
            return AddRest(V, Negate);
        static constexpr double Powers[] = {1, 10, 100, 1000, 10000, 100000, 1000000};
        for (int k = 0; k < 7; ++k) {
            const double Scaled = V * Powers[k];
            if (std::fabs(Scaled) >= 9007199254740992.0)  // 2^53: no longer exact
                break;
            const double Whole = std::nearbyint(Scaled);
            if (Whole / Powers[k] == V) {  // Whole / 10^k reads back as V: its shortest text
                if (AddScaled(TWide(qint64(Whole)), k, Negate))
                    return;
                break;
            }
        }
        char Text[64];
        const auto R = std::to_chars(Text, Text + sizeof Text, V);
        if (R.ec != std::errc() || !AddDecimal(QLatin1String(Text, int(R.ptr - Text)), Negate))
            AddRest(V, Negate);
    }
    void AddRest(long double V, bool Negate) { m_rest += Negate ? -V : V; }

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
        if (Mantissa == 0)
            return true;
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
        return Frac <= MaxScale && AddScaled(Mantissa, Frac, Minus != Negate);
    }

    TWide m_units = 0;
    int m_scale = 0;
    long double m_rest = 0;
};

// Whether a second connection with the same settings sees the same rows: not for an
// SQLite database in memory (or a temporary one, which an empty name gives).
bool SecondConnectionSeesData(const QSqlDatabase& Db)
{
    if (Db.driverName() != QLatin1String("QSQLITE"))
        return true;
    const QString Name = Db.databaseName().trimmed();
    return !(Name.isEmpty() || Name == QLatin1String(":memory:") || Name.contains(QLatin1String("mode=memory"))
             || Name.startsWith(QLatin1String("file::memory:")));
}

// The statement of a sum and what it needs to run anywhere.
struct TAggregate
{
    QString Sql;
    QVector<int> Selected;                    // the dataset column of each SUM, in order
    QList<QPair<QString, QVariant>> Params;   // bound by name; empty: run as it stands
    bool Prepared = false;
};

// Runs Aggregate on Db; false when the statement fails (the sums are then left alone).
bool RunAggregate(const QSqlDatabase& Db, const TAggregate& Aggregate, QVariantList& Sums)
{
    QSqlQuery Q(Db);
    Q.setForwardOnly(true);
    Q.setNumericalPrecisionPolicy(QSql::HighPrecision);  // decimal sums as exact text
    bool Ok;
    if (Aggregate.Prepared) {
        Ok = Q.prepare(Aggregate.Sql);
        for (int i = 0; Ok && i < Aggregate.Params.size(); ++i)
            Q.bindValue(Aggregate.Params[i].first, Aggregate.Params[i].second);
        Ok = Ok && Q.exec();
    } else {
        Ok = Q.exec(Aggregate.Sql);
    }
    if (!Ok || !Q.next())
        return false;
    Sums.clear();
    for (int k = 0; k < Aggregate.Selected.size(); ++k)
        Sums << Q.value(k);
    return true;
}

// A sum running in a worker thread. The owner leaves (Owner = nullptr) when it no longer
// wants the result; the worker posts the result only to an owner still there.
struct TJob
{
    QMutex Lock;
    QObject* Owner = nullptr;
    std::function<void(bool Ok, const QVariantList& Sums)> Done;  // runs in the owner's thread
    const void* Rows = nullptr;  // the dataset's rows it sums
    QVector<int> Columns;
    quint64 WriteGeneration = 0; // the writes it sees
};

std::atomic<quint64> JobCounter{0};

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
    quint64 writeGeneration = 0;   // rows written since the totals started following
    std::shared_ptr<TJob> job;     // the sum running in the background, if any

    void Link();
    void Unlink();
    void ResolveColumns();
    bool HasColumns() const { return std::any_of(columns.cbegin(), columns.cend(), [](int C) { return C >= 0; }); }
    void SumInMemory(std::vector<TExactSum>& Sums) const;
    bool SumOnServer(TADODataSet* DataSet, std::vector<TExactSum>& Sums) const;
    bool MakeAggregate(TADODataSet* DataSet, TAggregate& Aggregate) const;
    void TakeSums(const TAggregate& Aggregate, const QVariantList& Values, std::vector<TExactSum>& Sums) const;
    bool StartJob(TADODataSet* DataSet);
    void LaunchJob(const std::shared_ptr<TJob>& Job);
    void JobDone(const std::shared_ptr<TJob>& Job, bool Ok, const QVariantList& Values);
    void DropJob();
    bool JobCurrent() const;
    void Compute(bool InBackground);
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
    sums.resize(size_t(names.size()));  // last known sums, one per slot
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

// SELECT SUM(…), … FROM (the dataset's own SELECT): one sum per distinct column, with the
// dataset's parameters; false for a command that is no SELECT.
bool TDataSetTotalsPrivate::MakeAggregate(TADODataSet* DataSet, TAggregate& Aggregate) const
{
    QString Select;
    try {
        Select = DataSet->SelectText().trimmed();
    } catch (const Exception&) {
        return false;
    }
    while (Select.endsWith(QLatin1Char(';')))
        Select = Select.chopped(1).trimmed();
    const QSqlDatabase Db = DataSet->Connection()->Database();
    QStringList Sums;
    for (int C : columns) {
        if (C < 0 || Aggregate.Selected.contains(C))
            continue;
        Aggregate.Selected << C;
        Sums << QStringLiteral("SUM(kesh_rows.%1)")
                    .arg(Db.driver()->escapeIdentifier(DataSet->FieldDefs()[C].Name, QSqlDriver::FieldName));
    }
    Aggregate.Sql = QStringLiteral("SELECT %1 FROM (%2) kesh_rows").arg(Sums.join(QStringLiteral(", ")), Select);
    // The parameters as the dataset binds them when it opens.
    const TParameters* Params = DataSet->Parameters();
    Aggregate.Prepared = DataSet->ParamCheck() && Params->Count() > 0;
    for (int i = 0; Aggregate.Prepared && i < Params->Count(); ++i) {
        const TParameter* P = Params->Items(i);
        const QMetaType Type = TField::ValueType(P->DataType);
        Aggregate.Params << qMakePair(QLatin1Char(':') + P->Name,
                                      P->Value.isValid() ? P->Value
                                                         : QVariant(Type.isValid() ? Type : QMetaType::fromType<QString>()));
    }
    return true;
}

void TDataSetTotalsPrivate::TakeSums(const TAggregate& Aggregate, const QVariantList& Values,
                                     std::vector<TExactSum>& Sums) const
{
    for (int k = 0; k < Aggregate.Selected.size() && k < Values.size(); ++k) {
        TExactSum Column;
        Column.Add(Values[k], false);
        for (int i = 0; i < columns.size(); ++i)
            if (columns[i] == Aggregate.Selected[k])
                Sums[size_t(i)] = Column;
    }
}

// The sum at once, on the dataset's own connection (which sees its own transaction).
bool TDataSetTotalsPrivate::SumOnServer(TADODataSet* DataSet, std::vector<TExactSum>& Sums) const
{
    TAggregate Aggregate;
    QVariantList Values;
    if (!MakeAggregate(DataSet, Aggregate) || !RunAggregate(DataSet->Connection()->Database(), Aggregate, Values))
        return false;
    TakeSums(Aggregate, Values, Sums);
    return true;
}

static bool CanSumInBackground(TADODataSet* DataSet)
{
    TADOConnection* Connection = DataSet->Connection();
    // Another connection sees neither an open transaction nor a private database.
    return Connection && Connection->Connected() && !Connection->InTransaction()
           && SecondConnectionSeesData(Connection->Database());
}

// The sum in a worker thread on a connection of its own, cloned from the dataset's (Qt's
// connections belong to one thread). It starts from the event loop, so that whatever opened
// the dataset (a grid showing its first rows) is not kept waiting even for a thread to start.
bool TDataSetTotalsPrivate::StartJob(TADODataSet* DataSet)
{
    if (!CanSumInBackground(DataSet))
        return false;
    auto Job = std::make_shared<TJob>();
    Job->Owner = q;
    Job->Rows = DataSet->RowsIdentity();
    Job->Columns = columns;
    std::weak_ptr<TJob> Weak = Job;
    Job->Done = [this, Weak](bool Ok, const QVariantList& Values) {
        if (const std::shared_ptr<TJob> Current = Weak.lock())
            JobDone(Current, Ok, Values);
    };
    job = Job;
    QMetaObject::invokeMethod(q, [this, Weak] {
        if (const std::shared_ptr<TJob> Current = Weak.lock(); Current && Current == job)
            LaunchJob(Current);
    }, Qt::QueuedConnection);
    return true;
}

// The result counts if no row was written while it ran: a write on the dataset's
// connection may or may not have been seen by it.
void TDataSetTotalsPrivate::LaunchJob(const std::shared_ptr<TJob>& Job)
{
    auto* Ado = qobject_cast<TADODataSet*>(dataSet.data());
    auto Aggregate = std::make_shared<TAggregate>();
    if (!JobCurrent() || !CanSumInBackground(Ado) || !MakeAggregate(Ado, *Aggregate))
        return Compute(false);
    Job->WriteGeneration = writeGeneration;
    const QString Source = Ado->Connection()->ConnectionName();
    QThreadPool::globalInstance()->start([Job, Aggregate, Source] {
        const QString Name = QStringLiteral("kesh-totals-%1").arg(++JobCounter);
        bool Ok = false;
        QVariantList Values;
        {
            QSqlDatabase Db = QSqlDatabase::cloneDatabase(Source, Name);
            Ok = Db.open() && RunAggregate(Db, *Aggregate, Values);
        }
        QSqlDatabase::removeDatabase(Name);
        QMutexLocker Locker(&Job->Lock);
        if (Job->Owner)  // posted to the owner's thread; dropped with the owner
            QMetaObject::invokeMethod(Job->Owner, [Job, Ok, Values] { Job->Done(Ok, Values); }, Qt::QueuedConnection);
    });
}

bool TDataSetTotalsPrivate::JobCurrent() const
{
    return job && dataSet && dataSet->Active() && job->Rows == dataSet->RowsIdentity() && job->Columns == columns;
}

void TDataSetTotalsPrivate::DropJob()
{
    if (!job)
        return;
    QMutexLocker Locker(&job->Lock);
    job->Owner = nullptr;
    Locker.unlock();
    job.reset();
}

void TDataSetTotalsPrivate::JobDone(const std::shared_ptr<TJob>& Job, bool Ok, const QVariantList& Values)
{
    if (Job != job)
        return;
    job.reset();
    auto* Ado = qobject_cast<TADODataSet*>(dataSet.data());
    if (!Ado || !Ado->Active() || Job->Rows != Ado->RowsIdentity() || Job->Columns != columns)
        return q->Recalculate();
    if (!Ok)
        return Compute(false);  // on the dataset's connection, or from its rows
    if (Job->WriteGeneration != writeGeneration)
        return Compute(true);   // a write it may or may not have seen: again
    std::vector<TExactSum> Sums(size_t(names.size()));
    TAggregate Aggregate;
    MakeAggregate(Ado, Aggregate);
    TakeSums(Aggregate, Values, Sums);
    Publish(std::move(Sums), true);
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
    ++writeGeneration;
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
    d->DropJob();
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
    // The same fields in another order (a grid's columns moved): the known sums go along.
    QStringList Was = d->names, Now = Names;
    Was.removeAll(QString());
    Now.removeAll(QString());
    std::sort(Was.begin(), Was.end());
    std::sort(Now.begin(), Now.end());
    if (d->ready && !d->job && Was == Now && Names.size() == d->names.size()) {
        std::vector<TExactSum> Sums(size_t(Names.size()));
        std::vector<bool> Taken(size_t(d->names.size()));
        for (int i = 0; i < Names.size(); ++i)
            for (int j = 0; !Names[i].isEmpty() && j < d->names.size(); ++j)
                if (!Taken[size_t(j)] && d->names[j] == Names[i]) {
                    Taken[size_t(j)] = true;
                    Sums[size_t(i)] = d->sums[size_t(j)];
                    break;
                }
        d->names = Names;
        d->ResolveColumns();
        d->sums = std::move(Sums);
        Q_EMIT Changed();
        return;
    }
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
    if (d->JobCurrent())
        return;  // a sum of these rows from scratch is already running
    d->Compute(true);
}

void TDataSetTotalsPrivate::Compute(bool InBackground)
{
    DropJob();
    std::vector<TExactSum> Sums(size_t(names.size()));
    if (!dataSet || !dataSet->Active() || !HasColumns())
        return Publish(std::move(Sums), true);
    if (!dataSet->FetchedAll()) {
        auto* Ado = qobject_cast<TADODataSet*>(dataSet.data());
        if (Ado && Ado->Connection() && Ado->Connection()->Connected()) {
            if (InBackground && StartJob(Ado)) {
                ready = false;  // the last known sums stay until the new ones come
                return;
            }
            if (SumOnServer(Ado, Sums))
                return Publish(std::move(Sums), true);
        }
        dataSet->FetchAll();  // no server to ask: read the rows, without the walk's events
        Sums.assign(Sums.size(), TExactSum());
    }
    SumInMemory(Sums);
    Publish(std::move(Sums), true);
}

} // namespace Kesh
