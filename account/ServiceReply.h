// Replies of the service as XML documents, and the only function that reads a value from them.
#pragma once

#include "com/BstrOwner.h"
#include "com/ComPtr.h"
#include "com/WideText.h"

#include "XmlInterfaces.h"

// The text of the node that an XPath expression selects. text is emptied first, also if the
// read fails. E_FAIL if there is no such node, with a message in the thread's COM error object; E_INVALIDARG,
// and text left alone, without an expression; E_POINTER without a document and for anything thrown.
HRESULT ReadNodeText(IXMLDOMDocument2 *document, const WCHAR *expression, BstrOwner &text) noexcept;

// The service's own verdict: S_OK for "ok" in upper or lower case, E_FAIL for any other text, and
// ReadNodeText's failure if there is none.
HRESULT ReadOutcome(IXMLDOMDocument2 *document) noexcept;

// Describes a reply that is no success, in one line. isServiceError is set for a refusal by the service itself and
// clear for everything else, the reply of a gateway included; the line may be empty. Throws
// E_OUTOFMEMORY. Afterwards the thread's COM error object describes the last missing node.
WideText ComposeReplyError(IUnknown *reply, bool &isServiceError);
