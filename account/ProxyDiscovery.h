// How a request of our own gets out: the user's proxy settings, and the request that is sent by them.
#pragma once

#include "com/HandleOwner.h"

#include "XmlInterfaces.h"

#include <windows.h>
#include <winhttp.h>

#include <functional>

struct ProxySetting
{
    DWORD AccessType = 0;  // WINHTTP_ACCESS_TYPE_NO_PROXY or _NAMED_PROXY
    GlobalTextOwner Proxy; // both lists as the system gave them, or null
    GlobalTextOwner Bypass;
};

// What is asked of WinHTTP. Both give 0 or a system error code; the strings of a result are the caller's,
// to be freed with GlobalFree, also where a failed call left some.
class ProxyLookup
{
public:
    virtual DWORD ReadUserSettings(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG &settings) = 0;
    virtual DWORD FindProxy(const WCHAR *url, WINHTTP_AUTOPROXY_OPTIONS &options, WINHTTP_PROXY_INFO &found) = 0;

protected:
    ~ProxyLookup() = default;
};

// Tries automatic detection, the script and the static lists, as far as the user has set each, and takes the
// first that works. 0 or a system error code; setting is valid after 0 alone. Blocks the calling thread for
// as long as the system takes to find and run a script. Nothing is kept from one call to the next.
DWORD DiscoverProxy(const WCHAR *url, ProxySetting &setting, ProxyLookup &lookup);

// The form in which callers take it.
using ProxyDiscovery = std::function<DWORD(const WCHAR *url, ProxySetting &setting)>;

// Sends an opened request by the setting; one without any list leaves the request's own default. The result
// is that of send: a proxy that the request doesn't take is no failure.
HRESULT SendThroughProxy(const ProxySetting &setting, IServerXMLHTTPRequest2 &request, const VARIANT &body);
