// HTTP over WinHTTP. Every exchange has a connection of its own: on a kept connection that the server has
// closed WinHTTP repeats the request by itself, and no picture may be uploaded twice. (Wine 8 also keeps the way
// through a proxy by the proxy's name alone, and would send a request for one host to another.) Windows decides
// which certificates are trusted and which proxy is used.
#include "webclient/HttpTransport.h"

#include "com/HandleOwner.h"
#include "com/Hresult.h"
#include "com/TextConversion.h"
#include "webclient/WinHttpRequest_win32.h"

#include <algorithm>

namespace
{
using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

// By their numbers: the headers of this compiler don't know them all.
constexpr DWORD ProtocolTls12 = 0x00000800;
constexpr DWORD ProtocolTls13 = 0x00002000;
constexpr DWORD AnswerTimeLimit = 7;    // WINHTTP_OPTION_RECEIVE_RESPONSE_TIMEOUT
constexpr DWORD LogInToProxiesOnly = 3; // WINHTTP_AUTOLOGON_SECURITY_LEVEL_PROXY_ONLY

InternetHandleOwner Opened(HINTERNET handle)
{
    ThrowUnless(handle != nullptr);
    return InternetHandleOwner(handle);
}

// A proxy that is set for all programs of the computer comes before the user's settings.
bool HasComputerProxy()
{
    WINHTTP_PROXY_INFO proxy{};
    if (!WinHttpGetDefaultProxyConfiguration(&proxy))
    {
        return false;
    }
    const GlobalTextOwner name(proxy.lpszProxy);
    const GlobalTextOwner bypass(proxy.lpszProxyBypass);
    return proxy.dwAccessType == WINHTTP_ACCESS_TYPE_NAMED_PROXY;
}

InternetHandleOwner OpenSession()
{
    const auto open = [](DWORD access) {
        return WinHttpOpen(nullptr, access, WINHTTP_NO_PROXY_NAME, WINHTTP_NO_PROXY_BYPASS, WINHTTP_FLAG_ASYNC);
    };
    HINTERNET session = HasComputerProxy() ? nullptr : open(WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY);
    if (session == nullptr) // also by Windows 7, which doesn't know the user's settings here
    {
        session = open(WINHTTP_ACCESS_TYPE_DEFAULT_PROXY);
    }
    InternetHandleOwner opened = Opened(session);
    WinHttpSetStatusCallback(opened.Get(), WinHttpRequest::OnStatus,
                             WINHTTP_CALLBACK_FLAG_ALL_COMPLETIONS | WINHTTP_CALLBACK_FLAG_HANDLES |
                                 WINHTTP_CALLBACK_FLAG_SECURE_FAILURE | WINHTTP_CALLBACK_FLAG_RESOLVE_NAME |
                                 WINHTTP_CALLBACK_FLAG_SEND_REQUEST,
                             0);
    DWORD protocols = ProtocolTls12 | ProtocolTls13;
    if (!WinHttpSetOption(opened.Get(), WINHTTP_OPTION_SECURE_PROTOCOLS, &protocols, sizeof(protocols)))
    {
        protocols = ProtocolTls12;
        ThrowUnless(
            WinHttpSetOption(opened.Get(), WINHTTP_OPTION_SECURE_PROTOCOLS, &protocols, sizeof(protocols)));
    }
    return opened;
}

// One request and its answer.
class WinHttpExchange
{
public:
    WinHttpExchange(HINTERNET session, const HttpRequest &request, const TransportLimits &limits)
        : m_request(request), m_limits(limits), m_connection(Connect(session)), m_http(OpenRequest())
    {
        SetPolicy();
        SetHeaders();
    }

    HttpReply Run();

private:
    InternetHandleOwner Connect(HINTERNET session);
    InternetHandleOwner OpenRequest();
    void SetPolicy();
    void SetHeaders();
    void AddHeader(std::string_view name, std::string_view value);

    void SendHead();
    bool SendBody();
    void ReceiveHead();
    void ReceiveBody();

    WinHttpRequest::Ending Wait();
    void CheckPatience() const;
    void Report();

    DWORD NumberHeader(DWORD query) const;
    std::string TextHeader(DWORD query) const;

    TransportError ErrorOf(DWORD error);
    TransportError CertificateError(DWORD error);

