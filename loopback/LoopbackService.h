// The whole service: owns store, certificates, endpoints and server, and routes each request to its
// endpoint. Only one process at a time can use a store.
#pragma once

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
    // NAME=VALUE
    std::vector<std::string> accountProperties;
    // TOKEN:SECRET
    std::vector<std::string> tokens;
    // As form fields, in the words of FaultQueue.h.
    std::vector<std::string> faults;
};

class LoopbackService
{
public:
    // Listens when it returns. Throws std::runtime_error with a message for the user.
    explicit LoopbackService(const ServiceOptions &options);
    ~LoopbackService();

    int Port() const;
    std::filesystem::path AuthorityFile() const;
    // The addresses and environment variables that a client needs, as shell assignments.
    std::string ClientEnvironment() const;

    // Serves until another thread calls Stop.
    void Run();
    void Stop();

private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

} // namespace loopback
