#include "core/TextPieces.h"

#include <algorithm>
#include <climits>

bool IsWhiteSpace(WCHAR unit) noexcept
{
    return (unit >= 0x09 && unit <= 0x0D) || unit == 0x20 || unit == 0x85 || unit == 0xA0 || unit == 0x1680 ||
           (unit >= 0x2000 && unit <= 0x200A) || unit == 0x2028 || unit == 0x2029 || unit == 0x202F ||
           unit == 0x205F || unit == 0x3000;
}

std::vector<WideView> SplitText(WideView text, WCHAR separator)
{
    std::vector<WideView> pieces;
    while (!text.empty())
    {
        const size_t length = std::min(text.find(separator), text.size());
        if (length > 0)
        {
            pieces.push_back(text.substr(0, length));
        }
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    return pieces;
}

WideView StripWhiteSpace(WideView text) noexcept
{
    while (!text.empty() && IsWhiteSpace(text.front()))
    {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsWhiteSpace(text.back()))
    {
        text.remove_suffix(1);
    }
    return text;
}

int LeadingNumber(WideView text) noexcept
{
    INT64 number = 0;
    for (const WCHAR digit : text)
    {
        if (digit < '0' || digit > '9')
        {
            break;
        }
        number = std::min<INT64>(number * 10 + (digit - '0'), INT_MAX);
    }
    return static_cast<int>(number);
}

void CapitalizeFirst(WideText &text)
{
    if (text.empty())
    {
        return;
    }
    // CharUpperW takes a pointer whose upper bits are zero as one character, and returns one.
    const auto upper = reinterpret_cast<UINT_PTR>(CharUpperW(reinterpret_cast<LPWSTR>(UINT_PTR{text.front()})));
    if (upper != 0)
    {
        text.front() = static_cast<WCHAR>(upper);
    }
}
