// Bounded text functions by Windows' names, contracts and results. Lengths are in characters, with
// the terminator; a text that doesn't fit is cut, terminated and reported. Formats have the
// meanings of Windows' wide printf: %s is wide, %S and %hs narrow (UTF-8), %ld 32 bits, %I64d 64.
#pragma once

#include <windows.h>

#include <cstdarg>
#include <cstddef>

#define STRSAFE_MAX_CCH 2147483647
#define STRSAFE_E_INSUFFICIENT_BUFFER ((HRESULT)0x8007007AL)
#define STRSAFE_E_INVALID_PARAMETER ((HRESULT)0x80070057L)
#define STRSAFE_E_END_OF_FILE ((HRESULT)0x80070026L)
typedef const WCHAR *STRSAFE_LPCWSTR;
typedef WCHAR *STRSAFE_LPWSTR;

extern "C"
{
    HRESULT WINAPI StringCchCopyW(WCHAR *target, size_t capacity, const WCHAR *source);
    HRESULT WINAPI StringCchCopyNW(WCHAR *target, size_t capacity, const WCHAR *source, size_t sourceLength);
    HRESULT WINAPI StringCchCatW(WCHAR *target, size_t capacity, const WCHAR *source);
    HRESULT WINAPI StringCchPrintfW(WCHAR *target, size_t capacity, const WCHAR *format, ...);
    HRESULT WINAPI StringCchVPrintfW(WCHAR *target, size_t capacity, const WCHAR *format, va_list arguments);
    // length may be null; it is 0 if no terminator lies within maximum characters.
    HRESULT WINAPI StringCchLengthW(const WCHAR *text, size_t maximum, size_t *length);
}

#define StringCchCopy StringCchCopyW
#define StringCchCopyN StringCchCopyNW
#define StringCchCat StringCchCatW
#define StringCchPrintf StringCchPrintfW
#define StringCchVPrintf StringCchVPrintfW
#define StringCchLength StringCchLengthW
