// Kesh for Qt — the client side of the application server: connections a TClientDataSet
// reads and writes its rows through.
#pragma once
#include "../kesh_global.h"
#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <memory>

namespace Kesh {

class TCustomRemoteModule;

/// Where a client dataset's provider lives.
class KESH_EXPORT TCustomRemoteServer : public QObject
{
    Q_OBJECT

public:
    explicit TCustomRemoteServer(QObject* Owner = nullptr);
    ~TCustomRemoteServer() override;
    /// Runs Call of Provider with Request; returns the answer or raises EDatabaseError with
    /// the server's message.
    virtual QJsonObject AppServerCall(const QString& Provider, const QString& Call, const QJsonObject& Request) = 0;
    /// Names of the providers this client may use.
    virtual QStringList GetProviderNames() = 0;
};

/// Providers of a module in the same process: the same calls without the network.
class KESH_EXPORT TLocalConnection : public TCustomRemoteServer
{
    Q_OBJECT

public:
    explicit TLocalConnection(QObject* Owner = nullptr);
    ~TLocalConnection() override;
    TCustomRemoteModule* Module() const;
    void SetModule(TCustomRemoteModule* Value);
    QJsonObject AppServerCall(const QString& Provider, const QString& Call, const QJsonObject& Request) override;
    QStringList GetProviderNames() override;

private:
    QPointer<QObject> m_module;
};

/// An application server reached over HTTP or HTTPS.
class KESH_EXPORT TWebConnection : public TCustomRemoteServer
{
    Q_OBJECT
    Q_PROPERTY(QString URL READ URL WRITE SetURL)
    Q_PROPERTY(QString Token READ Token WRITE SetToken)
    Q_PROPERTY(int TimeOut READ TimeOut WRITE SetTimeOut)
    Q_PROPERTY(QString CACertificateFile READ CACertificateFile WRITE SetCACertificateFile)

public:
    explicit TWebConnection(QObject* Owner = nullptr);
    ~TWebConnection() override;
    /// The server's address, as "http://127.0.0.1:8211".
    QString URL() const;
    void SetURL(const QString& Value);
    /// The bearer token the server gave this client.
    QString Token() const;
    void SetToken(const QString& Value);
    /// Milliseconds a call may take (30000).
    int TimeOut() const;
    void SetTimeOut(int Value);
    /// PEM file of the certificates an https server's certificate must chain to (empty:
    /// the system's).
    QString CACertificateFile() const;
    void SetCACertificateFile(const QString& Value);

    QJsonObject AppServerCall(const QString& Provider, const QString& Call, const QJsonObject& Request) override;
    QStringList GetProviderNames() override;
    /// HTTP status of the last call (0: no answer).
    int LastStatus() const;

private:
    QJsonObject Send(const QString& Path, const QJsonObject* Body);
    std::unique_ptr<class TWebConnectionPrivate> const d;
};

} // namespace Kesh
