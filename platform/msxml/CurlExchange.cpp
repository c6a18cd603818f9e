// HTTP over libcurl, the only file of this module that knows it.
#define WIN32_LEAN_AND_MEAN
#include "platform/msxml/HttpExchange.h"

#include "com/Hresult.h"

#include <curl/curl.h>
#include <openssl/x509_vfy.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <strings.h>

namespace
{
using Clock = std::chrono::steady_clock;

constexpr size_t LargestReply = 256 * 1024; // XmlTree takes no larger document
constexpr size_t LargestHead = 256 * 1024;
constexpr int MostRedirections = 10; // WinHTTP's number
// Some servers turn away who names no program.
constexpr const char *UserAgent = "Mozilla/5.0 (compatible; XMLHTTP 6.0)";

constexpr HRESULT InternetError(unsigned number)
{
    return static_cast<HRESULT>(0x80070000u | number);
}

struct HandleCloser
{
    void operator()(CURL *handle) const noexcept { curl_easy_cleanup(handle); }
};
struct ListCloser
{
    void operator()(curl_slist *list) const noexcept { curl_slist_free_all(list); }
};

class TextList
{
public:
    void Add(const std::string &line)
    {
        curl_slist *longer = curl_slist_append(m_list.get(), line.c_str());
        if (longer == nullptr)
        {
            ThrowHresult(E_OUTOFMEMORY);
        }
        static_cast<void>(m_list.release());
        m_list.reset(longer);
    }
    curl_slist *Get() const noexcept { return m_list.get(); }

private:
    std::unique_ptr<curl_slist, ListCloser> m_list;
};

std::unique_ptr<CURL, HandleCloser> NewHandle()
{
    static const bool IsReady = curl_global_init(CURL_GLOBAL_DEFAULT) == CURLE_OK;
    std::unique_ptr<CURL, HandleCloser> handle(IsReady ? curl_easy_init() : nullptr);
    if (!handle)
    {
        ThrowHresult(E_OUTOFMEMORY);
    }
    return handle;
}

// One request and one reply; a redirection is a reply here.
class Leg
{
public:
    explicit Leg(const HttpOrder &order) : m_order(order), m_handle(NewHandle()) {}

    HttpAnswer Run();
    std::string RedirectionTarget() const;

private:
    template <class Value>
    void Set(CURLoption option, Value value)
    {
        const CURLcode code = curl_easy_setopt(m_handle.get(), option, value);
        if (code != CURLE_OK)
        {
            ThrowHresult(code == CURLE_OUT_OF_MEMORY ? E_OUTOFMEMORY : E_FAIL);
        }
    }

    void SetConnection();
    void SetProxy();
    void SetTrust();
    void SetRequest();
    void SetCallbacks();
    size_t OnHeader(std::string_view line);
    size_t OnWrite(const char *bytes, size_t size);
    bool IsPatienceOver(curl_off_t received, curl_off_t sent);
    HRESULT CodeOf(CURLcode code) const;
    HRESULT CertificateCode() const;

