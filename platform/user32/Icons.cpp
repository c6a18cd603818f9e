// Icons natively are never drawn: a handle stands for the module's icon resource and is the address
// of its entry, so that it is one for each resource and needs no freeing.
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
