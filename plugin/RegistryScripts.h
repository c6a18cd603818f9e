// The registry scripts among this module's resources, applied by the system's registrar.
#pragma once

#include "plugin/ModuleRegistration.h"

// Writes the entries of the script, a resource of type REGISTRY. In them %APPID% is the application's
// identifier and %MODULE% this module's path.
HRESULT ApplyRegistryScript(UINT id, RegistrationScope scope) noexcept;

// Removes what the script writes.
HRESULT RevertRegistryScript(UINT id, RegistrationScope scope) noexcept;
