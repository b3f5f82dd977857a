#include "dataset_model.h"
#include "data_source.h"
#include "dataset.h"
#include "fields.h"
#include "../exceptions.h"
#include <utility>

namespace Kesh {

// The model's ear on the dataset.
class TDataSetModelLink : public TDataLink
{
public:
    explicit TDataSetModelLink(TDataSetModel* Model) : m_model(Model) {}
    bool Listening = true;  // off while the model is destroyed

protected:
    void ActiveChanged() override
    {
        if (Listening)
            m_model->Reset();
    }
    void DataSetChanged() override
    {
        if (Listening)
            m_model->Sync(true);
    }
    void DataSetScrolled(int) override
    {
        if (Listening)
            m_model->Sync(false);
    }
    void LayoutChanged() override
    {
        if (Listening)
            m_model->Reset();
    }
    void EditingChanged() override
    {
        if (Listening)
            m_model->Sync(true);
    }
    void RecordChanged(TField*) override;

private:
    TDataSetModel* m_model;
};

class TDataSetModelPrivate
{
public:
    explicit TDataSetModelPrivate(TDataSetModel* Model) : link(Model) { link.SetDataSource(&source); }
    ~TDataSetModelPrivate() { link.SetDataSource(nullptr); }

    TDataSource source;
    TDataSetModelLink link;
    QList<TField*> columns;  // the visible fields, as of the last reset
    int rows = 0;            // rows the views know of
    quint64 version = 0;
    QString error;
    bool notifying = false;  // inside our own begin…/end… signals
    bool custom = false;     // columns given by SetFields
    QList<QPointer<TField>> customFields;

