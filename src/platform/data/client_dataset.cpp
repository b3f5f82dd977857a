#include "client_dataset.h"
#include "db_consts_p.h"
#include "fields.h"

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

void TClientDataSet::ApplyInsert(TRecordValues& Values) { m_log.append({ukInsert, TRecordValues(), Values}); }

void TClientDataSet::ApplyUpdate(const TRecordValues& OldValues, TRecordValues& NewValues, const QBitArray&)
{
    m_log.append({ukModify, OldValues, NewValues});
}

void TClientDataSet::ApplyDelete(const TRecordValues& OldValues) { m_log.append({ukDelete, OldValues, TRecordValues()}); }

void TClientDataSet::InternalRefresh()
{
    // The rows live only here: there is nothing to read again.
}

int TClientDataSet::ApplyUpdates(int MaxErrors)
{
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
