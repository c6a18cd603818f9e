// Percent-encoding as OAuth wants it (RFC 5849, 3.6): all but letters, digits and -._~ becomes %XX
// with upper-case digits. Bodies of form requests use the same encoding, so that a value is
// always encoded in one way.
#pragma once

#include "webclient/SecretText.h"

#include <string>
#include <string_view>

void AppendPercentEncoded(SecretText &text, std::string_view bytes);
std::string PercentEncode(std::string_view bytes);

// Decodes one name or value of a query or of a form: "+" is a blank; a "%" without two digits stays.
SecretText FormDecode(std::string_view encoded);
