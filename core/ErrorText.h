// Words for failures that have none of their own.
#pragma once

#include "com/WideText.h"

#include <windows.h>

// The code sentence and, where the system has a message for the code, that message behind it, always
// with a full stop at the end. For codes 0 and 1 the code sentence alone.
WideText FormatErrorText(HRESULT code);

// Puts text into the calling thread's COM error object, for whoever called the plug-in. Best effort:
// without an error object nothing happens.
void SetErrorInfoText(const WCHAR *text);
