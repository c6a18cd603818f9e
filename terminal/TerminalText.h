// Text measured, cut and broken for a terminal by the columns that it takes: combining marks none, East Asian wide
// characters and emoji two. Names no type of Windows, whose declarations don't agree with ICU's.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// Of text as TerminalLine shows it on a Unicode terminal.
size_t TerminalWidth(std::u16string_view text);

// Of UTF-8 that is shown as it is.
size_t TerminalWidth(std::string_view text);

// The text in UTF-8, made safe by SafeText (com/SafeText.h). If the terminal isn't a Unicode one, characters that it
// can't show become "?".
std::string TerminalLine(std::u16string_view text, bool isUnicode);

// The longest beginning that fits in columns; never cut inside a character.
std::u16string_view FitToWidth(std::u16string_view text, size_t columns);

// The same, closed with "..." (a "…" if isUnicode) where something was cut.
std::u16string CutToWidth(std::u16string_view text, size_t columns, bool isUnicode);

// Breaks the text into lines of at most that many columns (at least 4), at its own line ends and where the
// rules of its script allow; cuts a longer word. A combining mark stays with its letter.
std::vector<std::u16string> WrapToWidth(std::u16string_view text, size_t columns);

// Whether `name` begins with `beginning`, without regard to case.
bool BeginsWithIgnoringCase(std::u16string_view name, std::u16string_view beginning);

// The index of the character before or after the one at an index; a surrogate pair is one character. The
// results stay between 0 and the length of the text.
size_t CharacterBefore(std::u16string_view text, size_t at);
size_t CharacterBehind(std::u16string_view text, size_t at);

void AppendCharacter(std::u16string &text, char32_t character);
