// Creating and destroying windows, their texts and fields, and sending messages to them.
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

void Remove(HWND handle)
{
    WindowStore &store = WindowStore::Instance();
    const std::lock_guard guard(store.Lock());
    store.RemoveWindow(handle);
}

// The field that a negative index of GetWindowLongPtrW stands for.
LONG_PTR *FieldOf(Window &window, int index)
{
    switch (index)
    {
    case GWLP_USERDATA:
        return &window.userData;
    case GWL_STYLE:
        return &window.style;
    case GWL_EXSTYLE:
        return &window.extendedStyle;
    case GWLP_ID:
        return &window.id;
    case GWLP_WNDPROC:
        return reinterpret_cast<LONG_PTR *>(&window.procedure);
    case GWLP_HINSTANCE:
        return reinterpret_cast<LONG_PTR *>(&window.module);
    default:
        break;
    }
    SetLastError(ERROR_INVALID_INDEX);
    return nullptr;
}

// The bytes of a field or of the window's extra memory. Sets the last error and returns null if there are
// none at the index.
void *StorageOf(Window &window, int index)
{
    if (index < 0)
    {
        return FieldOf(window, index);
    }
    if (static_cast<size_t>(index) + sizeof(LONG_PTR) > window.extra.size())
    {
        SetLastError(ERROR_INVALID_INDEX);
        return nullptr;
    }
    return window.extra.data() + index;
}
} // namespace

HWND WINAPI CreateWindowExW(DWORD extendedStyle, LPCWSTR className, LPCWSTR text, DWORD style, int x, int y,
                            int width, int height, HWND parent, HMENU menu, HINSTANCE module, LPVOID parameter)
{
    HWND handle = nullptr;
    {
        WindowStore &store = WindowStore::Instance();
        const std::lock_guard guard(store.Lock());
        const auto windowClass = className != nullptr ? store.FindClass(className) : nullptr;
        if (!windowClass)
        {
            SetLastError(ERROR_CANNOT_FIND_WND_CLASS);
            return nullptr;
        }
        if (parent != nullptr && parent != HWND_MESSAGE && store.FindWindow(parent) == nullptr)
        {
            return nullptr;
        }
        Window &window = store.AddWindow(windowClass);
        window.style = style;
        window.extendedStyle = extendedStyle;
        window.id = reinterpret_cast<LONG_PTR>(menu);
        window.module = module;
        window.parent = parent;
        handle = window.handle;
    }
    CREATESTRUCTW creation{
        parameter, module,    menu,         parent, height, width, y, x, static_cast<LONG>(style),
        text,      className, extendedStyle};
    const auto described = reinterpret_cast<LPARAM>(&creation);
    if (!SendMessageW(handle, WM_NCCREATE, 0, described))
    {
        Remove(handle);
        return nullptr;
    }
    if (SendMessageW(handle, WM_CREATE, 0, described) == -1)
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
    std::vector<HWND> children;
    {
        WindowStore &store = WindowStore::Instance();
        const std::lock_guard guard(store.Lock());
        children = store.ChildrenOf(handle);
    }
    for (HWND child : children)
    {
        DestroyWindow(child);
    }
    SendMessageW(handle, WM_NCDESTROY, 0, 0);
    Remove(handle);
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

int WINAPI GetWindowTextW(HWND handle, LPWSTR buffer, int capacity)
{
    if (buffer == nullptr || capacity <= 0)
    {
        return 0;
    }
    buffer[0] = 0;
    return static_cast<int>(SendMessageW(handle, WM_GETTEXT, capacity, reinterpret_cast<LPARAM>(buffer)));
}

int WINAPI GetWindowTextLengthW(HWND handle)
{
    return static_cast<int>(SendMessageW(handle, WM_GETTEXTLENGTH, 0, 0));
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
