#include "platform/strsafe/WideFormat.h"

#include "com/WideText.h"
#include "platform/kernel32/Utf8.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>

namespace
{
enum class Size
{
    Byte,
    Short,
    Default,
    Long,
    Int64,
};

struct Conversion
{
    bool left = false;
    bool plus = false;
    bool blank = false;
    bool alternate = false;
    bool zeros = false;
    int width = 0;
    int precision = -1;
    Size size = Size::Default;
    WCHAR letter = 0;
};

struct Prefix
{
    WideView pattern;
    Size size;
};

// A prefix that begins with another one stands before it, since the first match counts.
constexpr Prefix SizePrefixes[] = {
    {u"I64", Size::Int64}, {u"I32", Size::Long}, {u"I", Size::Int64}, {u"hh", Size::Byte},
    {u"h", Size::Short},   {u"ll", Size::Int64}, {u"l", Size::Long},  {u"w", Size::Long},
    {u"L", Size::Default}, {u"z", Size::Int64},  {u"j", Size::Int64}, {u"t", Size::Int64},
};

class Formatter
{
public:
    Formatter(WCHAR *target, size_t capacity, va_list arguments) : m_target(target), m_capacity(capacity)
    {
        va_copy(m_arguments, arguments);
    }
    ~Formatter() { va_end(m_arguments); }
    Formatter(const Formatter &) = delete;
    Formatter &operator=(const Formatter &) = delete;

    size_t Run(const WCHAR *format);

private:
    Conversion Parse(const WCHAR *&at);
    int ParseNumber(const WCHAR *&at);
    void Convert(const Conversion &conversion);
    void WriteSigned(const Conversion &conversion);
    void WriteUnsigned(const Conversion &conversion, unsigned base);
    void WriteFloat(const Conversion &conversion);
    void WriteWideString(const Conversion &conversion);
    void WriteNarrowString(const Conversion &conversion);
    void WriteNumber(const Conversion &conversion, WideView sign, WideView digits, bool zeros);
    void WritePadded(const Conversion &conversion, WideView text);
    int64_t TakeSigned(Size size);
    uint64_t TakeUnsigned(Size size);

    void Write(WCHAR c)
    {
        if (m_length < m_capacity)
        {
            m_target[m_length] = c;
        }
        ++m_length;
    }
    void Write(WideView text)
    {
        for (WCHAR c : text)
        {
            Write(c);
        }
    }
    void Fill(WCHAR c, size_t count)
    {
        for (; count > 0; --count)
        {
            Write(c);
        }
    }

