// File names on their way to and from the plug-in. On disk a name is bytes; at the interface it is
// UTF-16, in the convention of the platform's file functions: a byte that belongs to no valid UTF-8
// sequence is the lone surrogate U+DC00 + byte. Every name survives the round trip.
#pragma once

#include "core/WideText.h"

#include <filesystem>

WideText TextOfPath(const std::filesystem::path &path);
std::filesystem::path PathOfText(WideView text);

// For the terminal: valid UTF-8 in one line, bytes that are no text as U+FFFD.
std::string ShownPath(const std::filesystem::path &path);
