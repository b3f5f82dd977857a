// Kesh for Qt — TDataSetModel: a dataset seen as a Qt table model.
#pragma once
#include "../kesh_global.h"
#include <QAbstractTableModel>
#include <QList>
#include <QPointer>
#include <memory>

namespace Kesh {

class TDataSet;
class TDataSource;
class TField;

/// Points a dataset's field reads at one view row for its lifetime, then back; the cursor
/// does not move and no event is sent.
class KESH_EXPORT TRowReader
{
public:
    TRowReader(TDataSet* DataSet, int Row);
    ~TRowReader();
    TRowReader(const TRowReader&) = delete;
    TRowReader& operator=(const TRowReader&) = delete;

private:
    TDataSet* m_dataSet;
    int m_saved;
};

/// Table model over a dataset: one column per visible field (header: DisplayLabel), one
/// row per row the dataset has read so far. DisplayRole is the field's DisplayText,
/// EditRole its value, TextAlignmentRole its Alignment. Rows are read from the dataset's
/// rows without moving its cursor; canFetchMore/fetchMore follow its lazy reading.
/// setData (EditRole) moves the cursor to the row, puts the dataset in edit and sets the
/// value; the row is posted when the cursor leaves it, as in any data-aware control.
class KESH_EXPORT TDataSetModel : public QAbstractTableModel
{
    Q_OBJECT
public:
    explicit TDataSetModel(QObject* Parent = nullptr);
    ~TDataSetModel() override;

    TDataSet* DataSet() const;
    /// Shows the dataset (nullptr: an empty model); the model listens through its own link.
    void SetDataSet(TDataSet* Value);
    /// Shows these fields as the columns, in this order (a nullptr column stays empty),
    /// instead of the dataset's visible fields: a grid's own column list.
    void SetFields(const QList<TField*>& Fields);
    /// Back to one column per visible field.
    void ClearFields();
    /// The field shown in column Column, or nullptr.
    TField* FieldAt(int Column) const;
    /// The model row of the dataset's cursor, or -1.
    int CurrentRow() const;
    /// The message of the last setData that the dataset refused.
    QString ErrorString() const;

    int rowCount(const QModelIndex& Parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& Parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& Index, int Role = Qt::DisplayRole) const override;
    QVariant headerData(int Section, Qt::Orientation Orientation, int Role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& Index) const override;
    bool setData(const QModelIndex& Index, const QVariant& Value, int Role = Qt::EditRole) override;
    bool canFetchMore(const QModelIndex& Parent) const override;
    void fetchMore(const QModelIndex& Parent) override;

private:
    friend class TDataSetModelLink;
    void Sync(bool DataChanged);
    void Reset();
    bool IsCell(const QModelIndex& Index) const;
    std::unique_ptr<class TDataSetModelPrivate> const d;
};

} // namespace Kesh
