// Random hexadecimal text, for nonces and boundaries.
#pragma once

#include <random>
#include <string>

// Eight digits for each word of 32 random bits, from the system's own source.
inline std::string RandomHexText(unsigned words)
{
    std::random_device source;
    std::string result;
    for (unsigned i = 0; i < words; ++i)
    {
        unsigned word = source();
        for (int digit = 0; digit < 8; ++digit, word >>= 4)
        {
            result.push_back("0123456789abcdef"[word & 15]);
        }
    }
    return result;
}
