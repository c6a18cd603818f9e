// Formatting into a bounded buffer, with Windows' name, contract and results. The capacity is in characters,
// including the terminator; a text that doesn't fit is cut, terminated and reported. Of the conversions there are
// %s and %ls (wide), %d, %u and %x, those with l (32 bits) or I64, with a width filled with zeros (%08lx), and %%.
#pragma once

#include <windows.h>

#include <cstdarg>
#include <cstddef>

#define STRSAFE_MAX_CCH 2147483647
#define STRSAFE_E_INSUFFICIENT_BUFFER ((HRESULT)0x8007007AL)
#define STRSAFE_E_INVALID_PARAMETER ((HRESULT)0x80070057L)

// STRSAFE_E_INVALID_PARAMETER also for a conversion that is none of these.
extern "C" HRESULT WINAPI StringCchVPrintfW(WCHAR *target, size_t capacity, const WCHAR *format,
                                            va_list arguments);
