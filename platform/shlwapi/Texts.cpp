// Comparing and searching texts.
#include "platform/user32/CaseMapping.h"

#include "com/WideText.h"

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

LPWSTR WINAPI StrStrW(LPCWSTR text, LPCWSTR wanted)
{
    if (text == nullptr || wanted == nullptr || *wanted == 0)
    {
        return nullptr;
    }
    const size_t at = WideView(text).find(wanted);
    return at == WideView::npos ? nullptr : const_cast<LPWSTR>(text + at);
}
