// Wine's windef.h uses va_list without including <stdarg.h>, which Windows' own windef.h does.
#pragma once

#include <cstdarg>

#include_next <windef.h>
