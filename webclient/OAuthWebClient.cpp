#include "webclient/OAuthWebClient.h"

#include "com/BstrOwner.h"
#include "webclient/MimeType.h"
#include "webclient/ReplyDocument.h"
#include "webclient/RequestBodies.h"
#include "webclient/RequestParameters.h"
#include "webclient/TransportWords.h"
#include "webclient/Utf8.h"

#include <algorithm>

namespace
{
constexpr HRESULT InvalidServerResponse = static_cast<HRESULT>(0x80072F78);

RequestUrl SecureUrl(LPCWSTR text)
{
    RequestUrl url = RequestUrl::Parse(Utf8FromWide(text));
    url.UpgradeToHttps();
    return url;
}

bool HasControls(std::string_view text)
{
    return std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; });
}

std::string LowerAscii(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; });
    return text;
}

// The caller's headers, without those that are the transport's or the signature's to write: the
// length above all, which a signed number can't tell beyond 2 GiB.
std::vector<HttpHeader> CallersHeaders(const ParameterList &headers)
{
    static constexpr std::string_view Owned[] = {"authorization", "connection",        "content-length", "expect",
                                                 "host",          "transfer-encoding", "user-agent"};
    std::vector<HttpHeader> result;
    for (const Parameter &header : headers)
    {
        if (HasControls(header.name) || HasControls(header.value.View()) ||
            header.name.find_first_of(": ") != std::string::npos)
        {
            ThrowHresult(E_INVALIDARG);
        }
        if (std::find(std::begin(Owned), std::end(Owned), LowerAscii(header.name)) == std::end(Owned))
        {
            result.push_back({header.name, header.value});
        }
    }
    return result;
}

SecretText ValueOf(const ParameterList &parameters, std::string_view name)
{
    for (const Parameter &parameter : parameters)
    {
        if (parameter.name == name)
        {
            return parameter.value;
        }
    }
    return {};
}

BstrOwner BstrOf(const SecretText &text)
{
    return BstrOwner(WideFromUtf8(text.View()));
}

// Wipes a reply that holds a token pair, whatever way is taken from there.
class WipedReply
{
public:
    explicit WipedReply(HttpReply reply) : m_reply(std::move(reply)) {}
    ~WipedReply() { WipeMemory(m_reply.body.data(), m_reply.body.size()); }
    WipedReply(const WipedReply &) = delete;
    WipedReply &operator=(const WipedReply &) = delete;

    // The pair and what came with it; throws if the reply has none.
    ParameterList Pair() const
    {
        if (m_reply.status < 200 || m_reply.status > 299)
        {
            ThrowHresult(ResultOfStatus(m_reply.status));
        }
        ParameterList values = ParseForm(m_reply.body);
        if (ValueOf(values, "oauth_token").IsEmpty() || ValueOf(values, "oauth_token_secret").IsEmpty())
        {
            ThrowHresult(InvalidServerResponse);
        }
        return values;
    }

private:
    HttpReply m_reply;
};

bool IsServiceHost(std::string_view host, std::initializer_list<std::string_view> configured)
{
    return host == "flickr.com" || host.ends_with(".flickr.com") ||
           std::find(configured.begin(), configured.end(), host) != configured.end();
}
} // namespace

HRESULT COAuthWebClient::SetService(LPCWSTR userAgent, LPCWSTR restEndpoint, LPCWSTR signatureMethod,
                                    LPCWSTR applicationKey, LPCWSTR applicationSecret, LPCWSTR requestTokenUrl,
                                    LPCWSTR authorizeUrl, LPCWSTR accessTokenUrl, LPCWSTR callbackUrl,
                                    UINT_PTR) noexcept
{
    return AtBoundary([&] {
        for (LPCWSTR text : {userAgent, restEndpoint, signatureMethod, applicationKey, applicationSecret,
                             requestTokenUrl, authorizeUrl, accessTokenUrl, callbackUrl})
        {
            if (text == nullptr)
            {
                return E_INVALIDARG;
            }
        }
        if (WideView(signatureMethod) != TEXT("HMAC-SHA1") || *applicationKey == 0)
        {
            return E_INVALIDARG;
        }
        Service service;
        service.userAgent = Utf8FromWide(userAgent);
        if (HasControls(service.userAgent))
        {
            return E_INVALIDARG;
        }
        service.restEndpoint = SecureUrl(restEndpoint);
        service.requestTokenUrl = SecureUrl(requestTokenUrl);
        service.authorizeUrl = SecureUrl(authorizeUrl);
        service.accessTokenUrl = SecureUrl(accessTokenUrl);
        service.callbackUrl = Utf8FromWide(callbackUrl);
        service.identity.applicationKey = SecretUtf8FromWide(applicationKey);
        service.identity.applicationSecret = SecretUtf8FromWide(applicationSecret);
        const std::lock_guard guard(m_lock);
        m_service = std::move(service);
        return S_OK;
    });
}

