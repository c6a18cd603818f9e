#include "loopback/Utf8.h"

#include <cstddef>

namespace loopback
{

namespace
{

// The length of the well-formed sequence at the start of `bytes`, otherwise 0 (Unicode, table 3-7).
std::size_t SequenceLength(std::string_view bytes)
{
    const auto at = [&](std::size_t i) -> unsigned { return static_cast<unsigned char>(bytes[i]); };
    const unsigned lead = at(0);
    if (lead < 0x80)
    {
        return 1;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length)
    {
        return 0;
    }
    const unsigned lowest = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    const unsigned highest = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (at(1) < lowest || at(1) > highest)
    {
        return 0;
    }
    for (std::size_t i = 2; i < length; ++i)
    {
        if ((at(i) & 0xC0) != 0x80)
        {
            return 0;
        }
    }
    return length;
}

} // namespace

bool IsUtf8(std::string_view bytes)
{
    while (!bytes.empty())
    {
        const std::size_t length = SequenceLength(bytes);
        if (length == 0)
        {
            return false;
        }
        bytes.remove_prefix(length);
    }
    return true;
}

std::string RepairUtf8(std::string_view bytes)
{
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty())
    {
        const std::size_t length = SequenceLength(bytes);
        text.append(length == 0 ? std::string_view("\xEF\xBF\xBD") : bytes.substr(0, length));
        bytes.remove_prefix(length == 0 ? 1 : length);
    }
    return text;
}

} // namespace loopback
