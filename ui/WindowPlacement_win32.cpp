#include "ui/WindowPlacement_win32.h"

#include "ui/PlacementArithmetic.h"

#include <dwmapi.h>

#include <atomic>

namespace
{
constexpr UINT PlaceOnly = SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE;

bool WorkAreaOf(HMONITOR monitor, RECT &workArea)
{
    MONITORINFO information{sizeof(information)};
    if (monitor == nullptr || !GetMonitorInfoW(monitor, &information))
    {
        return false;
    }
    workArea = information.rcWork;
    return true;
}

// The window on which a top-level window is centred; null for the work area.
HWND VisibleOwnerOf(HWND window)
{
    const HWND owner = GetWindow(window, GW_OWNER);
    const auto style = owner != nullptr ? GetWindowLongPtrW(owner, GWL_STYLE) : 0;
    return (style & (WS_VISIBLE | WS_MINIMIZE)) == WS_VISIBLE ? owner : nullptr;
}

void PlaceAt(HWND window, POINT corner)
{
    SetWindowPos(window, nullptr, corner.x, corner.y, 0, 0, PlaceOnly);
}

// The window's rectangle without the invisible borders that desktop composition adds.
bool VisibleFrameOf(HWND window, RECT &frame)
{
    return (IsVistaOrLater() &&
            SUCCEEDED(DwmGetWindowAttribute(window, DWMWA_EXTENDED_FRAME_BOUNDS, &frame, sizeof(frame)))) ||
           GetWindowRect(window, &frame);
}
} // namespace

void CentreWindow(HWND window) noexcept
{
    RECT size{}, around{}, limits{};
    if (GetWindowLongPtrW(window, GWL_STYLE) & WS_CHILD)
    {
        GetClientRect(GetParent(window), &limits);
        around = limits;
    }
    else
    {
        const HWND owner = VisibleOwnerOf(window);
        const HMONITOR monitor = MonitorFromWindow(owner != nullptr ? owner : window, MONITOR_DEFAULTTONEAREST);
        if (!WorkAreaOf(monitor, limits))
        {
            return;
        }
        if (owner == nullptr || !GetWindowRect(owner, &around))
        {
            around = limits;
        }
    }
    if (GetWindowRect(window, &size))
    {
        PlaceAt(window, CentredWithin(size, around, limits));
    }
}

void CentreOnPointer(HWND window) noexcept
{
    POINT pointer{};
    RECT frame{}, workArea{};
    if (GetCursorPos(&pointer) && VisibleFrameOf(window, frame) &&
        WorkAreaOf(MonitorFromPoint(pointer, MONITOR_DEFAULTTONEAREST), workArea))
    {
        PlaceAt(window, CentredOnPoint(frame, pointer, workArea));
    }
}

void MoveChildBy(HWND parent, HWND child, INT32 dx, INT32 dy, INT32 dw, INT32 dh) noexcept
{
    const HDC context = GetDC(parent);
    const int horizontal = GetDeviceCaps(context, LOGPIXELSX);
    const int vertical = GetDeviceCaps(context, LOGPIXELSY);
    ReleaseDC(parent, context);
    RECT place{};
    if (!GetWindowRect(child, &place))
    {
        return;
    }
    OffsetRect(&place, OffsetInPixels(dx, horizontal), OffsetInPixels(dy, vertical));
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT *>(&place), 2);
    MoveWindow(child, place.left, place.top, place.right - place.left + dw, place.bottom - place.top + dh, FALSE);
}

bool IsVistaOrLater() noexcept
{
    constexpr DWORD notTested = 0xFFFFFFFF;
    static std::atomic<DWORD> kept{notTested};
    if (kept.load() == notTested)
    {
        OSVERSIONINFOW version{sizeof(version)};
        kept = GetVersionExW(&version) && version.dwMajorVersion >= 6;
    }
    return kept.load() != 0;
}
