// Names of files: UTF-16 at the Windows API, bytes in the file system. Names are taken as UTF-8; a
// byte that belongs to no valid sequence becomes the lone surrogate U+DC00 + byte, and the way back
// makes the byte of it again, so that every name that the system has survives the round trip.
#pragma once

#include "com/WideText.h"

#include <string>
#include <string_view>

std::string PathToBytes(WideView path);
WideText PathFromBytes(std::string_view bytes);
