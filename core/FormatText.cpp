#include "core/FormatText.h"

#include "com/Hresult.h"

#include <windows.h>
#include <strsafe.h>

namespace
{
// Far above any log line. Ends the loop for a format that the formatter fails on at every size.
constexpr size_t LongestText = size_t{1} << 26;
} // namespace

WideText FormatText(const WCHAR *format, ...)
{
    struct Arguments
    {
        va_list list;
        ~Arguments() { va_end(list); }
    } arguments;
    va_start(arguments.list, format);
    return FormatTextV(format, arguments.list);
}

WideText FormatTextV(const WCHAR *format, va_list arguments)
{
    for (size_t capacity = 256; capacity <= LongestText; capacity *= 4)
    {
        WideText text(capacity, 0);
        va_list copy;
        va_copy(copy, arguments);
        const HRESULT result = StringCchVPrintfW(text.data(), text.size(), format, copy);
        va_end(copy);
        if (SUCCEEDED(result))
        {
            text.resize(text.find(WCHAR{0}));
            return text;
        }
        if (result != STRSAFE_E_INSUFFICIENT_BUFFER)
        {
            ThrowHresult(result);
        }
    }
    ThrowHresult(E_OUTOFMEMORY);
}
