#include <unicode/uchar.h> // ahead of Windows' headers, which would mislead it

#include "platform/user32/CaseMapping.h"

#include <windows.h>

char16_t UpperCase(char16_t unit)
{
    const UChar32 mapped = u_toupper(unit);
    return mapped <= 0xFFFF ? static_cast<char16_t>(mapped) : unit;
}

// Takes a pointer to a text, or one character in place of the pointer.
LPWSTR WINAPI CharUpperW(LPWSTR text)
{
    if (IS_INTRESOURCE(text))
    {
        const auto unit = static_cast<WCHAR>(reinterpret_cast<ULONG_PTR>(text));
        return reinterpret_cast<WCHAR *>(static_cast<ULONG_PTR>(UpperCase(unit)));
    }
    for (WCHAR *at = text; *at != 0; ++at)
    {
        *at = UpperCase(*at);
    }
    return text;
}
