// The few questions that are asked of the platform's XML service, and the numbers in its answers.
#pragma once

#include "com/ComPtr.h"
#include "com/WideText.h"

#include "XmlInterfaces.h"

#include <optional>
#include <span>
#include <vector>

// The bytes as a document. Throws what the service fails with, and E_FAIL for bytes that are no XML.
ComPtr<IXMLDOMNode> ParseXmlBytes(std::span<const BYTE> bytes);

// The first match of an expression, or null.
ComPtr<IXMLDOMNode> SelectNode(IXMLDOMNode *from, const WCHAR *expression);

// All matches, in document order.
std::vector<ComPtr<IXMLDOMNode>> SelectAllNodes(IXMLDOMNode *from, const WCHAR *expression);

// The text of the element that an expression finds, or the value of the attribute; nothing if there is none.
std::optional<WideText> ElementText(IXMLDOMNode *from, const WCHAR *expression);
std::optional<WideText> AttributeText(IXMLDOMNode *from, const WCHAR *expression);

// By the platform's own conversion; 0 for text that is no number or one too large.
INT32 Int32OfText(WideView text);
UINT32 UInt32OfText(WideView text);
INT64 Int64OfText(WideView text);
