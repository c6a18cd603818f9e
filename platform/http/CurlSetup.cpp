#define WIN32_LEAN_AND_MEAN
#include "platform/http/CurlSetup.h"

#include "com/Hresult.h"

#include <curl/curl.h>
#include <openssl/x509_vfy.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace
{
template <class Value>
void Set(CURL *handle, CURLoption option, Value value)
{
    const CURLcode code = curl_easy_setopt(handle, option, value);
    if (code != CURLE_OK)
    {
        ThrowHresult(code == CURLE_OUT_OF_MEMORY ? E_OUTOFMEMORY : E_FAIL);
    }
}
} // namespace

CurlSetup::CurlSetup(void *handle, const ProxyChoice &proxy, std::chrono::milliseconds connectLimit)
    : m_handle(handle)
{
    Set(handle, CURLOPT_NOSIGNAL, 1L);
    Set(handle, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    Set(handle, CURLOPT_PROTOCOLS_STR, "http,https");
    Set(handle, CURLOPT_FOLLOWLOCATION, 0L);
    Set(handle, CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(connectLimit.count()));
    SetProxy(proxy);
    SetTrust();
    SetConnectTo();
}

void CurlSetup::SetProxy(const ProxyChoice &proxy)
{
    Set(m_handle, CURLOPT_PROXY, proxy.server.c_str());
    Set(m_handle, CURLOPT_NOPROXY, proxy.bypass.c_str());
    // Name and password come from the proxy's address. Not Negotiate, which libcurl prefers where it is
    // offered and which they are no use for.
    Set(m_handle, CURLOPT_PROXYAUTH, static_cast<long>(CURLAUTH_BASIC | CURLAUTH_DIGEST | CURLAUTH_NTLM));
    Set(m_handle, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
}

void CurlSetup::SetTrust()
{
    Set(m_handle, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    Set(m_handle, CURLOPT_SSL_VERIFYPEER, 1L);
    Set(m_handle, CURLOPT_SSL_VERIFYHOST, 2L);
    const char *bundle = std::getenv("HALVORA_CA_FILE");
    if (bundle != nullptr && *bundle != 0)
    {
        Set(m_handle, CURLOPT_CAINFO, bundle);
        Set(m_handle, CURLOPT_CAPATH,
            static_cast<const char *>(nullptr)); // instead of the system's, not beside it
    }
}

void CurlSetup::SetConnectTo()
{
    const char *entries = std::getenv("HALVORA_CONNECT_TO");
    curl_slist *list = nullptr;
    for (std::string_view rest = entries ? entries : ""; !rest.empty();)
    {
        const size_t end = std::min(rest.find(';'), rest.size());
        curl_slist *longer = end > 0 ? curl_slist_append(list, std::string(rest.substr(0, end)).c_str()) : list;
        if (longer == nullptr && end > 0)
        {
            curl_slist_free_all(list);
            ThrowHresult(E_OUTOFMEMORY);
        }
        list = longer;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    m_connectTo =
        std::shared_ptr<void>(list, [](void *made) { curl_slist_free_all(static_cast<curl_slist *>(made)); });
    Set(m_handle, CURLOPT_CONNECT_TO, list);
}

CertificateFault CurlSetup::FaultOfCertificate() const
{
    long verdict = X509_V_OK;
    curl_easy_getinfo(m_handle, CURLINFO_SSL_VERIFYRESULT, &verdict);
    switch (verdict)
    {
    case X509_V_OK:
    case X509_V_ERR_UNSPECIFIED: // the chain is good: libcurl missed the host's name before it noted a verdict
    case X509_V_ERR_HOSTNAME_MISMATCH:
    case X509_V_ERR_IP_ADDRESS_MISMATCH:
        return CertificateFault::OtherHost;
    case X509_V_ERR_CERT_HAS_EXPIRED:
        return CertificateFault::Expired;
    case X509_V_ERR_CERT_NOT_YET_VALID:
        return CertificateFault::NotYetValid;
    default:
        return CertificateFault::Untrusted;
    }
}
