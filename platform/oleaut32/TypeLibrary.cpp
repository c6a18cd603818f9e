// Type libraries. There is no reader for their binary form yet: a library that can't be read is
// what callers are told, as Windows tells of a file without one.
#include <windows.h>
#include <oleauto.h>

HRESULT WINAPI LoadTypeLibEx(LPCOLESTR path, REGKIND, ITypeLib **library)
{
    if (path == nullptr || library == nullptr)
    {
        return E_INVALIDARG;
    }
    *library = nullptr;
    return TYPE_E_CANTLOADLIBRARY;
}
