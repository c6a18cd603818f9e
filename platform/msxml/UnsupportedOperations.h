// The operations that this component doesn't have, each with E_NOTIMPL. Documents here are loaded and asked by
// expressions, and neither walked through, changed nor built; a request is a GET whose reply is a document.
#pragma once

#include "XmlInterfaces.h"

// Interface is one that ends in IDispatch.
template <class Interface>
class WithoutAutomation : public Interface
{
public:
    using Presented = Interface; // by whose identifier QueryInterface knows it

    STDMETHODIMP GetTypeInfoCount(UINT *count) noexcept override
    {
        if (count == nullptr)
        {
            return E_INVALIDARG;
        }
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR *, UINT, LCID, DISPID *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS *, VARIANT *, EXCEPINFO *, UINT *) noexcept override
    {
        return E_NOTIMPL;
    }
};

template <class Interface>
class ReadOnlyNode : public WithoutAutomation<Interface>
{
public:
    STDMETHODIMP get_nodeName(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_nodeType(DOMNodeType *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_nodeTypedValue(VARIANT *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_xml(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_parentNode(IXMLDOMNode **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_nextSibling(IXMLDOMNode **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_previousSibling(IXMLDOMNode **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_firstChild(IXMLDOMNode **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_lastChild(IXMLDOMNode **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP hasChildNodes(VARIANT_BOOL *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_childNodes(IXMLDOMNodeList **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP put_nodeValue(VARIANT) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_attributes(IXMLDOMNamedNodeMap **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP insertBefore(IXMLDOMNode *, VARIANT, IXMLDOMNode **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP replaceChild(IXMLDOMNode *, IXMLDOMNode *, IXMLDOMNode **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP removeChild(IXMLDOMNode *, IXMLDOMNode **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP appendChild(IXMLDOMNode *, IXMLDOMNode **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_ownerDocument(IXMLDOMDocument **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP cloneNode(VARIANT_BOOL, IXMLDOMNode **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_nodeTypeString(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP put_text(BSTR) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_specified(VARIANT_BOOL *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_definition(IXMLDOMNode **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP put_nodeTypedValue(VARIANT) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_dataType(VARIANT *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP put_dataType(BSTR) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP transformNode(IXMLDOMNode *, BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_parsed(VARIANT_BOOL *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_namespaceURI(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_prefix(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_baseName(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP transformNodeToObject(IXMLDOMNode *, VARIANT) noexcept override { return E_NOTIMPL; }
};

class ReadOnlyDocument : public ReadOnlyNode<IXMLDOMDocument2>
{
public:
    STDMETHODIMP get_documentElement(IXMLDOMElement **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_parseError(IXMLDOMParseError **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_readyState(LONG *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_async(VARIANT_BOOL *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_validateOnParse(VARIANT_BOOL *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP put_validateOnParse(VARIANT_BOOL) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_resolveExternals(VARIANT_BOOL *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP put_resolveExternals(VARIANT_BOOL) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_preserveWhiteSpace(VARIANT_BOOL *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP put_preserveWhiteSpace(VARIANT_BOOL) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP setProperty(BSTR, VARIANT) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP getProperty(BSTR, VARIANT *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_doctype(IXMLDOMDocumentType **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_implementation(IXMLDOMImplementation **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP putref_documentElement(IXMLDOMElement *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP createElement(BSTR, IXMLDOMElement **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP createDocumentFragment(IXMLDOMDocumentFragment **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP createTextNode(BSTR, IXMLDOMText **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP createComment(BSTR, IXMLDOMComment **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP createCDATASection(BSTR, IXMLDOMCDATASection **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP createProcessingInstruction(BSTR, BSTR, IXMLDOMProcessingInstruction **) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP createAttribute(BSTR, IXMLDOMAttribute **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP createEntityReference(BSTR, IXMLDOMEntityReference **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP getElementsByTagName(BSTR, IXMLDOMNodeList **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP createNode(VARIANT, BSTR, BSTR, IXMLDOMNode **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP nodeFromID(BSTR, IXMLDOMNode **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_url(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP abort() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP save(VARIANT) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP put_onreadystatechange(VARIANT) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP put_ondataavailable(VARIANT) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP put_ontransformnode(VARIANT) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_namespaces(IDispatch **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_schemas(VARIANT *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP putref_schemas(VARIANT) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP validate(IXMLDOMParseError **) noexcept override { return E_NOTIMPL; }
};

class UncountedList : public WithoutAutomation<IXMLDOMNodeList>
{
public:
    STDMETHODIMP nextNode(IXMLDOMNode **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP reset() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP _newEnum(IUnknown **) noexcept override { return E_NOTIMPL; }
};

class PlainRequest : public WithoutAutomation<IServerXMLHTTPRequest2>
{
public:
    STDMETHODIMP setRequestHeader(BSTR, BSTR) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP getResponseHeader(BSTR, BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP getAllResponseHeaders(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP abort() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_status(LONG *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_statusText(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_responseText(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_responseBody(VARIANT *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_responseStream(VARIANT *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP get_readyState(LONG *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP put_onreadystatechange(IDispatch *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP setTimeouts(LONG, LONG, LONG, LONG) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP waitForResponse(VARIANT, VARIANT_BOOL *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP getOption(SERVERXMLHTTP_OPTION, VARIANT *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP setOption(SERVERXMLHTTP_OPTION, VARIANT) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP setProxyCredentials(BSTR, BSTR) noexcept override { return E_NOTIMPL; }
};

// The identifiers of these classes, for ComObject: those of the interfaces that they present.
template <class Interface>
struct __wine_uuidof<WithoutAutomation<Interface>> : __wine_uuidof<Interface>
{
};
template <>
struct __wine_uuidof<UncountedList> : __wine_uuidof<IXMLDOMNodeList>
{
};
template <>
struct __wine_uuidof<PlainRequest> : __wine_uuidof<IServerXMLHTTPRequest2>
{
};
