// Where this user's Windows shows the program: the Start menu and the list of installed apps. COM must be initialized.
#pragma once

#include <windows.h>

// Makes or replaces both entries, for the running program file and for the uninstall.cmd beside it. Fails with the code
// of the shell or the registry.
HRESULT AddShellEntries() noexcept;

// An entry that isn't there is no failure.
HRESULT RemoveShellEntries() noexcept;
