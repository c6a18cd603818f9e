// Sessions: what WinHttpOpen gives.
#pragma once

#include <windows.h>
#include <winhttp.h>

// Any thread.
bool IsOpenSession(HINTERNET handle) noexcept;
