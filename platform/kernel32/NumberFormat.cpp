// A number's text by the conventions of a locale.
#include "platform/kernel32/LocaleInformation.h"

#include "com/WideText.h"

#include <algorithm>

namespace
{
struct DecimalText
{
    bool negative = false; // never of a zero
    WideText whole;
    WideText fraction;
};

// Digits, behind a hyphen if the number is negative; with decimals, a full stop and that many more.
std::optional<DecimalText> ParseDecimal(WideView text, UINT decimals)
{
    DecimalText number;
    const bool hasHyphen = text.starts_with(u'-');
    text.remove_prefix(hasHyphen);
    const size_t point = std::min(text.find(u'.'), text.size());
    number.whole = text.substr(0, point);
    number.fraction = text.substr(std::min(point + 1, text.size()));
    const WideText digits = number.whole + number.fraction;
    number.negative = hasHyphen && digits.find_first_not_of(u'0') != WideText::npos;
    return digits.find_first_not_of(u"0123456789") == WideText::npos && !number.whole.empty() &&
                   number.fraction.size() == decimals
               ? std::optional(std::move(number))
               : std::nullopt;
}

// grouping has a digit per group, the rightmost group first. The last one repeats, unless it is 0.
WideText Group(const WideText &whole, UINT grouping, WideView separator)
{
    const std::string sizes = std::to_string(grouping);
    WideText grouped;
    size_t end = whole.size();
    for (size_t index = 0; end > 0; ++index)
    {
        const size_t size = sizes[std::min(index, sizes.size() - 1)] - '0';
        const size_t start = size == 0 || size >= end ? 0 : end - size;
        grouped.insert(0, whole, start, end - start);
        if (start > 0)
        {
            grouped.insert(0, separator);
        }
        end = start;
    }
    return grouped;
}

int Fail(DWORD error)
{
    SetLastError(error);
    return 0;
}
} // namespace

// Only with a format, for a value with exactly its number of decimals and one digit at least ahead of them, and with
// the sign next to the number.
int WINAPI GetNumberFormatW(LCID locale, DWORD flags, const WCHAR *value, const NUMBERFMTW *format, WCHAR *buffer,
                            int capacity)
{
    const auto conventions = ConventionsOfLocale(locale);
    const auto number = format != nullptr ? ParseDecimal(value, format->NumDigits) : std::nullopt;
    if (!conventions || !number || flags != 0)
    {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    WideText text = Group(number->whole, format->Grouping, format->lpThousandSep);
    if (format->NumDigits > 0)
    {
        text += format->lpDecimalSep + number->fraction;
    }
    if (number->negative)
    {
        text = format->NegativeOrder == SignBehind ? text + conventions->negativeSign
                                                   : conventions->negativeSign + text;
    }
    const int length = static_cast<int>(text.size() + 1);
    if (capacity < length)
    {
        return Fail(ERROR_INSUFFICIENT_BUFFER);
    }
    std::copy_n(text.c_str(), length, buffer);
    return length;
}
