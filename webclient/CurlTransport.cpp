// HTTP over libcurl: what is sent, what is waited for, and what became of it. Which proxy is used and who is trusted
// is platform/http's, and connections are CurlHandle's.
// Without the socket and cryptography headers of Windows, which clash with the system's own.
#define WIN32_LEAN_AND_MEAN
#include "webclient/HttpTransport.h"

#include "com/Hresult.h"
#include "platform/http/CurlSetup.h"
#include "webclient/CurlHandle.h"

#include <curl/curl.h>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <optional>

namespace
{
using Clock = std::chrono::steady_clock;

// Wipes the lines, since one of them is the Authorization header.
struct ListCloser
{
    void operator()(curl_slist *list) const noexcept
    {
        for (curl_slist *node = list; node != nullptr; node = node->next)
        {
            WipeMemory(node->data, std::string_view(node->data).size());
        }
        curl_slist_free_all(list);
    }
};

class TextList
{
public:
    void Add(const char *line)
    {
        curl_slist *longer = curl_slist_append(m_list.get(), line);
        if (longer == nullptr)
        {
            throw std::bad_alloc();
        }
        static_cast<void>(m_list.release());
        m_list.reset(longer);
    }

    curl_slist *Get() const noexcept { return m_list.get(); }

private:
    std::unique_ptr<curl_slist, ListCloser> m_list;
};

// One request and its answer.
class CurlExchange
{
public:
    CurlExchange(CURL *handle, const HttpRequest &request, const TransportLimits &limits)
        : m_handle(handle),
          m_request(request),
          m_limits(limits),
          m_proxy(EnvironmentProxy(request.url)),
          m_setup(handle, m_proxy, limits.connect)
    {
    }

    HttpReply Run();

private:
    template <class Value>
    void Set(CURLoption option, Value value)
    {
        const CURLcode code = curl_easy_setopt(m_handle, option, value);
        if (code != CURLE_OK)
        {
            ThrowHresult(code == CURLE_OUT_OF_MEMORY ? E_OUTOFMEMORY : E_FAIL);
        }
    }

    void SetConnection();
    void SetRequest();
    void SetBody();
    void SetCallbacks();

    size_t OnRead(char *buffer, size_t size);
    size_t OnHeader(std::string_view line);
    size_t OnWrite(const char *bytes, size_t size);
    int OnProgress(UINT64 received, UINT64 sent);
    int OnBeforeRequest();
    bool IsPatienceOver(UINT64 received, UINT64 sent);

    UINT64 SentBytes() const;
    bool IsAllSent() const;
    void ReportLast();
    TransportError ErrorOf(CURLcode code) const;
    TransportError CertificateError() const;
    TransportError ConnectingError(CURLcode code) const;

    CURL *m_handle;
    const HttpRequest &m_request;
    const TransportLimits &m_limits;
    const ProxyChoice m_proxy;
    const CurlSetup m_setup;
    TextList m_headers;
    const Clock::time_point m_start = Clock::now();
    HttpReply m_reply;
    UINT64 m_bodyRead = 0;
    UINT64 m_sent = 0;
    UINT64 m_received = 0;
    bool m_isKept = false;                       // the connection had served another request
    bool m_isTooLong = false;                    // the answer
    bool m_hasMoved = false;                     // a header line has come since the last look
    std::optional<Clock::time_point> m_lastMove; // set when the request starts on its connection
    std::optional<Clock::time_point> m_allSent;
    std::optional<long> m_requestSize; // what libcurl had sent when the request started
    std::optional<TransportProblem> m_passedLimit;
    HRESULT m_readFailure = S_OK;
    HRESULT m_callerFailure = S_OK;
};

void CurlExchange::SetConnection()
{
    Set(CURLOPT_TCP_KEEPALIVE, 1L);
    // Bytes that wait unsent in the socket count as progress. The system would let megabytes wait there, a
    // whole picture.
    Set(
        CURLOPT_SOCKOPTFUNCTION, +[](void *, curl_socket_t socket, curlsocktype) -> int {
            const int bytes = 128 * 1024;
            setsockopt(socket, IPPROTO_TCP, TCP_NOTSENT_LOWAT, &bytes, sizeof bytes);
            return CURL_SOCKOPT_OK;
        });
    Set(CURLOPT_MAXCONNECTS, 1L); // the one that the pool looks after
    Set(CURLOPT_FRESH_CONNECT, m_request.needsNewConnection ? 1L : 0L);
}

void CurlExchange::SetBody()
{
    Set(CURLOPT_POST, 1L);
    Set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(m_request.BodyLength()));
    if (m_request.BodyLength() == 0)
    {
        Set(CURLOPT_POSTFIELDS, "");
        return;
    }
    Set(CURLOPT_UPLOAD_BUFFERSIZE, 256L * 1024);
    Set(CURLOPT_READDATA, this);
    Set(
        CURLOPT_READFUNCTION, +[](char *buffer, size_t one, size_t size, void *self) -> size_t {
            return static_cast<CurlExchange *>(self)->OnRead(buffer, one * size);
        });
    // libcurl asks for this when it wants to send a body once more.
    Set(
        CURLOPT_SEEKFUNCTION, +[](void *, curl_off_t, int) -> int { return CURL_SEEKFUNC_FAIL; });
}

