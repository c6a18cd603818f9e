// Copies text to the clipboard.
#pragma once

#include <windows.h>

#include <string>

// Leaves the clipboard as it was if the text is empty or another program holds the clipboard open.
void CopyToClipboard(HWND owner, const std::wstring &text);
