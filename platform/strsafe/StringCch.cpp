#include <strsafe.h>

#include "com/WideText.h"

#include <charconv>
#include <cstdint>

namespace
{
// Takes as much as the target holds.
class Output
{
public:
    Output(WCHAR *target, size_t capacity) : m_at(target), m_last(target + capacity - 1) {}

    void Add(WCHAR unit)
    {
        m_isCut = m_isCut || m_at == m_last;
        if (!m_isCut)
        {
            *m_at++ = unit;
        }
    }

    void AddText(const WCHAR *text)
    {
        for (const WCHAR *at = text != nullptr ? text : TEXT("(null)"); *at != 0 && !m_isCut; ++at)
        {
            Add(*at);
        }
    }

    template <class Number>
    void AddNumber(Number number, int base, int width)
    {
        char digits[24];
        const char *const end = std::to_chars(digits, digits + sizeof(digits), number, base).ptr;
        for (auto missing = width - (end - digits); missing > 0; --missing)
        {
            Add('0');
        }
        for (const char *at = digits; at != end; ++at)
        {
            Add(static_cast<WCHAR>(*at));
        }
    }

    HRESULT Finish()
    {
        *m_at = 0;
        return m_isCut ? STRSAFE_E_INSUFFICIENT_BUFFER : S_OK;
    }

private:
    WCHAR *m_at;
    WCHAR *const m_last;
    bool m_isCut = false;
};

// What stands between the percent sign and the letter.
struct Conversion
{
    int width = 0; // of a number, filled with zeros
    bool is64 = false;
};

Conversion TakeConversion(const WCHAR *&at)
{
    Conversion conversion;
    for (; *at >= '0' && *at <= '9'; ++at)
    {
        conversion.width = (conversion.width * 10 + (*at - '0')) % 100;
    }
    conversion.is64 = WideView(at).starts_with(TEXT("I64"));
    at += conversion.is64 ? 3 : *at == 'l' ? 1 : 0;
    return conversion;
}
} // namespace

HRESULT WINAPI StringCchVPrintfW(WCHAR *target, size_t capacity, const WCHAR *format, va_list arguments)
{
    if (capacity == 0 || capacity > STRSAFE_MAX_CCH)
    {
        return STRSAFE_E_INVALID_PARAMETER;
    }
    Output output(target, capacity);
    for (const WCHAR *at = format; *at != 0; ++at)
    {
        if (*at != '%')
        {
            output.Add(*at);
            continue;
        }
        const Conversion conversion = TakeConversion(++at);
        switch (*at)
        {
        case 's':
            output.AddText(va_arg(arguments, const WCHAR *));
            break;
        case 'd':
            output.AddNumber(conversion.is64 ? va_arg(arguments, int64_t) : va_arg(arguments, int32_t), 10,
                             conversion.width);
            break;
        case 'u':
        case 'x':
            output.AddNumber(conversion.is64 ? va_arg(arguments, uint64_t) : va_arg(arguments, uint32_t),
                             *at == 'x' ? 16 : 10, conversion.width);
            break;
        case '%':
            output.Add('%');
            break;
        default: // Unknown, and with it the types of the arguments that follow.
            output.Finish();
            return STRSAFE_E_INVALID_PARAMETER;
        }
    }
    return output.Finish();
}
