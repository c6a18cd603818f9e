// Describes the body of a refusal in one line for a user: an OAuth problem in plain words, the title of
// a page, or the first words of a plain text.
#pragma once

#include "webclient/ShownLine.h"

#include <string>
#include <string_view>

// body: bytes as they came. The result is UTF-8 of at most some 200 characters, without the secrets; empty if the
// body holds nothing readable.
std::string DescribeErrorBody(std::string_view body, const SecretViews &secrets);

// "Service Unavailable" for 503; empty for a status without a name.
std::string_view StandardStatusWords(int status);
