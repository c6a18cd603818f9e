// The identifiers of the program, defined once.
#include <windows.h>

#include <initguid.h>

#include <oleauto.h>

#include "WebComponents.h"
#include "XmlInterfaces.h"
