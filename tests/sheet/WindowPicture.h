// A picture of what a window looks like on the screen, its frame included.
#pragma once

#include <windows.h>

#include <string>

// Writes a PNG; false if that fails.
bool WriteWindowPicture(HWND window, const std::string &path);
