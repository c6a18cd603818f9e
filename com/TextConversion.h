// Conversion between the UTF-16 of the Windows API and the UTF-8 of files, networks and terminals.
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
