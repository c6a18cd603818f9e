// The terminal behind standard output, if there is one.
#pragma once

#include "host/LiveDisplay.h"

#include <cstddef>
#include <string_view>

// What standard output can show: colours unless NO_COLOR is set, blocks where the locale is UTF-8,
// nothing live on a "dumb" terminal or without one. The program's locale must be set.
DisplayOptions DetectDisplay();

// Whether standard input and output are a terminal that can show more than lines.
bool IsUserAtTerminal();

// Columns of the terminal; 80 if it doesn't tell.
size_t TerminalColumns();

// Writes everything, if need be in several goes. What a closed pipe refuses is lost.
void WriteOut(std::string_view text);
