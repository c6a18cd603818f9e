// The conventions of a locale that a caller names by Windows' identifier.
#pragma once

#include "platform/kernel32/LocaleConventions.h"

#include <windows.h>

#include <optional>

// nullopt if the locale is unknown. Each of the LOCALE_*_DEFAULT identifiers means the environment's
// locale.
std::optional<LocaleConventions> ConventionsOfLocale(LCID locale);

// The grouping as NUMBERFMTW holds it: one decimal digit per group size. The last size repeats, unless
// a 0 follows it.
UINT GroupingNumber(const LocaleConventions &conventions);

// Where the minus sign stands.
constexpr UINT SignAhead = 1;
constexpr UINT SignBehind = 3;
UINT NegativeOrder(const LocaleConventions &conventions);

// Windows keeps two decimals and a leading zero in every locale.
constexpr UINT DecimalDigits = 2;
constexpr UINT LeadingZero = 1;
