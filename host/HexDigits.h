#pragma once

#include <span>
#include <string>

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
