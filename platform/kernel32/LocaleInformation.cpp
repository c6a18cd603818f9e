#include "platform/kernel32/LocaleInformation.h"

#include "com/WideText.h"

#include <algorithm>

namespace
{
WideText NumberText(UINT number)
{
    const auto text = std::to_string(number);
    return WideText(text.begin(), text.end());
}

// "3;0" for thousands, "3;2;0" for India's groups: the final 0 means that the group before it repeats.
WideText GroupingText(const LocaleConventions &conventions)
{
    if (conventions.firstGroup == 0)
    {
        return u"0;0";
    }
    WideText text = NumberText(conventions.firstGroup);
    if (conventions.furtherGroups != conventions.firstGroup)
    {
        text += u";" + NumberText(conventions.furtherGroups);
    }
    return text + u";0";
}

std::optional<WideText> ReadText(const LocaleConventions &conventions, LCTYPE type)
{
    switch (type)
    {
    case LOCALE_SDECIMAL:
        return conventions.decimalSeparator;
    case LOCALE_STHOUSAND:
        return conventions.thousandsSeparator;
    case LOCALE_SGROUPING:
        return GroupingText(conventions);
    case LOCALE_IDIGITS:
        return NumberText(DecimalDigits);
    case LOCALE_ILZERO:
        return NumberText(LeadingZero);
    case LOCALE_INEGNUMBER:
        return NumberText(NegativeOrder(conventions));
    default:
        return std::nullopt;
    }
}

int Fail(DWORD error)
{
    SetLastError(error);
    return 0;
}
} // namespace

std::optional<LocaleConventions> ConventionsOfLocale(LCID locale)
{
    switch (locale)
    {
    case LOCALE_NEUTRAL:
    case LOCALE_USER_DEFAULT:
    case LOCALE_SYSTEM_DEFAULT:
    case LOCALE_CUSTOM_DEFAULT:
    case LOCALE_CUSTOM_UNSPECIFIED:
    case LOCALE_CUSTOM_UI_DEFAULT:
        return UserConventions();
    default:
        return ConventionsOf(locale);
    }
}

UINT GroupingNumber(const LocaleConventions &conventions)
{
    return conventions.furtherGroups == conventions.firstGroup
               ? conventions.firstGroup
               : conventions.firstGroup * 10 + conventions.furtherGroups;
}

UINT NegativeOrder(const LocaleConventions &conventions)
{
    return conventions.signBehind ? SignBehind : SignAhead;
}

int WINAPI GetLocaleInfoW(LCID locale, LCTYPE type, WCHAR *buffer, int capacity)
{
    if (capacity < 0 || (capacity > 0 && buffer == nullptr))
    {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    const auto conventions = ConventionsOfLocale(locale);
    if (!conventions)
    {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    const auto text = ReadText(*conventions, type & ~static_cast<LCTYPE>(LOCALE_NOUSEROVERRIDE));
    if (!text)
    {
        return Fail(ERROR_INVALID_FLAGS);
    }
    const int length = static_cast<int>(text->size() + 1);
    if (capacity != 0 && capacity < length)
    {
        return Fail(ERROR_INSUFFICIENT_BUFFER);
    }
    std::copy_n(text->c_str(), capacity != 0 ? length : 0, buffer);
    return length;
}

BOOL WINAPI IsValidLocale(LCID locale, DWORD)
{
    return ConventionsOf(locale).has_value();
}
