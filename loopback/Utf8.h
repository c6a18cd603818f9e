// Checks and repairs of UTF-8 bytes.
#pragma once

#include <string>
#include <string_view>

namespace loopback
{

// Strict: no overlong forms, no surrogates, nothing above U+10FFFF.
bool IsUtf8(std::string_view bytes);

// Replaces every byte that doesn't belong to a well-formed sequence by U+FFFD.
std::string RepairUtf8(std::string_view bytes);

} // namespace loopback