void CurlExchange::SetRequest()
{
    Set(CURLOPT_URL, m_request.url.c_str());
    Set(CURLOPT_USERAGENT, m_request.userAgent.c_str());
    if (m_request.method == "POST")
    {
        SetBody();
    }
    else
    {
        Set(CURLOPT_HTTPGET, 1L);
    }
    m_headers.Add("Expect:"); // no waiting for "100 Continue"
    if (m_request.BodyLength() == 0)
    {
        m_headers.Add("Content-Type:"); // libcurl would name one for a POST without a body
    }
    for (const HttpHeader &header : m_request.headers)
    {
        SecretText line{header.name};
        line.Append(": ");
        line.Append(header.value.View());
        line.Append('\0');
        m_headers.Add(line.View().data());
    }
    Set(CURLOPT_HTTPHEADER, m_headers.Get());
}

void CurlExchange::SetCallbacks()
{
    Set(CURLOPT_WRITEDATA, this);
    Set(
        CURLOPT_WRITEFUNCTION, +[](char *bytes, size_t one, size_t size, void *self) -> size_t {
            return static_cast<CurlExchange *>(self)->OnWrite(bytes, one * size);
        });
    Set(CURLOPT_HEADERDATA, this);
    Set(
        CURLOPT_HEADERFUNCTION, +[](char *line, size_t one, size_t size, void *self) -> size_t {
            return static_cast<CurlExchange *>(self)->OnHeader({line, one * size});
        });
    Set(CURLOPT_NOPROGRESS, 0L);
    Set(CURLOPT_XFERINFODATA, this);
    Set(
        CURLOPT_XFERINFOFUNCTION,
        +[](void *self, curl_off_t, curl_off_t received, curl_off_t, curl_off_t sent) -> int {
            return static_cast<CurlExchange *>(self)->OnProgress(static_cast<UINT64>(received),
                                                                 static_cast<UINT64>(sent));
        });
    Set(CURLOPT_PREREQDATA, this);
    Set(
        CURLOPT_PREREQFUNCTION, +[](void *self, char *, char *, int, int) -> int {
            return static_cast<CurlExchange *>(self)->OnBeforeRequest();
        });
}

size_t CurlExchange::OnRead(char *buffer, size_t size)
{
    const UINT64 left = m_request.BodyLength() - m_bodyRead;
    if (left == 0)
    {
        return 0;
    }
    ULONG read = 0;
    const HRESULT result = m_request.body->Read(buffer, static_cast<ULONG>(std::min<UINT64>(left, size)), &read);
    if (FAILED(result))
    {
        m_readFailure = result;
        return CURL_READFUNC_ABORT;
    }
    m_bodyRead += read;
    return read;
}

size_t CurlExchange::OnHeader(std::string_view line)
{
    m_hasMoved = true;
    if (line.starts_with("HTTP/"))
    {
        // "HTTP/1.1 503 Service Unavailable". An interim answer (100, 102, 103) is none: the service thinks on.
        const size_t status = line.find(' ');
        const int number =
            status != std::string_view::npos ? std::atoi(std::string(line.substr(status + 1, 3)).c_str()) : 0;
        if (number >= 200)
        {
            m_reply.status = number;
            const size_t words = line.find(' ', status + 1);
            const size_t end = line.find_last_not_of(" \r\n");
            if (words != std::string_view::npos && end > words)
            {
                m_reply.statusWords = line.substr(words + 1, end - words);
            }
        }
    }
    return line.size();
}

