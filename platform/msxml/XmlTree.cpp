// libxml2's headers draw in ICU's, which the Windows headers would mislead.
#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>

#include "platform/msxml/XmlTree.h"

#include "com/Hresult.h"
#include "com/TextConversion.h"

#include <mutex>

class XmlTree
{
public:
    XmlTree(xmlDocPtr document, bool preserves) : m_document(document), m_preservesWhiteSpace(preserves) {}
    ~XmlTree() { xmlFreeDoc(m_document); }
    XmlTree(const XmlTree &) = delete;
    XmlTree &operator=(const XmlTree &) = delete;

    xmlDocPtr Document() const { return m_document; }
    bool PreservesWhiteSpace() const { return m_preservesWhiteSpace; }

private:
    xmlDocPtr m_document;
    bool m_preservesWhiteSpace;
};

namespace
{
constexpr size_t LargestText = 256 * 1024;
constexpr int MostAttributes = 1000;          // of one element: libxml2 takes seconds for some ten thousands
constexpr unsigned long MostSteps = 20000000; // of one XPath expression

// MSXML's own codes.
constexpr HRESULT DtdProhibited = static_cast<HRESULT>(0xC00CE584);
constexpr HRESULT MissingRoot = static_cast<HRESULT>(0xC00CE558);
constexpr HRESULT EndTagMismatch = static_cast<HRESULT>(0xC00CE56D);

template <class T, void (*Free)(T *)>
struct Freer
{
    void operator()(T *object) const { Free(object); }
};
using ParserOwner = std::unique_ptr<xmlParserCtxt, Freer<xmlParserCtxt, xmlFreeParserCtxt>>;
using XPathContextOwner = std::unique_ptr<xmlXPathContext, Freer<xmlXPathContext, xmlXPathFreeContext>>;
using XPathObjectOwner = std::unique_ptr<xmlXPathObject, Freer<xmlXPathObject, xmlXPathFreeObject>>;
using BufferOwner = std::unique_ptr<xmlBuffer, Freer<xmlBuffer, xmlBufferFree>>;

struct TextFreer
{
    void operator()(xmlChar *text) const { xmlFree(text); }
};
using TextOwner = std::unique_ptr<xmlChar, TextFreer>;

xmlNodePtr Raw(void *node)
{
    return static_cast<xmlNodePtr>(node);
}

WideText Wide(const xmlChar *text)
{
    return text ? PathFromBytes(reinterpret_cast<const char *>(text)) : WideText();
}

bool IsSpace(WCHAR unit)
{
    return unit == u' ' || unit == u'\t' || unit == u'\r' || unit == u'\n';
}

WideText Trim(WideText text, bool atStart = true, bool atEnd = true)
{
    while (atEnd && !text.empty() && IsSpace(text.back()))
    {
        text.pop_back();
    }
    size_t start = 0;
    while (atStart && start < text.size() && IsSpace(text[start]))
    {
        ++start;
    }
    return text.substr(start);
}

// Whether an element's text starts (or ends) in a CDATA section, whose blanks are meant.
bool BordersOnCData(xmlNodePtr node, xmlNodePtr _xmlNode::*border)
{
    while (node != nullptr && node->type == XML_ELEMENT_NODE)
    {
        node = node->*border;
    }
    return node != nullptr && node->type == XML_CDATA_SECTION_NODE;
}

void Quiet(void *, const char *, ...) {}

void QuietStructured(void *, xmlErrorPtr) {}

// Some faults of expressions and of encodings go to the thread's general error function, which prints.
class SilentErrors
{
public:
    SilentErrors() : m_function(xmlGenericError), m_context(xmlGenericErrorContext)
    {
        xmlSetGenericErrorFunc(nullptr, Quiet);
    }
    ~SilentErrors() { xmlSetGenericErrorFunc(m_context, m_function); }
    SilentErrors(const SilentErrors &) = delete;
    SilentErrors &operator=(const SilentErrors &) = delete;

private:
    xmlGenericErrorFunc m_function;
    void *m_context;
};

enum class Refusal
{
    None,
    DocumentType,
    Attributes
};

void Refuse(void *context, Refusal refusal)
{
    auto *parser = static_cast<xmlParserCtxtPtr>(context);
    *static_cast<Refusal *>(parser->_private) = refusal;
    xmlStopParser(parser);
}

void RefuseDocumentType(void *context, const xmlChar *, const xmlChar *, const xmlChar *)
{
    Refuse(context, Refusal::DocumentType);
}

void StartElement(void *context, const xmlChar *name, const xmlChar *prefix, const xmlChar *uri,
                  int namespaceCount, const xmlChar **namespaces, int attributeCount, int defaultedCount,
                  const xmlChar **attributes)
{
    if (attributeCount > MostAttributes)
    {
        Refuse(context, Refusal::Attributes);
        return;
    }
    xmlSAX2StartElementNs(context, name, prefix, uri, namespaceCount, namespaces, attributeCount, defaultedCount,
                          attributes);
}

// Text of blanks alone between elements is not part of the document, unless xml:space says so.
void DropBlankTexts(xmlNodePtr parent)
{
    for (xmlNodePtr child = parent->children; child != nullptr;)
    {
        const xmlNodePtr next = child->next;
        if (child->type == XML_ELEMENT_NODE)
        {
            DropBlankTexts(child);
        }
        else if (child->type == XML_TEXT_NODE && xmlIsBlankNode(child) && xmlNodeGetSpacePreserve(child) != 1)
        {
            xmlUnlinkNode(child);
            xmlFreeNode(child);
        }
        child = next;
    }
}

void DescribeFailure(xmlParserCtxtPtr parser, Refusal refusal, XmlParseFailure &failure)
{
    const xmlErrorPtr error = xmlCtxtGetLastError(parser);
    const int code = error ? error->code : 0;
    failure.code = refusal == Refusal::DocumentType    ? DtdProhibited
                   : code == XML_ERR_DOCUMENT_EMPTY    ? MissingRoot
                   : code == XML_ERR_TAG_NAME_MISMATCH ? EndTagMismatch
                                                       : E_FAIL;
    failure.reason = refusal == Refusal::DocumentType ? TEXT("DTD is prohibited.")
                     : refusal == Refusal::Attributes ? TEXT("An element has more than 1000 attributes.")
                     : error                          ? Trim(PathFromBytes(error->message ? error->message : ""))
                                                      : WideText(TEXT("The text is no XML document."));
    failure.line = error ? error->line : parser->input ? parser->input->line : 0;
    failure.column = error ? error->int2 : parser->input ? parser->input->col : 0;
}

std::optional<XmlNode> Adjacent(const std::shared_ptr<const XmlTree> &tree, xmlNodePtr node)
{
    return node ? std::optional(XmlNode(tree, node)) : std::nullopt;
}
} // namespace

