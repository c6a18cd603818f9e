// Makes untrusted text in UTF-8 safe to print on one line.
#pragma once

#include <string>
#include <string_view>

// By the rule of terminal/SafeText.h; bytes that are no UTF-8 become U+FFFD.
std::string OneSafeLine(std::string_view utf8);
