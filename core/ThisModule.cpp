#include "core/ThisModule.h"

HMODULE ThisModule() noexcept
{
    // An object of this module finds the module by its address, however it was loaded and named.
    static const char Anchor = 0;
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&Anchor), &module);
    return module;
}

WideText ThisModulePath()
{
    WideText path(MAX_PATH, 0);
    for (;;)
    {
        const DWORD length = GetModuleFileNameW(ThisModule(), path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size())
        {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}
