#include "webclient/OAuthWebClient.h"

#include "com/AsciiText.h"
#include "com/BstrOwner.h"
#include "com/ComPtr.h"
#include "com/TextConversion.h"
#include "webclient/HttpTransport.h"
#include "webclient/ReplyDocument.h"
#include "webclient/RequestBodies.h"
#include "webclient/RequestParameters.h"
#include "webclient/RequestUrl.h"

#include <algorithm>

namespace
{
// Tells the host's observer of uploads, if this process has one, the result and the reply of an upload. reply may be
// null.
void TellUploadObserver(HRESULT result, IUnknown *reply) noexcept
{
    ComPtr<IUploadObserver> observer;
    if (SUCCEEDED(CoCreateInstance(CLSID_UploadObserver, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IUploadObserver),
                                   observer.PutVoid())))
    {
        observer->OnUploadReply(result, reply);
    }
}

constexpr HRESULT InsecureAddress = static_cast<HRESULT>(0x80072EE6); // ERROR_INTERNET_UNRECOGNIZED_SCHEME

RequestUrl SecureUrl(LPCWSTR text)
{
    RequestUrl url = RequestUrl::Parse(ToUtf8(text));
    url.UpgradeToHttps();
    return url;
}

bool HasControls(std::string_view text)
{
    return std::any_of(text.begin(), text.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; });
}

// The caller's headers, without those that the transport or the signature writes: above all the length, which
// the caller's signed number can't hold beyond 2 GiB.
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
    const auto found = std::ranges::find(parameters, name, &Parameter::name);
    return found != parameters.end() ? found->value : SecretText();
}

BstrOwner BstrOf(const SecretText &text)
{
    const SecretWideText wide = SecretWideFromUtf8(text.View());
    return BstrOwner(WideView(wide.data(), wide.size()));
}

// An empty or blank text is no token.
bool IsToken(std::string_view text)
{
    return !Trimmed(text).empty();
}

// The token pair in a reply and what came with it; throws if the reply has none. The reply is wiped.
ParameterList TakePair(HttpReply &reply)
{
    ParameterList values = ParseForm(reply.body);
    WipeMemory(reply.body.data(), reply.body.size());
    if (!IsSuccess(reply.status))
    {
        ThrowHresult(ResultOfStatus(reply.status));
    }
    if (!IsToken(ValueOf(values, "oauth_token").View()) || !IsToken(ValueOf(values, "oauth_token_secret").View()))
    {
        ThrowHresult(InvalidServerResponse);
    }
    return values;
}

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
        service.userAgent = ToUtf8(userAgent);
        if (HasControls(service.userAgent))
        {
            return E_INVALIDARG;
        }
        service.restEndpoint = SecureUrl(restEndpoint);
        service.requestTokenUrl = SecureUrl(requestTokenUrl);
        service.authorizeUrl = SecureUrl(authorizeUrl);
        service.accessTokenUrl = SecureUrl(accessTokenUrl);
        service.callbackUrl = ToUtf8(callbackUrl);
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
        SecretText newToken = SecretUtf8FromWide(token);
        SecretText newSecret = SecretUtf8FromWide(tokenSecret);
        const std::lock_guard guard(m_lock);
        if (!m_service)
        {
            return E_UNEXPECTED;
        }
        if (!IsToken(newToken.View()) || !IsToken(newSecret.View()))
        {
            return E_INVALIDARG;
        }
        m_service->identity.token = std::move(newToken);
        m_service->identity.tokenSecret = std::move(newSecret);
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

