// UTF-8, as the system below speaks it, to and from UTF-16. Either way what is malformed becomes
// U+FFFD; a lone surrogate counts as malformed.
#pragma once

#include "com/WideText.h"

#include <string>
#include <string_view>

WideText FromUtf8(std::string_view text);
std::string ToUtf8(WideView text);
