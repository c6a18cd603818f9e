#include "platform/user32/CaseMapping.h"

#include <windows.h>

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
