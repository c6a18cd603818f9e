#include "loopback/HttpServer.h"

#include "com/AsciiText.h"
#include "loopback/Connection.h"

#include <httplib.h>
#include <openssl/ssl.h>

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace loopback
{

namespace
{

constexpr std::chrono::minutes KeepAliveLimit{5};
constexpr std::size_t KeepAliveRequests = 1'000'000'000;
constexpr int ListenBacklog = 128;
// A fixed, small receive buffer, so that a client notices after a few hundred KB that we stopped reading.
constexpr int ReceiveBuffer = 128 * 1024;
// httplib parses multipart bodies itself if it sees their Content-Type. Under this header name it doesn't,
// so that they stream through our own parser.
constexpr char HiddenContentType[] = "X-Loopback-Content-Type";

// A server must also accept a whole address as the target, as a proxy gets it. Its host then takes
// precedence over the Host header (RFC 9112, 3.2.2).
void TakeWholeAddress(HttpRequest &request)
{
    const std::size_t host = request.target.starts_with("https://")  ? 8
                             : request.target.starts_with("http://") ? 7
                                                                     : 0;
    if (host > 0)
    {
        const std::size_t path = std::min(request.target.find_first_of("/?", host), request.target.size());
        request.host = request.target.substr(host, path - host);
        request.target.erase(0, path);
        if (!request.target.starts_with('/'))
        {
            request.target.insert(0, 1, '/');
        }
    }
}

// Adapts a connection to httplib's stream interface.
class ConnectionStream final : public httplib::Stream
{
public:
    explicit ConnectionStream(Connection &connection) : m_connection(connection) {}

    bool is_readable() const override { return !m_connection.IsDropped(); }
    bool is_writable() const override { return !m_connection.IsDropped(); }
    ssize_t read(char *bytes, std::size_t size) override { return m_connection.Read(bytes, size); }
    ssize_t write(const char *bytes, std::size_t size) override { return m_connection.Write(bytes, size); }
    void get_remote_ip_and_port(std::string &ip, int &) const override { ip = "127.0.0.1"; }
    void get_local_ip_and_port(std::string &ip, int &) const override { ip = "127.0.0.1"; }
    socket_t socket() const override { return m_connection.Socket(); }

private:
    Connection &m_connection;
};

// Each connection has its own thread for as long as it lasts, so an idle browser blocks nobody.
class ThreadPerConnection final : public httplib::TaskQueue
{
public:
    void enqueue(std::function<void()> work) override
    {
        ++m_running;
        std::thread([this, work = std::move(work)] {
            work();
            std::lock_guard lock(m_mutex);
            --m_running;
            m_ended.notify_all();
        }).detach();
    }

    void shutdown() override
    {
        std::unique_lock lock(m_mutex);
        m_ended.wait(lock, [this] { return m_running == 0; });
    }

private:
    std::atomic<int> m_running = 0;
    std::mutex m_mutex;
    std::condition_variable m_ended;
};

class Exchange final : public HttpExchange
{
public:
    Exchange(const httplib::Request &request, Connection &connection, const httplib::ContentReader *reader)
        : m_connection(connection), m_reader(reader), m_drained(reader == nullptr)
    {
        m_request.method = request.method;
        m_request.target = request.target;
        m_request.secure = connection.IsSecure();
        m_request.connection = connection.Number();
        for (const auto &[name, value] : request.headers)
        {
            m_request.headers.emplace(LowerAscii(name == HiddenContentType ? "Content-Type" : name), value);
        }
        m_request.host = m_request.Header("host");
        TakeWholeAddress(m_request);
        m_request.host = LowerAscii(m_request.host);
        const std::string ownPort = m_request.secure ? ":443" : ":80";
        if (m_request.host.ends_with(ownPort))
        {
            m_request.host.resize(m_request.host.size() - ownPort.size());
        }
    }

    const HttpRequest &Request() const override { return m_request; }

    bool ReadBody(const BodySink &sink) override
    {
        if (m_drained)
        {
            return true;
        }
        // If the sink throws, read the body to its end all the same: the rest must not be taken for a request.
        std::exception_ptr failure;
        m_drained = (*m_reader)([&](const char *bytes, std::size_t size) {
            try
            {
                return (failure || sink(std::string_view(bytes, size))) && !m_connection.IsDropped();
            }
            catch (...)
            {
                failure = std::current_exception();
                return true;
            }
        });
        if (!m_drained)
        {
            m_connection.Drop(ConnectionEnd::Reset);
        }
        if (failure)
        {
            std::rethrow_exception(failure);
        }
        return m_drained;
    }

    bool Pause(std::chrono::milliseconds duration) override { return m_connection.Pause(duration); }
    void Drop(ConnectionEnd end) override { m_connection.Drop(end); }

private:
    HttpRequest m_request;
    Connection &m_connection;
    const httplib::ContentReader *m_reader;
    bool m_drained;
};

void SendFile(const std::filesystem::path &path, const std::string &type, httplib::Response &response)
{
    auto file = std::make_shared<std::ifstream>(path, std::ios::binary);
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error || !*file)
    {
        response.status = 404;
        return;
    }
    response.set_content_provider(
        size, type, [file](std::size_t offset, std::size_t length, httplib::DataSink &sink) {
            char bytes[64 * 1024];
            file->seekg(static_cast<std::streamoff>(offset));
            file->read(bytes, static_cast<std::streamsize>(std::min(length, sizeof bytes)));
            return file->gcount() > 0 && sink.write(bytes, static_cast<std::size_t>(file->gcount()));
        });
}

void FillResponse(const HttpReply &reply, httplib::Response &response)
{
    response.status = reply.status;
    for (const auto &[name, value] : reply.headers)
    {
        response.set_header(name, value);
    }
    if (!reply.file.empty())
    {
        SendFile(reply.file, reply.contentType, response);
    }
    else if (reply.cutInBody)
    {
        response.set_content_provider(reply.body.size(), reply.contentType,
                                      [body = reply.body](std::size_t, std::size_t, httplib::DataSink &sink) {
                                          sink.write(body.data(), body.size() / 2);
                                          return false;
                                      });
    }
    else
    {
        response.set_content(reply.body, reply.contentType);
    }
}

bool SetUpTls(SSL_CTX &context, const std::filesystem::path &chain, const std::filesystem::path &key)
{
    SSL_CTX_set_min_proto_version(&context, TLS1_2_VERSION);
    SSL_CTX_set_mode(&context, SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
    SSL_CTX_set_options(&context, SSL_OP_NO_COMPRESSION | SSL_OP_IGNORE_UNEXPECTED_EOF);
    return SSL_CTX_use_certificate_chain_file(&context, chain.c_str()) == 1 &&
           SSL_CTX_use_PrivateKey_file(&context, key.c_str(), SSL_FILETYPE_PEM) == 1;
}

} // namespace

class HttpServer::Listener final : public httplib::SSLServer
{
public:
    Listener(const std::filesystem::path &chain, const std::filesystem::path &key, HttpHandler handler)
        : httplib::SSLServer([&](SSL_CTX &context) { return SetUpTls(context, chain, key); }),
          m_handler(std::move(handler)),
          m_stopSignal(eventfd(0, EFD_CLOEXEC))
    {
        if (!is_valid() || m_stopSignal < 0)
        {
            throw std::runtime_error("the server's certificate or key can't be used: " + chain.string());
        }
        set_keep_alive_max_count(KeepAliveRequests);
        set_keep_alive_timeout(std::chrono::seconds(KeepAliveLimit).count());
        new_task_queue = [] { return new ThreadPerConnection; };
        // Not SO_REUSEPORT: with it a second server could silently take half of the connections.
        set_socket_options([this](socket_t socket) {
            m_socket = socket;
            const int on = 1;
            setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
            setsockopt(socket, SOL_SOCKET, SO_RCVBUF, &ReceiveBuffer, sizeof ReceiveBuffer);
        });
        Get(".*", [this](const httplib::Request &request, httplib::Response &response) {
            Answer(request, response, nullptr);
        });
        Post(".*", [this](const httplib::Request &request, httplib::Response &response,
                          const httplib::ContentReader &reader) { Answer(request, response, &reader); });
    }

    ~Listener() override { close(m_stopSignal); }

    int Bind(int port)
    {
        const int bound =
            port == 0 ? bind_to_any_port("127.0.0.1") : (bind_to_port("127.0.0.1", port) ? port : -1);
        if (bound <= 0)
        {
            throw std::runtime_error("can't listen on 127.0.0.1, port " + std::to_string(port) +
                                     ": is another program using it?");
        }
        // Call listen again for a longer queue than httplib's five.
        ::listen(m_socket, ListenBacklog);
        return bound;
    }

    void SignalStop()
    {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = write(m_stopSignal, &one, sizeof one);
        stop();
    }

    ConnectionCounts Counts() const { return {m_accepted, m_secure, m_resumed, m_open, m_requests}; }

private:
    // The one operation of the library that is replaced: TLS and plain HTTP on one port, waiting until the server
    // stops, and ends of a connection that a fault asks for are nowhere else to be had.
    bool process_and_close_socket(socket_t socket) override
    {
        Connection connection(socket, m_stopSignal, ++m_accepted);
        ++m_open;
        if (connection.Accept(ssl_context()))
        {
            m_secure += connection.IsSecure() ? 1 : 0;
            m_resumed += connection.IsResumed() ? 1 : 0;
            ConnectionStream stream(connection);
            t_connection = &connection;
            while (connection.WaitForRequest(KeepAliveLimit) && ServeOne(stream, connection))
            {
            }
            t_connection = nullptr;
        }
        --m_open;
        return true;
    }

    bool ServeOne(ConnectionStream &stream, Connection &connection)
    {
        bool closed = false;
        bool understood = false;
        const bool done = process_request(stream, false, closed, [&](httplib::Request &request) {
            understood = Admit(request);
            if (!understood)
            {
                connection.Drop(ConnectionEnd::Reset);
            }
        });
        return done && understood && !closed && !connection.IsDropped();
    }

    bool Admit(httplib::Request &request)
    {
        ++m_requests;
        const auto type = request.headers.find("Content-Type");
        if (type != request.headers.end())
        {
            const std::string value = type->second;
            request.headers.erase(type);
            request.headers.emplace(HiddenContentType, value);
        }
        // Without a length httplib would read until the connection ends.
        if (request.method == "POST" && !request.has_header("Content-Length") &&
            !request.has_header("Transfer-Encoding"))
        {
            request.set_header("Content-Length", "0");
        }
        return request.method == "GET" || request.method == "HEAD" || request.method == "POST";
    }

    void Answer(const httplib::Request &request, httplib::Response &response, const httplib::ContentReader *reader)
    {
        Exchange exchange(request, *t_connection, reader);
        HttpReply reply;
        try
        {
            reply = m_handler(exchange);
        }
        catch (const std::exception &failure)
        {
            reply = HttpReply{500, "text/plain; charset=utf-8", failure.what()};
        }
        exchange.ReadBody([](std::string_view) { return true; });
        FillResponse(reply, response);
    }

    // httplib doesn't tell its handlers on which connection they run.
    static thread_local Connection *t_connection;

    HttpHandler m_handler;
    int m_socket = -1; // that listens
    int m_stopSignal;
    std::atomic<std::uint64_t> m_accepted = 0;
    std::atomic<std::uint64_t> m_secure = 0;
    std::atomic<std::uint64_t> m_resumed = 0;
    std::atomic<std::uint64_t> m_open = 0;
    std::atomic<std::uint64_t> m_requests = 0;
};

thread_local Connection *HttpServer::Listener::t_connection = nullptr;

HttpServer::HttpServer(const std::filesystem::path &certificateChain, const std::filesystem::path &privateKey,
                       HttpHandler handler)
    : m_listener(std::make_unique<Listener>(certificateChain, privateKey, std::move(handler)))
{
}

HttpServer::~HttpServer() = default;

int HttpServer::Bind(int port)
{
    return m_listener->Bind(port);
}

void HttpServer::Run()
{
    m_listener->listen_after_bind();
}

void HttpServer::Stop()
{
    m_listener->SignalStop();
}

ConnectionCounts HttpServer::Counts() const
{
    return m_listener->Counts();
}

} // namespace loopback
