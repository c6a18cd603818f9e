#include "account/ProxyDiscovery.h"

#include "com/BstrOwner.h"
#include "com/InternetHandleOwner.h"

#include <algorithm>
#include <iterator>

namespace
{
// Failures of one way to find a proxy after which the next way is tried.
constexpr DWORD CodesForTheNextWay[] = {
    ERROR_INVALID_PARAMETER,
    ERROR_WINHTTP_TIMEOUT,
    ERROR_WINHTTP_UNRECOGNIZED_SCHEME,
    ERROR_WINHTTP_LOGIN_FAILURE,
    ERROR_WINHTTP_OPERATION_CANCELLED,
    ERROR_WINHTTP_BAD_AUTO_PROXY_SCRIPT,
    ERROR_WINHTTP_UNABLE_TO_DOWNLOAD_SCRIPT,
    ERROR_WINHTTP_AUTO_PROXY_SERVICE_ERROR,
    ERROR_WINHTTP_AUTODETECTION_FAILED,
};

bool AllowsTheNextWay(DWORD error)
{
    return std::find(std::begin(CodesForTheNextWay), std::end(CodesForTheNextWay), error) !=
           std::end(CodesForTheNextWay);
}

struct UserSettings
{
    bool AutoDetect = false;
    GlobalTextOwner ScriptUrl;
    GlobalTextOwner Proxy;
    GlobalTextOwner Bypass;
};

DWORD ReadUserSettings(ProxyLookup &lookup, UserSettings &settings)
{
    WINHTTP_CURRENT_USER_IE_PROXY_CONFIG read{};
    const DWORD error = lookup.ReadUserSettings(read);
    settings.AutoDetect = read.fAutoDetect != FALSE;
    settings.ScriptUrl = GlobalTextOwner(read.lpszAutoConfigUrl);
    settings.Proxy = GlobalTextOwner(read.lpszProxy);
    settings.Bypass = GlobalTextOwner(read.lpszProxyBypass);
    if (error == ERROR_FILE_NOT_FOUND)
    {
        // A user without stored settings has the default, automatic detection.
        settings = UserSettings{true, {}, {}, {}};
        return 0;
    }
    return error;
}

DWORD TryOnce(ProxyLookup &lookup, const WCHAR *url, WINHTTP_AUTOPROXY_OPTIONS &options, ProxySetting &setting)
{
    WINHTTP_PROXY_INFO found{};
    const DWORD error = lookup.FindProxy(url, options, found);
    GlobalTextOwner proxy(found.lpszProxy);
    GlobalTextOwner bypass(found.lpszProxyBypass);
    if (error == 0)
    {
        setting.Proxy = std::move(proxy);
        setting.Bypass = std::move(bypass);
    }
    return error;
}

// scriptUrl null: automatic detection.
DWORD TryWay(ProxyLookup &lookup, const WCHAR *url, const WCHAR *scriptUrl, ProxySetting &setting)
{
    WINHTTP_AUTOPROXY_OPTIONS options{};
    if (scriptUrl == nullptr)
    {
        options.dwFlags = WINHTTP_AUTOPROXY_AUTO_DETECT;
        options.dwAutoDetectFlags = WINHTTP_AUTO_DETECT_TYPE_DHCP | WINHTTP_AUTO_DETECT_TYPE_DNS_A;
    }
    else
    {
        options.dwFlags = WINHTTP_AUTOPROXY_CONFIG_URL;
        options.lpszAutoConfigUrl = scriptUrl;
    }
    const DWORD error = TryOnce(lookup, url, options, setting);
    if (error != ERROR_WINHTTP_LOGIN_FAILURE)
    {
        return error;
    }
    // The user's credentials are sent only to a server that has asked for them.
    options.fAutoLogonIfChallenged = TRUE;
    return TryOnce(lookup, url, options, setting);
}

DWORD TryWays(ProxyLookup &lookup, const WCHAR *url, UserSettings &user, ProxySetting &setting)
{
    DWORD error = ERROR_WINHTTP_AUTODETECTION_FAILED;
    if (user.AutoDetect)
    {
        error = TryWay(lookup, url, nullptr, setting);
    }
    if (AllowsTheNextWay(error) && user.ScriptUrl)
    {
        error = TryWay(lookup, url, user.ScriptUrl.Get(), setting);
    }
    if (AllowsTheNextWay(error))
    {
        setting.Proxy = std::move(user.Proxy);
        setting.Bypass = std::move(user.Bypass);
        error = 0;
    }
    return error;
}

VARIANT ListArgument(const BstrOwner &list)
{
    VARIANT argument{};
    V_VT(&argument) = VT_BSTR;
    V_BSTR(&argument) = list.Get();
    return argument;
}

BstrOwner TextOf(const GlobalTextOwner &list)
{
    return list ? BstrOwner(WideView(list.Get())) : BstrOwner();
}

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

DWORD DiscoverProxy(const WCHAR *url, ProxySetting &setting, ProxyLookup &lookup)
{
    setting = ProxySetting();
    UserSettings user;
    DWORD error = ReadUserSettings(lookup, user);
    if (error == 0)
    {
        error = TryWays(lookup, url, user, setting);
    }
    setting.AccessType = setting.Proxy ? WINHTTP_ACCESS_TYPE_NAMED_PROXY : WINHTTP_ACCESS_TYPE_NO_PROXY;
    return error;
}

HRESULT SendThroughProxy(const ProxySetting &setting, IServerXMLHTTPRequest2 &request, const VARIANT &body)
{
    if (setting.Proxy || setting.Bypass)
    {
        const bool isNamed = setting.AccessType == WINHTTP_ACCESS_TYPE_NAMED_PROXY;
        const BstrOwner proxy = TextOf(setting.Proxy);
        const BstrOwner bypass = TextOf(setting.Bypass);
        request.setProxy(isNamed ? SXH_PROXY_SET_PROXY : SXH_PROXY_SET_DIRECT, ListArgument(proxy),
                         ListArgument(bypass));
    }
    return request.send(body);
}

DWORD DiscoverSystemProxy(const WCHAR *url, ProxySetting &setting)
{
    Session session;
    return DiscoverProxy(url, setting, session);
}
