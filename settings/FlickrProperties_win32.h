// The settings sheet in windows: five pages, a busy indicator in the tab row, and a link to the user's
// photos beside the buttons. It opens near the mouse pointer, with the page on top that was there last.
// Windows only.
#pragma once

#include "settings/FlickrPages_win32.h"
#include "settings/PropertySheet_win32.h"
#include "ui/WaitingAnimationCtrl_win32.h"

struct SheetAccount;

class CFlickrProperties final : public CPropertySheetImpl
{
public:
    // What a page may send to the sheet: the animation runs and OK and Cancel are disabled; it stands at its
    // first frame again and Cancel is enabled.
    static constexpr UINT StartWaiting = WM_USER + 124;
    static constexpr UINT StopWaiting = WM_USER + 125;

    // account lives as long as this.
    CFlickrProperties(SheetAccount &account, UINT titleId);

    bool ProcessWindowMessage(HWND sheet, UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result) override;
    ~CFlickrProperties() override = default;

    // Of a sheet that was confirmed.
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
    CWaitingAnimationCtrl m_waitingAnimation;
};
