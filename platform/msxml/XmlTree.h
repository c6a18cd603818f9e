// A parsed document and its nodes. The parser refuses document type declarations (and with them
// every entity but the five predefined ones), elements nested deeper than 256 or with more than 1000
// attributes, and more than 256 KB of text. So no document takes it more than half a second. It never
// opens a file or a connection.
#pragma once

#include "com/WideText.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct XmlParseFailure
{
    HRESULT code = S_OK;
    WideText reason;
    LONG line = 0;
    LONG column = 0;
};

class XmlTree;

// One node; it keeps its document alive.
class XmlNode
{
public:
    enum class Kind
    {
        Element = 1,
        Attribute = 2,
        Text = 3,
        CData = 4,
        ProcessingInstruction = 7,
        Comment = 8,
        Document = 9,
        Other = 0
    };

    XmlNode(std::shared_ptr<const XmlTree> tree, void *node) : m_tree(std::move(tree)), m_node(node) {}

    Kind GetKind() const;
    WideText Name() const;
    std::optional<WideText> Value() const; // nothing for elements and documents
    WideText Text() const;                 // white space at both ends is cut unless it is preserved
    WideText Xml() const;
    std::optional<WideText> Attribute(const std::string &name) const;

    std::optional<XmlNode> Parent() const;
    std::optional<XmlNode> Next() const;
    std::optional<XmlNode> Previous() const;
    std::vector<XmlNode> Children() const;
    std::optional<XmlNode> RootElement() const;

    // XPath with this node as its context, in document order. E_FAIL is thrown for an expression
    // that is none, or whose result is no set of nodes.
    std::vector<XmlNode> Select(const std::string &expression) const;

private:
    std::shared_ptr<const XmlTree> m_tree;
    void *m_node;
};

struct XmlParseOptions
{
    bool preserveWhiteSpace = false;
    bool isUtf8 = false; // whatever the declaration says; else the declaration or a mark decides
};

// The document as a node, or nothing with the failure filled.
std::optional<XmlNode> ParseXml(std::string_view bytes, const XmlParseOptions &options, XmlParseFailure &failure);
