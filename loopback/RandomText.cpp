#include "loopback/RandomText.h"

#include <openssl/rand.h>

#include <stdexcept>
#include <vector>

namespace loopback
{

namespace
{

std::vector<unsigned char> RandomBytes(std::size_t count)
{
    std::vector<unsigned char> bytes(count);
    if (RAND_bytes(bytes.data(), static_cast<int>(count)) != 1)
    {
        throw std::runtime_error("the random generator gives nothing");
    }
    return bytes;
}

} // namespace

std::string RandomHex(std::size_t bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string text;
    for (const unsigned char byte : RandomBytes(bytes))
    {
        text += {digits[byte >> 4], digits[byte & 15]};
    }
    return text;
}

std::string RandomDigits(std::size_t count)
{
    std::string text;
    while (text.size() < count)
    {
        for (const unsigned char byte : RandomBytes(count))
        {
            // 250 is the last multiple of ten: the six values from there on would favour the digits 0 to 5.
            if (byte < 250 && text.size() < count)
            {
                text += static_cast<char>('0' + byte % 10);
            }
        }
    }
    return text;
}

} // namespace loopback
