// HTTP over libcurl, the only file of this module that knows it.
#define WIN32_LEAN_AND_MEAN
#include "platform/msxml/HttpGet.h"

#include "com/Hresult.h"
#include "platform/http/CurlSetup.h"

#include <curl/curl.h>

#include <strings.h>

namespace
{
constexpr size_t LargestReply = 256 * 1024;
constexpr long MostRedirections = 10; // WinHTTP's number
// Some servers turn away who names no program.
constexpr const char *UserAgent = "Mozilla/5.0 (compatible; XMLHTTP 6.0)";

constexpr HRESULT InternetError(unsigned number)
{
    return static_cast<HRESULT>(0x80070000u | number);
}

std::shared_ptr<CURL> NewHandle()
{
    static const bool IsReady = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    CURL *const handle = IsReady ? curl_easy_init() : nullptr;
    if (handle == nullptr)
    {
        ThrowHresult(E_OUTOFMEMORY);
    }
    return {handle, curl_easy_cleanup};
}

size_t Keep(char *bytes, size_t one, size_t size, void *out)
{
    auto &body = *static_cast<std::string *>(out);
    if (body.size() + one * size > LargestReply)
    {
        return 0;
    }
    body.append(bytes, one * size);
    return one * size;
}

HRESULT CertificateCode(CertificateFault fault)
{
    return fault == CertificateFault::OtherHost   ? InternetError(12038)
           : fault == CertificateFault::Untrusted ? InternetError(12045)
                                                  : InternetError(12037);
}

HRESULT CodeOf(CURL *handle, CURLcode code)
{
    long status = 0, requestBytes = 0;
    curl_easy_getinfo(handle, CURLINFO_RESPONSE_CODE, &status);
    curl_easy_getinfo(handle, CURLINFO_REQUEST_SIZE, &requestBytes);
    switch (code)
    {
    case CURLE_OUT_OF_MEMORY:
        return E_OUTOFMEMORY;
    case CURLE_URL_MALFORMAT:
        return InternetError(12005);
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return InternetError(12007);
    case CURLE_OPERATION_TIMEDOUT:
        return InternetError(12002);
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CONNECT_ERROR:
        return InternetError(12157);
    case CURLE_TOO_MANY_REDIRECTS:
        return InternetError(12156);
    case CURLE_UNSUPPORTED_PROTOCOL: // of the address, of a redirection's, or a reply that isn't HTTP's
        return InternetError(status / 100 == 3 ? 12156 : requestBytes != 0 ? 12152 : 12006);
    case CURLE_WRITE_ERROR:
    case CURLE_WEIRD_SERVER_REPLY:
        return InternetError(12152);
    case CURLE_RECV_ERROR:
    case CURLE_SEND_ERROR:
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
        return InternetError(12030);
    default:
        return InternetError(12029);
    }
}
} // namespace

std::string HttpGet(const std::string &url, const ProxyChoice &proxy, const HttpGetLimits &limits)
{
    const std::shared_ptr<CURL> handle = NewHandle();
    CURL *const curl = handle.get();
    const CurlSetup setup(curl, proxy, limits.connect);
    std::string body;
    curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
    curl_easy_setopt(curl, CURLOPT_USERAGENT, UserAgent);
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(curl, CURLOPT_MAXREDIRS, MostRedirections);
    curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR,
                     strncasecmp(url.c_str(), "https:", 6) == 0 ? "https" : "http,https");
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, static_cast<long>(limits.whole.count()));
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, static_cast<long>(limits.stall.count()));
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, Keep);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &body);
    const CURLcode code = curl_easy_perform(curl);
    if (code != CURLE_OK)
    {
        ThrowHresult(code == CURLE_PEER_FAILED_VERIFICATION ? CertificateCode(setup.FaultOfCertificate())
                                                            : CodeOf(curl, code));
    }
    return body;
}
