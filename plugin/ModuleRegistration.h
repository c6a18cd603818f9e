// The class entries by which COM finds this module.
#pragma once

#include <windows.h>

enum class RegistrationScope
{
    Machine,    // HKEY_CLASSES_ROOT
    User        // HKEY_CURRENT_USER\Software\Classes
};

// Writes the class, its two ProgIDs and the category under which the host looks for publishers, all
// pointing at this module's file. What was written stays after a failure.
HRESULT RegisterClassEntries(RegistrationScope scope) noexcept;

// Removes what RegisterClassEntries writes; entries that aren't there are no failure.
HRESULT UnregisterClassEntries(RegistrationScope scope) noexcept;
