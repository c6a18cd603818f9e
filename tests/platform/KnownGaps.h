// What a test runs on, for the marks of known gaps: where Wine doesn't do what Windows documents, a test
// asserts what Wine does, so that it fails when the gap closes. The running Wine is asked, so that no test
// demands a gap of Wine on Windows itself, or one that a later Wine has closed.
#pragma once

#include <windows.h>

#include <cstdlib>
#include <type_traits>

constexpr bool IsWindowsBuild = std::is_same_v<WCHAR, wchar_t>;

// The major version, 8 for Wine 8.0; 0 on Windows and in the native build.
inline const int WineVersion = [] {
    if constexpr (IsWindowsBuild)
    {
        const auto version = reinterpret_cast<const char *(*)()>(
            reinterpret_cast<void *>(GetProcAddress(GetModuleHandleW(TEXT("ntdll.dll")), "wine_get_version")));
        return version != nullptr ? std::atoi(version()) : 0;
    }
    return 0;
}();

inline const bool UnderWine = WineVersion != 0;
