// The class ServerXMLHTTP60: one GET at a time, sent while its caller waits, and its reply as a document.
#include "com/ClassFactory.h"
#include "com/ComObject.h"
#include "com/TextConversion.h"
#include "platform/msxml/HttpGet.h"
#include "platform/msxml/NodeObjects.h"
#include "platform/msxml/UnsupportedOperations.h"

#include <optional>

namespace
{
std::string Utf8(BSTR text)
{
    return ToUtf8(WideView(text ? text : TEXT(""), SysStringLen(text)));
}

// Empty for anything but a text.
std::string TextOf(const VARIANT &value)
{
    return V_VT(&value) == VT_BSTR ? Utf8(V_BSTR(&value)) : std::string();
}

class ServerRequest final
    : public ComObject<ServerRequest, Answers<PlainRequest, IServerXMLHTTPRequest, IXMLHTTPRequest, IDispatch>>
{
public:
    STDMETHODIMP open(BSTR method, BSTR url, VARIANT isAsync, VARIANT, VARIANT) noexcept override
    {
        return AtBoundary([&]() -> HRESULT {
            const bool isSynchronous = V_VT(&isAsync) == VT_BOOL && V_BOOL(&isAsync) == VARIANT_FALSE;
            if (Utf8(url).empty())
            {
                return E_INVALIDARG;
            }
            if (!isSynchronous || Utf8(method) != "GET")
            {
                return E_NOTIMPL;
            }
            m_url = Utf8(url);
            m_reply.reset();
            return S_OK;
        });
    }

    STDMETHODIMP setProxy(SXH_PROXY_SETTING setting, VARIANT servers, VARIANT bypass) noexcept override
    {
        return AtBoundary([&] {
            m_proxy =
                setting == SXH_PROXY_SET_PROXY ? ProxyChoice{TextOf(servers), TextOf(bypass)} : ProxyChoice();
            return S_OK;
        });
    }

    // A request that was sent, or failed, has to be opened again.
    STDMETHODIMP send(VARIANT) noexcept override
    {
        return AtBoundary([&]() -> HRESULT {
            if (m_url.empty())
            {
                return E_FAIL;
            }
            m_reply = HttpGet(std::exchange(m_url, {}), m_proxy);
            return S_OK;
        });
    }

    STDMETHODIMP get_responseXML(IDispatch **document) noexcept override
    {
        if (document == nullptr)
        {
            return E_INVALIDARG;
        }
        *document = nullptr;
        return AtBoundary([&] { return m_reply ? GiveDocument(*m_reply, document) : E_FAIL; });
    }

private:
    std::string m_url; // empty unless it is open and not sent
    ProxyChoice m_proxy;
    std::optional<std::string> m_reply;
};
} // namespace

IClassFactory *ServerRequestFactory()
{
    static ClassFactory<ServerRequest> factory;
    return &factory;
}
