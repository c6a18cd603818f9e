// The messages of the system's error codes.
#pragma once

#include <windows.h>

// Returns an English sentence that ends in a full stop, or null if the code has none. A Win32 error may
// be given by its own number or as an HRESULT.
const WCHAR *FindSystemMessage(DWORD code);
