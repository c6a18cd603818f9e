#include "host/DisplayText.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace
{
// Calls visit(code point, its bytes) for each character; a faulty sequence has a negative code point.
template <class Visit>
void ForEachCharacter(std::string_view utf8, Visit &&visit)
{
    const auto length = static_cast<int32_t>(utf8.size());
    for (int32_t next = 0; next < length;)
    {
        const int32_t start = next;
        UChar32 character;
        U8_NEXT(utf8.data(), next, length, character);
        if (!visit(character, utf8.substr(static_cast<size_t>(start), static_cast<size_t>(next - start))))
        {
            return;
        }
    }
}

size_t ColumnsOf(UChar32 character)
{
    if (character < 0)
    {
        return 1;
    }
    switch (u_charType(character))
    {
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_FORMAT_CHAR:
        return 0;
    default:
        break;
    }
    const int width = u_getIntPropertyValue(character, UCHAR_EAST_ASIAN_WIDTH);
    return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}
} // namespace

size_t DisplayWidth(std::string_view utf8)
{
    size_t columns = 0;
    ForEachCharacter(utf8, [&](UChar32 character, std::string_view) {
        columns += ColumnsOf(character);
        return true;
    });
    return columns;
}

std::string CutToWidth(std::string_view utf8, size_t columns, bool unicode)
{
    if (DisplayWidth(utf8) <= columns)
    {
        return std::string(utf8);
    }
    const std::string_view mark = unicode ? "…" : "...";
    const size_t markColumns = unicode ? 1 : 3;
    if (columns < markColumns)
    {
        return std::string(columns, '.');
    }
    std::string cut;
    size_t taken = 0;
    ForEachCharacter(utf8, [&](UChar32 character, std::string_view bytes) {
        taken += ColumnsOf(character);
        if (taken > columns - markColumns)
        {
            return false;
        }
        cut += bytes;
        return true;
    });
    return cut.append(mark);
}

std::string AsciiOnly(std::string_view utf8)
{
    std::string ascii;
    ForEachCharacter(utf8, [&](UChar32 character, std::string_view) {
        if (character >= 0 && ColumnsOf(character) == 0)
        {
            return true;
        }
        ascii += character >= 0 && character < 0x80 ? static_cast<char>(character) : '?';
        return true;
    });
    return ascii;
}
