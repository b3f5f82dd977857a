// Kesh for Qt — TAppServer: publishes the providers of a server module over HTTP.
#pragma once
#include "provider.h"
#include <QJsonObject>
#include <QObject>
#include <functional>
#include <memory>

namespace Kesh {

/// An application server: one endpoint per provider call, JSON packets, nothing kept
/// between requests, so that any number of server processes can stand behind an HTTP
/// load balancer.
///
/// Endpoints: GET /api/ProviderNames; POST /api/<provider>/<call> where call is
/// GetRecords, ApplyUpdates, Execute, GetParams, RowRequest or DataRequest. Every request
/// carries "Authorization: Bearer <token>"; the token's list of providers is checked
/// before the body is read and before any SQL runs (401 without a valid token, 403 for a
/// provider it may not use). Bodies larger than MaxRequestBytes are refused (413) before
/// they are held in memory, JSON nested deeper than MaxJsonDepth and malformed JSON are
/// 400, a request that carries SQL text is 400. Each worker thread answers with its own
/// module made by ModuleFactory (on that thread, at its first request).
class KESH_EXPORT TAppServer : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString Address READ Address WRITE SetAddress)
    Q_PROPERTY(int Port READ Port WRITE SetPort)
    Q_PROPERTY(int Workers READ Workers WRITE SetWorkers)
    Q_PROPERTY(qint64 MaxRequestBytes READ MaxRequestBytes WRITE SetMaxRequestBytes)
    Q_PROPERTY(int MaxJsonDepth READ MaxJsonDepth WRITE SetMaxJsonDepth)
    Q_PROPERTY(int TimeOut READ TimeOut WRITE SetTimeOut)
    Q_PROPERTY(QString CertificateFile READ CertificateFile WRITE SetCertificateFile)
    Q_PROPERTY(QString PrivateKeyFile READ PrivateKeyFile WRITE SetPrivateKeyFile)

public:
    using TModuleFactory = std::function<TCustomRemoteModule*()>;

    explicit TAppServer(QObject* Owner = nullptr);
    ~TAppServer() override;

    /// The address listened on: 127.0.0.1 unless set otherwise.
    QString Address() const;
    void SetAddress(const QString& Value);
    /// 0: any free port (read the one chosen from BoundPort()).
    int Port() const;
    void SetPort(int Value);
    int Workers() const;
    void SetWorkers(int Value);
    qint64 MaxRequestBytes() const;
    void SetMaxRequestBytes(qint64 Value);
    int MaxJsonDepth() const;
    void SetMaxJsonDepth(int Value);
    /// Seconds a request may take to arrive or its answer to leave.
    int TimeOut() const;
    void SetTimeOut(int Value);
    /// PEM files; both set: the server speaks HTTPS only.
    QString CertificateFile() const;
    void SetCertificateFile(const QString& Value);
    QString PrivateKeyFile() const;
    void SetPrivateKeyFile(const QString& Value);

    /// Allows a client holding Token to use Providers ("*": every provider). Only the
    /// token's SHA-256 digest is kept. Raises while the server runs.
    void AddToken(const QString& Token, const QStringList& Providers);

    /// Makes the module each worker serves with; the server owns what it returns.
    TModuleFactory ModuleFactory;

    /// Starts listening; raises EDatabaseError when it cannot.
    void Start();
    void Stop();
    bool Active() const;
    quint16 BoundPort() const;

    /// Answers one call on Module, as the endpoints do (also for in-process clients):
    /// the HTTP status and the JSON answer ({"error": text} when not 200).
    static int Dispatch(TCustomRemoteModule* Module, const QString& Provider, const QString& Call,
                        const QJsonObject& Request, QJsonObject& Answer);
    /// The same, but a packet of rows is written as JSON text into Text (left empty for
    /// the other answers, which come in Answer).
    static int Dispatch(TCustomRemoteModule* Module, const QString& Provider, const QString& Call,
                        const QJsonObject& Request, QJsonObject& Answer, QByteArray& Text);

private:
    std::unique_ptr<class TAppServerPrivate> const d;
};

} // namespace Kesh
