// Prepares text for a terminal, from UTF-16 to UTF-8. Names no type of Windows, whose declarations don't
// agree with ICU's.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Columns that UTF-8 text takes: combining marks none, East Asian wide characters and emoji two.
size_t TerminalWidth(std::string_view text);

// Makes untrusted text safe to print on one terminal line: white space of any kind becomes a blank; other
// control characters, direction overrides and lone surrogates become U+FFFD. If the terminal isn't a
// Unicode one, characters that it can't show become "?".
std::string TerminalLine(std::u16string_view text, bool unicode);

// Breaks the text into lines of at most that many columns (at least 4), at its own line ends and where the
// rules of its script allow; cuts a longer word. A combining mark stays with its letter.
std::vector<std::string> WrapForTerminal(std::u16string_view text, size_t columns, bool unicode);

// Whether `name` begins with `beginning`, without regard to case.
bool BeginsWithIgnoringCase(std::u16string_view name, std::u16string_view beginning);
