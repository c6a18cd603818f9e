// GetVersionExW reports 6.2 build 9200, as any later Windows does to a program whose manifest doesn't list
// the versions that it supports.
#include <windows.h>

#include <cstring>

BOOL WINAPI GetVersionExW(OSVERSIONINFOW *information)
{
    const DWORD size = information->dwOSVersionInfoSize;
    if (size != sizeof(OSVERSIONINFOW) && size != sizeof(OSVERSIONINFOEXW))
    {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return FALSE;
    }
    std::memset(information, 0, size);
    information->dwOSVersionInfoSize = size;
    information->dwMajorVersion = 6;
    information->dwMinorVersion = 2;
    information->dwBuildNumber = 9200;
    information->dwPlatformId = VER_PLATFORM_WIN32_NT;
    if (size == sizeof(OSVERSIONINFOEXW))
    {
        reinterpret_cast<OSVERSIONINFOEXW *>(information)->wProductType = VER_NT_WORKSTATION;
    }
    return TRUE;
}
