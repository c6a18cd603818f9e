// The classes XMLHTTP60 and ServerXMLHTTP60: interfaces over a RequestState.
#include "com/ClassFactory.h"
#include "com/ComObject.h"
#include "com/TextConversion.h"
#include "platform/msxml/RequestState.h"
#include "platform/msxml/UnsupportedOperations.h"

#include <strings.h>

namespace
{
// What both classes answer alike. Nothing of a reply can be read before it is there: E_FAIL, and
// E_PENDING for its bytes.
template <class Interface, ProxyUse Usual>
class RequestOperations : public WithoutAutomation<Interface>
{
public:
    STDMETHODIMP open(BSTR method, BSTR url, VARIANT isAsync, VARIANT user, VARIANT password) noexcept override
    {
        return AtBoundary([&] { return m_state.Open(method, url, isAsync, user, password); });
    }
    STDMETHODIMP setRequestHeader(BSTR header, BSTR value) noexcept override
    {
        return AtBoundary([&] { return m_state.SetHeader(header, value); });
    }
    STDMETHODIMP send(VARIANT body) noexcept override
    {
        return AtBoundary([&] { return m_state.Send(body); });
    }
    STDMETHODIMP abort() noexcept override
    {
        m_state.Abort();
        return S_OK;
    }

    STDMETHODIMP getResponseHeader(BSTR header, BSTR *value) noexcept override
    {
        if (header == nullptr)
        {
            return E_INVALIDARG;
        }
        return Read(value, [&](const HttpAnswer &answer) -> HRESULT {
            const std::string name = ToUtf8(WideView(header, SysStringLen(header)));
            std::string found;
            bool isThere = false;
            for (const auto &[key, text] : answer.headers)
            {
                if (strcasecmp(key.c_str(), name.c_str()) == 0)
                {
                    found += (isThere ? ", " : "") + text;
                    isThere = true;
                }
            }
            return isThere ? GiveText(FromUtf8(found), value) : S_FALSE;
        });
    }
    STDMETHODIMP getAllResponseHeaders(BSTR *headers) noexcept override
    {
        return Read(headers, [&](const HttpAnswer &answer) {
            std::string all;
            for (const auto &[key, text] : answer.headers)
            {
                all += key + ": " + text + "\r\n";
            }
            return GiveText(FromUtf8(all), headers);
        });
    }
    STDMETHODIMP get_status(LONG *status) noexcept override
    {
        if (status == nullptr)
        {
            return E_INVALIDARG;
        }
        *status = m_state.Answer() ? m_state.Answer()->status : 0;
        return m_state.Answer() ? S_OK : E_FAIL;
    }
    STDMETHODIMP get_statusText(BSTR *words) noexcept override
    {
        return Read(words,
                    [&](const HttpAnswer &answer) { return GiveText(FromUtf8(answer.statusWords), words); });
    }
    STDMETHODIMP get_responseXML(IDispatch **document) noexcept override
    {
        return Read(document, [&](const HttpAnswer &answer) {
            *document = ReplyDocument(answer.body).Detach();
            return S_OK;
        });
    }
    STDMETHODIMP get_responseText(BSTR *text) noexcept override
    {
        return Read(text, [&](const HttpAnswer &answer) { return GiveText(ReplyText(answer.body), text); });
    }
    STDMETHODIMP get_readyState(LONG *state) noexcept override
    {
        if (state == nullptr)
        {
            return E_INVALIDARG;
        }
        *state = m_state.ReadyState();
        return S_OK;
    }

    // A vector of VT_UI1.
    STDMETHODIMP get_responseBody(VARIANT *bytes) noexcept override
    {
        return ReadBytes(bytes, [&](const HttpAnswer &answer) {
            V_ARRAY(bytes) = ReplyBytes(answer.body);
            V_VT(bytes) = VT_ARRAY | VT_UI1;
        });
    }
    // An IStream of its own at its start.
    STDMETHODIMP get_responseStream(VARIANT *stream) noexcept override
    {
        return ReadBytes(stream, [&](const HttpAnswer &answer) {
            V_UNKNOWN(stream) = ReplyStream(answer.body).Detach();
            V_VT(stream) = VT_UNKNOWN;
        });
    }

    // Nothing happens later that a sink could be told.
    STDMETHODIMP put_onreadystatechange(IDispatch *) noexcept override { return E_NOTIMPL; }

protected:
    RequestState m_state{Usual};

private:
    static HRESULT GiveText(const WideText &text, BSTR *out)
    {
        *out = BstrOwner(text).Detach();
        return S_OK;
    }

