#include "platform/user32/CaseMapping.h"

#include <unicode/uchar.h>

char16_t UpperCase(char16_t unit)
{
    const UChar32 mapped = u_toupper(unit);
    return mapped <= 0xFFFF ? static_cast<char16_t>(mapped) : unit;
}
