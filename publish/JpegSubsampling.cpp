#include "publish/JpegSubsampling.h"

#include "com/HandleOwner.h"
#include "com/WideText.h"

#include <shlwapi.h>

#include <iterator>

namespace
{
const WCHAR *const ImagingServerKey = TEXT("CLSID\\{CACAF262-9370-4615-A13B-9F5539DA4C0A}\\InProcServer32");

bool FindOut() noexcept
{
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    const bool isKnown = GetVersionExW(&version);
    return (isKnown && VersionHasJpegSubsampling(version.dwMajorVersion, version.dwMinorVersion)) ||
           IsFreeThreaded(HKEY_CLASSES_ROOT, ImagingServerKey);
}
} // namespace

bool JpegSubsamplingSupported()
{
    static const bool Answer = FindOut();
    return Answer;
}

bool VersionHasJpegSubsampling(DWORD major, DWORD minor) noexcept
{
    return major > 6 || (major == 6 && minor != 0);
}

bool IsFreeThreaded(HKEY root, const WCHAR *serverKey) noexcept
{
    RegistryKeyOwner key;
    if (RegOpenKeyExW(root, serverKey, 0, KEY_QUERY_VALUE, key.Put()) != ERROR_SUCCESS)
    {
        return false;
    }
    // The last unit stays zero, since a stored text may lack its terminator. A text too long for the buffer is
    // neither of the two.
    WCHAR model[16] = {};
    DWORD type = REG_NONE;
    DWORD size = sizeof model - sizeof(WCHAR);
    const LSTATUS read = RegQueryValueExW(key.Get(), TEXT("ThreadingModel"), nullptr, &type,
                                          reinterpret_cast<BYTE *>(model), &size);
    if (read != ERROR_SUCCESS || (type != REG_SZ && type != REG_EXPAND_SZ))
    {
        return false;
    }
    return StrCmpIW(model, TEXT("Both")) == 0 || StrCmpIW(model, TEXT("Free")) == 0;
}
