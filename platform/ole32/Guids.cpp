// The identifiers that the Windows headers declare, defined for this library.
#include <initguid.h>

#include <windows.h>
#include <objbase.h>
#include <ole2.h>
#include <oleauto.h>
#include <shlwapi.h>
#include <wincodec.h>
#include <wincodecsdk.h>

#include "XmlInterfaces.h"

// Windows has this one in a library for linking; here it is the platform's for every module.
extern "C" const IID GUID_NULL = {}; // NOLINT(readability-identifier-naming): its name on Windows
