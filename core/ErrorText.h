// Messages for failures that are known by their code alone.
#pragma once

#include "com/WideText.h"

#include <windows.h>

// A sentence that names the code, followed by the system's message for it, if there is one; always ends with a
// full stop. For codes 0 and 1 the first sentence alone.
WideText FormatErrorText(HRESULT code);

// The sentence with the system's message behind it. The message loses the blanks around it and gets a full stop if
// it has none.
WideText WithMessage(WideText sentence, WideView message);

// Puts text into the calling thread's COM error object, where the plug-in's caller finds it. Does nothing if the
// object can't be created.
void SetErrorInfoText(const WCHAR *text);
