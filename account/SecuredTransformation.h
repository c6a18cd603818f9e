// The transformation between the sealed and the plain form of a value, its own inverse. Knows nothing
// of the platform: the tool that seals the values while the system is built uses it too.
#pragma once

#include <cstddef>
#include <cstdint>

// Little-endian mask over the bytes, byte i under byte i modulo 4 of the mask, as far as chunks of 16, 8
// and 4 bytes go. Each byte behind them is under the low byte of the mask shifted right by the byte's
// position in the value modulo 31. source and target may be the same.
inline void TransformSecured(const std::uint8_t *source, std::uint8_t *target, std::size_t length,
                             std::uint32_t mask) noexcept
{
    const std::size_t whole = length - length % 4;
    for (std::size_t i = 0; i < whole; ++i)
    {
        target[i] = static_cast<std::uint8_t>(source[i] ^ (mask >> (i % 4 * 8)));
    }
    for (std::size_t i = whole; i < length; ++i)
    {
        target[i] = static_cast<std::uint8_t>(source[i] ^ (mask >> (i % 31)));
    }
}