    const HttpOrder &m_order;
    std::unique_ptr<CURL, HandleCloser> m_handle;
    TextList m_headers;
    TextList m_connectTo;
    HttpAnswer m_answer;
    size_t m_headBytes = 0;
    curl_off_t m_moved = -1; // bytes in both directions at the last look; -1 until the connection is ready
    Clock::time_point m_lastMove;
    bool m_isTimedOut = false;
};

void Leg::SetConnection()
{
    Set(CURLOPT_NOSIGNAL, 1L);
    Set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    Set(CURLOPT_PROTOCOLS_STR, "http,https");
    Set(CURLOPT_FOLLOWLOCATION, 0L);
    const auto &timeouts = m_order.timeouts;
    // Zero would be libcurl's own limit.
    const auto connect = timeouts.connect.count() == 0 ? std::chrono::milliseconds(std::chrono::hours(24 * 20))
                                                       : timeouts.connect + timeouts.resolve;
    Set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(connect.count()));
    const char *entries = std::getenv("HALVORA_CONNECT_TO");
    for (std::string_view rest = entries ? entries : ""; !rest.empty();)
    {
        const size_t end = std::min(rest.find(';'), rest.size());
        if (end > 0)
        {
            m_connectTo.Add(std::string(rest.substr(0, end)));
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    Set(CURLOPT_CONNECT_TO, m_connectTo.Get());
}

void Leg::SetProxy()
{
    if (m_order.proxyUse == ProxyUse::Environment)
    {
        return; // libcurl's default
    }
    const auto proxy = m_order.proxyUse == ProxyUse::Named ? m_order.proxies.For(m_order.url) : std::nullopt;
    Set(CURLOPT_PROXY, proxy.value_or("").c_str());
    Set(CURLOPT_NOPROXY, ""); // the bypass list has been asked already; the environment's has no say
    Set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    if (!m_order.proxyUser.empty())
    {
        Set(CURLOPT_PROXYAUTH, static_cast<long>(CURLAUTH_ANY));
        Set(CURLOPT_PROXYUSERNAME, m_order.proxyUser.c_str());
        Set(CURLOPT_PROXYPASSWORD, m_order.proxyPassword.c_str());
    }
}

void Leg::SetTrust()
{
    Set(CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    Set(CURLOPT_SSL_VERIFYPEER, 1L);
    Set(CURLOPT_SSL_VERIFYHOST, 2L);
    const char *bundle = std::getenv("HALVORA_CA_FILE");
    if (bundle != nullptr && *bundle != 0)
    {
        Set(CURLOPT_CAINFO, bundle);
        Set(CURLOPT_CAPATH, static_cast<const char *>(nullptr)); // instead of the system's, not beside it
    }
}

void Leg::SetRequest()
{
    Set(CURLOPT_URL, m_order.url.c_str());
    Set(CURLOPT_USERAGENT, UserAgent);
    if (m_order.body)
    {
        Set(CURLOPT_POST, 1L);
        Set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(m_order.body->size()));
        Set(CURLOPT_POSTFIELDS, m_order.body->c_str());
        m_headers.Add("Expect:"); // no waiting for "100 Continue"
    }
    else if (m_order.method == "HEAD")
    {
        Set(CURLOPT_NOBODY, 1L);
    }
    Set(CURLOPT_CUSTOMREQUEST, m_order.method.c_str());
    for (const auto &[name, value] : m_order.headers)
    {
        m_headers.Add(value.empty() ? name + ";" : name + ": " + value);
    }
    Set(CURLOPT_HTTPHEADER, m_headers.Get());
    if (!m_order.user.empty())
    {
        Set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_ANY));
        Set(CURLOPT_USERNAME, m_order.user.c_str());
        Set(CURLOPT_PASSWORD, m_order.password.c_str());
    }
}

void Leg::SetCallbacks()
{
    Set(CURLOPT_HEADERDATA, this);
    Set(
        CURLOPT_HEADERFUNCTION, +[](char *line, size_t one, size_t size, void *self) -> size_t {
            return static_cast<Leg *>(self)->OnHeader({line, one * size});
        });
    Set(CURLOPT_WRITEDATA, this);
    Set(
        CURLOPT_WRITEFUNCTION, +[](char *bytes, size_t one, size_t size, void *self) -> size_t {
            return static_cast<Leg *>(self)->OnWrite(bytes, one * size);
        });
    Set(CURLOPT_PREREQDATA, this);
    Set(
        CURLOPT_PREREQFUNCTION, +[](void *self, char *, char *, int, int) -> int {
            static_cast<Leg *>(self)->m_moved = 0;
            static_cast<Leg *>(self)->m_lastMove = Clock::now();
            return CURL_PREREQFUNC_OK;
        });
    Set(CURLOPT_NOPROGRESS, 0L);
    Set(CURLOPT_XFERINFODATA, this);
    Set(
        CURLOPT_XFERINFOFUNCTION,
        +[](void *self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent) -> int {
            return static_cast<Leg *>(self)->IsPatienceOver(received, sent) ? 1 : 0;
        });
}

size_t Leg::OnHeader(std::string_view line)
{
    m_headBytes += line.size();
    if (m_headBytes > LargestHead)
    {
        return 0;
    }
    const size_t size = line.size();
    line = line.substr(0, line.find_last_not_of(" \r\n") + 1);
    if (line.starts_with("HTTP/"))
    {
        // A later answer takes the place of an interim one.
        m_answer.headers.clear();
        const size_t status = std::min(line.find(' '), line.size());
        m_answer.status = std::atoi(std::string(line.substr(status)).c_str());
        const size_t words = line.find(' ', line.find_first_not_of(' ', status));
        m_answer.statusWords = words == std::string_view::npos ? "" : line.substr(words + 1);
    }
    else if (const size_t colon = line.find(':'); colon != std::string_view::npos)
    {
        const size_t value = std::min(line.find_first_not_of(" \t", colon + 1), line.size());
        m_answer.headers.emplace_back(line.substr(0, colon), line.substr(value));
    }
    return size;
}

size_t Leg::OnWrite(const char *bytes, size_t size)
{
    if (m_answer.body.size() + size > LargestReply)
    {
        return 0;
    }
    m_answer.body.append(bytes, size);
    return size;
}

