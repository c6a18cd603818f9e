// What needs OpenSSL: the hashes of signatures and files, comparison in constant time, and texts that can't be
// guessed. Throws std::runtime_error if the random generator fails.
#pragma once

#include <cstddef>
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

// Two lower-case hexadecimal digits per byte.
std::string RandomHex(std::size_t bytes);

// Decimal digits, for what needn't be secret.
std::string RandomDigits(std::size_t count);

// A token in the form that the real service's have.
std::string NewToken();

class Sha256
{
public:
    Sha256();
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
