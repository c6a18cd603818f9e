// Makes untrusted text safe to print on one terminal line.
#pragma once

#include <string>
#include <string_view>

// The text in one line and without power over the terminal: line breaks and tabs become blanks, other
// control characters show in caret notation, and direction overrides and bytes that are no UTF-8 as
// U+FFFD.
std::string OneSafeLine(std::string_view utf8);
