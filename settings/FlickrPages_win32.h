// The pages of the settings sheet in windows: each the shell of its page's logic. Windows only.
#pragma once

#include "settings/AboutPage.h"
#include "settings/JpegPage.h"
#include "settings/OptionsPage.h"
#include "settings/PhotosPage.h"
#include "settings/PropertyPage_win32.h"
#include "settings/RawPage.h"

// What all pages do: load at first show, save when the sheet is applied, tell the logic of clicks.
class CSettingsPageImpl : public CPropertyPageImpl
{
public:
    // logic lives as long as this.
    explicit CSettingsPageImpl(SettingsPage &logic) noexcept : CPropertyPageImpl(logic.Template()), m_logic(logic)
    {
    }

    bool ProcessWindowMessage(HWND page, UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result) override;

private:
    SettingsPage &m_logic;
};

template <class Logic>
struct PageLogic
{
    Logic Page;
};

template <class Logic>
class CLogicPage final : private PageLogic<Logic>, public CSettingsPageImpl
{
public:
    CLogicPage() : CSettingsPageImpl(this->Page) {}
};

using CFlickrGallerySettingsPage = CLogicPage<PhotosPage>;
using CFlickrOptionsSettingsPage = CLogicPage<OptionsPage>;
using CFlickrJPEGSettingsPage = CLogicPage<JpegPage>;
using CFlickrRAWSettingsPage = CLogicPage<RawPage>;

class CFlickrAboutPage final : private PageLogic<AboutPage>, public CSettingsPageImpl, private IRefreshDisplay
{
public:
    explicit CFlickrAboutPage(SheetAccount &account)
        : PageLogic<AboutPage>{AboutPage(account)}, CSettingsPageImpl(Page)
    {
    }

    bool ProcessWindowMessage(HWND page, UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result) override;

    bool RevokeRequested() const noexcept { return Page.RevokeRequested(); }

private:
    void ShowPending() override;
    void ShowWaiting(bool isWaiting) override;
    void ShowError(const WideText &text, const WideText &caption) override;
};
