// Kesh for Qt — TQxProviderList: many queries published to clients through one component
// on a server module, each entry a query with its provider.
#pragma once
#include "platform/data/ado_connection.h"
#include "platform/data/ado_dataset.h"
#include "platform/remote/provider.h"
#include <QList>
#include <QObject>
#include <QPointer>

namespace Kesh {

class TQxProviderList;
class TQxProviderCollection;

/// One published query: a TADODataSet and the TDataSetProvider that serves it under Name.
/// Its command text may hold numbered placeholders (":P1", ":P2", …) replaced by text
/// values before it opens (SetParams), with DefaultValues for an open without any.
class KESH_EXPORT TQxProviderItem : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString Name READ Name WRITE SetName)
    Q_PROPERTY(QString CommandText READ CommandText WRITE SetCommandText)
    Q_PROPERTY(QString DefaultValues READ DefaultValues WRITE SetDefaultValues)

public:
    explicit TQxProviderItem(TQxProviderCollection* Collection);
    ~TQxProviderItem() override;

    /// The provider's name, by which clients ask for the rows.
    QString Name() const;
    void SetName(const QString& Value);
    /// The query's current text; setting it also sets the designed text with its placeholders.
    QString CommandText() const;
    void SetCommandText(const QString& Value);
    /// Parameter values ("5;'A'") used when the query opens with placeholders still in it.
    QString DefaultValues() const { return m_defaultValues; }
    void SetDefaultValues(const QString& Value) { m_defaultValues = Value; }
    /// The designed text, with its placeholders.
    QString OriginalCommandText() const { return m_originalCommandText; }

    TQxProviderList* ProviderList() const;
    TDataSetProvider* Provider() const { return m_provider; }
    TADODataSet* DataSet() const { return m_dataSet; }
    TADOConnection* Connection() const { return m_dataSet ? m_dataSet->Connection() : nullptr; }

    /// Re-opens the query on the upper-cased designed text with ":P1", ":P2"… replaced by the
    /// values of Params (separated by ';', inserted as written: text values carry their own
    /// quotes). Errors go to the log file, not to the caller, and leave the query closed.
    void SetParams(const QString& Params);
    /// The query's BeforeOpen: applies DefaultValues to a text with placeholders.
    void DataSetBeforeOpen(TDataSet* DataSet);

    // The sixteen forwarders to the list's handlers of the same names.
    void MyBeforeUpdateRecord(QObject* Sender, TDataSet* SourceDS, TDeltaRecord& DeltaDS, TUpdateKind UpdateKind, bool& Applied);
    void MyAfterUpdateRecord(QObject* Sender, TDataSet* SourceDS, TDeltaRecord& DeltaDS, TUpdateKind UpdateKind);
    void MyOnUpdateData(QObject* Sender, QList<TDeltaRecord>& DataSet);
    void MyOnGetData(QObject* Sender, TDataPacket& DataSet);
    void MyOnUpdateError(QObject* Sender, TDeltaRecord& DataSet, EUpdateError& E, TUpdateKind UpdateKind, TResolverResponse& Response);
    void MyAfterApplyUpdates(QObject* Sender, QJsonValue& OwnerData);
    void MyAfterExecute(QObject* Sender, QJsonValue& OwnerData);
    void MyAfterGetParams(QObject* Sender, QJsonValue& OwnerData);
    void MyAfterGetRecords(QObject* Sender, QJsonValue& OwnerData);
    void MyAfterRowRequest(QObject* Sender, QJsonValue& OwnerData);
    void MyBeforeApplyUpdates(QObject* Sender, QJsonValue& OwnerData);
    void MyBeforeExecute(QObject* Sender, QJsonValue& OwnerData);
    void MyBeforeGetParams(QObject* Sender, QJsonValue& OwnerData);
    void MyBeforeGetRecords(QObject* Sender, QJsonValue& OwnerData);
    void MyBeforeRowRequest(QObject* Sender, QJsonValue& OwnerData);
    QJsonValue MyOnDataRequest(QObject* Sender, const QJsonValue& Input);

private:
    void ApplyParams(const QString& Params, bool OpenIt);

    TQxProviderCollection* m_collection;
    QPointer<TDataSetProvider> m_provider;
    QPointer<TADODataSet> m_dataSet;
    QString m_defaultValues;
    bool Busy = false;
    QString m_originalCommandText;
};

/// The entries of a provider list.
class KESH_EXPORT TQxProviderCollection : public QObject
{
    Q_OBJECT

public:
    explicit TQxProviderCollection(TQxProviderList* List);
    ~TQxProviderCollection() override;
    TQxProviderItem* Add();
    int Count() const { return int(m_items.size()); }
    TQxProviderItem* Items(int Index) const { return m_items.value(Index); }
    TQxProviderItem* operator[](int Index) const { return Items(Index); }
    /// Index of the first entry whose provider name is Name (ignoring case), else -1.
    int GetItemIndex(const QString& Name) const;
    void Delete(int Index);
    void Clear();
    TQxProviderList* ProviderList() const { return m_list; }

private:
    TQxProviderList* m_list;
    QList<TQxProviderItem*> m_items;
};

/// Publishes the queries of its entries from a TRemoteDataModule or TDSServerModule and
/// gathers every provider event of every entry in one set of handlers (the Sender tells
/// which provider).
class KESH_EXPORT TQxProviderList : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Kesh::TADOConnection* Connection READ Connection WRITE SetConnection)

public:
    /// Shows an error (and is still created) when Owner is not a server module.
    explicit TQxProviderList(QObject* Owner = nullptr);
    ~TQxProviderList() override;

    TQxProviderCollection* Providers() const { return m_providers; }
    TADOConnection* Connection() const { return m_connection; }
    /// Gives every entry's query this connection and registers its provider with the module.
    void SetConnection(TADOConnection* Value);

    /// Refreshes the open query of every entry named ProviderName (ignoring case).
    void Refresh(const QString& ProviderName);
    /// SetParams of the entry named ProviderName; an unknown name is logged.
    void SetParams(const QString& ProviderName, const QString& Params);

    TBeforeUpdateRecordEvent BeforeUpdateRecord;
    TAfterUpdateRecordEvent AfterUpdateRecord;
    TProviderDeltaEvent OnUpdateData;
    TResolverErrorEvent OnUpdateError;
    TProviderDataEvent OnGetData;
    TRemoteEvent AfterApplyUpdates;
    TRemoteEvent AfterExecute;
    TRemoteEvent AfterGetParams;
    TRemoteEvent AfterGetRecords;
    TRemoteEvent AfterRowRequest;
    TRemoteEvent BeforeApplyUpdates;
    TRemoteEvent BeforeExecute;
    TRemoteEvent BeforeGetParams;
    TRemoteEvent BeforeGetRecords;
    TRemoteEvent BeforeRowRequest;
    TDataRequestEvent OnDataRequest;

private:
    friend class TQxProviderItem;
    friend class TQxProviderCollection;
    void Attach(TQxProviderItem* Item);
    TCustomRemoteModule* Module() const;
    TQxProviderCollection* m_providers;
    QPointer<TADOConnection> m_connection;
};

} // namespace Kesh
