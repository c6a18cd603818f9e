// The document class and its parse error.
#include "com/ClassFactory.h"
#include "platform/msxml/NodeOperations.h"

namespace
{
class ParseError final : public ComObject<ParseError, Answers<WithoutAutomation<IXMLDOMParseError>, IDispatch>>
{
public:
    explicit ParseError(const XmlParseFailure &failure) : m_failure(failure) {}

    STDMETHODIMP get_errorCode(LONG *code) noexcept override
    {
        const HRESULT result = Answer(code, m_failure.code);
        return FAILED(result) || m_failure.code != S_OK ? result : S_FALSE;
    }
    STDMETHODIMP get_reason(BSTR *reason) noexcept override
    {
        if (reason == nullptr)
        {
            return E_INVALIDARG;
        }
        *reason = nullptr;
        return AtBoundary([&] { return m_failure.reason.empty() ? S_FALSE : GiveText(m_failure.reason, reason); });
    }
    STDMETHODIMP get_line(LONG *line) noexcept override { return Answer(line, m_failure.line); }
    STDMETHODIMP get_linepos(LONG *column) noexcept override { return Answer(column, m_failure.column); }
    STDMETHODIMP get_url(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_srcText(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_filepos(LONG *) noexcept override { return E_NOTIMPL; }

private:
    static HRESULT Answer(LONG *out, LONG value) noexcept
    {
        if (out == nullptr)
        {
            return E_INVALIDARG;
        }
        *out = value;
        return S_OK;
    }

    XmlParseFailure m_failure;
};

class Document;
using DocumentOperations = NodeOperations<Document, ReadOnlyDocument>;

// What the document is to be loaded from, read whole.
std::string ReadStream(IStream *stream)
{
    constexpr size_t largest = 64 << 20;
    std::string bytes;
    char buffer[16384];
    ULONG read = 0;
    do
    {
        ThrowIfFailed(stream->Read(buffer, sizeof(buffer), &read));
        bytes.append(buffer, read);
    } while (read != 0 && bytes.size() <= largest);
    return bytes;
}

// A vector of bytes, whole; nothing else among the arrays is a document.
std::string ReadBytes(SAFEARRAY *array)
{
    VARTYPE type = VT_EMPTY;
    LONG first = 0, last = -1;
    void *data = nullptr;
    if (array == nullptr || SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &type)) ||
        type != VT_UI1)
    {
        ThrowHresult(E_INVALIDARG);
    }
    ThrowIfFailed(SafeArrayGetLBound(array, 1, &first));
    ThrowIfFailed(SafeArrayGetUBound(array, 1, &last));
    std::string bytes(static_cast<size_t>(LONGLONG{last} - first + 1), '\0');
    ThrowIfFailed(SafeArrayAccessData(array, &data));
    bytes.assign(static_cast<const char *>(data), bytes.size());
    ThrowIfFailed(SafeArrayUnaccessData(array));
    return bytes;
}

class Document final
    : public ComObject<Document, Answers<DocumentOperations, IXMLDOMDocument, IXMLDOMNode, IDispatch>>
{
public:
    std::optional<XmlNode> Node() const { return m_node; }

    STDMETHODIMP loadXML(BSTR text, VARIANT_BOOL *success) noexcept override
    {
        return AtBoundary([&] { return Load(text ? Utf8Of(text) : std::string(), true, success); });
    }

    STDMETHODIMP load(VARIANT source, VARIANT_BOOL *success) noexcept override
    {
        return AtBoundary([&]() -> HRESULT {
            if (V_VT(&source) == (VT_ARRAY | VT_UI1))
            {
                return Load(ReadBytes(V_ARRAY(&source)), false, success);
            }
            const bool isObject = V_VT(&source) == VT_UNKNOWN || V_VT(&source) == VT_DISPATCH;
            const auto stream = QueryFor<IStream>(isObject ? V_UNKNOWN(&source) : nullptr);
            if (!stream)
            {
                return E_INVALIDARG;
            }
            return Load(ReadStream(stream.Get()), false, success);
        });
    }

    STDMETHODIMP get_documentElement(IXMLDOMElement **element) noexcept override
    {
        if (element == nullptr)
        {
            return E_INVALIDARG;
        }
        *element = nullptr;
        return AtBoundary([&] { return GiveElement(m_node ? m_node->RootElement() : std::nullopt, element); });
    }

    STDMETHODIMP get_parseError(IXMLDOMParseError **error) noexcept override
    {
        if (error == nullptr)
        {
            return E_INVALIDARG;
        }
        return ParseError::CreateInstance(nullptr, __uuidof(IXMLDOMParseError), reinterpret_cast<void **>(error),
                                          m_failure);
    }

    STDMETHODIMP get_readyState(LONG *state) noexcept override
    {
        constexpr LONG complete = 4;
        if (state == nullptr)
        {
            return E_INVALIDARG;
        }
        *state = complete;
        return S_OK;
    }

    // Loading is always done when load returns; the switches are kept for who asks.
    STDMETHODIMP get_async(VARIANT_BOOL *on) noexcept override { return Get(m_async, on); }
    STDMETHODIMP put_async(VARIANT_BOOL on) noexcept override { return Put(m_async, on); }
    STDMETHODIMP get_validateOnParse(VARIANT_BOOL *on) noexcept override { return Get(m_validate, on); }
    STDMETHODIMP put_validateOnParse(VARIANT_BOOL on) noexcept override { return Put(m_validate, on); }
    STDMETHODIMP get_resolveExternals(VARIANT_BOOL *on) noexcept override { return Get(m_resolve, on); }
    STDMETHODIMP put_resolveExternals(VARIANT_BOOL on) noexcept override { return Put(m_resolve, on); }
    STDMETHODIMP get_preserveWhiteSpace(VARIANT_BOOL *on) noexcept override { return Get(m_preserve, on); }
    STDMETHODIMP put_preserveWhiteSpace(VARIANT_BOOL on) noexcept override { return Put(m_preserve, on); }

    // Two properties, each with the one value that this component has; it is no error to ask for it.
    STDMETHODIMP setProperty(BSTR name, VARIANT value) noexcept override
    {
        const WideView property(name ? name : TEXT(""), SysStringLen(name));
        if (property == TEXT("SelectionLanguage"))
        {
            const bool xpath =
                V_VT(&value) == VT_BSTR && WideView(V_BSTR(&value), SysStringLen(V_BSTR(&value))) == TEXT("XPath");
            return xpath ? S_OK : E_FAIL;
        }
        if (property == TEXT("ProhibitDTD"))
        {
            return V_VT(&value) == VT_BOOL && V_BOOL(&value) != VARIANT_FALSE ? S_OK : E_FAIL;
        }
        return E_FAIL;
    }

    STDMETHODIMP getProperty(BSTR, VARIANT *) noexcept override { return E_NOTIMPL; }

private:
    HRESULT Load(const std::string &bytes, bool isUtf8, VARIANT_BOOL *success)
    {
        m_node.reset();
        if (success != nullptr)
        {
            *success = VARIANT_FALSE;
        }
        m_node = ParseXml(bytes, {m_preserve != VARIANT_FALSE, isUtf8}, m_failure);
        if (success != nullptr && m_node)
        {
            *success = VARIANT_TRUE;
        }
        return m_node ? S_OK : S_FALSE;
    }

    static HRESULT Get(VARIANT_BOOL field, VARIANT_BOOL *on) noexcept
    {
        if (on == nullptr)
        {
            return E_INVALIDARG;
        }
        *on = field;
        return S_OK;
    }

    static HRESULT Put(VARIANT_BOOL &field, VARIANT_BOOL on) noexcept
    {
        field = on ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    }

    std::optional<XmlNode> m_node;
    XmlParseFailure m_failure;
    VARIANT_BOOL m_async = VARIANT_TRUE;
    VARIANT_BOOL m_validate = VARIANT_TRUE;
    VARIANT_BOOL m_resolve = VARIANT_FALSE;
    VARIANT_BOOL m_preserve = VARIANT_FALSE;
};
} // namespace

IClassFactory *DocumentFactory()
{
    static ClassFactory<Document> factory;
    return &factory;
}
