// The system's error numbers as the codes that a user of the Windows API expects.
#pragma once

#include <windows.h>

// Always a failure; E_FAIL for a number without a counterpart.
HRESULT HresultFromErrno(int number) noexcept;
