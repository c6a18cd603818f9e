// Conversion between the UTF-16 of the Windows API and the UTF-8 of files, networks and terminals, and text from others
// made safe to show.
#pragma once

#include "com/Utf8.h"
#include "com/WideText.h"

// In both directions what is malformed becomes U+FFFD, a surrogate alone too.
inline WideText FromUtf8(std::string_view bytes)
{
    WideText text;
    text.reserve(bytes.size());
    while (!bytes.empty())
    {
        const char32_t character = TakeUtf8(bytes);
        AppendUtf16(text, character == MalformedUtf8 ? ReplacementCharacter : character);
    }
    return text;
}

inline std::string ToUtf8(WideView text)
{
    std::string bytes;
    bytes.reserve(text.size());
    while (!text.empty())
    {
        const char32_t character = TakeUtf16(text);
        AppendUtf8(IsSurrogate(character) ? ReplacementCharacter : character, [&](char byte) { bytes += byte; });
    }
    return bytes;
}

// File names are UTF-16 in the Windows API and bytes on Linux. They are converted as UTF-8; a byte that belongs to no
// character becomes the lone surrogate U+DC00 + byte, and is converted back to that byte, so that every name of
// the file system survives the round trip. Other lone surrogates get the three bytes that UTF-8 would have for
// them.
inline WideText PathFromBytes(std::string_view bytes)
{
    WideText path;
    path.reserve(bytes.size());
    while (!bytes.empty())
    {
        std::string_view rest = bytes;
        const char32_t character = TakeUtf8(rest);
        if (character == MalformedUtf8)
        {
            path.push_back(static_cast<WCHAR>(0xDC00 + static_cast<unsigned char>(bytes.front())));
            bytes.remove_prefix(1);
            continue;
        }
        AppendUtf16(path, character);
        bytes = rest;
    }
    return path;
}

inline std::string PathToBytes(WideView path)
{
    std::string bytes;
    bytes.reserve(path.size());
    while (!path.empty())
    {
        const char32_t character = TakeUtf16(path);
        if (character >= 0xDC80 && character <= 0xDCFF)
        {
            bytes += static_cast<char>(character - 0xDC00);
            continue;
        }
        AppendUtf8(character, [&](char byte) { bytes += byte; });
    }
    return bytes;
}

// Whether a terminal, or a log that is shown in one, obeys the character instead of showing it: controls of ASCII and
// ISO 6429, and marks that reorder or break the line.
constexpr bool IsCommand(char32_t character) noexcept
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x200E ||
           character == 0x200F || (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069);
}

// The text in one line, without power over the terminal: a line break or a tab becomes a blank, another control
// of ASCII shows in caret notation, and every other command, like a fault in the UTF-8, as U+FFFD.
inline std::string OneSafeLine(std::string_view utf8)
{
    std::string safe;
    const auto put = [&](char byte) { safe += byte; };
    while (!utf8.empty())
    {
        const char32_t character = TakeUtf8(utf8);
        if (character == '\r' && utf8.starts_with('\n'))
        {
            continue;
        }
        if (character == '\n' || character == '\t' || character == '\r')
        {
            put(' ');
        }
        else if (character < 0x20 || character == 0x7F)
        {
            put('^');
            put(static_cast<char>(character ^ 0x40));
        }
        else
        {
            AppendUtf8(character == MalformedUtf8 || IsCommand(character) ? ReplacementCharacter : character, put);
        }
    }
    return safe;
}
