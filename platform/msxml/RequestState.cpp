#include "platform/msxml/RequestState.h"

#include "com/TextConversion.h"

#include <algorithm>
#include <strings.h>

IClassFactory *DocumentFactory();

namespace
{
constexpr HRESULT InvalidAddress = static_cast<HRESULT>(0x80072EE5);
constexpr HRESULT UnknownScheme = static_cast<HRESULT>(0x80072EE6);

std::string Utf8(BSTR text)
{
    return ToUtf8(WideView(text ? text : TEXT(""), SysStringLen(text)));
}

// Empty for anything but a text.
std::string TextOf(const VARIANT &value)
{
    return V_VT(&value) == VT_BSTR ? Utf8(V_BSTR(&value)) : std::string();
}

bool IsAbsent(const VARIANT &value)
{
    return V_VT(&value) == VT_EMPTY || V_VT(&value) == VT_NULL || V_VT(&value) == VT_ERROR;
}

// RFC 9110, 5.6.2.
bool IsToken(const std::string &text)
{
    constexpr std::string_view marks = "!#$%&'*+-.^_`|~";
    return !text.empty() && std::all_of(text.begin(), text.end(), [&](unsigned char c) {
        return c < 0x80 && (std::isalnum(c) != 0 || marks.find(static_cast<char>(c)) != std::string_view::npos);
    });
}

HRESULT CheckAddress(const std::string &url)
{
    const size_t scheme = strncasecmp(url.c_str(), "https://", 8) == 0  ? 8
                          : strncasecmp(url.c_str(), "http://", 7) == 0 ? 7
                                                                        : 0;
    if (scheme == 0)
    {
        return UnknownScheme;
    }
    const bool isClean =
        std::none_of(url.begin(), url.end(), [](unsigned char c) { return c <= ' ' || c == 0x7F; });
    return isClean && url.find_first_of("/?#", scheme) != scheme && url.size() > scheme ? S_OK : InvalidAddress;
}

WideText Utf16(std::string_view bytes, bool isBigEndian)
{
    WideText text;
    for (size_t at = 0; at + 1 < bytes.size(); at += 2)
    {
        const auto first = static_cast<unsigned char>(bytes[at]);
        const auto second = static_cast<unsigned char>(bytes[at + 1]);
        text += static_cast<WCHAR>(isBigEndian ? first << 8 | second : second << 8 | first);
    }
    return text;
}
} // namespace

HRESULT RequestState::Open(BSTR method, BSTR url, const VARIANT &isAsync, const VARIANT &user,
                           const VARIANT &password)
{
    HttpOrder order;
    order.method = Utf8(method);
    order.url = Utf8(url);
    if (!IsToken(order.method) || order.url.empty())
    {
        return E_INVALIDARG;
    }
    ThrowIfFailed(CheckAddress(order.url));
    if (V_VT(&isAsync) != VT_BOOL || V_BOOL(&isAsync) != VARIANT_FALSE)
    {
        return IsAbsent(isAsync) || V_VT(&isAsync) == VT_BOOL ? E_NOTIMPL : E_INVALIDARG;
    }
    order.user = TextOf(user);
    order.password = TextOf(password);
    Abort();
    m_order = std::move(order);
    m_isOpen = true;
    return S_OK;
}

HRESULT RequestState::SetHeader(BSTR name, BSTR value)
{
    if (name == nullptr)
    {
        return E_INVALIDARG;
    }
    if (!m_isOpen || m_hasAnswer)
    {
        return E_FAIL;
    }
    const std::string key = Utf8(name);
    const std::string text = Utf8(value);
    if (!IsToken(key) || text.find_first_of(std::string_view("\r\n\0", 3)) != std::string::npos)
    {
        return E_INVALIDARG;
    }
    m_order.headers.emplace_back(key, text);
    return S_OK;
}

