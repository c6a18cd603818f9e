// Module handles, loading and exported functions, over the system's dynamic loader.
#include "platform/kernel32/LoadedModules.h"
#include "com/TextConversion.h"

#include "com/AsciiText.h"
#include "com/WideText.h"

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace
{
// The dynamic loader's handle of a loaded module. Adds a reference, which the caller must dlclose.
void *OpenLoaded(const LoadedModule &module)
{
    return dlopen(module.isProgram ? nullptr : module.path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
}

// Whether the name is that of a Windows system library; natively all of them are this library.
bool IsSystemLibrary(std::string_view given)
{
    static const std::string_view Names[] = {"kernel32", "user32",   "comctl32", "shell32", "shlwapi",
                                             "version",  "advapi32", "oleaut32", "ole32"};
    const std::string name = LowerAscii(given);
    const bool hasExtension = name.ends_with(".dll");
    const std::string_view bare(name.data(), name.size() - (hasExtension ? 4 : 0));
    return std::find(std::begin(Names), std::end(Names), bare) != std::end(Names);
}

std::optional<LoadedModule> FindNamed(const std::string &name)
{
    return IsSystemLibrary(name) ? FindModuleOfAddress(reinterpret_cast<const void *>(&GetModuleHandleExW))
                                 : FindModuleByName(name);
}

HMODULE HandleOf(const std::optional<LoadedModule> &found)
{
    if (!found)
    {
        SetLastError(ERROR_MOD_NOT_FOUND);
    }
    return found ? found->handle : nullptr;
}
} // namespace

// Only for the module of an address, without a reference to it.
BOOL WINAPI GetModuleHandleExW(DWORD flags, const WCHAR *address, HMODULE *module)
{
    constexpr DWORD known = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (module == nullptr || flags != known)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *module = HandleOf(FindModuleOfAddress(address));
    return *module != nullptr;
}

HMODULE WINAPI GetModuleHandleW(const WCHAR *name)
{
    return HandleOf(name == nullptr ? FindModule(nullptr) : FindNamed(ToUtf8(name)));
}

DWORD WINAPI GetModuleFileNameW(HMODULE module, WCHAR *buffer, DWORD capacity)
{
    const auto found = FindModule(module);
    if (!found)
    {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return 0;
    }
    const WideText path = FromUtf8(found->path);
    if (capacity <= path.size())
    {
        if (capacity > 0)
        {
            *std::copy_n(path.begin(), capacity - 1, buffer) = 0;
        }
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return capacity;
    }
    *std::copy(path.begin(), path.end(), buffer) = 0;
    SetLastError(ERROR_SUCCESS);
    return static_cast<DWORD>(path.size());
}

HMODULE WINAPI LoadLibraryW(const WCHAR *name)
{
    const std::string path = name == nullptr ? std::string() : ToUtf8(name);
    if (path.empty())
    {
        SetLastError(name == nullptr ? ERROR_MOD_NOT_FOUND : ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    void *const loaded = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (loaded == nullptr)
    {
        SetLastError(access(path.c_str(), F_OK) == 0 ? ERROR_BAD_EXE_FORMAT : ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    // Find the module by its dynamic section: that lies inside it, whatever name dlopen was given.
    link_map *map = nullptr;
    const bool mapped = dlinfo(loaded, RTLD_DI_LINKMAP, &map) == 0;
    const auto found = mapped ? FindModuleOfAddress(map->l_ld) : std::nullopt;
    if (!found)
    {
        dlclose(loaded);
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    return found->handle;
}

FARPROC WINAPI GetProcAddress(HMODULE module, const char *name)
{
    const auto found = FindModule(module);
    void *const loaded = found ? OpenLoaded(*found) : nullptr;
    if (loaded == nullptr)
    {
        SetLastError(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    const bool isOrdinal = reinterpret_cast<ULONG_PTR>(name) <= 0xFFFF;
    void *const symbol = isOrdinal ? nullptr : dlsym(loaded, name);
    dlclose(loaded);
    // dlsym also searches the libraries that the module depends on; GetProcAddress must not.
    const auto owner = symbol == nullptr ? std::nullopt : FindModuleOfAddress(symbol);
    if (!owner || owner->handle != found->handle)
    {
        SetLastError(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    return reinterpret_cast<FARPROC>(symbol);
}
