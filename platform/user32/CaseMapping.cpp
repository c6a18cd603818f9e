#include "platform/user32/CaseMapping.h"

#include <unicode/uchar.h>

namespace
{
// A character whose other case lies outside the first plane has none here.
char16_t Narrow(char16_t unit, UChar32 mapped)
{
    return mapped <= 0xFFFF ? static_cast<char16_t>(mapped) : unit;
}
} // namespace

char16_t UpperCase(char16_t unit)
{
    return Narrow(unit, u_toupper(unit));
}

char16_t LowerCase(char16_t unit)
{
    return Narrow(unit, u_tolower(unit));
}
