#include "webclient/Utf8.h"

namespace
{
constexpr char32_t Replacement = 0xFFFD;

bool IsHighSurrogate(char32_t unit)
{
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool IsLowSurrogate(char32_t unit)
{
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

// The character at position, which moves on behind it.
char32_t NextCharacter(WideView text, size_t &position)
{
    const char32_t first = static_cast<char16_t>(text[position++]);
    if (IsHighSurrogate(first) && position < text.size())
    {
        const char32_t second = static_cast<char16_t>(text[position]);
        if (IsLowSurrogate(second))
        {
            ++position;
            return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
        }
    }
    return IsHighSurrogate(first) || IsLowSurrogate(first) ? Replacement : first;
}

template <class Append>
void Encode(WideView text, Append &&append)
{
    for (size_t position = 0; position < text.size();)
    {
        const char32_t c = NextCharacter(text, position);
        if (c < 0x80)
        {
            append(static_cast<char>(c));
            continue;
        }
        const int following = c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        static constexpr unsigned Lead[] = {0, 0xC0, 0xE0, 0xF0};
        append(static_cast<char>(Lead[following] | (c >> (6 * following))));
        for (int i = following - 1; i >= 0; --i)
        {
            append(static_cast<char>(0x80 | ((c >> (6 * i)) & 0x3F)));
        }
    }
}

// Decodes one character at position, or eats one byte of what is none.
char32_t NextCharacter(std::string_view bytes, size_t &position)
{
    const unsigned char Lead = bytes[position++];
    if (Lead < 0x80)
    {
        return Lead;
    }
    const size_t following = Lead >= 0xF0 && Lead <= 0xF4  ? 3
                             : Lead >= 0xE0 && Lead < 0xF0 ? 2
                             : Lead >= 0xC2 && Lead < 0xE0 ? 1
                                                           : 0;
    if (following == 0 || bytes.size() - position < following)
    {
        return Replacement;
    }
    char32_t c = Lead & (0x3Fu >> following);
    for (size_t i = 0; i < following; ++i)
    {
        const unsigned char next = bytes[position + i];
        if ((next & 0xC0) != 0x80)
        {
            return Replacement;
        }
        c = (c << 6) | (next & 0x3F);
    }
    static constexpr char32_t Least[] = {0, 0x80, 0x800, 0x10000};
    if (c < Least[following] || c > 0x10FFFF || IsHighSurrogate(c) || IsLowSurrogate(c))
    {
        return Replacement;
    }
    position += following;
    return c;
}
template <class Text>
Text Decode(std::string_view bytes)
{
    Text result;
    result.reserve(bytes.size());
    for (size_t position = 0; position < bytes.size();)
    {
        const char32_t c = NextCharacter(bytes, position);
        if (c < 0x10000)
        {
            result.push_back(static_cast<WCHAR>(c));
        }
        else
        {
            result.push_back(static_cast<WCHAR>(0xD800 + ((c - 0x10000) >> 10)));
            result.push_back(static_cast<WCHAR>(0xDC00 + (c & 0x3FF)));
        }
    }
    return result;
}
} // namespace

std::string Utf8FromWide(WideView text)
{
    std::string result;
    result.reserve(text.size());
    Encode(text, [&](char byte) { result.push_back(byte); });
    return result;
}

SecretText SecretUtf8FromWide(WideView text)
{
    SecretText result;
    Encode(text, [&](char byte) { result.Append(byte); });
    return result;
}

WideText WideFromUtf8(std::string_view bytes)
{
    return Decode<WideText>(bytes);
}

SecretWideText SecretWideFromUtf8(std::string_view bytes)
{
    return Decode<SecretWideText>(bytes);
}
