#include "settings/SheetLayout_win32.h"

#include "ui/PlacementArithmetic.h"
#include "ui/WindowPlacement_win32.h"

#include <commctrl.h>

namespace
{
// LM_GETIDEALSIZE, which some SDK headers lack: wParam is the maximum width, lParam receives the size.
constexpr UINT GetIdealSize = WM_USER + 0x301;

// Converts dialog units of one sheet to pixels.
struct DialogUnits
{
    explicit DialogUnits(HWND sheet) noexcept
    {
        RECT base{0, 0, 4, 8};
        if (MapDialogRect(sheet, &base))
        {
            m_baseX = base.right;
            m_baseY = base.bottom;
        }
        else
        {
            const LONG units = GetDialogBaseUnits();
            m_baseX = LOWORD(units);
            m_baseY = HIWORD(units);
        }
    }

    // MulDiv rounds as MapDialogRect does, so that the test for the standard layout meets the tab control exactly.
    int Across(int units) const noexcept { return MulDiv(units, m_baseX, 4); }
    int Down(int units) const noexcept { return MulDiv(units, m_baseY, 8); }
    int HalfAcross() const noexcept { return MulDiv(1, m_baseX, 8); }

private:
    int m_baseX; // pixels of 4 units across
    int m_baseY; // pixels of 8 units down
};

RECT PlaceIn(HWND parent, HWND window)
{
    RECT place{};
    GetWindowRect(window, &place);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT *>(&place), 2);
    return place;
}

void Resize(HWND window, int width, int height)
{
    SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void Enlarge(HWND window, int byWidth, int byHeight)
{
    RECT place{};
    GetWindowRect(window, &place);
    Resize(window, place.right - place.left + byWidth, place.bottom - place.top + byHeight);
}

// Moves children by pixels through MoveChildBy, whose unit is 1/96 inch: above 96 dots per inch, not every number
// of pixels can be had.
class ChildMoves
{
public:
    explicit ChildMoves(HWND sheet) noexcept : m_sheet(sheet)
    {
        const HDC context = GetDC(sheet);
        m_dotsX = GetDeviceCaps(context, LOGPIXELSX);
        m_dotsY = GetDeviceCaps(context, LOGPIXELSY);
        ReleaseDC(sheet, context);
    }

    // The nearest move that can be had, in pixels.
    int Across(int pixels) const noexcept { return OffsetInPixels(MulDiv(pixels, 96, m_dotsX), m_dotsX); }
    int Down(int pixels) const noexcept { return OffsetInPixels(MulDiv(pixels, 96, m_dotsY), m_dotsY); }

    void Move(HWND child, int dx, int dy) const noexcept
    {
        MoveChildBy(m_sheet, child, MulDiv(dx, 96, m_dotsX), MulDiv(dy, 96, m_dotsY), 0, 0);
    }

private:
    HWND m_sheet;
    int m_dotsX;
    int m_dotsY;
};

SIZE IdealSize(HWND link)
{
    SIZE size{};
    SendMessageW(link, GetIdealSize, 0, reinterpret_cast<LPARAM>(&size));
    if (size.cy > size.cx)
    {
        // Some versions don't take a maximum of 0 as "no limit" and break the text at each letter.
        RECT ample{};
        GetClientRect(link, &ample);
        SendMessageW(link, GetIdealSize, static_cast<WPARAM>(ample.right), reinterpret_cast<LPARAM>(&size));
    }
    return size;
}
} // namespace

HWND TabControlOf(HWND sheet) noexcept
{
    return reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETTABCONTROL, 0, 0));
}

void TightenLayout(HWND sheet) noexcept
{
    const DialogUnits units(sheet);
    const HWND tabs = TabControlOf(sheet);
    const RECT place = PlaceIn(sheet, tabs);
    if (place.left != units.Across(4) || place.top != units.Down(4))
    {
        return;
    }
    const ChildMoves moves(sheet);
    // The sheet grows by twice the real move, so that the margins at both sides are equal.
    const int dx = moves.Across(units.Across(6));
    const int dy = moves.Down(units.Down(4));
    const int below = dy + units.Down(4) + 1;
    const HWND ok = GetDlgItem(sheet, IDOK);
    const HWND cancel = GetDlgItem(sheet, IDCANCEL);
    moves.Move(tabs, dx, dy);
    Resize(ok, units.Across(50), units.Down(16));
    Resize(cancel, units.Across(50), units.Down(16));
    moves.Move(ok, dx - units.Across(4) - 1, below);
    moves.Move(cancel, dx - 1, below);
    Enlarge(sheet, 2 * dx, 2 * dy + units.Down(6));
    if (const HWND page = FindWindowExW(sheet, nullptr, TEXT("#32770"), nullptr))
    {
        moves.Move(page, dx, dy);
    }
}

void PlaceInTabRow(HWND sheet, HWND child) noexcept
{
    RECT row{}, size{};
    GetClientRect(GetParent(child), &row);
    GetWindowRect(child, &size);
    const int left = row.right - (size.right - size.left) - DialogUnits(sheet).Across(3);
    SetWindowPos(child, nullptr, left, 0, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void PlaceBesideButtons(HWND sheet, HWND link) noexcept
{
    const DialogUnits units(sheet);
    const SIZE size = IdealSize(link);
    const HWND ok = GetDlgItem(sheet, IDOK);
    const RECT button = PlaceIn(sheet, ok);
    const int left = PlaceIn(sheet, TabControlOf(sheet)).left + units.HalfAcross();
    const int top = (button.top + button.bottom - size.cy) / 2 - units.Down(1);
    const HWND before = GetWindow(ok, GW_HWNDPREV);
    SetWindowPos(link, before != nullptr ? before : HWND_TOP, left, top, size.cx, size.cy, SWP_NOACTIVATE);
}
