// Kesh for Qt — the small interface the application server asks of an HTTP engine; the
// one implementation (http_engine.cpp) is the only code that calls the engine itself.
#pragma once
#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>

namespace Kesh {

struct THttpRequest
{
    QByteArray Method;
    QByteArray Path;
    QByteArray Authorization;
    qint64 ContentLength = -1;  ///< -1 when the request did not give one
    QByteArray Body;            ///< empty in the gate: the body is not read yet
};

struct THttpReply
{
    int Status = 200;
    QByteArray Body;  ///< JSON
};

struct THttpEngineOptions
{
    QString Host;
    quint16 Port = 0;  ///< 0: any free port
    int Workers = 4;
    qint64 MaxBodyBytes = 0;
    int TimeOutSeconds = 30;
    QString CertificateFile, PrivateKeyFile;  ///< both set: TLS
};

class THttpEngine
{
public:
    /// Sees each request before its body is read; false (with Refusal filled in) answers it.
    using TGate = std::function<bool(const THttpRequest& Head, THttpReply& Refusal)>;
    /// Answers a request on worker Worker (0 … Workers - 1, one thread each).
    using THandler = std::function<void(int Worker, const THttpRequest& Request, THttpReply& Reply)>;
    /// Runs on a worker's own thread when it ends.
    using TWorkerEnd = std::function<void(int Worker)>;

    virtual ~THttpEngine() = default;
    static std::unique_ptr<THttpEngine> Create();
    /// Binds and starts serving on a thread of its own; false with Error when it cannot.
    virtual bool Start(const THttpEngineOptions& Options, TGate Gate, THandler Handler, TWorkerEnd WorkerEnd,
                       QString& Error) = 0;
    virtual quint16 Port() const = 0;
    /// Stops listening and waits for the workers to finish.
    virtual void Stop() = 0;
};

} // namespace Kesh
