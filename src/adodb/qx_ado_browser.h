// Kesh for Qt — the record browser: a non-visual component that lets the user find and pick
// one row of a table in a modal form with a quick search, a read-only grid and a filter.
#pragma once
#include "qx_ado_connection.h"
#include "platform/data/data_types.h"
#include <QList>
#include <QObject>
#include <QPointer>
#include <QVariant>
#include <memory>

namespace Kesh {

/// The enumerations live in their own namespace only so that moc can register them; they
/// read as Kesh::fcDate.
namespace BrowserTypes {
Q_NAMESPACE_EXPORT(KESH_EXPORT)
/// How an integer column is shown and searched: as it is, as an integer date (yyyymmdd) or
/// as an integer time (hhmm).
enum TxFieldClasses { fcStandard, fcDate, fcTime };
Q_ENUM_NS(TxFieldClasses)
} // namespace BrowserTypes
using namespace BrowserTypes;

class TQxAdoBrowser;
class TQxAdoBrowserCollection;

/// One column of a record browser: its Arabic and English column names and titles, its
/// relative width (0 hides it), its type and, after a confirmed ShowBrowser, the picked
/// row's value.
class KESH_EXPORT TQxAdoBrowserItem : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString SourceTable READ GetSourceTable WRITE SetSourceTable)
    Q_PROPERTY(int Width READ GetWidth WRITE SetWidth)
    Q_PROPERTY(Kesh::DB::TFieldType DataType READ GetDataType WRITE SetDataType)
    Q_PROPERTY(Kesh::BrowserTypes::TxFieldClasses FieldClass READ GetFieldClass WRITE SetFieldClass)
    Q_PROPERTY(QString Caption_a READ GetCaption_a WRITE SetCaption_a)
    Q_PROPERTY(QString Caption_e READ GetCaption_e WRITE SetCaption_e)
    Q_PROPERTY(QString FieldName_a READ GetFieldName_a WRITE SetFieldName_a)
    Q_PROPERTY(QString FieldName_e READ GetFieldName_e WRITE SetFieldName_e)
    Q_PROPERTY(QVariant Value READ Value)

public:
    explicit TQxAdoBrowserItem(TQxAdoBrowserCollection* Collection = nullptr);
    ~TQxAdoBrowserItem() override;

    /// Table or alias the column is prefixed with ("T." + column) in a join.
    QString GetSourceTable() const { return m_sourceTable; }
    void SetSourceTable(const QString& Value) { m_sourceTable = Value; }
    int GetWidth() const { return m_width; }
    void SetWidth(int Value) { m_width = Value; }
    /// Filled from the database by AdjustDataTypes, except for fcDate and fcTime columns.
    TFieldType GetDataType() const { return m_dataType; }
    void SetDataType(TFieldType Value) { m_dataType = Value; }
    TxFieldClasses GetFieldClass() const { return m_class; }
    void SetFieldClass(TxFieldClasses Value) { m_class = Value; }
    QString GetCaption_a() const { return m_caption_a; }
    void SetCaption_a(const QString& Value) { m_caption_a = Value; }
    QString GetCaption_e() const { return m_caption_e; }
    void SetCaption_e(const QString& Value) { m_caption_e = Value; }
    QString GetFieldName_a() const { return m_field_a; }
    /// Also the Arabic title while that is empty (or the name is cleared); a width of 0
    /// becomes 10.
    void SetFieldName_a(const QString& Value);
    QString GetFieldName_e() const { return m_field_e; }
    void SetFieldName_e(const QString& Value);

    /// The picked row's value of this column (invalid until a row is picked).
    QVariant Value() const { return m_value; }
    void SetValue(const QVariant& Value) { m_value = Value; }

    /// The column name of a language (Arabic when RightToLeft).
    QString FieldName(bool RightToLeft) const { return RightToLeft ? m_field_a : m_field_e; }
    /// FieldName(RightToLeft) prefixed with "SourceTable." when that is set.
    QString QualifiedName(bool RightToLeft) const;
    /// The column's text in a collection editor: a missing name is first filled from the
    /// other language's, then the application language's name (or "TQxAdoBrowserItem").
    QString GetDisplayName();
    /// The browser whose collection holds this item.
    TQxAdoBrowser* Browser() const;
    TQxAdoBrowserCollection* Collection() const { return m_collection; }
    /// Position in the collection, or -1.
    int Index() const;
    /// Copies every property but the value.
    void Assign(const TQxAdoBrowserItem& Source);

private:
    friend class TQxAdoBrowserCollection;
    TQxAdoBrowserCollection* m_collection;
    QString m_sourceTable;
    int m_width = 0;
    TFieldType m_dataType = ftUnknown;
    TxFieldClasses m_class = fcStandard;
    QVariant m_value;
    QString m_caption_a, m_caption_e, m_field_a, m_field_e;
};

/// The columns of a browser, in order.
class KESH_EXPORT TQxAdoBrowserCollection : public QObject
{
    Q_OBJECT

public:
    explicit TQxAdoBrowserCollection(TQxAdoBrowser* Browser);
    ~TQxAdoBrowserCollection() override;

