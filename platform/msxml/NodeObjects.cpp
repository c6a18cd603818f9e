#include "platform/msxml/NodeObjects.h"

#include "com/BstrOwner.h"
#include "com/ClassFactory.h"
#include "com/ComObject.h"
#include "com/TextConversion.h"
#include "platform/msxml/UnsupportedOperations.h"
#include "platform/msxml/XmlTree.h"

namespace
{
// New objects with one reference for the caller; S_FALSE and null for no node.
HRESULT GiveNode(const std::optional<XmlNode> &node, IXMLDOMNode **object);
HRESULT GiveList(std::vector<XmlNode> nodes, IXMLDOMNodeList **object);

// What documents and all other nodes answer alike. Base is one of the ReadOnly classes.
template <class Base>
class NodeOperations : public Base
{
public:
    STDMETHODIMP get_nodeValue(VARIANT *value) noexcept override
    {
        if (value == nullptr)
        {
            return E_INVALIDARG;
        }
        V_VT(value) = VT_NULL;
        return AtBoundary([&] {
            const auto text = m_node ? m_node->Value() : std::nullopt;
            if (text)
            {
                V_BSTR(value) = BstrOwner(*text).Detach();
                V_VT(value) = VT_BSTR;
            }
            return text ? S_OK : S_FALSE;
        });
    }

    STDMETHODIMP get_text(BSTR *text) noexcept override
    {
        return Answer(text, [&] {
            *text = m_node ? BstrOwner(m_node->Text()).Detach() : nullptr;
            return m_node ? S_OK : S_FALSE;
        });
    }

    STDMETHODIMP selectNodes(BSTR expression, IXMLDOMNodeList **list) noexcept override
    {
        return Answer(list, [&] { return GiveList(Select(expression), list); });
    }

    STDMETHODIMP selectSingleNode(BSTR expression, IXMLDOMNode **found) noexcept override
    {
        return Answer(found, [&] {
            const auto nodes = Select(expression);
            return GiveNode(nodes.empty() ? std::nullopt : std::optional(nodes.front()), found);
        });
    }

protected:
    std::optional<XmlNode> m_node; // nothing in an empty document

private:
    template <class Out, class Body>
    static HRESULT Answer(Out **out, Body &&body) noexcept
    {
        if (out == nullptr)
        {
            return E_INVALIDARG;
        }
        *out = nullptr;
        return AtBoundary(body);
    }

    std::vector<XmlNode> Select(BSTR expression) const
    {
        if (expression == nullptr)
        {
            ThrowHresult(E_INVALIDARG);
        }
        const WideView view(expression, SysStringLen(expression));
        return m_node ? m_node->Select(ToUtf8(view)) : std::vector<XmlNode>();
    }
};
} // namespace

// By whose identifier QueryInterface knows it, for ComObject.
template <class Base>
struct __wine_uuidof<NodeOperations<Base>> : __wine_uuidof<typename Base::Presented>
{
};

namespace
{
using PlainNode = NodeOperations<ReadOnlyNode<IXMLDOMNode>>;

class Node final : public ComObject<Node, Answers<PlainNode, IDispatch>>
{
public:
    explicit Node(XmlNode node) { m_node = std::move(node); }
};

class NodeList final : public ComObject<NodeList, Answers<UncountedList, IDispatch>>
{
public:
    explicit NodeList(std::vector<XmlNode> nodes) : m_nodes(std::move(nodes)) {}

    STDMETHODIMP get_item(LONG index, IXMLDOMNode **item) noexcept override
    {
        if (item == nullptr)
        {
            return E_INVALIDARG;
        }
        const bool exists = index >= 0 && static_cast<size_t>(index) < m_nodes.size();
        return GiveNode(exists ? std::optional(m_nodes[index]) : std::nullopt, item);
    }
    STDMETHODIMP get_length(LONG *length) noexcept override
    {
        if (length == nullptr)
        {
            return E_INVALIDARG;
        }
        *length = static_cast<LONG>(m_nodes.size());
        return S_OK;
    }

private:
    std::vector<XmlNode> m_nodes;
};

// A vector of bytes, whole; nothing else is a document that can be loaded.
std::string BytesOf(const VARIANT &source)
{
    LONG first = 0, last = -1;
    void *data = nullptr;
    if (V_VT(&source) != (VT_ARRAY | VT_UI1) || V_ARRAY(&source) == nullptr ||
        SafeArrayGetDim(V_ARRAY(&source)) != 1)
    {
        ThrowHresult(E_INVALIDARG);
    }
    ThrowIfFailed(SafeArrayGetLBound(V_ARRAY(&source), 1, &first));
    ThrowIfFailed(SafeArrayGetUBound(V_ARRAY(&source), 1, &last));
    ThrowIfFailed(SafeArrayAccessData(V_ARRAY(&source), &data));
    std::string bytes(static_cast<const char *>(data), static_cast<size_t>(LONGLONG{last} - first + 1));
    ThrowIfFailed(SafeArrayUnaccessData(V_ARRAY(&source)));
    return bytes;
}

class Document final
    : public ComObject<Document,
                       Answers<NodeOperations<ReadOnlyDocument>, IXMLDOMDocument, IXMLDOMNode, IDispatch>>
{
public:
    Document() = default;
    explicit Document(std::string_view bytes) { m_node = ParseXml(bytes, XmlEncoding::Declared); }

    STDMETHODIMP loadXML(BSTR text, VARIANT_BOOL *success) noexcept override
    {
        return AtBoundary([&] {
            const WideView view(text ? text : TEXT(""), SysStringLen(text));
            return Load(ToUtf8(view), XmlEncoding::Utf8, success);
        });
    }
    STDMETHODIMP load(VARIANT source, VARIANT_BOOL *success) noexcept override
    {
        return AtBoundary([&] { return Load(BytesOf(source), XmlEncoding::Declared, success); });
    }

    // Loading is always done when it returns.
    STDMETHODIMP put_async(VARIANT_BOOL) noexcept override { return S_OK; }

private:
    HRESULT Load(const std::string &bytes, XmlEncoding encoding, VARIANT_BOOL *success)
    {
        m_node.reset();
        m_node = ParseXml(bytes, encoding);
        if (success != nullptr)
        {
            *success = m_node ? VARIANT_TRUE : VARIANT_FALSE;
        }
        return m_node ? S_OK : S_FALSE;
    }
};

HRESULT GiveNode(const std::optional<XmlNode> &node, IXMLDOMNode **object)
{
    *object = nullptr;
    return node ? Node::CreateInstance(nullptr, __uuidof(IXMLDOMNode), reinterpret_cast<void **>(object), *node)
                : S_FALSE;
}

HRESULT GiveList(std::vector<XmlNode> nodes, IXMLDOMNodeList **object)
{
    return NodeList::CreateInstance(nullptr, __uuidof(IXMLDOMNodeList), reinterpret_cast<void **>(object),
                                    std::move(nodes));
}
} // namespace

IClassFactory *DocumentFactory()
{
    static ClassFactory<Document> factory;
    return &factory;
}

HRESULT GiveDocument(std::string_view bytes, IDispatch **document)
{
    return Document::CreateInstance(nullptr, __uuidof(IDispatch), reinterpret_cast<void **>(document), bytes);
}
