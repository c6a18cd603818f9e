// Finds the proxy that the user's settings name for an address, and sends a request through it.
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

// The two functions of WinHTTP that discovery calls, which tests replace. Both return 0 or a system error
// code. The caller frees the strings of a result with GlobalFree, also after a failed call.
class ProxyLookup
{
public:
    virtual DWORD ReadUserSettings(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG &settings) = 0;
    virtual DWORD FindProxy(const WCHAR *url, WINHTTP_AUTOPROXY_OPTIONS &options, WINHTTP_PROXY_INFO &found) = 0;

protected:
    ~ProxyLookup() = default;
};

// Tries automatic detection, the script and the static lists, as far as the user has set each, and takes the
// first that works. Returns 0 or a system error code; setting is valid only after 0. Blocks the calling thread for
// as long as the system takes to find and run a script. Nothing is kept from one call to the next.
DWORD DiscoverProxy(const WCHAR *url, ProxySetting &setting, ProxyLookup &lookup);

// The same by the system's own WinHTTP, with a session that lives for the call alone.
DWORD DiscoverSystemProxy(const WCHAR *url, ProxySetting &setting);

// Discovery as a parameter of its callers.
using ProxyDiscovery = std::function<DWORD(const WCHAR *url, ProxySetting &setting)>;

// Sends an opened request by the setting; one without any list leaves the request's own default. Returns
// what send returns: a proxy that the request refuses is no failure.
HRESULT SendThroughProxy(const ProxySetting &setting, IServerXMLHTTPRequest2 &request, const VARIANT &body);
