// What the shell does for the program: the dialog for opening files, and the entries in the Start menu and in the list
// of installed apps, where this user's Windows shows it. COM must be initialized.
#pragma once

#include <windows.h>

#include <filesystem>
#include <vector>

// The files that the user chose; none after a cancel. Throws the HRESULT of a dialog that can't be shown.
std::vector<std::filesystem::path> AskForPictures(HWND owner);

// Makes or replaces both entries, for the running program file and for the uninstall.cmd beside it. Fails with the code
// of the shell or the registry.
HRESULT AddShellEntries() noexcept;

// An entry that isn't there is no failure.
HRESULT RemoveShellEntries() noexcept;
