#include "settings/OutputSize.h"

#include "core/StringTable.h"
#include "core/TextPieces.h"
#include "resources/resource.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <regex>
#include <string>

namespace
{
constexpr double InchesPerCentimetre = 0.39370078740157477;
constexpr double ScreenDpi = 300.0;

struct PrintRange
{
    double Smallest;
    double Largest;
    double DpiAtSmallest;
    double DpiAtLargest;
};
constexpr PrintRange InchRange{4.0, 30.0, 330.0, 180.0};
constexpr PrintRange CentimetreRange{10.0, 76.0, 330.0, 180.0};

LocaleNumberFormat UserFormat()
{
    LocaleNumberFormat format;
    LoadLocaleFormat(format, true);
    return format;
}

WideText Prepare(WideView text, const LocaleNumberFormat &format)
{
    WideText prepared(text);
    std::erase_if(prepared, IsWhiteSpace);
    if (!format.ThousandSeparator.empty())
    {
        std::erase(prepared, format.ThousandSeparator.front());
    }
    return prepared;
}

// The standard library has regular expressions for wchar_t, which natively isn't WCHAR. Units map one to one, so
// positions in the text stay the same.
std::wstring Widen(WideView text)
{
    return std::wstring(text.begin(), text.end());
}

std::wstring DecimalSeparator(const LocaleNumberFormat &format)
{
    return format.DecimalSeparator.empty() ? L"." : Widen(format.DecimalSeparator);
}

std::wstring EscapeForExpression(const std::wstring &text)
{
    std::wstring escaped;
    for (wchar_t character : text)
    {
        if (std::wstring_view(L"^$\\.*+?()[]{}|").find(character) != std::wstring_view::npos)
        {
            escaped.push_back(L'\\');
        }
        escaped.push_back(character);
    }
    return escaped;
}

std::wregex SizeExpression(const std::wstring &separator)
{
    return std::wregex(L"([0-9]+" + EscapeForExpression(separator) +
                           L"{0,1}[0-9]*){1}(px|pix|pixel|pixels|\"|in|inch|inches|cm){0,1}(.*)",
                       std::regex::ECMAScript | std::regex::icase);
}

double ToNumber(std::wstring digits, const std::wstring &separator)
{
    const size_t at = digits.find(separator);
    if (at != std::wstring::npos)
    {
        digits.replace(at, separator.size(), L".");
    }
    // The expression lets only ASCII through.
    const std::string plain(digits.begin(), digits.end());
    double number = 0;
    const auto read = std::from_chars(plain.data(), plain.data() + plain.size(), number);
    if (read.ec == std::errc::result_out_of_range)
    {
        // Too large, or too close to 0 if only zeros come before the point.
        const bool isLarge = plain.find_first_not_of('0') < plain.find('.');
        return isLarge ? std::numeric_limits<double>::max() : 0;
    }
    return number;
}

OutputSizeUnit UnitOf(wchar_t first)
{
    switch (first)
    {
    case L'"':
    case L'i':
    case L'I':
        return UNIT_INCHES;
    case L'c':
    case L'C':
        return UNIT_CENTIMETRES;
    default:
        return UNIT_PIXELS;
    }
}

INT32 CutToPixels(double pixels)
{
    return pixels >= std::numeric_limits<INT32>::max() ? std::numeric_limits<INT32>::max()
                                                       : static_cast<INT32>(pixels);
}

WideText Original()
{
    return LoadStringOrPlaceholder(IDS_SIZE_ORIGINAL);
}
} // namespace

bool ParseOutputSize(WideView text, double &number, OutputSizeUnit &unit, const LocaleNumberFormat &format)
{
    number = 0;
    unit = UNIT_PIXELS;
    const std::wstring subject = Widen(text.substr(0, OutputSizeReadLimit));
    const std::wstring separator = DecimalSeparator(format);
    std::wsmatch match;
    if (!std::regex_match(subject, match, SizeExpression(separator)))
    {
        return false;
    }
    number = ToNumber(match[1].str(), separator);
    if (match[2].length() != 0)
    {
        unit = UnitOf(*match[2].first);
    }
    return true;
}

WideText NormalizeOutputSize(WideView text, UINT wordId, LocaleNumberFormat &format)
{
    double number;
    OutputSizeUnit unit;
    if (!ParseOutputSize(Prepare(text, format), number, unit, format) || number == 0)
    {
        return Original();
    }
    if (unit == UNIT_PIXELS)
    {
        number = std::floor(number);
    }
    const bool hasFraction = number != std::floor(number);
    WCHAR digits[64];
    if (FAILED(FormatNumber(format, {.Double = number}, NUMBER_DOUBLE, hasFraction ? 1 : 0, digits)))
    {
        return Original();
    }
    static constexpr const WCHAR *UnitWords[] = {TEXT(" px"), TEXT("\" "), TEXT(" cm ")};
    WideText result = WideText(digits) + UnitWords[unit];
    if (unit != UNIT_PIXELS)
    {
        result += LoadStringOrPlaceholder(wordId);
    }
    return result;
}

void NormalizeOutputSize(WCHAR *buffer, size_t capacity, UINT wordId)
{
    if (capacity == 0)
    {
        return;
    }
    LocaleNumberFormat format = UserFormat();
    const WideText normalized = NormalizeOutputSize(buffer, wordId, format);
    buffer[normalized.copy(buffer, capacity - 1)] = 0;
}

INT32 OutputSizeToPixels(WideView text, double &dpi, OutputSizeUnit &unit)
{
    return OutputSizeToPixels(text, dpi, unit, UserFormat());
}

INT32 OutputSizeToPixels(WideView text, double &dpi, OutputSizeUnit &unit, const LocaleNumberFormat &format)
{
    double number;
    ParseOutputSize(Prepare(text, format), number, unit, format);
    if (unit == UNIT_PIXELS)
    {
        dpi = ScreenDpi;
        return CutToPixels(number);
    }
    const PrintRange &range = unit == UNIT_INCHES ? InchRange : CentimetreRange;
    dpi = PrintResolution(number, range.Smallest, range.Largest, range.DpiAtSmallest, range.DpiAtLargest);
    const double pixels = unit == UNIT_INCHES ? dpi * number : dpi * number * InchesPerCentimetre;
    return CutToPixels(pixels + 0.5);
}

double PrintResolution(double size, double smallest, double largest, double dpiAtSmallest, double dpiAtLargest)
{
    if (dpiAtSmallest == dpiAtLargest)
    {
        return dpiAtSmallest;
    }
    if (smallest == largest)
    {
        return (dpiAtSmallest + dpiAtLargest) * 0.5;
    }
    const auto [low, high] = std::minmax(smallest, largest);
    if (size <= low)
    {
        return dpiAtSmallest;
    }
    if (size >= high)
    {
        return dpiAtLargest;
    }
    return dpiAtSmallest + (size - low) * (dpiAtLargest - dpiAtSmallest) / (high - low);
}
