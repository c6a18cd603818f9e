// The user's authorization of the plug-in, from the consent dialog to the first query of the account.
//
// No variable holds the state of an authorization. Between two of them the account is NotAuthorized or
// Authorized, which IsAuthorized tells from the token pair; the states in between are positions in Authorize:
//
//     AskingConsent     the first dialog is open
//     AwaitingGrant     the browser shows the service's page, the second dialog is open
//     Exchanging        the pair is empty; verifier and access token are fetched
//     CheckingAccount   the new pair is there, and the account is queried with it
//
// A cancel, or a failure up to the second dialog, leaves the old pair; a failure of Exchanging leaves none.
#pragma once

#include "account/ProxyDiscovery.h"
#include "core/Pause.h"

#include "WebComponents.h"

#include <windows.h>

struct AccountRecord;
class VersionBlock;

// The dialogs and system calls of an authorization, which tests replace.
class AuthorizationInteraction
{
public:
    // Shows the first dialog. Returns IDCANCEL for a cancel; any other result means to go on.
    virtual int AskConsent(HWND parent) = 0;

    // Loads the second dialog ahead, so that nothing has to be loaded once the browser is in front.
    virtual void PrepareCompletion() = 0;

    // Opens the service's page in the browser and lets the browser come to the front. Reports
    // nothing if the browser doesn't start.
    virtual void OpenPage(HWND parent, const WCHAR *address) = 0;

    // Keeps other programs from taking the foreground, or allows it again.
    virtual void LockForeground(bool isLocked) = 0;

    // Shows the second dialog; result as for AskConsent.
    virtual int AskCompletion(HWND parent) = 0;

    virtual void ShowError(HWND parent, const WCHAR *text, const WCHAR *caption) = 0;

protected:
    ~AuthorizationInteraction() = default;
};

// What an authorization needs. The caller owns all of it and keeps it for the length of the call.
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

// Blocks the calling thread until the user and the service are done. Returns
//   S_OK      the account has the new pair and was read;
//   S_FALSE   the user cancelled a dialog; the account is unchanged;
//   E_FAIL    with the new pair in the account: only the account couldn't be read;
//   else      the code of the step that failed.
// A dialog has shown every failure except that of creating the parameters. Throws E_OUTOFMEMORY.
HRESULT Authorize(const AuthorizationContext &context);
