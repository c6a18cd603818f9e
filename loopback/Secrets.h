// What needs OpenSSL: the hash of signatures, comparison in constant time, and texts that can't be
// guessed. Throws std::runtime_error if the random generator fails.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

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

} // namespace loopback
