// printf for wide text of any length, with Windows' meanings in both builds: %ls wide, %d and %lx 32 bits,
// %I64d 64, %S narrow. The format must not be null; E_OUTOFMEMORY is thrown.
#pragma once

#include "com/WideText.h"

#include <cstdarg>

WideText FormatText(const WCHAR *format, ...);
WideText FormatTextV(const WCHAR *format, va_list arguments);
