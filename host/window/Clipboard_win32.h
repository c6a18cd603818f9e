// Text on its way to other programs.
#pragma once

#include <windows.h>

#include <string>

// Empty text, and a clipboard that another program holds, leave it as it was.
void CopyToClipboard(HWND owner, const std::wstring &text);
