// The settings sheet in windows: five pages, a waiting animation in the tab row, and a link to the user's
// photos beside the buttons. It opens near the mouse pointer, on the page that was on top when the last sheet
// closed. Windows build only.
#pragma once

#include "settings/FlickrPages_win32.h"
#include "settings/PropertySheet_win32.h"
#include "ui/WaitingAnimationCtrl_win32.h"
#include "ui/WindowImpl_win32.h"

struct SheetAccount;

// Lets the space bar press a link, which by itself answers Enter only.
class CLinkKeys final : public CWindowImpl
{
public:
    bool ProcessWindowMessage(HWND link, UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result) override;
};

class CFlickrProperties final : public CPropertySheetImpl
{
public:
    // Messages from a page to the sheet. StartWaiting runs the animation and disables OK and Cancel; StopWaiting
    // returns it to its first frame and enables Cancel.
    static constexpr UINT StartWaiting = WM_USER + 124;
    static constexpr UINT StopWaiting = WM_USER + 125;

    // account must outlive this object.
    CFlickrProperties(SheetAccount &account, UINT titleId);

    bool ProcessWindowMessage(HWND sheet, UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result) override;
    ~CFlickrProperties() override = default;

    // Set when the sheet was closed with OK; false before.
    bool RevokeRequested() const noexcept { return m_aboutPage.RevokeRequested(); }

private:
    void OnFirstShow(HWND sheet);
    void CreateHomepageLink(HWND sheet);
    void OpenHomepage(HWND sheet);
    void RememberPage(HWND sheet);

    bool m_centredOnce = false;
    CFlickrGallerySettingsPage m_photosPage;
    CFlickrOptionsSettingsPage m_optionsPage;
    CFlickrJPEGSettingsPage m_jpegPage;
    CFlickrRAWSettingsPage m_rawPage;
    CFlickrAboutPage m_aboutPage;
    SheetAccount &m_account;
    HWND m_homepageLink = nullptr;
    CLinkKeys m_homepageLinkKeys;
    CWaitingAnimationCtrl m_waitingAnimation;
};
