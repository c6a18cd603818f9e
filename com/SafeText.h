// Makes untrusted text safe to show on one line of a terminal, a window or a log: the one rule for it.
#pragma once

#include "com/TextConversion.h"

// Whether a terminal obeys the character instead of showing it: controls of ASCII and ISO 6429, and marks that
// break the line or turn its direction.
constexpr bool IsCommand(char32_t character) noexcept
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0) ||
           (character >= 0x2028 && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

// Line breaks and tabs become blanks, carriage returns are dropped, and other control characters of ASCII
// show in caret notation ("^["). Other commands and lone surrogates become U+FFFD.
inline WideText SafeText(WideView text)
{
    WideText safe;
    safe.reserve(text.size());
    while (!text.empty())
    {
        const char32_t character = TakeUtf16(text);
        if (character == '\r')
        {
            continue;
        }
        if (character == '\n' || character == '\t' || character == 0x2028 || character == 0x2029)
        {
            safe += ' ';
        }
        else if (character < 0x20 || character == 0x7F)
        {
            safe += '^';
            safe += static_cast<WCHAR>(character ^ 0x40);
        }
        else
        {
            AppendUtf16(safe, IsCommand(character) || IsSurrogate(character) ? ReplacementCharacter : character);
        }
    }
    return safe;
}

// The same of UTF-8; what is none becomes U+FFFD.
inline std::string OneSafeLine(std::string_view utf8)
{
    return ToUtf8(SafeText(FromUtf8(utf8)));
}
