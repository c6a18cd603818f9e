#include "tests/doubles/FakeXmlHttp.h"

#include "com/ComObject.h"
#include "tests/doubles/ReplyDocuments.h"

#include <gtest/gtest.h>

namespace
{
std::string ListText(const VARIANT &list)
{
    EXPECT_EQ(V_VT(&list), VT_BSTR) << "a proxy list is a text";
    return V_BSTR(&list) ? Narrow(V_BSTR(&list)) : "(null)";
}

// A request whose most derived interface is Interface: IXMLHTTPRequest or IServerXMLHTTPRequest2.
template <class Interface>
class FakeRequest final : public ComObject<FakeRequest<Interface>, Answers<Interface, IXMLHTTPRequest, IDispatch>>
{
public:
    explicit FakeRequest(FakeXmlHttp &fake) : m_fake(fake) {}

    STDMETHODIMP open(BSTR method, BSTR url, VARIANT isAsync, VARIANT user, VARIANT password) noexcept override
    {
        EXPECT_EQ(V_VT(&isAsync), VT_BOOL);
        EXPECT_EQ(V_BOOL(&isAsync), VARIANT_FALSE);
        EXPECT_EQ(V_VT(&user), VT_EMPTY);
        EXPECT_EQ(V_VT(&password), VT_EMPTY);
        return m_fake.Record().Enter("open", {Narrow(method), Narrow(url)});
    }

    STDMETHODIMP send(VARIANT body) noexcept override
    {
        EXPECT_EQ(V_VT(&body), VT_EMPTY);
        return m_fake.Record().Enter("send");
    }

    STDMETHODIMP get_responseXML(IDispatch **document) noexcept override
    {
        const HRESULT result = m_fake.Record().Enter("read reply");
        *document = SUCCEEDED(result) ? ComPtr<IDispatch>(m_fake.Reply).Detach() : nullptr;
        return result;
    }

    // Reached through IServerXMLHTTPRequest2 alone.
    virtual HRESULT STDMETHODCALLTYPE setProxy(SXH_PROXY_SETTING setting, VARIANT servers,
                                               VARIANT bypassList) noexcept
    {
        return m_fake.Record().Enter("proxy", {std::to_string(setting), ListText(servers), ListText(bypassList)});
    }

    STDMETHODIMP setRequestHeader(BSTR, BSTR) noexcept override { return Unexpected(); }
    STDMETHODIMP getResponseHeader(BSTR, BSTR *) noexcept override { return Unexpected(); }
    STDMETHODIMP getAllResponseHeaders(BSTR *) noexcept override { return Unexpected(); }
    STDMETHODIMP abort() noexcept override { return Unexpected(); }
    STDMETHODIMP get_status(LONG *) noexcept override { return Unexpected(); }
    STDMETHODIMP get_statusText(BSTR *) noexcept override { return Unexpected(); }
    STDMETHODIMP get_responseText(BSTR *) noexcept override { return Unexpected(); }
    STDMETHODIMP get_responseBody(VARIANT *) noexcept override { return Unexpected(); }
    STDMETHODIMP get_responseStream(VARIANT *) noexcept override { return Unexpected(); }
    STDMETHODIMP get_readyState(LONG *) noexcept override { return Unexpected(); }
    STDMETHODIMP put_onreadystatechange(IDispatch *) noexcept override { return Unexpected(); }
    STDMETHODIMP GetTypeInfoCount(UINT *) noexcept override { return Unexpected(); }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo **) noexcept override { return Unexpected(); }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR *, UINT, LCID, DISPID *) noexcept override { return Unexpected(); }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS *, VARIANT *, EXCEPINFO *, UINT *) noexcept override
    {
        return Unexpected();
    }
    virtual HRESULT STDMETHODCALLTYPE setTimeouts(LONG, LONG, LONG, LONG) noexcept { return Unexpected(); }
    virtual HRESULT STDMETHODCALLTYPE waitForResponse(VARIANT, VARIANT_BOOL *) noexcept { return Unexpected(); }
    virtual HRESULT STDMETHODCALLTYPE getOption(SERVERXMLHTTP_OPTION, VARIANT *) noexcept { return Unexpected(); }
    virtual HRESULT STDMETHODCALLTYPE setOption(SERVERXMLHTTP_OPTION, VARIANT) noexcept { return Unexpected(); }
    virtual HRESULT STDMETHODCALLTYPE setProxyCredentials(BSTR, BSTR) noexcept { return Unexpected(); }

private:
    static HRESULT Unexpected()
    {
        ADD_FAILURE() << "an operation that nobody calls";
        return E_NOTIMPL;
    }

    FakeXmlHttp &m_fake;
};

template <class Interface>
ClassInPlace::Create Creating(FakeXmlHttp &fake, const char *operation)
{
    return [&fake, operation](REFIID iid, void **object) {
        const HRESULT result = fake.Record().Enter(operation);
        return FAILED(result) ? result : FakeRequest<Interface>::CreateInstance(nullptr, iid, object, fake);
    };
}
} // namespace

FakeXmlHttp::FakeXmlHttp(CallRecord &record)
    : m_record(record),
      m_server(CLSID_ServerXMLHTTP60, Creating<IServerXMLHTTPRequest2>(*this, "create server")),
      m_plain(CLSID_XMLHTTP60, Creating<IXMLHTTPRequest>(*this, "create plain"))
{
}

void FakeXmlHttp::Answer(WideView xml)
{
    Reply = MakeDocument(xml);
}
