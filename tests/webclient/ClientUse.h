// A client as tests use it, and what a service and a caller see of its requests and replies.
#pragma once

#include "WebComponents.h"
#include "XmlInterfaces.h"
#include "com/ComPtr.h"
#include "webclient/RequestUrl.h"

#include <string>
#include <utility>
#include <vector>

// Names the service, and gives the token "the-token" with "token-secret".
void SetUpClient(IOAuthWebClient &client);

ComPtr<IRequestParameters> Parameters(const std::vector<std::pair<const WCHAR *, const WCHAR *>> &pairs);

// The text that an expression selects; "(none)" for no node, "(no document)" for an object that is none.
std::string DocumentText(IUnknown *document, const char *path);

// Whether an Authorization header bears the right signature over the method, the address, the parameters
// and the header's own values.
bool IsSignedRight(const std::string &header, const std::string &method, const std::string &url,
                   ParameterList parameters, const std::string &tokenSecret);
