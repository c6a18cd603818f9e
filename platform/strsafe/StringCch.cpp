#include <strsafe.h>

#include "platform/strsafe/WideFormat.h"

#include <algorithm>
#include <string>

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

HRESULT CopyWithin(WCHAR *target, size_t capacity, const WCHAR *source, size_t sourceLength)
{
    size_t length = 0;
    for (; length < sourceLength && source[length] != 0; ++length)
    {
        if (length + 1 == capacity)
        {
            target[length] = 0;
            return STRSAFE_E_INSUFFICIENT_BUFFER;
        }
        target[length] = source[length];
    }
    target[length] = 0;
    return S_OK;
}
} // namespace

HRESULT WINAPI StringCchCopyW(WCHAR *target, size_t capacity, const WCHAR *source)
{
    return StringCchCopyNW(target, capacity, source, STRSAFE_MAX_CCH - 1);
}

HRESULT WINAPI StringCchCopyNW(WCHAR *target, size_t capacity, const WCHAR *source, size_t sourceLength)
{
    if (!IsValidCapacity(target, capacity))
    {
        return STRSAFE_E_INVALID_PARAMETER;
    }
    if (sourceLength >= STRSAFE_MAX_CCH)
    {
        *target = 0;
        return STRSAFE_E_INVALID_PARAMETER;
    }
    return CopyWithin(target, capacity, source, sourceLength);
}

HRESULT WINAPI StringCchCatW(WCHAR *target, size_t capacity, const WCHAR *source)
{
    size_t length = 0;
    if (FAILED(StringCchLengthW(target, capacity, &length)))
    {
        return STRSAFE_E_INVALID_PARAMETER;
    }
    return CopyWithin(target + length, capacity - length, source, STRSAFE_MAX_CCH - 1);
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

HRESULT WINAPI StringCchLengthW(const WCHAR *text, size_t maximum, size_t *length)
{
    const bool valid = text != nullptr && maximum <= STRSAFE_MAX_CCH;
    const WCHAR *const end = valid ? std::find(text, text + maximum, WCHAR{0}) : nullptr;
    const bool found = valid && end != text + maximum;
    if (length != nullptr)
    {
        *length = found ? static_cast<size_t>(end - text) : 0;
    }
    return found ? S_OK : STRSAFE_E_INVALID_PARAMETER;
}
