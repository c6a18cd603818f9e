// Conversion between the UTF-8 of the Linux system and the UTF-16 of the Windows API. In both directions
// malformed input becomes U+FFFD; a lone surrogate is malformed.
#pragma once

#include "com/WideText.h"

#include <string>
#include <string_view>

WideText FromUtf8(std::string_view text);
std::string ToUtf8(WideView text);
