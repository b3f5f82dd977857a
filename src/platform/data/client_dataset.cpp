#include "client_dataset.h"
#include "db_consts_p.h"
#include "fields.h"
#include "ado_parameters.h"
#include "../remote/provider.h"
#include <QJsonArray>
#include <QSet>

namespace Kesh {

using namespace DBConsts;

TClientDataSet::TClientDataSet(QObject* Owner) : TDataSet(Owner) {}

TClientDataSet::~TClientDataSet() { CloseSilently(); }

void TClientDataSet::CreateDataSet()
{
    if (Active())
        DatabaseError(SDataSetOpen());
    m_creating = true;
    try {
        Open();
    } catch (...) {
        m_creating = false;
        throw;
    }
    m_creating = false;
    m_log.clear();
}

void TClientDataSet::InternalOpen()
{
    if (IsRemote() && !m_creating) {
        RequestPacket(true);
        return;
    }
    if (!m_creating)
        DatabaseError(QStringLiteral("Missing data provider or data packet"));
    TFieldDefs& Defs = FieldDefsRef();
    if (Defs.IsEmpty()) {
        // Persistent fields stand for the columns when none were defined.
        for (TField* F : Fields()) {
            TFieldDef Def;
            Def.Name = F->FieldName();
            Def.DataType = F->DataType();
            Def.Size = F->Size();
            Def.Required = F->Required();
            Defs.Append(Def);
        }
    }
    if (Defs.IsEmpty())
        DatabaseError(QStringLiteral("Cannot create a dataset without fields"));
}

void TClientDataSet::EmptyDataSet()
{
    if (!Active())
        DatabaseError(SDataSetClosed());
    CheckBrowseMode();
    DisableControls();
    ResetRows();
    emit RowsReset();
    EnableControls();
    m_log.clear();
    First();
}

bool TClientDataSet::CanModify() const { return !m_readOnly; }

void TClientDataSet::ApplyInsert(TRecordValues& Values)
{
    if (!m_quiet)
        m_log.append({ukInsert, TRecordValues(), Values});
}

void TClientDataSet::ApplyUpdate(const TRecordValues& OldValues, TRecordValues& NewValues, const QBitArray&)
{
    if (!m_quiet)
        m_log.append({ukModify, OldValues, NewValues});
}

void TClientDataSet::ApplyDelete(const TRecordValues& OldValues)
{
    if (!m_quiet)
        m_log.append({ukDelete, OldValues, TRecordValues()});
}

void TClientDataSet::InternalRefresh()
{
    // Rows held only here have nothing to read again; a provider's are read afresh.
    if (!IsRemote())
        return;
    if (!m_log.isEmpty())
        DatabaseError(QStringLiteral("Must apply updates before refreshing data"));
    TDataSet::InternalRefresh();
}

// ---- rows from a provider

TParameters* TClientDataSet::Params() const
{
    if (!m_params)
        const_cast<TClientDataSet*>(this)->m_params = std::make_unique<TParameters>();
    return m_params.get();
}

void TClientDataSet::SetRemoteServer(TCustomRemoteServer* Value)
{
    if (Value == m_remoteServer)
        return;
    Close();
    m_remoteServer = Value;
}

void TClientDataSet::SetProviderName(const QString& Value)
{
    if (Value == m_providerName)
        return;
    Close();
    m_providerName = Value;
}

namespace {

// The field type a parameter value travels as when the parameter does not name one.
TFieldType TypeOfValue(const QVariant& V)
{
    switch (V.metaType().id()) {
    case QMetaType::Int: case QMetaType::Short: return ftInteger;
    case QMetaType::LongLong: case QMetaType::UInt: return ftLargeint;
    case QMetaType::Double: case QMetaType::Float: return ftFloat;
    case QMetaType::Bool: return ftBoolean;
    case QMetaType::QDate: return ftDate;
    case QMetaType::QTime: return ftTime;
    case QMetaType::QDateTime: return ftDateTime;
    case QMetaType::QByteArray: return ftBlob;
    default: return ftWideString;
    }
}

} // namespace

void TClientDataSet::RequestPacket(bool First)
{
    if (!m_remoteServer)
        DatabaseError(QStringLiteral("Missing data provider or data packet"));
    if (m_providerName.isEmpty())
        DatabaseError(QStringLiteral("Missing ProviderName"));
    QJsonObject Request{{QStringLiteral("count"), m_packetRecords}};
    if (!First)
        Request.insert(QStringLiteral("token"), m_nextToken);
    QList<TPacketParam> Params;
    for (int i = 0; m_params && i < m_params->Count(); ++i) {
        const TParameter* P = m_params->Items(i);
        const TFieldType Type = P->DataType != ftUnknown ? P->DataType : TypeOfValue(P->Value);
        Params.append({P->Name, Type, TField::ValueOf(Type, P->Value)});
    }
    if (!Params.isEmpty())
        Request.insert(QStringLiteral("params"), DataPacket::EncodeParams(Params));
    const QJsonObject Answer = m_remoteServer->AppServerCall(m_providerName, QStringLiteral("GetRecords"), Request);
    TDataPacket Packet;
    QString Error;
    if (!DataPacket::DecodePacket(Answer, Packet, Error))
        DatabaseError(Error);
    if (First) {
        FieldDefsRef() = Packet.Fields;
        m_keyFields = Packet.KeyFields;
        m_pending.clear();
        m_log.clear();
    } else if (Packet.Fields.Count() != FieldDefs().Count()) {
        DatabaseError(QStringLiteral("The provider's columns changed while its rows were read"));
    }
    m_pending.append(Packet.Rows);
    m_nextToken = Packet.NextToken;
}

int TClientDataSet::InternalFetch(int MaxRows)
{
    if (!IsRemote())
        return 0;
    if (m_pending.isEmpty() && !m_nextToken.isEmpty() && m_fetchOnDemand)
        RequestPacket(false);
    int Got = 0;
    while (Got < MaxRows && !m_pending.isEmpty()) {
        QVariant* Row = AppendRow();
        const TRecordValues Values = m_pending.takeFirst();
        for (int c = 0; c < Values.size(); ++c)
            Row[c] = Values[c];
        ++Got;
    }
    // Fewer rows than asked for end the reading; a further packet keeps it going.
    if (Got < MaxRows && !m_nextToken.isEmpty() && m_fetchOnDemand)
        return Got + InternalFetch(MaxRows - Got);
    return Got;
}

int TClientDataSet::GetNextPacket()
{
    if (!Active() || !IsRemote() || m_nextToken.isEmpty())
        return 0;
    const int Before = FetchedRowCount();
    const bool OnDemand = m_fetchOnDemand;
    m_fetchOnDemand = true;
    RequestPacket(false);
    const int Count = int(m_pending.size());
    try {
        FetchMore();
    } catch (...) {
        m_fetchOnDemand = OnDemand;
        throw;
    }
    m_fetchOnDemand = OnDemand;
    return std::min(Count, FetchedRowCount() - Before);
}

// ---- sending the change log and reconciling

bool TClientDataSet::LocateChange(const TChange& Change)
{
    const TRecordValues& Row = Change.Kind == ukDelete ? Change.OldValues : Change.NewValues;
    QStringList Names = m_keyFields;
    if (Names.isEmpty())
        for (const TFieldDef& D : FieldDefs().Items())
            Names << D.Name;
    QVariantList Values;
    for (const QString& N : std::as_const(Names))
        Values << Row.value(FieldDefs().IndexOf(N));
    return Locate(Names.join(QLatin1Char(';')), Names.size() == 1 ? Values[0] : QVariant(Values));
}

// Moves to the row holding exactly Values (an inserted row, whose key the server may not
// have given yet); false when there is none.
bool TClientDataSet::LocateRow(const TRecordValues& Values)
{
    const QList<TField*>& Fields = this->Fields();
    QVector<int> Columns;
    for (TField* F : Fields)
        Columns << FieldDefs().IndexOf(F->FieldName());
    for (int r = 0; r < FetchedRowCount(); ++r) {
        SetActiveRow(r);
        bool Same = true;
        for (int i = 0; Same && i < Fields.size(); ++i) {
            if (Columns[i] < 0)
                continue;
            const QVariant A = Fields[i]->AsVariant(), B = Values.value(Columns[i]);
            Same = (A.isNull() && B.isNull()) || (!A.isNull() && !B.isNull() && A == B);
        }
        if (Same) {
            UpdateCursorPos();
            SetRecNo(r + 1);
            return true;
        }
    }
    UpdateCursorPos();
    return false;
}

// The rows the provider sent back after applying them (server-assigned keys, defaults,
// values its handlers set) replace the client's, without entering the log.
void TClientDataSet::TakeRefreshed(const QJsonValue& Refreshed, const QList<TChange>& Sent, const QSet<int>& Failed)
{
    for (const QJsonValue& V : Refreshed.toArray()) {
        const QJsonObject O = V.toObject();
        const int Index = O.value(QStringLiteral("index")).toInt(-1);
        TRecordValues Row;
        QString Problem;
        if (Index < 0 || Index >= Sent.size() || Failed.contains(Index) || Sent[Index].Kind == ukDelete
            || !DataPacket::DecodeRow(O.value(QStringLiteral("row")), FieldDefs(), Row, Problem))
            continue;
        const TChange& C = Sent[Index];
        if (C.Kind == ukInsert ? LocateRow(C.NewValues) : LocateChange(C))
            WriteQuietly(&Row);
    }
}

void TClientDataSet::RefreshRecord()
{
    if (!IsRemote())
        return;
    CheckBrowseMode();
    if (IsEmpty())
        return;
    if (!m_remoteServer)
        DatabaseError(QStringLiteral("Missing data provider or data packet"));
    TRecordValues Row(FieldDefs().Count());
    for (TField* F : Fields()) {
        const int c = FieldDefs().IndexOf(F->FieldName());
        if (c >= 0)
            Row[c] = F->AsVariant();
    }
    for (const TChange& C : std::as_const(m_log))
        if (C.Kind != ukDelete && C.NewValues == Row)
            DatabaseError(QStringLiteral("Must apply updates before refreshing data"));
    const QJsonObject Answer = m_remoteServer->AppServerCall(
        m_providerName, QStringLiteral("RowRequest"),
        {{QStringLiteral("fields"), DataPacket::EncodeFields(FieldDefs(), m_keyFields)},
         {QStringLiteral("row"), DataPacket::EncodeRow(Row, FieldDefs())}});
    TRecordValues Current;
    QString Problem;
    if (!Answer.value(QStringLiteral("row")).isArray())
        DatabaseError(QStringLiteral("Record not found or changed by another user"));
    if (!DataPacket::DecodeRow(Answer.value(QStringLiteral("row")), FieldDefs(), Current, Problem))
        DatabaseError(Problem);
    WriteQuietly(&Current);
}

// Writes Values into the current row (nullptr: deletes it) without logging a change.
void TClientDataSet::WriteQuietly(const TRecordValues* Values)
{
    m_quiet = true;
    try {
        if (!Values) {
            Delete();
        } else {
            if (State() == dsBrowse)
                Edit();
            for (TField* F : Fields()) {
                const int c = FieldDefs().IndexOf(F->FieldName());
                if (c < 0)
                    continue;
                const bool Locked = F->ReadOnly();
                F->SetReadOnly(false);
                F->SetAsVariant(Values->value(c));
                F->SetReadOnly(Locked);
            }
            Post();
        }
    } catch (...) {
        m_quiet = false;
        if (State() != dsBrowse)
            Cancel();
        throw;
    }
    m_quiet = false;
}

// Returns false when the handler asked to abort. Keep: the change stays in the log.
bool TClientDataSet::Reconcile(TChange& Change, const QJsonValue& Error, bool& Keep)
{
    const QJsonObject E = Error.toObject();
    EReconcileError R(E.value(QStringLiteral("message")).toString());
    R.Record.UpdateKind = Change.Kind;
    R.Record.OldValues = Change.OldValues;
    R.Record.NewValues = Change.NewValues;
    R.Record.Fields = &FieldDefs();
    QString Problem;
    R.HasCurrentValues = E.value(QStringLiteral("current")).isArray()
                         && DataPacket::DecodeRow(E.value(QStringLiteral("current")), FieldDefs(), R.CurrentValues, Problem);
    TReconcileAction Action = raSkip;
    if (OnReconcileError)
        OnReconcileError(this, R, Change.Kind, Action);
    Keep = true;
    switch (Action) {
    case raSkip:
        return true;
    case raAbort:
        return false;
    case raCorrect: {
        // The handler's values replace the client's; they are sent at the next apply.
        if (Change.Kind != ukDelete && LocateChange(Change))
            WriteQuietly(&R.Record.NewValues);
        Change.NewValues = R.Record.NewValues;
        return true;
    }
    case raMerge: {
        // The server's row with the client's own changes over it, to be sent again
        // against the server's values.
        if (!R.HasCurrentValues || Change.Kind == ukInsert)
            return true;
        TRecordValues Merged = R.CurrentValues;
        if (Change.Kind == ukModify) {
            const QBitArray Changed = R.Record.Changed();
            for (int c = 0; c < Merged.size(); ++c)
                if (Changed.testBit(c))
                    Merged[c] = Change.NewValues.value(c);
            if (LocateChange(Change))
                WriteQuietly(&Merged);
            Change.NewValues = Merged;
        }
        Change.OldValues = R.CurrentValues;
        return true;
    }
    case raCancel:
    case raRefresh: {
        // Cancel: the row as it was read; refresh: the row as the server holds it now.
        const TRecordValues* Target = Action == raCancel ? (Change.Kind == ukInsert ? nullptr : &Change.OldValues)
                                                         : (R.HasCurrentValues ? &R.CurrentValues : nullptr);
        const bool Found = Change.Kind != ukDelete && LocateChange(Change);
        if (Found)
            WriteQuietly(Target);
        else if (Target) {
            m_quiet = true;
            try {
                Append();
                m_quiet = false;
                WriteQuietly(Target);
            } catch (...) {
                m_quiet = false;
                throw;
            }
        }
        Keep = false;
        return true;
    }
    }
    return true;
}

int TClientDataSet::ApplyRemoteUpdates(int MaxErrors)
{
    if (!m_remoteServer)
        DatabaseError(QStringLiteral("Missing data provider or data packet"));
    if (Active())
        CheckBrowseMode();
    if (m_log.isEmpty())
        return 0;
    QList<TDeltaRecord> Delta;
    for (const TChange& C : std::as_const(m_log)) {
        TDeltaRecord R;
        R.UpdateKind = C.Kind;
        R.OldValues = C.OldValues;
        R.NewValues = C.NewValues;
        Delta.append(R);
    }
    const QJsonObject Answer = m_remoteServer->AppServerCall(
        m_providerName, QStringLiteral("ApplyUpdates"),
        {{QStringLiteral("delta"), DataPacket::EncodeDelta(FieldDefs(), Delta)}, {QStringLiteral("maxErrors"), MaxErrors}});
    const bool Committed = Answer.value(QStringLiteral("committed")).toBool();
    QHash<int, QJsonValue> Errors;
    for (const QJsonValue& E : Answer.value(QStringLiteral("errors")).toArray()) {
        const int Index = E.toObject().value(QStringLiteral("index")).toInt(-1);
        if (Index >= 0 && Index < m_log.size())
            Errors.insert(Index, E);
    }
    QList<TChange> Kept;
    const QList<TChange> Sent = m_log;
    const QByteArray Position = Bookmark();
    DisableControls();
    bool Reconciling = true;
    try {
        for (int i = 0; i < m_log.size(); ++i) {
            TChange C = m_log[i];
            if (!Errors.contains(i)) {
                if (!Committed)
                    Kept.append(C);  // rolled back with the rest: sent again next time
                continue;
            }
            bool Keep = true;
            if (Reconciling)
                Reconciling = Reconcile(C, Errors.value(i), Keep);
            if (Keep)
                Kept.append(C);
        }
    } catch (...) {
        m_log = Kept + m_log.mid(Kept.size());
        EnableControls();
        throw;
    }
    m_log = Kept;
    if (Committed) {
        QSet<int> Failed(Errors.keyBegin(), Errors.keyEnd());
        try {
            TakeRefreshed(Answer.value(QStringLiteral("refreshed")), Sent, Failed);
        } catch (...) {
            EnableControls();
            throw;
        }
    }
    if (!Position.isEmpty() && BookmarkValid(Position))
        GotoBookmark(Position);
    EnableControls();
    return Answer.value(QStringLiteral("errorCount")).toInt();
}

int TClientDataSet::ApplyUpdates(int MaxErrors)
{
    if (IsRemote())
        return ApplyRemoteUpdates(MaxErrors);
    if (!OnApplyUpdate)
        DatabaseError(QStringLiteral("Missing data provider or data packet"));
    if (Active())
        CheckBrowseMode();
    int Errors = 0;
    QList<TChange> Kept;
    for (int i = 0; i < m_log.size(); ++i) {
        const TChange& C = m_log[i];
        try {
            OnApplyUpdate(this, C.Kind, C.OldValues, C.NewValues);
        } catch (const Exception&) {
            Kept.append(C);
            if (++Errors > MaxErrors && MaxErrors >= 0) {
                Kept.append(m_log.mid(i + 1));
                break;
            }
        }
    }
    m_log = Kept;
    return Errors;
}

} // namespace Kesh
