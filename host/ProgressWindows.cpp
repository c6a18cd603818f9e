#include "host/ProgressWindows.h"

#include "host/TextEncodings.h"

#include "com/Hresult.h"

#include <commctrl.h>

namespace
{
HWND MakeWindow(const WCHAR *className)
{
    const HWND window = CreateWindowExW(0, className, TEXT(""), 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
    if (window == nullptr)
    {
        ThrowHresult(HRESULT_FROM_WIN32(GetLastError()));
    }
    return window;
}

// The window's own procedure, which the new one calls.
WNDPROC Subclass(HWND window, WNDPROC procedure, ProgressWindows *owner)
{
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(owner));
    return reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(procedure)));
}

ProgressWindows &OwnerOf(HWND window)
{
    return *reinterpret_cast<ProgressWindows *>(GetWindowLongPtrW(window, GWLP_USERDATA));
}
} // namespace

ProgressWindows::ProgressWindows(Observer observer) : m_observer(std::move(observer))
{
    const INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_PROGRESS_CLASS | ICC_STANDARD_CLASSES};
    if (!InitCommonControlsEx(&controls))
    {
        ThrowHresult(HRESULT_FROM_WIN32(GetLastError()));
    }
    m_bar = MakeWindow(PROGRESS_CLASSW);
    m_status = MakeWindow(TEXT("Static"));
    m_barDefault = Subclass(m_bar, BarProcedure, this);
    m_statusDefault = Subclass(m_status, StatusProcedure, this);
}

ProgressWindows::~ProgressWindows()
{
    SetWindowLongPtrW(m_bar, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_barDefault));
    SetWindowLongPtrW(m_status, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_statusDefault));
    DestroyWindow(m_bar);
    DestroyWindow(m_status);
}

LRESULT CALLBACK ProgressWindows::BarProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    ProgressWindows &owner = OwnerOf(window);
    const LRESULT result = CallWindowProcW(owner.m_barDefault, window, message, wParam, lParam);
    if (message == PBM_SETPOS || message == PBM_SETRANGE32 || message == PBM_SETSTATE)
    {
        owner.BarChanged();
    }
    return result;
}

LRESULT CALLBACK ProgressWindows::StatusProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    ProgressWindows &owner = OwnerOf(window);
    if (message == WM_SETTEXT)
    {
        owner.StatusChanged(reinterpret_cast<const WCHAR *>(lParam));
    }
    return CallWindowProcW(owner.m_statusDefault, window, message, wParam, lParam);
}

void ProgressWindows::BarChanged()
{
    PBRANGE range = {};
    SendMessageW(m_bar, PBM_GETRANGE, TRUE, reinterpret_cast<LPARAM>(&range));
    const LRESULT position = SendMessageW(m_bar, PBM_GETPOS, 0, 0);
    const LRESULT state = SendMessageW(m_bar, PBM_GETSTATE, 0, 0);
    const std::lock_guard guard(m_lock);
    m_view.low = range.iLow;
    m_view.high = range.iHigh;
    m_view.position = position;
    m_view.state = static_cast<BarState>(state);
    m_observer(m_view);
}

void ProgressWindows::StatusChanged(const WCHAR *text)
{
    const std::lock_guard guard(m_lock);
    m_view.status = Utf8FromText(text != nullptr ? WideView(text) : WideView());
    m_observer(m_view);
}
