// HMAC-SHA1 (RFC 2104), computed by the system's cryptographic library.
#pragma once

#include <array>
#include <string_view>

using HmacSha1Digest = std::array<unsigned char, 20>;

// Throws E_FAIL if the library fails.
HmacSha1Digest HmacSha1(std::string_view key, std::string_view message);
