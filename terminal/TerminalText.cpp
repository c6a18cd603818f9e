#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include "com/SafeText.h"
#include "terminal/TerminalText.h"

#include <algorithm>
#include <memory>

namespace
{
size_t ColumnsOf(UChar32 character)
{
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

void Append(std::string &text, UChar32 character)
{
    char bytes[U8_MAX_LENGTH];
    int32_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, character);
    text.append(bytes, static_cast<size_t>(length));
}

// Calls visit(code point) for each character.
template <class Visit>
void ForEachCharacter(std::u16string_view text, Visit &&visit)
{
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t next = 0; next < length;)
    {
        UChar32 character;
        U16_NEXT(text.data(), next, length, character);
        visit(character);
    }
}

// The indices at which a line may end; the last one is the end of the text.
std::vector<size_t> BreaksOf(std::u16string_view text)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UBreakIterator, decltype(&ubrk_close)> breaks(
        ubrk_open(UBRK_LINE, nullptr, text.data(), static_cast<int32_t>(text.size()), &status), ubrk_close);
    std::vector<size_t> places;
    if (U_SUCCESS(status))
    {
        ubrk_first(breaks.get());
        for (int32_t at = ubrk_next(breaks.get()); at != UBRK_DONE; at = ubrk_next(breaks.get()))
        {
            places.push_back(static_cast<size_t>(at));
        }
    }
    if (places.empty() || places.back() != text.size())
    {
        places.push_back(text.size());
    }
    return places;
}

std::u16string_view WithoutBlanksBehind(std::u16string_view text)
{
    return text.substr(0, text.find_last_not_of(u' ') + 1);
}

void WrapParagraph(std::u16string_view text, size_t columns, std::vector<std::u16string> &lines)
{
    size_t start = 0; // of the line
    size_t end = 0;   // of what fits into it
    const auto endLine = [&] {
        lines.emplace_back(WithoutBlanksBehind(text.substr(start, end - start)));
        start = end;
    };
    for (const size_t next : BreaksOf(text))
    {
        const auto fits = [&] {
            return TerminalWidth(WithoutBlanksBehind(text.substr(start, next - start))) <= columns;
        };
        if (!fits() && end > start)
        {
            endLine();
        }
        while (!fits())
        {
            end = start + FitToWidth(text.substr(start), columns).size();
            endLine();
        }
        end = next;
    }
    endLine();
}

std::u16string Folded(std::u16string_view text)
{
    // Case folding turns one unit into at most three.
    std::u16string folded(text.size() * 3, u'\0');
    UErrorCode status = U_ZERO_ERROR;
    const int32_t length = u_strFoldCase(folded.data(), static_cast<int32_t>(folded.size()), text.data(),
                                         static_cast<int32_t>(text.size()), U_FOLD_CASE_DEFAULT, &status);
    folded.resize(static_cast<size_t>(std::max(length, 0)));
    return folded;
}
} // namespace

size_t TerminalWidth(std::u16string_view text)
{
    size_t columns = 0;
    ForEachCharacter(SafeText(text), [&](UChar32 character) { columns += ColumnsOf(character); });
    return columns;
}

size_t TerminalWidth(std::string_view text)
{
    size_t columns = 0;
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t next = 0; next < length;)
    {
        UChar32 character;
        U8_NEXT(text.data(), next, length, character);
        columns += character < 0 ? 1 : ColumnsOf(character);
    }
    return columns;
}

std::string TerminalLine(std::u16string_view text, bool isUnicode)
{
    std::string line;
    ForEachCharacter(SafeText(text), [&](UChar32 character) {
        if (isUnicode || character < 0x80)
        {
            Append(line, character);
        }
        else if (ColumnsOf(character) > 0)
        {
            line += '?';
        }
    });
    return line;
}

std::u16string_view FitToWidth(std::u16string_view text, size_t columns)
{
    size_t end = 0;
    for (size_t width = 0; end < text.size();)
    {
        const size_t next = CharacterBehind(text, end);
        width += TerminalWidth(text.substr(end, next - end));
        if (width > columns)
        {
            break;
        }
        end = next;
    }
    return text.substr(0, end);
}

std::u16string CutToWidth(std::u16string_view text, size_t columns, bool isUnicode)
{
    if (TerminalWidth(text) <= columns)
    {
        return std::u16string(text);
    }
    const std::u16string_view mark = isUnicode ? u"…" : u"...";
    return columns < mark.size() ? std::u16string(columns, u'.')
                                 : std::u16string(FitToWidth(text, columns - mark.size())).append(mark);
}

std::vector<std::u16string> WrapToWidth(std::u16string_view text, size_t columns)
{
    std::vector<std::u16string> lines;
    while (!text.empty())
    {
        const size_t end = std::min(text.find(u'\n'), text.size());
        std::u16string_view paragraph = text.substr(0, end);
        if (paragraph.ends_with(u'\r'))
        {
            paragraph.remove_suffix(1);
        }
        WrapParagraph(paragraph, std::max<size_t>(columns, 4), lines);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

bool BeginsWithIgnoringCase(std::u16string_view name, std::u16string_view beginning)
{
    return Folded(name).starts_with(Folded(beginning));
}

size_t CharacterBefore(std::u16string_view text, size_t at)
{
    auto index = static_cast<int32_t>(at);
    if (index > 0)
    {
        U16_BACK_1(text.data(), 0, index);
    }
    return static_cast<size_t>(index);
}

size_t CharacterBehind(std::u16string_view text, size_t at)
{
    auto index = static_cast<int32_t>(at);
    const auto length = static_cast<int32_t>(text.size());
    if (index < length)
    {
        U16_FWD_1(text.data(), index, length);
    }
    return static_cast<size_t>(index);
}

void AppendCharacter(std::u16string &text, char32_t character)
{
    char16_t units[U16_MAX_LENGTH];
    int32_t length = 0;
    U16_APPEND_UNSAFE(units, length, static_cast<UChar32>(character));
    text.append(units, static_cast<size_t>(length));
}
