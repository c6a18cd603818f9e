// Texts of the program's windows: from its resources, and to the clipboard.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

// A string of the program's resources.
std::wstring ResourceText(unsigned id);

// The same with its "%1" replaced.
std::wstring ResourceText(unsigned id, std::wstring_view insert);

std::wstring WideOf(std::string_view utf8);

// Leaves the clipboard as it was if the text is empty or another program holds the clipboard open.
void CopyToClipboard(HWND owner, const std::wstring &text);
