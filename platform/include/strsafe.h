// Bounded text functions with Windows' names, contracts and results. Capacities are in characters,
// including the terminator; a text that doesn't fit is cut, terminated and reported. Formats are those of
// Windows' wide printf: %s is wide, %S and %hs narrow (UTF-8), %ld 32 bits, %I64d 64 bits.
#pragma once

#include <windows.h>

#include <cstdarg>
#include <cstddef>

#define STRSAFE_MAX_CCH 2147483647
#define STRSAFE_E_INSUFFICIENT_BUFFER ((HRESULT)0x8007007AL)
#define STRSAFE_E_INVALID_PARAMETER ((HRESULT)0x80070057L)

extern "C"
{
    HRESULT WINAPI StringCchCopyW(WCHAR *target, size_t capacity, const WCHAR *source);
    HRESULT WINAPI StringCchPrintfW(WCHAR *target, size_t capacity, const WCHAR *format, ...);
    HRESULT WINAPI StringCchVPrintfW(WCHAR *target, size_t capacity, const WCHAR *format, va_list arguments);
}

#define StringCchCopy StringCchCopyW
#define StringCchPrintf StringCchPrintfW
#define StringCchVPrintf StringCchVPrintfW
