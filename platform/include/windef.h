// Wine's windef.h uses va_list without including what declares it, and Windows' own header includes it.
#pragma once

#include <cstdarg>

#include_next <windef.h>
