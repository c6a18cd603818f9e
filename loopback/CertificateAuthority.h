// The certificates of the service: an authority of its own, made at the first start and kept, and a
// server certificate for the known hosts. The authority may sign for these names only, so trusting
// it gives nothing else away. Private keys have mode 0600.
#pragma once

#include <filesystem>

namespace loopback
{

struct CertificateFiles
{
    // What a client has to trust.
    std::filesystem::path authority;
    std::filesystem::path serverChain;
    std::filesystem::path serverKey;
};

// Uses what the folder holds if it is whole, covers every known host and is good for 30 days more;
// otherwise makes it anew. Throws std::runtime_error.
CertificateFiles PrepareCertificates(const std::filesystem::path &folder);

} // namespace loopback
