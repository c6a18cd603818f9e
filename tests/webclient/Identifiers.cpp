// The identifiers of this program.
#include <windows.h>
#include <objbase.h>
#include <initguid.h>

#include "WebComponents.h"
#include "XmlInterfaces.h"
