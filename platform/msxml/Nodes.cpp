// Elements, other nodes, and lists of nodes.
#include "com/TextConversion.h"
#include "platform/msxml/NodeOperations.h"

namespace
{
class PlainNode;
using PlainNodeOperations = NodeOperations<PlainNode, ReadOnlyNode<IXMLDOMNode>>;

class PlainNode final : public ComObject<PlainNode, Answers<PlainNodeOperations, IDispatch>>
{
public:
    explicit PlainNode(XmlNode node) : m_node(std::move(node)) {}
    std::optional<XmlNode> Node() const { return m_node; }

private:
    XmlNode m_node;
};

class Element;
using ElementOperations = NodeOperations<Element, ReadOnlyElement>;

class Element final : public ComObject<Element, Answers<ElementOperations, IXMLDOMNode, IDispatch>>
{
public:
    explicit Element(XmlNode node) : m_node(std::move(node)) {}
    std::optional<XmlNode> Node() const { return m_node; }

    STDMETHODIMP get_tagName(BSTR *name) noexcept override { return get_nodeName(name); }
    STDMETHODIMP getAttribute(BSTR name, VARIANT *value) noexcept override
    {
        if (name == nullptr || value == nullptr)
        {
            return E_INVALIDARG;
        }
        V_VT(value) = VT_NULL;
        return AtBoundary([&] { return GiveValue(m_node.Attribute(Utf8Of(name)), value); });
    }

private:
    XmlNode m_node;
};

class NodeList final : public ComObject<NodeList, Answers<WithoutAutomation<IXMLDOMNodeList>, IDispatch>>
{
public:
    explicit NodeList(std::vector<XmlNode> nodes) : m_nodes(std::move(nodes)) {}

    STDMETHODIMP get_item(LONG index, IXMLDOMNode **item) noexcept override
    {
        if (item == nullptr)
        {
            return E_INVALIDARG;
        }
        *item = nullptr;
        return AtBoundary([&] {
            const bool exists = index >= 0 && static_cast<size_t>(index) < m_nodes.size();
            return GiveNode(exists ? std::optional(m_nodes[index]) : std::nullopt, item);
        });
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
    STDMETHODIMP nextNode(IXMLDOMNode **item) noexcept override
    {
        const HRESULT result = get_item(m_next, item);
        m_next += result == S_OK ? 1 : 0;
        return result;
    }
    STDMETHODIMP reset() noexcept override
    {
        m_next = 0;
        return S_OK;
    }
    STDMETHODIMP _newEnum(IUnknown **) noexcept override { return E_NOTIMPL; }

private:
    std::vector<XmlNode> m_nodes;
    LONG m_next = 0;
};
} // namespace

HRESULT GiveNode(const std::optional<XmlNode> &node, IXMLDOMNode **object)
{
    *object = nullptr;
    if (!node)
    {
        return S_FALSE;
    }
    void **out = reinterpret_cast<void **>(object);
    return node->GetKind() == XmlNode::Kind::Element
               ? Element::CreateInstance(nullptr, __uuidof(IXMLDOMNode), out, *node)
               : PlainNode::CreateInstance(nullptr, __uuidof(IXMLDOMNode), out, *node);
}

HRESULT GiveElement(const std::optional<XmlNode> &node, IXMLDOMElement **object)
{
    *object = nullptr;
    return node ? Element::CreateInstance(nullptr, __uuidof(IXMLDOMElement), reinterpret_cast<void **>(object),
                                          *node)
                : S_FALSE;
}

HRESULT GiveList(std::vector<XmlNode> nodes, IXMLDOMNodeList **object)
{
    return NodeList::CreateInstance(nullptr, __uuidof(IXMLDOMNodeList), reinterpret_cast<void **>(object),
                                    std::move(nodes));
}

HRESULT GiveText(const WideText &text, BSTR *out)
{
    *out = BstrOwner(text).Detach();
    return S_OK;
}

HRESULT GiveValue(const std::optional<WideText> &text, VARIANT *out)
{
    if (!text)
    {
        V_VT(out) = VT_NULL;
        return S_FALSE;
    }
    V_BSTR(out) = BstrOwner(*text).Detach();
    V_VT(out) = VT_BSTR;
    return S_OK;
}

std::string Utf8Of(BSTR text)
{
    return PathToBytes(WideView(text, SysStringLen(text)));
}
