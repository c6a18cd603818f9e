// Conversion between the character sets of files and UTF-16, by the system or its library.
#pragma once

#include "com/WideText.h"

#include <optional>
#include <string_view>

enum class Charset
{
    Utf8,
    Windows1252,
    Iso2022Jp,
    ShiftJis,
    EucJp
};

enum class Faults
{
    Refuse, // nothing at all for bytes that don't fit
    Replace // by U+FFFD
};

// Nothing too for a character set that the system doesn't know.
std::optional<WideText> TextFromCharset(Charset charset, std::string_view bytes, Faults faults);
