// The characters of UTF-8 and UTF-16 texts, one by one. The one codec of the system: what is malformed is told apart
// from what isn't here, and so everywhere in the same way.
//
// Of malformed UTF-8 the longest part that could begin a character counts as one fault, as the Unicode standard
// recommends (3.9, substitution of maximal subparts): E2 82 41 is a fault and an "A".
#pragma once

#include <string>
#include <string_view>

constexpr char32_t ReplacementCharacter = 0xFFFD;
constexpr char32_t MalformedUtf8 = 0xFFFFFFFF;

// Reads a character at the start of bytes, which lose it. bytes isn't empty. MalformedUtf8 for a fault.
inline char32_t TakeUtf8(std::string_view &bytes) noexcept
{
    const auto first = static_cast<unsigned char>(bytes.front());
    bytes.remove_prefix(1);
    if (first < 0x80)
    {
        return first;
    }
    const int following = first >= 0xC2 && first <= 0xDF   ? 1
                          : (first & 0xF0) == 0xE0         ? 2
                          : first >= 0xF0 && first <= 0xF4 ? 3
                                                           : 0;
    // The second byte's range leaves out overlong forms, surrogates and what lies above U+10FFFF.
    unsigned lowest = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    unsigned highest = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    char32_t character = following == 0 ? MalformedUtf8 : first & (0x3Fu >> following);
    for (int i = 0; i < following; ++i)
    {
        const unsigned next = bytes.empty() ? 0 : static_cast<unsigned char>(bytes.front());
        if (next < lowest || next > highest)
        {
            return MalformedUtf8;
        }
        character = character << 6 | (next & 0x3F);
        bytes.remove_prefix(1);
        lowest = 0x80;
        highest = 0xBF;
    }
    return character;
}

// Calls put with each byte of the character.
template <class Put>
void AppendUtf8(char32_t character, Put &&put)
{
    constexpr unsigned Leads[] = {0x00, 0xC0, 0xE0, 0xF0};
    const int following = character < 0x80 ? 0 : character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    put(static_cast<char>(Leads[following] | character >> (6 * following)));
    for (int shift = 6 * (following - 1); shift >= 0; shift -= 6)
    {
        put(static_cast<char>(0x80 | (character >> shift & 0x3F)));
    }
}

inline bool IsUtf8(std::string_view bytes) noexcept
{
    while (!bytes.empty())
    {
        if (TakeUtf8(bytes) == MalformedUtf8)
        {
            return false;
        }
    }
    return true;
}

// With U+FFFD in the place of each fault.
inline std::string RepairedUtf8(std::string_view bytes)
{
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty())
    {
        const char32_t character = TakeUtf8(bytes);
        AppendUtf8(character == MalformedUtf8 ? ReplacementCharacter : character,
                   [&](char byte) { text += byte; });
    }
    return text;
}

constexpr bool IsSurrogate(char32_t character) noexcept
{
    return character >= 0xD800 && character <= 0xDFFF;
}

// Reads a character at the start of text, whose units are char16_t or Windows' wchar_t, and which
// loses it. text isn't empty. A surrogate alone is returned as it is.
template <class Unit>
char32_t TakeUtf16(std::basic_string_view<Unit> &text) noexcept
{
    const char32_t first = static_cast<char16_t>(text.front());
    text.remove_prefix(1);
    const char32_t second = text.empty() ? 0 : static_cast<char16_t>(text.front());
    if ((first & 0xFC00) != 0xD800 || (second & 0xFC00) != 0xDC00)
    {
        return first;
    }
    text.remove_prefix(1);
    return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
}

// Appends the character's units to a container.
template <class Text>
void AppendUtf16(Text &text, char32_t character)
{
    using Unit = typename Text::value_type;
    if (character >= 0x10000)
    {
        text.push_back(static_cast<Unit>(0xD7C0 + (character >> 10)));
        character = 0xDC00 + (character & 0x3FF);
    }
    text.push_back(static_cast<Unit>(character));
}
