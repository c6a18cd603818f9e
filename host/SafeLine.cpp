#include "host/SafeLine.h"

#include "host/CharsetConversion.h"
#include "host/TextEncodings.h"

namespace
{
constexpr WCHAR Replacement = 0xFFFD;

bool OverridesDirection(WCHAR unit)
{
    return (unit >= 0x202A && unit <= 0x202E) || (unit >= 0x2066 && unit <= 0x2069);
}
} // namespace

std::string OneSafeLine(std::string_view utf8)
{
    WideText safe;
    safe.reserve(utf8.size());
    for (const WCHAR unit : TextFromCharset(Charset::Utf8, utf8, Faults::Replace).value_or(WideText()))
    {
        if (unit == '\n' || unit == '\t')
        {
            safe += ' ';
        }
        else if (unit == '\r')
        {
            // Dropped; a line feed that follows becomes the blank.
        }
        else if (unit < 0x20 || unit == 0x7F)
        {
            safe += '^';
            safe += static_cast<WCHAR>(unit ^ 0x40);
        }
        else if ((unit >= 0x80 && unit < 0xA0) || OverridesDirection(unit))
        {
            safe += Replacement;
        }
        else
        {
            safe += unit;
        }
    }
    return Utf8FromText(safe);
}
