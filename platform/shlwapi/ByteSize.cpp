// A number of bytes as people read it: bytes as they are, larger units with three digits that
// count, cut and not rounded, with the separators of the user's locale.
#include "platform/kernel32/LocaleInformation.h"

#include "com/WideText.h"

#include <shlwapi.h>

#include <algorithm>
#include <iterator>
#include <string>

namespace
{
WideText Wide(const std::string &text)
{
    return WideText(text.begin(), text.end());
}

// number has a point before its decimals, if there are any.
WideText FormatByUserLocale(const std::string &number, UINT decimals)
{
    LocaleConventions conventions = UserConventions();
    const NUMBERFMTW format{decimals,
                            LeadingZero,
                            GroupingNumber(conventions),
                            conventions.decimalSeparator.data(),
                            conventions.thousandsSeparator.data(),
                            NegativeOrder(conventions)};
    WCHAR text[64] = {};
    GetNumberFormatW(LOCALE_USER_DEFAULT, 0, Wide(number).c_str(), &format, text, ARRAYSIZE(text));
    return text;
}

WideText ByteSize(LONGLONG bytes)
{
    constexpr const WCHAR *units[] = {u" KB", u" MB", u" GB", u" TB", u" PB", u" EB"};
    if (bytes < 1024)
    {
        return Wide(std::to_string(bytes) + " bytes");
    }
    size_t unit = 0;
    // From 1000 on a number has four digits and the next unit takes over: 0.97 MB, not 1000 KB.
    ULONGLONG scaled = bytes;
    for (; scaled >> 10 >= 1000 && unit + 1 < std::size(units); ++unit)
    {
        scaled >>= 10;
    }
    const ULONGLONG whole = scaled >> 10;
    const UINT decimals = whole >= 100 ? 0 : whole >= 10 ? 1 : 2;
    const std::string hundredths = std::to_string(100 + (scaled & 1023) * 100 / 1024).substr(1);
    return FormatByUserLocale(std::to_string(whole) + "." + hundredths.substr(0, decimals), decimals) +
           units[unit];
}
} // namespace

PWSTR WINAPI StrFormatByteSizeW(LONGLONG bytes, PWSTR buffer, UINT capacity)
{
    if (buffer != nullptr && capacity != 0)
    {
        const WideText text = ByteSize(bytes);
        buffer[text.copy(buffer, capacity - 1)] = 0;
    }
    return buffer;
}
