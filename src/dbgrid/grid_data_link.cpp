// Kesh for Qt — the grid's data link.
#include "grid_data_link.h"
#include "db_grid.h"
#include "platform/data/dataset.h"

namespace Kesh {

TQxGridDataLink::TQxGridDataLink(TQxCustomDBGrid* Grid) : m_grid(Grid) {}
TQxGridDataLink::~TQxGridDataLink() = default;

bool TQxGridDataLink::AddMapping(const QString& FieldName)
{
    TField* F = nullptr;
    if (DataSet() && Active() && !FieldName.isEmpty())
        F = DataSet()->FindField(FieldName);
    m_fields << F;
    return F != nullptr;
}

void TQxGridDataLink::ClearMapping() { m_fields.clear(); }

int TQxGridDataLink::GetMappedIndex(int GridColumn) const
{
    TField* F = Fields(GridColumn);
    return F ? F->Index() : -1;
}

TField* TQxGridDataLink::Fields(int I) const { return I >= 0 && I < m_fields.size() ? m_fields[I].data() : nullptr; }

void TQxGridDataLink::ActiveChanged() { m_grid->LinkActive(Active()); }
void TQxGridDataLink::DataSetChanged() { m_grid->DataChanged(); }
void TQxGridDataLink::DataSetScrolled(int) { m_grid->Scrolled(); }
void TQxGridDataLink::EditingChanged() { m_grid->EditingChanged(); }
void TQxGridDataLink::LayoutChanged() { m_grid->DataLayoutChanged(); }
void TQxGridDataLink::RecordChanged(TField* Field) { m_grid->RecordChanged(Field); }
void TQxGridDataLink::UpdateData() { m_grid->UpdateData(); }

void TQxGridDataLink::FocusControl(TField** Field)
{
    if (!Field || !*Field)
        return;
    for (int I = 0; I < m_fields.size(); ++I)
        if (m_fields[I] == *Field && m_grid->isEnabled()) {
            m_grid->SetSelectedField(*Field);
            m_grid->setFocus(Qt::OtherFocusReason);
            *Field = nullptr;
            return;
        }
}

} // namespace Kesh
