#include "provider.h"
#include "provider_paging_p.h"
#include "../data/ado_connection.h"
#include "../data/ado_dataset.h"
#include "../data/db_consts_p.h"
#include "../data/fields.h"
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlIndex>
#include <QSqlQuery>
#include <QSqlRecord>
#include <climits>

namespace Kesh {

using namespace DBConsts;

namespace {

QString SRecordChanged() { return QStringLiteral("Record not found or changed by another user"); }
QString SNoKey() { return QStringLiteral("Insufficient base table information for updating or refreshing."); }
QString SMissingDataSet() { return QStringLiteral("Missing DataSet property"); }

// Columns whose original values are compared in a WHERE: never binary or floating point.
bool Comparable(TFieldType T)
{
    switch (T) {
    case ftBlob: case ftMemo: case ftWideMemo: case ftGraphic: case ftFmtMemo: case ftTypedBinary:
    case ftOraBlob: case ftOraClob: case ftBytes: case ftVarBytes: case ftFloat:
        return false;
    default:
        return true;
    }
}

} // namespace

class TDataSetProviderPrivate
{
public:
    QPointer<TDataSet> dataSet;
    TUpdateMode updateMode = upWhereAll;
    bool exported = true;
    TProviderOptions options;

    // What writing needs, found once per command text of the dataset.
    struct TMeta
    {
        QString commandKey;
        QString table;
        QSqlRecord base;          // the base table's columns
        TFieldDefs fields;        // the dataset's columns
        QVector<int> baseIndex;   // per dataset column: its column in base, or -1
        QVector<int> keyColumns;  // dataset columns of the primary key
    };
    std::unique_ptr<TMeta> meta;
    // The prepared statements of one apply, by text: rows that change the same columns
    // reuse one. They are freed after the transaction ends, as PostgreSQL cannot free a
    // prepared statement inside a failed transaction.
    QHash<QString, std::shared_ptr<QSqlQuery>> statements;
    QSqlQuery& Statement(const QString& Sql);

    TDataSetProvider* q = nullptr;

    TDataSet* DataSet() const
    {
        if (!dataSet)
            DatabaseError(SMissingDataSet());
        return dataSet;
    }
    TADODataSet* Ado() const { return qobject_cast<TADODataSet*>(dataSet.data()); }
    TADOConnection* Connection() const
    {
        TADODataSet* A = Ado();
        if (!A || !A->Connection())
            DatabaseError(QStringLiteral("The provider's dataset has no database connection"));
        return A->Connection();
    }
    QSqlDatabase Db() const { return Connection()->Database(); }

    void AssignParams(const QList<TPacketParam>& Params) const;
    void OpenWrapped(TADODataSet* A, Detail::TPager& Pager);
    QString CommandKey() const { return Ado() ? Ado()->CommandText() + QChar(0) + Ado()->BaseTableName() : QString(); }
    void EnsureMeta();
    void BuildMeta();
    QStringList KeyNames() const;