size_t CurlExchange::OnWrite(const char *bytes, size_t size)
{
    if (m_reply.body.size() + size > m_limits.replyBytes)
    {
        m_isTooLong = true;
        return 0;
    }
    m_reply.body.append(bytes, size);
    return size;
}

// Called on a connection that is ready, before the request goes out on it.
int CurlExchange::OnBeforeRequest()
{
    long requestSize = 0;
    curl_easy_getinfo(m_handle, CURLINFO_REQUEST_SIZE, &requestSize);
    // libcurl tries again by itself on a new connection when a kept one dies. That may be only as
    // long as nothing of the request went out.
    if (m_requestSize && (requestSize > *m_requestSize || m_bodyRead > 0))
    {
        return CURL_PREREQFUNC_ABORT;
    }
    if (!m_requestSize)
    {
        long connects = 0;
        curl_easy_getinfo(m_handle, CURLINFO_NUM_CONNECTS, &connects);
        m_isKept = connects == 0;
    }
    m_requestSize = requestSize;
    m_lastMove = Clock::now();
    if (m_request.BodyLength() == 0)
    {
        m_allSent = m_lastMove;
    }
    return CURL_PREREQFUNC_OK;
}

bool CurlExchange::IsPatienceOver(UINT64 received, UINT64 sent)
{
    if (!m_lastMove)
    {
        return false; // still connecting, which has a limit of its own
    }
    const auto now = Clock::now();
    if (received != m_received || sent != m_sent || m_hasMoved)
    {
        m_lastMove = now;
        m_hasMoved = false;
    }
    if (!m_allSent && sent == m_request.BodyLength())
    {
        m_allSent = now;
    }
    m_passedLimit =
        PassedLimit({m_start, *m_lastMove, m_allSent}, m_request.isSmall, m_reply.status != 0, m_limits);
    return m_passedLimit.has_value();
}

int CurlExchange::OnProgress(UINT64 received, UINT64 sent)
{
    if (IsPatienceOver(received, sent))
    {
        return 1;
    }
    m_received = received;
    m_sent = std::max(m_sent, sent);
    m_callerFailure = m_request.Report(m_sent);
    return FAILED(m_callerFailure) ? 1 : 0;
}

// Bytes of the body that the socket has taken. A part of libcurl's last piece may have left beside them, but
// never the piece's end, so as long as these are fewer than the body has the server can't have it all.
UINT64 CurlExchange::SentBytes() const
{
    curl_off_t sent = 0;
    curl_easy_getinfo(m_handle, CURLINFO_SIZE_UPLOAD_T, &sent);
    return std::max(m_sent, static_cast<UINT64>(sent));
}

bool CurlExchange::IsAllSent() const
{
    return m_lastMove && SentBytes() >= m_request.BodyLength();
}

// The last bytes may have been sent, and answered, since the last report. The exchange is over then, so the
// result of this one comes too late to end it.
void CurlExchange::ReportLast()
{
    if (SentBytes() > m_sent)
    {
        static_cast<void>(m_request.Report(SentBytes()));
    }
}

HttpReply CurlExchange::Run()
{
    SetConnection();
    SetRequest();
    SetCallbacks();
    m_reply.body.reserve(4096); // token replies stay in one buffer, where they can be wiped
    const CURLcode code = curl_easy_perform(m_handle);
    // A refusal counts even if the server then closed the connection on the rest of the body.
    const bool isRefusal = m_reply.status >= 400 && (code == CURLE_SEND_ERROR || code == CURLE_RECV_ERROR ||
                                                     code == CURLE_SEND_FAIL_REWIND);
    if (code != CURLE_OK && !isRefusal)
    {
        throw ErrorOf(code);
    }
    ReportLast();
    curl_off_t wait = 0;
    curl_easy_getinfo(m_handle, CURLINFO_RETRY_AFTER, &wait);
    m_reply.retryAfter = static_cast<unsigned>(std::clamp<curl_off_t>(wait, 0, 24 * 60 * 60));
    m_reply.isAllSent = IsAllSent();
    return std::move(m_reply);
}

