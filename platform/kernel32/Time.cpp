#include <windows.h>

#include <chrono>
#include <thread>

void WINAPI GetSystemTimeAsFileTime(FILETIME *time)
{
    // 1970-01-01 as a file time: ticks of 100 ns since 1601-01-01.
    constexpr ULONGLONG unixEpoch = 116444736000000000;
    using Ticks = std::chrono::duration<ULONGLONG, std::ratio<1, 10000000>>;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    const ULONGLONG ticks = unixEpoch + std::chrono::duration_cast<Ticks>(now).count();
    time->dwLowDateTime = static_cast<DWORD>(ticks);
    time->dwHighDateTime = static_cast<DWORD>(ticks >> 32);
}

void WINAPI Sleep(DWORD milliseconds)
{
    if (milliseconds == INFINITE)
    {
        for (;;)
        {
            std::this_thread::sleep_for(std::chrono::hours(24));
        }
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}
