// Text in the cells of a terminal, as the program's locale has them: a wide character takes two, a combining
// one none, and what can't be shown is a "?". Names no type of Windows. Native builds only.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

size_t CellsOf(std::u16string_view text);

// The beginning that fits.
std::u16string FitToCells(std::u16string_view text, size_t cells);

// Lines of at most so many cells, broken at blanks; a longer word is cut. At least one line.
std::vector<std::u16string> WrapToCells(std::u16string_view text, size_t cells);

// What a terminal library may be given: nothing in it has power over the terminal.
std::wstring CellCharacters(std::u16string_view text);

// The place before or behind the character at a place in the text; its ends are their own neighbours.
size_t CharacterBefore(std::u16string_view text, size_t at);
size_t CharacterBehind(std::u16string_view text, size_t at);
