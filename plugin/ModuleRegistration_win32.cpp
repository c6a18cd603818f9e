#include "plugin/ModuleRegistration.h"

#include "com/Hresult.h"
#include "plugin/RegistryScripts_win32.h"
#include "plugin/TypeLibraryRegistration_win32.h"
#include "resources/resource.h"

namespace
{
// Sets the thread's locale for the length of a registration, so that the texts that it writes into the
// registry don't depend on the language of the user who installs.
class SystemLocale
{
public:
    SystemLocale() noexcept : m_saved(GetThreadLocale()) { SetThreadLocale(LOCALE_SYSTEM_DEFAULT); }
    ~SystemLocale() { SetThreadLocale(m_saved); }
    SystemLocale(const SystemLocale &) = delete;
    SystemLocale &operator=(const SystemLocale &) = delete;

private:
    LCID m_saved;
};
} // namespace

HRESULT RegisterModule(RegistrationScope scope) noexcept
{
    const SystemLocale locale;
    return AtBoundary([&] {
        ThrowIfFailed(ApplyRegistryScript(IDR_APPLICATION_ENTRIES, scope));
        ThrowIfFailed(ApplyRegistryScript(IDR_CLASS_ENTRIES, scope));
        return RegisterTypeLibrary(scope);
    });
}

HRESULT UnregisterModule(RegistrationScope scope) noexcept
{
    const SystemLocale locale;
    HRESULT first = S_OK;
    for (const HRESULT result : {RevertRegistryScript(IDR_CLASS_ENTRIES, scope), UnregisterTypeLibrary(scope),
                                 RevertRegistryScript(IDR_APPLICATION_ENTRIES, scope)})
    {
        first = FAILED(first) ? first : result;
    }
    return FAILED(first) ? first : S_OK;
}
