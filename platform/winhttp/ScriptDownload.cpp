// The only file here that knows libcurl.
#define WIN32_LEAN_AND_MEAN
#include "platform/winhttp/ScriptDownload.h"

#include <winhttp.h>

#include <curl/curl.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <strings.h>

namespace
{
constexpr size_t LargestScript = 1024 * 1024;

struct HandleCloser
{
    void operator()(CURL *handle) const noexcept { curl_easy_cleanup(handle); }
};
struct ListCloser
{
    void operator()(curl_slist *list) const noexcept { curl_slist_free_all(list); }
};
using ListOwner = std::unique_ptr<curl_slist, ListCloser>;

bool HasScheme(const std::string &url, const char *scheme)
{
    return strncasecmp(url.c_str(), scheme, std::string_view(scheme).size()) == 0;
}

ListOwner ConnectTo()
{
    ListOwner list;
    const char *entries = std::getenv("HALVORA_CONNECT_TO");
    for (std::string_view rest = entries ? entries : ""; !rest.empty();)
    {
        const size_t end = std::min(rest.find(';'), rest.size());
        if (curl_slist *longer =
                end > 0 ? curl_slist_append(list.get(), std::string(rest.substr(0, end)).c_str()) : nullptr)
        {
            static_cast<void>(list.release());
            list.reset(longer);
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return list;
}

size_t Keep(char *bytes, size_t one, size_t size, void *out)
{
    auto &script = *static_cast<std::string *>(out);
    if (script.size() + one * size > LargestScript)
    {
        return 0;
    }
    script.append(bytes, one * size);
    return one * size;
}
} // namespace

ScriptFetch DownloadScript(const std::string &url, std::chrono::milliseconds limit)
{
    if (!HasScheme(url, "http://") && !HasScheme(url, "https://"))
    {
        return {ERROR_WINHTTP_UNRECOGNIZED_SCHEME, {}};
    }
    static const bool IsReady = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    const std::unique_ptr<CURL, HandleCloser> handle(IsReady ? curl_easy_init() : nullptr);
    if (!handle)
    {
        return {ERROR_WINHTTP_UNABLE_TO_DOWNLOAD_SCRIPT, {}};
    }
    ScriptFetch fetch;
    const ListOwner connectTo = ConnectTo();
    CURL *const curl = handle.get();
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_PROXY, "");
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_MAXREDIRS, 5L);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, static_cast<long>(limit.count()));
    curl_easy_setopt(curl, CURLOPT_CONNECT_TO, connectTo.get());
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYHOST, 2L);
    if (const char *bundle = std::getenv("HALVORA_CA_FILE"); bundle != nullptr && *bundle != 0)
    {
        curl_easy_setopt(curl, CURLOPT_CAINFO, bundle);
        curl_easy_setopt(curl, CURLOPT_CAPATH, nullptr);
    }
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, Keep);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &fetch.script);
    const CURLcode code = curl_easy_perform(curl);
    long status = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
    fetch.error = code != CURLE_OK    ? ERROR_WINHTTP_UNABLE_TO_DOWNLOAD_SCRIPT
                  : status == 401     ? ERROR_WINHTTP_LOGIN_FAILURE
                  : status / 100 == 2 ? 0
                                      : ERROR_WINHTTP_UNABLE_TO_DOWNLOAD_SCRIPT;
    return fetch;
}
