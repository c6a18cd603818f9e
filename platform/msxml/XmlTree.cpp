// libxml2's headers draw in ICU's, which the Windows headers would mislead.
#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xpath.h>
#include <libxml/xpathInternals.h>

#include "platform/msxml/XmlTree.h"

#include "com/AsciiText.h"
#include "com/Hresult.h"
#include "com/TextConversion.h"

#include <mutex>

namespace
{
constexpr size_t LargestText = 256 * 1024;
constexpr int MostAttributes = 1000;          // of one element: libxml2 takes seconds for some ten thousands
constexpr unsigned long MostSteps = 20000000; // of one XPath expression

template <class T, void (*Free)(T *)>
struct Freer
{
    void operator()(T *object) const { Free(object); }
};
using ParserOwner = std::unique_ptr<xmlParserCtxt, Freer<xmlParserCtxt, xmlFreeParserCtxt>>;
using XPathContextOwner = std::unique_ptr<xmlXPathContext, Freer<xmlXPathContext, xmlXPathFreeContext>>;
using XPathObjectOwner = std::unique_ptr<xmlXPathObject, Freer<xmlXPathObject, xmlXPathFreeObject>>;

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
    return text ? FromUtf8(reinterpret_cast<const char *>(text)) : WideText();
}

WideText Trim(const WideText &text, bool atStart, bool atEnd)
{
    const WideView whole = text;
    const WideView inner = Trimmed(whole);
    if (inner.empty())
    {
        return atStart || atEnd ? WideText() : text;
    }
    return WideText(atStart ? inner.begin() : whole.begin(), atEnd ? inner.end() : whole.end());
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

void Refuse(void *context)
{
    auto *parser = static_cast<xmlParserCtxtPtr>(context);
    *static_cast<bool *>(parser->_private) = true;
    xmlStopParser(parser);
}

void RefuseDocumentType(void *context, const xmlChar *, const xmlChar *, const xmlChar *)
{
    Refuse(context);
}

void StartElement(void *context, const xmlChar *name, const xmlChar *prefix, const xmlChar *uri,
                  int namespaceCount, const xmlChar **namespaces, int attributeCount, int defaultedCount,
                  const xmlChar **attributes)
{
    if (attributeCount > MostAttributes)
    {
        Refuse(context);
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

} // namespace

std::optional<XmlNode> ParseXml(std::string_view bytes, XmlEncoding encoding)
{
    static std::once_flag once;
    std::call_once(once, xmlInitParser);
    if (bytes.size() > LargestText)
    {
        return std::nullopt;
    }
    const ParserOwner parser(xmlNewParserCtxt());
    if (!parser)
    {
        ThrowHresult(E_OUTOFMEMORY);
    }
    const SilentErrors silent;
    bool isRefused = false;
    parser->_private = &isRefused;
    parser->sax->internalSubset = RefuseDocumentType;
    parser->sax->startElementNs = StartElement;
    const bool isUtf8 = encoding == XmlEncoding::Utf8;
    const int flags = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_COMPACT |
                      (isUtf8 ? XML_PARSE_IGNORE_ENC : 0);
    const std::shared_ptr<xmlDoc> document(xmlCtxtReadMemory(parser.get(), bytes.data() ? bytes.data() : "",
                                                             static_cast<int>(bytes.size()), nullptr,
                                                             isUtf8 ? "UTF-8" : nullptr, flags),
                                           xmlFreeDoc);
    if (!document || isRefused || !parser->wellFormed)
    {
        return std::nullopt;
    }
    DropBlankTexts(reinterpret_cast<xmlNodePtr>(document.get()));
    return XmlNode(document, document.get());
}

std::optional<WideText> XmlNode::Value() const
{
    if (Raw(m_node)->type == XML_ELEMENT_NODE || Raw(m_node)->type == XML_DOCUMENT_NODE)
    {
        return std::nullopt;
    }
    return Wide(TextOwner(xmlNodeGetContent(Raw(m_node))).get());
}

WideText XmlNode::Text() const
{
    const xmlNodePtr node = Raw(m_node)->type == XML_DOCUMENT_NODE
                                ? xmlDocGetRootElement(static_cast<xmlDocPtr>(m_node))
                                : Raw(m_node);
    const WideText text = Wide(TextOwner(xmlNodeGetContent(node)).get());
    const bool isTrimmed = node->type == XML_ELEMENT_NODE && xmlNodeGetSpacePreserve(node) != 1;
    return isTrimmed
               ? Trim(text, !BordersOnCData(node, &_xmlNode::children), !BordersOnCData(node, &_xmlNode::last))
               : text;
}

std::vector<XmlNode> XmlNode::Select(const std::string &expression) const
{
    const XPathContextOwner context(xmlXPathNewContext(static_cast<xmlDocPtr>(m_document.get())));
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
                nodes.emplace_back(m_document, result->nodesetval->nodeTab[i]);
            }
        }
    }
    return nodes;
}
