// Simple case mapping, one UTF-16 unit to one, as Windows does it. A surrogate stays as it is, and so does a
// character whose upper case lies outside the Basic Multilingual Plane.
// Names no type of ICU or Windows, whose declarations don't agree with each other.
#pragma once

char16_t UpperCase(char16_t unit);
