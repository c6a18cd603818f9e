// The component that signs requests and sends them to the service. Its methods may be called on any thread;
// each blocks until its request is over. It copies the arguments of SetService and SetAccessToken, and wipes
// the secret ones from memory when it is destroyed.
#pragma once

#include "WebComponents.h"
#include "com/ComObject.h"
#include "webclient/HttpTransport.h"
#include "webclient/OAuthSignature.h"
#include "webclient/RequestUrl.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

class COAuthWebClient final : public ComObject<COAuthWebClient, IOAuthWebClient>
{
public:
    COAuthWebClient() : COAuthWebClient(CreateTransport()) {}
    explicit COAuthWebClient(std::shared_ptr<HttpTransport> transport) : m_transport(std::move(transport)) {}

    STDMETHODIMP SetService(LPCWSTR userAgent, LPCWSTR restEndpoint, LPCWSTR signatureMethod,
                            LPCWSTR applicationKey, LPCWSTR applicationSecret, LPCWSTR requestTokenUrl,
                            LPCWSTR authorizeUrl, LPCWSTR accessTokenUrl, LPCWSTR callbackUrl,
                            UINT_PTR reserved) noexcept override;
    STDMETHODIMP GetAuthorizationUrl(UINT32 flags, IRequestParameters *parameters, BSTR *url) noexcept override;
    STDMETHODIMP GetAccessToken(UINT32 flags, LPCWSTR verifier, BSTR *token, BSTR *tokenSecret) noexcept override;
    STDMETHODIMP SetAccessToken(LPCWSTR token, LPCWSTR tokenSecret) noexcept override;
    STDMETHODIMP Reserved1() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP RestRequest(LPCWSTR resource, LPCWSTR method, IRequestParameters *headers,
                             IRequestParameters *fields, UINT_PTR reserved, IUnknown **reply) noexcept override;
    STDMETHODIMP Reserved2() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Reserved3() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP UploadRequest(LPCWSTR url, LPCWSTR resource, LPCWSTR method, IRequestParameters *headers,
                               IRequestParameters *query, IRequestParameters *fields, IStream *body,
                               UINT32 bodyLength, IUploadProgressCallback *callback, UINT_PTR reserved,
                               IUnknown **reply) noexcept override;
    STDMETHODIMP GetMimeTypeForFile(LPCWSTR fileName, BSTR *mimeType) noexcept override;

private:
    struct Service
    {
        std::string userAgent;
        RequestUrl restEndpoint;
        RequestUrl requestTokenUrl;
        RequestUrl authorizeUrl;
        RequestUrl accessTokenUrl;
        std::string callbackUrl;
        OAuthIdentity identity;
        SecretText requestToken;
        SecretText requestTokenSecret;
    };

    Service CurrentService();
    ParameterList AskForToken(const Service &service, const RequestUrl &url, const OAuthIdentity &identity,
                              const ParameterList &further);
    HttpReply SendSigned(HttpRequest &request, const std::function<SecretText()> &sign);
    HRESULT Carry(const Service &service, std::string_view method, const RequestUrl &url,
                  const ParameterList &headers, const ParameterList &signedParameters, RequestBody *body,
                  bool isPicture, IUnknown **reply);

    std::shared_ptr<HttpTransport> m_transport;
    std::mutex m_lock;
    std::optional<Service> m_service; // guarded by m_lock
};
