#include "ui/WindowImpl_win32.h"

#include <utility>

namespace
{
// Properties of an attached window: its object, and the replaced procedure. The latter outlives the object where
// another subclass keeps our procedure in its chain.
constexpr const WCHAR *ObjectProperty = TEXT("HVR_WindowImpl");
constexpr const WCHAR *ReplacedProperty = TEXT("HVR_ReplacedProcedure");

WNDPROC ReplacedProcedureOf(HWND window)
{
    const auto procedure = reinterpret_cast<WNDPROC>(GetPropW(window, ReplacedProperty));
    return procedure != nullptr ? procedure : DefWindowProcW;
}

WNDPROC ProcedureOf(HWND window)
{
    return reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_WNDPROC));
}
} // namespace

CWindowImpl::~CWindowImpl()
{
    UnsubclassWindow();
}

WNDPROC CWindowImpl::GetWindowProc()
{
    return Route;
}

void CWindowImpl::OnFinalMessage(HWND) {}

bool CWindowImpl::SubclassWindow(HWND window) noexcept
{
    if (m_window != nullptr || window == nullptr || GetPropW(window, ObjectProperty) != nullptr ||
        GetPropW(window, ReplacedProperty) != nullptr)
    {
        return false;
    }
    // Set before the procedure is exchanged, since Route looks them up from the first message on.
    const WNDPROC before = ProcedureOf(window);
    if (before == nullptr || !SetPropW(window, ReplacedProperty, reinterpret_cast<HANDLE>(before)) ||
        !SetPropW(window, ObjectProperty, this))
    {
        RemovePropW(window, ReplacedProperty);
        return false;
    }
    m_replaced = before;
    m_window = window;
    const auto own = reinterpret_cast<LONG_PTR>(GetWindowProc());
    if (SetWindowLongPtrW(window, GWLP_WNDPROC, own) == 0)
    {
        UnsubclassWindow();
        return false;
    }
    return true;
}

void CWindowImpl::UnsubclassWindow() noexcept
{
    const HWND window = std::exchange(m_window, nullptr);
    const WNDPROC replaced = std::exchange(m_replaced, DefWindowProcW);
    if (window == nullptr)
    {
        return;
    }
    RemovePropW(window, ObjectProperty);
    if (ProcedureOf(window) == Route)
    {
        SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(replaced));
    }
    if (ProcedureOf(window) == replaced)
    {
        RemovePropW(window, ReplacedProperty);
    }
}

LRESULT CWindowImpl::PassOn(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return CallWindowProcW(m_replaced, window, message, wParam, lParam);
}

LRESULT CALLBACK CWindowImpl::Route(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto *const object = static_cast<CWindowImpl *>(GetPropW(window, ObjectProperty));
    if (object == nullptr)
    {
        return CallWindowProcW(ReplacedProcedureOf(window), window, message, wParam, lParam);
    }
    LRESULT result = 0;
    const bool handled = object->ProcessWindowMessage(window, message, wParam, lParam, result);
    if (message == WM_NCDESTROY)
    {
        return object->EndOf(window, handled, result, wParam, lParam);
    }
    // If the handler has detached the window, PassOn calls DefWindowProcW.
    return handled ? result : object->PassOn(window, message, wParam, lParam);
}

LRESULT CWindowImpl::EndOf(HWND window, bool handled, LRESULT result, WPARAM wParam, LPARAM lParam)
{
    if (!handled)
    {
        result = PassOn(window, WM_NCDESTROY, wParam, lParam);
    }
    if (m_window == window)
    {
        UnsubclassWindow();
    }
    RemovePropW(window, ReplacedProperty);
    OnFinalMessage(window);
    return result;
}
