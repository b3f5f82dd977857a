// Kesh for Qt — the field binding of the data-aware controls.
#include "field_binding.h"

namespace Kesh {

TxFieldBinding::TxFieldBinding(QObject* Control) : m_link(std::make_unique<TFieldDataLink>())
{
    m_link->SetControl(Control);
}

TxFieldBinding::~TxFieldBinding()
{
    m_link->OnDataChange = nullptr;
    m_link->OnUpdateData = nullptr;
    m_link->OnActiveChange = nullptr;
    m_link->OnEditingChange = nullptr;
    m_link->SetDataSource(nullptr);
}

QString TxFieldBinding::GetDataField() const { return m_link->FieldName(); }

void TxFieldBinding::SetDataField(const QString& Value)
{
    m_link->SetFieldName(Value);
    DataFieldChanged(Value);
    BindingChanged();
}

TDataSource* TxFieldBinding::GetDataSource() const { return m_link->DataSource(); }

void TxFieldBinding::SetDataSource(TDataSource* Value)
{
    m_link->SetDataSource(Value);
    BindingChanged();
}

bool TxFieldBinding::GetReadOnly() const { return m_link->ReadOnly(); }

void TxFieldBinding::SetReadOnly(bool Value)
{
    m_link->SetReadOnly(Value);
    ReadOnlyChanged();
}

TField* TxFieldBinding::Field() const { return m_link->Field(); }

} // namespace Kesh