std::optional<XmlNode> ParseXml(std::string_view bytes, const XmlParseOptions &options, XmlParseFailure &failure)
{
    static std::once_flag once;
    std::call_once(once, xmlInitParser);
    failure = {};
    if (bytes.size() > LargestText)
    {
        failure.code = E_OUTOFMEMORY;
        failure.reason = TEXT("The document is larger than 256 KB.");
        return std::nullopt;
    }
    const ParserOwner parser(xmlNewParserCtxt());
    if (!parser)
    {
        ThrowHresult(E_OUTOFMEMORY);
    }
    const SilentErrors silent;
    Refusal refusal = Refusal::None;
    parser->_private = &refusal;
    parser->sax->internalSubset = RefuseDocumentType;
    parser->sax->startElementNs = StartElement;
    const int flags = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_COMPACT |
                      (options.isUtf8 ? XML_PARSE_IGNORE_ENC : 0);
    const xmlDocPtr document =
        xmlCtxtReadMemory(parser.get(), bytes.data() ? bytes.data() : "", static_cast<int>(bytes.size()), nullptr,
                          options.isUtf8 ? "UTF-8" : nullptr, flags);
    if (document == nullptr || refusal != Refusal::None || !parser->wellFormed)
    {
        DescribeFailure(parser.get(), refusal, failure);
        xmlFreeDoc(document);
        return std::nullopt;
    }
    auto tree = std::make_shared<XmlTree>(document, options.preserveWhiteSpace);
    if (!options.preserveWhiteSpace)
    {
        DropBlankTexts(reinterpret_cast<xmlNodePtr>(document));
    }
    return XmlNode(std::move(tree), document);
}

XmlNode::Kind XmlNode::GetKind() const
{
    switch (Raw(m_node)->type)
    {
    case XML_ELEMENT_NODE:
        return Kind::Element;
    case XML_ATTRIBUTE_NODE:
        return Kind::Attribute;
    case XML_TEXT_NODE:
        return Kind::Text;
    case XML_CDATA_SECTION_NODE:
        return Kind::CData;
    case XML_PI_NODE:
        return Kind::ProcessingInstruction;
    case XML_COMMENT_NODE:
        return Kind::Comment;
    case XML_DOCUMENT_NODE:
        return Kind::Document;
    default:
        return Kind::Other;
    }
}

