// Parts of a path's text. Natively "/" separates as "\" does on Windows.
#include <windows.h>
#include <shlwapi.h>

namespace
{
bool IsSeparator(WCHAR c)
{
    return c == '/' || c == '\\';
}
} // namespace

// Behind the last separator or colon that something other than a separator follows.
LPWSTR WINAPI PathFindFileNameW(LPCWSTR path)
{
    const WCHAR *name = path;
    for (const WCHAR *at = path; at != nullptr && *at != 0; ++at)
    {
        if ((IsSeparator(*at) || *at == ':') && at[1] != 0 && !IsSeparator(at[1]))
        {
            name = at + 1;
        }
    }
    return const_cast<LPWSTR>(name);
}

// At the last full stop of the last part, or at the end; a blank ends the search for an extension.
LPWSTR WINAPI PathFindExtensionW(LPCWSTR path)
{
    const WCHAR *extension = nullptr;
    const WCHAR *at = path;
    for (; at != nullptr && *at != 0; ++at)
    {
        if (IsSeparator(*at) || *at == ' ')
        {
            extension = nullptr;
        }
        else if (*at == '.')
        {
            extension = at;
        }
    }
    return const_cast<LPWSTR>(extension != nullptr ? extension : at);
}
