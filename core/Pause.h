// Sleep function that tests can replace.
#pragma once

#include <windows.h>

#include <functional>

// Blocks the calling thread for the given number of milliseconds.
using Pause = std::function<void(DWORD)>;

// The system's own.
inline void SystemPause(DWORD milliseconds)
{
    Sleep(milliseconds);
}
