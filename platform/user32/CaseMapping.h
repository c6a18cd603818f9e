// Simple case mapping, one UTF-16 unit to one, as Windows does it. A surrogate stays as it is.
// Names no type of ICU or Windows, whose declarations don't agree with each other.
#pragma once

char16_t UpperCase(char16_t unit);
char16_t LowerCase(char16_t unit);
