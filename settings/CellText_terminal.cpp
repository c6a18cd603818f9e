#include "settings/CellText_terminal.h"

#include <wchar.h>

namespace
{
bool IsLead(char16_t unit)
{
    return unit >= 0xD800 && unit < 0xDC00;
}

bool IsTrail(char16_t unit)
{
    return unit >= 0xDC00 && unit < 0xE000;
}

bool OverridesDirection(wchar_t character)
{
    return (character >= 0x200E && character <= 0x200F) || (character >= 0x202A && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069);
}

// Returns the character at an index and advances the index past it.
wchar_t TakeCharacter(std::u16string_view text, size_t &at)
{
    const char16_t unit = text[at++];
    wchar_t character = unit;
    if (IsLead(unit) && at < text.size() && IsTrail(text[at]))
    {
        character = 0x10000 + ((unit - 0xD800) << 10) + (text[at++] - 0xDC00);
    }
    if (character == L'\t' || character == L'\n' || character == L'\r')
    {
        return L' ';
    }
    return wcwidth(character) < 0 || OverridesDirection(character) ? L'?' : character;
}

size_t WidthOf(wchar_t character)
{
    return static_cast<size_t>(wcwidth(character));
}

// The end of the line of at most so many cells that begins at start; always after start, so that callers advance.
size_t EndOfFit(std::u16string_view text, size_t start, size_t cells)
{
    size_t at = start;
    for (size_t width = 0; at < text.size();)
    {
        size_t next = at;
        width += WidthOf(TakeCharacter(text, next));
        if (width > cells)
        {
            break;
        }
        at = next;
    }
    return at > start || at == text.size() ? at : CharacterBehind(text, start);
}
} // namespace

size_t CellsOf(std::u16string_view text)
{
    size_t cells = 0;
    for (size_t at = 0; at < text.size();)
    {
        cells += WidthOf(TakeCharacter(text, at));
    }
    return cells;
}

std::u16string FitToCells(std::u16string_view text, size_t cells)
{
    size_t end = EndOfFit(text, 0, cells);
    if (CellsOf(text.substr(0, end)) > cells)
    {
        end = 0;
    }
    return std::u16string(text.substr(0, end));
}

std::vector<std::u16string> WrapToCells(std::u16string_view text, size_t cells)
{
    std::vector<std::u16string> lines;
    size_t start = 0;
    do
    {
        size_t end = EndOfFit(text, start, cells);
        if (end < text.size() && text[end] != u' ')
        {
            const size_t blank = text.substr(start, end - start).find_last_of(u' ');
            end = blank != text.npos && blank > 0 ? start + blank : end;
        }
        const std::u16string_view line = text.substr(start, end - start);
        lines.emplace_back(line.substr(0, line.find_last_not_of(u' ') + 1));
        start = text.find_first_not_of(u' ', end);
    } while (start < text.size());
    return lines;
}

std::wstring CellCharacters(std::u16string_view text)
{
    std::wstring characters;
    for (size_t at = 0; at < text.size();)
    {
        characters += TakeCharacter(text, at);
    }
    return characters;
}

size_t CharacterBefore(std::u16string_view text, size_t at)
{
    if (at > 1 && IsTrail(text[at - 1]) && IsLead(text[at - 2]))
    {
        return at - 2;
    }
    return at > 0 ? at - 1 : 0;
}

size_t CharacterBehind(std::u16string_view text, size_t at)
{
    if (at + 1 < text.size() && IsLead(text[at]) && IsTrail(text[at + 1]))
    {
        return at + 2;
    }
    return at < text.size() ? at + 1 : at;
}
