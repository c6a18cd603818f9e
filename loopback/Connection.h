// One accepted connection: TLS, or plain HTTP if the client's first byte doesn't begin a TLS handshake.
// A read ends when bytes arrive, the time limit is over or the server stops, whichever comes first.
// Used by one thread.
#pragma once

#include "loopback/HttpMessages.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

struct ssl_ctx_st;
struct ssl_st;

namespace loopback
{

class Connection
{
public:
    // Owns the socket. `stopSignal` is a descriptor that becomes readable when the server stops.
    Connection(int socket, int stopSignal, std::uint64_t number);
    ~Connection();
    Connection(const Connection &) = delete;
    Connection &operator=(const Connection &) = delete;

    // Returns false if the client disconnects or doesn't complete the handshake in ten seconds.
    bool Accept(ssl_ctx_st *context);

    bool IsSecure() const { return m_tls != nullptr; }
    bool IsResumed() const;
    std::uint64_t Number() const { return m_number; }
    int Socket() const { return m_socket; }

    // Returns the number of bytes read (at least 1), or -1: closed, failed, timed out, stopping or dropped.
    std::ptrdiff_t Read(char *bytes, std::size_t size);
    // Writes all bytes and returns their number, or -1.
    std::ptrdiff_t Write(const char *bytes, std::size_t size);

    // Waits for the first byte of the next request.
    bool WaitForRequest(std::chrono::milliseconds limit);

    bool Pause(std::chrono::milliseconds duration);

    // Makes all further reads and writes fail; the destructor then ends the connection in that way.
    void Drop(ConnectionEnd end);
    bool IsDropped() const { return m_dropped; }

private:
    struct TlsRelease
    {
        void operator()(ssl_st *tls) const;
    };

    bool Wait(short events, std::chrono::milliseconds limit);
    bool WaitAfter(int result, std::chrono::milliseconds limit);
    bool Fill();

    int m_socket;
    int m_stopSignal;
    std::uint64_t m_number;
    std::unique_ptr<ssl_st, TlsRelease> m_tls;
    bool m_dropped = false;
    bool m_reset = false;
    bool m_failed = false;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};

} // namespace loopback
