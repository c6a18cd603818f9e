// The progress bar's window class: range, position and state; it is never drawn. Any thread may send its
// messages, and natively they run on that thread.
#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <mutex>
#include <utility>

namespace
{
class ProgressBar
{
public:
    int Position()
    {
        const std::lock_guard guard(m_lock);
        return m_position;
    }

    int SetPosition(int position)
    {
        const std::lock_guard guard(m_lock);
        return std::exchange(m_position, Within(position));
    }

    // Returns the low words of the previous limits.
    LRESULT SetRange(int low, int high)
    {
        const std::lock_guard guard(m_lock);
        const LRESULT previous = MAKELRESULT(m_low, m_high);
        m_low = low;
        m_high = high;
        m_position = Within(m_position);
        return previous;
    }

    int Range(bool low, PBRANGE *range)
    {
        const std::lock_guard guard(m_lock);
        if (range != nullptr)
        {
            *range = {m_low, m_high};
        }
        return low ? m_low : m_high;
    }

    LRESULT State()
    {
        const std::lock_guard guard(m_lock);
        return m_state;
    }

    LRESULT SetState(WPARAM state)
    {
        const std::lock_guard guard(m_lock);
        if (state < PBST_NORMAL || state > PBST_PAUSED)
        {
            return 0;
        }
        return std::exchange(m_state, static_cast<int>(state));
    }

private:
    int Within(int position) const { return std::max(m_low, std::min(position, m_high)); }

    std::mutex m_lock;
    int m_low = 0;
    int m_high = 100;
    int m_position = 0;
    int m_state = PBST_NORMAL;
};

LRESULT Answer(ProgressBar &bar, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message)
    {
    case PBM_SETPOS:
        return bar.SetPosition(static_cast<int>(wParam));
    case PBM_SETRANGE32:
        return bar.SetRange(static_cast<int>(wParam), static_cast<int>(lParam));
    case PBM_GETRANGE:
        return bar.Range(wParam != 0, reinterpret_cast<PBRANGE *>(lParam));
    case PBM_GETPOS:
        return bar.Position();
    case PBM_SETSTATE:
        return bar.SetState(wParam);
    default:
        return bar.State();
    }
}

LRESULT CALLBACK ProgressBarProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto *const bar = reinterpret_cast<ProgressBar *>(GetWindowLongPtrW(window, 0));
    switch (message)
    {
    case WM_NCCREATE:
        SetWindowLongPtrW(window, 0, reinterpret_cast<LONG_PTR>(new ProgressBar));
        return DefWindowProcW(window, message, wParam, lParam);
    case WM_NCDESTROY:
        SetWindowLongPtrW(window, 0, 0);
        delete bar;
        return 0;
    case PBM_SETPOS:
    case PBM_SETRANGE32:
    case PBM_GETRANGE:
    case PBM_GETPOS:
    case PBM_SETSTATE:
    case PBM_GETSTATE:
        return bar != nullptr ? Answer(*bar, message, wParam, lParam) : 0;
    default:
        return DefWindowProcW(window, message, wParam, lParam);
    }
}

bool RegisterProgressBar()
{
    WNDCLASSEXW description{sizeof(description)};
    description.lpfnWndProc = ProgressBarProcedure;
    description.cbWndExtra = sizeof(LONG_PTR); // the address of its ProgressBar
    description.lpszClassName = PROGRESS_CLASSW;
    return RegisterClassExW(&description) != 0;
}
} // namespace

BOOL WINAPI InitCommonControlsEx(const INITCOMMONCONTROLSEX *controls)
{
    constexpr DWORD present = ICC_PROGRESS_CLASS | ICC_STANDARD_CLASSES;
    if (controls == nullptr || controls->dwSize != sizeof(INITCOMMONCONTROLSEX) ||
        (controls->dwICC & ~present) != 0)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    if (controls->dwICC & ICC_PROGRESS_CLASS)
    {
        static const bool Registered = RegisterProgressBar();
        return Registered;
    }
    return TRUE;
}
