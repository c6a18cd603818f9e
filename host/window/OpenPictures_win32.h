// The system's dialog for opening files.
#pragma once

#include <windows.h>

#include <filesystem>
#include <vector>

// The files that the user chose; none after a cancel. Throws the HRESULT of a dialog that can't be shown.
std::vector<std::filesystem::path> AskForPictures(HWND owner);