    TDataSet* DataSet() const { return source.DataSet(); }
    bool Active() const { return DataSet() && DataSet()->Active(); }
    QList<TField*> VisibleFields() const
    {
        QList<TField*> R;
        if (custom) {
            for (const QPointer<TField>& F : customFields)
                R << (F && F->DataSet() == DataSet() ? F.data() : nullptr);
            return R;
        }
        if (Active())
            for (TField* F : DataSet()->Fields())
                if (F->Visible())
                    R << F;
        return R;
    }
};

TRowReader::TRowReader(TDataSet* DataSet, int Row) : m_dataSet(DataSet), m_saved(DataSet->ActiveRow())
{
    m_dataSet->SetActiveRow(Row);
}

TRowReader::~TRowReader() { m_dataSet->SetActiveRow(m_saved); }

void TDataSetModelLink::RecordChanged(TField*)
{
    if (!Listening)
        return;
    m_model->Sync(false);
    const int Row = m_model->CurrentRow();
    if (Row >= 0 && Row < m_model->rowCount() && m_model->columnCount() > 0)
        Q_EMIT m_model->dataChanged(m_model->index(Row, 0), m_model->index(Row, m_model->columnCount() - 1));
}

TDataSetModel::TDataSetModel(QObject* Parent) : QAbstractTableModel(Parent), d(new TDataSetModelPrivate(this)) {}

TDataSetModel::~TDataSetModel() { d->link.Listening = false; }

TDataSet* TDataSetModel::DataSet() const { return d->DataSet(); }

void TDataSetModel::SetDataSet(TDataSet* Value)
{
    if (Value == d->DataSet())
        return;
    d->source.SetDataSet(Value);
    Reset();
}

void TDataSetModel::SetFields(const QList<TField*>& Fields)
{
    d->custom = true;
    d->customFields.clear();
    for (TField* F : Fields)
        d->customFields << F;
    Reset();
}

void TDataSetModel::ClearFields()
{
    d->custom = false;
    d->customFields.clear();
    Reset();
}

TField* TDataSetModel::FieldAt(int Column) const { return d->columns.value(Column); }

int TDataSetModel::CurrentRow() const { return d->Active() ? d->DataSet()->CurrentRow() : -1; }

QString TDataSetModel::ErrorString() const { return d->error; }

void TDataSetModel::Reset()
{
    const bool Was = std::exchange(d->notifying, true);
    beginResetModel();
    d->columns = d->VisibleFields();
    d->rows = d->Active() ? d->DataSet()->FetchedRowCount() : 0;
    d->version = d->Active() ? d->DataSet()->StructureVersion() : 0;
    endResetModel();
    d->notifying = Was;
}

void TDataSetModel::Sync(bool DataChanged)
{
    if (!d->Active() || d->DataSet()->StructureVersion() != d->version || d->columns != d->VisibleFields()) {
        Reset();
        return;
    }
    const int Rows = d->DataSet()->FetchedRowCount();
    if (Rows > d->rows) {
        const bool Was = std::exchange(d->notifying, true);
        beginInsertRows(QModelIndex(), d->rows, Rows - 1);
        d->rows = Rows;
        endInsertRows();
        d->notifying = Was;
    } else if (Rows < d->rows) {
        Reset();
        return;
    }
    if (DataChanged && d->rows > 0 && !d->columns.isEmpty())
        Q_EMIT dataChanged(index(0, 0), index(d->rows - 1, int(d->columns.size()) - 1));
}

bool TDataSetModel::IsCell(const QModelIndex& Index) const
{
    return Index.isValid() && Index.model() == this && Index.row() < d->rows && Index.column() < d->columns.size();
}

int TDataSetModel::rowCount(const QModelIndex& Parent) const { return Parent.isValid() ? 0 : d->rows; }

int TDataSetModel::columnCount(const QModelIndex& Parent) const
{
    return Parent.isValid() ? 0 : int(d->columns.size());
}

QVariant TDataSetModel::data(const QModelIndex& Index, int Role) const
{
    if (!IsCell(Index) || !d->Active())
        return QVariant();
    TField* F = d->columns.value(Index.column());
    TDataSet* Ds = d->DataSet();
    // Rows a delete under DisableControls took away stay empty until the views are told.
    if (!F || Index.row() >= Ds->FetchedRowCount())
        return QVariant();
    try {
        switch (Role) {
        case Qt::DisplayRole: {
            TRowReader Reader(Ds, Index.row());
            return F->DisplayText();
        }
        case Qt::EditRole: {
            TRowReader Reader(Ds, Index.row());
            return F->AsVariant();
        }
        case Qt::TextAlignmentRole:
            return QVariant::fromValue(Qt::Alignment(F->Alignment() | Qt::AlignVCenter));
        default:
            return QVariant();
        }
    } catch (const Exception&) {
        return QVariant();  // a value that cannot be shown shows nothing
    }
}

QVariant TDataSetModel::headerData(int Section, Qt::Orientation Orientation, int Role) const
{
    if (Orientation == Qt::Horizontal && Section >= 0 && Section < d->columns.size()) {
        if (Role == Qt::DisplayRole && d->columns[Section])
            return d->columns[Section]->DisplayLabel();
        return QVariant();
    }
    return QAbstractTableModel::headerData(Section, Orientation, Role);
}

Qt::ItemFlags TDataSetModel::flags(const QModelIndex& Index) const
{
    if (!IsCell(Index))
        return Qt::NoItemFlags;
    Qt::ItemFlags Flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
    TField* F = d->columns.value(Index.column());
    if (F && F->CanModify())
        Flags |= Qt::ItemIsEditable;
    return Flags;
}

bool TDataSetModel::setData(const QModelIndex& Index, const QVariant& Value, int Role)
{
    if (Role != Qt::EditRole || !IsCell(Index) || !d->Active())
        return false;
    TField* F = d->columns.value(Index.column());
    TDataSet* Ds = d->DataSet();
    if (!F)
        return false;
    try {
        if (Ds->CurrentRow() != Index.row())
            Ds->MoveBy(Index.row() - Ds->CurrentRow());
        if (Ds->CurrentRow() != Index.row())
            return false;
        Ds->Edit();
        if (Value.metaType().id() == QMetaType::QString)
            F->SetText(Value.toString());
        else
            F->SetAsVariant(Value);
        d->error.clear();
        return true;
    } catch (const Exception& E) {
        d->error = E.Message;
        return false;
    }
}

bool TDataSetModel::canFetchMore(const QModelIndex& Parent) const
{
    return !Parent.isValid() && d->Active() && (!d->DataSet()->FetchedAll() || d->DataSet()->FetchedRowCount() > d->rows);
}

void TDataSetModel::fetchMore(const QModelIndex& Parent)
{
    // A listener asking for more while it hears of our last change gets it next time.
    if (Parent.isValid() || !d->Active() || d->notifying)
        return;
    try {
        if (d->DataSet()->FetchedRowCount() <= d->rows)
            d->DataSet()->FetchMore();
    } catch (const Exception& E) {
        d->error = E.Message;
    }
    Sync(false);
}

} // namespace Kesh
