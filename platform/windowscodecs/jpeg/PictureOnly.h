// A small JPEG in memory without its application segments and comments.
#pragma once

#include "platform/windowscodecs/jpeg/StreamBytes.h"

// Empty if it isn't a whole JPEG.
Bytes KeepPictureOnly(const Bytes &picture);
