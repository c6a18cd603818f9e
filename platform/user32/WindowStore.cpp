#include "platform/user32/WindowStore.h"

#include "platform/user32/CaseMapping.h"

#include <algorithm>

namespace
{
bool SameName(WideView a, WideView b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](WCHAR x, WCHAR y) { return UpperCase(x) == UpperCase(y); });
}
} // namespace

// Never destroyed, since windows may be used until the process ends.
WindowStore &WindowStore::Instance()
{
    static WindowStore *const store = new WindowStore;
    return *store;
}

WindowStore::WindowStore()
{
    AddClass({0, u"Static", DefWindowProcW, 0, nullptr});
}

std::shared_ptr<const WindowClass> WindowStore::FindClass(const WCHAR *nameOrAtom) const
{
    const bool isAtom = IS_INTRESOURCE(nameOrAtom);
    const auto atom = static_cast<ATOM>(reinterpret_cast<ULONG_PTR>(nameOrAtom));
    const auto found = std::find_if(m_classes.begin(), m_classes.end(), [&](const auto &known) {
        return isAtom ? known->atom == atom : SameName(known->name, nameOrAtom);
    });
    return found != m_classes.end() ? *found : nullptr;
}

ATOM WindowStore::AddClass(WindowClass added)
{
    added.atom = ++m_lastAtom;
    m_classes.push_back(std::make_shared<const WindowClass>(std::move(added)));
    return m_lastAtom;
}

void WindowStore::RemoveClass(ATOM atom)
{
    std::erase_if(m_classes, [atom](const auto &known) { return known->atom == atom; });
}

bool WindowStore::HasWindows(const WindowClass &windowClass) const
{
    return std::any_of(m_windows.begin(), m_windows.end(),
                       [&](const auto &window) { return window->windowClass.get() == &windowClass; });
}

Window &WindowStore::AddWindow(const std::shared_ptr<const WindowClass> &windowClass)
{
    auto window = std::make_unique<Window>();
    window->handle = reinterpret_cast<HWND>(m_lastHandle += 2);
    window->windowClass = windowClass;
    window->procedure = windowClass->procedure;
    window->extra.resize(windowClass->extraBytes);
    m_windows.push_back(std::move(window));
    return *m_windows.back();
}

Window *WindowStore::FindWindow(HWND handle)
{
    const auto found = std::find_if(m_windows.begin(), m_windows.end(),
                                    [handle](const auto &window) { return window->handle == handle; });
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

std::vector<HWND> WindowStore::ChildrenOf(HWND parent) const
{
    std::vector<HWND> children;
    for (const auto &window : m_windows)
    {
        if (window->parent == parent)
        {
            children.push_back(window->handle);
        }
    }
    return children;
}
