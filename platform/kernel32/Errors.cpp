// The calling thread's last error code, and the system's words for codes.
#include "platform/kernel32/SystemMessages.h"

#include "com/WideText.h"

#include <algorithm>

namespace
{
thread_local DWORD lastError = ERROR_SUCCESS;
}

DWORD WINAPI GetLastError()
{
    return lastError;
}

void WINAPI SetLastError(DWORD code)
{
    lastError = code;
}

// For the system's own messages, in a new buffer. Messages of modules are not supported, and the system's messages have
// no inserts.
DWORD WINAPI FormatMessageW(DWORD flags, LPCVOID, DWORD code, DWORD, LPWSTR buffer, DWORD, va_list *)
{
    constexpr DWORD needed =
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
    // With all bits of the mask set, line breaks of the message become blanks.
    const bool breaksLine = flags == needed;
    if ((!breaksLine && flags != (needed | FORMAT_MESSAGE_MAX_WIDTH_MASK)) || buffer == nullptr)
    {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    auto &allocated = *reinterpret_cast<LPWSTR *>(buffer);
    allocated = nullptr;
    const WCHAR *const message = FindSystemMessage(code);
    if (message == nullptr)
    {
        SetLastError(ERROR_MR_MID_NOT_FOUND);
        return 0;
    }
    const WideText text = WideText(message) + (breaksLine ? u"\r\n" : u" ");
    allocated = static_cast<LPWSTR>(GlobalAlloc(GMEM_FIXED, (text.size() + 1) * sizeof(WCHAR)));
    if (allocated == nullptr)
    {
        return 0;
    }
    std::copy_n(text.c_str(), text.size() + 1, allocated);
    return static_cast<DWORD>(text.size());
}
