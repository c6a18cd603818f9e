#include "account/AuthorizationFlow.h"

#include "account/AccountQueries.h"
#include "account/AccountRecord.h"
#include "account/VerifierExchange.h"
#include "com/BstrOwner.h"
#include "com/ComPtr.h"
#include "core/ErrorText.h"
#include "com/SecretBstr.h"
#include "core/StringTable.h"
#include "resources/resource.h"

namespace
{
// Milliseconds to let the browser open before the second dialog comes to the front.
constexpr DWORD BrowserStart = 3000;

// Keeps other programs from taking the foreground while the second dialog is open.
class ForegroundLock
{
public:
    explicit ForegroundLock(AuthorizationInteraction &interaction) : m_interaction(interaction)
    {
        m_interaction.LockForeground(true);
    }
    ~ForegroundLock() { m_interaction.LockForeground(false); }
    ForegroundLock(const ForegroundLock &) = delete;
    ForegroundLock &operator=(const ForegroundLock &) = delete;

private:
    AuthorizationInteraction &m_interaction;
};

HRESULT CreateScope(ComPtr<IRequestParameters> &parameters)
{
    const HRESULT created = CoCreateInstance(CLSID_RequestParameters, nullptr, CLSCTX_ALL,
                                             __uuidof(IRequestParameters), parameters.PutVoid());
    if (FAILED(created))
    {
        return created;
    }
    const BstrOwner scope{WideView(TEXT("write"))};
    VARIANT value{};
    V_VT(&value) = VT_BSTR;
    V_BSTR(&value) = scope.Get();
    return parameters->Add(TEXT("perms"), value);
}

// Shows that the service couldn't be reached, and returns the code.
HRESULT TellUnreachable(const AuthorizationContext &context, HRESULT code)
{
    WideText text = LoadStringOrPlaceholder(IDS_AUTHORIZATION_UNREACHABLE);
    text.append(TEXT(" ")).append(FormatErrorText(code));
    context.Interaction.ShowError(context.Parent, text.c_str(),
                                  LoadStringOrPlaceholder(IDS_AUTHORIZATION_ERROR_CAPTION).c_str());
    return code;
}

// Opens the service's page, and returns whether the user then says that the permission is granted.
bool AwaitGrant(const AuthorizationContext &context, const SecretBstr &page)
{
    context.Interaction.PrepareCompletion();
    context.Interaction.OpenPage(context.Parent, page.Text());
    context.Wait(BrowserStart);
    const ForegroundLock lock(context.Interaction);
    return context.Interaction.AskCompletion(context.Parent) != IDCANCEL;
}

// Fetches the verifier and exchanges it for the token pair.
HRESULT ExchangeTokens(const AuthorizationContext &context, const SecretBstr &page)
{
    AccountRecord &account = context.Account;
    account.OAuthToken.Reset();
    account.OAuthTokenSecret.Reset();
    SecretBstr verifier;
    const HRESULT fetched = FetchVerifier(page.View(), context.DiscoverProxy, verifier);
    if (FAILED(fetched))
    {
        return fetched;
    }
    return context.Client.GetAccessToken(0, verifier.Text(), account.OAuthToken.Put(),
                                         account.OAuthTokenSecret.Put());
}

HRESULT ReadAccount(const AuthorizationContext &context)
{
    if (SUCCEEDED(RefreshAccount(context.Account, context.Version)))
    {
        return S_OK;
    }
    context.Interaction.ShowError(context.Parent, LoadStringOrPlaceholder(IDS_ACCOUNT_UNREADABLE).c_str(),
                                  LoadStringOrPlaceholder(IDS_SERVICE_ERROR_CAPTION).c_str());
    return E_FAIL;
}
} // namespace

HRESULT Authorize(const AuthorizationContext &context)
{
    // AskingConsent
    if (context.Interaction.AskConsent(context.Parent) == IDCANCEL)
    {
        return S_FALSE;
    }
    ComPtr<IRequestParameters> parameters;
    HRESULT result = CreateScope(parameters);
    if (FAILED(result))
    {
        return result;
    }
    SecretBstr page;
    result = context.Client.GetAuthorizationUrl(0, parameters.Get(), page.Fill().Put());
    if (FAILED(result))
    {
        return TellUnreachable(context, result);
    }
    // AwaitingGrant
    if (!AwaitGrant(context, page))
    {
        return S_FALSE;
    }
    // Exchanging
    result = ExchangeTokens(context, page);
    if (FAILED(result))
    {
        return TellUnreachable(context, result);
    }
    // CheckingAccount
    return ReadAccount(context);
}
