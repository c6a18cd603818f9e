// Replies of the service as documents. A reply is either the service's own XML (root "rsp") with a
// status that is a success, or it becomes an HttpError document that says what went wrong:
//
//     <HttpError HttpStatus="503"><Status>Service Unavailable</Status>
//     <Description>one line</Description></HttpError>
#pragma once

#include "XmlInterfaces.h"
#include "com/ComPtr.h"
#include "webclient/HttpTransport.h"
#include "webclient/ShownText.h"

#include <string_view>

constexpr HRESULT InvalidServerResponse = static_cast<HRESULT>(0x80072F78); // ERROR_HTTP_INVALID_SERVER_RESPONSE

// An empty document. Make it before anything is sent: a document that can't be made must not cost a reply.
// Throws the code of the creation.
ComPtr<IXMLDOMDocument2> CreateReplyDocument();

// Fills the document with one of the two shapes. The result is a success for the first,
// HTTP_E_STATUS_... (0x80190000 + status) for another status, and the code for an invalid server
// response for a success whose body isn't the service's. what is "picture" or "request". If a gateway answered,
// or nothing that can be understood, after everything was sent, the description says that it may or may not
// have arrived. No text that can be shown holds one of the secrets.
HRESULT LoadReply(IXMLDOMDocument2 *document, const HttpReply &reply, std::string_view what,
                  const SecretViews &secrets);

// Status 0 means that there was no answer.
void LoadHttpError(IXMLDOMDocument2 *document, int status, std::string_view words, std::string_view description);

inline bool IsSuccess(int status) noexcept
{
    return status >= 200 && status <= 299;
}

// The failing code of a status that is no success.
HRESULT ResultOfStatus(int status) noexcept;
