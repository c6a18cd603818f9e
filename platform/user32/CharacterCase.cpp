// CharUpperW and CharLowerW take a pointer to a text, or one character in place of the pointer.
#include "platform/user32/CaseMapping.h"

#include <windows.h>

namespace
{
WCHAR *MapCase(WCHAR *text, WCHAR (*map)(WCHAR))
{
    if (IS_INTRESOURCE(text))
    {
        const auto unit = static_cast<WCHAR>(reinterpret_cast<ULONG_PTR>(text));
        return reinterpret_cast<WCHAR *>(static_cast<ULONG_PTR>(map(unit)));
    }
    for (WCHAR *at = text; *at != 0; ++at)
    {
        *at = map(*at);
    }
    return text;
}
} // namespace

LPWSTR WINAPI CharUpperW(LPWSTR text)
{
    return MapCase(text, UpperCase);
}

LPWSTR WINAPI CharLowerW(LPWSTR text)
{
    return MapCase(text, LowerCase);
}
