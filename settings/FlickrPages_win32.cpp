#include "settings/FlickrPages_win32.h"

#include "resources/resource.h"
#include "settings/WinDataExchange_win32.h"
#include "ui/CentredDialogs.h"

namespace
{
// Composes the account text just after the page has been painted; in milliseconds.
constexpr UINT_PTR ShowAccountTimer = 1;
constexpr UINT ShowAccountDelay = 1;

bool IsOfSheet(HWND page, const NMHDR &notification)
{
    return notification.hwndFrom == page || notification.hwndFrom == GetParent(page);
}
} // namespace

bool CSettingsPageImpl::ProcessWindowMessage(HWND page, UINT message, WPARAM wParam, LPARAM lParam,
                                             LRESULT &result)
{
    CWinDataExchange controls(page);
    switch (message)
    {
    case WM_INITDIALOG:
        m_logic.Load(controls);
        result = TRUE;
        return true;
    case WM_COMMAND:
        if (HIWORD(wParam) != BN_CLICKED)
        {
            return false;
        }
        m_logic.Click(controls, LOWORD(wParam));
        return true;
    case WM_NOTIFY:
    {
        const auto &notification = *reinterpret_cast<const NMHDR *>(lParam);
        if (!IsOfSheet(page, notification))
        {
            return false;
        }
        if (notification.code == PSN_APPLY)
        {
            m_logic.Save(controls);
            result = PSNRET_NOERROR;
        }
        return true;
    }
    default:
        return false;
    }
}

bool CFlickrAboutPage::ProcessWindowMessage(HWND page, UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result)
{
    CWinDataExchange controls(page);
    switch (message)
    {
    case WM_INITDIALOG:
        SetTimer(page, ShowAccountTimer, ShowAccountDelay, nullptr);
        break;
    case WM_TIMER:
        if (wParam != ShowAccountTimer)
        {
            return false;
        }
        KillTimer(page, ShowAccountTimer);
        Page.ShowAccountData(controls);
        return true;
    case WM_NOTIFY:
    {
        const auto &notification = *reinterpret_cast<const NMHDR *>(lParam);
        if (notification.idFrom == IDC_REFRESH && notification.code == NM_CLICK)
        {
            Page.Refresh(controls, *this);
            return true;
        }
        if (IsOfSheet(page, notification) && notification.code == PSN_SETACTIVE)
        {
            controls.SetText(IDC_ACCOUNT, {});
            SetTimer(page, ShowAccountTimer, ShowAccountDelay, nullptr);
        }
        break;
    }
    default:
        break;
    }
    return CSettingsPageImpl::ProcessWindowMessage(page, message, wParam, lParam, result);
}

void CFlickrAboutPage::ShowPending()
{
    MSG message;
    while (PeekMessageW(&message, Window(), 0, 0, PM_REMOVE))
    {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

void CFlickrAboutPage::ShowWaiting(bool isWaiting)
{
    if (!isWaiting)
    {
        // Drop clicks queued during the wait, or they would start another refresh once the link is enabled.
        MSG click;
        while (PeekMessageW(&click, Window(), WM_MOUSEFIRST, WM_MOUSELAST, PM_REMOVE))
        {
        }
    }
    SetCursor(LoadCursorW(nullptr, isWaiting ? IDC_WAIT : IDC_ARROW));
}

void CFlickrAboutPage::ShowError(const WideText &text, const WideText &caption)
{
    CentredMessageBox(Window(), text.c_str(), caption.c_str(), MB_ICONERROR);
}
