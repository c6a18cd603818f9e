// CRC-32, as zip and PNG have it: tells any single changed bit and nearly every other damage of stored bytes. It
// keeps nobody from changing them on purpose.
#pragma once

#include <cstdint>
#include <string_view>

constexpr uint32_t Crc32(std::string_view bytes) noexcept
{
    constexpr uint32_t ReversedPolynomial = 0xEDB88320;
    uint32_t sum = 0xFFFFFFFF;
    for (const char byte : bytes)
    {
        sum ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
        {
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? ReversedPolynomial : 0);
        }
    }
    return ~sum;
}
static_assert(Crc32("123456789") == 0xCBF43926); // the check value of this sum
