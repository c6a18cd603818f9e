// UTF-16 to UTF-8 and back, of secrets too. Nothing is refused: a lone surrogate, or a byte that belongs to no
// character, becomes U+FFFD, so that what is signed and what is sent are always the same bytes.
#pragma once

#include "com/WideText.h"
#include "webclient/SecretText.h"

#include <string>
#include <string_view>
#include <vector>

using SecretWideText = std::vector<WCHAR, WipingAllocator<WCHAR>>; // without a closing zero

std::string Utf8FromWide(WideView text);
SecretText SecretUtf8FromWide(WideView text);
WideText WideFromUtf8(std::string_view bytes);
SecretWideText SecretWideFromUtf8(std::string_view bytes);
