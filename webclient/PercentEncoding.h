// Percent-encoding as OAuth wants it (RFC 5849, 3.6): all but letters, digits and -._~ becomes %XX
// with upper-case digits. The same form serves the bodies of form requests, so that a value is
// encoded in one way wherever it goes.
#pragma once

#include "webclient/SecretText.h"

#include <string>
#include <string_view>

void AppendPercentEncoded(SecretText &text, std::string_view bytes);
std::string PercentEncode(std::string_view bytes);

// Reads one name or value of a query or of a form: "+" is a blank, a "%" without two digits itself.
SecretText FormDecode(std::string_view encoded);
