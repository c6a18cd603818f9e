// Text as a terminal shows it. UTF-16 goes in, UTF-8 comes out. Names no type of Windows, whose
// declarations don't agree with ICU's.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Columns that UTF-8 text takes: combining marks none, East Asian wide characters and emoji two.
size_t TerminalWidth(std::string_view text);

// The text on one line and without power over the terminal: white space of any kind becomes a blank,
// other control characters, direction overrides and halves of surrogate pairs U+FFFD. What the terminal
// can't show, if it isn't a Unicode one, is "?".
std::string TerminalLine(std::u16string_view text, bool unicode);

// The text in lines of at most so many columns (4 at least), broken where the rules of its script allow
// it and at its own line ends; a word that is longer is cut. A combining mark stays with its letter.
std::vector<std::string> WrapForTerminal(std::u16string_view text, size_t columns, bool unicode);

// Whether name begins with the beginning, whatever the case of either.
bool BeginsWithIgnoringCase(std::u16string_view name, std::u16string_view beginning);