bool Leg::IsPatienceOver(curl_off_t received, curl_off_t sent)
{
    if (m_moved < 0)
    {
        return false; // still connecting, which has a limit of its own
    }
    const auto now = Clock::now();
    const curl_off_t moved = received + sent + static_cast<curl_off_t>(m_headBytes);
    if (moved != m_moved)
    {
        m_moved = moved;
        m_lastMove = now;
    }
    const bool isSending = m_order.body && static_cast<size_t>(sent) < m_order.body->size();
    const auto limit = isSending ? m_order.timeouts.send : m_order.timeouts.receive;
    m_isTimedOut = limit.count() != 0 && now - m_lastMove > limit;
    return m_isTimedOut;
}

HttpAnswer Leg::Run()
{
    SetConnection();
    SetProxy();
    SetTrust();
    SetRequest();
    SetCallbacks();
    const CURLcode code = curl_easy_perform(m_handle.get());
    if (code != CURLE_OK)
    {
        ThrowHresult(CodeOf(code));
    }
    m_answer.url = m_order.url;
    return std::move(m_answer);
}

std::string Leg::RedirectionTarget() const
{
    char *target = nullptr;
    curl_easy_getinfo(m_handle.get(), CURLINFO_REDIRECT_URL, &target);
    return target ? target : "";
}

HRESULT Leg::CertificateCode() const
{
    long verdict = X509_V_OK;
    curl_easy_getinfo(m_handle.get(), CURLINFO_SSL_VERIFYRESULT, &verdict);
    switch (verdict)
    {
    case X509_V_OK:
    case X509_V_ERR_UNSPECIFIED: // the chain is good: libcurl missed the host's name before it noted a verdict
    case X509_V_ERR_HOSTNAME_MISMATCH:
    case X509_V_ERR_IP_ADDRESS_MISMATCH:
        return InternetError(12038);
    case X509_V_ERR_CERT_HAS_EXPIRED:
    case X509_V_ERR_CERT_NOT_YET_VALID:
        return InternetError(12037);
    default:
        return InternetError(12045);
    }
}

HRESULT Leg::CodeOf(CURLcode code) const
{
    if (m_isTimedOut)
    {
        return InternetError(12002);
    }
    switch (code)
    {
    case CURLE_OUT_OF_MEMORY:
        return E_OUTOFMEMORY;
    case CURLE_URL_MALFORMAT:
        return InternetError(12005);
    case CURLE_COULDNT_RESOLVE_HOST:
    case CURLE_COULDNT_RESOLVE_PROXY:
        return InternetError(12007);
    case CURLE_COULDNT_CONNECT:
        return InternetError(12029);
    case CURLE_OPERATION_TIMEDOUT:
        return InternetError(12002);
    case CURLE_PEER_FAILED_VERIFICATION:
        return CertificateCode();
    case CURLE_SSL_CACERT_BADFILE:
    case CURLE_SSL_CONNECT_ERROR:
        return InternetError(12157);
    case CURLE_WRITE_ERROR:
    case CURLE_WEIRD_SERVER_REPLY:
    case CURLE_UNSUPPORTED_PROTOCOL:
    case CURLE_BAD_CONTENT_ENCODING:
        return InternetError(12152);
    default:
        return m_moved < 0 ? InternetError(12029) : InternetError(12030);
    }
}

// "https://host:port" of an address.
std::string_view OriginOf(std::string_view url)
{
    return url.substr(0, url.find_first_of("/?#", std::min(url.find("://"), url.size() - 3) + 3));
}

bool IsRedirection(int status)
{
    return (status >= 301 && status <= 303) || status == 307 || status == 308;
}

void TurnTo(HttpOrder &order, const std::string &target, int status)
{
    const bool isSecure = strncasecmp(order.url.c_str(), "https:", 6) == 0;
    const bool staysSecure = strncasecmp(target.c_str(), "https:", 6) == 0;
    if ((!staysSecure && strncasecmp(target.c_str(), "http:", 5) != 0) || (isSecure && !staysSecure))
    {
        ThrowHresult(InternetError(12156));
    }
    if (OriginOf(target) != OriginOf(order.url))
    {
        order.user.clear();
        order.password.clear();
        std::erase_if(order.headers, [](const auto &header) {
            return strcasecmp(header.first.c_str(), "Authorization") == 0 ||
                   strcasecmp(header.first.c_str(), "Cookie") == 0;
        });
    }
    if (status == 303 ? order.method != "HEAD" : status <= 302 && order.method == "POST")
    {
        order.method = "GET";
        order.body.reset();
    }
    order.url = target;
}
} // namespace

HttpAnswer Exchange(const HttpOrder &first)
{
    HttpOrder order = first;
    for (int redirections = 0;; ++redirections)
    {
        Leg leg(order);
        HttpAnswer answer = leg.Run();
        const std::string target = IsRedirection(answer.status) ? leg.RedirectionTarget() : std::string();
        if (target.empty())
        {
            return answer;
        }
        if (redirections == MostRedirections)
        {
            ThrowHresult(InternetError(12156));
        }
        TurnTo(order, target, answer.status);
    }
}