ParameterList COAuthWebClient::AskForToken(const Service &service, const RequestUrl &url,
                                           const OAuthIdentity &identity, const ParameterList &further)
{
    HttpRequest request{"POST", url.Text(), service.userAgent, {}, nullptr};
    request.isSmall = true;
    request.headers.push_back(
        {"Authorization", ComposeAuthorization("POST", url, identity, OAuthMoment::Now(), {}, further)});
    try
    {
        HttpReply reply = m_transport->Exchange(request);
        return TakePair(reply);
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
        // Signed without the token that the client may hold: a new authorization doesn't build on it.
        const OAuthIdentity application{
            service.identity.applicationKey, service.identity.applicationSecret, {}, {}};
        const ParameterList pair = AskForToken(service, service.requestTokenUrl, application,
                                               {{"oauth_callback", SecretText(service.callbackUrl)}});
        // Last in the query, where the caller looks for it.
        SecretText address(page.Text());
        address.Append(page.query.empty() ? "?oauth_token=" : "&oauth_token=");
        AppendPercentEncoded(address, ValueOf(pair, "oauth_token").View());
        BstrOwner text = BstrOf(address);
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
        const ParameterList pair = AskForToken(service, service.accessTokenUrl, identity,
                                               {{"oauth_verifier", SecretUtf8FromWide(verifier)}});
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

// A connection that was kept from an earlier request may be closed by the service just now. If it was lost
// before the whole body had left, the service can't have the request, and only then it is sent once more.
HttpReply COAuthWebClient::SendSigned(HttpRequest &request, const std::function<SecretText()> &sign)
{
    request.headers.push_back({"Authorization", sign()});
    try
    {
        return m_transport->Exchange(request);
    }
    catch (const TransportError &error)
    {
        if (error.problem != TransportProblem::KeptConnectionLost || FAILED(request.body->Rewind()))
        {
            throw;
        }
    }
    request.headers.back().value = sign();
    request.needsNewConnection = true;
    return m_transport->Exchange(request);
}

// Signs, sends, and turns the reply or the failure into a document.
HRESULT COAuthWebClient::Carry(const Service &service, std::string_view method, const RequestUrl &url,
                               const ParameterList &headers, const ParameterList &signedParameters,
                               RequestBody *body, bool isPicture, IUnknown **reply)
{
    const std::string_view what = isPicture ? "picture" : "request";
    const OAuthIdentity &identity = service.identity;
    ComPtr<IXMLDOMDocument2> document = CreateReplyDocument();
    HttpRequest request{std::string(method), url.Text(), service.userAgent, CallersHeaders(headers), body};
    request.isSmall = !isPicture;
    const auto sign = [&] {
        return ComposeAuthorization(method, url, identity, OAuthMoment::Now(), signedParameters, {});
    };
    HRESULT result = S_OK;
    try
    {
        result = LoadReply(document.Get(), SendSigned(request, sign), what,
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
        url.path += resource != nullptr ? ToUtf8(resource) : std::string();
        const ParameterList parameters = ReadParameters(fields);
        ParameterList sentHeaders = ReadParameters(headers);
        const WideView verb = method != nullptr ? WideView(method) : WideView();
        if (verb == TEXT("GET"))
        {
            url.AddQuery(parameters);
            return Carry(service, "GET", url, sentHeaders, {}, nullptr, false, reply);
        }
        if (verb != TEXT("POST"))
        {
            return E_INVALIDARG;
        }
        TextBody body(EncodeForm(parameters));
        sentHeaders.push_back({"Content-Type", SecretText("application/x-www-form-urlencoded")});
        return Carry(service, "POST", url, sentHeaders, parameters, &body, false, reply);
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
        RequestUrl address = RequestUrl::Parse(ToUtf8(url));
        address.path += resource != nullptr ? ToUtf8(resource) : std::string();
        address.AddQuery(ReadParameters(query));
        if (IsServiceHost(address.host, {service.restEndpoint.host, service.requestTokenUrl.host,
                                         service.authorizeUrl.host, service.accessTokenUrl.host}))
        {
            address.UpgradeToHttps();
        }
        if (address.scheme != "https")
        {
            ComPtr<IXMLDOMDocument2> refusal = CreateReplyDocument();
            LoadHttpError(refusal.Get(), 0, "Not sent",
                          "The address of the upload, on " + address.host +
                              ", is not secure: pictures are sent to https addresses only.");
            *reply = refusal.Detach();
            return InsecureAddress;
        }
        if (callback != nullptr)
        {
            ThrowIfFailed(callback->OnUploadProgress(UPLOAD_BEGIN, bodyLength, 0));
        }
        UploadBody content(body, bodyLength, callback);
        const HRESULT result = Carry(service, "POST", address, ReadParameters(headers), ReadParameters(fields),
                                     &content, true, reply);
        TellUploadObserver(result, *reply);
        return result;
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
