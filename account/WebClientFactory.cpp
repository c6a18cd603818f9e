#include "account/WebClientFactory.h"

#include "account/AccountRecord.h"
#include "account/ApplicationCredentials.h"
#include "account/ServiceHosts.h"
#include "core/FormatText.h"
#include "com/Hresult.h"
#include "core/VersionBlock.h"

#include <array>

namespace
{
// Keeps both credentials open in plain form for its lifetime. Opens and closes the secret before the key.
class OpenCredentials
{
public:
    OpenCredentials() noexcept = default;
    OpenCredentials(const OpenCredentials &) = delete;
    OpenCredentials &operator=(const OpenCredentials &) = delete;

    ~OpenCredentials()
    {
        if (Secret != nullptr)
        {
            CloseSecuredString(ApplicationSecret.Head);
        }
        if (Key != nullptr)
        {
            CloseSecuredString(ApplicationKey.Head);
        }
    }

    void Open()
    {
        Secret = OpenSecuredString(ApplicationSecret.Head);
        Key = OpenSecuredString(ApplicationKey.Head);
    }

    const WCHAR *Secret = nullptr;
    const WCHAR *Key = nullptr;
};

WideText UserAgent(const VersionBlock &version)
{
    std::array<UINT16, 4> parts{};
    version.FileVersion(parts);
    return FormatText(TEXT("Halvora/%d.%d.%d.%d"), parts[0], parts[1], parts[2], parts[3]);
}

HRESULT SetUp(IOAuthWebClient &client, const AccountRecord &account, const VersionBlock &version)
{
    OpenCredentials credentials;
    credentials.Open();
    const HRESULT result =
        client.SetService(UserAgent(version).c_str(), ServiceHosts::RestEndpoint, TEXT("HMAC-SHA1"),
                          credentials.Key, credentials.Secret, ServiceHosts::RequestTokenUrl,
                          ServiceHosts::AuthorizeUrl, ServiceHosts::AccessTokenUrl, ServiceHosts::CallbackUrl, 0);
    if (FAILED(result) || !account.IsAuthorized())
    {
        return result;
    }
    return client.SetAccessToken(account.OAuthToken.Text(), account.OAuthTokenSecret.Text());
}
} // namespace

ComPtr<IOAuthWebClient> CreateWebClient(const AccountRecord &account, const VersionBlock &version) noexcept
{
    ComPtr<IOAuthWebClient> client;
    const HRESULT result = AtBoundary([&] {
        ThrowIfFailed(CoCreateInstance(CLSID_OAuthWebClient, nullptr, CLSCTX_ALL, __uuidof(IOAuthWebClient),
                                       client.PutVoid()));
        return SetUp(*client.Get(), account, version);
    });
    if (FAILED(result))
    {
        client.Reset();
    }
    return client;
}
