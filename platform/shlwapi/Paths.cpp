// Parts of a path's text. A path here is the system's: "/" alone separates, and a name may hold "\" and ":".
#include <windows.h>
#include <shlwapi.h>

// Behind the last separator that something other than a separator follows.
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