HRESULT COAuthWebClient::SetAccessToken(LPCWSTR token, LPCWSTR tokenSecret) noexcept
{
    return AtBoundary([&] {
        if (token == nullptr || tokenSecret == nullptr)
        {
            return E_INVALIDARG;
        }
        const std::lock_guard guard(m_lock);
        if (!m_service)
        {
            return E_UNEXPECTED;
        }
        m_service->identity.token = SecretUtf8FromWide(token);
        m_service->identity.tokenSecret = SecretUtf8FromWide(tokenSecret);
        return S_OK;
    });
}

COAuthWebClient::Service COAuthWebClient::CurrentService()
{
    const std::lock_guard guard(m_lock);
    if (!m_service)
    {
        ThrowHresult(E_UNEXPECTED);
    }
    return *m_service;
}

HttpReply COAuthWebClient::AskForToken(const Service &service, const RequestUrl &url,
                                       const OAuthIdentity &identity, const ParameterList &further)
{
    HttpRequest request{"POST", url.Text(), service.userAgent, {}, nullptr};
    request.headers.push_back(
        {"Authorization", ComposeAuthorization("POST", url, identity, OAuthMoment::Now(), {}, further)});
    try
    {
        return m_transport->Exchange(request);
    }
    catch (const TransportError &error)
    {
        ThrowHresult(WordsFor(error, url.host, "request").code);
    }
}

HRESULT COAuthWebClient::GetAuthorizationUrl(UINT32, IRequestParameters *parameters, BSTR *url) noexcept
{
    if (url == nullptr)
    {
        return E_INVALIDARG;
    }
    *url = nullptr;
    return AtBoundary([&] {
        const Service service = CurrentService();
        RequestUrl page = service.authorizeUrl;
        page.AddQuery(ReadParameters(parameters));
        // A new authorization knows nothing of a token that the client may hold.
        const OAuthIdentity application{
            service.identity.applicationKey, service.identity.applicationSecret, {}, {}};
        const WipedReply reply(AskForToken(service, service.requestTokenUrl, application,
                                           {{"oauth_callback", SecretText(service.callbackUrl)}}));
        const ParameterList pair = reply.Pair();
        // Last of the query: there its readers expect it.
        page.AddQuery({{"oauth_token", ValueOf(pair, "oauth_token")}});
        BstrOwner text(WideFromUtf8(page.Text()));
        const std::lock_guard guard(m_lock);
        m_service->requestToken = ValueOf(pair, "oauth_token");
        m_service->requestTokenSecret = ValueOf(pair, "oauth_token_secret");
        *url = text.Detach();
        return S_OK;
    });
}

HRESULT COAuthWebClient::GetAccessToken(UINT32, LPCWSTR verifier, BSTR *token, BSTR *tokenSecret) noexcept
{
    if (token == nullptr || tokenSecret == nullptr)
    {
        return E_INVALIDARG;
    }
    *token = nullptr;
    *tokenSecret = nullptr;
    return AtBoundary([&] {
        if (verifier == nullptr)
        {
            return E_INVALIDARG;
        }
        const Service service = CurrentService();
        if (service.requestToken.IsEmpty())
        {
            return E_UNEXPECTED;
        }
        const OAuthIdentity identity{service.identity.applicationKey, service.identity.applicationSecret,
                                     service.requestToken, service.requestTokenSecret};
        const WipedReply reply(AskForToken(service, service.accessTokenUrl, identity,
                                           {{"oauth_verifier", SecretUtf8FromWide(verifier)}}));
        const ParameterList pair = reply.Pair();
        BstrOwner tokenText = BstrOf(ValueOf(pair, "oauth_token"));
        BstrOwner secretText = BstrOf(ValueOf(pair, "oauth_token_secret"));
        const std::lock_guard guard(m_lock);
        m_service->requestToken = SecretText(); // it is used up
        m_service->requestTokenSecret = SecretText();
        *token = tokenText.Detach();
        *tokenSecret = secretText.Detach();
        return S_OK;
    });
}

