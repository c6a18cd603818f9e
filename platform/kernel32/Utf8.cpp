#include "platform/kernel32/Utf8.h"

#include <cstddef>

namespace
{
constexpr char32_t Replacement = 0xFFFD;

// Reads one character and moves `at` past it. Of a malformed sequence it takes the longest part that could
// begin a well-formed one (Unicode 3.9, U+FFFD substitution of maximal subparts).
char32_t TakeUtf8(std::string_view text, size_t &at)
{
    const auto first = static_cast<unsigned char>(text[at++]);
    if (first < 0x80)
    {
        return first;
    }
    const int following = first >= 0xC2 && first <= 0xDF   ? 1
                          : (first & 0xF0) == 0xE0         ? 2
                          : first >= 0xF0 && first <= 0xF4 ? 3
                                                           : 0;
    if (following == 0)
    {
        return Replacement;
    }
    // The second byte's range excludes overlong forms, surrogates and what lies above U+10FFFF.
    unsigned lowest = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    unsigned highest = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    char32_t c = first & (0x3F >> following);
    for (int i = 0; i < following; ++i)
    {
        const unsigned next = at < text.size() ? static_cast<unsigned char>(text[at]) : 0;
        if (next < lowest || next > highest)
        {
            return Replacement;
        }
        c = c << 6 | (next & 0x3F);
        ++at;
        lowest = 0x80;
        highest = 0xBF;
    }
    return c;
}

char32_t TakeUtf16(WideView text, size_t &at)
{
    const char32_t unit = text[at++];
    if ((unit & 0xF800) != 0xD800)
    {
        return unit;
    }
    if (unit >= 0xDC00 || at == text.size() || (text[at] & 0xFC00) != 0xDC00)
    {
        return Replacement;
    }
    return 0x10000 + ((unit - 0xD800) << 10) + (text[at++] - 0xDC00);
}
} // namespace

WideText FromUtf8(std::string_view text)
{
    WideText result;
    result.reserve(text.size());
    for (size_t at = 0; at < text.size();)
    {
        char32_t c = TakeUtf8(text, at);
        if (c > 0xFFFF)
        {
            result += static_cast<WCHAR>(0xD7C0 + (c >> 10));
            c = 0xDC00 + (c & 0x3FF);
        }
        result += static_cast<WCHAR>(c);
    }
    return result;
}

std::string ToUtf8(WideView text)
{
    std::string result;
    result.reserve(text.size());
    for (size_t at = 0; at < text.size();)
    {
        const char32_t c = TakeUtf16(text, at);
        const int following = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        constexpr unsigned marks[] = {0x00, 0xC0, 0xE0, 0xF0};
        result += static_cast<char>(marks[following] | c >> (6 * following));
        for (int shift = 6 * (following - 1); shift >= 0; shift -= 6)
        {
            result += static_cast<char>(0x80 | (c >> shift & 0x3F));
        }
    }
    return result;
}
