// The hashes of the service: HMAC-SHA1 for signatures, SHA-256 for the identity of a file.
#pragma once

#include <memory>
#include <string>
#include <string_view>

struct evp_md_ctx_st;

namespace loopback
{

// Returns the code in base64.
std::string HmacSha1(std::string_view key, std::string_view message);

// Constant-time comparison.
bool EqualSecretly(std::string_view one, std::string_view other);

class Sha256
{
public:
    Sha256();
    ~Sha256();
    void Add(std::string_view bytes);
    // Returns 64 lower-case hexadecimal digits. The object can't be used again.
    std::string Finish();

private:
    struct Release
    {
        void operator()(evp_md_ctx_st *context) const;
    };
    std::unique_ptr<evp_md_ctx_st, Release> m_context;
};

} // namespace loopback
