#include "app_server.h"
#include "http_engine_p.h"
#include "../data/ado_connection.h"
#include "../data/ado_dataset.h"
#include <QCryptographicHash>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSqlQuery>
#include <mutex>
#include <vector>

namespace Kesh {

namespace {

QByteArray Digest(const QByteArray& Token) { return QCryptographicHash::hash(Token, QCryptographicHash::Sha256); }

// Equal digests, in a time that does not depend on where they differ.
bool SameDigest(const QByteArray& A, const QByteArray& B)
{
    if (A.size() != B.size())
        return false;
    unsigned char Diff = 0;
    for (int i = 0; i < A.size(); ++i)
        Diff |= static_cast<unsigned char>(A[i] ^ B[i]);
    return Diff == 0;
}

QJsonObject ErrorObject(const QString& Message) { return QJsonObject{{QStringLiteral("error"), Message}}; }

int Fail(QJsonObject& Answer, int Status, const QString& Message)
{
    Answer = ErrorObject(Message);
    return Status;
}

// The connection a provider's dataset reads through, when it has one.
TADOConnection* ConnectionOf(TDataSetProvider* P)
{
    auto* A = qobject_cast<TADODataSet*>(P->DataSet());
    return A ? A->Connection() : nullptr;
}

// After a database error: a connection that no longer answers is closed, so that the
// next call connects again. Returns whether it was closed.
bool DropDeadConnection(TDataSetProvider* P)
{
    TADOConnection* C = ConnectionOf(P);
    if (!C || !C->Connected())
        return false;
    {
        QSqlQuery Q(C->Database());
        if (Q.exec(QStringLiteral("SELECT 1")))
            return false;
    }
    try {
        C->Close();
    } catch (const Exception&) {
    }
    return true;
}

const QStringList Calls{QStringLiteral("GetRecords"), QStringLiteral("ApplyUpdates"), QStringLiteral("Execute"),
                        QStringLiteral("GetParams"), QStringLiteral("RowRequest"), QStringLiteral("DataRequest")};

int RunCall(TDataSetProvider* P, const QString& Call, const QJsonObject& Request, QJsonObject& Answer, QByteArray* Text)
{
    QJsonValue OwnerData = Request.value(QStringLiteral("ownerData"));
    QString Error;
    QList<TPacketParam> Params;
    if (!DataPacket::DecodeParams(Request.value(QStringLiteral("params")), Params, Error))
        return Fail(Answer, 400, Error);
    if (Call == QLatin1String("GetRecords")) {
        const QJsonValue Count = Request.value(QStringLiteral("count"));
        const QJsonValue Token = Request.value(QStringLiteral("token"));
        if ((!Count.isUndefined() && (!Count.isDouble() || Count.toDouble() != double(Count.toInt()) || Count.toInt() < -1))
            || (!Token.isUndefined() && !Token.isNull() && !Token.isString()))
            return Fail(Answer, 400, QStringLiteral("count must be an integer of -1 or more, token text"));
        const TDataPacket Packet = P->GetRecords(Count.isUndefined() ? -1 : Count.toInt(), Token.toString(), Params, OwnerData);
        if (Text) {
            DataPacket::WritePacket(Packet, *Text);
            if (!OwnerData.isUndefined()) {  // {… ,"ownerData":value}
                const QByteArray Value = QJsonDocument(QJsonArray{OwnerData}).toJson(QJsonDocument::Compact);
                Text->chop(1);
                *Text += ",\"ownerData\":" + Value.mid(1, Value.size() - 2) + '}';
            }
            return 200;
        }
        Answer = DataPacket::EncodePacket(Packet);
    } else if (Call == QLatin1String("ApplyUpdates")) {
        TFieldDefs Fields;
        QList<TDeltaRecord> Delta;
        if (!DataPacket::DecodeDelta(Request.value(QStringLiteral("delta")).toObject(), Fields, Delta, Error))
            return Fail(Answer, 400, Error);
        const QJsonValue Max = Request.value(QStringLiteral("maxErrors"));
        if (!Max.isDouble() || Max.toDouble() != double(Max.toInt()) || Max.toInt() < -1)
            return Fail(Answer, 400, QStringLiteral("maxErrors must be an integer of -1 or more"));
        const TApplyResult R = P->ApplyUpdates(Fields, Delta, Max.toInt(), OwnerData);
        QJsonArray Errors;
        for (const TApplyResult::TRowError& E : R.Errors) {
            QJsonObject O{{QStringLiteral("index"), E.Index}, {QStringLiteral("message"), E.Message}};
            O.insert(QStringLiteral("current"), E.HasCurrentValues ? QJsonValue(DataPacket::EncodeRow(E.CurrentValues, Fields))
                                                                   : QJsonValue(QJsonValue::Null));
            Errors.append(O);
        }
        QJsonArray Refreshed;
        for (const TApplyResult::TRefreshedRow& Row : R.Refreshed)
            Refreshed.append(QJsonObject{{QStringLiteral("index"), Row.Index},
                                         {QStringLiteral("row"), DataPacket::EncodeRow(Row.Values, Fields)}});
        Answer = QJsonObject{{QStringLiteral("errorCount"), R.ErrorCount()},
                             {QStringLiteral("committed"), R.Committed},
                             {QStringLiteral("errors"), Errors}};
        if (!Refreshed.isEmpty())
            Answer.insert(QStringLiteral("refreshed"), Refreshed);
    } else if (Call == QLatin1String("Execute")) {
        P->Execute(Params, OwnerData);
    } else if (Call == QLatin1String("GetParams")) {
        Answer.insert(QStringLiteral("params"), DataPacket::EncodeParams(P->GetParams(OwnerData)));
    } else if (Call == QLatin1String("RowRequest")) {
        TFieldDefs Fields;
        QStringList Keys;
        TRecordValues Row, Current;
        if (!DataPacket::DecodeFields(Request.value(QStringLiteral("fields")), Fields, Keys, Error)
            || !DataPacket::DecodeRow(Request.value(QStringLiteral("row")), Fields, Row, Error))
            return Fail(Answer, 400, Error);
        const bool Found = P->RowRequest(Fields, Row, Current, OwnerData);
        Answer.insert(QStringLiteral("row"), Found ? QJsonValue(DataPacket::EncodeRow(Current, Fields)) : QJsonValue(QJsonValue::Null));
    } else {
        Answer.insert(QStringLiteral("result"), P->DataRequest(Request.value(QStringLiteral("input"))));
    }
    if (!OwnerData.isUndefined())
        Answer.insert(QStringLiteral("ownerData"), OwnerData);
    return 200;
}

} // namespace

namespace {
int DispatchTo(TCustomRemoteModule* Module, const QString& Provider, const QString& Call, const QJsonObject& Request,
               QJsonObject& Answer, QByteArray* Text);
}

int TAppServer::Dispatch(TCustomRemoteModule* Module, const QString& Provider, const QString& Call,
                         const QJsonObject& Request, QJsonObject& Answer)
{
    return DispatchTo(Module, Provider, Call, Request, Answer, nullptr);
}

int TAppServer::Dispatch(TCustomRemoteModule* Module, const QString& Provider, const QString& Call,
                         const QJsonObject& Request, QJsonObject& Answer, QByteArray& Text)
{
    Text.clear();
    return DispatchTo(Module, Provider, Call, Request, Answer, &Text);
}

namespace {

int DispatchTo(TCustomRemoteModule* Module, const QString& Provider, const QString& Call, const QJsonObject& Request,
               QJsonObject& Answer, QByteArray* Text)
{
    Answer = QJsonObject();
    if (!Module)
        return Fail(Answer, 500, QStringLiteral("The server has no module"));
    if (Call == QLatin1String("ProviderNames")) {
        Answer.insert(QStringLiteral("providers"), QJsonArray::fromStringList(Module->ProviderNames()));
        return 200;
    }
    if (!Calls.contains(Call))
        return Fail(Answer, 404, QStringLiteral("No such call: %1").arg(Call));
    if (Request.contains(QStringLiteral("commandText")) || Request.contains(QStringLiteral("sql")))
        return Fail(Answer, 400, QStringLiteral("The server does not accept SQL text from clients"));
    TDataSetProvider* P = Module->GetProvider(Provider);
    if (!P)
        return Fail(Answer, 404, QStringLiteral("Provider '%1' not found").arg(Provider));
    const bool Retryable = Call != QLatin1String("ApplyUpdates") && Call != QLatin1String("Execute");
    for (int Attempt = 0;; ++Attempt) {
        try {
            return RunCall(P, Call, Request, Answer, Text);
        } catch (const EProviderRequestError& E) {
            if (Text)
                Text->clear();
            return Fail(Answer, 400, E.Message);
        } catch (const Exception& E) {
            // A connection lost meanwhile (database restarted): connect again once for a read.
            if (DropDeadConnection(P) && Retryable && Attempt == 0)
                continue;
            return Fail(Answer, 500, E.Message);
        } catch (const std::exception& E) {
            return Fail(Answer, 500, QString::fromLocal8Bit(E.what()));
        }
    }
}

} // namespace

// ---- the server

class TAppServerPrivate
{
public:
    QString address = QStringLiteral("127.0.0.1");
    int port = 0;
    int workers = 4;
    qint64 maxRequestBytes = 8 * 1024 * 1024;
    int maxJsonDepth = 32;
    int timeOut = 30;
    QString certificateFile, privateKeyFile;

