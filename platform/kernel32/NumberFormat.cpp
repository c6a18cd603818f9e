// A number's text by the conventions of a locale.
#include "platform/kernel32/LocaleInformation.h"

#include "com/WideText.h"

#include <algorithm>

namespace
{
bool IsDigit(WCHAR c)
{
    return c >= '0' && c <= '9';
}

struct DecimalText
{
    bool negative = false;
    WideText whole;
    WideText fraction;
};

// Accepts digits with at most one full stop among them, after a hyphen if the number is negative.
std::optional<DecimalText> ParseDecimal(WideView text)
{
    DecimalText number;
    number.negative = !text.empty() && text[0] == '-';
    text.remove_prefix(number.negative);
    const size_t point = text.find('.');
    number.whole = text.substr(0, point);
    number.fraction = point == WideView::npos ? WideView() : text.substr(point + 1);
    if (!std::all_of(number.whole.begin(), number.whole.end(), IsDigit) ||
        !std::all_of(number.fraction.begin(), number.fraction.end(), IsDigit) ||
        number.whole.size() + number.fraction.size() == 0)
    {
        return std::nullopt;
    }
    return number;
}

// Adds one at the last place of the digits.
void Increment(WideText &digits)
{
    for (auto at = digits.rbegin(); at != digits.rend(); ++at)
    {
        if (*at != '9')
        {
            ++*at;
            return;
        }
        *at = '0';
    }
    digits.insert(digits.begin(), '1');
}

// Rounds to that many decimals, halves away from zero. A result of zero has no sign.
void Round(DecimalText &number, size_t decimals)
{
    const bool up = number.fraction.size() > decimals && number.fraction[decimals] >= '5';
    number.fraction.resize(decimals, '0');
    WideText digits = number.whole + number.fraction;
    if (up)
    {
        Increment(digits);
    }
    number.whole = digits.substr(0, digits.size() - decimals);
    number.fraction = digits.substr(digits.size() - decimals);
    number.whole.erase(0, std::min(number.whole.find_first_not_of('0'), number.whole.size()));
    number.negative = number.negative && digits.find_first_not_of('0') != WideText::npos;
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

WideText ApplySign(const WideText &text, UINT order, const WideText &sign)
{
    switch (order)
    {
    case 0:
        return u"(" + text + u")";
    case 2:
        return sign + u" " + text;
    case 3:
        return text + sign;
    case 4:
        return text + u" " + sign;
    default:
        return sign + text;
    }
}

bool IsValidFormat(const NUMBERFMTW &format)
{
    return format.LeadingZero <= 1 && format.NegativeOrder <= 4 && format.lpDecimalSep != nullptr &&
           format.lpThousandSep != nullptr;
}

int Fail(DWORD error)
{
    SetLastError(error);
    return 0;
}
} // namespace

int WINAPI GetNumberFormatW(LCID locale, DWORD flags, const WCHAR *value, const NUMBERFMTW *format, WCHAR *buffer,
                            int capacity)
{
    if (capacity < 0 || (capacity > 0 && buffer == nullptr) || value == nullptr)
    {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    auto conventions = ConventionsOfLocale(locale);
    if (!conventions || (format != nullptr && !IsValidFormat(*format)))
    {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    if ((flags & ~static_cast<DWORD>(LOCALE_NOUSEROVERRIDE)) != 0 || (format != nullptr && flags != 0))
    {
        return Fail(ERROR_INVALID_FLAGS);
    }
    auto number = ParseDecimal(value);
    if (!number)
    {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    const NUMBERFMTW applied = format != nullptr ? *format
                                                 : NUMBERFMTW{DecimalDigits,
                                                              LeadingZero,
                                                              GroupingNumber(*conventions),
                                                              conventions->decimalSeparator.data(),
                                                              conventions->thousandsSeparator.data(),
                                                              NegativeOrder(*conventions)};
    Round(*number, applied.NumDigits);
    WideText text = Group(number->whole, applied.Grouping, applied.lpThousandSep);
    if (text.empty() && (applied.LeadingZero != 0 || applied.NumDigits == 0))
    {
        text = u"0";
    }
    if (applied.NumDigits > 0)
    {
        text += applied.lpDecimalSep + number->fraction;
    }
    if (number->negative)
    {
        text = ApplySign(text, applied.NegativeOrder, conventions->negativeSign);
    }
    const int length = static_cast<int>(text.size() + 1);
    if (capacity == 0)
    {
        return length;
    }
    if (capacity < length)
    {
        return Fail(ERROR_INSUFFICIENT_BUFFER);
    }
    std::copy_n(text.c_str(), length, buffer);
    return length;
}
