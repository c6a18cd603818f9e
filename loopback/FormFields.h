// Names and values of forms and queries (application/x-www-form-urlencoded), and the percent-encoding of
// RFC 3986. All texts are bytes, which need not be UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace loopback
{

using FormFields = std::vector<std::pair<std::string, std::string>>;

// Encodes everything but letters, digits and "-._~" as %XX with upper-case digits.
std::string PercentEncode(std::string_view bytes);

// Decodes %XX; a "%" without two hexadecimal digits stays.
std::string PercentDecode(std::string_view text);

// Keeps the order, repeated names and empty values; "+" is a blank.
FormFields ParseForm(std::string_view text);

std::optional<std::string> FindField(const FormFields &fields, std::string_view name);

// A whole number in decimal; nullopt if the text holds anything else.
std::optional<long long> ParseWholeNumber(std::string_view text);

} // namespace loopback
