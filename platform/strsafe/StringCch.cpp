#include <strsafe.h>

#include "platform/strsafe/WideFormat.h"

#include <algorithm>

namespace
{
bool IsValidCapacity(WCHAR *target, size_t capacity)
{
    if (capacity == 0)
    {
        return false;
    }
    if (capacity > STRSAFE_MAX_CCH)
    {
        *target = 0;
        return false;
    }
    return true;
}
} // namespace

HRESULT WINAPI StringCchCopyW(WCHAR *target, size_t capacity, const WCHAR *source)
{
    if (!IsValidCapacity(target, capacity))
    {
        return STRSAFE_E_INVALID_PARAMETER;
    }
    size_t length = 0;
    for (; source[length] != 0 && length + 1 < capacity; ++length)
    {
        target[length] = source[length];
    }
    target[length] = 0;
    return source[length] == 0 ? S_OK : STRSAFE_E_INSUFFICIENT_BUFFER;
}

HRESULT WINAPI StringCchPrintfW(WCHAR *target, size_t capacity, const WCHAR *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const HRESULT result = StringCchVPrintfW(target, capacity, format, arguments);
    va_end(arguments);
    return result;
}

HRESULT WINAPI StringCchVPrintfW(WCHAR *target, size_t capacity, const WCHAR *format, va_list arguments)
{
    if (!IsValidCapacity(target, capacity))
    {
        return STRSAFE_E_INVALID_PARAMETER;
    }
    const size_t length = FormatWide(target, capacity - 1, format, arguments);
    target[std::min(length, capacity - 1)] = 0;
    return length < capacity ? S_OK : STRSAFE_E_INSUFFICIENT_BUFFER;
}
