// Every call of cpp-httplib lives in this file. It was chosen over Qt HTTP Server 6.4
// (Debian 12's technical preview) because it serves on a thread pool, runs a hook before
// the body is read (tokens and sizes are checked first), limits the body size while
// reading, and speaks TLS through OpenSSL; Qt's preview is single-threaded, buffers any
// body before the handler runs and has no such hook.
#include "http_engine_p.h"
#include <httplib.h>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace Kesh {

namespace {

// The engine's task queue with numbered threads, so that each worker keeps its own module
// and frees it on its own thread at the end.
class TWorkerPool : public httplib::TaskQueue
{
public:
    TWorkerPool(int Count, THttpEngine::TWorkerEnd End) : m_end(std::move(End))
    {
        for (int i = 0; i < Count; ++i)
            m_threads.emplace_back([this, i] { Run(i); });
    }
    ~TWorkerPool() override { shutdown(); }

    void enqueue(std::function<void()> Task) override
    {
        {
            std::lock_guard<std::mutex> Lock(m_mutex);
            m_tasks.push_back(std::move(Task));
        }
        m_wake.notify_one();
    }

    void shutdown() override
    {
        {
            std::lock_guard<std::mutex> Lock(m_mutex);
            m_stopping = true;
        }
        m_wake.notify_all();
        for (std::thread& T : m_threads)
            if (T.joinable())
                T.join();
    }

    static int CurrentWorker() { return t_worker; }

private:
    void Run(int Index)
    {
        t_worker = Index;
        for (;;) {
            std::function<void()> Task;
            {
                std::unique_lock<std::mutex> Lock(m_mutex);
                m_wake.wait(Lock, [this] { return m_stopping || !m_tasks.empty(); });
                if (m_tasks.empty())
                    break;
                Task = std::move(m_tasks.front());
                m_tasks.pop_front();
            }
            Task();
        }
        if (m_end)
            m_end(Index);
    }

    static thread_local int t_worker;
    THttpEngine::TWorkerEnd m_end;
    std::vector<std::thread> m_threads;
    std::deque<std::function<void()>> m_tasks;
    std::mutex m_mutex;
    std::condition_variable m_wake;
    bool m_stopping = false;
};

thread_local int TWorkerPool::t_worker = -1;

THttpRequest ToRequest(const httplib::Request& R, bool WithBody)
{
    THttpRequest Out;
    Out.Method = QByteArray::fromStdString(R.method);
    Out.Path = QByteArray::fromStdString(R.path);
    Out.Authorization = QByteArray::fromStdString(R.get_header_value("Authorization"));
    if (R.has_header("Content-Length")) {
        bool Ok = false;
        Out.ContentLength = QByteArray::fromStdString(R.get_header_value("Content-Length")).toLongLong(&Ok);
        if (!Ok)
            Out.ContentLength = -1;
    }
    if (WithBody)
        Out.Body = QByteArray::fromStdString(R.body);
    return Out;
}

void ToResponse(const THttpReply& Reply, httplib::Response& R)
{
    R.status = Reply.Status;
    R.set_content(Reply.Body.toStdString(), "application/json; charset=utf-8");
    if (Reply.Status == 401)
        R.set_header("WWW-Authenticate", "Bearer");
}

class THttplibEngine : public THttpEngine
{
public:
    ~THttplibEngine() override { Stop(); }

    bool Start(const THttpEngineOptions& Options, TGate Gate, THandler Handler, TWorkerEnd WorkerEnd,
               QString& Error) override
    {
        const bool Tls = !Options.CertificateFile.isEmpty() || !Options.PrivateKeyFile.isEmpty();
        if (Tls) {
            // A peer that hangs up during an OpenSSL write would raise SIGPIPE otherwise.
            std::signal(SIGPIPE, SIG_IGN);
            auto S = std::make_unique<httplib::SSLServer>(Options.CertificateFile.toLocal8Bit().constData(),
                                                          Options.PrivateKeyFile.toLocal8Bit().constData());
            if (!S->is_valid()) {
                Error = QStringLiteral("The TLS certificate or private key cannot be used");
                return false;
            }
            m_server = std::move(S);
        } else {
            m_server = std::make_unique<httplib::Server>();
        }
        httplib::Server& S = *m_server;
        const int Workers = std::max(1, Options.Workers);
        S.new_task_queue = [Workers, WorkerEnd] { return new TWorkerPool(Workers, WorkerEnd); };
        S.set_payload_max_length(size_t(Options.MaxBodyBytes));
        S.set_read_timeout(Options.TimeOutSeconds);
        S.set_write_timeout(Options.TimeOutSeconds);
        S.set_keep_alive_timeout(5);
        // An answer's header and body are separate writes: without this the body waits for
        // the client's delayed acknowledgement of the header (tens of milliseconds a call).
        S.set_tcp_nodelay(true);
        // A client reading packets one after another keeps its connection.
        S.set_keep_alive_max_count(1000);
        S.set_pre_routing_handler([Gate](const httplib::Request& Req, httplib::Response& Res) {
            THttpReply Refusal;
            if (Gate(ToRequest(Req, false), Refusal))
                return httplib::Server::HandlerResponse::Unhandled;
            ToResponse(Refusal, Res);
            return httplib::Server::HandlerResponse::Handled;
        });
        auto Serve = [Handler](const httplib::Request& Req, httplib::Response& Res) {
            THttpReply Reply;
            Handler(TWorkerPool::CurrentWorker(), ToRequest(Req, true), Reply);
            ToResponse(Reply, Res);
        };
        S.Get(".*", Serve);
        S.Post(".*", Serve);
        S.set_error_handler([](const httplib::Request&, httplib::Response& Res) {
            if (!Res.body.empty())
                return;
            const char* Text = Res.status == 413 ? "The request is larger than the server accepts"
                               : Res.status == 404 ? "No such endpoint"
                                                   : "The request cannot be served";
            Res.set_content(QByteArray("{\"error\":\"").append(Text).append("\"}").toStdString(), "application/json; charset=utf-8");
        });
        const std::string Host = Options.Host.toStdString();
        if (Options.Port == 0) {
            const int Port = S.bind_to_any_port(Host);
            m_port = Port > 0 ? quint16(Port) : 0;
        } else if (S.bind_to_port(Host, Options.Port)) {
            m_port = Options.Port;
        }
        if (m_port == 0) {
            Error = QStringLiteral("Cannot listen on %1:%2").arg(Options.Host).arg(Options.Port);
            m_server.reset();
            return false;
        }
        m_thread = std::thread([&S] { S.listen_after_bind(); });
        return true;
    }

    quint16 Port() const override { return m_port; }

    void Stop() override
    {
        if (!m_server)
            return;
        m_server->stop();
        if (m_thread.joinable())
            m_thread.join();
        m_server.reset();
        m_port = 0;
    }

private:
    std::unique_ptr<httplib::Server> m_server;
    std::thread m_thread;
    quint16 m_port = 0;
};

} // namespace

std::unique_ptr<THttpEngine> THttpEngine::Create() { return std::make_unique<THttplibEngine>(); }

} // namespace Kesh
