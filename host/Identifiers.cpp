// The one place of the program where the identifiers are defined.
#include <initguid.h>

#include "HostContract.h"
#include "HVRPublishToFlickr.h"
#include "WebComponents.h"
