// Kesh for Qt — what every data-aware control shares: the link to its field and the
// accessors of DataField, DataSource and Readonly.
#pragma once
#include "platform/data/data_source.h"
#include <memory>

// The published properties of a control's binding, under the names its class publishes
// (DataField and DataSource, or _DataField and _DataSource); Readonly, where published, is
// declared beside them on GetReadOnly/SetReadOnly.
#define KESH_FIELD_BINDING_PROPERTIES(FieldProperty, SourceProperty)                  \
    Q_PROPERTY(QString FieldProperty READ GetDataField WRITE SetDataField)             \
    Q_PROPERTY(Kesh::TDataSource* SourceProperty READ GetDataSource WRITE SetDataSource)

namespace Kesh {

/// The field binding of a data-aware control. A class inherits it beside its Qt base,
/// declares the properties above and implements BindingChanged(), which shows the field
/// after the field name or the data source changed; the link's notifications are the
/// class's to set.
class KESH_EXPORT TxFieldBinding
{
public:
    QString GetDataField() const;
    void SetDataField(const QString& Value);
    TDataSource* GetDataSource() const;
    void SetDataSource(TDataSource* Value);
    /// The link's own read-only flag (a control may be read-only for other reasons too).
    bool GetReadOnly() const;
    void SetReadOnly(bool Value);
    /// The bound field, or nullptr.
    TField* Field() const;
    TFieldDataLink* DataLink() const { return m_link.get(); }

protected:
    /// Control: what the link gives the focus to (FocusControl).
    explicit TxFieldBinding(QObject* Control);
    /// Silences the link's notifications (the control is gone by then), then detaches it.
    virtual ~TxFieldBinding();
    TxFieldBinding(const TxFieldBinding&) = delete;
    TxFieldBinding& operator=(const TxFieldBinding&) = delete;

    /// The field name or the data source was set: show the field.
    virtual void BindingChanged() = 0;
    /// The field name was set, before BindingChanged(): checks and design-time naming.
    virtual void DataFieldChanged(const QString& Value) { Q_UNUSED(Value); }
    /// Readonly was set.
    virtual void ReadOnlyChanged() {}

private:
    std::unique_ptr<TFieldDataLink> const m_link;
};

} // namespace Kesh
