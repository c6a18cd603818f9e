// Conversion of a VARIANT that holds a text to a whole number, in the user's decimal notation.
#include <windows.h>
#include <oleauto.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>

namespace
{
struct NumberType
{
    VARTYPE type;
    int64_t least;
    int64_t most;
};

constexpr NumberType NumberTypes[] = {
    {VT_I4, INT32_MIN, INT32_MAX},
    {VT_UI4, 0, UINT32_MAX},
    {VT_I8, INT64_MIN, INT64_MAX},
};

// Without blanks around it and without a plus sign, with a point before the decimals. What no number holds
// becomes a question mark.
std::string PlainNumber(BSTR text)
{
    WCHAR separator[4] = {};
    GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, separator, 4);
    std::string plain;
    for (UINT i = 0; i < SysStringLen(text); ++i)
    {
        plain += text[i] == separator[0]            ? '.'
                 : text[i] < 0x80 && text[i] != '.' ? static_cast<char>(text[i])
                                                    : '?';
    }
    constexpr char blanks[] = " \t\r\n";
    plain.erase(0, plain.find_first_not_of(blanks));
    plain.erase(plain.find_last_not_of(blanks) + 1);
    return plain.starts_with('+') ? plain.substr(1) : plain;
}

HRESULT ToWholeNumber(const std::string &text, int64_t &value)
{
    const char *const end = text.data() + text.size();
    // Read as a whole number if it is one: a double doesn't hold all of 64 bits.
    if (const auto [stop, error] = std::from_chars(text.data(), end, value); error == std::errc() && stop == end)
    {
        return S_OK;
    }
    double number = 0;
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error == std::errc::result_out_of_range)
    {
        return DISP_E_OVERFLOW;
    }
    if (error != std::errc() || stop != end || !std::isfinite(number))
    {
        return DISP_E_TYPEMISMATCH;
    }
    // To the nearest, halves to the even number.
    const double rounded = std::nearbyint(number);
    if (rounded < -0x1p63 || rounded >= 0x1p63)
    {
        return DISP_E_OVERFLOW;
    }
    value = static_cast<int64_t>(rounded);
    return S_OK;
}
} // namespace

// Of the types of a source only VT_BSTR is known, of those of a target VT_I4, VT_UI4 and VT_I8. A failure leaves
// the target as it was.
HRESULT WINAPI VariantChangeType(VARIANTARG *target, const VARIANTARG *source, USHORT, VARTYPE type)
{
    if (target == nullptr || source == nullptr)
    {
        return E_INVALIDARG;
    }
    for (const NumberType &known : NumberTypes)
    {
        if (known.type != type)
        {
            continue;
        }
        int64_t value = 0;
        HRESULT result =
            V_VT(source) == VT_BSTR ? ToWholeNumber(PlainNumber(V_BSTR(source)), value) : DISP_E_TYPEMISMATCH;
        result = SUCCEEDED(result) && (value < known.least || value > known.most) ? DISP_E_OVERFLOW : result;
        result = SUCCEEDED(result) ? VariantClear(target) : result;
        if (SUCCEEDED(result))
        {
            V_VT(target) = type;
            V_I8(target) = value; // its low half is the number of 32 bits
        }
        return result;
    }
    return DISP_E_BADVARTYPE;
}
