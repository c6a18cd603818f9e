// The user's own settings. Natively they are the environment: http_proxy, https_proxy, all_proxy and
// no_proxy, in small letters or else in capitals, where "pac+http://..." names a script and "wpad:"
// asks for detection. Without any of them there are no settings, and a caller that then asks for
// detection, as WinHTTP's callers do, is answered from the desktop's.
#include <windows.h>
#include <winhttp.h>

#include "com/Hresult.h"
#include "platform/winhttp/ProxyText.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <string>

namespace
{
std::string Setting(std::string name)
{
    const char *value = std::getenv(name.c_str());
    if (value == nullptr)
    {
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
        value = std::getenv(name.c_str());
    }
    return value ? value : "";
}

class UserSettings
{
public:
    UserSettings()
    {
        const std::string http = Setting("http_proxy");
        const std::string https = Setting("https_proxy");
        const std::string all = Setting("all_proxy");
        const std::string noProxy = Setting("no_proxy");
        isSet = !(http + https + all + noProxy).empty();
        if (noProxy == "*")
        {
            return; // direct, whatever the others say
        }
        Take("http=", http);
        Take("https=", https);
        Take("", all);
        bypass = proxies.empty() ? "" : BypassList(noProxy);
    }

    bool isSet = false;
    bool detects = false;
    std::string script;
    std::string proxies;
    std::string bypass;

private:
    void Take(const char *scheme, const std::string &value)
    {
        if (value.starts_with("wpad:"))
        {
            detects = true;
        }
        else if (value.starts_with("pac+"))
        {
            script = script.empty() ? value.substr(4) : script;
        }
        else if (const std::string entry = ProxyEntry(value); !entry.empty())
        {
            // A SOCKS proxy has a scheme of its own in the list, and serves all that have no entry.
            proxies += (proxies.empty() ? "" : ";") + (entry.starts_with("socks=") ? entry : scheme + entry);
        }
    }
};
} // namespace

BOOL WINAPI WinHttpGetIEProxyConfigForCurrentUser(WINHTTP_CURRENT_USER_IE_PROXY_CONFIG *config)
{
    if (config == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return FALSE;
    }
    *config = {};
    DWORD error = ERROR_FILE_NOT_FOUND;
    const HRESULT result = AtBoundary([&] {
        const UserSettings settings;
        if (settings.isSet)
        {
            config->fAutoDetect = settings.detects;
            config->lpszAutoConfigUrl = GlobalText(settings.script);
            config->lpszProxy = GlobalText(settings.proxies);
            config->lpszProxyBypass = GlobalText(settings.bypass);
            error = ERROR_SUCCESS;
        }
        return S_OK;
    });
    if (FAILED(result))
    {
        for (WCHAR *text : {config->lpszAutoConfigUrl, config->lpszProxy, config->lpszProxyBypass})
        {
            GlobalFree(text);
        }
        *config = {};
        error = ERROR_NOT_ENOUGH_MEMORY;
    }
    SetLastError(error);
    return error == ERROR_SUCCESS;
}
