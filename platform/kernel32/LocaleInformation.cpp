#include "platform/kernel32/LocaleInformation.h"

#include "com/WideText.h"

#include <algorithm>
#include <cstring>

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

std::optional<UINT> ReadNumber(const LocaleConventions &conventions, LCTYPE type)
{
    switch (type)
    {
    case LOCALE_IDIGITS:
        return DecimalDigits;
    case LOCALE_ILZERO:
        return LeadingZero;
    case LOCALE_INEGNUMBER:
        return NegativeOrder(conventions);
    default:
        return std::nullopt;
    }
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
    case LOCALE_SNEGATIVESIGN:
        return conventions.negativeSign;
    default:
        return std::nullopt;
    }
}

int Fail(DWORD error)
{
    SetLastError(error);
    return 0;
}

int CopyOut(const void *data, size_t length, WCHAR *buffer, int capacity)
{
    if (capacity == 0)
    {
        return static_cast<int>(length);
    }
    if (static_cast<size_t>(capacity) < length)
    {
        return Fail(ERROR_INSUFFICIENT_BUFFER);
    }
    std::memcpy(buffer, data, length * sizeof(WCHAR));
    return static_cast<int>(length);
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
    return conventions.signBehind ? 3 : 1;
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
    const LCTYPE item =
        type & ~static_cast<LCTYPE>(LOCALE_NOUSEROVERRIDE | LOCALE_USE_CP_ACP | LOCALE_RETURN_NUMBER);
    const auto number = ReadNumber(*conventions, item);
    if (type & LOCALE_RETURN_NUMBER)
    {
        const DWORD value = number.value_or(0);
        return number ? CopyOut(&value, sizeof(value) / sizeof(WCHAR), buffer, capacity)
                      : Fail(ERROR_INVALID_FLAGS);
    }
    const auto text = number ? NumberText(*number) : ReadText(*conventions, item);
    return text ? CopyOut(text->c_str(), text->size() + 1, buffer, capacity) : Fail(ERROR_INVALID_FLAGS);
}

BOOL WINAPI IsValidLocale(LCID locale, DWORD)
{
    return ConventionsOf(locale).has_value();
}
