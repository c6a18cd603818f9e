// Words for the system's error codes.
#pragma once

#include <windows.h>

// An English sentence that ends in a full stop, or null for a code without one. A Win32 error is
// found by its own number and as an HRESULT.
const WCHAR *FindSystemMessage(DWORD code);
