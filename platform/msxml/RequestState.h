// What a request object holds, and the rules of its operations: the same for both request classes.
#pragma once

#include "com/BstrOwner.h"
#include "com/ComPtr.h"
#include "platform/msxml/HttpExchange.h"

#include "XmlInterfaces.h"

// Requests are synchronous alone: opening an asynchronous one gives E_NOTIMPL. A request is made new by
// each Open. Used by one thread at a time. Failures are thrown unless they are told as results.
class RequestState
{
public:
    // Where the class goes without being told: the program's own way, or the user's.
    explicit RequestState(ProxyUse usual) : m_proxyUse(usual) {}

    // E_INVALIDARG for a null or empty method or address, 0x80072EE6 for an address that isn't http or
    // https, 0x80072EE5 for one without a host.
    HRESULT Open(BSTR method, BSTR url, const VARIANT &isAsync, const VARIANT &user, const VARIANT &password);

    // E_FAIL unless a request is open and not sent. A name that is no token, or a value of several
    // lines, is refused with E_INVALIDARG.
    HRESULT SetHeader(BSTR name, BSTR value);

    // E_FAIL unless a request is open and not sent. The body is a text, sent as UTF-8, or none;
    // E_NOTIMPL for anything else. After a failure the request is over and has no reply.
    HRESULT Send(const VARIANT &body);
    void Abort() noexcept;

    // The reply; null until there is one.
    const HttpAnswer *Answer() const noexcept { return m_hasAnswer ? &m_answer : nullptr; }
    LONG ReadyState() const noexcept;

    // In milliseconds, 0 for no limit; E_INVALIDARG for negative ones. For this and the following requests.
    HRESULT SetTimeouts(LONG resolve, LONG connect, LONG send, LONG receive);
    HRESULT SetProxy(SXH_PROXY_SETTING setting, const VARIANT &servers, const VARIANT &bypass);
    HRESULT SetProxyCredentials(BSTR user, BSTR password);

private:
    HttpOrder m_order;
    HttpAnswer m_answer;
    HttpTimeouts m_timeouts;
    ProxyUse m_proxyUse;
    ProxyChoice m_proxies;
    std::string m_proxyUser;
    std::string m_proxyPassword;
    bool m_isOpen = false;
    bool m_hasAnswer = false;
};

// The reply's bytes as a text: by a byte order mark, else UTF-8.
WideText ReplyText(const std::string &body);

// Copies of the reply: an array for SafeArrayDestroy, a stream at its start.
SAFEARRAY *ReplyBytes(const std::string &body);
ComPtr<IStream> ReplyStream(const std::string &body);

// A new document with the reply in it, one without content if it is no XML.
ComPtr<IDispatch> ReplyDocument(const std::string &body);