WideText XmlNode::Name() const
{
    const Kind kind = GetKind();
    if (kind == Kind::Document || kind == Kind::Text || kind == Kind::CData || kind == Kind::Comment)
    {
        return kind == Kind::Document ? TEXT("#document")
               : kind == Kind::Text   ? TEXT("#text")
               : kind == Kind::CData  ? TEXT("#cdata-section")
                                      : TEXT("#comment");
    }
    const bool hasPrefix =
        (kind == Kind::Element || kind == Kind::Attribute) && Raw(m_node)->ns && Raw(m_node)->ns->prefix;
    return (hasPrefix ? Wide(Raw(m_node)->ns->prefix) + u':' : WideText()) + Wide(Raw(m_node)->name);
}

std::optional<WideText> XmlNode::Value() const
{
    if (GetKind() == Kind::Element || GetKind() == Kind::Document)
    {
        return std::nullopt;
    }
    return Wide(TextOwner(xmlNodeGetContent(Raw(m_node))).get());
}

WideText XmlNode::Text() const
{
    WideText text;
    if (GetKind() == Kind::Document)
    {
        const auto root = RootElement();
        return root ? root->Text() : text;
    }
    text = Wide(TextOwner(xmlNodeGetContent(Raw(m_node))).get());
    const bool trimmed =
        GetKind() == Kind::Element && !m_tree->PreservesWhiteSpace() && xmlNodeGetSpacePreserve(Raw(m_node)) != 1;
    return trimmed ? Trim(std::move(text), !BordersOnCData(Raw(m_node), &_xmlNode::children),
                          !BordersOnCData(Raw(m_node), &_xmlNode::last))
                   : text;
}

WideText XmlNode::Xml() const
{
    WideText xml;
    if (GetKind() == Kind::Document)
    {
        // Libxml2 marks a document that had no declaration so.
        constexpr int noDeclaration = -2;
        xml = m_tree->Document()->standalone != noDeclaration ? TEXT("<?xml version=\"1.0\"?>\r\n") : TEXT("");
        for (const XmlNode &child : Children())
        {
            xml += child.Xml() + TEXT("\r\n");
        }
        return xml;
    }
    const BufferOwner buffer(xmlBufferCreate());
    if (!buffer || xmlNodeDump(buffer.get(), m_tree->Document(), Raw(m_node), 0, 0) < 0)
    {
        ThrowHresult(E_OUTOFMEMORY);
    }
    return Wide(xmlBufferContent(buffer.get()));
}

std::optional<WideText> XmlNode::Attribute(const std::string &name) const
{
    if (GetKind() != Kind::Element)
    {
        return std::nullopt;
    }
    const TextOwner text(xmlGetProp(Raw(m_node), reinterpret_cast<const xmlChar *>(name.c_str())));
    return text ? std::optional(Wide(text.get())) : std::nullopt;
}

std::optional<XmlNode> XmlNode::Parent() const
{
    // An attribute has an owner, and no parent.
    return GetKind() == Kind::Attribute ? std::nullopt : Adjacent(m_tree, Raw(m_node)->parent);
}

std::optional<XmlNode> XmlNode::Next() const
{
    return GetKind() == Kind::Attribute ? std::nullopt : Adjacent(m_tree, Raw(m_node)->next);
}

std::optional<XmlNode> XmlNode::Previous() const
{
    return GetKind() == Kind::Attribute ? std::nullopt : Adjacent(m_tree, Raw(m_node)->prev);
}

std::vector<XmlNode> XmlNode::Children() const
{
    std::vector<XmlNode> children;
    for (xmlNodePtr child = Raw(m_node)->children; child != nullptr; child = child->next)
    {
        children.emplace_back(m_tree, child);
    }
    return children;
}

std::optional<XmlNode> XmlNode::RootElement() const
{
    return Adjacent(m_tree, xmlDocGetRootElement(m_tree->Document()));
}

std::vector<XmlNode> XmlNode::Select(const std::string &expression) const
{
    const XPathContextOwner context(xmlXPathNewContext(m_tree->Document()));
    if (!context)
    {
        ThrowHresult(E_OUTOFMEMORY);
    }
    const SilentErrors silent;
    context->error = QuietStructured;
    context->opLimit = MostSteps;
    context->node = Raw(m_node);
    const XPathObjectOwner result(
        xmlXPathEvalExpression(reinterpret_cast<const xmlChar *>(expression.c_str()), context.get()));
    if (!result || result->type != XPATH_NODESET)
    {
        ThrowHresult(E_FAIL);
    }
    std::vector<XmlNode> nodes;
    if (result->nodesetval != nullptr)
    {
        xmlXPathNodeSetSort(result->nodesetval);
        for (int i = 0; i < result->nodesetval->nodeNr; ++i)
        {
            // A namespace node belongs to the result alone and dies with it.
            if (result->nodesetval->nodeTab[i]->type != XML_NAMESPACE_DECL)
            {
                nodes.emplace_back(m_tree, result->nodesetval->nodeTab[i]);
            }
        }
    }
    return nodes;
}
