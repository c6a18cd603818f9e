// DefWindowProcW handles the messages that a window's own procedure doesn't: those of the window's text.
#include "platform/user32/WindowStore.h"

#include <algorithm>

namespace
{
LRESULT SetText(Window &window, LPARAM text)
{
    const auto *const given = reinterpret_cast<const WCHAR *>(text);
    window.text = given != nullptr ? given : u"";
    return TRUE;
}

LRESULT CopyText(const Window &window, WPARAM capacity, LPARAM buffer)
{
    auto *const target = reinterpret_cast<WCHAR *>(buffer);
    if (target == nullptr || capacity == 0)
    {
        return 0;
    }
    const size_t length = std::min<size_t>(window.text.size(), capacity - 1);
    *std::copy_n(window.text.begin(), length, target) = 0;
    return static_cast<LRESULT>(length);
}
} // namespace

LRESULT WINAPI DefWindowProcW(HWND handle, UINT message, WPARAM wParam, LPARAM lParam)
{
    {
        WindowStore &store = WindowStore::Instance();
        const std::lock_guard guard(store.Lock());
        Window *const window = store.FindWindow(handle);
        if (window == nullptr)
        {
            return 0;
        }
        switch (message)
        {
        case WM_NCCREATE:
            return SetText(*window, reinterpret_cast<LPARAM>(reinterpret_cast<CREATESTRUCTW *>(lParam)->lpszName));
        case WM_SETTEXT:
            return SetText(*window, lParam);
        case WM_GETTEXT:
            return CopyText(*window, wParam, lParam);
        case WM_GETTEXTLENGTH:
            return static_cast<LRESULT>(window->text.size());
        default:
            break;
        }
    }
    if (message == WM_CLOSE)
    {
        DestroyWindow(handle);
    }
    return 0;
}