    struct TToken
    {
        QByteArray digest;
        QStringList providers;
    };
    QList<TToken> tokens;

    std::unique_ptr<THttpEngine> engine;
    // One module per worker, made and freed on the worker's own thread.
    std::vector<std::unique_ptr<TCustomRemoteModule>> modules;
    TAppServer::TModuleFactory factory;

    // The providers a bearer token allows; nullptr for an unknown token.
    const QStringList* Allowed(const QByteArray& Authorization) const;
    bool Gate(const THttpRequest& Head, THttpReply& Refusal) const;
    void Serve(int Worker, const THttpRequest& Request, THttpReply& Reply);
};

namespace {

// "/api/ProviderNames" or "/api/<provider>/<call>".
bool SplitPath(const QByteArray& Path, QString& Provider, QString& Call)
{
    static const QRegularExpression Re(QStringLiteral("^/api/(?:([A-Za-z0-9_]{1,128})/)?([A-Za-z]{1,32})$"));
    const QRegularExpressionMatch M = Re.match(QString::fromLatin1(Path));
    if (!M.hasMatch())
        return false;
    Provider = M.captured(1);
    Call = M.captured(2);
    return Provider.isEmpty() == (Call == QLatin1String("ProviderNames"));
}

void Refuse(THttpReply& Reply, int Status, const QString& Message)
{
    Reply.Status = Status;
    Reply.Body = QJsonDocument(ErrorObject(Message)).toJson(QJsonDocument::Compact);
}

} // namespace

const QStringList* TAppServerPrivate::Allowed(const QByteArray& Authorization) const
{
    static const QByteArray Scheme("Bearer ");
    if (!Authorization.startsWith(Scheme))
        return nullptr;
    const QByteArray Presented = Digest(Authorization.mid(Scheme.size()).trimmed());
    const QStringList* Found = nullptr;
    for (const TToken& T : tokens)  // every token is compared: no early way out
        if (SameDigest(T.digest, Presented) && !Found)
            Found = &T.providers;
    return Found;
}

bool TAppServerPrivate::Gate(const THttpRequest& Head, THttpReply& Refusal) const
{
    QString Provider, Call;
    if (!SplitPath(Head.Path, Provider, Call)) {
        Refuse(Refusal, 404, QStringLiteral("No such endpoint"));
        return false;
    }
    const QByteArray Method = Call == QLatin1String("ProviderNames") ? "GET" : "POST";
    if (Head.Method != Method) {
        Refuse(Refusal, 405, QStringLiteral("%1 expects %2").arg(Call, QString::fromLatin1(Method)));
        return false;
    }
    const QStringList* Providers = Allowed(Head.Authorization);
    if (!Providers) {
        Refuse(Refusal, 401, QStringLiteral("A valid bearer token is required"));
        return false;
    }
    if (!Provider.isEmpty() && !Providers->contains(QStringLiteral("*"))
        && !Providers->contains(Provider, Qt::CaseInsensitive)) {
        Refuse(Refusal, 403, QStringLiteral("This token may not use provider '%1'").arg(Provider));
        return false;
    }
    if (Head.ContentLength > maxRequestBytes) {
        Refuse(Refusal, 413, QStringLiteral("The request is larger than the server accepts"));
        return false;
    }
    return true;
}

void TAppServerPrivate::Serve(int Worker, const THttpRequest& Request, THttpReply& Reply)
{
    QString Provider, Call;
    SplitPath(Request.Path, Provider, Call);  // the gate let only good paths through
    QJsonObject Body, Answer;
    QString Error;
    int Status = 200;
    if (Call != QLatin1String("ProviderNames") && !DataPacket::ParseObject(Request.Body, maxJsonDepth, Body, Error)) {
        Status = 400;
        Answer = ErrorObject(Error);
    } else if (Worker < 0 || Worker >= int(modules.size())) {
        Status = 500;
        Answer = ErrorObject(QStringLiteral("The request reached no worker"));
    } else {
        try {
            if (!modules[Worker] && factory)
                modules[Worker].reset(factory());
            Status = TAppServer::Dispatch(modules[Worker].get(), Provider, Call, Body, Answer, Reply.Body);
            if (Status == 200 && Call == QLatin1String("ProviderNames")) {
                // Only the providers this client's token allows.
                const QStringList* Providers = Allowed(Request.Authorization);
                QJsonArray Names;
                for (const QJsonValue& N : Answer.value(QStringLiteral("providers")).toArray())
                    if (Providers && (Providers->contains(QStringLiteral("*")) || Providers->contains(N.toString(), Qt::CaseInsensitive)))
                        Names.append(N);
                Answer.insert(QStringLiteral("providers"), Names);
            }
        } catch (const Exception& E) {
            Status = 500;
            Answer = ErrorObject(E.Message);
        } catch (const std::exception& E) {
            Status = 500;
            Answer = ErrorObject(QString::fromLocal8Bit(E.what()));
        }
    }
    Reply.Status = Status;
    if (Status != 200 || Reply.Body.isEmpty())
        Reply.Body = QJsonDocument(Answer).toJson(QJsonDocument::Compact);
}

TAppServer::TAppServer(QObject* Owner) : QObject(Owner), d(new TAppServerPrivate) {}

TAppServer::~TAppServer() { Stop(); }

QString TAppServer::Address() const { return d->address; }
void TAppServer::SetAddress(const QString& Value) { d->address = Value; }
int TAppServer::Port() const { return d->port; }
void TAppServer::SetPort(int Value) { d->port = Value; }
int TAppServer::Workers() const { return d->workers; }
void TAppServer::SetWorkers(int Value) { d->workers = qBound(1, Value, 256); }
qint64 TAppServer::MaxRequestBytes() const { return d->maxRequestBytes; }
void TAppServer::SetMaxRequestBytes(qint64 Value) { d->maxRequestBytes = std::max<qint64>(1024, Value); }
int TAppServer::MaxJsonDepth() const { return d->maxJsonDepth; }
void TAppServer::SetMaxJsonDepth(int Value) { d->maxJsonDepth = qBound(2, Value, 512); }
int TAppServer::TimeOut() const { return d->timeOut; }
void TAppServer::SetTimeOut(int Value) { d->timeOut = std::max(1, Value); }
QString TAppServer::CertificateFile() const { return d->certificateFile; }
void TAppServer::SetCertificateFile(const QString& Value) { d->certificateFile = Value; }
QString TAppServer::PrivateKeyFile() const { return d->privateKeyFile; }
void TAppServer::SetPrivateKeyFile(const QString& Value) { d->privateKeyFile = Value; }

void TAppServer::AddToken(const QString& Token, const QStringList& Providers)
{
    if (Active())
        throw EDatabaseError(QStringLiteral("TAppServer.AddToken\r\nThe server is running."));
    if (Token.size() < 16)
        throw EDatabaseError(QStringLiteral("TAppServer.AddToken\r\nA token needs at least 16 characters."));
    d->tokens.append({Digest(Token.toUtf8()), Providers});
}

bool TAppServer::Active() const { return d->engine != nullptr; }
quint16 TAppServer::BoundPort() const { return d->engine ? d->engine->Port() : 0; }

void TAppServer::Start()
{
    if (Active())
        return;
    if (!ModuleFactory)
        throw EDatabaseError(QStringLiteral("TAppServer.Start\r\nModuleFactory is not set."));
    d->factory = ModuleFactory;
    d->modules.clear();
    d->modules.resize(size_t(d->workers));
    THttpEngineOptions O;
    O.Host = d->address;
    O.Port = quint16(d->port);
    O.Workers = d->workers;
    O.MaxBodyBytes = d->maxRequestBytes;
    O.TimeOutSeconds = d->timeOut;
    O.CertificateFile = d->certificateFile;
    O.PrivateKeyFile = d->privateKeyFile;
    auto Engine = THttpEngine::Create();
    TAppServerPrivate* P = d.get();
    QString Error;
    const bool Ok = Engine->Start(
        O, [P](const THttpRequest& Head, THttpReply& Refusal) { return P->Gate(Head, Refusal); },
        [P](int Worker, const THttpRequest& Request, THttpReply& Reply) { P->Serve(Worker, Request, Reply); },
        [P](int Worker) {
            if (Worker >= 0 && Worker < int(P->modules.size()))
                P->modules[Worker].reset();
        },
        Error);
    if (!Ok)
        throw EDatabaseError(QStringLiteral("TAppServer.Start\r\n") + Error);
    d->engine = std::move(Engine);
}

void TAppServer::Stop()
{
    if (!d->engine)
        return;
    d->engine->Stop();
    d->engine.reset();
    d->modules.clear();
}

} // namespace Kesh
