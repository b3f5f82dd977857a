// Kesh for Qt tests — a minimal data-aware edit, standing for the library's data-aware
// controls in a form made in Designer: it shows its field of the current record.
#pragma once
#include "platform/data/data_source.h"
#include "platform/data/fields.h"
#include <QLineEdit>

namespace KeshTest {

class TBoundEdit : public QLineEdit
{
    Q_OBJECT
    Q_PROPERTY(Kesh::TDataSource* DataSource READ DataSource WRITE SetDataSource)
    Q_PROPERTY(QString DataField READ DataField WRITE SetDataField)

public:
    explicit TBoundEdit(QWidget* Parent = nullptr) : QLineEdit(Parent)
    {
        m_link.OnDataChange = [this](Kesh::TFieldDataLink* Link) {
            setText(Link->Field() ? Link->Field()->AsString() : QString());
        };
    }
    Kesh::TDataSource* DataSource() const { return m_link.DataSource(); }
    void SetDataSource(Kesh::TDataSource* Value) { m_link.SetDataSource(Value); }
    QString DataField() const { return m_link.FieldName(); }
    void SetDataField(const QString& Value) { m_link.SetFieldName(Value); }

private:
    Kesh::TFieldDataLink m_link;
};

} // namespace KeshTest
