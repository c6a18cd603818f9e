#include "settings/AboutPage.h"

#include "account/AccountRecord.h"
#include "core/FormatText.h"
#include "com/Hresult.h"
#include "core/StringTable.h"
#include "resources/resource.h"
#include "settings/SettingsSheet.h"

#include <shlwapi.h>

namespace
{
// In milliseconds; without it a fast success would only flicker.
constexpr DWORD PauseAfterSuccess = 500;

constexpr UINT32 Checked = 1;

WideText ByteSizeText(INT64 size)
{
    WCHAR text[64] = {};
    StrFormatByteSizeW(size, text, 64);
    return text;
}
} // namespace

WideText ComposeAccountText(const AccountRecord &account)
{
    const WideText uploadLeft = account.UploadLeftThisMonth == UnlimitedUpload
                                    ? LoadStringOrPlaceholder(IDS_UNLIMITED)
                                    : ByteSizeText(account.UploadLeftThisMonth);
    return FormatText(LoadStringOrPlaceholder(IDS_ABOUT_ACCOUNT).c_str(), account.FullName.Text(),
                      account.AccountType.Text(), ByteSizeText(account.MaxFileSize).c_str(), uploadLeft.c_str(),
                      account.PhotosUrl.Text());
}

AboutPage::AboutPage(SheetAccount &account, Pause wait) : m_account(account), m_wait(std::move(wait)) {}

UINT AboutPage::Template() const noexcept
{
    return IDD_ABOUT;
}

void AboutPage::Load(IPageControls &controls)
{
    const WideText format = controls.Text(IDC_VERSION);
    controls.SetText(IDC_VERSION, FormatText(format.c_str(), LoadStringOrPlaceholder(IDS_DISPLAY_NAME).c_str(),
                                             m_account.Version.c_str()));
    controls.SetText(IDC_COPYRIGHT, m_account.Copyright);
}

void AboutPage::Save(IPageControls &controls)
{
    m_revokeRequested = controls.Check(IDC_REVOKE) == Checked;
}

void AboutPage::ShowAccountData(IPageControls &controls)
{
    controls.SetText(IDC_ACCOUNT, ComposeAccountText(m_account.Account));
    controls.PutCaretAtEnd(IDC_ACCOUNT);
}

void AboutPage::Refresh(IPageControls &controls, IRefreshDisplay &display)
{
    controls.SetText(IDC_ACCOUNT, {});
    controls.Repaint(IDC_ACCOUNT);
    controls.Focus(IDC_ACCOUNT);
    controls.Enable(IDC_REFRESH, false);
    controls.Repaint(IDC_REFRESH);
    display.ShowPending();
    display.ShowWaiting(true);
    const HRESULT result = AtBoundary([&] { return m_account.Refresh(); });
    ShowAccountData(controls);
    if (FAILED(result))
    {
        display.ShowError(LoadStringOrPlaceholder(IDS_REFRESH_FAILED), LoadStringOrPlaceholder(IDS_DISPLAY_NAME));
    }
    else
    {
        m_wait(PauseAfterSuccess);
    }
    display.ShowWaiting(false);
    controls.Enable(IDC_REFRESH, true);
}
