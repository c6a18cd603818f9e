// How a locale writes numbers, from ICU. The header names neither ICU's nor Windows' types, since
// their declarations don't agree with each other.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

struct LocaleConventions
{
    std::u16string decimalSeparator;
    std::u16string thousandsSeparator;
    std::u16string negativeSign;
    // Digits in the group next to the decimal separator, and in all others; 0 for no groups.
    int firstGroup = 0;
    int furtherGroups = 0;
    bool signBehind = false;
};

// The user's locale comes from the environment, read at each call: the first of LC_ALL, LC_NUMERIC and
// LANG that isn't empty. The C and POSIX locales, an unknown locale and no locale at all count as en-US.
LocaleConventions UserConventions();

// Finds a locale by Windows' identifier; nullopt if there is none. 127 is the invariant locale.
std::optional<LocaleConventions> ConventionsOf(uint32_t windowsId);
