// File names are UTF-16 in the Windows API and bytes in the file system. They are converted as UTF-8; a
// byte that belongs to no valid sequence becomes the lone surrogate U+DC00 + byte, and is converted back
// to that byte, so that every name of the file system survives the round trip.
#pragma once

#include "com/WideText.h"

#include <string>
#include <string_view>

std::string PathToBytes(WideView path);
WideText PathFromBytes(std::string_view bytes);