    TQxAdoBrowser* Browser() const { return m_browser; }
    /// A new column at the end.
    TQxAdoBrowserItem* Add();
    int Count() const { return int(m_items.size()); }
    /// Column Index; nullptr outside 0..Count()-1.
    TQxAdoBrowserItem* Items(int Index) const;
    /// Copies Value's properties into column Index.
    void SetItems(int Index, const TQxAdoBrowserItem& Value);
    /// Index of the first column whose Arabic or English name is Name (ignoring case); -1.
    int GetItemIndex(const QString& Name) const;
    void Delete(int Index);
    void Clear();

private:
    friend class TQxAdoBrowserItem;
    TQxAdoBrowser* m_browser;
    QList<TQxAdoBrowserItem*> m_items;
};

/// A record browser over the tables SourceTables of Connection.
///
/// ShowBrowser opens the modal browser form (KeshForm_AdoBrowser.h). Its rows are read
/// SELECT-by-SELECT as the user types, limited by DatabaseType to 30 rows. Text the user
/// types (the quick search and the filter's values) is put between quotes with the
/// driver's quoting, so quotes and comment marks stay text while `%` and `_` stay LIKE
/// wildcards; a number, date or time filter value that is not one is refused with a
/// message before any query runs. Criteria and SourceTables are the program's SQL and are
/// used as they stand.
class KESH_EXPORT TQxAdoBrowser : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString SourceTables READ GetSourceTables WRITE SetSourceTables)
    Q_PROPERTY(QString Criteria READ GetCriteria WRITE SetCriteria)
    Q_PROPERTY(bool CompressedView READ GetCompressedView WRITE SetCompressedView)
    Q_PROPERTY(Kesh::TQxAdoConnection* Connection READ GetConnection WRITE SetConnection)
    Q_PROPERTY(Kesh::TQxAdoBrowserCollection* BrowserItems READ BrowserItems)
    Q_PROPERTY(Kesh::AdoTypes::TxDatabaseType DatabaseType READ GetDatabaseType WRITE SetDatabaseType)
    Q_PROPERTY(QString Caption_a READ GetCaption_a WRITE SetCaption_a)
    Q_PROPERTY(QString Caption_e READ GetCaption_e WRITE SetCaption_e)
    Q_PROPERTY(QString SqlSelect READ BuildSqlSelect)

public:
    explicit TQxAdoBrowser(QObject* Owner = nullptr);
    ~TQxAdoBrowser() override;

    QString GetSourceTables() const { return m_sourceTables; }
    void SetSourceTables(const QString& Value) { m_sourceTables = Value; }
    QString GetCriteria() const { return m_criteria; }
    void SetCriteria(const QString& Value) { m_criteria = Value; }
    bool GetCompressedView() const { return m_compressedView; }
    void SetCompressedView(bool Value) { m_compressedView = Value; }
    TQxAdoConnection* GetConnection() const { return m_connection; }
    void SetConnection(TQxAdoConnection* Value) { m_connection = Value; }
    TQxAdoBrowserCollection* BrowserItems() const { return m_items.get(); }
    TxDatabaseType GetDatabaseType() const { return m_dbType; }
    void SetDatabaseType(TxDatabaseType Value) { m_dbType = Value; }
    QString GetCaption_a() const { return m_caption_a; }
    void SetCaption_a(const QString& Value) { m_caption_a = Value; }
    QString GetCaption_e() const { return m_caption_e; }
    void SetCaption_e(const QString& Value) { m_caption_e = Value; }

    /// Opens the browser form; true when the user picked a row, whose values are then in
    /// BrowserItems()->Items(i)->Value(). Without columns: a message and EAbort.
    bool ShowBrowser();
    /// "SELECT " + the application language's column names + " FROM " + SourceTables
    /// ("*" when no column has a name).
    QString BuildSqlSelect() const;
    /// As BuildSqlSelect, in the given language.
    QString BuildSqlSelect(bool RightToLeft) const;
    /// Reads the type of every fcStandard column from the database (a query with no rows).
    void AdjustDataTypes();

    /// The query the browser form runs: the row limit of DatabaseType, the prefix Search
    /// over the sort column SortIndex, Criteria and CustomFilter, ordered by that column.
    QString BuildQueryText(int SortIndex, const QString& Search, const QString& CustomFilter,
                           bool RightToLeft) const;
    /// One term of the filter dialog for column Index and the typed Input: "(Name Like
    /// '%x%')", "(Qty = 5)"... Empty, with Error set to a bilingual message, when Input is no
    /// value of the column's type.
    QString FilterTerm(int Index, const QString& Input, bool RightToLeft, QString* Error) const;
    /// Text as an SQL string literal, quoted by the connection's driver when it is open
    /// (quotes doubled; backslashes too where the server reads them as escapes).
    QString QuoteText(const QString& Text) const;

private:
    bool IsTextColumn(const TQxAdoBrowserItem* Item) const;
    QString LikeText(const QString& Text) const;
    QString DateTimeLiteral(const QString& Input, QString* Error) const;

    QString m_sourceTables;
    QString m_criteria;
    bool m_compressedView = false;
    QPointer<TQxAdoConnection> m_connection;
    std::unique_ptr<TQxAdoBrowserCollection> m_items;
    TxDatabaseType m_dbType = dtUnknown;
    QString m_caption_a, m_caption_e;
};

} // namespace Kesh
