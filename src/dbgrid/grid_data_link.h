// Kesh for Qt — the grid's data link: its ear on the dataset and its map of columns to fields.
#pragma once
#include "platform/data/data_source.h"
#include "platform/kesh_global.h"
#include <QList>
#include <QPointer>
#include <QStringList>

namespace Kesh {

class TQxCustomDBGrid;

/// The grid's TDataLink: forwards the dataset's notifications to the grid and keeps the map
/// from the grid's data columns to the dataset's fields. There are no aggregate rows.
class KESH_EXPORT TQxGridDataLink : public TDataLink
{
public:
    explicit TQxGridDataLink(TQxCustomDBGrid* Grid);
    ~TQxGridDataLink() override;

    TQxCustomDBGrid* Grid() const { return m_grid; }
    /// Maps the next data column to the field named FieldName (nullptr when unknown);
    /// returns whether the field was found.
    bool AddMapping(const QString& FieldName);
    void ClearMapping();
    /// Index in the dataset's Fields of the field of data column GridColumn, or -1.
    int GetMappedIndex(int GridColumn) const;
    /// True while the columns are built from the dataset's fields.
    bool DefaultFields() const { return m_defaultFields; }
    void SetDefaultFields(bool Value) { m_defaultFields = Value; }
    /// The field of data column I, or nullptr.
    TField* Fields(int I) const;
    int FieldCount() const { return int(m_fields.size()); }
    static bool IsAggRow(int) { return false; }
    static void BuildAggMap() {}

protected:
    void ActiveChanged() override;
    void DataSetChanged() override;
    void DataSetScrolled(int Distance) override;
    void EditingChanged() override;
    void FocusControl(TField** Field) override;
    void LayoutChanged() override;
    void RecordChanged(TField* Field) override;
    void UpdateData() override;

private:
    TQxCustomDBGrid* m_grid;
    QList<QPointer<TField>> m_fields;
    bool m_defaultFields = true;
};

} // namespace Kesh
