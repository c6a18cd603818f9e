// Conversion of a VARIANT that holds the text of a whole number to that number.
#include <windows.h>
#include <oleauto.h>

#include <algorithm>
#include <charconv>
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

// Blanks may stand around the number, and a plus sign before it.
HRESULT ToWholeNumber(BSTR text, int64_t &value)
{
    std::string digits(SysStringLen(text), '?');
    std::transform(text, text + digits.size(), digits.begin(),
                   [](WCHAR c) { return c < 0x80 ? static_cast<char>(c) : '?'; });
    constexpr char blanks[] = " \t\r\n";
    digits.erase(0, digits.find_first_not_of(blanks));
    digits.erase(digits.find_last_not_of(blanks) + 1);
    const char *const end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data() + digits.starts_with('+'), end, value);
    return error == std::errc::result_out_of_range ? DISP_E_OVERFLOW
           : error == std::errc() && stop == end   ? S_OK
                                                   : DISP_E_TYPEMISMATCH;
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
        HRESULT result = V_VT(source) == VT_BSTR ? ToWholeNumber(V_BSTR(source), value) : DISP_E_TYPEMISMATCH;
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
