#include "loopback/HttpServer.h"

#include "com/AsciiText.h"
#include <microhttpd.h>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstring>
#include <mutex>
#include <stdexcept>

namespace loopback
{

namespace
{

constexpr int ListenBacklog = 128;
// A fixed, small receive buffer, so that a client notices after a few hundred KB that we stopped reading.
constexpr int ReceiveBuffer = 128 * 1024;
// Half of it holds the piece of a body that is passed on at a time.
constexpr std::size_t ConnectionMemory = 256 * 1024;
constexpr unsigned char TlsHandshakeRecord = 0x16;

// The server as one of its two daemons sees it.
struct Door
{
    const BeginTransaction &begin;
    bool isSecure;
};

struct StopDaemon
{
    void operator()(MHD_Daemon *daemon) const { MHD_stop_daemon(daemon); }
};
using Daemon = std::unique_ptr<MHD_Daemon, StopDaemon>;

class Socket
{
public:
    explicit Socket(int number) : m_number(number) {}
    Socket(Socket &&other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Socket &operator=(Socket &&other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Socket()
    {
        if (m_number >= 0)
        {
            close(m_number);
        }
    }

    int Get() const { return m_number; }
    int Release() { return std::exchange(m_number, -1); }

private:
    int m_number;
};

// What is known of a request between the calls of the library.
struct Exchange
{
    std::string target;
    std::unique_ptr<HttpTransaction> transaction;
    // The error that the transaction ended with, to be answered when the body has been read to its end.
    std::string failure;
};

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

HttpRequest RequestOf(MHD_Connection *connection, const char *method, const std::string &target, bool isSecure)
{
    HttpRequest request{method, target};
    request.secure = isSecure;
    MHD_get_connection_values(
        connection, MHD_HEADER_KIND,
        [](void *headers, MHD_ValueKind, const char *name, const char *value) {
            static_cast<std::map<std::string, std::string> *>(headers)->emplace(LowerAscii(name),
                                                                                value ? value : "");
            return MHD_YES;
        },
        &request.headers);
    request.host = request.Header("host");
    TakeWholeAddress(request);
    request.host = LowerAscii(request.host);
    const std::string ownPort = isSecure ? ":443" : ":80";
    if (request.host.ends_with(ownPort))
    {
        request.host.resize(request.host.size() - ownPort.size());
    }
    return request;
}

void Reset(MHD_Connection *connection)
{
    // Taking back the address of a connected socket makes the system send a reset.
    const sockaddr none{AF_UNSPEC, {}};
    connect(MHD_get_connection_info(connection, MHD_CONNECTION_INFO_CONNECTION_FD)->connect_fd, &none,
            sizeof none);
}

MHD_Response *FileResponse(const std::filesystem::path &path)
{
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const off_t size = file >= 0 ? lseek(file, 0, SEEK_END) : -1;
    // The response owns the file.
    return size < 0 ? nullptr : MHD_create_response_from_fd(static_cast<std::size_t>(size), file);
}

// Gives half of the text and then an error, upon which the library ends the connection.
MHD_Response *HalfResponse(const std::string &body)
{
    return MHD_create_response_from_callback(
        body.size(), body.size(),
        [](void *text, std::uint64_t position, char *bytes, std::size_t size) -> ssize_t {
            const auto &whole = *static_cast<std::string *>(text);
            if (position >= whole.size() / 2)
            {
                return MHD_CONTENT_READER_END_WITH_ERROR;
            }
            return static_cast<ssize_t>(whole.copy(bytes, std::min(size, whole.size() / 2 - position), position));
        },
        new std::string(body), [](void *text) { delete static_cast<std::string *>(text); });
}

MHD_Result Send(MHD_Connection *connection, const HttpReply &reply)
{
    if (reply.delivery == Delivery::Reset)
    {
        Reset(connection);
    }
    if (reply.delivery == Delivery::Reset || reply.delivery == Delivery::Closed)
    {
        return MHD_NO;
    }
    MHD_Response *response =
        !reply.file.empty() ? FileResponse(reply.file)
        : reply.delivery == Delivery::Half
            ? HalfResponse(reply.body)
            : MHD_create_response_from_buffer(reply.body.size(), const_cast<char *>(reply.body.data()),
                                              MHD_RESPMEM_MUST_COPY);
    if (!response)
    {
        return MHD_NO;
    }
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, reply.contentType.c_str());
    for (const auto &[name, value] : reply.headers)
    {
        MHD_add_response_header(response, name.c_str(), value.c_str());
    }
    const MHD_Result result = MHD_queue_response(connection, static_cast<unsigned>(reply.status), response);
    MHD_destroy_response(response);
    return result;
}

// The library calls this with the header, then for each piece of the body, then for the answer.
MHD_Result Handle(void *door, MHD_Connection *connection, const char *, const char *method, const char *,
                  const char *bytes, std::size_t *size, void **state)
{
    auto &exchange = *static_cast<Exchange *>(*state);
    const bool isBegin = !exchange.transaction && exchange.failure.empty();
    const bool isEnd = !isBegin && *size == 0;
    try
    {
        if (isBegin)
        {
            const auto &[begin, isSecure] = *static_cast<const Door *>(door);
            exchange.transaction = begin(RequestOf(connection, method, exchange.target, isSecure));
            return MHD_YES;
        }
        if (isEnd)
        {
            const HttpReply reply = exchange.failure.empty() ? exchange.transaction->Answer()
                                                             : HttpReply{500, "text/plain", exchange.failure};
            // What the request held is given back before the client sees the answer.
            exchange.transaction.reset();
            return Send(connection, reply);
        }
        const std::string_view piece(bytes, std::exchange(*size, 0));
        if (exchange.failure.empty() && !exchange.transaction->TakeBody(piece))
        {
            Reset(connection);
            return MHD_NO;
        }
    }
    catch (const std::exception &failure)
    {
        exchange.failure = failure.what();
        return isEnd ? Send(connection, {500, "text/plain", exchange.failure}) : MHD_YES;
    }
    return MHD_YES;
}

void *Begin(void *, const char *target, MHD_Connection *)
{
    return new Exchange{target};
}

void End(void *, MHD_Connection *, void **state, MHD_RequestTerminationCode)
{
    delete static_cast<Exchange *>(std::exchange(*state, nullptr));
}

Daemon StartDaemon(const Door &door, const ServerCredentials &credentials)
{
    std::vector<MHD_OptionItem> options = {
        {MHD_OPTION_URI_LOG_CALLBACK, reinterpret_cast<intptr_t>(&Begin), nullptr},
        {MHD_OPTION_NOTIFY_COMPLETED, reinterpret_cast<intptr_t>(&End), nullptr},
        {MHD_OPTION_CONNECTION_MEMORY_LIMIT, static_cast<intptr_t>(ConnectionMemory), nullptr}};
    if (door.isSecure)
    {
        options.push_back(
            {MHD_OPTION_HTTPS_PRIORITIES, 0, const_cast<char *>("NORMAL:-VERS-ALL:+VERS-TLS1.3:+VERS-TLS1.2")});
        options.push_back(
            {MHD_OPTION_HTTPS_MEM_CERT, 0, const_cast<char *>(credentials.certificateChain.c_str())});
        options.push_back({MHD_OPTION_HTTPS_MEM_KEY, 0, const_cast<char *>(credentials.privateKey.c_str())});
    }
    options.push_back({MHD_OPTION_END, 0, nullptr});
    const unsigned flags = MHD_USE_INTERNAL_POLLING_THREAD | MHD_USE_THREAD_PER_CONNECTION | MHD_USE_POLL |
                           MHD_USE_NO_LISTEN_SOCKET | MHD_USE_ITC | (door.isSecure ? MHD_USE_TLS : MHD_NO_FLAG);
    Daemon daemon(MHD_start_daemon(flags, 0, nullptr, nullptr, &Handle, const_cast<Door *>(&door),
                                   MHD_OPTION_ARRAY, options.data(), MHD_OPTION_END));
    if (!daemon)
    {
        throw std::runtime_error("the server's certificate or key can't be used");
    }
    return daemon;
}

Socket Listen(int port)
{
    Socket listening(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const int on = 1;
    setsockopt(listening.Get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    setsockopt(listening.Get(), SOL_SOCKET, SO_RCVBUF, &ReceiveBuffer, sizeof ReceiveBuffer);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    if (bind(listening.Get(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0 ||
        listen(listening.Get(), ListenBacklog) != 0)
    {
        throw std::runtime_error("can't listen on 127.0.0.1, port " + std::to_string(port) +
                                 ": is another program using it?");
    }
    return listening;
}

} // namespace

struct HttpServer::State
{
    State(int port, const ServerCredentials &credentials, BeginTransaction beginTransaction)
        : begin(std::move(beginTransaction)),
          listening(Listen(port)),
          plainDaemon(StartDaemon(plainDoor, credentials)),
          secureDaemon(StartDaemon(secureDoor, credentials))
    {
    }

    // Passes a connection whose first byte has arrived to the daemon that it is for.
    void Pass(Socket connection)
    {
        unsigned char first = 0;
        if (recv(connection.Get(), &first, 1, MSG_PEEK) != 1)
        {
            return;
        }
        const bool isSecure = first == TlsHandshakeRecord;
        secureConnections += isSecure ? 1 : 0;
        sockaddr_in client{};
        client.sin_family = AF_INET;
        client.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        MHD_add_connection((isSecure ? secureDaemon : plainDaemon).get(), connection.Release(),
                           reinterpret_cast<const sockaddr *>(&client), sizeof client);
    }

    const BeginTransaction begin;
    const Door plainDoor{begin, false};
    const Door secureDoor{begin, true};
    const Socket listening;
    const Socket stopSignal{eventfd(0, EFD_CLOEXEC)};
    std::atomic<std::uint64_t> secureConnections = 0;
    std::mutex mutex;
    std::condition_variable stopped;
    bool isStopping = false;
    Daemon plainDaemon;
    Daemon secureDaemon;
};

HttpServer::HttpServer(int port, const ServerCredentials &credentials, BeginTransaction begin)
    : m_state(std::make_unique<State>(port, credentials, std::move(begin)))
{
}

HttpServer::~HttpServer() = default;

int HttpServer::Port() const
{
    sockaddr_in address{};
    socklen_t size = sizeof address;
    getsockname(m_state->listening.Get(), reinterpret_cast<sockaddr *>(&address), &size);
    return ntohs(address.sin_port);
}

void HttpServer::Run()
{
    const int listening = m_state->listening.Get();
    const int stopSignal = m_state->stopSignal.Get();
    // Those of which nothing has arrived yet.
    std::vector<Socket> waiting;
    for (;;)
    {
        std::vector<pollfd> polled = {{stopSignal, POLLIN, 0}, {listening, POLLIN, 0}};
        for (const auto &connection : waiting)
        {
            polled.push_back({connection.Get(), POLLIN, 0});
        }
        poll(polled.data(), polled.size(), -1);
        if (polled[0].revents != 0)
        {
            break;
        }
        for (std::size_t i = waiting.size(); i > 0; --i)
        {
            if (polled[i + 1].revents != 0)
            {
                m_state->Pass(std::move(waiting[i - 1]));
                waiting.erase(waiting.begin() + static_cast<std::ptrdiff_t>(i - 1));
            }
        }
        Socket connection(accept4(listening, nullptr, nullptr, SOCK_CLOEXEC));
        if (connection.Get() >= 0)
        {
            waiting.push_back(std::move(connection));
        }
    }
    m_state->plainDaemon.reset();
    m_state->secureDaemon.reset();
}

void HttpServer::Stop()
{
    {
        std::lock_guard lock(m_state->mutex);
        m_state->isStopping = true;
    }
    m_state->stopped.notify_all();
    eventfd_write(m_state->stopSignal.Get(), 1);
}

bool HttpServer::Pause(std::chrono::milliseconds duration)
{
    std::unique_lock lock(m_state->mutex);
    return !m_state->stopped.wait_for(lock, duration, [this] { return m_state->isStopping; });
}

std::uint64_t HttpServer::SecureConnections() const
{
    return m_state->secureConnections;
}

std::string StatusWords(int status)
{
    return MHD_get_reason_phrase_for(static_cast<unsigned>(status));
}

} // namespace loopback
