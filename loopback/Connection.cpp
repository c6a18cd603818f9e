#include "loopback/Connection.h"

#include <openssl/err.h>
#include <openssl/ssl.h>

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace loopback
{

namespace
{

constexpr std::chrono::seconds HandshakeLimit{10};
// Longer than any stall that tests use.
constexpr std::chrono::minutes TransferLimit{10};
// One TLS record holds at most 16 KB.
constexpr std::size_t BufferSize = 64 * 1024;
constexpr unsigned char TlsHandshakeRecord = 0x16;

} // namespace

void Connection::TlsRelease::operator()(ssl_st *tls) const
{
    SSL_free(tls);
}

Connection::Connection(int socket, int stopSignal, std::uint64_t number)
    : m_socket(socket), m_stopSignal(stopSignal), m_number(number), m_buffer(BufferSize)
{
    const int on = 1;
    setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    fcntl(m_socket, F_SETFL, fcntl(m_socket, F_GETFL) | O_NONBLOCK);
}

Connection::~Connection()
{
    if (m_reset)
    {
        const linger reset{1, 0};
        setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    }
    else
    {
        if (m_tls && !m_failed)
        {
            SSL_shutdown(m_tls.get());
        }
        shutdown(m_socket, SHUT_WR);
    }
    ERR_clear_error();
    close(m_socket);
}

bool Connection::Wait(short events, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    for (;;)
    {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        pollfd polled[] = {{m_stopSignal, POLLIN, 0}, {m_socket, events, 0}};
        const nfds_t count = events != 0 ? 2 : 1;
        const int ready = poll(polled, count, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
        if (ready < 0 && errno == EINTR)
        {
            continue;
        }
        return ready > 0 && polled[0].revents == 0;
    }
}

bool Connection::WaitAfter(int result, std::chrono::milliseconds limit)
{
    const int error = SSL_get_error(m_tls.get(), result);
    if (error == SSL_ERROR_WANT_READ)
    {
        return Wait(POLLIN, limit);
    }
    if (error == SSL_ERROR_WANT_WRITE)
    {
        return Wait(POLLOUT, limit);
    }
    // After these two errors SSL_shutdown must not be called.
    m_failed = m_failed || error == SSL_ERROR_SYSCALL || error == SSL_ERROR_SSL;
    return false;
}

bool Connection::Accept(ssl_ctx_st *context)
{
    unsigned char first = 0;
    if (!Wait(POLLIN, HandshakeLimit) || recv(m_socket, &first, 1, MSG_PEEK) != 1)
    {
        return false;
    }
    if (first != TlsHandshakeRecord)
    {
        return true;
    }
    m_tls.reset(SSL_new(context));
    if (!m_tls || SSL_set_fd(m_tls.get(), m_socket) != 1)
    {
        return false;
    }
    const auto end = std::chrono::steady_clock::now() + HandshakeLimit;
    for (;;)
    {
        ERR_clear_error();
        const int result = SSL_accept(m_tls.get());
        if (result == 1)
        {
            return true;
        }
        if (std::chrono::steady_clock::now() >= end || !WaitAfter(result, HandshakeLimit))
        {
            m_failed = true;
            return false;
        }
    }
}

bool Connection::IsResumed() const
{
    return m_tls && SSL_session_reused(m_tls.get()) == 1;
}

bool Connection::Fill()
{
    while (!m_dropped)
    {
        if (m_tls)
        {
            ERR_clear_error();
            const int got = SSL_read(m_tls.get(), m_buffer.data(), static_cast<int>(m_buffer.size()));
            if (got > 0)
            {
                m_begin = 0;
                m_end = static_cast<std::size_t>(got);
                return true;
            }
            if (!WaitAfter(got, TransferLimit))
            {
                return false;
            }
            continue;
        }
        const ssize_t got = recv(m_socket, m_buffer.data(), m_buffer.size(), 0);
        if (got > 0)
        {
            m_begin = 0;
            m_end = static_cast<std::size_t>(got);
            return true;
        }
        if (got == 0 || (errno != EAGAIN && errno != EINTR) || !Wait(POLLIN, TransferLimit))
        {
            return false;
        }
    }
    return false;
}

std::ptrdiff_t Connection::Read(char *bytes, std::size_t size)
{
    if (m_dropped || (m_begin == m_end && !Fill()))
    {
        return -1;
    }
    const std::size_t count = std::min(size, m_end - m_begin);
    std::memcpy(bytes, m_buffer.data() + m_begin, count);
    m_begin += count;
    return static_cast<std::ptrdiff_t>(count);
}

std::ptrdiff_t Connection::Write(const char *bytes, std::size_t size)
{
    std::size_t done = 0;
    while (done < size)
    {
        if (m_dropped)
        {
            return -1;
        }
        if (m_tls)
        {
            ERR_clear_error();
            const int put = SSL_write(m_tls.get(), bytes + done,
                                      static_cast<int>(std::min<std::size_t>(size - done, 1 << 20)));
            if (put > 0)
            {
                done += static_cast<std::size_t>(put);
            }
            else if (!WaitAfter(put, TransferLimit))
            {
                return -1;
            }
            continue;
        }
        const ssize_t put = send(m_socket, bytes + done, size - done, MSG_NOSIGNAL);
        if (put > 0)
        {
            done += static_cast<std::size_t>(put);
        }
        else if ((errno != EAGAIN && errno != EINTR) || !Wait(POLLOUT, TransferLimit))
        {
            return -1;
        }
    }
    return static_cast<std::ptrdiff_t>(done);
}

void Connection::Drop(ConnectionEnd end)
{
    m_reset = m_reset || (!m_dropped && end == ConnectionEnd::Reset);
    m_dropped = true;
}

bool Connection::WaitForRequest(std::chrono::milliseconds limit)
{
    if (m_dropped)
    {
        return false;
    }
    return m_begin < m_end || (m_tls && SSL_pending(m_tls.get()) > 0) || Wait(POLLIN, limit);
}

bool Connection::Pause(std::chrono::milliseconds duration)
{
    pollfd stop{m_stopSignal, POLLIN, 0};
    const auto end = std::chrono::steady_clock::now() + duration;
    for (;;)
    {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        const int ready = poll(&stop, 1, static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
        if (ready >= 0 || errno != EINTR)
        {
            return ready == 0;
        }
    }
}

} // namespace loopback
