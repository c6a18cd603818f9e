#include "plugin/ModuleRegistration.h"

// Natively a host knows the class and the module's file by itself; there is nothing to register.
HRESULT RegisterModule(RegistrationScope) noexcept
{
    return E_NOTIMPL;
}

HRESULT UnregisterModule(RegistrationScope) noexcept
{
    return E_NOTIMPL;
}
