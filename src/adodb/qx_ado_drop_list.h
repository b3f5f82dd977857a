// Kesh for Qt — drop lists filled from a database table: a plain one for choosing a key and
// a data-aware one that reads and writes the chosen key in a field.
#pragma once
#include "controls/lookup_combo.h"
#include "platform/data/ado_connection.h"
#include "platform/data/data_source.h"
#include "platform/kesh_global.h"
#include <memory>

namespace Kesh {

class TADOConnection;
class TADOQuery;
class TDataSource;
class TField;

// The published properties of the list a drop list fills from a table, on the accessors of
// TxAdoListSource (the plain drop list adds _OrderBy).
#define KESH_ADO_LIST_PROPERTIES                                                         \
    Q_PROPERTY(Kesh::TADOConnection* _Connection READ GetConnection WRITE SetConnection) \
    Q_PROPERTY(QString _ListTable READ GetListTable WRITE SetListTable)                  \
    Q_PROPERTY(QString _ListKey READ GetListKey WRITE SetListKey)                        \
    Q_PROPERTY(QString _ListField_a READ GetListField_a WRITE SetListField_a)            \
    Q_PROPERTY(QString _ListField_e READ GetListField_e WRITE SetListField_e)            \
    Q_PROPERTY(QString _Criteria READ GetCriteria WRITE SetCriteria)                     \
    Q_PROPERTY(bool _ShowKey READ GetShowKey WRITE SetShowKey)

/// What both drop lists share: the table, key and name columns they list, the query that
/// reads them, and the filling.
class KESH_EXPORT TxAdoListSource
{
public:
    QString GetListKey() const { return m_listKey; }
    void SetListKey(const QString& Value) { m_listKey = Value; }
    QString GetListField_a() const { return m_listFieldA; }
    void SetListField_a(const QString& Value) { m_listFieldA = Value; }
    QString GetListField_e() const { return m_listFieldE; }
    void SetListField_e(const QString& Value) { m_listFieldE = Value; }
    /// Entries read "key: name" (true) or show the name alone.
    bool GetShowKey() const { return m_showKey; }
    void SetShowKey(bool Value) { m_showKey = Value; }
    QString GetListTable() const { return m_listTable; }
    void SetListTable(const QString& Value) { m_listTable = Value; }
    QString GetCriteria() const { return m_criteria; }
    void SetCriteria(const QString& Value) { m_criteria = Value; }
    /// ORDER BY text; empty orders by the key.
    QString GetOrderBy() const { return m_orderBy; }
    void SetOrderBy(const QString& Value) { m_orderBy = Value; }
    TADOConnection* GetConnection() const;
    void SetConnection(TADOConnection* Value);
    TADOQuery* Query() const { return m_query.get(); }

protected:
    TxAdoListSource();
    virtual ~TxAdoListSource();
    TxAdoListSource(const TxAdoListSource&) = delete;
    TxAdoListSource& operator=(const TxAdoListSource&) = delete;

    /// "Select key, Arabic, English From table[ Where criteria] Order By order-or-key";
    /// empty while the connection or one of the four names is missing. Criteria is trimmed
    /// and kept trimmed.
    QString SelectText();
    /// Runs SelectText and puts its rows into Combo: one entry per key (the first row of a
    /// key wins), "key: name" or the name alone, Arabic names for the right-to-left
    /// captions and English ones for the left-to-right captions. A query error passes on.
    void Fill(TQxCustomLookupCombo* Combo);
    /// Empties Combo and fills it again, the chosen key kept; nothing while a refill runs.
    void Refill(TQxCustomLookupCombo* Combo);
    /// The connection is set and open.
    bool CanRefill() const;
    /// A refill is running (the entries it changes are not the user's choice).
    bool Refilling() const { return m_busy; }

private:
    std::unique_ptr<TADOQuery> m_query;
    QString m_listKey, m_listFieldA, m_listFieldE, m_listTable, m_criteria, m_orderBy;
    bool m_showKey = true;
    bool m_busy = false;
};

/// A drop list of the rows of a table: shows the name in the user's language (after the key
/// and ": " with _ShowKey) and gives the key as Data. Switching the language refills it,
/// keeping the chosen key.
class KESH_EXPORT TQxAdoDropList : public TQxCustomLookupCombo, public TxAdoListSource
{
    Q_OBJECT
    KESH_ADO_LIST_PROPERTIES
    Q_PROPERTY(QString _OrderBy READ GetOrderBy WRITE SetOrderBy)

public:
    explicit TQxAdoDropList(QWidget* Parent = nullptr);
    ~TQxAdoDropList() override;

    /// Fills the list from the table (nothing while the configuration is incomplete).
    void FillDataList();
    /// Empties the list and fills it again.
    void Requery();
    /// The language switch, then the refill keeping the key.
    void SetBiDiMode(TBiDiMode Value);

protected:
    void changeEvent(QEvent* Event) override;

private:
    void Rebuild();
};

/// The data-aware drop list: it shows the key held in _DataField of _DataSource's dataset
/// and writes the key the user picks back into that field (a Boolean field gets the key
/// read as a Boolean). Always ordered by the key.
class KESH_EXPORT TQxAdoLookupDropList : public TQxCustomLookupCombo, public TxAdoListSource
{
    Q_OBJECT
    KESH_ADO_LIST_PROPERTIES
    Q_PROPERTY(QString _DataField READ GetDataField WRITE SetDataField)
    Q_PROPERTY(Kesh::TDataSource* _DataSource READ GetDataSource WRITE SetDataSource)
    Q_PROPERTY(int ItemIndex READ currentIndex WRITE setCurrentIndex)

public:
    explicit TQxAdoLookupDropList(QWidget* Parent = nullptr);
    ~TQxAdoLookupDropList() override;

    QString GetDataField() const;
    void SetDataField(const QString& Value);
    TDataSource* GetDataSource() const;
    /// Links the list to a data source; a data source that is destroyed is let go.
    void SetDataSource(TDataSource* Value);
    /// The linked field, or nullptr.
    TField* Field() const;

    void FillDataList();
    /// Refills keeping the key; without a connection: "<name>: No connection assigned." and
    /// EAbort.
    void Requery();
    void SetBiDiMode(TBiDiMode Value);

protected:
    void changeEvent(QEvent* Event) override;
    /// The user picked an entry: the key goes into the field.
    virtual void Change();
    /// The field's value changed in the dataset: its key is selected.
    void FieldDataChange();

private:
    std::unique_ptr<class TQxAdoLookupDropListPrivate> const d;
};

} // namespace Kesh
