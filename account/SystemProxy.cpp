#include "account/SystemProxy.h"

#include "com/InternetHandleOwner.h"

namespace
{
// The code of the call that failed just now; never 0.
DWORD FailureCode()
{
    const DWORD error = GetLastError();
    return error != 0 ? error : ERROR_WINHTTP_INTERNAL_ERROR;
}

// If WinHTTP refuses to open a session, the two calls fail.
class Session final : public ProxyLookup
{
public:
    DWORD ReadUserSettings(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG &settings) override
    {
        return WinHttpGetIEProxyConfigForCurrentUser(&settings) ? 0 : FailureCode();
    }

    DWORD FindProxy(const WCHAR *url, WINHTTP_AUTOPROXY_OPTIONS &options, WINHTTP_PROXY_INFO &found) override
    {
        return WinHttpGetProxyForUrl(m_session.Get(), url, &options, &found) ? 0 : FailureCode();
    }

private:
    InternetHandleOwner m_session{
        WinHttpOpen(TEXT("Halvora"), WINHTTP_ACCESS_TYPE_DEFAULT_PROXY, nullptr, nullptr, 0)};
};
} // namespace

DWORD DiscoverSystemProxy(const WCHAR *url, ProxySetting &setting)
{
    Session session;
    return DiscoverProxy(url, setting, session);
}
