// What documents, elements and all other nodes answer alike, over one XmlNode.
#pragma once

#include "com/BstrOwner.h"
#include "com/ComObject.h"
#include "platform/msxml/UnsupportedOperations.h"
#include "platform/msxml/XmlTree.h"

#include <optional>
#include <string>

// New objects, with one reference for the caller, S_FALSE and null for no node.
HRESULT GiveNode(const std::optional<XmlNode> &node, IXMLDOMNode **object);
HRESULT GiveElement(const std::optional<XmlNode> &node, IXMLDOMElement **object);
HRESULT GiveList(std::vector<XmlNode> nodes, IXMLDOMNodeList **object);
HRESULT GiveText(const WideText &text, BSTR *out);
HRESULT GiveValue(const std::optional<WideText> &text, VARIANT *out);
std::string Utf8Of(BSTR text);

// Base is one of the ReadOnly classes; Class has Node(), which is nothing for an empty document.
template <class Class, class Base>
class NodeOperations : public Base
{
public:
    STDMETHODIMP get_nodeName(BSTR *name) noexcept override
    {
        return Answer(name, [&](const XmlNode &node) { return GiveText(node.Name(), name); });
    }
    STDMETHODIMP get_nodeValue(VARIANT *value) noexcept override
    {
        return AnswerValue(value, [](const XmlNode &node) { return node.Value(); });
    }
    STDMETHODIMP get_nodeTypedValue(VARIANT *value) noexcept override
    {
        return AnswerValue(value, [](const XmlNode &node) { return std::optional(node.Text()); });
    }
    STDMETHODIMP get_nodeType(DOMNodeType *type) noexcept override
    {
        if (type == nullptr)
        {
            return E_INVALIDARG;
        }
        const std::optional<XmlNode> node = Node();
        *type = node ? static_cast<DOMNodeType>(node->GetKind()) : NODE_DOCUMENT;
        return S_OK;
    }
    STDMETHODIMP get_text(BSTR *text) noexcept override
    {
        return Answer(text, [&](const XmlNode &node) { return GiveText(node.Text(), text); });
    }
    STDMETHODIMP get_xml(BSTR *xml) noexcept override
    {
        return Answer(xml, [&](const XmlNode &node) { return GiveText(node.Xml(), xml); });
    }
    STDMETHODIMP get_parentNode(IXMLDOMNode **parent) noexcept override
    {
        return Answer(parent, [&](const XmlNode &node) { return GiveNode(node.Parent(), parent); });
    }
    STDMETHODIMP get_nextSibling(IXMLDOMNode **next) noexcept override
    {
        return Answer(next, [&](const XmlNode &node) { return GiveNode(node.Next(), next); });
    }
    STDMETHODIMP get_previousSibling(IXMLDOMNode **previous) noexcept override
    {
        return Answer(previous, [&](const XmlNode &node) { return GiveNode(node.Previous(), previous); });
    }
    STDMETHODIMP get_firstChild(IXMLDOMNode **child) noexcept override
    {
        return Answer(child, [&](const XmlNode &node) {
            const auto all = node.Children();
            return GiveNode(all.empty() ? std::nullopt : std::optional(all.front()), child);
        });
    }
    STDMETHODIMP get_lastChild(IXMLDOMNode **child) noexcept override
    {
        return Answer(child, [&](const XmlNode &node) {
            const auto all = node.Children();
            return GiveNode(all.empty() ? std::nullopt : std::optional(all.back()), child);
        });
    }
    STDMETHODIMP hasChildNodes(VARIANT_BOOL *has) noexcept override
    {
        if (has == nullptr)
        {
            return E_INVALIDARG;
        }
        *has = VARIANT_FALSE;
        return AtBoundary([&] {
            const std::optional<XmlNode> node = Node();
            *has = node && !node->Children().empty() ? VARIANT_TRUE : VARIANT_FALSE;
            return *has ? S_OK : S_FALSE;
        });
    }
    STDMETHODIMP get_childNodes(IXMLDOMNodeList **list) noexcept override
    {
        if (list == nullptr)
        {
            return E_INVALIDARG;
        }
        *list = nullptr;
        return AtBoundary([&] {
            const std::optional<XmlNode> node = Node();
            return GiveList(node ? node->Children() : std::vector<XmlNode>(), list);
        });
    }
    STDMETHODIMP selectNodes(BSTR expression, IXMLDOMNodeList **list) noexcept override
    {
        if (list == nullptr || expression == nullptr)
        {
            return E_INVALIDARG;
        }
        *list = nullptr;
        return AtBoundary([&] { return GiveList(Select(expression), list); });
    }
    STDMETHODIMP selectSingleNode(BSTR expression, IXMLDOMNode **found) noexcept override
    {
        if (found == nullptr || expression == nullptr)
        {
            return E_INVALIDARG;
        }
        *found = nullptr;
        return AtBoundary([&] {
            const auto nodes = Select(expression);
            return GiveNode(nodes.empty() ? std::nullopt : std::optional(nodes.front()), found);
        });
    }

private:
    std::optional<XmlNode> Node() const { return static_cast<const Class *>(this)->Node(); }

    std::vector<XmlNode> Select(BSTR expression) const
    {
        const std::optional<XmlNode> node = Node();
        return node ? node->Select(Utf8Of(expression)) : std::vector<XmlNode>();
    }

    template <class Out, class Body>
    HRESULT Answer(Out **out, Body &&body) noexcept
    {
        if (out == nullptr)
        {
            return E_INVALIDARG;
        }
        *out = nullptr;
        return AtBoundary([&]() -> HRESULT {
            const std::optional<XmlNode> node = Node();
            return node ? body(*node) : S_FALSE;
        });
    }

    template <class Body>
    HRESULT AnswerValue(VARIANT *value, Body &&body) noexcept
    {
        if (value == nullptr)
        {
            return E_INVALIDARG;
        }
        V_VT(value) = VT_NULL;
        return AtBoundary([&]() -> HRESULT {
            const std::optional<XmlNode> node = Node();
            return GiveValue(node ? body(*node) : std::nullopt, value);
        });
    }
};

// The identifiers of these classes, for ComObject: those of the interfaces that they present.
template <class Interface>
struct __wine_uuidof<WithoutAutomation<Interface>> : __wine_uuidof<Interface>
{
};
template <class Class, class Base>
struct __wine_uuidof<NodeOperations<Class, Base>> : __wine_uuidof<typename Base::Presented>
{
};
