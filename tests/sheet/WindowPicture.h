// Writes a picture of a window as it looks on the screen, with its frame.
#pragma once

#include <windows.h>

#include <string>

// Writes a PNG; false if that fails.
bool WriteWindowPicture(HWND window, const std::string &path);
