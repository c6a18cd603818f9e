// The service's certificates: its own certificate authority, created at the first start and kept, and a
// server certificate for the known hosts. The authority is constrained to these names, so a client that
// trusts it trusts it for nothing else. Private keys have mode 0600.
#pragma once

#include "loopback/HttpServer.h"

#include <filesystem>

namespace loopback
{

struct Certificates
{
    // The authority's certificate, which a client must trust.
    std::filesystem::path authority;
    ServerCredentials server;
};

// Uses the folder's certificates if they are complete, cover every known host and are valid for 30 more
// days; otherwise creates new ones. Throws std::runtime_error.
Certificates PrepareCertificates(const std::filesystem::path &folder);

} // namespace loopback
