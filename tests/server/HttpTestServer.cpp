#include "tests/server/HttpTestServer.h"

#include <openssl/ssl.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace
{
constexpr size_t KeptBody = 2 * 1024 * 1024;

std::string LowerAscii(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; });
    return text;
}

int Listen(unsigned &port)
{
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener, reinterpret_cast<sockaddr *>(&address), sizeof(address)) != 0 || listen(listener, 16) != 0)
    {
        throw std::system_error(errno, std::generic_category(), "listening on 127.0.0.1");
    }
    socklen_t size = sizeof(address);
    getsockname(listener, reinterpret_cast<sockaddr *>(&address), &size);
    port = ntohs(address.sin_port);
    return listener;
}
} // namespace

std::string SeenRequest::Header(const std::string &name) const
{
    const std::string lower = "\r\n" + LowerAscii(headers);
    const size_t at = lower.find("\r\n" + name + ": ");
    if (at == std::string::npos)
    {
        return "(none)";
    }
    const size_t start = at + name.size() + 2; // "\r\n" was put in front
    return headers.substr(start, headers.find("\r\n", start) - start);
}

int Conversation::Read(char *buffer, int size)
{
    return m_tls ? SSL_read(m_tls, buffer, size)
                 : static_cast<int>(recv(m_socket, buffer, static_cast<size_t>(size), 0));
}

bool Conversation::Fill()
{
    char buffer[65536];
    const int read = Read(buffer, sizeof(buffer));
    if (read > 0)
    {
        m_ahead.append(buffer, static_cast<size_t>(read));
    }
    return read > 0;
}

std::optional<SeenRequest> Conversation::ReadHead()
{
    size_t end;
    while ((end = m_ahead.find("\r\n\r\n")) == std::string::npos)
    {
        if (!Fill())
        {
            return std::nullopt;
        }
    }
    SeenRequest request;
    request.connection = m_number;
    const size_t lineEnd = m_ahead.find("\r\n");
    request.line = m_ahead.substr(0, lineEnd);
    request.headers = m_ahead.substr(lineEnd + 2, end - lineEnd);
    m_ahead.erase(0, end + 4);
    return request;
}

void Conversation::ReadBody(SeenRequest &request, unsigned long long length)
{
    while (request.bodyBytes < length && (!m_ahead.empty() || Fill()))
    {
        const auto taken =
            static_cast<size_t>(std::min<unsigned long long>(m_ahead.size(), length - request.bodyBytes));
        request.body.append(m_ahead, 0, std::min(taken, KeptBody - std::min(KeptBody, request.body.size())));
        request.bodyBytes += taken;
        m_ahead.erase(0, taken);
    }
}

std::optional<SeenRequest> Conversation::ReadRequest()
{
    std::optional<SeenRequest> request = ReadHead();
    if (request)
    {
        const std::string length = request->Header("content-length");
        ReadBody(*request, length == "(none)" ? 0 : std::stoull(length));
        m_server.Record(*request);
    }
    return request;
}

void Conversation::Write(const std::string &text)
{
    if (m_tls)
    {
        SSL_write(m_tls, text.data(), static_cast<int>(text.size()));
        return;
    }
    for (size_t done = 0; done < text.size();)
    {
        const ssize_t sent = send(m_socket, text.data() + done, text.size() - done, MSG_NOSIGNAL);
        if (sent <= 0)
        {
            return;
        }
        done += static_cast<size_t>(sent);
    }
}

void Conversation::WriteReply(int status, const std::string &words, const std::string &body,
                              const std::string &headers)
{
    Write("HTTP/1.1 " + std::to_string(status) + " " + words + "\r\n" + headers +
          "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body);
}

void Conversation::WaitForEnd()
{
    // Looks at the socket without taking anything from it: a peer that waits must go on waiting.
    char byte;
    while (!m_server.m_isEnding && recv(m_socket, &byte, 1, MSG_PEEK) > 0)
    {
        usleep(20'000);
    }
}

void Conversation::Relay(unsigned port)
{
    const int other = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(port));
    // Known to the server, whose end must also end a send that the other side never takes.
    bool isOpen =
        m_server.Keep(other) && connect(other, reinterpret_cast<sockaddr *>(&address), sizeof(address)) == 0;
    pollfd ends[] = {{m_socket, POLLIN, 0}, {other, POLLIN, 0}};
    while (isOpen && poll(ends, 2, -1) > 0)
    {
        for (int i = 0; i < 2 && isOpen; ++i)
        {
            char buffer[16384];
            const ssize_t read = ends[i].revents != 0 ? recv(ends[i].fd, buffer, sizeof(buffer), 0) : 0;
            isOpen = ends[i].revents == 0 ||
                     (read > 0 && send(ends[1 - i].fd, buffer, static_cast<size_t>(read), MSG_NOSIGNAL) == read);
        }
    }
    m_server.Close(other);
}

HttpTestServer::HttpTestServer(const IssuedCertificate &certificate, Script script)
    : m_context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free), m_script(std::move(script))
{
    SSL_CTX_use_certificate(m_context.get(), certificate.certificate.get());
    SSL_CTX_use_PrivateKey(m_context.get(), certificate.key.get());
    Start();
}

HttpTestServer::HttpTestServer(Script script) : m_script(std::move(script))
{
    Start();
}

void HttpTestServer::Start()
{
    std::signal(SIGPIPE, SIG_IGN);
    m_listener = Listen(m_port);
    m_acceptor = std::thread([this] { Accept(); });
}

HttpTestServer::~HttpTestServer()
{
    m_isEnding = true;
    StopListening();
    m_acceptor.join();
    {
        const std::lock_guard guard(m_lock);
        for (const int open : m_open)
        {
            shutdown(open, SHUT_RDWR);
        }
    }
    for (std::thread &thread : m_threads)
    {
        thread.join();
    }
    close(m_listener);
}

void HttpTestServer::StopListening()
{
    shutdown(m_listener, SHUT_RDWR);
}

void HttpTestServer::Accept()
{
    for (;;)
    {
        const int connection = accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (connection < 0)
        {
            return;
        }
        const int number = ++m_connections;
        Keep(connection);
        m_threads.emplace_back([this, connection, number] { Serve(connection, number); });
    }
}

void HttpTestServer::Serve(int socket, int number)
{
    std::unique_ptr<SSL, void (*)(SSL *)> tls(m_context ? SSL_new(m_context.get()) : nullptr, SSL_free);
    if (!tls)
    {
        Conversation conversation(*this, nullptr, socket, number);
        m_script(conversation);
    }
    else if (SSL_set_fd(tls.get(), socket) == 1 && SSL_accept(tls.get()) == 1)
    {
        m_resumed += SSL_session_reused(tls.get());
        Conversation conversation(*this, tls.get(), socket, number);
        m_script(conversation);
        SSL_shutdown(tls.get());
    }
    Close(socket);
}

bool HttpTestServer::Keep(int socket)
{
    const std::lock_guard guard(m_lock);
    m_open.insert(socket);
    return !m_isEnding;
}

void HttpTestServer::Close(int socket)
{
    const std::lock_guard guard(m_lock);
    m_open.erase(socket);
    close(socket);
}

void HttpTestServer::Record(const SeenRequest &request)
{
    const std::lock_guard guard(m_lock);
    m_requests.push_back(request);
}

std::vector<SeenRequest> HttpTestServer::Requests()
{
    const std::lock_guard guard(m_lock);
    return m_requests;
}

void HttpTestServer::AnswerAll(Conversation &conversation)
{
    while (conversation.ReadRequest())
    {
        conversation.WriteReply(200, "OK", Success);
    }
}
