// Random hexadecimal text, for nonces and boundaries.
#pragma once

#include <string>

// Eight digits for each word of 32 random bits, from the system's own source.
std::string RandomHexText(unsigned words);