TransportError CurlExchange::CertificateError() const
{
    switch (m_setup.FaultOfCertificate())
    {
    case CertificateFault::OtherHost:
        return {TransportProblem::CertificateForOtherHost};
    case CertificateFault::Expired:
        return {TransportProblem::CertificateExpired};
    case CertificateFault::NotYetValid:
        return {TransportProblem::CertificateNotYetValid};
    default:
        return {TransportProblem::CertificateUntrusted};
    }
}

// Of what failed before the request could start.
TransportError CurlExchange::ConnectingError(CURLcode code) const
{
    switch (code)
    {
    case CURLE_COULDNT_RESOLVE_HOST:
        return {TransportProblem::NameNotFound};
    case CURLE_COULDNT_RESOLVE_PROXY:
        return {TransportProblem::ProxyNotFound};
    case CURLE_COULDNT_CONNECT:
        return {TransportProblem::CannotConnect};
    case CURLE_OPERATION_TIMEDOUT:
        return {TransportProblem::ConnectTimedOut}; // no other limit is libcurl's
    case CURLE_PEER_FAILED_VERIFICATION:
        return CertificateError();
    case CURLE_SSL_CACERT_BADFILE:
        return {TransportProblem::TrustFileUnreadable};
    default:
        break;
    }
    long proxyStatus = 0;
    curl_easy_getinfo(m_handle, CURLINFO_HTTP_CONNECTCODE, &proxyStatus);
    if (proxyStatus == 407)
    {
        return {TransportProblem::ProxyNeedsLogin};
    }
    if (proxyStatus >= 300)
    {
        return {TransportProblem::ProxyRefused, E_FAIL, ShownProxy(m_proxy.server), static_cast<int>(proxyStatus)};
    }
    return {code == CURLE_SSL_CONNECT_ERROR ? TransportProblem::TlsFailed : TransportProblem::CannotConnect};
}

TransportError CurlExchange::ErrorOf(CURLcode code) const
{
    // What the callbacks decided is more exact than libcurl's code for it.
    if (FAILED(m_callerFailure))
    {
        return {IsAllSent() ? TransportProblem::EndedBeforeAnswer : TransportProblem::EndedByCaller,
                m_callerFailure};
    }
    if (FAILED(m_readFailure))
    {
        return {TransportProblem::BodyUnreadable, m_readFailure};
    }
    if (m_passedLimit)
    {
        return {*m_passedLimit};
    }
    if (code == CURLE_OUT_OF_MEMORY)
    {
        return {TransportProblem::Other, E_OUTOFMEMORY};
    }
    // Once the request was on a connection, a failure to connect is that of libcurl's own second attempt, after the
    // first connection was lost: what went out on that one counts.
    if (!m_lastMove)
    {
        return ConnectingError(code);
    }
    if (m_isTooLong)
    {
        return {TransportProblem::AnswerTooLong};
    }
    if (code == CURLE_WRITE_ERROR || code == CURLE_WEIRD_SERVER_REPLY || code == CURLE_UNSUPPORTED_PROTOCOL)
    {
        return {TransportProblem::AnswerGarbled};
    }
    if (IsAllSent())
    {
        return {TransportProblem::LostBeforeAnswer};
    }
    const bool isKeptLost = m_isKept && m_reply.status == 0;
    return {isKeptLost ? TransportProblem::KeptConnectionLost : TransportProblem::LostWhileSending};
}

class CurlTransport final : public HttpTransport
{
public:
    explicit CurlTransport(const TransportLimits &limits) : m_limits(limits) {}

    HttpReply Exchange(const HttpRequest &request) override
    {
        const CurlHandle handle(request.url);
        return CurlExchange(handle.Get(), request, m_limits).Run();
    }

private:
    TransportLimits m_limits;
};
} // namespace

std::shared_ptr<HttpTransport> CreateTransport(const TransportLimits &limits)
{
    return std::make_shared<CurlTransport>(limits);
}