    WCHAR *m_target;
    size_t m_capacity;
    size_t m_length = 0;
    va_list m_arguments;
};

size_t Formatter::Run(const WCHAR *format)
{
    for (const WCHAR *at = format; *at != 0;)
    {
        if (*at != '%')
        {
            Write(*at++);
            continue;
        }
        ++at;
        const Conversion conversion = Parse(at);
        if (conversion.letter == 0)
        {
            break;
        }
        Convert(conversion);
    }
    return m_length;
}

int Formatter::ParseNumber(const WCHAR *&at)
{
    constexpr int limit = 0x1000000;
    int number = 0;
    for (; *at >= '0' && *at <= '9'; ++at)
    {
        number = std::min(number * 10 + (*at - '0'), limit);
    }
    return number;
}

Conversion Formatter::Parse(const WCHAR *&at)
{
    Conversion conversion;
    for (bool flag = true; flag;)
    {
        switch (*at)
        {
        case '-':
            conversion.left = true;
            break;
        case '+':
            conversion.plus = true;
            break;
        case ' ':
            conversion.blank = true;
            break;
        case '#':
            conversion.alternate = true;
            break;
        case '0':
            conversion.zeros = true;
            break;
        default:
            flag = false;
            continue;
        }
        ++at;
    }
    if (*at == '*')
    {
        ++at;
        const int width = va_arg(m_arguments, int);
        conversion.left = conversion.left || width < 0;
        conversion.width = width == INT_MIN ? INT_MAX : std::abs(width);
    }
    else
    {
        conversion.width = ParseNumber(at);
    }
    if (*at == '.')
    {
        ++at;
        const bool given = *at == '*';
        at += given;
        const int precision = given ? va_arg(m_arguments, int) : ParseNumber(at);
        conversion.precision = std::max(precision, -1);
    }
    for (const Prefix &prefix : SizePrefixes)
    {
        if (std::equal(prefix.pattern.begin(), prefix.pattern.end(), at,
                       [](WCHAR wanted, WCHAR found) { return found != 0 && wanted == found; }))
        {
            conversion.size = prefix.size;
            at += prefix.pattern.size();
            break;
        }
    }
    conversion.letter = *at;
    at += conversion.letter != 0;
    return conversion;
}

// Without a size prefix %s and %c are wide, %S and %C narrow; h means narrow and l wide for all of them.
bool IsNarrow(const Conversion &conversion, WCHAR capital)
{
    return conversion.size == Size::Short || (conversion.letter == capital && conversion.size != Size::Long);
}

void Formatter::Convert(const Conversion &conversion)
{
    switch (conversion.letter)
    {
    case 'd':
    case 'i':
        WriteSigned(conversion);
        break;
    case 'u':
        WriteUnsigned(conversion, 10);
        break;
    case 'o':
        WriteUnsigned(conversion, 8);
        break;
    case 'x':
    case 'X':
        WriteUnsigned(conversion, 16);
        break;
    case 'p':
    {
        Conversion pointer = conversion;
        pointer.letter = 'X';
        pointer.size = Size::Int64;
        pointer.precision = 16;
        WriteUnsigned(pointer, 16);
        break;
    }
    case 'f':
    case 'F':
    case 'e':
    case 'E':
    case 'g':
    case 'G':
        WriteFloat(conversion);
        break;
    case 'c':
    case 'C':
    {
        const bool narrow = IsNarrow(conversion, 'C');
        const int value = va_arg(m_arguments, int);
        const WCHAR c = static_cast<WCHAR>(narrow ? value & 0xFF : value);
        WritePadded(conversion, WideView(&c, 1));
        break;
    }
    case 's':
    case 'S':
        IsNarrow(conversion, 'S') ? WriteNarrowString(conversion) : WriteWideString(conversion);
        break;
    case 'n':
        break;
    default:
        Write(conversion.letter);
        break;
    }
}

int64_t Formatter::TakeSigned(Size size)
{
    switch (size)
    {
    case Size::Byte:
        return static_cast<signed char>(va_arg(m_arguments, int));
    case Size::Short:
        return static_cast<short>(va_arg(m_arguments, int));
    case Size::Int64:
        return va_arg(m_arguments, long long);
    default:
        return va_arg(m_arguments, int);
    }
}

uint64_t Formatter::TakeUnsigned(Size size)
{
    switch (size)
    {
    case Size::Byte:
        return static_cast<unsigned char>(va_arg(m_arguments, int));
    case Size::Short:
        return static_cast<unsigned short>(va_arg(m_arguments, int));
    case Size::Int64:
        return va_arg(m_arguments, unsigned long long);
    default:
        return va_arg(m_arguments, unsigned);
    }
}

// The digits, padded with zeros to `precision` places; none for a zero with precision 0.
WideText IntegerDigits(uint64_t value, unsigned base, bool capitals, int precision)
{
    const char *const letters = capitals ? "0123456789ABCDEF" : "0123456789abcdef";
    WideText digits;
    for (; value != 0; value /= base)
    {
        digits.insert(digits.begin(), static_cast<WCHAR>(letters[value % base]));
    }
    const size_t places = precision < 0 ? 1 : static_cast<size_t>(precision);
    if (digits.size() < places)
    {
        digits.insert(0, places - digits.size(), '0');
    }
    return digits;
}

WideView SignOf(const Conversion &conversion, bool negative)
{
    return negative ? u"-" : conversion.plus ? u"+" : conversion.blank ? u" " : u"";
}

void Formatter::WriteSigned(const Conversion &conversion)
{
    const int64_t value = TakeSigned(conversion.size);
    const uint64_t magnitude = value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
    WriteNumber(conversion, SignOf(conversion, value < 0),
                IntegerDigits(magnitude, 10, false, conversion.precision), conversion.precision < 0);
}

void Formatter::WriteUnsigned(const Conversion &conversion, unsigned base)
{
    const uint64_t value = TakeUnsigned(conversion.size);
    const bool capitals = conversion.letter == 'X';
    WideText digits = IntegerDigits(value, base, capitals, conversion.precision);
    WideView prefix;
    if (conversion.alternate && base == 16 && value != 0)
    {
        prefix = capitals ? u"0X" : u"0x";
    }
    if (conversion.alternate && base == 8 && (digits.empty() || digits[0] != '0'))
    {
        digits.insert(0, 1, '0');
    }
    WriteNumber(conversion, prefix, digits, conversion.precision < 0);
}

void Formatter::WriteFloat(const Conversion &conversion)
{
    const double value = va_arg(m_arguments, double);
    const bool capitals = conversion.letter < 'a';
    const WCHAR kind = capitals ? conversion.letter + ('a' - 'A') : conversion.letter;
    const auto style = kind == 'f'   ? std::chars_format::fixed
                       : kind == 'e' ? std::chars_format::scientific
                                     : std::chars_format::general;
    const int precision = conversion.precision < 0 ? 6 : conversion.precision;
    // Room for the largest double in full and every decimal asked for.
    std::string text(static_cast<size_t>(precision) + 400, '\0');
    const auto end = std::to_chars(text.data(), text.data() + text.size(), std::fabs(value), style, precision);
    text.resize(static_cast<size_t>(end.ptr - text.data()));
    WideText digits(text.begin(), text.end());
    if (conversion.alternate && std::isfinite(value) && digits.find('.') == WideText::npos && kind != 'g')
    {
        digits.insert(std::min(digits.find('e'), digits.size()), 1, '.');
    }
    if (capitals)
    {
        std::transform(digits.begin(), digits.end(), digits.begin(),
                       [](WCHAR c) { return static_cast<WCHAR>(c >= 'a' && c <= 'z' ? c - 32 : c); });
    }
    WriteNumber(conversion, SignOf(conversion, std::signbit(value)), digits, std::isfinite(value));
}

// zeros: whether the 0 flag has an effect on this number.
void Formatter::WriteNumber(const Conversion &conversion, WideView sign, WideView digits, bool zeros)
{
    const size_t length = sign.size() + digits.size();
    const size_t padding = static_cast<size_t>(conversion.width) > length ? conversion.width - length : 0;
    const bool zeroFill = conversion.zeros && zeros && !conversion.left;
    if (!conversion.left && !zeroFill)
    {
        Fill(' ', padding);
    }
    Write(sign);
    if (zeroFill)
    {
        Fill('0', padding);
    }
    Write(digits);
    if (conversion.left)
    {
        Fill(' ', padding);
    }
}

void Formatter::WritePadded(const Conversion &conversion, WideView text)
{
    WriteNumber(conversion, WideView(), text, false);
}

void Formatter::WriteWideString(const Conversion &conversion)
{
    const WCHAR *text = va_arg(m_arguments, const WCHAR *);
    if (text == nullptr)
    {
        text = u"(null)";
    }
    size_t length = 0;
    while ((conversion.precision < 0 || length < static_cast<size_t>(conversion.precision)) && text[length] != 0)
    {
        ++length;
    }
    WritePadded(conversion, WideView(text, length));
}

void Formatter::WriteNarrowString(const Conversion &conversion)
{
    const char *text = va_arg(m_arguments, const char *);
    if (text == nullptr)
    {
        text = "(null)";
    }
    // As on Windows the precision limits the bytes that are read, not the characters written.
    const size_t length = conversion.precision < 0 ? std::strlen(text) : strnlen(text, conversion.precision);
    WritePadded(conversion, FromUtf8({text, length}));
}
} // namespace

size_t FormatWide(WCHAR *target, size_t capacity, const WCHAR *format, va_list arguments)
{
    return Formatter(target, capacity, arguments).Run(format);
}
