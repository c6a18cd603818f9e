#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include "platform/terminal/TerminalText.h"

#include <algorithm>
#include <memory>

namespace
{
constexpr UChar32 Replacement = 0xFFFD;

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

UChar32 Harmless(UChar32 character)
{
    if (u_isUWhiteSpace(character) && character != 0xA0)
    {
        return ' ';
    }
    const bool overrides =
        (character >= 0x202A && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
    const bool controls = u_charType(character) == U_CONTROL_CHAR;
    return overrides || controls || U_IS_SURROGATE(character) ? Replacement : character;
}

void Append(std::string &text, UChar32 character)
{
    char bytes[U8_MAX_LENGTH];
    int32_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, character);
    text.append(bytes, static_cast<size_t>(length));
}

// Calls visit(code point, its index in the text) for each character.
template <class Visit>
void ForEachCharacter(std::u16string_view text, Visit &&visit)
{
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t next = 0; next < length;)
    {
        const int32_t start = next;
        UChar32 character;
        U16_NEXT(text.data(), next, length, character);
        visit(character, static_cast<size_t>(start));
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

std::string_view WithoutBlanksBehind(std::string_view text)
{
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

// Collects the lines of one paragraph.
class LineFiller
{
public:
    LineFiller(std::vector<std::string> &lines, size_t columns) : m_lines(lines), m_columns(columns) {}

    void Add(const std::string &piece)
    {
        if (m_width + TerminalWidth(WithoutBlanksBehind(piece)) > m_columns && m_width > 0)
        {
            EndLine();
        }
        if (TerminalWidth(WithoutBlanksBehind(piece)) <= m_columns)
        {
            m_line += piece;
            m_width += TerminalWidth(piece);
            return;
        }
        AddCut(piece);
    }

    void EndLine()
    {
        m_lines.emplace_back(WithoutBlanksBehind(m_line));
        m_line.clear();
        m_width = 0;
    }

private:
    void AddCut(std::string_view piece)
    {
        const auto length = static_cast<int32_t>(piece.size());
        for (int32_t next = 0; next < length;)
        {
            const int32_t start = next;
            UChar32 character;
            U8_NEXT(piece.data(), next, length, character);
            const size_t width = ColumnsOf(character);
            if (m_width + width > m_columns)
            {
                EndLine();
            }
            m_line.append(piece, static_cast<size_t>(start), static_cast<size_t>(next - start));
            m_width += width;
        }
    }

    std::vector<std::string> &m_lines;
    size_t m_columns;
    std::string m_line;
    size_t m_width = 0;
};

void WrapParagraph(std::u16string_view text, size_t columns, bool unicode, std::vector<std::string> &lines)
{
    LineFiller filler(lines, columns);
    size_t start = 0;
    for (const size_t end : BreaksOf(text))
    {
        filler.Add(TerminalLine(text.substr(start, end - start), unicode));
        start = end;
    }
    filler.EndLine();
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

std::string TerminalLine(std::u16string_view text, bool unicode)
{
    std::string line;
    ForEachCharacter(text, [&](UChar32 character, size_t) {
        const UChar32 shown = Harmless(character);
        if (unicode || shown < 0x80)
        {
            Append(line, shown);
        }
        else if (ColumnsOf(shown) > 0)
        {
            line += '?';
        }
    });
    return line;
}

std::vector<std::string> WrapForTerminal(std::u16string_view text, size_t columns, bool unicode)
{
    std::vector<std::string> lines;
    while (!text.empty())
    {
        const size_t end = std::min(text.find(u'\n'), text.size());
        std::u16string_view paragraph = text.substr(0, end);
        if (paragraph.ends_with(u'\r'))
        {
            paragraph.remove_suffix(1);
        }
        WrapParagraph(paragraph, std::max<size_t>(columns, 4), unicode, lines);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

bool BeginsWithIgnoringCase(std::u16string_view name, std::u16string_view beginning)
{
    return Folded(name).starts_with(Folded(beginning));
}