// Signs, sends, and turns whatever comes of it into a document.
HRESULT COAuthWebClient::Carry(const Service &service, std::string_view method, const RequestUrl &url,
                               const ParameterList &headers, const ParameterList &signedParameters,
                               RequestBody *body, std::string_view what, IUnknown **reply)
{
    ComPtr<IXMLDOMDocument2> document = CreateReplyDocument();
    HttpRequest request{std::string(method), url.Text(), service.userAgent, CallersHeaders(headers), body};
    request.headers.push_back({"Authorization", ComposeAuthorization(method, url, service.identity,
                                                                     OAuthMoment::Now(), signedParameters, {})});
    HRESULT result = S_OK;
    try
    {
        const OAuthIdentity &identity = service.identity;
        result = LoadReply(document.Get(), m_transport->Exchange(request),
                           {identity.applicationKey.View(), identity.applicationSecret.View(),
                            identity.token.View(), identity.tokenSecret.View()});
    }
    catch (const TransportError &error)
    {
        const TransportWords words = WordsFor(error, url.host, what);
        result = words.code;
        LoadHttpError(document.Get(), 0, words.status, words.description);
    }
    *reply = document.Detach();
    return result;
}

HRESULT COAuthWebClient::RestRequest(LPCWSTR resource, LPCWSTR method, IRequestParameters *headers,
                                     IRequestParameters *fields, UINT_PTR, IUnknown **reply) noexcept
{
    if (reply == nullptr)
    {
        return E_INVALIDARG;
    }
    *reply = nullptr;
    return AtBoundary([&] {
        const Service service = CurrentService();
        RequestUrl url = service.restEndpoint;
        url.path += resource != nullptr ? Utf8FromWide(resource) : std::string();
        const ParameterList parameters = ReadParameters(fields);
        ParameterList sentHeaders = ReadParameters(headers);
        const WideView verb = method != nullptr ? WideView(method) : WideView();
        if (verb == TEXT("GET"))
        {
            url.AddQuery(parameters);
            return Carry(service, "GET", url, sentHeaders, {}, nullptr, "request", reply);
        }
        if (verb != TEXT("POST"))
        {
            return E_INVALIDARG;
        }
        TextBody body(EncodeForm(parameters));
        sentHeaders.push_back({"Content-Type", SecretText("application/x-www-form-urlencoded")});
        return Carry(service, "POST", url, sentHeaders, parameters, &body, "request", reply);
    });
}

HRESULT COAuthWebClient::UploadRequest(LPCWSTR url, LPCWSTR resource, LPCWSTR method, IRequestParameters *headers,
                                       IRequestParameters *query, IRequestParameters *fields, IStream *body,
                                       UINT32 bodyLength, IUploadProgressCallback *callback, UINT_PTR,
                                       IUnknown **reply) noexcept
{
    if (reply == nullptr)
    {
        return E_INVALIDARG;
    }
    *reply = nullptr;
    return AtBoundary([&] {
        if (url == nullptr || body == nullptr || bodyLength == 0 || method == nullptr ||
            WideView(method) != TEXT("POST"))
        {
            return E_INVALIDARG;
        }
        const Service service = CurrentService();
        RequestUrl address = RequestUrl::Parse(Utf8FromWide(url));
        address.path += resource != nullptr ? Utf8FromWide(resource) : std::string();
        address.AddQuery(ReadParameters(query));
        if (IsServiceHost(address.host, {service.restEndpoint.host, service.requestTokenUrl.host,
                                         service.authorizeUrl.host, service.accessTokenUrl.host}))
        {
            address.UpgradeToHttps();
        }
        if (callback != nullptr)
        {
            ThrowIfFailed(callback->OnUploadProgress(UPLOAD_BEGIN, bodyLength, 0));
        }
        UploadBody content(body, bodyLength, callback);
        return Carry(service, "POST", address, ReadParameters(headers), ReadParameters(fields), &content,
                     "picture", reply);
    });
}

HRESULT COAuthWebClient::GetMimeTypeForFile(LPCWSTR fileName, BSTR *mimeType) noexcept
{
    if (mimeType == nullptr)
    {
        return E_INVALIDARG;
    }
    *mimeType = nullptr;
    return AtBoundary([&] {
        if (fileName == nullptr)
        {
            return E_INVALIDARG;
        }
        *mimeType = BstrOwner(WideView(MimeTypeOfFile(fileName))).Detach();
        return S_OK;
    });
}
