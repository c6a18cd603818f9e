// Texts that can't be guessed, from OpenSSL's random generator.
#pragma once

#include <cstddef>
#include <string>

namespace loopback
{

// Two lower-case hexadecimal digits per byte. Throws std::runtime_error if the generator fails.
std::string RandomHex(std::size_t bytes);

// `count` decimal digits. Throws std::runtime_error if the generator fails.
std::string RandomDigits(std::size_t count);

} // namespace loopback