HRESULT RequestState::Send(const VARIANT &body)
{
    if (!m_isOpen || m_hasAnswer)
    {
        return E_FAIL;
    }
    if (!IsAbsent(body) && V_VT(&body) != VT_BSTR)
    {
        return E_NOTIMPL;
    }
    if (V_VT(&body) == VT_BSTR && m_order.method != "GET" && m_order.method != "HEAD")
    {
        m_order.body = TextOf(body);
    }
    m_order.timeouts = m_timeouts;
    m_order.proxyUse = m_proxyUse;
    m_order.proxies = m_proxies;
    m_order.proxyUser = m_proxyUser;
    m_order.proxyPassword = m_proxyPassword;
    m_isOpen = false; // until it has succeeded
    m_answer = Exchange(m_order);
    m_isOpen = m_hasAnswer = true;
    return S_OK;
}

void RequestState::Abort() noexcept
{
    m_isOpen = m_hasAnswer = false;
    m_answer = {};
}

LONG RequestState::ReadyState() const noexcept
{
    constexpr LONG uninitialized = 0, opened = 1, complete = 4;
    return m_hasAnswer ? complete : m_isOpen ? opened : uninitialized;
}

HRESULT RequestState::SetTimeouts(LONG resolve, LONG connect, LONG send, LONG receive)
{
    if (resolve < 0 || connect < 0 || send < 0 || receive < 0)
    {
        return E_INVALIDARG;
    }
    using std::chrono::milliseconds;
    m_timeouts = {milliseconds(resolve), milliseconds(connect), milliseconds(send), milliseconds(receive)};
    return S_OK;
}

HRESULT RequestState::SetProxy(SXH_PROXY_SETTING setting, const VARIANT &servers, const VARIANT &bypass)
{
    switch (setting)
    {
    case SXH_PROXY_SET_DEFAULT: // natively there is no configuration of the machine's own: direct
    case SXH_PROXY_SET_DIRECT:
        m_proxyUse = ProxyUse::Direct;
        m_proxies = {};
        return S_OK;
    case SXH_PROXY_SET_PROXY:
        if (TextOf(servers).empty())
        {
            return E_INVALIDARG;
        }
        m_proxies = ProxyChoice(TextOf(servers), TextOf(bypass));
        m_proxyUse = ProxyUse::Named;
        return S_OK;
    default:
        return E_INVALIDARG;
    }
}

HRESULT RequestState::SetProxyCredentials(BSTR user, BSTR password)
{
    m_proxyUser = Utf8(user);
    m_proxyPassword = Utf8(password);
    return S_OK;
}

WideText ReplyText(const std::string &body)
{
    const std::string_view bytes = body;
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"))
    {
        return Utf16(bytes.substr(2), bytes[0] == '\xFE');
    }
    return FromUtf8(bytes.substr(bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0));
}

SAFEARRAY *ReplyBytes(const std::string &body)
{
    SAFEARRAY *array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(body.size()));
    void *bytes = nullptr;
    if (array == nullptr)
    {
        ThrowHresult(E_OUTOFMEMORY);
    }
    SafeArrayAccessData(array, &bytes);
    std::copy(body.begin(), body.end(), static_cast<char *>(bytes));
    SafeArrayUnaccessData(array);
    return array;
}

ComPtr<IStream> ReplyStream(const std::string &body)
{
    ComPtr<IStream> stream;
    ThrowIfFailed(CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()));
    ThrowIfFailed(stream->Write(body.data(), static_cast<ULONG>(body.size()), nullptr));
    ThrowIfFailed(stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr));
    return stream;
}

ComPtr<IDispatch> ReplyDocument(const std::string &body)
{
    ComPtr<IXMLDOMDocument2> document;
    ThrowIfFailed(DocumentFactory()->CreateInstance(nullptr, __uuidof(IXMLDOMDocument2), document.PutVoid()));
    const ComPtr<IStream> stream = ReplyStream(body);
    VARIANT source{};
    V_VT(&source) = VT_UNKNOWN;
    V_UNKNOWN(&source) = stream.Get();
    ThrowIfFailed(document->put_async(VARIANT_FALSE));
    ThrowIfFailed(document->load(source, nullptr));
    ComPtr<IDispatch> answer;
    ThrowIfFailed(document->QueryInterface(__uuidof(IDispatch), answer.PutVoid()));
    return answer;
}
