// Texts that nobody can guess, from OpenSSL's generator.
#pragma once

#include <cstddef>
#include <string>

namespace loopback
{

// Two lower-case hexadecimal digits a byte. Throws std::runtime_error when the generator fails.
std::string RandomHex(std::size_t bytes);

// Decimal digits.
std::string RandomDigits(std::size_t count);

} // namespace loopback
