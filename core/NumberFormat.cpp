#include "core/NumberFormat.h"

#include "core/TextPieces.h"

#include <algorithm>
#include <charconv>
#include <iterator>

namespace
{
constexpr INT32 MostDecimals = 30;

bool IsKnownLocale(LCID locale)
{
    // LOCALE_NEUTRAL, 127 (invariant), the user's and the system's default and the three custom ones.
    static constexpr LCID Generic[] = {0, 127, 1024, 2048, 3072, 4096, 5120};
    return std::ranges::find(Generic, locale) != std::end(Generic) || IsValidLocale(locale, LCID_SUPPORTED);
}

bool ReadLocaleValues(LocaleNumberFormat &format)
{
    WCHAR buffer[16];
    const auto read = [&](LCTYPE type) {
        return GetLocaleInfoW(format.Locale, type, buffer, static_cast<int>(std::size(buffer))) != 0;
    };
    const auto readText = [&](LCTYPE type, WideText &text) {
        const bool found = read(type);
        if (found)
        {
            text = buffer;
        }
        return found;
    };
    const auto readNumber = [&](LCTYPE type, UINT32 &number) {
        const bool found = read(type);
        if (found)
        {
            number = static_cast<UINT32>(LeadingNumber(buffer));
        }
        return found;
    };
    return readText(LOCALE_SDECIMAL, format.DecimalSeparator) &&
           readText(LOCALE_STHOUSAND, format.ThousandSeparator) && readNumber(LOCALE_ILZERO, format.LeadingZero) &&
           readNumber(LOCALE_SGROUPING, format.Grouping) && readNumber(LOCALE_INEGNUMBER, format.NegativeOrder) &&
           readNumber(LOCALE_IDIGITS, format.NumDigits);
}

// Prints the number in ASCII, whatever the process's locale; false if it doesn't fit.
bool PrintPlain(NumberValue value, NumberKind kind, UINT32 decimals, char *first, char *last)
{
    std::to_chars_result result{};
    switch (kind)
    {
    case NUMBER_SIGNED:
        result = std::to_chars(first, last, value.Signed);
        break;
    case NUMBER_UNSIGNED:
        result = std::to_chars(first, last, value.Unsigned);
        break;
    case NUMBER_DOUBLE:
        result = std::to_chars(first, last, value.Double, std::chars_format::fixed, static_cast<int>(decimals));
        break;
    }
    if (result.ec != std::errc() || result.ptr == last)
    {
        return false;
    }
    *result.ptr = 0;
    return true;
}

HRESULT LastFailure()
{
    const HRESULT code = HRESULT_FROM_WIN32(GetLastError());
    return FAILED(code) ? code : E_FAIL;
}
} // namespace

NUMBERFMTW LocaleNumberFormat::PlatformForm() const noexcept
{
    return {NumDigits,
            LeadingZero,
            Grouping,
            const_cast<LPWSTR>(DecimalSeparator.c_str()),
            const_cast<LPWSTR>(ThousandSeparator.c_str()),
            NegativeOrder};
}

bool LoadLocaleFormat(LocaleNumberFormat &format, bool reload)
{
    if (!reload && format.IsLoaded())
    {
        return true;
    }
    format = LocaleNumberFormat(format.Locale);
    if (!IsKnownLocale(format.Locale))
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return false;
    }
    try
    {
        return ReadLocaleValues(format);
    }
    catch (const std::bad_alloc &)
    {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return false;
    }
}

HRESULT FormatNumber(LocaleNumberFormat &format, NumberValue value, NumberKind kind, INT32 decimals,
                     WCHAR (&text)[64])
{
    if (kind > NUMBER_DOUBLE || decimals < LocaleDecimals || decimals > MostDecimals)
    {
        return E_INVALIDARG;
    }
    text[0] = 0;
    if (!LoadLocaleFormat(format, false))
    {
        return LastFailure();
    }
    NUMBERFMTW platformForm = format.PlatformForm();
    if (kind != NUMBER_DOUBLE)
    {
        platformForm.NumDigits = 0;
    }
    else if (decimals != LocaleDecimals)
    {
        platformForm.NumDigits = static_cast<UINT>(decimals);
    }
    char plain[64] = {};
    if (!PrintPlain(value, kind, platformForm.NumDigits, std::begin(plain), std::end(plain)))
    {
        return HRESULT_FROM_WIN32(ERROR_INSUFFICIENT_BUFFER);
    }
    WCHAR wide[64];
    std::copy(std::begin(plain), std::end(plain), std::begin(wide));
    if (GetNumberFormatW(format.Locale, 0, wide, &platformForm, text, static_cast<int>(std::size(text))) == 0)
    {
        const HRESULT failure = LastFailure();
        text[0] = 0;
        return failure;
    }
    return S_OK;
}