    // Writing one row of a delta; Map gives the dataset column of each delta column.
    void WriteRow(TDeltaRecord& Row, const QVector<int>& Map, TUpdateMode Mode);
    QSqlRecord WhereRecord(const TDeltaRecord& Row, const QVector<int>& Map, TUpdateMode Mode, bool UseNew) const;
    bool ReadCurrent(const TFieldDefs& Fields, const TRecordValues& KeySource, const QVector<int>& Map, TRecordValues& Current);
    QVector<int> MapFields(const TFieldDefs& Fields) const;
    void Exec(const QString& Sql);
    void NoteRefreshed(TApplyResult& Result, int Index, const TDeltaRecord& Row, const TFieldDefs& Fields,
                       const QVector<int>& Map, const TRecordValues& Sent);
    bool WriteAll(TApplyResult& Result, QList<TDeltaRecord>& Delta, const TFieldDefs& Fields, const QVector<int>& Map,
                  const QList<TRecordValues>& Sent);
};

// Every row of Delta without savepoints; false at the first that fails.
bool TDataSetProviderPrivate::WriteAll(TApplyResult& Result, QList<TDeltaRecord>& Delta, const TFieldDefs& Fields,
                                       const QVector<int>& Map, const QList<TRecordValues>& Sent)
{
    try {
        for (int i = 0; i < Delta.size(); ++i) {
            WriteRow(Delta[i], Map, updateMode);
            NoteRefreshed(Result, i, Delta[i], Fields, Map, Sent.value(i));
        }
    } catch (const Exception&) {
        return false;
    }
    return true;
}

// An applied insert or modify as the client should now hold it, when the options ask.
void TDataSetProviderPrivate::NoteRefreshed(TApplyResult& Result, int Index, const TDeltaRecord& Row,
                                            const TFieldDefs& Fields, const QVector<int>& Map, const TRecordValues& Sent)
{
    if (Row.UpdateKind == ukDelete || !(options & (poAutoRefresh | poPropogateChanges)))
        return;
    TRecordValues Now;
    if ((options & poAutoRefresh) && ReadCurrent(Fields, Row.NewValues, Map, Now)) {
        Result.Refreshed.append({Index, Now});
        return;
    }
    if ((options & poPropogateChanges) && Row.NewValues != Sent)
        Result.Refreshed.append({Index, Row.NewValues});
}

void TDataSetProviderPrivate::AssignParams(const QList<TPacketParam>& Params) const
{
    if (Params.isEmpty())
        return;
    TADODataSet* A = Ado();
    if (!A)
        throw EProviderRequestError(QStringLiteral("The provider's dataset takes no parameters"));
    for (const TPacketParam& P : Params) {
        TParameter* Target = A->Parameters()->FindParam(P.Name);
        if (!Target)
            throw EProviderRequestError(QStringLiteral("Parameter '%1' not found").arg(P.Name));
        Target->DataType = P.DataType;
        Target->Value = P.Value;
    }
}

void TDataSetProviderPrivate::OpenWrapped(TADODataSet* A, Detail::TPager& Pager)
{
    A->SetSelectWrap([&Pager](const QString& Select, QVariantMap& Binds, bool& UseCursor) {
        return Pager.Wrap(Select, Binds, UseCursor);
    });
    try {
        A->Open();
    } catch (...) {
        A->SetSelectWrap(nullptr);
        throw;
    }
    A->SetSelectWrap(nullptr);
}

void TDataSetProviderPrivate::EnsureMeta()
{
    if (meta && meta->commandKey == CommandKey())
        return;
    TDataSet* DS = DataSet();
    if (DS->Active()) {
        BuildMeta();
        return;
    }
    DS->Open();
    try {
        BuildMeta();
    } catch (...) {
        DS->Close();
        throw;
    }
    DS->Close();
}

void TDataSetProviderPrivate::BuildMeta()
{
    auto M = std::make_unique<TMeta>();
    M->commandKey = CommandKey();
    TDataSet* DS = DataSet();
    for (TField* F : DS->Fields()) {
        TFieldDef Def;
        Def.Name = F->FieldName();
        Def.DataType = F->DataType();
        Def.Size = F->Size();
        Def.Required = F->Required();
        Def.ReadOnly = F->ReadOnly();
        const int i = DS->FieldDefs().IndexOf(Def.Name);
        if (i >= 0) {
            Def.Precision = DS->FieldDefs()[i].Precision;
            Def.AutoValue = DS->FieldDefs()[i].AutoValue;
        }
        M->fields.Append(Def);
    }
    M->baseIndex.fill(-1, M->fields.Count());
    if (TADODataSet* A = Ado()) {
        QString Table;
        if (q->OnGetTableName)
            q->OnGetTableName(q, DS, Table);
        if (Table.isEmpty())
            Table = A->BaseTableName();
        QSqlDatabase Db = this->Db();
        // PostgreSQL folds unquoted names to lower case; the driver quotes what it is given.
        if (Db.driver()->dbmsType() == QSqlDriver::PostgreSQL && !Table.contains(QLatin1Char('"')))
            Table = Table.toLower();
        if (!Table.isEmpty())
            M->base = Db.record(Table);
        if (!M->base.isEmpty()) {
            M->table = Table;
            for (int c = 0; c < M->fields.Count(); ++c)
                M->baseIndex[c] = M->base.indexOf(M->fields[c].Name);
            const QSqlIndex Primary = Db.primaryIndex(Table);
            for (int k = 0; k < Primary.count(); ++k) {
                const int c = M->fields.IndexOf(Primary.fieldName(k));
                if (c < 0) {
                    M->keyColumns.clear();
                    break;
                }
                M->keyColumns << c;
            }
        }
    }
    for (int c = 0; c < M->fields.Count(); ++c)
        if (M->baseIndex[c] < 0)
            M->fields[c].ReadOnly = true;  // not a column of the table that is written
    meta = std::move(M);
}

QStringList TDataSetProviderPrivate::KeyNames() const
{
    QStringList Names;
    for (int c : std::as_const(meta->keyColumns))
        Names << meta->fields[c].Name;
    return Names;
}

QVector<int> TDataSetProviderPrivate::MapFields(const TFieldDefs& Fields) const
{
    QVector<int> Map(Fields.Count(), -1);
    for (int i = 0; i < Fields.Count(); ++i) {
        const int c = meta->fields.IndexOf(Fields[i].Name);
        if (c < 0)
            throw EProviderRequestError(SFieldNotFound(Fields[i].Name));
        if (Fields[i].DataType != meta->fields[c].DataType)
            throw EProviderRequestError(QStringLiteral("Field '%1' is not of type %2")
                                            .arg(Fields[i].Name, DataPacket::FieldTypeName(meta->fields[c].DataType)));
        Map[i] = c;
    }
    return Map;
}

void TDataSetProviderPrivate::Exec(const QString& Sql)
{
    QSqlQuery Q(Db());
    if (!Q.exec(Sql))
        TADOConnection::RaiseSqlError(Q.lastError());
}

namespace {

// Delta column that holds dataset column c, or -1.
int DeltaColumn(const QVector<int>& Map, int c) { return int(Map.indexOf(c)); }

void BindWhere(QSqlQuery& Q, const QSqlRecord& Where)
{
    for (int i = 0; i < Where.count(); ++i)
        if (!Where.isNull(i))
            Q.addBindValue(Where.value(i));
}

} // namespace

QSqlRecord TDataSetProviderPrivate::WhereRecord(const TDeltaRecord& Row, const QVector<int>& Map, TUpdateMode Mode,
                                                bool UseNew) const
{
    if (meta->keyColumns.isEmpty())
        DatabaseError(SNoKey());
    QVector<int> Columns;  // delta columns
    for (int c : std::as_const(meta->keyColumns)) {
        const int i = DeltaColumn(Map, c);
        if (i < 0)
            DatabaseError(SNoKey());
        Columns << i;
    }
    if (Mode != upWhereKeyOnly && !UseNew) {
        const QBitArray Changed = Row.Changed();
        for (int i = 0; i < Map.size(); ++i) {
            const int c = Map[i];
            if (Columns.contains(i) || meta->baseIndex[c] < 0 || !Comparable(meta->fields[c].DataType))
                continue;
            if (Mode == upWhereAll || (Row.UpdateKind == ukModify && Changed.testBit(i)))
                Columns << i;
        }
    }
    QSqlRecord Where;
    for (int i : std::as_const(Columns)) {
        QSqlField F = meta->base.field(meta->baseIndex[Map[i]]);
        F.setValue(UseNew ? Row.NewValues.value(i) : Row.OldValues.value(i));
        Where.append(F);
    }
    return Where;
}

void TDataSetProviderPrivate::WriteRow(TDeltaRecord& Row, const QVector<int>& Map, TUpdateMode Mode)
{
    if (meta->table.isEmpty())
        DatabaseError(SNoKey());
    QSqlDriver* Driver = Db().driver();
    QString Sql;
    QSqlRecord Values, Where;
    // The delta column of a one-column key an insert leaves to the database, or -1.
    int AssignedKey = -1;
    if (Row.UpdateKind == ukInsert && meta->keyColumns.size() == 1) {
        AssignedKey = Map.indexOf(meta->keyColumns[0]);
        if (AssignedKey >= Row.NewValues.size() || (AssignedKey >= 0 && !Row.NewValues[AssignedKey].isNull()))
            AssignedKey = -1;
    }
    if (Row.UpdateKind == ukInsert || Row.UpdateKind == ukModify) {
        const QBitArray Changed = Row.Changed();
        for (int i = 0; i < Map.size(); ++i) {
            const int c = Map[i];
            if (meta->baseIndex[c] < 0 || !Changed.testBit(i))
                continue;
            QSqlField F = meta->base.field(meta->baseIndex[c]);
            F.setValue(Row.NewValues.value(i));
            Values.append(F);
        }
    }
    switch (Row.UpdateKind) {
    case ukInsert:
        Sql = Values.isEmpty() ? QStringLiteral("INSERT INTO %1 DEFAULT VALUES").arg(Driver->escapeIdentifier(meta->table, QSqlDriver::TableName))
                               : Driver->sqlStatement(QSqlDriver::InsertStatement, meta->table, Values, true);
        // PostgreSQL tells the key it assigned only when asked.
        if (AssignedKey >= 0 && Driver->dbmsType() == QSqlDriver::PostgreSQL)
            Sql += QLatin1String(" RETURNING ") + Driver->escapeIdentifier(meta->base.fieldName(meta->baseIndex[Map[AssignedKey]]), QSqlDriver::FieldName);
        break;
    case ukModify:
        if (Values.isEmpty())
            return;  // nothing changed
        Where = WhereRecord(Row, Map, Mode, false);
        Sql = Driver->sqlStatement(QSqlDriver::UpdateStatement, meta->table, Values, true) + QLatin1Char(' ')
              + Driver->sqlStatement(QSqlDriver::WhereStatement, meta->table, Where, true);
        break;
    case ukDelete:
        Where = WhereRecord(Row, Map, Mode == upWhereAll ? upWhereAll : upWhereKeyOnly, false);
        Sql = Driver->sqlStatement(QSqlDriver::DeleteStatement, meta->table, QSqlRecord(), true) + QLatin1Char(' ')
              + Driver->sqlStatement(QSqlDriver::WhereStatement, meta->table, Where, true);
        break;
    }
    QSqlQuery& Q = Statement(Sql);
    int Position = 0;
    for (int i = 0; i < Values.count(); ++i)
        Q.bindValue(Position++, Values.value(i));
    for (int i = 0; i < Where.count(); ++i)
        if (!Where.isNull(i))
            Q.bindValue(Position++, Where.value(i));
    if (!Q.exec())
        TADOConnection::RaiseSqlError(Q.lastError());
    if (Row.UpdateKind != ukInsert && Q.numRowsAffected() == 0)
        throw EUpdateError(SRecordChanged());
    // A key the database assigned (auto-increment) goes back into the row.
    if (AssignedKey >= 0) {
        const QVariant Id = Driver->dbmsType() == QSqlDriver::PostgreSQL ? (Q.next() ? Q.value(0) : QVariant()) : Q.lastInsertId();
        if (Id.isValid() && !Id.isNull())
            Row.NewValues[AssignedKey] = TField::ValueOf(meta->fields[meta->keyColumns[0]].DataType, Id);
    }
}

QSqlQuery& TDataSetProviderPrivate::Statement(const QString& Sql)
{
    std::shared_ptr<QSqlQuery>& Q = statements[Sql];
    if (!Q) {
        Q = std::make_shared<QSqlQuery>(Db());
        if (!Q->prepare(Sql)) {
            const QSqlError Error = Q->lastError();
            statements.remove(Sql);
            TADOConnection::RaiseSqlError(Error);
        }
    }
    return *Q;
}

bool TDataSetProviderPrivate::ReadCurrent(const TFieldDefs& Fields, const TRecordValues& KeySource,
                                          const QVector<int>& Map, TRecordValues& Current)
{
    Current.clear();
    if (meta->table.isEmpty() || meta->keyColumns.isEmpty())
        return false;
    TDeltaRecord KeyRow;
    KeyRow.Fields = &Fields;
    KeyRow.UpdateKind = ukDelete;
    KeyRow.OldValues = KeySource;
    const QSqlRecord Where = WhereRecord(KeyRow, Map, upWhereKeyOnly, false);
    QSqlRecord Columns;
    QVector<int> Source;  // delta column of each selected column
    for (int i = 0; i < Map.size(); ++i)
        if (meta->baseIndex[Map[i]] >= 0) {
            Columns.append(meta->base.field(meta->baseIndex[Map[i]]));
            Source << i;
        }
    QSqlDriver* Driver = Db().driver();
    QSqlQuery Q(Db());
    Q.setForwardOnly(true);
    if (!Q.prepare(Driver->sqlStatement(QSqlDriver::SelectStatement, meta->table, Columns, true) + QLatin1Char(' ')
                   + Driver->sqlStatement(QSqlDriver::WhereStatement, meta->table, Where, true)))
        return false;
    BindWhere(Q, Where);
    if (!Q.exec() || !Q.next())
        return false;
    Current.resize(Fields.Count());
    for (int k = 0; k < Source.size(); ++k)
        Current[Source[k]] = TField::ValueOf(Fields[Source[k]].DataType, Q.value(k));
    return true;
}

// ---- TDataSetProvider

TDataSetProvider::TDataSetProvider(QObject* Owner) : QObject(Owner), d(new TDataSetProviderPrivate)
{
    d->q = this;
}

TDataSetProvider::~TDataSetProvider() = default;

TDataSet* TDataSetProvider::DataSet() const { return d->dataSet; }

void TDataSetProvider::SetDataSet(TDataSet* Value)
{
    d->dataSet = Value;
    d->meta.reset();
}

TUpdateMode TDataSetProvider::UpdateMode() const { return d->updateMode; }
void TDataSetProvider::SetUpdateMode(TUpdateMode Value) { d->updateMode = Value; }
TProviderOptions TDataSetProvider::Options() const { return d->options; }
void TDataSetProvider::SetOptions(TProviderOptions Value) { d->options = Value; }
bool TDataSetProvider::Exported() const { return d->exported; }
void TDataSetProvider::SetExported(bool Value) { d->exported = Value; }

TDataPacket TDataSetProvider::GetRecords(int Count, const QString& Token, const QList<TPacketParam>& Params,
                                         QJsonValue& OwnerData)
{
    TDataSet* DS = d->DataSet();
    if (BeforeGetRecords)
        BeforeGetRecords(this, OwnerData);
    d->AssignParams(Params);
    // An open dataset (opened by the module's own code) is read again as it stands;
    // otherwise it is opened for this call only, its SELECT wrapped to read one packet.
    const bool WasActive = DS->Active();
    std::unique_ptr<Detail::TPager> Pager;
    if (WasActive) {
        Pager = std::make_unique<Detail::TPager>(TFieldDefs(), QVector<int>(), nullptr, Count, Token);
        if (Pager->Kind() != Detail::TPager::Scan || Token.startsWith(QLatin1Char('k')))
            throw EProviderRequestError(QStringLiteral("Invalid paging token"));
        DS->Refresh();
    } else {
        d->EnsureMeta();
        TADODataSet* A = d->Ado();
        Pager = std::make_unique<Detail::TPager>(d->meta->fields, d->meta->keyColumns,
                                                 A ? d->Db().driver() : nullptr, Count, Token);
        if (A && Count != 0)
            d->OpenWrapped(A, *Pager);
        else if (Token.startsWith(QLatin1Char('k')))
            throw EProviderRequestError(QStringLiteral("Invalid paging token"));
        else
            DS->Open();
    }
    TDataPacket Packet;
    try {
        d->EnsureMeta();
        Packet.Fields = d->meta->fields;
        Packet.KeyFields = d->KeyNames();
        if (Count != 0) {
            const int Offset = Pager->Skip();
            const qint64 Want = Count < 0 ? qint64(INT_MAX) - Offset : Count;
            while (DS->FetchedRowCount() < Offset + Want && !DS->FetchedAll() && DS->FetchMore() > 0) {
            }
            const int End = int(std::min<qint64>(DS->FetchedRowCount(), Offset + Want));
            const QList<TField*>& Fields = DS->Fields();
            Packet.Rows.reserve(std::max(0, End - Offset));
            for (int r = Offset; r < End; ++r) {
                DS->SetActiveRow(r);
                TRecordValues Row(Fields.size());
                for (int c = 0; c < Fields.size(); ++c)
                    Row[c] = Fields[c]->AsVariant();
                Packet.Rows.append(Row);
            }
            DS->UpdateCursorPos();
            if (Count > 0 && !Packet.Rows.isEmpty()
                && (DS->FetchedRowCount() > End || (!DS->FetchedAll() && DS->FetchMore() > 0)))
                Packet.NextToken = Pager->NextToken(Packet.Rows.constLast(), int(Packet.Rows.size()));
        }
        if (OnGetData)
            OnGetData(this, Packet);
    } catch (...) {
        if (!WasActive)
            DS->Close();
        throw;
    }
    if (!WasActive)
        DS->Close();
    if (AfterGetRecords)
        AfterGetRecords(this, OwnerData);
    return Packet;
}

TApplyResult TDataSetProvider::ApplyUpdates(const TFieldDefs& Fields, QList<TDeltaRecord>& Delta, int MaxErrors,
                                            QJsonValue& OwnerData)
{
    d->DataSet();
    if (BeforeApplyUpdates)
        BeforeApplyUpdates(this, OwnerData);
    for (TDeltaRecord& R : Delta)
        R.Fields = &Fields;
    QList<TRecordValues> Sent;  // the client's values, to see what handlers changed
    if (d->options & poPropogateChanges)
        for (const TDeltaRecord& R : std::as_const(Delta))
            Sent << R.NewValues;
    if (OnUpdateData)
        OnUpdateData(this, Delta);
    TADOConnection* Conn = d->Connection();
    if (!Conn->Connected())
        Conn->Open();
    d->EnsureMeta();
    const QVector<int> Map = d->MapFields(Fields);
    Conn->FinishPendingFetches();
    const bool OwnTransaction = !Conn->InTransaction();
    if (OwnTransaction)
        Conn->BeginTrans();

    TApplyResult Result;
    bool Abort = false;
    const QString Savepoint = QStringLiteral("kesh_row");
    // Without per-row handlers a savepoint matters only when a row fails: the rows are
    // written straight away, and at the first failure the transaction is rolled back and
    // the delta applied again row by row under savepoints, as if nothing had been tried.
    const bool Straight = OwnTransaction && !BeforeUpdateRecord && !AfterUpdateRecord;
    bool Done = false;
    try {
        if (Straight) {
            const QList<TDeltaRecord> Original = Delta;
            Done = d->WriteAll(Result, Delta, Fields, Map, Sent);
            if (!Done) {
                Conn->RollbackTrans();
                d->statements.clear();
                Delta = Original;
                Result = TApplyResult();
                Conn->BeginTrans();
            }
        }
        for (int i = 0; !Done && i < Delta.size() && !Abort; ++i) {
            TDeltaRecord& Row = Delta[i];
            const TUpdateKind Kind = Row.UpdateKind;
            d->Exec(QStringLiteral("SAVEPOINT ") + Savepoint);
            try {
                bool Applied = false;
                if (BeforeUpdateRecord)
                    BeforeUpdateRecord(this, d->dataSet, Row, Kind, Applied);
                if (!Applied)
                    d->WriteRow(Row, Map, d->updateMode);
                if (AfterUpdateRecord)
                    AfterUpdateRecord(this, d->dataSet, Row, Kind);
                d->Exec(QStringLiteral("RELEASE SAVEPOINT ") + Savepoint);
                d->NoteRefreshed(Result, i, Row, Fields, Map, Sent.value(i));
                continue;
            } catch (const Exception& E) {
                d->Exec(QStringLiteral("ROLLBACK TO SAVEPOINT ") + Savepoint);
                EUpdateError Error(E.Message);
                const TRecordValues& KeySource = Kind == ukInsert ? Row.NewValues : Row.OldValues;
                Error.HasCurrentValues = d->ReadCurrent(Fields, KeySource, Map, Error.CurrentValues);
                TResolverResponse Response = rrSkip;
                if (OnUpdateError)
                    OnUpdateError(this, Row, Error, Kind, Response);
                bool Failed = true;
                if (Response == rrIgnore) {
                    Failed = false;
                } else if (Response == rrApply || Response == rrMerge) {
                    // Apply: the handler corrected the new values; merge: only the changed
                    // columns are written over whatever the row holds now.
                    try {
                        d->WriteRow(Row, Map, Response == rrMerge ? upWhereKeyOnly : d->updateMode);
                        if (AfterUpdateRecord)
                            AfterUpdateRecord(this, d->dataSet, Row, Kind);
                        Failed = false;
                    } catch (const Exception& Again) {
                        d->Exec(QStringLiteral("ROLLBACK TO SAVEPOINT ") + Savepoint);
                        Error.Message = Again.Message;
                    }
                }
                d->Exec(QStringLiteral("RELEASE SAVEPOINT ") + Savepoint);
                if (!Failed) {
                    d->NoteRefreshed(Result, i, Row, Fields, Map, Sent.value(i));
                    continue;
                }
                TApplyResult::TRowError R;
                R.Index = i;
                R.UpdateKind = Kind;
                R.Message = Error.Message;
                R.CurrentValues = Error.CurrentValues;
                R.HasCurrentValues = Error.HasCurrentValues;
                Result.Errors.append(R);
                if (Response == rrAbort || (MaxErrors >= 0 && Result.ErrorCount() > MaxErrors))
                    Abort = true;
            }
        }
    } catch (...) {
        if (OwnTransaction && Conn->InTransaction())
            Conn->RollbackTrans();
        d->statements.clear();
        throw;
    }
    if (OwnTransaction) {
        if (Abort)
            Conn->RollbackTrans();
        else
            Conn->CommitTrans();
    }
    d->statements.clear();
    Result.Committed = !Abort;
    if (Abort)
        Result.Refreshed.clear();
    if (AfterApplyUpdates)
        AfterApplyUpdates(this, OwnerData);
    return Result;
}

void TDataSetProvider::Execute(const QList<TPacketParam>& Params, QJsonValue& OwnerData)
{
    d->DataSet();
    if (BeforeExecute)
        BeforeExecute(this, OwnerData);
    TADODataSet* A = d->Ado();
    if (!A)
        throw EProviderRequestError(QStringLiteral("The provider's dataset cannot execute a command"));
    d->AssignParams(Params);
    if (auto* Query = qobject_cast<TADOQuery*>(A)) {
        Query->ExecSQL();
    } else {
        // Any ADO dataset's command runs the way a query's statement does.
        TADOQuery Command;
        Command.SetConnection(A->Connection());
        Command.SetParamCheck(A->ParamCheck());
        Command.SetSQL({A->CommandText()});
        for (int i = 0; i < A->Parameters()->Count(); ++i)
            if (TParameter* P = Command.Parameters()->FindParam(A->Parameters()->Items(i)->Name))
                *P = *A->Parameters()->Items(i);
        Command.ExecSQL();
    }
    if (AfterExecute)
        AfterExecute(this, OwnerData);
}

QList<TPacketParam> TDataSetProvider::GetParams(QJsonValue& OwnerData)
{
    d->DataSet();
    if (BeforeGetParams)
        BeforeGetParams(this, OwnerData);
    QList<TPacketParam> Params;
    if (TADODataSet* A = d->Ado()) {
        for (int i = 0; i < A->Parameters()->Count(); ++i) {
            const TParameter* P = A->Parameters()->Items(i);
            TPacketParam Out;
            Out.Name = P->Name;
            Out.DataType = P->DataType != ftUnknown ? P->DataType : ftWideString;
            Out.Value = TField::ValueOf(Out.DataType, P->Value);
            Params.append(Out);
        }
    }
    if (AfterGetParams)
        AfterGetParams(this, OwnerData);
    return Params;
}

bool TDataSetProvider::RowRequest(const TFieldDefs& Fields, const TRecordValues& Row, TRecordValues& Current,
                                  QJsonValue& OwnerData)
{
    d->DataSet();
    if (BeforeRowRequest)
        BeforeRowRequest(this, OwnerData);
    TADOConnection* Conn = d->Connection();
    if (!Conn->Connected())
        Conn->Open();
    d->EnsureMeta();
    const bool Found = d->ReadCurrent(Fields, Row, d->MapFields(Fields), Current);
    if (AfterRowRequest)
        AfterRowRequest(this, OwnerData);
    return Found;
}

QJsonValue TDataSetProvider::DataRequest(const QJsonValue& Input)
{
    return OnDataRequest ? OnDataRequest(this, Input) : QJsonValue(QJsonValue::Null);
}

// ---- modules

TCustomRemoteModule::TCustomRemoteModule(QObject* Owner) : QObject(Owner) {}
TCustomRemoteModule::~TCustomRemoteModule() = default;

void TCustomRemoteModule::RegisterProvider(TDataSetProvider* Provider)
{
    if (Provider && !m_registered.contains(Provider))
        m_registered.append(Provider);
}

void TCustomRemoteModule::UnRegisterProvider(TDataSetProvider* Provider) { m_registered.removeAll(Provider); }

TDataSetProvider* TCustomRemoteModule::GetProvider(const QString& Name) const
{
    if (Name.isEmpty())
        return nullptr;
    for (const QPointer<TDataSetProvider>& P : m_registered)
        if (P && P->objectName().compare(Name, Qt::CaseInsensitive) == 0)
            return P;
    for (TDataSetProvider* P : findChildren<TDataSetProvider*>())
        if (P->Exported() && P->objectName().compare(Name, Qt::CaseInsensitive) == 0)
            return P;
    return nullptr;
}

QStringList TCustomRemoteModule::ProviderNames() const
{
    QStringList Names;
    for (const QPointer<TDataSetProvider>& P : m_registered)
        if (P && !P->objectName().isEmpty())
            Names << P->objectName();
    for (TDataSetProvider* P : findChildren<TDataSetProvider*>())
        if (P->Exported() && !P->objectName().isEmpty() && !Names.contains(P->objectName(), Qt::CaseInsensitive))
            Names << P->objectName();
    return Names;
}

} // namespace Kesh
