// Window properties: values that any code may attach to a window under a name.
#include "platform/user32/CaseMapping.h"
#include "platform/user32/WindowStore.h"

#include <algorithm>

namespace
{
auto FindProperty(Window &window, WideView name)
{
    return std::find_if(window.properties.begin(), window.properties.end(), [name](const auto &property) {
        return std::equal(property.first.begin(), property.first.end(), name.begin(), name.end(),
                          [](WCHAR a, WCHAR b) { return UpperCase(a) == UpperCase(b); });
    });
}

// Calls with(window) under the lock; not if there is no such window or the name is an atom.
template <class Result, class With>
Result AtWindow(HWND handle, const WCHAR *name, With &&with)
{
    if (IS_INTRESOURCE(name))
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return Result();
    }
    WindowStore &store = WindowStore::Instance();
    const std::lock_guard guard(store.Lock());
    Window *const window = store.FindWindow(handle);
    return window != nullptr ? with(*window) : Result();
}
} // namespace

BOOL WINAPI SetPropW(HWND handle, LPCWSTR name, HANDLE value)
{
    return AtWindow<BOOL>(handle, name, [&](Window &window) {
        const auto known = FindProperty(window, name);
        if (known != window.properties.end())
        {
            known->second = value;
        }
        else
        {
            window.properties.emplace_back(name, value);
        }
        return TRUE;
    });
}

HANDLE WINAPI GetPropW(HWND handle, LPCWSTR name)
{
    return AtWindow<HANDLE>(handle, name, [&](Window &window) {
        const auto known = FindProperty(window, name);
        return known != window.properties.end() ? known->second : nullptr;
    });
}

HANDLE WINAPI RemovePropW(HWND handle, LPCWSTR name)
{
    return AtWindow<HANDLE>(handle, name, [&](Window &window) {
        const auto known = FindProperty(window, name);
        const HANDLE value = known != window.properties.end() ? known->second : nullptr;
        if (known != window.properties.end())
        {
            window.properties.erase(known);
        }
        return value;
    });
}
