// The listening socket on 127.0.0.1, for TLS and for plain HTTP: the first byte of a connection tells which it is.
// libmicrohttpd handles the connections, each on a thread of its own and with any number of requests.
#pragma once

#include "loopback/HttpMessages.h"

#include <chrono>
#include <cstdint>
#include <memory>

namespace loopback
{

struct ServerCredentials
{
    // PEM
    std::string certificateChain;
    std::string privateKey;
};

class HttpServer
{
public:
    // Listens on the port; 0 lets the system choose one. From then on clients can connect; they get answers once Run
    // is running. Throws std::runtime_error.
    HttpServer(int port, const ServerCredentials &credentials, BeginTransaction begin);
    ~HttpServer();

    int Port() const;

    // Serves until another thread calls Stop. Returns when every connection is closed.
    void Run();
    void Stop();

    // For transactions: returns false as soon as the server is stopping.
    bool Pause(std::chrono::milliseconds duration);

    // How many connections with TLS clients have opened so far.
    std::uint64_t SecureConnections() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

} // namespace loopback
