// Proxy discovery. Natively a user's settings are the environment's, by the same rule as for uploads
// (platform/http/EnvironmentProxy.h) and handed on in the same form. Scripts are not run, and nothing is detected.
#include <windows.h>
#include <winhttp.h>

#include "com/Hresult.h"
#include "platform/http/EnvironmentProxy.h"
#include "com/TextConversion.h"

#include <algorithm>

namespace
{
// For GlobalFree; null for an empty text.
WCHAR *GlobalText(std::string_view text)
{
    if (text.empty())
    {
        return nullptr;
    }
    const WideText wide = FromUtf8(text);
    auto *copy = static_cast<WCHAR *>(GlobalAlloc(GMEM_FIXED, (wide.size() + 1) * sizeof(WCHAR)));
    if (copy == nullptr)
    {
        ThrowHresult(E_OUTOFMEMORY);
    }
    std::copy_n(wide.c_str(), wide.size() + 1, copy);
    return copy;
}
} // namespace

// There is nothing to say of a session but that it is open.
HINTERNET WINAPI WinHttpOpen(LPCWSTR, DWORD, LPCWSTR, LPCWSTR, DWORD)
{
    return GlobalAlloc(GMEM_FIXED, 1);
}

BOOL WINAPI WinHttpCloseHandle(HINTERNET session)
{
    GlobalFree(session);
    return TRUE;
}

BOOL WINAPI WinHttpGetProxyForUrl(HINTERNET, LPCWSTR, WINHTTP_AUTOPROXY_OPTIONS *, WINHTTP_PROXY_INFO *)
{
    SetLastError(ERROR_WINHTTP_AUTODETECTION_FAILED);
    return FALSE;
}

BOOL WINAPI WinHttpGetIEProxyConfigForCurrentUser(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG *config)
{
    *config = {};
    const HRESULT result = AtBoundary([&] {
        const ProxyChoice proxy =
            EnvironmentProxy("https:"); // discovery is for the verifier's secure address alone
        config->lpszProxy = GlobalText(proxy.server);
        config->lpszProxyBypass = GlobalText(proxy.bypass);
        return S_OK;
    });
    SetLastError(FAILED(result) ? ERROR_NOT_ENOUGH_MEMORY : ERROR_SUCCESS);
    return SUCCEEDED(result);
}
