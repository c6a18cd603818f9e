// The registry scripts among this module's resources, applied by the system's registrar.
#pragma once

#include "plugin/ModuleRegistration.h"

// Writes the entries of the script, the resource id of type REGISTRY. In the script %APPID% stands for the
// application's identifier and %MODULE% for this module's path.
HRESULT ApplyRegistryScript(UINT id, RegistrationScope scope) noexcept;

// Removes the entries that the script writes.
HRESULT RevertRegistryScript(UINT id, RegistrationScope scope) noexcept;
