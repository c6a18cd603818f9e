// The entries in the registry by which COM and the host find this module: application, class and type library.
#pragma once

#include <windows.h>

enum class RegistrationScope
{
    Machine, // HKEY_CLASSES_ROOT
    User     // HKEY_CURRENT_USER\Software\Classes
};

// Writes all entries, for this module's own file. Entries written before a failure stay. COM must be
// initialized on the calling thread.
HRESULT RegisterModule(RegistrationScope scope) noexcept;

// Removes them. Goes on after a failure and returns the first one; a missing entry is no failure.
HRESULT UnregisterModule(RegistrationScope scope) noexcept;
