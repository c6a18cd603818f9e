// The documents that come back from the service, and the one way in which a value is taken from them.
#pragma once

#include "com/BstrOwner.h"
#include "com/ComPtr.h"
#include "com/WideText.h"

#include "XmlInterfaces.h"

// The text of the node that an XPath expression selects. text is emptied first, whatever comes of the
// read. E_FAIL if there is no such node, with a message in the thread's COM error object; E_INVALIDARG,
// and text left alone, without an expression; E_POINTER without a document and for anything thrown.
HRESULT ReadNodeText(IXMLDOMDocument2 *document, const WCHAR *expression, BstrOwner &text) noexcept;

// The service's own verdict: S_OK for "ok" in any case, E_FAIL for any other, and ReadNodeText's result
// where there is none.
HRESULT ReadOutcome(IXMLDOMDocument2 *document) noexcept;

// One line on a reply that is no success. isServiceError is set for a refusal by the service itself and
// clear for everything else, the reply of a gateway included; the line may be empty. E_OUTOFMEMORY is
// thrown. Leaves the thread's COM error object to the node that was missed last.
WideText ComposeReplyError(IUnknown *reply, bool &isServiceError);
