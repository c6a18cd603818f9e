// The entries in the registry by which COM and the host find this module: application, class and type library.
#pragma once

#include <windows.h>

enum class RegistrationScope
{
    Machine, // HKEY_CLASSES_ROOT
    User     // HKEY_CURRENT_USER\Software\Classes
};

// Writes all entries, for this module's own file. What was written ahead of a failure stays. The calling
// thread is in an apartment.
HRESULT RegisterModule(RegistrationScope scope) noexcept;

// Removes them. Goes on after a failure and answers the first one; entries that aren't there are none.
HRESULT UnregisterModule(RegistrationScope scope) noexcept;
