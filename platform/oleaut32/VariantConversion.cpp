// Conversion between the types of a VARIANT: whole and floating numbers, truth values, texts and
// interface pointers. Numbers in texts have the user's decimal separator.
#include <windows.h>
#include <oleauto.h>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

namespace
{
struct IntegerRange
{
    VARTYPE type;
    double least;
    double most;
};

constexpr IntegerRange IntegerRanges[] = {
    {VT_I1, -128, 127},
    {VT_UI1, 0, 255},
    {VT_I2, -32768, 32767},
    {VT_UI2, 0, 65535},
    {VT_I4, -2147483648.0, 2147483647},
    {VT_INT, -2147483648.0, 2147483647},
    {VT_UI4, 0, 4294967295.0},
    {VT_UINT, 0, 4294967295.0},
};

// Texts and numbers of up to 32 bits all fit a double exactly.
struct Number
{
    HRESULT result;
    double value;
};

char16_t DecimalSeparator()
{
    WCHAR text[4] = {};
    GetLocaleInfoW(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL, text, 4);
    return text[0] ? text[0] : u'.';
}

std::string_view Trim(std::string_view text)
{
    const size_t start = text.find_first_not_of(" \t\r\n");
    return start == std::string_view::npos ? std::string_view()
                                           : text.substr(start, text.find_last_not_of(" \t\r\n") - start + 1);
}

Number NumberOfText(BSTR text)
{
    std::string plain;
    const char16_t separator = DecimalSeparator();
    for (UINT i = 0; i < SysStringLen(text); ++i)
    {
        plain += text[i] == separator ? '.' : text[i] < 0x80 && text[i] != u'.' ? static_cast<char>(text[i]) : '?';
    }
    std::string_view trimmed = Trim(plain);
    if (trimmed.starts_with('+'))
    {
        trimmed.remove_prefix(1);
    }
    double value = 0;
    const auto [end, error] = std::from_chars(trimmed.data(), trimmed.data() + trimmed.size(), value);
    if (error == std::errc::result_out_of_range)
    {
        return {DISP_E_OVERFLOW, 0};
    }
    const bool whole = error == std::errc() && end == trimmed.data() + trimmed.size() && std::isfinite(value);
    return whole ? Number{S_OK, value} : Number{DISP_E_TYPEMISMATCH, 0};
}

Number NumberOf(const VARIANTARG &source)
{
    switch (V_VT(&source))
    {
    case VT_EMPTY:
        return {S_OK, 0};
    case VT_I1:
        return {S_OK, static_cast<double>(V_I1(&source))};
    case VT_UI1:
        return {S_OK, static_cast<double>(V_UI1(&source))};
    case VT_I2:
        return {S_OK, static_cast<double>(V_I2(&source))};
    case VT_UI2:
        return {S_OK, static_cast<double>(V_UI2(&source))};
    case VT_I4:
    case VT_INT:
        return {S_OK, static_cast<double>(V_I4(&source))};
    case VT_UI4:
    case VT_UINT:
        return {S_OK, static_cast<double>(V_UI4(&source))};
    case VT_R4:
        return {S_OK, V_R4(&source)};
    case VT_R8:
        return {S_OK, V_R8(&source)};
    case VT_BOOL:
        return {S_OK, V_BOOL(&source) ? -1.0 : 0.0};
    case VT_BSTR:
        return NumberOfText(V_BSTR(&source));
    default:
        return {DISP_E_TYPEMISMATCH, 0};
    }
}

std::optional<bool> TruthOfText(BSTR text)
{
    static constexpr struct
    {
        const char16_t *word;
        bool truth;
    } words[] = {{u"true", true}, {u"false", false}, {u"#true#", true}, {u"#false#", false}};
    std::u16string lower(text ? text : u"", SysStringLen(text));
    for (char16_t &unit : lower)
    {
        unit += unit >= u'A' && unit <= u'Z' ? 32 : 0;
    }
    for (const auto &entry : words)
    {
        if (lower == entry.word)
        {
            return entry.truth;
        }
    }
    return std::nullopt;
}

HRESULT ToInteger(const VARIANTARG &source, const IntegerRange &range, VARIANT &result)
{
    const Number number = NumberOf(source);
    // To the nearest, halves to the even number.
    const double rounded = std::nearbyint(number.value);
    if (FAILED(number.result) || rounded < range.least || rounded > range.most)
    {
        return FAILED(number.result) ? number.result : DISP_E_OVERFLOW;
    }
    const auto whole = static_cast<int64_t>(rounded);
    V_I8(&result) = 0;
    switch (range.type)
    {
    case VT_I1:
    case VT_UI1:
        V_UI1(&result) = static_cast<BYTE>(whole);
        break;
    case VT_I2:
    case VT_UI2:
        V_UI2(&result) = static_cast<USHORT>(whole);
        break;
    default:
        V_UI4(&result) = static_cast<ULONG>(whole);
    }
    return S_OK;
}

// A double can't hold every number of 64 bits, so text of plain digits is read as a whole number.
bool Integer64OfText(BSTR text, int64_t &value)
{
    std::string plain;
    for (UINT i = 0; i < SysStringLen(text); ++i)
    {
        plain += text[i] < 0x80 ? static_cast<char>(text[i]) : '?';
    }
    std::string_view trimmed = Trim(plain);
    if (trimmed.starts_with('+'))
    {
        trimmed.remove_prefix(1);
    }
    const auto [end, error] = std::from_chars(trimmed.data(), trimmed.data() + trimmed.size(), value);
    return error == std::errc() && end == trimmed.data() + trimmed.size();
}

HRESULT ToInteger64(const VARIANTARG &source, VARIANT &result)
{
    int64_t value = 0;
    if (V_VT(&source) == VT_BSTR && Integer64OfText(V_BSTR(&source), value))
    {
        V_I8(&result) = value;
        return S_OK;
    }
    const Number number = NumberOf(source);
    const double rounded = std::nearbyint(number.value);
    if (FAILED(number.result) || rounded < -0x1p63 || rounded >= 0x1p63)
    {
        return FAILED(number.result) ? number.result : DISP_E_OVERFLOW;
    }
    V_I8(&result) = static_cast<int64_t>(rounded);
    return S_OK;
}

HRESULT ToTruth(const VARIANTARG &source, VARIANT &result)
{
    if (const auto truth = V_VT(&source) == VT_BSTR ? TruthOfText(V_BSTR(&source)) : std::nullopt)
    {
        V_BOOL(&result) = *truth ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    }
    const Number number = NumberOf(source);
    V_BOOL(&result) = number.value != 0 ? VARIANT_TRUE : VARIANT_FALSE;
    return number.result;
}

HRESULT ToText(const VARIANTARG &source, USHORT flags, VARIANT &result)
{
    std::u16string text;
    if (V_VT(&source) == VT_BOOL && (flags & VARIANT_ALPHABOOL))
    {
        text = V_BOOL(&source) ? u"True" : u"False";
    }
    else if (V_VT(&source) != VT_EMPTY)
    {
        const Number number = NumberOf(source);
        if (FAILED(number.result))
        {
            return number.result;
        }
        char digits[64];
        std::snprintf(digits, sizeof(digits), "%.*G", V_VT(&source) == VT_R4 ? 7 : 15, number.value);
        for (const char *digit = digits; *digit; ++digit)
        {
            text += *digit == '.' ? DecimalSeparator() : static_cast<char16_t>(*digit);
        }
    }
    V_BSTR(&result) = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    return V_BSTR(&result) ? S_OK : E_OUTOFMEMORY;
}

HRESULT ToInterface(const VARIANTARG &source, REFIID iid, VARIANT &result)
{
    V_UNKNOWN(&result) = nullptr;
    if (V_VT(&source) != VT_UNKNOWN && V_VT(&source) != VT_DISPATCH)
    {
        return DISP_E_TYPEMISMATCH;
    }
    return V_UNKNOWN(&source)
               ? V_UNKNOWN(&source)->QueryInterface(iid, reinterpret_cast<void **>(&V_UNKNOWN(&result)))
               : S_OK;
}

HRESULT Convert(const VARIANTARG &source, USHORT flags, VARTYPE type, VARIANT &result)
{
    V_VT(&result) = type;
    if (V_VT(&source) == type)
    {
        V_VT(&result) = VT_EMPTY;
        return VariantCopy(&result, &source);
    }
    for (const IntegerRange &range : IntegerRanges)
    {
        if (range.type == type)
        {
            return ToInteger(source, range, result);
        }
    }
    switch (type)
    {
    case VT_I8:
        return ToInteger64(source, result);
    case VT_BSTR:
        return ToText(source, flags, result);
    case VT_BOOL:
        return ToTruth(source, result);
    case VT_R4:
    case VT_R8:
    {
        const Number number = NumberOf(source);
        type == VT_R4 ? void(V_R4(&result) = static_cast<float>(number.value))
                      : void(V_R8(&result) = number.value);
        return SUCCEEDED(number.result) && type == VT_R4 && !std::isfinite(V_R4(&result)) ? DISP_E_OVERFLOW
                                                                                          : number.result;
    }
    case VT_UNKNOWN:
        return ToInterface(source, __uuidof(IUnknown), result);
    case VT_DISPATCH:
        return ToInterface(source, __uuidof(IDispatch), result);
    case VT_EMPTY:
    case VT_NULL:
        return DISP_E_TYPEMISMATCH;
    default:
        return DISP_E_BADVARTYPE;
    }
}
} // namespace

// A failure leaves the target as it was.
HRESULT WINAPI VariantChangeType(VARIANTARG *target, const VARIANTARG *source, USHORT flags, VARTYPE type)
{
    if (target == nullptr || source == nullptr)
    {
        return E_INVALIDARG;
    }
    VARIANT result;
    const HRESULT converted = Convert(*source, flags, type, result);
    if (FAILED(converted))
    {
        return converted;
    }
    const HRESULT cleared = VariantClear(target);
    if (FAILED(cleared))
    {
        VariantClear(&result);
        return cleared;
    }
    *target = result;
    return S_OK;
}
