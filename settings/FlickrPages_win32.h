// The pages of the settings sheet in windows. Each is a thin shell that hands its messages to the logic of the
// page. Windows build only.
#pragma once

#include "settings/AboutPage.h"
#include "settings/PropertyPage_win32.h"
#include "settings/SettingsPages.h"

// Calls Load when the page is first shown, Click at clicks, and Save when the sheet is applied.
class CSettingsPageImpl : public CPropertyPageImpl
{
public:
    // logic must outlive this object.
    explicit CSettingsPageImpl(SettingsPage &logic) noexcept : CPropertyPageImpl(logic.Template()), m_logic(logic)
    {
    }

    bool ProcessWindowMessage(HWND page, UINT message, WPARAM wParam, LPARAM lParam, LRESULT &result) override;

private:
    SettingsPage &m_logic;
};

// A base class, so that the logic exists before CSettingsPageImpl is constructed with it.
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
