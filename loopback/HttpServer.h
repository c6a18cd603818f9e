// The listening socket on 127.0.0.1 and its threads. cpp-httplib handles the HTTP protocol; the connections
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
    // Connections that resumed a TLS session instead of a full handshake.
    std::uint64_t resumed = 0;
    std::uint64_t open = 0;
    std::uint64_t requests = 0;
};

class HttpServer
{
public:
    // Takes the PEM files of the server's certificate chain and key. Throws std::runtime_error.
    HttpServer(const std::filesystem::path &certificateChain, const std::filesystem::path &privateKey,
               HttpHandler handler);
    ~HttpServer();

    // Listens on the port (0 lets the system choose one) and returns it. Throws std::runtime_error. From then
    // on clients can connect; they get answers once Run is running.
    int Bind(int port);

    // Serves until another thread calls Stop. Returns when every connection is closed.
    void Run();
    void Stop();

    ConnectionCounts Counts() const;

private:
    class Listener;
    std::unique_ptr<Listener> m_listener;
};

} // namespace loopback
