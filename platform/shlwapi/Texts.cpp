// Texts that are compared, and names in paths.
#include "platform/user32/CaseMapping.h"

#include <windows.h>
#include <shlwapi.h>

// Orders by the capital letters' code units; no locale's rules play a part.
int WINAPI StrCmpIW(LPCWSTR first, LPCWSTR second)
{
    for (;; ++first, ++second)
    {
        const int a = UpperCase(*first);
        const int b = UpperCase(*second);
        if (a != b || a == 0)
        {
            return a - b;
        }
    }
}

// Behind the last separator that something other than a separator follows. A path here is the system's: "/" alone
// separates, and a name may hold "\" and ":".
LPWSTR WINAPI PathFindFileNameW(LPCWSTR path)
{
    const WCHAR *name = path;
    for (const WCHAR *at = path; at != nullptr && *at != 0; ++at)
    {
        if (*at == '/' && at[1] != 0 && at[1] != '/')
        {
            name = at + 1;
        }
    }
    return const_cast<LPWSTR>(name);
}
