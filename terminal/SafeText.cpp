#include "terminal/SafeText.h"

namespace
{
constexpr WCHAR Replacement = 0xFFFD;

bool IsIn(WCHAR unit, unsigned first, unsigned last)
{
    return unit >= first && unit <= last;
}

bool IsLineBreakOrTab(WCHAR unit)
{
    return unit == '\t' || unit == '\n' || IsIn(unit, 0x2028, 0x2029);
}

// Whether the unit at the index is half of a surrogate pair.
bool IsPaired(WideView text, size_t at)
{
    return IsIn(text[at], 0xD800, 0xDBFF) ? at + 1 < text.size() && IsIn(text[at + 1], 0xDC00, 0xDFFF)
                                          : at > 0 && IsIn(text[at - 1], 0xD800, 0xDBFF);
}
} // namespace

WideText SafeText(WideView text)
{
    WideText safe;
    safe.reserve(text.size());
    for (size_t at = 0; at < text.size(); ++at)
    {
        const WCHAR unit = text[at];
        const bool isCommand = IsIn(unit, 0x80, 0x9F) || IsIn(unit, 0x202A, 0x202E) || IsIn(unit, 0x2066, 0x2069);
        const bool isHalf = IsIn(unit, 0xD800, 0xDFFF) && !IsPaired(text, at);
        if (unit == '\r')
        {
            continue;
        }
        if (IsLineBreakOrTab(unit))
        {
            safe += ' ';
        }
        else if (unit < 0x20 || unit == 0x7F)
        {
            safe += '^';
            safe += static_cast<WCHAR>(unit ^ 0x40);
        }
        else
        {
            safe += isCommand || isHalf ? Replacement : unit;
        }
    }
    return safe;
}
