#include "tests/doubles/FakeProgressWindows.h"

#include "core/ThisModule.h"

#include <commctrl.h>

#include <stdexcept>

namespace
{
const WCHAR *const ClassName = TEXT("FakeProgressWindow");

FakeProgressWindows *OwnerOf(HWND window)
{
    return reinterpret_cast<FakeProgressWindows *>(GetWindowLongPtrW(window, GWLP_USERDATA));
}
} // namespace

FakeProgressWindows::FakeProgressWindows(CallRecord &record)
    : m_record(record), m_bar(Create()), m_statusText(Create())
{
}

FakeProgressWindows::~FakeProgressWindows()
{
    DestroyWindow(m_bar);
    DestroyWindow(m_statusText);
}

HWND FakeProgressWindows::Create()
{
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.lpfnWndProc = Procedure;
    description.hInstance = ThisModule();
    description.lpszClassName = ClassName;
    RegisterClassExW(&description);
    const HWND window =
        CreateWindowExW(0, ClassName, TEXT(""), 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, ThisModule(), nullptr);
    if (window == nullptr)
    {
        throw std::runtime_error("no window for the test");
    }
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    return window;
}

LRESULT CALLBACK FakeProgressWindows::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    FakeProgressWindows *owner = OwnerOf(window);
    if (owner != nullptr && window == owner->m_bar && message >= WM_USER)
    {
        return owner->OnBar(message, wParam, lParam);
    }
    if (owner != nullptr && window == owner->m_statusText && message == WM_SETTEXT)
    {
        owner->m_record.Add("status " + Narrow(reinterpret_cast<const WCHAR *>(lParam)));
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

LRESULT FakeProgressWindows::OnBar(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case PBM_GETPOS:
        return m_position;
    case PBM_SETPOS:
        m_position = static_cast<int>(wParam);
        m_record.Add("bar position " + std::to_string(m_position));
        break;
    case PBM_SETSTATE:
        m_record.Add("bar state " + std::to_string(wParam));
        break;
    case PBM_SETRANGE32:
        m_record.Add("bar range " + std::to_string(static_cast<int>(wParam)) + " " +
                     std::to_string(static_cast<int>(lParam)));
        break;
    default:
        m_record.Add("bar message " + std::to_string(message));
        break;
    }
    return 0;
}
