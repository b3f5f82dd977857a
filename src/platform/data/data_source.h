// Kesh for Qt — TDataSource, TDataLink, TFieldDataLink: how controls hear a dataset.
#pragma once
#include "data_types.h"
#include "fields.h"
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>

namespace Kesh {

class TDataSet;
class TDataLink;
class TDataSource;

using TDataSourceNotifyEvent = std::function<void(TDataSource*)>;
using TDataChangeEvent = std::function<void(TDataSource* Sender, TField* Field)>;

/// Joins one dataset to any number of data links (controls, grids, buttons).
class KESH_EXPORT TDataSource : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool Enabled READ Enabled WRITE SetEnabled)
    Q_PROPERTY(bool AutoEdit READ AutoEdit WRITE SetAutoEdit)
    Q_PROPERTY(Kesh::DB::TDataSetState State READ State)

public:
    explicit TDataSource(QObject* Owner = nullptr);
    ~TDataSource() override;

    TDataSet* DataSet() const { return m_dataSet; }
    void SetDataSet(TDataSet* Value);
    /// The dataset's state, or dsInactive without a dataset or while disabled.
    TDataSetState State() const { return m_state; }
    bool Enabled() const { return m_enabled; }
    void SetEnabled(bool Value);
    /// A control that starts typing puts the dataset in dsEdit (through TDataLink::Edit).
    bool AutoEdit() const { return m_autoEdit; }
    void SetAutoEdit(bool Value) { m_autoEdit = Value; }
    /// Edit on the dataset when AutoEdit is set and the state is dsBrowse.
    void Edit();
    bool IsLinkedTo(TDataSet* DataSet) const;

    TDataSourceNotifyEvent OnStateChange;
    /// Field is the changed field, or nullptr for a change of row or of the whole set.
    TDataChangeEvent OnDataChange;
    /// The dataset asked the controls to write their pending values.
    TDataSourceNotifyEvent OnUpdateData;

private:
    friend class TDataSet;
    friend class TDataLink;
    void DataEvent(TDataEvent Event, qintptr Info);
    void UpdateState();
    void AddDataLink(TDataLink* Link);
    void RemoveDataLink(TDataLink* Link);

    TDataSet* m_dataSet = nullptr;
    QList<TDataLink*> m_links;
    TDataSetState m_state = dsInactive;
    bool m_enabled = true;
    bool m_autoEdit = true;
};

/// A listener on a data source; controls derive from it and override the notifications.
///
/// Its buffer window of BufferCount rows follows the cursor: a grid reads row i of the
/// window (0 ≤ i < RecordCount()) by SetActiveRecord(i), reads the fields, then restores
/// the ActiveRecord it had. ActiveRecord is the cursor's place in the window.
class KESH_EXPORT TDataLink
{
public:
    TDataLink();
    virtual ~TDataLink();
    TDataLink(const TDataLink&) = delete;
    TDataLink& operator=(const TDataLink&) = delete;

    TDataSource* DataSource() const { return m_dataSource; }
    void SetDataSource(TDataSource* Value);
    TDataSet* DataSet() const;
    /// The source has an open dataset.
    bool Active() const { return m_active; }
    /// The dataset is in dsEdit or dsInsert and the link is not read-only.
    bool Editing() const { return m_editing; }
    bool ReadOnly() const { return m_readOnly; }
    void SetReadOnly(bool Value);

    int ActiveRecord() const;
    void SetActiveRecord(int Value);
    int BufferCount() const { return m_bufferCount; }
    void SetBufferCount(int Value);
    /// Rows in the window (at most BufferCount).
    int RecordCount() const;
    bool Bof() const;
    bool Eof() const;
    int MoveBy(int Distance);

    /// Puts the dataset in edit through the source (AutoEdit); returns Editing().
    bool Edit();
    /// Asks this link to write its pending value (UpdateData) into the field.
    void UpdateRecord();

protected:
    virtual void ActiveChanged() {}
    virtual void CheckBrowseMode() {}
    virtual void DataSetChanged() { RecordChanged(nullptr); }
    /// Distance: how many rows the window moved (positive: towards the end).
    virtual void DataSetScrolled(int Distance);
    virtual void EditingChanged() {}
    /// *Field: set it to nullptr after taking the focus so no other control takes it.
    virtual void FocusControl(TField** Field);
    virtual void LayoutChanged() { DataSetChanged(); }
    virtual void RecordChanged(TField* Field);
    virtual void UpdateData() {}

private:
    friend class TDataSource;
    void DataEvent(TDataEvent Event, qintptr Info);
    void SetActive(bool Value);
    void UpdateEditing();
    void SyncWindow(bool Clamp);
    int ScrollWindow();

    TDataSource* m_dataSource = nullptr;
    int m_bufferCount = 1;
    int m_firstRecord = 0;  // view row at the top of the window
    bool m_active = false;
    bool m_editing = false;
    bool m_readOnly = false;
    bool m_updating = false;
};

using TFieldDataLinkNotifyEvent = std::function<void(class TFieldDataLink*)>;

/// A link bound to one field by name, for controls that edit one value.
class KESH_EXPORT TFieldDataLink : public TDataLink
{
public:
    TFieldDataLink();
    ~TFieldDataLink() override;

    QString FieldName() const { return m_fieldName; }
    void SetFieldName(const QString& Value);
    TField* Field() const { return m_field.data(); }
    /// The control that FocusControl gives the focus to (a QWidget).
    QObject* Control() const { return m_control; }
    void SetControl(QObject* Value) { m_control = Value; }
    /// Not read-only, a field is bound and the field can be modified.
    bool CanModify() const;
    /// The control has a value not yet written to the field.
    bool IsModified() const { return m_modified; }
    /// The control calls this when its user changed the value.
    void Modified() { m_modified = true; }
    /// The control drops its pending value and shows the field again.
    void Reset();
    /// Edit through the source, only when CanModify.
    bool Edit();

    TFieldDataLinkNotifyEvent OnDataChange;
    TFieldDataLinkNotifyEvent OnUpdateData;
    TFieldDataLinkNotifyEvent OnActiveChange;
    TFieldDataLinkNotifyEvent OnEditingChange;

protected:
    void ActiveChanged() override;
    void EditingChanged() override;
    void FocusControl(TField** Field) override;
    void LayoutChanged() override;
    void RecordChanged(TField* Field) override;
    void UpdateData() override;

private:
    void UpdateField();
    QString m_fieldName;
    QPointer<TField> m_field;
    QPointer<QObject> m_control;
    bool m_modified = false;
};

} // namespace Kesh
