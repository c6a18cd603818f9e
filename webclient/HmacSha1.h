// HMAC-SHA1 (RFC 2104) by the cryptographic library of the system that this is built for.
#pragma once

#include <array>
#include <string_view>

using HmacSha1Digest = std::array<unsigned char, 20>;

// E_FAIL is thrown if the library refuses.
HmacSha1Digest HmacSha1(std::string_view key, std::string_view message);
