// Text measured in the cells of a terminal by the program's locale: a wide character takes two cells, a
// combining one none, and a character that can't be shown becomes "?". Names no type of Windows, since
// CursesScreen includes it beside the terminal library. Native build only.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

size_t CellsOf(std::u16string_view text);

// The longest beginning of text that fits into so many cells.
std::u16string FitToCells(std::u16string_view text, size_t cells);

// Breaks text at blanks into lines of at most so many cells; a longer word is cut. At least one line.
std::vector<std::u16string> WrapToCells(std::u16string_view text, size_t cells);

// The text for a terminal library, without control characters, which could drive the terminal.
std::wstring CellCharacters(std::u16string_view text);

// The index of the character before or after the one at an index; a surrogate pair is one character. The
// results stay between 0 and the length of the text.
size_t CharacterBefore(std::u16string_view text, size_t at);
size_t CharacterBehind(std::u16string_view text, size_t at);
