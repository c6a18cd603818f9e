// Definitions of the identifiers that the test program names.
#include <initguid.h>

#include "HostContract.h"
#include "WebComponents.h"
#include "XmlInterfaces.h"