    const HttpRequest &m_request;
    const TransportLimits &m_limits;
    WideText m_host;
    WideText m_path;
    bool m_isSecure = false;
    InternetHandleOwner m_connection;
    WinHttpRequest m_http;
    HttpReply m_reply;
    UINT64 m_sent = 0;
    Clock::time_point m_start = Clock::now();
    Clock::time_point m_lastMove = m_start;
    std::optional<Clock::time_point> m_allSent;
    bool m_isConnected = false; // and the head is sent
    bool m_isAnswering = false;
};

InternetHandleOwner WinHttpExchange::Connect(HINTERNET session)
{
    const WideText url = FromUtf8(m_request.url);
    URL_COMPONENTS parts{};
    parts.dwStructSize = sizeof(parts);
    parts.dwHostNameLength = parts.dwUrlPathLength = parts.dwExtraInfoLength = static_cast<DWORD>(-1);
    ThrowUnless(WinHttpCrackUrl(url.c_str(), static_cast<DWORD>(url.size()), 0, &parts));
    m_host.assign(parts.lpszHostName, parts.dwHostNameLength);
    m_path.assign(parts.lpszUrlPath, parts.dwUrlPathLength);
    m_path.append(parts.lpszExtraInfo, parts.dwExtraInfoLength);
    m_isSecure = parts.nScheme == INTERNET_SCHEME_HTTPS;
    return Opened(WinHttpConnect(session, m_host.c_str(), parts.nPort, 0));
}

InternetHandleOwner WinHttpExchange::OpenRequest()
{
    // The address is sent exactly as it was signed.
    const DWORD flags =
        WINHTTP_FLAG_ESCAPE_DISABLE | WINHTTP_FLAG_ESCAPE_DISABLE_QUERY | (m_isSecure ? WINHTTP_FLAG_SECURE : 0);
    return Opened(WinHttpOpenRequest(m_connection.Get(), FromUtf8(m_request.method).c_str(), m_path.c_str(),
                                     nullptr, WINHTTP_NO_REFERER, WINHTTP_DEFAULT_ACCEPT_TYPES, flags));
}

void WinHttpExchange::SetPolicy()
{
    // The user's own login goes to proxies that ask for it, which companies have, and never to a server.
    // Where the system can't tell the two apart nobody gets it.
    DWORD logIn = LogInToProxiesOnly;
    const bool isProxyOnly =
        WinHttpSetOption(m_http.Get(), WINHTTP_OPTION_AUTOLOGON_POLICY, &logIn, sizeof(logIn)) != FALSE;
    DWORD disabled = WINHTTP_DISABLE_COOKIES | WINHTTP_DISABLE_REDIRECTS | WINHTTP_DISABLE_KEEP_ALIVE |
                     (isProxyOnly ? 0 : WINHTTP_DISABLE_AUTHENTICATION);
    ThrowUnless(WinHttpSetOption(m_http.Get(), WINHTTP_OPTION_DISABLE_FEATURE, &disabled, sizeof(disabled)));
    // CheckPatience keeps the limits, which span several of WinHTTP's steps; WinHTTP's own come later.
    const auto later = [](std::chrono::milliseconds time) { return static_cast<int>((time + 5s).count()); };
    WinHttpSetTimeouts(m_http.Get(), later(m_limits.connect), later(m_limits.connect), later(m_limits.stall),
                       later(m_limits.answer));
    DWORD answer = static_cast<DWORD>(later(m_limits.answer));
    WinHttpSetOption(m_http.Get(), AnswerTimeLimit, &answer, sizeof(answer));
}

void WinHttpExchange::AddHeader(std::string_view name, std::string_view value)
{
    SecretWideText line;
    line.reserve(name.size() + value.size() + 2);
    const auto append = [&line](std::string_view text) {
        for (const char byte : text)
        {
            line.push_back(static_cast<unsigned char>(byte));
        }
    };
    append(name);
    append(": ");
    append(value);
    ThrowUnless(WinHttpAddRequestHeaders(m_http.Get(), line.data(), static_cast<DWORD>(line.size()),
                                         WINHTTP_ADDREQ_FLAG_ADD | WINHTTP_ADDREQ_FLAG_REPLACE));
}

void WinHttpExchange::SetHeaders()
{
    AddHeader("User-Agent", m_request.userAgent);
    for (const HttpHeader &header : m_request.headers)
    {
        AddHeader(header.name, header.value.View());
    }
    if (m_request.BodyLength() > MAXDWORD)
    {
        AddHeader("Content-Length",
                  std::to_string(m_request.BodyLength())); // more than WinHttpSendRequest can say
    }
}

void WinHttpExchange::CheckPatience() const
{
    if (!m_isConnected)
    {
        if (Clock::now() - m_start > m_limits.connect)
        {
            throw TransportError{TransportProblem::ConnectTimedOut};
        }
        return;
    }
    if (const auto problem =
            PassedLimit({m_start, m_lastMove, m_allSent}, m_request.isSmall, m_isAnswering, m_limits))
    {
        throw TransportError{*problem};
    }
}

void WinHttpExchange::Report()
{
    const HRESULT answer = m_request.Report(m_sent);
    if (FAILED(answer))
    {
        throw TransportError{m_allSent ? TransportProblem::EndedBeforeAnswer : TransportProblem::EndedByCaller,
                             answer};
    }
}

WinHttpRequest::Ending WinHttpExchange::Wait()
{
    for (;;)
    {
        if (const auto ending = m_http.WaitFor(200ms))
        {
            m_lastMove = Clock::now();
            return *ending;
        }
        CheckPatience();
        Report();
    }
}

void WinHttpExchange::SendHead()
{
    Report();
    m_http.Send(m_request.BodyLength() > MAXDWORD ? WINHTTP_IGNORE_REQUEST_TOTAL_LENGTH
                                                  : static_cast<DWORD>(m_request.BodyLength()));
    if (const DWORD error = Wait().error)
    {
        throw ErrorOf(error);
    }
    m_isConnected = true;
}

// Returns false if the connection was lost before everything was sent.
bool WinHttpExchange::SendBody()
{
    const UINT64 length = m_request.BodyLength();
    while (m_sent < length)
    {
        ULONG read = 0;
        const auto most = static_cast<ULONG>(std::min<UINT64>(length - m_sent, WinHttpRequest::BufferSize));
        const HRESULT result = m_request.body->Read(m_http.Buffer(), most, &read);
        if (FAILED(result))
        {
            throw TransportError{TransportProblem::BodyUnreadable, result};
        }
        for (ULONG written = 0; written < read;)
        {
            m_http.Write(written, read - written);
            const WinHttpRequest::Ending ending = Wait();
            if (ending.error != 0 || ending.bytes == 0)
            {
                return false;
            }
            written += ending.bytes;
            m_sent += ending.bytes;
        }
        if (m_sent == length)
        {
            m_allSent = m_lastMove;
        }
        Report();
    }
    m_allSent = m_lastMove;
    return true;
}

void WinHttpExchange::ReceiveHead()
{
    m_http.Receive();
    // ERROR_WINHTTP_RESEND_REQUEST is one of the errors: nothing is sent twice.
    if (const DWORD error = Wait().error)
    {
        throw ErrorOf(error);
    }
    m_reply.status = static_cast<int>(NumberHeader(WINHTTP_QUERY_STATUS_CODE));
    if (m_reply.status < HTTP_STATUS_OK)
    {
        // WinHTTP passes over interim answers. Wine doesn't, and then takes no other answer.
        throw TransportError{TransportProblem::AnswerGarbled};
    }
    if (m_reply.status == HTTP_STATUS_PROXY_AUTH_REQ)
    {
        throw TransportError{TransportProblem::ProxyNeedsLogin};
    }
    m_isAnswering = true;
    m_reply.statusWords = TextHeader(WINHTTP_QUERY_STATUS_TEXT);
    m_reply.retryAfter = NumberHeader(WINHTTP_QUERY_RETRY_AFTER); // its other form, a date, isn't read
}

void WinHttpExchange::ReceiveBody()
{
    const std::string announced = TextHeader(WINHTTP_QUERY_CONTENT_LENGTH);
    m_reply.body.reserve(4096); // token replies stay in one buffer, where they can be wiped
    for (;;)
    {
        m_http.Read();
        const WinHttpRequest::Ending ending = Wait();
        if (ending.error != 0)
        {
            throw ErrorOf(ending.error);
        }
        if (m_reply.body.size() + ending.bytes > m_limits.replyBytes)
        {
            throw TransportError{TransportProblem::AnswerTooLong};
        }
        if (ending.bytes == 0)
        {
            break;
        }
        m_reply.body.append(m_http.Buffer(), ending.bytes);
    }
    WipeMemory(m_http.Buffer(), WinHttpRequest::BufferSize);
    if (!announced.empty() && m_reply.body.size() < std::strtoull(announced.c_str(), nullptr, 10))
    {
        throw TransportError{TransportProblem::LostBeforeAnswer};
    }
}

HttpReply WinHttpExchange::Run()
{
    SendHead();
    if (SendBody())
    {
        ReceiveHead();
        ReceiveBody();
        return std::move(m_reply);
    }
    // A refusal counts even if the server then closed the connection on the rest of the body.
    try
    {
        ReceiveHead();
        if (m_reply.status >= 400)
        {
            m_reply.isAllSent = false;
            ReceiveBody();
            return std::move(m_reply);
        }
    }
    catch (const TransportError &error)
    {
        if (error.problem == TransportProblem::EndedByCaller || error.problem == TransportProblem::ProxyNeedsLogin)
        {
            throw;
        }
        if (m_reply.status >= 400)
        {
            return std::move(m_reply);
        }
    }
    throw TransportError{TransportProblem::LostWhileSending};
}

DWORD WinHttpExchange::NumberHeader(DWORD query) const
{
    DWORD number = 0;
    DWORD size = sizeof(number);
    WinHttpQueryHeaders(m_http.Get(), query | WINHTTP_QUERY_FLAG_NUMBER, WINHTTP_HEADER_NAME_BY_INDEX, &number,
                        &size, WINHTTP_NO_HEADER_INDEX);
    return number;
}

// Empty if there is none, or if it is longer than 511 characters.
std::string WinHttpExchange::TextHeader(DWORD query) const
{
    WCHAR text[512] = {};
    DWORD size = sizeof(text);
    return WinHttpQueryHeaders(m_http.Get(), query, WINHTTP_HEADER_NAME_BY_INDEX, text, &size,
                               WINHTTP_NO_HEADER_INDEX)
               ? ToUtf8(WideView(text, size / sizeof(WCHAR)))
               : std::string();
}

// WinHTTP only says that the date is wrong; mostly the certificate has expired.
TransportError WinHttpExchange::CertificateError(DWORD error)
{
    const DWORD flags = m_http.WhatWasSeen().certificateFlags;
    if (error == ERROR_WINHTTP_SECURE_CERT_CN_INVALID ||
        (flags & WINHTTP_CALLBACK_STATUS_FLAG_CERT_CN_INVALID) != 0)
    {
        return {TransportProblem::CertificateForOtherHost};
    }
    if (error == ERROR_WINHTTP_SECURE_CERT_DATE_INVALID ||
        (flags & WINHTTP_CALLBACK_STATUS_FLAG_CERT_DATE_INVALID) != 0)
    {
        return {TransportProblem::CertificateExpired};
    }
    if (error == ERROR_WINHTTP_SECURE_CHANNEL_ERROR ||
        (flags & WINHTTP_CALLBACK_STATUS_FLAG_SECURITY_CHANNEL_ERROR) != 0)
    {
        return {TransportProblem::TlsFailed};
    }
    return {TransportProblem::CertificateUntrusted};
}

TransportError WinHttpExchange::ErrorOf(DWORD error)
{
    const WinHttpRequest::Sight sight = m_http.WhatWasSeen();
    switch (error)
    {
    case ERROR_WINHTTP_NAME_NOT_RESOLVED:
        return {sight.resolvedName.empty() || sight.resolvedName == m_host ? TransportProblem::NameNotFound
                                                                           : TransportProblem::ProxyNotFound};
    case ERROR_WINHTTP_LOGIN_FAILURE:
        return {TransportProblem::ProxyNeedsLogin};
    case ERROR_WINHTTP_CANNOT_CONNECT:
        return {TransportProblem::CannotConnect};
    case ERROR_WINHTTP_TIMEOUT:
        return {!m_isConnected ? TransportProblem::ConnectTimedOut
                : m_allSent    ? TransportProblem::AnswerMissing
                               : TransportProblem::SendStalled};
    case ERROR_WINHTTP_SECURE_FAILURE:
    case ERROR_WINHTTP_SECURE_CERT_CN_INVALID:
    case ERROR_WINHTTP_SECURE_CERT_DATE_INVALID:
    case ERROR_WINHTTP_SECURE_CERT_REV_FAILED:
    case ERROR_WINHTTP_SECURE_CERT_REVOKED:
    case ERROR_WINHTTP_SECURE_CERT_WRONG_USAGE:
    case ERROR_WINHTTP_SECURE_CHANNEL_ERROR:
    case ERROR_WINHTTP_SECURE_INVALID_CA:
    case ERROR_WINHTTP_SECURE_INVALID_CERT:
        return CertificateError(error);
    case ERROR_WINHTTP_INVALID_SERVER_RESPONSE:
    case ERROR_WINHTTP_HEADER_COUNT_EXCEEDED:
    case ERROR_WINHTTP_HEADER_SIZE_OVERFLOW:
        // Before the request is sent only the proxy has answered.
        return {m_isConnected ? TransportProblem::AnswerGarbled : TransportProblem::CannotConnect};
    case ERROR_NOT_ENOUGH_MEMORY:
        return {TransportProblem::Other, E_OUTOFMEMORY};
    default:
        break;
    }
    if (!m_isConnected && !sight.isRequestLeaving)
    {
        return {TransportProblem::CannotConnect};
    }
    return {m_sent == m_request.BodyLength() ? TransportProblem::LostBeforeAnswer
                                             : TransportProblem::LostWhileSending};
}

class WinHttpTransport final : public HttpTransport
{
public:
    explicit WinHttpTransport(const TransportLimits &limits) : m_limits(limits), m_session(OpenSession()) {}

    HttpReply Exchange(const HttpRequest &request) override
    {
        return WinHttpExchange(m_session.Get(), request, m_limits).Run();
    }

private:
    TransportLimits m_limits;
    InternetHandleOwner m_session;
};
} // namespace

std::shared_ptr<HttpTransport> CreateTransport(const TransportLimits &limits)
{
    return std::make_shared<WinHttpTransport>(limits);
}
