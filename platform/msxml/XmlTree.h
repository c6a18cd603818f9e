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

// One node; it keeps its document alive.
class XmlNode
{
public:
    // Of libxml2, whose types have no names here.
    XmlNode(std::shared_ptr<void> document, void *node) : m_document(std::move(document)), m_node(node) {}

    std::optional<WideText> Value() const; // nothing for elements and documents
    WideText Text() const;                 // white space at both ends is cut

    // XPath with this node as its context, in document order. E_FAIL is thrown for an expression
    // that is none, or whose result is no set of nodes.
    std::vector<XmlNode> Select(const std::string &expression) const;

private:
    std::shared_ptr<void> m_document;
    void *m_node;
};

enum class XmlEncoding
{
    Declared, // by the document's declaration or a byte order mark
    Utf8      // whatever the declaration says
};

// The document as a node; nothing for one that is refused.
std::optional<XmlNode> ParseXml(std::string_view bytes, XmlEncoding encoding);
