// Windows' locale identifiers resolved to conventions.
#pragma once

#include "platform/kernel32/LocaleConventions.h"

#include <windows.h>

#include <optional>

// Nothing if the locale isn't known. All the defaults are the environment's locale.
std::optional<LocaleConventions> ConventionsOfLocale(LCID locale);

// The grouping as NUMBERFMTW holds it: a digit per group from the right, the last one repeating;
// a 0 at the end would keep it from that.
UINT GroupingNumber(const LocaleConventions &conventions);

// 1 for a sign ahead of the number, 3 for one behind it.
UINT NegativeOrder(const LocaleConventions &conventions);

// Windows keeps two decimals and a leading zero in every locale.
constexpr UINT DecimalDigits = 2;
constexpr UINT LeadingZero = 1;
