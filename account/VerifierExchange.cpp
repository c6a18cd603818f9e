#include "account/VerifierExchange.h"

#include "account/ServiceHosts.h"
#include "account/ServiceReply.h"
#include "com/BstrOwner.h"
#include "com/ComPtr.h"
#include "com/Hresult.h"

namespace
{
ComPtr<IXMLHTTPRequest> CreateRequest()
{
    ComPtr<IXMLHTTPRequest> request;
    HRESULT result =
        CoCreateInstance(CLSID_ServerXMLHTTP60, nullptr, CLSCTX_ALL, __uuidof(IXMLHTTPRequest), request.PutVoid());
    if (FAILED(result))
    {
        result =
            CoCreateInstance(CLSID_XMLHTTP60, nullptr, CLSCTX_ALL, __uuidof(IXMLHTTPRequest), request.PutVoid());
    }
    ThrowIfFailed(result);
    return request;
}

HRESULT Open(IXMLHTTPRequest &request, const SecretBstr &url)
{
    const BstrOwner method{WideView(TEXT("GET"))};
    VARIANT isAsync{};
    V_VT(&isAsync) = VT_BOOL;
    V_BOOL(&isAsync) = VARIANT_FALSE;
    return request.open(method.Get(), url.Get(), isAsync, VARIANT{}, VARIANT{});
}

HRESULT Send(const ComPtr<IXMLHTTPRequest> &request, const ProxyDiscovery &discoverProxy)
{
    const VARIANT noBody{};
    const auto server = request.As<IServerXMLHTTPRequest2>();
    ProxySetting proxy;
    if (server && discoverProxy(ServiceHosts::VerifierEndpoint, proxy) == 0)
    {
        return SendThroughProxy(proxy, *server.Get(), noBody);
    }
    return request->send(noBody);
}

ComPtr<IXMLDOMDocument2> ReadReply(IXMLHTTPRequest &request)
{
    ComPtr<IDispatch> reply;
    ThrowIfFailed(request.get_responseXML(reply.Put()));
    auto document = QueryFor<IXMLDOMDocument2>(reply.Get());
    if (!document)
    {
        ThrowHresult(E_NOINTERFACE);
    }
    return document;
}
} // namespace

SecretBstr VerifierUrl(WideView pageAddress)
{
    const size_t start = pageAddress.find(TEXT("oauth_token="));
    if (start == pageAddress.npos)
    {
        ThrowHresult(E_FAIL);
    }
    const WideView tail = pageAddress.substr(start);
    return SecretBstr({ServiceHosts::VerifierEndpoint, TEXT("/?"), tail.substr(0, tail.rfind(TEXT('&')))});
}

HRESULT FetchVerifier(WideView pageAddress, const ProxyDiscovery &discoverProxy, SecretBstr &verifier)
{
    try
    {
        const auto request = CreateRequest();
        const SecretBstr url = VerifierUrl(pageAddress);
        ThrowIfFailed(Open(*request.Get(), url));
        ThrowIfFailed(Send(request, discoverProxy));
        const auto reply = ReadReply(*request.Get());
        return ReadNodeText(reply.Get(), TEXT("/TRNQVerifierExchange/Verifier"), verifier.Fill());
    }
    catch (const HresultError &error)
    {
        return error.Code();
    }
}
