// printf over UTF-16 with Windows' meanings: %s, %ls, %ws and %c wide, %S, %hs and %C narrow
// (UTF-8), long 32 bits and %I64, %ll 64 bits wide, %p as sixteen hexadecimal digits, a null string
// as "(null)". The decimal point is "." in every locale. %n writes nothing, and an unknown letter is
// written literally; neither consumes an argument.
#pragma once

#include <windows.h>

#include <cstdarg>
#include <cstddef>

// Writes at most capacity characters and no terminator. Returns the length of the whole text, which may
// be more.
size_t FormatWide(WCHAR *target, size_t capacity, const WCHAR *format, va_list arguments);
