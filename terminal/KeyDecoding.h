// Tells which key or click the bytes from a terminal mean.
#pragma once

#include "terminal/Input.h"

#include <functional>
#include <optional>

// Gives the next byte of the same key, or nothing if none follows at once.
using NextByte = std::function<std::optional<char>()>;

// Takes from next what belongs to the key or character that begins with the byte `first`. The terminal sends
// characters in UTF-8, keys and clicks as xterm does.
Input DecodeKey(char first, const NextByte &next);
