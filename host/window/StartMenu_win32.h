// The program's entry in the Start menu of this user. COM must be initialized.
#pragma once

#include <windows.h>

// Makes or replaces the entry, which starts the running program file. Fails with the code of the shell.
HRESULT AddToStartMenu() noexcept;

// S_FALSE if there is no entry.
HRESULT RemoveFromStartMenu() noexcept;
