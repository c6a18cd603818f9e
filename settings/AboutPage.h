// The page "About": version, account, and the wish to forget the authorization. It has no settings.
#pragma once

#include "core/Pause.h"
#include "settings/SettingsPage.h"

struct AccountRecord;
struct SheetAccount;

// What a refresh needs of whoever shows the page, beside the controls.
class IRefreshDisplay
{
public:
    // Lets everything be drawn that is waiting for it, for a network call follows that blocks.
    virtual void ShowPending() = 0;

    // The wait cursor, or the usual one again.
    virtual void ShowWaiting(bool isWaiting) = 0;

    // A message over the page; returns when the user has read it.
    virtual void ShowError(const WideText &text, const WideText &caption) = 0;

protected:
    ~IRefreshDisplay() = default;
};

class AboutPage final : public SettingsPage
{
public:
    explicit AboutPage(SheetAccount &account, Pause wait = SystemPause);

    UINT Template() const noexcept override;

    // Version and copyright. The account text is ShowAccountData's, at each visit of the page.
    void Load(IPageControls &controls) override;

    // Notes the wish to revoke; nothing is stored.
    void Save(IPageControls &controls) override;

    // Composes the account text from the record as it stands; asks nobody.
    void ShowAccountData(IPageControls &controls);

    // The link was clicked: asks the service, which blocks, and shows what the record holds then.
    void Refresh(IPageControls &controls, IRefreshDisplay &display);

    bool RevokeRequested() const noexcept { return m_revokeRequested; }

private:
    SheetAccount &m_account;
    Pause m_wait;
    bool m_revokeRequested = false;
};

// "Name=..., Type=..., MaxFileSize=..., UploadLeftThisMonth=..., URL=...", sizes in the user's format.
WideText ComposeAccountText(const AccountRecord &account);
