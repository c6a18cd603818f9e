// Names and values as forms and queries carry them (application/x-www-form-urlencoded), and the
// percent-coding of RFC 3986. All texts are bytes; nothing is checked for UTF-8 here.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace loopback
{

using FormFields = std::vector<std::pair<std::string, std::string>>;

// Everything but letters, digits and "-._~" as %XX with upper-case digits.
std::string PercentEncode(std::string_view bytes);

// %XX decoded; a "%" without two hexadecimal digits stays.
std::string PercentDecode(std::string_view text);

// In order, repeated names and empty values kept; "+" is a blank.
FormFields ParseForm(std::string_view text);

std::optional<std::string> FindField(const FormFields &fields, std::string_view name);

// A whole number in decimal, with nothing around it.
std::optional<long long> ParseWholeNumber(std::string_view text);

} // namespace loopback
