// Replies of the service as documents. A reply is either the service's own XML (root "rsp") with a
// status that is a success, or it becomes an HttpError document that says what went wrong:
//
//     <HttpError HttpStatus="503"><Status>Service Unavailable</Status>
//     <Description>one line</Description></HttpError>
#pragma once

#include "XmlInterfaces.h"
#include "com/ComPtr.h"
#include "webclient/HttpTransport.h"

#include <string_view>
#include <vector>

// An empty document, made before anything is sent, so that a reply always finds its place. Throws
// what the creation answers.
ComPtr<IXMLDOMDocument2> CreateReplyDocument();

// Fills the document with one of the two shapes. The result is a success for the first,
// HTTP_E_STATUS_... (0x80190000 + status) for another status, and the code for an invalid server
// response for a success whose body isn't the service's. hidden are texts that must not be told.
HRESULT LoadReply(IXMLDOMDocument2 *document, const HttpReply &reply, const std::vector<std::string_view> &hidden);

// Status 0 means that there was no answer.
void LoadHttpError(IXMLDOMDocument2 *document, int status, std::string_view words, std::string_view description);

// The failing code of a status that is no success.
HRESULT ResultOfStatus(int status) noexcept;
