// The order in which a user expects file names: numbers by value, letters without regard to case.
#pragma once

#include <string_view>

// A strict weak order over bytes; names that differ only in case or in leading zeros are ordered by
// their bytes, so that no two different names are equal.
bool NaturallyBefore(std::string_view left, std::string_view right);
