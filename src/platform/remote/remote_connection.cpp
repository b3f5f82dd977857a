#include "remote_connection.h"
#include "app_server.h"
#include "../exceptions.h"
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QTimer>
#include <QUrl>

namespace Kesh {

TCustomRemoteServer::TCustomRemoteServer(QObject* Owner) : QObject(Owner) {}
TCustomRemoteServer::~TCustomRemoteServer() = default;

// ---- TLocalConnection

TLocalConnection::TLocalConnection(QObject* Owner) : TCustomRemoteServer(Owner) {}
TLocalConnection::~TLocalConnection() = default;
TCustomRemoteModule* TLocalConnection::Module() const { return qobject_cast<TCustomRemoteModule*>(m_module.data()); }
void TLocalConnection::SetModule(TCustomRemoteModule* Value) { m_module = Value; }

QJsonObject TLocalConnection::AppServerCall(const QString& Provider, const QString& Call, const QJsonObject& Request)
{
    QJsonObject Answer;
    if (TAppServer::Dispatch(Module(), Provider, Call, Request, Answer) != 200)
        throw EDatabaseError(Answer.value(QStringLiteral("error")).toString());
    return Answer;
}

QStringList TLocalConnection::GetProviderNames()
{
    QStringList Names;
    for (const QJsonValue& V : AppServerCall(QString(), QStringLiteral("ProviderNames"), {}).value(QStringLiteral("providers")).toArray())
        Names << V.toString();
    return Names;
}

// ---- TWebConnection

class TWebConnectionPrivate
{
public:
    QString url;
    QString token;
    int timeOut = 30000;
    QString caCertificateFile;
    int lastStatus = 0;
    std::unique_ptr<QNetworkAccessManager> manager;
};

TWebConnection::TWebConnection(QObject* Owner) : TCustomRemoteServer(Owner), d(new TWebConnectionPrivate) {}
TWebConnection::~TWebConnection() = default;

QString TWebConnection::URL() const { return d->url; }
void TWebConnection::SetURL(const QString& Value) { d->url = Value; }
QString TWebConnection::Token() const { return d->token; }
void TWebConnection::SetToken(const QString& Value) { d->token = Value; }
int TWebConnection::TimeOut() const { return d->timeOut; }
void TWebConnection::SetTimeOut(int Value) { d->timeOut = std::max(1, Value); }
QString TWebConnection::CACertificateFile() const { return d->caCertificateFile; }
void TWebConnection::SetCACertificateFile(const QString& Value) { d->caCertificateFile = Value; }
int TWebConnection::LastStatus() const { return d->lastStatus; }

QJsonObject TWebConnection::Send(const QString& Path, const QJsonObject* Body)
{
    QUrl Url(d->url);
    if (!Url.isValid() || (Url.scheme() != QLatin1String("http") && Url.scheme() != QLatin1String("https")))
        throw EDatabaseError(QStringLiteral("TWebConnection\r\nInvalid URL: %1").arg(d->url));
    QString Base = Url.path();
    if (!Base.endsWith(QLatin1Char('/')))
        Base += QLatin1Char('/');
    Url.setPath(Base + Path);
    if (!d->manager)
        d->manager = std::make_unique<QNetworkAccessManager>();
    QNetworkRequest Request(Url);
    Request.setRawHeader("Authorization", "Bearer " + d->token.toUtf8());
    Request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    Request.setTransferTimeout(d->timeOut);
    if (!d->caCertificateFile.isEmpty() && Url.scheme() == QLatin1String("https")) {
        QSslConfiguration Tls = QSslConfiguration::defaultConfiguration();
        Tls.setCaCertificates(QSslCertificate::fromPath(d->caCertificateFile));
        Request.setSslConfiguration(Tls);
    }
    QNetworkReply* Reply = Body ? d->manager->post(Request, QJsonDocument(*Body).toJson(QJsonDocument::Compact))
                                : d->manager->get(Request);
    QEventLoop Loop;
    QObject::connect(Reply, &QNetworkReply::finished, &Loop, &QEventLoop::quit);
    if (!Reply->isFinished())
        Loop.exec(QEventLoop::ExcludeUserInputEvents);
    const QByteArray Data = Reply->readAll();
    d->lastStatus = Reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QNetworkReply::NetworkError NetError = Reply->error();
    const QString NetText = Reply->errorString();
    Reply->deleteLater();
    const QJsonDocument Doc = QJsonDocument::fromJson(Data);
    if (d->lastStatus == 200 && Doc.isObject())
        return Doc.object();
    QString Message = Doc.object().value(QStringLiteral("error")).toString();
    if (Message.isEmpty())
        Message = NetError == QNetworkReply::OperationCanceledError || NetError == QNetworkReply::TimeoutError
                      ? QStringLiteral("The application server did not answer in time")
                      : NetText;
    throw EDatabaseError(Message);
}

QJsonObject TWebConnection::AppServerCall(const QString& Provider, const QString& Call, const QJsonObject& Request)
{
    return Send(QStringLiteral("api/%1/%2").arg(Provider, Call), &Request);
}

QStringList TWebConnection::GetProviderNames()
{
    QStringList Names;
    for (const QJsonValue& V : Send(QStringLiteral("api/ProviderNames"), nullptr).value(QStringLiteral("providers")).toArray())
        Names << V.toString();
    return Names;
}

} // namespace Kesh
