// Hashes by the system's cryptographic library.
#pragma once

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// SHA-256 of bytes that come piece by piece.
class Sha256
{
public:
    // Throws std::bad_alloc if the library has no hash to give.
    Sha256();
    ~Sha256();

    void Add(std::string_view bytes);

    // 64 lower-case hexadecimal digits. Nothing can be added any more.
    std::string Finish();

private:
    struct Hash;
    std::unique_ptr<Hash> m_hash;
};

// HMAC-SHA1 (RFC 2104); nothing if the library fails.
using Sha1Digest = std::array<unsigned char, 20>;
std::optional<Sha1Digest> HmacSha1(std::string_view key, std::string_view message);

// Two lower-case hexadecimal digits for each byte.
inline std::string HexDigits(std::span<const unsigned char> bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : bytes)
    {
        text += {digits[byte >> 4], digits[byte & 15]};
    }
    return text;
}
