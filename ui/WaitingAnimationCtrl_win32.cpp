#include "ui/WaitingAnimationCtrl_win32.h"

#include "core/ThisModule.h"
#include "resources/resource.h"

#include <cstdlib>

namespace
{
constexpr const WCHAR *ClassName = TEXT("HVR_WaitingAnimation");
constexpr UINT_PTR TimerId = 777;

bool RegisterOnce(WNDPROC procedure)
{
    static const bool IsRegistered = [procedure] {
        WNDCLASSEXW description{sizeof(description)};
        description.style = CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS;
        description.lpfnWndProc = procedure;
        description.hInstance = ThisModule();
        description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
        description.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
        description.lpszClassName = ClassName;
        // The class stays registered when the module is unloaded, so that it may exist already.
        return RegisterClassExW(&description) != 0 || GetLastError() == ERROR_CLASS_ALREADY_EXISTS;
    }();
    return IsRegistered;
}

int FrameSize(const BITMAP &strip)
{
    return std::abs(strip.bmHeight);
}
} // namespace

HWND CWaitingAnimationImpl::Create(HWND parent) noexcept
{
    if (!RegisterOnce(Procedure))
    {
        return nullptr;
    }
    return CreateWindowExW(0, ClassName, nullptr, Styles, 0, 0, 0, 0, parent, nullptr, ThisModule(), this);
}

LRESULT CALLBACK CWaitingAnimationImpl::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE)
    {
        const auto *creation = reinterpret_cast<const CREATESTRUCTW *>(lParam);
        if (!static_cast<CWaitingAnimationImpl *>(creation->lpCreateParams)->SubclassWindow(window))
        {
            return FALSE;
        }
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

bool CWaitingAnimationImpl::ProcessWindowMessage(HWND window, UINT message, WPARAM wParam, LPARAM, LRESULT &result)
{
    result = 0;
    switch (message)
    {
    case WM_CREATE:
        LoadStrip(window);
        return true;
    case WM_PAINT:
    case WM_PRINTCLIENT:
        Paint(window, reinterpret_cast<HDC>(wParam));
        return true;
    case WM_ERASEBKGND:
        result = 1;
        return true;
    case WM_TIMER:
        if (wParam != TimerId)
        {
            return false;
        }
        if (const HDC context = GetDC(window))
        {
            Draw(window, context);
            ReleaseDC(window, context);
        }
        return true;
    default:
        return false;
    }
}

void CWaitingAnimationImpl::LoadStrip(HWND window) noexcept
{
    const HANDLE loaded = LoadImageW(ThisModule(), MAKEINTRESOURCEW(IDB_WAITING), IMAGE_BITMAP, 0, 0,
                                     LR_CREATEDIBSECTION | LR_DEFAULTSIZE);
    m_bitmap = BitmapOwner(static_cast<HBITMAP>(loaded));
    m_bitmapInfo = {};
    GetObjectW(m_bitmap.Get(), sizeof(m_bitmapInfo), &m_bitmapInfo);
    RECT place{};
    GetClientRect(window, &place);
    place.right = place.bottom = FrameSize(m_bitmapInfo);
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE));
    const bool hasMenu = !(style & WS_CHILD) && GetMenu(window) != nullptr;
    AdjustWindowRectEx(&place, style, hasMenu, static_cast<DWORD>(GetWindowLongPtrW(window, GWL_EXSTYLE)));
    SetWindowPos(window, nullptr, 0, 0, place.right - place.left, place.bottom - place.top,
                 SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    m_animation.restart = false;
}

void CWaitingAnimationImpl::Start() noexcept
{
    if (Window() != nullptr && !m_animation.running)
    {
        SetTimer(Window(), TimerId, m_animation.interval, nullptr);
        m_animation.running = true;
    }
}

void CWaitingAnimationImpl::Stop() noexcept
{
    if (Window() == nullptr)
    {
        return;
    }
    KillTimer(Window(), TimerId);
    m_animation.restart = true;
    m_animation.running = false;
    InvalidateRect(Window(), nullptr, FALSE);
    UpdateWindow(Window());
}

void CWaitingAnimationImpl::Paint(HWND window, HDC given) noexcept
{
    if (given != nullptr)
    {
        Draw(window, given);
        return;
    }
    PAINTSTRUCT paint{};
    if (const HDC context = BeginPaint(window, &paint))
    {
        Draw(window, context);
        EndPaint(window, &paint);
    }
}

void CWaitingAnimationImpl::Draw(HWND window, HDC context) noexcept
{
    RECT client{};
    GetClientRect(window, &client);
    const LRESULT brush = SendMessageW(GetParent(window), WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(context),
                                       reinterpret_cast<LPARAM>(window));
    if (brush != 0)
    {
        FillRect(context, &client, reinterpret_cast<HBRUSH>(brush));
    }
    const int size = FrameSize(m_bitmapInfo);
    if (!m_bitmap || size == 0)
    {
        return;
    }
    const UINT32 frame = m_animation.FrameAt(m_ticks(), static_cast<UINT32>(m_bitmapInfo.bmWidth / size));
    const HDC memory = CreateCompatibleDC(context);
    const HGDIOBJ before = SelectObject(memory, m_bitmap.Get());
    constexpr BLENDFUNCTION sourceOver{AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    AlphaBlend(context, client.left, client.top, size, size, memory, static_cast<int>(frame) * size, 0, size, size,
               sourceOver);
    SelectObject(memory, before);
    DeleteDC(memory);
}