    template <class Out, class Body>
    HRESULT Read(Out *out, Body &&body) noexcept
    {
        if (out == nullptr)
        {
            return E_INVALIDARG;
        }
        *out = nullptr;
        return AtBoundary([&]() -> HRESULT { return m_state.Answer() ? body(*m_state.Answer()) : E_FAIL; });
    }

    template <class Body>
    HRESULT ReadBytes(VARIANT *out, Body &&body) noexcept
    {
        if (out == nullptr)
        {
            return E_INVALIDARG;
        }
        V_VT(out) = VT_EMPTY;
        return AtBoundary([&]() -> HRESULT {
            if (!m_state.Answer())
            {
                return E_PENDING;
            }
            body(*m_state.Answer());
            return S_OK;
        });
    }
};
} // namespace

template <class Interface, ProxyUse Usual>
struct __wine_uuidof<RequestOperations<Interface, Usual>> : __wine_uuidof<Interface>
{
};

namespace
{
using UserOperations = RequestOperations<IXMLHTTPRequest, ProxyUse::Environment>;
using ServerOperations = RequestOperations<IServerXMLHTTPRequest2, ProxyUse::Direct>;

// The user's own request, which goes by the user's proxy settings: the environment's.
class UserRequest final : public ComObject<UserRequest, Answers<UserOperations, IDispatch>>
{
};

class ServerRequest final
    : public ComObject<ServerRequest, Answers<ServerOperations, IServerXMLHTTPRequest, IXMLHTTPRequest, IDispatch>>
{
public:
    STDMETHODIMP setTimeouts(LONG resolve, LONG connect, LONG sending, LONG receive) noexcept override
    {
        return AtBoundary([&] { return m_state.SetTimeouts(resolve, connect, sending, receive); });
    }

    // A request that was sent has its reply.
    STDMETHODIMP waitForResponse(VARIANT, VARIANT_BOOL *isThere) noexcept override
    {
        if (isThere == nullptr)
        {
            return E_INVALIDARG;
        }
        *isThere = m_state.Answer() ? VARIANT_TRUE : VARIANT_FALSE;
        return m_state.Answer() ? S_OK : E_FAIL;
    }

    STDMETHODIMP getOption(SERVERXMLHTTP_OPTION option, VARIANT *value) noexcept override
    {
        if (value == nullptr)
        {
            return E_INVALIDARG;
        }
        V_VT(value) = VT_EMPTY;
        return AtBoundary([&]() -> HRESULT {
            switch (option)
            {
            case SXH_OPTION_URL: // where the reply came from
                if (!m_state.Answer())
                {
                    return E_FAIL;
                }
                V_BSTR(value) = BstrOwner(FromUtf8(m_state.Answer()->url)).Detach();
                V_VT(value) = VT_BSTR;
                return S_OK;
            case SXH_OPTION_URL_CODEPAGE:
                V_I4(value) = CP_UTF8;
                V_VT(value) = VT_I4;
                return S_OK;
            case SXH_OPTION_IGNORE_SERVER_SSL_CERT_ERROR_FLAGS:
                V_I4(value) = 0;
                V_VT(value) = VT_I4;
                return S_OK;
            default:
                return E_NOTIMPL;
            }
        });
    }

    // What is set must be what is done anyway: certificates are checked in full.
    STDMETHODIMP setOption(SERVERXMLHTTP_OPTION option, VARIANT value) noexcept override
    {
        const bool isNumber = V_VT(&value) == VT_I4 || V_VT(&value) == VT_UI4;
        if (option == SXH_OPTION_URL)
        {
            return E_INVALIDARG;
        }
        const bool isUsual =
            (option == SXH_OPTION_URL_CODEPAGE && isNumber && V_I4(&value) == CP_UTF8) ||
            (option == SXH_OPTION_IGNORE_SERVER_SSL_CERT_ERROR_FLAGS && isNumber && V_I4(&value) == 0);
        return isUsual ? S_OK : E_NOTIMPL;
    }

    STDMETHODIMP setProxy(SXH_PROXY_SETTING setting, VARIANT servers, VARIANT bypass) noexcept override
    {
        return AtBoundary([&] { return m_state.SetProxy(setting, servers, bypass); });
    }
    STDMETHODIMP setProxyCredentials(BSTR user, BSTR password) noexcept override
    {
        return AtBoundary([&] { return m_state.SetProxyCredentials(user, password); });
    }
};
} // namespace

IClassFactory *UserRequestFactory()
{
    static ClassFactory<UserRequest> factory;
    return &factory;
}

IClassFactory *ServerRequestFactory()
{
    static ClassFactory<ServerRequest> factory;
    return &factory;
}
