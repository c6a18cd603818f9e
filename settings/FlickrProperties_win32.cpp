#include "settings/FlickrProperties_win32.h"

#include "account/AccountRecord.h"
#include "com/Hresult.h"
#include "core/StringTable.h"
#include "core/ThisModule.h"
#include "resources/resource.h"
#include "settings/SettingsSheet.h"
#include "settings/SheetLayout_win32.h"
#include "ui/ActivationContext_win32.h"
#include "ui/PlacementArithmetic.h"
#include "ui/WindowPlacement_win32.h"

#include <commctrl.h>
#include <shellapi.h>

namespace
{
// In milliseconds: the browser takes a moment to appear, and the wait cursor shows meanwhile.
constexpr DWORD BrowserPause = 500;

// In 1/96 inch.
constexpr INT32 DownwardMove = 10;

// The low four bits of a system command are for the system.
constexpr WPARAM SystemCommandMask = 0xFFF0;

// Kept between sheets for as long as the module stays loaded.
int lastPageIndex = 0;

void ShowCursorOf(const WCHAR *cursor)
{
    SetCursor(LoadCursorW(nullptr, cursor));
}

// Looks among the sheet's children, then its parent's, then its grandparent's.
HWND FindButton(HWND sheet, int id)
{
    HWND window = sheet;
    for (int generation = 0; generation < 3 && window != nullptr; ++generation)
    {
        if (const HWND button = GetDlgItem(window, id))
        {
            return button;
        }
        window = GetParent(window);
    }
    return nullptr;
}

void EnableButton(HWND sheet, int id, bool isEnabled)
{
    if (const HWND button = FindButton(sheet, id))
    {
        EnableWindow(button, isEnabled);
    }
}

int VerticalDotsPerInch()
{
    const HDC screen = GetDC(nullptr);
    const int dots = GetDeviceCaps(screen, LOGPIXELSY);
    ReleaseDC(nullptr, screen);
    return dots;
}

// PSM_SETCURSEL leaves the focus on a control of the page that it hides. Posted, since the sheet still sets its
// own first focus after it is shown.
void FocusPage(HWND sheet)
{
    const auto page = reinterpret_cast<HWND>(SendMessageW(sheet, PSM_GETCURRENTPAGEHWND, 0, 0));
    const HWND first = GetNextDlgTabItem(page, nullptr, FALSE);
    PostMessageW(sheet, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(first), TRUE);
}

void MoveDown(HWND window, int pixels)
{
    RECT place{};
    GetWindowRect(window, &place);
    SetWindowPos(window, nullptr, place.left, place.top + pixels, 0, 0,
                 SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}
} // namespace

bool CLinkKeys::ProcessWindowMessage(HWND link, UINT message, WPARAM wParam, LPARAM, LRESULT &result)
{
    if (message != WM_KEYDOWN || wParam != VK_SPACE)
    {
        return false;
    }
    NMHDR pressed{link, static_cast<UINT_PTR>(GetDlgCtrlID(link)), NM_RETURN};
    result = SendMessageW(GetParent(link), WM_NOTIFY, pressed.idFrom, reinterpret_cast<LPARAM>(&pressed));
    return true;
}

CFlickrProperties::CFlickrProperties(SheetAccount &account, UINT titleId)
    : CPropertySheetImpl(titleId), m_aboutPage(account), m_account(account)
{
    for (CPropertyPageImpl *page :
         {static_cast<CPropertyPageImpl *>(&m_photosPage), static_cast<CPropertyPageImpl *>(&m_optionsPage),
          static_cast<CPropertyPageImpl *>(&m_jpegPage), static_cast<CPropertyPageImpl *>(&m_rawPage),
          static_cast<CPropertyPageImpl *>(&m_aboutPage)})
    {
        AddPage(page->Create());
    }
}

bool CFlickrProperties::ProcessWindowMessage(HWND sheet, UINT message, WPARAM wParam, LPARAM lParam,
                                             LRESULT &result)
{
    switch (message)
    {
    case WM_SHOWWINDOW:
        if (wParam != FALSE && !m_centredOnce)
        {
            m_centredOnce = true;
            AtBoundary([&] {
                OnFirstShow(sheet);
                return S_OK;
            });
        }
        return false;
    case WM_COMMAND:
        if (wParam == IDOK || wParam == IDCANCEL)
        {
            RememberPage(sheet);
        }
        return false;
    // The title bar closes the sheet without a command in some versions of the platform.
    case WM_SYSCOMMAND:
        if ((wParam & SystemCommandMask) == SC_CLOSE)
        {
            RememberPage(sheet);
        }
        return false;
    case WM_CLOSE:
        RememberPage(sheet);
        return false;
    case WM_NOTIFY:
    {
        const auto &notification = *reinterpret_cast<const NMHDR *>(lParam);
        if (notification.idFrom != IDC_HOMEPAGE_LINK ||
            (notification.code != NM_CLICK && notification.code != NM_RETURN))
        {
            return false;
        }
        OpenHomepage(sheet);
        result = 0;
        return true;
    }
    case StartWaiting:
    case StopWaiting:
    {
        const bool isStart = message == StartWaiting;
        isStart ? m_waitingAnimation.Start() : m_waitingAnimation.Stop();
        EnableButton(sheet, IDOK, false);
        EnableButton(sheet, IDCANCEL, !isStart);
        result = 0;
        return true;
    }
    default:
        return false;
    }
}

void CFlickrProperties::OnFirstShow(HWND sheet)
{
    TightenLayout(sheet);
    if (const HWND animation = m_waitingAnimation.Create(TabControlOf(sheet)))
    {
        PlaceInTabRow(sheet, animation);
    }
    if (!m_account.Account.PhotosUrl.IsEmpty())
    {
        CreateHomepageLink(sheet);
    }
    CentreOnPointer(sheet);
    MoveDown(sheet, OffsetInPixels(DownwardMove, VerticalDotsPerInch()));
    SendMessageW(sheet, PSM_SETCURSEL, static_cast<WPARAM>(lastPageIndex), 0);
    FocusPage(sheet);
}

void CFlickrProperties::CreateHomepageLink(HWND sheet)
{
    // Wide enough not to break the text; PlaceBesideButtons then gives the link its ideal size.
    constexpr int ample = 10000;
    m_homepageLink = CreateWindowExW(0, WC_LINK, LoadStringOrPlaceholder(IDS_HOMEPAGE_LINK).c_str(),
                                     WS_CHILD | WS_VISIBLE | WS_TABSTOP, 0, 0, ample, ample, sheet,
                                     reinterpret_cast<HMENU>(IDC_HOMEPAGE_LINK), ThisModule(), nullptr);
    if (m_homepageLink != nullptr)
    {
        const HGDIOBJ font = GetStockObject(DEFAULT_GUI_FONT);
        SendMessageW(m_homepageLink, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
        PlaceBesideButtons(sheet, m_homepageLink);
        m_homepageLinkKeys.SubclassWindow(m_homepageLink);
    }
}

void CFlickrProperties::OpenHomepage(HWND sheet)
{
    ShowCursorOf(IDC_WAIT);
    ShellExecuteW(sheet, TEXT("open"), m_account.Account.PhotosUrl.Text(), nullptr, nullptr, SW_SHOWNORMAL);
    Sleep(BrowserPause);
    ShowCursorOf(IDC_ARROW);
    const HWND ok = FindButton(sheet, IDOK);
    SetFocus(ok);
    if (GetFocus() != ok)
    {
        SetFocus(FindButton(sheet, IDCANCEL));
    }
}

void CFlickrProperties::RememberPage(HWND sheet)
{
    const LRESULT selected = SendMessageW(TabControlOf(sheet), TCM_GETCURSEL, 0, 0);
    if (selected >= 0)
    {
        lastPageIndex = static_cast<int>(selected);
    }
}

SheetOutcome ShowSettingsSheet(HWND parent, SheetAccount &account)
{
    const ActivationContext commonControls6;
    constexpr INITCOMMONCONTROLSEX classes{sizeof(classes),
                                           ICC_TAB_CLASSES | ICC_LINK_CLASS | ICC_STANDARD_CLASSES};
    InitCommonControlsEx(&classes);
    CFlickrProperties sheet(account, IDS_DISPLAY_NAME);
    const bool isApplied = sheet.DoModal(parent) > 0;
    return {isApplied, isApplied && sheet.RevokeRequested()};
}
