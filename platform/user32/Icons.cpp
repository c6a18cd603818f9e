// Natively icons are never drawn. An icon's handle is the address of its resource entry, so that each
// resource has exactly one handle and nothing must be freed.
#include <windows.h>

HICON WINAPI LoadIconW(HINSTANCE module, LPCWSTR name)
{
    constexpr WORD iconGroup = 14;
    const HRSRC group = FindResourceW(module, name, MAKEINTRESOURCEW(iconGroup));
    if (group == nullptr)
    {
        SetLastError(ERROR_RESOURCE_NAME_NOT_FOUND);
    }
    return reinterpret_cast<HICON>(group);
}
