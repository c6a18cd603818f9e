// The one place of the module where the identifiers that headers only declare are defined.
#include <initguid.h>

#include "HVRPublishToFlickr.h"
#include "HostContract.h"
#include "RegistrarInterface.h"
#include "WebComponents.h"
#include "XmlInterfaces.h"

#include <wincodec.h>
