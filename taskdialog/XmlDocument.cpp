#include "taskdialog/XmlDocument.h"

#include "com/BstrOwner.h"
#include "com/Hresult.h"

#include <algorithm>

namespace
{
const CLSID DocumentClass = {0x2933bf90, 0x7b36, 0x11d2, {0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60}};

// IXMLDOMDocument, which __uuidof doesn't know with every compiler's headers.
const IID DocumentInterface = {0x2933bf81, 0x7b36, 0x11d2, {0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60}};

class VariantOwner
{
public:
    VariantOwner() noexcept { VariantInit(&m_variant); }
    ~VariantOwner() { VariantClear(&m_variant); }
    VariantOwner(const VariantOwner &) = delete;
    VariantOwner &operator=(const VariantOwner &) = delete;

    VARIANT *Put() noexcept
    {
        VariantClear(&m_variant);
        return &m_variant;
    }
    VARIANT &Get() noexcept { return m_variant; }

private:
    VARIANT m_variant;
};

void FillWithBytes(VariantOwner &target, std::span<const BYTE> bytes)
{
    SAFEARRAY *const array = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
    if (array == nullptr)
    {
        ThrowHresult(E_OUTOFMEMORY);
    }
    VARIANT *const variant = target.Put();
    V_VT(variant) = VT_ARRAY | VT_UI1;
    V_ARRAY(variant) = array;
    void *data = nullptr;
    ThrowIfFailed(SafeArrayAccessData(array, &data));
    std::copy(bytes.begin(), bytes.end(), static_cast<BYTE *>(data));
    ThrowIfFailed(SafeArrayUnaccessData(array));
}

// Returns false if the platform can't convert the text.
bool ConvertText(WideView text, VARTYPE type, VariantOwner &number)
{
    VariantOwner source;
    V_BSTR(&source.Get()) = BstrOwner(text).Detach();
    V_VT(&source.Get()) = VT_BSTR;
    return SUCCEEDED(VariantChangeType(number.Put(), &source.Get(), 0, type));
}
} // namespace

ComPtr<IXMLDOMNode> ParseXmlBytes(std::span<const BYTE> bytes)
{
    ComPtr<IUnknown> created;
    ThrowIfFailed(CoCreateInstance(DocumentClass, nullptr, CLSCTX_ALL, __uuidof(IUnknown), created.PutVoid()));
    ThrowIfFailed(OleRun(created.Get()));
    ComPtr<IXMLDOMDocument> document;
    ThrowIfFailed(created->QueryInterface(DocumentInterface, document.PutVoid()));
    ThrowIfFailed(document->put_async(VARIANT_FALSE));
    VariantOwner source;
    FillWithBytes(source, bytes);
    VARIANT_BOOL success = VARIANT_FALSE;
    ThrowIfFailed(document->load(source.Get(), &success));
    if (success == VARIANT_FALSE)
    {
        ThrowHresult(E_FAIL);
    }
    return document;
}

ComPtr<IXMLDOMNode> SelectNode(IXMLDOMNode *from, const WCHAR *expression)
{
    ComPtr<IXMLDOMNode> found;
    ThrowIfFailed(from->selectSingleNode(BstrOwner(WideView(expression)).Get(), found.Put()));
    return found;
}

std::vector<ComPtr<IXMLDOMNode>> SelectAllNodes(IXMLDOMNode *from, const WCHAR *expression)
{
    ComPtr<IXMLDOMNodeList> list;
    ThrowIfFailed(from->selectNodes(BstrOwner(WideView(expression)).Get(), list.Put()));
    LONG count = 0;
    ThrowIfFailed(list->get_length(&count));
    std::vector<ComPtr<IXMLDOMNode>> nodes(static_cast<size_t>(count));
    for (LONG i = 0; i < count; ++i)
    {
        ThrowIfFailed(list->get_item(i, nodes[static_cast<size_t>(i)].Put()));
    }
    return nodes;
}

std::optional<WideText> ElementText(IXMLDOMNode *from, const WCHAR *expression)
{
    const ComPtr<IXMLDOMNode> element = SelectNode(from, expression);
    if (!element)
    {
        return std::nullopt;
    }
    BstrOwner text;
    ThrowIfFailed(element->get_text(text.Put()));
    return WideText(text.View());
}

std::optional<WideText> AttributeText(IXMLDOMNode *from, const WCHAR *expression)
{
    const ComPtr<IXMLDOMNode> attribute = SelectNode(from, expression);
    if (!attribute)
    {
        return std::nullopt;
    }
    VariantOwner value;
    ThrowIfFailed(attribute->get_nodeValue(value.Put()));
    if (V_VT(&value.Get()) != VT_BSTR)
    {
        return std::nullopt;
    }
    const BSTR text = V_BSTR(&value.Get());
    return WideText(text ? text : TEXT(""), SysStringLen(text));
}

INT32 Int32OfText(WideView text)
{
    VariantOwner number;
    return ConvertText(text, VT_I4, number) ? V_I4(&number.Get()) : 0;
}

UINT32 UInt32OfText(WideView text)
{
    VariantOwner number;
    return ConvertText(text, VT_UI4, number) ? V_UI4(&number.Get()) : 0;
}

INT64 Int64OfText(WideView text)
{
    VariantOwner number;
    return ConvertText(text, VT_I8, number) ? V_I8(&number.Get()) : 0;
}
