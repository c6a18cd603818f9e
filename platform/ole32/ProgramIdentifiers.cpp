#include <windows.h>
#include <objbase.h>

// Natively no class has a program identifier: a host knows its classes by their own identifiers.
HRESULT WINAPI ProgIDFromCLSID(REFCLSID, LPOLESTR *progId)
{
    if (progId == nullptr)
    {
        return E_INVALIDARG;
    }
    *progId = nullptr;
    return REGDB_E_CLASSNOTREG;
}
