// FormatMessageW for the system's own messages, in a buffer of the caller or in a new one. Messages of
// modules are not supported, and the system's messages have no inserts.
#include "platform/kernel32/SystemMessages.h"

#include "com/WideText.h"

#include <algorithm>

DWORD WINAPI FormatMessageW(DWORD flags, LPCVOID, DWORD code, DWORD, LPWSTR buffer, DWORD capacity, va_list *)
{
    constexpr DWORD known = FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                            FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
    if ((flags & ~known) != 0 || !(flags & FORMAT_MESSAGE_FROM_SYSTEM) || buffer == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const bool allocate = (flags & FORMAT_MESSAGE_ALLOCATE_BUFFER) != 0;
    auto &allocated = *reinterpret_cast<LPWSTR *>(buffer);
    if (allocate)
    {
        allocated = nullptr;
    }
    const WCHAR *const message = FindSystemMessage(code);
    if (message == nullptr)
    {
        SetLastError(ERROR_MR_MID_NOT_FOUND);
        return 0;
    }
    // With all bits of the mask set, FormatMessageW turns line breaks of the message into blanks.
    const bool breakLine = (flags & FORMAT_MESSAGE_MAX_WIDTH_MASK) != FORMAT_MESSAGE_MAX_WIDTH_MASK;
    const WideText text = WideText(message) + (breakLine ? u"\r\n" : u" ");
    const size_t needed = text.size() + 1;
    if (!allocate && capacity < needed)
    {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    if (allocate)
    {
        allocated =
            static_cast<LPWSTR>(GlobalAlloc(GMEM_FIXED, std::max<size_t>(needed, capacity) * sizeof(WCHAR)));
        if (allocated == nullptr)
        {
            return 0;
        }
    }
    std::copy_n(text.c_str(), needed, allocate ? allocated : buffer);
    return static_cast<DWORD>(text.size());
}
