// Proxy discovery by the system's own WinHTTP.
#pragma once

#include "account/ProxyDiscovery.h"

// DiscoverProxy with a WinHTTP session that lives for the call alone.
DWORD DiscoverSystemProxy(const WCHAR *url, ProxySetting &setting);
