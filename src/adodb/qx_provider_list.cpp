#include "qx_provider_list.h"
#include "core/conversions.h"
#include "core/log_file.h"
#include "core/messages.h"

namespace Kesh {

// ---- TQxProviderItem

TQxProviderItem::TQxProviderItem(TQxProviderCollection* Collection) : QObject(Collection), m_collection(Collection)
{
    TQxProviderList* List = Collection->ProviderList();
    m_provider = new TDataSetProvider(List);
    m_dataSet = new TADODataSet(m_provider);
    m_dataSet->BeforeOpen = [this](TDataSet* DataSet) { DataSetBeforeOpen(DataSet); };
    m_provider->SetDataSet(m_dataSet);
    TDataSetProvider* P = m_provider;
    P->BeforeUpdateRecord = [this](QObject* S, TDataSet* Src, TDeltaRecord& D, TUpdateKind K, bool& A) { MyBeforeUpdateRecord(S, Src, D, K, A); };
    P->AfterUpdateRecord = [this](QObject* S, TDataSet* Src, TDeltaRecord& D, TUpdateKind K) { MyAfterUpdateRecord(S, Src, D, K); };
    P->OnUpdateData = [this](QObject* S, QList<TDeltaRecord>& D) { MyOnUpdateData(S, D); };
    P->OnGetData = [this](QObject* S, TDataPacket& D) { MyOnGetData(S, D); };
    P->OnUpdateError = [this](QObject* S, TDeltaRecord& D, EUpdateError& E, TUpdateKind K, TResolverResponse& R) { MyOnUpdateError(S, D, E, K, R); };
    P->AfterApplyUpdates = [this](QObject* S, QJsonValue& O) { MyAfterApplyUpdates(S, O); };
    P->AfterExecute = [this](QObject* S, QJsonValue& O) { MyAfterExecute(S, O); };
    P->AfterGetParams = [this](QObject* S, QJsonValue& O) { MyAfterGetParams(S, O); };
    P->AfterGetRecords = [this](QObject* S, QJsonValue& O) { MyAfterGetRecords(S, O); };
    P->AfterRowRequest = [this](QObject* S, QJsonValue& O) { MyAfterRowRequest(S, O); };
    P->BeforeApplyUpdates = [this](QObject* S, QJsonValue& O) { MyBeforeApplyUpdates(S, O); };
    P->BeforeExecute = [this](QObject* S, QJsonValue& O) { MyBeforeExecute(S, O); };
    P->BeforeGetParams = [this](QObject* S, QJsonValue& O) { MyBeforeGetParams(S, O); };
    P->BeforeGetRecords = [this](QObject* S, QJsonValue& O) { MyBeforeGetRecords(S, O); };
    P->BeforeRowRequest = [this](QObject* S, QJsonValue& O) { MyBeforeRowRequest(S, O); };
    P->OnDataRequest = [this](QObject* S, const QJsonValue& In) { return MyOnDataRequest(S, In); };
    Busy = false;
}

TQxProviderItem::~TQxProviderItem()
{
    delete m_provider;  // and the query it owns
}

TQxProviderList* TQxProviderItem::ProviderList() const { return m_collection->ProviderList(); }

QString TQxProviderItem::Name() const { return m_provider ? m_provider->objectName() : QString(); }

void TQxProviderItem::SetName(const QString& Value)
{
    if (m_provider)
        m_provider->setObjectName(Value);
    if (!Value.isEmpty())
        setObjectName(Value);
}

QString TQxProviderItem::CommandText() const { return m_dataSet ? m_dataSet->CommandText() : QString(); }

void TQxProviderItem::SetCommandText(const QString& Value)
{
    m_dataSet->SetCommandText(Value);
    m_originalCommandText = Value;
}

void TQxProviderItem::SetParams(const QString& Params) { ApplyParams(Params, true); }

void TQxProviderItem::ApplyParams(const QString& Params, bool OpenIt)
{
    Busy = true;
    try {
        m_dataSet->Close();
        QString T = m_originalCommandText.toUpper();
        QString Rest = Params;
        int n = 0;
        while (!Rest.isEmpty()) {
            ++n;
            const QString Value = GetToken(Rest, TSysCharSet{';'});
            const QString Placeholder = QStringLiteral(":P") + QString::number(n);
            const int At = T.indexOf(Placeholder);
            if (At >= 0)
                T.replace(At, Placeholder.size(), Value);
        }
        m_dataSet->SetCommandText(T);
        if (OpenIt)
            m_dataSet->Open();
    } catch (const Exception& E) {
        LogAdd(QStringLiteral("\r\nSetParams ('") + Name() + QStringLiteral("', '") + Params + QStringLiteral("')")
               + QStringLiteral("\r\n") + E.Message);
    } catch (const std::exception& E) {
        LogAdd(QStringLiteral("\r\nSetParams ('") + Name() + QStringLiteral("', '") + Params + QStringLiteral("')")
               + QStringLiteral("\r\n") + QString::fromLocal8Bit(E.what()));
    }
    Busy = false;
}

void TQxProviderItem::DataSetBeforeOpen(TDataSet*)
{
    if (Busy)
        return;
    Busy = true;
    // The open under way reads the new text itself, so the values are applied without a
    // second, nested open.
    if (m_originalCommandText.toUpper().contains(QLatin1String(":P")))
        ApplyParams(m_defaultValues, false);
    if (m_dataSet->CommandText().toUpper().contains(QLatin1String(":P")))
        LogAdd(QStringLiteral("DataSetBeforeOpen: Incorrect parameters values.\r\nPlease check [DefaultValues] property."));
    Busy = false;
}

#define KESH_FORWARD(Event, ...) \
    if (TQxProviderList* L = ProviderList(); L && L->Event) \
        L->Event(__VA_ARGS__);

void TQxProviderItem::MyBeforeUpdateRecord(QObject* S, TDataSet* Src, TDeltaRecord& D, TUpdateKind K, bool& A) { KESH_FORWARD(BeforeUpdateRecord, S, Src, D, K, A) }
void TQxProviderItem::MyAfterUpdateRecord(QObject* S, TDataSet* Src, TDeltaRecord& D, TUpdateKind K) { KESH_FORWARD(AfterUpdateRecord, S, Src, D, K) }
void TQxProviderItem::MyOnUpdateData(QObject* S, QList<TDeltaRecord>& D) { KESH_FORWARD(OnUpdateData, S, D) }
void TQxProviderItem::MyOnGetData(QObject* S, TDataPacket& D) { KESH_FORWARD(OnGetData, S, D) }
void TQxProviderItem::MyOnUpdateError(QObject* S, TDeltaRecord& D, EUpdateError& E, TUpdateKind K, TResolverResponse& R) { KESH_FORWARD(OnUpdateError, S, D, E, K, R) }
void TQxProviderItem::MyAfterApplyUpdates(QObject* S, QJsonValue& O) { KESH_FORWARD(AfterApplyUpdates, S, O) }
void TQxProviderItem::MyAfterExecute(QObject* S, QJsonValue& O) { KESH_FORWARD(AfterExecute, S, O) }
void TQxProviderItem::MyAfterGetParams(QObject* S, QJsonValue& O) { KESH_FORWARD(AfterGetParams, S, O) }
void TQxProviderItem::MyAfterGetRecords(QObject* S, QJsonValue& O) { KESH_FORWARD(AfterGetRecords, S, O) }
void TQxProviderItem::MyAfterRowRequest(QObject* S, QJsonValue& O) { KESH_FORWARD(AfterRowRequest, S, O) }
void TQxProviderItem::MyBeforeApplyUpdates(QObject* S, QJsonValue& O) { KESH_FORWARD(BeforeApplyUpdates, S, O) }
void TQxProviderItem::MyBeforeExecute(QObject* S, QJsonValue& O) { KESH_FORWARD(BeforeExecute, S, O) }
void TQxProviderItem::MyBeforeGetParams(QObject* S, QJsonValue& O) { KESH_FORWARD(BeforeGetParams, S, O) }
void TQxProviderItem::MyBeforeGetRecords(QObject* S, QJsonValue& O) { KESH_FORWARD(BeforeGetRecords, S, O) }
void TQxProviderItem::MyBeforeRowRequest(QObject* S, QJsonValue& O) { KESH_FORWARD(BeforeRowRequest, S, O) }

#undef KESH_FORWARD

QJsonValue TQxProviderItem::MyOnDataRequest(QObject* S, const QJsonValue& In)
{
    TQxProviderList* L = ProviderList();
    return L && L->OnDataRequest ? L->OnDataRequest(S, In) : QJsonValue(QJsonValue::Null);
}

// ---- TQxProviderCollection

TQxProviderCollection::TQxProviderCollection(TQxProviderList* List) : QObject(List), m_list(List) {}

TQxProviderCollection::~TQxProviderCollection() { Clear(); }

TQxProviderItem* TQxProviderCollection::Add()
{
    auto* Item = new TQxProviderItem(this);
    m_items.append(Item);
    m_list->Attach(Item);
    return Item;
}

int TQxProviderCollection::GetItemIndex(const QString& Name) const
{
    for (int i = 0; i < m_items.size(); ++i)
        if (m_items[i]->Name().compare(Name, Qt::CaseInsensitive) == 0)
            return i;
    return -1;
}

void TQxProviderCollection::Delete(int Index)
{
    if (Index >= 0 && Index < m_items.size())
        delete m_items.takeAt(Index);
}

void TQxProviderCollection::Clear()
{
    while (!m_items.isEmpty())
        delete m_items.takeLast();
}

// ---- TQxProviderList

TQxProviderList::TQxProviderList(QObject* Owner) : QObject(Owner)
{
    if (!Module())
        ShowError(QStringLiteral("There is no TRemoteDataModule or TDSServerModule class. All providers are not registered."));
    m_providers = new TQxProviderCollection(this);
}

TQxProviderList::~TQxProviderList()
{
    delete m_providers;
    m_providers = nullptr;
}

TCustomRemoteModule* TQxProviderList::Module() const
{
    QObject* Owner = parent();
    if (qobject_cast<TRemoteDataModule*>(Owner) || qobject_cast<TDSServerModule*>(Owner))
        return static_cast<TCustomRemoteModule*>(Owner);
    return nullptr;
}

void TQxProviderList::SetConnection(TADOConnection* Value)
{
    m_connection = Value;
    for (int i = 0; i < m_providers->Count(); ++i)
        Attach(m_providers->Items(i));
}

// An entry added after the connection was set gets it as well.
void TQxProviderList::Attach(TQxProviderItem* Item)
{
    if (!m_connection)
        return;
    Item->DataSet()->SetConnection(m_connection);
    if (TCustomRemoteModule* M = Module())
        M->RegisterProvider(Item->Provider());
}

void TQxProviderList::Refresh(const QString& ProviderName)
{
    for (int i = 0; i < m_providers->Count(); ++i) {
        TQxProviderItem* Item = m_providers->Items(i);
        if (Item->Name().compare(ProviderName, Qt::CaseInsensitive) == 0 && Item->DataSet()->Active())
            Item->DataSet()->Refresh();
    }
}

void TQxProviderList::SetParams(const QString& ProviderName, const QString& Params)
{
    const int i = m_providers->GetItemIndex(ProviderName);
    if (i >= 0)
        m_providers->Items(i)->SetParams(Params);
    else
        LogAdd(QStringLiteral("\r\nSetParams: Provider name (") + ProviderName + QStringLiteral(") not found."));
}

} // namespace Kesh
