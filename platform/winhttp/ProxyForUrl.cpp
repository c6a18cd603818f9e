// The proxy for one address. Detection asks the desktop's settings first and then, where they name no
// proxy, the network: DNS for the host "wpad", which serves a script. DHCP is not asked.
#include <windows.h>
#include <winhttp.h>

#include "com/Hresult.h"
#include "com/TextConversion.h"
#include "platform/winhttp/ProxyProgram.h"
#include "platform/winhttp/ProxyText.h"
#include "platform/winhttp/ScriptDownload.h"
#include "platform/winhttp/Session.h"

#include <strings.h>

using namespace std::chrono_literals;

namespace
{
constexpr auto ProgramLimit = 6s;
constexpr auto ScriptLimit = 15s;
constexpr auto DetectionLimit = 4s; // in a network without such a host the name's lookup may hang
constexpr const char *DetectedScript = "http://wpad/wpad.dat";

struct Lookup
{
    DWORD error = 0;
    std::string proxies; // empty: direct
};

// A name that no proxy can have.
constexpr const char *LastWord = "end-of-answer.invalid";

// What libproxy says of a script that is broken can't be told from "DIRECT". So the script is made to
// end its answers with a word of ours: where that is missing, the script didn't run to its end.
std::string WithLastWord(const std::string &script)
{
    return script +
           "\n;var halvoraAsked = FindProxyForURL;\n"
           "FindProxyForURL = function (url, host) {\n"
           "  var answer = halvoraAsked(url, host);\n"
           "  return (answer ? String(answer) : 'DIRECT') + '; PROXY " +
           LastWord + ":1';\n};\n";
}

std::optional<std::vector<std::string>> RunScript(const std::string &script, const std::string &url)
{
    auto answers = AskScript(WithLastWord(script), url, ProgramLimit);
    if (!answers || answers->back() != std::string("http://") + LastWord + ":1")
    {
        return std::nullopt;
    }
    answers->pop_back();
    return answers;
}

Lookup ByScript(const std::string &script, const std::string &url)
{
    if (const auto answers = RunScript(script, url))
    {
        return {0, ProxyList(*answers)};
    }
    // Is it the script, or can none be run here for want of libproxy's plugin?
    const bool canRun = RunScript("function FindProxyForURL(url, host) { return 'DIRECT'; }", url).has_value();
    const DWORD error = canRun ? ERROR_WINHTTP_BAD_AUTO_PROXY_SCRIPT : ERROR_WINHTTP_AUTO_PROXY_SERVICE_ERROR;
    return {error, {}};
}

Lookup ByAddress(const std::string &scriptUrl, const std::string &url)
{
    const ScriptFetch fetch = DownloadScript(scriptUrl, ScriptLimit);
    return fetch.error != 0 ? Lookup{fetch.error, {}} : ByScript(fetch.script, url);
}

Lookup ByDetection(DWORD ways, const std::string &url)
{
    const auto answers = AskForProxies(url, ProgramLimit);
    if (const std::string proxies = answers ? ProxyList(*answers) : std::string(); !proxies.empty())
    {
        return {0, proxies};
    }
    const ScriptFetch fetch = (ways & WINHTTP_AUTO_DETECT_TYPE_DNS_A) != 0
                                  ? DownloadScript(DetectedScript, DetectionLimit)
                                  : ScriptFetch{ERROR_WINHTTP_UNABLE_TO_DOWNLOAD_SCRIPT, {}};
    return fetch.error != 0 ? Lookup{ERROR_WINHTTP_AUTODETECTION_FAILED, {}} : ByScript(fetch.script, url);
}

bool AreValid(const WINHTTP_AUTOPROXY_OPTIONS &options)
{
    const bool detects = (options.dwFlags & WINHTTP_AUTOPROXY_AUTO_DETECT) != 0;
    const bool hasScript = (options.dwFlags & WINHTTP_AUTOPROXY_CONFIG_URL) != 0;
    constexpr DWORD allWays = WINHTTP_AUTO_DETECT_TYPE_DHCP | WINHTTP_AUTO_DETECT_TYPE_DNS_A;
    return (detects || hasScript) && detects == (options.dwAutoDetectFlags != 0) &&
           (options.dwAutoDetectFlags & ~allWays) == 0 &&
           hasScript == (options.lpszAutoConfigUrl != nullptr && *options.lpszAutoConfigUrl != 0) &&
           options.lpvReserved == nullptr && options.dwReserved == 0;
}

bool HasWebScheme(const std::string &url)
{
    return strncasecmp(url.c_str(), "http://", 7) == 0 || strncasecmp(url.c_str(), "https://", 8) == 0;
}

Lookup Find(const std::string &url, const WINHTTP_AUTOPROXY_OPTIONS &options)
{
    if (!HasWebScheme(url))
    {
        return {ERROR_WINHTTP_UNRECOGNIZED_SCHEME, {}};
    }
    if (url.find_first_of("\r\n ") != std::string::npos)
    {
        return {ERROR_WINHTTP_INVALID_URL, {}};
    }
    Lookup found{ERROR_WINHTTP_AUTODETECTION_FAILED, {}};
    if ((options.dwFlags & WINHTTP_AUTOPROXY_AUTO_DETECT) != 0)
    {
        found = ByDetection(options.dwAutoDetectFlags, url);
    }
    if (found.error != 0 && (options.dwFlags & WINHTTP_AUTOPROXY_CONFIG_URL) != 0)
    {
        found = ByAddress(ToUtf8(options.lpszAutoConfigUrl), url);
    }
    return found;
}
} // namespace

BOOL WINAPI WinHttpGetProxyForUrl(HINTERNET session, LPCWSTR url, WINHTTP_AUTOPROXY_OPTIONS *options,
                                  WINHTTP_PROXY_INFO *info)
{
    if (info != nullptr)
    {
        *info = {};
    }
    DWORD error = ERROR_NOT_ENOUGH_MEMORY;
    AtBoundary([&] {
        if (url == nullptr || *url == 0 || options == nullptr || info == nullptr || !AreValid(*options))
        {
            error = ERROR_INVALID_PARAMETER;
            return E_INVALIDARG;
        }
        if (!IsOpenSession(session))
        {
            error = ERROR_INVALID_HANDLE;
            return E_HANDLE;
        }
        const Lookup found = Find(ToUtf8(url), *options);
        if (found.error == 0)
        {
            info->lpszProxy = GlobalText(found.proxies);
            info->dwAccessType =
                found.proxies.empty() ? WINHTTP_ACCESS_TYPE_NO_PROXY : WINHTTP_ACCESS_TYPE_NAMED_PROXY;
        }
        error = found.error;
        return S_OK;
    });
    SetLastError(error);
    return error == ERROR_SUCCESS;
}
