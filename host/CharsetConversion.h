// Conversion from the character sets of files other than UTF-8 to UTF-16, by the system or its library.
#pragma once

#include "com/WideText.h"

#include <optional>
#include <string_view>

enum class Charset
{
    Windows1252,
    Iso2022Jp,
    ShiftJis,
    EucJp
};

enum class Faults
{
    Refuse, // nullopt for bytes that aren't valid
    Replace // by U+FFFD
};

// Also nullopt if the system lacks the character set.
std::optional<WideText> TextFromCharset(Charset charset, std::string_view bytes, Faults faults);
