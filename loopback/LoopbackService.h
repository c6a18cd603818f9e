// The whole service: store, certificates, endpoints and server put together, and the way of a request to
// its endpoint. One store serves one process at a time.
#pragma once

#include "loopback/HttpServer.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace loopback
{

struct ServiceOptions
{
    // 0 lets the system choose.
    int port = 0;
    std::filesystem::path store;
    // Where the certificates lie; empty for "ca" in the store.
    std::filesystem::path certificates;
    // NAME=VALUE
    std::vector<std::string> accountProperties;
    // TOKEN:SECRET
    std::vector<std::string> tokens;
    // KEY:SECRET or KEY:SECRET:NAME
    std::vector<std::string> consumers;
    // As form fields, in the words of FaultQueue.h.
    std::vector<std::string> faults;
};

class LoopbackService
{
public:
    // Listens when it returns. Throws std::runtime_error with words for a user.
    explicit LoopbackService(const ServiceOptions &options);
    ~LoopbackService();

    int Port() const;
    std::filesystem::path AuthorityFile() const;
    // The addresses and environment variables for a client, as a shell reads them.
    std::string ClientEnvironment() const;

    // Serves until Stop was called from another thread.
    void Run();
    void Stop();

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

} // namespace loopback
