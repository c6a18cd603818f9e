// What a service does with the signature of a request.
#pragma once

#include "webclient/RequestParameters.h"

#include <string>

// Whether an Authorization header bears the right signature over the method, the address, the parameters
// and the header's own values.
bool IsSignedRight(const std::string &header, const std::string &method, const std::string &url,
                   ParameterList parameters, const std::string &tokenSecret);
