// Classes of windows, creating and destroying windows, their fields, and sending messages to them.
#include "platform/user32/WindowStore.h"

#include <cstring>

namespace
{
WNDPROC ProcedureOf(HWND handle)
{
    WindowStore &store = WindowStore::Instance();
    const std::lock_guard guard(store.Lock());
    const Window *const window = store.FindWindow(handle);
    return window != nullptr ? window->procedure : nullptr;
}

// The bytes of a field or of the window's extra memory. Sets the last error and returns null if there are
// none at the index.
void *StorageOf(Window &window, int index)
{
    if (index == GWLP_USERDATA)
    {
        return &window.userData;
    }
    if (index == GWLP_WNDPROC)
    {
        return &window.procedure;
    }
    if (index < 0 || static_cast<size_t>(index) + sizeof(LONG_PTR) > window.extra.size())
    {
        SetLastError(ERROR_INVALID_INDEX);
        return nullptr;
    }
    return window.extra.data() + index;
}
} // namespace

ATOM WINAPI RegisterClassExW(const WNDCLASSEXW *description)
{
    WindowStore &store = WindowStore::Instance();
    const std::lock_guard guard(store.Lock());
    if (store.FindClass(description->lpszClassName))
    {
        SetLastError(ERROR_CLASS_ALREADY_EXISTS);
        return 0;
    }
    store.AddClass({description->lpszClassName, description->lpfnWndProc, description->cbWndExtra});
    return 1;
}

HWND WINAPI CreateWindowExW(DWORD extendedStyle, LPCWSTR className, LPCWSTR text, DWORD style, int x, int y,
                            int width, int height, HWND parent, HMENU menu, HINSTANCE module, LPVOID parameter)
{
    HWND handle = nullptr;
    {
        WindowStore &store = WindowStore::Instance();
        const std::lock_guard guard(store.Lock());
        const WindowClass *const windowClass = className != nullptr ? store.FindClass(className) : nullptr;
        if (windowClass == nullptr)
        {
            SetLastError(ERROR_CANNOT_FIND_WND_CLASS);
            return nullptr;
        }
        handle = store.AddWindow(*windowClass).handle;
    }
    CREATESTRUCTW creation{
        parameter, module,    menu,         parent, height, width, y, x, static_cast<LONG>(style),
        text,      className, extendedStyle};
    const auto described = reinterpret_cast<LPARAM>(&creation);
    if (!SendMessageW(handle, WM_NCCREATE, 0, described) || SendMessageW(handle, WM_CREATE, 0, described) == -1)
    {
        DestroyWindow(handle);
        return nullptr;
    }
    return handle;
}

BOOL WINAPI DestroyWindow(HWND handle)
{
    if (ProcedureOf(handle) == nullptr)
    {
        return FALSE;
    }
    SendMessageW(handle, WM_DESTROY, 0, 0);
    SendMessageW(handle, WM_NCDESTROY, 0, 0);
    WindowStore &store = WindowStore::Instance();
    const std::lock_guard guard(store.Lock());
    store.RemoveWindow(handle);
    return TRUE;
}

BOOL WINAPI IsWindow(HWND handle)
{
    return ProcedureOf(handle) != nullptr;
}

LRESULT WINAPI SendMessageW(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    const WNDPROC procedure = ProcedureOf(handle);
    return procedure != nullptr ? procedure(handle, message, wParam, lParam) : 0;
}

LRESULT WINAPI CallWindowProcW(WNDPROC procedure, HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    return procedure(handle, message, wParam, lParam);
}

BOOL WINAPI SetWindowTextW(HWND handle, LPCWSTR text)
{
    return SendMessageW(handle, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text)) != 0;
}

// Creation and a new text are accepted; nobody reads the text of a window back.
LRESULT WINAPI DefWindowProcW(HWND handle, UINT message, WPARAM, LPARAM)
{
    if (message == WM_CLOSE)
    {
        DestroyWindow(handle);
    }
    return message == WM_NCCREATE || message == WM_SETTEXT;
}

LONG_PTR WINAPI GetWindowLongPtrW(HWND handle, int index)
{
    WindowStore &store = WindowStore::Instance();
    const std::lock_guard guard(store.Lock());
    Window *const window = store.FindWindow(handle);
    const void *const storage = window != nullptr ? StorageOf(*window, index) : nullptr;
    LONG_PTR value = 0;
    if (storage != nullptr)
    {
        std::memcpy(&value, storage, sizeof(value));
    }
    return value;
}

LONG_PTR WINAPI SetWindowLongPtrW(HWND handle, int index, LONG_PTR value)
{
    WindowStore &store = WindowStore::Instance();
    const std::lock_guard guard(store.Lock());
    Window *const window = store.FindWindow(handle);
    void *const storage = window != nullptr ? StorageOf(*window, index) : nullptr;
    LONG_PTR previous = 0;
    if (storage != nullptr)
    {
        std::memcpy(&previous, storage, sizeof(previous));
        std::memcpy(storage, &value, sizeof(value));
    }
    return previous;
}

// Natively no process is ever in the foreground, so both functions fail with access denied, as they do on Windows for a
// process in the background.
BOOL WINAPI AllowSetForegroundWindow(DWORD)
{
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

BOOL WINAPI LockSetForegroundWindow(UINT lock)
{
    SetLastError(lock == LSFW_LOCK || lock == LSFW_UNLOCK ? ERROR_ACCESS_DENIED : ERROR_INVALID_PARAMETER);
    return FALSE;
}
