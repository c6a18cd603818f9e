// The user's authorization of the plug-in, from the consent to the account's first reading.
#pragma once

#include "account/ProxyDiscovery.h"
#include "core/Pause.h"

#include "WebComponents.h"

#include <windows.h>

struct AccountRecord;
class VersionBlock;

// What a user sees of an authorization, and what the system does for it.
class AuthorizationInteraction
{
public:
    // The first dialog. IDCANCEL for a cancel; anything else means go on.
    virtual int AskConsent(HWND parent) = 0;

    // Makes the second dialog ready, so that nothing has to be loaded once the browser is on top.
    virtual void PrepareCompletion() = 0;

    // Opens the service's page in the browser and lets the browser come to the front. A browser that
    // doesn't start isn't noticed.
    virtual void OpenPage(HWND parent, const WCHAR *address) = 0;

    // Keeps other programs from taking the foreground, or lets them again.
    virtual void LockForeground(bool isLocked) = 0;

    // The second dialog; result as for the first.
    virtual int AskCompletion(HWND parent) = 0;

    virtual void ShowError(HWND parent, const WCHAR *text, const WCHAR *caption) = 0;

protected:
    ~AuthorizationInteraction() = default;
};

// What an authorization works with; all of it the caller's, for the length of the call.
struct AuthorizationContext
{
    AccountRecord &Account;
    const VersionBlock &Version;
    IOAuthWebClient &Client; // keeps the request token from one step to the next
    HWND Parent;
    AuthorizationInteraction &Interaction;
    const Pause &Wait;
    const ProxyDiscovery &DiscoverProxy;
};

// Blocks the calling thread until the user and the service are done. S_OK with the new pair in the account;
// S_FALSE if either dialog was cancelled, the account being as it was. A failure was told in a dialog, but for
// parameters that can't be created: the code of the failed step, the old pair being lost once the second
// dialog was confirmed; or E_FAIL with the new pair, if only the account couldn't be read. Throws
// E_OUTOFMEMORY.
HRESULT Authorize(const AuthorizationContext &context);
