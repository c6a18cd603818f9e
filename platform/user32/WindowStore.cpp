#include "platform/user32/WindowStore.h"

#include <shlwapi.h>

#include <algorithm>

// Never destroyed, since windows may be used until the process ends.
WindowStore &WindowStore::Instance()
{
    static WindowStore *const store = new WindowStore;
    return *store;
}

WindowStore::WindowStore()
{
    AddClass({u"Static", DefWindowProcW, 0});
}

const WindowClass *WindowStore::FindClass(const WCHAR *name) const
{
    const auto found = std::ranges::find_if(
        m_classes, [&](const auto &known) { return StrCmpIW(known.name.c_str(), name) == 0; });
    return found != m_classes.end() ? &*found : nullptr;
}

void WindowStore::AddClass(WindowClass added)
{
    m_classes.push_back(std::move(added));
}

Window &WindowStore::AddWindow(const WindowClass &windowClass)
{
    auto window = std::make_unique<Window>();
    window->handle = reinterpret_cast<HWND>(m_lastHandle += 2);
    window->procedure = windowClass.procedure;
    window->extra.resize(windowClass.extraBytes);
    m_windows.push_back(std::move(window));
    return *m_windows.back();
}

Window *WindowStore::FindWindow(HWND handle)
{
    const auto found = std::ranges::find(m_windows, handle, &Window::handle);
    if (found == m_windows.end())
    {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return nullptr;
    }
    return found->get();
}

void WindowStore::RemoveWindow(HWND handle)
{
    std::erase_if(m_windows, [handle](const auto &window) { return window->handle == handle; });
}
