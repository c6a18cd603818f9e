// The page "About": shows the version and the account, and takes the wish to forget the authorization. It has
// no settings.
#pragma once

#include "core/Pause.h"
#include "settings/SettingsPage.h"

struct AccountRecord;
struct SheetAccount;

// What a refresh needs beside the controls, from the code that shows the page.
class IRefreshDisplay
{
public:
    // Draws everything that is due, since a network call follows that blocks this thread.
    virtual void ShowPending() = 0;

    // Shows the wait cursor, or the usual one again.
    virtual void ShowWaiting(bool isWaiting) = 0;

    // Shows a message over the page; returns when the user has closed it.
    virtual void ShowError(const WideText &text, const WideText &caption) = 0;

protected:
    ~IRefreshDisplay() = default;
};

class AboutPage final : public SettingsPage
{
public:
    explicit AboutPage(SheetAccount &account, Pause wait = SystemPause);

    UINT Template() const noexcept override;

    // Shows version and copyright. The account text comes with ShowAccountData, at each visit of the page.
    void Load(IPageControls &controls) override;

    // Keeps the state of the check box for RevokeRequested; stores nothing.
    void Save(IPageControls &controls) override;

    // Composes the account text from the record as it stands; calls no service.
    void ShowAccountData(IPageControls &controls);

    // Answers a click on the link: reads the account from the service, which blocks, and shows the record's new
    // content, also after a failure.
    void Refresh(IPageControls &controls, IRefreshDisplay &display);

    bool RevokeRequested() const noexcept { return m_revokeRequested; }

private:
    SheetAccount &m_account;
    Pause m_wait;
    bool m_revokeRequested = false;
};

// "Name=..., Type=..., MaxFileSize=..., UploadLeftThisMonth=..., URL=...", sizes in the user's format.
WideText ComposeAccountText(const AccountRecord &account);
