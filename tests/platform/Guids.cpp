// The GUIDs that a test program refers to by name.
#include <initguid.h>

#include <windows.h>
#include <objbase.h>
#include <oleauto.h>
#include <olectl.h>
#include <wincodec.h>
