// The entries of this module's type library.
#pragma once

#include "plugin/ModuleRegistration.h"

HRESULT RegisterTypeLibrary(RegistrationScope scope) noexcept;

// Needs no readable type library. Entries that aren't there are no failure.
HRESULT UnregisterTypeLibrary(RegistrationScope scope) noexcept;
