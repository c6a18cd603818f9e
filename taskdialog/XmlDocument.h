// The few operations on the platform's XML parser that a task dialog document needs.
#pragma once

#include "com/ComPtr.h"
#include "com/WideText.h"

#include "XmlInterfaces.h"

#include <optional>
#include <span>
#include <vector>

// Parses the bytes. Throws the failure of the parser, or E_FAIL for bytes that are no XML.
ComPtr<IXMLDOMNode> ParseXmlBytes(std::span<const BYTE> bytes);

// The first match of an expression, or null.
ComPtr<IXMLDOMNode> SelectNode(IXMLDOMNode *from, const WCHAR *expression);

// All matches, in document order.
std::vector<ComPtr<IXMLDOMNode>> SelectAllNodes(IXMLDOMNode *from, const WCHAR *expression);

// The text of the element, or the value of the attribute, that an expression selects; nullopt if none matches.
std::optional<WideText> ElementText(IXMLDOMNode *from, const WCHAR *expression);
std::optional<WideText> AttributeText(IXMLDOMNode *from, const WCHAR *expression);

// Convert by the platform's rules; 0 for text that is no number or too large.
INT32 Int32OfText(WideView text);
UINT32 UInt32OfText(WideView text);
INT64 Int64OfText(WideView text);
