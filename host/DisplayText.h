// Text as a terminal shows it: its width in columns, and cutting to a width.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Columns that UTF-8 text takes: combining marks none, East Asian wide characters and emoji two.
size_t DisplayWidth(std::string_view utf8);

// The longest beginning of the text that fits in columns, closed with "..." (a "…" if unicode) where
// something was cut. Never wider than columns, and never cut inside a character.
std::string CutToWidth(std::string_view utf8, size_t columns, bool unicode);

// The text in ASCII, everything else as "?".
std::string AsciiOnly(std::string_view utf8);
