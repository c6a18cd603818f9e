// A number of bytes as people read it: bytes as they are, larger units with three digits that
// count, cut and not rounded, with the separators of the user's locale.
#include "platform/kernel32/LocaleInformation.h"

#include "com/WideText.h"

#include <shlwapi.h>
#include <strsafe.h>

#include <algorithm>
#include <iterator>

namespace
{
WideText FormatByUserLocale(const WideText &digits, UINT decimals)
{
    LocaleConventions conventions = UserConventions();
    const NUMBERFMTW format{decimals,
                            LeadingZero,
                            GroupingNumber(conventions),
                            conventions.decimalSeparator.data(),
                            conventions.thousandsSeparator.data(),
                            NegativeOrder(conventions)};
    WCHAR text[64] = {};
    GetNumberFormatW(LOCALE_USER_DEFAULT, 0, digits.c_str(), &format, text, ARRAYSIZE(text));
    return text;
}

WideText Printed(const WCHAR *format, LONGLONG number, LONGLONG fraction = 0)
{
    WCHAR text[64] = {};
    StringCchPrintfW(text, ARRAYSIZE(text), format, number, fraction);
    return text;
}
} // namespace

PWSTR WINAPI StrFormatByteSizeW(LONGLONG bytes, PWSTR buffer, UINT capacity)
{
    constexpr const WCHAR *units[] = {u" KB", u" MB", u" GB", u" TB", u" PB", u" EB"};
    if (buffer == nullptr || capacity == 0)
    {
        return buffer;
    }
    if (bytes < 1024)
    {
        const WideText text = Printed(u"%I64d bytes", bytes);
        StringCchCopyW(buffer, capacity, text.c_str());
        return buffer;
    }
    size_t unit = 0;
    // From 1000 on a number has four digits and the next unit takes over: 0.97 MB, not 1000 KB.
    ULONGLONG scaled = bytes;
    for (; scaled >> 10 >= 1000 && unit + 1 < std::size(units); ++unit)
    {
        scaled >>= 10;
    }
    const ULONGLONG whole = scaled >> 10;
    const ULONGLONG hundredths = (scaled & 1023) * 100 / 1024;
    const UINT decimals = whole >= 100 ? 0 : whole >= 10 ? 1 : 2;
    const ULONGLONG fraction = decimals == 2 ? hundredths : decimals == 1 ? hundredths / 10 : 0;
    const WideText digits = decimals == 0   ? Printed(u"%I64d", whole)
                            : decimals == 1 ? Printed(u"%I64d.%I64d", whole, fraction)
                                            : Printed(u"%I64d.%02I64d", whole, fraction);
    StringCchCopyW(buffer, capacity, (FormatByUserLocale(digits, decimals) + units[unit]).c_str());
    return buffer;
}
