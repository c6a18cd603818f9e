// The listening socket on 127.0.0.1 and its threads. HTTP is spoken by cpp-httplib, the connections
// (TLS, waiting, cutting) are our own. One connection carries any number of requests.
#pragma once

#include "loopback/HttpMessages.h"

#include <cstdint>
#include <filesystem>
#include <memory>

namespace loopback
{

struct ConnectionCounts
{
    std::uint64_t accepted = 0;
    std::uint64_t secure = 0;
    // TLS sessions taken up again instead of a full handshake.
    std::uint64_t resumed = 0;
    std::uint64_t open = 0;
    std::uint64_t requests = 0;
};

class HttpServer
{
public:
    // The PEM files of the server's certificate chain and key. Throws std::runtime_error.
    HttpServer(const std::filesystem::path &certificateChain, const std::filesystem::path &privateKey,
               HttpHandler handler);
    ~HttpServer();

    // Listens; 0 lets the system choose. The port, or std::runtime_error. From then on clients can
    // connect, and are answered once Run is on its way.
    int Bind(int port);

    // Serves until Stop, from another thread, was called; every connection is closed by then.
    void Run();
    void Stop();

    ConnectionCounts Counts() const;

private:
    class Listener;
    std::unique_ptr<Listener> m_listener;
};

} // namespace loopback
