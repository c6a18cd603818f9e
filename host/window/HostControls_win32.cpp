#include "host/window/HostControls_win32.h"

#include "host/window/WindowText_win32.h"
#include "host/window/resource.h"

#include <commctrl.h>

#include <algorithm>

namespace
{
// Units of 1/96 inch.
constexpr int Margin = 12;
constexpr int Gap = 8;
constexpr int ButtonHeight = 26;
constexpr int SmallestButton = 84;
constexpr int LineHeight = 18;

// LM_GETIDEALSIZE, which the headers of this compiler lack.
constexpr UINT GetIdealSize = WM_USER + 0x301;

HFONT MakeFont(bool bold)
{
    NONCLIENTMETRICSW metrics{};
    metrics.cbSize = sizeof(metrics);
    SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof(metrics), &metrics, 0);
    if (bold)
    {
        metrics.lfMessageFont.lfWeight = FW_BOLD;
    }
    return CreateFontIndirectW(&metrics.lfMessageFont);
}

int DotsPerInch()
{
    const HDC screen = GetDC(nullptr);
    const int dots = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dots;
}
} // namespace

HostControls::HostControls(HWND window)
    : m_window(window), m_dotsPerInch(DotsPerInch()), m_font(MakeFont(false)), m_boldFont(MakeFont(true))
{
    constexpr DWORD text = SS_NOPREFIX | SS_ENDELLIPSIS;
    constexpr DWORD list = WS_TABSTOP | LVS_SHOWSELALWAYS | LVS_AUTOARRANGE;
    Make(IDC_PLUGIN_ICON, L"Static", 0, SS_ICON | SS_REALSIZECONTROL);
    SendMessageW(Make(IDC_PLUGIN_NAME, L"Static", 0, text), WM_SETFONT, reinterpret_cast<WPARAM>(m_boldFont), 0);
    Make(IDC_PLUGIN_VERSION, L"Static", 0, text);
    Make(IDC_STATE, WC_LINK, 0, WS_TABSTOP);
    Make(IDC_PICTURES, WC_LISTVIEWW, 0, list | LVS_ICON, WS_EX_CLIENTEDGE);
    Make(IDC_ADD, L"Button", IDS_ADD, WS_TABSTOP);
    Make(IDC_REMOVE, L"Button", IDS_REMOVE, WS_TABSTOP);
    Make(IDC_PUBLISH, L"Button", IDS_PUBLISH, WS_TABSTOP);
    Make(IDC_CANCEL, L"Button", IDS_CANCEL, WS_TABSTOP);
    Make(IDC_PROGRESS, PROGRESS_CLASSW, 0, 0);
    Make(IDC_STATUS, L"Static", 0, text);
    Make(IDC_LOG, WC_LISTVIEWW, 0, WS_TABSTOP | LVS_REPORT | LVS_NOCOLUMNHEADER | LVS_SHOWSELALWAYS,
         WS_EX_CLIENTEDGE);
    Make(IDC_DETAILS, L"Button", IDS_DETAILS, WS_TABSTOP | BS_AUTOCHECKBOX);
}

// The window destroys its children itself.
HostControls::~HostControls()
{
    DeleteObject(m_font);
    DeleteObject(m_boldFont);
}

HWND HostControls::Make(int id, const wchar_t *kind, unsigned text, DWORD style, DWORD extended)
{
    const HWND control = CreateWindowExW(
        extended, kind, text != 0 ? ResourceText(text).c_str() : L"", WS_CHILD | WS_VISIBLE | style, 0, 0, 0, 0,
        m_window, reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), GetModuleHandleW(nullptr), nullptr);
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(m_font), FALSE);
    return control;
}

void HostControls::SetText(int id, const std::wstring &text) const
{
    const HWND control = (*this)[id];
    std::wstring present(static_cast<size_t>(GetWindowTextLengthW(control)) + 1, L'\0');
    present.resize(static_cast<size_t>(GetWindowTextW(control, present.data(), static_cast<int>(present.size()))));
    if (text != present)
    {
        SetWindowTextW(control, text.c_str());
    }
}

// Move the focus before disabling the focused control, or key presses are lost.
void HostControls::Enable(int id, bool enabled) const
{
    const HWND control = (*this)[id];
    if (!enabled && GetFocus() == control)
    {
        SetFocus((*this)[IDC_PICTURES]);
    }
    EnableWindow(control, enabled);
}

int HostControls::ButtonWidth(int id) const
{
    wchar_t text[100] = L"";
    GetDlgItemTextW(m_window, id, text, ARRAYSIZE(text));
    const HDC context = GetDC(m_window);
    const HGDIOBJ before = SelectObject(context, m_font);
    RECT area{};
    DrawTextW(context, text, -1, &area, DT_CALCRECT | DT_SINGLELINE);
    SelectObject(context, before);
    ReleaseDC(m_window, context);
    return std::max<int>(Scaled(SmallestButton), area.right + Scaled(28));
}

