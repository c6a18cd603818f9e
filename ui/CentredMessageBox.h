// A message box centred on its owner.
#pragma once

#include <windows.h>

// MessageBoxW with its four arguments and its result. Blocks until the user has answered.
int CentredMessageBox(HWND owner, const WCHAR *text, const WCHAR *caption, UINT type) noexcept;
