#include "platform/user32/WindowStore.h"

namespace
{
template <class Result>
Result Fail(DWORD error)
{
    SetLastError(error);
    return Result();
}
} // namespace

ATOM WINAPI RegisterClassExW(const WNDCLASSEXW *description)
{
    if (description == nullptr || description->cbSize != sizeof(WNDCLASSEXW) ||
        description->lpfnWndProc == nullptr || description->lpszClassName == nullptr ||
        description->cbWndExtra < 0)
    {
        return Fail<ATOM>(ERROR_INVALID_PARAMETER);
    }
    WindowStore &store = WindowStore::Instance();
    const std::lock_guard guard(store.Lock());
    if (store.FindClass(description->lpszClassName))
    {
        return Fail<ATOM>(ERROR_CLASS_ALREADY_EXISTS);
    }
    return store.AddClass({0, description->lpszClassName, description->lpfnWndProc, description->cbWndExtra,
                           description->hInstance});
}

ATOM WINAPI RegisterClassW(const WNDCLASSW *description)
{
    WNDCLASSEXW extended{sizeof(extended)};
    extended.style = description->style;
    extended.lpfnWndProc = description->lpfnWndProc;
    extended.cbWndExtra = description->cbWndExtra;
    extended.hInstance = description->hInstance;
    extended.lpszClassName = description->lpszClassName;
    return RegisterClassExW(&extended);
}

BOOL WINAPI UnregisterClassW(LPCWSTR name, HINSTANCE)
{
    WindowStore &store = WindowStore::Instance();
    const std::lock_guard guard(store.Lock());
    const auto found = store.FindClass(name);
    if (!found)
    {
        return Fail<BOOL>(ERROR_CLASS_DOES_NOT_EXIST);
    }
    if (store.HasWindows(*found))
    {
        return Fail<BOOL>(ERROR_CLASS_HAS_WINDOWS);
    }
    store.RemoveClass(found->atom);
    return TRUE;
}