void HostControls::LayOut() const
{
    RECT client{};
    GetClientRect(m_window, &client);
    const int left = Scaled(Margin), right = client.right - Scaled(Margin), space = Scaled(Gap);
    const int width = std::max(right - left, 0);
    HDWP moves = BeginDeferWindowPos(13);
    const auto move = [&](int id, int x, int y, int w, int h) {
        moves = DeferWindowPos(moves, (*this)[id], nullptr, x, y, std::max(w, 0), std::max(h, 0),
                               SWP_NOZORDER | SWP_NOACTIVATE);
    };

    // From the top: the plug-in, as high as its state line needs.
    const int icon = Scaled(32), beside = left + icon + Scaled(12);
    int top = Scaled(Margin);
    move(IDC_PLUGIN_ICON, left, top, icon, icon);
    move(IDC_PLUGIN_NAME, beside, top - Scaled(2), right - beside, Scaled(LineHeight));
    move(IDC_PLUGIN_VERSION, beside, top + Scaled(16), right - beside, Scaled(LineHeight));
    top += icon + space;
    SIZE ideal{};
    const auto stateHeight = static_cast<int>(SendMessageW(
        (*this)[IDC_STATE], GetIdealSize, static_cast<WPARAM>(width), reinterpret_cast<LPARAM>(&ideal)));
    const int lines =
        std::clamp<int>(ideal.cy > 0 ? ideal.cy : stateHeight, Scaled(LineHeight), Scaled(4 * LineHeight));
    move(IDC_STATE, left, top, width, lines);
    top += lines + space;

    // From the bottom: the run's log and progress.
    int bottom = client.bottom - Scaled(Margin);
    const int details = Scaled(LineHeight);
    move(IDC_DETAILS, left, bottom - details, width, details);
    bottom -= details + space;
    const int between = 3 * space + Scaled(ButtonHeight) + Scaled(14) + Scaled(LineHeight) + space;
    const int forLists = std::max(bottom - top - between, 0);
    const int log = std::max(forLists * 3 / 10, std::min(forLists / 2, Scaled(90)));
    move(IDC_LOG, left, bottom - log, width, log);
    bottom -= log + space;
    move(IDC_STATUS, left, bottom - Scaled(LineHeight), width, Scaled(LineHeight));
    bottom -= Scaled(LineHeight) + space / 2;
    move(IDC_PROGRESS, left, bottom - Scaled(14), width, Scaled(14));
    bottom -= Scaled(14) + space;
    const int buttonTop = bottom - Scaled(ButtonHeight);
    const int add = ButtonWidth(IDC_ADD), remove = ButtonWidth(IDC_REMOVE);
    const int publish = ButtonWidth(IDC_PUBLISH),
              cancel = std::max(ButtonWidth(IDC_CANCEL), Scaled(SmallestButton));
    move(IDC_ADD, left, buttonTop, add, Scaled(ButtonHeight));
    move(IDC_REMOVE, left + add + space, buttonTop, remove, Scaled(ButtonHeight));
    move(IDC_CANCEL, right - cancel, buttonTop, cancel, Scaled(ButtonHeight));
    move(IDC_PUBLISH, right - cancel - space - publish, buttonTop, publish, Scaled(ButtonHeight));
    bottom = buttonTop - space;
    move(IDC_PICTURES, left, top, width, bottom - top);
    EndDeferWindowPos(moves);
}

SIZE HostControls::Framed(int width, int height) const
{
    RECT frame{0, 0, Scaled(width), Scaled(height)};
    AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongW(m_window, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongW(m_window, GWL_EXSTYLE)));
    return {frame.right - frame.left, frame.bottom - frame.top};
}

SIZE HostControls::SmallestSize() const
{
    return Framed(480, 460);
}

RECT HostControls::UsualPlace() const
{
    const SIZE usual = Framed(760, 660);
    MONITORINFO monitor{};
    monitor.cbSize = sizeof(monitor);
    GetMonitorInfoW(MonitorFromWindow(m_window, MONITOR_DEFAULTTOPRIMARY), &monitor);
    const RECT &room = monitor.rcWork;
    RECT place{};
    GetWindowRect(m_window, &place);
    const LONG width = std::min(usual.cx, room.right - room.left),
               height = std::min(usual.cy, room.bottom - room.top);
    const LONG left = std::clamp(place.left, room.left, room.right - width);
    const LONG top = std::clamp(place.top, room.top, room.bottom - height);
    return {left, top, left + width, top + height};
}
