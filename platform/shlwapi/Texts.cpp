// Comparing texts.
#include "platform/user32/CaseMapping.h"

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
