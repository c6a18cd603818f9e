// Texts for windows.
#pragma once

#include <string>
#include <string_view>

// A string of the program's resources.
std::wstring ResourceText(unsigned id);

// The same with its "%1" replaced.
std::wstring ResourceText(unsigned id, std::wstring_view insert);

std::wstring WideOf(std::string_view utf8);
